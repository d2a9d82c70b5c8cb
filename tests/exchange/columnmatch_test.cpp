// The mapping helpers of the "Update" window: the headers matched to the fields, the mapping
// kept for a header row, the sample of the first rows and the rows pasted from the clipboard.
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/clipboardrows.h"
#include "exchange/columnmapping.h"
#include "exchange/columnmatch.h"
#include "exchange/mappingmemory.h"
#include "exchange/spreadsheetexport.h"
#include "exchange/textworkbook.h"
#include "support/fakesettingsstore.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

using tarnwick::test::EnUs;

std::array<int, CM::ListCount> noSelection()
{
    std::array<int, CM::ListCount> positions;
    positions.fill(-1);
    return positions;
}

} // namespace

TEST(MatchHeaders, TheProgramsOwnExportMapsEveryFieldToItsColumn)
{
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "A-1");
    const TextWorkbook exported(SpreadsheetExport::exportBytes(catalogue, EnUs));
    const QStringList headers = CM::headerTexts(exported);
    ASSERT_EQ(headers.size(), 15);
    const auto positions = CM::matchHeaders(headers);
    for (int index = 0; index < CM::ListCount; ++index) {
        // Column n holds field n + 1; the optional lists count "Skip Field" first.
        const int column = CM::catalogueField(index) - 1;
        EXPECT_EQ(positions[std::size_t(index)], index <= 1 ? column : column + 1) << index;
    }
    EXPECT_EQ(CM::columnLetters(positions), "ABFCGHEDIJKLMNO");
}

TEST(MatchHeaders, NamesMatchWithoutRegardToCaseOrBlanksAroundThem)
{
    const auto positions = CM::matchHeaders(
        { "SKU", " part number ", "List Price", "description", "PRODUCT NAME", "price 1" });
    EXPECT_EQ(positions[0], 1);
    EXPECT_EQ(positions[1], 4);
    EXPECT_EQ(positions[3], 3) << "List Price, after Skip Field";
    EXPECT_EQ(positions[4], 6) << "Price 1";
    EXPECT_EQ(positions[2], -1) << "no Price Point 1";
    EXPECT_EQ(positions[7], -1) << "no Notes";
}

TEST(MatchHeaders, TheFirstMatchingColumnWins)
{
    const auto positions = CM::matchHeaders({ "Price", "List Price", "Notes", "notes" });
    EXPECT_EQ(positions[3], 1);
    EXPECT_EQ(positions[7], 3);
    EXPECT_EQ(CM::matchHeaders({}), noSelection());
}

TEST(MatchHeaders, LettersReadBackIntoTheSamePositions)
{
    std::array<int, CM::ListCount> positions = noSelection();
    EXPECT_EQ(CM::positionsFromLetters(CM::columnLetters(positions)), positions);
    for (int index = 0; index < CM::ListCount; ++index)
        positions[std::size_t(index)] = index % 4;
    positions[1] = -1;
    EXPECT_EQ(CM::positionsFromLetters(CM::columnLetters(positions)), positions);
}

TEST(MatchHeaders, AddingNeedsPartNumberAndNameUpdatingThePartNumberOnly)
{
    std::array<int, CM::ListCount> positions = noSelection();
    positions[0] = 2;
    EXPECT_FALSE(CM::mappingComplete(positions, ImportAction::AddNew));
    EXPECT_TRUE(CM::mappingComplete(positions, ImportAction::UpdateExisting));
    positions[1] = 0;
    EXPECT_TRUE(CM::mappingComplete(positions, ImportAction::AddNew));
    positions[0] = -1;
    EXPECT_FALSE(CM::mappingComplete(positions, ImportAction::UpdateExisting));
}

TEST(MappingMemory, TheMappingOfAHeaderRowIsKeptUnderItsOwnKey)
{
    test::FakeSettingsStore settings;
    const QStringList headers { "Item", "Description", "Cost" };
    EXPECT_FALSE(MappingMemory::recall(settings, headers).has_value());
    ASSERT_TRUE(MappingMemory::remember(settings, headers, "AB?C@@@@@@@@@@@"));
    EXPECT_EQ(MappingMemory::recall(settings, headers), "AB?C@@@@@@@@@@@");
    const QString key = MappingMemory::settingsKey(headers);
    EXPECT_TRUE(key.startsWith("Mapping"));
    EXPECT_EQ(key.size(), 7 + 16);
    EXPECT_EQ(settings.get("Tarnwick", "ImportMappings", key), "AB?C@@@@@@@@@@@");
    EXPECT_FALSE(MappingMemory::recall(settings, { "Item", "Description" }).has_value());
    EXPECT_FALSE(MappingMemory::recall(settings, { "item", "Description", "Cost" }).has_value());
}

