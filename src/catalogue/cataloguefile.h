#pragma once

#include "platform/filestamp.h"

#include <QByteArray>
#include <QFileDevice>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace tarnwick {

/// What reading the catalogue file came to.
struct CatalogueReadResult
{
    enum class Status {
        Ok, ///< the whole file was read
        Missing, ///< there is no file yet: the quiet first run
        Failed, ///< the file exists but could not be read completely
    };
    Status status = Status::Ok;
    int errorNumber = 0; ///< the run-time error number when Failed (62, 6, 57 …)
    QString detail; ///< what went wrong, in words a user understands
    int rowsRead = 0; ///< logical lines stored before the end or the failure

    /// A stored number that could not be read in any accepted form; its text is kept as it
    /// was, so the next save writes it back unchanged.
    struct UnreadNumber
    {
        QString partNumber;
        int field = 0; ///< the ProductRecord field
        QString text;
    };
    QList<UnreadNumber> unreadNumbers;
};

/// What writing the catalogue file came to.
struct CatalogueWriteResult
{
    bool ok = true;
    QString detail; ///< the cause of a failed save, in plain words ("the disk is full")
    int rowsWritten = 0;
    /// The file had been changed outside Tarnwick: the version found there, kept under this
    /// name before the save replaced it.
    QString keptChangedCopy;
    /// The file had been changed outside Tarnwick and the catalogue here had no changes of
    /// its own: nothing was written (ok stays true).
    bool leftChangedFile = false;
};

/// The field terminator of the catalogue file: three characters of code 127 in a row.
QString fieldEnd();

/// Called when the new catalogue has been written and flushed to its temporary file, just
/// before it takes the place of the old one; returning false abandons the save at that point.
/// Tests use it to prove that a save interrupted there leaves the old file as it was.
using BeforeReplaceHook = std::function<bool()>;

/// Whether a save copies the file it replaces to the backup file.
enum class BackupRule {
    KeepPrevious, ///< the previous file becomes the backup
    LeaveBackup, ///< the backup stays as it is (the previous file was not a good catalogue)
    NoBackup, ///< the file has no backup (a copy the user asked for, the recovery file)
};

/// Writes bytes as the catalogue file at path without ever leaving a half-written file: the
/// bytes go to a temporary file in the same folder and are flushed to the disk, the previous
/// file becomes catalogueBackupPath(path) (unless backupRule leaves the backup alone) by a
/// second name for it rather than a copy, and only then does the new file take the old
/// one's place. A crash at any point leaves a whole catalogue file and a whole backup. On any
/// failure the old file keeps its bytes and no temporary file stays behind; the result's detail
/// names the cause in plain words.
CatalogueWriteResult writeCatalogueFile(const QString &path, const QByteArray &bytes,
    const BeforeReplaceHook &beforeReplace = {}, BackupRule backupRule = BackupRule::KeepPrevious);

/// Writes the new file's content into the open temporary file; false when it could not.
using CatalogueContentWriter = std::function<bool(QFileDevice &file)>;

/// As above, with the content written by writeContent instead of given as one buffer, so a
/// large catalogue can be written in pieces. The new file takes the permissions and group of
/// the file it replaces, or of accessOf where that is given (takeAccess).
CatalogueWriteResult writeCatalogueFile(const QString &path,
    const CatalogueContentWriter &writeContent, const BeforeReplaceHook &beforeReplace = {},
    BackupRule backupRule = BackupRule::KeepPrevious, const QString &accessOf = {});

/// Where a save keeps the previous catalogue: the data file's base name with ".bak" in the
/// same folder ("twdata.bak" beside "twdata.dat").
QString catalogueBackupPath(const QString &dataFile);

/// Keeps a copy of the catalogue file under a name that no later save overwrites
/// ("twdata-<kind>-20261122-140512.dat" beside it) and returns that path; an empty text
/// when it could not be kept.
QString keepCatalogueCopy(const QString &dataFile, const QString &kind);

/// Moves the backup aside under a name no later save takes ("twdata-backup-20261122-140512.dat"
/// beside it), so the backup of the catalogue that follows never replaces it; the new path,
/// empty when there was no backup or it could not move.
QString keepBackupAside(const QString &dataFile);

/// Keeps an unreadable catalogue file so ("twdata-unread-20261122-140512.dat").
inline QString preserveUnreadCatalogue(const QString &dataFile)
{
    return keepCatalogueCopy(dataFile, QStringLiteral("unread"));
}

} // namespace tarnwick
