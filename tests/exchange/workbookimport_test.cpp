#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "exchange/columnmapping.h"
#include "exchange/spreadsheetexport.h"
#include "exchange/textworkbook.h"
#include "exchange/workbook.h"
#include "exchange/workbookimport.h"
#include "platform/appenvironment.h"
#include "support/fakeprompts.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

QString dataFile(const QString &name)
{
    return QDir(QStringLiteral(TARNWICK_TEST_DATA)).filePath(name);
}

std::unique_ptr<IWorkbook> open(const QString &name)
{
    WorkbookOpenResult result = openWorkbook(dataFile(name));
    EXPECT_TRUE(result.workbook) << name.toStdString() << " " << result.errorNumber;
    return std::move(result.workbook);
}

/// Part number in column A, name B, price C, notes D, includes E, first point F and G.
QString sampleLetters()
{
    std::array<int, CM::ListCount> positions;
    positions.fill(0); // "Skip Field"
    positions[0] = 0;
    positions[1] = 1;
    positions[3] = 3; // after "Skip Field": C
    positions[7] = 4;
    positions[6] = 5;
    positions[2] = 6;
    positions[4] = 7;
    return CM::columnLetters(positions);
}

struct Imported
{
    Table catalogue;
    test::FakePrompts prompts;
    AppEnvironment environment { QString(), QString() };
    Products products { catalogue, prompts, environment, EnUs };
    int changes = 0;
};

std::unique_ptr<Imported> importSample(const QString &file, bool headers = true)
{
    auto result = std::make_unique<Imported>();
    result->catalogue = Table(1, P::FieldCount);
    result->catalogue.put(1, P::PartNumber, "OLD-1");
    result->catalogue.put(1, P::ProductName, "Old name");
    result->products.setCount(1);
    const auto workbook = open(file);
    if (!workbook) {
        return result;
    }
    WorkbookImport import(*workbook, result->catalogue, sampleLetters(), headers, EnUs);
    import.runAll();
    result->changes = import.changes();
    finishImport(result->catalogue, result->products, result->changes, EnUs);
    return result;
}

QStringList rowTexts(const Table &catalogue, int row)
{
    QStringList texts;
    for (int field = 1; field <= P::FieldCount; ++field) {
        const Cell &cell = catalogue.get(row, field);
        texts << (cell.isNumber() ? QStringLiteral("#%1").arg(cell.asNumber()) : cell.asText());
    }
    return texts;
}

} // namespace

TEST(WorkbookReaders, CellsAsASpreadsheetHandsThemOver)
{
    for (const char *name : { "sample.xls", "sample.xlsx", "sample.ods", "sample.txt" }) {
        const auto workbook = open(name);
        ASSERT_TRUE(workbook);
        EXPECT_EQ(workbook->cellText(0, 1), "Part Number") << name;
        EXPECT_EQ(workbook->cellText(2, 2), "12.5") << name;
        EXPECT_EQ(workbook->cellText(5, 2), "10") << name;
        EXPECT_EQ(workbook->cellText(5, 3), "0.1") << name;
        EXPECT_EQ(workbook->cellText(2, 3), "n/a") << name;
        EXPECT_EQ(workbook->cellText(40, 2), "") << name;
        EXPECT_EQ(workbook->cellText(0, 400), "") << name;
    }
}

TEST(WorkbookReaders, AFileThatIsNoWorkbookGivesAnErrorNumber)
{
    const WorkbookOpenResult result = openWorkbook(dataFile("notaworkbook.xls"));
    EXPECT_FALSE(result.workbook);
    EXPECT_NE(result.errorNumber, 0);
    EXPECT_EQ(result.errorText, "This file is not an Excel 97 file.");
}

TEST(ColumnMapping, EntriesOfTheHeaderRow)
{
    const auto workbook = open("sample.xls");
    ASSERT_TRUE(workbook);
    EXPECT_EQ(CM::columnEntries(*workbook),
        (QStringList { "Col 0-  Part Number", "Col 1-  Product Name", "Col 2-  Price",
            "Col 3-  Notes", "Col 4-  Includes", "Col 5-  Price Point 1", "Col 6-  Price 1" }));
}

TEST(ColumnMapping, ColumnsAToROnly)
{
    const auto workbook = open("wide.xls");
    ASSERT_TRUE(workbook);
    const QStringList entries = CM::columnEntries(*workbook);
    ASSERT_EQ(entries.size(), 18);
    EXPECT_EQ(entries.last(), "Col 17-  H17");
}

TEST(ColumnMapping, AnEmptyHeaderHidesTheColumnsToItsRight)
{
    const auto workbook = open("gap.xls");
    ASSERT_TRUE(workbook);
    EXPECT_EQ(CM::columnEntries(*workbook),
        (QStringList { "Col 0-  Part Number", "Col 1-  Product Name" }));
}

