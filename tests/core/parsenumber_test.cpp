#include "core/conversions.h"

#include "testlocales.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using testing::deDE;
using testing::enUS;
using testing::frFR;

std::optional<double> parseUs(const QString &text)
{
    return conv::parseNumber(text, enUS());
}

TEST(ParseNumberTest, ReadsPlainNumbers)
{
    EXPECT_EQ(parseUs(QStringLiteral("12.5")), 12.5);
    EXPECT_EQ(parseUs(QStringLiteral("0")), 0.0);
    EXPECT_EQ(parseUs(QStringLiteral("42")), 42.0);
    EXPECT_EQ(parseUs(QStringLiteral(".5")), 0.5);
    EXPECT_EQ(parseUs(QStringLiteral("+5")), 5.0);
}

TEST(ParseNumberTest, TrimsBlanks)
{
    EXPECT_EQ(parseUs(QStringLiteral("  12.5  ")), 12.5);
    EXPECT_EQ(parseUs(QStringLiteral("\t7\n")), 7.0);
    EXPECT_EQ(parseUs(QStringLiteral(" $ 5.00 ")), 5.0);
}

TEST(ParseNumberTest, ReadsGroupSeparators)
{
    EXPECT_EQ(parseUs(QStringLiteral("1,234.5")), 1234.5);
    EXPECT_EQ(parseUs(QStringLiteral("1,234,567.25")), 1234567.25);
    EXPECT_EQ(parseUs(QStringLiteral("32,768")), 32768.0);
}

TEST(ParseNumberTest, ReadsTheCurrencySymbolBeforeOrAfter)
{
    EXPECT_EQ(parseUs(QStringLiteral("$1,234.50")), 1234.5);
    EXPECT_EQ(parseUs(QStringLiteral("$0.00")), 0.0);
    EXPECT_EQ(parseUs(QStringLiteral("5$")), 5.0);
    EXPECT_EQ(parseUs(QStringLiteral("5.25 $")), 5.25);
}

TEST(ParseNumberTest, ReadsEveryFormOfNegative)
{
    EXPECT_EQ(parseUs(QStringLiteral("($5.00)")), -5.0);
    EXPECT_EQ(parseUs(QStringLiteral("(5)")), -5.0);
    EXPECT_EQ(parseUs(QStringLiteral("$(5.00)")), -5.0);
    EXPECT_EQ(parseUs(QStringLiteral("-5")), -5.0);
    EXPECT_EQ(parseUs(QStringLiteral("5-")), -5.0);
    EXPECT_EQ(parseUs(QStringLiteral("-$5.00")), -5.0);
    EXPECT_EQ(parseUs(QStringLiteral("$-5.00")), -5.0);
    EXPECT_EQ(parseUs(QStringLiteral("$5.00-")), -5.0);
    EXPECT_EQ(parseUs(QStringLiteral("( 1,234.50 )")), -1234.5);
}

TEST(ParseNumberTest, ReadsExponents)
{
    EXPECT_EQ(parseUs(QStringLiteral("1.5E+03")), 1500.0);
    EXPECT_EQ(parseUs(QStringLiteral("1.5e3")), 1500.0);
    EXPECT_EQ(parseUs(QStringLiteral("-2.5E-02")), -0.025);
    EXPECT_EQ(parseUs(QStringLiteral("1.234568E+07")), 12345680.0);
}

TEST(ParseNumberTest, RejectsTextThatIsNoNumber)
{
    for (const char *text : { "", "   ", "abc", "12abc", "abc12", "$", "-", "()", "( )", "$-" }) {
        EXPECT_FALSE(parseUs(QString::fromUtf8(text)).has_value()) << text;
    }
}

TEST(ParseNumberTest, RejectsMalformedNumbers)
{
    for (const char *text :
        { "1.2.3", "5-3", "(5", "5)", "12 34", "1,2345", "0x10", "1e", "1e400" }) {
        EXPECT_FALSE(parseUs(QString::fromUtf8(text)).has_value()) << text;
    }
}

TEST(ParseNumberTest, RejectsMoreThanOneSignOrSymbol)
{
    for (const char *text : { "--5", "-5-", "-(5)", "(-5)", "+-5", "$$5", "$5$", "(5)-" }) {
        EXPECT_FALSE(parseUs(QString::fromUtf8(text)).has_value()) << text;
    }
}

TEST(ParseNumberTest, RejectsInfinityAndNotANumber)
{
    for (const char *text : { "inf", "-inf", "infinity", "nan", "NaN" }) {
        EXPECT_FALSE(parseUs(QString::fromUtf8(text)).has_value()) << text;
    }
}

TEST(ParseNumberTest, ReadsTheGermanForm)
{
    EXPECT_EQ(conv::parseNumber(QStringLiteral("12,5"), deDE()), 12.5);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1.234,5"), deDE()), 1234.5);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1.234,50 \u20ac"), deDE()), 1234.5);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("-5,00\u00a0\u20ac"), deDE()), -5.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("\u20ac5"), deDE()), 5.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1,5E+03"), deDE()), 1500.0);
}

