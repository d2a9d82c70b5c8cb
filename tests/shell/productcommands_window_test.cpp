// The product commands on the real main window: insert, delete, delete all and the
// "Locate Product" search, with their questions answered through the fake prompts.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "shell/dialog.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"
#include "shell/productgridcontroller.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <algorithm>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class ProductCommandsWindowTest : public SampleWindowTest
{
protected:
    int currentRow() const { return grid->currentIndex().row(); }
    void find(const QString &text)
    {
        dialogs.textAnswers << text;
        button("Find")->trigger();
    }
};

TEST_F(ProductCommandsWindowTest, InsertAddsAnEmptyRowAtTheCurrentRowInEditMode)
{
    goToRow(1);
    button("Insert")->trigger();
    EXPECT_EQ(module->AllProducts().Count(), 4);
    ASSERT_EQ(catalogue().rowCount(), 4);
    EXPECT_TRUE(catalogue().get(2, 1).isBlank());
    EXPECT_EQ(catalogue().get(3, 1), Cell("B-200"));
    EXPECT_EQ(currentRow(), 1);
    EXPECT_EQ(window->grid().gridTag(), QStringLiteral("Adding New"));
    EXPECT_TRUE(button("Edit")->isChecked());
    EXPECT_FALSE(window->ui().TxtPrice->isReadOnly());
    EXPECT_EQ(window->ui().TxtPrice->text(), QString());
    EXPECT_EQ(window->ui().Txtnotes->toPlainText(), QString());
    EXPECT_TRUE(module->ScheduleTable().get(1, 1).isEmpty());
}

TEST_F(ProductCommandsWindowTest, LeavingAFreshRowWritesNothingLeavingItAgainWritesTheBoxes)
{
    button("Insert")->trigger();
    window->ui().TxtPrice->setText(QStringLiteral("5"));
    goToRow(1);
    EXPECT_TRUE(catalogue().get(1, 3).isBlank()) << "the fresh row is left untouched";
    EXPECT_EQ(window->grid().gridTag(), QString());
    goToRow(0);
    window->ui().TxtPrice->setText(QStringLiteral("7"));
    goToRow(1);
    EXPECT_EQ(catalogue().get(1, 3), Cell("$7.00"));
}

TEST_F(ProductCommandsWindowTest, AnInsertedProductIsKeptWhenEditIsReleasedAndAfterARestart)
{
    goToRow(2);
    button("Insert")->trigger();
    const QModelIndex part = grid->model()->index(2, 0);
    grid->edit(part);
    auto *editor = grid->viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, QStringLiteral("D-400"));
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !grid->isEditing(); }, 10000));
    EXPECT_EQ(catalogue().get(3, 1), Cell("D-400"));
    grid->model()->setData(grid->model()->index(2, 1), QStringLiteral("Dowel"));
    window->ui().TxtPrice->setText(QStringLiteral("0.35"));
    window->ui().Txtincludes->setPlainText(QStringLiteral("Bag of 10"));
    button("Edit")->trigger();
    EXPECT_EQ(catalogue().get(3, 1), Cell("D-400"));
    EXPECT_EQ(catalogue().get(3, 3), Cell("$0.35"));
    EXPECT_EQ(catalogue().get(3, 5), Cell("Bag of 10"));

    window->close();
    restart();
    EXPECT_EQ(module->AllProducts().Count(), 4);
    EXPECT_EQ(module->Catalogue().get(4, 1), Cell("D-400"));
    EXPECT_EQ(module->Catalogue().get(4, 2), Cell("Dowel"));
    EXPECT_EQ(module->Catalogue().get(4, 3), Cell(0.35f));
}

TEST_F(ProductCommandsWindowTest, InsertingWhileEditingStoresTheRowBeingEdited)
{
    button("Edit")->trigger();
    window->ui().Txtnotes->setPlainText(QStringLiteral("Saved first"));
    window->actions().action(QStringLiteral("mnuAddProd"))->trigger();
    EXPECT_EQ(catalogue().get(2, 4), Cell("Saved first")) << "A-100 moved down to row 2";
    EXPECT_EQ(catalogue().get(2, 1), Cell("A-100"));
}

