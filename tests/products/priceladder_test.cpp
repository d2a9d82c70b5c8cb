// What is wrong with a product's price points, and the breaks a quote really gets from them.
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "products/priceladder.h"
#include "products/priceschedule.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::DeDe;
using tarnwick::test::EnUs;

using Kind = LadderProblem::Kind;

/// One product row: list price and up to five (quantity, price) points as stored texts.
Table product(const QString &list, const std::vector<std::pair<QString, QString>> &points)
{
    Table catalogue(1, 15);
    catalogue.put(1, 1, "TW-400");
    catalogue.put(1, 2, "Widget 4");
    catalogue.put(1, 3, list);
    int k = 1;
    for (const auto &[quantity, price] : points) {
        if (!quantity.isEmpty())
            catalogue.put(1, 4 + 2 * k, quantity);
        if (!price.isEmpty())
            catalogue.put(1, 5 + 2 * k, price);
        ++k;
    }
    return catalogue;
}

std::vector<Kind> kindsOf(const std::vector<LadderProblem> &problems)
{
    std::vector<Kind> kinds;
    kinds.reserve(problems.size());
    for (const auto &problem : problems)
        kinds.push_back(problem.kind);
    return kinds;
}

TEST(PriceLadderTest, AnAscendingLadderBelowTheListPriceHasNoProblem)
{
    const Table catalogue = product("12.85", { { "10", "11.9" }, { "25", "10.95" } });
    EXPECT_TRUE(PriceLadder::checkProduct(catalogue, 1, EnUs).empty());
}

TEST(PriceLadderTest, ADescendingThresholdIsNotAboveTheOneBeforeIt)
{
    const Table catalogue = product("1250", { { "10", "1200" }, { "5", "1225" } });
    const auto problems = PriceLadder::checkProduct(catalogue, 1, EnUs);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].kind, Kind::NotAbovePrevious);
    EXPECT_EQ(problems[0].point, 2);
    EXPECT_EQ(problems[0].column, 1);
    EXPECT_EQ(
        problems[0].text, QStringLiteral("Price Point 2 (5) is not above Price Point 1 (10)."));
}

TEST(PriceLadderTest, AnEqualThresholdIsNotAboveEither)
{
    const Table catalogue = product("20", { { "10", "18" }, { "10", "17" } });
    EXPECT_EQ(kindsOf(PriceLadder::checkProduct(catalogue, 1, EnUs)),
        std::vector<Kind> { Kind::NotAbovePrevious });
}

TEST(PriceLadderTest, AHigherQuantityThatCostsMoreIsFound)
{
    const Table catalogue = product("20", { { "10", "18" }, { "50", "18.5" } });
    const auto problems = PriceLadder::checkProduct(catalogue, 1, EnUs);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].kind, Kind::CostsMore);
    EXPECT_EQ(problems[0].point, 2);
    EXPECT_EQ(problems[0].column, 2);
    EXPECT_EQ(problems[0].text,
        QStringLiteral("50 or more cost $18.50 each, more than 10 or more ($18.00)."));
}

TEST(PriceLadderTest, ABreakPriceAboveTheListPriceIsFound)
{
    const Table catalogue = product("12.5", { { "10", "$13.00" } });
    const auto problems = PriceLadder::checkProduct(catalogue, 1, EnUs);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].kind, Kind::AboveListPrice);
    EXPECT_EQ(
        problems[0].text, QStringLiteral("Price 1 ($13.00) is above the list price ($12.50)."));
}

// A new list price typed over an old one that the first price point (from 1 unit) still
// holds: every quote charges the old price, and Check Price Points says so.
TEST(PriceLadderTest, ABreakFromTheFirstUnitBelowTheListPriceLeavesTheListPriceUnused)
{
    const Table same = product("16.40", { { "1", "16.40" }, { "10", "15.2" } });
    EXPECT_TRUE(PriceLadder::checkProduct(same, 1, EnUs).empty());

    const Table raised = product("17.25", { { "1", "16.40" }, { "10", "15.2" } });
    const auto problems = PriceLadder::checkProduct(raised, 1, EnUs);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].kind, Kind::ListPriceUnused);
    EXPECT_EQ(problems[0].point, 1);
    EXPECT_EQ(problems[0].column, 2);
    EXPECT_EQ(problems[0].text,
        QStringLiteral(
            "Price 1 ($16.40) applies from the first unit: a quantity typed into a quote gets it, "
            "never the list price ($17.25)."));

    // From the second unit on, the first unit still costs the list price.
    EXPECT_TRUE(PriceLadder::checkProduct(product("17.25", { { "2", "16.40" } }), 1, EnUs).empty());
}

