#pragma once

#include "core/vberror.h"

#include <QLocale>

#include <optional>

namespace tarnwick {

class ISettingsStore;

/// The main window's placement and split as kept in the settings, in twips.
struct MainWindowSettings
{
    float left = 1000;
    float top = 1000;
    float width = 9000;
    float height = 6500;
    qint16 screenSplit = 50; ///< percent of the width given to the product grid
    qint16 colwidth = 1100; ///< width of the grid's "Part Number" column

    bool operator==(const MainWindowSettings &) const = default;
};

/// The settings as read, and the error of the first value that did not convert. Values up to
/// that one are as stored; the rest keep their defaults.
struct MainWindowSettingsRead
{
    MainWindowSettings values;
    std::optional<VbError> error;
};

/// Reads "MainLeft", "MainTop", "MainWidth", "MainHeight" (single), "ScreenSplit" and
/// "Colwidth" (16-bit) in that order, each with its default. A stored split of 0 is kept
/// here; the window replaces it by 50.
MainWindowSettingsRead readMainWindowSettings(const ISettingsStore &store, const QLocale &locale);

/// Writes the six values as stored numbers ("." as the decimal separator, no grouping), the
/// same in every locale; reading also accepts the comma form of earlier versions.
void saveMainWindowSettings(
    ISettingsStore &store, const MainWindowSettings &settings, const QLocale &locale);

/// The user's start-up password; empty means no lock.
QString readUserPassword(const ISettingsStore &store);

} // namespace tarnwick
