#include "catalogue/cataloguereader.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/storednumber.h"
#include "core/vberror.h"

#include <QStringView>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <optional>

namespace tarnwick {

namespace {

constexpr int InvalidProcedureCall = 5;
constexpr qsizetype FieldEndLength = 3;
constexpr QStringView FieldEnd = u"\x7f\x7f\x7f";
constexpr QStringView LineEnd = u"\r\n";
constexpr char16_t FieldEndCharacter = 0x7F;
/// Rows added at least when a file holds more products than the table has rows.
constexpr int MinimumGrowth = 64;

/// Position (from 1) of the next field end at or after position start; 0 when there is none.
qsizetype findFieldEnd(const QString &line, qsizetype start)
{
    if (start > line.size() + 1)
        return 0;
    return line.indexOf(FieldEnd, start - 1) + 1;
}

/// The text of a field that starts at position start and ends before the field end at q;
/// none when there is no such field end (q is 0), which is an error for the caller.
std::optional<QString> fieldText(const QString &line, qsizetype start, qsizetype q)
{
    if (q == start)
        return QString();
    if (q < start)
        return std::nullopt;
    return line.mid(start - 1, q - start);
}

VbError missingFieldEnd(int lineNumber)
{
    return VbError(InvalidProcedureCall,
        QStringLiteral("line %1 does not hold a product: a field end is missing").arg(lineNumber));
}

} // namespace

/// The physical lines of the file's text, each ended by CR LF (or by the end of the text).
/// A lone CR or LF is part of its line.
class CatalogueReader::PhysicalLines
{
public:
    explicit PhysicalLines(const QString &text) : m_text(text) { }

    bool atEnd() const { return m_position >= m_text.size(); }
    int lineNumber() const { return m_lineNumber; }

    QStringView next()
    {
        const QStringView text(m_text);
        const qsizetype end = text.indexOf(LineEnd, m_position);
        const qsizetype stop = end < 0 ? text.size() : end;
        const QStringView line = text.mid(m_position, stop - m_position);
        m_position = end < 0 ? text.size() : end + LineEnd.size();
        ++m_lineNumber;
        return line;
    }

private:
    const QString &m_text;
    qsizetype m_position = 0;
    int m_lineNumber = 0;
};

CatalogueReader::CatalogueReader(Table &table, const QLocale &locale)
    : m_table(table), m_locale(locale)
{
}

CatalogueReadResult CatalogueReader::read(const QString &text, const Observer &observer)
{
    CatalogueReadResult result;
    PhysicalLines lines(text);
    int row = 1;
    try {
        while (!lines.atEnd()) {
            const int lineNumber = lines.lineNumber() + 1;
            const QString line = readLogicalLine(lines, row, observer);
            storeRecord(row, line, lineNumber, observer);
            ++row;
        }
        result.unreadNumbers = m_unreadNumbers;
    } catch (const VbError &error) {
        result.unreadNumbers = m_unreadNumbers;
        result.status = CatalogueReadResult::Status::Failed;
        result.errorNumber = error.number();
        result.detail = error.description();
    }
    result.rowsRead = row - 1;
    return result;
}

QString CatalogueReader::readLogicalLine(
    PhysicalLines &lines, int row, const Observer &observer) const
{
    QString line = lines.next().toString();
    if (observer.recordStarted)
        observer.recordStarted(line);
    // Every logical line ends with a field end; a line that does not was broken by a line
    // break inside a field, and the next physical line continues it.
    while (!line.endsWith(QChar(FieldEndCharacter))) {
        if (lines.atEnd()) {
            throw VbError(ErrorNumber::InputPastEndOfFile,
                QStringLiteral("the file ends in the middle of product %1").arg(row));
        }
        line += LineEnd;
        line += lines.next();
    }
    return line;
}

void CatalogueReader::storeRecord(
    int row, const QString &line, int lineNumber, const Observer &observer)
{
    makeRoomFor(row);
    qsizetype p = findFieldEnd(line, 1);
    if (p == 0)
        throw missingFieldEnd(lineNumber);
    m_table.put(row, ProductRecord::PartNumber, line.left(p - 1));
    if (observer.partNumberStored)
        observer.partNumberStored(row);
    for (int field = ProductRecord::ProductName; field <= ProductRecord::FieldCount; ++field) {
        const qsizetype start = p + FieldEndLength;
        const qsizetype q = findFieldEnd(line, start);
        const std::optional<QString> text = fieldText(line, start, q);
        if (text)
            storeLaterField(row, field, *text);
        else if (field == ProductRecord::ProductName)
            throw missingFieldEnd(lineNumber);
        // From the price on, a missing field end leaves the cell as it was, and the next
        // field is looked for from the start of the line again: a line with fewer than
        // fifteen fields fills its later cells with text from the wrong place.
        p = q;
    }
}

void CatalogueReader::storeLaterField(int row, int field, const QString &text)
{
    const bool numberField = field == ProductRecord::Price || field >= ProductRecord::PricePoint1;
    if (!numberField || text.isEmpty()) {
        m_table.put(row, field, text);
        return;
    }
    const std::optional<double> value = stored::readNumberOrLocal(text, m_locale);
    const bool fitsSingle = value && std::fabs(*value) <= static_cast<double>(FLT_MAX);
    if (!value || (field == ProductRecord::Price && !fitsSingle)) {
        // Kept as it was written, never emptied; the start says which product and field.
        m_table.put(row, field, text);
        const QString partNumber = m_table.get(row, ProductRecord::PartNumber).asText();
        m_unreadNumbers.append({ partNumber, field, text });
        return;
    }
    if (field == ProductRecord::Price) {
        m_table.put(row, field, static_cast<float>(*value));
        return;
    }
    // Price points stay texts, in a form the user's locale reads as the same number: "1.5"
    // from the file is kept where "." is the decimal separator and becomes "1,5" in German.
    const std::optional<double> local = conv::parseNumber(text, m_locale);
    if (local && *local == *value)
        m_table.put(row, field, text);
    else
        m_table.put(row, field, stored::shortestText(*value, m_locale));
}

void CatalogueReader::makeRoomFor(int row)
{
    const int fields = std::max(m_table.fieldCount(), ProductRecord::FieldCount);
    if (row <= m_table.rowCount() && fields == m_table.fieldCount())
        return;
    // The table grows by doubling, so a catalogue of any size loads; the caller cuts it to
    // the number of products afterwards.
    const int rows = std::max({ row, m_table.rowCount() * 2, MinimumGrowth });
    m_table.redimPreserve(row <= m_table.rowCount() ? m_table.rowCount() : rows, fields);
}

} // namespace tarnwick
