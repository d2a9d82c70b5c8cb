#pragma once

#include "core/vberror.h"

#include <QDateTime>
#include <QLocale>
#include <QMargins>
#include <QRect>
#include <QSize>

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
    /// "MainWidth" or "MainHeight" is in the settings, and the four values of the placement
    /// were read (a damaged one leaves the window to open as on a first run).
    bool sizeStored = false;
};

/// The smallest window a stored placement is widened to, in pixels (less on a smaller screen).
inline constexpr QSize MinimumMainWindowSize { 560, 400 };
/// The share of the available screen, in each direction, that a first run opens the window at.
inline constexpr double FirstRunScreenShare = 2.0 / 3.0;
/// The size a first run opens at, at the least, where the screen has room for it: product
/// names, prices and the quote lines side by side.
inline constexpr QSize FirstRunLeastSize { 1120, 720 };

/// The window's inner area (geometry) once the desktop has put its frame round it, so that the
/// whole frame, title bar included, lies on the available screen: the inner area shrinks by what
/// the frame adds where the frame is larger than the screen, and the frame moves just far enough
/// onto the screen. placeMainWindow works on the stored numbers, which are the frame's position
/// and the inner area's size, before the frame is known.
QRect fitFrameOnScreen(const QRect &inner, const QMargins &frame, const QRect &available);

/// The frame's fit belongs to the placement the start applied: a stored value the start had to
/// change (cut to the screen, damaged) stays as stored, so it is saved so unless the user moves
/// or sizes the window; one the start applied as it was (or a first run's) follows the fit.
/// Changes the placement of stored and applied; the split and the column width stay.
void followFittedPlacement(
    MainWindowSettings &stored, MainWindowSettings &applied, const MainWindowSettings &fitted);

/// Where the main window opens, in pixels. Without a stored size it takes FirstRunScreenShare
/// of the available screen, but at least FirstRunLeastSize as far as the screen goes, centred.
/// Otherwise the stored frame is kept as it is whenever it fits: a larger size is cut to the
/// available screen, a smaller one widened to the minimum, and the frame is then moved just
/// far enough to lie on the available screen.
QRect placeMainWindow(
    const QRect &stored, bool sizeStored, const QRect &available, const QSize &minimum);

/// The split the window starts with: 0 and values outside 1 … 100 (which no drag gives)
/// start at 50; a split is also cut so the tab control keeps minimumTabShare percent.
qint16 usableScreenSplit(qint16 stored, qint16 minimumTabShare);

/// What is written at close: a value the user did not change since the start (now equals what
/// the window applied) is written as it was stored, so a clamped-away value is never saved.
MainWindowSettings settingsToSave(const MainWindowSettings &stored,
    const MainWindowSettings &applied, const MainWindowSettings &now);

/// Reads "MainLeft", "MainTop", "MainWidth", "MainHeight" (single), "ScreenSplit" and
/// "Colwidth" (16-bit) in that order, each with its default. A stored split of 0 is kept
/// here; the window replaces it by 50.
MainWindowSettingsRead readMainWindowSettings(const ISettingsStore &store, const QLocale &locale);

/// Writes the six values as stored numbers ("." as the decimal separator, no grouping), the
/// same in every locale; reading also accepts the comma form of earlier versions. All six go to
/// the store at once; returns the store's reason when it could not write them, else empty.
QString saveMainWindowSettings(
    ISettingsStore &store, const MainWindowSettings &settings, const QLocale &locale);

/// The title and text of the box that tells, at close, that the settings could not be saved.
/// The close goes on all the same.
inline constexpr QLatin1String SettingsNotSavedTitle("Tarnwick");
QString settingsNotSavedMessage(const QString &reason);

/// The user's start-up password; empty means no lock.
QString readUserPassword(const ISettingsStore &store);

/// When the stored settings cannot be read (a damaged file), sets them aside under a name of
/// their own and returns what the start says before anything else: that Tarnwick starts with
/// its default settings, and that a start-up password set before is not asked now. Empty when
/// they can be read.
QString setAsideDamagedSettings(ISettingsStore &store, const QDateTime &now);

} // namespace tarnwick
