#pragma once

#include <QLatin1String>

namespace tarnwick::SettingsKeys {

// The per-user settings live under the program's title, section "Settings". Every value is
// stored as text.
inline constexpr QLatin1String Application("Tarnwick");
inline constexpr QLatin1String Section("Settings");

inline constexpr QLatin1String MainLeft("MainLeft");
inline constexpr QLatin1String MainTop("MainTop");
inline constexpr QLatin1String MainWidth("MainWidth");
inline constexpr QLatin1String MainHeight("MainHeight");
inline constexpr QLatin1String ScreenSplit("ScreenSplit");
inline constexpr QLatin1String Colwidth("Colwidth");
inline constexpr QLatin1String UserPassword("UserPassword");
inline constexpr QLatin1String NoIncludes("NoIncludes");
/// The workbook chosen last for an import: the open dialog starts in its folder.
inline constexpr QLatin1String LastWorkbook("LastWorkbook");

} // namespace tarnwick::SettingsKeys
