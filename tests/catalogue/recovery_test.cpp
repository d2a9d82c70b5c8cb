// The recovery file keeps the changes not yet saved: the table notices every change, the
// copy is written whole beside the catalogue, compared with the saved products and kept under
// a name of its own when the user does not restore it.
#include "catalogue/cataloguerecovery.h"
#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/recoveryfile.h"

#include "cataloguefixture.h"
#include "support/diskfaults.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

namespace tarnwick::test {
namespace {

TEST(TableGenerationTest, ChangesOnlyWhenTheContentsChange)
{
    const QLocale locale(QLocale::English, QLocale::UnitedStates);
    Table table(3, 2);
    table.put(1, 1, QStringLiteral("B"));
    table.put(2, 1, QStringLiteral("A"));
    table.put(3, 1, QStringLiteral("C"));
    quint64 before = table.generation();

    table.put(1, 1, QStringLiteral("B"));
    EXPECT_EQ(table.generation(), before) << "the same value written back is no change";
    table.put(1, 2, Cell(1.5));
    EXPECT_NE(table.generation(), before);

    before = table.generation();
    table.sortRows(1, 3, 1, Table::SortKind::Text, locale);
    EXPECT_NE(table.generation(), before) << "a sort that moves rows";
    before = table.generation();
    table.sortRows(1, 3, 1, Table::SortKind::Text, locale);
    EXPECT_EQ(table.generation(), before) << "a sort that moves nothing";

    const Table copy = table;
    EXPECT_EQ(copy.generation(), table.generation()) << "a copy holds the same contents";

    before = table.generation();
    table.insertRows(2);
    EXPECT_NE(table.generation(), before);
    before = table.generation();
    table.clearRow(2); // already empty
    EXPECT_EQ(table.generation(), before);
    table.deleteRows(2);
    EXPECT_NE(table.generation(), before);
    before = table.generation();
    table.redimPreserve(4, 2);
    EXPECT_NE(table.generation(), before);
}

class RecoveryFileTest : public CatalogueFixture
{
protected:
    void fill(Table &table, const QList<QStringList> &rows)
    {
        table.redim(int(rows.size()), 15);
        for (int row = 1; row <= rows.size(); ++row) {
            const QStringList &fields = rows[row - 1];
            for (int field = 1; field <= fields.size(); ++field)
                table.put(row, field, fields[field - 1]);
        }
    }
};

TEST_F(RecoveryFileTest, LivesBesideTheCatalogueFile)
{
    EXPECT_EQ(recoveryFilePath(dataFile()), folder.filePath(QStringLiteral("twdata-recovery.dat")));
}

TEST_F(RecoveryFileTest, CopyHoldsTheSameBytesAsASaveAndTouchesNoBackup)
{
    writeDataFile(productLine({ "OLD-1", "Old" }));
    fill(catalogue, { { "P-1", "Pump", "12.5" }, { "P-2", "Valve\r\nbrass", "3" } });
    const QString copy = folder.filePath(QStringLiteral("copy.dat"));

    const CatalogueWriteResult written = writeCatalogueCopy(copy, catalogue, 2, locale);

    ASSERT_TRUE(written.ok) << written.detail.toStdString();
    EXPECT_EQ(written.rowsWritten, 2);
    EXPECT_EQ(folder.fileNames(), QStringList({ "copy.dat", "twdata.dat" }));
    ASSERT_TRUE(products.WriteProds(dataFile()).ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("copy.dat")), dataFileBytes());
}

TEST_F(RecoveryFileTest, TheRecoveryFileKeepsProductsTypedWithoutAPartNumber)
{
    fill(catalogue, { { "P-1", "Pump" }, { "", "Nameless", "4" }, { "", "" }, { "P-2", "Valve" } });
    const QString copy = folder.filePath(QStringLiteral("copy.dat"));
    ASSERT_TRUE(writeCatalogueCopy(copy, catalogue, 4, locale).ok);
    EXPECT_FALSE(folder.readFile(QStringLiteral("copy.dat")).contains("Nameless"))
        << "a copy as the catalogue file: without it";
    const CatalogueWriteResult kept =
        writeCatalogueCopy(copy, catalogue, 4, locale, RowsWithoutPartNumber::KeptWithContent);
    ASSERT_TRUE(kept.ok);
    EXPECT_EQ(kept.rowsWritten, 3) << "the empty row is no product";
    Table back;
    qint32 count = 0;
    ASSERT_EQ(readCatalogueCopy(copy, back, count, locale).status, CatalogueReadResult::Status::Ok);
    ASSERT_EQ(count, 3);
    EXPECT_EQ(back.get(2, ProductRecord::ProductName), Cell("Nameless"));
    EXPECT_TRUE(back.get(2, ProductRecord::PartNumber).isBlank());
}

TEST_F(RecoveryFileTest, ACopyThatCannotBeWrittenLeavesTheOldFileAndSaysWhy)
{
    const QString file = folder.filePath(QStringLiteral("plain-file"));
    folder.writeFile(QStringLiteral("plain-file"), "x");
    fill(catalogue, { { "P-1", "Pump" } });

    const CatalogueWriteResult written =
        writeCatalogueCopy(file + QStringLiteral("/copy.dat"), catalogue, 1, locale);

    EXPECT_FALSE(written.ok);
    EXPECT_EQ(written.detail,
        QStringLiteral("no new file can be created in the folder \"%1\": a file stands where "
                       "the folder should be")
            .arg(QDir::toNativeSeparators(file)));
    EXPECT_EQ(folder.readFile(QStringLiteral("plain-file")), "x");
}

TEST_F(RecoveryFileTest, ReadsACopyBackIntoATableOfItsSize)
{
    folder.writeFile(QStringLiteral("copy.dat"),
        productLine({ "P-1", "Pump", "12.5" }) + productLine({ "P-2", "Valve" }));
    Table table(1000, 15);
    qint32 count = -1;

    const CatalogueReadResult read =
        readCatalogueCopy(folder.filePath(QStringLiteral("copy.dat")), table, count, locale);

    EXPECT_EQ(read.status, CatalogueReadResult::Status::Ok);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(table.rowCount(), 2);
    EXPECT_EQ(table.get(2, 2).asText(), QStringLiteral("Valve"));
    EXPECT_FLOAT_EQ(float(table.get(1, 3).asNumber()), 12.5f);
}

TEST_F(RecoveryFileTest, CountsChangedAddedAndDeletedProductsByPartNumber)
{
    Table saved;
    fill(saved, { { "A", "Alpha", "1" }, { "B", "Beta", "2" }, { "C", "Gamma", "3" } });
    Table recovered;
    // B's name changed, C deleted, D and E added, the order differs.
    fill(recovered,
        { { "E", "Epsilon" }, { "B", "Beta two", "2" }, { "A", "Alpha", "1" }, { "D", "Delta" } });

    const CatalogueChanges changes = compareCatalogues(saved, 3, recovered, 4);

    EXPECT_EQ(changes.changed, 1);
    EXPECT_EQ(changes.added, 2);
    EXPECT_EQ(changes.deleted, 1);
    const CatalogueChanges none = compareCatalogues(saved, 3, saved, 3);
    EXPECT_EQ(none.changed + none.added + none.deleted, 0);
}

TEST_F(RecoveryFileTest, APartNumberChangedOrClearedIsAChangedProduct)
{
    Table saved;
    fill(saved, { { "A", "Alpha", "1" }, { "B", "Beta", "2" }, { "C", "Gamma", "3" } });
    Table recovered;
    // B's part number cleared, C's changed, A as it was.
    fill(recovered, { { "A", "Alpha", "1" }, { "", "Beta", "2" }, { "C-2", "Gamma", "3" } });
    const CatalogueChanges changes = compareCatalogues(saved, 3, recovered, 3);
    EXPECT_EQ(changes.changed, 2);
    EXPECT_EQ(changes.added, 0);
    EXPECT_EQ(changes.deleted, 0);
    // A new part number with another name too is another product.
    Table other;
    fill(other, { { "A", "Alpha", "1" }, { "B", "Beta", "2" }, { "C-2", "Gamma two", "3" } });
    const CatalogueChanges replaced = compareCatalogues(saved, 3, other, 3);
    EXPECT_EQ(replaced.changed, 0);
    EXPECT_EQ(replaced.added, 1);
    EXPECT_EQ(replaced.deleted, 1);
}

// The recovery file ends with a line that says how long it is: a file emptied, cut short or
// overwritten is damaged, not a catalogue to restore (restoring it would delete products).
TEST_F(RecoveryFileTest, AFileNotEndedAsTarnwickEndsItIsDamagedNotACatalogue)
{
    Table left(2, ProductRecord::FieldCount);
    left.put(1, ProductRecord::PartNumber, Cell("A-1"));
    left.put(2, ProductRecord::PartNumber, Cell("B-2"));
    left.put(2, ProductRecord::Notes, Cell("line\r\nbreak"));
    const QString path = folder.filePath(QStringLiteral("twdata-recovery.dat"));
    ASSERT_TRUE(writeRecoveryFile(path, left, 2, locale).ok);
    const QByteArray whole = folder.readFile(QStringLiteral("twdata-recovery.dat"));
    const qsizetype checkAt = whole.indexOf("\x1aTarnwick recovery file: ");
    ASSERT_GT(checkAt, 0);
    EXPECT_TRUE(whole.endsWith(" bytes\r\n"));
    EXPECT_EQ(whole.mid(checkAt),
        "\x1aTarnwick recovery file: " + QByteArray::number(checkAt) + " bytes\r\n");

    Table back;
    qint32 count = 0;
    ASSERT_EQ(readRecoveryFile(path, back, count, locale).status, CatalogueReadResult::Status::Ok);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(back.get(2, ProductRecord::Notes), Cell("line\r\nbreak"));
    // Read as a catalogue (renamed by hand), the check line is no product.
    count = 0;
    ASSERT_EQ(readCatalogueCopy(path, back, count, locale).status, CatalogueReadResult::Status::Ok);
    EXPECT_EQ(count, 2);

    const QByteArray firstProduct = whole.left(whole.indexOf("\r\n") + 2);
    for (const QByteArray &damaged : { QByteArray(), whole.left(checkAt), firstProduct,
             whole.left(whole.size() - 3), QByteArray("\x93\x01garbage\x7f\x7f\x7f\r\n"),
             firstProduct + "\x1aTarnwick recovery file: " + QByteArray::number(checkAt)
                 + " bytes\r\n" }) {
        folder.writeFile(QStringLiteral("twdata-recovery.dat"), damaged);
        Table table;
        qint32 read = -1;
        const CatalogueReadResult result = readRecoveryFile(path, table, read, locale);
        EXPECT_EQ(result.status, CatalogueReadResult::Status::Failed) << damaged.size();
        EXPECT_EQ(read, 0);
        EXPECT_EQ(table.rowCount(), 0);
    }
}

TEST_F(RecoveryFileTest, IsKeptUnderANameOfItsOwnThatNoLaterRunUses)
{
    const QDateTime when(QDate(2026, 11, 25), QTime(14, 5, 12));
    folder.writeFile(QStringLiteral("twdata-recovery.dat"), "first");

    const QString kept = keepRecoveryFile(dataFile(), when);

    EXPECT_EQ(kept,
        QDir::toNativeSeparators(
            folder.filePath(QStringLiteral("twdata-recovered-20261125-140512.dat"))));
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata-recovery.dat")));
    folder.writeFile(QStringLiteral("twdata-recovery.dat"), "second");
    EXPECT_TRUE(keepRecoveryFile(dataFile(), when).endsWith(QStringLiteral("-140512-2.dat")));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata-recovered-20261125-140512.dat")), "first");
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata-recovered-20261125-140512-2.dat")), "second");
    EXPECT_TRUE(keepRecoveryFile(dataFile(), when).isEmpty()) << "nothing left to keep";
}

class CatalogueRecoveryTest : public ::testing::Test
{
protected:
    CatalogueRecoveryTest()
    {
        module.DataFile = folder.filePath(QStringLiteral("twdata.dat"));
        Table &table = module.Catalogue();
        table.redim(2, 15);
        table.put(1, 1, QStringLiteral("A-1"));
        table.put(1, 2, QStringLiteral("Anchor"));
        table.put(2, 1, QStringLiteral("B-2"));
        table.put(2, 2, QStringLiteral("Bolt"));
        module.AllProducts().setCount(2);
        recovery.setIntervals(5, 0);
    }

