#pragma once

#include "platform/qt/clipboardkeeper.h"

#include <QList>

namespace tarnwick::ClipboardKeeper {

/// Whether this program runs on an X11 display (where the clipboard ends with its owner).
bool x11DisplayRuns();
/// Whether the display has a clipboard keeper of the desktop's (a program owning the
/// CLIPBOARD_MANAGER selection, to which Qt hands the contents at the end); true off X11,
/// where the system keeps them.
bool desktopKeeperRuns();

/// Connects to the display named by DISPLAY, takes the clipboard with these targets and
/// answers every program that asks for them, until another program takes the clipboard
/// (exit code 0) or the display goes (0); 1 when the clipboard could not be taken.
int serveOnX11Clipboard(const QList<Target> &targets);

} // namespace tarnwick::ClipboardKeeper
