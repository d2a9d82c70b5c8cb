#include "platform/filewrite.h"

#include "core/vberror.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <memory>
#include <vector>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace tarnwick {

namespace {

FileWriteResult writeFailure(int systemError, const QString &reason)
{
    FileWriteResult result;
    result.ok = false;
    result.errorNumber = writeErrorNumber(systemError);
    result.reason = reason;
    return result;
}

/// Why a new file cannot be made at path, from the error of the failed open.
FileWriteResult openFailure(int openError, const QSaveFile &file)
{
    const QFileInfo info(file.fileName());
    if (info.isDir())
        return writeFailure(EISDIR, plainWriteCause(EISDIR, file.errorString()));
    const int probed = newFileError(info.absolutePath());
    if (isReadOnlyFileItself(info, openError, probed))
        return writeFailure(EACCES, QStringLiteral("the file is read-only"));
    const int systemError = probed != 0 ? probed : openError;
    const QString folder = QDir::toNativeSeparators(info.absolutePath());
    if (systemError == ENOTDIR)
        return writeFailure(systemError,
            QStringLiteral("a file stands where the folder \"%1\" should be").arg(folder));
    if (systemError == ENOENT)
        return writeFailure(
            systemError, QStringLiteral("the folder \"%1\" does not exist").arg(folder));
    return writeFailure(systemError, plainWriteCause(systemError, file.errorString()));
}

/// Puts the file's bytes on the disk before it replaces anything: a rename of a file whose
/// blocks are still only in memory can leave an empty file after a power cut.
bool syncToDisk(QSaveFile &file)
{
#ifdef Q_OS_UNIX
    return ::fsync(file.handle()) == 0;
#else
    Q_UNUSED(file);
    return true;
#endif
}

/// Makes the renames in folder durable. Not every file system can synchronise a folder; the
/// files are whole either way, so a refusal is no failure.
void syncFolder(const QString &path)
{
#ifdef Q_OS_UNIX
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int handle = ::open(folder.constData(), O_RDONLY | O_DIRECTORY);
    if (handle >= 0) {
        static_cast<void>(::fsync(handle));
        ::close(handle);
    }
#else
    Q_UNUSED(path);
#endif
}

/// Opens file and writes bytes to its temporary file, flushed and on the disk; the failure
/// otherwise. Unbuffered, so every write reaches the system at once and a failing one is seen
/// right there, with its error number.
FileWriteResult writeTemporary(QSaveFile &file, const QByteArray &bytes, const QString &accessOf)
{
    file.setDirectWriteFallback(false);
    errno = 0;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return openFailure(errno, file);
    // As private as accessOf before anything is in it.
    if (!accessOf.isEmpty())
        takeAccess(accessOf, file.handle());
    errno = 0;
    if (!writeAllBytes(file, bytes) || !file.flush() || !syncToDisk(file)) {
        const int systemError = errno;
        file.cancelWriting();
        return writeFailure(systemError, plainWriteCause(systemError, file.errorString()));
    }
    return {};
}

FileWriteResult commitFailure(const QSaveFile &file)
{
    const int systemError = errno;
    return writeFailure(systemError, plainWriteCause(systemError, file.errorString()));
}

} // namespace

QString plainWriteCause(int systemError, const QString &fallback)
{
    switch (systemError) {
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
        return QStringLiteral("the disk is full");
    case EFBIG:
        return QStringLiteral("the file would be larger than the system allows");
    case EROFS:
        return QStringLiteral("the disk or folder is read-only");
    case EACCES:
    case EPERM:
        return QStringLiteral("you have no permission to write there");
    case EISDIR:
        return QStringLiteral("a folder of that name is in the way");
    case ENAMETOOLONG:
        // A name of more bytes than the system takes, or a path too deep for the longer names
        // Tarnwick writes a file under first.
        return QStringLiteral("the file's name or its folder's path is too long for the system");
    case EIO:
    case ENXIO:
    case ENODEV:
    case ENOTCONN:
#ifdef ESTALE
    case ESTALE:
#endif
        // A drive pulled out, a network share gone (its files "stale"): the system's own words
        // ("Transport endpoint is not connected") tell a user nothing.
        return QStringLiteral("the drive could not be read or written (was it taken away, or "
                              "the network lost?)");
    default:
        return fallback;
    }
}

