#include "catalogue/table.h"
#include "core/formats.h"
#include "products/discount.h"
#include "quotes/quotediscount.h"
#include "quotes/quoteline.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

/// A quote of three lines and room for more.
class QuoteDiscountTest : public ::testing::Test
{
protected:
    QuoteDiscountTest() : quote(QuoteLine::MaxLines, QuoteLine::FieldCount)
    {
        addLine(1, "A-1", "$12.50", "$12.50", Cell(qint32(1)));
        addLine(2, "B-2", "$7.35", "6.99", "3");
        addLine(3, "C-3", "$100.00", "$100.00", Cell(qint32(2)));
    }

    void addLine(int row, const char *part, const Cell &list, const Cell &price, const Cell &qty)
    {
        quote.put(row, QuoteLine::PartNumber, part);
        quote.put(row, QuoteLine::UnitPrice, price);
        quote.put(row, QuoteLine::Quantity, qty);
        quote.put(row, QuoteLine::ExtendedPrice, price);
        quote.put(row, QuoteLine::ListPrice, list);
    }
    double number(int row, int field) const { return quote.get(row, field).asNumber(); }

    Table quote;
};

TEST_F(QuoteDiscountTest, DiscountAllPricesEveryLineFromItsListPriceUnrounded)
{
    Discount::applyToAllLines(quote, Discount::multiplierFor("3%"), EnUs);
    // 12.5 × 0.97000002861022949 and 7.35 × that, exact products in double precision.
    EXPECT_EQ(number(1, QuoteLine::UnitPrice), 12.125000357627869);
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 12.125000357627869);
    EXPECT_DOUBLE_EQ(number(2, QuoteLine::UnitPrice), 7.129500210285187);
    EXPECT_DOUBLE_EQ(number(2, QuoteLine::ExtendedPrice), 21.38850063085556);
    EXPECT_DOUBLE_EQ(number(3, QuoteLine::ExtendedPrice), 194.00000572204590);
    EXPECT_EQ(quote.get(1, QuoteLine::ListPrice), Cell("$12.50"));
}

TEST_F(QuoteDiscountTest, ACatalogueListPriceDiscountedIsASingleAsTheProductOfTwoSingles)
{
    // The catalogue holds a list price as a single, and a line added from it keeps that: the
    // discounted price is the product of two singles, rounded once to a single.
    struct Case
    {
        float listPrice;
        const char *rate;
        const char *shown;
    };
    for (const Case &c : { Case { 12.85f, "10%", "$11.56" }, Case { 31.50f, "1%", "$31.18" },
             Case { 21.90f, "5%", "$20.81" }, Case { 21.90f, "15%", "$18.61" },
             Case { 89.50f, "5%", "$85.03" }, Case { 8.25f, "6%", "$7.76" } }) {
        addLine(1, "A-1", Cell(c.listPrice), Cell(c.listPrice), Cell(qint32(1)));
        Discount::applyToAllLines(quote, Discount::multiplierFor(c.rate), EnUs);
        const Cell &price = quote.get(1, QuoteLine::UnitPrice);
        EXPECT_EQ(price.kind(), Cell::Kind::Single) << c.listPrice << " " << c.rate;
        EXPECT_EQ(format(price, QStringLiteral("currency"), EnUs), QString::fromLatin1(c.shown))
            << c.listPrice << " " << c.rate;
        EXPECT_EQ(format(quote.get(1, QuoteLine::ExtendedPrice), QStringLiteral("currency"), EnUs),
            QString::fromLatin1(c.shown));
    }
    // 12.85 × 0.9 is 11.5649996 as a single; the same list price typed as text gives a double.
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice).kind(), Cell::Kind::Single);
    const Cell fromText =
        Discount::discountedPrice(Cell("12.85"), Discount::multiplierFor("10%"), EnUs);
    EXPECT_EQ(fromText.kind(), Cell::Kind::Double);
    EXPECT_EQ(fromText.asNumber(), 12.85 * double(0.9f));
    EXPECT_EQ(format(Discount::discountedPrice(Cell(12.85f), Discount::multiplierFor("10%"), EnUs),
                  QStringLiteral("currency"), EnUs),
        QStringLiteral("$11.56"));
}

TEST_F(QuoteDiscountTest, TwoPercentWithApostropheSetsThePricesToTheirListPrices)
{
    Discount::applyToAllLines(quote, Discount::multiplierFor("2%'"), EnUs);
    EXPECT_EQ(number(2, QuoteLine::UnitPrice), 7.35);
    EXPECT_DOUBLE_EQ(number(2, QuoteLine::ExtendedPrice), 22.05);
    Discount::applyToLine(quote, 3, Discount::multiplierFor("15%"), EnUs);
    Discount::applyToLine(quote, 3, Discount::multiplierFor("2%'"), EnUs);
    EXPECT_EQ(number(3, QuoteLine::UnitPrice), 100.0);
    EXPECT_EQ(number(3, QuoteLine::ExtendedPrice), 200.0);
}

