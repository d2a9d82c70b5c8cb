// Every file the program writes goes through writeFileWhole: the file is replaced whole or not
// at all. Faults are injected into the write (a folder that is a file, a folder that takes no
// new files, a write that fails part-way, a real disk that fills up) and the old file must keep
// its bytes, with no temporary file left beside it.
#include "platform/filewrite.h"

#include "support/diskfaults.h"
#include "support/filegroups.h"
#include "support/tempappfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using test::FileSizeLimit;
using test::LockedFolder;
using test::TempAppFolder;
using test::TinyDisk;
using test::UnwritableFolder;

const QByteArray OldBytes = "old content\r\n";

/// Far more than the limits the faults below allow.
QByteArray largeContent()
{
    QByteArray bytes;
    for (int line = 0; line < 2000; ++line)
        bytes += "line " + QByteArray::number(line) + " of the new file\r\n";
    return bytes;
}

/// A device that takes at most step bytes per write and fails once failAfter bytes are in.
class FailingSink : public QIODevice
{
public:
    FailingSink(qint64 step, qint64 failAfter) : m_step(step), m_failAfter(failAfter)
    {
        open(QIODevice::WriteOnly);
    }
    QByteArray received;

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 length) override
    {
        if (received.size() >= m_failAfter) {
            setErrorString(QStringLiteral("the sink is full"));
            return -1;
        }
        const qint64 taken = qMin(qMin(length, m_step), m_failAfter - received.size());
        received.append(data, taken);
        return taken;
    }

private:
    qint64 m_step;
    qint64 m_failAfter;
};

class FileWriteTest : public ::testing::Test
{
protected:
    QString path(const QString &name) const { return folder.filePath(name); }

    TempAppFolder folder;
};

TEST_F(FileWriteTest, WritesANewFileAndReplacesAnOldOne)
{
    ASSERT_TRUE(writeFileWhole(path("out.txt"), "first").ok);
    EXPECT_EQ(folder.readFile("out.txt"), "first");
    const FileWriteResult result = writeFileWhole(path("out.txt"), largeContent());
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.errorNumber, 0);
    EXPECT_TRUE(result.reason.isEmpty());
    EXPECT_EQ(folder.readFile("out.txt"), largeContent());
    EXPECT_EQ(folder.fileNames(), QStringList { "out.txt" });
}

TEST_F(FileWriteTest, AnEmptyFileIsWritten)
{
    folder.writeFile("out.txt", OldBytes);
    ASSERT_TRUE(writeFileWhole(path("out.txt"), QByteArray()).ok);
    EXPECT_TRUE(folder.exists("out.txt"));
    EXPECT_EQ(folder.readFile("out.txt"), QByteArray());
}

TEST_F(FileWriteTest, AFolderThatIsAFileIsReportedAndNothingIsWritten)
{
    folder.writeFile("plain", "plain bytes");
    const FileWriteResult result = writeFileWhole(path("plain/out.txt"), "new");
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason,
        QStringLiteral("a file stands where the folder \"%1\" should be")
            .arg(QDir::toNativeSeparators(path("plain"))));
    EXPECT_EQ(result.errorNumber, 76);
    EXPECT_EQ(folder.readFile("plain"), "plain bytes");
    EXPECT_EQ(folder.fileNames(), QStringList { "plain" });
}

TEST_F(FileWriteTest, AFolderThatTakesNoNewFilesKeepsTheOldFile)
{
    const QString app = path("app");
    ASSERT_TRUE(QDir().mkpath(app));
    const QString target = QDir(app).filePath("out.txt");
    {
        QFile file(target);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(OldBytes);
        // The old file itself could be overwritten: only the folder refuses, so a write
        // straight into the old file would destroy it.
        file.setPermissions(QFileDevice::Permissions(0x6666));
    }
    FileWriteResult result;
    {
        UnwritableFolder readOnly(app, folder.path());
        ASSERT_TRUE(readOnly.blocksNewFiles());
        result = writeFileWhole(target, largeContent());
    }
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason, QStringLiteral("you have no permission to write there"));
    EXPECT_EQ(result.errorNumber, 70);
    EXPECT_EQ(folder.readFile("app/out.txt"), OldBytes);
    EXPECT_EQ(QDir(app).entryList(QDir::Files), QStringList { "out.txt" });
}

