// How each quote line's unit price came about, today's catalogue prices of a reopened quote,
// and the quote's lines replaced at once (opening a quote, File → New).
#include "quotefixture.h"

#include "catalogue/productrecord.h"
#include "products/discount.h"
#include "quotes/pricesource.h"
#include "quotes/quotediscount.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class PriceSourceTest : public QuoteFixture
{
protected:
    PriceSource source(int row) const { return PriceSources::infer(quote, row, catalogue, locale); }
};

TEST_F(PriceSourceTest, AnAddedLineIsAtListPrice)
{
    const int row = add(QStringLiteral("A-100"));
    EXPECT_EQ(source(row), PriceSource::ListPrice);
}

TEST_F(PriceSourceTest, AQuantityThatReachesAPricePointTakesItsPrice)
{
    const int row = add(QStringLiteral("A-100"));
    typeQuantity(row, QStringLiteral("10"));
    EXPECT_EQ(source(row), PriceSource::PricePoint);
    typeQuantity(row, QStringLiteral("9"));
    EXPECT_EQ(source(row), PriceSource::ListPrice);
}

TEST_F(PriceSourceTest, EveryDiscountRateIsADiscount)
{
    const int row = add(QStringLiteral("C-300"));
    for (const QString &choice : Discount::choices()) {
        Discount::applyToLine(quote, row, Discount::multiplierFor(choice), locale);
        const PriceSource expected =
            Discount::rateOf(choice) == 0.0f ? PriceSource::ListPrice : PriceSource::Discount;
        EXPECT_EQ(source(row), expected) << choice.toStdString();
    }
}

TEST_F(PriceSourceTest, ATypedPriceIsTyped)
{
    const int row = add(QStringLiteral("A-100"));
    typePrice(row, QStringLiteral("9.99"));
    EXPECT_EQ(source(row), PriceSource::Typed);
    typePrice(row, QStringLiteral("not a price"));
    EXPECT_EQ(source(row), PriceSource::Typed);
}

// A reopened quote's lines whose products the catalogue no longer holds, said once opened.
TEST_F(PriceSourceTest, LinesOfProductsNoLongerInTheCatalogueAreFound)
{
    add(QStringLiteral("A-100"));
    add(QStringLiteral("B-200"));
    add(QStringLiteral("C-300"));
    add(QStringLiteral("A-100"));
    EXPECT_TRUE(PriceSources::pricedLinesWithoutProduct(quote, catalogue, locale).isEmpty());
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        if (catalogue.get(row, ProductRecord::PartNumber) == Cell("A-100"))
            catalogue.put(row, ProductRecord::PartNumber, Cell("A-101"));
    }
    EXPECT_EQ(
        PriceSources::pricedLinesWithoutProduct(quote, catalogue, locale), (QList<int> { 1, 4 }));
    catalogue.redimPreserve(0, catalogue.fieldCount());
    EXPECT_EQ(PriceSources::pricedLinesWithoutProduct(quote, catalogue, locale),
        (QList<int> { 1, 2, 3, 4 }));
    // A quantity typed on a line whose product is gone prices it at 0, which another notice
    // names: the line keeps no price of its own any more.
    typeQuantity(2, QStringLiteral("7"));
    EXPECT_EQ(PriceSources::pricedLinesWithoutProduct(quote, catalogue, locale),
        (QList<int> { 1, 3, 4 }));
}

TEST_F(PriceSourceTest, StoredNamesGoBothWays)
{
    for (const PriceSource source : { PriceSource::ListPrice, PriceSource::PricePoint,
             PriceSource::Discount, PriceSource::Typed })
        EXPECT_EQ(PriceSources::fromStoredName(PriceSources::storedName(source)), source);
    EXPECT_EQ(PriceSources::storedName(PriceSource::PricePoint), QStringLiteral("point"));
    EXPECT_EQ(PriceSources::caption(PriceSource::ListPrice), QStringLiteral("list price"));
    EXPECT_FALSE(PriceSources::fromStoredName(QStringLiteral("other")).has_value());
}