TEST(ColumnMapping, EmptyA1ListsNoColumns)
{
    const auto workbook = open("a1empty.xls");
    ASSERT_TRUE(workbook);
    EXPECT_TRUE(CM::columnEntries(*workbook).isEmpty());
}

TEST(ColumnMapping, PreselectionComparesTheWholeEntry)
{
    std::array<int, CM::ListCount> none;
    none.fill(-1);
    EXPECT_EQ(CM::preselection({ "Col 0-  Part Number", "Col 1-  Price" }), none);
    const auto bare = CM::preselection({ "Part Number", "Product name", "price", "Notes" });
    EXPECT_EQ(bare[0], 0);
    EXPECT_EQ(bare[1], 1);
    EXPECT_EQ(bare[3], 3);
    EXPECT_EQ(bare[7], 4);
}

TEST(ColumnMapping, LettersOfTheSelectedPositions)
{
    std::array<int, CM::ListCount> positions;
    positions.fill(-1);
    EXPECT_EQ(CM::columnLetters(positions), "@@?????????????");
    positions.fill(0);
    positions[0] = 2;
    positions[1] = 0;
    positions[3] = 1;
    EXPECT_EQ(CM::columnLetters(positions), "CA@A@@@@@@@@@@@");
}

TEST(ColumnMapping, ListsAndFields)
{
    const std::vector<int> expected { 1, 2, 6, 3, 7, 8, 5, 4, 9, 10, 11, 12, 13, 14, 15 };
    for (int index = 0; index < CM::ListCount; ++index) {
        EXPECT_EQ(CM::catalogueField(index), expected[std::size_t(index)]) << index;
    }
}

TEST(WorkbookImport, AddsNewRowsUntilTheFirstEmptyPartNumber)
{
    const auto result = importSample("sample.xls");
    EXPECT_EQ(result->changes, 3);
    EXPECT_EQ(result->products.Count(), 4);
    ASSERT_EQ(result->catalogue.rowCount(), 4);
    EXPECT_EQ(rowTexts(result->catalogue, 1),
        (QStringList { "AB-100", "Widget", "#12.5", "Red only", "Cable", "10", "11.5", "", "", "",
            "", "", "", "", "" }));
    EXPECT_EQ(rowTexts(result->catalogue, 2),
        (QStringList { "AB-101", "Missing Product Name", "", "", "", "0.1", "3", "", "", "", "", "",
            "", "", "" }));
    EXPECT_TRUE(result->catalogue.get(2, P::Price).isEmpty());
    EXPECT_EQ(result->catalogue.get(3, P::ProductName).asText(), QString(75, QLatin1Char('N')));
    EXPECT_EQ(result->catalogue.get(1, P::Price).kind(), Cell::Kind::Single);
    EXPECT_EQ(rowTexts(result->catalogue, 4)[1], "Old name");
    EXPECT_EQ(result->catalogue.find(P::PartNumber, "ZZ-9"), 0);
}

TEST(WorkbookImport, NewProductsCanGoToATableOfTheirOwn)
{
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "AB-101");
    Table added;
    const auto workbook = open("sample.xls");
    ASSERT_NE(workbook, nullptr);
    WorkbookImport import(*workbook, catalogue, added, sampleLetters(), true, EnUs);
    import.runAll();
    EXPECT_EQ(import.changes(), 3) << "AB-100, the long name and OLD-1; AB-101 is there";
    EXPECT_EQ(catalogue.rowCount(), 1) << "the catalogue is only read";
    ASSERT_EQ(added.rowCount(), 3);
    EXPECT_EQ(added.fieldCount(), P::FieldCount);
    EXPECT_EQ(rowTexts(added, 1),
        (QStringList { "AB-100", "Widget", "#12.5", "Red only", "Cable", "10", "11.5", "", "", "",
            "", "", "", "", "" }));
    EXPECT_EQ(added.get(3, P::PartNumber).asText(), "OLD-1");
}

TEST(WorkbookImport, HeaderRowIsImportedWhenNotIgnored)
{
    const auto result = importSample("sample.xls", false);
    EXPECT_EQ(result->changes, 4);
    EXPECT_EQ(result->catalogue.find(P::PartNumber, "Part Number"), 5);
    EXPECT_TRUE(result->catalogue.get(5, P::Price).isEmpty());
}

TEST(WorkbookImport, SheetWhosePartNumbersAllExistChangesNothing)
{
    const auto first = importSample("sample.xls");
    const Table before = first->catalogue;
    const auto workbook = open("sample.xls");
    WorkbookImport again(*workbook, first->catalogue, sampleLetters(), true, EnUs);
    again.runAll();
    EXPECT_EQ(again.changes(), 0);
    EXPECT_EQ(first->catalogue.rowCount(), before.rowCount());
}

