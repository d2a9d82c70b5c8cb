#include "catalogue/cataloguereader.h"

#include "catalogue/fieldend.h"
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/cell.h"
#include "core/conversions.h"
#include "core/storednumber.h"
#include "core/vberror.h"

#include <QStringView>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <string_view>

namespace tarnwick {

namespace {

constexpr int InvalidProcedureCall = 5;
/// Rows added at least when a file holds more products than the table has rows.
constexpr int MinimumGrowth = 64;
constexpr std::string_view Utf8ByteOrderMark = "\xEF\xBB\xBF";

VbError missingFieldEnd(int lineNumber)
{
    return VbError(InvalidProcedureCall,
        QStringLiteral("line %1 does not hold a product: a field end is missing").arg(lineNumber));
}

/// The end of the physical line starting at position: the index of its CR LF, or the end.
qsizetype physicalLineEnd(std::string_view text, qsizetype position)
{
    const std::size_t end = text.find("\r\n", std::size_t(position));
    return end == std::string_view::npos ? qsizetype(text.size()) : qsizetype(end);
}

/// The field ends in [from, to) of text, found as the fields are split (each search goes on
/// after the field end found before), and where the last of them ends.
struct FieldEnds
{
    int count = 0;
    qsizetype lastEnd = -1;
};

FieldEnds fieldEndsIn(std::string_view text, qsizetype from, qsizetype to)
{
    const std::string_view part = text.substr(std::size_t(from), std::size_t(to - from));
    FieldEnds ends;
    for (std::size_t at = part.find(fieldend::Bytes); at != std::string_view::npos;
         at = part.find(fieldend::Bytes, at + fieldend::Bytes.size())) {
        ++ends.count;
        ends.lastEnd = from + qsizetype(at + fieldend::Bytes.size());
    }
    return ends;
}

/// The end of the line that starts at from, read as a product line is: physical lines are
/// joined until one ends with DEL.
qsizetype joinedLineEnd(std::string_view text, qsizetype from)
{
    qsizetype end = physicalLineEnd(text, from);
    while (!(end > from && text[std::size_t(end - 1)] == fieldend::Byte)
        && end + 2 < qsizetype(text.size()))
        end = physicalLineEnd(text, end + 2);
    return end;
}

/// Whether the product line [start, end), which ends with DEL before a CR LF, goes on in the
/// next physical line: it ends with a whole field end, holds fewer than the fifteen, and the
/// line after it holds no more than the missing ones.
bool continuesAfterFieldEnd(std::string_view text, qsizetype start, qsizetype end)
{
    if (end + 2 >= qsizetype(text.size()))
        return false;
    const FieldEnds ends = fieldEndsIn(text, start, end);
    if (ends.lastEnd != end || ends.count >= ProductRecord::FieldCount)
        return false;
    return ends.count + fieldEndsIn(text, end + 2, joinedLineEnd(text, end + 2)).count
        <= ProductRecord::FieldCount;
}

/// Calls found(lf) for the LF of every CR LF whose LF lies in [from, to) of data; from is at
/// least 1, so the CR before it is inside the data.
template <typename Found>
void forEachLineEnd(const char *data, qsizetype from, qsizetype to, Found found)
{
    for (const char *at = data + from, *end = data + to; at < end;) {
        const auto *lf = static_cast<const char *>(std::memchr(at, '\n', std::size_t(end - at)));
        if (!lf)
            break;
        if (lf[-1] == '\r')
            found(lf);
        at = lf + 1;
    }
}

} // namespace

/// One logical line: where it starts in the file's bytes, its length, and the number of its
/// first physical line.
struct CatalogueReader::Line
{
    qsizetype start = 0;
    qsizetype size = 0;
    int lineNumber = 0;
};

CatalogueReader::CatalogueReader(Table &table, const QLocale &locale)
    : m_table(table), m_locale(locale), m_plainDecimals(conv::readsPlainDecimals(locale))
{
}

CatalogueReader::~CatalogueReader()
{
    // The cells hold their own references; the reader lets go of its one.
    if (m_block && m_block->ref.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete m_block;
}

qsizetype CatalogueReader::endBeforeEndOfFileMark(const QByteArray &bytes)
{
    constexpr char EndOfFileMark = '\x1a';
    qsizetype end = bytes.size();
    qsizetype mark = -1;
    for (qsizetype at = bytes.size() - 1; at >= 0; --at) {
        const char c = bytes.at(at);
        if (c == EndOfFileMark)
            mark = at;
        else if (c != '\r' && c != '\n' && c != '\0' && c != ' ' && c != '\t')
            break;
    }
    // Only after a whole line (its line end, or the field end of a last line without one):
    // inside a line it is a character of a field.
    constexpr char FieldEndCharacter = '\x7f';
    if (mark == 0
        || (mark > 0 && (bytes.at(mark - 1) == '\n' || bytes.at(mark - 1) == FieldEndCharacter)))
        return mark;
    // A last line that starts with the mark ends the file there, whatever follows it on that
    // line (as a text file read on Windows ends at it): the recovery file's check line.
    qsizetype tail = bytes.size();
    while (tail > 0 && (bytes.at(tail - 1) == '\r' || bytes.at(tail - 1) == '\n'))
        --tail;
    const qsizetype lineStart = tail > 0 ? bytes.lastIndexOf('\n', tail - 1) + 1 : 0;
    if (lineStart < tail && bytes.at(lineStart) == EndOfFileMark)
        end = lineStart;
    return end;
}

CatalogueReadResult CatalogueReader::read(QByteArray bytes, const Observer &observer)
{
    // A Ctrl+Z after the last line is the end-of-file mark old Windows and DOS tools put at
    // the end of a text file (a text file read on Windows ends there): it is no product, nor
    // are the line ends, blanks and zero bytes some tools put after it.
    bytes.truncate(endBeforeEndOfFileMark(bytes));
    m_block = new CellTextBlock;
    m_block->bytes = std::move(bytes);
    const QByteArray &data = m_block->bytes;
    qsizetype position = 0;
    // Plain ASCII reads the same in both encodings; the single-byte one is the cheaper.
    m_encoding = int(TextEncoding::Windows1252);
    if (!celltext::isAscii(data.constData(), data.size())
        && celltext::isValidUtf8(data.constData(), data.size())) {
        m_encoding = int(TextEncoding::Utf8);
        if (std::string_view(data.constData(), std::size_t(data.size()))
                .starts_with(Utf8ByteOrderMark))
            position = qsizetype(Utf8ByteOrderMark.size());
    }
    m_firstLineStart = position;
    m_countedTo = position;
    sizeTable(position);
    CatalogueReadResult result;
    int row = 1;
    // The diagnostic observer follows every line; without it, well-formed products take the
    // quick way and only the others go through the general reading below.
    const bool quick = m_plainDecimals && !observer.recordStarted && !observer.partNumberStored;
    try {
        while (position < data.size()) {
            if (!quick || !storeWellFormed(row, position)) {
                const Line line = readLogicalLine(position, row, observer);
                storeRecord(row, line, observer);
            }
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

void CatalogueReader::sizeTable(qsizetype from)
{
    // Every logical line but perhaps the last ends with DEL, CR, LF: counting those sizes the
    // table once instead of growing it while reading.
    // Looking for the LF of each line is a short search per line; DEL, which ends every field,
    // would stop the search fifteen times per product.
    const char *data = m_block->bytes.constData();
    qsizetype lines = 0;
    qsizetype lastEnd = from;
    forEachLineEnd(data, from + 2, m_block->bytes.size(), [&](const char *lf) {
        if (lf[-2] == fieldend::Byte) {
            ++lines;
            lastEnd = lf + 1 - data;
        }
    });
    // A last product without its CR LF is a line too.
    if (lastEnd < m_block->bytes.size())
        ++lines;
    const qsizetype rows = std::min<qsizetype>(lines, std::numeric_limits<int>::max() / 16);
    if (rows > m_table.rowCount() || m_table.fieldCount() < ProductRecord::FieldCount)
        m_table.redimPreserve(std::max(int(rows), m_table.rowCount()),
            std::max(m_table.fieldCount(), ProductRecord::FieldCount));
}

CatalogueReader::Line CatalogueReader::readLogicalLine(
    qsizetype &position, int row, const Observer &observer)
{
    const std::string_view text(m_block->bytes.constData(), std::size_t(m_block->bytes.size()));
    Line line;
    line.start = position;
    line.lineNumber = lineNumberAt(position);
    qsizetype end = physicalLineEnd(text, position);
    if (observer.recordStarted)
        observer.recordStarted(decoded(position, end - position));
    // Every logical line ends with a field end; a line that does not was broken by a line
    // break inside a field, and the next physical line continues it (its CR LF included).
    // A field that begins with a line break (notes starting with an empty line) puts a whole
    // field end right before a CR LF inside the product: while the line holds fewer than its
    // fifteen field ends, and the line after it (read the same way) holds no more than the
    // ones missing, that line continues the product too. A whole product after a damaged,
    // short one has fifteen field ends of its own and stays a product.
    for (;;) {
        const qsizetype next = std::min<qsizetype>(end + 2, qsizetype(text.size()));
        if (end > line.start && text[std::size_t(end - 1)] == fieldend::Byte
            && !continuesAfterFieldEnd(text, line.start, end)) {
            position = next;
            break;
        }
        if (next >= qsizetype(text.size())) {
            throw VbError(ErrorNumber::InputPastEndOfFile,
                QStringLiteral("the file ends in the middle of product %1").arg(row));
        }
        end = physicalLineEnd(text, next);
    }
    line.size = end - line.start;
    return line;
}

int CatalogueReader::lineNumberAt(qsizetype position)
{
    // Lines end only at CR LF; they are counted from where the last count stopped, so the
    // count costs one pass over the file however many lines ask for their number.
    const char *data = m_block->bytes.constData();
    forEachLineEnd(data, std::max(m_countedTo, m_firstLineStart + 1), position,
        [&](const char *) { ++m_linesBefore; });
    m_countedTo = std::max(m_countedTo, position);
    return m_linesBefore + 1;
}

bool CatalogueReader::storeWellFormed(int row, qsizetype &position)
{
    // A well-formed product: fifteen fields, each ended by DEL DEL DEL, the last one followed
    // by CR LF or the end of the file, no DEL before a CR LF anywhere else (which would end
    // the line early), the price and the price points blank or plain decimals, and every
    // field small enough for a cell of the block. Anything else is left to the general
    // reading, which knows what to make of it; nothing has been stored at that point.
    const char *data = m_block->bytes.constData();
    const char *end = data + m_block->bytes.size();
    std::array<std::pair<const char *, const char *>, ProductRecord::FieldCount> fields;
    std::size_t count = 0;
    const char *fieldStart = data + position;
    const char *next = end;
    for (const char *at = fieldStart;;) {
        const auto *del =
            static_cast<const char *>(std::memchr(at, fieldend::Byte, std::size_t(end - at)));
        if (!del || end - del < 3)
            return false;
        if (del[1] != fieldend::Byte || del[2] != fieldend::Byte) {
            if (del[1] == '\r' && del[2] == '\n')
                return false;
            at = del + 1;
            continue;
        }
        fields[count++] = { fieldStart, del };
        fieldStart = at = del + 3;
        const bool lineEnds = end - at >= 2 && at[0] == '\r' && at[1] == '\n';
        if (count < fields.size()) {
            if (lineEnds)
                return false;
            continue;
        }
        if (lineEnds)
            next = at + 2;
        else if (at != end)
            return false;
        break;
    }
    std::optional<double> price;
    int textCells = 0;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto [from, to] = fields[i];
        if (!Cell::fitsInBlock(from - data, to - from))
            return false;
        if (from == to || !ProductRecord::isNumberField(int(i) + 1)) {
            ++textCells;
        } else if (int(i) + 1 == ProductRecord::Price) {
            price = conv::plainDecimal(from, to - from);
            if (!price)
                return false;
        } else if (conv::isPlainDecimal(from, to - from)) {
            ++textCells;
        } else {
            return false;
        }
    }
    makeRoomFor(row);
    const std::span<Cell> cells = m_table.rowCells(row);
    const auto encoding = static_cast<TextEncoding>(m_encoding);
    // One reference for all of the row's text cells.
    m_block->ref.fetch_add(textCells, std::memory_order_relaxed);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto [from, to] = fields[i];
        if (int(i) + 1 == ProductRecord::Price && price)
            cells[i] = Cell(static_cast<float>(*price));
        else
            cells[i] = Cell::inBlockAdopting(m_block, from - data, to - from, encoding);
    }
    position = next - data;
    return true;
}

void CatalogueReader::storeRecord(int row, const Line &line, const Observer &observer)
{
    makeRoomFor(row);
    const std::string_view text(m_block->bytes.constData() + line.start, std::size_t(line.size));
    // Positions count from 1 within the line, 0 meaning "no field end found".
    const auto findFieldEnd = [&](qsizetype start) -> qsizetype {
        if (start > line.size + 1)
            return 0;
        const std::size_t at = text.find(fieldend::Bytes, std::size_t(start - 1));
        return at == std::string_view::npos ? 0 : qsizetype(at) + 1;
    };
    qsizetype p = findFieldEnd(1);
    if (p == 0)
        throw missingFieldEnd(line.lineNumber);
    m_table.put(row, ProductRecord::PartNumber, textCell(line.start, p - 1));
    if (observer.partNumberStored)
        observer.partNumberStored(row);
    for (int field = ProductRecord::ProductName; field <= ProductRecord::FieldCount; ++field) {
        const qsizetype start = p + fieldend::Length;
        const qsizetype q = findFieldEnd(start);
        if (q >= start)
            storeLaterField(row, field, line.start + start - 1, q - start);
        else if (field == ProductRecord::ProductName)
            throw missingFieldEnd(line.lineNumber);
        // From the price on, a missing field end leaves the cell as it was, and the next
        // field is looked for from the start of the line again: a line with fewer than
        // fifteen fields fills its later cells with text from the wrong place.
        p = q;
    }
}

Cell CatalogueReader::textCell(qsizetype start, qsizetype size) const
{
    if (Cell::fitsInBlock(start, size))
        return Cell::inBlock(m_block, start, size, static_cast<TextEncoding>(m_encoding));
    return Cell(decoded(start, size));
}

QString CatalogueReader::decoded(qsizetype start, qsizetype size) const
{
    const CellTextView view { static_cast<TextEncoding>(m_encoding),
        m_block->bytes.constData() + start, size };
    return view.toString();
}

void CatalogueReader::storeLaterField(int row, int field, qsizetype start, qsizetype size)
{
    const bool numberField = ProductRecord::isNumberField(field);
    if (!numberField || size == 0) {
        m_table.put(row, field, textCell(start, size));
        return;
    }
    // Plain decimals ("12.50", "25"), nearly every number of a catalogue, are read from their
    // digits; they mean the same in the stored form and in the user's locale.
    if (m_plainDecimals) {
        if (const auto plain = conv::plainDecimal(m_block->bytes.constData() + start, size)) {
            if (field == ProductRecord::Price)
                m_table.put(row, field, Cell(static_cast<float>(*plain)));
            else
                m_table.put(row, field, textCell(start, size));
            return;
        }
    }
    const QString text = decoded(start, size);
    const std::optional<double> value = stored::readNumberOrLocal(text, m_locale);
    const bool fitsSingle = value && std::fabs(*value) <= static_cast<double>(FLT_MAX);
    if (!value || (field == ProductRecord::Price && !fitsSingle)) {
        // Kept as it was written, never emptied; the start says which product and field.
        m_table.put(row, field, textCell(start, size));
        const QString partNumber = m_table.get(row, ProductRecord::PartNumber).asText();
        m_unreadNumbers.append({ partNumber, field, text });
        return;
    }
    if (field == ProductRecord::Price) {
        m_table.put(row, field, static_cast<float>(*value));
        return;
    }
    // Price points stay texts, in the user's own form: "1.5" from the file is kept where "."
    // is the decimal separator and becomes "1,5" in German, so that every price point reads
    // alike in the export and the handheld file.
    const QString own = stored::ownForm(text, *value, m_locale);
    if (own == text)
        m_table.put(row, field, textCell(start, size));
    else
        m_table.put(row, field, own);
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
