#include "shell/singleinstance.h"
#include "support/diskfaults.h"
#include "support/tempappfolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSysInfo>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include <sys/wait.h>
#include <unistd.h>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

TEST(SingleInstanceTest, ASecondCopyOnTheSameFolderIsRefused)
{
    TempAppFolder folder;
    auto first = std::make_unique<SingleInstance>(folder.path());
    EXPECT_TRUE(first->isOnlyInstance());
    SingleInstance second(folder.path());
    EXPECT_FALSE(second.isOnlyInstance());
    EXPECT_EQ(SingleInstance::AlreadyRunningMessage, QLatin1String("Tarnwick is already running."));
}

TEST(SingleInstanceTest, TheFolderIsFreeAgainWhenTheFirstCopyEnds)
{
    TempAppFolder folder;
    {
        SingleInstance first(folder.path());
        ASSERT_TRUE(first.isOnlyInstance());
    }
    SingleInstance next(folder.path());
    EXPECT_TRUE(next.isOnlyInstance());
}

/// The application folder on a small file system of its own, which a test can fill.
class SingleInstanceOnATinyDisk : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!tiny.mounted())
            FAIL() << "the full-disk check needs a small file system, which cannot be mounted "
                      "here (the tests run as root): "
                   << tiny.failure().toStdString();
    }

    TempAppFolder folder;
    const QString disk = folder.filePath(QStringLiteral("disk"));
    TinyDisk tiny { disk, 64 };
};

TEST_F(SingleInstanceOnATinyDisk, AFullDiskStillStartsOneCopyAndRefusesTheSecond)
{
    tiny.fillLeaving(0);

    auto first = std::make_unique<SingleInstance>(disk);
    EXPECT_TRUE(first->isOnlyInstance()) << "a full disk is no other copy";
    SingleInstance second(disk);
    EXPECT_FALSE(second.isOnlyInstance());
    first.reset();
    SingleInstance next(disk);
    EXPECT_TRUE(next.isOnlyInstance());
}

