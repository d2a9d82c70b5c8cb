#include "core/conversions.h"

#include "testlocales.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarnwick {
namespace {

using testing::deDE;
using testing::enUS;
using testing::errorNumberOf;
using testing::frFR;

QString text(const Cell &cell)
{
    return conv::toText(cell, enUS());
}

TEST(ToTextTest, EmptyGivesEmptyTextAndTextIsReturnedAsItIs)
{
    EXPECT_EQ(text(Cell()), QString());
    EXPECT_EQ(text(Cell("")), QString());
    EXPECT_EQ(text(Cell("  Widget 12,5 ")), QStringLiteral("  Widget 12,5 "));
    EXPECT_EQ(text(Cell("$1,234.50")), QStringLiteral("$1,234.50"));
}

TEST(ToTextTest, NullRaisesInvalidUseOfNull)
{
    EXPECT_EQ(errorNumberOf([] { text(Cell::null()); }), ErrorNumber::InvalidUseOfNull);
}

TEST(ToTextTest, SingleShowsItsShortestForm)
{
    EXPECT_EQ(text(Cell(12.5f)), QStringLiteral("12.5"));
    EXPECT_EQ(text(Cell(0.1f)), QStringLiteral("0.1"));
    EXPECT_EQ(text(Cell(-3.25f)), QStringLiteral("-3.25"));
    EXPECT_EQ(text(Cell(100.0f)), QStringLiteral("100"));
    EXPECT_EQ(text(Cell(19.99f)), QStringLiteral("19.99"));
}

TEST(ToTextTest, SingleShowsAtMostSevenSignificantDigits)
{
    EXPECT_EQ(text(Cell(1234567.8f)), QStringLiteral("1234568"));
    EXPECT_EQ(text(Cell(1.0f / 3.0f)), QStringLiteral("0.3333333"));
    EXPECT_EQ(text(Cell(2.0f / 3.0f)), QStringLiteral("0.6666667"));
    EXPECT_EQ(text(Cell(9999999.0f)), QStringLiteral("9999999"));
}

TEST(ToTextTest, SingleUsesExponentFromSevenIntegerDigitsOn)
{
    EXPECT_EQ(text(Cell(12345678.0f)), QStringLiteral("1.234568E+07"));
    EXPECT_EQ(text(Cell(10000000.0f)), QStringLiteral("1E+07"));
    EXPECT_EQ(text(Cell(-25000000.0f)), QStringLiteral("-2.5E+07"));
    EXPECT_EQ(text(Cell(3.4e38f)), QStringLiteral("3.4E+38"));
}

TEST(ToTextTest, SingleUsesExponentBelowOneTenThousandth)
{
    EXPECT_EQ(text(Cell(0.0001f)), QStringLiteral("0.0001"));
    EXPECT_EQ(text(Cell(0.00001f)), QStringLiteral("1E-05"));
    EXPECT_EQ(text(Cell(0.000015f)), QStringLiteral("1.5E-05"));
    EXPECT_EQ(text(Cell(-2.5e-10f)), QStringLiteral("-2.5E-10"));
}

TEST(ToTextTest, ZeroOfEitherSignIsZero)
{
    EXPECT_EQ(text(Cell(0.0f)), QStringLiteral("0"));
    EXPECT_EQ(text(Cell(-0.0f)), QStringLiteral("0"));
    EXPECT_EQ(text(Cell(0.0)), QStringLiteral("0"));
    EXPECT_EQ(text(Cell(-0.0)), QStringLiteral("0"));
}

TEST(ToTextTest, DoubleShowsFifteenSignificantDigits)
{
    EXPECT_EQ(text(Cell(0.1)), QStringLiteral("0.1"));
    EXPECT_EQ(text(Cell(0.1 + 0.2)), QStringLiteral("0.3"));
    EXPECT_EQ(text(Cell(1.0 / 3.0)), QStringLiteral("0.333333333333333"));
    EXPECT_EQ(text(Cell(2.0 / 3.0)), QStringLiteral("0.666666666666667"));
    EXPECT_EQ(text(Cell(-2.5)), QStringLiteral("-2.5"));
    EXPECT_EQ(text(Cell(12345678.0)), QStringLiteral("12345678"));
    EXPECT_EQ(text(Cell(123456789012345.0)), QStringLiteral("123456789012345"));
}

TEST(ToTextTest, DoubleUsesExponentFromFifteenIntegerDigitsOn)
{
    EXPECT_EQ(text(Cell(1e15)), QStringLiteral("1E+15"));
    EXPECT_EQ(text(Cell(1234567890123456.0)), QStringLiteral("1.23456789012346E+15"));
    EXPECT_EQ(text(Cell(1e100)), QStringLiteral("1E+100"));
    EXPECT_EQ(text(Cell(0.0001)), QStringLiteral("0.0001"));
    EXPECT_EQ(text(Cell(0.00001)), QStringLiteral("1E-05"));
    EXPECT_EQ(text(Cell(-1.25e-7)), QStringLiteral("-1.25E-07"));
}

TEST(ToTextTest, Int32IsPlainDecimalWithoutGrouping)
{
    EXPECT_EQ(text(Cell(qint32 { 42 })), QStringLiteral("42"));
    EXPECT_EQ(text(Cell(qint32 { -7 })), QStringLiteral("-7"));
    EXPECT_EQ(text(Cell(qint32 { 1234567 })), QStringLiteral("1234567"));
    EXPECT_EQ(text(Cell(std::numeric_limits<qint32>::min())), QStringLiteral("-2147483648"));
    EXPECT_EQ(conv::toText(Cell(qint32 { 1234567 }), deDE()), QStringLiteral("1234567"));
}

TEST(ToTextTest, DecimalSeparatorIsTheLocales)
{
    EXPECT_EQ(conv::toText(Cell(12.5f), deDE()), QStringLiteral("12,5"));
    EXPECT_EQ(conv::toText(Cell(1234.5), deDE()), QStringLiteral("1234,5"));
    EXPECT_EQ(conv::toText(Cell(12345678.0f), deDE()), QStringLiteral("1,234568E+07"));
    EXPECT_EQ(conv::toText(Cell(-0.1), frFR()), QStringLiteral("-0,1"));
    EXPECT_EQ(conv::toText(Cell(1234567.0), frFR()), QStringLiteral("1234567"));
}

TEST(ToTextTest, NonFiniteDoubleRaisesOverflow)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(errorNumberOf([&] { text(Cell(infinity)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([&] { text(Cell(-infinity)); }), ErrorNumber::Overflow);
}

TEST(ToTextTest, TextOfANumberParsesBackToTheSameValue)
{
    for (const double value : { 0.1, 1.0 / 3.0, 1234.5678, -98765.4321, 1e-7, 6.02e23 }) {
        const QString shown = conv::toText(Cell(value), deDE());
        const std::optional<double> read = conv::parseNumber(shown, deDE());
        ASSERT_TRUE(read.has_value()) << shown.toStdString();
        // Fifteen digits keep the value to within one part in 10^14.
        EXPECT_NEAR(*read, value, std::abs(value) * 1e-14) << shown.toStdString();
    }
}

} // namespace
} // namespace tarnwick
