// Carrying out a planned import in one step, and taking it back: the catalogue's bytes after
// undo are the bytes before it, and redo gives the bytes of the import again.
#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "exchange/columnmapping.h"
#include "exchange/importapply.h"
#include "exchange/importplan.h"
#include "exchange/textworkbook.h"
#include "platform/appenvironment.h"
#include "products/productcommands.h"
#include "support/fakeprompts.h"

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

/// Part number A, name B, list price C, first price point D and its price E.
QString letters()
{
    std::array<int, CM::ListCount> positions;
    positions.fill(0);
    positions[0] = 0;
    positions[1] = 1;
    positions[3] = 3;
    positions[2] = 4;
    positions[4] = 5;
    return CM::columnLetters(positions);
}

const QByteArray Sheet = "Part Number\tProduct Name\tPrice\tPrice Point 1\tPrice 1\r\n"
                         "M-2\tMallet\t15\t\t\r\n"
                         "A-9\tAwl\t3.25\t10\t2.9\r\n"
                         "K-5\tKnife, new\t8\t\t\r\n"
                         "B-1\tBrush\t1\t\t\r\n";

class ImportApplyTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Sorted by name, as after a click on the name's header.
        const char *rows[][3] = { { "K-5", "Knife", "7.5" }, { "M-2", "Mallet", "14" },
            { "C-3", "Tape", "2" } };
        for (int row = 1; row <= 3; ++row) {
            catalogue.put(row, P::PartNumber, rows[row - 1][0]);
            catalogue.put(row, P::ProductName, rows[row - 1][1]);
            catalogue.put(row, P::Price, float(QString::fromLatin1(rows[row - 1][2]).toDouble()));
            catalogue.put(row, P::Notes, "A note");
        }
        products.setCount(3);
    }

    ImportPlan plan()
    {
        ImportPlanner planner(
            sheet, catalogue, letters(), true, ImportAction::UpdateExisting, EnUs);
        planner.runAll();
        return planner.takePlan();
    }

    QByteArray fileBytes() const
    {
        return catalogueFileBytes(catalogue, EnUs, products.Count()).bytes;
    }

    QStringList partNumbers() const
    {
        QStringList parts;
        for (int row = 1; row <= catalogue.rowCount(); ++row)
            parts << catalogue.get(row, P::PartNumber).asText();
        return parts;
    }

    TextWorkbook sheet { Sheet };
    Table catalogue { 3, P::FieldCount };
    test::FakePrompts prompts;
    AppEnvironment environment { QString(), QString() };
    Products products { catalogue, prompts, environment, EnUs };
};

} // namespace

TEST_F(ImportApplyTest, ApplyingChangesTheFieldsAddsTheNewProductsAndSortsOnThePartNumber)
{
    const ImportPlan planned = plan();
    ASSERT_EQ(planned.changed.size(), 2U);
    ASSERT_EQ(planned.addedCount(), 2);
    const AppliedImport applied = applyImportPlan(planned, catalogue, products, EnUs);
    EXPECT_EQ(products.Count(), 5);
    EXPECT_EQ(partNumbers(), (QStringList { "A-9", "B-1", "C-3", "K-5", "M-2" }));
    EXPECT_EQ(catalogue.get(4, P::ProductName), Cell("Knife, new"));
    EXPECT_EQ(catalogue.get(4, P::Price), Cell(8.0f));
    EXPECT_EQ(catalogue.get(4, P::Notes), Cell("A note")) << "not mapped";
    EXPECT_EQ(catalogue.get(5, P::Price), Cell(15.0f));
    EXPECT_EQ(catalogue.get(1, P::Price), Cell(3.25f));
    EXPECT_EQ(catalogue.get(1, P::PricePoint1), Cell("10"));
    EXPECT_EQ(catalogue.get(1, P::Price1), Cell("2.9"));
    EXPECT_EQ(catalogue.get(3, P::Price), Cell(2.0f));

    EXPECT_EQ(applied.countBefore, 3);
    EXPECT_EQ(applied.rowsBefore, 3);
    EXPECT_EQ(applied.addedCount(), 2);
    ASSERT_EQ(applied.cells.size(), 3U) << "M-2's price, K-5's name and price";
    EXPECT_EQ(applied.cells[0].row, 2);
    EXPECT_EQ(applied.cells[0].before, Cell(14.0f));
    EXPECT_EQ(applied.order, (std::vector<int> { 4, 5, 3, 1, 2 }));
    EXPECT_FALSE(applied.changesNothing());
}