namespace {

/// Leaves the folder's lock as a copy that dies holding it leaves it: with the number of a
/// process that has ended.
void lockAndDie(const QString &folder)
{
    const pid_t child = fork();
    if (child == 0) {
        QLockFile lock(QDir(folder).filePath(QStringLiteral("tarnwick.lock")));
        _exit(lock.tryLock(0) ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

} // namespace

// Qt takes over a lock whose copy is gone only when it can write a second lock file beside it:
// on a full disk it could not, and "Tarnwick is already running." kept the user out.
TEST_F(SingleInstanceOnATinyDisk, ALockLeftOnAFullDiskByACopyThatIsGoneIsTakenOver)
{
    lockAndDie(disk);
    ASSERT_TRUE(QFileInfo::exists(QDir(disk).filePath(QStringLiteral("tarnwick.lock"))));
    tiny.fillLeaving(0);

    auto first = std::make_unique<SingleInstance>(disk);
    EXPECT_TRUE(first->isOnlyInstance()) << "a copy that is gone is not running";
    SingleInstance second(disk);
    EXPECT_FALSE(second.isOnlyInstance()) << "while this one is";
}

// A lock file that says nothing of its holder (one written half on a full disk) is no running
// copy once it is not new.
// So is one whose time is still to come (the clock was set back since it was written).
TEST(SingleInstanceTest, AnOldLockFileThatNamesNoHolderIsTakenOver)
{
    for (const qint64 seconds : { -60, 3600 }) {
        TempAppFolder folder;
        const QString path = folder.filePath(QStringLiteral("tarnwick.lock"));
        {
            QFile empty(path);
            ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
            const QDateTime when = QDateTime::currentDateTime().addSecs(seconds);
            ASSERT_TRUE(empty.setFileTime(when, QFileDevice::FileModificationTime));
        }
        auto first = std::make_unique<SingleInstance>(folder.path());
        EXPECT_TRUE(first->isOnlyInstance()) << seconds << " s from now";
        SingleInstance second(folder.path());
        EXPECT_FALSE(second.isOnlyInstance());
    }
}

// A disk that turned read-only after a write error still looks writable, and the lock a
// crashed copy left there can be neither taken over nor removed: it keeps no one out. (A lock
// "file" that is a folder with something in it cannot be removed either.)
TEST(SingleInstanceTest, ALockLeftBehindThatCannotBeRemovedKeepsNoOneOut)
{
    TempAppFolder folder;
    const QString path = folder.filePath(QStringLiteral("tarnwick.lock"));
    ASSERT_TRUE(QDir().mkpath(QDir(path).filePath(QStringLiteral("stuck"))));
    std::filesystem::last_write_time(QFile::encodeName(path).toStdString(),
        std::filesystem::file_time_type::clock::now() - std::chrono::minutes(1));
    auto first = std::make_unique<SingleInstance>(folder.path());
    EXPECT_TRUE(first->isOnlyInstance());
    SingleInstance second(folder.path());
    EXPECT_FALSE(second.isOnlyInstance()) << "the copy that started still holds the folder";
    EXPECT_TRUE(QFileInfo(path).isDir());
}

/// The number of a process that has ended.
qint64 endedProcess()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    int status = 0;
    waitpid(child, &status, 0);
    return child;
}

/// A lock file as Qt writes it, left by a copy that ran on the computer named host with the
/// machine number machine.
void writeLockOf(const QString &path, qint64 pid, const QString &host, const QByteArray &machine)
{
    QFile lock(path);
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    lock.write(
        QByteArray::number(pid) + "\ntarnwick\n" + host.toUtf8() + '\n' + machine + "\nboot-id\n");
}

// A lock that came with the folder from another computer (it is shared, or kept in step by a
// program): nothing here can tell whether that copy still runs, so it is not taken over, and
// the refusal names that computer and what to do once it is certainly off.
TEST(SingleInstanceTest, ALockFromAnotherComputerNamesItAndTheWayOut)
{
    TempAppFolder folder;
    const QString path = folder.filePath(QStringLiteral("tarnwick.lock"));
    writeLockOf(path, endedProcess(), QStringLiteral("laptop-elsewhere"), "0123456789abcdef");
    const SingleInstance here(folder.path());
    EXPECT_FALSE(here.isOnlyInstance());
    EXPECT_TRUE(here.refusalMessage().startsWith(QStringLiteral(
        "Tarnwick is already running on the computer \"laptop-elsewhere\" with this folder")))
        << here.refusalMessage().toStdString();
    EXPECT_TRUE(here.refusalMessage().contains(
        QStringLiteral("delete the file \"%1\"").arg(QDir::toNativeSeparators(path))));
    EXPECT_TRUE(QFile::exists(path));
}

// Two computers set up from one disk image, or both called "laptop", share a host name: the
// machine number in the lock tells them apart.
TEST(SingleInstanceTest, ALockOfAnotherMachineWithThisHostNameIsNotTakenOver)
{
    TempAppFolder folder;
    const QString path = folder.filePath(QStringLiteral("tarnwick.lock"));
    writeLockOf(path, endedProcess(), QSysInfo::machineHostName(), "another-machine-number");
    const SingleInstance here(folder.path());
    EXPECT_FALSE(here.isOnlyInstance());
    EXPECT_TRUE(here.refusalMessage().startsWith(
        QStringLiteral("Tarnwick is already running on another computer also called \"%1\"")
            .arg(QSysInfo::machineHostName())))
        << here.refusalMessage().toStdString();
}

TEST(SingleInstanceTest, ALockOfThisComputerWhoseCopyHasEndedIsTakenOver)
{
    TempAppFolder folder;
    const QString path = folder.filePath(QStringLiteral("tarnwick.lock"));
    writeLockOf(path, endedProcess(), QSysInfo::machineHostName(), QSysInfo::machineUniqueId());
    const SingleInstance here(folder.path());
    EXPECT_TRUE(here.isOnlyInstance());
    const SingleInstance second(folder.path());
    EXPECT_EQ(second.refusalMessage(), QString(SingleInstance::AlreadyRunningMessage));
}

TEST(SingleInstanceTest, OtherFoldersAreIndependent)
{
    TempAppFolder one;
    TempAppFolder two;
    SingleInstance first(one.path());
    SingleInstance second(two.path());
    EXPECT_TRUE(first.isOnlyInstance());
    EXPECT_TRUE(second.isOnlyInstance());
}

} // namespace
