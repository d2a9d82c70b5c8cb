#include "shell/mainlayout.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

/// A window of 9000 × 6000 twips inside, toolbar ending at 420, split 50, with the grid and
/// the bar at recognisable old placements.
MainLayoutInput window(double innerHeight = 6000, qint16 split = 50)
{
    MainLayoutInput in;
    in.innerWidth = 9000;
    in.innerHeight = innerHeight;
    in.toolbarBottom = 420;
    in.screenSplit = split;
    in.grid = { 10, 20, 3000, 4000 };
    in.frame1 = { 3060, 20, 60, 4000 };
    return in;
}

TEST(MainLayoutTest, GridTakesTheSplitShareBelowTheToolbar)
{
    const MainLayout layout = layoutMainWindow(window());
    EXPECT_TRUE(layout.gridMoved);
    EXPECT_EQ(layout.grid, (TwipRect { 0, 420, 4500, 5300 }));
    EXPECT_EQ(layout.screenSplit, 50);
}

TEST(MainLayoutTest, BarSitsFiftyRightOfTheGridWithItsTopAndHeightAndKeepsItsWidth)
{
    const MainLayout layout = layoutMainWindow(window());
    EXPECT_EQ(layout.frame1, (TwipRect { 4550, 420, 60, 5300 }));
}

TEST(MainLayoutTest, TabSitsBesideTheBarAndTakesTheRestOfTheWidth)
{
    const MainLayout layout = layoutMainWindow(window());
    EXPECT_EQ(layout.tab, (TwipRect { 4650, 470, 4500, 5225 }));
}

TEST(MainLayoutTest, InnerHeightOf701MovesTheGrid)
{
    const MainLayout layout = layoutMainWindow(window(701));
    EXPECT_TRUE(layout.gridMoved);
    EXPECT_EQ(layout.grid, (TwipRect { 0, 420, 4500, 1 }));
}

TEST(MainLayoutTest, InnerHeightOf700KeepsTheGridWhereItWas)
{
    const MainLayoutInput in = window(700);
    const MainLayout layout = layoutMainWindow(in);
    EXPECT_FALSE(layout.gridMoved);
    EXPECT_EQ(layout.grid, in.grid);
    // The bar and the tab still follow the grid's old placement.
    EXPECT_EQ(layout.frame1, (TwipRect { 3060, 20, 60, 4000 }));
    EXPECT_EQ(layout.tab, (TwipRect { 3160, 70, 4500, 3925 }));
}

TEST(MainLayoutTest, ReservedHeightDecidesTheThreshold)
{
    MainLayoutInput in = window(1001);
    in.reservedHeight = 1000;
    EXPECT_TRUE(layoutMainWindow(in).gridMoved);
    EXPECT_EQ(layoutMainWindow(in).grid.height, 1);
    in.innerHeight = 1000;
    EXPECT_FALSE(layoutMainWindow(in).gridMoved);
}

TEST(MainLayoutTest, DefaultReservedHeightIs700)
{
    EXPECT_EQ(MainLayoutInput {}.reservedHeight, 700);
    EXPECT_EQ(MainLayoutInput {}.screenSplit, 50);
}

TEST(MainLayoutTest, SplitOfZeroKeepsTheGridAndGivesTheTabTheWholeWidth)
{
    const MainLayoutInput in = window(6000, 0);
    const MainLayout layout = layoutMainWindow(in);
    EXPECT_FALSE(layout.gridMoved);
    EXPECT_EQ(layout.grid, in.grid);
    EXPECT_EQ(layout.tab.width, 9000);
    EXPECT_EQ(layout.screenSplit, 0);
}

TEST(MainLayoutTest, SplitOf98IsLaidOutAsItIs)
{
    const MainLayout layout = layoutMainWindow(window(6000, 98));
    EXPECT_DOUBLE_EQ(layout.grid.width, 8820);
    EXPECT_DOUBLE_EQ(layout.frame1.left, 8870);
    EXPECT_DOUBLE_EQ(layout.tab.left, 8970);
    EXPECT_DOUBLE_EQ(layout.tab.width, 180);
    EXPECT_EQ(layout.screenSplit, 98);
}

// The clamp to 98 holds for the whole layout, grid included: a split of 99 gives exactly the
// placements of 98, not a grid of 99 % beside a tab of 2 %.
TEST(MainLayoutTest, SplitOf99IsLaidOutAs98)
{
    const MainLayout at98 = layoutMainWindow(window(6000, 98));
    const MainLayout at99 = layoutMainWindow(window(6000, 99));
    EXPECT_EQ(at99.screenSplit, 98);
    EXPECT_DOUBLE_EQ(at99.grid.width, 8820);
    EXPECT_DOUBLE_EQ(at99.tab.width, 180);
    EXPECT_EQ(at99.grid, at98.grid);
    EXPECT_EQ(at99.frame1, at98.frame1);
    EXPECT_EQ(at99.tab, at98.tab);
}

