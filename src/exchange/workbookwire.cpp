#include "exchange/workbookwire.h"

#include "core/celltext.h"
#include "core/conversions.h"
#include "exchange/sheetvalue.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <limits>

namespace tarnwick::WorkbookWire {

namespace {

// The stream starts with these bytes; a frame laid out anew gets a new last digit (a new kind
// of frame does not: no stream that was written before holds it).
constexpr char WireHeader[] = "TWWBK02\n";
constexpr qsizetype WireHeaderSize = sizeof(WireHeader) - 1;

constexpr char CellTag = 'C';
// A text cell whose text reads as a number in the stored form (IWorkbook::isTextCell); laid
// out as a cell.
constexpr char TextCellTag = 'T';
constexpr char ErrorCellTag = 'X';
constexpr char EndTag = 'E';
constexpr char FailureTag = 'F';
constexpr char ResetTag = 'R';
// The sheet's numbers come in the stored form (IWorkbook::numbersInStoredForm); a tag alone.
constexpr char StoredNumbersTag = 'N';
// Rows follow an empty row in the sheet (IWorkbook::hasRowsAfterAGap); a tag alone.
constexpr char RowsAfterAGapTag = 'G';
// tag, row, column, length; tag, row, column; tag, rows; tag, error number, length.
constexpr qsizetype CellFrameHead = 1 + 4 + 1 + 4;
constexpr qsizetype ErrorCellFrameSize = 1 + 4 + 1;
constexpr qsizetype EndFrameSize = 1 + 4;
constexpr qsizetype FailureFrameHead = 1 + 4 + 4;

void appendWireNumber(QByteArray &out, quint32 value)
{
    char bytes[4];
    qToLittleEndian(value, bytes);
    out.append(bytes, 4);
}

quint32 wireNumberAt(QByteArrayView bytes, qsizetype at)
{
    return qFromLittleEndian<quint32>(bytes.data() + at);
}

/// Whether a text could be taken for a number in the stored form ("1.250"): only then does the
/// program need to know that the sheet holds it as text.
bool readsAsStoredNumber(std::string_view text)
{
    return conv::isPlainDecimal(text.data(), qsizetype(text.size()));
}

/// The text as UTF-8, cut to at most limit bytes without splitting a character.
QByteArray utf8Within(const QString &text, int limit)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.size() > limit) {
        qsizetype end = limit;
        while (end > 0 && (uchar(bytes[end]) & 0xC0) == 0x80)
            --end;
        bytes.truncate(end);
    }
    return bytes;
}

/// The frame of a file that could not be read: its error number and the error's text.
QByteArray failureFrame(int errorNumber, const QString &text)
{
    const QByteArray bytes = utf8Within(text, MaxErrorBytes);
    QByteArray out(1, FailureTag);
    appendWireNumber(out, quint32(errorNumber));
    appendWireNumber(out, quint32(bytes.size()));
    return out + bytes;
}

