#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "products/productrow.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

class ProductRowTest : public ::testing::Test
{
protected:
    ProductRowTest() : catalogue(2, ProductRecord::FieldCount), schedule(5, 2)
    {
        catalogue.put(1, 1, "A-1");
        catalogue.put(1, 3, 12.5f);
        catalogue.put(1, 4, "Notes");
        catalogue.put(1, 5, "Includes");
        catalogue.put(1, 6, "1");
        catalogue.put(1, 7, "12.5");
        catalogue.put(1, 8, "50");
        catalogue.put(1, 9, "10");
    }
    Table catalogue;
    Table schedule;
};

TEST_F(ProductRowTest, SideBoxesShowThePriceAsCurrency)
{
    const SideBoxTexts boxes = ProductRow::sideBoxes(catalogue, 1, EnUs);
    EXPECT_EQ(boxes.price, QStringLiteral("$12.50"));
    EXPECT_EQ(boxes.notes, QStringLiteral("Notes"));
    EXPECT_EQ(boxes.includes, QStringLiteral("Includes"));
    EXPECT_EQ(ProductRow::sideBoxes(catalogue, 2, EnUs).price, QString());
}

TEST_F(ProductRowTest, LoadScheduleCopiesTheFivePricePoints)
{
    ProductRow::loadSchedule(catalogue, 1, schedule);
    EXPECT_EQ(schedule.get(1, 1), Cell("1"));
    EXPECT_EQ(schedule.get(1, 2), Cell("12.5"));
    EXPECT_EQ(schedule.get(2, 1), Cell("50"));
    EXPECT_EQ(schedule.get(2, 2), Cell("10"));
    EXPECT_TRUE(schedule.get(5, 1).isEmpty());
}

TEST_F(ProductRowTest, DelCharactersInThePriceBoxNeverReachTheTable)
{
    ProductRow::writeBack(catalogue, 1, { "12\x7f.5\x7f\x7f\x7f", "", "" }, schedule, EnUs);
    EXPECT_EQ(catalogue.get(1, ProductRecord::Price), Cell("$12.50"));
}

TEST_F(ProductRowTest, WriteBackStoresThePriceAsCurrencyTextAndSortsTheSchedule)
{
    schedule.put(1, 1, "100");
    schedule.put(1, 2, "8");
    schedule.put(3, 1, "10");
    schedule.put(3, 2, "9");
    ProductRow::writeBack(catalogue, 1, { "1234.5", "In\x7f\x7f\x7f", "No\x7fte" }, schedule, EnUs);
    EXPECT_EQ(catalogue.get(1, 3), Cell("$1,234.50"));
    EXPECT_EQ(catalogue.get(1, 5), Cell("In"));
    EXPECT_EQ(catalogue.get(1, 4), Cell("Note"));
    EXPECT_EQ(catalogue.get(1, 6), Cell("10"));
    EXPECT_EQ(catalogue.get(1, 7), Cell("9"));
    EXPECT_EQ(catalogue.get(1, 8), Cell("100"));
    EXPECT_EQ(catalogue.get(1, 9), Cell("8"));
    EXPECT_TRUE(catalogue.get(1, 10).isBlank());
}

TEST_F(ProductRowTest, APriceThatIsNoNumberIsStoredAsTyped)
{
    ProductRow::writeBack(catalogue, 1, { "call us", "", "" }, schedule, EnUs);
    EXPECT_EQ(catalogue.get(1, 3), Cell("call us"));
}

} // namespace
