#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

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
};

/// What writing the catalogue file came to.
struct CatalogueWriteResult
{
    bool ok = true;
    QString detail; ///< why the save failed, in words a user understands
    int rowsWritten = 0;
};

/// The field terminator of the catalogue file: three characters of code 127 in a row.
QString fieldEnd();

/// Called when the new catalogue has been written and flushed to its temporary file, just
/// before it takes the place of the old one; returning false abandons the save at that point.
/// Tests use it to prove that a save interrupted there leaves the old file as it was.
using BeforeReplaceHook = std::function<bool()>;

/// Writes bytes as the catalogue file at path without ever leaving a half-written file: the
/// bytes go to a temporary file in the same folder, the previous file is copied to
/// catalogueBackupPath(path), and only then does the new file take the old one's place. On any
/// failure the old file keeps its bytes and no temporary file stays behind.
CatalogueWriteResult writeCatalogueFile(
    const QString &path, const QByteArray &bytes, const BeforeReplaceHook &beforeReplace = {});

/// Where a save keeps the previous catalogue: the data file's base name with ".bak" in the
/// same folder ("twdata.bak" beside "twdata.dat").
QString catalogueBackupPath(const QString &dataFile);

/// Keeps an unreadable catalogue file under a name that no later save overwrites
/// ("twdata-unread-20261122-140512.dat" beside it) and returns that path; an empty text
/// when it could not be kept.
QString preserveUnreadCatalogue(const QString &dataFile);

} // namespace tarnwick
