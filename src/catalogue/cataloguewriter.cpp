#include "catalogue/cataloguewriter.h"

#include "catalogue/fieldend.h"
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/storednumber.h"

#include <QStringView>

#include <algorithm>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>

namespace tarnwick {

namespace {

constexpr QStringView LineEnd = u"\r\n";

/// A cell's text in the file. Null joins a line as the empty text, as it did when the line
/// was built by joining the cells' texts. The price and the price points are written as
/// stored numbers, the same on every machine; a text that is no number stays as it is.
QString fileText(const Cell &cell, int field, const QLocale &locale)
{
    if (cell.isNull())
        return QString();
    const bool numberField = ProductRecord::isNumberField(field);
    return numberField ? stored::cellText(cell, locale) : conv::toText(cell, locale);
}

} // namespace

bool hasPartNumber(const Cell &cell, const QLocale &locale)
{
    // An empty cell (never assigned) counts as the empty text.
    if (cell.isText())
        return !cell.textView().isEmpty();
    return !cell.isNull() && !conv::toText(cell, locale).isEmpty();
}

bool isProductWithoutPartNumber(std::span<const Cell> row, const QLocale &locale)
{
    if (row.empty() || hasPartNumber(row.front(), locale))
        return false;
    // The other fields, tested as the part number is: anything in one makes a product.
    return std::any_of(row.begin() + 1, row.end(),
        [&locale](const Cell &cell) { return hasPartNumber(cell, locale); });
}

CatalogueFileText catalogueFileText(const Table &table, const QLocale &locale, qint32 count)
{
    CatalogueFileText result;
    result.count = count;
    // The row counter is 32-bit on purpose: the earlier program counted rows in 16 bits and
    // could not save a catalogue of more than 32,767 rows at all.
    const qint32 lastRow = table.upperBound(1);
    for (qint32 row = 1; row <= lastRow; ++row) {
        if (!hasPartNumber(table.get(row, ProductRecord::PartNumber), locale)) {
            result.count = row - 1;
            continue;
        }
        for (int field = 1; field <= ProductRecord::FieldCount; ++field) {
            result.text += fileText(table.get(row, field), field, locale);
            result.text += fieldend::Text;
        }
        result.text += LineEnd;
        result.count = row;
        ++result.rowsWritten;
    }
    return result;
}

} // namespace tarnwick

namespace tarnwick {

namespace {

enum class FileEncoding { Windows1252, Utf8 };

/// The bytes of one piece of the file, appended by plain copies into room reserved ahead.
class PieceBuffer
{
public:
    void reserve(qsizetype room)
    {
        m_bytes.resize(room); // the new bytes are left uninitialised
        m_data = m_bytes.data();
        m_room = room;
    }
    void append(const char *bytes, qsizetype size)
    {
        if (m_used + size > m_room)
            reserve(std::max(m_room * 2, m_used + size));
        std::memcpy(m_data + m_used, bytes, std::size_t(size));
        m_used += size;
    }
    void append(char byte) { append(&byte, 1); }
    /// The field end, three DEL, without a call to copy three bytes.
    void appendFieldEnd()
    {
        if (m_used + fieldend::Length > m_room)
            reserve(std::max(m_room * 2, m_used + fieldend::Length));
        m_data[m_used] = m_data[m_used + 1] = m_data[m_used + 2] = fieldend::Byte;
        m_used += fieldend::Length;
    }
    qsizetype size() const { return m_used; }
    bool isEmpty() const { return m_used == 0; }
    const char *data() const { return m_data; }
    /// The piece as a byte array of its size, for the sink.
    QByteArray &piece()
    {
        m_bytes.resize(m_used);
        return m_bytes;
    }
    /// Starts the next piece in the same room (a sink that kept the last piece shares it, and
    /// the room is then copied once).
    void clear()
    {
        m_used = 0;
        reserve(m_room);
    }

private:
    QByteArray m_bytes;
    char *m_data = nullptr;
    qsizetype m_room = 0;
    qsizetype m_used = 0;
};

/// Builds the file's bytes in one encoding; fails (returns false) only when a character has
/// no Windows-1252 byte.
class ByteLineWriter
{
public:
    ByteLineWriter(FileEncoding encoding, const QLocale &locale)
        : m_encoding(encoding), m_locale(locale), m_plainDecimals(conv::readsPlainDecimals(locale))
    {
    }

    PieceBuffer &bytes() { return m_bytes; }
    FileEncoding encoding() const { return m_encoding; }
    bool highBytes() const { return m_highBytes; }