TEST(PriceLadderTest, PricesAreComparedAsMoneyWhateverPrecisionTheyAreKeptIn)
{
    // The catalogue keeps its list prices in single precision: 16.4 is 16.3999996…
    Table catalogue = product(QString(), { { "1", "16.40" }, { "10", "15.2" }, { "25", "15.20" } });
    catalogue.put(1, 3, 16.4f);
    catalogue.put(1, 9, 15.2f); // the price of the second point, as a number
    EXPECT_TRUE(PriceLadder::checkProduct(catalogue, 1, EnUs).empty());

    catalogue.put(1, 7, "16.41");
    catalogue.put(1, 11, "15.21");
    const auto problems = PriceLadder::checkProduct(catalogue, 1, EnUs);
    ASSERT_EQ(kindsOf(problems), (std::vector<Kind> { Kind::AboveListPrice, Kind::CostsMore }));
    EXPECT_EQ(
        problems[0].text, QStringLiteral("Price 1 ($16.41) is above the list price ($16.40)."));
}

TEST(PriceLadderTest, APriceBelowZeroIsFoundAndAmountsShowTheirSign)
{
    const Table catalogue = product("-5", { { "1", "1" }, { "10", "-0.004" }, { "20", "-1" } });
    const auto problems = PriceLadder::checkProduct(catalogue, 1, EnUs);
    ASSERT_EQ(kindsOf(problems),
        (std::vector<Kind> { Kind::AboveListPrice, Kind::FractionOfCent, Kind::AboveListPrice,
            Kind::BelowZero, Kind::AboveListPrice }));
    EXPECT_EQ(problems[0].text, QStringLiteral("Price 1 ($1.00) is above the list price (-$5.00)."))
        << "one pair of brackets";
    EXPECT_EQ(problems[2].text, QStringLiteral("Price 2 ($0.00) is above the list price (-$5.00)."))
        << "less than a cent below zero is no amount below zero";
    EXPECT_EQ(problems[3].text, QStringLiteral("Price 3 (-$1.00) is below zero."));
}

TEST(PriceLadderTest, ABreakPriceAQuoteShowsAsAnotherAmountIsFound)
{
    // A quote reads a break price as a single: 0.215 shows as $0.22 there (here $0.21), and a
    // single has no cents left for $999,999.99. 2.5 and 0.125 are kept exactly (0.125 is a
    // price with part of a cent, said apart).
    const Table catalogue = product("2000000",
        { { "10", "2.5" }, { "20", "0.215" }, { "30", "0.125" }, { "40", "999999.99" } });
    const auto problems = PriceLadder::checkProduct(catalogue, 1, EnUs);
    ASSERT_EQ(kindsOf(problems),
        (std::vector<Kind> {
            Kind::ShownOtherwise, Kind::FractionOfCent, Kind::ShownOtherwise, Kind::CostsMore }));
    EXPECT_EQ(problems[0].text, QStringLiteral("Price 2 ($0.21) shows as $0.22 in a quote."));
    EXPECT_EQ(problems[2].text,
        QStringLiteral("Price 4 ($999,999.99) shows as $1,000,000.00 in a quote."));
    EXPECT_EQ(problems[0].column, 2);
}

