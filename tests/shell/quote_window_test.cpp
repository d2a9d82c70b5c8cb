// The quote on the real main window: adding products from the product grid's menu, typing a
// quantity into the quote grid, discounts through their window, reset, remove and clear, and
// the price schedule of the current product.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "products/ui/frmdiscount.h"
#include "products/ui/frmdiscountprod.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"
#include "shell/columnwidths.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"
#include "shell/productgridcontroller.h"
#include "shell/quotecontroller.h"

#include <QAction>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class QuoteWindowTest : public SampleWindowTest
{
protected:
    void SetUp() override
    {
        SampleWindowTest::SetUp();
        quoteGrid = window->ui().GrdQuote;
    }

    /// Right-clicks a product and chooses "Add to &Quote".
    void addToQuote(int gridRow)
    {
        const QRect cell = grid->visualRect(grid->model()->index(gridRow, 1));
        QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, cell.center());
        window->actions().mnuMainGrid()->hide();
        action("mnuGrdMainQuote")->trigger();
    }
    /// Types into a quote cell with the keyboard: F2, the text, Enter.
    void typeIntoQuote(int row, int column, const QString &text)
    {
        editGridCell(quoteGrid, row, column, text);
    }
    QString quoteCell(int row, int column) const { return gridCellText(quoteGrid, row, column); }
    QStringList totals() const { return quoteTotalBoxes(*window); }
    void applyDiscount(DiscountForm *form, const QString &choice)
    {
        ASSERT_NE(form, nullptr);
        auto *combo = form->findChild<QComboBox *>(QStringLiteral("CmboDisc"));
        combo->setCurrentIndex(combo->findText(choice));
        QTest::mouseClick(
            form->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::LeftButton);
    }

    GridView *quoteGrid = nullptr;
};

// "Add to Quote" while a quantity is still being typed into a quote line takes that quantity
// in first, as every other command does.
TEST_F(QuoteWindowTest, AddToQuoteKeepsAQuantityStillBeingTyped)
{
    addToQuote(0);
    addToQuote(1);
    const QModelIndex quantity = quoteGrid->model()->index(0, QuoteGridColumn::Quantity);
    quoteGrid->setCurrentIndex(quantity);
    quoteGrid->edit(quantity);
    auto *editor = qobject_cast<QLineEdit *>(quoteGrid->openEditor());
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("25"));
    goToRow(2);
    action("mnuGrdMainQuote")->trigger();
    EXPECT_EQ(quoteCell(0, QuoteGridColumn::Quantity), QStringLiteral("25"));
    EXPECT_EQ(QuoteLine::lineCount(module->QuoteTable()), 3);
}

TEST_F(QuoteWindowTest, TheWholeQuoteFlow)
{
    addToQuote(1); // B-200 Bolt, list 2.50, 100 or more at 2.00
    EXPECT_EQ(window->ui().SSTabmain->currentIndex(), 1);
    EXPECT_EQ(quoteCell(0, 0), QStringLiteral("B-200"));
    EXPECT_EQ(quoteCell(0, 1), QStringLiteral("Bolt"));
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$2.50"));
    EXPECT_EQ(quoteCell(0, 3), QStringLiteral("1"));
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$2.50"));
    EXPECT_EQ(totals(), QStringList({ "$2.50", "$0.00", "0.00%" }));

    typeIntoQuote(0, 3, QStringLiteral("100"));
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$2.00"));
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$200.00"));
    EXPECT_EQ(totals(), QStringList({ "$200.00", "$50.00", "20.00%" }));

    action("mnudiscountAll")->trigger();
    applyDiscount(window->findChild<FrmDiscount *>(), QStringLiteral("10%"));
    // 2.50 × single(0.90) = 2.2499999…; 100 of them round to 225.00 against a list of 250.00.
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$225.00"));
    EXPECT_EQ(totals(), QStringList({ "$225.00", "$25.00", "10.00%" }));

    action("mnuResetPrices")->trigger();
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$2.50"));
    EXPECT_EQ(totals(), QStringList({ "$250.00", "$0.00", "0.00%" }));

    addToQuote(0); // A-100 Anchor 12.50
    EXPECT_EQ(totals(), QStringList({ "$262.50", "$0.00", "0.00%" }));
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, 0));
    action("mnuQuoteDelete")->trigger();
    EXPECT_EQ(quoteCell(0, 0), QStringLiteral("A-100"));
    EXPECT_EQ(totals(), QStringList({ "$12.50", "$0.00", "0.00%" }));

    action("mnuquoteclear")->trigger();
    EXPECT_EQ(quoteCell(0, 0), QString());
    EXPECT_EQ(totals(), QStringList({ "", "", "" }));
}

