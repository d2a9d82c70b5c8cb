#include "core/conversions.h"

#include "testlocales.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>

namespace tarnwick {
namespace {

using testing::deDE;
using testing::enUS;
using testing::errorNumberOf;

double toDouble(const Cell &cell)
{
    return conv::toDouble(cell, enUS());
}

float toSingle(const Cell &cell)
{
    return conv::toSingle(cell, enUS());
}

qint16 toInt16(const Cell &cell)
{
    return conv::toInt16(cell, enUS());
}

qint32 toInt32(const Cell &cell)
{
    return conv::toInt32(cell, enUS());
}

TEST(ToDoubleTest, EmptyIsZeroAndNumbersAreTheirValue)
{
    EXPECT_EQ(toDouble(Cell()), 0.0);
    EXPECT_EQ(toDouble(Cell(12.5f)), 12.5);
    EXPECT_EQ(toDouble(Cell(-0.75)), -0.75);
    EXPECT_EQ(toDouble(Cell(qint32 { 40000 })), 40000.0);
}

TEST(ToDoubleTest, TextIsParsedInTheLocale)
{
    EXPECT_EQ(toDouble(Cell("12.5")), 12.5);
    EXPECT_EQ(toDouble(Cell("$1,234.50")), 1234.5);
    EXPECT_EQ(toDouble(Cell("($5.00)")), -5.0);
    EXPECT_EQ(conv::toDouble(Cell("1.234,5"), deDE()), 1234.5);
}

// No one groups thousands behind a lone 0: "0.125" in German and "0,125" in English are the
// decimal written with the other mark, never 125.
TEST(ToDoubleTest, ALeadingZeroIsNeverAGroupOfThousands)
{
    EXPECT_EQ(conv::toDouble(Cell("0.125"), deDE()), 0.125);
    EXPECT_EQ(conv::toDouble(Cell("-0.125"), deDE()), -0.125);
    EXPECT_EQ(conv::toDouble(Cell("0,125 €"), deDE()), 0.125);
    EXPECT_EQ(conv::toDouble(Cell("2.675"), deDE()), 2675.0) << "a true group stays one";
    EXPECT_EQ(conv::toDouble(Cell("1,234"), enUS()), 1234.0);
    EXPECT_EQ(errorNumberOf([] { toDouble(Cell("0,125")); }), ErrorNumber::TypeMismatch)
        << "not read as 125 in English";
    EXPECT_EQ(conv::toDouble(Cell("0.125"), enUS()), 0.125);
    EXPECT_EQ(conv::toDouble(Cell("0"), deDE()), 0.0);
}

TEST(ToDoubleTest, TextThatIsNoNumberIsATypeMismatch)
{
    EXPECT_EQ(errorNumberOf([] { toDouble(Cell("abc")); }), ErrorNumber::TypeMismatch);
    EXPECT_EQ(errorNumberOf([] { toDouble(Cell("12abc")); }), ErrorNumber::TypeMismatch);
    EXPECT_EQ(errorNumberOf([] { toDouble(Cell("")); }), ErrorNumber::TypeMismatch);
}

TEST(ToDoubleTest, NullIsInvalidUseOfNull)
{
    EXPECT_EQ(errorNumberOf([] { toDouble(Cell::null()); }), ErrorNumber::InvalidUseOfNull);
}

TEST(ToSingleTest, NarrowsToSinglePrecision)
{
    EXPECT_EQ(toSingle(Cell("0.1")), 0.1f);
    EXPECT_EQ(toSingle(Cell(0.1)), 0.1f);
    EXPECT_EQ(toSingle(Cell("$19.99")), 19.99f);
    EXPECT_EQ(toSingle(Cell()), 0.0f);
    EXPECT_EQ(toSingle(Cell(qint32 { -3 })), -3.0f);
}

TEST(ToSingleTest, LargestSingleIsAccepted)
{
    EXPECT_EQ(toSingle(Cell(static_cast<double>(FLT_MAX))), FLT_MAX);
    EXPECT_EQ(toSingle(Cell(-static_cast<double>(FLT_MAX))), -FLT_MAX);
    EXPECT_EQ(toSingle(Cell("3.4E+38")), 3.4e38f);
}

TEST(ToSingleTest, BeyondTheSingleRangeIsOverflow)
{
    EXPECT_EQ(errorNumberOf([] { toSingle(Cell(1e39)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toSingle(Cell(-1e39)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toSingle(Cell("1E+39")); }), ErrorNumber::Overflow);
}

TEST(ToSingleTest, PassesOnTextAndNullErrors)
{
    EXPECT_EQ(errorNumberOf([] { toSingle(Cell("price")); }), ErrorNumber::TypeMismatch);
    EXPECT_EQ(errorNumberOf([] { toSingle(Cell::null()); }), ErrorNumber::InvalidUseOfNull);
}

TEST(ToInt16Test, RoundsHalvesToEven)
{
    EXPECT_EQ(toInt16(Cell(0.5)), 0);
    EXPECT_EQ(toInt16(Cell(1.5)), 2);
    EXPECT_EQ(toInt16(Cell(2.5)), 2);
    EXPECT_EQ(toInt16(Cell(3.5)), 4);
    EXPECT_EQ(toInt16(Cell(-0.5)), 0);
    EXPECT_EQ(toInt16(Cell(-2.5)), -2);
    EXPECT_EQ(toInt16(Cell(-3.5)), -4);
    EXPECT_EQ(toInt16(Cell(2.5f)), 2);
    EXPECT_EQ(toInt16(Cell("2.5")), 2);
}

TEST(ToInt16Test, RoundsOtherFractionsToTheNearest)
{
    EXPECT_EQ(toInt16(Cell(2.4999)), 2);
    EXPECT_EQ(toInt16(Cell(2.5001)), 3);
    EXPECT_EQ(toInt16(Cell(-2.6)), -3);
    EXPECT_EQ(toInt16(Cell(-2.4)), -2);
    EXPECT_EQ(toInt16(Cell("($12.50)")), -12);
}

TEST(ToInt16Test, AcceptsTheWholeRange)
{
    EXPECT_EQ(toInt16(Cell(qint32 { 32767 })), 32767);
    EXPECT_EQ(toInt16(Cell(32767.4)), 32767);
    EXPECT_EQ(toInt16(Cell("32,767")), 32767);
    EXPECT_EQ(toInt16(Cell(qint32 { -32768 })), -32768);
    EXPECT_EQ(toInt16(Cell("-32768")), -32768);
    EXPECT_EQ(toInt16(Cell(-32768.5)), -32768); // the even neighbour is inside
}

TEST(ToDoubleTest, AnInfiniteOrNoNumberIsOverflow)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(errorNumberOf([&] { toDouble(Cell(infinity)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([&] { toDouble(Cell(-infinity)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toDouble(Cell(std::nan(""))); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { conv::checkedDouble(1e308 * 10.0); }), ErrorNumber::Overflow);
    EXPECT_EQ(conv::checkedDouble(1e308), 1e308);
}

TEST(ToSingleTest, ATextOfThreeHundredDigitsIsOverflow)
{
    const QString digits(300, QLatin1Char('9'));
    EXPECT_EQ(errorNumberOf([&] { toSingle(Cell(digits)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toSingle(Cell("1e40")); }), ErrorNumber::Overflow);
}

TEST(ToInt32Test, ATenDigitQuantityIsOverflow)
{
    EXPECT_EQ(errorNumberOf([] { toInt32(Cell("1e10")); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt32(Cell(2147483647.5)); }), ErrorNumber::Overflow);
    EXPECT_EQ(toInt32(Cell(2147483647.0)), 2147483647);
}

TEST(ToInt16Test, OutsideTheRangeIsOverflow)
{
    EXPECT_EQ(errorNumberOf([] { toInt16(Cell(qint32 { 32768 })); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt16(Cell(32767.5)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt16(Cell("32,768")); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt16(Cell(qint32 { -32769 })); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt16(Cell(-32768.6)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt16(Cell("-32,769")); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt16(Cell(1e10f)); }), ErrorNumber::Overflow);
}

TEST(ToInt16Test, EmptyIsZeroButEmptyTextAndNullAreErrors)
{
    EXPECT_EQ(toInt16(Cell()), 0);
    EXPECT_EQ(errorNumberOf([] { toInt16(Cell("")); }), ErrorNumber::TypeMismatch);
    EXPECT_EQ(errorNumberOf([] { toInt16(Cell::null()); }), ErrorNumber::InvalidUseOfNull);
}

TEST(ToInt32Test, RoundsHalvesToEven)
{
    EXPECT_EQ(toInt32(Cell(2.5)), 2);
    EXPECT_EQ(toInt32(Cell(3.5)), 4);
    EXPECT_EQ(toInt32(Cell(-2.5)), -2);
    EXPECT_EQ(toInt32(Cell(100000.5)), 100000);
    EXPECT_EQ(toInt32(Cell(100001.5)), 100002);
    EXPECT_EQ(toInt32(Cell("1,000,000")), 1000000);
    EXPECT_EQ(toInt32(Cell(qint32 { 40000 })), 40000);
}

TEST(ToInt32Test, AcceptsTheWholeRange)
{
    EXPECT_EQ(toInt32(Cell(2147483647.0)), 2147483647);
    EXPECT_EQ(toInt32(Cell(2147483647.4)), 2147483647);
    EXPECT_EQ(toInt32(Cell(-2147483648.0)), -2147483647 - 1);
    EXPECT_EQ(toInt32(Cell(-2147483648.5)), -2147483647 - 1); // even neighbour
}

TEST(ToInt32Test, OutsideTheRangeIsOverflow)
{
    EXPECT_EQ(errorNumberOf([] { toInt32(Cell(2147483647.5)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt32(Cell(2147483648.0)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt32(Cell("2,147,483,648")); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt32(Cell(-2147483649.0)); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorNumberOf([] { toInt32(Cell(1e300)); }), ErrorNumber::Overflow);
}

TEST(ToInt32Test, TextAndNullErrors)
{
    EXPECT_EQ(toInt32(Cell()), 0);
    EXPECT_EQ(errorNumberOf([] { toInt32(Cell("ten")); }), ErrorNumber::TypeMismatch);
    EXPECT_EQ(errorNumberOf([] { toInt32(Cell::null()); }), ErrorNumber::InvalidUseOfNull);
}

TEST(IsNumericTest, NumbersAndNumericTextsAreNumeric)
{
    EXPECT_TRUE(conv::isNumeric(Cell(0.0f), enUS()));
    EXPECT_TRUE(conv::isNumeric(Cell(1.5), enUS()));
    EXPECT_TRUE(conv::isNumeric(Cell(qint32 { 0 }), enUS()));
    EXPECT_TRUE(conv::isNumeric(Cell("12"), enUS()));
    EXPECT_TRUE(conv::isNumeric(Cell(" $1,234.50 "), enUS()));
    EXPECT_TRUE(conv::isNumeric(Cell("($5.00)"), enUS()));
    EXPECT_TRUE(conv::isNumeric(Cell("1.234,5"), deDE()));
}

TEST(IsNumericTest, EmptyBlankNullAndWordsAreNotNumeric)
{
    EXPECT_FALSE(conv::isNumeric(Cell(), enUS()));
    EXPECT_FALSE(conv::isNumeric(Cell(""), enUS()));
    EXPECT_FALSE(conv::isNumeric(Cell("   "), enUS()));
    EXPECT_FALSE(conv::isNumeric(Cell::null(), enUS()));
    EXPECT_FALSE(conv::isNumeric(Cell("abc"), enUS()));
    EXPECT_FALSE(conv::isNumeric(Cell("1.234,5"), enUS()));
}

TEST(IsNumericTest, AgreesWithToDouble)
{
    for (const char *text : { "7", "abc", "$", "1e3", "(2)", "--1", "1,000", "12abc" }) {
        const Cell cell(text);
        const bool converts = errorNumberOf([&] { toDouble(cell); }) == -1;
        EXPECT_EQ(conv::isNumeric(cell, enUS()), converts) << text;
    }
}

TEST(IsBeyondSingleTest, OnlyNumbersTooLargeForASingleAre)
{
    for (const Cell &beyond : { Cell("1e39"), Cell("-1e39"), Cell(1e39), Cell("$1e39") })
        EXPECT_TRUE(conv::isBeyondSingle(beyond, enUS())) << beyond.asText().toStdString();
    for (const Cell &within : { Cell("3e38"), Cell(3.4e38f), Cell("12.50"), Cell("call us"), Cell(),
             Cell(""), Cell::null() })
        EXPECT_FALSE(conv::isBeyondSingle(within, enUS())) << within.asText().toStdString();
}

TEST(CellNumber, ReadsNumbersAndTextsAsTheLocaleDoesWithOrWithoutTheQuickPath)
{
    const QByteArray bytes = "12.50";
    auto *block = new CellTextBlock;
    block->bytes = bytes;
    const Cell plainBytes = Cell::inBlockAdopting(block, 0, bytes.size(), TextEncoding::Utf8);
    for (const bool plain : { false, true }) {
        EXPECT_EQ(conv::cellNumber(plainBytes, enUS(), plain), 12.5);
        EXPECT_EQ(conv::cellNumber(Cell(QStringLiteral("$1,234.50")), enUS(), plain), 1234.5);
        EXPECT_EQ(conv::cellNumber(Cell(2.5f), enUS(), plain), 2.5);
        EXPECT_EQ(conv::cellNumber(Cell(QStringLiteral(" 7 ")), enUS(), plain), 7.0);
        EXPECT_FALSE(conv::cellNumber(Cell(QStringLiteral("n/a")), enUS(), plain));
        EXPECT_FALSE(conv::cellNumber(Cell(QString()), enUS(), plain));
        EXPECT_FALSE(conv::cellNumber(Cell(), enUS(), plain));
    }
    EXPECT_EQ(conv::cellNumber(Cell(QStringLiteral("12,5")), deDE(), false), 12.5);
}

} // namespace
} // namespace tarnwick
