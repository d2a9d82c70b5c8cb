#include "quotebook/quotebookrows.h"

#include "core/cell.h"
#include "core/conversions.h"
#include "quotes/quoteline.h"
#include "quotes/quotepricing.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QUrl>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace tarnwick::QuoteBookRows {

namespace {

/// The columns of a quote line, in the order of the quote's fields.
constexpr std::array<const char *, QuoteLine::FieldCount> LineColumns { "part_number",
    "product_name", "unit_price", "quantity", "extended_price", "list_price", "includes", "locked",
    "quantities" };

/// The columns of the first fields fields of a quote line.
QString lineColumns(int fields = QuoteLine::FieldCount)
{
    QStringList names;
    for (int field = 0; field < fields; ++field)
        names << QString::fromLatin1(LineColumns[std::size_t(field)]);
    return names.join(QLatin1String(", "));
}

} // namespace

Cell bookCell(const Cell &cell, int field, const QLocale &locale)
{
    if (!cell.isText() || (field != QuoteLine::UnitPrice && field != QuoteLine::Quantity))
        return cell;
    const QString text = cell.asText();
    const std::optional<double> value = conv::parseNumber(text, locale);
    if (!value || !std::isfinite(*value))
        return cell;
    // Digits alone ("12") mean the same in every locale: kept as typed. A mark among them does
    // not ("2.675" is two thousand six hundred and seventy-five in German).
    const QString trimmed = text.trimmed();
    if (!trimmed.isEmpty() && std::all_of(trimmed.cbegin(), trimmed.cend(), [](QChar c) {
            return c >= QLatin1Char('0') && c <= QLatin1Char('9');
        }))
        return cell;
    if (field == QuoteLine::UnitPrice)
        return std::fabs(*value) <= double(std::numeric_limits<float>::max()) ? Cell(*value) : cell;
    // A quantity the line cannot count in ("1,5", "1e10") stays as typed, as the line says.
    if (*value != std::trunc(*value) || *value < std::numeric_limits<qint32>::min()
        || *value > std::numeric_limits<qint32>::max())
        return cell;
    return Cell(qint32(*value));
}

QVariant sqlValue(const Cell &cell)
{
    switch (cell.kind()) {
    case Cell::Kind::Text:
        return sqlText(cell.asText());
    case Cell::Kind::Single:
    case Cell::Kind::Double:
        return cell.asNumber();
    case Cell::Kind::Int32:
        return qint32(cell.asNumber());
    case Cell::Kind::Empty:
    case Cell::Kind::Null:
        break;
    }
    return QVariant();
}

QChar kindLetter(const Cell &cell)
{
    switch (cell.kind()) {
    case Cell::Kind::Empty:
        return u'E';
    case Cell::Kind::Null:
        return u'N';
    case Cell::Kind::Text:
        return u'T';
    case Cell::Kind::Single:
        return u'S';
    case Cell::Kind::Double:
        return u'D';
    case Cell::Kind::Int32:
        return u'I';
    }
    return u'E';
}

QVariant sqlText(const QString &text)
{
    // A null QString would be stored as SQL NULL: an empty text stays a text.
    return text.isNull() ? QVariant(QStringLiteral("")) : QVariant(text);
}

Cell cellOf(const QVariant &value, QChar kind)
{
    if (kind == u'N')
        return Cell::null();
    if (kind == u'T')
        return Cell(value.toString());
    if (value.isNull())
        return Cell();
    bool ok = false;
    if (kind == u'S' || kind == u'D' || kind == u'I') {
        // A number no cell of its kind holds (a book changed by another program) is kept as
        // the text stored: a float beyond its range would be infinite.
        const double number = value.toDouble(&ok);
        if (ok && kind == u'S' && std::fabs(number) <= double(std::numeric_limits<float>::max()))
            return Cell(float(number));
        if (ok && kind == u'D' && std::isfinite(number))
            return Cell(number);
        const qint64 whole = value.toLongLong(&ok);
        if (ok && whole >= std::numeric_limits<qint32>::min()
            && whole <= std::numeric_limits<qint32>::max())
            return Cell(qint32(whole));
    }
    return Cell(value.toString());
}

bool run(QSqlQuery &query, QSqlError &error)
{
    if (query.exec())
        return true;
    error = query.lastError();
    return false;
}

bool run(QSqlDatabase &db, const QString &sql, QSqlError &error)
{
    QSqlQuery query(db);
    if (query.exec(sql))
        return true;
    error = query.lastError();
    return false;
}

void readAsItLies(QSqlDatabase &db, const QString &path)
{
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_OPEN_URI"));
    db.setDatabaseName(readAsItLiesUri(path));
}

