// Many prices raised or lowered at once, with each rounding.
#include "catalogue/table.h"
#include "products/pricechange.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

#include <limits>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

using By = PriceChangeRule::By;
using Rounding = PriceChangeRule::Rounding;

PriceChangeRule ruleOf(By by, double value, Rounding rounding)
{
    PriceChangeRule rule;
    rule.by = by;
    rule.value = value;
    rule.rounding = rounding;
    return rule;
}

TEST(PriceChangeTest, APercentageRoundedToTheCent)
{
    EXPECT_DOUBLE_EQ(PriceChange::apply(12.85, ruleOf(By::Percent, 10, Rounding::Cents)), 14.14);
    EXPECT_DOUBLE_EQ(PriceChange::apply(20.0, ruleOf(By::Percent, -5, Rounding::Cents)), 19.0);
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.89, ruleOf(By::Percent, 3, Rounding::Cents)), 0.92);
}

TEST(PriceChangeTest, AnAmountRoundedToTheCent)
{
    EXPECT_DOUBLE_EQ(PriceChange::apply(12.85, ruleOf(By::Amount, 1.5, Rounding::Cents)), 14.35);
    EXPECT_DOUBLE_EQ(PriceChange::apply(12.85, ruleOf(By::Amount, -0.855, Rounding::Cents)), 12.0);
}

TEST(PriceChangeTest, EndingsOf95And99AreTheNearestSuchPrice)
{
    EXPECT_DOUBLE_EQ(PriceChange::apply(14.14, ruleOf(By::Percent, 0, Rounding::End95)), 13.95);
    EXPECT_DOUBLE_EQ(PriceChange::apply(14.5, ruleOf(By::Percent, 0, Rounding::End95)), 14.95);
    EXPECT_DOUBLE_EQ(PriceChange::apply(12.85, ruleOf(By::Percent, 10, Rounding::End99)), 13.99);
    EXPECT_DOUBLE_EQ(PriceChange::apply(19.0, ruleOf(By::Amount, 0, Rounding::End99)), 18.99);
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.5, ruleOf(By::Amount, 0, Rounding::End95)), 0.95)
        << "within half a unit of the first such ending";
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.3, ruleOf(By::Amount, 0, Rounding::End95)), 0.3)
        << "further below it, no ending is near";
}

// The nearest ending of a cheap price may lie on the other side of the price it was: it is
// only taken where it keeps the change's direction.
TEST(PriceChangeTest, AnEndingNeverRaisesAPriceThatIsLoweredNorLowersOneThatIsRaised)
{
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.25, ruleOf(By::Percent, -10, Rounding::End99)), 0.23)
        << "lowered, not raised to $0.99";
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.10, ruleOf(By::Percent, -10, Rounding::End95)), 0.09);
    EXPECT_DOUBLE_EQ(PriceChange::apply(13.0, ruleOf(By::Percent, 1, Rounding::End99)), 13.13)
        << "raised, not lowered to $12.99";
    EXPECT_DOUBLE_EQ(PriceChange::apply(1.5, ruleOf(By::Percent, -10, Rounding::End99)), 0.99)
        << "an ending below the old price is taken";
    EXPECT_DOUBLE_EQ(PriceChange::apply(12.0, ruleOf(By::Percent, 10, Rounding::End99)), 12.99);
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.99, ruleOf(By::Percent, -10, Rounding::End99)), 0.89)
        << "lowered, not left where it was";
    EXPECT_DOUBLE_EQ(PriceChange::apply(19.99, ruleOf(By::Percent, 1, Rounding::End99)), 20.19)
        << "raised, not left where it was";
}

// Far below the first ending there is no ending near the price: a cheap item raised a little
// stays near its price instead of becoming $0.99.
TEST(PriceChangeTest, APriceFarBelowTheFirstEndingKeepsItsCents)
{
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.05, ruleOf(By::Percent, 1, Rounding::End99)), 0.05);
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.25, ruleOf(By::Percent, 1, Rounding::End95)), 0.25);
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.40, ruleOf(By::Percent, 25, Rounding::End99)), 0.99)
        << "$0.50 is within half a unit of $0.99";
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.40, ruleOf(By::Percent, 20, Rounding::End99)), 0.48)
        << "$0.48 is not";
}

