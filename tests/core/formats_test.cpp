#include "core/formats.h"

#include "core/conversions.h"
#include "testlocales.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tarnwick {
namespace {

using testing::deDE;
using testing::enUS;
using testing::frFR;

QString formatUs(const Cell &value, const char *name)
{
    return format(value, QString::fromUtf8(name), enUS());
}

TEST(PlainToolTipTest, ATextThatCouldBeMarkupIsEscapedAndAnyOtherKept)
{
    EXPECT_EQ(plainToolTip(QStringLiteral("Price 1 ($13.00) is above the list price.")),
        QStringLiteral("Price 1 ($13.00) is above the list price."));
    EXPECT_EQ(plainToolTip(QStringLiteral("<b>P-1</b> & Co\n  two")),
        QStringLiteral("<qt style=\"white-space:pre-wrap\">&lt;b&gt;P-1&lt;/b&gt; &amp; Co\n  "
                       "two</qt>"));
}

TEST(CurrencyFormatTest, UsesTheLocalesCurrencyForm)
{
    EXPECT_EQ(formatUs(Cell(1234.5), "Currency"), QStringLiteral("$1,234.50"));
    EXPECT_EQ(formatUs(Cell(-5.0), "Currency"), QStringLiteral("($5.00)"));
    EXPECT_EQ(formatUs(Cell(0.0), "Currency"), QStringLiteral("$0.00"));
    EXPECT_EQ(formatUs(Cell(1234567.891), "Currency"), QStringLiteral("$1,234,567.89"));
    EXPECT_EQ(formatUs(Cell(19.99f), "Currency"), QStringLiteral("$19.99"));
    EXPECT_EQ(formatUs(Cell(qint32 { 1000 }), "Currency"), QStringLiteral("$1,000.00"));
}

TEST(CurrencyFormatTest, NameIsCaseInsensitive)
{
    EXPECT_EQ(formatUs(Cell(12.5), "currency"), QStringLiteral("$12.50"));
    EXPECT_EQ(formatUs(Cell(12.5), "CURRENCY"), QStringLiteral("$12.50"));
}

TEST(CurrencyFormatTest, RoundsCentsHalfToEven)
{
    EXPECT_EQ(formatUs(Cell(0.125), "Currency"), QStringLiteral("$0.12"));
    EXPECT_EQ(formatUs(Cell(0.375), "Currency"), QStringLiteral("$0.38"));
    EXPECT_EQ(formatUs(Cell(0.135), "Currency"), QStringLiteral("$0.14"));
    EXPECT_EQ(formatUs(Cell(-0.001), "Currency"), QStringLiteral("$0.00"));
}

TEST(CurrencyFormatTest, FormatsANumericTextAsItsNumber)
{
    EXPECT_EQ(formatUs(Cell("12.5"), "Currency"), QStringLiteral("$12.50"));
    EXPECT_EQ(formatUs(Cell(" 7 "), "Currency"), QStringLiteral("$7.00"));
    EXPECT_EQ(formatUs(Cell("$1,234.50"), "Currency"), QStringLiteral("$1,234.50"));
    EXPECT_EQ(formatUs(Cell("($5.00)"), "Currency"), QStringLiteral("($5.00)"));
}

TEST(CurrencyFormatTest, GermanAndFrenchCurrency)
{
    EXPECT_EQ(format(Cell(1234.5), QStringLiteral("Currency"), deDE()),
        QStringLiteral("1.234,50\u00a0\u20ac"));
    EXPECT_EQ(format(Cell(-5.0), QStringLiteral("Currency"), deDE()),
        QStringLiteral("-5,00\u00a0\u20ac"));
    EXPECT_EQ(format(Cell(1234.5), QStringLiteral("Currency"), frFR()),
        QStringLiteral("1\u202f234,50\u00a0\u20ac"));
    EXPECT_EQ(format(Cell("12,5"), QStringLiteral("currency"), frFR()),
        QStringLiteral("12,50\u00a0\u20ac"));
}

TEST(CurrencyFormatTest, FormattedCentsParseBackToTheSameValue)
{
    for (const QLocale &locale : { enUS(), deDE(), frFR() }) {
        for (int cents = -250000; cents <= 250000; cents += 7) {
            const double value = cents / 100.0;
            const QString shown = format(Cell(value), QStringLiteral("Currency"), locale);
            const std::optional<double> read = conv::parseNumber(shown, locale);
            ASSERT_TRUE(read.has_value()) << shown.toStdString();
            ASSERT_EQ(*read, value) << shown.toStdString();
        }
    }
}

TEST(CurrencyFormatTest, FormattedTextFormatsToItself)
{
    for (const QLocale &locale : { enUS(), deDE(), frFR() }) {
        for (const double value : { 0.0, 0.01, 5.0, -5.0, 99.99, 1234.5, -1234567.89, 1e9 }) {
            const QString shown = format(Cell(value), QStringLiteral("Currency"), locale);
            EXPECT_EQ(format(Cell(shown), QStringLiteral("Currency"), locale), shown);
            EXPECT_EQ(conv::toDouble(Cell(shown), locale), value);
        }
    }
}

TEST(PercentFormatTest, ShowsHundredfoldWithTwoDecimals)
{
    EXPECT_EQ(formatUs(Cell(0.05), "Percent"), QStringLiteral("5.00%"));
    EXPECT_EQ(formatUs(Cell(0.125), "Percent"), QStringLiteral("12.50%"));
    EXPECT_EQ(formatUs(Cell(12.345), "Percent"), QStringLiteral("1234.50%"));
    EXPECT_EQ(formatUs(Cell(1.0), "percent"), QStringLiteral("100.00%"));
    EXPECT_EQ(formatUs(Cell(0.0), "PERCENT"), QStringLiteral("0.00%"));
    EXPECT_EQ(formatUs(Cell(-0.05), "percent"), QStringLiteral("-5.00%"));
    EXPECT_EQ(formatUs(Cell(0.01f), "percent"), QStringLiteral("1.00%"));
    EXPECT_EQ(formatUs(Cell("0.25"), "percent"), QStringLiteral("25.00%"));
}

TEST(PercentFormatTest, UsesTheLocalesSeparators)
{
    EXPECT_EQ(format(Cell(0.125), QStringLiteral("Percent"), deDE()), QStringLiteral("12,50%"));
    EXPECT_EQ(format(Cell(12.345), QStringLiteral("Percent"), deDE()), QStringLiteral("1234,50%"));
}

TEST(FormatTest, AnInfiniteOrNoNumberIsOverflowInEveryNamedFormat)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const char *name : { "Currency", "percent", "#,###", "$#,#00.00", "General Number" }) {
        EXPECT_EQ(
            testing::errorNumberOf([&] { formatUs(Cell(infinity), name); }), ErrorNumber::Overflow)
            << name;
        EXPECT_EQ(testing::errorNumberOf([&] { formatUs(Cell(std::nan("")), name); }),
            ErrorNumber::Overflow)
            << name;
    }
}