TEST_F(QuoteWindowTest, ATypedPriceIsKeptUntilTheQuantityChanges)
{
    addToQuote(1);
    typeIntoQuote(0, 2, QStringLiteral("1.75"));
    typeIntoQuote(0, 1, QStringLiteral("Bolt, zinc"));
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$1.75"));
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$1.75"));
    typeIntoQuote(0, 3, QStringLiteral("2"));
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$2.50"));
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$5.00"));
}

TEST_F(QuoteWindowTest, AQuantityThatIsNoNumberIsChargedNothingAndSaid)
{
    addToQuote(0);
    typeIntoQuote(0, 3, QStringLiteral("1,5"));
    EXPECT_EQ(quoteCell(0, 3), QStringLiteral("1,5"));
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$0.00"));
    const QString said = QStringLiteral("Line 1: the quantity \"1,5\" is no number; the line is "
                                        "charged $0.00 until a whole number is typed.");
    EXPECT_EQ(window->ui().sbPanel1->text(), said);
    // Said for as long as the quote holds it, whatever else is typed meanwhile.
    addToQuote(1);
    typeIntoQuote(1, 3, QStringLiteral("3"));
    EXPECT_EQ(window->ui().sbPanel1->text(), said);
    typeIntoQuote(0, 3, QStringLiteral("2"));
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$25.00"));
    EXPECT_EQ(window->ui().sbPanel1->text(), QString()) << "no longer holds";
}

// The moment the quote leaves Tarnwick (copied, saved, as a PDF, sent) is the moment a line
// charged nothing must not go unmentioned: the message of the copy goes on to say it.
TEST_F(QuoteWindowTest, CopyingAQuoteWithALineChargedNothingSaysSoInTheSameMessage)
{
    addToQuote(0);
    addToQuote(1);
    typeIntoQuote(1, 3, QStringLiteral("ten"));
    const QString said = QStringLiteral("Line 2: the quantity \"ten\" is no number; the line is "
                                        "charged $0.00 until a whole number is typed.");
    window->ui().sbPanel1->setText(QStringLiteral("31 Products")); // a hint took its place
    action("mnuquotecopy")->trigger();
    EXPECT_EQ(
        window->ui().sbPanel1->text(), QStringLiteral("Quote copied to the clipboard. ") + said);
    typeIntoQuote(1, 3, QStringLiteral("10"));
    EXPECT_EQ(window->ui().sbPanel1->text(), QString()) << "taken back once it no longer holds";
    action("mnuquotecopy")->trigger();
    EXPECT_EQ(window->ui().sbPanel1->text(), QStringLiteral("Quote copied to the clipboard."));
}

TEST_F(QuoteWindowTest, AFractionalQuantityShowsTheWholeNumberItIsCharged)
{
    addToQuote(1); // B-200 Bolt, list 2.50
    typeIntoQuote(0, 3, QStringLiteral("2.5"));
    EXPECT_EQ(quoteCell(0, 3), QStringLiteral("2"));
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$5.00"));
    EXPECT_EQ(totals(), QStringList({ "$5.00", "$0.00", "0.00%" }));
}

