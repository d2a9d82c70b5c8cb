#include "platform/qt/qteventpump.h"
#include "platform/qt/qthelpviewer.h"
#include "platform/qt/qtprocesslauncher.h"

#include "support/tempappfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using test::TempAppFolder;

const QString HelpName = QStringLiteral("Tarnwick Help.chm");

/// A help viewer whose desktop opener records the URLs instead of opening them.
struct RecordingHelp
{
    explicit RecordingHelp(bool answer = true)
        : viewer([this, answer](const QUrl &url) {
              opened << url;
              return answer;
          })
    {
    }
    QList<QUrl> opened;
    QtHelpViewer viewer;
};

TEST(QtHelpViewer, MissingHelpFileShowsNothingAndFails)
{
    const TempAppFolder folder;
    RecordingHelp help;
    EXPECT_FALSE(help.viewer.showTopic(folder.filePath(HelpName), QStringLiteral("Main")));
    EXPECT_FALSE(help.viewer.showContext(folder.filePath(HelpName), 2020));
    EXPECT_FALSE(help.viewer.showTopic(QString(), QStringLiteral("Main")));
    EXPECT_TRUE(help.opened.isEmpty());
}

TEST(QtHelpViewer, FolderIsNoHelpFile)
{
    const TempAppFolder folder;
    RecordingHelp help;
    EXPECT_FALSE(help.viewer.showTopic(folder.path(), QStringLiteral("Main")));
    EXPECT_TRUE(help.opened.isEmpty());
}

TEST(QtHelpViewer, DefaultViewerAlsoFailsQuietlyForAMissingFile)
{
    const TempAppFolder folder;
    QtHelpViewer viewer;
    EXPECT_FALSE(viewer.showContext(folder.filePath(HelpName), 2020));
}

TEST(QtHelpViewer, ExistingHelpFileIsOpenedAsAFileUrl)
{
    const TempAppFolder folder;
    folder.writeFile(HelpName, "ITSF");
    RecordingHelp help;
    EXPECT_TRUE(help.viewer.showTopic(folder.filePath(HelpName), QStringLiteral("Main")));
    EXPECT_TRUE(help.viewer.showContext(folder.filePath(HelpName), 2020));
    const QUrl expected = QUrl::fromLocalFile(folder.filePath(HelpName));
    EXPECT_EQ(help.opened, QList<QUrl>({ expected, expected }));
    EXPECT_FALSE(help.opened.first().hasFragment());
}

TEST(QtHelpViewer, WindowTypeSuffixIsCutFromThePath)
{
    const TempAppFolder folder;
    folder.writeFile(HelpName, "ITSF");
    RecordingHelp help;
    EXPECT_TRUE(help.viewer.showTopic(
        folder.filePath(HelpName) + QStringLiteral(">Main"), QStringLiteral("Main")));
    EXPECT_EQ(help.opened, QList<QUrl> { QUrl::fromLocalFile(folder.filePath(HelpName)) });
}

TEST(QtHelpViewer, DesktopFailureIsReported)
{
    const TempAppFolder folder;
    folder.writeFile(HelpName, "ITSF");
    RecordingHelp help(false);
    EXPECT_FALSE(help.viewer.showTopic(folder.filePath(HelpName), QStringLiteral("Search")));
    EXPECT_EQ(help.opened.size(), 1);
}

#ifdef Q_OS_UNIX
TEST(QtProcessLauncher, HarmlessProgramStarts)
{
    QtProcessLauncher launcher;
    EXPECT_TRUE(launcher.startDetached(QStringLiteral("/bin/true"), {}, QString()));
}

TEST(QtProcessLauncher, MissingProgramFails)
{
    const TempAppFolder folder;
    QtProcessLauncher launcher;
    EXPECT_FALSE(launcher.startDetached(
        folder.filePath(QStringLiteral("Handdesk.exe")), { QStringLiteral("x") }, folder.path()));
    EXPECT_FALSE(launcher.startDetached(QStringLiteral("tarnwick-no-such-program"), {}, QString()));
}

TEST(QtProcessLauncher, ProgramRunsInTheWorkingFolderWithItsArguments)
{
    const TempAppFolder folder;
    QtProcessLauncher launcher;
    const QStringList arguments = { QStringLiteral("-c"),
        QStringLiteral("printf '%s|%s' \"$(pwd)\" \"$1\" > out.tmp "
                       "&& mv out.tmp out.txt"),
        QStringLiteral("sh"), QStringLiteral("two words") };
    ASSERT_TRUE(launcher.startDetached(QStringLiteral("/bin/sh"), arguments, folder.path()));
    EXPECT_TRUE(QTest::qWaitFor([&] { return folder.exists(QStringLiteral("out.txt")); }, 10000));
    const QString written = QString::fromLocal8Bit(folder.readFile(QStringLiteral("out.txt")));
    EXPECT_EQ(written, QDir(folder.path()).canonicalPath() + QStringLiteral("|two words"));
}
#endif

TEST(QtEventPump, PendingEventsAreProcessed)
{
    bool ran = false;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&ran] { ran = true; }, Qt::QueuedConnection);
    EXPECT_FALSE(ran);
    QtEventPump pump;
    pump.processPendingEvents();
    EXPECT_TRUE(ran);
}

} // namespace
} // namespace tarnwick
