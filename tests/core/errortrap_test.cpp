#include "core/errortrap.h"

#include "core/conversions.h"
#include "testlocales.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <stdexcept>

namespace tarnwick {
namespace {

TEST(ErrorTrapTest, StepsWithoutErrorLeaveTheTrapClean)
{
    ErrorTrap trap;
    int runs = 0;
    EXPECT_TRUE(trap.step([&] { ++runs; }));
    EXPECT_TRUE(trap.step([&] { ++runs; }));
    EXPECT_EQ(runs, 2);
    EXPECT_FALSE(trap.failed());
    EXPECT_FALSE(trap.firstError().has_value());
    EXPECT_FALSE(trap.lastError().has_value());
}

TEST(ErrorTrapTest, ContinuesWithTheNextStepAfterAnError)
{
    ErrorTrap trap;
    QStringList ran;
    EXPECT_FALSE(trap.step([&] {
        ran << QStringLiteral("one");
        throw VbError(ErrorNumber::TypeMismatch, QStringLiteral("Type mismatch"));
    }));
    EXPECT_TRUE(trap.step([&] { ran << QStringLiteral("two"); }));
    EXPECT_EQ(ran, QStringList({ QStringLiteral("one"), QStringLiteral("two") }));
    EXPECT_TRUE(trap.failed());
}

TEST(ErrorTrapTest, AnErrorRecordedWithoutRaisingCountsAsAStepsError)
{
    ErrorTrap trap;
    trap.record(VbError(ErrorNumber::Overflow, QStringLiteral("found")));
    trap.step([] { throw VbError(ErrorNumber::TypeMismatch, QStringLiteral("raised")); });
    ASSERT_TRUE(trap.failed());
    EXPECT_EQ(trap.firstError()->description(), QStringLiteral("found"));
    EXPECT_EQ(trap.lastError()->description(), QStringLiteral("raised"));
}

TEST(ErrorTrapTest, RecordsFirstAndLastError)
{
    ErrorTrap trap;
    trap.step([] { throw VbError(ErrorNumber::TypeMismatch, QStringLiteral("first")); });
    trap.step([] { throw VbError(ErrorNumber::DivisionByZero, QStringLiteral("middle")); });
    trap.step([] {});
    trap.step([] { throw VbError(ErrorNumber::Overflow, QStringLiteral("last")); });
    ASSERT_TRUE(trap.firstError().has_value());
    ASSERT_TRUE(trap.lastError().has_value());
    EXPECT_EQ(trap.firstError()->number(), ErrorNumber::TypeMismatch);
    EXPECT_EQ(trap.firstError()->description(), QStringLiteral("first"));
    EXPECT_EQ(trap.lastError()->number(), ErrorNumber::Overflow);
    EXPECT_EQ(trap.lastError()->description(), QStringLiteral("last"));
}

TEST(ErrorTrapTest, OneErrorIsBothFirstAndLast)
{
    ErrorTrap trap;
    trap.step([] { throw VbError(ErrorNumber::FileNotFound); });
    trap.step([] {});
    ASSERT_TRUE(trap.failed());
    EXPECT_EQ(trap.firstError()->number(), ErrorNumber::FileNotFound);
    EXPECT_EQ(trap.lastError()->number(), ErrorNumber::FileNotFound);
}

TEST(ErrorTrapTest, TrapsConversionErrorsAndKeepsTheAssignmentsThatWorked)
{
    const QLocale us = testing::enUS();
    ErrorTrap trap;
    qint16 quantity = 7;
    float price = 0.0f;
    trap.step([&] { quantity = conv::toInt16(Cell("32,768"), us); });
    trap.step([&] { price = conv::toSingle(Cell("$12.50"), us); });
    trap.step([&] { price = conv::toSingle(Cell("twelve"), us); });
    EXPECT_EQ(quantity, 7); // the failed step assigned nothing
    EXPECT_EQ(price, 12.5f);
    EXPECT_EQ(trap.firstError()->number(), ErrorNumber::Overflow);
    EXPECT_EQ(trap.lastError()->number(), ErrorNumber::TypeMismatch);
}

TEST(ErrorTrapTest, OtherExceptionsAreNotTrapped)
{
    ErrorTrap trap;
    EXPECT_THROW(trap.step([] { throw std::logic_error("programming error"); }), std::logic_error);
    EXPECT_FALSE(trap.failed());
}

} // namespace
} // namespace tarnwick