TEST(PriceChangeTest, AFreeItemStaysFreeWhateverTheEnding)
{
    for (const auto rounding : { Rounding::End95, Rounding::End99 }) {
        EXPECT_DOUBLE_EQ(PriceChange::apply(0.0, ruleOf(By::Percent, -10, rounding)), 0.0);
        EXPECT_DOUBLE_EQ(PriceChange::apply(0.0, ruleOf(By::Percent, 10, rounding)), 0.0);
        EXPECT_DOUBLE_EQ(PriceChange::apply(0.0, ruleOf(By::Amount, 0, rounding)), 0.0);
    }
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.0, ruleOf(By::Amount, 5, Rounding::End99)), 4.99)
        << "an amount added to a free item is a price like any other";
}

TEST(PriceChangeTest, WholeUnits)
{
    EXPECT_DOUBLE_EQ(PriceChange::apply(12.85, ruleOf(By::Percent, 10, Rounding::Whole)), 14.0);
    EXPECT_DOUBLE_EQ(PriceChange::apply(389, ruleOf(By::Percent, 2.5, Rounding::Whole)), 399.0);
}

// Whole units are an ending like .95 and .99: a raise never ends at or below the old price, a
// price under half a unit has no whole unit near it and keeps its cents, and a free item stays
// free.
TEST(PriceChangeTest, WholeUnitsNeverTurnAChangeRoundNorMakeAPriceFree)
{
    for (const double cheap : { 0.01, 0.30, 0.45, 0.49 }) {
        EXPECT_DOUBLE_EQ(PriceChange::apply(cheap, ruleOf(By::Percent, 1, Rounding::Whole)),
            PriceChange::apply(cheap, ruleOf(By::Percent, 1, Rounding::Cents)))
            << cheap;
        EXPECT_GT(PriceChange::apply(cheap, ruleOf(By::Percent, 0, Rounding::Whole)), 0.0) << cheap;
    }
    EXPECT_DOUBLE_EQ(PriceChange::apply(1.40, ruleOf(By::Percent, 1, Rounding::Whole)), 1.41)
        << "raised, not $1.00";
    EXPECT_DOUBLE_EQ(PriceChange::apply(2.60, ruleOf(By::Percent, -1, Rounding::Whole)), 2.57)
        << "lowered, not $3.00";
    EXPECT_DOUBLE_EQ(PriceChange::apply(1.60, ruleOf(By::Percent, 1, Rounding::Whole)), 2.0);
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.60, ruleOf(By::Percent, 0, Rounding::Whole)), 1.0);
    EXPECT_DOUBLE_EQ(PriceChange::apply(0.0, ruleOf(By::Percent, 10, Rounding::Whole)), 0.0);
}

Table catalogue()
{
    Table table(3, 15);
    table.put(1, 1, "TW-100");
    table.put(1, 3, "12.85");
    table.put(1, 6, "10");
    table.put(1, 7, "11.9");
    table.put(1, 8, "25");
    table.put(1, 9, "$10.95");
    table.put(2, 1, "TW-200");
    table.put(2, 3, "call us");
    table.put(2, 6, "5");
    table.put(3, 1, "TW-300");
    table.put(3, 3, "2");
    return table;
}

// A price below zero (a credit) is left as it is by a rise or a fall and keeps no other price
// from changing: before, any rise was refused as one that "would take prices below zero".
TEST(PriceChangeTest, APriceBelowZeroIsLeftAloneAndKeepsNoOtherFromChanging)
{
    Table table = catalogue();
    table.put(3, 3, "-3");
    for (const double percent : { 10.0, -10.0 }) {
        const PriceChangePlan plan =
            PriceChange::plan(table, { 1, 3 }, ruleOf(By::Percent, percent, Rounding::Cents), EnUs);
        EXPECT_TRUE(plan.belowZero.isEmpty()) << percent;
        EXPECT_TRUE(PriceChange::canApply(plan, true)) << percent;
        EXPECT_EQ(plan.changeCount, 3) << "TW-100's list price and two break prices";
        for (const PriceChangeEntry &entry : plan.entries)
            EXPECT_NE(entry.row, 3) << percent;
    }
}

TEST(PriceChangeTest, ThePlanChangesListAndBreakPricesOfTheChosenRowsOnly)
{
    const Table table = catalogue();
    const PriceChangePlan plan =
        PriceChange::plan(table, { 1, 2 }, ruleOf(By::Percent, 10, Rounding::Cents), EnUs);
    EXPECT_TRUE(plan.belowZero.isEmpty());
    ASSERT_EQ(plan.entries.size(), 3u)
        << "TW-200 has no price that is a number, TW-300 is not chosen";
    EXPECT_EQ(plan.entries[0].field, 3);
    EXPECT_EQ(plan.entries[0].after, Cell("14.14"));
    EXPECT_EQ(plan.entries[1].field, 7);
    EXPECT_EQ(plan.entries[1].after, Cell("13.09"));
    EXPECT_EQ(plan.entries[2].field, 9);
    EXPECT_EQ(plan.entries[2].before, Cell("$10.95"));
    EXPECT_EQ(plan.entries[2].after, Cell("12.05"));
    EXPECT_EQ(PriceChange::previewLine(plan.entries[0], EnUs),
        QStringLiteral("TW-100  List price  $12.85 \u2192 $14.14"));
    EXPECT_EQ(PriceChange::previewLine(plan.entries[2], EnUs),
        QStringLiteral("TW-100  Price 2  $10.95 \u2192 $12.05"));
}

