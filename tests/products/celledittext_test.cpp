// The text a cell editor opens with: single-precision numbers as their shortest text.
#include "products/celledittext.h"

#include "core/cell.h"

#include <QLocale>

#include <gtest/gtest.h>

using namespace tarnwick;

TEST(CellEditText, ADiscountedSingleShowsItsShortestText)
{
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    const float discounted = 12.5f * 0.9f; // held as 11.2499997…
    EXPECT_EQ(cellEditText(Cell(discounted), us), QStringLiteral("11.25"));
    EXPECT_EQ(cellEditText(Cell(double(discounted)), us), QStringLiteral("11.25"));
    EXPECT_EQ(cellEditText(Cell(2.5f), us), QStringLiteral("2.5"));
    EXPECT_EQ(cellEditText(Cell(-0.1f), us), QStringLiteral("-0.1"));
    EXPECT_EQ(cellEditText(Cell(123456.78f), us), QStringLiteral("123456.78"));
}

TEST(CellEditText, TheLocaleGivesTheDecimalPoint)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    EXPECT_EQ(cellEditText(Cell(11.25f), german), QStringLiteral("11,25"));
}

TEST(CellEditText, OtherCellsOpenAsTheirText)
{
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    EXPECT_EQ(cellEditText(Cell(QStringLiteral("$12.50")), us), QStringLiteral("$12.50"));
    EXPECT_EQ(cellEditText(Cell(qint32(10)), us), QStringLiteral("10"));
    EXPECT_EQ(cellEditText(Cell(0.1), us), QStringLiteral("0.1"));
    EXPECT_EQ(cellEditText(Cell(), us), QString());
}