/// The worksheet the decoder built: the texts of all cells in one block (checked to be UTF-8)
/// and where each starts. Its text cells point into the block, so an import keeps the texts
/// of the cells it takes without a copy each.
class WireWorkbook : public IWorkbook
{
public:
    WireWorkbook(QByteArray text, std::vector<quint32> starts, std::vector<quint32> errors,
        std::vector<quint32> textCells, int rows, bool numbersInStoredForm, bool rowsAfterAGap)
        : m_block(new CellTextBlock), m_starts(std::move(starts)), m_errors(std::move(errors)),
          m_textCells(std::move(textCells)), m_rows(rows),
          m_numbersInStoredForm(numbersInStoredForm), m_rowsAfterAGap(rowsAfterAGap)
    {
        m_block->bytes = std::move(text);
    }
    ~WireWorkbook() override
    {
        if (m_block->ref.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete m_block;
    }
    WireWorkbook(const WireWorkbook &) = delete;
    WireWorkbook &operator=(const WireWorkbook &) = delete;

    QString cellText(int column, int row) const override
    {
        const auto [start, size] = place(column, row);
        return QString::fromUtf8(m_block->bytes.constData() + start, size);
    }
    bool isError(int column, int row) const override { return isIn(m_errors, column, row); }
    bool isTextCell(int column, int row) const override { return isIn(m_textCells, column, row); }
    Cell textCell(int column, int row) const override
    {
        const auto [start, size] = place(column, row);
        return Cell::inBlock(m_block, start, size, TextEncoding::Utf8);
    }
    int rowCountHint() const override { return m_rows; }
    bool numbersInStoredForm() const override { return m_numbersInStoredForm; }
    bool hasRowsAfterAGap() const override { return m_rowsAfterAGap; }
    void readCells(int row, std::span<const int> columns, std::span<Cell> cells,
        std::span<bool> errors) const override
    {
        // The row's texts take their references to the block together, not one at a time; the
        // workbook holds one of its own meanwhile.
        int texts = 0;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            errors[i] = !m_errors.empty() && isError(columns[i], row);
            if (errors[i]) {
                cells[i] = Cell();
                continue;
            }
            const auto [start, size] = place(columns[i], row);
            cells[i] = Cell::inBlockAdopting(m_block, start, size, TextEncoding::Utf8);
            ++texts;
        }
        m_block->ref.fetch_add(texts, std::memory_order_relaxed);
    }

private:
    /// Whether the cell's index (as in m_starts) is among the sorted indexes.
    bool isIn(const std::vector<quint32> &indexes, int column, int row) const
    {
        if (indexes.empty() || row < 1 || row > m_rows || column < 0 || column >= Columns)
            return false;
        const auto index = quint32(std::size_t(row - 1) * Columns + std::size_t(column));
        return std::binary_search(indexes.begin(), indexes.end(), index);
    }
    /// Where the cell's text starts in the block and how long it is (0 outside the sheet).
    std::pair<qsizetype, qsizetype> place(int column, int row) const
    {
        if (row < 1 || row > m_rows || column < 0 || column >= Columns)
            return { 0, 0 };
        const std::size_t index = std::size_t(row - 1) * Columns + std::size_t(column);
        return { qsizetype(m_starts[index]), qsizetype(m_starts[index + 1] - m_starts[index]) };
    }

    CellTextBlock *m_block;
    std::vector<quint32> m_starts;
    std::vector<quint32> m_errors;
    std::vector<quint32> m_textCells;
    int m_rows;
    bool m_numbersInStoredForm;
    bool m_rowsAfterAGap;
};

} // namespace

void writeWorkbook(
    const SheetCells &cells, const std::function<void(const QByteArray &)> &sink, int chunkBytes)
{
    SheetWriter writer(sink, chunkBytes);
    writer.finish(cells);
}

void writeWorkbook(
    const IWorkbook &workbook, const std::function<void(const QByteArray &)> &sink, int chunkBytes)
{
    SheetCells cells;
    cells.setNumbersInStoredForm(workbook.numbersInStoredForm());
    bool rowHasCell = true;
    for (int row = 1; row <= MaxRows && rowHasCell; ++row) {
        rowHasCell = false;
        for (int column = 0; column < Columns; ++column) {
            if (workbook.isError(column, row)) {
                cells.putError(row, column);
                rowHasCell = true;
                continue;
            }
            const QByteArray text = workbook.cellText(column, row).toUtf8();
            if (!text.isEmpty()) {
                const SheetText kept = cells.checkedTextFrom(
                    cells.addText(std::string_view(text.constData(), std::size_t(text.size())))
                        .offset);
                if (workbook.isTextCell(column, row))
                    cells.putText(row, column, kept);
                else
                    cells.put(row, column, kept);
                rowHasCell = true;
            }
        }
    }
    cells.finish();
    writeWorkbook(cells, sink, chunkBytes);
}

QByteArray failureMessage(int errorNumber, const QString &text)
{
    return QByteArray(WireHeader, WireHeaderSize) + failureFrame(errorNumber, text);
}

SheetWriter::SheetWriter(Sink sink, int chunkBytes)
    : m_sink(std::move(sink)), m_chunkBytes(std::size_t(std::max(chunkBytes, 1))),
      m_out(WireHeader, std::size_t(WireHeaderSize))
{
    m_out.reserve(m_chunkBytes + std::size_t(MaxCellBytes) + CellFrameHead);
}

