// The product grid's and the price schedule's models keep Qt's rules for item models under
// everything the program does to them, checked by QAbstractItemModelTester after each signal.
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "products/productgridmodel.h"
#include "products/schedulemodel.h"

#include "support/modelcheck.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

Table catalogueOf(int products)
{
    Table catalogue(products, ProductRecord::FieldCount);
    for (int row = 1; row <= products; ++row) {
        catalogue.put(row, ProductRecord::PartNumber, QStringLiteral("P-%1").arg(row));
        catalogue.put(row, ProductRecord::ProductName, QStringLiteral("Product %1").arg(row));
        catalogue.put(row, ProductRecord::Price, Cell(float(row) + 0.5f));
        catalogue.put(row, ProductRecord::PricePoint1, "10");
        catalogue.put(row, ProductRecord::Price1, "9.5");
    }
    catalogue.put(2, ProductRecord::ProductName, Cell::null());
    return catalogue;
}

TEST(ModelTesterTest, TheProductGridModelKeepsTheRules)
{
    Table catalogue = catalogueOf(4);
    ProductGridModel model(catalogue, EnUs);
    test::ModelCheck check(&model);
    model.setEditable(true);
    EXPECT_TRUE(model.setData(model.index(0, 0), QStringLiteral("NEW-1")));
    EXPECT_TRUE(model.setData(model.index(3, 1), QStringLiteral("Renamed")));
    EXPECT_FALSE(model.setData(model.index(0, 2), QStringLiteral("1.5")));
    model.setEditable(false);
    EXPECT_FALSE(model.setData(model.index(1, 0), QStringLiteral("no")));
    catalogue.insertRows(2);
    model.reload();
    catalogue.deleteRows(1, 2);
    model.reload();
    model.setFrozen(true);
    catalogue.redimPreserve(8, ProductRecord::FieldCount);
    model.setFrozen(false);
    model.reload();
    catalogue.redim(0, ProductRecord::FieldCount);
    model.reload();
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(check.failures(), QStringList());
}

TEST(ModelTesterTest, TheScheduleModelKeepsTheRules)
{
    Table schedule(ProductRecord::PricePointCount, 2);
    schedule.put(1, 1, "10");
    schedule.put(1, 2, Cell(9.5f));
    ScheduleModel model(schedule, EnUs);
    test::ModelCheck check(&model);
    EXPECT_FALSE(model.setData(model.index(0, 0), QStringLiteral("5")));
    model.setEditable(true);
    EXPECT_TRUE(model.setData(model.index(1, 0), QStringLiteral("25")));
    EXPECT_TRUE(model.setData(model.index(1, 1), QStringLiteral("$8.75")));
    EXPECT_TRUE(model.setData(model.index(0, 1), QString()));
    schedule.put(5, 1, "100");
    model.reload();
    model.setEditable(false);
    EXPECT_EQ(check.failures(), QStringList());
}

} // namespace
