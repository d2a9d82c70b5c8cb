// The import planned from rows that are not what they seem: cells that cannot be read, error
// cells, a list price beyond single precision, a sheet that never ends, rows below an empty
// row, and numbers read under a German locale.
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
#include "importplantestdata.h"
#include "platform/appenvironment.h"
#include "support/fakeprompts.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;

using tarnwick::test::EnUs;
using tarnwick::test::putValue;
using tarnwick::test::skippedRows;
using tarnwick::test::supplierLetters;

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
    int rowCountHint() const override { return m_lastRow; }

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

// The rows below the end are left out, and the plan says from which row on, so the preview
// and the result name them.
TEST(ImportPlanErrors, TheRowsBelowAnEndAfterUnreadableRowsAreNamed)
{
    Table catalogue(0, P::FieldCount);
    std::vector<int> failing;
    for (int row = 2; row <= 151; ++row)
        failing.push_back(row);
    const FailingRowsSheet sheet(152, failing);
    ImportPlanner planner(
        sheet, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    planner.runAll();
    const ImportPlan plan = planner.takePlan();
    EXPECT_EQ(plan.skippedCount(SkipReason::Unreadable), ImportPlanner::MaxUnreadableRows);
    EXPECT_EQ(plan.addedCount(), 0);
    EXPECT_EQ(plan.rowsLeftBelow, 2 + ImportPlanner::MaxUnreadableRows);
    EXPECT_TRUE(plan.endedAfterUnreadableRows);
    EXPECT_TRUE(ImportReport::countLines(plan).contains(
        QStringLiteral("Rows not read: row 102 and every row below it. The 100 rows above it "
                       "could not be read, which ends the import.")))
        << ImportReport::countLines(plan).join(QLatin1Char('|')).toStdString();

    // A sheet that ends with its hundredth unreadable row leaves nothing out.
    const FailingRowsSheet ending(101, failing);
    ImportPlanner last(
        ending, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    last.runAll();
    const ImportPlan whole = last.takePlan();
    EXPECT_EQ(whole.rowsLeftBelow, 0);
    EXPECT_FALSE(whole.endedAfterUnreadableRows);
}

namespace {

/// A supplier's sheet with error cells (#N/A, #DIV/0!): one in a part number, one in a name.
SheetCells sheetWithErrorCells()
{
    SheetCells sheet;
    putValue(sheet, 1, 0, "Part Number");
    putValue(sheet, 1, 1, "Product Name");
    putValue(sheet, 1, 2, "Price");
    sheet.putError(2, 0);
    putValue(sheet, 2, 1, "no part number to read");
    putValue(sheet, 3, 0, "E-1");
    sheet.putError(3, 1);
    putValue(sheet, 3, 2, "2.5");
    putValue(sheet, 4, 0, "E-2");
    putValue(sheet, 4, 1, "Fine");
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
// the German form, as the catalogue file's price points are kept.
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
            EXPECT_EQ(german.addedProduct(1)[P::Price1 - 1], Cell("14,46"))
                << "in the German form, as every price point of the catalogue";
            const ImportPlan english = planNewProducts(*workbook, EnUs);
            ASSERT_EQ(english.addedCount(), 2);
            EXPECT_EQ(english.addedProduct(0)[P::Price - 1], Cell(0.125f));
            EXPECT_EQ(english.addedProduct(0)[P::Price1 - 1], Cell("2.675"));
        }
    }
}

// A text typed into a workbook's cell is read as the user typed it, as tab-separated text is:
// in German the text "1.250" is twelve hundred and fifty, while the number 1.25 beside it stays
// one and a quarter. A formula whose result is such a text gives a text too.
TEST(ImportPlanLocale, AWorkbooksTextCellsAreReadAsTheUserTypedThem)
{
    for (const char *name : { "textnumbers.xlsx", "textnumbers.ods", "textnumbers.xls" }) {
        SCOPED_TRACE(name);
        WorkbookOpenResult read = openWorkbook(test::dataFile(QString::fromLatin1(name)));
        ASSERT_NE(read.workbook, nullptr);
        auto *cells = dynamic_cast<const SheetCells *>(read.workbook.get());
        ASSERT_NE(cells, nullptr);
        const std::unique_ptr<IWorkbook> wire = throughTheWire(*cells);
        ASSERT_NE(wire, nullptr);
        for (const IWorkbook *workbook : { read.workbook.get(), wire.get() }) {
            EXPECT_TRUE(workbook->numbersInStoredForm());
            EXPECT_TRUE(workbook->isTextCell(2, 2));
            EXPECT_TRUE(workbook->isTextCell(2, 4)) << "a formula's text";
            EXPECT_FALSE(workbook->isTextCell(2, 3)) << "a number";
            const ImportPlan german = planNewProducts(*workbook, test::DeDe);
            ASSERT_EQ(german.addedCount(), 3);
            EXPECT_EQ(german.addedProduct(0)[P::Price - 1], Cell(1250.0f));
            EXPECT_EQ(german.addedProduct(0)[P::PricePoint1 - 1], Cell("1.000"));
            EXPECT_EQ(german.addedProduct(0)[P::Price1 - 1], Cell("2.500"));
            EXPECT_EQ(german.addedProduct(1)[P::Price - 1], Cell(1.25f));
            EXPECT_EQ(german.addedProduct(1)[P::PricePoint1 - 1], Cell("1000"));
            EXPECT_EQ(german.addedProduct(1)[P::Price1 - 1], Cell("2,5"))
                << "in the German form, as every price point of the catalogue";
            EXPECT_EQ(german.addedProduct(2)[P::Price - 1], Cell(1250.0f));
            EXPECT_EQ(german.addedProduct(2)[P::Price1 - 1], Cell("12,50"));
            const ImportPlan english = planNewProducts(*workbook, EnUs);
            ASSERT_EQ(english.addedCount(), 3);
            // The sheet's text "12,50" says its texts are written with a decimal comma.
            EXPECT_EQ(english.addedProduct(0)[P::Price - 1], Cell(1250.0f));
            EXPECT_EQ(english.addedProduct(2)[P::Price - 1], Cell(1250.0f));

            // Updating a catalogue that holds those prices finds them the same.
            Table catalogue { 2, P::FieldCount };
            catalogue.put(1, P::PartNumber, Cell("T-1"));
            catalogue.put(1, P::Price, Cell(1250.0f));
            catalogue.put(2, P::PartNumber, Cell("N-1"));
            catalogue.put(2, P::Price, Cell(1.25f));
            std::array<int, ColumnMapping::ListCount> positions;
            positions.fill(0);
            positions[ColumnMapping::PartNumberList] = 0; // A
            positions[ColumnMapping::ProductNameList] = -1;
            positions[3] = 3; // the list price in C
            ImportPlanner planner(*workbook, catalogue, ColumnMapping::columnLetters(positions),
                true, ImportAction::UpdateExisting, test::DeDe);
            planner.runAll();
            const ImportPlan update = planner.takePlan();
            EXPECT_EQ(update.unchanged, 2);
            EXPECT_TRUE(update.changed.empty());
        }
    }
}

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

TEST(ImportPlanRows, AddingSaysWhereARowWithoutAPartNumberEndedIt)
{
    const Table catalogue { 1, P::FieldCount };
    const TextWorkbook last(QByteArray("Part Number\tProduct Name\tPrice\r\n"
                                       "A-1\tAnchor\t11\r\n"
                                       "\tNo part\t5\r\n"));
    ImportPlanner planner(
        last, catalogue, test::supplierSheetLetters(), true, ImportAction::AddNew, EnUs);
    planner.runAll();
    const ImportPlan plan = planner.takePlan();
    EXPECT_EQ(plan.addedCount(), 1);
    EXPECT_EQ(plan.rowsLeftBelow, 3);
    EXPECT_EQ(ImportReport::countLines(plan).value(4),
        QStringLiteral("Rows not read: row 3 and every row below it. Row 3 has no part number, "
                       "which ends the import."));
    // A sheet that simply ends says nothing.
    const TextWorkbook whole(QByteArray("Part Number\tProduct Name\tPrice\r\nA-1\tAnchor\t11\r\n"));
    ImportPlanner all(
        whole, catalogue, test::supplierSheetLetters(), true, ImportAction::AddNew, EnUs);
    all.runAll();
    EXPECT_EQ(all.takePlan().rowsLeftBelow, 0);
}

// Tab-separated text is written in some locale's way: a number whose one mark could be a decimal
// or a group of thousands is read with the mark the sheet's other numbers show it writes.
TEST(ImportPlanLocale, TabSeparatedTextIsReadAsTheUsersLocaleWritesNumbers)
{
    QFile file(test::dataFile(QStringLiteral("decimals.txt")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const TextWorkbook text(file.readAll());
    EXPECT_FALSE(text.numbersInStoredForm());
    const ImportPlan german = planNewProducts(text, test::DeDe);
    ASSERT_EQ(german.addedCount(), 2);
    EXPECT_EQ(german.addedProduct(0)[P::Price - 1], Cell(0.125f));
    // "0.125" and "14.46" say the sheet writes decimals with a point: "2.675" is one too.
    EXPECT_EQ(german.addedProduct(0)[P::Price1 - 1], Cell("2,675"));
    EXPECT_EQ(german.addedProduct(1)[P::Price - 1], Cell(1234.5f));
}

// A list price written with a comma decimal in a locale that groups with a comma ("12,50",
// "0,99" in English, a German supplier's text cells) is read as it is when typed into the
// list-price box: twelve and a half, not a product without a price.
TEST(ImportPlanLocale, ACommaDecimalListPriceIsReadAsTypingReadsIt)
{
    const TextWorkbook text(QByteArray("Part Number\tProduct Name\tPrice\r\n"
                                       "LO-2\tLo two\t12,50\r\nLO-4\tLo four\t0,99\r\n"
                                       "LO-5\tLo five\t1,250\r\n"));
    const ImportPlan added = planNewProducts(text, EnUs);
    ASSERT_EQ(added.addedCount(), 3);
    EXPECT_EQ(added.addedProduct(0)[P::Price - 1], Cell(12.5f));
    EXPECT_EQ(added.addedProduct(1)[P::Price - 1], Cell(0.99f));
    EXPECT_EQ(added.addedProduct(2)[P::Price - 1], Cell(1.25f))
        << "with a decimal comma, as the sheet's other prices are written";
    EXPECT_EQ(added.addedWithoutPrice, 0);

    Table catalogue { 2, P::FieldCount };
    catalogue.put(1, P::PartNumber, Cell("LO-2"));
    catalogue.put(1, P::ProductName, Cell("Lo two"));
    catalogue.put(1, P::Price, Cell(10.0f));
    catalogue.put(2, P::PartNumber, Cell("LO-4"));
    catalogue.put(2, P::ProductName, Cell("Lo four"));
    catalogue.put(2, P::Price, Cell(0.99f));
    ImportPlanner planner(
        text, catalogue, test::supplierSheetLetters(), true, ImportAction::UpdateExisting, EnUs);
    planner.runAll();
    const ImportPlan update = planner.takePlan();
    EXPECT_TRUE(update.skipped.empty());
    ASSERT_EQ(update.changed.size(), 1U);
    EXPECT_EQ(update.changed[0].partNumber, QStringLiteral("LO-2"));
    ASSERT_EQ(update.changed[0].fields.size(), 1U);
    EXPECT_EQ(update.changed[0].fields[0].after, Cell(12.5f));
    EXPECT_EQ(update.unchanged, 1);
}

// A price point in a German supplier's text cell ("12,5") under an English locale is kept as
// one typed into the schedule is, the number in English ("12.5"), so a quote prices it at once.
TEST(ImportPlanLocale, ACommaDecimalPricePointIsKeptAsTypingKeepsIt)
{
    const TextWorkbook text(QByteArray("Part Number\tProduct Name\tPrice\tPoint\tPrice 1\r\n"
                                       "LO-2\tLo two\t12,50\t10\t12,5\r\n"
                                       "LO-3\tLo three\t1\t1,000\t0,125\r\n"));
    const ImportPlan added = planNewProducts(text, EnUs);
    ASSERT_EQ(added.addedCount(), 2);
    EXPECT_EQ(added.addedProduct(0)[P::PricePoint1 - 1], Cell("10"));
    EXPECT_EQ(added.addedProduct(0)[P::Price1 - 1], Cell("12.5"));
    EXPECT_EQ(added.addedProduct(1)[P::PricePoint1 - 1], Cell("1.000"))
        << "one, with a decimal comma, as the sheet's other numbers are written";
    EXPECT_EQ(added.addedProduct(1)[P::Price1 - 1], Cell("0.125"));
}