TEST_F(ProductCommandsWindowTest, DeleteAsksAndRemovesTheCurrentProductOnYes)
{
    goToRow(1);
    fakes->prompts.answerMessage(MsgResult::Yes);
    button("DelProd")->trigger();
    const ShownPrompt &box = fakes->prompts.shown().at(0);
    EXPECT_EQ(box.text, QStringLiteral("Delete this product?"));
    EXPECT_EQ(box.title, QStringLiteral("Delete"));
    EXPECT_EQ(box.style, 36);
    EXPECT_EQ(module->AllProducts().Count(), 2);
    EXPECT_EQ(catalogue().get(2, 1), Cell("C-300"));
    EXPECT_EQ(window->ui().TxtPrice->text(), QString());
    EXPECT_EQ(window->ui().Txtincludes->toPlainText(), QString());
}

// Delete removes the current product only: while its question is up only that row shows
// selected, and "No" gives the other selected rows their selection back.
TEST_F(ProductCommandsWindowTest, DeleteWithSeveralRowsSelectedShowsWhichOneItDeletes)
{
    QItemSelectionModel *selection = window->ui().GrdMain->selectionModel();
    const auto selectRows = [&] {
        selection->select(window->ui().GrdMain->model()->index(0, 0),
            QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        selection->select(window->ui().GrdMain->model()->index(2, 0),
            QItemSelectionModel::Select | QItemSelectionModel::Rows);
        selection->setCurrentIndex(
            window->ui().GrdMain->model()->index(1, 0), QItemSelectionModel::NoUpdate);
    };
    const auto selectedRows = [&] {
        QList<int> rows;
        for (const QModelIndex &index : selection->selectedRows())
            rows << index.row();
        std::sort(rows.begin(), rows.end());
        return rows;
    };
    QList<int> whileAsked;
    fakes->prompts.whileShown([&] { whileAsked = selectedRows(); });
    selectRows();
    fakes->prompts.answerMessage(MsgResult::No);
    button("DelProd")->trigger();
    EXPECT_EQ(whileAsked, QList<int>({ 1 }));
    EXPECT_EQ(selectedRows(), QList<int>({ 0, 2 }));
    EXPECT_EQ(module->AllProducts().Count(), 3);

    fakes->prompts.answerMessage(MsgResult::Yes);
    button("DelProd")->trigger();
    EXPECT_EQ(whileAsked, QList<int>({ 1 }));
    EXPECT_EQ(module->AllProducts().Count(), 2);
    EXPECT_EQ(catalogue().get(1, 1), Cell("A-100"));
    EXPECT_EQ(catalogue().get(2, 1), Cell("C-300"));
}

TEST_F(ProductCommandsWindowTest, DeleteKeepsTheProductOnNo)
{
    fakes->prompts.answerMessage(MsgResult::No);
    window->actions().action(QStringLiteral("mnuDelProd"))->trigger();
    EXPECT_EQ(module->AllProducts().Count(), 3);
    EXPECT_EQ(fakes->prompts.shown().size(), 1u);
}

TEST_F(ProductCommandsWindowTest, DeleteAllEmptiesTheCatalogueAndOnAnEmptyOneOnlyAsks)
{
    fakes->prompts.answerMessage(MsgResult::Yes);
    window->actions().action(QStringLiteral("mnuDelAll"))->trigger();
    EXPECT_EQ(fakes->prompts.shown().at(0).text, QStringLiteral("Delete All Products?"));
    EXPECT_EQ(fakes->prompts.shown().at(0).style, 36);
    EXPECT_EQ(module->AllProducts().Count(), 0);
    EXPECT_EQ(grid->model()->rowCount(), 0);
    EXPECT_EQ(window->ui().TxtPrice->text(), QString());

    fakes->prompts.answerMessage(MsgResult::Yes);
    window->actions().action(QStringLiteral("mnuDelAll"))->trigger();
    EXPECT_EQ(fakes->prompts.shown().size(), 2u);
    EXPECT_EQ(module->AllProducts().Count(), 0);

    fakes->prompts.answerMessage(MsgResult::Yes);
    button("DelProd")->trigger();
    EXPECT_EQ(module->AllProducts().Count(), 0) << "deleting from an empty grid removes nothing";
}

TEST_F(ProductCommandsWindowTest, ANewSearchWithoutAMatchSaysSoWithoutTheWrapQuestion)
{
    find(QStringLiteral("zzz"));
    ASSERT_EQ(dialogs.textRequests.size(), 1u);
    EXPECT_EQ(dialogs.textRequests[0].caption, QStringLiteral("Locate Product"));
    EXPECT_EQ(dialogs.textRequests[0].prompt, QStringLiteral("Enter the product name to locate."));
    EXPECT_EQ(dialogs.textRequests[0].text, QString());
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    EXPECT_EQ(fakes->prompts.shown()[0].text, QStringLiteral("No matches found."));
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Find"));
    EXPECT_EQ(fakes->prompts.shown()[0].style, 0);
    EXPECT_EQ(currentRow(), 0);

    // The same text again is a continued search: it asks whether to wrap.
    fakes->prompts.answerMessage(MsgResult::No);
    find(QStringLiteral("zzz"));
    EXPECT_EQ(dialogs.textRequests[1].prompt,
        QStringLiteral("Enter new Product or click OK to keep searching"));
    EXPECT_EQ(dialogs.textRequests[1].text, QStringLiteral("zzz"));
    EXPECT_EQ(
        fakes->prompts.shown()[1].text, QStringLiteral("Match not found. Search from beginning?"));
    EXPECT_EQ(fakes->prompts.shown()[1].style, 36);
}

TEST_F(ProductCommandsWindowTest, RepeatedFindWalksTheMatchesAndWrapsOnYes)
{
    find(QStringLiteral("a")); // Anchor, Clamp
    EXPECT_EQ(currentRow(), 0);
    find(QStringLiteral("a"));
    EXPECT_EQ(currentRow(), 2);
    fakes->prompts.answerMessage(MsgResult::Yes);
    find(QStringLiteral("a"));
    EXPECT_EQ(currentRow(), 0);
    EXPECT_EQ(fakes->prompts.texts(), QStringList { "Match not found. Search from beginning?" });
}

TEST_F(ProductCommandsWindowTest, AnsweringNoToTheWrapQuestionKeepsTheRow)
{
    find(QStringLiteral("clamp"));
    EXPECT_EQ(currentRow(), 2);
    fakes->prompts.answerMessage(MsgResult::No);
    find(QStringLiteral("clamp"));
    EXPECT_EQ(currentRow(), 2);
}

TEST_F(ProductCommandsWindowTest, ThePartNumberAloneMatchesAndCaseDoesNotMatter)
{
    find(QStringLiteral("c-3"));
    EXPECT_EQ(currentRow(), 2);
    find(QStringLiteral("bOLT"));
    EXPECT_EQ(currentRow(), 1);
    EXPECT_EQ(window->ui().Txtincludes->toPlainText(), QStringLiteral("Nut"));
}

TEST_F(ProductCommandsWindowTest, AnEmptyEntryEndsTheSearch)
{
    goToRow(1);
    find(QString());
    EXPECT_EQ(currentRow(), 1);
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

TEST(DialogTest, EnterActsAsOkAndCancelEmptiesTheAnswer)
{
    Dialog dialog;
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Dialog Caption"));
    dialog.setMsgText(QStringLiteral("Enter the product name to locate."));
    EXPECT_EQ(dialog.findChild<QLabel *>(QStringLiteral("lbl"))->text(),
        QStringLiteral("Enter the product name to locate."));
    dialog.show();
    auto *text1 = dialog.findChild<QLineEdit *>(QStringLiteral("Text1"));
    ASSERT_NE(text1, nullptr);
    QTest::keyClicks(text1, QStringLiteral("valve"));
    QTest::keyClick(text1, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_TRUE(dialog.OK);
    EXPECT_EQ(dialog.text(), QStringLiteral("valve"));

    Dialog cancelled;
    cancelled.setText(QStringLiteral("kept?"));
    cancelled.show();
    QTest::mouseClick(
        cancelled.findChild<QPushButton *>(QStringLiteral("CancelButton")), Qt::LeftButton);
    EXPECT_EQ(cancelled.result(), QDialog::Rejected);
    EXPECT_EQ(cancelled.text(), QString());
}

} // namespace
