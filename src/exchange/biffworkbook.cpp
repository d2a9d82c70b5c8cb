// The Excel 97 (BIFF8) workbook stream: the globals (formats, date system, shared strings, where
// the first worksheet starts), then the cells of that worksheet. Every record the reader uses
// is checked against its size; a record that runs past the stream or is too short for what it
// must hold makes the file damaged.
#include "exchange/biffworkbook.h"

#include "exchange/biffrecords.h"
#include "exchange/sheetcells.h"
#include "exchange/sheetvalue.h"

#include <cmath>
#include <cstring>
#include <unordered_map>

namespace tarnwick::Biff {

namespace {

using SheetValue::FormatKind;

constexpr quint16 Biff8Version = 0x0600;
constexpr quint16 GlobalsSubstream = 0x0005;
constexpr quint16 WorksheetSubstream = 0x0010;

/// The number an RK value stands for: a 30-bit integer or the high bits of a double, either
/// divided by 100 when its lowest bit is set.
double rkNumber(quint32 rk)
{
    double value = 0;
    if ((rk & 0x02) != 0) {
        value = double(qint32(rk) >> 2);
    } else {
        const quint64 bits = quint64(rk & 0xFFFFFFFCu) << 32;
        std::memcpy(&value, &bits, sizeof value);
    }
    return (rk & 0x01) != 0 ? value / 100.0 : value;
}

double doubleAt(QByteArrayView data, qsizetype at)
{
    const quint64 bits = qFromLittleEndian<quint64>(data.data() + at);
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// A BOF record of BIFF8 for the given substream.
bool isBof(const Record &record, quint16 substream)
{
    return record.type == RecordType::Bof && record.data.size() >= 4
        && u16At(record.data, 0) == Biff8Version && u16At(record.data, 2) == substream;
}

/// Rows count from 0 in the file and from 1 in the cells; columns count from 0 in both.
class BiffReader
{
public:
    BiffReader(QByteArrayView stream, SheetCells &cells) : m_stream(stream), m_cells(cells) { }

    bool read() { return readGlobals() && readSheet(); }

private:
    bool readGlobals();
    bool readGlobalRecord(const Record &record, RecordReader &records);
    bool readSharedStrings(const Record &record, RecordReader &records);
    bool readSheet();
    bool readCellRecord(const Record &record, RecordReader &records);
    bool readFormula(QByteArrayView data);
    bool readFormulaString(const Record &record, RecordReader &records);
    bool readLabel(const Record &record, RecordReader &records);
    void putNumber(int row, int column, int xf, double value);
    void putWord(int row, int column, const char *word);
    FormatKind kindOfXf(int xf) const
    {
        return xf >= 0 && std::size_t(xf) < m_xfKinds.size() ? m_xfKinds[std::size_t(xf)]
                                                             : FormatKind::Number;
    }

    QByteArrayView m_stream;
    SheetCells &m_cells;
    bool m_system1904 = false;
    std::unordered_map<int, FormatKind> m_formats;
    std::vector<int> m_xfFormats;
    std::vector<FormatKind> m_xfKinds;
    std::vector<SheetText> m_strings;
    qint64 m_sheetAt = -1;
    /// The first worksheet of all, taken where the workbook hides every one.
    qint64 m_firstSheetAt = -1;
    /// A formula whose text result follows in a STRING record: its row and column, or -1.
    int m_pendingRow = -1;
    int m_pendingColumn = -1;
};

bool BiffReader::readGlobals()
{
    RecordReader records(m_stream, 0);
    Record record;
    if (!records.next(record) || !isBof(record, GlobalsSubstream))
        return false;
    for (;;) {
        if (!records.next(record))
            return false;
        if (record.type == RecordType::Eof)
            break;
        if (!readGlobalRecord(record, records))
            return false;
    }
    m_xfKinds.reserve(m_xfFormats.size());
    for (const int format : m_xfFormats) {
        const auto code = m_formats.find(format);
        m_xfKinds.push_back(
            code != m_formats.end() ? code->second : SheetValue::kindOfBuiltInFormat(format));
    }
    if (m_sheetAt < 0)
        m_sheetAt = m_firstSheetAt;
    return m_sheetAt >= 0;
}

bool BiffReader::readGlobalRecord(const Record &record, RecordReader &records)
{
    const QByteArrayView data = record.data;
    switch (record.type) {
    case RecordType::FilePass:
        // An encrypted workbook cannot be read without its password.
        return false;
    case RecordType::DateMode:
        if (data.size() < 2)
            return false;
        m_system1904 = u16At(data, 0) == 1;
        return true;
    case RecordType::Format: {
        ContinuedData format;
        format.add(data);
        quint16 index = 0;
        std::string code;
        if (!format.readU16(index) || !format.readString(code))
            return false;
        m_formats[index] = SheetValue::kindOfFormatCode(code);
        return true;
    }
    case RecordType::Xf:
        if (data.size() < 4)
            return false;
        m_xfFormats.push_back(u16At(data, 2));
        return true;
    case RecordType::Sst:
        return readSharedStrings(record, records);
    case RecordType::BoundSheet:
        if (data.size() < 8)
            return false;
        // The first worksheet (type 0) the workbook shows (its state 0; 1 and 2 hide it);
        // chart sheets and macro sheets are passed over.
        if (quint8(data[5]) == 0) {
            if (m_firstSheetAt < 0)
                m_firstSheetAt = qint64(u32At(data, 0));
            if (m_sheetAt < 0 && (quint8(data[4]) & 0x03) == 0)
                m_sheetAt = qint64(u32At(data, 0));
        }
        return true;
    default:
        return true;
    }
}

bool BiffReader::readSharedStrings(const Record &record, RecordReader &records)
{
    ContinuedData strings;
    strings.add(record.data);
    strings.addContinues(records);
    quint32 total = 0;
    quint32 unique = 0;
    if (!strings.readU32(total) || !strings.readU32(unique))
        return false;
    std::string &texts = m_cells.texts();
    std::string text;
    // Each string takes at least three bytes, so the count read cannot make the list larger
    // than the record itself.
    m_strings.reserve(std::min<std::size_t>(unique, std::size_t(record.data.size())));
    for (quint32 i = 0; i < unique && !strings.atEnd(); ++i) {
        text.clear();
        if (!strings.readString(text))
            return false;
        const std::size_t start = texts.size();
        SheetValue::appendText(texts, text);
        m_strings.push_back(m_cells.checkedTextFrom(start));
        if (m_cells.overflowed())
            return false;
    }
    return true;
}

bool BiffReader::readSheet()
{
    RecordReader records(m_stream, m_sheetAt);
    Record record;
    if (!records.next(record) || !isBof(record, WorksheetSubstream))
        return false;
    // Charts and other substreams inside the worksheet have BOF and EOF records of their own.
    int depth = 1;
    while (!m_cells.stopped()) {
        if (!records.next(record))
            return false;
        if (record.type == RecordType::Bof) {
            ++depth;
        } else if (record.type == RecordType::Eof) {
            if (--depth == 0)
                return true;
        } else if (depth == 1 && !readCellRecord(record, records)) {
            return false;
        }
    }
    return true;
}

bool BiffReader::readCellRecord(const Record &record, RecordReader &records)
{
    const QByteArrayView data = record.data;
    switch (record.type) {
    case RecordType::Number:
    case RecordType::Rk:
    case RecordType::MulRk:
    case RecordType::LabelSst:
    case RecordType::Label:
    case RecordType::RString:
    case RecordType::BoolErr:
    case RecordType::Formula:
    case RecordType::Blank:
    case RecordType::MulBlank:
        // The text result of a formula comes right after it, before any other cell.
        m_pendingRow = -1;
        break;
    default:
        break;
    }
    switch (record.type) {
    case RecordType::Number:
        if (data.size() < 14)
            return false;
        putNumber(u16At(data, 0) + 1, u16At(data, 2), u16At(data, 4), doubleAt(data, 6));
        return true;
    case RecordType::Rk:
        if (data.size() < 10)
            return false;
        putNumber(u16At(data, 0) + 1, u16At(data, 2), u16At(data, 4), rkNumber(u32At(data, 6)));
        return true;
    case RecordType::MulRk: {
        if (data.size() < 12 || (data.size() - 6) % 6 != 0)
            return false;
        const int row = u16At(data, 0) + 1;
        const int first = u16At(data, 2);
        const auto count = int((data.size() - 6) / 6);
        if (u16At(data, data.size() - 2) != first + count - 1)
            return false;
        for (int i = 0; i < count; ++i)
            putNumber(row, first + i, u16At(data, 4 + i * 6), rkNumber(u32At(data, 6 + i * 6)));
        return true;
    }
    case RecordType::LabelSst: {
        if (data.size() < 10)
            return false;
        const quint32 index = u32At(data, 6);
        if (index >= m_strings.size())
            return false;
        m_cells.putText(u16At(data, 0) + 1, u16At(data, 2), m_strings[index]);
        return true;
    }
    case RecordType::Label:
    case RecordType::RString:
        return readLabel(record, records);
    case RecordType::BoolErr:
        if (data.size() < 8)
            return false;
        if (data[7] != 0)
            m_cells.putError(u16At(data, 0) + 1, u16At(data, 2));
        else
            putWord(u16At(data, 0) + 1, u16At(data, 2), data[6] != 0 ? "TRUE" : "FALSE");
        return true;
    case RecordType::Formula:
        return readFormula(data);
    case RecordType::String:
        return readFormulaString(record, records);
    case RecordType::Blank:
        return data.size() >= 6;
    case RecordType::MulBlank:
        return data.size() >= 8 && data.size() % 2 == 0;
    case RecordType::Dimensions:
        return data.size() >= 14;
    default:
        return true;
    }
}

bool BiffReader::readFormula(QByteArrayView data)
{
    if (data.size() < 20)
        return false;
    const int row = u16At(data, 0) + 1;
    const int column = u16At(data, 2);
    if (u16At(data, 12) != 0xFFFF) {
        putNumber(row, column, u16At(data, 4), doubleAt(data, 6));
        return true;
    }
    switch (quint8(data[6])) {
    case 0: // a text, in the STRING record that follows
        m_pendingRow = row;
        m_pendingColumn = column;
        break;
    case 1:
        putWord(row, column, data[8] != 0 ? "TRUE" : "FALSE");
        break;
    case 2:
        m_cells.putError(row, column);
        break;
    default: // 3: the empty text
        break;
    }
    return true;
}

bool BiffReader::readFormulaString(const Record &record, RecordReader &records)
{
    ContinuedData data;
    data.add(record.data);
    data.addContinues(records);
    std::string text;
    if (!data.readString(text))
        return false;
    if (m_pendingRow >= 0) {
        std::string &texts = m_cells.texts();
        const std::size_t start = texts.size();
        SheetValue::appendText(texts, text);
        m_cells.putText(m_pendingRow, m_pendingColumn, m_cells.checkedTextFrom(start));
        m_pendingRow = -1;
    }
    return !m_cells.overflowed();
}

bool BiffReader::readLabel(const Record &record, RecordReader &records)
{
    if (record.data.size() < 9)
        return false;
    ContinuedData data;
    data.add(record.data.sliced(6));
    data.addContinues(records);
    std::string text;
    if (!data.readString(text))
        return false;
    std::string &texts = m_cells.texts();
    const std::size_t start = texts.size();
    SheetValue::appendText(texts, text);
    m_cells.putText(
        u16At(record.data, 0) + 1, u16At(record.data, 2), m_cells.checkedTextFrom(start));
    return !m_cells.overflowed();
}

void BiffReader::putNumber(int row, int column, int xf, double value)
{
    if (column >= SheetCells::Columns)
        return;
    if (!std::isfinite(value)) {
        m_cells.putError(row, column);
        return;
    }
    std::string &texts = m_cells.texts();
    const std::size_t start = texts.size();
    SheetValue::appendValue(texts, value, kindOfXf(xf), m_system1904);
    m_cells.put(row, column, m_cells.textFrom(start));
}

void BiffReader::putWord(int row, int column, const char *word)
{
    if (column < SheetCells::Columns)
        m_cells.put(row, column, m_cells.addText(word));
}

} // namespace

bool readWorkbookStream(QByteArrayView stream, SheetCells &cells)
{
    return BiffReader(stream, cells).read();
}

} // namespace tarnwick::Biff
