#include "exchange/workbookwire.h"

#include <QtEndian>

#include <limits>

namespace tarnwick::WorkbookWire {

namespace {

// The stream starts with these bytes; a new layout gets a new last digit.
constexpr char WireHeader[] = "TWWBK01\n";
constexpr qsizetype WireHeaderSize = sizeof(WireHeader) - 1;

constexpr char CellTag = 'C';
constexpr char EndTag = 'E';
constexpr char FailureTag = 'F';
// tag, row, column, length; tag, rows; tag, error number, length.
constexpr qsizetype CellFrameHead = 1 + 4 + 1 + 4;
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

/// The worksheet the decoder built: the texts of all cells in one buffer and where each starts.
class WireWorkbook : public IWorkbook
{
public:
    WireWorkbook(QByteArray text, std::vector<quint32> starts, int rows)
        : m_text(std::move(text)), m_starts(std::move(starts)), m_rows(rows)
    {
    }
    QString cellText(int column, int row) const override
    {
        if (row < 1 || row > m_rows || column < 0 || column >= Columns)
            return QString();
        const std::size_t index = std::size_t(row - 1) * Columns + std::size_t(column);
        const quint32 start = m_starts[index];
        return QString::fromUtf8(m_text.constData() + start, m_starts[index + 1] - start);
    }

private:
    QByteArray m_text;
    std::vector<quint32> m_starts;
    int m_rows;
};

} // namespace

void writeWorkbook(
    const IWorkbook &workbook, const std::function<void(const QByteArray &)> &sink, int chunkBytes)
{
    QByteArray out(WireHeader, WireHeaderSize);
    int rows = 0;
    for (int row = 1; row <= MaxRows; ++row) {
        bool hasText = false;
        for (int column = 0; column < Columns; ++column) {
            const QString text = workbook.cellText(column, row);
            if (text.isEmpty())
                continue;
            const QByteArray bytes = utf8Within(text, MaxCellBytes);
            out.append(CellTag);
            appendWireNumber(out, quint32(row));
            out.append(char(column));
            appendWireNumber(out, quint32(bytes.size()));
            out.append(bytes);
            hasText = true;
        }
        if (!hasText)
            break;
        rows = row;
        if (out.size() >= chunkBytes) {
            sink(out);
            out.clear();
        }
    }
    out.append(EndTag);
    appendWireNumber(out, quint32(rows));
    sink(out);
}

QByteArray failureMessage(int errorNumber, const QString &text)
{
    const QByteArray bytes = utf8Within(text, MaxErrorBytes);
    QByteArray out(WireHeader, WireHeaderSize);
    out.append(FailureTag);
    appendWireNumber(out, quint32(errorNumber));
    appendWireNumber(out, quint32(bytes.size()));
    out.append(bytes);
    return out;
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
        const qsizetype length = readFrame(QByteArrayView(m_pending).sliced(used));
        if (length < 0)
            m_state = State::Malformed;
        if (length <= 0)
            break;
        used += length;
    }
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
    auto workbook = std::make_unique<WireWorkbook>(std::move(m_text), std::move(m_starts), m_rows);
    m_text.clear();
    m_starts.clear();
    m_state = State::Malformed;
    return workbook;
}

qsizetype Decoder::readFrame(QByteArrayView bytes)
{
    switch (bytes.front()) {
    case CellTag:
        return readCell(bytes);
    case EndTag:
        return readEnd(bytes);
    case FailureTag:
        return readFailure(bytes);
    default:
        return -1;
    }
}

qsizetype Decoder::readCell(QByteArrayView bytes)
{
    if (bytes.size() < CellFrameHead)
        return 0;
    const quint32 row = wireNumberAt(bytes, 1);
    const int column = uchar(bytes[5]);
    const quint32 length = wireNumberAt(bytes, 6);
    // Each row is the one of the cell before or the next one; cells of a row come left to right.
    if (row < 1 || row > quint32(MaxRows) || (row != quint32(m_rows) && row != quint32(m_rows) + 1)
        || column >= Columns || length > quint32(MaxCellBytes)
        || quint64(m_text.size()) + length >= std::numeric_limits<quint32>::max())
        return -1;
    const std::size_t index = std::size_t(row - 1) * Columns + std::size_t(column);
    if (index < m_starts.size())
        return -1;
    if (bytes.size() < CellFrameHead + qsizetype(length))
        return 0;
    m_starts.resize(index + 1, quint32(m_text.size()));
    m_text.append(bytes.sliced(CellFrameHead, length));
    m_rows = int(row);
    return CellFrameHead + length;
}

qsizetype Decoder::readEnd(QByteArrayView bytes)
{
    if (bytes.size() < EndFrameSize)
        return 0;
    if (wireNumberAt(bytes, 1) != quint32(m_rows))
        return -1;
    m_starts.resize(std::size_t(m_rows) * Columns + 1, quint32(m_text.size()));
    m_state = State::Read;
    return EndFrameSize;
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
    m_text.clear();
    m_starts.clear();
    m_state = State::Failed;
    return FailureFrameHead + length;
}

} // namespace tarnwick::WorkbookWire
