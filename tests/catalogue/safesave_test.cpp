// Saving the catalogue never loses the file on disk: faults are injected into the save (a
// folder that takes no new files, a full disk, an interruption before the new file takes the
// old one's place) and the old file must keep its bytes.
#include "cataloguefixture.h"

#include "catalogue/cataloguefile.h"
#include "support/diskfaults.h"
#include "support/filegroups.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwick::test {
namespace {

const QByteArray OldBytes =
    "OLD-1" FE "Old product" FE "1.5" FE FE FE FE FE FE FE FE FE FE FE FE FE "\r\n";

/// A backup older than the catalogue file before it (the catalogue before an accident).
const QByteArray OlderBytes =
    "OLDER-1" FE "Older product" FE "2.5" FE FE FE FE FE FE FE FE FE FE FE FE FE "\r\n";

class SafeSaveTest : public CatalogueFixture
{
protected:
    /// twdata.dat holds OldBytes, twdata.bak OlderBytes, the catalogue three new products.
    void writeFilesWithAnOlderBackup()
    {
        writeDataFile(OldBytes);
        folder.writeFile(QStringLiteral("twdata.bak"), OlderBytes);
        fillCatalogue(3);
    }
    /// A catalogue whose file is much larger than OldBytes.
    void fillCatalogue(int rows)
    {
        catalogue.redim(rows, 15);
        for (int row = 1; row <= rows; ++row) {
            catalogue.put(row, 1, QStringLiteral("NEW-%1").arg(row));
            catalogue.put(row, 2, QStringLiteral("New product number %1").arg(row));
            catalogue.put(row, 3, Cell(float(row) + 0.25f));
        }
    }
};

TEST_F(SafeSaveTest, SaveKeepsThePreviousFileAsBackup)
{
    writeDataFile(OldBytes);
    fillCatalogue(2);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    const QByteArray firstSave = dataFileBytes();
    EXPECT_TRUE(firstSave.startsWith("NEW-1" FE));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), OldBytes);
    EXPECT_EQ(catalogueBackupPath(dataFile()),
        QDir::toNativeSeparators(folder.filePath(QStringLiteral("twdata.bak"))));

    catalogue.put(1, 2, Cell("changed"));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), firstSave);
    EXPECT_NE(dataFileBytes(), firstSave);
    EXPECT_EQ(folder.fileNames(),
        (QStringList { QStringLiteral("twdata.bak"), QStringLiteral("twdata.dat") }));
}

#if defined(Q_OS_UNIX)
// A catalogue a group of colleagues shares (its own group, read and write for the group) stays
// so after a save: the new file takes the old one's permissions and group.
TEST_F(SafeSaveTest, TheSavedFileKeepsThePreviousFilesPermissionsAndGroup)
{
    writeDataFile(OldBytes);
    ASSERT_TRUE(QFile::setPermissions(
        dataFile(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::WriteGroup));
    const long group = giveOtherGroup(dataFile());
    fillCatalogue(2);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_TRUE(dataFileBytes().startsWith("NEW-1" FE));
    EXPECT_EQ(modeOf(dataFile()), 0660U);
    EXPECT_EQ(groupOf(dataFile()), group);
}

// The backup is the previous file itself, given a second name: not a copy of it.
TEST_F(SafeSaveTest, TheBackupIsThePreviousFileUnderASecondName)
{
    writeDataFile(OldBytes);
    struct stat before
    {
    };
    ASSERT_EQ(::stat(QFile::encodeName(dataFile()).constData(), &before), 0);
    fillCatalogue(2);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    struct stat backup
    {
    };
    ASSERT_EQ(::stat(QFile::encodeName(folder.filePath(QStringLiteral("twdata.bak"))).constData(),
                  &backup),
        0);
    EXPECT_EQ(backup.st_ino, before.st_ino) << "the backup was copied";
    EXPECT_EQ(backup.st_dev, before.st_dev);
    EXPECT_EQ(backup.st_nlink, 1U) << "the previous file keeps no other name";
}
#endif

TEST_F(SafeSaveTest, AnUnchangedCatalogueSavedAgainLeavesTheBackup)
{
    writeDataFile(OldBytes);
    fillCatalogue(2);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), OldBytes);
    const QByteArray saved = dataFileBytes();
    catalogue.put(1, 2, Cell("changed"));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), saved);
}

