#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/vberror.h"
#include "products/priceschedule.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::DeDe;
using tarnwick::test::EnUs;

/// A catalogue of three products; the price points of "A-100" are set per test.
class SetPriceTest : public ::testing::Test
{
protected:
    SetPriceTest() : catalogue(3, ProductRecord::FieldCount)
    {
        catalogue.put(1, ProductRecord::PartNumber, "Z-900");
        catalogue.put(1, ProductRecord::Price, "$99.00");
        catalogue.put(2, ProductRecord::PartNumber, "A-100");
        catalogue.put(2, ProductRecord::Price, "$12.50");
        catalogue.put(3, ProductRecord::PartNumber, "A-100");
        catalogue.put(3, ProductRecord::Price, "$1.00");
    }

    void setPoint(int k, const Cell &quantity, const Cell &price)
    {
        catalogue.put(2, ProductRecord::pricePointField(k), quantity);
        catalogue.put(2, ProductRecord::pricePointPriceField(k), price);
    }

    QString priceAt(qint32 qty)
    {
        return PriceSchedule::SetPrice(catalogue, "A-100", qty, EnUs).price;
    }

    Table catalogue;
};

TEST_F(SetPriceTest, AQuantityEqualToAThresholdTakesThatPointsPrice)
{
    setPoint(1, "10", "$11.00");
    setPoint(2, "50", "$10.00");
    EXPECT_EQ(priceAt(9), QStringLiteral("$12.50"));
    EXPECT_EQ(priceAt(10), QStringLiteral("$11.00"));
    EXPECT_EQ(priceAt(49), QStringLiteral("$11.00"));
    EXPECT_EQ(priceAt(50), QStringLiteral("$10.00"));
    EXPECT_EQ(priceAt(5000), QStringLiteral("$10.00"));
}

TEST_F(SetPriceTest, WithThresholdsInDescendingSlotOrderTheLastSatisfiedSlotWins)
{
    setPoint(1, "10", "$9.00");
    setPoint(2, "5", "$11.00");
    // 12 reaches both thresholds: slot 2 wins although slot 1 is cheaper.
    EXPECT_EQ(priceAt(12), QStringLiteral("$11.00"));
    EXPECT_EQ(priceAt(7), QStringLiteral("$11.00"));
    EXPECT_EQ(priceAt(4), QStringLiteral("$12.50"));
}

TEST_F(SetPriceTest, TheFirstProductWithThePartNumberIsUsed)
{
    const PriceLookup lookup = PriceSchedule::SetPrice(catalogue, "A-100", 1, EnUs);
    EXPECT_TRUE(lookup.found);
    EXPECT_EQ(lookup.price, QStringLiteral("$12.50"));
    EXPECT_FALSE(lookup.error.has_value());
}

TEST_F(SetPriceTest, AnUnknownPartNumberGivesTheEmptyText)
{
    const PriceLookup lookup = PriceSchedule::SetPrice(catalogue, "a-100", 1, EnUs);
    EXPECT_FALSE(lookup.found);
    EXPECT_EQ(lookup.price, QString());
}

TEST_F(SetPriceTest, EmptyPointsAreSkippedAndLaterPointsStillCount)
{
    setPoint(1, "", "$1.00");
    setPoint(3, Cell(qint32(20)), "$10.50");
    EXPECT_EQ(priceAt(19), QStringLiteral("$12.50"));
    EXPECT_EQ(priceAt(20), QStringLiteral("$10.50"));
}

TEST_F(SetPriceTest, AThresholdAbove32767RaisesOverflowAndThePriceSoFarStands)
{
    setPoint(1, "10", "$11.00");
    setPoint(2, "32768", "$10.00");
    setPoint(3, "20", "$9.00");
    const PriceLookup lookup = PriceSchedule::SetPrice(catalogue, "A-100", 40000, EnUs);
    ASSERT_TRUE(lookup.error.has_value());
    EXPECT_EQ(lookup.error->number(), ErrorNumber::Overflow);
    // Point 3 would apply, but the reading stopped at point 2.
    EXPECT_EQ(lookup.price, QStringLiteral("$11.00"));
}

TEST_F(SetPriceTest, ThresholdOf32767IsStillInRange)
{
    setPoint(1, "32767", "$10.00");
    const PriceLookup lookup = PriceSchedule::SetPrice(catalogue, "A-100", 32767, EnUs);
    EXPECT_FALSE(lookup.error.has_value());
    EXPECT_EQ(lookup.price, QStringLiteral("$10.00"));
}

