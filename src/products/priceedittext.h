#pragma once

#include <QString>

class QLocale;

namespace tarnwick {

class Cell;

/// The text an editor on a price cell starts with. Prices are single-precision values: a number
/// (Single or Double, such as a discounted price computed in double) shows as the shortest text
/// that reads back as the same single, in the locale's digits, so a discounted 11.25 opens as
/// "11.25" and never as "11.2499997019768". Any other cell opens as its ordinary text.
QString priceEditText(const Cell &cell, const QLocale &locale);

} // namespace tarnwick
