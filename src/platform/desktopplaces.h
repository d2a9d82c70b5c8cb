#pragma once

#include <QStringList>

namespace tarnwick {

/// The desktop's places that exist on this computer, for the side panel of the file dialogs:
/// the user's home folder, then the desktop, documents and downloads folders, each once (where
/// the desktop names no such folder it is the home folder, and is left out).
QStringList desktopPlaces();

} // namespace tarnwick
