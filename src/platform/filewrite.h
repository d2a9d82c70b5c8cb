#pragma once

#include <QByteArray>
#include <QFileInfo>
#include <QList>
#include <QString>

class QIODevice;

namespace tarnwick {

/// What writing a file came to.
struct FileWriteResult
{
    bool ok = true;
    /// The run-time error number of the failure (61 the disk is full, 70 no permission, 76 no
    /// such folder, 57 any other input/output error); 0 when the file was written.
    int errorNumber = 0;
    /// The cause of the failure in plain words ("the disk is full"), to follow a sentence that
    /// names the file; empty when the file was written.
    QString reason;

    explicit operator bool() const { return ok; }
};

/// One file of a group written together.
struct FileContent
{
    QString path;
    QByteArray bytes;
    /// A file whose permissions and group the new file takes (the catalogue, for a file that
    /// holds its prices); empty to keep those of the file it replaces, or the folder's.
    QString accessOf = {};
};

/// Writes bytes as the file at path, whole or not at all. The bytes go to a temporary file in
/// the same folder; every write is checked (a short write goes on with the rest, a write that
/// takes nothing fails), the file is flushed and synchronised to the disk, and only then does
/// it take the old file's place in one rename. On any failure the old file keeps its bytes,
/// the temporary file is removed and the result says why.
FileWriteResult writeFileWhole(const QString &path, const QByteArray &bytes);

/// As writeFileWhole for several files: every file is first written completely to its
/// temporary file, and only when all of them are on the disk does each take its old file's
/// place, so a full disk or a refusing folder changes none of them.
FileWriteResult writeFilesWhole(const QList<FileContent> &files);

/// Writes all of bytes to device: a write that takes part of them goes on with the rest; false
/// as soon as a write takes nothing (device's errorString() then says why).
bool writeAllBytes(QIODevice &device, const QByteArray &bytes);

/// The plain words for a system error number a user can act on ("the disk is full"); fallback
/// for the others.
QString plainWriteCause(int systemError, const QString &fallback);

/// Whether a file that may not be written is itself why a new one cannot take its place (the
/// open failed with openError, a new file in its folder with folderError): on a disk that is
/// read-only as a whole no file may be written, and the disk is the cause.
bool isReadOnlyFileItself(const QFileInfo &file, int openError, int folderError);
/// Why no new file can be made in folder, as the system says it: the error number of making
/// one now; 0 when one can be made (or where this platform is not asked). Asked after a failed
/// open, because the error number Qt's file classes leave behind is not always the one of the
/// failure: a folder locked against changes (EPERM) read as one that is not there.
int newFileError(const QString &folder);

/// Gives the file open at handle (or the file at path) the permissions and group of the file
/// original: a catalogue a group of colleagues shares stays theirs after a save, and a file
/// holding its prices is as private as it. The group is given first; where the user may not
/// give it (no member of that group), the file keeps the folder's group and no rights for it.
/// Nothing where original is not there; on Windows, which keeps no such group, the path form
/// takes the permissions Qt reads.
void takeAccess(const QString &original, int handle);
void takeAccess(const QString &original, const QString &path);

/// The run-time error number that stands for a system error number (61, 70, 76 or 57).
int writeErrorNumber(int systemError);

} // namespace tarnwick