// A quote shows a unit price to the cent and works out its amounts from the whole price: a
// break price with part of a cent gives a document whose lines do not multiply out.
TEST(PriceLadderTest, ABreakPriceWithPartOfACentIsSaidWithWhatItCosts)
{
    // As the catalogue keeps them in German (price points in the form German reads).
    const Table german = product("89,5", { { "2", "70" }, { "25", "78,125" } });
    const auto problems = PriceLadder::checkProduct(german, 1, DeDe);
    ASSERT_EQ(kindsOf(problems), (std::vector<Kind> { Kind::FractionOfCent, Kind::CostsMore }));
    EXPECT_EQ(problems[0].text,
        QStringLiteral(
            "Price 2 (78,125) holds part of a cent: a quote shows 78,12\u00a0\u20ac a unit "
            "and works out its amounts from 78,125. 25 cost 1.953,12\u00a0\u20ac, not 25 "
            "\u00d7 78,12\u00a0\u20ac."));
    EXPECT_EQ(problems[0].column, 2);
    // From one unit the difference shows at a hundred.
    const Table washers = product("0.125", { { "1", "0.125" } });
    const auto single = PriceLadder::checkProduct(washers, 1, EnUs);
    ASSERT_EQ(kindsOf(single), (std::vector<Kind> { Kind::FractionOfCent }));
    EXPECT_EQ(single[0].text,
        QStringLiteral("Price 1 (0.125) holds part of a cent: a quote shows $0.12 a unit and "
                       "works out its amounts from 0.125. 100 cost $12.50, not 100 \u00d7 $0.12."));
    // Whole cents, also those a single keeps only nearly (12.85), are no such price.
    EXPECT_TRUE(
        PriceLadder::checkProduct(product("20", { { "10", "12.85" }, { "20", "11.9" } }), 1, EnUs)
            .empty());
}

// A list price from a supplier's sheet may hold part of a cent too (typing rounds it): Check
// Price Points names it as such a price point.
TEST(PriceLadderTest, CheckPricePointsNamesAListPriceWithPartOfACent)
{
    Table catalogue = product("2.675", {});
    catalogue.put(1, ProductRecord::Price, Cell(2.675f));
    const auto list = PriceLadder::checkCatalogue(catalogue, EnUs);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].text,
        QStringLiteral("The list price (2.675) holds part of a cent: a quote shows $2.67 a unit "
                       "and works out its amounts from 2.675. 100 cost $267.50, not 100 \u00d7 "
                       "$2.67."));
    catalogue.put(1, ProductRecord::Price, Cell(2.68f));
    EXPECT_TRUE(PriceLadder::checkCatalogue(catalogue, EnUs).empty());
    // A price a single keeps only nearly is named as typed, not by its binary digits.
    const auto point = PriceLadder::checkProduct(product("3", { { "10", "2.675" } }), 1, EnUs);
    ASSERT_EQ(point.size(), 1U);
    EXPECT_TRUE(point[0].text.startsWith(QStringLiteral("Price 1 (2.675) holds part of a cent")))
        << point[0].text.toStdString();
}

TEST(PriceLadderTest, AThresholdSetPriceCannotReadAndAMissingPriceAreFound)
{
    const Table catalogue = product("20", { { "40000", "15" }, { "ten", "14" }, { "60", "" } });
    const auto problems = PriceLadder::checkProduct(catalogue, 1, EnUs);
    ASSERT_EQ(kindsOf(problems),
        (std::vector<Kind> { Kind::UnusableQuantity, Kind::UnusableQuantity, Kind::MissingPrice }));
    EXPECT_EQ(problems[0].text,
        QStringLiteral("Price Point 1 (40,000) is above 32,767, the highest quantity a price "
                       "point can have."));
    EXPECT_EQ(problems[1].text, QStringLiteral("Price Point 2 (\"ten\") is no quantity."));
    EXPECT_EQ(problems[2].text, QStringLiteral("Price Point 3 (60) has no price."));
}

TEST(PriceLadderTest, GapsBetweenSlotsAreNoProblem)
{
    const Table catalogue =
        product("20", { { "", "" }, { "10", "18" }, { "", "" }, { "50", "16" } });
    EXPECT_TRUE(PriceLadder::checkProduct(catalogue, 1, EnUs).empty());
}