TEST_F(FileWriteTest, AFolderWhereTheFileShouldBeIsSaidToBeInTheWay)
{
    ASSERT_TRUE(QDir().mkpath(path("app/QuoteNote.txt")));
    const FileWriteResult result = writeFileWhole(path("app/QuoteNote.txt"), "new");
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason, QStringLiteral("a folder of that name is in the way"));
    EXPECT_TRUE(QFileInfo(path("app/QuoteNote.txt")).isDir());
    EXPECT_EQ(QDir(path("app")).entryList(QDir::Files | QDir::Hidden), QStringList());
}

// A folder locked against changes answers EPERM, after which Qt's file classes left the error
// number of a missing folder behind; the cause is asked of the folder itself. Where the lock
// cannot be set (a container without the right to), a folder without write rights stands in.
TEST_F(FileWriteTest, AFolderLockedAgainstChangesIsSaidToRefuseNotToBeGone)
{
    const QString app = path("app");
    ASSERT_TRUE(QDir().mkpath(app));
    const QString target = QDir(app).filePath("out.txt");
    FileWriteResult result;
    bool lockedTried = false;
    {
        const LockedFolder locked(app);
        if (locked.locked()) {
            lockedTried = true;
            result = writeFileWhole(target, "new");
        }
    }
    if (!lockedTried) {
        const UnwritableFolder readOnly(app, folder.path());
        ASSERT_TRUE(readOnly.blocksNewFiles());
        result = writeFileWhole(target, "new");
    }
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason, QStringLiteral("you have no permission to write there"))
        << (lockedTried ? "locked" : "no write rights");
    EXPECT_EQ(result.errorNumber, 70);
    EXPECT_EQ(QDir(app).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(FileWriteTest, AWriteThatFailsPartWayKeepsTheOldFileAndLeavesNoTemporaryFile)
{
    folder.writeFile("out.txt", OldBytes);
    FileWriteResult result;
    {
        FileSizeLimit fullDisk(16384);
        ASSERT_TRUE(fullDisk.active());
        result = writeFileWhole(path("out.txt"), largeContent());
    }
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason, QStringLiteral("the file would be larger than the system allows"));
    EXPECT_EQ(result.errorNumber, 61);
    EXPECT_EQ(folder.readFile("out.txt"), OldBytes);
    EXPECT_EQ(folder.fileNames(), QStringList { "out.txt" });
}

TEST_F(FileWriteTest, AFullDiskKeepsTheOldFile)
{
    TinyDisk disk(path("disk"), 64);
    if (!disk.mounted())
        FAIL() << "the full-disk check needs a small file system, which cannot be mounted here "
                  "(the tests run as root): "
               << disk.failure().toStdString();
    const QString target = path("disk/out.txt");
    ASSERT_TRUE(writeFileWhole(target, OldBytes).ok);
    disk.fillLeaving(16384);
    const FileWriteResult result = writeFileWhole(target, largeContent());
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason, QStringLiteral("the disk is full"));
    EXPECT_EQ(result.errorNumber, 61);
    EXPECT_EQ(folder.readFile("disk/out.txt"), OldBytes);
    EXPECT_EQ(QDir(path("disk")).entryList(QDir::Files), (QStringList { "filler.bin", "out.txt" }));
}

// A disk that turned read-only as a whole is the cause, not the file, whose own rights allow
// writing (an export, the settings, the quote texts, the handheld file).
TEST_F(FileWriteTest, ADiskThatTurnedReadOnlyIsNamedNotTheFile)
{
    TinyDisk disk(path("disk"), 64);
    if (!disk.mounted())
        FAIL() << "the check needs a small file system, which cannot be mounted here (the tests "
                  "run as root): "
               << disk.failure().toStdString();
    const QString target = path("disk/out.txt");
    ASSERT_TRUE(writeFileWhole(target, OldBytes).ok);
    ASSERT_TRUE(disk.makeReadOnly());
    const FileWriteResult result = writeFileWhole(target, largeContent());
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason, QStringLiteral("the disk or folder is read-only"));
    EXPECT_EQ(folder.readFile("disk/out.txt"), OldBytes);
}