void SheetWriter::writeCompleteRows(const SheetCells &cells)
{
    // The readers say how their numbers are written before they put the first cell.
    if (!m_formWritten) {
        m_formWritten = true;
        if (cells.numbersInStoredForm())
            m_out += StoredNumbersTag;
    }
    cells.forEachCompleteCell(
        m_cursor, [&](int row, int column, SheetCellKind kind, std::string_view text) {
            const bool error = kind == SheetCellKind::Error;
            // The frame is written in place: the buffer holds a chunk and the largest cell.
            const std::string_view kept = error
                ? std::string_view()
                : SheetValue::utf8Prefix(text, std::size_t(MaxCellBytes));
            const std::size_t at = m_out.size();
            const auto head = std::size_t(error ? CellFrameHead - 4 : CellFrameHead);
            m_out.resize(at + head + kept.size());
            char *frame = m_out.data() + at;
            frame[0] = error                                               ? ErrorCellTag
                : kind == SheetCellKind::Text && readsAsStoredNumber(kept) ? TextCellTag
                                                                           : CellTag;
            qToLittleEndian(quint32(row), frame + 1);
            frame[5] = char(column);
            if (!error) {
                qToLittleEndian(quint32(kept.size()), frame + 6);
                if (!kept.empty())
                    std::memcpy(frame + CellFrameHead, kept.data(), kept.size());
            }
            if (m_out.size() >= m_chunkBytes)
                flush();
        });
}

void SheetWriter::finish(const SheetCells &cells)
{
    if (cells.wasReordered() && m_cursor.row > 1) {
        m_out += ResetTag;
        m_cursor = {};
    }
    writeCompleteRows(cells);
    if (cells.hasRowsAfterAGap())
        m_out += RowsAfterAGapTag;
    char number[4];
    m_out += EndTag;
    qToLittleEndian(quint32(cells.rowCount()), number);
    m_out.append(number, 4);
    flush();
}

void SheetWriter::fail(int errorNumber, const QString &text)
{
    const QByteArray frame = failureFrame(errorNumber, text);
    m_out.append(frame.constData(), std::size_t(frame.size()));
    flush();
}

void SheetWriter::flush()
{
    m_sink(QByteArray::fromRawData(m_out.data(), qsizetype(m_out.size())));
    m_out.clear();
}

Decoder::Decoder() = default;
Decoder::~Decoder() = default;

Decoder::State Decoder::feed(QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return m_state;
    if (m_state != State::Reading) {
        // Nothing may follow the end of the stream.
        m_state = State::Malformed;
        return m_state;
    }
    m_pending.append(bytes);
    qsizetype used = 0;
    if (!m_headerRead) {
        if (m_pending.size() < WireHeaderSize)
            return m_state;
        if (QByteArrayView(m_pending).first(WireHeaderSize) != QByteArrayView(WireHeader)) {
            m_state = State::Malformed;
            return m_state;
        }
        m_headerRead = true;
        used = WireHeaderSize;
    }
    while (m_state == State::Reading && used < m_pending.size()) {
        m_frameAt = m_consumed + used;
        const qsizetype length = readFrame(QByteArrayView(m_pending).sliced(used));
        if (length < 0)
            m_state = State::Malformed;
        if (length <= 0)
            break;
        used += length;
    }
    m_consumed += used;
    if (m_state == State::Reading)
        m_pending.remove(0, used);
    else if (m_state == State::Malformed || used < m_pending.size())
        m_state = State::Malformed;
    if (m_state != State::Reading)
        m_pending.clear();
    return m_state;
}

Decoder::State Decoder::finish()
{
    if (m_state == State::Reading)
        m_state = State::Malformed;
    return m_state;
}

std::unique_ptr<IWorkbook> Decoder::takeWorkbook()
{
    if (m_state != State::Read)
        return nullptr;
    m_text.truncate(m_textSize);
    m_text.squeeze();
    auto workbook =
        std::make_unique<WireWorkbook>(std::move(m_text), std::move(m_starts), std::move(m_errors),
            std::move(m_textCells), m_rows, m_numbersInStoredForm, m_rowsAfterAGap);
    clearCells();
    m_state = State::Malformed;
    return workbook;
}

qsizetype Decoder::readFrame(QByteArrayView bytes)
{
    switch (bytes.front()) {
    case CellTag:
        return readCell(bytes);
    case TextCellTag:
        return readTextCell(bytes);
    case ErrorCellTag:
        return readErrorCell(bytes);
    case EndTag:
        return readEnd(bytes);
    case FailureTag:
        return readFailure(bytes);
    case ResetTag:
        return readReset();
    case StoredNumbersTag:
        m_numbersInStoredForm = true;
        return 1;
    case RowsAfterAGapTag:
        m_rowsAfterAGap = true;
        return 1;
    default:
        return -1;
    }
}

inline bool Decoder::fitsPlace(quint32 row, int column, quint32 length) const
{
    // Each row is the one of the cell before or the next one; cells of a row come left to right.
    return row >= 1 && row <= quint32(MaxRows)
        && (row == quint32(m_rows) || row == quint32(m_rows) + 1) && column < Columns
        && length <= quint32(MaxCellBytes)
        && quint64(m_textSize) + length < std::numeric_limits<quint32>::max();
}