TEST_F(QuoteDiscountTest, DiscountAllTreatsAQuoteWhoseFirstLineIsEmptyAsEmpty)
{
    quote.put(1, QuoteLine::PartNumber, "");
    Discount::applyToAllLines(quote, Discount::multiplierFor("10%"), EnUs);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$12.50"));
    EXPECT_EQ(quote.get(2, QuoteLine::UnitPrice), Cell("6.99"));
    EXPECT_EQ(quote.get(3, QuoteLine::UnitPrice), Cell("$100.00"));
}

TEST_F(QuoteDiscountTest, DiscountAllSkipsLinesWhosePriceIsNoNumber)
{
    quote.put(2, QuoteLine::UnitPrice, "call us");
    Discount::applyToAllLines(quote, Discount::multiplierFor("10%"), EnUs);
    EXPECT_EQ(quote.get(2, QuoteLine::UnitPrice), Cell("call us"));
    EXPECT_EQ(quote.get(2, QuoteLine::ExtendedPrice), Cell("6.99"));
    EXPECT_DOUBLE_EQ(number(1, QuoteLine::UnitPrice), 12.5 * double(0x1.ccccccp-1f));
}

TEST_F(QuoteDiscountTest, DiscountProductTestsTheListPriceNotTheUnitPrice)
{
    quote.put(2, QuoteLine::UnitPrice, "call us");
    Discount::applyToLine(quote, 2, Discount::multiplierFor("1%"), EnUs);
    // 7.35 × 0.99000000953674316
    EXPECT_DOUBLE_EQ(number(2, QuoteLine::UnitPrice), 7.276500070095062);
    EXPECT_DOUBLE_EQ(number(2, QuoteLine::ExtendedPrice), 21.829500210285186);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$12.50"));

    quote.put(3, QuoteLine::ListPrice, "n/a");
    Discount::applyToLine(quote, 3, Discount::multiplierFor("1%"), EnUs);
    EXPECT_EQ(quote.get(3, QuoteLine::UnitPrice), Cell("$100.00"));
    EXPECT_EQ(quote.get(3, QuoteLine::ExtendedPrice), Cell("$100.00"));
}

TEST_F(QuoteDiscountTest, DiscountAllRecomputesTheExtendedPriceWhenTheListPriceIsNoNumber)
{
    quote.put(3, QuoteLine::ListPrice, "n/a");
    Discount::applyToAllLines(quote, Discount::multiplierFor("1%"), EnUs);
    EXPECT_EQ(quote.get(3, QuoteLine::UnitPrice), Cell("$100.00"));
    EXPECT_EQ(number(3, QuoteLine::ExtendedPrice), 200.0);
}

TEST_F(QuoteDiscountTest, DiscountProductOutsideTheTableChangesNothing)
{
    Discount::applyToLine(quote, 0, Discount::multiplierFor("5%"), EnUs);
    Discount::applyToLine(quote, QuoteLine::MaxLines + 1, Discount::multiplierFor("5%"), EnUs);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$12.50"));
}

TEST_F(QuoteDiscountTest, ResetPricesCopiesTheListPricesAndRecomputesExtendedPrices)
{
    Discount::applyToAllLines(quote, Discount::multiplierFor("25%"), EnUs);
    quote.put(1, QuoteLine::Quantity, "4");
    Discount::resetPrices(quote, EnUs);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$12.50"));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 50.0);
    EXPECT_EQ(quote.get(2, QuoteLine::UnitPrice), Cell("$7.35"));
    EXPECT_DOUBLE_EQ(number(2, QuoteLine::ExtendedPrice), 22.05);
    EXPECT_EQ(number(3, QuoteLine::ExtendedPrice), 200.0);
}

TEST_F(QuoteDiscountTest, ResetAndDiscountChargeTheWholeQuantityTheLineIsPricedAt)
{
    // A quantity kept as "2.5" (as a quote book written by an earlier version may hold) is priced
    // at 2 by every command, as the re-pricing and the list total read it.
    quote.put(1, QuoteLine::Quantity, "2.5");
    Discount::resetPrices(quote, EnUs);
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 25.0);
    Discount::applyToAllLines(quote, Discount::multiplierFor("10%"), EnUs);
    EXPECT_LT(number(1, QuoteLine::UnitPrice), 12.5);
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 2 * number(1, QuoteLine::UnitPrice));
}

TEST(QuoteTableTest, TheQuoteEndsAtTheFirstBlankPartNumber)
{
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    EXPECT_EQ(QuoteLine::firstFreeRow(quote), 1);
    quote.put(1, QuoteLine::PartNumber, "A");
    quote.put(2, QuoteLine::PartNumber, "");
    quote.put(3, QuoteLine::PartNumber, "C");
    EXPECT_EQ(QuoteLine::firstFreeRow(quote), 2);
    EXPECT_EQ(QuoteLine::lineCount(quote), 1);
    for (int row = 1; row <= QuoteLine::MaxLines; ++row)
        quote.put(row, QuoteLine::PartNumber, "X");
    EXPECT_EQ(QuoteLine::firstFreeRow(quote), QuoteLine::MaxLines + 1);
}

} // namespace
