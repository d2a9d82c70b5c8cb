#pragma once

#include "catalogue/cataloguefile.h"
#include "catalogue/cataloguewriter.h"
#include "platform/filestamp.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <optional>

namespace tarnwick {

class Table;

/// The file that keeps the changes not yet saved, beside the catalogue file:
/// "twdata-recovery.dat" beside "twdata.dat". It holds a whole catalogue in the catalogue
/// file's own form; a save and a normal close remove it, so finding it at start means the
/// last run did not end cleanly.
QString recoveryFilePath(const QString &dataFile);

/// Writes every product of table as a catalogue file at path, safely (a temporary file that
/// is flushed to the disk, then renamed), without touching any backup: the recovery file and
/// the copies the user asks for. The recovery file keeps rows without a part number that hold
/// something (rows = KeptWithContent); a copy the user asks for is written as the catalogue.
CatalogueWriteResult writeCatalogueCopy(const QString &path, const Table &table, qint32 count,
    const QLocale &locale, RowsWithoutPartNumber rows = RowsWithoutPartNumber::Dropped);

/// Writes the recovery file: every product of table (rows without a part number that hold
/// something included) in the catalogue file's form, then an end-of-file mark and a line that
/// says how many bytes come before it, "\x1ATarnwick recovery file: 4096 bytes". A catalogue
/// reading ends at the mark; readRecoveryFile takes a file without that line, or with another
/// count (cut short, emptied, overwritten), as damaged rather than as a catalogue. The file
/// takes the permissions and group of accessOf (the catalogue file) where that is given.
CatalogueWriteResult writeRecoveryFile(const QString &path, const Table &table, qint32 count,
    const QLocale &locale, const QString &accessOf = {});

/// The catalogue file the changes in a recovery file were made to, as that run last knew it:
/// none when there was no catalogue file. Kept in a small file of its own beside the recovery
/// file ("twdata-recovery-base.dat"), which earlier versions leave alone, so the recovery
/// file stays as they read it.
struct RecoveryBase
{
    std::optional<FileStamp> catalogue;

    /// Whether the catalogue file found now (none when it is not there) is another than this
    /// one: written since, or put in its place. Size and time of change are compared; the
    /// device and file numbers are not, as a drive mounted again may give others (a USB stick's
    /// file system numbers its files anew at every mount).
    bool differsFrom(const std::optional<FileStamp> &now) const;
};

QString recoveryBasePath(const QString &dataFile);

/// Writes the base of the recovery file of dataFile as it is now (its size ties the two
/// together); false when it could not be written.
bool writeRecoveryBase(const QString &dataFile, const RecoveryBase &base);

/// The base written with the recovery file of dataFile; none when there is none, it cannot be
/// read, or it belongs to another recovery file (a run killed between writing the two).
std::optional<RecoveryBase> readRecoveryBase(const QString &dataFile);

/// Removes the recovery file of dataFile and its base; false when the recovery file is still
/// there.
bool removeRecoveryFile(const QString &dataFile);

/// Reads a recovery file written by writeRecoveryFile into table, as readCatalogueCopy does;
/// the status is Failed when the file does not end with its check line or the line's count
/// differs.
CatalogueReadResult readRecoveryFile(
    const QString &path, Table &table, qint32 &count, const QLocale &locale);

/// Reads the recovery file of dataFile as readRecoveryFile does, but one that an earlier
/// version wrote (without the check line, and without the record beside it this version
/// writes) is read as the catalogue it holds, with unchecked set: whether it was cut short
/// cannot be told. An empty one is no catalogue.
CatalogueReadResult readChangesLeft(
    const QString &dataFile, Table &table, qint32 &count, const QLocale &locale, bool &unchecked);

/// Keeps table as the recovery file of dataFile (writeRecoveryFile), as private as the
/// catalogue file, with the record of the catalogue file the changes were made to (base).
CatalogueWriteResult keepChanges(const QString &dataFile, const Table &table, qint32 count,
    const QLocale &locale, const RecoveryBase &base);

/// Whether the catalogue file dataFile was written after the changes in its recovery file,
/// made until changesMade: another file than the one the record beside them names (whatever
/// time it carries), or, for a recovery file of an earlier version without that record, a file
/// with a later time.
bool catalogueWrittenSince(const QString &dataFile, const QDateTime &changesMade);

/// Reads a catalogue file into table, which is re-dimensioned to the products read; count
/// receives their number. The result says whether the whole file was read.
CatalogueReadResult readCatalogueCopy(
    const QString &path, Table &table, qint32 &count, const QLocale &locale);

/// How a recovered catalogue differs from the saved one, product by product (by part number).
struct CatalogueChanges
{
    int changed = 0;
    int added = 0;
    int deleted = 0;
};

/// Compares the products of recovered (rows 1..recoveredCount) with those of saved.
CatalogueChanges compareCatalogues(
    const Table &saved, qint32 savedCount, const Table &recovered, qint32 recoveredCount);

/// Keeps the recovery file under a name no later run uses,
/// "twdata-recovered-20261125-140512.dat" with the given time, and returns that path; an
/// empty text when it could not be renamed.
QString keepRecoveryFile(const QString &dataFile, const QDateTime &when);

} // namespace tarnwick
