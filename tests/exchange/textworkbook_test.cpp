// Tab-separated text: quoted cells as spreadsheets write them, the export's own lines, and the
// characters of either.
#include "exchange/textworkbook.h"

#include <gtest/gtest.h>

using namespace tarnwick;

TEST(TextWorkbook, QuotedCellsAreUnquotedAsSpreadsheetsWriteThem)
{
    const TextWorkbook sheet(QByteArray("\"Part Number\"\t\"Notes\"\t\"Price\"\r\n"
                                        "\"P0001\"\t\"\"\"\"\t12.5\r\n"
                                        "\"P0002\"\t\"say \"\"hi\"\"\"\t\"\"\r\n"
                                        "\"P0003\"\t\"tab\there and\nline\r\nbreaks\"\t1\n"
                                        "\"P0004\"\t\"last\""));
    EXPECT_EQ(sheet.cellText(0, 1), "Part Number");
    EXPECT_EQ(sheet.cellText(0, 2), "P0001");
    EXPECT_EQ(sheet.cellText(1, 2), "\"");
    EXPECT_EQ(sheet.cellText(2, 2), "12.5");
    EXPECT_EQ(sheet.cellText(1, 3), "say \"hi\"");
    EXPECT_EQ(sheet.cellText(2, 3), "");
    EXPECT_EQ(sheet.cellText(1, 4), "tab\there and\r\nline\r\nbreaks");
    EXPECT_EQ(sheet.cellText(2, 4), "1");
    EXPECT_EQ(sheet.cellText(0, 5), "P0004");
    EXPECT_EQ(sheet.cellText(1, 5), "last");
}

TEST(TextWorkbook, QuotesThatDoNotCloseACellStayAsTheyAre)
{
    const TextWorkbook sheet(QByteArray("A\tB\tC\r\n"
                                        "\"Best\" seller\tx\ty\r\n"
                                        "\"open\tz\tw\r\n"
                                        "in\"side\"\t\"\"\"a\"\"b\"\"\"\t5\r\n"));
    EXPECT_EQ(sheet.cellText(0, 2), "\"Best\" seller");
    EXPECT_EQ(sheet.cellText(1, 2), "x");
    EXPECT_EQ(sheet.cellText(0, 3), "\"open");
    EXPECT_EQ(sheet.cellText(1, 3), "z");
    EXPECT_EQ(sheet.cellText(0, 4), "in\"side\"");
    EXPECT_EQ(sheet.cellText(1, 4), "\"a\"b\"");
    EXPECT_EQ(sheet.cellText(2, 4), "5");
}

TEST(TextWorkbook, TheExportsNotesKeepAQuotedLineAfterTheirFirst)
{
    // The export writes a field's line breaks as they stand: the line after a break is the
    // middle of the field, and its quotes are the text's own.
    const TextWorkbook sheet(QByteArray("Part Number\tNotes\tIncludes\tPrice 1\r\n"
                                        "QT-001\tLine one\r\n\"Quoted line\"\tValve\r\n"
                                        "\"Seal kit\"\t12.5\r\n"
                                        "QT-002\tplain\tx\t1\r\n"));
    EXPECT_EQ(sheet.cellText(0, 2), "QT-001");
    EXPECT_EQ(sheet.cellText(1, 2), "Line one\r\n\"Quoted line\"");
    EXPECT_EQ(sheet.cellText(2, 2), "Valve\r\n\"Seal kit\"");
    EXPECT_EQ(sheet.cellText(3, 2), "12.5");
    EXPECT_EQ(sheet.cellText(0, 3), "QT-002");
    EXPECT_EQ(sheet.cellText(1, 3), "plain");
}

// The export writes texts as they are: one wholly in quotes came back without them. A file
// whose header row is not quoted quotes only the cells that need it (a tab, a line break or a
// quote inside).
TEST(TextWorkbook, ATextWhollyInQuotesIsKeptWhereTheFileQuotesOnlyWhatNeedsIt)
{
    const TextWorkbook sheet(QByteArray("Part Number\tNotes\tIncludes\r\n"
                                        "\"P1\"\t\"Best\" quality\t\"Seal kit\"\r\n"
                                        "P2\t\"tab\there\"\t\"say \"\"hi\"\"\"\r\n"
                                        "P3\t\"two\nlines\"\t\"\"\r\n"));
    EXPECT_EQ(sheet.cellText(0, 2), "\"P1\"");
    EXPECT_EQ(sheet.cellText(1, 2), "\"Best\" quality");
    EXPECT_EQ(sheet.cellText(2, 2), "\"Seal kit\"");
    EXPECT_EQ(sheet.cellText(0, 3), "P2");
    EXPECT_EQ(sheet.cellText(1, 3), "tab\there");
    EXPECT_EQ(sheet.cellText(2, 3), "say \"hi\"");
    EXPECT_EQ(sheet.cellText(1, 4), "two\r\nlines");
    EXPECT_EQ(sheet.cellText(2, 4), "\"\"");
}

TEST(TextWorkbook, CharactersOfEveryEncodingTheTextMayHave)
{
    const TextWorkbook utf8(QByteArray("\xEF\xBB\xBFM\xC3\xBCller\t\xE2\x82\xAC\r\n"));
    EXPECT_EQ(utf8.cellText(0, 1), QStringLiteral("Müller"));
    EXPECT_EQ(utf8.cellText(1, 1), QStringLiteral("€"));
    const TextWorkbook windows1252(QByteArray("M\xFCller\t\x80\r\n"));
    EXPECT_EQ(windows1252.cellText(0, 1), QStringLiteral("Müller"));
    EXPECT_EQ(windows1252.cellText(1, 1), QStringLiteral("€"));
    const QString text = QStringLiteral("Part\tPreis \u20ac\r\nP-1\tZw\u00f6lf\r\n");
    QByteArray utf16("\xFF\xFE", 2);
    for (const QChar c : text)
        utf16 += QByteArray(1, char(c.unicode() & 0xFF)) + QByteArray(1, char(c.unicode() >> 8));
    const TextWorkbook unicodeText(utf16);
    EXPECT_EQ(unicodeText.cellText(1, 1), QStringLiteral("Preis \u20ac"));
    EXPECT_EQ(unicodeText.cellText(1, 2), QStringLiteral("Zw\u00f6lf"));
}

TEST(TextWorkbook, LinesEndedByACarriageReturnAloneAreRows)
{
    const TextWorkbook sheet(QByteArray("Part Number\tProduct Name\tPrice\tNotes\r"
                                        "C-1\tMac one\t1\tn\r"
                                        "C-2\tMac two\t2\t\"two\rlines\"\r"));
    EXPECT_EQ(sheet.cellText(3, 1), "Notes");
    EXPECT_EQ(sheet.cellText(0, 2), "C-1");
    EXPECT_EQ(sheet.cellText(3, 2), "n");
    EXPECT_EQ(sheet.cellText(0, 3), "C-2");
    EXPECT_EQ(sheet.cellText(2, 3), "2");
    EXPECT_EQ(sheet.cellText(3, 3), "two\r\nlines");
    EXPECT_EQ(sheet.cellText(0, 4), "");

    // Where lines end in line feeds, a carriage return alone is a line break inside its cell
    // (kept as every line break of a cell is).
    const TextWorkbook mixed(QByteArray("A\tB\r\nx\ry\tz\r\n"));
    EXPECT_EQ(mixed.cellText(0, 2), "x\r\ny");
    EXPECT_EQ(mixed.cellText(1, 2), "z");
}
