// The heading and ending files of the quote document are saved whole or not at all, together:
// a failure leaves both old files as they were and says why.
#include "quotes/quotenote.h"

#include "support/diskfaults.h"
#include "support/fakesettingsstore.h"
#include "support/tempappfolder.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using test::TempAppFolder;

/// A text far longer than the faults below let through.
QString longText()
{
    QString text;
    for (int line = 0; line < 2000; ++line)
        text += QStringLiteral("Line %1 of a long heading\n").arg(line);
    return text;
}

TEST(QuoteNoteFiles, BothTextsAreSavedAsPlainTextWithCrLf)
{
    TempAppFolder folder;
    ASSERT_TRUE(QuoteNote::saveNotes(folder.path(), "Dear customer,\nhere it is", "Regards").ok);
    EXPECT_EQ(folder.readFile("QuoteNotehead.txt"), "Dear customer,\r\nhere it is");
    EXPECT_EQ(folder.readFile("QuoteNote.txt"), "Regards");
    EXPECT_EQ(QuoteNote::readHeading(folder.path()), QStringLiteral("Dear customer,\nhere it is"));
}

TEST(QuoteNoteFiles, AnExistingHeadingFileIsReplacedUnderItsOwnName)
{
    TempAppFolder folder;
    folder.writeFile("QuoteNoteHead.txt", "old heading");
    ASSERT_TRUE(QuoteNote::saveNotes(folder.path(), "new heading", "end").ok);
    EXPECT_EQ(folder.readFile("QuoteNoteHead.txt"), "new heading");
    EXPECT_EQ(folder.fileNames(), (QStringList { "QuoteNote.txt", "QuoteNoteHead.txt" }));
}

TEST(QuoteNoteFiles, AHeadingThatFailsPartWayKeepsBothOldFiles)
{
    TempAppFolder folder;
    folder.writeFile("QuoteNoteHead.txt", "old heading");
    folder.writeFile("QuoteNote.txt", "old ending");
    FileWriteResult result;
    {
        test::FileSizeLimit fullDisk(4096);
        ASSERT_TRUE(fullDisk.active());
        result = QuoteNote::saveNotes(folder.path(), longText(), "new ending");
    }
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason, QStringLiteral("the file would be larger than the system allows"));
    EXPECT_EQ(folder.readFile("QuoteNoteHead.txt"), "old heading");
    EXPECT_EQ(folder.readFile("QuoteNote.txt"), "old ending");
    EXPECT_EQ(folder.fileNames(), (QStringList { "QuoteNote.txt", "QuoteNoteHead.txt" }));
}

TEST(QuoteNoteFiles, AFullDiskKeepsBothOldFiles)
{
    TempAppFolder folder;
    test::TinyDisk disk(folder.filePath("app"), 64);
    if (!disk.mounted())
        FAIL() << "the full-disk check needs a small file system, which cannot be mounted here "
                  "(the tests run as root): "
               << disk.failure().toStdString();
    const QString app = folder.filePath("app");
    folder.writeFile("app/QuoteNoteHead.txt", "old heading");
    folder.writeFile("app/QuoteNote.txt", "old ending");
    disk.fillLeaving(4096);
    const FileWriteResult result = QuoteNote::saveNotes(app, longText(), "new ending");
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason, QStringLiteral("the disk is full"));
    EXPECT_EQ(folder.readFile("app/QuoteNoteHead.txt"), "old heading");
    EXPECT_EQ(folder.readFile("app/QuoteNote.txt"), "old ending");
    EXPECT_EQ(QDir(app).entryList(QDir::Files),
        (QStringList { "filler.bin", "QuoteNote.txt", "QuoteNoteHead.txt" }));
}

TEST(QuoteNoteFiles, AFolderThatTakesNoNewFilesKeepsBothOldFiles)
{
    TempAppFolder folder;
    const QString app = folder.filePath("app");
    ASSERT_TRUE(QDir().mkpath(app));
    folder.writeFile("app/QuoteNoteHead.txt", "old heading");
    folder.writeFile("app/QuoteNote.txt", "old ending");
    FileWriteResult result;
    {
        test::UnwritableFolder readOnly(app, folder.path());
        ASSERT_TRUE(readOnly.blocksNewFiles());
        result = QuoteNote::saveNotes(app, "new heading", "new ending");
    }
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.reason.isEmpty());
    EXPECT_EQ(folder.readFile("app/QuoteNoteHead.txt"), "old heading");
    EXPECT_EQ(folder.readFile("app/QuoteNote.txt"), "old ending");
    EXPECT_EQ(
        QDir(app).entryList(QDir::Files), (QStringList { "QuoteNote.txt", "QuoteNoteHead.txt" }));
}

TEST(QuoteNoteFiles, AFolderThatIsAFileIsReported)
{
    TempAppFolder folder;
    folder.writeFile("app", "a plain file");
    const FileWriteResult result =
        QuoteNote::saveNotes(folder.filePath("app"), "new heading", "new ending");
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason,
        QStringLiteral("a file stands where the folder \"%1\" should be")
            .arg(QDir::toNativeSeparators(folder.filePath("app"))));
    EXPECT_EQ(folder.readFile("app"), "a plain file");
}

TEST(QuoteNoteSetting, TheSettingsAreReadAsNumbersRoundedToAWholeOne)
{
    test::FakeSettingsStore settings;
    const auto read = [&](const QString &text) {
        settings.save("Tarnwick", "Settings", "NoIncludes", text);
        settings.save("Tarnwick", "Settings", "VolumePrices", text);
        EXPECT_EQ(QuoteNote::volumePrices(settings), QuoteNote::noIncludes(settings))
            << text.toStdString();
        return QuoteNote::noIncludes(settings);
    };
    EXPECT_EQ(read("1"), 1);
    EXPECT_EQ(read(" 1 "), 1);
    EXPECT_EQ(read("1.0"), 1);
    EXPECT_EQ(read("1,0"), 1);
    EXPECT_EQ(read("0.6"), 1);
    EXPECT_EQ(read("1.5"), 2);
    EXPECT_EQ(read("2.5"), 2);
    EXPECT_EQ(read("0"), 0);
    EXPECT_EQ(read("yes"), 0);
    EXPECT_EQ(read(""), 0);
    EXPECT_EQ(read("99999"), 0);
    EXPECT_EQ(read("-3"), -3);
}

TEST(QuoteNoteSetting, ASettingThatCannotBeWrittenIsReportedAndKept)
{
    test::FakeSettingsStore settings;
    ASSERT_TRUE(QuoteNote::saveNoIncludes(settings, 1));
    settings.failWrites(QStringLiteral("the disk is full"));
    EXPECT_FALSE(QuoteNote::saveNoIncludes(settings, 0));
    EXPECT_EQ(settings.writeError(), QStringLiteral("the disk is full"));
    EXPECT_EQ(QuoteNote::noIncludes(settings), 1);
}

} // namespace
} // namespace tarnwick