TEST_F(SafeSaveTest, AReadOnlyFileIsNamedAsTheCauseNotItsFolder)
{
    writeDataFile(OldBytes);
    // Root may write any file: act as "nobody" in a folder everyone may write to. Permission
    // checks (access) go by the real user, so both are changed; the saved one brings root back.
    ::chmod(QFile::encodeName(folder.path()).constData(), 0777);
    ::chmod(QFile::encodeName(dataFile()).constData(), 0444);
    const bool droppedRoot = ::geteuid() == 0 && ::setresuid(65534, 65534, 0) == 0;
    fillCatalogue(2);
    const CatalogueWriteResult result = products.WriteProds(dataFile());
    if (droppedRoot) {
        EXPECT_EQ(::setresuid(0, 0, 0), 0);
    }
    ::chmod(QFile::encodeName(dataFile()).constData(), 0644);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(
        result.detail, QStringLiteral("the file itself is read-only or locked against changes"));
    EXPECT_EQ(dataFileBytes(), OldBytes);
}

// A disk that turned read-only as a whole (a write-protected stick, a file system the system
// made read-only after an error) is the cause, not the file, whose own rights allow writing.
TEST_F(SafeSaveTest, ADiskThatTurnedReadOnlyIsNamedAsTheCause)
{
    const QString disk = folder.filePath(QStringLiteral("stick"));
    const TinyDisk tiny(disk, 1024);
    if (!tiny.mounted())
        FAIL() << "the check needs a small file system, which cannot be mounted here (the tests "
                  "run as root): "
               << tiny.failure().toStdString();
    const QString data = QDir(disk).filePath(QStringLiteral("twdata.dat"));
    folder.writeFile(QStringLiteral("stick/twdata.dat"), OldBytes);
    ASSERT_TRUE(tiny.makeReadOnly());
    fillCatalogue(2);
    const CatalogueWriteResult result = products.WriteProds(data);
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(result.detail.endsWith(QStringLiteral("the disk or folder is read-only")))
        << result.detail.toStdString();
    EXPECT_EQ(folder.readFile(QStringLiteral("stick/twdata.dat")), OldBytes);
}

#if defined(Q_OS_LINUX)
// A folder so deep that the catalogue's name fits the system's limit but the longer names a
// save writes first do not: the save fails and says why, in words.
TEST_F(SafeSaveTest, AFolderTooDeepForTheSavesOwnNamesIsSaidSo)
{
    QString deep = folder.path();
    const QString part(200, QLatin1Char('d'));
    while (QFile::encodeName(deep).size() + 201 + 11 < 4095)
        deep += QLatin1Char('/') + part;
    deep += QLatin1Char('/')
        + QString(4095 - 11 - 1 - QFile::encodeName(deep).size(), QLatin1Char('e'));
    ASSERT_TRUE(QDir().mkpath(deep));
    const QString data = QDir(deep).filePath(QStringLiteral("twdata.dat"));
    ASSERT_EQ(QFile::encodeName(data).size(), 4095); // the longest name Linux takes
    {
        QFile old(data);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write(OldBytes);
    }
    fillCatalogue(2);
    const QString cause =
        QStringLiteral("the file's name or its folder's path is too long for the system");
    for (int save = 1; save <= 2; ++save) {
        const CatalogueWriteResult result = products.WriteProds(data);
        EXPECT_FALSE(result.ok);
        EXPECT_TRUE(result.detail.endsWith(cause)) << result.detail.toStdString();
        QFile kept(data);
        ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
        EXPECT_EQ(kept.readAll(), OldBytes) << "save " << save;
    }
}
#endif

