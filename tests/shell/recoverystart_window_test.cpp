// The changes of a run that did not end cleanly, offered at the next start: the question, its
// answers, a damaged recovery file, a password first, and a close asked for while the program
// starts, carried out once it has started.
#include "shellfixture.h"

#include "catalogue/recoveryfile.h"
#include "platform/filestamp.h"
#include "shell/cataloguelifecycle.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class RecoveryStartTest : public ShellTest
{
protected:
    /// The sample catalogue with Bolt renamed, C-300 deleted and D-400 added, as a run that was
    /// killed would have left it.
    void leaveRecoveryFile()
    {
        folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
        folder.writeFile(RecoveryFile,
            recoveryFileBytes(
                catalogueLine({ "A-100", "Anchor", "12.5", "Two lines\r\nof notes", "Washer" })
                + catalogueLine({ "B-200", "Bolt, galvanised", "2.5", "Zinc plated", "Nut", "1",
                    "2.5", "100", "2" })
                + catalogueLine({ "D-400", "Dowel" })));
    }
    /// Gives twdata.dat the time of its last change; false when it could not.
    bool dateCatalogueFile(const QDateTime &when)
    {
        QFile file(folder.filePath(QStringLiteral("twdata.dat")));
        return file.open(QIODevice::ReadWrite)
            && file.setFileTime(when, QFileDevice::FileModificationTime);
    }
    /// The one question asked at the start: that the catalogue file was written since the
    /// changes (written, as the note says it), with No as the default.
    void expectWrittenSince(const QString &written)
    {
        ASSERT_EQ(fakes->prompts.shown().size(), 1u);
        const ShownPrompt &box = fakes->prompts.shown().front();
        EXPECT_EQ(box.style, MsgStyle::YesNo | MsgStyle::Question | MsgStyle::DefaultButton2);
        EXPECT_TRUE(box.text.startsWith(
            QStringLiteral("Tarnwick was not closed properly. Restore the changes made until ")));
        EXPECT_TRUE(box.text.endsWith(CatalogueLifecycle::changedSinceNote(written)))
            << box.text.toStdString();
    }
    QStringList partNumbers() const
    {
        QStringList parts;
        for (int row = 1; row <= module->AllProducts().Count(); ++row)
            parts << module->Catalogue().get(row, 1).asText();
        return parts;
    }
};

// Changes left by a run that did not end, and a catalogue file written after them (here from
// another computer): the question says so, and No, which keeps both, is the default.
TEST_F(RecoveryStartTest, AFileWrittenAfterTheChangesIsSaidAndNoBecomesTheDefault)
{
    leaveRecoveryFile();
    const QDateTime changesMade = QFileInfo(folder.filePath(RecoveryFile)).lastModified();
    ASSERT_TRUE(dateCatalogueFile(changesMade.addSecs(60)));
    fakes->prompts.answerMessage(MsgResult::No);

    startAndWait();

    expectWrittenSince(locale.toString(changesMade.addSecs(60), QLocale::ShortFormat));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());
    EXPECT_EQ(folder.fileNames().filter(QStringLiteral("twdata-recovered-")).size(), 1);
}

// A catalogue file dated in the future (saved while a clock ran ahead): the time is said for
// what it is, and No stays the default.
TEST_F(RecoveryStartTest, AFileDatedLaterThanTheClockIsSaidSo)
{
    leaveRecoveryFile();
    const QDateTime later = QDateTime::currentDateTime().addSecs(2 * 3600);
    ASSERT_TRUE(dateCatalogueFile(later));
    fakes->prompts.answerMessage(MsgResult::No);

    startAndWait();

    expectWrittenSince(locale.toString(later, QLocale::ShortFormat)
        + QStringLiteral(", a time this computer's clock has not reached"));
}

// The changes' own record of the catalogue file they were made to: that file dated in the
// future (saved while the clock ran ahead, the clock set right since) was not written since,
// and the plain question keeps Yes as its default.
TEST_F(RecoveryStartTest, TheSameCatalogueFileWithATimeStillToComeIsNotWrittenSince)
{
    leaveRecoveryFile();
    ASSERT_TRUE(dateCatalogueFile(QDateTime::currentDateTime().addYears(3)));
    ASSERT_TRUE(writeRecoveryBase(folder.filePath(QStringLiteral("twdata.dat")),
        RecoveryBase { fileStamp(folder.filePath(QStringLiteral("twdata.dat"))) }));
    fakes->prompts.answerMessage(MsgResult::Yes);

    startAndWait();

    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    const ShownPrompt &box = fakes->prompts.shown().front();
    EXPECT_EQ(box.style, MsgStyle::YesNo | MsgStyle::Question);
    EXPECT_TRUE(box.text.endsWith(QStringLiteral("?\n\n1 product changed, 1 added, 1 deleted.")))
        << box.text.toStdString();
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "B-200", "D-400" }));
}

