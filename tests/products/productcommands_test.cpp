#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "platform/appenvironment.h"
#include "products/productcommands.h"
#include "support/fakeprompts.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

/// A catalogue of products and the Products object that counts them.
class ProductCommandsTest : public ::testing::Test
{
protected:
    ProductCommandsTest()
        : environment(QStringLiteral("/nonexistent"), QString()),
          products(catalogue, prompts, environment, EnUs)
    {
    }

    /// Fills the catalogue with one product per part number, names "Name <part>".
    void load(const QStringList &parts)
    {
        catalogue.redim(int(parts.size()), ProductRecord::FieldCount);
        for (int row = 1; row <= int(parts.size()); ++row) {
            catalogue.put(row, ProductRecord::PartNumber, parts[row - 1]);
            catalogue.put(
                row, ProductRecord::ProductName, QStringLiteral("Name ") + parts[row - 1]);
        }
        products.setCount(qint32(parts.size()));
    }

    QStringList column(int field) const
    {
        QStringList texts;
        for (int row = 1; row <= catalogue.rowCount(); ++row)
            texts << catalogue.get(row, field).asText();
        return texts;
    }

    bool rowIsEmpty(int row) const
    {
        for (int field = 1; field <= ProductRecord::FieldCount; ++field) {
            if (!catalogue.get(row, field).isEmpty())
                return false;
        }
        return true;
    }

    test::FakePrompts prompts;
    AppEnvironment environment;
    Table catalogue;
    Products products;
};

TEST(ProductCommandsTexts, QuestionsTitlesAndStylesAreExact)
{
    EXPECT_EQ(QString(ProductCommands::DeleteQuestion), QStringLiteral("Delete this product?"));
    EXPECT_EQ(QString(ProductCommands::DeleteAllQuestion), QStringLiteral("Delete All Products?"));
    EXPECT_EQ(QString(ProductCommands::DeleteTitle), QStringLiteral("Delete"));
    EXPECT_EQ(QString(ProductCommands::ExportQuestion),
        QStringLiteral("Do you want to export the products to an Excel readable file?"));
    EXPECT_EQ(QString(ProductCommands::ExportTitle), QStringLiteral("Export to File"));
    EXPECT_EQ(QString(ProductCommands::ImportQuestion),
        QStringLiteral("Do you want to modify the products with an Excel spreadsheet?"));
    EXPECT_EQ(QString(ProductCommands::ImportTitle), QStringLiteral("Input Excel Data"));
    EXPECT_EQ(ProductCommands::DeleteStyle, MsgStyle::YesNo + MsgStyle::Question);
    EXPECT_EQ(ProductCommands::ImportStyle, MsgStyle::YesNo);
}

TEST(ProductCommandsTexts, ExportStyleIsTheJoinedTextsThirtyTwoAndFour)
{
    EXPECT_EQ(
        ProductCommands::ExportStyle, QStringLiteral("32").append(QStringLiteral("4")).toInt());
    EXPECT_EQ(ProductCommands::ExportStyle,
        MsgStyle::YesNo + MsgStyle::Information + MsgStyle::DefaultButton2);
    EXPECT_NE(ProductCommands::ExportStyle, ProductCommands::DeleteStyle);
}

TEST_F(ProductCommandsTest, InsertPutsAnEmptyRowAtTheCurrentRowAndMovesTheRestDown)
{
    load({ "A", "B", "C" });
    const int row = ProductCommands::insertProduct(catalogue, products, 2);
    EXPECT_EQ(row, 2);
    EXPECT_EQ(products.Count(), 4);
    ASSERT_EQ(catalogue.rowCount(), 4);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "A", "", "B", "C" }));
    EXPECT_TRUE(rowIsEmpty(2));
    EXPECT_EQ(catalogue.get(3, ProductRecord::ProductName), Cell("Name B"));
}

TEST_F(ProductCommandsTest, InsertAtTheFirstRowMovesEveryProductDown)
{
    load({ "A", "B" });
    EXPECT_EQ(ProductCommands::insertProduct(catalogue, products, 1), 1);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "", "A", "B" }));
    EXPECT_EQ(products.Count(), 3);
}

