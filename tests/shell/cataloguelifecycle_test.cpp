#include "shellfixture.h"

#include "catalogue/recoveryfile.h"
#include "shell/cataloguelifecycle.h"
#include "support/diskfaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class CatalogueLifecycleTest : public ::testing::Test
{
protected:
    CatalogueLifecycleTest()
        : environment(folder.environment()),
          module(prompts, environment, QLocale(QLocale::English, QLocale::UnitedStates)),
          lifecycle(module, prompts)
    {
        module.DataFile = folder.filePath(QStringLiteral("twdata.dat"));
    }

    /// Loads the file and shows what the load found, as the start does after the password.
    CatalogueReadResult loadAndReport()
    {
        const CatalogueReadResult result = lifecycle.load();
        lifecycle.showLoadMessages();
        return result;
    }

    /// How the backup question begins for a catalogue file in state ("is empty", …).
    QString backupQuestionStart(const QString &state) const
    {
        return QStringLiteral("The catalogue file \"%1\" %2. Its backup \"%3\", saved ")
            .arg(QDir::toNativeSeparators(module.DataFile), state,
                QDir::toNativeSeparators(folder.filePath(QStringLiteral("twdata.bak"))));
    }
    /// A new product NEW-1 in a catalogue that has none, as the user would add it.
    void addFirstProduct()
    {
        module.Catalogue().redimPreserve(1, module.Catalogue().fieldCount());
        module.Catalogue().put(1, 1, Cell("NEW-1"));
        module.AllProducts().setCount(1);
    }

    TempAppFolder folder;
    FakePrompts prompts;
    AppEnvironment environment;
    Module1 module;
    CatalogueLifecycle lifecycle;
};

TEST_F(CatalogueLifecycleTest, LoadCutsTheTableToTheCountAndSortsByPartNumber)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    const CatalogueReadResult result = loadAndReport();
    EXPECT_EQ(result.status, CatalogueReadResult::Status::Ok);
    EXPECT_EQ(module.Catalogue().rowCount(), 3);
    EXPECT_EQ(module.Catalogue().fieldCount(), 15);
    EXPECT_EQ(module.Catalogue().get(1, 1), Cell("A-100"));
    EXPECT_EQ(module.Catalogue().get(1, 3), Cell(12.5f));
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(CatalogueLifecycleTest, AMissingFileIsTheQuietFirstRun)
{
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Missing);
    EXPECT_EQ(module.Catalogue().rowCount(), 0);
    EXPECT_TRUE(prompts.shown().empty());
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_TRUE(folder.exists(QStringLiteral("twdata.dat")));
}

TEST_F(CatalogueLifecycleTest, AFileThatEndsInsideAProductIsKeptAtOnceAndTheMessageNamesTheCopy)
{
    const QByteArray broken = catalogueLine({ "P1", "One" }) + "P2\x7f\x7f\x7fno end";
    folder.writeFile(QStringLiteral("twdata.dat"), broken);
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Failed);
    const QStringList copies = folder.fileNames().filter(QStringLiteral("twdata-unread-"));
    ASSERT_EQ(copies.size(), 1) << "kept before anything is saved";
    EXPECT_EQ(folder.readFile(copies.first()), broken);
    ASSERT_EQ(prompts.shown().size(), 1u);
    const QString text = prompts.shown()[0].text;
    EXPECT_TRUE(text.contains(QStringLiteral("could not be read completely")));
    EXPECT_TRUE(text.contains(QStringLiteral("(error 62)")));
    EXPECT_TRUE(text.endsWith(QStringLiteral("The file itself has been kept as \"%1\".")
                                  .arg(QDir::toNativeSeparators(folder.filePath(copies.first())))))
        << text.toStdString();

    prompts.clear();
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_TRUE(prompts.shown().empty()) << "the save has nothing more to say";
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_EQ(folder.fileNames().filter(QStringLiteral("twdata-unread-")).size(), 1)
        << "the unread file is kept once";
}

