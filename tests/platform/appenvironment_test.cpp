#include "platform/appenvironment.h"

#include "support/tempappfolder.h"

#include <QCoreApplication>
#include <QDir>

#include <gtest/gtest.h>

#include <optional>

namespace tarnwick {
namespace {

/// Sets or unsets the application folder variable for one test and restores it afterwards.
class AppFolderVariable
{
public:
    explicit AppFolderVariable(const std::optional<QByteArray> &value)
    {
        if (qEnvironmentVariableIsSet(AppEnvironment::AppFolderVariable))
            m_saved = qgetenv(AppEnvironment::AppFolderVariable);
        if (value)
            qputenv(AppEnvironment::AppFolderVariable, *value);
        else
            qunsetenv(AppEnvironment::AppFolderVariable);
    }
    ~AppFolderVariable()
    {
        if (m_saved)
            qputenv(AppEnvironment::AppFolderVariable, *m_saved);
        else
            qunsetenv(AppEnvironment::AppFolderVariable);
    }
    AppFolderVariable(const AppFolderVariable &) = delete;
    AppFolderVariable &operator=(const AppFolderVariable &) = delete;

private:
    std::optional<QByteArray> m_saved;
};

bool isTestRun(const char *commandLine)
{
    return AppEnvironment(QString(), QString::fromUtf8(commandLine)).isTestRun();
}

TEST(AppEnvironment, TestRunOnlyForExactlyTest)
{
    EXPECT_TRUE(isTestRun("test"));
    EXPECT_FALSE(isTestRun("Test"));
    EXPECT_FALSE(isTestRun("TEST"));
    EXPECT_FALSE(isTestRun("test "));
    EXPECT_FALSE(isTestRun(" test"));
    EXPECT_FALSE(isTestRun("test x"));
    EXPECT_FALSE(isTestRun(""));
}

TEST(AppEnvironment, CommandLineJoinsTheArgumentsAfterTheProgramName)
{
    const AppFolderVariable unset(std::nullopt);
    const QStringList arguments = { QStringLiteral("/opt/tarnwick/tarnwick"), QStringLiteral("one"),
        QStringLiteral("two words"), QStringLiteral("three") };
    EXPECT_EQ(AppEnvironment::fromApplication(arguments).commandLine(),
        QStringLiteral("one two words three"));
}

TEST(AppEnvironment, SingleTestArgumentIsATestRun)
{
    const AppFolderVariable unset(std::nullopt);
    const AppEnvironment env =
        AppEnvironment::fromApplication({ QStringLiteral("tarnwick"), QStringLiteral("test") });
    EXPECT_EQ(env.commandLine(), QStringLiteral("test"));
    EXPECT_TRUE(env.isTestRun());
    EXPECT_FALSE(AppEnvironment::fromApplication(
        { QStringLiteral("tarnwick"), QStringLiteral("test"), QString() })
                     .isTestRun());
}

TEST(AppEnvironment, NoArgumentsGiveAnEmptyCommandLine)
{
    const AppFolderVariable unset(std::nullopt);
    EXPECT_EQ(
        AppEnvironment::fromApplication({ QStringLiteral("tarnwick") }).commandLine(), QString());
    EXPECT_EQ(AppEnvironment::fromApplication({}).commandLine(), QString());
}

TEST(AppEnvironment, FolderIsTheExecutablesWithoutTheVariable)
{
    const AppFolderVariable unset(std::nullopt);
    const AppEnvironment env = AppEnvironment::fromApplication({ QStringLiteral("x") });
    EXPECT_EQ(env.appFolder(), QDir(QCoreApplication::applicationDirPath()).absolutePath());
}

TEST(AppEnvironment, VariableOverridesTheFolder)
{
    const test::TempAppFolder folder;
    const AppFolderVariable set(folder.path().toLocal8Bit());
    const AppEnvironment env = AppEnvironment::fromApplication({ QStringLiteral("x") });
    EXPECT_EQ(env.appFolder(), QDir(folder.path()).absolutePath());
}

TEST(AppEnvironment, EmptyVariableMeansTheExecutablesFolder)
{
    const AppFolderVariable empty(QByteArray(""));
    const AppEnvironment env = AppEnvironment::fromApplication({ QStringLiteral("x") });
    EXPECT_EQ(env.appFolder(), QDir(QCoreApplication::applicationDirPath()).absolutePath());
}

TEST(AppEnvironment, PathInAppFolder)
{
    const AppEnvironment env(QStringLiteral("/opt/tarnwick"), QString());
    EXPECT_EQ(QDir::fromNativeSeparators(env.pathInAppFolder(QStringLiteral("twdata.dat"))),
        QStringLiteral("/opt/tarnwick/twdata.dat"));
    EXPECT_EQ(QDir::fromNativeSeparators(env.pathInAppFolder(QStringLiteral("Tarnwick Help.chm"))),
        QStringLiteral("/opt/tarnwick/Tarnwick Help.chm"));
    EXPECT_EQ(env.pathInAppFolder(QStringLiteral("QuoteNote.txt")),
        QDir::toNativeSeparators(QStringLiteral("/opt/tarnwick/QuoteNote.txt")));
}

TEST(AppEnvironment, KeepsWhatItIsGiven)
{
    const AppEnvironment env(QStringLiteral("/srv/app"), QStringLiteral("a b"));
    EXPECT_EQ(env.appFolder(), QStringLiteral("/srv/app"));
    EXPECT_EQ(env.commandLine(), QStringLiteral("a b"));
}

} // namespace
} // namespace tarnwick