TEST(MainLayoutTest, SplitOf100IsLaidOutAs98)
{
    const MainLayout at98 = layoutMainWindow(window(6000, 98));
    const MainLayout at100 = layoutMainWindow(window(6000, 100));
    EXPECT_EQ(at100.screenSplit, 98);
    EXPECT_EQ(at100.grid, at98.grid);
    EXPECT_EQ(at100.tab, at98.tab);
}

TEST(MainLayoutTest, SplitAbove98IsClampedEvenWhenTheGridDoesNotMove)
{
    const MainLayout layout = layoutMainWindow(window(700, 100));
    EXPECT_FALSE(layout.gridMoved);
    EXPECT_EQ(layout.screenSplit, 98);
    EXPECT_DOUBLE_EQ(layout.tab.width, 180);
}

TEST(MainLayoutTest, NegativeSplitLeavesTheGridInPlace)
{
    const MainLayoutInput in = window(6000, -5);
    const MainLayout layout = layoutMainWindow(in);
    EXPECT_FALSE(layout.gridMoved);
    EXPECT_EQ(layout.grid, in.grid);
    EXPECT_DOUBLE_EQ(layout.tab.width, 9450);
    EXPECT_EQ(layout.screenSplit, -5);
}

TEST(MainLayoutTest, ShortGridGivesTheBarItsMinimumHeightOf250)
{
    const MainLayout layout = layoutMainWindow(window(800));
    EXPECT_EQ(layout.grid.height, 100);
    EXPECT_EQ(layout.frame1.height, MinimumBarHeight);
    EXPECT_EQ(layout.frame1.height, 250);
    EXPECT_EQ(layout.frame1.top, 420);
    EXPECT_EQ(layout.tab.height, 175);
    EXPECT_EQ(layout.tab.top, 470);
}

TEST(MainLayoutTest, BarIsExactly250WhenTheGridIs250High)
{
    EXPECT_EQ(layoutMainWindow(window(950)).frame1.height, 250);
    EXPECT_EQ(layoutMainWindow(window(951)).frame1.height, 251);
}

TEST(MainLayoutTest, ShortUnmovedGridAlsoGivesTheBar250)
{
    MainLayoutInput in = window(600);
    in.grid = { 0, 300, 2000, 40 };
    const MainLayout layout = layoutMainWindow(in);
    EXPECT_EQ(layout.frame1, (TwipRect { 2050, 300, 60, 250 }));
    EXPECT_EQ(layout.tab, (TwipRect { 2150, 350, 4500, 175 }));
}

TEST(MainLayoutTest, TabWidthFollowsTheSplit)
{
    const MainLayout layout = layoutMainWindow(window(6000, 30));
    EXPECT_DOUBLE_EQ(layout.grid.width, 2700);
    EXPECT_DOUBLE_EQ(layout.frame1.left, 2750);
    EXPECT_DOUBLE_EQ(layout.tab.left, 2850);
    EXPECT_DOUBLE_EQ(layout.tab.width, 6300);
}

TEST(MainLayoutTest, TwipRectRightIsLeftPlusWidth)
{
    EXPECT_EQ((TwipRect { 100, 0, 250, 10 }).right(), 350);
}

/// The placements of the window() above after a layout at split 50.
struct DragFixture
{
    double innerWidth = 9000;
    TwipRect grid { 0, 420, 4500, 5300 };
    TwipRect frame1 { 4550, 420, 60, 5300 };
    TwipRect tab { 4650, 470, 4500, 5225 };
};

TEST(SplitterDragTest, BarFollowsTheMouse)
{
    const DragFixture f;
    const auto drag = dragSplitter(-1550, f.innerWidth, f.grid, f.frame1, f.tab);
    ASSERT_TRUE(drag.has_value());
    EXPECT_EQ(drag->grid, (TwipRect { 0, 420, 3000, 5300 }));
    EXPECT_EQ(drag->frame1, (TwipRect { 3000, 420, 60, 5300 }));
    EXPECT_EQ(drag->tab, (TwipRect { 3050, 470, 5950, 5225 }));
    EXPECT_EQ(drag->screenSplit, 33);
}

TEST(SplitterDragTest, MouseXIsRelativeToTheBar)
{
    const DragFixture f;
    const auto drag = dragSplitter(30, f.innerWidth, f.grid, f.frame1, f.tab);
    ASSERT_TRUE(drag.has_value());
    EXPECT_EQ(drag->frame1.left, 4580);
    EXPECT_EQ(drag->grid.width, 4580);
    EXPECT_EQ(drag->screenSplit, 50);
}

TEST(SplitterDragTest, StopsFollowingCloserThan500ToTheLeftEdge)
{
    const DragFixture f;
    EXPECT_FALSE(dragSplitter(499 - f.frame1.left, f.innerWidth, f.grid, f.frame1, f.tab));
    const auto drag = dragSplitter(500 - f.frame1.left, f.innerWidth, f.grid, f.frame1, f.tab);
    ASSERT_TRUE(drag.has_value());
    EXPECT_EQ(drag->frame1.left, 500);
    EXPECT_EQ(drag->grid.width, 500);
    EXPECT_EQ(drag->tab.left, 550);
    EXPECT_EQ(drag->tab.width, 8450);
    EXPECT_EQ(drag->screenSplit, 5);
}

