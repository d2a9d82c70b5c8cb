// Undo and redo of the quote and of an import on the real main window: a line added, a quantity
// typed with its re-pricing, a discount, "Remove All" with the total boxes, each taken back as
// one step from the quote grid with Ctrl+Z, the quote tab showing the grid where it stood; and
// a whole import taken back and done again at once.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "commands/edithistory.h"
#include "exchange/ui/frmupdate.h"
#include "products/ui/frmdiscount.h"
#include "shell/exchangecontroller.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class UndoQuoteWindowTest : public ActiveWindowTest
{
protected:
    void addToQuote(int gridRow)
    {
        goToRow(gridRow);
        action("mnuGrdMainQuote")->trigger();
    }
    void typeIntoQuote(int row, int column, const QString &text)
    {
        editGridCell(quoteGrid, row, column, text);
    }
    QString quoteCell(int row, int column) const { return gridCellText(quoteGrid, row, column); }
    QStringList totals() const { return quoteTotalBoxes(*window); }
    void ctrlZ()
    {
        quoteGrid->setFocus(Qt::MouseFocusReason);
        ASSERT_TRUE(QTest::qWaitFor([this] { return quoteGrid->hasFocus(); }, 10000));
        QTest::keyClick(quoteGrid, Qt::Key_Z, Qt::ControlModifier);
    }
    QAction *undo() const { return action("mnuEditUndo"); }
    QAction *redo() const { return action("mnuEditRedo"); }
};

TEST_F(UndoQuoteWindowTest, AQuantityTypedAndItsRepricingAreTakenBackTogether)
{
    addToQuote(1); // B-200 Bolt, list 2.50, 100 or more at 2.00
    typeIntoQuote(0, 3, QStringLiteral("100"));
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$2.00"));
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Change Quantity B-200"));
    window->ui().SSTabmain->setCurrentIndex(0);

    ctrlZ();
    EXPECT_EQ(window->ui().SSTabmain->currentIndex(), 1) << "the quote tab shows the undo";
    EXPECT_EQ(quoteCell(0, 3), QStringLiteral("1"));
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$2.50"));
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$2.50"));
    EXPECT_EQ(totals(), QStringList({ "$2.50", "$0.00", "0.00%" }));
    EXPECT_EQ(quoteGrid->currentIndex().row(), 0);
    EXPECT_EQ(quoteGrid->currentIndex().column(), 3);

    ctrlZ();
    EXPECT_EQ(quoteCell(0, 0), QString()) << "then the line itself";
    EXPECT_EQ(undo()->isEnabled(), false);
    QTest::keyClick(quoteGrid, Qt::Key_Y, Qt::ControlModifier);
    QTest::keyClick(quoteGrid, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$200.00"));
    EXPECT_EQ(totals(), QStringList({ "$200.00", "$50.00", "20.00%" }));
}

TEST_F(UndoQuoteWindowTest, ACellOpenedAndLeftWithNothingTypedIsNoStep)
{
    addToQuote(1); // B-200 Bolt, $2.50
    typeIntoQuote(0, 2, QStringLiteral("4"));
    ASSERT_EQ(quoteCell(0, 2), QStringLiteral("$4.00"));
    ASSERT_EQ(undo()->text(), QStringLiteral("&Undo Change Price B-200"));
    // F2 and Enter on the quantity, as a look at it: the typed price stays.
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, 3));
    QTest::keyClick(quoteGrid, Qt::Key_F2);
    auto *editor = quoteGrid->viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !quoteGrid->isEditing(); }, 10000));
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$4.00"));
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Change Price B-200"));
    // Ctrl+Z in an editor opened with nothing typed takes back the last step itself.
    QTest::keyClick(quoteGrid, Qt::Key_F2);
    editor = quoteGrid->viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$2.50"));
    EXPECT_EQ(redo()->text(), QStringLiteral("&Redo Change Price B-200"));
}