TEST(PriceChangeTest, APriceBelowZeroIsReportedAndAnUnchangedPriceLeftOut)
{
    const Table table = catalogue();
    const PriceChangePlan lower =
        PriceChange::plan(table, { 1, 3 }, ruleOf(By::Amount, -3, Rounding::Cents), EnUs);
    EXPECT_EQ(lower.belowZero, QStringList { QStringLiteral("TW-300 list price") });
    const PriceChangePlan same =
        PriceChange::plan(table, { 3 }, ruleOf(By::Percent, 0, Rounding::Whole), EnUs);
    EXPECT_TRUE(same.entries.empty());
}

TEST(PriceChangeTest, APriceChangedToATrillionOrMoreIsReportedAndNothingApplied)
{
    const Table table = catalogue();
    for (const double percent : { 1e20, -1e20, 1e300, std::numeric_limits<double>::max() }) {
        const PriceChangePlan huge =
            PriceChange::plan(table, { 1 }, ruleOf(By::Percent, percent, Rounding::Cents), EnUs);
        EXPECT_EQ(huge.tooLarge.value(0), QStringLiteral("TW-100 list price")) << percent;
        EXPECT_TRUE(huge.belowZero.isEmpty()) << "a rounding that overflows is not below zero";
        EXPECT_FALSE(PriceChange::canApply(huge, true));
        EXPECT_TRUE(PriceChange::summary(huge, true)
                        .startsWith(QStringLiteral(
                            "The change would take prices to a trillion or more: TW-100 list "
                            "price")));
        for (const PriceChangeEntry &entry : huge.entries)
            EXPECT_LT(entry.newPrice, PriceChange::MaxPrice);
    }
    EXPECT_DOUBLE_EQ(PriceChange::apply(999999999999.994, ruleOf(By::Amount, 0, Rounding::Cents)),
        999999999999.99);
    const PriceChangePlan largest =
        PriceChange::plan(table, { 1 }, ruleOf(By::Amount, 999999999000.0, Rounding::Cents), EnUs);
    EXPECT_TRUE(largest.tooLarge.isEmpty());
    EXPECT_FALSE(largest.entries.empty());
}

TEST(PriceChangeTest, APriceThatIsATrillionAlreadyStaysAndTheOthersChange)
{
    Table table = catalogue();
    table.put(3, 3, 1e20f); // TW-300's list price, read from a damaged sheet
    table.put(1, 7, "-1e12");
    for (const double percent : { 0.0, 10.0 }) {
        const PriceChangePlan plan = PriceChange::plan(
            table, { 1, 2, 3 }, ruleOf(By::Percent, percent, Rounding::Cents), EnUs);
        EXPECT_TRUE(plan.tooLarge.isEmpty()) << percent;
        EXPECT_TRUE(plan.belowZero.isEmpty()) << percent;
        for (const PriceChangeEntry &entry : plan.entries)
            EXPECT_NE(entry.partNumber, QStringLiteral("TW-300")) << percent;
        EXPECT_EQ(plan.entries.size(), percent == 0.0 ? 0u : 2u)
            << "TW-100's list price and its second price point";
        EXPECT_EQ(PriceChange::canApply(plan, true), percent != 0.0);
    }
}

TEST(PriceChangeTest, AListPriceKeptInSinglePrecisionChangesAsTheMoneyItShows)
{
    // The catalogue keeps its list prices in single precision: 16.4 is 16.3999996…
    Table table(1, 15);
    table.put(1, 1, "BV-1075");
    table.put(1, 3, 16.4f);
    table.put(1, 6, "1");
    table.put(1, 7, 16.4f);
    const PriceChangePlan same =
        PriceChange::plan(table, { 1 }, ruleOf(By::Percent, 0, Rounding::Cents), EnUs);
    EXPECT_TRUE(same.entries.empty()) << "$16.40 to $16.40 is no change";
    EXPECT_EQ(PriceChange::summary(same, true), QStringLiteral("No price changes."));
    const PriceChangePlan raise =
        PriceChange::plan(table, { 1 }, ruleOf(By::Percent, 10, Rounding::Cents), EnUs);
    ASSERT_EQ(raise.entries.size(), 2u);
    EXPECT_EQ(raise.entries[0].after, Cell("18.04"));
    EXPECT_EQ(PriceChange::previewLine(raise.entries[0], EnUs),
        QStringLiteral("BV-1075  List price  $16.40 \u2192 $18.04"));
}