inline bool Decoder::placeCell(quint32 row, int column)
{
    const std::size_t index = std::size_t(row - 1) * Columns + std::size_t(column);
    if (index < m_starts.size())
        return false;
    // Cells come left to right with few gaps: mostly one push per cell.
    if (index == m_starts.size())
        m_starts.push_back(quint32(m_textSize));
    else
        m_starts.resize(index + 1, quint32(m_textSize));
    m_rows = int(row);
    return true;
}

qsizetype Decoder::readCell(QByteArrayView bytes)
{
    if (bytes.size() < CellFrameHead)
        return 0;
    const quint32 row = wireNumberAt(bytes, 1);
    const int column = uchar(bytes[5]);
    const quint32 length = wireNumberAt(bytes, 6);
    // The place is checked before the text arrives, so a length beyond the limit is refused
    // at once; it is taken only with the whole text.
    if (!fitsPlace(row, column, length))
        return -1;
    if (bytes.size() < CellFrameHead + qsizetype(length))
        return 0;
    const QByteArrayView text = bytes.sliced(CellFrameHead, length);
    // Every text must be UTF-8 by itself. All texts together are checked once, at the end: with
    // no text starting with a continuation byte, which would hide a character cut between two
    // texts, that is the same as checking each.
    if ((length > 0 && (uchar(text.front()) & 0xC0) == 0x80) || !placeCell(row, column))
        return -1;
    appendText(text);
    return CellFrameHead + length;
}

qsizetype Decoder::readTextCell(QByteArrayView bytes)
{
    const qsizetype length = readCell(bytes);
    if (length > 0)
        m_textCells.push_back(quint32(m_starts.size() - 1));
    return length;
}

void Decoder::appendText(QByteArrayView text)
{
    // The array is a buffer grown by doubling, its first m_textSize bytes used: appending to a
    // QByteArray takes its general insert path, a large part of decoding millions of short
    // texts, and QByteArray::data() looks at the array's sharing on every call: the decoder
    // keeps the array's own pointer.
    if (m_text.size() - m_textSize < text.size()) {
        m_text.resize(std::max(2 * m_text.size(), m_textSize + text.size()));
        m_textData = m_text.data();
    }
    if (text.isEmpty())
        return;
    std::memcpy(m_textData + m_textSize, text.data(), std::size_t(text.size()));
    m_textSize += text.size();
}

qsizetype Decoder::readErrorCell(QByteArrayView bytes)
{
    if (bytes.size() < ErrorCellFrameSize)
        return 0;
    const quint32 row = wireNumberAt(bytes, 1);
    const int column = uchar(bytes[5]);
    if (!fitsPlace(row, column, 0) || !placeCell(row, column))
        return -1;
    m_errors.push_back(quint32(m_starts.size() - 1));
    return ErrorCellFrameSize;
}

qsizetype Decoder::readEnd(QByteArrayView bytes)
{
    if (bytes.size() < EndFrameSize)
        return 0;
    if (wireNumberAt(bytes, 1) != quint32(m_rows)
        || !celltext::isValidUtf8(m_text.constData(), m_textSize))
        return -1;
    m_starts.resize(std::size_t(m_rows) * Columns + 1, quint32(m_textSize));
    m_state = State::Read;
    return EndFrameSize;
}

void Decoder::clearCells()
{
    m_text = QByteArray();
    m_textData = nullptr;
    m_textSize = 0;
    m_starts = {};
    m_errors = {};
    m_textCells = {};
}

qsizetype Decoder::readReset()
{
    // A reader withdraws its rows once at most.
    if (m_withdrawn > 0)
        return -1;
    m_withdrawn = m_frameAt + 1;
    clearCells();
    m_rows = 0;
    return 1;
}

qsizetype Decoder::readFailure(QByteArrayView bytes)
{
    if (bytes.size() < FailureFrameHead)
        return 0;
    const quint32 length = wireNumberAt(bytes, 5);
    if (length > quint32(MaxErrorBytes))
        return -1;
    if (bytes.size() < FailureFrameHead + qsizetype(length))
        return 0;
    m_errorNumber = int(wireNumberAt(bytes, 1));
    m_errorText = QString::fromUtf8(bytes.sliced(FailureFrameHead, length));
    clearCells();
    m_state = State::Failed;
    return FailureFrameHead + length;
}

} // namespace tarnwick::WorkbookWire
