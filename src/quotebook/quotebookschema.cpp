#include "quotebook/quotebookschema.h"

#include "quotebook/quotebookrows.h"
#include "quotes/quoteline.h"

#include <QSqlQuery>
#include <QStringList>

#include <functional>
#include <vector>

namespace tarnwick::QuoteBookSchema {

namespace {

const char *const LineColumnsSql = "part_number, product_name, unit_price, quantity, "
                                   "extended_price, list_price, includes, "
                                   "kinds TEXT NOT NULL, price_source TEXT NOT NULL";

/// Version 1: the saved quotes (one row per revision, numbered per year), their lines with
/// every cell and its kind, the heading and ending texts (each text once), and the quote in
/// hand with its lines.
bool toVersion1(QSqlDatabase &db, const QLocale &, QSqlError &error)
{
    const QString lines = QString::fromLatin1(LineColumnsSql);
    const QStringList statements {
        QStringLiteral("CREATE TABLE texts (id INTEGER PRIMARY KEY, body TEXT NOT NULL UNIQUE)"),
        QStringLiteral("CREATE TABLE quotes (id INTEGER PRIMARY KEY, "
                       "year INTEGER NOT NULL, sequence INTEGER NOT NULL, "
                       "revision INTEGER NOT NULL, customer TEXT NOT NULL, "
                       "company TEXT NOT NULL, email TEXT NOT NULL, reference TEXT NOT NULL, "
                       "quote_date TEXT NOT NULL, valid_until TEXT NOT NULL, "
                       "status TEXT NOT NULL, "
                       "heading_id INTEGER NOT NULL REFERENCES texts(id), "
                       "ending_id INTEGER NOT NULL REFERENCES texts(id), "
                       "UNIQUE (year, sequence, revision))"),
        QStringLiteral("CREATE TABLE quote_lines (quote_id INTEGER NOT NULL "
                       "REFERENCES quotes(id) ON DELETE CASCADE, line INTEGER NOT NULL, %1, "
                       "PRIMARY KEY (quote_id, line)) WITHOUT ROWID")
            .arg(lines),
        QStringLiteral("CREATE TABLE in_hand (id INTEGER PRIMARY KEY CHECK (id = 1), "
                       "quote_id INTEGER)"),
        QStringLiteral("CREATE TABLE in_hand_lines (line INTEGER PRIMARY KEY, %1)").arg(lines),
        QStringLiteral("PRAGMA application_id = %1").arg(ApplicationId),
    };
    for (const QString &sql : statements) {
        if (!QuoteBookRows::run(db, sql, error))
            return false;
    }
    return true;
}

/// What the search text of every saved quote needs of its header: id, number, customer,
/// company, e-mail address and reference.
bool readHeaders(
    QSqlDatabase &db, std::vector<QuoteHeader> &headers, QSqlError &error, bool onlyStale = false)
{
    QSqlQuery quotes(db);
    quotes.setForwardOnly(true);
    QString sql = QStringLiteral(
        "SELECT id, year, sequence, customer, company, email, reference FROM quotes");
    if (onlyStale)
        sql += QStringLiteral(" WHERE id IN (SELECT quote_id FROM search_stale)");
    if (!quotes.exec(sql)) {
        error = quotes.lastError();
        return false;
    }
    while (quotes.next()) {
        QuoteHeader header;
        header.id = quotes.value(0).toLongLong();
        header.year = quotes.value(1).toInt();
        header.sequence = quotes.value(2).toInt();
        header.customer.customer = quotes.value(3).toString();
        header.customer.company = quotes.value(4).toString();
        header.customer.email = quotes.value(5).toString();
        header.customer.reference = quotes.value(6).toString();
        headers.push_back(header);
    }
    return true;
}

/// The total and the search text of every quote saved before version 2.
bool fillTotalsAndSearch(QSqlDatabase &db, const QLocale &locale, QSqlError &error)
{
    std::vector<QuoteHeader> existing;
    if (!readHeaders(db, existing, error))
        return false;
    QSqlQuery total(db);
    total.prepare(QStringLiteral("UPDATE quotes SET total = ? WHERE id = ?"));
    QSqlQuery search(db);
    search.prepare(QStringLiteral("INSERT INTO quote_search (quote_id, haystack) VALUES (?, ?)"));
    for (const QuoteHeader &header : existing) {
        const auto content =
            // The lines have the columns of version 1 here.
            QuoteBookRows::readLines(
                db, QStringLiteral("quote_lines"), header.id, error, QuoteLine::Includes);
        if (!content)
            return false;
        total.bindValue(0, QuoteBookRows::totalOf(content->lines, locale));
        total.bindValue(1, header.id);
        search.bindValue(0, header.id);
        search.bindValue(1, QuoteBookRows::haystack(header, content->lines));
        if (!QuoteBookRows::run(total, error) || !QuoteBookRows::run(search, error))
            return false;
    }
    return true;
}

/// Version 2: the quote list shows every quote's total and searches number, customer, company
/// and part numbers without reading the lines: each quote keeps its total and its search text,
/// computed here for the quotes saved before, and the list's order has an index.
bool toVersion2(QSqlDatabase &db, const QLocale &locale, QSqlError &error)
{
    const QStringList statements {
        QStringLiteral("ALTER TABLE quotes ADD COLUMN total REAL NOT NULL DEFAULT 0"),
        QStringLiteral("CREATE TABLE quote_search (quote_id INTEGER PRIMARY KEY "
                       "REFERENCES quotes(id) ON DELETE CASCADE, haystack TEXT NOT NULL)"),
        QStringLiteral(
            "CREATE INDEX quotes_newest ON quotes (quote_date, year, sequence, revision)"),
    };
    for (const QString &sql : statements) {
        if (!QuoteBookRows::run(db, sql, error))
            return false;
    }
    return fillTotalsAndSearch(db, locale, error);
}

/// Version 3: a quote line keeps whether its unit price is locked and its further quantities.
/// Lines saved before read both as empty: unlocked, no further quantities.
bool toVersion3(QSqlDatabase &db, const QLocale &, QSqlError &error)
{
    const QStringList statements {
        QStringLiteral("ALTER TABLE quote_lines ADD COLUMN locked"),
        QStringLiteral("ALTER TABLE quote_lines ADD COLUMN quantities"),
        QStringLiteral("ALTER TABLE in_hand_lines ADD COLUMN locked"),
        QStringLiteral("ALTER TABLE in_hand_lines ADD COLUMN quantities"),
    };
    for (const QString &sql : statements) {
        if (!QuoteBookRows::run(db, sql, error))
            return false;
    }
    return true;
}

/// The search text of every quote saved before (or, with onlyStale, of those the trigger
/// noted), made anew by today's rules.
bool remakeSearchTexts(QSqlDatabase &db, QSqlError &error, bool onlyStale = false)
{
    std::vector<QuoteHeader> existing;
    if (!readHeaders(db, existing, error, onlyStale))
        return false;
    QSqlQuery search(db);
    search.prepare(
        QStringLiteral("INSERT OR REPLACE INTO quote_search (quote_id, haystack) VALUES (?, ?)"));
    for (const QuoteHeader &header : existing) {
        const auto content =
            QuoteBookRows::readLines(db, QStringLiteral("quote_lines"), header.id, error);
        if (!content)
            return false;
        search.bindValue(0, header.id);
        search.bindValue(1, QuoteBookRows::haystack(header, content->lines));
        if (!QuoteBookRows::run(search, error))
            return false;
    }
    return true;
}

/// Version 4: the search text is kept without accents, so "jurgen" finds "Jürgen"; the search
/// text of every quote saved before is made anew.
bool toVersion4(QSqlDatabase &db, const QLocale &, QSqlError &error)
{
    return remakeSearchTexts(db, error);
}

/// Version 5: the numbers a book gave out before this one replaced it (it was damaged), which
/// this one does not give again.
bool toVersion5(QSqlDatabase &db, const QLocale &, QSqlError &error)
{
    return QuoteBookRows::run(db,
        QStringLiteral("CREATE TABLE numbers_given (year INTEGER PRIMARY KEY, "
                       "sequence INTEGER NOT NULL)"),
        error);
}

/// Versions 6 and 7: two earlier programs counted new rules for the search texts in the book's
/// version; the tables are those of version 5 (the rule is counted apart now, SearchRule).
/// Steps that change nothing, so that the next change of the tables is version 8.
bool sameTables(QSqlDatabase &, const QLocale &, QSqlError &)
{
    return true;
}

using Step = std::function<bool(QSqlDatabase &, const QLocale &, QSqlError &)>;

/// Step k brings the book from version k − 1 to version k.
const std::vector<Step> &steps()
{
    static const std::vector<Step> all { toVersion1, toVersion2, toVersion3, toVersion4, toVersion5,
        sameTables, sameTables };
    return all;
}

/// The first number a query gives; -1 when it fails.
int numberOf(QSqlDatabase &db, const QString &sql, QSqlError &error)
{
    QSqlQuery query(db);
    if (!query.exec(sql)) {
        error = query.lastError();
        return -1;
    }
    return query.next() ? query.value(0).toInt() : 0;
}

/// What the search texts of a book need: nothing, the noted ones made anew, or all of them.
enum class SearchWork { None, Noted, All, Failed };

SearchWork searchWork(QSqlDatabase &db, int bookVersion, QSqlError &error)
{
    // The two tables and two triggers updateSearchTexts sets up: all of them, or (a book no
    // program of this rule has opened) none.
    const int setUp = numberOf(db,
        QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name IN ('search_rule', "
                       "'search_stale', 'search_written', 'search_rewritten')"),
        error);
    if (setUp < 0)
        return SearchWork::Failed;
    // A book without them: the rule of its version (the versions 6 and 7 counted it).
    int rule = bookVersion > CurrentVersion ? bookVersion : 0;
    int noted = 0;
    if (setUp == 4) {
        rule = numberOf(db, QStringLiteral("SELECT rule FROM search_rule WHERE id = 1"), error);
        noted = numberOf(db, QStringLiteral("SELECT count(*) FROM search_stale"), error);
    }
    if (rule < 0 || noted < 0)
        return SearchWork::Failed;
    if (rule < SearchRule)
        return SearchWork::All;
    if (noted > 0 || setUp < 4 || bookVersion != CurrentVersion)
        return SearchWork::Noted;
    return SearchWork::None;
}

} // namespace

bool updateSearchTexts(QSqlDatabase &db, QSqlError &error)
{
    const int bookVersion = version(db, error);
    if (bookVersion < 0)
        return false;
    // Looked at first: a book that needs nothing is not written to (it may be full, or held
    // by another program for a moment).
    const SearchWork work = searchWork(db, bookVersion, error);
    if (work == SearchWork::None)
        return true;
    if (work == SearchWork::Failed
        || !QuoteBookRows::run(db, QStringLiteral("BEGIN IMMEDIATE"), error))
        return false;
    // Every program that writes a search text leaves its quote's number behind; this one
    // makes those texts anew by its own rule.
    const QStringList setUp {
        QStringLiteral("CREATE TABLE IF NOT EXISTS search_rule (id INTEGER PRIMARY KEY "
                       "CHECK (id = 1), rule INTEGER NOT NULL)"),
        QStringLiteral("CREATE TABLE IF NOT EXISTS search_stale (quote_id INTEGER PRIMARY KEY)"),
        QStringLiteral("CREATE TRIGGER IF NOT EXISTS search_written AFTER INSERT ON quote_search "
                       "BEGIN INSERT OR IGNORE INTO search_stale (quote_id) "
                       "VALUES (NEW.quote_id); END"),
        QStringLiteral("CREATE TRIGGER IF NOT EXISTS search_rewritten AFTER UPDATE ON "
                       "quote_search BEGIN INSERT OR IGNORE INTO search_stale (quote_id) "
                       "VALUES (NEW.quote_id); END"),
    };
    bool done = true;
    for (const QString &sql : setUp)
        done = done && QuoteBookRows::run(db, sql, error);
    done = done && remakeSearchTexts(db, error, work == SearchWork::Noted)
        && QuoteBookRows::run(db, QStringLiteral("DELETE FROM search_stale"), error)
        && QuoteBookRows::run(db,
            QStringLiteral("INSERT OR REPLACE INTO search_rule (id, rule) VALUES (1, %1)")
                .arg(SearchRule),
            error);
    if (done && bookVersion > CurrentVersion)
        done = QuoteBookRows::run(
            db, QStringLiteral("PRAGMA user_version = %1").arg(CurrentVersion), error);
    if (done && QuoteBookRows::run(db, QStringLiteral("COMMIT"), error))
        return true;
    QSqlError ignored;
    QuoteBookRows::run(db, QStringLiteral("ROLLBACK"), ignored);
    return false;
}

int version(QSqlDatabase &db, QSqlError &error)
{
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("PRAGMA user_version")) || !query.next()) {
        error = query.lastError();
        return -1;
    }
    return query.value(0).toInt();
}

bool migrate(QSqlDatabase &db, int target, const QLocale &locale, QSqlError &error)
{
    int current = version(db, error);
    if (current < 0)
        return false;
    for (; current < target && current < int(steps().size()); ++current) {
        if (!QuoteBookRows::run(db, QStringLiteral("BEGIN IMMEDIATE"), error))
            return false;
        const bool done = steps()[std::size_t(current)](db, locale, error)
            && QuoteBookRows::run(
                db, QStringLiteral("PRAGMA user_version = %1").arg(current + 1), error)
            && QuoteBookRows::run(db, QStringLiteral("COMMIT"), error);
        if (!done) {
            QSqlError ignored;
            QuoteBookRows::run(db, QStringLiteral("ROLLBACK"), ignored);
            return false;
        }
    }
    return true;
}

} // namespace tarnwick::QuoteBookSchema
