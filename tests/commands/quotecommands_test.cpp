// Every kind of step of the quote: done with the quote's own rules, undone to exactly the quote
// before it (the re-pricing that follows a typed quantity included), redone, and announced with
// where the quote grid goes.
#include "historyfixture.h"

#include "catalogue/productrecord.h"
#include "commands/catalogueedits.h"
#include "commands/cellchanges.h"
#include "commands/quoteedits.h"
#include "quotes/quotediscount.h"
#include "quotes/quoteline.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

namespace P = ProductRecord;
namespace Q = QuoteLine;

class QuoteCommandsTest : public HistoryTest
{
protected:
    void SetUp() override
    {
        loadProducts({ { "A-100", "Anchor", "10" }, { "B-200", "Bolt", "4" } });
        catalogue().put(1, P::PricePoint1, Cell("5"));
        catalogue().put(1, P::Price1, Cell("8"));
        QuoteEdits::addProduct(history, {}, 1, QStringLiteral("Screws"));
        QuoteEdits::addProduct(history, {}, 2, QString());
    }

    /// Undoes the newest step (the quote must be as before), then redoes it.
    void expectUndoAndRedo(const Table &before)
    {
        const Table after = quote();
        history.undo();
        EXPECT_TRUE(sameCells(quote(), before));
        history.redo();
        EXPECT_TRUE(sameCells(quote(), after));
    }
};

