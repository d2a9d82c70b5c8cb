#include "shell/singleinstance.h"
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
