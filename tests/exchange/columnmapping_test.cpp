// The workbook readers as the mapping window sees them (one text per cell of the sample
// workbooks), and the column lists of the mapping window.
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/columnmapping.h"
#include "exchange/spreadsheetexport.h"
#include "exchange/textworkbook.h"
#include "exchange/workbook.h"
#include "exchangetestdata.h"
#include "support/testlocale.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

using tarnwick::test::EnUs;

using tarnwick::test::dataFile;

std::unique_ptr<IWorkbook> open(const QString &name)
{
    WorkbookOpenResult result = openWorkbook(dataFile(name));
    EXPECT_TRUE(result.workbook) << name.toStdString() << " " << result.errorNumber;
    return std::move(result.workbook);
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

TEST(WorkbookReaders, DamagedZippedWorkbooksGiveAnErrorNumber)
{
    for (const char *name : { "notaworkbook.xlsx", "notaworkbook.ods" }) {
        const WorkbookOpenResult result = openWorkbook(dataFile(name));
        EXPECT_FALSE(result.workbook) << name;
        EXPECT_NE(result.errorNumber, 0) << name;
    }
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
