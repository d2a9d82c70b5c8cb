// Characters of the catalogue file. Windows-1252 is done with our own table rather than
// Qt's codec: Qt offers that codec only when it is built with ICU, and the table keeps the
// five bytes Windows-1252 leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) as the characters
// U+0081 … U+009D, so every byte reads as one character and writes back as the same byte.
#include "catalogue/cataloguetext.h"

#include "catalogue/fieldend.h"

#include "core/celltext.h"

#include <QStringDecoder>

#include <optional>

namespace tarnwick {

namespace {

constexpr char16_t ByteOrderMark = 0xFEFF;

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
        *out++ = QChar(celltext::windows1252Char(byte));
    }
    return text;
}

/// The Windows-1252 byte of a character; none when the character has no byte there.
std::optional<char> windows1252Byte(char16_t ch)
{
    const int byte = celltext::windows1252Byte(ch);
    if (byte < 0)
        return std::nullopt;
    return static_cast<char>(byte);
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
    result.remove(QChar(fieldend::Character));
    return result;
}

} // namespace tarnwick
