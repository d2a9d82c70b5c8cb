#pragma once

#include <QString>

class QUrl;

namespace tarnwick {

/// The desktop's own programs for folders and pages: the file manager, the web browser. A
/// file URL of a folder opens the folder, a file URL of a page opens it in the browser.
class IDesktopServices
{
public:
    virtual ~IDesktopServices() = default;

    /// Hands url to the program the desktop uses for it; false when none took it.
    virtual bool openUrl(const QUrl &url) = 0;
    /// The folder where the program keeps files it can make again (the manual's pages for the
    /// web browser); it may not exist yet.
    virtual QString cacheFolder() const = 0;
};

} // namespace tarnwick