TEST(PriceChangeTest, ASinglePriceOnAHalfCentRoundsUpAsItsMoneyWould)
{
    // 39.10 is kept as 39.0999985…: 5 % more is the 41.055 of the money shown, so $41.06.
    Table table(1, 15);
    table.put(1, 1, "TW-000053");
    table.put(1, 3, 39.1f);
    const PriceChangePlan raise =
        PriceChange::plan(table, { 1 }, ruleOf(By::Percent, 5, Rounding::Cents), EnUs);
    ASSERT_EQ(raise.entries.size(), 1u);
    EXPECT_EQ(raise.entries[0].after, Cell("41.06"));
    EXPECT_EQ(PriceChange::previewLine(raise.entries[0], EnUs),
        QStringLiteral("TW-000053  List price  $39.10 \u2192 $41.06"));
}

// A price point's new price is kept in the user's own form, as every price point is, so one
// catalogue (and the export and handheld file written from it) has one decimal mark.
TEST(PriceChangeTest, APricePointsNewPriceIsInTheUsersOwnForm)
{
    Table table(1, 15);
    table.put(1, 1, "A-100");
    table.put(1, 3, 1234.56f);
    table.put(1, 6, "10");
    table.put(1, 7, "7,125");
    const PriceChangePlan raise =
        PriceChange::plan(table, { 1 }, ruleOf(By::Amount, 100000, Rounding::Cents), test::DeDe);
    ASSERT_EQ(raise.entries.size(), 2u);
    EXPECT_EQ(raise.entries[0].after, Cell("101234.56")) << "the list price as the file keeps it";
    EXPECT_EQ(raise.entries[1].after, Cell("100007,13"));
}

// A free item stays free whichever way an amount goes: no price for it, and no refusal.
TEST(PriceChangeTest, AFreeItemStaysFree)
{
    Table table(2, 15);
    table.put(1, 1, "FREE");
    table.put(1, 3, 0.0f);
    table.put(2, 1, "PAID");
    table.put(2, 3, 10.0f);
    const PriceChangePlan raise =
        PriceChange::plan(table, { 1, 2 }, ruleOf(By::Amount, 5, Rounding::Cents), EnUs);
    ASSERT_EQ(raise.entries.size(), 1u);
    EXPECT_EQ(raise.entries[0].partNumber, QStringLiteral("PAID"));
    const PriceChangePlan lower =
        PriceChange::plan(table, { 1, 2 }, ruleOf(By::Amount, -5, Rounding::Cents), EnUs);
    EXPECT_TRUE(lower.belowZero.isEmpty());
    EXPECT_TRUE(PriceChange::canApply(lower, true));
    EXPECT_EQ(lower.changeCount, 1);
}

// A change refused for prices below zero names the first five and counts the others.
TEST(PriceChangeTest, APriceBelowZeroNamesTheFirstFiveAndCountsTheRest)
{
    Table table(7, 15);
    for (int row = 1; row <= 7; ++row) {
        table.put(row, 1, QStringLiteral("P-%1").arg(row));
        table.put(row, 3, 1.0f);
    }
    const PriceChangePlan lower = PriceChange::plan(
        table, { 1, 2, 3, 4, 5, 6, 7 }, ruleOf(By::Amount, -5, Rounding::Cents), EnUs);
    EXPECT_EQ(PriceChange::summary(lower, true),
        QStringLiteral("The change would take prices below zero: P-1 list price, P-2 list price, "
                       "P-3 list price, P-4 list price, P-5 list price and 2 more."));
}