TEST_F(UndoQuoteWindowTest, ADiscountFromItsWindowIsOneStep)
{
    addToQuote(1);
    addToQuote(0);
    action("mnudiscountAll")->trigger();
    auto *form = window->findChild<FrmDiscount *>();
    ASSERT_NE(form, nullptr);
    auto *combo = form->findChild<QComboBox *>(QStringLiteral("CmboDisc"));
    combo->setCurrentIndex(combo->findText(QStringLiteral("10%")));
    QTest::mouseClick(form->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::LeftButton);
    EXPECT_EQ(totals().at(2), QStringLiteral("10.00%"));
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Discount All 10%"));
    undo()->trigger();
    EXPECT_EQ(totals(), QStringList({ "$15.00", "$0.00", "0.00%" }));
    EXPECT_EQ(quoteCell(1, 2), QStringLiteral("$12.50"));
}

TEST_F(UndoQuoteWindowTest, RemoveAllIsUndoneWithItsLinesAndTotals)
{
    addToQuote(1);
    addToQuote(0);
    const QStringList before = totals();
    action("mnuquoteclear")->trigger();
    EXPECT_EQ(totals(), QStringList({ "", "", "" }));
    ctrlZ();
    EXPECT_EQ(quoteCell(0, 0), QStringLiteral("B-200"));
    EXPECT_EQ(quoteCell(1, 0), QStringLiteral("A-100"));
    EXPECT_EQ(totals(), before);
    redo()->trigger();
    EXPECT_EQ(totals(), QStringList({ "", "", "" })) << "redone as the user did it";
    EXPECT_EQ(quoteCell(0, 0), QString());
}

TEST_F(UndoQuoteWindowTest, UndoingTheFirstLineEmptiesTheTotalsAsAtTheStart)
{
    EXPECT_EQ(totals(), QStringList({ "", "", "" }));
    addToQuote(1);
    EXPECT_NE(totals(), QStringList({ "", "", "" }));
    ctrlZ();
    EXPECT_EQ(quoteCell(0, 0), QString());
    EXPECT_EQ(totals(), QStringList({ "", "", "" }));
}

TEST_F(UndoQuoteWindowTest, RemovingALineAndResettingPricesAreStepsToo)
{
    addToQuote(1);
    addToQuote(0);
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, 0));
    action("mnuQuoteDelete")->trigger();
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Remove from Quote B-200"));
    undo()->trigger();
    EXPECT_EQ(quoteCell(0, 0), QStringLiteral("B-200"));
    typeIntoQuote(1, 2, QStringLiteral("10"));
    action("mnuResetPrices")->trigger();
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Reset Prices"));
    undo()->trigger();
    EXPECT_EQ(quoteCell(1, 2), QStringLiteral("$10.00"));
}

TEST_F(UndoQuoteWindowTest, AWholeImportIsOneStep)
{
    WorkbookReaderOptions reader;
    reader.program = QStringLiteral(TARNWICK_TEST_READER);
    reader.arguments = QStringList { QStringLiteral("--read-workbook") };
    window->exchange().setReaderOptions(reader);
    fakes->prompts.answerMessage(MsgResult::Yes);
    fakes->fileDialogs.answer(FileDialogResult {
        QDir(QStringLiteral(TARNWICK_WORKBOOKS)).filePath(QStringLiteral("sample.xlsx")), 3 });
    action("mnuFileSave")->trigger();
    const QByteArray before = folder.readFile(QStringLiteral("twdata.dat"));
    action("mnuFileOpen")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([this] { return window->exchange().importWindow(); }, 20000));
    const QPointer<FrmUpdate> update = window->exchange().importWindow();
    update->findChild<QComboBox *>(QStringLiteral("CmbField(0)"))->setCurrentIndex(0);
    update->findChild<QComboBox *>(QStringLiteral("CmbField(1)"))->setCurrentIndex(1);
    QTest::mouseClick(update->findChild<QPushButton *>(QStringLiteral("CmdOK")), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !update; }, 10000));
    EXPECT_EQ(module->AllProducts().Count(), 7);
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Import (4 added)"));
    EXPECT_EQ(window->history().count(), 1) << "one step, whatever its size";

    undo()->trigger();
    EXPECT_EQ(module->AllProducts().Count(), 3);
    EXPECT_EQ(grid->model()->rowCount(), 3);
    redo()->trigger();
    EXPECT_EQ(grid->model()->rowCount(), 7);
    undo()->trigger();
    window->close();
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), before);
}

} // namespace
