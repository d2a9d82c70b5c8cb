// The import planned before anything changes: what "Update existing products" changes, adds,
// leaves and skips (with the reason), and what "Add new products" adds and skips.
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "exchange/columnmapping.h"
#include "exchange/importplan.h"
#include "exchange/importreport.h"
#include "exchange/sheetcells.h"
#include "exchange/textworkbook.h"
#include "exchange/workbook.h"
#include "exchange/workbookwire.h"
#include "exchangetestdata.h"
#include "platform/appenvironment.h"
#include "support/fakeprompts.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

using tarnwick::test::EnUs;
using tarnwick::test::putText;

/// Part number A, name B, list price C, notes D, first price E (lists 0, 1, 3, 7, 4).
QString supplierLetters(bool withName = true)
{
    std::array<int, CM::ListCount> positions;
    positions.fill(0);
    positions[0] = 0;
    positions[1] = withName ? 1 : -1;
    positions[3] = 3;
    positions[7] = 4;
    positions[4] = 5;
    return CM::columnLetters(positions);
}

/// A supplier's sheet for the catalogue of SupplierSheet below.
const QByteArray SupplierRows = "Part Number\tProduct Name\tPrice\tNotes\tPrice 1\r\n"
                                "A-1\tAnchor\t12.5\tn\t\r\n" // the price changes
                                "B-2\t\t2.5\t\t1.50\r\n" // the same values
                                "\tNameless\t3\t\t\r\n" // no part number
                                "D-4\tDowel\t4\thello\t3.9\r\n" // new
                                "A-1\tAgain\t1\t\t\r\n" // twice in the sheet
                                "C-3\tClip\tcall us\t\t\r\n" // no number
                                "E-5\t\t\t\t\r\n" // new, nothing but the part number
                                "\t\t\t\t\r\n" // the end of the sheet
                                "F-6\tAfter the end\t1\t\t\r\n";

class ImportPlanTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        catalogue.put(1, P::PartNumber, "A-1");
        catalogue.put(1, P::ProductName, "Anchor");
        catalogue.put(1, P::Price, 10.0f);
        catalogue.put(1, P::Notes, "n");
        catalogue.put(2, P::PartNumber, "B-2");
        catalogue.put(2, P::ProductName, "Bolt");
        catalogue.put(2, P::Price, "$2.50"); // as the side box stores it
        catalogue.put(2, P::Price1, "1.5");
        catalogue.put(3, P::PartNumber, "C-3");
        catalogue.put(3, P::ProductName, "Clip");
        catalogue.put(3, P::Price, 3.0f);
        products.setCount(3);
    }

    ImportPlan plan(ImportAction action, const QString &letters = supplierLetters())
    {
        ImportPlanner planner(sheet, catalogue, letters, true, action, EnUs);
        planner.runAll();
        return planner.takePlan();
    }

    TextWorkbook sheet { SupplierRows };
    Table catalogue { 3, P::FieldCount };
    test::FakePrompts prompts;
    AppEnvironment environment { QString(), QString() };
    Products products { catalogue, prompts, environment, EnUs };
};

std::vector<std::pair<int, SkipReason>> skippedRows(const ImportPlan &plan)
{
    std::vector<std::pair<int, SkipReason>> rows;
    for (const ImportPlan::SkippedRow &row : plan.skipped)
        rows.emplace_back(row.sheetRow, row.reason);
    return rows;
}

} // namespace

