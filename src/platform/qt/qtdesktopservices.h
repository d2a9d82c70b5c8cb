#pragma once

#include "platform/idesktopservices.h"

namespace tarnwick {

/// Opens folders and pages through QDesktopServices; the cache folder is the user's cache
/// location for the program.
class QtDesktopServices : public IDesktopServices
{
public:
    bool openUrl(const QUrl &url) override;
    QString cacheFolder() const override;
};

} // namespace tarnwick
