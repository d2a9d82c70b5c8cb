// Typing a price list in by keyboard on the real main window: what is being typed belongs to
// the product it was typed for, whatever command comes next (Add, Add to Quote, a close by the
// title bar), the keys of the list price box go on along the Price column, and a product
// without a part number or with another product's number is said while it is worked on and at
// a save.
#include "shellfixture.h"

#include "catalogue/productrecord.h"
#include "shell/mainwindowactions.h"
#include "shell/onelineboxes.h"

#include <QAction>
#include <QClipboard>
#include <QDialog>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTest>
#include <QVBoxLayout>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class TypingWindowTest : public ActiveWindowTest
{
protected:
    void SetUp() override
    {
        ActiveWindowTest::SetUp();
        window->ui().SSTabmain->setCurrentIndex(0);
        button("Edit")->trigger();
        ASSERT_TRUE(button("Edit")->isChecked());
    }

    void focus(QWidget *control) const
    {
        control->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::focusWidget() == control; }));
    }
    QString text(int row, int field) { return catalogue().get(row, field).asText(); }
    QString status() const { return window->ui().sbPanel1->text(); }
    QLineEdit *openCellEditor(int gridRow, int column)
    {
        grid->setCurrentIndex(grid->model()->index(gridRow, column));
        QTest::keyClick(grid, Qt::Key_F2);
        return grid->viewport()->findChild<QLineEdit *>();
    }
};

TEST_F(TypingWindowTest, NotesAndIncludesBeingTypedStayWithTheirProductWhenAnotherIsAdded)
{
    for (QPlainTextEdit *box : { window->ui().Txtnotes, window->ui().Txtincludes }) {
        goToRow(0);
        const int field =
            box == window->ui().Txtnotes ? ProductRecord::Notes : ProductRecord::Includes;
        focus(box);
        box->selectAll();
        QTest::keyClicks(box, QStringLiteral("Typed for the first"));
        action("mnuAddProd")->trigger();
        // The new product is row 1; the one typed for moved down to row 2.
        EXPECT_EQ(text(2, field), QStringLiteral("Typed for the first"));
        EXPECT_EQ(text(1, field), QString()) << "the new product starts empty";
        EXPECT_EQ(box->toPlainText(), QString());
        // Typing the new product's list price and leaving it stores nothing else into it.
        focus(window->ui().TxtPrice);
        QTest::keyClicks(window->ui().TxtPrice, QStringLiteral("6"));
        focus(grid);
        EXPECT_EQ(text(1, field), QString());
        EXPECT_EQ(box->toPlainText(), QString());
    }
}

TEST_F(TypingWindowTest, ANameBeingTypedIsKeptWhenTheWindowIsClosedByItsTitleBar)
{
    QLineEdit *editor = openCellEditor(0, 1);
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("Closing name"));
    // The title bar's button closes the window without taking the keyboard from the cell.
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("Closing name"));
}

TEST_F(TypingWindowTest, AddToQuoteTakesTheListPriceAndTheNameBeingTyped)
{
    goToRow(0); // A-100 Anchor, $12.50
    focus(window->ui().TxtPrice);
    window->ui().TxtPrice->selectAll();
    QTest::keyClicks(window->ui().TxtPrice, QStringLiteral("40"));
    action("mnuGrdMainQuote")->trigger();
    EXPECT_EQ(gridCellText(quoteGrid, 0, 2), QStringLiteral("$40.00"));
    EXPECT_EQ(quoteTotalBoxes(*window), QStringList({ "$40.00", "$0.00", "0.00%" }))
        << "no discount against the list price as it was";

    window->ui().SSTabmain->setCurrentIndex(0);
    QLineEdit *editor = openCellEditor(1, 1); // B-200 Bolt
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("Fresh name"));
    action("mnuGrdMainQuote")->trigger();
    EXPECT_EQ(gridCellText(quoteGrid, 1, 1), QStringLiteral("Fresh name"));
}

