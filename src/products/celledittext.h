#pragma once

#include <QString>

class QLocale;

namespace tarnwick {

class Cell;

/// The text a cell editor starts with. A number that is a single-precision value (a Single, or
/// a Double that holds one exactly) shows as the shortest text that reads back as the same
/// single, in the locale's digits, so a price of 11.25 opens as "11.25" and never as the
/// fifteen digits of its binary value. Every other cell opens as its ordinary text.
QString cellEditText(const Cell &cell, const QLocale &locale);

} // namespace tarnwick