TEST(PriceLadderTest, TheScheduleBeingEditedIsCheckedAgainstTheListPrice)
{
    Table schedule(5, 2);
    schedule.put(1, 1, "25");
    schedule.put(1, 2, "9");
    schedule.put(2, 1, "10");
    schedule.put(2, 2, "11");
    const auto problems =
        PriceLadder::check(PriceLadder::pointsOfSchedule(schedule), Cell("10"), EnUs);
    EXPECT_EQ(
        kindsOf(problems), (std::vector<Kind> { Kind::NotAbovePrevious, Kind::AboveListPrice }));
    EXPECT_EQ(PriceLadder::describe(problems),
        QStringLiteral("Price Point 2 (10) is not above Price Point 1 (25). Price 2 ($11.00) is "
                       "above the list price ($10.00)."));
}

TEST(PriceLadderTest, TheCatalogueCheckListsEveryProductWithAProblem)
{
    Table catalogue(3, 15);
    catalogue.put(1, 1, "TW-100");
    catalogue.put(1, 3, "12.85");
    catalogue.put(1, 6, "10");
    catalogue.put(1, 7, "11.9");
    catalogue.put(2, 1, "TW-400");
    catalogue.put(2, 3, "1250");
    catalogue.put(2, 6, "10");
    catalogue.put(2, 7, "1200");
    catalogue.put(2, 8, "5");
    catalogue.put(2, 9, "1225");
    catalogue.put(3, 1, "TW-500");
    catalogue.put(3, 3, "5");
    catalogue.put(3, 6, "2");
    catalogue.put(3, 7, "6");
    const auto list = PriceLadder::checkCatalogue(catalogue, EnUs);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].row, 2);
    EXPECT_EQ(list[0].partNumber, QStringLiteral("TW-400"));
    EXPECT_EQ(list[0].text, QStringLiteral("Price Point 2 (5) is not above Price Point 1 (10)."));
    EXPECT_EQ(list[1].row, 3);
    EXPECT_EQ(list[1].text, QStringLiteral("Price 1 ($6.00) is above the list price ($5.00)."));
}

TEST(PriceLadderTest, BreaksAscendWithThePriceSetPriceGives)
{
    const Table catalogue = product("1250", { { "10", "1200" }, { "5", "1225" } });
    const auto breaks = PriceLadder::breaks(catalogue, 1, EnUs);
    ASSERT_EQ(breaks.size(), 2u);
    EXPECT_EQ(breaks[0].quantity, 5);
    EXPECT_EQ(breaks[0].price, 1225.0f);
    EXPECT_EQ(breaks[1].quantity, 10);
    EXPECT_EQ(breaks[1].price, 1225.0f) << "slot 2 is met at 10 as well and wins";
    for (const auto &entry : breaks) {
        EXPECT_EQ(entry.price,
            PriceSchedule::chargedPrice(
                PriceSchedule::SetPrice(catalogue, "TW-400", entry.quantity, EnUs).price, EnUs));
    }
}

TEST(PriceLadderTest, BreaksLeaveOutUnreadableThresholdsAndFollowSetPricePastThem)
{
    const Table catalogue =
        product("20", { { "", "" }, { "10", "18" }, { "40000", "1" }, { "50", "16" } });
    const auto breaks = PriceLadder::breaks(catalogue, 1, EnUs);
    ASSERT_EQ(breaks.size(), 2u);
    EXPECT_EQ(breaks[0].quantity, 10);
    EXPECT_EQ(breaks[0].price, 18.0f);
    EXPECT_EQ(breaks[1].quantity, 50);
    EXPECT_EQ(breaks[1].price, 18.0f) << "SetPrice stops reading at 40000, so 50 never applies";
}

TEST(PriceLadderTest, AQuantityWithoutAUsablePriceIsNoBreak)
{
    for (const char *missing : { "", "call", "1e39" }) {
        const Table catalogue = product("50", { { "10", missing }, { "20", "40" } });
        const auto breaks = PriceLadder::breaks(catalogue, 1, EnUs);
        ASSERT_EQ(breaks.size(), 1u) << missing;
        EXPECT_EQ(breaks[0].quantity, 20) << missing;
        EXPECT_EQ(breaks[0].price, 40.0f) << missing;
    }
}

} // namespace
