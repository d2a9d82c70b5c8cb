// Cells as the workbook formats keep them: equal neighbours written as one repeated cell, a
// repeated row that holds text, and boolean cells; and prices read in the user's own form.
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/columnmapping.h"
#include "exchange/importchanges.h"
#include "exchange/importplan.h"
#include "exchange/workbook.h"
#include "exchangetestdata.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

namespace tarnwick {
namespace {

using tarnwick::test::dataFile;
using tarnwick::test::writeZip;

std::unique_ptr<IWorkbook> open(const QString &path)
{
    WorkbookOpenResult result = openWorkbook(path);
    EXPECT_TRUE(result.workbook) << path.toStdString() << " " << result.errorNumber;
    return std::move(result.workbook);
}

TEST(WorkbookCellsTest, EqualNeighboursWrittenAsOneRepeatedCellAreTwoCells)
{
    const auto book = open(dataFile(QStringLiteral("cells.ods")));
    ASSERT_TRUE(book);
    EXPECT_EQ(book->cellText(0, 2), QStringLiteral("A-1"));
    EXPECT_EQ(book->cellText(1, 2), QStringLiteral("Same"));
    EXPECT_EQ(book->cellText(2, 2), QStringLiteral("Same"));
    EXPECT_EQ(book->cellText(3, 2), QStringLiteral("x"));
    EXPECT_EQ(book->cellText(1, 3), QStringLiteral("7"));
    EXPECT_EQ(book->cellText(2, 3), QStringLiteral("7"));
    EXPECT_EQ(book->cellText(3, 3), QStringLiteral("y"));
    for (int row = 4; row <= 6; ++row) {
        EXPECT_EQ(book->cellText(0, row), QStringLiteral("R-1")) << row;
        for (int column = 1; column <= 3; ++column)
            EXPECT_EQ(book->cellText(column, row), QStringLiteral("Rep")) << row << " " << column;
    }
    EXPECT_EQ(book->cellText(0, 7), QStringLiteral("Z-9"));
    EXPECT_EQ(book->cellText(2, 7), QStringLiteral("1"));
}

TEST(WorkbookCellsTest, ARepeatedRowThatHoldsTextIsThatManyRows)
{
    // Spreadsheets other than Calc write equal rows once, with a repeat count.
    const QByteArray content =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
        "<office:document-content xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\""
        " xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\""
        " xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\">"
        "<office:body><office:spreadsheet><table:table table:name=\"Sheet1\">"
        "<table:table-row><table:table-cell office:value-type=\"string\"><text:p>Part Number"
        "</text:p></table:table-cell><table:table-cell office:value-type=\"string\"><text:p>"
        "Product Name</text:p></table:table-cell></table:table-row>"
        "<table:table-row table:number-rows-repeated=\"3\"><table:table-cell"
        " office:value-type=\"string\"><text:p>R-1</text:p></table:table-cell><table:table-cell"
        " office:value-type=\"string\"><text:p>Repeated</text:p></table:table-cell>"
        "</table:table-row>"
        "<table:table-row><table:table-cell office:value-type=\"string\"><text:p>Z-9</text:p>"
        "</table:table-cell></table:table-row>"
        "</table:table></office:spreadsheet></office:body></office:document-content>";
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("rows.ods"));
    ASSERT_TRUE(writeZip(path,
        { { "mimetype", "application/vnd.oasis.opendocument.spreadsheet" },
            { "content.xml", content } }));
    const auto book = open(path);
    ASSERT_TRUE(book);
    for (int row = 2; row <= 4; ++row) {
        EXPECT_EQ(book->cellText(0, row), QStringLiteral("R-1")) << row;
        EXPECT_EQ(book->cellText(1, row), QStringLiteral("Repeated")) << row;
    }
    EXPECT_EQ(book->cellText(0, 5), QStringLiteral("Z-9"));
    EXPECT_EQ(book->cellText(0, 6), QString());
}

TEST(WorkbookCellsTest, BooleansAreTrueAndFalseTheRightWayRound)
{
    for (const char *name : { "cells.xlsx", "cells.ods" }) {
        const auto book = open(dataFile(QString::fromLatin1(name)));
        ASSERT_TRUE(book) << name;
        EXPECT_EQ(book->cellText(4, 2), QStringLiteral("TRUE")) << name;
        EXPECT_EQ(book->cellText(4, 3), QStringLiteral("FALSE")) << name;
        EXPECT_EQ(book->cellText(4, 4), QStringLiteral("TRUE")) << name;
        EXPECT_EQ(book->cellText(4, 7), QStringLiteral("FALSE")) << name;
    }
}

TEST(WorkbookCellsTest, UnderGermanAnImportedPriceWithADecimalCommaIsRead)
{
    namespace P = ProductRecord;
    const QLocale german(QLocale::German, QLocale::Germany);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("prices.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("Part Number\tProduct Name\tPrice\r\nA-1\tAnchor\t12,5\r\nB-2\tBolt\t1.234,5\r\n");
    file.close();
    const auto book = open(path);
    ASSERT_TRUE(book);
    // Part number in column A, name in B, the price (list 3) in C.
    std::array<int, ColumnMapping::ListCount> positions {};
    positions[ColumnMapping::PartNumberList] = 0;
    positions[ColumnMapping::ProductNameList] = 1;
    positions[3] = 3;
    ASSERT_EQ(ColumnMapping::catalogueField(3), P::Price);
    Table catalogue(0, P::FieldCount);
    ImportPlanner planner(*book, catalogue, ColumnMapping::columnLetters(positions), true,
        ImportAction::AddNew, german);
    planner.runAll();
    const ProductChanges changes = importChanges(planner.takePlan(), catalogue);
    const Table &added = changes.added;
    ASSERT_EQ(added.rowCount(), 2);
    EXPECT_EQ(added.get(1, P::PartNumber), Cell("A-1"));
    EXPECT_EQ(added.get(1, P::Price), Cell(12.5f));
    EXPECT_EQ(added.get(2, P::Price), Cell(1234.5f));
}

} // namespace
} // namespace tarnwick