TEST_F(PriceSourceTest, KnownLinesKeepTheirSourceAndOnlyChangedOnesAreLookedAt)
{
    add(QStringLiteral("A-100"));
    add(QStringLiteral("B-200"));
    const Table known = QuoteList::linesOf(quote);
    // As saved: the first line's price was typed, though it equals the list price today.
    const std::vector<PriceSource> knownSources { PriceSource::Typed, PriceSource::ListPrice };
    typeQuantity(2, QStringLiteral("5"));
    const auto sources = PriceSources::sourcesOf(quote, catalogue, known, knownSources, locale);
    EXPECT_EQ(sources, (std::vector<PriceSource> { PriceSource::Typed, PriceSource::PricePoint }));
}

TEST_F(PriceSourceTest, LinesFromTheCatalogueWithOtherPricesTodayAreFound)
{
    add(QStringLiteral("A-100")); // list price, changes
    add(QStringLiteral("B-200")); // price point, changes
    typeQuantity(2, QStringLiteral("5"));
    add(QStringLiteral("C-300")); // typed: never re-priced
    typePrice(3, QStringLiteral("150"));
    add(QStringLiteral("D-400")); // list price, unchanged
    std::vector<PriceSource> sources;
    for (int row = 1; row <= 4; ++row)
        sources.push_back(PriceSources::infer(quote, row, catalogue, locale));
    catalogue.put(1, ProductRecord::Price, "$13.00");
    catalogue.put(2, ProductRecord::Price2, "$6.00");
    catalogue.put(3, ProductRecord::Price, "$189.99");
    EXPECT_EQ(PriceSources::linesWithOtherPrices(quote, sources, catalogue, locale),
        (QList<int> { 1, 2 }));

    PriceSources::updateFromCatalogue(quote, catalogue, { 1, 2 }, sources, locale);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$13.00")) << "the list price, as reset";
    EXPECT_EQ(quote.get(1, QuoteLine::ListPrice), Cell("$13.00"));
    EXPECT_DOUBLE_EQ(number(1, QuoteLine::ExtendedPrice), 13.0);
    EXPECT_EQ(quote.get(2, QuoteLine::UnitPrice), Cell(6.0f));
    EXPECT_DOUBLE_EQ(number(2, QuoteLine::ExtendedPrice), 30.0);
    EXPECT_EQ(quote.get(3, QuoteLine::UnitPrice), Cell("150")) << "a typed price stays";
    EXPECT_TRUE(PriceSources::linesWithOtherPrices(quote, sources, catalogue, locale).isEmpty());
}

// A line at its list price updated to today's list price costs what the same quantity typed
// again costs: the extended price from the price in single precision, however large.
TEST_F(PriceSourceTest, AnUpdatedLineCostsWhatItsQuantityTypedAgainCosts)
{
    const int row = add(QStringLiteral("F-600"));
    typeQuantity(row, QStringLiteral("32766"));
    const std::vector<PriceSource> sources { PriceSources::infer(quote, row, catalogue, locale) };
    ASSERT_EQ(sources.front(), PriceSource::ListPrice);
    catalogue.put(7, ProductRecord::Price, "$104,999.99");
    ASSERT_EQ(catalogue.get(7, ProductRecord::PartNumber), Cell("F-600"));
    PriceSources::updateFromCatalogue(quote, catalogue, { row }, sources, locale);
    const double updated = number(row, QuoteLine::ExtendedPrice);
    typeQuantity(row, QStringLiteral("32766"));
    EXPECT_EQ(updated, number(row, QuoteLine::ExtendedPrice));
    EXPECT_EQ(updated, double(104999.99f) * 32766.0);
}

// "Reset Prices" put a line whose quantity reaches a price point back at the list price: an
// unchanged catalogue offers it nothing, and a new list price keeps it at the list price.
TEST_F(PriceSourceTest, ALineResetToTheListPriceIsComparedWithTheListPriceOnly)
{
    add(QStringLiteral("B-200"));
    typeQuantity(1, QStringLiteral("5")); // the price point for 5
    Discount::resetPrices(quote, locale);
    const std::vector<PriceSource> sources { PriceSources::infer(quote, 1, catalogue, locale) };
    ASSERT_EQ(sources.front(), PriceSource::ListPrice);
    EXPECT_TRUE(PriceSources::linesWithOtherPrices(quote, sources, catalogue, locale).isEmpty())
        << "today's price point is no other price for a line at its list price";

    catalogue.put(2, ProductRecord::Price, "$8.00");
    EXPECT_EQ(
        PriceSources::linesWithOtherPrices(quote, sources, catalogue, locale), (QList<int> { 1 }));
    PriceSources::updateFromCatalogue(quote, catalogue, { 1 }, sources, locale);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$8.00"));
    EXPECT_DOUBLE_EQ(number(1, QuoteLine::ExtendedPrice), 40.0);
}

