#include "platform/qt/qtdesktopservices.h"

#include <QDesktopServices>
#include <QStandardPaths>
#include <QUrl>

namespace tarnwick {

bool QtDesktopServices::openUrl(const QUrl &url)
{
    return QDesktopServices::openUrl(url);
}

QString QtDesktopServices::cacheFolder() const
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
}

} // namespace tarnwick
