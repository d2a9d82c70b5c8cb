// Characters of the catalogue file. Windows-1252 is done with our own table rather than
// Qt's codec: Qt offers that codec only when it is built with ICU, and the table keeps the
// five bytes Windows-1252 leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) as the characters
// U+0081 … U+009D, so every byte reads as one character and writes back as the same byte.
#include "catalogue/cataloguetext.h"

#include <QStringDecoder>

#include <array>
#include <optional>

namespace tarnwick {

namespace {

constexpr char16_t ByteOrderMark = 0xFEFF;
constexpr char16_t FieldEndCharacter = 0x7F;

/// Characters of the bytes 0x80..0x9F; the other bytes are the characters of the same code.
constexpr std::array<char16_t, 32> HighControlRange = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F, //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178, //
};

/// The text of bytes that are valid UTF-8 (an initial byte order mark is dropped); none for
/// anything else, including a sequence cut off at the end.
std::optional<QString> decodeStrictUtf8(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

QString decodeWindows1252(const QByteArray &bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        *out++ = (byte >= 0x80 && byte < 0xA0) ? QChar(HighControlRange[byte - 0x80]) : QChar(byte);
    }
    return text;
}

/// The Windows-1252 byte of a character; none when the character has no byte there.
std::optional<char> windows1252Byte(char16_t ch)
{
    if (ch < 0x80 || (ch >= 0xA0 && ch <= 0xFF))
        return static_cast<char>(ch);
    for (std::size_t i = 0; i < HighControlRange.size(); ++i) {
        if (HighControlRange[i] == ch)
            return static_cast<char>(0x80 + i);
    }
    return std::nullopt;
}

std::optional<QByteArray> encodeWindows1252(const QString &text)
{
    QByteArray bytes(text.size(), Qt::Uninitialized);
    char *out = bytes.data();
    bool highBytes = false;
    for (const QChar ch : text) {
        const std::optional<char> byte = windows1252Byte(ch.unicode());
        if (!byte)
            return std::nullopt;
        highBytes = highBytes || static_cast<unsigned char>(*byte) >= 0x80;
        *out++ = *byte;
    }
    // Bytes that happen to form valid UTF-8 ("Ã©" is C3 A9, which is "é" in UTF-8) would be
    // read back as other characters; such a text is written as UTF-8 instead.
    if (highBytes && decodeStrictUtf8(bytes))
        return std::nullopt;
    return bytes;
}

} // namespace

QString decodeCatalogueBytes(const QByteArray &bytes)
{
    if (std::optional<QString> text = decodeStrictUtf8(bytes))
        return *text;
    return decodeWindows1252(bytes);
}

QByteArray encodeCatalogueText(const QString &text)
{
    if (std::optional<QByteArray> bytes = encodeWindows1252(text))
        return *bytes;
    QByteArray bytes = text.toUtf8();
    // The reader drops a byte order mark at the very start; a text that itself starts with
    // that character gets one more, so the character survives the round trip.
    if (text.startsWith(QChar(ByteOrderMark)))
        bytes.prepend(QByteArrayLiteral("\xEF\xBB\xBF"));
    return bytes;
}

QString withoutFieldEndCharacters(const QString &text)
{
    QString result = text;
    result.remove(QChar(FieldEndCharacter));
    return result;
}

} // namespace tarnwick