// The folder the catalogue was read from replaced by a file: said as it is.
TEST_F(SafeSaveTest, AFolderReplacedByAFileIsSaidSo)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("app")));
    const QString data = folder.filePath(QStringLiteral("app/twdata.dat"));
    folder.writeFile(QStringLiteral("app/twdata.dat"), OldBytes);
    ASSERT_EQ(products.ReadProds(data).status, CatalogueReadResult::Status::Ok);
    ASSERT_TRUE(QDir(folder.filePath(QStringLiteral("app"))).removeRecursively());
    folder.writeFile(QStringLiteral("app"), "a plain file");
    const CatalogueWriteResult result = products.WriteProds(data);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.detail,
        QStringLiteral("a file stands where the folder \"%1\" should be")
            .arg(QDir::toNativeSeparators(folder.filePath(QStringLiteral("app")))));
    EXPECT_EQ(folder.readFile(QStringLiteral("app")), QByteArray("a plain file"));
}

// A drive taken from a fixed mount point leaves an empty folder of the same name: a save
// there would say "saved" while the drive never gets the catalogue.
TEST_F(SafeSaveTest, ACatalogueFileGoneFromItsFolderIsNotWrittenAnew)
{
    writeDataFile(OldBytes);
    ASSERT_EQ(products.ReadProds(dataFile()).status, CatalogueReadResult::Status::Ok);
    ASSERT_TRUE(QFile::remove(dataFile()));
    catalogue.put(1, 2, Cell("changed after the drive was taken"));
    const CatalogueWriteResult gone = products.WriteProds(dataFile());
    EXPECT_FALSE(gone.ok);
    EXPECT_EQ(gone.detail,
        QStringLiteral("the catalogue file is no longer in the folder \"%1\" (was the drive it "
                       "is on removed?); put it back, then save again, or keep a copy elsewhere "
                       "with Save As")
            .arg(QDir::toNativeSeparators(folder.path())));
    EXPECT_TRUE(folder.fileNames().isEmpty());
    // The drive is back: the save goes onto it.
    writeDataFile(OldBytes);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_TRUE(dataFileBytes().contains("changed after the drive was taken"));
    // A file this run wrote itself is missed as well; its backup alone is enough to go on.
    const QByteArray backup = folder.readFile(QStringLiteral("twdata.bak"));
    ASSERT_FALSE(backup.isEmpty());
    ASSERT_TRUE(QFile::remove(dataFile()));
    ASSERT_TRUE(QFile::remove(catalogueBackupPath(dataFile())));
    // (The file put back was not the one read: the save before kept it as a copy.)
    const QStringList left = folder.fileNames();
    EXPECT_FALSE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.fileNames(), left);
    folder.writeFile(QStringLiteral("twdata.bak"), backup);
    EXPECT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_TRUE(dataFileBytes().contains("changed after the drive was taken"));
}

TEST_F(SafeSaveTest, FirstSaveMakesNoBackup)
{
    fillCatalogue(1);
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.fileNames(), QStringList { QStringLiteral("twdata.dat") });
}

TEST_F(SafeSaveTest, FolderThatTakesNoNewFilesLeavesTheOldFileIntact)
{
    const QString appFolder = folder.filePath(QStringLiteral("app"));
    ASSERT_TRUE(QDir().mkpath(appFolder));
    const QString data = QDir(appFolder).filePath(QStringLiteral("twdata.dat"));
    {
        QFile file(data);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(OldBytes);
        // The old file itself could be overwritten: only the folder refuses, so a save that
        // wrote straight into the old file would destroy it.
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner
            | QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther
            | QFileDevice::WriteOther);
    }
    fillCatalogue(50);
    products.setCount(50);

    CatalogueWriteResult result;
    {
        UnwritableFolder readOnly(appFolder, folder.path());
        ASSERT_TRUE(readOnly.blocksNewFiles());
        result = products.WriteProds(data);
    }

    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(result.detail.contains(QStringLiteral("no new file can be created")))
        << result.detail.toStdString();
    // Only the cause: the message around it says once that the catalogue was not saved.
    EXPECT_FALSE(result.detail.contains(QStringLiteral("could not be saved")));
    EXPECT_FALSE(result.detail.contains(QStringLiteral("unchanged")));
    QFile file(data);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), OldBytes);
    EXPECT_EQ(QDir(appFolder).entryList(QDir::Files), QStringList { QStringLiteral("twdata.dat") });
    EXPECT_EQ(products.Count(), 50); // a failed save changes nothing
}

