#include "platform/qt/qteventpump.h"
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

#ifdef Q_OS_UNIX
TEST(QtProcessLauncher, HarmlessProgramStarts)
{
    QtProcessLauncher launcher;
    EXPECT_TRUE(launcher.startDetached(QStringLiteral("/bin/true"), {}, QString()));
}

TEST(QtProcessLauncher, FindsInstalledProgramsOnTheSearchPath)
{
    const QtProcessLauncher launcher;
    EXPECT_TRUE(launcher.findProgram(QStringLiteral("sh")).endsWith(QStringLiteral("/sh")));
    EXPECT_TRUE(launcher.findProgram(QStringLiteral("tarnwick-no-such-program")).isEmpty());
}

TEST(QtProcessLauncher, ShownProgramStartsAndAMissingOneFails)
{
    QtProcessLauncher launcher;
    EXPECT_TRUE(launcher.startShown(QStringLiteral("/bin/true"), {}));
    EXPECT_FALSE(launcher.startShown(QStringLiteral("tarnwick-no-such-program"), {}));
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
