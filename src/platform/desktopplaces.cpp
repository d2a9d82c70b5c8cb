#include "platform/desktopplaces.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace tarnwick {

QStringList desktopPlaces()
{
    QStringList places;
    for (const auto location : { QStandardPaths::HomeLocation, QStandardPaths::DesktopLocation,
             QStandardPaths::DocumentsLocation, QStandardPaths::DownloadLocation }) {
        const QString folder = QDir::cleanPath(QStandardPaths::writableLocation(location));
        if (!folder.isEmpty() && QFileInfo(folder).isDir() && !places.contains(folder))
            places << folder;
    }
    return places;
}

} // namespace tarnwick
