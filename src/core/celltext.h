#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <cstdint>

namespace tarnwick {

/// How the characters of a text cell are kept.
enum class TextEncoding : std::uint8_t {
    Windows1252, ///< one byte per character, as the earlier program's catalogue files hold them
    Utf8, ///< UTF-8 bytes, already checked to be valid
    Utf16, ///< the UTF-16 code units of a QString
};

/// Shared storage that text cells point into: either the bytes of a whole catalogue file as
/// read (one block for every text of the catalogue) or the text of one QString. Reference
/// counted; the last cell that lets go frees it.
struct CellTextBlock
{
    std::atomic<std::int32_t> ref { 1 };
    QByteArray bytes; ///< Windows-1252 or UTF-8 bytes
    QString text; ///< UTF-16 text, for a block made from one QString
};

/// The characters of one text cell where they are stored, without copying them. For the two
/// byte encodings size counts bytes, for UTF-16 code units.
struct CellTextView
{
    TextEncoding encoding = TextEncoding::Utf16;
    const void *data = nullptr;
    qsizetype size = 0;

    const char *bytes() const { return static_cast<const char *>(data); }
    const char16_t *units() const { return static_cast<const char16_t *>(data); }
    bool isEmpty() const { return size == 0; }
    /// True when every character is below 128: then the bytes (or units) are the text's UTF-16
    /// code units one for one, in any encoding.
    bool isAscii() const;
    /// The text as a QString (decoded for the byte encodings).
    QString toString() const;
};

namespace celltext {

/// The character of a Windows-1252 byte. The five bytes Windows-1252 leaves undefined (0x81,
/// 0x8D, 0x8F, 0x90, 0x9D) stand for the characters U+0081 … U+009D, so every byte reads as one
/// character and writes back as the same byte.
char16_t windows1252Char(unsigned char byte);
/// The Windows-1252 byte of a UTF-16 code unit; -1 when there is none.
int windows1252Byte(char16_t unit);

/// True when bytes are valid UTF-8 as Qt's strict decoder takes it (no overlong forms, no
/// surrogates, nothing above U+10FFFF, no sequence cut off at the end).
bool isValidUtf8(const char *bytes, qsizetype size);
/// True when every byte is below 128.
bool isAscii(const char *bytes, qsizetype size);

/// Compares two texts by their UTF-16 code units, as QString's operators do: <0, 0 or >0.
int compare(const CellTextView &a, const CellTextView &b);
bool equal(const CellTextView &a, const CellTextView &b);

/// Where a text cut at position units ends whole: the last place at or before position that
/// lies between two characters as a reader sees them (a letter with its accents, an emoji with
/// its joiners and modifiers, never half of a character of two units).
qsizetype wholeCharactersBefore(const QString &text, qsizetype position);
/// The text cut to at most units code units, ending between whole characters.
QString leftWhole(const QString &text, qsizetype units);

} // namespace celltext

} // namespace tarnwick
