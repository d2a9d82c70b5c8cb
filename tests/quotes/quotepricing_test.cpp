#include "quotefixture.h"

#include "catalogue/productrecord.h"
#include "products/discount.h"
#include "quotes/quotediscount.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"
#include "quotes/quotepricing.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class QuotePricingTest : public QuoteFixture
{
protected:
    void expectALineOfQuantityCountsInNeitherTotal(const QString &quantity);
};

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

// Worked out outside the program with float32 arithmetic: the list amounts 150000.01,
// 150000.01 and 199.99 summed as singles, one line at a time, give 300200.03125; summed as
// doubles they give 300200.01 (300200.0 once narrowed to a single at the end). The boxes show
// the single-precision sum: a discount of 0.02125 -> "$0.02".
TEST_F(QuotePricingTest, TheListTotalIsSummedLineByLineInSinglePrecision)
{
    add("F-600");
    add("F-600");
    add("C-300");
    const QuoteTotals totals = QuotePricing::QuotePrice(quote, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$300,200.01"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.02"));
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

// A quantity the re-pricing cannot read as a 32-bit integer (it overflows) leaves the line at
// an extended price of 0, and the same line adds nothing to the list total either, so the
// boxes show the other lines' figures and never an infinity.
void expectOnlyTheOtherLineCounts(const QuoteTotals &totals)
{
    EXPECT_EQ(totals.total, QStringLiteral("$12.50"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.percent, QStringLiteral("0.00%"));
}

/// A second line of A-100 given quantity: it is priced at nothing and counts in neither total.
void QuotePricingTest::expectALineOfQuantityCountsInNeitherTotal(const QString &quantity)
{
    add("A-100");
    add("A-100");
    typeQuantity(2, quantity);
    EXPECT_EQ(number(2, QuoteLine::ExtendedPrice), 0.0) << quantity.toStdString();
    expectOnlyTheOtherLineCounts(QuotePricing::QuotePrice(quote, locale));
}

TEST_F(QuotePricingTest, AQuantityBeyondTheSingleRangeAddsNothingToEitherTotal)
{
    expectALineOfQuantityCountsInNeitherTotal(QStringLiteral("1e40"));
}

TEST_F(QuotePricingTest, AQuantityOfThreeHundredDigitsAddsNothingToEitherTotal)
{
    expectALineOfQuantityCountsInNeitherTotal(QString(300, QLatin1Char('9')));
}

TEST_F(QuotePricingTest, AQuantityBeyondThe32BitRangeAddsNothingToEitherTotal)
{
    expectALineOfQuantityCountsInNeitherTotal(QStringLiteral("1e10"));
}

TEST_F(QuotePricingTest, AQuantityJustBelowThe32BitLimitThatASingleRoundsUpAddsNothing)
{
    // 2147483647 read as a single is 2^31, one past the largest quantity: the line is priced
    // at nothing, so it must not count in the list total either.
    expectALineOfQuantityCountsInNeitherTotal(QStringLiteral("2147483647"));
}

TEST_F(QuotePricingTest, AFractionalQuantityGivesNoDiscountAtListPrice)
{
    add("A-100");
    typeQuantity(1, "2.5");
    const QuoteTotals totals = QuotePricing::QuotePrice(quote, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$25.00"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.percent, QStringLiteral("0.00%"));
}

TEST_F(QuotePricingTest, AListTotalBeyondTheSingleRangeLeavesThatLineOut)
{
    // 2e9 × 1e30 fits a double but not a single: the line's list amount is left out.
    catalogue.put(1, ProductRecord::Price, "1e30");
    add("B-200");
    add("A-100");
    quote.put(2, QuoteLine::Quantity, "2000000000");
    const QuoteTotals totals = QuotePricing::QuotePrice(quote, locale);
    EXPECT_FALSE(totals.total.contains(QStringLiteral("inf")));
    EXPECT_EQ(totals.discount.left(2), QStringLiteral("($"));
    EXPECT_FALSE(totals.percent.contains(QStringLiteral("nan")));
    EXPECT_FALSE(totals.percent.contains(QStringLiteral("inf")));
}

// A list price beyond a single's range ("1e39" in the file, kept as its text) is no price: the
// line added with it charges nothing to the total, as the status bar says.
TEST_F(QuotePricingTest, AUnitPriceBeyondTheSingleRangeAddsNothingToTheTotal)
{
    catalogue.put(3, ProductRecord::Price, "1e39");
    add("A-100");
    add("C-300");
    ASSERT_EQ(quote.get(2, QuoteLine::UnitPrice), Cell("1e39"));
    const QuoteTotals totals = QuotePricing::QuotePrice(quote, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$12.50"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.percent, QStringLiteral("0.00%"));
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale).toStdString(),
        "Line 2: the price \"1e39\" is out of range; the line is charged $0.00 until a smaller "
        "price is typed.");

    // Re-priced at a quantity, the catalogue gives no price it can charge.
    typeQuantity(2, "3");
    EXPECT_EQ(QuotePricing::QuotePrice(quote, locale).total, QStringLiteral("$12.50"));
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale).toStdString(),
        "Line 2: the catalogue gives no price for 3 of \"C-300\"; the line is charged $0.00 "
        "until a price is typed.");
}

TEST_F(QuotePricingTest, AShareBeyondTheDoubleRangeLeavesThePercentBoxEmpty)
{
    QuoteSums sums;
    sums.total = -1e300;
    sums.listTotal = 1e-30f; // the share 1e300 / 1e-30 overflows
    const QuoteTotals totals = QuotePricing::texts(sums, locale);
    EXPECT_TRUE(totals.total.startsWith(QStringLiteral("($1,000,000")));
    EXPECT_TRUE(totals.discount.startsWith(QStringLiteral("$1,000,000")));
    EXPECT_EQ(totals.percent, QString());
}

TEST_F(QuotePricingTest, TheRowChangeNotificationShowsZeroInTwoFormats)
{
    const ZeroedTotals zeroed = QuotePricing::zeroedTotals(locale);
    EXPECT_EQ(zeroed.total, QStringLiteral("$00.00"));
    EXPECT_EQ(zeroed.discount, QStringLiteral("$0.00"));
}

} // namespace