TEST(PriceChangeTest, APlanForThePreviewKeepsItsFirstChangesAndCountsTheRest)
{
    Table table(3, 15);
    for (int row = 1; row <= 3; ++row) {
        table.put(row, 1, QStringLiteral("TW-%1").arg(row));
        table.put(row, 3, "10");
    }
    const PriceChangeRule rule = ruleOf(By::Percent, 10, Rounding::Cents);
    const PriceChangePlan preview = PriceChange::plan(table, { 1, 2, 3 }, rule, EnUs, 2);
    ASSERT_EQ(preview.entries.size(), 2u);
    EXPECT_EQ(preview.changeCount, 3u);
    EXPECT_FALSE(preview.complete());
    EXPECT_EQ(preview.entries[1].partNumber, QStringLiteral("TW-2"));
    EXPECT_EQ(PriceChange::summary(preview, true), QStringLiteral("3 prices will change."));
    EXPECT_TRUE(PriceChange::previewText(preview, EnUs, 200)
                    .endsWith(QStringLiteral("\u2026 and 1 more.")));
    EXPECT_TRUE(PriceChange::canApply(preview, true));
    const PriceChangePlan whole = PriceChange::plan(table, { 1, 2, 3 }, rule, EnUs);
    EXPECT_TRUE(whole.complete());
    EXPECT_EQ(whole.entries.size(), 3u);
}

TEST(PriceChangeTest, ThePreviewAndItsSummarySayWhatOkWouldDo)
{
    const Table table = catalogue();
    const PriceChangePlan raise =
        PriceChange::plan(table, { 1, 2 }, ruleOf(By::Percent, 10, Rounding::Cents), EnUs);
    EXPECT_EQ(PriceChange::previewText(raise, EnUs, 2),
        QStringLiteral("TW-100  List price  $12.85 \u2192 $14.14\n"
                       "TW-100  Price 1  $11.90 \u2192 $13.09\n"
                       "\u2026 and 1 more."));
    EXPECT_EQ(PriceChange::previewText(raise, EnUs, 3).count(QLatin1Char('\n')), 2);
    EXPECT_EQ(PriceChange::summary(raise, true), QStringLiteral("3 prices will change."));
    EXPECT_TRUE(PriceChange::canApply(raise, true));

    const PriceChangePlan one =
        PriceChange::plan(table, { 3 }, ruleOf(By::Percent, 10, Rounding::Cents), EnUs);
    EXPECT_EQ(PriceChange::summary(one, true), QStringLiteral("1 price will change."));

    const PriceChangePlan lower =
        PriceChange::plan(table, { 1, 3 }, ruleOf(By::Amount, -3, Rounding::Cents), EnUs);
    EXPECT_EQ(PriceChange::summary(lower, true),
        QStringLiteral("The change would take prices below zero: TW-300 list price."));
    EXPECT_FALSE(PriceChange::canApply(lower, true));

    const PriceChangePlan same =
        PriceChange::plan(table, { 3 }, ruleOf(By::Percent, 0, Rounding::Whole), EnUs);
    EXPECT_EQ(PriceChange::summary(same, true), QStringLiteral("No price changes."));
    EXPECT_FALSE(PriceChange::canApply(same, true));

    EXPECT_EQ(PriceChange::summary({}, false),
        QStringLiteral("Enter the percentage or the amount as a number."));
    EXPECT_FALSE(PriceChange::canApply(raise, false));
    EXPECT_TRUE(PriceChange::previewText({}, EnUs, 200).isEmpty());
}

} // namespace

TEST(PriceChangeTest, APercentageMayBeTypedWithItsPercentSign)
{
    const QLocale &german = tarnwick::test::DeDe;
    EXPECT_EQ(PriceChange::typedChange(QStringLiteral("10%"), By::Percent, EnUs), 10.0);
    EXPECT_EQ(PriceChange::typedChange(QStringLiteral(" -2.5 % "), By::Percent, EnUs), -2.5);
    EXPECT_EQ(PriceChange::typedChange(QStringLiteral("%5"), By::Percent, EnUs), 5.0);
    EXPECT_EQ(PriceChange::typedChange(QStringLiteral("2,5 %"), By::Percent, german), 2.5);
    EXPECT_EQ(PriceChange::typedChange(QStringLiteral("-2,5%"), By::Percent, german), -2.5);
    EXPECT_EQ(PriceChange::typedChange(QStringLiteral("12"), By::Percent, EnUs), 12.0);
    // One sign only, and only with a percentage: an amount is money, not a share.
    EXPECT_FALSE(PriceChange::typedChange(QStringLiteral("10%%"), By::Percent, EnUs));
    EXPECT_FALSE(PriceChange::typedChange(QStringLiteral("%"), By::Percent, EnUs));
    EXPECT_FALSE(PriceChange::typedChange(QStringLiteral("10%"), By::Amount, EnUs));
    EXPECT_EQ(PriceChange::typedChange(QStringLiteral("-0,50 €"), By::Amount, german), -0.5);
}
