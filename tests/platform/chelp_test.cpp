#include "platform/chelp.h"

#include "platform/appenvironment.h"
#include "support/fakeservices.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using test::FakeHelpViewer;

const QString HelpFile = QStringLiteral("/opt/tarnwick/Tarnwick Help.chm");

TEST(CHelp, WithoutWindowTypeTheFileIsDisplayedAsGiven)
{
    FakeHelpViewer viewer;
    CHelp(viewer).Show(HelpFile);
    EXPECT_EQ(viewer.calls, QStringList { HelpFile + QStringLiteral("|0|0") });
}

TEST(CHelp, AnEmptyWindowTypeAddsNoSuffix)
{
    FakeHelpViewer viewer;
    CHelp(viewer).Show(QStringLiteral(" x.chm "), QString());
    EXPECT_EQ(viewer.calls, QStringList { QStringLiteral(" x.chm |0|0") })
        << "without a window type the path is passed untrimmed";
}

TEST(CHelp, WindowTypeIsJoinedWithAGreaterThanSignAfterTrimmingBoth)
{
    FakeHelpViewer viewer;
    CHelp(viewer).Show(HelpFile + QStringLiteral("  "), QStringLiteral(" Main "));
    CHelp(viewer).Show(HelpFile, QStringLiteral("Search"));
    EXPECT_EQ(viewer.calls,
        QStringList(
            { HelpFile + QStringLiteral(">Main|0|0"), HelpFile + QStringLiteral(">Search|0|0") }));
}

TEST(CHelp, AContextNumberUsesCommandFifteenWithTheNumberAsData)
{
    FakeHelpViewer viewer;
    CHelp(viewer).Show(HelpFile, QString(), 2050);
    CHelp(viewer).Show(HelpFile, QStringLiteral("Main"), 2020);
    CHelp(viewer).Show(HelpFile, QString(), 0);
    EXPECT_EQ(viewer.calls,
        QStringList({ HelpFile + QStringLiteral("|15|2050"),
            HelpFile + QStringLiteral(">Main|15|2020"), HelpFile + QStringLiteral("|15|0") }));
}

TEST(CHelp, TheHelpFileLivesInTheApplicationFolder)
{
    const AppEnvironment environment(QStringLiteral("/opt/tarnwick"), {});
    EXPECT_EQ(CHelp::helpFilePath(environment), HelpFile);
}

} // namespace
} // namespace tarnwick
