#pragma once

#include "core/cell.h"

#include <QLocale>
#include <QString>

namespace tarnwick {

/// Named formats as the program applies them to cells:
///  - "Currency"/"currency": the locale's currency form with two decimals ("$1,234.50", "($5.00)");
///  - "Percent"/"percent": value × 100 with two decimals and "%", no grouping ("5.00%");
///  - "#,###": rounded to a whole number with group separators; zero gives "";
///  - "$#,#00.00": "$", grouped, at least two integer digits, two decimals ("$05.00", "$1,234.50");
///  - "General Number": the number without grouping, as conv::toText shows it.
/// The empty state, null and the empty text give the empty text; a text that is a number is
/// formatted as that number; a text that is no number is returned as it is. An unknown format
/// name gives the value's text. A number that is infinite or no number raises 6 (overflow).
QString format(const Cell &value, const QString &formatName, const QLocale &locale);

/// A tool tip for a text that holds what someone typed (a part number, a sheet's cell): a tool
/// tip reads "<b>" or "&amp;" as markup, so such a text is handed over as markup that shows it
/// character for character; any other text stays as it is.
QString plainToolTip(const QString &text);

/// The locale the program formats and parses with: the user's own, except that the C locale
/// (no LANG set) is replaced by en-US so that money is never shown as a bare number.
QLocale programLocale();

/// The rule behind programLocale() for a given system locale: the C locale becomes en-US,
/// any other locale is kept.
QLocale programLocaleFrom(const QLocale &systemLocale);

} // namespace tarnwick