TEST_F(ProductCommandsTest, InsertIntoAnEmptyTableGivesRowOneWithFifteenFields)
{
    Table bare; // never dimensioned: no rows and no fields
    products.setCount(0);
    EXPECT_EQ(ProductCommands::insertProduct(bare, products, 0), 1);
    EXPECT_EQ(bare.rowCount(), 1);
    EXPECT_EQ(bare.fieldCount(), ProductRecord::FieldCount);
    EXPECT_TRUE(bare.get(1, ProductRecord::Price5).isEmpty());
    EXPECT_EQ(products.Count(), 1);
}

TEST_F(ProductCommandsTest, InsertIntoAnEmptiedCatalogueIgnoresTheCurrentRow)
{
    load({});
    EXPECT_EQ(ProductCommands::insertProduct(catalogue, products, 5), 1);
    EXPECT_EQ(catalogue.rowCount(), 1);
    EXPECT_EQ(products.Count(), 1);
}

TEST_F(ProductCommandsTest, InsertWithNoCurrentRowGivesRowOne)
{
    load({ "A", "B" });
    EXPECT_EQ(ProductCommands::insertProduct(catalogue, products, 0), 1);
    EXPECT_EQ(ProductCommands::insertProduct(catalogue, products, -3), 1);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "", "", "A", "B" }));
    EXPECT_EQ(products.Count(), 4);
}

TEST_F(ProductCommandsTest, InsertPastTheLastRowAppends)
{
    load({ "A", "B" });
    EXPECT_EQ(ProductCommands::insertProduct(catalogue, products, 3), 3);
    EXPECT_EQ(ProductCommands::insertProduct(catalogue, products, 99), 4);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "A", "B", "", "" }));
    EXPECT_EQ(products.Count(), 4);
}

TEST_F(ProductCommandsTest, InsertGivesATableOfFewerFieldsItsFifteenFieldsKeepingTheContents)
{
    catalogue.redim(1, 2);
    catalogue.put(1, 1, "A");
    catalogue.put(1, 2, "Alpha");
    products.setCount(1);
    EXPECT_EQ(ProductCommands::insertProduct(catalogue, products, 1), 1);
    EXPECT_EQ(catalogue.fieldCount(), ProductRecord::FieldCount);
    EXPECT_EQ(catalogue.get(2, 1), Cell("A"));
    EXPECT_EQ(catalogue.get(2, 2), Cell("Alpha"));
    EXPECT_TRUE(catalogue.get(2, ProductRecord::Price5).isEmpty());
}

TEST_F(ProductCommandsTest, InsertedRowIsEmptyNotTheEmptyText)
{
    load({ "A" });
    const int row = ProductCommands::insertProduct(catalogue, products, 1);
    for (int field = 1; field <= ProductRecord::FieldCount; ++field)
        EXPECT_EQ(catalogue.get(row, field).kind(), Cell::Kind::Empty) << "field " << field;
}

TEST_F(ProductCommandsTest, DeleteRemovesTheRowAndLowersTheCount)
{
    load({ "A", "B", "C" });
    EXPECT_TRUE(ProductCommands::deleteProduct(catalogue, products, 2));
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "A", "C" }));
    EXPECT_EQ(products.Count(), 2);
    EXPECT_TRUE(ProductCommands::deleteProduct(catalogue, products, 2));
    EXPECT_TRUE(ProductCommands::deleteProduct(catalogue, products, 1));
    EXPECT_EQ(catalogue.rowCount(), 0);
    EXPECT_EQ(catalogue.fieldCount(), ProductRecord::FieldCount);
    EXPECT_EQ(products.Count(), 0);
}

TEST_F(ProductCommandsTest, DeleteOnAnEmptyGridRemovesNothing)
{
    load({});
    EXPECT_FALSE(ProductCommands::deleteProduct(catalogue, products, 1));
    EXPECT_FALSE(ProductCommands::deleteProduct(catalogue, products, 0));
    EXPECT_EQ(catalogue.rowCount(), 0);
    EXPECT_EQ(products.Count(), 0);
}

TEST_F(ProductCommandsTest, DeleteOutsideTheRowsChangesNothing)
{
    load({ "A", "B" });
    EXPECT_FALSE(ProductCommands::deleteProduct(catalogue, products, 0));
    EXPECT_FALSE(ProductCommands::deleteProduct(catalogue, products, -1));
    EXPECT_FALSE(ProductCommands::deleteProduct(catalogue, products, 3));
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "A", "B" }));
    EXPECT_EQ(products.Count(), 2);
}

