#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/spreadsheetexport.h"
#include "support/diskfaults.h"
#include "support/fakeservices.h"
#include "support/tempappfolder.h"
#include "support/testlocale.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;

namespace {

using tarnwick::test::EnUs;

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
    EXPECT_EQ(*error,
        QStringLiteral("the folder \"%1\" does not exist")
            .arg(QDir::toNativeSeparators(folder.filePath("missing"))));
    EXPECT_TRUE(folder.fileNames().isEmpty());
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
    EXPECT_EQ(folder.readFile("old.xls"), "old");
    // The file to replace stays as it is until the new one has been written whole.
    EXPECT_EQ(folder.readFile("other.xls"), "other");
}

TEST(SpreadsheetExportChooseFile, ANameWithoutExtensionGetsTheOneOfTheTypeChosen)
{
    test::TempAppFolder folder;
    folder.writeFile("prices.xls", "old");
    test::FakeServices fakes(folder.environment());
    // "prices" as Excel: the existing prices.xls is the file, and is asked about.
    fakes.fileDialogs.answer(FileDialogResult { folder.filePath("prices"), 3 });
    fakes.prompts.answerMessage(MsgResult::No);
    fakes.fileDialogs.answer(FileDialogResult { folder.filePath("catalogue"), 3 });
    EXPECT_EQ(SpreadsheetExport::chooseFile(fakes.fileDialogs, fakes.prompts),
        folder.filePath("catalogue.xls"));
    ASSERT_EQ(fakes.prompts.shown().size(), 1U);
    EXPECT_EQ(fakes.prompts.shown()[0].text, "Overwrite existing file?");
    EXPECT_EQ(fakes.fileDialogs.requests()[1].fileName, folder.filePath("prices.xls"));

    EXPECT_EQ(SpreadsheetExport::withTypeExtension(QStringLiteral("/a/list"), 2),
        QStringLiteral("/a/list.txt"));
    EXPECT_EQ(SpreadsheetExport::withTypeExtension(QStringLiteral("/a/list"), 1),
        QStringLiteral("/a/list"))
        << "All Files: as typed";
    EXPECT_EQ(SpreadsheetExport::withTypeExtension(QStringLiteral("/a/list.csv"), 3),
        QStringLiteral("/a/list.csv"));
    EXPECT_EQ(SpreadsheetExport::withTypeExtension(QStringLiteral("/a.b/list"), 3),
        QStringLiteral("/a.b/list.xls"))
        << "a dot in a folder's name is no extension";
}

TEST(SpreadsheetExportChooseFile, CancelGivesNoFile)
{
    test::TempAppFolder folder;
    test::FakeServices fakes(folder.environment());
    fakes.fileDialogs.answer(std::nullopt);
    EXPECT_FALSE(SpreadsheetExport::chooseFile(fakes.fileDialogs, fakes.prompts).has_value());
}

namespace {

/// A catalogue whose export is far larger than the faults below let through.
Table largeCatalogue()
{
    Table catalogue(1000, P::FieldCount);
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        catalogue.put(row, P::PartNumber, QStringLiteral("PN-%1").arg(row));
        catalogue.put(row, P::ProductName, QStringLiteral("Product number %1").arg(row));
        catalogue.put(row, P::Price, double(row) + 0.5);
    }
    return catalogue;
}

} // namespace

TEST(SpreadsheetExport, AWriteThatFailsPartWayKeepsTheOldFile)
{
    test::TempAppFolder folder;
    folder.writeFile("out.xls", "old export");
    std::optional<QString> error;
    {
        test::FileSizeLimit fullDisk(16384);
        ASSERT_TRUE(fullDisk.active());
        error = SpreadsheetExport::writeFile(folder.filePath("out.xls"), largeCatalogue(), EnUs);
    }
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(*error, QStringLiteral("the file would be larger than the system allows"));
    EXPECT_EQ(folder.readFile("out.xls"), "old export");
    EXPECT_EQ(folder.fileNames(), QStringList { "out.xls" });
}

TEST(SpreadsheetExport, AFullDiskKeepsTheOldFile)
{
    test::TempAppFolder folder;
    test::TinyDisk disk(folder.filePath("disk"), 64);
    if (!disk.mounted())
        FAIL() << "the full-disk check needs a small file system, which cannot be mounted here "
                  "(the tests run as root): "
               << disk.failure().toStdString();
    folder.writeFile("disk/out.xls", "old export");
    disk.fillLeaving(16384);
    const auto error =
        SpreadsheetExport::writeFile(folder.filePath("disk/out.xls"), largeCatalogue(), EnUs);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(*error, QStringLiteral("the disk is full"));
    EXPECT_EQ(folder.readFile("disk/out.xls"), "old export");
    EXPECT_EQ(QDir(folder.filePath("disk")).entryList(QDir::Files),
        (QStringList { "filler.bin", "out.xls" }));
}

TEST(SpreadsheetExport, AFolderThatTakesNoNewFilesKeepsTheOldFile)
{
    test::TempAppFolder folder;
    ASSERT_TRUE(QDir().mkpath(folder.filePath("out")));
    folder.writeFile("out/list.xls", "old export");
    QFile::setPermissions(folder.filePath("out/list.xls"), QFileDevice::Permissions(0x6666));
    std::optional<QString> error;
    {
        test::UnwritableFolder readOnly(folder.filePath("out"), folder.path());
        ASSERT_TRUE(readOnly.blocksNewFiles());
        error =
            SpreadsheetExport::writeFile(folder.filePath("out/list.xls"), largeCatalogue(), EnUs);
    }
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(*error, QStringLiteral("you have no permission to write there"));
    EXPECT_EQ(folder.readFile("out/list.xls"), "old export");
    EXPECT_EQ(QDir(folder.filePath("out")).entryList(QDir::Files), QStringList { "list.xls" });
}
