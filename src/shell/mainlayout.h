#pragma once

#include <QtGlobal>

#include <optional>

namespace tarnwick {

// The main window's layout rule and splitter drag, as plain arithmetic in twips. The window
// reads its widgets' placements into these structs, calls the functions below and moves the
// widgets to the results; nothing here touches a widget.

/// A control's placement in twips.
struct TwipRect
{
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
    bool operator==(const TwipRect &) const = default;
    double right() const { return left + width; }
};

/// Gap between the grid's right edge and the splitter bar's left edge after a layout.
inline constexpr double BarGap = 50;
/// The splitter bar is never laid out lower than this, however short the grid.
inline constexpr double MinimumBarHeight = 250;
/// The tab control sits this far right of the bar's left edge after a layout …
inline constexpr double TabLeftOffset = 100;
/// … this far below the bar's top …
inline constexpr double TabTopOffset = 50;
/// … and this much shorter than the bar.
inline constexpr double TabHeightInset = 75;
/// While the bar is dragged, the tab control starts this far right of the bar.
inline constexpr double DragTabGap = 50;
/// The bar cannot be dragged closer than this to either side of the window.
inline constexpr double DragMargin = 500;
/// The largest share of the width, in percent, that the layout gives the grid.
inline constexpr qint16 MaxScreenSplit = 98;
/// The height the layout keeps free for the toolbar and the status bar.
inline constexpr double DefaultReservedHeight = 700;

/// What the layout rule reads: the window's inner size, where the toolbar ends, the split and
/// the current placements of the grid and the splitter bar.
struct MainLayoutInput
{
    double innerWidth = 0;
    double innerHeight = 0;
    double toolbarBottom = 0; ///< toolbar top + toolbar height
    double reservedHeight = DefaultReservedHeight; ///< kept free for toolbar and status bar
    qint16 screenSplit = 50;
    TwipRect grid; ///< current placement of the product grid
    TwipRect frame1; ///< current placement of the splitter bar
};

/// The placements the layout rule gives the grid, the splitter bar (Frame1) and the tab control,
/// and the split after clamping. gridMoved is false when the grid kept its placement.
struct MainLayout
{
    TwipRect grid;
    TwipRect frame1;
    TwipRect tab;
    qint16 screenSplit;
    bool gridMoved;
};

/// The layout rule of the main window (run on every resize and after a drag):
/// 1. screenSplit is clamped to at most MaxScreenSplit first, for the whole layout, so a
///    stored split of 99 or 100 is laid out exactly as 98.
/// 2. Only when innerHeight ≥ reservedHeight + 1 and the split is not 0 the grid moves to
///    left 0, top toolbarBottom, width split % of innerWidth, height innerHeight −
///    reservedHeight; otherwise (or when that width would be negative) it keeps its placement.
/// 3. The bar takes the grid's top and height (at least MinimumBarHeight), its left edge
///    BarGap right of the grid's right edge, its width as it was.
/// 4. The tab control sits TabLeftOffset right of and TabTopOffset below the bar's corner,
///    TabHeightInset shorter than the bar, and takes the rest of the width: (100 − split) %.
MainLayout layoutMainWindow(const MainLayoutInput &in);

/// The placements while the splitter bar is dragged, and the split they give.
struct SplitterDrag
{
    TwipRect grid;
    TwipRect frame1;
    TwipRect tab;
    qint16 screenSplit;
};

/// One mouse movement while the bar is dragged; mouseX is relative to the bar. The bar follows
/// the mouse to x = frame1.left + mouseX only while DragMargin ≤ x ≤ innerWidth − DragMargin:
/// the grid ends at x, the bar's left edge is x, the tab control starts DragTabGap right of it
/// and fills the rest of the width, and the split becomes the whole percent x of innerWidth
/// (rounded down). Outside that range the bar stops following: nullopt.
std::optional<SplitterDrag> dragSplitter(double mouseX, double innerWidth, const TwipRect &grid,
    const TwipRect &frame1, const TwipRect &tab);

} // namespace tarnwick
