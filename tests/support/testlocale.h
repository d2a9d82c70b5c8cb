#pragma once

#include <QLocale>

namespace tarnwick::test {

/// The locale most tests pass explicitly, so that no result depends on the machine's.
inline const QLocale EnUs(QLocale::English, QLocale::UnitedStates);
/// The locale whose decimal comma and grouping dot catch a number read with the wrong one.
inline const QLocale DeDe(QLocale::German, QLocale::Germany);

} // namespace tarnwick::test