// A folder locked against changes refuses with another error number than one without the
// right to write, and Qt's file classes left a third behind ("not there"): the cause is asked
// of the folder itself. Where the lock cannot be set (a container without the right to), the
// folder without write rights stands in, which must say the same.
TEST_F(SafeSaveTest, AFolderLockedAgainstChangesIsSaidToRefuseNotToBeGone)
{
    const QString appFolder = folder.filePath(QStringLiteral("app"));
    ASSERT_TRUE(QDir().mkpath(appFolder));
    fillCatalogue(3);
    products.setCount(3);
    const QString data = QDir(appFolder).filePath(QStringLiteral("twdata.dat"));
    CatalogueWriteResult result;
    bool lockedTried = false;
    {
        const LockedFolder locked(appFolder);
        if (locked.locked()) {
            lockedTried = true;
            result = products.WriteProds(data);
        }
    }
    if (!lockedTried) {
        const UnwritableFolder readOnly(appFolder, folder.path());
        ASSERT_TRUE(readOnly.blocksNewFiles());
        result = products.WriteProds(data);
    }
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(result.detail.endsWith(QStringLiteral(": you have no permission to write there")))
        << result.detail.toStdString() << (lockedTried ? " (locked)" : " (no write rights)");
    EXPECT_EQ(QDir(appFolder).entryList(QDir::Files | QDir::Hidden), QStringList())
        << "no file is left behind, the cause's probe included";
}

TEST_F(SafeSaveTest, DataFileBelowAPlainFileCannotBeSaved)
{
    folder.writeFile(QStringLiteral("notafolder"), "plain bytes");
    fillCatalogue(3);
    const QString data = folder.filePath(QStringLiteral("notafolder/twdata.dat"));
    const CatalogueWriteResult result = products.WriteProds(data);
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(
        result.detail.endsWith(QStringLiteral(": a file stands where the folder should be")))
        << result.detail.toStdString();
    EXPECT_EQ(folder.readFile(QStringLiteral("notafolder")), QByteArray("plain bytes"));
    EXPECT_EQ(folder.fileNames(), QStringList { QStringLiteral("notafolder") });
}

TEST_F(SafeSaveTest, FullDiskLeavesTheOldFileIntactAndNoTemporaryFile)
{
    writeDataFile(OldBytes);
    fillCatalogue(2000); // far more than the limit below
    CatalogueWriteResult result;
    {
        FileSizeLimit fullDisk(4096);
        ASSERT_TRUE(fullDisk.active());
        result = products.WriteProds(dataFile());
    }
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(result.detail.contains(QStringLiteral("the disk is full")))
        << result.detail.toStdString();
    EXPECT_EQ(dataFileBytes(), OldBytes);
    EXPECT_EQ(folder.fileNames(), QStringList { QStringLiteral("twdata.dat") });
}

TEST_F(SafeSaveTest, AFailureWhenTheDataIsFlushedIsReportedAtOnceAndKeepsTheBackup)
{
    // A small catalogue is held in the file's buffer until it is flushed: the disk fills up
    // only then. The save stops there, before the previous file would become the backup.
    const QByteArray oldBackup =
        "OLD-0" FE "Older product" FE FE FE FE FE FE FE FE FE FE FE FE FE FE "\r\n";
    writeDataFile(OldBytes);
    folder.writeFile(QStringLiteral("twdata.bak"), oldBackup);
    fillCatalogue(20);
    CatalogueWriteResult result;
    {
        FileSizeLimit fullDisk(64);
        ASSERT_TRUE(fullDisk.active());
        result = products.WriteProds(dataFile());
    }
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.detail, QStringLiteral("the new file could not be written: the disk is full"));
    EXPECT_EQ(dataFileBytes(), OldBytes);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), oldBackup);
    EXPECT_EQ(folder.fileNames(),
        (QStringList { QStringLiteral("twdata.bak"), QStringLiteral("twdata.dat") }));
}