TEST(WorkbookImport, UnmappedPartNumberImportsNothing)
{
    Table catalogue(0, P::FieldCount);
    const auto workbook = open("sample.xls");
    WorkbookImport import(*workbook, catalogue, "@@?????????????", true, EnUs);
    EXPECT_FALSE(import.step());
    EXPECT_EQ(import.changes(), 0);
}

TEST(WorkbookImport, EveryFormatGivesTheSameCatalogue)
{
    const auto fromXls = importSample("sample.xls");
    for (const char *name : { "sample.xlsx", "sample.ods", "sample.txt" }) {
        const auto other = importSample(name);
        ASSERT_EQ(fromXls->catalogue.rowCount(), other->catalogue.rowCount()) << name;
        for (int row = 1; row <= fromXls->catalogue.rowCount(); ++row) {
            EXPECT_EQ(rowTexts(fromXls->catalogue, row), rowTexts(other->catalogue, row))
                << name << " row " << row;
        }
    }
}

TEST(WorkbookReaders, DamagedZippedWorkbooksGiveAnErrorNumber)
{
    for (const char *name : { "notaworkbook.xlsx", "notaworkbook.ods" }) {
        const WorkbookOpenResult result = openWorkbook(dataFile(name));
        EXPECT_FALSE(result.workbook) << name;
        EXPECT_NE(result.errorNumber, 0) << name;
    }
}

TEST(WorkbookImport, ProgressCaptionAlternates)
{
    EXPECT_EQ(progressCaption("Update", 7), "Please wait");
    EXPECT_EQ(progressCaption("Please wait", 7), "7 products analyzed");
    EXPECT_EQ(progressCaption("7 products analyzed", 9), "Please wait");
}

TEST(WorkbookImport, ResultMessageOnlyWhenSomethingWasAdded)
{
    EXPECT_FALSE(resultMessage(0).has_value());
    EXPECT_EQ(resultMessage(3), "3 changes have been made to the knowledge base.");
}

TEST(WorkbookImport, StoppingBetweenRowsKeepsWhatWasAdded)
{
    Table catalogue(0, P::FieldCount);
    const auto workbook = open("sample.ods");
    ASSERT_TRUE(workbook);
    WorkbookImport import(*workbook, catalogue, sampleLetters(), true, EnUs);
    EXPECT_TRUE(import.step());
    EXPECT_TRUE(import.step());
    EXPECT_EQ(import.currentRow(), 4);
    EXPECT_EQ(import.changes(), 2);
    EXPECT_EQ(catalogue.rowCount(), 2);
    EXPECT_EQ(catalogue.get(2, P::PartNumber).asText(), "AB-101");
}

TEST(WorkbookReaders, AnExportedNoteOfSeveralLinesStaysInItsRow)
{
    Table catalogue(2, P::FieldCount);
    catalogue.put(1, P::PartNumber, QStringLiteral("A-100"));
    catalogue.put(1, P::ProductName, QStringLiteral("Anchor"));
    catalogue.put(1, P::Notes, QStringLiteral("Two lines\r\n\r\nof notes"));
    catalogue.put(1, P::Includes, QStringLiteral("Washer"));
    catalogue.put(2, P::PartNumber, QStringLiteral("B-200"));
    catalogue.put(2, P::ProductName, QStringLiteral("Bolt"));
    const TextWorkbook sheet(SpreadsheetExport::exportBytes(catalogue, EnUs));
    EXPECT_EQ(sheet.cellText(0, 2), "A-100");
    EXPECT_EQ(sheet.cellText(3, 2), "Two lines\r\n\r\nof notes");
    EXPECT_EQ(sheet.cellText(4, 2), "Washer");
    EXPECT_EQ(sheet.cellText(0, 3), "B-200");
    EXPECT_EQ(sheet.cellText(1, 3), "Bolt");
    EXPECT_EQ(sheet.cellText(0, 4), "");
}

TEST(WorkbookReaders, ShortRowsOfAHandMadeTextSheetAreNotJoined)
{
    const TextWorkbook sheet(QByteArray("A\tB\tC\r\nP1\r\nP2\tx\r\nP3\tx\ty\r\n"));
    EXPECT_EQ(sheet.cellText(0, 2), "P1");
    EXPECT_EQ(sheet.cellText(1, 2), "");
    EXPECT_EQ(sheet.cellText(0, 3), "P2");
    EXPECT_EQ(sheet.cellText(1, 3), "x");
    EXPECT_EQ(sheet.cellText(0, 4), "P3");
    EXPECT_EQ(sheet.cellText(2, 4), "y");
}
