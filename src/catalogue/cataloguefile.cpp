#include "catalogue/cataloguefile.h"

#include "catalogue/fieldend.h"
#include "platform/filewrite.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <functional>
#include <optional>

#ifdef Q_OS_UNIX
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace tarnwick {

namespace {

/// The plain words for the causes a user can act on; empty for the others. A catalogue that
/// would outgrow the space the system allows is a full disk to its user, and a folder that
/// is not there most often a drive taken away.
QString knownCause(int systemError)
{
    switch (systemError) {
    case EFBIG:
        return QStringLiteral("the disk is full");
    case ENOENT:
        return QStringLiteral("the folder is not there (was the drive it is on taken away?)");
    case ENOTDIR:
        return QStringLiteral("a file stands where the folder should be");
    default:
        return plainWriteCause(systemError, QString());
    }
}

/// Only the cause, in plain words: the shell puts it into one sentence with the file's name.
CatalogueWriteResult failedSave(const QString &detail)
{
    CatalogueWriteResult result;
    result.ok = false;
    result.detail = detail;
    return result;
}

/// The cause of a failed file operation in plain words, from the system's error number
/// taken right after the failure; Qt's own text when the number says nothing more useful.
QString plainCause(int systemError, const QFileDevice &file)
{
    const QString known = knownCause(systemError);
    return known.isEmpty() ? file.errorString() : known;
}

/// The cause of a failed system call in plain words, from its error number.
QString plainCause(int systemError)
{
    const QString known = knownCause(systemError);
    return known.isEmpty() ? qt_error_string(systemError) : known;
}

/// Copies the previous catalogue to the backup file, itself replaced in one step, so the
/// backup is always a whole file.
bool copyPreviousAsBackup(const QString &dataFile, QString *error)
{
    QFile previous(dataFile);
    errno = 0;
    if (!previous.open(QIODevice::ReadOnly)) {
        *error = plainCause(errno, previous);
        return false;
    }
    const QByteArray bytes = previous.readAll();
    if (previous.error() != QFileDevice::NoError) {
        *error = previous.errorString();
        return false;
    }
    QSaveFile backup(catalogueBackupPath(dataFile));
    errno = 0;
    if (!backup.open(QIODevice::WriteOnly) || backup.write(bytes) != bytes.size()) {
        *error = plainCause(errno, backup);
        return false;
    }
    // As private as the catalogue, before its name is given to it.
    backup.setPermissions(QFileInfo(dataFile).permissions());
    if (!backup.commit()) {
        *error = plainCause(errno, backup);
        return false;
    }
    return true;
}

/// Keeps the previous catalogue as the backup file without copying it: a second name for
/// the same file is made beside it and then renamed over the backup in one step, so the
/// backup is always a whole file, and the catalogue keeps its name until the new one is
/// renamed over it. Where the file system has no such names, the file is copied instead.
/// Nothing to do before the very first save.
bool keepPreviousAsBackup(const QString &dataFile, QString *error)
{
    if (!QFileInfo::exists(dataFile))
        return true;
    // An empty file before (a start whose backup offer was declined wrote it so, or a sync
    // tool left it) never takes the place of a backup that holds something.
    if (QFileInfo(dataFile).size() == 0 && QFileInfo(catalogueBackupPath(dataFile)).size() > 0)
        return true;
#ifdef Q_OS_UNIX
    // A second name for a symbolic link would be a second link to the file the save is about
    // to write into, so the catalogue it points to is copied instead.
    if (QFileInfo(dataFile).isSymLink())
        return copyPreviousAsBackup(dataFile, error);
    const QByteArray data = QFile::encodeName(dataFile);
    const QByteArray backup = QFile::encodeName(catalogueBackupPath(dataFile));
    const QByteArray link = backup + ".link";
    ::unlink(link.constData()); // a leftover of an interrupted save
    if (::link(data.constData(), link.constData()) == 0) {
        if (::rename(link.constData(), backup.constData()) == 0) {
            // Where the backup is this very file already (a save cut short after it was made),
            // the rename does nothing and leaves the second name.
            ::unlink(link.constData());
            return true;
        }
        const int systemError = errno;
        ::unlink(link.constData());
        *error = plainCause(systemError);
        return false;
    }
#endif
    return copyPreviousAsBackup(dataFile, error);
}

QString keptCopyName(const QFileInfo &data, const QString &kind, const QString &stamp, int attempt)
{
    QString name = data.completeBaseName() + QLatin1Char('-') + kind + QLatin1Char('-') + stamp;
    if (attempt > 1)
        name += QLatin1Char('-') + QString::number(attempt);
    const QString suffix = data.suffix().isEmpty() ? QStringLiteral("dat") : data.suffix();
    return name + QLatin1Char('.') + suffix;
}

/// Puts a file beside the catalogue at data under the first free name of kind
/// ("twdata-<kind>-<stamp>.dat", then "-2" and on) by place(path), which never overwrites: a
/// name taken in the meantime just moves on to the next. The path; empty when it failed.
QString placeUnderKeptName(
    const QFileInfo &data, const QString &kind, const std::function<bool(const QString &)> &place)
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    for (int attempt = 1; attempt <= 1000; ++attempt) {
        const QString path = data.dir().filePath(keptCopyName(data, kind, stamp, attempt));
        if (QFileInfo::exists(path))
            continue;
        if (place(path))
            return QDir::toNativeSeparators(path);
        if (!QFileInfo::exists(path))
            return {}; // the copy or the move itself failed, not the name
    }
    return {};
}

/// Whether the two names are one file.
bool sameFile(const QByteArray &a, const QByteArray &b)
{
#ifdef Q_OS_UNIX
    struct stat first
    {
    };
    struct stat second
    {
    };
    return ::stat(a.constData(), &first) == 0 && ::stat(b.constData(), &second) == 0
        && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
#else
    Q_UNUSED(a);
    Q_UNUSED(b);
    return false;
#endif
}

/// The backup as it was before a save, under a second name until the new catalogue has taken
/// its name: a save that fails after the backup was renewed puts the old backup back, so the
/// failed save leaves the catalogue's files as they were (an older backup may be the only copy
/// of a catalogue before an accident). Where no second name can be made (a file system without
/// them; Windows, where this is not done), a failed save leaves the renewed backup. No failed or
/// cut-short save removes the second name: one the put-back could not rename, or one a save cut
/// short left, is put back by the next save or kept aside as twdata-backup-<date>-<time>.dat.
class PreviousBackup
{
public:
    explicit PreviousBackup(const QString &dataFile)
    {
#ifdef Q_OS_UNIX
        const QByteArray data = QFile::encodeName(dataFile);
        m_backup = QFile::encodeName(catalogueBackupPath(dataFile));
        m_kept = m_backup + ".old";
        if (QFileInfo::exists(QFile::decodeName(m_kept)))
            settleLeftover(QFileInfo(dataFile), data);
        if (::link(m_backup.constData(), m_kept.constData()) != 0)
            m_kept.clear();
#else
        Q_UNUSED(dataFile);
#endif
    }
    ~PreviousBackup()
    {
#ifdef Q_OS_UNIX
        if (!m_kept.isEmpty() && !m_stays)
            ::unlink(m_kept.constData());
#endif
    }
    PreviousBackup(const PreviousBackup &) = delete;
    PreviousBackup &operator=(const PreviousBackup &) = delete;

    /// The save failed: the backup is the one from before it again.
    void putBack()
    {
#ifdef Q_OS_UNIX
        // Where the backup was not renewed, both names are one file and the rename leaves the
        // second name, which then goes in the destructor.
        if (!m_kept.isEmpty() && ::rename(m_kept.constData(), m_backup.constData()) != 0)
            m_stays = true;
#endif
    }

private:
#ifdef Q_OS_UNIX
    /// A second name a save cut short left: the same file as the backup goes; the backup of a
    /// save cut short before its new file took the catalogue's name (the backup is the
    /// catalogue file itself) is put back; any other is kept aside.
    void settleLeftover(const QFileInfo &dataFile, const QByteArray &data)
    {
        if (sameFile(m_kept, m_backup)) {
            ::unlink(m_kept.constData());
        } else if (sameFile(m_backup, data)) {
            ::rename(m_kept.constData(), m_backup.constData());
        } else {
            const QString kept = QFile::decodeName(m_kept);
            placeUnderKeptName(dataFile, QStringLiteral("backup"),
                [&kept](const QString &path) { return QFile::rename(kept, path); });
        }
    }
#endif

    QByteArray m_backup;
    QByteArray m_kept;
    bool m_stays = false;
};

} // namespace