TEST_F(SetPriceTest, AThresholdThatIsNoNumberEndsTheReadingWithATypeMismatch)
{
    setPoint(1, "ten", "$11.00");
    setPoint(2, "5", "$10.00");
    const PriceLookup lookup = PriceSchedule::SetPrice(catalogue, "A-100", 50, EnUs);
    ASSERT_TRUE(lookup.error.has_value());
    EXPECT_EQ(lookup.error->number(), ErrorNumber::TypeMismatch);
    EXPECT_EQ(lookup.price, QStringLiteral("$12.50"));
}

TEST_F(SetPriceTest, ASevenOrEightDigitListPriceKeepsEveryDigit)
{
    catalogue.put(2, ProductRecord::Price, Cell(123456.78f));
    EXPECT_EQ(priceAt(1), QStringLiteral("123456.78"));
    catalogue.put(2, ProductRecord::Price, Cell(12345678.0f));
    EXPECT_EQ(priceAt(1), QStringLiteral("12345678"));
    catalogue.put(2, ProductRecord::Price, Cell(12.5f));
    EXPECT_EQ(priceAt(1), QStringLiteral("12.5"));
    // In German the same digits with the decimal comma, which the quote reads back.
    const QLocale german(QLocale::German, QLocale::Germany);
    catalogue.put(2, ProductRecord::Price, Cell(123456.78f));
    EXPECT_EQ(
        PriceSchedule::SetPrice(catalogue, "A-100", 1, german).price, QStringLiteral("123456,78"));
}

TEST_F(SetPriceTest, AQuantityOfZeroKeepsTheListPrice)
{
    setPoint(1, "1", "$11.00");
    EXPECT_EQ(priceAt(0), QStringLiteral("$12.50"));
}

TEST_F(SetPriceTest, ThresholdsAreRoundedHalfToEven)
{
    setPoint(1, "2.5", "$11.00"); // rounds to 2
    setPoint(2, "3.5", "$10.00"); // rounds to 4
    EXPECT_EQ(priceAt(2), QStringLiteral("$11.00"));
    EXPECT_EQ(priceAt(3), QStringLiteral("$11.00"));
    EXPECT_EQ(priceAt(4), QStringLiteral("$10.00"));
}

class CreatdiscsTest : public ::testing::Test
{
protected:
    CreatdiscsTest() : catalogue(1, ProductRecord::FieldCount) { }

    void setPoint(int k, const Cell &quantity, const Cell &price)
    {
        catalogue.put(1, ProductRecord::pricePointField(k), quantity);
        catalogue.put(1, ProductRecord::pricePointPriceField(k), price);
    }
    QString text() const { return PriceSchedule::creatdiscs(catalogue, 1, EnUs); }

    Table catalogue;
};

TEST_F(CreatdiscsTest, JoinsThePointsAsStored)
{
    setPoint(1, "10", "9.00");
    setPoint(2, Cell(qint32(50)), Cell(8.5f));
    setPoint(5, "1,000", "$7");
    EXPECT_EQ(text(), QStringLiteral("10 - $9.00;   50 - $8.5;   1,000 - $$7"));
}

TEST_F(CreatdiscsTest, NoPointsGiveTheEmptyText)
{
    EXPECT_EQ(text(), QString());
}

TEST_F(CreatdiscsTest, AnUnusedFirstPointLeavesALeadingSeparator)
{
    setPoint(2, "50", "8");
    EXPECT_EQ(text(), QStringLiteral(";   50 - $8"));
}

TEST_F(CreatdiscsTest, PointFiveWithOnlyItsQuantityIsLeftOut)
{
    setPoint(1, "10", "9");
    catalogue.put(1, ProductRecord::PricePoint5, "100");
    EXPECT_EQ(text(), QStringLiteral("10 - $9"));
}

TEST_F(CreatdiscsTest, PointFiveIsShownWhenItsPriceIsSetEvenWithoutQuantity)
{
    catalogue.put(1, ProductRecord::Price5, "6");
    EXPECT_EQ(text(), QStringLiteral(";    - $6"));
}