TEST(SplitterDragTest, StopsFollowingCloserThan500ToTheRightEdge)
{
    const DragFixture f;
    EXPECT_FALSE(dragSplitter(8501 - f.frame1.left, f.innerWidth, f.grid, f.frame1, f.tab));
    const auto drag = dragSplitter(8500 - f.frame1.left, f.innerWidth, f.grid, f.frame1, f.tab);
    ASSERT_TRUE(drag.has_value());
    EXPECT_EQ(drag->frame1.left, 8500);
    EXPECT_EQ(drag->tab.left, 8550);
    EXPECT_EQ(drag->tab.width, 450);
    EXPECT_EQ(drag->screenSplit, 94);
}

TEST(SplitterDragTest, WindowNarrowerThan1000CannotBeDragged)
{
    const TwipRect grid { 0, 0, 400, 100 };
    const TwipRect bar { 450, 0, 60, 100 };
    const TwipRect tab { 550, 50, 400, 25 };
    for (int mouseX = -450; mouseX <= 500; mouseX += 50)
        EXPECT_FALSE(dragSplitter(double(mouseX), 999, grid, bar, tab)) << "mouse x " << mouseX;
    EXPECT_TRUE(dragSplitter(50, 1000, grid, bar, tab));
    EXPECT_FALSE(dragSplitter(0, 0, grid, bar, tab));
}

TEST(SplitterDragTest, SplitIsTheWholePercentRoundedDown)
{
    const DragFixture f;
    const TwipRect bar { 0, 420, 60, 5300 };
    EXPECT_EQ(dragSplitter(3000, 9000, f.grid, bar, f.tab)->screenSplit, 33);
    EXPECT_EQ(dragSplitter(5999, 9000, f.grid, bar, f.tab)->screenSplit, 66);
    EXPECT_EQ(dragSplitter(6000, 9000, f.grid, bar, f.tab)->screenSplit, 66);
    EXPECT_EQ(dragSplitter(6001, 9000, f.grid, bar, f.tab)->screenSplit, 66);
    EXPECT_EQ(dragSplitter(899, 9000, f.grid, bar, f.tab)->screenSplit, 9);
    EXPECT_EQ(dragSplitter(900, 9000, f.grid, bar, f.tab)->screenSplit, 10);
}

TEST(SplitterDragTest, ExactShareGivesItsWholePercent)
{
    const DragFixture f;
    const TwipRect bar { 0, 420, 60, 5300 };
    // 2900 / 10000 × 100 would come out as 28.999… in floating point.
    EXPECT_EQ(dragSplitter(2900, 10000, f.grid, bar, f.tab)->screenSplit, 29);
    EXPECT_EQ(dragSplitter(5700, 10000, f.grid, bar, f.tab)->screenSplit, 57);
}

TEST(SplitterDragTest, OtherFieldsAreKept)
{
    const TwipRect grid { 7, 11, 13, 17 };
    const TwipRect bar { 1000, 19, 23, 29 };
    const TwipRect tab { 31, 37, 41, 43 };
    const auto drag = dragSplitter(1000, 9000, grid, bar, tab);
    ASSERT_TRUE(drag.has_value());
    EXPECT_EQ(drag->grid, (TwipRect { 7, 11, 2000, 17 }));
    EXPECT_EQ(drag->frame1, (TwipRect { 2000, 19, 23, 29 }));
    EXPECT_EQ(drag->tab, (TwipRect { 2050, 37, 6950, 43 }));
    EXPECT_EQ(drag->screenSplit, 22);
}

TEST(SplitterDragTest, DragThenLayoutPlacesTheBarFiftyRightOfTheGrid)
{
    const DragFixture f;
    const auto drag = dragSplitter(-1550, f.innerWidth, f.grid, f.frame1, f.tab);
    ASSERT_TRUE(drag.has_value());
    MainLayoutInput in = window(6000, drag->screenSplit);
    in.grid = drag->grid;
    in.frame1 = drag->frame1;
    const MainLayout layout = layoutMainWindow(in);
    EXPECT_DOUBLE_EQ(layout.grid.width, 2970);
    EXPECT_DOUBLE_EQ(layout.frame1.left, 3020);
    EXPECT_DOUBLE_EQ(layout.tab.left, 3120);
    EXPECT_DOUBLE_EQ(layout.tab.width, 6030);
}

TEST(MainLayoutConstants, NamedValues)
{
    EXPECT_EQ(MinimumBarHeight, 250);
    EXPECT_EQ(DragMargin, 500);
    EXPECT_EQ(MaxScreenSplit, 98);
    EXPECT_EQ(BarGap, 50);
    EXPECT_EQ(DragTabGap, 50);
}

} // namespace