TEST_F(ImportPlanTest, UpdatingCountsEveryProductAndSkippedRowWithItsReason)
{
    const Table before = catalogue;
    const ImportPlan update = plan(ImportAction::UpdateExisting);
    EXPECT_EQ(update.action, ImportAction::UpdateExisting);
    EXPECT_EQ(update.addedCount(), 2);
    EXPECT_EQ(update.addedSheetRows, (std::vector<int> { 5, 8 }));
    ASSERT_EQ(update.changed.size(), 1U);
    EXPECT_EQ(update.unchanged, 1) << "B-2: the same price and price in other forms";
    EXPECT_EQ(skippedRows(update),
        (std::vector<std::pair<int, SkipReason>> { { 4, SkipReason::EmptyPartNumber },
            { 6, SkipReason::RepeatedPartNumber }, { 7, SkipReason::PriceNotANumber } }));
    EXPECT_EQ(update.skipped[1].partNumber, "A-1");
    EXPECT_EQ(update.skipped[2].partNumber, "C-3");
    EXPECT_EQ(update.skippedCount(SkipReason::EmptyPartNumber), 1);
    EXPECT_EQ(update.skippedCount(SkipReason::PartNumberExists), 0);
    EXPECT_FALSE(update.firstError.has_value());
    EXPECT_EQ(catalogue.generation(), before.generation()) << "planning changes nothing";
}

