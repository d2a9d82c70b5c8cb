#pragma once

#include "core/cell.h"

#include <QLocale>
#include <QString>

#include <optional>

namespace tarnwick::stored {

// Numbers the program keeps as text and reads back later: the catalogue file, the settings.
// They are written the same way on every machine, with "." as the decimal separator and no
// grouping, whatever the user's regional settings, so a file moved between machines or
// locales means the same numbers.

/// The shortest text of value that reads back as the same single: the general form with 7
/// significant digits ("12.5", "1.234568E+07") when that already reads back as the same
/// single, else the shortest decimal digits that do ("123456.78", "12345678"). The decimal
/// separator is the locale's; no grouping.
QString shortestText(float value, const QLocale &locale);
/// As above for a double, with 15 significant digits for the general form.
QString shortestText(double value, const QLocale &locale);

/// A number as stored: shortestText with "." as the decimal separator. Non-finite values raise
/// the overflow error.
QString numberText(float value);
QString numberText(double value);
/// The characters of numberText(value), written at out, which has room for
/// NumberCharsRoom bytes; returns the end. The same text without a QString, for writing a
/// large catalogue.
inline constexpr int NumberCharsRoom = 32;
char *numberChars(float value, char *out);

/// The stored text of a cell that holds a number or the text of a number: a number in
/// numberText's form; a text that is the number in stored form stays as it is ("12.50");
/// another text that is a number in the user's locale ("12,50", "1.000" in German, "$1,234.50"
/// in English) becomes numberText of that number; any other text stays as it is. The empty
/// state gives the empty text; null raises 94.
QString cellText(const Cell &cell, const QLocale &userLocale);

/// Reads a stored number: "." as the decimal separator and no grouping ("12.5", "-3",
/// "1.5E+07"); also the form written under a comma-decimal locale, a "," and no "."
/// ("12,5" -> 12.5). Blanks around it are ignored. None when the text is none of these.
std::optional<double> readNumber(const QString &text);

/// readNumber, and when that fails the user's own form (what an earlier program wrote in the
/// user's locale, e.g. "$12.50" in English). None when the text is no number in any of them.
std::optional<double> readNumberOrLocal(const QString &text, const QLocale &userLocale);

/// A price or quantity as typed, in the form it keeps its meaning in: a text the user's locale
/// reads as a number stays as it is; one that only the catalogue file's forms read (a comma
/// decimal typed under an English locale, "12,5") is given in the user's own form ("12.5"),
/// which is what the file will read it as after the next start; any other text stays as typed.
QString asTyped(const QString &text, const QLocale &userLocale);

/// A price point's text in the user's own form, so every price point of a catalogue reads
/// alike in whatever receives it (the export, the handheld file, the product report): the text
/// itself when the user's locale reads it as value with its own marks ("12,50" and "1.000" in
/// German, "12.50" in English), else the shortest text of value in that locale ("7,36" in
/// German for "7.36" or "7,36 €").
QString ownForm(const QString &text, double value, const QLocale &userLocale);

/// A price point as typed, kept as asTyped keeps it and then, when it is a number, in the
/// user's own form (ownForm).
QString pointText(const QString &text, const QLocale &userLocale);

/// The cell a stored text stands for: the number (a double) when readNumberOrLocal reads it,
/// else the text itself, so a conversion of the cell raises the usual type mismatch.
Cell numberCell(const QString &text, const QLocale &userLocale);

} // namespace tarnwick::stored
