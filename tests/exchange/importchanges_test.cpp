// Carrying out an import as the program does it: the plan turned into the change of the
// catalogue (importChanges) and made one step of the history of changes. The new products, the
// changed fields, Count and the sort on the part number; undo gives back the catalogue's bytes
// and redo those of the import.
#include "catalogue/cataloguewriter.h"
#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "commands/catalogueedits.h"
#include "commands/edithistory.h"
#include "exchange/columnmapping.h"
#include "exchange/importchanges.h"
#include "exchange/importplan.h"
#include "exchange/textworkbook.h"
#include "exchange/workbook.h"
#include "exchangetestdata.h"
#include "platform/appenvironment.h"
#include "products/productcommands.h"
#include "support/fakeprompts.h"
#include "support/testlocale.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

using tarnwick::test::EnUs;

/// The program's shared state with its history of changes, and the import as the import window
/// carries it out.
class ImportTest : public ::testing::Test
{
protected:
    void load(const std::vector<std::array<const char *, 3>> &rows)
    {
        catalogue.redim(int(rows.size()), P::FieldCount);
        for (int row = 1; row <= int(rows.size()); ++row) {
            const auto &fields = rows[std::size_t(row - 1)];
            catalogue.put(row, P::PartNumber, fields[0]);
            catalogue.put(row, P::ProductName, fields[1]);
            if (*fields[2])
                catalogue.put(row, P::Price, float(QString::fromLatin1(fields[2]).toDouble()));
            catalogue.put(row, P::Notes, "A note");
        }
        products.setCount(qint32(rows.size()));
    }

    ImportPlan plan(
        const IWorkbook &sheet, const QString &letters, bool headers, ImportAction action)
    {
        ImportPlanner planner(sheet, catalogue, letters, headers, action, EnUs);
        planner.runAll();
        return planner.takePlan();
    }

    /// What the import window does with a plan it applies.
    bool apply(ImportPlan planned)
    {
        return CatalogueEdits::import(history, {}, importChanges(std::move(planned), catalogue));
    }

    QByteArray fileBytes() { return catalogueFileBytes(catalogue, EnUs, products.Count()).bytes; }

    QStringList partNumbers() const
    {
        QStringList parts;
        for (int row = 1; row <= catalogue.rowCount(); ++row)
            parts << catalogue.get(row, P::PartNumber).asText();
        return parts;
    }

    QStringList rowTexts(int row) const
    {
        QStringList texts;
        for (int field = 1; field <= P::FieldCount; ++field) {
            const Cell &cell = catalogue.get(row, field);
            texts << (cell.isNumber() ? QStringLiteral("#%1").arg(cell.asNumber()) : cell.asText());
        }
        return texts;
    }

    test::FakePrompts prompts;
    AppEnvironment environment { QString(), QString() };
    Module1 module { prompts, environment, EnUs };
    Table &catalogue = module.Catalogue();
    Products &products = module.AllProducts();
    EditHistory history { module };
};

const QByteArray SupplierSheet = "Part Number\tProduct Name\tPrice\tPrice Point 1\tPrice 1\r\n"
                                 "M-2\tMallet\t15\t\t\r\n"
                                 "A-9\tAwl\t3.25\t10\t2.9\r\n"
                                 "K-5\tKnife, new\t8\t\t\r\n"
                                 "B-1\tBrush\t1\t\t\r\n";

/// Sorted by name, as after a click on the name's header.
class UpdateTest : public ImportTest
{
protected:
    void SetUp() override
    {
        load({ { "K-5", "Knife", "7.5" }, { "M-2", "Mallet", "14" }, { "C-3", "Tape", "2" } });
        module.SortedByPart = false;
    }

    ImportPlan update()
    {
        return plan(sheet, test::supplierSheetLetters(), true, ImportAction::UpdateExisting);
    }

    TextWorkbook sheet { SupplierSheet };
};

} // namespace

TEST_F(UpdateTest, TheChangesHoldTheNewProductsAndEachChangedFieldAtItsRow)
{
    const ImportPlan planned = update();
    ASSERT_EQ(planned.changed.size(), 2U);
    ASSERT_EQ(planned.addedCount(), 2);
    const ProductChanges changes = importChanges(planned, catalogue);
    ASSERT_EQ(changes.added.rowCount(), 2);
    EXPECT_EQ(changes.added.fieldCount(), P::FieldCount);
    EXPECT_EQ(changes.added.get(1, P::PartNumber), Cell("A-9"));
    EXPECT_EQ(changes.added.get(1, P::Price), Cell(3.25f));
    EXPECT_EQ(changes.added.get(2, P::PartNumber), Cell("B-1"));
    ASSERT_EQ(changes.updated.size(), 3U) << "M-2's price, K-5's name and price";
    EXPECT_EQ(changes.updated[0].row, 2);
    EXPECT_EQ(changes.updated[0].field, P::Price);
    EXPECT_EQ(changes.updated[0].value, Cell(15.0f));
    EXPECT_EQ(changes.changedProducts(), 2);
    EXPECT_EQ(catalogue.get(2, P::Price), Cell(14.0f)) << "the catalogue is only read";
}