bool readBookAsItLies(
    const QString &path, const QString &connection, const std::function<void(QSqlDatabase &)> &read)
{
    bool opened = false;
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        readAsItLies(other, path);
        opened = QFileInfo(path).isFile() && other.open();
        if (opened)
            read(other);
        other.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return opened;
}

QString readAsItLiesUri(const QString &path)
{
    const QString slashed = QDir::fromNativeSeparators(path);
    // QUrl would make a server name of what follows the two slashes (and write it in lower
    // case); the address keeps the whole path after an empty server name instead.
    const QString uri = slashed.startsWith(QLatin1String("//"))
        ? QStringLiteral("file://")
            + QString::fromLatin1(QUrl::toPercentEncoding(slashed, QByteArrayLiteral("/")))
        : QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
    return uri + QStringLiteral("?immutable=1");
}

int resultCode(const QSqlError &error)
{
    return error.nativeErrorCode().toInt() & 0xff;
}

QString insertLinesSql(const QString &table, int rows, int fields)
{
    fields = qBound(1, fields, QuoteLine::FieldCount);
    const bool ofQuote = table == QLatin1String("quote_lines");
    // The line number, every field, the kinds and the price source; the quote's id first.
    const int placeholders = fields + 3 + (ofQuote ? 1 : 0);
    QStringList marks;
    for (int mark = 0; mark < placeholders; ++mark)
        marks << QStringLiteral("?");
    const QString values = QLatin1Char('(') + marks.join(QLatin1String(", ")) + QLatin1Char(')');
    QStringList all;
    for (int row = 0; row < rows; ++row)
        all << values;
    return QStringLiteral("INSERT INTO %1 (%2line, %3, kinds, price_source) VALUES %4")
        .arg(table, ofQuote ? QStringLiteral("quote_id, ") : QString(), lineColumns(fields),
            all.join(QLatin1String(", ")));
}

namespace {

/// Up to this many lines go into one statement.
constexpr int LinesPerStatement = 50;

/// Binds the values of line row of content, from position at on.
void bindLine(QSqlQuery &insert, int &at, bool withQuoteId, qint64 quoteId,
    const QuoteContent &content, int row, int fields, const QLocale &locale)
{
    const Table &lines = content.lines;
    if (withQuoteId)
        insert.bindValue(at++, quoteId);
    insert.bindValue(at++, row);
    QString kinds;
    for (int field = 1; field <= fields; ++field) {
        const Cell cell =
            field <= lines.fieldCount() ? bookCell(lines.get(row, field), field, locale) : Cell();
        insert.bindValue(at++, sqlValue(cell));
        kinds += kindLetter(cell);
    }
    insert.bindValue(at++, kinds);
    const std::size_t index = std::size_t(row - 1);
    insert.bindValue(at++,
        PriceSources::storedName(
            index < content.sources.size() ? content.sources[index] : PriceSource::Typed));
}

} // namespace

bool writeLines(const StatementFor &statementFor, const QString &table, qint64 quoteId,
    const QuoteContent &content, const QLocale &locale, QSqlError &error, int fields)
{
    fields = qBound(1, fields, QuoteLine::FieldCount);
    const bool withQuoteId = table == QLatin1String("quote_lines");
    const int count = content.lines.rowCount();
    for (int first = 1; first <= count; first += LinesPerStatement) {
        const int rows = qMin(LinesPerStatement, count - first + 1);
        QSqlQuery &insert = statementFor(table, rows);
        int at = 0;
        for (int row = first; row < first + rows; ++row)
            bindLine(insert, at, withQuoteId, quoteId, content, row, fields, locale);
        if (!run(insert, error))
            return false;
    }
    return true;
}

std::optional<QuoteContent> readLines(
    QSqlDatabase &db, const QString &table, qint64 quoteId, QSqlError &error, int fields)
{
    fields = qBound(1, fields, QuoteLine::FieldCount);
    const bool ofQuote = table == QLatin1String("quote_lines");
    QSqlQuery select(db);
    select.setForwardOnly(true);
    select.prepare(QStringLiteral("SELECT %1, kinds, price_source FROM %2 %3 ORDER BY line")
                       .arg(lineColumns(fields), table,
                           ofQuote ? QStringLiteral("WHERE quote_id = ?") : QString()));
    if (ofQuote)
        select.bindValue(0, quoteId);
    if (!run(select, error))
        return std::nullopt;
    std::vector<std::array<Cell, QuoteLine::FieldCount>> rows;
    QuoteContent content;
    while (select.next()) {
        const QString kinds = select.value(fields).toString();
        std::array<Cell, QuoteLine::FieldCount> cells;
        // A field a line was saved without (a lock, further quantities) reads as empty.
        for (int field = 0; field < fields; ++field)
            cells[std::size_t(field)] =
                cellOf(select.value(field), field < kinds.size() ? kinds.at(field) : QChar(u'E'));
        rows.push_back(std::move(cells));
        const auto source = PriceSources::fromStoredName(select.value(fields + 1).toString());
        content.sources.push_back(source ? *source : PriceSource::Typed);
    }
    if (select.lastError().isValid()) {
        error = select.lastError();
        return std::nullopt;
    }
    content.lines.redim(int(rows.size()), QuoteLine::FieldCount);
    for (int row = 1; row <= int(rows.size()); ++row) {
        for (int field = 1; field <= QuoteLine::FieldCount; ++field)
            content.lines.put(
                row, field, std::move(rows[std::size_t(row - 1)][std::size_t(field - 1)]));
    }
    return content;
}

