#pragma once

#include "core/cell.h"

#include <QLocale>

namespace tarnwick {

class Table;

/// The quote side of the discounts: the multiplier of a chosen rate (products/discount.h)
/// applied to the lines of the quote.
namespace Discount {

/// A list price × multiplier as the cells' arithmetic has it: a single-precision list price (as
/// the catalogue holds one) times the single-precision multiplier is a single, the exact
/// product rounded once to the nearest single ($12.85 less 10 % is 11.5649996, shown $11.56);
/// any other number, or a numeric text, gives a double. Raises the overflow error beyond the
/// range of the result's type, and the type-mismatch error for a list price that is no number.
Cell discountedPrice(const Cell &listPrice, float multiplier, const QLocale &locale);

/// "Discount All": every quote line whose unit price is numeric gets list price × multiplier
/// as its unit price and quantity × unit price as its extended price.
void applyToAllLines(Table &quote, float multiplier, const QLocale &locale);

/// "Discount Product": quote row (1-based) gets list price × multiplier and the new extended
/// price when its list price is numeric. A row outside the table changes nothing.
void applyToLine(Table &quote, int row, float multiplier, const QLocale &locale);

/// What "Reset Prices" does with locked lines: keeps them as they are, or unlocks and resets
/// them with the others.
enum class LockedLines { Keep, Unlock };

/// "Reset Prices": every quote line's unit price becomes its list price, and its extended
/// price quantity × unit price; locked lines as locked says.
void resetPrices(Table &quote, const QLocale &locale, LockedLines locked = LockedLines::Unlock);

/// One line as "Reset Prices" leaves it: its unit price its list price, its extended price
/// quantity × unit price. A row outside the table changes nothing.
void resetLine(Table &quote, int row, const QLocale &locale);

/// Whether any line of the quote has a locked price.
bool anyLocked(const Table &quote);

} // namespace Discount

} // namespace tarnwick