// Another catalogue file in the place of the one the changes were made to, carrying an older
// time (a program that keeps the folder in step gives it the time it had on the other
// computer): it was written since, and No is the default.
TEST_F(RecoveryStartTest, AnotherCatalogueFileWithAnEarlierTimeIsWrittenSince)
{
    leaveRecoveryFile();
    const QString data = folder.filePath(QStringLiteral("twdata.dat"));
    ASSERT_TRUE(writeRecoveryBase(data, RecoveryBase { fileStamp(data) }));
    const QDateTime changesMade = QFileInfo(folder.filePath(RecoveryFile)).lastModified();
    folder.writeFile(QStringLiteral("synced.dat"),
        sampleCatalogue() + catalogueLine({ "Z-900", "Synced from the laptop" }));
    ASSERT_TRUE(QFile::remove(data));
    ASSERT_TRUE(QFile::rename(folder.filePath(QStringLiteral("synced.dat")), data));
    const QDateTime earlier = changesMade.addSecs(-600);
    ASSERT_TRUE(dateCatalogueFile(earlier));
    fakes->prompts.answerMessage(MsgResult::No);

    startAndWait();

    expectWrittenSince(locale.toString(earlier, QLocale::ShortFormat)
        + QStringLiteral(" by the time it carries, earlier than the changes"));
    EXPECT_TRUE(partNumbers().contains(QStringLiteral("Z-900")));
    EXPECT_EQ(folder.fileNames().filter(QStringLiteral("twdata-recovered-")).size(), 1);
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata-recovery-base.dat")));
}

TEST_F(RecoveryStartTest, AsksBeforeTheWindowShowsAndYesRestoresTheChanges)
{
    leaveRecoveryFile();
    fakes->prompts.answerMessage(MsgResult::Yes);

    frmMain *window = startAndWait();

    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    const ShownPrompt &box = fakes->prompts.shown().front();
    EXPECT_EQ(box.title, QStringLiteral("Tarnwick"));
    EXPECT_EQ(box.style, MsgStyle::YesNo | MsgStyle::Question);
    EXPECT_TRUE(box.text.startsWith(
        QStringLiteral("Tarnwick was not closed properly. Restore the changes made until ")));
    EXPECT_TRUE(box.text.endsWith(QStringLiteral("?\n\n1 product changed, 1 added, 1 deleted.")))
        << box.text.toStdString();
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "B-200", "D-400" }));
    EXPECT_EQ(window->ui().GrdMain->model()->index(1, 1).data().toString(),
        QStringLiteral("Bolt, galvanised"));
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());

    EXPECT_TRUE(window->close());
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("Dowel"));
    EXPECT_FALSE(folder.exists(RecoveryFile));
}

TEST_F(RecoveryStartTest, NoOpensTheCatalogueFileAndKeepsTheChangesAside)
{
    leaveRecoveryFile();
    const QByteArray left = folder.readFile(RecoveryFile);
    fakes->prompts.answerMessage(MsgResult::No);

    frmMain *window = startAndWait();

    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_FALSE(folder.exists(RecoveryFile));
    const QStringList kept =
        QDir(folder.path()).entryList({ QStringLiteral("twdata-recovered-*.dat") });
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(folder.readFile(kept.front()), left);
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("The changes of the last session are kept as %1.")
            .arg(QDir::toNativeSeparators(folder.filePath(kept.front()))));
}

TEST_F(RecoveryStartTest, ABackupDeclinedAtTheStartIsNamedWhereItIsKept)
{
    folder.writeFile(QStringLiteral("twdata.bak"), sampleCatalogue());
    fakes->prompts.answerMessage(MsgResult::No);

    frmMain *window = startAndWait();

    EXPECT_TRUE(partNumbers().isEmpty());
    const QStringList kept =
        QDir(folder.path()).entryList({ QStringLiteral("twdata-backup-*.dat") });
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(folder.readFile(kept.front()), sampleCatalogue());
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("The backup is kept as %1.")
            .arg(QDir::toNativeSeparators(folder.filePath(kept.front()))));
}

