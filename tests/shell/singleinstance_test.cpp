#include "shell/singleinstance.h"
#include "support/diskfaults.h"
#include "support/tempappfolder.h"

#include <gtest/gtest.h>

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

TEST(SingleInstanceTest, AFullDiskStillStartsOneCopyAndRefusesTheSecond)
{
    TempAppFolder folder;
    const QString disk = folder.filePath(QStringLiteral("disk"));
    TinyDisk tiny(disk, 64);
    if (!tiny.mounted())
        FAIL() << "the full-disk check needs a small file system, which cannot be mounted here "
                  "(the tests run as root): "
               << tiny.failure().toStdString();
    tiny.fillLeaving(0);

    auto first = std::make_unique<SingleInstance>(disk);
    EXPECT_TRUE(first->isOnlyInstance()) << "a full disk is no other copy";
    SingleInstance second(disk);
    EXPECT_FALSE(second.isOnlyInstance());
    first.reset();
    SingleInstance next(disk);
    EXPECT_TRUE(next.isOnlyInstance());
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
