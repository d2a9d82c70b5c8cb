// The stored characters of text cells: Windows-1252 and UTF-8 bytes as the catalogue file
// holds them, or UTF-16. Comparisons work on UTF-16 code units, decoded on the fly, so they
// order and match texts exactly as QString does without building one.
#include "core/celltext.h"

#include <QStringDecoder>
#include <QTextBoundaryFinder>

#include <array>
#include <cstring>

namespace tarnwick {

namespace {

/// Characters of the bytes 0x80..0x9F; the other bytes are the characters of the same code.
constexpr std::array<char16_t, 32> HighControlRange = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F, //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178, //
};

/// Reads a text's UTF-16 code units one at a time, whatever its encoding.
class UnitReader
{
public:
    explicit UnitReader(const CellTextView &view) : m_view(view) { }

    bool atEnd() const { return m_low == 0 && m_position >= m_view.size; }

    char16_t next()
    {
        if (m_low != 0) {
            const char16_t low = m_low;
            m_low = 0;
            return low;
        }
        switch (m_view.encoding) {
        case TextEncoding::Utf16:
            return m_view.units()[m_position++];
        case TextEncoding::Windows1252:
            return celltext::windows1252Char(
                static_cast<unsigned char>(m_view.bytes()[m_position++]));
        case TextEncoding::Utf8:
            break;
        }
        return nextUtf8();
    }

private:
    char16_t nextUtf8()
    {
        const auto *b = reinterpret_cast<const unsigned char *>(m_view.bytes()) + m_position;
        char32_t code = 0;
        if (b[0] < 0x80) {
            code = b[0];
            m_position += 1;
        } else if (b[0] < 0xE0) {
            code = char32_t(b[0] & 0x1F) << 6 | (b[1] & 0x3F);
            m_position += 2;
        } else if (b[0] < 0xF0) {
            code = char32_t(b[0] & 0x0F) << 12 | char32_t(b[1] & 0x3F) << 6 | (b[2] & 0x3F);
            m_position += 3;
        } else {
            code = char32_t(b[0] & 0x07) << 18 | char32_t(b[1] & 0x3F) << 12
                | char32_t(b[2] & 0x3F) << 6 | (b[3] & 0x3F);
            m_position += 4;
        }
        if (code < 0x10000)
            return char16_t(code);
        code -= 0x10000;
        m_low = char16_t(0xDC00 + (code & 0x3FF));
        return char16_t(0xD800 + (code >> 10));
    }

    const CellTextView &m_view;
    qsizetype m_position = 0;
    char16_t m_low = 0;
};

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

/// Length of the valid UTF-8 sequence at b (before end); 0 when it is not valid there.
int sequenceLength(const unsigned char *b, const unsigned char *end)
{
    const unsigned char lead = b[0];
    const qsizetype left = end - b;
    if (lead >= 0xC2 && lead <= 0xDF)
        return (left >= 2 && isContinuation(b[1])) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        if (left < 3 || !isContinuation(b[1]) || !isContinuation(b[2]))
            return 0;
        if (lead == 0xE0 && b[1] < 0xA0)
            return 0; // overlong
        if (lead == 0xED && b[1] >= 0xA0)
            return 0; // a surrogate
        return 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        if (left < 4 || !isContinuation(b[1]) || !isContinuation(b[2]) || !isContinuation(b[3]))
            return 0;
        if (lead == 0xF0 && b[1] < 0x90)
            return 0; // overlong
        if (lead == 0xF4 && b[1] >= 0x90)
            return 0; // above U+10FFFF
        return 4;
    }
    return 0;
}

} // namespace

char16_t celltext::windows1252Char(unsigned char byte)
{
    return (byte >= 0x80 && byte < 0xA0) ? HighControlRange[byte - 0x80] : char16_t(byte);
}

int celltext::windows1252Byte(char16_t unit)
{
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return unit;
    for (std::size_t i = 0; i < HighControlRange.size(); ++i) {
        if (HighControlRange[i] == unit)
            return int(0x80 + i);
    }
    return -1;
}