// The copy is made when the start says what it found, after the password: a start refused
// there writes nothing.
TEST_F(CatalogueLifecycleTest, TheUnreadFileIsKeptWhenTheStartSaysSoNotBefore)
{
    const QByteArray broken = catalogueLine({ "P1", "One" }) + "P2\x7f\x7f\x7fno end";
    folder.writeFile(QStringLiteral("twdata.dat"), broken);
    EXPECT_EQ(lifecycle.load().status, CatalogueReadResult::Status::Failed);
    EXPECT_TRUE(folder.fileNames().filter(QStringLiteral("twdata-unread-")).isEmpty());
    EXPECT_TRUE(prompts.shown().empty());
    lifecycle.showLoadMessages();
    EXPECT_EQ(folder.fileNames().filter(QStringLiteral("twdata-unread-")).size(), 1);
    ASSERT_EQ(prompts.shown().size(), 1u);
    lifecycle.showLoadMessages();
    EXPECT_EQ(prompts.shown().size(), 1u) << "said once";
    EXPECT_EQ(folder.fileNames().filter(QStringLiteral("twdata-unread-")).size(), 1);
}

// A price with letters in it before the place the file breaks off: the products are not
// loaded, so there is none to correct and only the file's own message is shown.
TEST_F(CatalogueLifecycleTest, AFileThatCouldNotBeReadListsNoNumbersToCorrect)
{
    const QByteArray broken = catalogueLine({ "P1", "One", "16.4x" }) + "P2\x7f\x7f\x7fno end";
    folder.writeFile(QStringLiteral("twdata.dat"), broken);
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Failed);
    ASSERT_EQ(prompts.shown().size(), 1u);
    EXPECT_TRUE(prompts.shown()[0].text.contains(QStringLiteral("(error 62)")));
    EXPECT_FALSE(prompts.shown()[0].text.contains(QStringLiteral("16.4x")));

    // Read whole, the same price is listed for correcting.
    folder.writeFile(QStringLiteral("twdata.dat"), catalogueLine({ "P1", "One", "16.4x" }));
    prompts.clear();
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Ok);
    ASSERT_EQ(prompts.shown().size(), 1u);
    EXPECT_TRUE(prompts.shown()[0].text.contains(QStringLiteral("16.4x")));
}

TEST_F(CatalogueLifecycleTest, AFailedStartOffersTheLastGoodBackup)
{
    folder.writeFile(QStringLiteral("twdata.bak"), sampleCatalogue());
    folder.writeFile(QStringLiteral("twdata.dat"), QByteArray(400, '\0'));
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Failed);
    ASSERT_EQ(prompts.shown().size(), 1U) << "the message that the file could not be read";
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(lifecycle.offerRecovery());
    ASSERT_EQ(prompts.shown().size(), 2U);
    EXPECT_TRUE(prompts.shown()[1].text.startsWith(
        backupQuestionStart(QStringLiteral("could not be read"))))
        << prompts.shown()[1].text.toStdString();
    EXPECT_EQ(prompts.shown()[1].style, MsgStyle::YesNo | MsgStyle::Question);
    EXPECT_EQ(module.AllProducts().Count(), 3);
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).startsWith("A-100"));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), sampleCatalogue());
    EXPECT_EQ(folder.fileNames().filter(QStringLiteral("twdata-unread-")).size(), 1);
}

TEST_F(CatalogueLifecycleTest, AFolderInTheCatalogueFilesPlaceIsOfferedNoBackupNoSaveCouldKeep)
{
    folder.writeFile(QStringLiteral("twdata.bak"), sampleCatalogue());
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("twdata.dat")));
    loadAndReport();
    prompts.clear();
    EXPECT_FALSE(lifecycle.offerRecovery());
    EXPECT_TRUE(prompts.shown().empty());
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), sampleCatalogue());
}

TEST_F(CatalogueLifecycleTest, AFailedStartsBackupDeclinedIsKeptWhereNoSaveTakesIt)
{
    const QByteArray good = catalogueLine({ "G-1", "Good" });
    folder.writeFile(QStringLiteral("twdata.bak"), good);
    folder.writeFile(QStringLiteral("twdata.dat"), QByteArray("P1\x7f\x7f\x7fno end"));
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Failed);
    prompts.answerMessage(MsgResult::No);
    EXPECT_FALSE(lifecycle.offerRecovery());
    const QStringList kept = folder.fileNames().filter(QStringLiteral("twdata-backup-"));
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(QFileInfo(lifecycle.keptBackupFile()).fileName(), kept.first());
    // The products added in this run, saved again and again.
    addFirstProduct();
    EXPECT_TRUE(lifecycle.save().ok);
    module.Catalogue().put(1, 2, Cell("New"));
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_EQ(folder.readFile(kept.first()), good);
}

