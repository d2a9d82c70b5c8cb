#pragma once

#include "quotebook/quoterecord.h"
#include "quotes/quoteline.h"

#include <QLocale>
#include <QSqlDatabase>
#include <QSqlError>
#include <QString>
#include <QVariant>

#include <functional>
#include <optional>

class QSqlQuery;

namespace tarnwick {

class Cell;

/// The rows of the quote book's tables as the program's types: the cells of quote lines with
/// their kinds, the lines of a saved quote or of the quote in hand, and the search text.
namespace QuoteBookRows {

/// A text as an SQL text value; a null QString gives the empty text, never SQL's NULL.
QVariant sqlText(const QString &text);
/// A cell as an SQL value, and the letter its kind is kept as ("E" empty, "N" null, "T" text,
/// "S" single, "D" double, "I" 32-bit integer): together they give back the very cell.
QVariant sqlValue(const Cell &cell);
QChar kindLetter(const Cell &cell);
/// The cell of an SQL value and a kind letter. A value that does not fit its kind (a file
/// changed by another program) becomes the nearest cell: a text, or empty.
Cell cellOf(const QVariant &value, QChar kind);

/// A cell of a quote line as the quote book keeps it: a unit price or a quantity typed as a
/// number in the user's own form ("1.234,56", "1.000", "12,5" in German) is kept as that
/// number (a quantity as a whole number), so a colleague under another locale, or the user
/// after a change of regional settings, reads the same price; digits alone ("12"), which every
/// locale reads alike, and any other cell are kept as they are.
Cell bookCell(const Cell &cell, int field, const QLocale &locale);

/// The prepared statement of insertLinesSql(table, rows) (the quote book keeps each once per
/// connection).
using StatementFor = std::function<QSqlQuery &(const QString &table, int rows)>;

/// The statement that inserts rows lines at once into table ("quote_lines", whose rows start
/// with the quote's key, or "in_hand_lines"), with the first fields fields of each line.
QString insertLinesSql(const QString &table, int rows, int fields = QuoteLine::FieldCount);
/// Writes the first fields fields of the lines of content into table, inside the caller's
/// transaction, several lines per statement (statements from statementFor, made by
/// insertLinesSql with the same fields); each cell as bookCell gives it for locale.
bool writeLines(const StatementFor &statementFor, const QString &table, qint64 quoteId,
    const QuoteContent &content, const QLocale &locale, QSqlError &error,
    int fields = QuoteLine::FieldCount);
/// Reads them back in line order; none on an error. Only the first fields fields are read (a
/// book being brought up from a version whose lines had fewer columns); the rest stay empty.
std::optional<QuoteContent> readLines(QSqlDatabase &db, const QString &table, qint64 quoteId,
    QSqlError &error, int fields = QuoteLine::FieldCount);

/// What the quote list's search looks in: the number, the customer, the company, the e-mail
/// address, the reference and every part number of the lines, case-folded and without accents
/// (searchable), one per line of text; where they hold "ä", "ö" or "ü", once more with "ae",
/// "oe" and "ue" ("Müller" is found by "muller" and by "mueller").
QString haystack(const QuoteHeader &header, const Table &lines);
/// Text as the search compares it: case-folded, its letters without their accents ("Jürgen"
/// and "jurgen" alike), "ß" as "ss".
QString searchable(const QString &text);

/// A quote number typed into the search box, as the program writes it anywhere ("Q-2026-0051",
/// "Q-2026-0051 A", "Quote Q-2026-0051 A", the PDF's "Q-2026-0051-A"): that quote, of one
/// revision when a letter follows.
struct NumberSearch
{
    int year = 0;
    int sequence = 0;
    std::optional<int> revision;
};
/// What a text typed into the search box asks for: the quote numbers in it, and the words of
/// the rest (searchable), every one of which must be found in a quote's haystack.
struct SearchTerms
{
    std::vector<NumberSearch> numbers;
    QStringList words;
};
SearchTerms searchTerms(const QString &text);

/// The quote's total as the totals compute it (the rounded extended prices).
double totalOf(const Table &lines, const QLocale &locale);

/// Runs a prepared query; on failure error holds why.
bool run(QSqlQuery &query, QSqlError &error);
/// Runs one statement without parameters.
bool run(QSqlDatabase &db, const QString &sql, QSqlError &error);
/// Sets db (not yet open) to read the book at path as it lies: read-only, SQLite's
/// "immutable" (no lock taken, no log or index made beside it).
void readAsItLies(QSqlDatabase &db, const QString &path);
/// Opens the book at path as it lies on a connection of its own (named connection), hands it
/// to read when it opened, and closes and removes the connection again. False when the file is
/// not there or did not open.
bool readBookAsItLies(const QString &path, const QString &connection,
    const std::function<void(QSqlDatabase &)> &read);
/// The SQLite address of the file at path, read as it lies. A path that begins with two
/// slashes (a Windows share, "//server/share/...") keeps them in the address's path: SQLite
/// takes no server name in an address.
QString readAsItLiesUri(const QString &path);
/// SQLite's primary result code of an error (extended codes keep it in their low byte).
int resultCode(const QSqlError &error);

} // namespace QuoteBookRows

} // namespace tarnwick
