#pragma once

#include <QSize>

class QWidget;

namespace tarnwick::WindowSize {

/// The line height the program's windows were laid out for: Qt's usual 9-point font on a
/// screen of 96 dots per inch.
inline constexpr int DesignLineHeight = 14;

/// A window size laid out for the usual font, grown in proportion to the line height of
/// window's font where that is larger (a 14-point desktop font makes it about half as large
/// again, so its buttons do not cover its figures); never smaller. Bounded by the available
/// room of the screen the window (or its owner) is on, less a title bar.
QSize forFont(const QWidget &window, const QSize &designed);

/// forFont without the screen: designed scaled by lineHeight / DesignLineHeight, at least 1.
QSize scaled(const QSize &designed, qreal lineHeight);

} // namespace tarnwick::WindowSize