QString haystack(const QuoteHeader &header, const Table &lines)
{
    QStringList parts { QuoteNumbers::number(header.year, header.sequence),
        header.customer.customer, header.customer.company, header.customer.email,
        header.customer.reference };
    for (int row = 1; row <= lines.rowCount(); ++row) {
        const Cell &part = lines.get(row, QuoteLine::PartNumber);
        if (!part.isNull())
            parts << conv::toText(part, QLocale::c());
    }
    const QString joined = parts.join(QLatin1Char('\n'));
    QString text = searchable(joined);
    // A keyboard without umlauts types "Müller" as "Mueller" as often as "Muller": the texts
    // with "ä", "ö" or "ü" are kept once more with "ae", "oe" and "ue".
    const QString folded = joined.toCaseFolded().normalized(QString::NormalizationForm_C);
    if (folded.contains(QChar(0x00E4)) || folded.contains(QChar(0x00F6))
        || folded.contains(QChar(0x00FC))) {
        QString spelt = folded;
        spelt.replace(QChar(0x00E4), QLatin1String("ae"))
            .replace(QChar(0x00F6), QLatin1String("oe"))
            .replace(QChar(0x00FC), QLatin1String("ue"));
        text += QLatin1Char('\n') + searchable(spelt);
    }
    return text;
}

namespace {

/// The plain letters a letter of its own (not one with an accent) is typed as; empty for
/// every other character.
QLatin1String plainLetters(QChar c)
{
    switch (c.unicode()) {
    case 0x00DF: // ß
        return QLatin1String("ss");
    case 0x00E6: // æ
        return QLatin1String("ae");
    case 0x00F0: // ð
        return QLatin1String("d");
    case 0x00F8: // ø
        return QLatin1String("o");
    case 0x00FE: // þ
        return QLatin1String("th");
    case 0x0111: // đ
        return QLatin1String("d");
    case 0x0127: // ħ
        return QLatin1String("h");
    case 0x0131: // ı
        return QLatin1String("i");
    case 0x0142: // ł
        return QLatin1String("l");
    case 0x0153: // œ
        return QLatin1String("oe");
    case 0x0167: // ŧ
        return QLatin1String("t");
    default:
        return QLatin1String();
    }
}

} // namespace

QString searchable(const QString &text)
{
    // Folded again after the letters are taken apart: "İ" (Turkish capital I with a dot) has
    // no simple folding of its own, and taken apart it is a capital I and its dot.
    const QString decomposed =
        text.toCaseFolded().normalized(QString::NormalizationForm_KD).toCaseFolded();
    QString plain;
    plain.reserve(decomposed.size());
    for (const QChar c : decomposed) {
        // Letters that no accent makes, typed as the plain letters where the keyboard has
        // none of them: "ß" as "ss", "ł" as "l", "ø" as "o", "æ" as "ae".
        if (const QLatin1String typed = plainLetters(c); typed.size() > 0)
            plain.append(typed);
        else if (c.category() != QChar::Mark_NonSpacing)
            plain.append(c);
    }
    return plain;
}

SearchTerms searchTerms(const QString &text)
{
    static const QRegularExpression numberPattern(
        QStringLiteral("(?:\\bquote\\s+)?\\bq-(\\d{4})-(\\d{1,9})(?:(?:\\s+|-)?([a-z]{1,2}))?\\b"),
        QRegularExpression::CaseInsensitiveOption);
    SearchTerms terms;
    QString rest = text;
    for (const QRegularExpressionMatch &match : numberPattern.globalMatch(text)) {
        NumberSearch number { match.captured(1).toInt(), match.captured(2).toInt(), {} };
        if (match.hasCaptured(3) && !match.captured(3).isEmpty())
            number.revision = QuoteNumbers::revisionOf(match.captured(3));
        terms.numbers.push_back(number);
    }
    rest.replace(numberPattern, QStringLiteral(" "));
    terms.words =
        searchable(rest).split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    return terms;
}

double totalOf(const Table &lines, const QLocale &locale)
{
    return QuotePricing::sums(lines, locale).total;
}

} // namespace tarnwick::QuoteBookRows