TEST(MappingMemory, WhatIsNoLetterTableForTheSheetIsNotRestored)
{
    test::FakeSettingsStore settings;
    const QStringList headers { "Item", "Description" };
    const QString key = MappingMemory::settingsKey(headers);
    for (const char *stored : { "AB", "AC@@@@@@@@@@@@@", "AB@@@@@@@@@@@@!", "" }) {
        settings.save("Tarnwick", "ImportMappings", key, QString::fromLatin1(stored));
        EXPECT_FALSE(MappingMemory::recall(settings, headers).has_value()) << stored;
    }
    EXPECT_FALSE(MappingMemory::remember(settings, {}, "AB@@@@@@@@@@@@@"));
}

TEST(MappingMemory, AStoreThatCannotBeWrittenKeepsNothing)
{
    test::FakeSettingsStore settings;
    settings.failWrites("The disk is full.");
    EXPECT_FALSE(MappingMemory::remember(settings, { "A", "B" }, "AB@@@@@@@@@@@@@"));
    EXPECT_FALSE(MappingMemory::recall(settings, { "A", "B" }).has_value());
}

TEST(SampleRows, TheFirstFiveRowsUnderTheirLettersAndHeaders)
{
    QByteArray text = "Part\tName\r\n";
    for (int row = 2; row <= 9; ++row)
        text += QStringLiteral("P%1\tN%1\r\n").arg(row).toUtf8();
    const TextWorkbook sheet(text);
    const QStringList headers = CM::headerTexts(sheet);
    const CM::SampleRows sample = CM::sampleRows(sheet, headers, 2);
    EXPECT_EQ(sample.captions, (QStringList { "A\nPart", "B\nName" }));
    ASSERT_EQ(sample.rows.size(), 5U);
    EXPECT_EQ(sample.rows[0], (QStringList { "P2", "N2" }));
    EXPECT_EQ(sample.rows[4], (QStringList { "P6", "N6" }));
    EXPECT_EQ(CM::sampleRows(sheet, headers, 1).rows[0], (QStringList { "Part", "Name" }));
}

TEST(SampleRows, EndBeforeTheFirstEmptyRow)
{
    const TextWorkbook sheet(QByteArray("Part\tName\r\nP2\t\r\n\tN3\r\n\t\r\nP5\tN5\r\n"));
    const CM::SampleRows sample = CM::sampleRows(sheet, CM::headerTexts(sheet), 2);
    ASSERT_EQ(sample.rows.size(), 2U);
    EXPECT_EQ(sample.rows[1], (QStringList { "", "N3" }));
    EXPECT_EQ(CM::columnName(17), "R");
}

TEST(ClipboardRows, RowsCopiedFromASpreadsheetAreAWorksheet)
{
    const auto sheet = ClipboardRows::workbook("Part Number\tPrice\nA-1\t12.5\nB-2\t3\n");
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->cellText(0, 1), "Part Number");
    EXPECT_EQ(sheet->cellText(1, 2), "12.5");
    EXPECT_EQ(sheet->cellText(0, 3), "B-2");
    EXPECT_TRUE(ClipboardRows::workbook("Part Number\r\nA-1\r\n"));
    EXPECT_TRUE(ClipboardRows::workbook(QStringLiteral("Teil\tPreis\nÄ-1\t2\n")));
    EXPECT_EQ(ClipboardRows::workbook(QStringLiteral("Teil\nÄ-1\n"))->cellText(0, 2), "Ä-1");
}

TEST(ClipboardRows, AnythingButAHeaderAndARowIsNoSheet)
{
    for (const char *text : { "", "A-1", "A-1\t12.5\n", "\nA-1\n", "   \n\t\n", "A\n\n \n" })
        EXPECT_FALSE(ClipboardRows::workbook(QString::fromLatin1(text))) << text;
}

TEST(ClipboardRows, EmptyLinesAboveTheHeaderAndLinesEndedByCarriageReturnsAreRows)
{
    // A selection that starts above the header row; an older program's lines ended by CR.
    for (const char *text : { "\n\t\n\nPart Number\tPrice\nA-1\t12.5\n",
             "\r\n\r\nPart Number\tPrice\r\nA-1\t12.5\r\n", "Part Number\tPrice\rA-1\t12.5\r" }) {
        const auto sheet = ClipboardRows::workbook(QString::fromLatin1(text));
        ASSERT_TRUE(sheet) << text;
        EXPECT_EQ(sheet->cellText(0, 1), "Part Number") << text;
        EXPECT_EQ(sheet->cellText(1, 2), "12.5") << text;
    }
    // A line break inside a quoted cell stays in the cell.
    const auto quoted = ClipboardRows::workbook(QStringLiteral("Notes\n\"one\rtwo\"\nx\n"));
    ASSERT_TRUE(quoted);
    EXPECT_TRUE(quoted->cellText(0, 2).contains(QStringLiteral("one")))
        << quoted->cellText(0, 2).toStdString();
    EXPECT_TRUE(quoted->cellText(0, 2).contains(QStringLiteral("two")));
    EXPECT_EQ(quoted->cellText(0, 3), "x");
}
