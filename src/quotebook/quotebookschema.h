#pragma once

#include <QLocale>
#include <QSqlDatabase>
#include <QSqlError>

namespace tarnwick::QuoteBookSchema {

/// The version of the quote book's tables this program writes (SQLite's user_version). Earlier
/// programs read it to know whether they can use a book, so it changes only with the tables:
/// a new rule for the search texts is counted apart (SearchRule).
inline constexpr int CurrentVersion = 5;
/// The versions 6 and 7 that two earlier programs wrote for new search texts alone: their
/// tables are those of version 5. A book above it is of a later program; the next change of
/// the tables is version 8 (migrate's steps 6 and 7 change nothing).
inline constexpr int LastKnownVersion = 7;
/// The rule the search texts are made by ("lukasz" finds "Łukasz", "mueller" "Müller", the
/// e-mail address and reference included), kept in the book's search_rule table; a book of
/// an earlier rule has its search texts made anew when opened.
inline constexpr int SearchRule = 7;
/// SQLite's application_id of a quote book ("TWKQ"), which tells it from other SQLite files.
inline constexpr qint32 ApplicationId = 0x54574B51;

/// The user_version of db; -1 when it cannot be read.
int version(QSqlDatabase &db, QSqlError &error);

/// Brings db from its version up to target, one step at a time, each step in a transaction of
/// its own that also sets the new version: a step that fails leaves the book at the version
/// before it. A new, empty file goes through every step. See the .cpp for the steps.
bool migrate(QSqlDatabase &db, int target, const QLocale &locale, QSqlError &error);

/// Brings the search texts of db up to SearchRule: all of them made anew in a book of an
/// earlier rule (a version 6 book among them), and in any other those written since by any
/// program (a trigger, set up here, keeps their quote numbers; the program's own saves forget
/// theirs). A book of version 6 or 7 goes back to 5, which earlier programs can open. A book
/// that needs nothing is only read. False, with nothing changed, when it could not be done.
bool updateSearchTexts(QSqlDatabase &db, QSqlError &error);

} // namespace tarnwick::QuoteBookSchema