    /// Lets the watch look at the catalogue a few times, then waits for a write it started.
    void letItLook()
    {
        QSignalSpy checked(&recovery, &CatalogueRecovery::checked);
        EXPECT_TRUE(QTest::qWaitFor([&] { return checked.size() >= 3; }, 5000));
        recovery.stop();
        recovery.start();
    }

    QString recoveryPath() const { return folder.filePath(QStringLiteral("twdata-recovery.dat")); }
    /// The products the recovery file holds, as read back.
    Table readRecovery()
    {
        Table table;
        qint32 count = 0;
        EXPECT_EQ(readRecoveryFile(recoveryPath(), table, count, locale).status,
            CatalogueReadResult::Status::Ok);
        return table;
    }

    TempAppFolder folder;
    FakePrompts prompts;
    AppEnvironment environment = folder.environment();
    QLocale locale { QLocale::English, QLocale::UnitedStates };
    Module1 module { prompts, environment, locale };
    CatalogueRecovery recovery { module };
};

TEST_F(CatalogueRecoveryTest, WritesAChangeToTheRecoveryFileAndMarksItUnsaved)
{
    QSignalSpy written(&recovery, &CatalogueRecovery::written);
    QSignalSpy modified(&recovery, &CatalogueRecovery::modifiedChanged);
    recovery.start();
    EXPECT_FALSE(recovery.isModified());

    module.Catalogue().put(2, 2, QStringLiteral("Bolt, zinc"));

    ASSERT_TRUE(written.wait(5000));
    EXPECT_TRUE(recovery.isModified());
    ASSERT_GE(modified.size(), 1);
    EXPECT_TRUE(modified.first().first().toBool());
    EXPECT_EQ(readRecovery().get(2, 2).asText(), QStringLiteral("Bolt, zinc"));
    EXPECT_FALSE(QFileInfo::exists(module.DataFile)) << "the catalogue file waits for a save";
}

TEST_F(CatalogueRecoveryTest, NothingIsWrittenWhileNothingChanged)
{
    QSignalSpy written(&recovery, &CatalogueRecovery::written);
    recovery.start();
    letItLook();
    EXPECT_FALSE(QFileInfo::exists(recoveryPath()));
    module.Catalogue().put(1, 2, QStringLiteral("Anchor")); // the same text again
    letItLook();
    EXPECT_TRUE(written.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(recoveryPath()));
    EXPECT_FALSE(recovery.isModified());
}

TEST_F(CatalogueRecoveryTest, HoldsThePendingEditOfTheRowBeingEdited)
{
    QSignalSpy written(&recovery, &CatalogueRecovery::written);
    QString pendingName = QStringLiteral("Anchor");
    recovery.setPendingRow([&](Table &row) {
        for (int field = 1; field <= 15; ++field)
            row.put(1, field, module.Catalogue().get(1, field));
        row.put(1, 2, pendingName);
        return 1;
    });
    recovery.start();
    letItLook();
    EXPECT_TRUE(written.isEmpty()) << "a box showing what the row holds is no change";

    pendingName = QStringLiteral("Anchor, heavy");

    ASSERT_TRUE(written.wait(5000));
    EXPECT_TRUE(recovery.isModified());
    EXPECT_EQ(readRecovery().get(1, 2).asText(), QStringLiteral("Anchor, heavy"));
    EXPECT_EQ(module.Catalogue().get(1, 2).asText(), QStringLiteral("Anchor"));
}

TEST_F(CatalogueRecoveryTest, ASaveRemovesTheFileAndClearsTheMark)
{
    QSignalSpy written(&recovery, &CatalogueRecovery::written);
    recovery.start();
    module.Catalogue().put(1, 2, QStringLiteral("Anchor, steel"));
    ASSERT_TRUE(written.wait(5000));
    ASSERT_TRUE(QFileInfo::exists(recoveryPath()));

    recovery.saved();

    EXPECT_FALSE(QFileInfo::exists(recoveryPath()));
    EXPECT_FALSE(recovery.isModified());
    written.clear();
    QSignalSpy checked(&recovery, &CatalogueRecovery::checked);
    EXPECT_TRUE(QTest::qWaitFor([&] { return checked.size() >= 3; }, 5000));
    recovery.stop();
    EXPECT_TRUE(written.isEmpty()) << "nothing new to keep after the save";
}

// The recovery file says which catalogue file its changes were made to: the one read at the
// start, or none when there was none.
TEST_F(CatalogueRecoveryTest, TheRecoveryFileNamesTheCatalogueFileItsChangesWereMadeTo)
{
    QSignalSpy written(&recovery, &CatalogueRecovery::written);
    recovery.start();
    module.Catalogue().put(1, 2, QStringLiteral("Anchor, steel"));
    ASSERT_TRUE(written.wait(5000));
    std::optional<RecoveryBase> base = readRecoveryBase(module.DataFile);
    ASSERT_TRUE(base.has_value());
    EXPECT_FALSE(base->catalogue.has_value()) << "no catalogue file was read";

    ASSERT_TRUE(module.AllProducts().WriteProds(module.DataFile).ok);
    recovery.saved();
    EXPECT_FALSE(QFileInfo::exists(recoveryPath()));
    EXPECT_FALSE(QFileInfo::exists(recoveryBasePath(module.DataFile)));
    module.Catalogue().put(1, 2, QStringLiteral("Anchor, brass"));
    ASSERT_TRUE(recovery.writeNow());
    base = readRecoveryBase(module.DataFile);
    ASSERT_TRUE(base.has_value());
    ASSERT_TRUE(base->catalogue.has_value());
    EXPECT_FALSE(base->differsFrom(fileStamp(module.DataFile))) << "the file as saved";
    recovery.stop();
}

TEST_F(CatalogueRecoveryTest, ARecoveredCatalogueCountsAsUnsavedAndIsKeptUntilSaved)
{
    recovery.start(true);
    EXPECT_TRUE(recovery.isModified());
    ASSERT_TRUE(recovery.writeNow());
    EXPECT_TRUE(QFileInfo::exists(recoveryPath()));
    EXPECT_EQ(readRecovery().get(2, 1).asText(), QStringLiteral("B-2"));
}

// Restored changes that cannot be written again in this run's form (a full disk, a folder
// that takes no new file) are still in the file the last run left: a close loses nothing.
TEST_F(CatalogueRecoveryTest, RestoredChangesStayKeptWhenTheirFileCannotBeWrittenAgain)
{
    const QString stick = folder.filePath(QStringLiteral("stick"));
    ASSERT_TRUE(QDir().mkpath(stick));
    module.DataFile = QDir(stick).filePath(QStringLiteral("twdata.dat"));
    const QString left = QDir(stick).filePath(QStringLiteral("twdata-recovery.dat"));
    ASSERT_TRUE(writeRecoveryFile(left, module.Catalogue(), 2, locale).ok);
    const QByteArray bytes = [&] {
        QFile file(left);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    recovery.setIntervals(60000, 60000);
    {
        const UnwritableFolder full(stick, folder.path());
        ASSERT_TRUE(full.blocksNewFiles());
        recovery.start(true);
        EXPECT_TRUE(recovery.writeNow()) << "the file the last run left holds these changes";
        EXPECT_FALSE(recovery.lastError().isEmpty());
        // A change of this run is not in it.
        module.Catalogue().put(1, 2, QStringLiteral("Anchor, new"));
        EXPECT_FALSE(recovery.writeNow());
        recovery.stop();
    }
    QFile file(left);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), bytes);
}

