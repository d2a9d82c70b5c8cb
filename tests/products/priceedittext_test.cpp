// The text a price editor opens with: the shortest text of the single-precision price.
#include "products/priceedittext.h"

#include "core/cell.h"

#include <QLocale>

#include <gtest/gtest.h>

using namespace tarnwick;

TEST(PriceEditText, ADiscountedSingleShowsItsShortestText)
{
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    const float discounted = 12.5f * 0.9f; // held as 11.2499997…
    EXPECT_EQ(priceEditText(Cell(discounted), us), QStringLiteral("11.25"));
    EXPECT_EQ(priceEditText(Cell(12.5 * double(0.9f)), us), QStringLiteral("11.25"));
    EXPECT_EQ(priceEditText(Cell(2.5f), us), QStringLiteral("2.5"));
    EXPECT_EQ(priceEditText(Cell(-0.1f), us), QStringLiteral("-0.1"));
    EXPECT_EQ(priceEditText(Cell(123456.78f), us), QStringLiteral("123456.78"));
}

TEST(PriceEditText, TheLocaleGivesTheDecimalPoint)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    EXPECT_EQ(priceEditText(Cell(11.25f), german), QStringLiteral("11,25"));
}

TEST(PriceEditText, CellsThatAreNoFloatingNumberOpenAsTheirText)
{
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    EXPECT_EQ(priceEditText(Cell(QStringLiteral("$12.50")), us), QStringLiteral("$12.50"));
    EXPECT_EQ(priceEditText(Cell(qint32(10)), us), QStringLiteral("10"));
    EXPECT_EQ(priceEditText(Cell(QStringLiteral("abc")), us), QStringLiteral("abc"));
    EXPECT_EQ(priceEditText(Cell(), us), QString());
}
