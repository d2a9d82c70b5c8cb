#include "catalogue/module1.h"

#include "cataloguefixture.h"

namespace tarnwick::test {
namespace {

class Module1Test : public ::testing::Test
{
protected:
    TempAppFolder folder;
    FakePrompts prompts;
    AppEnvironment environment = folder.environment();
    QLocale locale { QLocale::German, QLocale::Germany };
    Module1 module { prompts, environment, locale };
};

TEST_F(Module1Test, CatalogueAndAllProductsAreCreatedOnceAndShared)
{
    Table &catalogue = module.Catalogue();
    EXPECT_EQ(&module.Catalogue(), &catalogue);
    EXPECT_EQ(catalogue.rowCount(), 0);
    Products &products = module.AllProducts();
    EXPECT_EQ(&module.AllProducts(), &products);
    EXPECT_EQ(products.Count(), 0);
    EXPECT_EQ(module.locale(), locale);
    EXPECT_TRUE(module.SortedByPart);
    EXPECT_TRUE(module.DataFile.isEmpty());
}

TEST_F(Module1Test, AllProductsReadsIntoTheCatalogueWithTheModulesLocale)
{
    module.DataFile = environment.pathInAppFolder(QStringLiteral("twdata.dat"));
    folder.writeFile(QStringLiteral("twdata.dat"), productLine({ "A-1", "Schraube", "12,5" }));
    module.Catalogue().redim(1000, 15);

    const CatalogueReadResult result = module.AllProducts().ReadProds(module.DataFile);

    EXPECT_EQ(result.status, CatalogueReadResult::Status::Ok);
    EXPECT_EQ(module.AllProducts().Count(), 1);
    EXPECT_EQ(module.Catalogue().get(1, 2), Cell("Schraube"));
    EXPECT_EQ(module.Catalogue().get(1, 3), Cell(12.5f));

    ASSERT_TRUE(module.AllProducts().WriteProds(module.DataFile).ok);
    // The next save writes the number with "." whatever the locale.
    EXPECT_EQ(
        folder.readFile(QStringLiteral("twdata.dat")), productLine({ "A-1", "Schraube", "12.5" }));
}

TEST_F(Module1Test, QuoteAndScheduleAreTablesOfTheirOwn)
{
    module.QuoteTable().redim(250, 7);
    module.ScheduleTable().redim(5, 2);
    EXPECT_EQ(module.QuoteTable().upperBound(2), 7);
    EXPECT_EQ(module.ScheduleTable().upperBound(1), 5);
    EXPECT_NE(&module.QuoteTable(), &module.Catalogue());
    EXPECT_NE(&module.ScheduleTable(), &module.QuoteTable());
    EXPECT_EQ(module.Catalogue().rowCount(), 0);
}

TEST(ProductsTest, EachProductsObjectGetsTheNextDebugSerialNumber)
{
    TempAppFolder folder;
    FakePrompts prompts;
    const AppEnvironment environment = folder.environment();
    Table table;
    const QLocale locale(QLocale::English, QLocale::UnitedStates);
    const Products first(table, prompts, environment, locale);
    const Products second(table, prompts, environment, locale);
    const Products third(table, prompts, environment, locale);
    EXPECT_GT(first.ClassDebugID(), 0);
    EXPECT_EQ(second.ClassDebugID(), first.ClassDebugID() + 1);
    EXPECT_EQ(third.ClassDebugID(), first.ClassDebugID() + 2);
}

TEST(ProductsTest, CountIsStoredAsGiven)
{
    TempAppFolder folder;
    FakePrompts prompts;
    const AppEnvironment environment = folder.environment();
    Table table;
    Products products(table, prompts, environment, QLocale::c());
    EXPECT_EQ(products.Count(), 0);
    products.setCount(123456);
    EXPECT_EQ(products.Count(), 123456);
    products.SortByPart();
    products.SortByProduct();
    EXPECT_EQ(products.Count(), 123456);
    EXPECT_EQ(table.rowCount(), 0);
}

} // namespace
} // namespace tarnwick::test