TEST_F(FileWriteTest, AFullDiskAlsoStopsASmallFileThatFitsTheWriteBuffer)
{
    TinyDisk disk(path("disk"), 64);
    if (!disk.mounted())
        FAIL() << "the full-disk check needs a small file system, which cannot be mounted here "
                  "(the tests run as root): "
               << disk.failure().toStdString();
    const QString target = path("disk/out.txt");
    ASSERT_TRUE(writeFileWhole(target, OldBytes).ok);
    disk.fillLeaving(0);
    const FileWriteResult result = writeFileWhole(target, "a short new text");
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.reason, QStringLiteral("the disk is full"));
    EXPECT_EQ(folder.readFile("disk/out.txt"), OldBytes);
    EXPECT_EQ(QDir(path("disk")).entryList(QDir::Files), (QStringList { "filler.bin", "out.txt" }));
}

TEST_F(FileWriteTest, FilesWrittenTogetherChangeNoneWhenOneFails)
{
    folder.writeFile("first.txt", "old first");
    folder.writeFile("plain", "plain bytes");
    const FileWriteResult result = writeFilesWhole({ FileContent { path("first.txt"), "new" },
        FileContent { path("plain/second.txt"), "new" } });
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(folder.readFile("first.txt"), "old first");
    EXPECT_EQ(folder.fileNames(), (QStringList { "first.txt", "plain" }));
}

TEST_F(FileWriteTest, FilesWrittenTogetherAreAllReplaced)
{
    folder.writeFile("first.txt", "old first");
    ASSERT_TRUE(writeFilesWhole({ FileContent { path("first.txt"), "new first" },
                                    FileContent { path("second.txt"), "new second" } })
                    .ok);
    EXPECT_EQ(folder.readFile("first.txt"), "new first");
    EXPECT_EQ(folder.readFile("second.txt"), "new second");
}

TEST(WriteAllBytes, ShortWritesGoOnWithTheRest)
{
    FailingSink sink(7, 1 << 20);
    const QByteArray bytes = largeContent();
    EXPECT_TRUE(writeAllBytes(sink, bytes));
    EXPECT_EQ(sink.received, bytes);
}

TEST(WriteAllBytes, ADeviceThatFailsPartWayIsAFailure)
{
    FailingSink sink(4096, 10000);
    EXPECT_FALSE(writeAllBytes(sink, largeContent()));
    EXPECT_EQ(sink.received.size(), 10000);
    EXPECT_EQ(sink.errorString(), QStringLiteral("the sink is full"));
}

TEST(WriteErrorNumbers, CausesInPlainWords)
{
    EXPECT_EQ(plainWriteCause(ENOSPC, "x"), QStringLiteral("the disk is full"));
    EXPECT_EQ(plainWriteCause(EROFS, "x"), QStringLiteral("the disk or folder is read-only"));
    EXPECT_EQ(plainWriteCause(EIO, "Input/output error"),
        QStringLiteral(
            "the drive could not be read or written (was it taken away, or the network lost?)"));
    EXPECT_EQ(plainWriteCause(ENOTCONN, "Transport endpoint is not connected"),
        plainWriteCause(EIO, QString()));
    EXPECT_EQ(plainWriteCause(EINVAL, "Invalid argument"), QStringLiteral("Invalid argument"));
    EXPECT_EQ(writeErrorNumber(ENOSPC), 61);
    EXPECT_EQ(writeErrorNumber(EACCES), 70);
    EXPECT_EQ(writeErrorNumber(ENOENT), 76);
    EXPECT_EQ(writeErrorNumber(EIO), 57);
}

// A file that holds the catalogue's prices takes the catalogue file's permissions and group,
// not the folder's: a private catalogue leaves no copy others may read, and one a group of
// colleagues shares leaves them one they may.
TEST_F(FileWriteTest, AFileWrittenLikeAnotherTakesItsPermissionsAndGroup)
{
    const QString catalogue = path(QStringLiteral("twdata.dat"));
    folder.writeFile(QStringLiteral("twdata.dat"), OldBytes);
    ASSERT_TRUE(QFile::setPermissions(catalogue, QFile::ReadOwner | QFile::WriteOwner));
    const long group = test::giveOtherGroup(catalogue);
    const QString copy = path(QStringLiteral("Products.CSV"));
    ASSERT_TRUE(writeFilesWhole({ FileContent { copy, "prices\r\n", catalogue } }));
    EXPECT_EQ(test::modeOf(copy), 0600U);
    EXPECT_EQ(test::groupOf(copy), group);

    // A file made beside it afterwards is given the group as well.
    const QString later = path(QStringLiteral("later.dat"));
    ASSERT_TRUE(writeFileWhole(later, "x"));
    takeAccess(catalogue, later);
    EXPECT_EQ(test::groupOf(later), group);
}

} // namespace
} // namespace tarnwick