bool isReadOnlyFileItself(const QFileInfo &file, int openError, int folderError)
{
    return file.exists() && !file.isWritable() && openError != EROFS && folderError != EROFS;
}

int newFileError(const QString &folder)
{
#ifdef Q_OS_UNIX
    const QByteArray probe = QFile::encodeName(
        QDir(folder).filePath(QStringLiteral(".tarnwick-probe-%1").arg(::getpid())));
    const int handle = ::open(probe.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (handle < 0)
        return errno == EEXIST ? 0 : errno;
    ::close(handle);
    ::unlink(probe.constData());
#else
    Q_UNUSED(folder);
#endif
    return 0;
}

int writeErrorNumber(int systemError)
{
    switch (systemError) {
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
    case EFBIG:
        return ErrorNumber::DiskFull;
    case EROFS:
    case EACCES:
    case EPERM:
        return ErrorNumber::PermissionDenied;
    case ENOENT:
    case ENOTDIR:
        return ErrorNumber::PathNotFound;
    default:
        return ErrorNumber::DeviceIOError;
    }
}

bool writeAllBytes(QIODevice &device, const QByteArray &bytes)
{
    qint64 done = 0;
    while (done < bytes.size()) {
        const qint64 written = device.write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

FileWriteResult writeFileWhole(const QString &path, const QByteArray &bytes)
{
    return writeFilesWhole({ FileContent { path, bytes } });
}

#ifdef Q_OS_UNIX
namespace {

/// The permissions of source for a file whose group is now target's (looked at after the group
/// was given): without the group's rights where it is not source's group.
mode_t accessMode(const struct stat &source, const struct stat &target)
{
    const mode_t mode = source.st_mode & 0777;
    return target.st_gid == source.st_gid ? mode : mode & ~mode_t(070);
}

} // namespace
#endif

void takeAccess(const QString &original, int handle)
{
#ifdef Q_OS_UNIX
    struct stat source
    {
    };
    struct stat target
    {
    };
    if (handle < 0 || ::stat(QFile::encodeName(original).constData(), &source) != 0
        || ::fstat(handle, &target) != 0)
        return;
    if (target.st_gid != source.st_gid && ::fchown(handle, uid_t(-1), source.st_gid) == 0)
        target.st_gid = source.st_gid;
    [[maybe_unused]] const int refused = ::fchmod(handle, accessMode(source, target));
#else
    Q_UNUSED(original);
    Q_UNUSED(handle);
#endif
}

void takeAccess(const QString &original, const QString &path)
{
#ifdef Q_OS_UNIX
    struct stat source
    {
    };
    struct stat target
    {
    };
    const QByteArray name = QFile::encodeName(path);
    if (::stat(QFile::encodeName(original).constData(), &source) != 0
        || ::stat(name.constData(), &target) != 0)
        return;
    if (target.st_gid != source.st_gid && ::chown(name.constData(), uid_t(-1), source.st_gid) == 0)
        target.st_gid = source.st_gid;
    [[maybe_unused]] const int refused = ::chmod(name.constData(), accessMode(source, target));
#else
    if (QFileInfo::exists(original))
        QFile::setPermissions(path, QFile::permissions(original));
#endif
}

FileWriteResult writeFilesWhole(const QList<FileContent> &files)
{
    std::vector<std::unique_ptr<QSaveFile>> written;
    for (const FileContent &content : files) {
        written.push_back(std::make_unique<QSaveFile>(content.path));
        FileWriteResult result = writeTemporary(*written.back(), content.bytes, content.accessOf);
        if (!result)
            return result; // every temporary file is removed with its QSaveFile
    }
    for (const std::unique_ptr<QSaveFile> &file : written) {
        errno = 0;
        if (!file->commit())
            return commitFailure(*file);
        syncFolder(file->fileName());
    }
    return {};
}

} // namespace tarnwick