TEST_F(UpdateTest, ApplyingChangesTheFieldsAddsTheNewProductsAndSortsOnThePartNumber)
{
    ASSERT_TRUE(apply(update()));
    EXPECT_EQ(products.Count(), 5);
    EXPECT_TRUE(module.SortedByPart);
    EXPECT_EQ(partNumbers(), (QStringList { "A-9", "B-1", "C-3", "K-5", "M-2" }));
    EXPECT_EQ(catalogue.get(4, P::ProductName), Cell("Knife, new"));
    EXPECT_EQ(catalogue.get(4, P::Price), Cell(8.0f));
    EXPECT_EQ(catalogue.get(4, P::Notes), Cell("A note")) << "not mapped";
    EXPECT_EQ(catalogue.get(5, P::Price), Cell(15.0f));
    EXPECT_EQ(catalogue.get(1, P::Price), Cell(3.25f));
    EXPECT_EQ(catalogue.get(1, P::PricePoint1), Cell("10"));
    EXPECT_EQ(catalogue.get(1, P::Price1), Cell("2.9"));
    EXPECT_EQ(catalogue.get(3, P::Price), Cell(2.0f));
    EXPECT_EQ(history.count(), 1);
    EXPECT_EQ(history.undoText(), "Import (2 added, 2 changed)");
}

TEST_F(UpdateTest, UndoGivesBackTheCatalogueByteForByteAndRedoTheImport)
{
    const QByteArray before = fileBytes();
    const QStringList orderBefore = partNumbers();
    ASSERT_TRUE(apply(update()));
    const QByteArray after = fileBytes();
    ASSERT_NE(after, before);

    history.undo();
    EXPECT_EQ(fileBytes(), before);
    EXPECT_EQ(partNumbers(), orderBefore) << "the order by name comes back too";
    EXPECT_FALSE(module.SortedByPart);
    EXPECT_EQ(products.Count(), 3);
    EXPECT_EQ(catalogue.rowCount(), 3);

    history.redo();
    EXPECT_EQ(fileBytes(), after);
    EXPECT_EQ(products.Count(), 5);
    history.undo();
    EXPECT_EQ(fileBytes(), before);
}

TEST_F(UpdateTest, AProductThatMovedSinceThePlanIsFoundByItsPartNumber)
{
    const ImportPlan planned = update();
    ProductCommands::sortCatalogue(catalogue, products, P::PartNumber, EnUs);
    ASSERT_EQ(partNumbers(), (QStringList { "C-3", "K-5", "M-2" }));
    catalogue.insertRows(1);
    catalogue.put(1, P::PartNumber, "0-0");
    products.setCount(4);
    ASSERT_TRUE(apply(planned));
    const int mallet = catalogue.find(P::PartNumber, Cell("M-2"));
    ASSERT_GT(mallet, 0);
    EXPECT_EQ(catalogue.get(mallet, P::Price), Cell(15.0f));
    const int knife = catalogue.find(P::PartNumber, Cell("K-5"));
    ASSERT_GT(knife, 0);
    EXPECT_EQ(catalogue.get(knife, P::ProductName), Cell("Knife, new"));
}

TEST_F(UpdateTest, AProductDeletedSinceThePlanIsLeftOut)
{
    const ImportPlan planned = update();
    catalogue.deleteRows(2);
    products.setCount(2);
    const ProductChanges changes = importChanges(planned, catalogue);
    EXPECT_EQ(changes.updated.size(), 2U) << "K-5's name and price";
    ASSERT_TRUE(apply(planned));
    EXPECT_EQ(catalogue.find(P::PartNumber, Cell("M-2")), 0);
    EXPECT_EQ(products.Count(), 4);
}

TEST_F(UpdateTest, AnEmptyPlanOnlySortsAndUndoRestoresTheOrder)
{
    const QByteArray before = fileBytes();
    ASSERT_TRUE(apply(ImportPlan {}));
    EXPECT_EQ(history.undoText(), "Import (0 added)");
    EXPECT_EQ(partNumbers(), (QStringList { "C-3", "K-5", "M-2" }));
    history.undo();
    EXPECT_EQ(fileBytes(), before);
    EXPECT_EQ(partNumbers(), (QStringList { "K-5", "M-2", "C-3" }));
}

TEST_F(ImportTest, TheImportsSortIsTheOneTheGridsSortGives)
{
    const char *parts[] = { "b-2", "A-1", "B-2", "", "a-1", "C" };
    catalogue.redim(6, P::FieldCount);
    for (int row = 1; row <= 6; ++row) {
        catalogue.put(row, P::PartNumber, parts[row - 1]);
        catalogue.put(row, P::ProductName, QString::number(row));
    }
    products.setCount(5);
    Table byGrid = catalogue;
    byGrid.redimPreserve(5, P::FieldCount);
    Products grids(byGrid, prompts, environment, EnUs);
    grids.setCount(6);
    const TextWorkbook sheet(QByteArray("Part Number\tProduct Name\r\nD\t7\r\n"));
    byGrid.insertRows(6);
    byGrid.put(6, P::PartNumber, "D");
    byGrid.put(6, P::ProductName, "7");
    ProductCommands::sortCatalogue(byGrid, grids, P::PartNumber, EnUs);

    ASSERT_TRUE(apply(plan(sheet, test::supplierSheetLetters(), true, ImportAction::AddNew)));
    EXPECT_EQ(products.Count(), 6);
    ASSERT_EQ(catalogue.rowCount(), 6) << "the row kept beyond Count goes, as the sort drops it";
    for (int row = 1; row <= 6; ++row)
        EXPECT_EQ(catalogue.get(row, P::ProductName), byGrid.get(row, P::ProductName)) << row;
}

