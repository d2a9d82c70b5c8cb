#include "platform/appfolder.h"

#include "platform/appenvironment.h"

#include "support/fakeprompts.h"
#include "support/tempappfolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using test::FakePrompts;
using test::TempAppFolder;

// The rule is tested with an injected writability check: the tests also run as root, for whom
// a folder without write permission is still writable.
AppFolderRule::WritableCheck writable(bool answer, QStringList *asked = nullptr)
{
    return [answer, asked](const QString &folder) {
        if (asked)
            asked->append(folder);
        return answer;
    };
}

TEST(AppFolderRule, WritableExecutableFolderStaysTheApplicationFolder)
{
    QStringList asked;
    const AppFolderChoice choice = AppFolderRule::choose(QString(), QStringLiteral("/opt/tw/bin"),
        QStringLiteral("/home/u/.local/share/Tarnwick"), writable(true, &asked));
    EXPECT_EQ(choice.folder, QStringLiteral("/opt/tw/bin"));
    EXPECT_FALSE(choice.perUser);
    EXPECT_EQ(asked, QStringList { QStringLiteral("/opt/tw/bin") });
}

TEST(AppFolderRule, ReadOnlyExecutableFolderGivesThePerUserFolder)
{
    const AppFolderChoice choice = AppFolderRule::choose(QString(), QStringLiteral("/usr/bin"),
        QStringLiteral("/home/u/.local/share/Tarnwick"), writable(false));
    EXPECT_EQ(choice.folder, QStringLiteral("/home/u/.local/share/Tarnwick"));
    EXPECT_TRUE(choice.perUser);
}

TEST(AppFolderRule, VariableOverridesBothFolders)
{
    QStringList asked;
    for (const bool answer : { true, false }) {
        const AppFolderChoice choice =
            AppFolderRule::choose(QStringLiteral("/srv/tw"), QStringLiteral("/usr/bin"),
                QStringLiteral("/home/u/.local/share/Tarnwick"), writable(answer, &asked));
        EXPECT_EQ(choice.folder, QStringLiteral("/srv/tw"));
        EXPECT_FALSE(choice.perUser);
    }
    EXPECT_TRUE(asked.isEmpty());
}

TEST(AppFolderRule, RealCheckAcceptsAPlainWritableFolder)
{
    const QTemporaryDir dir;
    EXPECT_TRUE(AppFolderRule::isWritableFolder(dir.path()));
}

// A path that cannot be written for any user, root included: it does not exist as a folder.
TEST(AppFolderRule, RealCheckRejectsAFileAndAMissingFolder)
{
    const TempAppFolder folder;
    folder.writeFile(QStringLiteral("plain"), "x");
    EXPECT_FALSE(AppFolderRule::isWritableFolder(folder.filePath(QStringLiteral("plain"))));
    EXPECT_FALSE(AppFolderRule::isWritableFolder(folder.filePath(QStringLiteral("missing"))));
}

// An installed copy, bin/ beside share/tarnwick/, counts as not writable even for root.
TEST(AppFolderRule, RealCheckRejectsAnInstalledCopy)
{
    const QTemporaryDir prefix;
    QDir(prefix.path()).mkpath(QStringLiteral("bin"));
    const QString bin = QDir(prefix.path()).filePath(QStringLiteral("bin"));
    EXPECT_TRUE(AppFolderRule::isWritableFolder(bin));
    QDir(prefix.path()).mkpath(QStringLiteral("share/tarnwick"));
    EXPECT_FALSE(AppFolderRule::isWritableFolder(bin));
    EXPECT_EQ(AppFolderRule::installedSampleCatalogue(bin),
        QDir(prefix.path()).filePath(QStringLiteral("share/tarnwick/twdata.dat")));
}

class FirstStartTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        sample.writeFile(QStringLiteral("twdata.dat"), "P-1\tPipe\t2.50\n");
        userFolder = QDir(home.path()).filePath(QStringLiteral("Tarnwick"));
        QDir().mkpath(userFolder);
    }
    QString userFile() const { return QDir(userFolder).filePath(QStringLiteral("twdata.dat")); }
    QByteArray userBytes() const
    {
        QFile file(userFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<none>");
    }

    TempAppFolder sample;
    QTemporaryDir home;
    QString userFolder;
    FakePrompts prompts;
};