TEST_F(TypingWindowTest, EnterUpAndDownInTheListPriceBoxGoOnAlongThePriceColumn)
{
    QLineEdit *price = window->ui().TxtPrice;
    const int priceColumn = 2;
    grid->setCurrentIndex(grid->model()->index(0, priceColumn));
    focus(grid);
    // Keys go where the keyboard is: the first one on the cell moves it into the box.
    QTest::keyClick(grid, Qt::Key_1);
    EXPECT_EQ(QApplication::focusWidget(), price) << "a price typed on the cell goes to the box";
    QTest::keyClicks(price, QStringLiteral(".11"));
    QTest::keyClick(price, Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), grid);
    EXPECT_EQ(grid->currentIndex().row(), 1);
    EXPECT_EQ(grid->currentIndex().column(), priceColumn);
    QTest::keyClick(grid, Qt::Key_2);
    QTest::keyClicks(price, QStringLiteral(".22"));
    QTest::keyClick(price, Qt::Key_Return);
    EXPECT_EQ(grid->currentIndex().row(), 1) << "Enter stays on the product";
    QTest::keyClick(grid, Qt::Key_Down);
    QTest::keyClick(grid, Qt::Key_3);
    QTest::keyClicks(price, QStringLiteral(".33"));
    QTest::keyClick(price, Qt::Key_Up);
    EXPECT_EQ(grid->currentIndex().row(), 1);
    EXPECT_EQ(text(1, ProductRecord::Price), QStringLiteral("$1.11"));
    EXPECT_EQ(text(2, ProductRecord::Price), QStringLiteral("$2.22"));
    EXPECT_EQ(text(3, ProductRecord::Price), QStringLiteral("$3.33"));
}

TEST_F(TypingWindowTest, TabAfterAPriceTypedOnTheGridGoesOnInTheGrid)
{
    QLineEdit *price = window->ui().TxtPrice;
    const int priceColumn = 2;
    grid->setCurrentIndex(grid->model()->index(0, priceColumn));
    focus(grid);
    QTest::keyClick(grid, Qt::Key_5);
    ASSERT_EQ(QApplication::focusWidget(), price);
    QTest::keyClick(price, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), grid) << "not into the price schedule";
    EXPECT_EQ(grid->currentIndex().row(), 0);
    EXPECT_EQ(grid->currentIndex().column(), priceColumn + 1);
    EXPECT_EQ(text(1, ProductRecord::Price), QStringLiteral("$5.00"));
    grid->setCurrentIndex(grid->model()->index(1, priceColumn));
    QTest::keyClick(grid, Qt::Key_6);
    QTest::keyClick(price, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), grid);
    EXPECT_EQ(grid->currentIndex().column(), priceColumn - 1);
    EXPECT_EQ(text(2, ProductRecord::Price), QStringLiteral("$6.00"));
    // Gone to by the user, the box hands Tab on to the next control, the schedule.
    focus(price);
    QTest::keyClick(price, Qt::Key_Tab);
    EXPECT_NE(QApplication::focusWidget(), grid);
}

TEST_F(TypingWindowTest, AProductWithoutAPartNumberIsSaidWhileWorkedOnAndAtASave)
{
    action("mnuAddProd")->trigger(); // row 1, empty
    EXPECT_EQ(status(), QString()) << "a fresh row is no product yet";
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(0, 1), QStringLiteral("Nameless")));
    EXPECT_TRUE(status().startsWith(QStringLiteral("This product has no part number")))
        << status().toStdString();
    action("mnuFileSave")->trigger();
    EXPECT_EQ(status(),
        QStringLiteral(
            "Catalogue saved, without 1 product that has no part number: type one to keep it."));
    EXPECT_FALSE(folder.readFile(QStringLiteral("twdata.dat")).contains("Nameless"));

    // Given a part number, the next save keeps it.
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(0, 0), QStringLiteral("N-1")));
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("Nameless"));
}