TEST(PercentFormatTest, ShowsNoGroupSeparator)
{
    EXPECT_EQ(formatUs(Cell(72.8529), "percent"), QStringLiteral("7285.29%"));
    EXPECT_EQ(formatUs(Cell(-1234.5), "percent"), QStringLiteral("-123450.00%"));
}

TEST(PercentFormatTest, RoundsTheExactValueHalfToEven)
{
    // 0.00165 is held as 0.00164999999..., so it is below the half: 0.16%.
    EXPECT_EQ(formatUs(Cell(0.00165), "percent"), QStringLiteral("0.16%"));
    // 0.06625 is held as 0.06625000000...03, just above the half: 6.63%.
    EXPECT_EQ(formatUs(Cell(0.06625), "percent"), QStringLiteral("6.63%"));
}

TEST(WholeGroupedFormatTest, GroupsAWholeNumber)
{
    EXPECT_EQ(formatUs(Cell(1234.0), "#,###"), QStringLiteral("1,234"));
    EXPECT_EQ(formatUs(Cell(qint32 { 5 }), "#,###"), QStringLiteral("5"));
    EXPECT_EQ(formatUs(Cell(-1234.0), "#,###"), QStringLiteral("-1,234"));
    EXPECT_EQ(formatUs(Cell(1234567.0), "#,###"), QStringLiteral("1,234,567"));
    EXPECT_EQ(formatUs(Cell("1,000"), "#,###"), QStringLiteral("1,000"));
    EXPECT_EQ(
        format(Cell(1234567.0), QStringLiteral("#,###"), deDE()), QStringLiteral("1.234.567"));
}

TEST(WholeGroupedFormatTest, RoundsHalfToEven)
{
    EXPECT_EQ(formatUs(Cell(1234.5), "#,###"), QStringLiteral("1,234"));
    EXPECT_EQ(formatUs(Cell(1235.5), "#,###"), QStringLiteral("1,236"));
    EXPECT_EQ(formatUs(Cell(1.5), "#,###"), QStringLiteral("2"));
    EXPECT_EQ(formatUs(Cell(2.5f), "#,###"), QStringLiteral("2"));
    EXPECT_EQ(formatUs(Cell(99.7), "#,###"), QStringLiteral("100"));
}

TEST(WholeGroupedFormatTest, ZeroShowsNothing)
{
    EXPECT_EQ(formatUs(Cell(0.0), "#,###"), QString());
    EXPECT_EQ(formatUs(Cell(qint32 { 0 }), "#,###"), QString());
    EXPECT_EQ(formatUs(Cell(0.4), "#,###"), QString());
    EXPECT_EQ(formatUs(Cell(0.5), "#,###"), QString()); // the even neighbour is 0
    EXPECT_EQ(formatUs(Cell(-0.5), "#,###"), QString());
}