TEST_F(FirstStartTest, YesCopiesTheSampleCatalogue)
{
    // The running copy's lock is already in the folder: the folder still counts as empty.
    QFile lock(QDir(userFolder).filePath(QStringLiteral("tarnwick.lock")));
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    lock.close();
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(
        offerSampleCatalogue(userFolder, sample.filePath(QStringLiteral("twdata.dat")), prompts));
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_EQ(prompts.shown()[0].style, MsgStyle::YesNo | MsgStyle::Question);
    EXPECT_TRUE(prompts.shown()[0].text.contains(QStringLiteral("sample catalogue")));
    EXPECT_EQ(userBytes(), QByteArray("P-1\tPipe\t2.50\n"));
    EXPECT_TRUE(QFileInfo(userFile()).isWritable());
}

TEST_F(FirstStartTest, NoStartsWithAnEmptyCatalogue)
{
    prompts.answerMessage(MsgResult::No);
    EXPECT_FALSE(
        offerSampleCatalogue(userFolder, sample.filePath(QStringLiteral("twdata.dat")), prompts));
    EXPECT_EQ(prompts.shown().size(), 1U);
    EXPECT_EQ(userBytes(), QByteArray());
    EXPECT_EQ(
        QDir(userFolder).entryList(QDir::Files), QStringList { QStringLiteral("twdata.dat") });
}

TEST_F(FirstStartTest, AFolderWithFilesIsNotAskedAgain)
{
    QFile other(QDir(userFolder).filePath(QStringLiteral("QuoteNote.txt")));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.close();
    EXPECT_FALSE(
        offerSampleCatalogue(userFolder, sample.filePath(QStringLiteral("twdata.dat")), prompts));
    EXPECT_TRUE(prompts.shown().empty());
    EXPECT_FALSE(QFileInfo::exists(userFile()));
}

TEST_F(FirstStartTest, MissingSampleIsReportedAndGivesAnEmptyCatalogue)
{
    prompts.answerMessage(MsgResult::Yes);
    EXPECT_FALSE(
        offerSampleCatalogue(userFolder, sample.filePath(QStringLiteral("absent.dat")), prompts));
    ASSERT_EQ(prompts.shown().size(), 2U);
    EXPECT_TRUE(prompts.shown()[1].text.contains(QStringLiteral("could not be copied")));
    EXPECT_EQ(userBytes(), QByteArray());
}

