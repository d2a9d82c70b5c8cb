#pragma once

#include <QSqlDatabase>
#include <QString>

namespace tarnwick::QuoteBookBackup {

/// Copies the open quote book db, as one consistent state, into the file at path through
/// SQLite's online backup: first into a temporary file beside it, which then replaces path in
/// one step, so path always holds a whole book (the new copy or the one before). False when it
/// could not be made; error says why in plain words and path is left as it was.
bool write(QSqlDatabase &db, const QString &path, QString &error);

} // namespace tarnwick::QuoteBookBackup