TEST_F(QuoteCommandsTest, AddingAProductIsAStepThatGoesToTheNewLinesQuantity)
{
    EXPECT_EQ(quoteColumn(Q::PartNumber, 3), QStringList({ "A-100", "B-200", "" }));
    EXPECT_EQ(quote().get(1, Q::Includes), Cell("Screws"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Add to Quote B-200"));
    const QuoteChange added = quoteChanges.back();
    EXPECT_EQ(added.view.row, 2);
    EXPECT_EQ(added.view.column, QuoteGridColumn::Quantity);
    EXPECT_FALSE(history.command(0)->changesCatalogue());
    history.undo();
    EXPECT_EQ(quoteColumn(Q::PartNumber, 3), QStringList({ "A-100", "", "" }));
    EXPECT_TRUE(quoteChanges.back().replayed);
}

TEST_F(QuoteCommandsTest, AQuantityTypedAndTheRepricingThatFollowsAreOneStep)
{
    const Table before = quote();
    ASSERT_TRUE(QuoteEdits::setCell(
        history, { 1, QuoteGridColumn::Quantity, false }, 1, QuoteGridColumn::Quantity, "5"));
    EXPECT_EQ(quote().get(1, Q::UnitPrice), Cell(8.0f)) << "the price point of 5";
    EXPECT_EQ(quote().get(1, Q::ExtendedPrice), Cell(40.0));
    EXPECT_EQ(history.undoText(), QStringLiteral("Change Quantity A-100"));
    expectUndoAndRedo(before);
    EXPECT_EQ(quoteChanges.back().view.row, 1);
}

TEST_F(QuoteCommandsTest, APriceTypedIsKeptAndUndoneWithItsExtendedPrice)
{
    const Table before = quote();
    QuoteEdits::setCell(history, { 2, 2, false }, 2, QuoteGridColumn::Price, "3.5");
    EXPECT_EQ(quote().get(2, Q::UnitPrice), Cell("3.5")) << "kept as typed";
    EXPECT_EQ(quote().get(2, Q::ExtendedPrice), Cell(3.5));
    EXPECT_EQ(history.undoText(), QStringLiteral("Change Price B-200"));
    expectUndoAndRedo(before);
    EXPECT_FALSE(QuoteEdits::setCell(history, {}, 0, 2, "1"));
}

TEST_F(QuoteCommandsTest, RemovingALineHoldsItAndPutsItBack)
{
    const Table before = quote();
    ASSERT_TRUE(QuoteEdits::removeLine(history, { 1, 0, false }, 1));
    EXPECT_EQ(quoteColumn(Q::PartNumber, 2), QStringList({ "B-200", "" }));
    EXPECT_EQ(quote().rowCount(), Q::MaxLines);
    EXPECT_EQ(history.undoText(), QStringLiteral("Remove from Quote A-100"));
    expectUndoAndRedo(before);
}

TEST_F(QuoteCommandsTest, RemoveAllHoldsTheLinesAndEmptiesTheTotals)
{
    const Table before = quote();
    QuoteEdits::removeAll(history, { 2, 3, false });
    EXPECT_EQ(Q::lineCount(quote()), 0);
    EXPECT_TRUE(quoteChanges.back().view.totalsCleared);
    EXPECT_EQ(history.undoText(), QStringLiteral("Remove All Quote Lines"));
    history.undo();
    EXPECT_TRUE(sameCells(quote(), before));
    EXPECT_FALSE(quoteChanges.back().view.totalsCleared);
    EXPECT_EQ(quoteChanges.back().view.row, 2);
    EXPECT_EQ(quoteChanges.back().view.column, 3);
    history.redo();
    const int steps = history.count();
    QuoteEdits::removeAll(history, {});
    EXPECT_EQ(history.count(), steps) << "an empty quote: no step";
}

TEST_F(QuoteCommandsTest, ResetAndBothDiscountsAreStepsOfTheirOwn)
{
    const Table start = quote();
    QuoteEdits::discountAll(history, {}, 0.9f, QStringLiteral("10%"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Discount All 10%"));
    // A single list price less 10 %: the product of two singles, rounded to a single.
    EXPECT_EQ(quote().get(1, Q::UnitPrice), Cell(static_cast<float>(10.0 * double(0.9f))));
    const Table discounted = quote();
    QuoteEdits::discountLine(history, {}, 2, 0.5f, QStringLiteral("50%"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Discount Product B-200 50%"));
    EXPECT_EQ(quote().get(2, Q::UnitPrice), Cell(2.0f));
    QuoteEdits::resetPrices(history, {});
    EXPECT_EQ(history.undoText(), QStringLiteral("Reset Prices"));
    EXPECT_EQ(quote().get(1, Q::UnitPrice), quote().get(1, Q::ListPrice));
    EXPECT_EQ(quote().get(2, Q::UnitPrice), quote().get(2, Q::ListPrice));
    history.undo();
    history.undo();
    EXPECT_TRUE(sameCells(quote(), discounted));
    history.undo();
    EXPECT_TRUE(sameCells(quote(), start));
}

TEST_F(QuoteCommandsTest, AResetThatChangesNothingMakesNoStep)
{
    QuoteEdits::resetPrices(history, {});
    const int steps = history.count();
    QuoteEdits::resetPrices(history, {});
    EXPECT_EQ(history.count(), steps) << "the prices are the list prices already";
}

TEST_F(QuoteCommandsTest, AFullQuoteRefusesTheLineAndMakesNoStep)
{
    for (int k = 3; k <= Q::MaxLines; ++k)
        QuoteEdits::addProduct(history, {}, 2, QString());
    const int steps = history.count();
    const QuoteList::AddLineResult refused = QuoteEdits::addProduct(history, {}, 1, QString());
    EXPECT_EQ(refused.status, QuoteList::AddStatus::QuoteFull);
    EXPECT_EQ(history.count(), steps);
}

TEST_F(QuoteCommandsTest, AWholeQuoteCanBeReplacedAndGotBack)
{
    const Table before = quote();
    Table other(Q::MaxLines, Q::FieldCount);
    other.put(1, Q::PartNumber, Cell("Z-9"));
    ASSERT_TRUE(QuoteEdits::replaceQuote(
        history, {}, { 1, 0, false }, std::move(other), QStringLiteral("Open Quote 7")));
    EXPECT_EQ(quote().get(1, Q::PartNumber), Cell("Z-9"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Open Quote 7"));
    expectUndoAndRedo(before);
}

} // namespace

namespace {

TEST_F(QuoteCommandsTest, LockingAPriceIsAStepAndALockedLineKeepsItsPriceAsTheQuantityChanges)
{
    const Table before = quote();
    ASSERT_TRUE(QuoteEdits::setLocked(history, { 1, QuoteGridColumn::Price, false }, 1, true));
    EXPECT_TRUE(Q::isLocked(quote(), 1));
    EXPECT_EQ(history.undoText(), QStringLiteral("Lock Price A-100"));
    EXPECT_FALSE(QuoteEdits::setLocked(history, {}, 1, true)) << "already locked: no step";
    EXPECT_FALSE(QuoteEdits::setLocked(history, {}, 3, true)) << "no line";
    expectUndoAndRedo(before);

    ASSERT_TRUE(QuoteEdits::setCell(
        history, { 1, QuoteGridColumn::Quantity, false }, 1, QuoteGridColumn::Quantity, "5"));
    EXPECT_EQ(quote().get(1, Q::UnitPrice), Cell(10.0f)) << "locked: the point of 5 is not taken";
    EXPECT_EQ(quote().get(1, Q::ExtendedPrice), Cell(50.0));

    ASSERT_TRUE(QuoteEdits::setLocked(history, {}, 1, false));
    EXPECT_EQ(history.undoText(), QStringLiteral("Unlock Price A-100"));
    EXPECT_FALSE(Q::isLocked(quote(), 1));
}

TEST_F(QuoteCommandsTest, ResetPricesKeepsLockedLinesOrUnlocksThemInOneStep)
{
    QuoteEdits::setCell(history, {}, 1, QuoteGridColumn::Price, "7");
    QuoteEdits::setCell(history, {}, 2, QuoteGridColumn::Price, "3");
    QuoteEdits::setLocked(history, {}, 1, true);
    const Table before = quote();
    QuoteEdits::resetPrices(history, {}, Discount::LockedLines::Keep);
    EXPECT_EQ(quote().get(1, Q::UnitPrice), Cell("7"));
    EXPECT_EQ(quote().get(2, Q::UnitPrice), Cell(4.0f));
    history.undo();
    EXPECT_TRUE(sameCells(quote(), before));
    QuoteEdits::resetPrices(history, {}, Discount::LockedLines::Unlock);
    EXPECT_EQ(quote().get(1, Q::UnitPrice), Cell(10.0f));
    EXPECT_FALSE(Q::isLocked(quote(), 1));
    EXPECT_EQ(history.undoText(), QStringLiteral("Reset Prices"));
    expectUndoAndRedo(before);
}

} // namespace

namespace {

TEST_F(QuoteCommandsTest, QuantitiesKeptWithALineAreOneStep)
{
    const Table before = quote();
    ASSERT_TRUE(QuoteEdits::setQuantities(history, {}, 2, { 10, 100 }));
    EXPECT_EQ(quote().get(2, Q::Quantities), Cell("10;100"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Price at Quantities B-200"));
    EXPECT_FALSE(QuoteEdits::setQuantities(history, {}, 2, { 10, 100 })) << "nothing changes";
    EXPECT_FALSE(QuoteEdits::setQuantities(history, {}, 5, { 10 })) << "no line";
    expectUndoAndRedo(before);
    ASSERT_TRUE(QuoteEdits::setQuantities(history, {}, 2, {}));
    EXPECT_TRUE(quote().get(2, Q::Quantities).isEmpty());
}

} // namespace
