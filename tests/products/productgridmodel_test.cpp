#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "products/productgridmodel.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

TEST(ProductGridModelTest, ShowsTheColumnsWithTheirCaptionsInOrder)
{
    Table catalogue(0, ProductRecord::FieldCount);
    ProductGridModel model(catalogue, EnUs);
    QStringList captions;
    for (int c = 0; c < model.columnCount(); ++c)
        captions << model.headerData(c, Qt::Horizontal).toString();
    EXPECT_EQ(captions,
        QStringList({ "Part Number", "Product Name", "Price", "Price1", "vol1", "Price2", "Vol2",
            "Price3", "vol3", "Price4", "vol4", "Price5", "vol5" }));
}

TEST(ProductGridModelTest, EachPriceCaptionShowsAPriceAndEachVolCaptionAQuantity)
{
    EXPECT_EQ(ProductGridModel::fieldOfColumn(0), 1);
    EXPECT_EQ(ProductGridModel::fieldOfColumn(2), 3);
    for (int k = 1; k <= 5; ++k) {
        EXPECT_EQ(
            ProductGridModel::fieldOfColumn(1 + 2 * k), ProductRecord::pricePointPriceField(k));
        EXPECT_EQ(ProductGridModel::fieldOfColumn(2 + 2 * k), ProductRecord::pricePointField(k));
        EXPECT_EQ(ProductGridModel::formatOfColumn(1 + 2 * k), QStringLiteral("Currency"));
        EXPECT_EQ(ProductGridModel::formatOfColumn(2 + 2 * k), QStringLiteral("General Number"));
    }
}

TEST(ProductGridModelTest, GridRowIsTableRowMinusOneAndPricesShowAsCurrency)
{
    Table catalogue(2, ProductRecord::FieldCount);
    catalogue.put(1, 1, "A-1");
    catalogue.put(1, 3, 1234.5f);
    catalogue.put(2, 1, "B-2");
    catalogue.put(2, 3, "");
    catalogue.put(2, 7, "$3.50");
    catalogue.put(2, 6, "25");
    ProductGridModel model(catalogue, EnUs);
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(model.index(0, 0).data().toString(), QStringLiteral("A-1"));
    EXPECT_EQ(model.index(0, 2).data().toString(), QStringLiteral("$1,234.50"));
    EXPECT_EQ(model.index(1, 2).data().toString(), QString());
    EXPECT_EQ(model.index(1, 3).data().toString(), QStringLiteral("$3.50"));
    EXPECT_EQ(model.index(1, 4).data().toString(), QStringLiteral("25"));
    EXPECT_EQ(ProductGridModel::bookmarkOfRow(1), 2);
}

TEST(ProductGridModelTest, DelCharactersTypedIntoACellNeverReachTheTable)
{
    Table catalogue(1, ProductRecord::FieldCount);
    ProductGridModel model(catalogue, EnUs);
    model.setEditable(true);
    const int partColumn = 0;
    const int nameColumn = 1;
    ASSERT_EQ(ProductGridModel::fieldOfColumn(partColumn), ProductRecord::PartNumber);
    ASSERT_EQ(ProductGridModel::fieldOfColumn(nameColumn), ProductRecord::ProductName);

    EXPECT_TRUE(model.setData(model.index(0, partColumn),
        QStringLiteral("W-\x7f\x7f\x7f"
                       "250")));
    EXPECT_TRUE(model.setData(model.index(0, nameColumn), QStringLiteral("\x7fNew Widget\x7f")));

    EXPECT_EQ(catalogue.get(1, ProductRecord::PartNumber), Cell("W-250"));
    EXPECT_EQ(catalogue.get(1, ProductRecord::ProductName), Cell("New Widget"));
}

TEST(ProductGridModelTest, ReloadFollowsRowsAddedToTheTable)
{
    Table catalogue(1, ProductRecord::FieldCount);
    ProductGridModel model(catalogue, EnUs);
    catalogue.redimPreserve(4, ProductRecord::FieldCount);
    model.reload();
    EXPECT_EQ(model.rowCount(), 4);
}

TEST(ProductGridModelTest, ATypedCellGoesToTheWriterInsteadOfTheTable)
{
    Table catalogue(2, ProductRecord::FieldCount);
    ProductGridModel model(catalogue, EnUs);
    model.setEditable(true);
    std::vector<std::tuple<int, int, QString>> written;
    bool take = true;
    model.setCellWriter([&](int row, int field, const Cell &value) {
        written.emplace_back(row, field, value.asText());
        return take;
    });
    EXPECT_TRUE(model.setData(model.index(1, 1), QStringLiteral("Bolt\x7f")));
    ASSERT_EQ(written.size(), 1u);
    EXPECT_EQ(
        written[0], std::make_tuple(2, int(ProductRecord::ProductName), QStringLiteral("Bolt")))
        << "table row, field and the text without DEL";
    EXPECT_TRUE(catalogue.get(2, ProductRecord::ProductName).isEmpty()) << "the writer stores it";
    take = false;
    EXPECT_FALSE(model.setData(model.index(0, 0), QStringLiteral("A-1")));
}

TEST(ProductGridModelTest, ACellLeftAsItWasOpenedWritesNothing)
{
    Table catalogue(1, ProductRecord::FieldCount);
    catalogue.put(1, ProductRecord::PartNumber, Cell("A-100"));
    catalogue.put(1, ProductRecord::ProductName, Cell("Anchor"));
    ProductGridModel model(catalogue, EnUs);
    model.setEditable(true);
    int written = 0;
    model.setCellWriter([&](int, int, const Cell &) { return ++written > 0; });
    for (const int column : { 0, 1 }) {
        const QModelIndex cell = model.index(0, column);
        EXPECT_TRUE(model.setData(cell, cell.data(Qt::EditRole))) << column;
    }
    EXPECT_EQ(written, 0);
    EXPECT_TRUE(model.setData(model.index(0, 1), "Anchor, steel"));
    EXPECT_EQ(written, 1);
}

} // namespace