TEST_F(QuoteWindowTest, AmountsWiderThanTheirColumnsWidenThemAndTheProductGivesWay)
{
    window->resize(1280, 800);
    addToQuote(1);
    const int product = quoteGrid->columnWidth(QuoteGridColumn::Product);
    typeIntoQuote(0, 3, QStringLiteral("80000"));
    typeIntoQuote(0, 2, QStringLiteral("1250000"));
    for (const int column :
        { QuoteGridColumn::Price, QuoteGridColumn::Quantity, QuoteGridColumn::ExtPrice }) {
        const QString text = quoteCell(0, column);
        EXPECT_GT(quoteGrid->columnWidth(column), quoteGrid->fontMetrics().horizontalAdvance(text))
            << text.toStdString() << " is not cut";
    }
    EXPECT_EQ(quoteCell(0, 4), QStringLiteral("$100,000,000,000.00"));
    EXPECT_LT(quoteGrid->columnWidth(QuoteGridColumn::Product), product);
}

// A price of 31 digits (a damaged file, a pasted row of digits) widens neither amount column
// beyond the largest amount below a trillion: every column stays in view for the session.
TEST_F(QuoteWindowTest, AnAbsurdAmountWidensItsColumnNoFurtherThanTheLargestRealOne)
{
    window->resize(1280, 800);
    addToQuote(1);
    addToQuote(0);
    typeIntoQuote(0, 2, QStringLiteral("1e30"));
    typeIntoQuote(1, 2, QStringLiteral("1e30"));
    typeIntoQuote(1, 3, QStringLiteral("3"));
    ASSERT_GT(quoteCell(0, 2).size(), 30);
    const int largest = ColumnWidths::largestAmountWidth(quoteGrid, module->locale());
    for (const int column : { QuoteGridColumn::Price, QuoteGridColumn::ExtPrice })
        EXPECT_LE(quoteGrid->columnWidth(column), std::max(largest, 1)) << column;
    const int last = QuoteGridColumn::Count - 1;
    EXPECT_LE(quoteGrid->columnViewportPosition(last) + quoteGrid->columnWidth(last),
        quoteGrid->viewport()->width())
        << "the extended price in view";
    EXPECT_GE(quoteGrid->columnWidth(QuoteGridColumn::Product),
        ColumnWidths::captionWidth(quoteGrid, QuoteGridColumn::Product));
}

TEST_F(QuoteWindowTest, DiscountingOneLineUsesItsWindowAndTheTwoPercentEntryResets)
{
    addToQuote(0);
    addToQuote(1);
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(1, 0));
    action("mnuDiscprod")->trigger();
    auto *form = window->findChild<FrmDiscountprod *>();
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(form->windowTitle(), QStringLiteral("Discount"));
    applyDiscount(form, QStringLiteral("20%"));
    EXPECT_EQ(quoteCell(0, 2), QStringLiteral("$12.50"));
    EXPECT_EQ(quoteCell(1, 2), QStringLiteral("$2.00"));

    action("mnuDiscprod")->trigger();
    applyDiscount(window->findChild<FrmDiscountprod *>(), QStringLiteral("2%'"));
    EXPECT_EQ(quoteCell(1, 2), QStringLiteral("$2.50"));
}

TEST_F(QuoteWindowTest, AFullQuoteRefusesTheNextProductAndStaysUnchanged)
{
    for (int i = 0; i < 250; ++i)
        action("mnuGrdMainQuote")->trigger();
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_EQ(window->ui().TxtTotal->text(), QStringLiteral("$3,125.00"));
    action("mnuGrdMainQuote")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    EXPECT_EQ(fakes->prompts.shown()[0].text, QuoteList::quoteFullMessage());
    EXPECT_EQ(fakes->prompts.shown()[0].style, MsgStyle::Exclamation);
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Quote"));
    EXPECT_EQ(module->QuoteTable().rowCount(), 250);
    EXPECT_EQ(window->ui().TxtTotal->text(), QStringLiteral("$3,125.00"));
}