    bool appendField(const Cell &cell, int field)
    {
        const bool numberField = ProductRecord::isNumberField(field);
        if (cell.isText()) {
            const CellTextView view = cell.textView();
            // A plain decimal text is already in stored form; other texts of a number field
            // may need rewriting ("1.000" typed in German is stored as "1000").
            if (!numberField || view.isEmpty() || isPlainDecimal(view)) {
                // Nearly every text: bytes already in the file's encoding, copied as they are.
                if (view.encoding == sameBytes()
                    && (m_highBytes || m_encoding == FileEncoding::Utf8)) {
                    m_bytes.append(view.bytes(), view.size);
                    return true;
                }
                return appendView(view);
            }
        } else if (cell.isEmpty() || cell.isNull()) {
            return true;
        } else if (numberField && cell.kind() == Cell::Kind::Single) {
            // A price read from the file: its stored text straight from the number.
            char number[stored::NumberCharsRoom];
            const char *end = stored::numberChars(static_cast<float>(cell.asNumber()), number);
            m_bytes.append(number, end - number);
            return true;
        }
        const QString text = fileText(cell, field, m_locale);
        return appendView({ TextEncoding::Utf16, text.utf16(), text.size() });
    }

    void appendAscii(std::string_view text) { m_bytes.append(text.data(), qsizetype(text.size())); }

    /// Appends one product: its fifteen fields, each followed by the field end, then CR LF.
    /// Neighbouring fields that are copied as they are and lie one after the other in the
    /// same block, the field end between them (as a product read from the file does), are
    /// copied in one piece with it.
    bool appendRow(std::span<const Cell> cells)
    {
        const CellTextBlock *runBlock = nullptr;
        const char *runStart = nullptr;
        const char *runEnd = nullptr;
        const auto endRun = [&] {
            if (!runBlock)
                return;
            m_bytes.append(runStart, runEnd - runStart);
            m_bytes.appendFieldEnd();
            runBlock = nullptr;
        };
        for (int field = 1; field <= ProductRecord::FieldCount; ++field) {
            const Cell &cell = cells[std::size_t(field - 1)];
            if (copiedAsIs(cell, field)) {
                const CellTextView view = cell.textView();
                if (cell.textBlock() == runBlock && view.bytes() == runEnd + fieldend::Length
                    && std::string_view(runEnd, fieldend::Length) == fieldend::Bytes) {
                    runEnd = view.bytes() + view.size;
                    continue;
                }
                endRun();
                runBlock = cell.textBlock();
                runStart = view.bytes();
                runEnd = runStart + view.size;
                continue;
            }
            endRun();
            if (!appendField(cell, field))
                return false;
            m_bytes.appendFieldEnd();
        }
        endRun();
        appendAscii("\r\n");
        return true;
    }

private:
    /// Whether the cell's bytes go into the file as they are: a text already in the file's
    /// encoding (and, in Windows-1252, once a byte above ASCII has been seen, so nothing is
    /// left to note), which in a number field is empty or already in stored form.
    bool copiedAsIs(const Cell &cell, int field) const
    {
        if (!cell.isText())
            return false;
        const CellTextView view = cell.textView();
        if (view.encoding != sameBytes() || !(m_highBytes || m_encoding == FileEncoding::Utf8))
            return false;
        return !ProductRecord::isNumberField(field) || view.isEmpty() || isPlainDecimal(view);
    }

    /// The cell encoding whose bytes are the file's bytes as they are.
    TextEncoding sameBytes() const
    {
        return m_encoding == FileEncoding::Windows1252 ? TextEncoding::Windows1252
                                                       : TextEncoding::Utf8;
    }

    bool isPlainDecimal(const CellTextView &view) const
    {
        return m_plainDecimals && view.encoding != TextEncoding::Utf16
            && conv::isPlainDecimal(view.bytes(), view.size);
    }

    bool appendView(const CellTextView &view)
    {
        if (view.encoding != TextEncoding::Utf16) {
            const bool sameEncoding = (view.encoding == TextEncoding::Windows1252)
                == (m_encoding == FileEncoding::Windows1252);
            if (sameEncoding) {
                // Bytes already in the file's encoding are copied as they are.
                if (m_encoding == FileEncoding::Windows1252 && !m_highBytes)
                    m_highBytes = !view.isAscii();
                m_bytes.append(view.bytes(), view.size);
                return true;
            }
            if (view.isAscii()) {
                m_bytes.append(view.bytes(), view.size);
                return true;
            }
        }
        const QString text = view.toString();
        if (m_encoding == FileEncoding::Utf8) {
            const QByteArray utf8 = text.toUtf8();
            m_bytes.append(utf8.constData(), utf8.size());
            return true;
        }
        for (const QChar ch : text) {
            const int byte = celltext::windows1252Byte(ch.unicode());
            if (byte < 0)
                return false;
            m_highBytes = m_highBytes || byte >= 0x80;
            m_bytes.append(char(byte));
        }
        return true;
    }

