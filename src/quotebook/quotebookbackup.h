#pragma once

#include <QSqlDatabase>
#include <QString>

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

} // namespace tarnwick::QuoteBookBackup
