#include "platform/filestamp.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace tarnwick {

std::optional<FileStamp> fileStamp(const QString &path)
{
#ifdef Q_OS_UNIX
    struct stat status
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return FileStamp { qint64(status.st_size),
        qint64(status.st_mtim.tv_sec) * 1000000000 + qint64(status.st_mtim.tv_nsec),
        quint64(status.st_dev), quint64(status.st_ino) };
#else
    const QFileInfo info(path);
    if (!info.exists())
        return std::nullopt;
    return FileStamp { info.size(), info.lastModified().toMSecsSinceEpoch() * 1000000, 0, 0 };
#endif
}

} // namespace tarnwick