TEST_F(ProductCommandsTest, DeleteAllEmptiesTheCatalogueAndZeroesTheCount)
{
    load({ "A", "B", "C" });
    ProductCommands::deleteAll(catalogue, products);
    EXPECT_EQ(catalogue.rowCount(), 0);
    EXPECT_EQ(catalogue.fieldCount(), ProductRecord::FieldCount);
    EXPECT_EQ(products.Count(), 0);
}

TEST_F(ProductCommandsTest, DeleteAllOnAnEmptyCatalogueDoesNothing)
{
    load({});
    ProductCommands::deleteAll(catalogue, products);
    EXPECT_EQ(catalogue.rowCount(), 0);
    EXPECT_EQ(catalogue.fieldCount(), ProductRecord::FieldCount);
    EXPECT_EQ(products.Count(), 0);
}

TEST_F(ProductCommandsTest, DeleteAllWithACountOfZeroLeavesTheTableAsItIs)
{
    load({ "A" });
    products.setCount(0);
    ProductCommands::deleteAll(catalogue, products);
    EXPECT_EQ(catalogue.rowCount(), 1);
    EXPECT_EQ(products.Count(), 0);
}

TEST_F(ProductCommandsTest, InsertAfterDeleteAllStartsAgainAtRowOne)
{
    load({ "A", "B" });
    ProductCommands::deleteAll(catalogue, products);
    EXPECT_EQ(ProductCommands::insertProduct(catalogue, products, 2), 1);
    EXPECT_EQ(catalogue.rowCount(), 1);
    EXPECT_EQ(products.Count(), 1);
}

TEST(ProductCommandsSortKind, TextFieldsSortAsTextAndPricesAndQuantitiesByValue)
{
    using Kind = Table::SortKind;
    EXPECT_EQ(ProductCommands::sortKindOfField(ProductRecord::PartNumber), Kind::Text);
    EXPECT_EQ(ProductCommands::sortKindOfField(ProductRecord::ProductName), Kind::Text);
    EXPECT_EQ(ProductCommands::sortKindOfField(ProductRecord::Notes), Kind::Text);
    EXPECT_EQ(ProductCommands::sortKindOfField(ProductRecord::Includes), Kind::Text);
    EXPECT_EQ(ProductCommands::sortKindOfField(ProductRecord::Price), Kind::Numeric);
    for (int field = ProductRecord::PricePoint1; field <= ProductRecord::Price5; ++field)
        EXPECT_EQ(ProductCommands::sortKindOfField(field), Kind::Numeric) << "field " << field;
}

TEST_F(ProductCommandsTest, SortOnThePartNumberIgnoresLetterCase)
{
    load({ "c-3", "A-1", "b-2" });
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::PartNumber, EnUs);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "A-1", "b-2", "c-3" }));
    EXPECT_EQ(
        column(ProductRecord::ProductName), QStringList({ "Name A-1", "Name b-2", "Name c-3" }));
}

TEST_F(ProductCommandsTest, SortOnThePriceComparesCurrencyTextsByValue)
{
    load({ "A", "B", "C", "D" });
    catalogue.put(1, ProductRecord::Price, "$100.00");
    catalogue.put(2, ProductRecord::Price, "$12.50");
    catalogue.put(3, ProductRecord::Price, "$1,234.50");
    catalogue.put(4, ProductRecord::Price, 20.0);
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::Price, EnUs);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "B", "D", "A", "C" }));
}

TEST_F(ProductCommandsTest, SortOnAQuantityPutsBlankAndNonNumericCellsLastInTheirOrder)
{
    load({ "A", "B", "C", "D", "E" });
    catalogue.put(1, ProductRecord::PricePoint1, "100");
    catalogue.put(2, ProductRecord::PricePoint1, "n/a");
    catalogue.put(3, ProductRecord::PricePoint1, "20");
    catalogue.put(5, ProductRecord::PricePoint1, "3");
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::PricePoint1, EnUs);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "E", "C", "A", "B", "D" }));
}

TEST_F(ProductCommandsTest, SortIsStable)
{
    load({ "A", "B", "C", "D" });
    catalogue.put(1, ProductRecord::ProductName, "Same");
    catalogue.put(2, ProductRecord::ProductName, "Other");
    catalogue.put(3, ProductRecord::ProductName, "Same");
    catalogue.put(4, ProductRecord::ProductName, "Other");
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::ProductName, EnUs);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "B", "D", "A", "C" }));
}

