#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/handheldexport.h"
#include "support/testlocale.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;

namespace {

using tarnwick::test::EnUs;

Table widgetCatalogue()
{
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "AB-100");
    catalogue.put(1, P::ProductName, "Widget");
    catalogue.put(1, P::Price, 12.5);
    catalogue.put(1, P::Includes, "Cable");
    catalogue.put(1, P::Notes, "Red only");
    return catalogue;
}

} // namespace

TEST(HandheldExport, HeaderLine)
{
    EXPECT_EQ(HandheldExport::headerLine(),
        "Quote,Cat Number,Description,Price,Includes,Notes,Discounts");
}

TEST(HandheldExport, ProductLineWithoutPricePoints)
{
    EXPECT_EQ(HandheldExport::productLine(widgetCatalogue(), 1, EnUs),
        "0,AB-100,Widget,\"$12.50\",\"Cable\",\"Red only\",");
}

TEST(HandheldExport, ProductLineEndsWithTheDiscountText)
{
    Table catalogue = widgetCatalogue();
    catalogue.put(1, P::PricePoint1, "10");
    catalogue.put(1, P::Price1, "9.00");
    catalogue.put(1, P::PricePoint2, Cell(qint32(50)));
    catalogue.put(1, P::Price2, Cell(8.5f));
    EXPECT_EQ(HandheldExport::productLine(catalogue, 1, EnUs),
        "0,AB-100,Widget,\"$12.50\",\"Cable\",\"Red only\",10 - $9.00;   50 - $8.5");
}

TEST(HandheldExport, CommaRuleAndItsAsymmetry)
{
    EXPECT_EQ(HandheldExport::commaRule("A,B"), "A B");
    EXPECT_EQ(HandheldExport::commaRule("12\" pipe"), "12\" pipe");
    EXPECT_EQ(HandheldExport::commaRule("12\" pipe, long"), "12  pipe  long");
    EXPECT_EQ(HandheldExport::commaRule(""), "");
}

TEST(HandheldExport, QuotedFieldsAreNotEscapedAndNullIncludesIsEmpty)
{
    Table catalogue = widgetCatalogue();
    catalogue.put(1, P::PartNumber, "A,B");
    catalogue.put(1, P::Includes, Cell::null());
    catalogue.put(1, P::Notes, "say \"hi\", twice");
    EXPECT_EQ(HandheldExport::productLine(catalogue, 1, EnUs),
        "0,A B,Widget,\"$12.50\",\"\",\"say \"hi\", twice\",");
}

TEST(HandheldExport, EmptyProductLine)
{
    const Table catalogue(1, P::FieldCount);
    EXPECT_EQ(HandheldExport::productLine(catalogue, 1, EnUs), "0,,,\"\",\"\",\"\",");
}

TEST(HandheldExport, CsvBytesHeaderAndLinesWithCrLf)
{
    const QByteArray bytes = HandheldExport::csvBytes(widgetCatalogue(), { 1 }, EnUs);
    EXPECT_EQ(bytes,
        "Quote,Cat Number,Description,Price,Includes,Notes,Discounts\r\n"
        "0,AB-100,Widget,\"$12.50\",\"Cable\",\"Red only\",\r\n");
}

TEST(HandheldExport, AllRowsAndSelection)
{
    EXPECT_EQ(HandheldExport::allRows(Table(3, P::FieldCount)), (std::vector<int> { 1, 2, 3 }));
    EXPECT_EQ(HandheldExport::selectedRows({ 4 }, 2), (std::vector<int> { 4, 2 }));
    EXPECT_EQ(HandheldExport::selectedRows({ 4 }, 4), (std::vector<int> { 4 }));
    EXPECT_EQ(HandheldExport::selectedRows({ 5, 1, 3 }, 1), (std::vector<int> { 5, 1, 3 }));
    EXPECT_EQ(HandheldExport::selectedRows({ 2 }, 0), (std::vector<int> { 2 }));
}

TEST(HandheldExport, GroupNamesThatCanNameAFile)
{
    EXPECT_FALSE(HandheldExport::groupNameProblem("Products"));
    EXPECT_FALSE(HandheldExport::groupNameProblem("Spring 2026 pumps"));
}

TEST(HandheldExport, GroupNamesThatAreRefused)
{
    EXPECT_TRUE(HandheldExport::groupNameProblem(""));
    EXPECT_TRUE(HandheldExport::groupNameProblem("../twdata"));
    EXPECT_TRUE(HandheldExport::groupNameProblem("a/b"));
    EXPECT_TRUE(HandheldExport::groupNameProblem("a\\b"));
    EXPECT_TRUE(HandheldExport::groupNameProblem("what?"));
    EXPECT_TRUE(HandheldExport::groupNameProblem("x..y"));
    // Control characters, C0, DEL and C1 alike, and the line and paragraph separators: the
    // message shows where they are.
    for (const char16_t control :
        { u'\x01', u'\x1f', u'\x7f', u'\x85', u'\x9f', u'\u2028', u'\u2029' })
        EXPECT_EQ(HandheldExport::groupNameProblem(QStringLiteral("a") + QChar(control) + "b"),
            QStringLiteral("The group name \"a\uFFFDb\" cannot be used as a file name. Please "
                           "leave out the characters / \\ : * ? \" < > |, control characters "
                           "and \"..\"."));
    EXPECT_FALSE(HandheldExport::groupNameProblem(QStringLiteral("Caf\u00E9 \u00A0pumps")));
    EXPECT_TRUE(HandheldExport::groupNameProblem(QString(252, QLatin1Char('a'))));
    EXPECT_FALSE(HandheldExport::groupNameProblem(QString(251, QLatin1Char('a'))));
}

TEST(HandheldExport, ConverterArgumentList)
{
    const QDir folder(QStringLiteral("/apps/tw"));
    const auto command = HandheldExport::converterCommand(folder.path(), "Products");
    EXPECT_EQ(command.program, folder.filePath("Handdesk.exe"));
    const QStringList expected { "COMMAND:TOPDB",
        "PDB:INFILE:{" + folder.filePath("Products.CSV") + "}",
        "PDB:OUTFILE:{" + folder.filePath("Products.pdb") + "}", "PDB:DBNAME:{Products}",
        "PDB:USEEXISTING:{" + folder.filePath("prodnocog.pjt") + "}", "PDB:FIELDNAMES",
        "PDB:AUTOINSTALL:{0}" };
    EXPECT_EQ(command.arguments, expected);
}