// The last product, its part number cleared and saved without it, stays in the catalogue for
// the part number to be typed again: a sort, a refresh and the next save keep it.
TEST_F(TypingWindowTest, ALastProductSavedWithoutItsPartNumberStaysToBeGivenOneAgain)
{
    const int rows = grid->model()->rowCount();
    const QModelIndex last = grid->model()->index(rows - 1, 0);
    const QString part = last.data().toString();
    const QString name = grid->model()->index(rows - 1, 1).data().toString();
    ASSERT_FALSE(part.isEmpty());
    ASSERT_TRUE(grid->model()->setData(last, QString()));
    action("mnuFileSave")->trigger();
    ASSERT_EQ(status(),
        QStringLiteral(
            "Catalogue saved, without 1 product that has no part number: type one to keep it."));
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(rows - 1, 0), part));
    action("mnuViewRefresh")->trigger();
    ASSERT_EQ(grid->model()->rowCount(), rows);
    QStringList parts;
    for (int row = 0; row < rows; ++row)
        parts << grid->model()->index(row, 0).data().toString();
    EXPECT_TRUE(parts.contains(part)) << parts.join(QLatin1Char(' ')).toStdString();
    action("mnuFileSave")->trigger();
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains(name.toLatin1()));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")).count("\x7f\x7f\x7f\r\n"), rows);
}

TEST_F(TypingWindowTest, TheCloseLeavesProductsWithoutAPartNumberOutOfTheFile)
{
    action("mnuAddProd")->trigger();
    focus(window->ui().TxtPrice);
    QTest::keyClicks(window->ui().TxtPrice, QStringLiteral("6"));
    focus(grid);
    goToRow(1);
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(fakes->prompts.shown().empty());
    // Every line of the file ends with a field's end mark and CR LF: three products.
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")).count("\x7f\x7f\x7f\r\n"), 3);
}

TEST_F(TypingWindowTest, AProductWithoutAPartNumberIsKeptSafeAgainstACrash)
{
    action("mnuAddProd")->trigger();
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(0, 1), QStringLiteral("Nameless")));
    action("mnuAddProd")->trigger(); // and one left empty, which is no product
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return folder.readFile(RecoveryFile).contains("Nameless"); }, 5000));
    fakes->prompts.answerMessage(MsgResult::Yes); // restore the changes
    restart(); // the run ended without a close
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_TRUE(fakes->prompts.shown().front().text.endsWith(QStringLiteral("1 added, 0 deleted.")))
        << fakes->prompts.shown().front().text.toStdString();
    const Table &restored = module->Catalogue();
    ASSERT_EQ(module->AllProducts().Count(), 4);
    int nameless = 0;
    for (int row = 1; row <= module->AllProducts().Count(); ++row)
        nameless += restored.get(row, ProductRecord::ProductName).asText() == "Nameless" ? 1 : 0;
    EXPECT_EQ(nameless, 1);
    EXPECT_TRUE(mainWindow->close());
}

TEST_F(TypingWindowTest, AnotherProductsPartNumberIsSaidAgainAtEveryChangeOfTheProduct)
{
    goToRow(2); // C-300 Clamp
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(2, 0), QStringLiteral("A-100")));
    const QString taken = status();
    ASSERT_TRUE(taken.startsWith(QStringLiteral("Part number A-100 is already used by")));
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(2, 1), QStringLiteral("Clamp, big")));
    EXPECT_EQ(status(), taken) << "typing the name next does not hide it";
    focus(window->ui().Txtnotes);
    QTest::keyClicks(window->ui().Txtnotes, QStringLiteral("Steel"));
    focus(grid);
    EXPECT_EQ(status(), taken);
}

