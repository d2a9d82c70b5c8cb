#pragma once

#include <QByteArrayView>
#include <QtEndian>

#include <string>
#include <vector>

namespace tarnwick::Biff {

/// Record types of the Excel 97 (BIFF8) workbook stream that the reader uses.
namespace RecordType {
constexpr quint16 Formula = 0x0006;
constexpr quint16 Eof = 0x000A;
constexpr quint16 DateMode = 0x0022;
constexpr quint16 FilePass = 0x002F;
constexpr quint16 Continue = 0x003C;
constexpr quint16 BoundSheet = 0x0085;
constexpr quint16 MulRk = 0x00BD;
constexpr quint16 MulBlank = 0x00BE;
constexpr quint16 RString = 0x00D6;
constexpr quint16 Xf = 0x00E0;
constexpr quint16 Sst = 0x00FC;
constexpr quint16 LabelSst = 0x00FD;
constexpr quint16 Dimensions = 0x0200;
constexpr quint16 Blank = 0x0201;
constexpr quint16 Number = 0x0203;
constexpr quint16 Label = 0x0204;
constexpr quint16 BoolErr = 0x0205;
constexpr quint16 String = 0x0207;
constexpr quint16 Rk = 0x027E;
constexpr quint16 Format = 0x041E;
constexpr quint16 Bof = 0x0809;
} // namespace RecordType

inline quint16 u16At(QByteArrayView data, qsizetype at)
{
    return qFromLittleEndian<quint16>(data.data() + at);
}
inline quint32 u32At(QByteArrayView data, qsizetype at)
{
    return qFromLittleEndian<quint32>(data.data() + at);
}

/// One record: its type and its data.
struct Record
{
    quint16 type = 0;
    QByteArrayView data;
};

/// The records of a workbook stream, one after the other from a position.
class RecordReader
{
public:
    RecordReader(QByteArrayView stream, qsizetype at) : m_stream(stream), m_at(at) { }
    /// The next record; false at the end of the stream, and also when a record runs past it
    /// (then damaged() is true).
    bool next(Record &record);
    /// The type of the record after the current one, or 0 at the end.
    quint16 peekType() const;
    bool damaged() const { return m_damaged; }

private:
    QByteArrayView m_stream;
    qsizetype m_at;
    bool m_damaged = false;
};

/// The data of a record and of the CONTINUE records after it, read as one: a string whose
/// characters go on in the next record starts that record with a byte that says whether they
/// are one or two bytes each.
class ContinuedData
{
public:
    void add(QByteArrayView segment) { m_segments.push_back(segment); }
    /// Adds the CONTINUE records that follow the current record of records.
    void addContinues(RecordReader &records);
    bool atEnd() const;
    bool readU8(quint8 &value);
    bool readU16(quint16 &value);
    bool readU32(quint32 &value);
    bool skip(quint64 count);
    /// Reads an XLUnicodeString (count, flags, characters and what the flags add) and appends
    /// its text as UTF-8; with withCount false the count is given. False when the data ends
    /// first.
    bool readString(std::string &out);
    bool readStringOfCount(quint16 count, std::string &out);

private:
    /// Moves to the next segment when the current one is used up; false at the end.
    bool ensureByte();
    bool readCharacters(quint32 count, bool twoBytes);

    std::vector<QByteArrayView> m_segments;
    std::size_t m_segment = 0;
    qsizetype m_at = 0;
    std::u16string m_units;
};

/// Appends UTF-16 code units as UTF-8, a lone surrogate as U+FFFD.
void appendUtf16(std::string &out, const char16_t *units, std::size_t count);

} // namespace tarnwick::Biff
