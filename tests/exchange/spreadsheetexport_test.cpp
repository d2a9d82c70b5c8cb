#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/spreadsheetexport.h"
#include "support/fakeservices.h"
#include "support/tempappfolder.h"

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;

namespace {

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

const QByteArray Header = "Part Number\tProduct Name\tPrice\tNotes\tIncludes\tPrice Point 1\t"
                          "Price 1\tPrice Point 2\tPrice 2\tPrice Point 3\tPrice 3\t"
                          "Price Point 4\tPrice 4\tPrice Point 5\tPrice 5\r\n";

QByteArray exported(const Table &catalogue)
{
    return SpreadsheetExport::exportBytes(catalogue, EnUs);
}

} // namespace

TEST(SpreadsheetExport, EmptyCatalogueGivesTheHeaderOnly)
{
    EXPECT_EQ(exported(Table(0, P::FieldCount)), Header);
}

TEST(SpreadsheetExport, PartNumberOnlyGivesFourteenTabs)
{
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "AB-100");
    EXPECT_EQ(exported(catalogue), Header + "AB-100" + QByteArray(14, '\t') + "\r\n");
}

TEST(SpreadsheetExport, FullProductLine)
{
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "AB-100");
    catalogue.put(1, P::ProductName, "Widget");
    catalogue.put(1, P::Price, 1234.5);
    catalogue.put(1, P::Notes, "Red only");
    catalogue.put(1, P::Includes, "Cable");
    catalogue.put(1, P::PricePoint1, 10.0);
    catalogue.put(1, P::Price1, "$11.00");
    EXPECT_EQ(exported(catalogue),
        Header + "AB-100\tWidget\t$1,234.50\tRed only\tCable\t10\t$11.00\t\t\t\t\t\t\t\t\r\n");
}

TEST(SpreadsheetExport, TabInsideANoteIsWrittenAsItStands)
{
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "A1");
    catalogue.put(1, P::Notes, "left\tright");
    EXPECT_EQ(exported(catalogue), Header + "A1\t\t\tleft\tright" + QByteArray(11, '\t') + "\r\n");
}

TEST(SpreadsheetExport, RowsWithoutPartNumberAreLeftOut)
{
    Table catalogue(4, P::FieldCount);
    catalogue.put(1, P::PartNumber, "A1");
    catalogue.put(2, P::PartNumber, "");
    catalogue.put(2, P::ProductName, "no number");
    catalogue.put(3, P::PartNumber, Cell::null());
    catalogue.put(4, P::PartNumber, "B2");
    const QByteArray tabs(14, '\t');
    EXPECT_EQ(exported(catalogue), Header + "A1" + tabs + "\r\nB2" + tabs + "\r\n");
}

TEST(SpreadsheetExport, EditedPriceIsWrittenAsItsText)
{
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "A1");
    catalogue.put(1, P::Price, "12.5");
    catalogue.put(1, P::PricePoint2, "25");
    catalogue.put(1, P::Price2, 9.75f);
    EXPECT_EQ(exported(catalogue), Header + "A1\t\t$12.50\t\t\t\t\t25\t9.75\t\t\t\t\t\t\r\n");
}

TEST(SpreadsheetExport, WriteFileWritesTheBytes)
{
    test::TempAppFolder folder;
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "A1");
    EXPECT_FALSE(SpreadsheetExport::writeFile(folder.filePath("out.xls"), catalogue, EnUs));
    EXPECT_EQ(folder.readFile("out.xls"), exported(catalogue));
}

TEST(SpreadsheetExport, WriteFileIntoAMissingFolderReportsAnError)
{
    test::TempAppFolder folder;
    const auto error = SpreadsheetExport::writeFile(
        folder.filePath("missing/out.xls"), Table(0, P::FieldCount), EnUs);
    ASSERT_TRUE(error.has_value());
    EXPECT_FALSE(error->isEmpty());
}

TEST(SpreadsheetExportChooseFile, NewFileIsTakenWithoutQuestion)
{
    test::TempAppFolder folder;
    test::FakeServices fakes(folder.environment());
    fakes.fileDialogs.answer(FileDialogResult { folder.filePath("new.xls"), 3 });
    EXPECT_EQ(SpreadsheetExport::chooseFile(fakes.fileDialogs, fakes.prompts),
        folder.filePath("new.xls"));
    EXPECT_TRUE(fakes.prompts.shown().empty());
    ASSERT_EQ(fakes.fileDialogs.requests().size(), 1U);
    EXPECT_EQ(fakes.fileDialogs.requests()[0].filter,
        "All Files (*.*)|*.*|Text Files(*.txt)|*.txt|Excel Files (*.xls)|*.xls");
    EXPECT_EQ(fakes.fileDialogs.requests()[0].filterIndex, 3);
}

TEST(SpreadsheetExportChooseFile, NoShowsTheDialogAgainAndYesReplaces)
{
    test::TempAppFolder folder;
    folder.writeFile("old.xls", "old");
    folder.writeFile("other.xls", "other");
    test::FakeServices fakes(folder.environment());
    fakes.fileDialogs.answer(FileDialogResult { folder.filePath("old.xls"), 3 });
    fakes.prompts.answerMessage(MsgResult::No);
    fakes.fileDialogs.answer(FileDialogResult { folder.filePath("other.xls"), 3 });
    fakes.prompts.answerMessage(MsgResult::Yes);
    EXPECT_EQ(SpreadsheetExport::chooseFile(fakes.fileDialogs, fakes.prompts),
        folder.filePath("other.xls"));
    EXPECT_EQ(fakes.fileDialogs.requests().size(), 2U);
    ASSERT_EQ(fakes.prompts.shown().size(), 2U);
    EXPECT_EQ(fakes.prompts.shown()[0].text, "Overwrite existing file?");
    EXPECT_EQ(fakes.prompts.shown()[0].title, "Overwrite?");
    EXPECT_EQ(fakes.prompts.shown()[0].style, MsgStyle::YesNo + MsgStyle::Question);
    EXPECT_TRUE(folder.exists("old.xls"));
    EXPECT_FALSE(folder.exists("other.xls"));
}

TEST(SpreadsheetExportChooseFile, CancelGivesNoFile)
{
    test::TempAppFolder folder;
    test::FakeServices fakes(folder.environment());
    fakes.fileDialogs.answer(std::nullopt);
    EXPECT_FALSE(SpreadsheetExport::chooseFile(fakes.fileDialogs, fakes.prompts).has_value());
}
