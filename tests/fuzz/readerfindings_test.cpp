// What the workbook readers make of the inputs the fuzz targets found, cell by cell: the fixes
// behind fuzz/regressions/ keep the cells a spreadsheet shows and nothing else.
#include "fuzzentries.h"
#include "zipmembers.h"

#include "exchange/gridworkbook.h"
#include "exchange/workbook.h"

#include <QFile>

#include <gtest/gtest.h>

namespace tarnwick::fuzzing {
namespace {

QByteArray keptInput(const char *target, const char *name)
{
    QFile file(QStringLiteral(TARNWICK_FUZZ_REGRESSIONS "/%1/%2")
                   .arg(QLatin1String(target), QLatin1String(name)));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
}

/// An .xlsx of one worksheet whose cells are given as the XML inside <sheetData>.
QByteArray xlsxWith(const QByteArray &sheetData)
{
    return zipOfMembers(
        QByteArray("xl/workbook.xml\n"
                   "<workbook xmlns:r=\"r\"><sheets><sheet name=\"S\" r:id=\"rId1\"/>"
                   "</sheets></workbook>")
        + '\0'
        + "xl/_rels/workbook.xml.rels\n"
          "<Relationships><Relationship Id=\"rId1\" Target=\"worksheets/sheet1.xml\"/>"
          "</Relationships>"
        + '\0' + "xl/worksheets/sheet1.xml\n<worksheet><sheetData>" + sheetData
        + "</sheetData></worksheet>");
}

QByteArray inlineCell(const char *reference, const char *text)
{
    return QByteArray("<c r=\"") + reference + "\" t=\"inlineStr\"><is><t>" + text
        + "</t></is></c>";
}

/// An .ods whose first table holds the rows given as XML.
QByteArray odsWith(const QByteArray &rows)
{
    return zipOfMembers(QByteArray("content.xml\n<office:document-content "
                                   "xmlns:office=\"o\" xmlns:table=\"t\" xmlns:text=\"x\">"
                                   "<office:body><office:spreadsheet><table:table>")
        + rows + "</table:table></office:spreadsheet></office:body></office:document-content>");
}

QByteArray odsRow(const QByteArray &rowsRepeated, const QByteArray &cells)
{
    return "<table:table-row table:number-rows-repeated=\"" + rowsRepeated + "\">" + cells
        + "</table:table-row>";
}

QByteArray odsCell(const QByteArray &columnsRepeated, const char *text)
{
    return "<table:table-cell table:number-columns-repeated=\"" + columnsRepeated + "\"><text:p>"
        + text + "</text:p></table:table-cell>";
}

constexpr int LastRow = 1048576;
constexpr int LastColumn = 16383; // XFD

TEST(XlsxReferences, AReferenceOfTwentyLettersIsPassedOver)
{
    const WorkbookOpenResult read =
        openXlsxWorkbookData(keptInput("xlsx_reader", "twenty-letter-reference.xlsx"));
    ASSERT_TRUE(read.workbook);
    EXPECT_EQ(read.workbook->cellText(0, 1), "Part Number");
    EXPECT_EQ(read.workbook->cellText(1, 1), "Product Name");
    for (int column = 2; column <= LastColumn; ++column) {
        ASSERT_EQ(read.workbook->cellText(column, 1), "") << column;
    }
}

TEST(XlsxReferences, ColumnsAToXfdInEitherCaseAndNothingElse)
{
    const WorkbookOpenResult read =
        openXlsxWorkbookData(xlsxWith(inlineCell("A1", "first") + inlineCell("XFD1", "last")
            + inlineCell("XFE1", "after the last") + inlineCell("b2", "lower case")
            + inlineCell("\xC4\xB1"
                         "3",
                "dotless i")
            + inlineCell("A0", "row 0") + inlineCell("4", "no column")
            + inlineCell("AAAAAAAAAAAAAAAAAAAAAAAAAAAAAA5", "thirty letters")));
    ASSERT_TRUE(read.workbook);
    const IWorkbook &sheet = *read.workbook;
    EXPECT_EQ(sheet.cellText(0, 1), "first");
    EXPECT_EQ(sheet.cellText(LastColumn, 1), "last");
    EXPECT_EQ(sheet.cellText(LastColumn + 1, 1), "");
    EXPECT_EQ(sheet.cellText(1, 2), "lower case");
    // "ı" is no column letter, although it is "I" in upper case.
    EXPECT_EQ(sheet.cellText(8, 3), "");
    for (int row = 0; row <= 5; ++row) {
        for (int column = 0; column < 30; ++column) {
            const bool kept = (row == 1 && column == 0) || (row == 2 && column == 1);
            if (!kept) {
                EXPECT_EQ(sheet.cellText(column, row), "") << column << " " << row;
            }
        }
    }
}

TEST(XlsxArchive, ZipHeadersThatClaimFourGigabytesGiveTheUsualError)
{
    const WorkbookOpenResult read =
        openXlsxWorkbookData(keptInput("xlsx_reader", "zip-headers-claim-4-gb.xlsx"));
    EXPECT_FALSE(read.workbook);
    EXPECT_EQ(read.errorText, "This file is not an Excel 97 file.");
}

TEST(OdsRepeats, ARepeatedRowOfARepeatedCellReachesTheSheetsEdgesOnly)
{
    const WorkbookOpenResult read =
        openOdsWorkbookData(keptInput("ods_reader", "repeated-row-of-repeated-cells.ods"));
    ASSERT_TRUE(read.workbook);
    const IWorkbook &sheet = *read.workbook;
    EXPECT_EQ(sheet.cellText(0, 1), "Part Number");
    EXPECT_EQ(sheet.cellText(1, 1), "Product Name");
    EXPECT_EQ(sheet.cellText(2, 1), "");
    EXPECT_EQ(sheet.cellText(0, 2), "x");
    EXPECT_EQ(sheet.cellText(LastColumn, 2), "x");
    EXPECT_EQ(sheet.cellText(LastColumn, LastRow), "x");
    EXPECT_EQ(sheet.cellText(LastColumn + 1, 2), "");
    EXPECT_EQ(sheet.cellText(0, LastRow + 1), "");
}

TEST(OdsRepeats, RepeatsOfTwoBillionNeitherOverflowNorReachBeyondTheSheet)
{
    const WorkbookOpenResult read = openOdsWorkbookData(odsWith(
        odsRow("1", odsCell("2000000000", "a") + odsCell("2000000000", "b") + odsCell("1", "c"))
        + odsRow("2000000000", odsCell("1", "d")) + odsRow("2000000000", odsCell("1", "e"))
        + odsRow("1", odsCell("1", "f"))));
    ASSERT_TRUE(read.workbook);
    const IWorkbook &sheet = *read.workbook;
    EXPECT_EQ(sheet.cellText(0, 1), "a");
    EXPECT_EQ(sheet.cellText(LastColumn, 1), "a");
    EXPECT_EQ(sheet.cellText(LastColumn + 1, 1), "");
    EXPECT_EQ(sheet.cellText(0, 2), "d");
    EXPECT_EQ(sheet.cellText(0, LastRow), "d");
    EXPECT_EQ(sheet.cellText(0, LastRow + 1), "");
    EXPECT_EQ(sheet.cellText(1, 2), "");
}

TEST(OdsRepeats, RowsAndCellsBetweenRepeatsKeepTheirPlaces)
{
    const WorkbookOpenResult read = openOdsWorkbookData(
        odsWith(odsRow("1", odsCell("2", "a") + "<table:table-cell/>" + odsCell("1", "b"))
            + odsRow("3", "<table:table-cell/>") + odsRow("2", odsCell("1", "c"))));
    ASSERT_TRUE(read.workbook);
    const IWorkbook &sheet = *read.workbook;
    EXPECT_EQ(sheet.cellText(0, 1), "a");
    EXPECT_EQ(sheet.cellText(1, 1), "a");
    EXPECT_EQ(sheet.cellText(2, 1), "");
    EXPECT_EQ(sheet.cellText(3, 1), "b");
    EXPECT_EQ(sheet.cellText(4, 1), "");
    for (int row = 2; row <= 4; ++row) {
        EXPECT_EQ(sheet.cellText(0, row), "") << row;
    }
    EXPECT_EQ(sheet.cellText(0, 5), "c");
    EXPECT_EQ(sheet.cellText(0, 6), "c");
    EXPECT_EQ(sheet.cellText(0, 7), "");
    EXPECT_EQ(sheet.cellText(-1, 5), "");
    EXPECT_EQ(sheet.cellText(0, 0), "");
}

} // namespace
} // namespace tarnwick::fuzzing
