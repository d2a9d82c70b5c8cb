#pragma once

#include <QLocale>
#include <QSqlDatabase>
#include <QSqlError>

namespace tarnwick::QuoteBookSchema {

/// The version of the quote book's tables this program writes (SQLite's user_version).
inline constexpr int CurrentVersion = 7;
/// SQLite's application_id of a quote book ("TWKQ"), which tells it from other SQLite files.
inline constexpr qint32 ApplicationId = 0x54574B51;

/// The user_version of db; -1 when it cannot be read.
int version(QSqlDatabase &db, QSqlError &error);

/// Brings db from its version up to target, one step at a time, each step in a transaction of
/// its own that also sets the new version: a step that fails leaves the book at the version
/// before it. A new, empty file goes through every step. See the .cpp for the steps.
bool migrate(QSqlDatabase &db, int target, const QLocale &locale, QSqlError &error);

} // namespace tarnwick::QuoteBookSchema
