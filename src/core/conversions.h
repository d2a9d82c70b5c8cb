#pragma once

#include "core/cell.h"

#include <QLocale>
#include <QString>

#include <optional>

namespace tarnwick::conv {

// Conversions of a cell, with the precisions and errors the program's rules are stated in.
// Every function that can fail raises VbError: 13 (type mismatch) for a text that is not a
// number or a null where a value is needed, 6 (overflow) for a value outside the target range.

/// Text of a cell: the empty state gives "", a text is returned as it is, numbers in their
/// shortest general form with the locale's decimal separator and no grouping (a single 12.5
/// gives "12.5"; singles show at most 7 significant digits, doubles 15; very large or small
/// values in the form "1.234568E+07"). Null raises 94.
QString toText(const Cell &cell, const QLocale &locale);

/// Numeric value. Empty gives 0; a text is parsed with parseNumber (13 when it is no number);
/// a number that is infinite or no number raises 6.
double toDouble(const Cell &cell, const QLocale &locale);
/// The result of double arithmetic as a value to keep: raises 6 when it overflowed to an
/// infinity or is not a number, so no cell or box ever holds one.
double checkedDouble(double value);
/// As toDouble, then narrowed to single precision (6 when outside the single range).
float toSingle(const Cell &cell, const QLocale &locale);
/// Rounded half to even; outside -32768..32767 raises 6.
qint16 toInt16(const Cell &cell, const QLocale &locale);
/// Rounded half to even; outside the 32-bit range raises 6.
qint32 toInt32(const Cell &cell, const QLocale &locale);

/// Rounds x to the given number of decimals, halves to the even neighbour (2.5 -> 2, 0.125 ->
/// 0.12).
double round(double x, int decimals = 0);

/// True when toDouble would succeed on a non-empty value (the empty state and the empty text
/// are not numeric).
bool isNumeric(const Cell &cell, const QLocale &locale);
/// True when cell holds a number (or a numeric text) too large for a single, which toSingle
/// refuses and which no price is ("1e39").
bool isBeyondSingle(const Cell &cell, const QLocale &locale);

/// Parses what a user of the locale writes for a number: optional blanks, a sign or
/// parentheses for negatives, the locale's currency symbol before or after the number,
/// group separators, the decimal separator, an exponent. "$1,234.50" and "($5.00)" parse in
/// en-US. Numbers in the C locale's form are accepted as a fallback ("12.5" in de-DE).
std::optional<double> parseNumber(const QString &text, const QLocale &locale);

/// True when the locale reads a plain decimal text (digits with at most one "." between
/// digits, such as "12" or "12.50") as the same number the stored form means, so parseNumber
/// and the stored form agree on it and a fast reader may take it straight from its digits.
/// Cheap to ask again for the same locale (the last answer is kept per thread).
bool readsPlainDecimals(const QLocale &locale);

/// A plain decimal text of at most 15 characters read from its ASCII bytes: digits with at
/// most one "." between digits ("12", "12.50"). None for anything else, which the caller
/// reads the general way.
std::optional<double> plainDecimal(const char *bytes, qsizetype size);
/// The number a cell holds as the locale reads it: a number as it is, a text by parseNumber
/// (a plain decimal straight from its digits when plainDecimals: the locale's
/// readsPlainDecimals says that gives the same, or the text is known to be in the stored form).
/// None for a blank cell and for a text that is no number.
std::optional<double> cellNumber(const Cell &cell, const QLocale &locale, bool plainDecimals);
/// Whether the bytes have the form plainDecimal reads, without reading the value.
inline bool isPlainDecimal(const char *bytes, qsizetype size)
{
    // 15 characters hold at most 15 significant digits: every reader rounds them alike.
    if (size == 0 || size > 15)
        return false;
    const char *end = bytes + size;
    bool dot = false;
    for (const char *c = bytes; c < end; ++c) {
        if (*c == '.' && !dot && c != bytes && c + 1 != end)
            dot = true;
        else if (*c < '0' || *c > '9')
            return false;
    }
    return true;
}

} // namespace tarnwick::conv
