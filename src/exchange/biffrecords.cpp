#include "exchange/biffrecords.h"

#include "exchange/utf8.h"

namespace tarnwick::Biff {

bool RecordReader::next(Record &record)
{
    if (m_damaged || m_at < 0 || m_at >= m_stream.size())
        return false;
    if (m_stream.size() - m_at < 4) {
        m_damaged = true;
        return false;
    }
    const quint16 type = u16At(m_stream, m_at);
    const quint16 size = u16At(m_stream, m_at + 2);
    if (m_stream.size() - m_at - 4 < size) {
        m_damaged = true;
        return false;
    }
    record.type = type;
    record.data = m_stream.sliced(m_at + 4, size);
    m_at += 4 + size;
    return true;
}

quint16 RecordReader::peekType() const
{
    if (m_damaged || m_at < 0 || m_stream.size() - m_at < 4)
        return 0;
    return u16At(m_stream, m_at);
}

void ContinuedData::addContinues(RecordReader &records)
{
    Record record;
    while (records.peekType() == RecordType::Continue && records.next(record))
        add(record.data);
}

bool ContinuedData::ensureByte()
{
    while (m_segment < m_segments.size() && m_at >= m_segments[m_segment].size()) {
        ++m_segment;
        m_at = 0;
    }
    return m_segment < m_segments.size();
}

bool ContinuedData::atEnd() const
{
    for (std::size_t segment = m_segment; segment < m_segments.size(); ++segment) {
        if (m_segments[segment].size() > (segment == m_segment ? m_at : 0))
            return false;
    }
    return true;
}

bool ContinuedData::readU8(quint8 &value)
{
    if (!ensureByte())
        return false;
    value = quint8(m_segments[m_segment][m_at++]);
    return true;
}

bool ContinuedData::readU16(quint16 &value)
{
    quint8 low = 0;
    quint8 high = 0;
    if (!readU8(low) || !readU8(high))
        return false;
    value = quint16(low | (high << 8));
    return true;
}

bool ContinuedData::readU32(quint32 &value)
{
    quint16 low = 0;
    quint16 high = 0;
    if (!readU16(low) || !readU16(high))
        return false;
    value = quint32(low) | (quint32(high) << 16);
    return true;
}

bool ContinuedData::skip(quint64 count)
{
    while (count > 0) {
        if (!ensureByte())
            return false;
        const auto step = std::min<quint64>(count, quint64(m_segments[m_segment].size() - m_at));
        m_at += qsizetype(step);
        count -= step;
    }
    return true;
}

bool ContinuedData::readCharacters(quint32 count, bool twoBytes)
{
    m_units.clear();
    while (count > 0) {
        if (m_segment >= m_segments.size())
            return false;
        if (m_at >= m_segments[m_segment].size()) {
            // The characters go on in the next record, which says how wide they are there.
            ++m_segment;
            m_at = 0;
            quint8 flags = 0;
            if (m_segment >= m_segments.size() || m_segments[m_segment].isEmpty())
                return false;
            flags = quint8(m_segments[m_segment][m_at++]);
            twoBytes = (flags & 0x01) != 0;
            continue;
        }
        const QByteArrayView segment = m_segments[m_segment];
        const qsizetype width = twoBytes ? 2 : 1;
        const auto available = quint32((segment.size() - m_at) / width);
        if (available == 0)
            return false;
        const quint32 taken = std::min(count, available);
        const std::size_t before = m_units.size();
        m_units.resize(before + taken);
        char16_t *units = m_units.data() + before;
        const char *bytes = segment.data() + m_at;
        if (twoBytes) {
            for (quint32 i = 0; i < taken; ++i)
                units[i] = char16_t(quint8(bytes[2 * i]) | (quint8(bytes[2 * i + 1]) << 8));
        } else {
            for (quint32 i = 0; i < taken; ++i)
                units[i] = char16_t(quint8(bytes[i]));
        }
        m_at += qsizetype(taken) * width;
        count -= taken;
    }
    return true;
}

bool ContinuedData::readString(std::string &out)
{
    quint16 count = 0;
    return readU16(count) && readStringOfCount(count, out);
}

bool ContinuedData::readStringOfCount(quint16 count, std::string &out)
{
    quint8 flags = 0;
    if (!readU8(flags))
        return false;
    quint16 runs = 0;
    quint32 extra = 0;
    if ((flags & 0x08) != 0 && !readU16(runs))
        return false;
    if ((flags & 0x04) != 0 && !readU32(extra))
        return false;
    if (!readCharacters(count, (flags & 0x01) != 0))
        return false;
    appendUtf16(out, m_units.data(), m_units.size());
    // The formatting runs and the phonetic data after the characters are no part of the text.
    return skip(quint64(runs) * 4 + extra);
}

void appendUtf16(std::string &out, const char16_t *units, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        // Most text of a price sheet is plain ASCII: a run of it is copied at once.
        std::size_t ascii = i;
        while (ascii < count && units[ascii] < 0x80)
            ++ascii;
        if (ascii != i) {
            const std::size_t at = out.size();
            out.resize(at + (ascii - i));
            char *to = out.data() + at;
            for (std::size_t k = i; k < ascii; ++k)
                *to++ = char(units[k]);
            i = ascii - 1;
            continue;
        }
        char32_t c = units[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < count && units[i + 1] >= 0xDC00
            && units[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (char32_t(units[i + 1]) - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            c = 0xFFFD;
        }
        appendUtf8(out, c);
    }
}

} // namespace tarnwick::Biff