TEST_F(CatalogueLifecycleTest, TheBackupKeepsTheCatalogueAsItWasBeforeItsLastChange)
{
    folder.writeFile(QStringLiteral("twdata.bak"), catalogueLine({ "OLD" }));
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Ok);
    // Every close saves: an unchanged catalogue saved again leaves the backup as it is, so
    // a run without changes does not push the earlier catalogue out of it.
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), catalogueLine({ "OLD" }));
    const QByteArray beforeChange = folder.readFile(QStringLiteral("twdata.dat"));
    module.Catalogue().put(1, 2, Cell("Anchor, changed"));
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), beforeChange);
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), beforeChange);
}

TEST_F(CatalogueLifecycleTest, AMissingFileBesideItsBackupOffersToOpenTheBackup)
{
    folder.writeFile(QStringLiteral("twdata.bak"), sampleCatalogue());
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Missing);
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(lifecycle.offerRecovery());
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_EQ(prompts.shown()[0].title, QStringLiteral("Catalogue"));
    EXPECT_TRUE(prompts.shown()[0].text.startsWith(QStringLiteral("The catalogue file \"")))
        << prompts.shown()[0].text.toStdString();
    EXPECT_TRUE(prompts.shown()[0].text.contains(QStringLiteral("is missing")));
    EXPECT_TRUE(prompts.shown()[0].text.contains(QStringLiteral("holds 3 products")));
    EXPECT_EQ(module.Catalogue().rowCount(), 3);
    EXPECT_EQ(module.Catalogue().get(1, 1), Cell("A-100"));
    EXPECT_TRUE(lifecycle.recovery().isModified());
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).startsWith("A-100"));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), sampleCatalogue());
}

TEST_F(CatalogueLifecycleTest, ACatalogueNamedInOtherCapitalLettersIsOfferedRenamedAndRead)
{
    // Copied from a stick or an old tool as TWDATA.DAT.
    folder.writeFile(QStringLiteral("TWDATA.DAT"), sampleCatalogue());
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Missing);
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(lifecycle.offerRecovery());
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_EQ(prompts.shown()[0].text,
        QStringLiteral("The folder holds \"TWDATA.DAT\", but no \"twdata.dat\", the name "
                       "Tarnwick keeps its catalogue under (this computer tells capital letters "
                       "apart).\n\nRename \"TWDATA.DAT\" to \"twdata.dat\" and open it? No "
                       "starts with an empty catalogue and leaves the file as it is."));
    EXPECT_EQ(prompts.shown()[0].style, MsgStyle::YesNo | MsgStyle::Question);
    EXPECT_EQ(module.AllProducts().Count(), 3);
    EXPECT_EQ(module.Catalogue().get(1, 1), Cell("A-100"));
    EXPECT_FALSE(lifecycle.recovery().isModified()) << "read as at any start";
    EXPECT_EQ(folder.fileNames(), QStringList({ "twdata.dat" }));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());
}

TEST_F(CatalogueLifecycleTest, ACatalogueInOtherCapitalLettersDeclinedIsLeftAsItIs)
{
    folder.writeFile(QStringLiteral("Twdata.dat"), sampleCatalogue());
    loadAndReport();
    prompts.answerMessage(MsgResult::No);
    EXPECT_FALSE(lifecycle.offerRecovery());
    EXPECT_EQ(module.Catalogue().rowCount(), 0);
    EXPECT_EQ(folder.readFile(QStringLiteral("Twdata.dat")), sampleCatalogue());
    EXPECT_EQ(CatalogueLifecycle::nameInOtherCase(module.DataFile),
        folder.filePath(QStringLiteral("Twdata.dat")));
    // The close writes the empty catalogue; the next start asks again.
    EXPECT_TRUE(lifecycle.save().ok);
    ASSERT_EQ(folder.readFile(QStringLiteral("twdata.dat")), QByteArray());
    EXPECT_EQ(CatalogueLifecycle::nameInOtherCase(module.DataFile),
        folder.filePath(QStringLiteral("Twdata.dat")));
    EXPECT_TRUE(CatalogueLifecycle::otherCaseQuestion(
        module.DataFile, folder.filePath(QStringLiteral("Twdata.dat")))
                    .contains(QStringLiteral("\"twdata.dat\", the name Tarnwick keeps its "
                                             "catalogue under, is empty")));
    Module1 again(prompts, environment, QLocale(QLocale::English, QLocale::UnitedStates));
    again.DataFile = module.DataFile;
    CatalogueLifecycle next(again, prompts);
    next.load();
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(next.offerRecovery());
    EXPECT_EQ(again.AllProducts().Count(), 3);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());
    EXPECT_FALSE(folder.exists(QStringLiteral("Twdata.dat")));
}