    FileEncoding m_encoding;
    const QLocale &m_locale;
    bool m_plainDecimals;
    PieceBuffer m_bytes;
    bool m_highBytes = false;
};

/// Pieces of this size or more are given room for the whole file instead.
constexpr qsizetype MaxPieceReserve = 64 * 1024 * 1024;

/// Room for the file: the stored size of every text cell and the field and line ends.
qsizetype sizeHintOf(const Table &table)
{
    if (table.fieldCount() < ProductRecord::FieldCount)
        return 0;
    qsizetype size = 0;
    for (int row = 1; row <= table.rowCount(); ++row) {
        for (int field = 1; field <= ProductRecord::FieldCount; ++field)
            size += table.get(row, field).textView().size + 4;
        size += 2;
    }
    return size + 64;
}

/// Writes every row with a part number in one encoding, handing the bytes to sink whenever
/// a line has taken them past pieceSize. False when a character does not fit the encoding
/// (result.ok stays true) or the sink refused a piece (result.ok becomes false). validUtf8
/// tells whether every byte given so far is valid UTF-8; a piece always ends with a line end,
/// so no character is split between two pieces.
bool writeRows(const Table &table, ByteLineWriter &writer, CatalogueStreamResult &result,
    const QLocale &locale, CatalogueByteSink &sink, qsizetype pieceSize, bool &validUtf8,
    RowsWithoutPartNumber keep)
{
    bool firstPiece = true;
    const auto handOver = [&] {
        PieceBuffer &bytes = writer.bytes();
        if (bytes.isEmpty())
            return true;
        // Bytes written while every character was ASCII are valid UTF-8 as they are.
        if (validUtf8 && writer.highBytes())
            validUtf8 = celltext::isValidUtf8(bytes.data(), bytes.size());
        QByteArray &piece = bytes.piece();
        // The reader drops a byte order mark at the very start; a UTF-8 text that itself
        // starts with that character gets one more, so the character survives the round trip.
        if (firstPiece && writer.encoding() == FileEncoding::Utf8
            && piece.startsWith("\xEF\xBB\xBF"))
            piece.prepend("\xEF\xBB\xBF");
        firstPiece = false;
        if (!sink.write(piece)) {
            result.ok = false;
            return false;
        }
        bytes.clear(); // keeps the room for the next piece
        return true;
    };
    // Room for one piece and the line that ends it; a file written as one piece gets room
    // for all of it at once.
    writer.bytes().reserve(pieceSize >= MaxPieceReserve ? sizeHintOf(table) : pieceSize + 4096);
    const qint32 lastRow = table.upperBound(1);
    for (qint32 row = 1; row <= lastRow; ++row) {
        const std::span<const Cell> cells = table.row(row);
        if (!hasPartNumber(cells[ProductRecord::PartNumber - 1], locale)
            && (keep == RowsWithoutPartNumber::Dropped
                || !isProductWithoutPartNumber(cells, locale))) {
            result.count = row - 1;
            continue;
        }
        // A table too narrow for a product raises VbError 9 at its first product.
        if (cells.size() < std::size_t(ProductRecord::FieldCount))
            table.get(row, ProductRecord::FieldCount);
        if (!writer.appendRow(cells))
            return false;
        result.count = row;
        ++result.rowsWritten;
        if (writer.bytes().size() >= pieceSize && !handOver())
            return false;
    }
    return handOver();
}

/// Gathers every piece in one buffer.
class BufferSink : public CatalogueByteSink
{
public:
    bool write(const QByteArray &piece) override
    {
        if (bytes.isEmpty())
            bytes = piece; // shares the piece instead of copying it
        else
            bytes += piece;
        return true;
    }
    bool restart() override
    {
        bytes.clear();
        return true;
    }
    QByteArray bytes;
};

} // namespace

CatalogueStreamResult streamCatalogueFile(const Table &table, const QLocale &locale, qint32 count,
    CatalogueByteSink &sink, qsizetype pieceSize, RowsWithoutPartNumber rows)
{
    // A table too narrow for a product raises VbError 9 at its first product, before any of
    // its bytes reach the sink.
    CatalogueStreamResult result;
    result.count = count;
    {
        // Windows-1252 when every character has a byte there, unless those bytes happen to
        // form valid UTF-8, which would be read back as other characters.
        ByteLineWriter writer(FileEncoding::Windows1252, locale);
        bool validUtf8 = true;
        if (writeRows(table, writer, result, locale, sink, pieceSize, validUtf8, rows)) {
            if (!writer.highBytes() || !validUtf8)
                return result;
        }
        if (!result.ok)
            return result;
    }
    result = {};
    result.count = count;
    if (!sink.restart()) {
        result.ok = false;
        return result;
    }
    ByteLineWriter writer(FileEncoding::Utf8, locale);
    bool validUtf8 = true;
    writeRows(table, writer, result, locale, sink, pieceSize, validUtf8, rows);
    return result;
}

CatalogueFileBytes catalogueFileBytes(const Table &table, const QLocale &locale, qint32 count)
{
    BufferSink sink;
    const CatalogueStreamResult streamed =
        streamCatalogueFile(table, locale, count, sink, std::numeric_limits<qsizetype>::max());
    CatalogueFileBytes result;
    result.bytes = std::move(sink.bytes);
    result.count = streamed.count;
    result.rowsWritten = streamed.rowsWritten;
    return result;
}

} // namespace tarnwick
