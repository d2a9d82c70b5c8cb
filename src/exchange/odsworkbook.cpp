#include "exchange/gridworkbook.h"
#include "exchange/ziparchive.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <vector>

namespace tarnwick {

namespace {

// The rows and columns of a sheet; repeats reach no further (beyond the used range they are
// the spreadsheet's empty filler up to its last row and column).
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

/// Cells repeated along a row, as the file stores them: the first column, how many, the text.
struct OdsCellRun
{
    int first = 0;
    int count = 0;
    QString text;
};

/// Rows repeated down the table: the first row, how many, and their cells left to right.
struct OdsRowRun
{
    int first = 0;
    int count = 0;
    std::vector<OdsCellRun> cells;
};

/// The first table of an OpenDocument spreadsheet, held as the runs the file stores: a row or
/// a cell repeated a million times is kept once, however far it reaches.
class OdsTable : public IWorkbook
{
public:
    QString cellText(int column, int row) const override
    {
        const auto rows = std::upper_bound(m_rows.begin(), m_rows.end(), row,
            [](int wanted, const OdsRowRun &run) { return wanted < run.first; });
        if (rows == m_rows.begin() || row - std::prev(rows)->first >= std::prev(rows)->count) {
            return QString();
        }
        const std::vector<OdsCellRun> &cells = std::prev(rows)->cells;
        const auto cell = std::upper_bound(cells.begin(), cells.end(), column,
            [](int wanted, const OdsCellRun &run) { return wanted < run.first; });
        if (cell == cells.begin() || column - std::prev(cell)->first >= std::prev(cell)->count) {
            return QString();
        }
        return std::prev(cell)->text;
    }
    /// Adds rows after every row added so far.
    void addRows(OdsRowRun rows) { m_rows.push_back(std::move(rows)); }

private:
    std::vector<OdsRowRun> m_rows;
};

/// Reads one table row (the reader is on its start) into the table as rows row..; returns the
/// number of rows it stands for within the sheet, so row plus the result never passes
/// MaxRows + 1. Columns after the sheet's last are left out.
int readRow(QXmlStreamReader &xml, int row, OdsTable &table)
{
    const int rowCount =
        std::min(repeats(xml, QLatin1String("table:number-rows-repeated")), MaxRows + 1 - row);
    OdsRowRun rows { row, rowCount, {} };
    int column = 0;
    while (xml.readNextStartElement()) {
        const int count = std::min(
            repeats(xml, QLatin1String("table:number-columns-repeated")), MaxColumns - column);
        const QString text = cellValue(xml);
        if (!text.isEmpty() && count > 0) {
            rows.cells.push_back({ column, count, text });
        }
        column += count;
    }
    if (rowCount > 0 && !rows.cells.empty()) {
        table.addRows(std::move(rows));
    }
    return rowCount;
}

WorkbookOpenResult openOdsArchive(const ZipArchive &archive)
{
    const auto content = archive.member(QStringLiteral("content.xml"));
    if (!content) {
        return notAWorkbook(1);
    }
    auto book = std::make_unique<OdsTable>();
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

} // namespace

WorkbookOpenResult openOdsWorkbook(const QString &path)
{
    return openOdsArchive(ZipArchive(path));
}

WorkbookOpenResult openOdsWorkbookData(const QByteArray &bytes)
{
    return openOdsArchive(ZipArchive(bytes));
}

} // namespace tarnwick