TEST_F(CatalogueLifecycleTest, ABackupDeclinedIsKeptUnderANameOfItsOwnThatNoSaveTakes)
{
    folder.writeFile(QStringLiteral("twdata.bak"), sampleCatalogue());
    loadAndReport();
    prompts.answerMessage(MsgResult::No);
    EXPECT_FALSE(lifecycle.offerRecovery());
    EXPECT_EQ(module.Catalogue().rowCount(), 0);
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_TRUE(prompts.shown()[0].text.endsWith(
        QStringLiteral("No starts with an empty catalogue and keeps the backup beside it under a "
                       "name of its own.")))
        << prompts.shown()[0].text.toStdString();
    const QStringList kept = folder.fileNames().filter(QStringLiteral("twdata-backup-"));
    ASSERT_EQ(kept.size(), 1);
    EXPECT_TRUE(kept.first().endsWith(QStringLiteral(".dat")));
    EXPECT_EQ(folder.readFile(kept.first()), sampleCatalogue());
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.bak")));

    // A new catalogue saved again and again: the products declined stay where they are.
    addFirstProduct();
    EXPECT_TRUE(lifecycle.save().ok);
    module.Catalogue().put(1, 2, Cell("New product"));
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_EQ(folder.readFile(kept.first()), sampleCatalogue());

    // And the next start asks nothing.
    Module1 again(prompts, environment, QLocale(QLocale::English, QLocale::UnitedStates));
    again.DataFile = module.DataFile;
    CatalogueLifecycle next(again, prompts);
    next.load();
    prompts.clear();
    EXPECT_FALSE(next.offerRecovery());
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(CatalogueLifecycleTest, AnEmptyCatalogueFileIsOfferedItsBackupWithNoAsTheDefault)
{
    // A catalogue emptied and saved, or a sync tool's empty placeholder, beside the backup.
    folder.writeFile(QStringLiteral("twdata.dat"), QByteArray());
    folder.writeFile(QStringLiteral("twdata.bak"), sampleCatalogue());
    loadAndReport();
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(lifecycle.offerRecovery());
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_TRUE(prompts.shown()[0].text.startsWith(backupQuestionStart(QStringLiteral("is empty"))))
        << prompts.shown()[0].text.toStdString();
    EXPECT_TRUE(prompts.shown()[0].text.contains(QStringLiteral("holds 3 products")));
    EXPECT_EQ(
        prompts.shown()[0].style, MsgStyle::YesNo | MsgStyle::Question | MsgStyle::DefaultButton2)
        << "a catalogue emptied on purpose stays so with Enter";
    EXPECT_EQ(module.AllProducts().Count(), 3);
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), sampleCatalogue())
        << "the empty file before never takes the backup's place";
}