TEST_F(FirstStartTest, AFolderThatCannotBeMadeIsSaidInsteadOfTheQuestion)
{
    // A file where the folder's parent should be: no one can make the folder, root neither.
    QFile blocker(QDir(home.path()).filePath(QStringLiteral("data")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const QString folder = QDir(home.path()).filePath(QStringLiteral("data/Tarnwick"));
    EXPECT_FALSE(
        offerSampleCatalogue(folder, sample.filePath(QStringLiteral("twdata.dat")), prompts));
    ASSERT_EQ(prompts.shown().size(), 1U);
    EXPECT_TRUE(prompts.shown()[0].text.startsWith(
        QStringLiteral("Tarnwick cannot keep its files in its folder:\n")
        + QDir::toNativeSeparators(folder)))
        << prompts.shown()[0].text.toStdString();
    EXPECT_TRUE(prompts.shown()[0].text.contains(QStringLiteral("the folder cannot be created")));
    EXPECT_EQ(prompts.shown()[0].style, MsgStyle::Exclamation);
}

// The folder named by TARNWICK_APP_DIR is looked for before the start reads anything from it.
class NamedFolderTest : public ::testing::Test
{
protected:
    QString folder() const { return QDir(home.path()).filePath(QStringLiteral("share/Tarnwick")); }
    QTemporaryDir home;
    FakePrompts prompts;
};

TEST_F(NamedFolderTest, AFolderThatIsThereAsksNothing)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    EXPECT_TRUE(findNamedFolder(folder(), prompts));
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(NamedFolderTest, RetryLooksAgainOnceTheDriveIsConnected)
{
    prompts.answerMessage(MsgResult::Retry); // not there yet
    prompts.answerMessage(MsgResult::Retry);
    int shown = 0;
    prompts.whileShown([&] {
        if (++shown == 2)
            QDir().mkpath(folder()); // the drive is connected while the second box is up
    });
    EXPECT_TRUE(findNamedFolder(folder(), prompts));
    ASSERT_EQ(prompts.shown().size(), 2U);
    EXPECT_EQ(prompts.shown()[0].text,
        QStringLiteral("Tarnwick's folder cannot be found:\n%1\n\nIt holds the catalogue and the "
                       "quotes. If it is on a drive that is not connected now (a network drive, "
                       "a USB stick), connect it and press Retry.\n\nRetry: look for the folder "
                       "again.\nIgnore: create the folder and start with an empty catalogue."
                       "\nAbort: close Tarnwick.")
            .arg(QDir::toNativeSeparators(folder())));
    EXPECT_EQ(prompts.shown()[0].style,
        MsgStyle::AbortRetryIgnore | MsgStyle::Exclamation | MsgStyle::DefaultButton2);
    EXPECT_EQ(QDir(folder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

TEST_F(NamedFolderTest, IgnoreCreatesTheFolder)
{
    prompts.answerMessage(MsgResult::Ignore);
    EXPECT_TRUE(findNamedFolder(folder(), prompts));
    EXPECT_TRUE(QFileInfo(folder()).isDir());
    EXPECT_EQ(prompts.shown().size(), 1U);
}

TEST_F(NamedFolderTest, AbortClosesWithoutCreatingAnything)
{
    prompts.answerMessage(MsgResult::Abort);
    EXPECT_FALSE(findNamedFolder(folder(), prompts));
    EXPECT_FALSE(QFileInfo::exists(QDir(home.path()).filePath(QStringLiteral("share"))));
}

TEST_F(NamedFolderTest, AFolderThatCannotBeCreatedIsSaid)
{
    QFile blocker(QDir(home.path()).filePath(QStringLiteral("share")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    prompts.answerMessage(MsgResult::Ignore);
    EXPECT_TRUE(findNamedFolder(folder(), prompts)) << "the start goes on, as it says";
    ASSERT_EQ(prompts.shown().size(), 2U);
    EXPECT_TRUE(prompts.shown()[1].text.startsWith(
        QStringLiteral("Tarnwick cannot keep its files in its folder:\n")));
    EXPECT_TRUE(prompts.shown()[1].text.contains(QStringLiteral("the folder cannot be created")));
}

// A folder named in another encoding than UTF-8 (Latin-1's "é" is the one byte E9) comes
// through Qt as another name: the start says so instead of using another folder.
#if defined(Q_OS_UNIX)
// Unix names are bytes, read as UTF-8 (elsewhere they are text already).
TEST(AppFolderName, AFolderNamedInAnotherEncodingIsFound)
{
    const QByteArray latin1 = "/media/stick/Caf\xe9";
    const QByteArray utf8 = "/srv/Caf\xc3\xa9";
    const auto used = [](const QByteArray &) { return true; };
    const auto notUsed = [](const QByteArray &) { return false; };
    const QString shown = QStringLiteral("/media/stick/Caf\uFFFD");
    EXPECT_EQ(unreadableAppFolder(latin1, utf8, utf8, used), shown);
    EXPECT_EQ(unreadableAppFolder(QByteArray(), latin1, utf8, used), shown);
    // An executable folder that is not used (read-only, an installed copy's): the per-user
    // folder is, under the data folder's base.
    EXPECT_EQ(unreadableAppFolder(QByteArray(), latin1, utf8, notUsed), QString());
    EXPECT_EQ(unreadableAppFolder(QByteArray(), utf8, latin1, notUsed), shown);
    // The named folder is the one used, whatever the others.
    EXPECT_EQ(unreadableAppFolder(utf8, latin1, latin1, used), QString());
    EXPECT_EQ(unreadableAppFolder(QByteArray(), utf8, latin1, used), QString());
    EXPECT_EQ(unreadableAppFolder(QByteArray(), QByteArray(), utf8, used), QString());
}
#endif

#if defined(Q_OS_LINUX)
TEST(AppFolderName, TheRunningProgramsNamedFolderIsLookedAt)
{
    const QByteArray before = qgetenv(AppEnvironment::AppFolderVariable);
    qputenv(AppEnvironment::AppFolderVariable, QByteArray("/tmp/Caf\xe9"));
    const QString unreadable = unreadableAppFolderOfThisProgram();
    qputenv(AppEnvironment::AppFolderVariable, QByteArray("/tmp/Caf\xc3\xa9"));
    const QString readable = unreadableAppFolderOfThisProgram();
    if (before.isNull())
        qunsetenv(AppEnvironment::AppFolderVariable);
    else
        qputenv(AppEnvironment::AppFolderVariable, before);
    EXPECT_EQ(unreadable, QStringLiteral("/tmp/Caf\uFFFD"));
    EXPECT_EQ(readable, QString());
}
#endif

} // namespace
} // namespace tarnwick