QString fieldEnd()
{
    return QString(fieldend::Length, QChar(fieldend::Character));
}

QString catalogueBackupPath(const QString &dataFile)
{
    const QFileInfo data(dataFile);
    return QDir::toNativeSeparators(
        data.dir().filePath(data.completeBaseName() + QStringLiteral(".bak")));
}

CatalogueWriteResult writeCatalogueFile(const QString &path, const QByteArray &bytes,
    const BeforeReplaceHook &beforeReplace, BackupRule backupRule)
{
    return writeCatalogueFile(
        path, [&](QFileDevice &file) { return file.write(bytes) == bytes.size(); }, beforeReplace,
        backupRule);
}

CatalogueWriteResult writeCatalogueFile(const QString &path,
    const CatalogueContentWriter &writeContent, const BeforeReplaceHook &beforeReplace,
    BackupRule backupRule, const QString &accessOf)
{
    QSaveFile file(path);
    errno = 0;
    if (!file.open(QIODevice::WriteOnly)) {
        const int openError = errno;
        const QFileInfo existing(path);
        const int probed = newFileError(existing.absolutePath());
        // QSaveFile refuses to replace a file that may not be written, whatever the folder
        // allows: say so, rather than send the user after the folder's rights. On a disk that
        // is read-only as a whole no file may be written, and the disk is the cause.
        if (isReadOnlyFileItself(existing, openError, probed))
            return failedSave(
                QStringLiteral("the file itself is read-only or locked against changes"));
        const QString folder = QDir::toNativeSeparators(existing.absolutePath());
        return failedSave(QStringLiteral("no new file can be created in the folder \"%1\": %2")
                              .arg(folder, plainCause(probed != 0 ? probed : openError, file)));
    }
    // The new file takes the old one's permissions and group before anything is in it (or those
    // of accessOf, the catalogue a recovery file keeps the changes of): a catalogue the
    // colleagues of a group share stays theirs.
    takeAccess(accessOf.isEmpty() ? path : accessOf, file.handle());
    errno = 0;
    if (!writeContent(file) || !file.flush()) {
        const int systemError = errno;
        return failedSave(QStringLiteral("the new file could not be written: %1")
                              .arg(plainCause(systemError, file)));
    }
#ifdef Q_OS_UNIX
    // On the disk before it takes the old file's name: after a power cut the name holds the
    // old catalogue or the whole new one, never a file whose bytes never reached the disk.
    if (::fsync(file.handle()) != 0) {
        const int systemError = errno;
        return failedSave(
            QStringLiteral("the new file could not be written: %1").arg(plainCause(systemError)));
    }
#endif
    QString error;
    std::optional<PreviousBackup> previous;
    if (backupRule == BackupRule::KeepPrevious) {
        previous.emplace(path);
        if (!keepPreviousAsBackup(path, &error)) {
            const QString backupName = QFileInfo(catalogueBackupPath(path)).fileName();
            return failedSave(
                QStringLiteral("the previous catalogue could not be kept as \"%1\": %2")
                    .arg(backupName, error));
        }
    }
    if (beforeReplace && !beforeReplace()) {
        file.cancelWriting();
        if (previous)
            previous->putBack();
        return failedSave(
            QStringLiteral("the save was interrupted before the new file replaced the old one"));
    }
    errno = 0;
    if (!file.commit()) {
        const int systemError = errno;
        if (previous)
            previous->putBack();
        return failedSave(QStringLiteral("the new file could not replace the old one: %1")
                              .arg(plainCause(systemError, file)));
    }
    return {};
}

QString keepBackupAside(const QString &dataFile)
{
    const QString backup = catalogueBackupPath(dataFile);
    if (!QFileInfo(backup).isFile())
        return {};
    return placeUnderKeptName(QFileInfo(dataFile), QStringLiteral("backup"),
        [&backup](const QString &path) { return QFile::rename(backup, path); });
}

QString keepCatalogueCopy(const QString &dataFile, const QString &kind)
{
    const QFileInfo data(dataFile);
    if (!data.isFile())
        return {};
    return placeUnderKeptName(
        data, kind, [&dataFile](const QString &path) { return QFile::copy(dataFile, path); });
}

} // namespace tarnwick