namespace {

using tarnwick::test::dataFile;

/// Part number A, name B, price C, notes D, includes E, first point F and G.
QString sampleLetters()
{
    std::array<int, CM::ListCount> positions;
    positions.fill(0);
    positions[0] = 0;
    positions[1] = 1;
    positions[3] = 3;
    positions[7] = 4;
    positions[6] = 5;
    positions[2] = 6;
    positions[4] = 7;
    return CM::columnLetters(positions);
}

/// A catalogue of one product, OLD-1, and the sample workbooks of the exchange tests.
class AddTest : public ImportTest
{
protected:
    void SetUp() override { load({ { "OLD-1", "Old name", "" } }); }

    /// Adds from the sample workbook file; the plan's count of new products.
    int addFrom(const char *file, bool headers = true)
    {
        const WorkbookOpenResult read = openWorkbook(dataFile(QString::fromLatin1(file)));
        EXPECT_TRUE(read.workbook) << file;
        if (!read.workbook)
            return -1;
        ImportPlan planned = plan(*read.workbook, sampleLetters(), headers, ImportAction::AddNew);
        const int added = planned.addedCount();
        EXPECT_EQ(planned.skippedCount(SkipReason::PartNumberExists), 2) << file;
        apply(std::move(planned));
        return added;
    }
};

} // namespace

TEST_F(AddTest, AddsNewRowsUntilTheFirstEmptyPartNumber)
{
    for (const char *file : { "sample.xls", "sample.xlsx", "sample.ods", "sample.txt" }) {
        load({ { "OLD-1", "Old name", "" } });
        EXPECT_EQ(addFrom(file), 3) << file;
        EXPECT_EQ(products.Count(), 4) << file;
        ASSERT_EQ(catalogue.rowCount(), 4) << file;
        EXPECT_EQ(rowTexts(1),
            (QStringList { "AB-100", "Widget", "#12.5", "Red only", "Cable", "10", "11.5", "", "",
                "", "", "", "", "", "" }))
            << file;
        EXPECT_EQ(rowTexts(2),
            (QStringList { "AB-101", "Missing Product Name", "", "", "", "0.1", "3", "", "", "", "",
                "", "", "", "" }))
            << file;
        EXPECT_TRUE(catalogue.get(2, P::Price).isEmpty()) << file << ": n/a is no price";
        EXPECT_EQ(catalogue.get(3, P::ProductName).asText(), QString(75, QLatin1Char('N'))) << file;
        EXPECT_EQ(catalogue.get(1, P::Price).kind(), Cell::Kind::Single) << file;
        EXPECT_EQ(rowTexts(4)[1], "Old name") << file << ": adding changes no product";
        EXPECT_EQ(catalogue.find(P::PartNumber, "ZZ-9"), 0) << file << ": after the gap";
    }
}

TEST_F(AddTest, TheHeaderRowIsAddedWhenNotIgnored)
{
    EXPECT_EQ(addFrom("sample.xls", false), 4);
    EXPECT_EQ(catalogue.find(P::PartNumber, "Part Number"), 5);
    EXPECT_TRUE(catalogue.get(5, P::Price).isEmpty());
}

TEST_F(AddTest, ASheetWhosePartNumbersAllExistMakesNoStep)
{
    ASSERT_EQ(addFrom("sample.xls"), 3);
    const QByteArray once = fileBytes();
    const WorkbookOpenResult read = openWorkbook(dataFile("sample.xls"));
    ASSERT_TRUE(read.workbook);
    const ImportPlan again = plan(*read.workbook, sampleLetters(), true, ImportAction::AddNew);
    EXPECT_EQ(again.addedCount(), 0);
    EXPECT_EQ(again.skippedCount(SkipReason::PartNumberExists), 5);
    EXPECT_FALSE(apply(again));
    EXPECT_EQ(history.count(), 1);
    EXPECT_EQ(fileBytes(), once);
}

TEST_F(AddTest, UndoTakesTheNewProductsOutAndRedoPutsThemBack)
{
    const QByteArray before = fileBytes();
    ASSERT_EQ(addFrom("sample.ods"), 3);
    const QByteArray after = fileBytes();
    EXPECT_EQ(history.undoText(), "Import (3 added)");
    history.undo();
    EXPECT_EQ(fileBytes(), before);
    EXPECT_EQ(catalogue.rowCount(), 1);
    history.redo();
    EXPECT_EQ(fileBytes(), after);
}
