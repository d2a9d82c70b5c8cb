#include "quotefixture.h"

#include "products/discount.h"
#include "quotes/quotediscount.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"
#include "quotes/quotepricing.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

using QuotePricingTest = QuoteFixture;

TEST_F(QuotePricingTest, AnEmptyQuoteShowsZeroTotalsAndZeroPercent)
{
    const QuoteTotals totals = QuotePricing::QuotePrice(quote, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.percent, QStringLiteral("0.00%"));
}

TEST_F(QuotePricingTest, LinesWithoutPricesAddNothingAndThePercentIsZero)
{
    add("E-500");
    const QuoteTotals totals = QuotePricing::QuotePrice(quote, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.percent, QStringLiteral("0.00%"));
}

TEST_F(QuotePricingTest, AQuoteAtListPriceHasNoDiscount)
{
    add("A-100");
    add("B-200");
    const QuoteTotals totals = QuotePricing::QuotePrice(quote, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$19.85"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.percent, QStringLiteral("0.00%"));
}

// Worked out outside the program with numpy (float32 for the singles, Python's Decimal for
// rounding the exact binary values half to even):
//   line 1  A-100  price typed 11.99 -> float32 11.98999977, qty 1    ext 11.99   list 12.50
//   line 2  B-200  qty 7 -> point 2 "$6.50" -> 6.5, qty 7             ext 45.50   list 51.45
//   line 3  C-300  "10%" on the line: 199.99 x 0.89999997615814209     ext 179.99  list 199.99
//   line 4  D-400  "3%" on all: 12.5 x 0.97000002861022949 = 12.1250004 -> 12.13 (an exact 0.97
//                  would give 12.125 -> 12.12)                         ext 12.13   list 12.50
//   total 249.61; list total in float32 276.44000244140625;
//   discount 26.830002441406236 -> "$26.83"; percent 0.0970554268... -> "9.71%".
TEST_F(QuotePricingTest, TotalsOfADiscountedQuoteOfSeveralLines)
{
    add("A-100");
    add("B-200");
    add("C-300");
    add("D-400");
    typeQuantity(2, "3");
    Discount::applyToAllLines(quote, Discount::multiplierFor("3%"), locale);
    Discount::applyToLine(quote, 3, Discount::multiplierFor("10%"), locale);
    typePrice(1, "11.99");
    typeQuantity(2, "7");

    const QuoteSums sums = QuotePricing::sums(quote, locale);
    EXPECT_DOUBLE_EQ(sums.total, 249.61);
    EXPECT_EQ(sums.listTotal, 276.44000244140625f);
    const QuoteTotals totals = QuotePricing::texts(sums, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$249.61"));
    EXPECT_EQ(totals.discount, QStringLiteral("$26.83"));
    EXPECT_EQ(totals.percent, QStringLiteral("9.71%"));
}

TEST_F(QuotePricingTest, TheListTotalCarriesTheSinglePrecision)
{
    // float32(150000.01) = 150000.015625, so an undiscounted line shows a discount of
    // 0.005625 -> "$0.01", and 0.00000375 of the list total -> "0.00%".
    add("F-600");
    const QuoteTotals totals = QuotePricing::QuotePrice(quote, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$150,000.01"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.01"));
    EXPECT_EQ(totals.percent, QStringLiteral("0.00%"));
}

TEST_F(QuotePricingTest, ADiscountThatRoundsToZeroShowsNoSign)
{
    // float32(100000.01) = 100000.0078125: the discount is -0.0021875.
    add("G-700");
    const QuoteSums sums = QuotePricing::sums(quote, locale);
    EXPECT_LT(double(sums.listTotal) - sums.total, 0.0);
    const QuoteTotals totals = QuotePricing::texts(sums, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$100,000.01"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.percent, QStringLiteral("0.00%"));
}

TEST_F(QuotePricingTest, ExtendedPricesAreRoundedHalfToEvenBeforeTheyAreAdded)
{
    add("A-100");
    add("A-100");
    quote.put(1, QuoteLine::ExtendedPrice, 0.125); // exactly a half: to the even 0.12
    quote.put(2, QuoteLine::ExtendedPrice, 0.375); // exactly a half: to the even 0.38
    EXPECT_EQ(QuotePricing::sums(quote, locale).total, 0.5);
}

TEST_F(QuotePricingTest, APriceAboveTheListPriceGivesANegativeDiscount)
{
    add("A-100");
    typePrice(1, "15");
    const QuoteTotals totals = QuotePricing::QuotePrice(quote, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$15.00"));
    EXPECT_EQ(totals.discount, QStringLiteral("($2.50)"));
    EXPECT_EQ(totals.percent, QStringLiteral("-20.00%"));
}

TEST_F(QuotePricingTest, TheRowChangeNotificationShowsZeroInTwoFormats)
{
    const ZeroedTotals zeroed = QuotePricing::zeroedTotals(locale);
    EXPECT_EQ(zeroed.total, QStringLiteral("$00.00"));
    EXPECT_EQ(zeroed.discount, QStringLiteral("$0.00"));
}

} // namespace
