#include "exchange/gridworkbook.h"
#include "exchange/ziparchive.h"

#include <QStringList>
#include <QXmlStreamReader>

namespace tarnwick {

namespace {

/// The text of every <t> inside the current element, which the reader has just entered.
QString textsUntilEnd(QXmlStreamReader &xml)
{
    QString text;
    const QString element = xml.name().toString();
    while (!xml.atEnd() && !(xml.isEndElement() && xml.name() == element)) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("t")) {
            text += xml.readElementText();
        }
    }
    return text;
}

QStringList sharedStrings(const QByteArray &bytes)
{
    QStringList strings;
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("si")) {
            strings << textsUntilEnd(xml);
        }
    }
    return strings;
}

/// The columns of a worksheet: A to XFD.
constexpr int XlsxColumns = 16384;

/// "BC12" gives column 54 and row 12; false when the reference cannot be read, or names a
/// column after XFD.
bool parseReference(const QString &reference, int &column, int &row)
{
    column = 0;
    int i = 0;
    for (; i < reference.size(); ++i) {
        // Only the letters A to Z, in either case.
        const char16_t c = reference[i].unicode();
        const char16_t letter = c >= 'a' && c <= 'z' ? char16_t(c - 'a' + 'A') : c;
        if (letter < 'A' || letter > 'Z') {
            break;
        }
        column = column * 26 + (letter - 'A' + 1);
        if (column > XlsxColumns) {
            return false;
        }
    }
    bool ok = false;
    row = reference.mid(i).toInt(&ok);
    --column;
    return ok && i > 0 && column >= 0 && row >= 1;
}

QString cellValue(const QString &type, const QString &value, const QStringList &strings)
{
    if (type == QLatin1String("s")) {
        const int index = value.toInt();
        return index >= 0 && index < strings.size() ? strings[index] : QString();
    }
    if (type == QLatin1String("b")) {
        return value == QLatin1String("1") ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
    }
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if ((type.isEmpty() || type == QLatin1String("n")) && isNumber) {
        return numberCellText(number);
    }
    return value;
}

/// Reads one <c> element into the workbook.
void readCell(QXmlStreamReader &xml, const QStringList &strings, GridWorkbook &book)
{
    int column = 0;
    int row = 0;
    if (!parseReference(xml.attributes().value(QLatin1String("r")).toString(), column, row)) {
        xml.skipCurrentElement();
        return;
    }
    const QString type = xml.attributes().value(QLatin1String("t")).toString();
    QString value;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("v")) {
            value = xml.readElementText();
        } else if (xml.name() == QLatin1String("is")) {
            value = textsUntilEnd(xml);
        } else {
            xml.skipCurrentElement();
        }
    }
    book.setCell(
        column, row, type == QLatin1String("inlineStr") ? value : cellValue(type, value, strings));
}

/// The member name of the first worksheet, from the workbook and its relationships.
QString firstSheetMember(const ZipArchive &archive)
{
    const auto workbook = archive.member(QStringLiteral("xl/workbook.xml"));
    const auto rels = archive.member(QStringLiteral("xl/_rels/workbook.xml.rels"));
    if (!workbook || !rels) {
        return QString();
    }
    QString id;
    QXmlStreamReader xml(*workbook);
    while (!xml.atEnd() && id.isEmpty()) {
        if (xml.readNext() == QXmlStreamReader::StartElement
            && xml.name() == QLatin1String("sheet")) {
            for (const auto &attribute : xml.attributes()) {
                if (attribute.name() == QLatin1String("id")) {
                    id = attribute.value().toString();
                }
            }
        }
    }
    QXmlStreamReader relations(*rels);
    while (!relations.atEnd()) {
        if (relations.readNext() == QXmlStreamReader::StartElement
            && relations.attributes().value(QLatin1String("Id")) == id) {
            const QString target = relations.attributes().value(QLatin1String("Target")).toString();
            return target.startsWith(QLatin1Char('/')) ? target.mid(1)
                                                       : QStringLiteral("xl/") + target;
        }
    }
    return QString();
}

WorkbookOpenResult openXlsxArchive(const ZipArchive &archive)
{
    const QString member = firstSheetMember(archive);
    const auto sheet = member.isEmpty() ? std::nullopt : archive.member(member);
    if (!sheet) {
        return notAWorkbook(1);
    }
    const auto stringBytes = archive.member(QStringLiteral("xl/sharedStrings.xml"));
    const QStringList strings = stringBytes ? sharedStrings(*stringBytes) : QStringList();
    auto book = std::make_unique<GridWorkbook>();
    QXmlStreamReader xml(*sheet);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("c")) {
            readCell(xml, strings, *book);
        }
    }
    if (xml.hasError()) {
        return notAWorkbook(1);
    }
    return WorkbookOpenResult { std::move(book), 0, {} };
}

} // namespace

WorkbookOpenResult openXlsxWorkbook(const QString &path)
{
    return openXlsxArchive(ZipArchive(path));
}

WorkbookOpenResult openXlsxWorkbookData(const QByteArray &bytes)
{
    return openXlsxArchive(ZipArchive(bytes));
}

} // namespace tarnwick
