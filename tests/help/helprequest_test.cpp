#include "help/helprequest.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(HelpRequest, AFileAloneIsDisplayedAtItsStart)
{
    const HelpRequest request = parseHelpRequest(QStringLiteral("/a/Tarnwick Help.chm"), 0, 0);
    EXPECT_EQ(request.file, QStringLiteral("/a/Tarnwick Help.chm"));
    EXPECT_TRUE(request.windowType.isEmpty());
    EXPECT_FALSE(request.context.has_value());
    EXPECT_FALSE(request.wantsSearch());
}

TEST(HelpRequest, TheWindowTypeFollowsTheGreaterThanSign)
{
    const HelpRequest main = parseHelpRequest(QStringLiteral("/a/Tarnwick Help.chm>Main"), 0, 0);
    EXPECT_EQ(main.file, QStringLiteral("/a/Tarnwick Help.chm"));
    EXPECT_EQ(main.windowType, QStringLiteral("Main"));
    EXPECT_FALSE(main.wantsSearch());
    EXPECT_TRUE(parseHelpRequest(QStringLiteral("x.chm>Search"), 0, 0).wantsSearch());
    EXPECT_TRUE(parseHelpRequest(QStringLiteral("x.chm> search "), 0, 0).wantsSearch());
}

TEST(HelpRequest, CommandFifteenCarriesTheContextNumber)
{
    const HelpRequest request = parseHelpRequest(QStringLiteral("x.chm>Main"), 15, 2020);
    ASSERT_TRUE(request.context.has_value());
    EXPECT_EQ(*request.context, 2020);
    EXPECT_FALSE(parseHelpRequest(QStringLiteral("x.chm"), 0, 2020).context.has_value())
        << "the data of the display command is no context number";
}

} // namespace
} // namespace tarnwick
