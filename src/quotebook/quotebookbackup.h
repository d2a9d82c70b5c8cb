#pragma once

#include <QDateTime>
#include <QSqlDatabase>
#include <QString>

#include <optional>

namespace tarnwick::QuoteBookBackup {

/// Copies the open quote book db, as one consistent state, into the file at path through
/// SQLite's online backup: first into a temporary file beside it, which then replaces path in
/// one step, so path always holds a whole book (the new copy or the one before). False when it
/// could not be made; error says why in plain words and path is left as it was.
bool write(QSqlDatabase &db, const QString &path, QString &error);

/// After a damaged book was kept aside as damagedKeptAs ("quotes-damaged-<stamp>.db"): moves
/// the copy of the last close at backupPath beside it as "quotes-backup-<stamp>.db", so the
/// new book's copies never take its place. Its new file name; empty when it could not move.
QString keepAside(const QString &backupPath, const QString &damagedKeptAs);

/// The number of quotes in the copy at path, read as it lies (no lock, nothing written beside
/// it); none when it is not there or cannot be read as a quote book.
std::optional<int> quoteCount(const QString &path);

/// Moves the copy of an earlier book at backupPath aside as "quotes-backup-<date>-<time>.db"
/// beside it (now giving the time), so the copies of a new book never take its place. Its new
/// file name; empty when it could not move.
QString keepEarlierCopy(const QString &backupPath, const QDateTime &now);

} // namespace tarnwick::QuoteBookBackup
