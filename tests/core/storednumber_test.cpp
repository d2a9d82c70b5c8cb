// Numbers kept as text in the catalogue file and the settings: written with "." and no
// grouping in every locale, in the shortest form that keeps a single's value.
#include "core/storednumber.h"

#include "testlocales.h"

#include "core/vberror.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace tarnwick {
namespace {

using stored::cellText;
using stored::numberText;
using stored::readNumber;
using stored::readNumberOrLocal;
using testing::deDE;
using testing::enUS;
using testing::frFR;

// What the catalogue file reads a typed text as, it means at once: a comma decimal under an
// English locale is its number in the user's form; what the user's locale reads, and what is
// no number at all, stay as typed.
TEST(StoredNumberTest, ATypedNumberOnlyTheFileReadsIsGivenInTheUsersForm)
{
    EXPECT_EQ(stored::asTyped(QStringLiteral("12,5"), enUS()), QStringLiteral("12.5"));
    EXPECT_EQ(readNumber(stored::asTyped(QStringLiteral("12,5"), enUS())), 12.5);
    EXPECT_EQ(stored::asTyped(QStringLiteral("1,234"), enUS()), QStringLiteral("1,234"))
        << "a thousands separator in English";
    EXPECT_EQ(stored::asTyped(QStringLiteral("$12.50"), enUS()), QStringLiteral("$12.50"));
    EXPECT_EQ(stored::asTyped(QStringLiteral("12.5"), deDE()), QStringLiteral("12.5"))
        << "the German locale reads it itself";
    EXPECT_EQ(stored::asTyped(QStringLiteral("12.5"), deDE()), QStringLiteral("12.5"))
        << "the German locale reads it itself";
    EXPECT_EQ(stored::asTyped(QStringLiteral("call us"), enUS()), QStringLiteral("call us"));
    EXPECT_EQ(stored::asTyped(QStringLiteral("1e999"), enUS()), QStringLiteral("1e999"));
    EXPECT_EQ(stored::asTyped(QString(), enUS()), QString());
}

TEST(StoredNumberTest, ValuesTheGeneralFormKeepsAreWrittenAsBefore)
{
    EXPECT_EQ(numberText(12.5f), QStringLiteral("12.5"));
    EXPECT_EQ(numberText(49.99f), QStringLiteral("49.99"));
    EXPECT_EQ(numberText(1234.5f), QStringLiteral("1234.5"));
    EXPECT_EQ(numberText(19.99f), QStringLiteral("19.99"));
    EXPECT_EQ(numberText(0.00001f), QStringLiteral("1E-05"));
    EXPECT_EQ(numberText(-3.0f), QStringLiteral("-3"));
    EXPECT_EQ(numberText(0.1), QStringLiteral("0.1"));
}

TEST(StoredNumberTest, SevenAndEightDigitSinglesKeepTheirValue)
{
    EXPECT_EQ(numberText(123456.78f), QStringLiteral("123456.78"));
    EXPECT_EQ(numberText(12345678.0f), QStringLiteral("12345678"));
    for (const float value : { 123456.78f, 12345678.0f, 9999999.9f, 1.0e10f, 3.4e38f }) {
        const std::optional<double> back = readNumber(numberText(value));
        ASSERT_TRUE(back.has_value()) << numberText(value).toStdString();
        EXPECT_EQ(static_cast<float>(*back), value);
    }
}

TEST(StoredNumberTest, TheLocaleNeverChangesTheStoredForm)
{
    // numberText takes no locale; shortestText shows the same digits in the user's form.
    EXPECT_EQ(stored::shortestText(123456.78f, deDE()), QStringLiteral("123456,78"));
    EXPECT_EQ(stored::shortestText(123456.78f, enUS()), QStringLiteral("123456.78"));
    EXPECT_EQ(stored::shortestText(1234.5f, frFR()), QStringLiteral("1234,5"));
}

TEST(StoredNumberTest, ReadsTheDotFormAndTheCommaFormOfEarlierFiles)
{
    EXPECT_EQ(readNumber(QStringLiteral("12.5")), 12.5);
    EXPECT_EQ(readNumber(QStringLiteral("12,5")), 12.5);
    EXPECT_EQ(readNumber(QStringLiteral("1234,5")), 1234.5);
    EXPECT_EQ(readNumber(QStringLiteral("-3")), -3.0);
    EXPECT_EQ(readNumber(QStringLiteral(" 100 ")), 100.0);
    EXPECT_EQ(readNumber(QStringLiteral("1.234568E+07")), 12345680.0);
    EXPECT_FALSE(readNumber(QStringLiteral("call us")).has_value());
    EXPECT_FALSE(readNumber(QStringLiteral("1,234.5")).has_value());
    EXPECT_FALSE(readNumber(QStringLiteral("")).has_value());
}

TEST(StoredNumberTest, TheUserFormIsTheLastResort)
{
    EXPECT_EQ(readNumberOrLocal(QStringLiteral("$1,234.50"), enUS()), 1234.5);
    EXPECT_EQ(readNumberOrLocal(QStringLiteral("1.234,50 €"), deDE()), 1234.5);
    EXPECT_EQ(readNumberOrLocal(QStringLiteral("12,5"), enUS()), 12.5);
    EXPECT_FALSE(readNumberOrLocal(QStringLiteral("n/a"), deDE()).has_value());
}

TEST(StoredNumberTest, ThousandsGroupedWithCommasAreThousandsWhereTheUserGroupsSo)
{
    // Typed into an earlier version's price points by an English-speaking user.
    EXPECT_EQ(readNumberOrLocal(QStringLiteral("2,450"), enUS()), 2450.0);
    EXPECT_EQ(readNumberOrLocal(QStringLiteral("1,234,567"), enUS()), 1234567.0);
    EXPECT_EQ(readNumberOrLocal(QStringLiteral(" -1,150 "), enUS()), -1150.0);
    // Not grouped in threes: a comma decimal, as a German-written file has it.
    EXPECT_EQ(readNumberOrLocal(QStringLiteral("2,45"), enUS()), 2.45);
    EXPECT_EQ(readNumberOrLocal(QStringLiteral("1234,500"), enUS()), 1234.5);
    EXPECT_EQ(readNumberOrLocal(QStringLiteral("0,125"), enUS()), 0.125);
    // Where the comma is the decimal mark it stays one.
    EXPECT_EQ(readNumberOrLocal(QStringLiteral("2,450"), deDE()), 2.45);
}

TEST(StoredNumberTest, TypedTextsAreStoredAsTheNumberTheUserMeant)
{
    EXPECT_EQ(cellText(Cell("12,50"), deDE()), QStringLiteral("12.5"));
    EXPECT_EQ(cellText(Cell("12.50"), deDE()), QStringLiteral("12.50"));
    EXPECT_EQ(cellText(Cell("1.000"), deDE()), QStringLiteral("1000"));
    EXPECT_EQ(cellText(Cell("12.50"), enUS()), QStringLiteral("12.50"));
    EXPECT_EQ(cellText(Cell("$1,234.50"), enUS()), QStringLiteral("1234.5"));
    EXPECT_EQ(cellText(Cell(QStringLiteral("1\u202f234,5")), frFR()), QStringLiteral("1234.5"));
    EXPECT_EQ(cellText(Cell("call us"), deDE()), QStringLiteral("call us"));
    EXPECT_EQ(cellText(Cell(123456.78f), deDE()), QStringLiteral("123456.78"));
    EXPECT_EQ(cellText(Cell(), deDE()), QString());
}

TEST(StoredNumberTest, NumberCellIsTheNumberOrTheText)
{
    EXPECT_EQ(stored::numberCell(QStringLiteral("1500,5"), enUS()), Cell(1500.5));
    EXPECT_EQ(stored::numberCell(QStringLiteral("9000"), deDE()), Cell(9000.0));
    EXPECT_EQ(stored::numberCell(QStringLiteral("wide"), deDE()), Cell("wide"));
}

QString charsOf(float value)
{
    char out[stored::NumberCharsRoom];
    const char *end = stored::numberChars(value, out);
    return QString::fromLatin1(out, end - out);
}

TEST(StoredNumberTest, NumberCharsAreTheNumberText)
{
    // Every cent price below 500, then singles spread over all magnitudes and signs.
    for (int cents = 0; cents < 50000; ++cents) {
        const float price = float(cents) / 100.0f;
        ASSERT_EQ(charsOf(price), numberText(price)) << cents;
    }
    std::mt19937 random(24);
    std::uniform_real_distribution<float> spread(0.0f, 1.0f);
    for (int i = 0; i < 25000; ++i) {
        const float value = std::ldexp(spread(random), int(random() % 60) - 30);
        ASSERT_EQ(charsOf(value), numberText(value)) << value;
        ASSERT_EQ(charsOf(-value), numberText(-value)) << -value;
    }
    for (int i = 0; i < 25000; ++i) {
        const std::uint32_t bits = std::uint32_t(random());
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value))
            continue;
        ASSERT_EQ(charsOf(value), numberText(value)) << bits;
    }
    // Near a power of two below 0.01 the shortest digits are not the general form.
    EXPECT_EQ(charsOf(0.000976564945f), QStringLiteral("0.0009765649"));
    EXPECT_EQ(charsOf(1e6f), QStringLiteral("1000000"));
    EXPECT_EQ(charsOf(123456.78f), QStringLiteral("123456.78"));
    EXPECT_THROW(charsOf(std::numeric_limits<float>::infinity()), VbError);
}

} // namespace
} // namespace tarnwick
