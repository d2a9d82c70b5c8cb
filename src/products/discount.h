#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

namespace tarnwick {

class Table;

namespace Discount {

/// The discount windows' list, in order: "1%", "2%'", "3%" … "10%", "15%", "20%", "25%".
/// The second entry carries a trailing apostrophe on purpose: it is no recognised rate, so
/// applying it sets prices back to their list prices.
const QStringList &choices();

/// The rate of a chosen text, as a single: "List Price" 0, "1%" … "10%" 0.01 … 0.10, "15%",
/// "20%", "25%" 0.15, 0.20, 0.25; any other text 0. The comparison is exact.
float rateOf(const QString &text);

/// The price multiplier of a rate, 1 − rate, stored as a single (see the .cpp).
float multiplierOf(float rate);

/// multiplierOf(rateOf(text)).
float multiplierFor(const QString &text);

/// "Discount All": every quote line whose unit price is numeric gets list price × multiplier
/// as its unit price and quantity × unit price as its extended price.
void applyToAllLines(Table &quote, float multiplier, const QLocale &locale);

/// "Discount Product": quote row (1-based) gets list price × multiplier and the new extended
/// price when its list price is numeric. A row outside the table changes nothing.
void applyToLine(Table &quote, int row, float multiplier, const QLocale &locale);

/// "Reset Prices": every quote line's unit price becomes its list price, and its extended
/// price quantity × unit price.
void resetPrices(Table &quote, const QLocale &locale);

} // namespace Discount

} // namespace tarnwick