TEST_F(TypingWindowTest, PastedLineBreaksAndTabsBecomeBlanksInEveryOneLineBox)
{
    QLineEdit *price = window->ui().TxtPrice;
    focus(price);
    price->selectAll();
    QApplication::clipboard()->setText(QStringLiteral("1\n2\r\n3\n\n"));
    QTest::keySequence(price, QKeySequence::Paste);
    EXPECT_EQ(price->text(), QStringLiteral("1 2 3"));

    // A box of any window the program opens, as the find box or the customer's name.
    QDialog dialog(window);
    auto *customer = new QLineEdit(&dialog);
    auto *password = new QLineEdit(&dialog);
    password->setEchoMode(QLineEdit::Password);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(customer);
    layout->addWidget(password);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    QApplication::clipboard()->setText(QStringLiteral("Jane Doe\r\nPurchasing\tEast\r\n"));
    customer->setFocus();
    customer->paste();
    EXPECT_EQ(customer->text(), QStringLiteral("Jane Doe Purchasing East"));
    EXPECT_EQ(customer->cursorPosition(), customer->text().size());
    password->paste();
    EXPECT_EQ(password->text(), QStringLiteral("Jane Doe\r\nPurchasing\tEast\r\n"))
        << "a password is taken as it comes";
}

TEST(OneLineBoxesText, TheTrailingLineBreakGoesOtherBreaksAndTabsBecomeBlanks)
{
    EXPECT_EQ(OneLineBoxes::oneLine(QStringLiteral("17.95\r\n")), QStringLiteral("17.95"));
    EXPECT_EQ(
        OneLineBoxes::oneLine(QStringLiteral("a\r\nb\nc\rd\te")), QStringLiteral("a b c d e"));
    EXPECT_EQ(OneLineBoxes::oneLine(QStringLiteral("\n\nx")), QStringLiteral("  x"));
    EXPECT_EQ(OneLineBoxes::oneLine(QString()), QString());
}

// Line ends that are not CR or LF: Unicode's line and paragraph separators (pasted from a web
// page or a PDF), NEL, and a word processor's line break (VT) and page break (FF).
TEST(OneLineBoxesText, EveryKindOfLineEndBecomesABlank)
{
    EXPECT_EQ(
        OneLineBoxes::oneLine(QStringLiteral("Ay\u015Fe Y\u0131lmaz\u2028Ba\u011Fdat Cd. 12")),
        QStringLiteral("Ay\u015Fe Y\u0131lmaz Ba\u011Fdat Cd. 12"));
    EXPECT_EQ(OneLineBoxes::oneLine(QStringLiteral("a\u2029b\u0085c\u000Bd\u000Ce")),
        QStringLiteral("a b c d e"));
    EXPECT_EQ(OneLineBoxes::oneLine(QStringLiteral("ACME\u2029")), QStringLiteral("ACME"));
}

TEST_F(TypingWindowTest, ALetterOfADeadKeyTypedFirstIntoACellOpensItsEditorAndGoesIn)
{
    for (GridView *view : { grid, quoteGrid }) {
        if (view == quoteGrid) {
            goToRow(1); // B-200 Bolt
            action("mnuGrdMainQuote")->trigger();
            window->ui().SSTabmain->setCurrentIndex(1);
        }
        view->setCurrentIndex(view->model()->index(0, 1));
        focus(view);
        ASSERT_FALSE(view->isEditing());
        // A dead key and e: the desktop's input method hands over the finished letter.
        QInputMethodEvent composed;
        composed.setCommitString(QStringLiteral("é"));
        QApplication::sendEvent(view, &composed);
        ASSERT_TRUE(view->isEditing());
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("clair"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        ASSERT_TRUE(QTest::qWaitFor([view] { return !view->isEditing(); }));
        EXPECT_EQ(gridCellText(view, 0, 1), QStringLiteral("éclair"));
    }
    EXPECT_EQ(text(1, ProductRecord::ProductName), QStringLiteral("éclair"));
}

} // namespace