// A recovery file emptied or overwritten by something else is no catalogue to restore: it
// would delete every product. It is kept aside and said, and the catalogue opens as it is.
TEST_F(RecoveryStartTest, ADamagedRecoveryFileIsKeptAsideWithoutTheQuestion)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    folder.writeFile(RecoveryFile, QByteArray());
    frmMain *window = startAndWait();
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "B-200", "C-300" }));
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    EXPECT_TRUE(fakes->prompts.shown()[0].text.startsWith(
        QStringLiteral("The changes left by the last session could not be read: the file is "
                       "incomplete or damaged")))
        << fakes->prompts.shown()[0].text.toStdString();
    EXPECT_FALSE(folder.exists(RecoveryFile));
    EXPECT_EQ(
        QDir(folder.path()).entryList({ QStringLiteral("twdata-recovered-*.dat") }).size(), 1);
    EXPECT_TRUE(window->close());
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")).size(), sampleCatalogue().size());
}

// Earlier versions wrote the recovery file without its check line: such a file is offered as
// the catalogue it holds, with a word that it may be cut short, and No as the default. A file
// of this version (its base beside it) without the line is damaged.
TEST_F(RecoveryStartTest, ARecoveryFileOfAnEarlierVersionIsOfferedWithAWord)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    const QByteArray left =
        catalogueLine({ "A-100", "Anchor", "12.5", "Two lines\r\nof notes", "Washer" })
        + catalogueLine(
            { "B-200", "Bolt, galvanised", "2.5", "Zinc plated", "Nut", "1", "2.5", "100", "2" })
        + catalogueLine({ "C-300", "Clamp", "", "", "" });
    folder.writeFile(RecoveryFile, left);
    fakes->prompts.answerMessage(MsgResult::Yes);

    frmMain *window = startAndWait();

    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    const ShownPrompt &box = fakes->prompts.shown().front();
    EXPECT_EQ(box.style, MsgStyle::YesNo | MsgStyle::Question | MsgStyle::DefaultButton2);
    EXPECT_TRUE(box.text.startsWith(
        QStringLiteral("Tarnwick was not closed properly. Restore the changes made until ")));
    EXPECT_TRUE(box.text.endsWith(QStringLiteral("1 product changed, 0 added, 0 deleted.")
        + CatalogueLifecycle::UncheckedNote))
        << box.text.toStdString();
    EXPECT_EQ(window->ui().GrdMain->model()->index(1, 1).data().toString(),
        QStringLiteral("Bolt, galvanised"));
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(RecoveryStartTest, ARecoveryFileOfThisVersionWithoutItsLineIsDamaged)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    folder.writeFile(RecoveryFile, catalogueLine({ "A-100", "Anchor, cut short" }));
    folder.writeFile(QStringLiteral("twdata-recovery-base.dat"), "a base");
    startAndWait();
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    EXPECT_TRUE(fakes->prompts.shown()[0].text.startsWith(
        QStringLiteral("The changes left by the last session could not be read: the file is "
                       "incomplete or damaged")))
        << fakes->prompts.shown()[0].text.toStdString();
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "B-200", "C-300" }));
}

TEST_F(RecoveryStartTest, ACopyEqualToTheCatalogueIsNotOffered)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    folder.writeFile(RecoveryFile, recoveryFileBytes(sampleCatalogue()));

    startAndWait();

    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_FALSE(folder.exists(RecoveryFile));
}

TEST_F(RecoveryStartTest, WithAPasswordTheQuestionComesAfterThePassword)
{
    leaveRecoveryFile();
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QStringLiteral("abc");
    dialogs.whileAsking = [&] { EXPECT_TRUE(fakes->prompts.shown().empty()); };
    fakes->prompts.answerMessage(MsgResult::Yes);

    startAndWait();

    EXPECT_EQ(dialogs.asked, 1);
    EXPECT_EQ(fakes->prompts.shown().size(), 1u);
}

TEST_F(RecoveryStartTest, ACloseAskedForDuringTheStartIsCarriedOutWhenItEnds)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    tickMilliseconds = 60000; // the start would wait for a quarter of an hour
    start();
    ASSERT_FALSE(started);

    EXPECT_FALSE(splash->close()) << "the splash stays until the start is done";

    ASSERT_TRUE(QTest::qWaitFor([&] { return started; }, 5000));
    ASSERT_NE(mainWindow, nullptr);
    EXPECT_FALSE(mainWindow->isVisible());
    // The file is kept in part-number order, the sample's B-200 is first.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return folder.readFile(QStringLiteral("twdata.dat")).startsWith("A-100"); }, 5000))
        << "the close saved the catalogue";
}

} // namespace