TEST_F(SafeSaveTest, SaveInterruptedBeforeTheReplaceLeavesTheOldFileIntact)
{
    writeDataFile(OldBytes);
    fillCatalogue(3);
    products.setCount(77);
    bool interrupted = false;
    products.setBeforeReplaceHook([&] {
        interrupted = true;
        EXPECT_EQ(dataFileBytes(), OldBytes); // the new bytes are not in place yet
        return false;
    });

    const CatalogueWriteResult result = products.WriteProds(dataFile());

    EXPECT_TRUE(interrupted);
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(result.detail.contains(QStringLiteral("interrupted")))
        << result.detail.toStdString();
    EXPECT_EQ(dataFileBytes(), OldBytes);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), OldBytes);
    EXPECT_EQ(folder.fileNames(),
        (QStringList { QStringLiteral("twdata.bak"), QStringLiteral("twdata.dat") }));
    EXPECT_EQ(products.Count(), 77);

    // The backup is the catalogue file under a second name now: the next save leaves no third.
    products.setBeforeReplaceHook({});
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_TRUE(dataFileBytes().startsWith("NEW-1" FE "New product number 1" FE "1.25" FE));
    EXPECT_EQ(products.Count(), 3);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), OldBytes);
    EXPECT_EQ(folder.fileNames(),
        (QStringList { QStringLiteral("twdata.bak"), QStringLiteral("twdata.dat") }));
}

// An older backup may be the only copy of the catalogue before an accident (everything
// deleted and saved): a save that fails after the backup was renewed puts it back, so a failed
// save leaves the catalogue's files as they were, as its message says.
TEST_F(SafeSaveTest, ASaveThatFailsAfterTheBackupWasRenewedPutsTheOlderBackupBack)
{
    writeFilesWithAnOlderBackup();
    // Interrupted before the new file takes the old one's place.
    products.setBeforeReplaceHook([] { return false; });
    EXPECT_FALSE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(dataFileBytes(), OldBytes);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), OlderBytes);
    // The new file cannot take the old one's name (a folder with a file in it stands there).
    products.setBeforeReplaceHook([&] {
        return QFile::rename(dataFile(), folder.filePath(QStringLiteral("moved.dat")))
            && QDir(folder.path()).mkpath(QStringLiteral("twdata.dat/inside"));
    });
    const CatalogueWriteResult failed = products.WriteProds(dataFile());
    EXPECT_FALSE(failed.ok);
    EXPECT_TRUE(failed.detail.contains(QStringLiteral("could not replace the old one")))
        << failed.detail.toStdString();
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), OlderBytes);
    EXPECT_EQ(folder.readFile(QStringLiteral("moved.dat")), OldBytes);
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.bak.old")));
}

