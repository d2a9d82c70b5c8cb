#include "shell/mainlayout.h"

#include <algorithm>
#include <cmath>

namespace tarnwick {

namespace {

/// The grid's placement under the layout rule, or nullopt when it stays where it is: the
/// window is too short, the split is 0, or the width would be negative (a negative split; a
/// control cannot take a negative size, so the rule leaves it in place).
std::optional<TwipRect> placeGrid(const MainLayoutInput &in, qint16 split)
{
    if (in.innerHeight < in.reservedHeight + 1 || split == 0)
        return std::nullopt;
    const TwipRect grid { 0, in.toolbarBottom, split * 0.01 * in.innerWidth,
        in.innerHeight - in.reservedHeight };
    if (grid.width < 0)
        return std::nullopt;
    return grid;
}

} // namespace

MainLayout layoutMainWindow(const MainLayoutInput &in)
{
    // The clamp comes first and holds for the whole layout: the split loaded at start-up may
    // be 99 or 100, and the grid must not take that share before the clamp applies.
    const qint16 split = std::min(in.screenSplit, MaxScreenSplit);
    const std::optional<TwipRect> placed = placeGrid(in, split);
    const TwipRect grid = placed.value_or(in.grid);

    const TwipRect frame1 { grid.right() + BarGap, grid.top, in.frame1.width,
        std::max(grid.height, MinimumBarHeight) };
    const TwipRect tab { frame1.left + TabLeftOffset, frame1.top + TabTopOffset,
        (100 - split) * 0.01 * in.innerWidth, frame1.height - TabHeightInset };
    return { grid, frame1, tab, split, placed.has_value() };
}

std::optional<SplitterDrag> dragSplitter(double mouseX, double innerWidth, const TwipRect &grid,
    const TwipRect &frame1, const TwipRect &tab)
{
    const double x = frame1.left + mouseX;
    if (x < DragMargin || x > innerWidth - DragMargin)
        return std::nullopt;
    SplitterDrag drag { grid, frame1, tab, 0 };
    drag.grid.width = x;
    drag.tab.left = x + DragTabGap;
    drag.tab.width = innerWidth - x - DragTabGap;
    drag.frame1.left = x;
    // The whole percent of the width left of the bar, rounded down. Computed as 100·x ÷ width
    // rather than (x ÷ width)·100, so that an exact share such as 2900 of 10000 gives 29 and
    // not the 28 that the rounding of 0.29 × 100 would give.
    drag.screenSplit = qint16(std::floor(std::abs(100 * x / innerWidth)));
    return drag;
}

} // namespace tarnwick