TEST(DollarPaddedFormatTest, DollarWithTwoIntegerDigitsAndTwoDecimals)
{
    EXPECT_EQ(formatUs(Cell(5.0), "$#,#00.00"), QStringLiteral("$05.00"));
    EXPECT_EQ(formatUs(Cell(1234.5), "$#,#00.00"), QStringLiteral("$1,234.50"));
    EXPECT_EQ(formatUs(Cell(0.0), "$#,#00.00"), QStringLiteral("$00.00"));
    EXPECT_EQ(formatUs(Cell(-5.0), "$#,#00.00"), QStringLiteral("-$05.00"));
    EXPECT_EQ(formatUs(Cell(0.5), "$#,#00.00"), QStringLiteral("$00.50"));
    EXPECT_EQ(formatUs(Cell(10.0), "$#,#00.00"), QStringLiteral("$10.00"));
    EXPECT_EQ(formatUs(Cell(9.999), "$#,#00.00"), QStringLiteral("$10.00"));
    EXPECT_EQ(formatUs(Cell(1234567.891), "$#,#00.00"), QStringLiteral("$1,234,567.89"));
    EXPECT_EQ(formatUs(Cell(-0.001), "$#,#00.00"), QStringLiteral("$00.00"));
}

TEST(DollarPaddedFormatTest, KeepsTheDollarButUsesTheLocalesSeparators)
{
    EXPECT_EQ(format(Cell(5.0), QStringLiteral("$#,#00.00"), deDE()), QStringLiteral("$05,00"));
    EXPECT_EQ(
        format(Cell(1234.5), QStringLiteral("$#,#00.00"), deDE()), QStringLiteral("$1.234,50"));
}

TEST(GeneralNumberFormatTest, ShowsTheNumbersText)
{
    EXPECT_EQ(formatUs(Cell(12.5), "General Number"), QStringLiteral("12.5"));
    EXPECT_EQ(formatUs(Cell(1234567.0), "General Number"), QStringLiteral("1234567"));
    EXPECT_EQ(formatUs(Cell(0.1f), "General Number"), QStringLiteral("0.1"));
    EXPECT_EQ(formatUs(Cell(1.0 / 3.0), "general number"), QStringLiteral("0.333333333333333"));
    EXPECT_EQ(formatUs(Cell(qint32 { 250 }), "GENERAL NUMBER"), QStringLiteral("250"));
    EXPECT_EQ(formatUs(Cell("12.50"), "General Number"), QStringLiteral("12.5"));
    EXPECT_EQ(formatUs(Cell("$1,234.50"), "General Number"), QStringLiteral("1234.5"));
    EXPECT_EQ(format(Cell(12.5), QStringLiteral("General Number"), deDE()), QStringLiteral("12,5"));
}

TEST(NamedFormatTest, EmptyNullAndEmptyTextGiveEmptyText)
{
    for (const char *name :
        { "Currency", "percent", "#,###", "$#,#00.00", "General Number", "Fixed" }) {
        EXPECT_EQ(formatUs(Cell(), name), QString()) << name;
        EXPECT_EQ(formatUs(Cell::null(), name), QString()) << name;
        EXPECT_EQ(formatUs(Cell(""), name), QString()) << name;
    }
}

TEST(NamedFormatTest, TextThatIsNoNumberIsReturnedUnchanged)
{
    for (const char *name : { "Currency", "percent", "#,###", "$#,#00.00", "General Number" }) {
        EXPECT_EQ(formatUs(Cell("call us"), name), QStringLiteral("call us")) << name;
        EXPECT_EQ(formatUs(Cell("  12abc "), name), QStringLiteral("  12abc ")) << name;
    }
}

TEST(NamedFormatTest, UnknownNameGivesTheValuesText)
{
    EXPECT_EQ(formatUs(Cell(12.5), "Fixed"), QStringLiteral("12.5"));
    EXPECT_EQ(formatUs(Cell(12345678.0f), "Standard"), QStringLiteral("1.234568E+07"));
    EXPECT_EQ(formatUs(Cell("12.50"), "Fixed"), QStringLiteral("12.50"));
    EXPECT_EQ(formatUs(Cell("abc"), ""), QStringLiteral("abc"));
    // The pattern names are exact: a near miss is an unknown name.
    EXPECT_EQ(formatUs(Cell(1234.0), "#,##0"), QStringLiteral("1234"));
}

TEST(ProgramLocaleTest, CLocaleBecomesUnitedStatesEnglish)
{
    const QLocale locale = programLocaleFrom(QLocale::c());
    EXPECT_EQ(locale.language(), QLocale::English);
    EXPECT_EQ(locale.territory(), QLocale::UnitedStates);
    EXPECT_EQ(locale.toCurrencyString(1.5, QString(), 2), QStringLiteral("$1.50"));
}

TEST(ProgramLocaleTest, OtherLocalesAreKept)
{
    EXPECT_EQ(programLocaleFrom(deDE()), deDE());
    EXPECT_EQ(programLocaleFrom(frFR()), frFR());
    EXPECT_EQ(programLocaleFrom(enUS()), enUS());
}

TEST(ProgramLocaleTest, FollowsTheSystemLocaleAndIsNeverC)
{
    EXPECT_EQ(programLocale(), programLocaleFrom(QLocale::system()));
    EXPECT_NE(programLocale().language(), QLocale::C);
}

} // namespace
} // namespace tarnwick