// Price lists write a whole amount with dashes in place of the cents: "1.250,-" is twelve
// hundred and fifty euros, not a negative number.
TEST(ParseNumberTest, DashesInPlaceOfTheCentsMarkAWholeAmount)
{
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1.250,-"), deDE()), 1250.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("12,\u2013"), deDE()), 12.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("12,--"), deDE()), 12.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1.250,- \u20ac"), deDE()), 1250.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("\u20ac 99,\u2014"), deDE()), 99.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("-12,-"), deDE()), -12.0) << "a sign of its own";
    EXPECT_EQ(parseUs(QStringLiteral("12.-")), 12.0);
    EXPECT_EQ(parseUs(QStringLiteral("$1,250.-")), 1250.0);
    // A minus after the digits is still a minus.
    EXPECT_EQ(conv::parseNumber(QStringLiteral("12-"), deDE()), -12.0);
    EXPECT_EQ(parseUs(QStringLiteral("12-")), -12.0);
    for (const char *text : { ",-", "-,-", "12,-,-", "abc,-", "1,2,-", "1,250.-" })
        EXPECT_FALSE(conv::parseNumber(QString::fromUtf8(text), deDE()).has_value()) << text;
    EXPECT_FALSE(parseUs(QStringLiteral("1.2.-")).has_value()) << "two decimal marks";
}

TEST(ParseNumberTest, ReadsTheFrenchFormWithNarrowAndPlainSpaces)
{
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1\u202f234,50\u00a0\u20ac"), frFR()), 1234.5);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1 234,5"), frFR()), 1234.5);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("(5,00\u00a0\u20ac)"), frFR()), -5.0);
}

// What people's keyboards give in their locale's way: a Swiss keyboard types the apostrophe
// that groups thousands as "'", a French one a no-break space, Polish leaves four digits
// ungrouped but people group them anyway, and a Japanese input method types full-width digits
// and the narrow yen sign.
TEST(ParseNumberTest, ReadsGroupingAndDigitsAsKeyboardsTypeThem)
{
    const QLocale swiss(QLocale::German, QLocale::Switzerland);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1'234.56"), swiss), 1234.56);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("12'345.67"), swiss), 12345.67);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1\u2019234.56"), swiss), 1234.56);
    EXPECT_FALSE(conv::parseNumber(QStringLiteral("12'34.5"), swiss).has_value());
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1\u00a0234,56"), frFR()), 1234.56);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1\u00a0234,56\u00a0\u20ac"), frFR()), 1234.56);
    const QLocale polish(QLocale::Polish, QLocale::Poland);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1 234,56"), polish), 1234.56);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1\u00a0234,56"), polish), 1234.56);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("12 345,67"), polish), 12345.67);
    EXPECT_FALSE(conv::parseNumber(QStringLiteral("1 23,5"), polish).has_value());
    const QLocale japanese(QLocale::Japanese, QLocale::Japan);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("\u00a51,234"), japanese), 1234.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("\uffe51,234"), japanese), 1234.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("\uff11\uff12\uff13\uff14"), japanese), 1234.0);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("\uff11\uff12\uff0e\uff15"), japanese), 12.5);
    // Nothing of this widens what other locales read.
    EXPECT_FALSE(parseUs(QStringLiteral("1'234.56")).has_value());
    EXPECT_FALSE(parseUs(QStringLiteral("1 234.56")).has_value());
    EXPECT_FALSE(conv::parseNumber(QStringLiteral("1 234,5"), deDE()).has_value());
    EXPECT_EQ(conv::parseNumber(QStringLiteral("0 125"), polish), std::nullopt);
    // Only the width forms of an input method fold: a footnote's superscript, circled or
    // parenthesised digits stay no number.
    for (const char *text :
        { "100\u00b9", "99,00\u00b2", "10\u00b2", "\u2474", "\u2493", "\u3251", "\u2081\u2082" }) {
        EXPECT_FALSE(parseUs(QString::fromUtf8(text)).has_value()) << text;
        EXPECT_FALSE(conv::parseNumber(QString::fromUtf8(text), deDE()).has_value()) << text;
    }
}

TEST(ParseNumberTest, FallsBackToTheCLocaleForm)
{
    EXPECT_EQ(conv::parseNumber(QStringLiteral("12.5"), deDE()), 12.5);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("-0.25"), frFR()), -0.25);
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1.5e3"), deDE()), 1500.0);
}

TEST(ParseNumberTest, LocaleFormWinsOverTheFallback)
{
    // "1.234" is a grouped thousand in German, so it is not read as one and a quarter.
    EXPECT_EQ(conv::parseNumber(QStringLiteral("1.234"), deDE()), 1234.0);
    // The fallback takes no group separators: "1,234.5" is no German number.
    EXPECT_FALSE(conv::parseNumber(QStringLiteral("1,234.5"), deDE()).has_value());
}

TEST(ParseNumberTest, OnlyTheLocalesCurrencySymbolIsRead)
{
    EXPECT_FALSE(conv::parseNumber(QStringLiteral("$5"), deDE()).has_value());
    EXPECT_FALSE(parseUs(QStringLiteral("5 \u20ac")).has_value());
}

} // namespace
} // namespace tarnwick
