#include "catalogue/cataloguewriter.h"

#include "catalogue/fieldend.h"
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/storednumber.h"

#include <QStringView>

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
    const bool numberField = field == ProductRecord::Price || field >= ProductRecord::PricePoint1;
    return numberField ? stored::cellText(cell, locale) : conv::toText(cell, locale);
}

bool hasPartNumber(const Cell &cell, const QLocale &locale)
{
    // An empty cell (never assigned) counts as the empty text.
    if (cell.isText())
        return !cell.textView().isEmpty();
    return !cell.isNull() && !conv::toText(cell, locale).isEmpty();
}

} // namespace

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

/// Builds the file's bytes in one encoding; fails (returns false) only when a character has
/// no Windows-1252 byte.
class ByteLineWriter
{
public:
    ByteLineWriter(FileEncoding encoding, const QLocale &locale)
        : m_encoding(encoding), m_locale(locale), m_plainDecimals(conv::readsPlainDecimals(locale))
    {
    }

    QByteArray &bytes() { return m_bytes; }
    bool highBytes() const { return m_highBytes; }

    bool appendField(const Cell &cell, int field)
    {
        const bool numberField =
            field == ProductRecord::Price || field >= ProductRecord::PricePoint1;
        if (cell.isText()) {
            const CellTextView view = cell.textView();
            // A plain decimal text is already in stored form; other texts of a number field
            // may need rewriting ("1.000" typed in German is stored as "1000").
            if (!numberField || view.isEmpty() || isPlainDecimal(view))
                return appendView(view);
        } else if (cell.isEmpty() || cell.isNull()) {
            return true;
        }
        const QString text = fileText(cell, field, m_locale);
        return appendView({ TextEncoding::Utf16, text.utf16(), text.size() });
    }

    void appendAscii(std::string_view text) { m_bytes.append(text.data(), qsizetype(text.size())); }

private:
    bool isPlainDecimal(const CellTextView &view) const
    {
        return m_plainDecimals && view.encoding != TextEncoding::Utf16
            && conv::plainDecimal(view.bytes(), view.size).has_value();
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
            m_bytes.append(text.toUtf8());
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
    QByteArray m_bytes;
    bool m_highBytes = false;
};

/// Writes every row with a part number in one encoding; false when a character does not fit.
bool writeRows(const Table &table, ByteLineWriter &writer, CatalogueFileBytes &result,
    const QLocale &locale, qsizetype sizeHint)
{
    writer.bytes().reserve(sizeHint);
    const qint32 lastRow = table.upperBound(1);
    for (qint32 row = 1; row <= lastRow; ++row) {
        if (!hasPartNumber(table.get(row, ProductRecord::PartNumber), locale)) {
            result.count = row - 1;
            continue;
        }
        for (int field = 1; field <= ProductRecord::FieldCount; ++field) {
            if (!writer.appendField(table.get(row, field), field))
                return false;
            writer.appendAscii("\x7f\x7f\x7f");
        }
        writer.appendAscii("\r\n");
        result.count = row;
        ++result.rowsWritten;
    }
    return true;
}

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

} // namespace

CatalogueFileBytes catalogueFileBytes(const Table &table, const QLocale &locale, qint32 count)
{
    const qsizetype hint = sizeHintOf(table);
    CatalogueFileBytes result;
    result.count = count;
    {
        // Windows-1252 when every character has a byte there, unless those bytes happen to
        // form valid UTF-8, which would be read back as other characters.
        ByteLineWriter writer(FileEncoding::Windows1252, locale);
        if (writeRows(table, writer, result, locale, hint)) {
            const QByteArray &bytes = writer.bytes();
            if (!writer.highBytes() || !celltext::isValidUtf8(bytes.constData(), bytes.size())) {
                result.bytes = std::move(writer.bytes());
                return result;
            }
        }
    }
    result = {};
    result.count = count;
    ByteLineWriter writer(FileEncoding::Utf8, locale);
    writeRows(table, writer, result, locale, hint);
    // The reader drops a byte order mark at the very start; a text that itself starts with
    // that character gets one more, so the character survives the round trip.
    if (writer.bytes().startsWith("\xEF\xBB\xBF"))
        writer.bytes().prepend("\xEF\xBB\xBF");
    result.bytes = std::move(writer.bytes());
    return result;
}

} // namespace tarnwick