TEST_F(CatalogueLifecycleTest, ACatalogueFileThatIsALinkKeepsARealBackup)
{
    folder.writeFile(QStringLiteral("store.dat"), sampleCatalogue());
    ASSERT_TRUE(QFile::setPermissions(folder.filePath(QStringLiteral("store.dat")),
        QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    ASSERT_TRUE(QFile::link(folder.filePath(QStringLiteral("store.dat")), module.DataFile));
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Ok);
    module.Catalogue().put(1, 2, Cell("Anchor, changed"));
    EXPECT_TRUE(lifecycle.save().ok);
    module.Catalogue().put(1, 2, Cell("Anchor, changed again"));
    EXPECT_TRUE(lifecycle.save().ok);

    EXPECT_FALSE(QFileInfo(folder.filePath(QStringLiteral("twdata.bak"))).isSymLink());
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.bak")).contains("Anchor, changed\x7f"))
        << folder.readFile(QStringLiteral("twdata.bak")).toStdString();
    EXPECT_TRUE(folder.readFile(QStringLiteral("store.dat")).contains("Anchor, changed again"));
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.bak.link")));
    EXPECT_FALSE(QFileInfo(folder.filePath(QStringLiteral("twdata.bak"))).permissions()
        & (QFileDevice::ReadGroup | QFileDevice::ReadOther))
        << "as private as the catalogue";
}

TEST_F(CatalogueLifecycleTest, AStoredNumberThatCannotBeReadIsReportedWithProductAndField)
{
    folder.writeFile(QStringLiteral("twdata.dat"),
        catalogueLine({ "A-1", "One", "call us" })
            + catalogueLine({ "B-2", "Two", "5", "", "", "10", "n/a" }));
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Ok);
    ASSERT_EQ(prompts.shown().size(), 1u);
    const QString text = prompts.shown()[0].text;
    EXPECT_TRUE(text.contains(QStringLiteral("Product \"A-1\", Price: \"call us\"")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Product \"B-2\", Price 1: \"n/a\"")));
    EXPECT_FALSE(prompts.shown()[0].title.isEmpty());
    // Nothing is emptied: the next save writes the texts back.
    EXPECT_TRUE(lifecycle.save().ok);
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("call us"));
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("n/a"));
}

TEST_F(CatalogueLifecycleTest, AnUnreadableFileIsDescribedInWordsWithTheNumberInBrackets)
{
    // A folder where the file should be is not read as a file.
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("twdata.dat")));
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Failed);
    ASSERT_EQ(prompts.shown().size(), 1u);
    const QString text = prompts.shown()[0].text;
    EXPECT_TRUE(text.contains(QStringLiteral("could not be read completely: it is not a file but "
                                             "a folder, a pipe or a device (error 57).")))
        << text.toStdString();
    EXPECT_EQ(text.count(QLatin1Char('(')), 1) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral(" (error 57).")));
}

// The disk failed to give the file at the start and gives it again by the close: nothing was
// changed, so the close leaves the file for the next start to read, rather than save the empty
// catalogue over it and leave its products only in the copy kept at the start.
TEST_F(CatalogueLifecycleTest, AFileTheDiskFailedToGiveIsLeftAsItIsByACloseWithoutChanges)
{
    // The folder in the file's place fails the read as a failing disk does (error 57).
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("twdata.dat")));
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Failed);
    ASSERT_EQ(prompts.shown().size(), 1u);
    EXPECT_TRUE(prompts.shown()[0].text.endsWith(
        QStringLiteral("Closed without changes, Tarnwick leaves the file as it is and tries to "
                       "read it again at the next start.")));
    ASSERT_TRUE(QDir(folder.path()).rmdir(QStringLiteral("twdata.dat")));
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    prompts.clear();
    // Save out of habit leaves it too, and says so.
    EXPECT_FALSE(lifecycle.saveNow());
    ASSERT_EQ(prompts.shown().size(), 1u);
    EXPECT_EQ(prompts.shown()[0].text, CatalogueLifecycle::unreadFileLeftMessage(module.DataFile));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());
    prompts.clear();
    EXPECT_TRUE(lifecycle.saveBeforeClose());
    EXPECT_TRUE(prompts.shown().empty());
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());
    // A product added in the run is saved, as before.
    Module1 next(prompts, environment, QLocale(QLocale::English, QLocale::UnitedStates));
    CatalogueLifecycle again(next, prompts);
    next.DataFile = module.DataFile;
    ASSERT_TRUE(QFile::remove(next.DataFile));
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("twdata.dat")));
    again.load();
    again.showLoadMessages();
    ASSERT_TRUE(QDir(folder.path()).rmdir(QStringLiteral("twdata.dat")));
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    again.recovery().start();
    next.Catalogue().redimPreserve(1, next.Catalogue().fieldCount());
    next.Catalogue().put(1, 1, Cell("NEW-1"));
    next.AllProducts().setCount(1);
    EXPECT_TRUE(again.saveBeforeClose());
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).startsWith("NEW-1"));
}

