// The record beside the recovery file of the catalogue file its changes were made to: read back
// with its own recovery file only, compared with the catalogue file found at the next start,
// and gone with the recovery file.
#include "catalogue/recoveryfile.h"

#include "cataloguefixture.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace tarnwick::test {
namespace {

using RecoveryBaseTest = CatalogueFixture;

// The record of the catalogue file the changes were made to belongs to the recovery file it
// was written with: a recovery file written again without it (a run killed in between) leaves
// it unread.
TEST_F(RecoveryBaseTest, TheBaseOfTheChangesIsReadBackWithItsRecoveryFileOnly)
{
    folder.writeFile(QStringLiteral("twdata.dat"),
        "A-1\x7f"
        "Anchor\x7f\x7f\x7f\r\n");
    folder.writeFile(QStringLiteral("twdata-recovery.dat"), "changes");
    const std::optional<FileStamp> made = fileStamp(dataFile());
    ASSERT_TRUE(made.has_value());

    ASSERT_TRUE(writeRecoveryBase(dataFile(), RecoveryBase { made }));
    EXPECT_EQ(
        recoveryBasePath(dataFile()), folder.filePath(QStringLiteral("twdata-recovery-base.dat")));
    const std::optional<RecoveryBase> base = readRecoveryBase(dataFile());
    ASSERT_TRUE(base.has_value());
    ASSERT_TRUE(base->catalogue.has_value());
    EXPECT_EQ(base->catalogue->size, made->size);
    EXPECT_EQ(base->catalogue->modifiedNs, made->modifiedNs);
    EXPECT_EQ(base->catalogue->inode, made->inode);
    EXPECT_FALSE(base->differsFrom(fileStamp(dataFile())));
    // Other device and file numbers alone (a USB stick mounted again numbers its files anew)
    // are the same file; another time or size is not.
    FileStamp renumbered = *made;
    renumbered.device += 1;
    renumbered.inode += 1;
    EXPECT_FALSE(base->differsFrom(renumbered));
    FileStamp retimed = *made;
    retimed.modifiedNs += 1000000000;
    EXPECT_TRUE(base->differsFrom(retimed));
    FileStamp resized = *made;
    resized.size += 1;
    EXPECT_TRUE(base->differsFrom(resized));

    // Another file in its place, with an earlier time (copied in by a program that keeps the
    // other computer's times).
    const QDateTime earlier = QFileInfo(dataFile()).lastModified().addSecs(-600);
    folder.writeFile(QStringLiteral("twdata.new"),
        "A-1\x7f"
        "Anchor\x7f\x7f\x7f\r\n");
    ASSERT_TRUE(QFile::remove(dataFile()));
    ASSERT_TRUE(QFile::rename(folder.filePath(QStringLiteral("twdata.new")), dataFile()));
    {
        QFile replaced(dataFile());
        ASSERT_TRUE(replaced.open(QIODevice::ReadWrite));
        ASSERT_TRUE(replaced.setFileTime(earlier, QFileDevice::FileModificationTime));
    }
    EXPECT_TRUE(base->differsFrom(fileStamp(dataFile())));
    EXPECT_TRUE(base->differsFrom(std::nullopt)) << "the catalogue file gone";
    EXPECT_TRUE(RecoveryBase {}.differsFrom(fileStamp(dataFile()))) << "none there before";
    EXPECT_FALSE(RecoveryBase {}.differsFrom(std::nullopt));

    folder.writeFile(QStringLiteral("twdata-recovery.dat"), "changes, written again");
    EXPECT_FALSE(readRecoveryBase(dataFile()).has_value());

    ASSERT_TRUE(writeRecoveryBase(dataFile(), RecoveryBase {}));
    const std::optional<RecoveryBase> none = readRecoveryBase(dataFile());
    ASSERT_TRUE(none.has_value());
    EXPECT_FALSE(none->catalogue.has_value());

    ASSERT_TRUE(removeRecoveryFile(dataFile()));
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata-recovery.dat")));
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata-recovery-base.dat")));
}

TEST_F(RecoveryBaseTest, AKeptRecoveryFileLeavesNoBaseBehind)
{
    folder.writeFile(QStringLiteral("twdata-recovery.dat"), "changes");
    ASSERT_TRUE(writeRecoveryBase(dataFile(), RecoveryBase {}));
    EXPECT_FALSE(keepRecoveryFile(dataFile(), QDateTime::currentDateTime()).isEmpty());
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata-recovery-base.dat")));
}

// A recovery file an earlier version wrote has no check line and no record beside it: it is
// read as the catalogue it holds, and said to be unchecked. With the record beside it, the
// same file is damaged; an empty one is nothing to restore.
TEST_F(RecoveryBaseTest, ChangesLeftByAnEarlierVersionAreReadUnchecked)
{
    folder.writeFile(QStringLiteral("twdata-recovery.dat"),
        "A-1\x7f\x7f\x7f"
        "Anchor\x7f\x7f\x7f\r\n");
    Table table;
    qint32 count = 0;
    bool unchecked = false;
    EXPECT_EQ(readChangesLeft(dataFile(), table, count, locale, unchecked).status,
        CatalogueReadResult::Status::Ok);
    EXPECT_TRUE(unchecked);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(table.get(1, 2).asText(), QStringLiteral("Anchor"));

    ASSERT_TRUE(writeRecoveryBase(dataFile(), RecoveryBase {}));
    EXPECT_EQ(readChangesLeft(dataFile(), table, count, locale, unchecked).status,
        CatalogueReadResult::Status::Failed);
    EXPECT_FALSE(unchecked);

    ASSERT_TRUE(removeRecoveryFile(dataFile()));
    folder.writeFile(QStringLiteral("twdata-recovery.dat"), "\r\n");
    EXPECT_EQ(readChangesLeft(dataFile(), table, count, locale, unchecked).status,
        CatalogueReadResult::Status::Failed);
    EXPECT_FALSE(unchecked);
}

} // namespace
} // namespace tarnwick::test