// A new list price beside an unchanged price point leaves what a line at that point costs:
// no other price to offer.
TEST_F(PriceSourceTest, ANewListPriceIsNoOtherPriceForALineAtAPricePoint)
{
    add(QStringLiteral("B-200"));
    typeQuantity(1, QStringLiteral("5")); // the price point for 5
    const std::vector<PriceSource> sources { PriceSources::infer(quote, 1, catalogue, locale) };
    ASSERT_EQ(sources.front(), PriceSource::PricePoint);
    catalogue.put(2, ProductRecord::Price, "$8.00");
    EXPECT_TRUE(PriceSources::linesWithOtherPrices(quote, sources, catalogue, locale).isEmpty());
    catalogue.put(2, ProductRecord::Price2, "$6.00");
    EXPECT_EQ(
        PriceSources::linesWithOtherPrices(quote, sources, catalogue, locale), (QList<int> { 1 }));
}

TEST_F(PriceSourceTest, ALockedLineIsNotOfferedTodaysPrice)
{
    add(QStringLiteral("A-100"));
    add(QStringLiteral("B-200"));
    const std::vector<PriceSource> sources { PriceSource::ListPrice, PriceSource::ListPrice };
    catalogue.put(1, ProductRecord::Price, "$13.00");
    catalogue.put(2, ProductRecord::Price, "$7.00");
    QuoteLine::setLocked(quote, 1, true);
    EXPECT_EQ(
        PriceSources::linesWithOtherPrices(quote, sources, catalogue, locale), (QList<int> { 2 }));
    QuoteLine::setLocked(quote, 1, false);
    EXPECT_EQ(PriceSources::linesWithOtherPrices(quote, sources, catalogue, locale),
        (QList<int> { 1, 2 }));
}

TEST_F(PriceSourceTest, AProductNoLongerInTheCatalogueIsLeftAsItIs)
{
    add(QStringLiteral("A-100"));
    const std::vector<PriceSource> sources { PriceSource::ListPrice };
    catalogue.put(1, ProductRecord::PartNumber, "A-100-OLD");
    EXPECT_TRUE(PriceSources::linesWithOtherPrices(quote, sources, catalogue, locale).isEmpty());
}

TEST_F(PriceSourceTest, ReplacingTheLinesEmptiesEveryOtherRow)
{
    add(QStringLiteral("A-100"));
    add(QStringLiteral("B-200"));
    add(QStringLiteral("C-300"));
    Table lines(1, QuoteLine::FieldCount);
    lines.put(1, QuoteLine::PartNumber, "Z-1");
    lines.put(1, QuoteLine::Quantity, qint32(4));
    ASSERT_TRUE(QuoteList::replaceLines(quote, lines));
    EXPECT_EQ(QuoteLine::lineCount(quote), 1);
    EXPECT_EQ(quote.rowCount(), QuoteLine::MaxLines);
    EXPECT_EQ(quote.get(1, QuoteLine::PartNumber), Cell("Z-1"));
    EXPECT_TRUE(quote.get(1, QuoteLine::ProductName).isEmpty());
    EXPECT_TRUE(quote.get(2, QuoteLine::PartNumber).isEmpty());
    EXPECT_TRUE(sameCells(QuoteList::linesOf(quote), lines));

    ASSERT_TRUE(QuoteList::replaceLines(quote, Table(0, QuoteLine::FieldCount)));
    EXPECT_TRUE(sameCells(quote, Table(QuoteLine::MaxLines, QuoteLine::FieldCount)));
}

TEST_F(PriceSourceTest, MoreLinesThanTheQuoteHoldsChangeNothing)
{
    add(QStringLiteral("A-100"));
    const Table before = quote;
    Table lines(QuoteLine::MaxLines + 1, QuoteLine::FieldCount);
    EXPECT_FALSE(QuoteList::replaceLines(quote, lines));
    EXPECT_TRUE(sameCells(quote, before));
}

} // namespace