TEST_F(ProductCommandsTest, SortFirstCutsTheTableToCount)
{
    load({ "D", "C", "B", "A" });
    products.setCount(2);
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::PartNumber, EnUs);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "C", "D" }));
    EXPECT_EQ(catalogue.fieldCount(), ProductRecord::FieldCount);
}

TEST_F(ProductCommandsTest, SortWithALargerCountAddsEmptyRowsWhichSortFirstAsText)
{
    load({ "B", "A" });
    products.setCount(4);
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::PartNumber, EnUs);
    ASSERT_EQ(catalogue.rowCount(), 4);
    EXPECT_EQ(column(ProductRecord::PartNumber), QStringList({ "", "", "A", "B" }));
    EXPECT_TRUE(rowIsEmpty(1));
    EXPECT_TRUE(rowIsEmpty(2));
}

TEST_F(ProductCommandsTest, SortGivesATableOfOtherWidthFifteenFields)
{
    catalogue.redim(2, 20);
    catalogue.put(1, 1, "B");
    catalogue.put(2, 1, "A");
    catalogue.put(2, 15, "kept");
    products.setCount(2);
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::PartNumber, EnUs);
    EXPECT_EQ(catalogue.fieldCount(), ProductRecord::FieldCount);
    EXPECT_EQ(catalogue.get(1, 1), Cell("A"));
    EXPECT_EQ(catalogue.get(1, 15), Cell("kept"));
}

TEST_F(ProductCommandsTest, SortOfNoProductsLeavesAnEmptyTable)
{
    load({ "A" });
    products.setCount(0);
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::PartNumber, EnUs);
    EXPECT_EQ(catalogue.rowCount(), 0);
    EXPECT_EQ(catalogue.fieldCount(), ProductRecord::FieldCount);
}

} // namespace

namespace {

Table productOf(const Table &catalogue, int row)
{
    Table product(1, ProductRecord::FieldCount);
    for (int field = 1; field <= ProductRecord::FieldCount; ++field)
        product.put(1, field, catalogue.get(row, field));
    return product;
}

TEST_F(ProductCommandsTest, AProductTakenBeforeASortIsFoundAgainAfterIt)
{
    load({ "C-3", "A-1", "B-2" });
    const Table taken = productOf(catalogue, 1); // C-3
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::PartNumber, EnUs);
    EXPECT_EQ(ProductCommands::findProduct(catalogue, taken), 3);
}

TEST_F(ProductCommandsTest, OfTwoProductsWithOnePartNumberTheOneWithEqualFieldsIsFound)
{
    load({ "A-1", "A-1", "B-2" });
    catalogue.put(2, ProductRecord::ProductName, QStringLiteral("Second"));
    EXPECT_EQ(ProductCommands::findProduct(catalogue, productOf(catalogue, 2)), 2);
    EXPECT_EQ(ProductCommands::findProduct(catalogue, productOf(catalogue, 1)), 1);
}

TEST_F(ProductCommandsTest, AProductNoLongerThereOrAnEmptyRowIsNotFound)
{
    load({ "A-1", "B-2" });
    Table gone = productOf(catalogue, 2);
    gone.put(1, ProductRecord::ProductName, QStringLiteral("Changed"));
    EXPECT_EQ(ProductCommands::findProduct(catalogue, gone), 0);
    EXPECT_EQ(ProductCommands::findProduct(catalogue, Table()), 0);
}

TEST_F(ProductCommandsTest, AnotherProductWithThePartNumberIsFoundEitherWay)
{
    load({ "A-1", "B-2", "A-1", "", "" });
    EXPECT_EQ(ProductCommands::otherRowWithPartNumber(catalogue, 1), 3);
    EXPECT_EQ(ProductCommands::otherRowWithPartNumber(catalogue, 3), 1);
    EXPECT_EQ(ProductCommands::otherRowWithPartNumber(catalogue, 2), 0);
    EXPECT_EQ(ProductCommands::otherRowWithPartNumber(catalogue, 4), 0) << "empty numbers differ";
    EXPECT_EQ(ProductCommands::otherRowWithPartNumber(catalogue, 9), 0);

    EXPECT_EQ(ProductCommands::partNumberTakenText(catalogue, 3, EnUs),
        QStringLiteral("Part number A-1 is already used by \"Name A-1\". Quotes and imports take "
                       "the first product with a part number: give this one another."));
    EXPECT_EQ(ProductCommands::partNumberTakenText(catalogue, 2, EnUs), QString());
}

} // namespace