TEST_F(CatalogueLifecycleTest, ALongListOfUnreadNumbersIsCut)
{
    QList<CatalogueReadResult::UnreadNumber> numbers;
    for (int i = 1; i <= 25; ++i)
        numbers.append({ QStringLiteral("P%1").arg(i), 3, QStringLiteral("x") });
    const QString text = CatalogueLifecycle::unreadNumbersMessage(numbers);
    EXPECT_TRUE(text.startsWith(QStringLiteral("Some prices or price points in the catalogue are "
                                               "not numbers (typed so, or written so by another "
                                               "program), and a quote charges nothing for them.")));
    EXPECT_TRUE(text.contains(QStringLiteral("Product \"P20\"")));
    EXPECT_FALSE(text.contains(QStringLiteral("Product \"P21\"")));
    EXPECT_TRUE(text.endsWith(QStringLiteral("and 5 more.")));
}

TEST_F(CatalogueLifecycleTest, TheSaveFailureNamesTheCauseOnce)
{
    const QString text = CatalogueLifecycle::saveFailedMessage(
        QStringLiteral("twdata.dat"), QStringLiteral("the disk is full"));
    EXPECT_EQ(text.count(QStringLiteral("could not be saved")), 1);
    EXPECT_TRUE(text.contains(QStringLiteral("the disk is full.")));
    EXPECT_FALSE(text.contains(QStringLiteral("..")));
}

// A file that is there is said to be unchanged; a copy saved under a new name was never there.
TEST_F(CatalogueLifecycleTest, TheSaveFailureSaysWhatIsLeftOnDisk)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    EXPECT_TRUE(CatalogueLifecycle::saveFailedMessage(
        folder.filePath(QStringLiteral("twdata.dat")), QStringLiteral("the disk is full"))
                    .endsWith(QStringLiteral(": the disk is full.\n\nThe file on disk has not "
                                             "been changed.")));
    EXPECT_TRUE(CatalogueLifecycle::saveFailedMessage(
        folder.filePath(QStringLiteral("copy.dat")), QStringLiteral("the disk is full"))
                    .endsWith(QStringLiteral(": the disk is full.\n\nNo file has been written.")));
}

TEST_F(CatalogueLifecycleTest, AFailedSaveAsksWhetherToCloseAnyway)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    loadAndReport();
    module.DataFile = folder.filePath(QStringLiteral("missing-folder/twdata.dat"));
    module.Catalogue().put(1, 2, Cell("changed")); // the recovery file cannot take it either
    prompts.answerMessage(MsgResult::No);
    EXPECT_FALSE(lifecycle.saveBeforeClose());
    ASSERT_EQ(prompts.shown().size(), 1u);
    EXPECT_TRUE(
        prompts.shown()[0].text.endsWith(QStringLiteral("Close Tarnwick anyway? The changes "
                                                        "made to the catalogue since "
                                                        "Tarnwick started would be lost.")));
    EXPECT_EQ(prompts.shown()[0].title, QStringLiteral("Catalogue"));
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(lifecycle.saveBeforeClose());
}

// The disk filled up after the recovery file took the first changes: the close says those are
// kept and only the later ones would be lost.
TEST_F(CatalogueLifecycleTest, ACloseAfterTheDiskFilledUpSaysWhichChangesTheRecoveryFileKeeps)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    loadAndReport();
    lifecycle.recovery().start();
    module.Catalogue().put(1, 2, Cell("first change"));
    ASSERT_TRUE(lifecycle.recovery().writeNow());
    const QString recovery = recoveryFilePath(module.DataFile);
    ASSERT_TRUE(QFileInfo::exists(recovery));
    module.Catalogue().put(2, 2, Cell("second change"));
    prompts.answerMessage(MsgResult::No);
    {
        FileSizeLimit fullDisk(64);
        ASSERT_TRUE(fullDisk.active());
        EXPECT_FALSE(lifecycle.saveBeforeClose());
    }
    ASSERT_EQ(prompts.shown().size(), 1u);
    const QString at =
        module.locale().toString(QFileInfo(recovery).lastModified().time(), QLocale::ShortFormat);
    EXPECT_TRUE(prompts.shown()[0].text.endsWith(
        QStringLiteral("Close Tarnwick anyway? The recovery file keeps the changes as they were "
                       "at %1, and Tarnwick offers to restore them at its next start; the changes "
                       "made since would be lost.")
            .arg(at)))
        << prompts.shown()[0].text.toStdString();
}