TEST_F(QuoteWindowTest, TheQuoteGridGivesItsHintAndOpensItsMenuOnARightClick)
{
    addToQuote(0);
    QTest::mouseMove(quoteGrid->viewport(), QPoint(10, 10));
    EXPECT_EQ(
        window->ui().sbPanel1->text(), QStringLiteral("Right click on products for options."));
    const QRect cell = quoteGrid->visualRect(quoteGrid->model()->index(0, 1));
    QTest::mouseClick(quoteGrid->viewport(), Qt::RightButton, {}, cell.center());
    EXPECT_TRUE(window->actions().mnuQuote()->isVisible());
    window->actions().mnuQuote()->hide();
}

TEST_F(QuoteWindowTest, TheMenuKeyOpensTheQuoteMenuForTheCurrentLine)
{
    addToQuote(0);
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
    QApplication::sendEvent(quoteGrid, &menuKey);
    EXPECT_TRUE(window->actions().mnuQuote()->isVisible());
    window->actions().mnuQuote()->hide();
}

TEST_F(QuoteWindowTest, PricePointsAreEditedInEditModeAndStoredSortedWhenTheRowIsLeft)
{
    QTableView *schedule = window->ui().PriceSchedule;
    window->actions().button(QStringLiteral("Edit"))->trigger();
    grid->setCurrentIndex(grid->model()->index(1, 0)); // B-200: 1 at 2.50, 100 at 2.00
    EXPECT_EQ(schedule->model()->index(1, 0).data().toString(), QStringLiteral("100"));
    EXPECT_EQ(schedule->model()->index(1, 1).data().toString(), QStringLiteral("$2.00"));
    schedule->model()->setData(schedule->model()->index(2, 0), QStringLiteral("10"));
    schedule->model()->setData(schedule->model()->index(2, 1), QStringLiteral("2.25"));
    grid->setCurrentIndex(grid->model()->index(2, 0));
    Table &catalogue = module->Catalogue();
    EXPECT_EQ(catalogue.get(2, 6).asText(), QStringLiteral("1"));
    EXPECT_EQ(catalogue.get(2, 8).asText(), QStringLiteral("10"));
    EXPECT_EQ(catalogue.get(2, 10).asText(), QStringLiteral("100"));
    EXPECT_TRUE(catalogue.get(2, 12).isBlank());
}

TEST_F(QuoteWindowTest, ClearEmptiesTheScheduleAndLeavingTheRowStoresEmptyPoints)
{
    window->actions().button(QStringLiteral("Edit"))->trigger();
    grid->setCurrentIndex(grid->model()->index(1, 0));
    action("mnuclearprices")->trigger();
    EXPECT_EQ(window->ui().PriceSchedule->model()->index(0, 0).data().toString(), QString());
    grid->setCurrentIndex(grid->model()->index(0, 0));
    EXPECT_TRUE(module->Catalogue().get(2, 6).isBlank());
    EXPECT_TRUE(module->Catalogue().get(2, 8).isBlank());
}

TEST_F(QuoteWindowTest, LeavingThePriceBoxFormatsItsTextAsCurrency)
{
    window->actions().button(QStringLiteral("Edit"))->trigger();
    QLineEdit *price = window->ui().TxtPrice;
    price->setText(QStringLiteral("1234.5"));
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(price, &out);
    EXPECT_EQ(price->text(), QStringLiteral("$1,234.50"));
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
    price->setText(QStringLiteral("ask"));
    QApplication::sendEvent(price, &out);
    EXPECT_EQ(price->text(), QStringLiteral("ask"));
    // Kept as typed, and said: a quote would charge nothing for it.
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("The list price \"ask\" is no number: a quote charges $0.00 for this "
                       "product until it is one, such as 12.50."));
}

} // namespace