bool celltext::isAscii(const char *bytes, qsizetype size)
{
    qsizetype i = 0;
    // Eight bytes at a time: a catalogue file is mostly plain ASCII.
    for (; i + 8 <= size; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes + i, 8);
        if (word & 0x8080808080808080ULL)
            return false;
    }
    for (; i < size; ++i) {
        if (static_cast<unsigned char>(bytes[i]) >= 0x80)
            return false;
    }
    return true;
}

bool celltext::isValidUtf8(const char *bytes, qsizetype size)
{
    const auto *b = reinterpret_cast<const unsigned char *>(bytes);
    const unsigned char *end = b + size;
    while (b < end) {
        if (*b < 0x80) {
            // Skip plain ASCII eight bytes at a time.
            std::uint64_t word = 0;
            if (end - b >= 8) {
                std::memcpy(&word, b, 8);
                if ((word & 0x8080808080808080ULL) == 0) {
                    b += 8;
                    continue;
                }
            }
            ++b;
            continue;
        }
        const int length = sequenceLength(b, end);
        if (length == 0)
            return false;
        b += length;
    }
    return true;
}

bool CellTextView::isAscii() const
{
    if (encoding != TextEncoding::Utf16)
        return celltext::isAscii(bytes(), size);
    for (qsizetype i = 0; i < size; ++i) {
        if (units()[i] >= 0x80)
            return false;
    }
    return true;
}

QString CellTextView::toString() const
{
    switch (encoding) {
    case TextEncoding::Utf16:
        return QString(reinterpret_cast<const QChar *>(units()), size);
    case TextEncoding::Utf8:
        // QString::fromUtf8 takes a leading U+FEFF for a byte order mark and drops it; in a
        // cell it is a character of the text.
        if (size >= 3 && std::memcmp(bytes(), "\xEF\xBB\xBF", 3) == 0) {
            QStringDecoder decoder(
                QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
            return decoder.decode(QByteArrayView(bytes(), size));
        }
        return QString::fromUtf8(bytes(), size);
    case TextEncoding::Windows1252:
        break;
    }
    QString text(size, Qt::Uninitialized);
    QChar *out = text.data();
    for (qsizetype i = 0; i < size; ++i)
        out[i] = QChar(celltext::windows1252Char(static_cast<unsigned char>(bytes()[i])));
    return text;
}

int celltext::compare(const CellTextView &a, const CellTextView &b)
{
    UnitReader left(a);
    UnitReader right(b);
    while (!left.atEnd() && !right.atEnd()) {
        const char16_t x = left.next();
        const char16_t y = right.next();
        if (x != y)
            return x < y ? -1 : 1;
    }
    if (left.atEnd())
        return right.atEnd() ? 0 : -1;
    return 1;
}

bool celltext::equal(const CellTextView &a, const CellTextView &b)
{
    // The same byte encoding: equal texts have equal bytes (both encodings read each text one
    // way only), so the bytes decide at once.
    if (a.encoding == b.encoding) {
        const qsizetype unitSize = a.encoding == TextEncoding::Utf16 ? 2 : 1;
        return a.size == b.size && std::memcmp(a.data, b.data, std::size_t(a.size * unitSize)) == 0;
    }
    return compare(a, b) == 0;
}

qsizetype celltext::wholeCharactersBefore(const QString &text, qsizetype position)
{
    if (position <= 0)
        return 0;
    if (position >= text.size())
        return text.size();
    // Between two characters below U+0300 (where the accent marks begin) there is always a
    // boundary but inside CR LF: most names are cut without looking further.
    const char16_t left = text.at(position - 1).unicode();
    const char16_t right = text.at(position).unicode();
    if (left < 0x300 && right < 0x300 && !(left == u'\r' && right == u'\n'))
        return position;
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    characters.setPosition(position);
    if (characters.isAtBoundary())
        return position;
    const qsizetype before = characters.toPreviousBoundary();
    return before < 0 ? 0 : before;
}

QString celltext::leftWhole(const QString &text, qsizetype units)
{
    if (text.size() <= units)
        return text;
    qsizetype length = wholeCharactersBefore(text, units);
    // A first character longer than the room (a letter with a hundred accent marks) is cut
    // between its code points rather than to nothing.
    if (length == 0 && units > 0)
        length = text.at(units - 1).isHighSurrogate() ? units - 1 : units;
    return text.left(length);
}

} // namespace tarnwick
