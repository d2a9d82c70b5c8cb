#pragma once

class QLocale;
class QTableView;

namespace tarnwick {

/// The widths the grids' columns start with: no column narrower than its caption, values in
/// view, and the product names as wide as the room allows.
namespace ColumnWidths {

/// The width column needs for its caption not to be cut (text, margins and sort mark).
int captionWidth(const QTableView *grid, int column);
/// A product name column's width on a first run: as wide as its longest name (wanted), but
/// not wider than room, and never narrower than caption.
int nameWidth(int wanted, int caption, int room);
/// The product grid at the start: every column at least as wide as its caption and its
/// values, except keptColumn (none when -1), which keeps the width it has up to half the grid
/// (a width kept from a larger screen would hide names and prices); the product name
/// column (nameColumn) as wide as its names, as far as the grid can show it beside the part
/// number before it and the price after it.
void fitProductGrid(QTableView *grid, int nameColumn, int keptColumn = -1);
/// The quote grid: part number, price, quantity and extended price wide enough for their
/// captions and usual values, the product column taking the rest of the width (never less
/// than its caption: a narrow grid then scrolls).
void fitQuoteGrid(QTableView *grid, const QLocale &locale);
/// The quote grid after its lines changed: a price, quantity or extended price wider than its
/// column widens the column (the product column gives up the room), so no amount is cut.
/// Columns only grow, and no wider than largestAmountWidth: a width the user chose stays while
/// the values fit it.
void fitQuoteValues(QTableView *grid, const QLocale &locale);
/// The width of the largest amount below a trillion, negative, in the locale's currency form.
int largestAmountWidth(const QTableView *grid, const QLocale &locale);

} // namespace ColumnWidths

} // namespace tarnwick
