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

bool namesSameFile(const QString &one, const QString &other)
{
#if defined(Q_OS_WIN)
    constexpr Qt::CaseSensitivity names = Qt::CaseInsensitive;
#else
    constexpr Qt::CaseSensitivity names = Qt::CaseSensitive;
#endif
    const QFileInfo first(one);
    const QFileInfo second(other);
    if (first.absoluteFilePath().compare(second.absoluteFilePath(), names) == 0)
        return true;
#ifdef Q_OS_UNIX
    // stat follows links, and a hard link is the same file under a second name.
    const std::optional<FileStamp> firstStamp = fileStamp(one);
    const std::optional<FileStamp> secondStamp = fileStamp(other);
    if (firstStamp && secondStamp)
        return firstStamp->isSameFile(*secondStamp);
#else
    const QString canonical = first.canonicalFilePath();
    if (!canonical.isEmpty() && canonical.compare(second.canonicalFilePath(), names) == 0)
        return true;
#endif
    // A file not there (yet) is named by its folder, reached however, and its name.
    if (first.fileName().compare(second.fileName(), names) != 0)
        return false;
    const QString folder = QFileInfo(first.absolutePath()).canonicalFilePath();
    return !folder.isEmpty()
        && folder.compare(QFileInfo(second.absolutePath()).canonicalFilePath(), names) == 0;
}

} // namespace tarnwick
