#pragma once

#include <QString>
#include <QStringList>

namespace tarnwick {

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

} // namespace Discount

} // namespace tarnwick
