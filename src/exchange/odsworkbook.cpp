#include "exchange/gridworkbook.h"
#include "exchange/ziparchive.h"

#include <QXmlStreamReader>

namespace tarnwick {

namespace {

// Repeats beyond these are the spreadsheet's empty filler up to its last row and column.
constexpr int MaxRows = 1048576;
constexpr int MaxColumns = 16384;

int repeats(const QXmlStreamReader &xml, QLatin1String attribute)
{
    const int count = xml.attributes().value(attribute).toInt();
    return count > 0 ? count : 1;
}

/// The paragraphs of a cell joined by line breaks, for a text cell.
QString paragraphs(QXmlStreamReader &xml)
{
    QStringList lines;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("p")) {
            lines << xml.readElementText(QXmlStreamReader::IncludeChildElements);
        } else {
            xml.skipCurrentElement();
        }
    }
    return lines.join(QLatin1Char('\n'));
}

QString cellValue(QXmlStreamReader &xml)
{
    const auto attributes = xml.attributes();
    const QString type = attributes.value(QLatin1String("office:value-type")).toString();
    if (type == QLatin1String("float") || type == QLatin1String("currency")
        || type == QLatin1String("percentage")) {
        xml.skipCurrentElement();
        return numberCellText(attributes.value(QLatin1String("office:value")).toDouble());
    }
    if (type == QLatin1String("boolean")) {
        xml.skipCurrentElement();
        return attributes.value(QLatin1String("office:boolean-value")) == QLatin1String("true")
            ? QStringLiteral("TRUE")
            : QStringLiteral("FALSE");
    }
    return paragraphs(xml);
}

/// Reads one table row (the reader is on its start) into rows row.. of the workbook; returns
/// the number of rows it stands for.
int readRow(QXmlStreamReader &xml, int row, GridWorkbook &book)
{
    const int rowCount = repeats(xml, QLatin1String("table:number-rows-repeated"));
    int column = 0;
    bool hasText = false;
    std::vector<std::pair<int, QString>> cells;
    while (xml.readNextStartElement()) {
        const int count = repeats(xml, QLatin1String("table:number-columns-repeated"));
        const QString text = cellValue(xml);
        for (int k = 0; !text.isEmpty() && k < count && column + k < MaxColumns; ++k) {
            cells.emplace_back(column + k, text);
            hasText = true;
        }
        column += count;
    }
    for (int r = 0; hasText && r < rowCount && row + r <= MaxRows; ++r) {
        for (const auto &[c, text] : cells) {
            book.setCell(c, row + r, text);
        }
    }
    return rowCount;
}

} // namespace

WorkbookOpenResult openOdsWorkbook(const QString &path)
{
    const auto content = readZipMember(path, QStringLiteral("content.xml"));
    if (!content) {
        return notAWorkbook(1);
    }
    auto book = std::make_unique<GridWorkbook>();
    QXmlStreamReader xml(*content);
    bool inTable = false;
    int row = 1;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.qualifiedName() == QLatin1String("table:table")) {
            inTable = true;
        } else if (xml.isEndElement() && xml.qualifiedName() == QLatin1String("table:table")) {
            break;
        } else if (inTable && xml.isStartElement()
            && xml.qualifiedName() == QLatin1String("table:table-row")) {
            row += readRow(xml, row, *book);
        }
    }
    if (xml.hasError() || !inTable) {
        return notAWorkbook(1);
    }
    return WorkbookOpenResult { std::move(book), 0, {} };
}

} // namespace tarnwick