TEST_F(ImportApplyTest, UndoGivesBackTheCatalogueByteForByteAndRedoTheImport)
{
    const QByteArray before = fileBytes();
    const QStringList orderBefore = partNumbers();
    const AppliedImport applied = applyImportPlan(plan(), catalogue, products, EnUs);
    const QByteArray after = fileBytes();
    ASSERT_NE(after, before);

    undoImport(applied, catalogue, products);
    EXPECT_EQ(fileBytes(), before);
    EXPECT_EQ(partNumbers(), orderBefore) << "the order by name comes back too";
    EXPECT_EQ(products.Count(), 3);
    EXPECT_EQ(catalogue.rowCount(), 3);

    redoImport(applied, catalogue, products);
    EXPECT_EQ(fileBytes(), after);
    EXPECT_EQ(products.Count(), 5);
    undoImport(applied, catalogue, products);
    EXPECT_EQ(fileBytes(), before);
}

TEST_F(ImportApplyTest, AProductThatMovedSinceThePlanIsFoundByItsPartNumber)
{
    const ImportPlan planned = plan();
    ProductCommands::sortCatalogue(catalogue, products, P::PartNumber, EnUs);
    ASSERT_EQ(partNumbers(), (QStringList { "C-3", "K-5", "M-2" }));
    catalogue.insertRows(1);
    catalogue.put(1, P::PartNumber, "0-0");
    products.setCount(4);
    applyImportPlan(planned, catalogue, products, EnUs);
    const int mallet = catalogue.find(P::PartNumber, Cell("M-2"));
    ASSERT_GT(mallet, 0);
    EXPECT_EQ(catalogue.get(mallet, P::Price), Cell(15.0f));
    const int knife = catalogue.find(P::PartNumber, Cell("K-5"));
    ASSERT_GT(knife, 0);
    EXPECT_EQ(catalogue.get(knife, P::ProductName), Cell("Knife, new"));
}

TEST_F(ImportApplyTest, AProductDeletedSinceThePlanIsLeftOut)
{
    const ImportPlan planned = plan();
    catalogue.deleteRows(2);
    products.setCount(2);
    const AppliedImport applied = applyImportPlan(planned, catalogue, products, EnUs);
    EXPECT_EQ(catalogue.find(P::PartNumber, Cell("M-2")), 0);
    EXPECT_EQ(applied.cells.size(), 2U);
    EXPECT_EQ(products.Count(), 4);
}

TEST_F(ImportApplyTest, AnEmptyPlanOnlySortsAndUndoRestoresTheOrder)
{
    const QByteArray before = fileBytes();
    const AppliedImport applied = applyImportPlan(ImportPlan {}, catalogue, products, EnUs);
    EXPECT_TRUE(applied.changesNothing());
    EXPECT_EQ(partNumbers(), (QStringList { "C-3", "K-5", "M-2" }));
    undoImport(applied, catalogue, products);
    EXPECT_EQ(fileBytes(), before);
    EXPECT_EQ(partNumbers(), (QStringList { "K-5", "M-2", "C-3" }));
}

TEST(ImportSort, TheOrderIsTheOneTheGridsSortGives)
{
    Table sorted(6, P::FieldCount);
    const char *parts[] = { "b-2", "A-1", "B-2", "", "a-1", "C" };
    for (int row = 1; row <= 6; ++row) {
        sorted.put(row, P::PartNumber, parts[row - 1]);
        sorted.put(row, P::ProductName, QString::number(row));
    }
    Table byGrid = sorted;
    test::FakePrompts prompts;
    AppEnvironment environment { QString(), QString() };
    Products mine(sorted, prompts, environment, EnUs);
    mine.setCount(5);
    Products grids(byGrid, prompts, environment, EnUs);
    grids.setCount(6);
    const std::vector<int> order = countAndSortOnPartNumber(sorted, mine, 1, EnUs);
    ProductCommands::sortCatalogue(byGrid, grids, P::PartNumber, EnUs);
    EXPECT_EQ(mine.Count(), 6);
    ASSERT_EQ(order.size(), 6U);
    for (int row = 1; row <= 6; ++row) {
        EXPECT_EQ(sorted.get(row, P::ProductName), byGrid.get(row, P::ProductName)) << row;
        EXPECT_EQ(sorted.get(row, P::ProductName), Cell(QString::number(order[row - 1])));
    }
}