TEST_F(CatalogueRecoveryTest, WriteNowTakesTheLatestChangeAtOnce)
{
    recovery.setIntervals(60000, 60000);
    recovery.start();
    module.Catalogue().put(1, 2, QStringLiteral("Anchor, last"));

    ASSERT_TRUE(recovery.writeNow());

    EXPECT_EQ(readRecovery().get(1, 2).asText(), QStringLiteral("Anchor, last"));
}

TEST_F(CatalogueRecoveryTest, TheCopyIsAsPrivateAsTheCatalogue)
{
    folder.writeFile(QStringLiteral("twdata.dat"), QByteArray());
    const QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    ASSERT_TRUE(QFile::setPermissions(module.DataFile, ownerOnly));
    recovery.setIntervals(60000, 60000);
    recovery.start();
    module.Catalogue().put(1, 2, QStringLiteral("Anchor, private"));
    ASSERT_TRUE(recovery.writeNow());
    EXPECT_EQ(QFileInfo(recoveryPath()).permissions(), QFileInfo(module.DataFile).permissions());
    EXPECT_FALSE(QFileInfo(recoveryPath()).permissions() & QFileDevice::ReadOther);
}

TEST_F(CatalogueRecoveryTest, AFolderThatTakesNoFileIsReportedOnce)
{
    module.DataFile = folder.filePath(QStringLiteral("missing-folder/twdata.dat"));
    QSignalSpy failed(&recovery, &CatalogueRecovery::writeFailed);
    recovery.start();
    module.Catalogue().put(1, 2, QStringLiteral("Anchor, lost?"));

    ASSERT_TRUE(failed.wait(5000));
    EXPECT_FALSE(recovery.lastError().isEmpty());
    EXPECT_TRUE(recovery.isModified());
    QSignalSpy checked(&recovery, &CatalogueRecovery::checked);
    EXPECT_TRUE(QTest::qWaitFor([&] { return checked.size() >= 5; }, 5000));
    recovery.stop();
    EXPECT_EQ(failed.size(), 1) << "the same failure is not reported again and again";
}

