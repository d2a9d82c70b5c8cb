// The quote book's saved quotes and the quote in hand: saving, numbering, loading, the list
// and its search.
#include "quotebook/quotebook.h"

#include "quotebook/quotebookrows.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <map>

namespace tarnwick {

namespace {

const QString SavedLines = QStringLiteral("quote_lines");
const QString HandLines = QStringLiteral("in_hand_lines");

/// A date as the book keeps it, "yyyy-MM-dd", read from its digits (the list reads 10,000 of
/// them); anything else goes through Qt's reading.
QDate isoDateOf(const QString &text)
{
    const auto digits = [&](qsizetype from, qsizetype count) {
        int value = 0;
        for (qsizetype i = from; i < from + count; ++i) {
            const char16_t c = text.at(i).unicode();
            if (c < u'0' || c > u'9')
                return -1;
            value = value * 10 + (c - u'0');
        }
        return value;
    };
    if (text.size() == 10 && text.at(4) == u'-' && text.at(7) == u'-') {
        const QDate date(digits(0, 4), digits(5, 2), digits(8, 2));
        if (date.isValid())
            return date;
    }
    return QDate::fromString(text, Qt::ISODate);
}

QDate dateOf(const QVariant &value)
{
    return isoDateOf(value.toString());
}

/// The header of a quote from the columns load() selects.
QuoteHeader headerOf(const QSqlQuery &select)
{
    QuoteHeader header;
    header.year = select.value(0).toInt();
    header.sequence = select.value(1).toInt();
    header.revision = select.value(2).toInt();
    header.customer = { select.value(3).toString(), select.value(4).toString(),
        select.value(5).toString(), select.value(6).toString() };
    header.date = dateOf(select.value(7));
    header.validUntil = dateOf(select.value(8));
    header.status =
        QuoteStatuses::fromName(select.value(9).toString()).value_or(QuoteStatus::Draft);
    header.heading = select.value(10).toString();
    header.ending = select.value(11).toString();
    return header;
}

} // namespace

/// The next number of the year of the quote's date, revision A, inside the caller's
/// transaction.
bool QuoteBook::numberAndInsert(SavedQuote &quote)
{
    QSqlError error;
    // After the numbers another book gave out, where this one replaced a damaged book.
    QSqlQuery &next = prepared(
        QStringLiteral("SELECT max(coalesce((SELECT max(sequence) FROM quotes WHERE year = ?), 0), "
                       "coalesce((SELECT sequence FROM numbers_given WHERE year = ?), 0)) + 1"));
    next.bindValue(0, quote.header.date.year());
    next.bindValue(1, quote.header.date.year());
    if (!QuoteBookRows::run(next, error) || !next.next()) {
        next.finish();
        return fail(error);
    }
    quote.header.year = quote.header.date.year();
    quote.header.sequence = next.value(0).toInt();
    quote.header.revision = 0;
    next.finish();
    quote.total = QuoteBookRows::totalOf(quote.content.lines, m_locale);
    return insertQuote(quote);
}

bool QuoteBook::continueNumbersOf(const QString &otherBook)
{
    if (!isOpen())
        return fail(QStringLiteral("the quote book is not open"));
    // Read as it lies, without locks or a log of its own: it may be damaged, and nothing
    // writes it any more.
    std::map<int, int> highest;
    QuoteBookRows::readBookAsItLies(
        otherBook, m_connection + QStringLiteral("-other"), [&highest](QSqlDatabase &other) {
            QSqlQuery given(other);
            if (given.exec(
                    QStringLiteral("SELECT year, max(sequence) FROM quotes GROUP BY year"))) {
                while (given.next())
                    highest[given.value(0).toInt()] = given.value(1).toInt();
            }
        });
    QSqlError error;
    QSqlQuery &keep = prepared(QStringLiteral(
        "INSERT INTO numbers_given (year, sequence) VALUES (?, ?) "
        "ON CONFLICT (year) DO UPDATE SET sequence = max(sequence, excluded.sequence)"));
    for (const auto &[year, sequence] : highest) {
        keep.bindValue(0, year);
        keep.bindValue(1, sequence);
        if (!QuoteBookRows::run(keep, error))
            return fail(error);
    }
    return true;
}

bool QuoteBook::saveNew(SavedQuote &quote)
{
    if (!isOpen())
        return fail(QStringLiteral("the quote book is not open"));
    const QuoteHeader before = quote.header;
    if (!fullSync(true) || !begin())
        return false;
    if (!numberAndInsert(quote) || !commit()) {
        rollback();
        quote.header = before;
        return false;
    }
    return true;
}

bool QuoteBook::saveNewQuotes(std::vector<SavedQuote> &quotes)
{
    if (!isOpen())
        return fail(QStringLiteral("the quote book is not open"));
    std::vector<QuoteHeader> before;
    before.reserve(quotes.size());
    for (const SavedQuote &quote : quotes)
        before.push_back(quote.header);
    if (!fullSync(true) || !begin())
        return false;
    bool done = true;
    for (auto quote = quotes.begin(); done && quote != quotes.end(); ++quote)
        done = numberAndInsert(*quote);
    if (!done || !commit()) {
        rollback();
        for (std::size_t i = 0; i < quotes.size(); ++i)
            quotes[i].header = before[i];
        return false;
    }
    return true;
}

bool QuoteBook::saveRevision(SavedQuote &quote)
{
    if (!isOpen())
        return fail(QStringLiteral("the quote book is not open"));
    const QuoteHeader before = quote.header;
    if (!fullSync(true) || !begin())
        return false;
    const std::optional<int> revision = nextRevision(quote.header.year, quote.header.sequence);
    if (!revision) {
        rollback();
        return false;
    }
    quote.header.revision = *revision;
    quote.total = QuoteBookRows::totalOf(quote.content.lines, m_locale);
    if (!insertQuote(quote) || !commit()) {
        rollback();
        quote.header = before;
        return false;
    }
    return true;
}

std::optional<int> QuoteBook::nextRevision(int year, int sequence)
{
    if (!isOpen()) {
        fail(QStringLiteral("the quote book is not open"));
        return std::nullopt;
    }
    QSqlError error;
    QSqlQuery next(m_db);
    next.prepare(QStringLiteral("SELECT coalesce(max(revision), -1) + 1 FROM quotes "
                                "WHERE year = ? AND sequence = ?"));
    next.bindValue(0, year);
    next.bindValue(1, sequence);
    if (!QuoteBookRows::run(next, error) || !next.next()) {
        fail(error);
        return std::nullopt;
    }
    return next.value(0).toInt();
}

bool QuoteBook::update(SavedQuote &quote)
{
    if (!isOpen())
        return fail(QStringLiteral("the quote book is not open"));
    if (!fullSync(true) || !begin())
        return false;
    const QuoteHeader &header = quote.header;
    quote.total = QuoteBookRows::totalOf(quote.content.lines, m_locale);
    const qint64 heading = textId(header.heading);
    const qint64 ending = textId(header.ending);
    QSqlQuery change(m_db);
    change.prepare(QStringLiteral(
        "UPDATE quotes SET customer = ?, company = ?, email = ?, reference = ?, "
        "valid_until = ?, status = ?, heading_id = ?, ending_id = ?, total = ? WHERE id = ?"));
    const QVariantList values { QuoteBookRows::sqlText(header.customer.customer),
        QuoteBookRows::sqlText(header.customer.company),
        QuoteBookRows::sqlText(header.customer.email),
        QuoteBookRows::sqlText(header.customer.reference),
        QuoteBookRows::sqlText(header.validUntil.toString(Qt::ISODate)),
        QuoteStatuses::name(header.status), heading, ending, quote.total, header.id };
    for (int i = 0; i < values.size(); ++i)
        change.bindValue(i, values.at(i));
    QSqlError error;
    bool done = heading != 0 && ending != 0 && QuoteBookRows::run(change, error);
    if (done && change.numRowsAffected() != 1)
        done = fail(QStringLiteral("the quote is no longer in the quote book"));
    else if (!done && error.isValid())
        fail(error);
    if (!done || !writeSearchAndLines(quote) || !commit()) {
        rollback();
        return false;
    }
    return true;
}

std::optional<SavedQuote> QuoteBook::load(qint64 id)
{
    if (!isOpen()) {
        fail(QStringLiteral("the quote book is not open"));
        return std::nullopt;
    }
    QSqlQuery select(m_db);
    select.prepare(QStringLiteral(
        "SELECT q.year, q.sequence, q.revision, q.customer, q.company, q.email, q.reference, "
        "q.quote_date, q.valid_until, q.status, h.body, e.body, q.total FROM quotes q "
        "JOIN texts h ON h.id = q.heading_id JOIN texts e ON e.id = q.ending_id WHERE q.id = ?"));
    select.bindValue(0, id);
    QSqlError error;
    if (!QuoteBookRows::run(select, error)) {
        fail(error);
        return std::nullopt;
    }
    if (!select.next()) {
        fail(QStringLiteral("the quote is not in the quote book"));
        return std::nullopt;
    }
    SavedQuote quote;
    quote.header = headerOf(select);
    quote.header.id = id;
    quote.total = select.value(12).toDouble();
    select.finish();
    auto content = QuoteBookRows::readLines(m_db, SavedLines, id, error);
    if (!content) {
        fail(error);
        return std::nullopt;
    }
    quote.content = std::move(*content);
    return quote;
}

/// The list reads the quotes table alone; a search joins each quote's search text, which holds
/// its number, customer, company and part numbers, so no line is read either way.
QList<QuoteSummary> QuoteBook::list(const QString &find)
{
    QList<QuoteSummary> quotes;
    m_listFailed = !isOpen();
    if (!isOpen())
        return quotes;
    const QuoteBookRows::SearchTerms terms = QuoteBookRows::searchTerms(find);
    const QStringList &words = terms.words;
    QString sql = QStringLiteral("SELECT q.id, q.year, q.sequence, q.revision, q.customer, "
                                 "q.company, q.quote_date, q.total, q.status, q.valid_until "
                                 "FROM quotes q");
    QStringList tests;
    QVariantList values;
    if (!words.isEmpty()) {
        sql += QStringLiteral(" JOIN quote_search s ON s.quote_id = q.id");
        // lower(): a search text kept by an earlier version may hold a capital letter its
        // folding left ("Izmir" from "İzmir"); every such letter is ASCII, which SQLite lowers.
        for (const QString &word : words) {
            tests << QStringLiteral("instr(lower(s.haystack), ?) > 0");
            values << word;
        }
    }
    // A number with its revision letter is that revision; several numbers are any of them.
    QStringList numbers;
    for (const QuoteBookRows::NumberSearch &number : terms.numbers) {
        numbers << (number.revision ? QStringLiteral("(q.year = ? AND q.sequence = ? AND "
                                                     "q.revision = ?)")
                                    : QStringLiteral("(q.year = ? AND q.sequence = ?)"));
        values << number.year << number.sequence;
        if (number.revision)
            values << *number.revision;
    }
    if (!numbers.isEmpty())
        tests << QLatin1Char('(') + numbers.join(QLatin1String(" OR ")) + QLatin1Char(')');
    if (!tests.isEmpty())
        sql += QStringLiteral(" WHERE ") + tests.join(QLatin1String(" AND "));
    sql += QStringLiteral(
        " ORDER BY q.quote_date DESC, q.year DESC, q.sequence DESC, q.revision DESC");
    QSqlQuery select(m_db);
    select.setForwardOnly(true);
    // A statement that cannot be prepared (a book whose tables cannot be read) says why there,
    // not when it is run.
    m_listFailed = !select.prepare(sql);
    if (m_listFailed) {
        fail(select.lastError());
        return quotes;
    }
    for (qsizetype i = 0; i < values.size(); ++i)
        select.bindValue(int(i), values.at(i));
    QSqlError error;
    if (!QuoteBookRows::run(select, error)) {
        m_listFailed = true;
        fail(error);
        return quotes;
    }
    while (select.next()) {
        QuoteSummary summary;
        summary.id = select.value(0).toLongLong();
        summary.year = select.value(1).toInt();
        summary.sequence = select.value(2).toInt();
        summary.revision = select.value(3).toInt();
        summary.customer = select.value(4).toString();
        summary.company = select.value(5).toString();
        summary.date = isoDateOf(select.value(6).toString());
        summary.total = select.value(7).toDouble();
        summary.status =
            QuoteStatuses::fromName(select.value(8).toString()).value_or(QuoteStatus::Draft);
        summary.validUntil = isoDateOf(select.value(9).toString());
        quotes.append(std::move(summary));
    }
    return quotes;
}

bool QuoteBook::setStatus(qint64 id, QuoteStatus status)
{
    if (!isOpen())
        return fail(QStringLiteral("the quote book is not open"));
    if (!fullSync(true))
        return false;
    QSqlQuery change(m_db);
    change.prepare(QStringLiteral("UPDATE quotes SET status = ? WHERE id = ?"));
    change.bindValue(0, QuoteStatuses::name(status));
    change.bindValue(1, id);
    QSqlError error;
    if (!QuoteBookRows::run(change, error))
        return fail(error);
    return change.numRowsAffected() == 1
        || fail(QStringLiteral("the quote is not in the quote book"));
}

int QuoteBook::quoteCount()
{
    QSqlQuery count(m_db);
    if (!isOpen() || !count.exec(QStringLiteral("SELECT count(*) FROM quotes")) || !count.next())
        return 0;
    return count.value(0).toInt();
}

bool QuoteBook::keepInHand(const InHand &inHand)
{
    if (!isOpen())
        return fail(QStringLiteral("the quote book is not open"));
    if (!fullSync(false) || !begin())
        return false;
    QSqlError error;
    QSqlQuery which(m_db);
    which.prepare(QStringLiteral("INSERT OR REPLACE INTO in_hand (id, quote_id) VALUES (1, ?)"));
    which.bindValue(0, inHand.quoteId != 0 ? QVariant(inHand.quoteId) : QVariant());
    const bool done = QuoteBookRows::run(m_db, QStringLiteral("DELETE FROM in_hand_lines"), error)
        && QuoteBookRows::writeLines(statementFor(), HandLines, 0, inHand.content, m_locale, error)
        && QuoteBookRows::run(which, error);
    if (!done) {
        rollback();
        return fail(error);
    }
    return commit();
}

std::optional<QuoteBook::InHand> QuoteBook::inHand()
{
    if (!isOpen())
        return std::nullopt;
    QSqlQuery select(m_db);
    QSqlError error;
    if (!select.exec(QStringLiteral("SELECT quote_id FROM in_hand WHERE id = 1"))) {
        fail(select.lastError());
        return std::nullopt;
    }
    if (!select.next())
        return std::nullopt;
    InHand inHand;
    inHand.quoteId = select.value(0).isNull() ? 0 : select.value(0).toLongLong();
    select.finish();
    auto content = QuoteBookRows::readLines(m_db, HandLines, 0, error);
    if (!content) {
        fail(error);
        return std::nullopt;
    }
    inHand.content = std::move(*content);
    return inHand;
}

} // namespace tarnwick