TEST_F(CatalogueLifecycleTest, TheCloseQuestionSaysWhatClosingWouldCost)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    loadAndReport();
    EXPECT_FALSE(lifecycle.offerRecovery()); // starts keeping the changes, as the start does
    // The catalogue file cannot be replaced (a folder took its name), the folder takes files.
    ASSERT_TRUE(QFile::remove(module.DataFile));
    ASSERT_TRUE(QDir().mkdir(module.DataFile));
    // Nothing changed: closing costs nothing and asks nothing.
    EXPECT_TRUE(lifecycle.saveBeforeClose());
    EXPECT_TRUE(prompts.shown().empty());

    lifecycle.recovery().start();
    module.Catalogue().put(1, 2, Cell("Anchor, changed"));
    prompts.answerMessage(MsgResult::No);
    EXPECT_FALSE(lifecycle.saveBeforeClose());
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_TRUE(prompts.shown()[0].text.endsWith(
        QStringLiteral("Close Tarnwick anyway? The changes not saved are kept in the recovery "
                       "file, and Tarnwick offers to restore them at its next start.")))
        << prompts.shown()[0].text.toStdString();
    EXPECT_TRUE(folder.exists(QStringLiteral("twdata-recovery.dat")));
}

TEST_F(CatalogueLifecycleTest, AMissingFileBesideABackupThatCannotBeReadIsSaid)
{
    folder.writeFile(QStringLiteral("twdata.bak"), QByteArray("P1\x7f\x7f\x7fno end"));
    loadAndReport();
    EXPECT_FALSE(lifecycle.offerRecovery());
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_TRUE(prompts.shown()[0].text.contains(QStringLiteral("cannot be read completely")))
        << prompts.shown()[0].text.toStdString();
    EXPECT_EQ(prompts.shown()[0].title, QStringLiteral("Catalogue"));
    EXPECT_EQ(module.Catalogue().rowCount(), 0);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.bak")), QByteArray("P1\x7f\x7f\x7fno end"));
}

TEST_F(CatalogueLifecycleTest, ASuccessfulSaveClosesWithoutAQuestion)
{
    loadAndReport();
    EXPECT_TRUE(lifecycle.saveBeforeClose());
    EXPECT_TRUE(prompts.shown().empty());
}

} // namespace

TEST_F(CatalogueLifecycleTest, ALargeFileIsReadWhileThisThreadKeepsHandlingItsEvents)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    lifecycle.setBackgroundReadBytes(1); // every file counts as large here
    bool handled = false;
    QMetaObject::invokeMethod(
        qApp, [&] { handled = true; }, Qt::QueuedConnection);
    const CatalogueReadResult result = loadAndReport();
    EXPECT_TRUE(handled) << "an event posted before the load ran during it";
    EXPECT_EQ(result.status, CatalogueReadResult::Status::Ok);
    EXPECT_EQ(module.Catalogue().rowCount(), 3);
    EXPECT_EQ(module.Catalogue().get(1, 1), Cell("A-100"));
    EXPECT_EQ(module.Catalogue().get(1, 3), Cell(12.5f));
    EXPECT_TRUE(module.SortedByPart);
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(CatalogueLifecycleTest, ASmallFileIsReadAtOnce)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    bool handled = false;
    QMetaObject::invokeMethod(
        qApp, [&] { handled = true; }, Qt::QueuedConnection);
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Ok);
    EXPECT_FALSE(handled) << "no event runs while a small catalogue loads";
    QCoreApplication::processEvents();
    EXPECT_TRUE(handled);
}

TEST_F(CatalogueLifecycleTest, ALargeFileThatCannotBeReadIsReportedAfterTheLoad)
{
    const QByteArray broken = catalogueLine({ "P1", "One" }) + "P2\x7f\x7f\x7fno end";
    folder.writeFile(QStringLiteral("twdata.dat"), broken);
    lifecycle.setBackgroundReadBytes(1);
    EXPECT_EQ(loadAndReport().status, CatalogueReadResult::Status::Failed);
    ASSERT_EQ(prompts.shown().size(), 1u);
    EXPECT_TRUE(prompts.shown()[0].text.contains(QStringLiteral("(error 62)")));
}