TEST_F(CatalogueRecoveryTest, AWriteThatWorksAgainAfterAFailureIsReported)
{
    const QString missing = folder.filePath(QStringLiteral("missing-folder"));
    module.DataFile = missing + QStringLiteral("/twdata.dat");
    QSignalSpy failed(&recovery, &CatalogueRecovery::writeFailed);
    QSignalSpy recovered(&recovery, &CatalogueRecovery::writeRecovered);
    recovery.start();
    module.Catalogue().put(1, 2, QStringLiteral("Anchor, kept at last"));
    ASSERT_TRUE(failed.wait(5000));
    EXPECT_TRUE(recovered.isEmpty());

    ASSERT_TRUE(QDir().mkpath(missing));
    ASSERT_TRUE(recovered.wait(5000));
    EXPECT_TRUE(recovery.lastError().isEmpty());
    QFile written(missing + QStringLiteral("/twdata-recovery.dat"));
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_TRUE(written.readAll().contains("Anchor, kept at last"));
    recovery.stop();
    EXPECT_EQ(recovered.size(), 1);
}

TEST_F(CatalogueRecoveryTest, ChangesTakenBackCountAsSavedAndTheFileGoes)
{
    // The history of changes says whether the catalogue is at its saved state.
    bool atSaved = true;
    int markedSaved = 0;
    recovery.setSavedState({ [&] { return atSaved; }, [&] { ++markedSaved; } });
    QSignalSpy written(&recovery, &CatalogueRecovery::written);
    recovery.start();
    module.Catalogue().put(1, 2, QStringLiteral("Anchor, steel"));
    atSaved = false;
    ASSERT_TRUE(written.wait(5000));
    EXPECT_TRUE(recovery.isModified());
    ASSERT_TRUE(QFileInfo::exists(recoveryPath()));

    module.Catalogue().put(1, 2, QStringLiteral("Anchor")); // the change undone
    atSaved = true;
    recovery.checkNow();
    EXPECT_FALSE(recovery.isModified());
    EXPECT_FALSE(QFileInfo::exists(recoveryPath())) << "nothing unsaved is left to keep";
    ASSERT_TRUE(recovery.writeNow());
    EXPECT_FALSE(QFileInfo::exists(recoveryPath()));

    atSaved = false; // an undo after the save
    recovery.checkNow();
    EXPECT_TRUE(recovery.isModified());
    recovery.saved();
    EXPECT_EQ(markedSaved, 1) << "the history learns of the save";
    EXPECT_FALSE(recovery.isModified());
}

TEST_F(CatalogueRecoveryTest, APendingEditCountsAsUnsavedEvenAtTheSavedState)
{
    recovery.setSavedState({ [] { return true; }, [] {} });
    recovery.setPendingRow([&](Table &row) {
        for (int field = 1; field <= 15; ++field)
            row.put(1, field, module.Catalogue().get(1, field));
        row.put(1, 2, QStringLiteral("Anchor, typed"));
        return 1;
    });
    recovery.start();
    recovery.checkNow();
    EXPECT_TRUE(recovery.isModified());
}

} // namespace
} // namespace tarnwick::test
