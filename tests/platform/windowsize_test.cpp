// Window sizes laid out for the usual font grow with a larger one and stay on the screen.
#include "platform/qt/windowsize.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(WindowSize, ALargerLineHeightGrowsTheSizeASmallerOneLeavesIt)
{
    EXPECT_EQ(WindowSize::scaled(QSize(420, 380), 14), QSize(420, 380));
    EXPECT_EQ(WindowSize::scaled(QSize(420, 380), 11), QSize(420, 380)) << "never smaller";
    EXPECT_EQ(WindowSize::scaled(QSize(420, 380), 21), QSize(630, 570));
    EXPECT_EQ(WindowSize::scaled(QSize(720, 520), 22), QSize(1131, 817));
}

TEST(WindowSize, TheSizeForAWindowsFontStaysWithinItsScreen)
{
    QWidget window;
    QFont large = window.font();
    large.setPointSizeF(large.pointSizeF() * 2);
    window.setFont(large);
    const QSize grown = WindowSize::forFont(window, QSize(420, 380));
    EXPECT_GT(grown.width(), 420);
    EXPECT_GT(grown.height(), 380);
    const QSize room = window.screen()->availableGeometry().size();
    const QSize huge = WindowSize::forFont(window, room * 2);
    EXPECT_LE(huge.width(), room.width());
    EXPECT_LT(huge.height(), room.height()) << "a title bar's room is left";
}

} // namespace
} // namespace tarnwick
