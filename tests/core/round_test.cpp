#include "core/conversions.h"

#include "testlocales.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarnwick {
namespace {

using testing::errorNumberOf;

TEST(RoundTest, WholeNumbersHalvesGoToEven)
{
    EXPECT_EQ(conv::round(0.5), 0.0);
    EXPECT_EQ(conv::round(1.5), 2.0);
    EXPECT_EQ(conv::round(2.5), 2.0);
    EXPECT_EQ(conv::round(3.5), 4.0);
    EXPECT_EQ(conv::round(-1.5), -2.0);
    EXPECT_EQ(conv::round(-2.5), -2.0);
    EXPECT_EQ(conv::round(2.5, 0), 2.0);
}

TEST(RoundTest, OtherFractionsGoToTheNearest)
{
    EXPECT_EQ(conv::round(2.4), 2.0);
    EXPECT_EQ(conv::round(2.6), 3.0);
    EXPECT_EQ(conv::round(-2.6), -3.0);
    EXPECT_EQ(conv::round(7.0), 7.0);
}

TEST(RoundTest, ExactHalvesAtDecimalsGoToEven)
{
    // 0.125, 0.375 and 0.0625 are exact in binary, so they are true halves.
    EXPECT_DOUBLE_EQ(conv::round(0.125, 2), 0.12);
    EXPECT_DOUBLE_EQ(conv::round(0.375, 2), 0.38);
    EXPECT_DOUBLE_EQ(conv::round(-0.125, 2), -0.12);
    EXPECT_DOUBLE_EQ(conv::round(0.0625, 3), 0.062);
    EXPECT_DOUBLE_EQ(conv::round(1.25, 1), 1.2);
    EXPECT_DOUBLE_EQ(conv::round(1.75, 1), 1.8);
}

TEST(RoundTest, NonHalvesAtDecimalsGoToTheNearest)
{
    EXPECT_DOUBLE_EQ(conv::round(12.345, 1), 12.3);
    EXPECT_DOUBLE_EQ(conv::round(1234.5678, 3), 1234.568);
    EXPECT_DOUBLE_EQ(conv::round(19.994, 2), 19.99);
    EXPECT_DOUBLE_EQ(conv::round(19.996, 2), 20.0);
}

TEST(RoundTest, DecimalHalvesFollowTheirBinaryValue)
{
    // 0.135 is stored as 0.13500000000000000888..., just above the half: 0.14.
    EXPECT_DOUBLE_EQ(conv::round(0.135, 2), 0.14);
    // 2.675 is stored as 2.67499999999999982236..., just below the half: 2.67, not 2.68.
    // This is accepted behaviour: the rounding sees the stored value, not the typed one.
    EXPECT_DOUBLE_EQ(conv::round(2.675, 2), 2.67);
    // 1.115 is stored as 1.11499999999999999112..., below the half as well.
    EXPECT_DOUBLE_EQ(conv::round(1.115, 2), 1.11);
    // 1.005 is stored as 1.00499999999999989342...: 1.
    EXPECT_DOUBLE_EQ(conv::round(1.005, 2), 1.0);
}

TEST(RoundTest, ResultIsNeverNegativeZero)
{
    EXPECT_FALSE(std::signbit(conv::round(-0.4)));
    EXPECT_FALSE(std::signbit(conv::round(-0.001, 2)));
}

TEST(RoundTest, HugeValuesAndManyDecimalsAreKept)
{
    EXPECT_EQ(conv::round(1e300, 2), 1e300);
    EXPECT_EQ(conv::round(0.1, 30), 0.1);
    EXPECT_EQ(conv::round(123456789.0, 2), 123456789.0);
}

TEST(RoundTest, NegativeDecimalsAreAnInvalidArgument)
{
    EXPECT_EQ(errorNumberOf([] { conv::round(12.5, -1); }), 5);
}

} // namespace
} // namespace tarnwick