#if defined(Q_OS_UNIX)
// No failed save loses the older backup: where it cannot be put back it stays under its second
// name, and a second name a save cut short left is put back or kept aside.
TEST_F(SafeSaveTest, TheOlderBackupStaysWhereItCannotBePutBackAndALeftoverIsNeverRemoved)
{
    writeFilesWithAnOlderBackup();
    // Neither the new file nor the older backup can take their names back (folders with a file
    // in them stand there).
    products.setBeforeReplaceHook([&] {
        return QFile::rename(dataFile(), folder.filePath(QStringLiteral("moved.dat")))
            && QDir(folder.path()).mkpath(QStringLiteral("twdata.dat/inside"))
            && QFile::rename(folder.filePath(QStringLiteral("twdata.bak")),
                folder.filePath(QStringLiteral("moved.bak")))
            && QDir(folder.path()).mkpath(QStringLiteral("twdata.bak/inside"));
    });
    EXPECT_FALSE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak.old")), OlderBytes);

    // A fresh start of the folder: the catalogue, its backup a second name of it (a save cut
    // short before the new file took the catalogue's name), the older backup left beside.
    ASSERT_TRUE(QDir(folder.filePath(QStringLiteral("twdata.dat"))).removeRecursively());
    ASSERT_TRUE(QDir(folder.filePath(QStringLiteral("twdata.bak"))).removeRecursively());
    ASSERT_TRUE(QFile::remove(folder.filePath(QStringLiteral("moved.dat"))));
    ASSERT_TRUE(QFile::remove(folder.filePath(QStringLiteral("moved.bak"))));
    writeDataFile(OldBytes);
    ASSERT_EQ(::link(QFile::encodeName(dataFile()).constData(),
                  QFile::encodeName(folder.filePath(QStringLiteral("twdata.bak"))).constData()),
        0);
    // That save put back, its older backup is the backup again.
    products.setBeforeReplaceHook([] { return false; });
    EXPECT_FALSE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), OlderBytes);
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.bak.old")));

    // A leftover that is neither (a save cut short after the new file took the name) is kept
    // aside, where the help's data page sends the user.
    folder.writeFile(QStringLiteral("twdata.bak.old"), "an even older backup");
    products.setBeforeReplaceHook({});
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    const QStringList aside = folder.fileNames().filter(QStringLiteral("twdata-backup-"));
    ASSERT_EQ(aside.size(), 1);
    EXPECT_EQ(folder.readFile(aside.first()), QByteArray("an even older backup"));
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.bak.old")));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), OldBytes);
}
#endif

TEST_F(SafeSaveTest, BackupThatCannotBeReplacedStopsTheSave)
{
    writeDataFile(OldBytes);
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("twdata.bak")));
    fillCatalogue(3);
    const CatalogueWriteResult result = products.WriteProds(dataFile());
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(result.detail.contains(QStringLiteral("could not be kept as \"twdata.bak\"")))
        << result.detail.toStdString();
    EXPECT_EQ(dataFileBytes(), OldBytes);
    EXPECT_EQ(folder.fileNames(), QStringList { QStringLiteral("twdata.dat") });
}

TEST_F(SafeSaveTest, TableWithFewerThanFifteenFieldsIsNotSaved)
{
    writeDataFile(OldBytes);
    catalogue.redim(2, 7);
    catalogue.put(1, 1, Cell("A"));
    products.setCount(2);
    const CatalogueWriteResult result = products.WriteProds(dataFile());
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(result.detail.contains(QStringLiteral("error 9"))) << result.detail.toStdString();
    EXPECT_EQ(dataFileBytes(), OldBytes);
    EXPECT_EQ(folder.fileNames(), QStringList { QStringLiteral("twdata.dat") });
    EXPECT_EQ(products.Count(), 2);
}

TEST_F(SafeSaveTest, WriteCatalogueFileWritesExactlyTheBytes)
{
    const QByteArray bytes("\x00\x7f\xff\r\n", 5);
    const CatalogueWriteResult result = writeCatalogueFile(dataFile(), bytes);
    EXPECT_TRUE(result.ok);
    EXPECT_TRUE(result.detail.isEmpty());
    EXPECT_EQ(dataFileBytes(), bytes);
}

TEST_F(SafeSaveTest, CatalogueOfMoreThan32767RowsSaves)
{
    fillCatalogue(40000);
    const CatalogueWriteResult result = products.WriteProds(dataFile());
    ASSERT_TRUE(result.ok) << result.detail.toStdString();
    EXPECT_EQ(result.rowsWritten, 40000);
    EXPECT_EQ(products.Count(), 40000);
    EXPECT_EQ(dataFileBytes().count("\r\n"), 40000);
}

} // namespace
} // namespace tarnwick::test