// A supplier's sheet often carries blanks after a part number, which no one sees: an update
// takes "A-1 " for the catalogue's A-1, and adds a new part number without them.
TEST_F(ImportPlanTest, AnUpdateReadsPartNumbersWithoutBlanksAtEitherEnd)
{
    const TextWorkbook rows(QByteArray("Part Number\tProduct Name\tPrice\tNotes\tPrice 1\r\n"
                                       "A-1 \t\t11\t\t\r\n"
                                       " B-2\xc2\xa0\t\t7\t\t\r\n"
                                       "   \tBlank\t5\t\t\r\n"
                                       "N-9  \tNew\t1\t\t\r\n"));
    ImportPlanner planner(
        rows, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    planner.runAll();
    const ImportPlan plan = planner.takePlan();
    ASSERT_EQ(plan.changed.size(), 2U);
    EXPECT_EQ(plan.changed[0].partNumber, QStringLiteral("A-1"));
    EXPECT_EQ(plan.changed[0].catalogueRow, 1);
    EXPECT_EQ(plan.changed[1].partNumber, QStringLiteral("B-2"));
    ASSERT_EQ(plan.addedCount(), 1);
    EXPECT_EQ(plan.addedProduct(0)[P::PartNumber - 1], Cell("N-9"));
    EXPECT_EQ(skippedRows(plan),
        (std::vector<std::pair<int, SkipReason>> { { 4, SkipReason::EmptyPartNumber } }));
    // Adding takes a part number as read, as the import always has.
    ImportPlanner adding(rows, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
    adding.runAll();
    EXPECT_EQ(adding.takePlan().addedProduct(0)[P::PartNumber - 1], Cell("A-1 "));
}

// The catalogue's own " SP-1 " (its export writes it so) is that product, not a new SP-1.
TEST_F(ImportPlanTest, AnUpdateFindsAPartNumberTheCatalogueKeepsWithBlanks)
{
    catalogue.put(3, P::PartNumber, " SP-1 ");
    const TextWorkbook rows(QByteArray("Part Number\tProduct Name\tPrice\tNotes\tPrice 1\r\n"
                                       " SP-1 \t\t9\t\t\r\n"
                                       " SP-1 \t\t10\t\t\r\n"
                                       "A-1 \t\t11\t\t\r\n"));
    ImportPlanner planner(
        rows, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    planner.runAll();
    const ImportPlan plan = planner.takePlan();
    EXPECT_EQ(plan.addedCount(), 0);
    ASSERT_EQ(plan.changed.size(), 2U);
    EXPECT_EQ(plan.changed[0].partNumber, QStringLiteral(" SP-1 "));
    EXPECT_EQ(plan.changed[0].catalogueRow, 3);
    EXPECT_EQ(plan.changed[1].partNumber, QStringLiteral("A-1"));
    EXPECT_EQ(skippedRows(plan),
        (std::vector<std::pair<int, SkipReason>> { { 3, SkipReason::RepeatedPartNumber } }));
}

TEST_F(ImportPlanTest, AChangeHoldsTheOldAndTheNewCellOfEachFieldThatDiffers)
{
    const ImportPlan update = plan(ImportAction::UpdateExisting);
    ASSERT_EQ(update.changed.size(), 1U);
    const ImportPlan::ChangedProduct &anchor = update.changed[0];
    EXPECT_EQ(anchor.partNumber, "A-1");
    EXPECT_EQ(anchor.sheetRow, 2);
    EXPECT_EQ(anchor.catalogueRow, 1);
    ASSERT_EQ(anchor.fields.size(), 1U) << "name and notes are the same; price 1 is empty";
    EXPECT_EQ(anchor.fields[0].field, P::Price);
    EXPECT_EQ(anchor.fields[0].before, Cell(10.0f));
    EXPECT_EQ(anchor.fields[0].after, Cell(12.5f));
}

TEST_F(ImportPlanTest, NewProductsFollowTheImportsRules)
{
    const ImportPlan update = plan(ImportAction::UpdateExisting);
    ASSERT_EQ(update.addedCount(), 2);
    const auto dowel = update.addedProduct(0);
    EXPECT_EQ(dowel[P::PartNumber - 1], Cell("D-4"));
    EXPECT_EQ(dowel[P::ProductName - 1], Cell("Dowel"));
    EXPECT_EQ(dowel[P::Price - 1], Cell(4.0f));
    EXPECT_EQ(dowel[P::Notes - 1], Cell("hello"));
    EXPECT_EQ(dowel[P::Price1 - 1], Cell("3.9"));
    EXPECT_EQ(dowel[P::Includes - 1], Cell(QString()));
    const auto bare = update.addedProduct(1);
    EXPECT_EQ(bare[P::PartNumber - 1], Cell("E-5"));
    EXPECT_EQ(bare[P::ProductName - 1], Cell("Missing Product Name"));
    EXPECT_TRUE(bare[P::Price - 1].isEmpty());
}

TEST_F(ImportPlanTest, AnUnmappedNameLeavesTheNamesAsTheyAre)
{
    catalogue.put(1, P::Price, 12.5f);
    const ImportPlan update = plan(ImportAction::UpdateExisting, supplierLetters(false));
    EXPECT_TRUE(update.changed.empty());
    EXPECT_EQ(update.unchanged, 2);
    ASSERT_EQ(update.addedCount(), 2);
    EXPECT_EQ(update.addedProduct(0)[P::ProductName - 1], Cell("Missing Product Name"));
}

TEST_F(ImportPlanTest, AnEmptyCellLeavesItsFieldAsItIs)
{
    catalogue.put(1, P::Price1, "7");
    const ImportPlan update = plan(ImportAction::UpdateExisting);
    ASSERT_EQ(update.changed.size(), 1U);
    for (const ImportPlan::FieldChange &change : update.changed[0].fields)
        EXPECT_NE(change.field, P::Price1);
}

TEST_F(ImportPlanTest, ANameIsCutTo75CharactersBeforeItIsCompared)
{
    const QString longName(80, QLatin1Char('N'));
    catalogue.put(3, P::ProductName, longName.left(75));
    const TextWorkbook longSheet(
        ("Part Number\tProduct Name\r\nC-3\t" + longName + "\r\nG-7\t" + longName + "\r\n")
            .toUtf8());
    ImportPlanner planner(
        longSheet, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    planner.runAll();
    const ImportPlan update = planner.takePlan();
    EXPECT_EQ(update.unchanged, 1);
    ASSERT_EQ(update.addedCount(), 1);
    EXPECT_EQ(update.addedProduct(0)[P::ProductName - 1], Cell(longName.left(75)));
}

TEST(ImportPlanAdding, ANameIsCutByCharactersNotByBytes)
{
    Table catalogue(0, P::FieldCount);
    // 75 and 76 characters of two UTF-8 bytes each.
    const QString whole(75, QChar(0x00E9));
    const QString over = whole + QChar(0x00E8);
    const TextWorkbook sheet(
        ("Part Number\tProduct Name\r\nE-1\t" + whole + "\r\nE-2\t" + over + "\r\n").toUtf8());
    ImportPlanner planner(sheet, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
    planner.runAll();
    const ImportPlan add = planner.takePlan();
    ASSERT_EQ(add.addedCount(), 2);
    EXPECT_EQ(add.addedProduct(0)[P::ProductName - 1].asText(), whole);
    EXPECT_EQ(add.addedProduct(1)[P::ProductName - 1].asText(), whole);
}

TEST_F(ImportPlanTest, AddingSkipsEveryKnownPartNumberAndEndsAtTheFirstEmptyOne)
{
    const ImportPlan add = plan(ImportAction::AddNew);
    EXPECT_EQ(add.action, ImportAction::AddNew);
    EXPECT_TRUE(add.changed.empty());
    EXPECT_EQ(add.unchanged, 0);
    // Row 4 has no part number: adding ends there.
    EXPECT_EQ(skippedRows(add),
        (std::vector<std::pair<int, SkipReason>> {
            { 2, SkipReason::PartNumberExists }, { 3, SkipReason::PartNumberExists } }));
    EXPECT_EQ(add.addedCount(), 0);
}

TEST(ImportPlanAdding, APartNumberTwiceInTheSheetIsAddedOnceAndTheRepeatCountsAsExisting)
{
    Table catalogue(0, P::FieldCount);
    const TextWorkbook sheet(QByteArray("Part Number\tProduct Name\tPrice\r\n"
                                        "X-1\tFirst\tn/a\r\nX-1\tSecond\t2\r\nX-2\tOther\t3\r\n"));
    ImportPlanner planner(sheet, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
    planner.runAll();
    const ImportPlan add = planner.takePlan();
    ASSERT_EQ(add.addedCount(), 2);
    EXPECT_EQ(add.addedProduct(0)[P::ProductName - 1], Cell("First"));
    EXPECT_TRUE(add.addedProduct(0)[P::Price - 1].isEmpty()) << "a price that is no number";
    EXPECT_EQ(add.skippedCount(SkipReason::PartNumberExists), 1);
    EXPECT_EQ(planner.currentRow(), 5);
}

TEST(ImportPlanAdding, APartNumberIsKnownWhateverEncodingTheCatalogueKeepsItIn)
{
    // Typed in the program (UTF-16), read from an older catalogue file (Windows-1252) and from
    // a newer one (UTF-8); the sheet is UTF-8 text.
    Table catalogue(3, P::FieldCount);
    catalogue.put(1, P::PartNumber, QStringLiteral("\u00C4-1"));
    auto *older = new CellTextBlock;
    older->bytes = QByteArrayLiteral("\xC9-2");
    catalogue.put(2, P::PartNumber, Cell::inBlock(older, 0, 3, TextEncoding::Windows1252));
    auto *newer = new CellTextBlock;
    newer->bytes = QByteArrayLiteral("\xC3\x98-3");
    catalogue.put(3, P::PartNumber, Cell::inBlock(newer, 0, 4, TextEncoding::Utf8));
    for (CellTextBlock *block : { older, newer }) {
        if (block->ref.fetch_sub(1) == 1)
            delete block;
    }
    const TextWorkbook sheet(QByteArray("Part Number\tProduct Name\tPrice\r\n"
                                        "\xC3\x84-1\ta\t1\r\n\xC3\x89-2\tb\t2\r\n"
                                        "\xC3\x98-3\tc\t3\r\nN-4\td\t4\r\n"
                                        "\xC3\x89-2\te\t5\r\nA-1\tf\t6\r\n"));
    ImportPlanner planner(sheet, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
    planner.runAll();
    const ImportPlan add = planner.takePlan();
    EXPECT_EQ(skippedRows(add),
        (std::vector<std::pair<int, SkipReason>> { { 2, SkipReason::PartNumberExists },
            { 3, SkipReason::PartNumberExists }, { 4, SkipReason::PartNumberExists },
            { 6, SkipReason::PartNumberExists } }));
    ASSERT_EQ(add.skipped.size(), 4U);
    EXPECT_EQ(add.skipped[1].partNumber, QStringLiteral("\u00C9-2"));
    ASSERT_EQ(add.addedCount(), 2);
    EXPECT_EQ(add.addedProduct(0)[P::PartNumber - 1], Cell("N-4"));
    EXPECT_EQ(add.addedProduct(1)[P::PartNumber - 1], Cell("A-1"));

    ImportPlanner update(
        sheet, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    update.runAll();
    const ImportPlan changes = update.takePlan();
    ASSERT_EQ(changes.changed.size(), 3U) << "the three known products get a name and a price";
    EXPECT_EQ(changes.changed[0].catalogueRow, 1);
    EXPECT_EQ(changes.changed[1].catalogueRow, 2);
    EXPECT_EQ(changes.changed[2].catalogueRow, 3);
    EXPECT_EQ(changes.changed[2].partNumber, QStringLiteral("\u00D8-3"));
    EXPECT_EQ(changes.skippedCount(SkipReason::RepeatedPartNumber), 1);
}

TEST(ImportPlanAdding, AnUnmappedPartNumberPlansNothing)
{
    Table catalogue(0, P::FieldCount);
    const TextWorkbook sheet(SupplierRows);
    ImportPlanner planner(
        sheet, catalogue, "@@?????????????", true, ImportAction::UpdateExisting, EnUs);
    EXPECT_FALSE(planner.step());
    EXPECT_TRUE(planner.plan().changesNothing());
}

namespace {

/// Column A and B of rows 2 to lastRow; reading any cell of a failing row raises an error.
class FailingRowsSheet : public IWorkbook
{
public:
    FailingRowsSheet(int lastRow, std::vector<int> failing)
        : m_lastRow(lastRow), m_failing(std::move(failing))
    {
    }
    QString cellText(int column, int row) const override
    {
        if (std::find(m_failing.begin(), m_failing.end(), row) != m_failing.end())
            throw VbError(ErrorNumber::TypeMismatch);
        if (row > m_lastRow || column > 1)
            return QString();
        return QStringLiteral("%1-%2").arg(column == 0 ? "P" : "Name").arg(row);
    }

private:
    int m_lastRow;
    std::vector<int> m_failing;
};

} // namespace

TEST(ImportPlanErrors, ARowThatCannotBeReadIsSkippedAndTheErrorKept)
{
    Table catalogue(0, P::FieldCount);
    const FailingRowsSheet sheet(6, { 3 });
    for (const ImportAction action : { ImportAction::AddNew, ImportAction::UpdateExisting }) {
        ImportPlanner planner(sheet, catalogue, supplierLetters(), true, action, EnUs);
        planner.runAll();
        const ImportPlan plan = planner.takePlan();
        EXPECT_EQ(plan.addedCount(), 4);
        ASSERT_EQ(plan.skipped.size(), 1U);
        EXPECT_EQ(plan.skipped[0].sheetRow, 3);
        EXPECT_EQ(plan.skipped[0].reason, SkipReason::Unreadable);
        ASSERT_TRUE(plan.firstError.has_value());
        EXPECT_EQ(plan.firstError->number(), ErrorNumber::TypeMismatch);
    }
}

TEST(ImportPlanErrors, AListPriceBeyondSinglePrecisionIsAnOverflowNotAnInfinitePrice)
{
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "A-1");
    catalogue.put(1, P::Price, 10.0f);
    const TextWorkbook sheet("Part Number\tProduct Name\tPrice\tNotes\tPrice 1\r\n"
                             "A-1\tAnchor\t5E+39\t\t\r\n"
                             "N-1\tNut\t-5E+39\t\t\r\n"
                             "N-2\tNail\t3.4E+38\t\t\r\n");

    ImportPlanner adding(sheet, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
    adding.runAll();
    const ImportPlan add = adding.takePlan();
    ASSERT_EQ(add.addedCount(), 2);
    EXPECT_TRUE(add.addedProduct(0)[P::Price - 1].isEmpty()) << "the product comes without a price";
    EXPECT_EQ(add.addedProduct(1)[P::Price - 1], Cell(3.4E+38f));
    ASSERT_TRUE(add.firstError.has_value()) << "and the import reports an error";
    EXPECT_EQ(add.firstError->number(), ErrorNumber::Overflow);

    ImportPlanner updating(
        sheet, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    updating.runAll();
    const ImportPlan update = updating.takePlan();
    EXPECT_EQ(skippedRows(update),
        (std::vector<std::pair<int, SkipReason>> {
            { 2, SkipReason::PriceTooLarge }, { 3, SkipReason::PriceTooLarge } }));
    EXPECT_TRUE(update.changed.empty());
    EXPECT_EQ(update.addedCount(), 1);
    EXPECT_EQ(update.addedProduct(0)[P::Price - 1], Cell(3.4E+38f));
    EXPECT_FALSE(update.firstError.has_value());
}

TEST(ImportPlanErrors, ASheetThatNeverReadsEnds)
{
    Table catalogue(0, P::FieldCount);
    std::vector<int> every;
    for (int row = 1; row <= 500; ++row)
        every.push_back(row);
    const FailingRowsSheet sheet(500, every);
    ImportPlanner planner(
        sheet, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    planner.runAll();
    EXPECT_EQ(planner.currentRow(), 2 + ImportPlanner::MaxUnreadableRows);
}

namespace {

/// A supplier's sheet with error cells (#N/A, #DIV/0!): one in a part number, one in a name.
SheetCells sheetWithErrorCells()
{
    SheetCells sheet;
    putText(sheet, 1, 0, "Part Number");
    putText(sheet, 1, 1, "Product Name");
    putText(sheet, 1, 2, "Price");
    sheet.putError(2, 0);
    putText(sheet, 2, 1, "no part number to read");
    putText(sheet, 3, 0, "E-1");
    sheet.putError(3, 1);
    putText(sheet, 3, 2, "2.5");
    putText(sheet, 4, 0, "E-2");
    putText(sheet, 4, 1, "Fine");
    sheet.finish();
    return sheet;
}

std::unique_ptr<IWorkbook> throughTheWire(const SheetCells &sheet)
{
    WorkbookWire::Decoder decoder;
    WorkbookWire::writeWorkbook(sheet, [&](const QByteArray &bytes) { decoder.feed(bytes); });
    EXPECT_EQ(decoder.state(), WorkbookWire::Decoder::State::Read);
    return decoder.takeWorkbook();
}

} // namespace

TEST(ImportPlanErrors, ErrorCellsReadWithTheirRowAreCellsThatCannotBeRead)
{
    const SheetCells sheet = sheetWithErrorCells();
    const std::unique_ptr<IWorkbook> wire = throughTheWire(sheet);
    ASSERT_NE(wire, nullptr);
    const std::vector<const IWorkbook *> workbooks { &sheet, wire.get() };
    for (const IWorkbook *workbook : workbooks) {
        Table catalogue(0, P::FieldCount);
        ImportPlanner planner(
            *workbook, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
        planner.runAll();
        const ImportPlan plan = planner.takePlan();
        EXPECT_EQ(skippedRows(plan),
            (std::vector<std::pair<int, SkipReason>> { { 2, SkipReason::Unreadable } }));
        ASSERT_EQ(plan.addedCount(), 2);
        EXPECT_EQ(plan.addedProduct(0)[P::PartNumber - 1], Cell("E-1"));
        EXPECT_EQ(plan.addedProduct(0)[P::ProductName - 1], Cell("Missing Product Name"))
            << "an error in the name leaves it empty";
        EXPECT_EQ(plan.addedProduct(0)[P::Price - 1], Cell(2.5f));
        EXPECT_EQ(plan.addedProduct(1)[P::ProductName - 1], Cell("Fine"));
        ASSERT_TRUE(plan.firstError.has_value());
        EXPECT_EQ(plan.firstError->number(), ErrorNumber::TypeMismatch);
    }
}

TEST(WorkbookCells, ARowReadAtOnceIsTheSameAsItsCellsReadOneByOne)
{
    const SheetCells sheet = sheetWithErrorCells();
    const std::unique_ptr<IWorkbook> wire = throughTheWire(sheet);
    ASSERT_NE(wire, nullptr);
    const std::vector<int> columns { 3, 0, 1, 17, 0 };
    const std::vector<const IWorkbook *> workbooks { &sheet, wire.get() };
    for (const IWorkbook *workbook : workbooks) {
        const Cell first = workbook->textCell(0, 1);
        const CellTextBlock *block = first.textBlock();
        const int referencesBefore = block != nullptr ? block->ref.load() : 0;
        for (int row = 1; row <= 5; ++row) {
            SCOPED_TRACE(row);
            std::vector<Cell> cells(columns.size(), Cell(QStringLiteral("old")));
            bool flags[5] = { true, true, true, true, true };
            workbook->readCells(row, columns, cells, flags);
            for (std::size_t i = 0; i < columns.size(); ++i) {
                EXPECT_EQ(flags[i], workbook->isError(columns[i], row)) << columns[i];
                if (flags[i])
                    EXPECT_TRUE(cells[i].isEmpty()) << columns[i];
                else
                    EXPECT_EQ(cells[i], workbook->textCell(columns[i], row)) << columns[i];
            }
        }
        if (block != nullptr) {
            EXPECT_EQ(block->ref.load(), referencesBefore) << "every reference given back";
        }
    }
}

namespace {

ImportPlan planNewProducts(const IWorkbook &workbook, const QLocale &locale)
{
    const Table catalogue { 1, P::FieldCount };
    ImportPlanner planner(
        workbook, catalogue, test::supplierSheetLetters(), true, ImportAction::AddNew, locale);
    planner.runAll();
    return planner.takePlan();
}

} // namespace

// A number cell of a workbook is the same number in every locale: in German "2.675" from the
// cell 2.675 is not two thousand six hundred and seventy-five, and a price point keeps it in
// the form German reads as that number, as the catalogue file's price points are kept.
TEST(ImportPlanLocale, AWorkbooksNumbersMeanTheSameInGerman)
{
    for (const char *name : { "decimals.xlsx", "decimals.ods", "decimals.xls" }) {
        SCOPED_TRACE(name);
        WorkbookOpenResult read = openWorkbook(test::dataFile(QString::fromLatin1(name)));
        ASSERT_NE(read.workbook, nullptr);
        EXPECT_TRUE(read.workbook->numbersInStoredForm());
        auto *cells = dynamic_cast<const SheetCells *>(read.workbook.get());
        ASSERT_NE(cells, nullptr);
        const std::unique_ptr<IWorkbook> wire = throughTheWire(*cells);
        ASSERT_NE(wire, nullptr);
        EXPECT_TRUE(wire->numbersInStoredForm()) << "said by the reader process too";
        for (const IWorkbook *workbook : { read.workbook.get(), wire.get() }) {
            const ImportPlan german = planNewProducts(*workbook, test::DeDe);
            ASSERT_EQ(german.addedCount(), 2);
            EXPECT_EQ(german.addedProduct(0)[P::Price - 1], Cell(0.125f));
            EXPECT_EQ(german.addedProduct(0)[P::PricePoint1 - 1], Cell("1000"));
            EXPECT_EQ(german.addedProduct(0)[P::Price1 - 1], Cell("2,675"));
            EXPECT_EQ(german.addedProduct(1)[P::Price - 1], Cell(1234.5f));
            EXPECT_EQ(german.addedProduct(1)[P::Price1 - 1], Cell("14.46"))
                << "a form German reads as the same number stays as it is";
            const ImportPlan english = planNewProducts(*workbook, EnUs);
            ASSERT_EQ(english.addedCount(), 2);
            EXPECT_EQ(english.addedProduct(0)[P::Price - 1], Cell(0.125f));
            EXPECT_EQ(english.addedProduct(0)[P::Price1 - 1], Cell("2.675"));
        }
    }
}

// Tab-separated text is written in some locale's way, and the user's locale reads it: in
// German "2.675" there is 2,675 thousand. A leading "0." is never a group of thousands.
// An update ends at the first row empty in every mapped column, as adding ends at the first
// empty part number; rows below it are not read, and the counts say so.
TEST(ImportPlanGap, RowsBelowAnEmptyRowAreSaidNotRead)
{
    const QByteArray bytes("Part Number\tProduct Name\tPrice\r\n"
                           "A-1\tAnchor\t11\r\n"
                           "\t\t\r\n"
                           "B-2\tBolt\t7\r\n");
    SheetReadResult read = readSheet(bytes);
    ASSERT_NE(read.cells, nullptr);
    EXPECT_TRUE(read.cells->hasRowsAfterAGap());
    const std::unique_ptr<IWorkbook> wire = throughTheWire(*read.cells);
    ASSERT_NE(wire, nullptr);
    EXPECT_TRUE(wire->hasRowsAfterAGap()) << "said by the reader process too";
    const Table catalogue { 1, P::FieldCount };
    const std::vector<const IWorkbook *> workbooks { read.cells.get(), wire.get() };
    for (const IWorkbook *workbook : workbooks) {
        ImportPlanner planner(*workbook, catalogue, test::supplierSheetLetters(), true,
            ImportAction::UpdateExisting, EnUs);
        planner.runAll();
        const ImportPlan plan = planner.takePlan();
        EXPECT_EQ(plan.addedCount(), 1);
        EXPECT_EQ(plan.rowsLeftBelow, 3);
        EXPECT_EQ(ImportReport::countLines(plan).value(4),
            QStringLiteral("Rows not read: every row below row 3, which is empty in the mapped "
                           "columns and ends the import."));
    }
    // A row empty in the mapped columns but not in others ends the update too.
    const TextWorkbook text(QByteArray("Part Number\tProduct Name\tPrice\tNotes\tPrice 1\tX\r\n"
                                       "A-1\tAnchor\t11\t\t\t\r\n"
                                       "\t\t\t\t\tnote\r\n"
                                       "B-2\tBolt\t7\t\t\t\r\n"));
    ImportPlanner planner(
        text, catalogue, test::supplierSheetLetters(), true, ImportAction::UpdateExisting, EnUs);
    planner.runAll();
    EXPECT_EQ(planner.takePlan().rowsLeftBelow, 3);
    // A sheet read to its end leaves nothing.
    const TextWorkbook whole(QByteArray("Part Number\tProduct Name\tPrice\r\nA-1\tAnchor\t11\r\n"));
    ImportPlanner all(
        whole, catalogue, test::supplierSheetLetters(), true, ImportAction::UpdateExisting, EnUs);
    all.runAll();
    const ImportPlan plan = all.takePlan();
    EXPECT_EQ(plan.rowsLeftBelow, 0);
    EXPECT_EQ(ImportReport::countLines(plan).size(), 4);
}

TEST(ImportPlanLocale, TabSeparatedTextIsReadAsTheUsersLocaleWritesNumbers)
{
    QFile file(test::dataFile(QStringLiteral("decimals.txt")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const TextWorkbook text(file.readAll());
    EXPECT_FALSE(text.numbersInStoredForm());
    const ImportPlan german = planNewProducts(text, test::DeDe);
    ASSERT_EQ(german.addedCount(), 2);
    EXPECT_EQ(german.addedProduct(0)[P::Price - 1], Cell(0.125f));
    EXPECT_EQ(german.addedProduct(0)[P::Price1 - 1], Cell("2.675"));
    EXPECT_EQ(german.addedProduct(1)[P::Price - 1], Cell(1234.5f));
}
