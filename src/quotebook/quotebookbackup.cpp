// The only source of the program that talks to SQLite itself: Qt SQL offers no online backup,
// so the connection's own handle is handed to sqlite3_backup_*.
#include "quotebook/quotebookbackup.h"

#include "platform/filewrite.h"
#include "quotebook/quotebookrows.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QVariant>

#include <sqlite3.h>

#include <filesystem>
#include <system_error>

namespace tarnwick::QuoteBookBackup {

namespace {

sqlite3 *handleOf(QSqlDatabase &db)
{
    const QVariant handle = db.driver() ? db.driver()->handle() : QVariant();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.constData());
}

/// Whether Qt's driver runs the SQLite this program links. A driver built with an SQLite of its
/// own (Qt's packages for Windows carry one inside the driver) hands out handles this copy
/// cannot use; it tells its own version and source, which then differ from these.
bool driverSharesThisSqlite(QSqlDatabase &db)
{
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("SELECT sqlite_source_id()")) || !query.next())
        return false;
    return query.value(0).toString() == QString::fromUtf8(sqlite3_sourceid());
}

/// Copies every page of source into the file at path (which must not exist).
bool copyInto(sqlite3 *source, const QString &path, QString &error)
{
    sqlite3 *target = nullptr;
    // SQLite takes file names in UTF-8 (on Windows the local 8-bit form is the ANSI code page).
    const QByteArray name = path.toUtf8();
    int result = sqlite3_open_v2(
        name.constData(), &target, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (result == SQLITE_OK) {
        sqlite3_backup *backup = sqlite3_backup_init(target, "main", source, "main");
        if (backup) {
            result = sqlite3_backup_step(backup, -1);
            sqlite3_backup_finish(backup);
            if (result == SQLITE_DONE)
                result = SQLITE_OK;
        } else {
            result = sqlite3_errcode(target);
        }
    }
    if (result != SQLITE_OK)
        error = QString::fromUtf8(target ? sqlite3_errmsg(target) : sqlite3_errstr(result));
    if (sqlite3_close(target) != SQLITE_OK && result == SQLITE_OK) {
        error = QStringLiteral("the copy could not be closed");
        result = SQLITE_ERROR;
    }
    return result == SQLITE_OK;
}

} // namespace

bool write(QSqlDatabase &db, const QString &path, QString &error)
{
    sqlite3 *source = handleOf(db);
    if (!source || !db.isOpen()) {
        error = QStringLiteral("the quote book is not open");
        return false;
    }
    if (!driverSharesThisSqlite(db)) {
        error = QStringLiteral("this build of Tarnwick uses a Qt whose SQLite is not its own");
        return false;
    }
    const QString temporary = path + QStringLiteral(".new");
    // SQLite writes the copy with a rollback journal beside it, which a copy that fails (a
    // full disk) leaves behind.
    const auto removeTemporary = [&temporary] {
        QFile::remove(temporary);
        QFile::remove(temporary + QStringLiteral("-journal"));
    };
    removeTemporary();
    if (!copyInto(source, temporary, error)) {
        removeTemporary();
        return false;
    }
    // The copy is as private as the book, and of its group.
    const QFileInfo book(db.databaseName());
    if (book.exists())
        takeAccess(book.filePath(), temporary);
    std::error_code failed;
    std::filesystem::rename(
        QFileInfo(temporary).filesystemFilePath(), QFileInfo(path).filesystemFilePath(), failed);
    if (failed) {
        error = QString::fromStdString(failed.message());
        removeTemporary();
        return false;
    }
    return true;
}

QString keepAside(const QString &backupPath, const QString &damagedKeptAs)
{
    const QString damaged = QFileInfo(damagedKeptAs).fileName();
    QString kept =
        QString(damaged).replace(QStringLiteral("-damaged-"), QStringLiteral("-backup-"));
    if (kept.isEmpty() || kept == damaged
        || !QFile::rename(backupPath, QFileInfo(backupPath).dir().filePath(kept)))
        return {};
    return kept;
}

std::optional<int> quoteCount(const QString &path)
{
    std::optional<int> count;
    QuoteBookRows::readBookAsItLies(path, QStringLiteral("tarnwick-copy-%1").arg(quintptr(&count)),
        [&count](QSqlDatabase &copy) {
            QSqlQuery query(copy);
            if (query.exec(QStringLiteral("SELECT count(*) FROM quotes")) && query.next())
                count = query.value(0).toInt();
        });
    return count;
}

QString keepEarlierCopy(const QString &backupPath, const QDateTime &now)
{
    QString kept =
        QStringLiteral("quotes-backup-%1.db").arg(now.toString(QStringLiteral("yyyyMMdd-HHmmss")));
    if (!QFile::rename(backupPath, QFileInfo(backupPath).dir().filePath(kept)))
        return {};
    return kept;
}

} // namespace tarnwick::QuoteBookBackup