TEST_F(CreatdiscsTest, PointsTwoToFourAreTestedOnTheirQuantity)
{
    catalogue.put(1, ProductRecord::Price3, "6");
    catalogue.put(1, ProductRecord::PricePoint4, "40");
    EXPECT_EQ(text(), QStringLiteral(";   40 - $"));
}

TEST(PriceScheduleTest, PriceUpdateLoadsTheFivePointsAndClearPriceEmptiesThem)
{
    Table catalogue(2, ProductRecord::FieldCount);
    Table schedule(5, 2);
    for (int k = 1; k <= 5; ++k) {
        catalogue.put(2, ProductRecord::pricePointField(k), QString::number(k * 10));
        catalogue.put(2, ProductRecord::pricePointPriceField(k), QString::number(20 - k));
    }
    PriceSchedule::PriceUpdate(catalogue, 2, schedule);
    for (int k = 1; k <= 5; ++k) {
        EXPECT_EQ(schedule.get(k, 1), Cell(QString::number(k * 10)));
        EXPECT_EQ(schedule.get(k, 2), Cell(QString::number(20 - k)));
    }
    PriceSchedule::ClearPrice(schedule);
    for (int k = 1; k <= 5; ++k) {
        EXPECT_TRUE(schedule.get(k, 1).isEmpty());
        EXPECT_TRUE(schedule.get(k, 2).isEmpty());
    }
    // The product row keeps its points until it is written back.
    EXPECT_EQ(catalogue.get(2, ProductRecord::PricePoint1), Cell("10"));
}

TEST(PriceScheduleTest, ThePriceBoxShowsCurrencyWhenItLosesTheFocus)
{
    EXPECT_EQ(PriceSchedule::formatPriceBox("1234.5", EnUs), QStringLiteral("$1,234.50"));
    EXPECT_EQ(PriceSchedule::formatPriceBox("$12.5", EnUs), QStringLiteral("$12.50"));
    EXPECT_EQ(PriceSchedule::formatPriceBox("0.125", EnUs), QStringLiteral("$0.12"));
    EXPECT_EQ(PriceSchedule::formatPriceBox("call us", EnUs), QStringLiteral("call us"));
    // A comma decimal reads as the catalogue file will read it after the next start.
    EXPECT_EQ(PriceSchedule::formatPriceBox("12,5", EnUs), QStringLiteral("$12.50"));
    EXPECT_EQ(PriceSchedule::formatPriceBox("", EnUs), QString());
}

// A list price kept as a text that is no number is charged as nothing: the status bar says so.
TEST(PriceScheduleTest, AListPriceThatIsNoNumberIsSaid)
{
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell("1 234,56"), DeDe),
        QStringLiteral("The list price \"1 234,56\" is no number: a quote charges 0,00\u00a0\u20ac "
                       "for this product until it is one, such as 12,50."));
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell("call us"), EnUs),
        QStringLiteral("The list price \"call us\" is no number: a quote charges $0.00 for this "
                       "product until it is one, such as 12.50."));
    for (const Cell &fine : { Cell("$12.50"), Cell(12.5f), Cell(), Cell(""), Cell("  ") })
        EXPECT_EQ(PriceSchedule::listPriceNotice(fine, EnUs), QString());
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell("1.234,56 \u20ac"), DeDe), QString());
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell(0.0f), EnUs), QString());
}

// A single holds no price beyond about 3.4E+38: such a value reads back as no number.
TEST(PriceScheduleTest, AListPriceBeyondASingleIsSaidToBeNoNumber)
{
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell("1e39"), EnUs),
        QStringLiteral("The list price \"1e39\" is no number: a quote charges $0.00 for this "
                       "product until it is one, such as 12.50."));
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell("-1e39"), EnUs),
        QStringLiteral("The list price \"-1e39\" is no number: a quote charges $0.00 for this "
                       "product until it is one, such as 12.50."));
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell("3e38"), EnUs), QString());
}

TEST(PriceScheduleTest, AListPriceBelowZeroIsSaid)
{
    const QString said = QStringLiteral("The list price ($3.00) is below zero: every unit of this "
                                        "product on a quote takes that much off its total.");
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell(-3.0f), EnUs), said);
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell("-3"), EnUs), said);
    EXPECT_EQ(PriceSchedule::listPriceNotice(Cell("($3.00)"), EnUs), said);
}

} // namespace
