// The OpenDocument spreadsheet reader: the first table of "content.xml", read as it is
// inflated.
#include "exchange/sheetcells.h"
#include "exchange/sheetvalue.h"
#include "exchange/workbookformats.h"
#include "exchange/xmlpull.h"
#include "exchange/ziparchive.h"

#include <charconv>
#include <string>
#include <unordered_set>

namespace tarnwick {

namespace {

using Token = XmlPull::Token;

/// Repeats beyond this are filler up to the spreadsheet's last column.
constexpr qint64 OdsMaxColumnRepeat = qint64(1) << 20;

/// A repeat count attribute: at least 1, at most limit.
qint64 odsRepeat(std::string_view value, qint64 limit)
{
    qint64 count = 1;
    const auto result = std::from_chars(value.data(), value.data() + value.size(), count);
    if (result.ec == std::errc::result_out_of_range)
        return limit;
    return result.ec != std::errc() || count < 1 ? 1 : std::min(count, limit);
}

/// The attributes of a table cell the reader uses (absent ones empty), found in one pass over
/// the cell's attributes; of an attribute written twice, the first.
struct OdsCellAttributes
{
    explicit OdsCellAttributes(const XmlPull &xml)
    {
        for (std::size_t i = xml.attributeCount(); i-- > 0;) {
            const std::string_view name = xml.attributeName(i);
            const std::string_view value = xml.attributeValue(i);
            if (isName(name, "office:value-type")) {
                valueType = value;
            } else if (isName(name, "office:value")) {
                number = value;
            } else if (isName(name, "calcext:value-type")) {
                calcextType = value;
            } else if (isName(name, "table:number-columns-repeated")) {
                repeat = value;
            } else if (isName(name, "office:date-value")) {
                date = value;
            } else if (isName(name, "office:time-value")) {
                time = value;
            } else if (isName(name, "office:boolean-value")) {
                boolean = value;
            } else if (isName(name, "office:string-value")) {
                string = value;
                hasString = true;
            } else if (isName(name, "table:formula")) {
                hasFormula = true;
            }
        }
    }

    std::string_view valueType;
    std::string_view number;
    std::string_view calcextType;
    std::string_view repeat;
    std::string_view date;
    std::string_view time;
    std::string_view boolean;
    std::string_view string;
    bool hasString = false;
    bool hasFormula = false;

    /// An error value: marked as one (LibreOffice marks every formula result's kind, a text
    /// "#N/A" as a text), or, where nothing marks it, a formula whose result is the text of one
    /// (Gnumeric writes #DIV/0! so, as a text result); and a formula without a result (a
    /// program that writes spreadsheets without computing them leaves it to the spreadsheet):
    /// there is no value to take.
    bool isError() const
    {
        if (!calcextType.empty())
            return isName(calcextType, "error");
        if (hasFormula && valueType.empty())
            return true;
        if (!hasFormula || !hasString)
            return false;
        for (const std::string_view error :
            { "#DIV/0!", "#N/A", "#VALUE!", "#REF!", "#NAME?", "#NUM!", "#NULL!" }) {
            if (string == error)
                return true;
        }
        return false;
    }
};

class OdsTableReader
{
public:
    OdsTableReader(XmlPull &xml, SheetCells &cells) : m_xml(xml), m_cells(cells) { }

    /// Reads the table whose start the parser is on; false when the XML is invalid.
    bool read()
    {
        const int depth = m_xml.depth();
        while (m_xml.nextWithin(depth)) {
            if (m_xml.token() != Token::StartElement)
                continue;
            const std::string_view name = m_xml.name();
            if (isName(name, "table:table-row")) {
                if (!readRow())
                    return false;
                if (m_cells.stopped() || m_row > SheetCells::MaxRows)
                    return true;
            } else if (name != "table:table-header-rows" && name != "table:table-row-group"
                && name != "table:table-rows" && !m_xml.skipElement()) {
                return false;
            }
        }
        return !m_xml.failed();
    }

private:
    bool readRow()
    {
        const int depth = m_xml.depth();
        const qint64 repeat =
            odsRepeat(m_xml.attribute("table:number-rows-repeated"), qint64(SheetCells::MaxRows));
        qint64 column = 0;
        while (m_xml.nextWithin(depth)) {
            if (m_xml.token() != Token::StartElement)
                continue;
            const std::string_view name = m_xml.name();
            if (name != "table:table-cell" && name != "table:covered-table-cell") {
                if (!m_xml.skipElement())
                    return false;
                continue;
            }
            const OdsCellAttributes cell(m_xml);
            const qint64 cellRepeat = odsRepeat(cell.repeat, OdsMaxColumnRepeat);
            if (column < SheetCells::Columns) {
                if (!readCell(cell, int(column), int(std::min<qint64>(column + cellRepeat, 64))))
                    return false;
            } else if (!m_xml.skipElement()) {
                return false;
            }
            column += cellRepeat;
        }
        if (m_xml.failed())
            return false;
        m_cells.repeatRow(int(m_row), int(repeat));
        m_row += repeat;
        return true;
    }

    /// Reads the cell the parser is on into columns [first, last).
    bool readCell(const OdsCellAttributes &cell, int first, int last)
    {
        const auto row = int(m_row);
        const std::string_view valueType = cell.valueType;
        if (cell.isError()) {
            for (int column = first; column < last; ++column)
                m_cells.putError(row, column);
            return m_xml.skipElement();
        }
        std::string &texts = m_cells.texts();
        const std::size_t start = texts.size();
        bool fromAttribute = true;
        double number = 0;
        std::int64_t day = 0;
        std::int64_t seconds = 0;
        const bool isNumber = isName(valueType, "float") || isName(valueType, "percentage")
            || isName(valueType, "currency");
        if (isNumber && SheetValue::appendPlainDecimal(texts, cell.number)) {
        } else if (isNumber && SheetValue::parseNumber(cell.number, number)) {
            SheetValue::appendNumber(texts, number);
        } else if (isName(valueType, "date")
            && SheetValue::parseIsoDateTime(cell.date, day, seconds)) {
            SheetValue::appendDayAndSeconds(texts, day, seconds);
        } else if (isName(valueType, "time") && SheetValue::parseIsoDuration(cell.time, number)) {
            SheetValue::appendTime(texts, number);
        } else if (isName(valueType, "boolean")) {
            const std::string_view value = cell.boolean;
            texts += value == "true" || value == "1" ? "TRUE" : "FALSE";
        } else if (isName(valueType, "string") && cell.hasString) {
            SheetValue::appendText(texts, cell.string);
        } else {
            fromAttribute = false;
        }
        // Most cells hold one paragraph of plain characters, read at once.
        std::string_view paragraph;
        if (m_xml.readPlainContent("text:p", paragraph)) {
            if (!fromAttribute)
                appendLimited(start, paragraph);
        } else if (fromAttribute ? !m_xml.skipElement() : !readParagraphs(start)) {
            return false;
        }
        // A cell of no value type, or one whose value could not be read, holds what it shows.
        const bool typedText = !fromAttribute || isName(valueType, "string");
        const SheetText text = m_cells.checkedTextFrom(start);
        for (int column = first; column < last; ++column) {
            if (typedText)
                m_cells.putText(row, column, text);
            else
                m_cells.put(row, column, text);
        }
        return true;
    }

    /// The paragraphs of the cell the parser is on, joined by line breaks.
    bool readParagraphs(std::size_t start)
    {
        const int depth = m_xml.depth();
        bool first = true;
        while (m_xml.nextWithin(depth)) {
            if (m_xml.token() != Token::StartElement)
                continue;
            if (m_xml.name() != "text:p" && m_xml.name() != "text:h") {
                // Comments, drawings and other content of the cell are no part of its value.
                if (!m_xml.skipElement())
                    return false;
                continue;
            }
            if (!first)
                appendLimited(start, "\r\n");
            first = false;
            if (!readParagraph(start))
                return false;
        }
        return !m_xml.failed();
    }

    bool readParagraph(std::size_t start)
    {
        const int depth = m_xml.depth();
        while (m_xml.nextWithin(depth)) {
            if (m_xml.token() == Token::Text) {
                appendLimited(start, m_xml.text());
                continue;
            }
            if (m_xml.token() != Token::StartElement)
                continue;
            const std::string_view name = m_xml.name();
            if (isName(name, "text:s")) {
                const auto count = std::size_t(
                    odsRepeat(m_xml.attribute("text:c"), qint64(SheetCells::MaxCellBytes)));
                if (room(start) > 0)
                    m_cells.texts().append(std::min(count, room(start)), ' ');
            } else if (isName(name, "text:tab")) {
                appendLimited(start, "\t");
            } else if (isName(name, "text:line-break")) {
                appendLimited(start, "\r\n");
            } else if ((name == "office:annotation" || name == "text:note")
                && !m_xml.skipElement()) {
                return false;
            }
        }
        return !m_xml.failed();
    }

    /// How many bytes the cell begun at start may still take (one more than a cell keeps, so
    /// a cut can be made at a character's end).
    std::size_t room(std::size_t start) const
    {
        const std::size_t used = m_cells.texts().size() - start;
        return used > SheetCells::MaxCellBytes ? 0 : SheetCells::MaxCellBytes + 4 - used;
    }

    void appendLimited(std::size_t start, std::string_view text)
    {
        if (room(start) > 0)
            SheetValue::appendText(m_cells.texts(), text.substr(0, room(start)));
    }

    XmlPull &m_xml;
    SheetCells &m_cells;
    qint64 m_row = 1;
};

enum class TableRead { Read, Invalid, OnlyHidden };

/// Reads the first table of content.xml the document shows (its table style does not say
/// table:display="false"), or with takeHidden the first table of all.
TableRead readFirstTable(ZipArchive &archive, SheetCells &cells, bool takeHidden)
{
    const std::unique_ptr<ZipArchive::Member> content =
        ZipArchive::readAhead(archive.member("content.xml"));
    if (!content)
        return TableRead::Invalid;
    XmlPull xml([&content](char *data, qint64 size) { return content->read(data, size); });
    // The table styles that hide their tables, from the automatic styles before the body.
    std::unordered_set<std::string> hiddenStyles;
    std::string tableStyle;
    bool hiddenSeen = false;
    for (;;) {
        const Token token = xml.next();
        if (token == Token::Invalid || token == Token::End)
            return hiddenSeen ? TableRead::OnlyHidden : TableRead::Invalid;
        if (token != Token::StartElement)
            continue;
        const std::string_view name = xml.name();
        if (name == "style:style") {
            tableStyle = xml.attribute("style:family") == "table"
                ? std::string(xml.attribute("style:name"))
                : std::string();
        } else if (name == "style:table-properties") {
            // Style names are short; a file that makes them long or countless is not held.
            if (!tableStyle.empty() && tableStyle.size() <= 256 && hiddenStyles.size() < 10000
                && xml.attribute("table:display") == "false")
                hiddenStyles.insert(tableStyle);
        } else if (name == "table:table") {
            if (takeHidden
                || !hiddenStyles.contains(std::string(xml.attribute("table:style-name"))))
                return OdsTableReader(xml, cells).read() ? TableRead::Read : TableRead::Invalid;
            hiddenSeen = true;
            if (!xml.skipElement())
                return TableRead::Invalid;
        }
    }
}

} // namespace

bool readOdsSheet(ZipArchive &archive, SheetCells &cells)
{
    // The first worksheet the document shows; the first of all where it hides every one.
    const TableRead read = readFirstTable(archive, cells, false);
    if (read == TableRead::OnlyHidden)
        return readFirstTable(archive, cells, true) == TableRead::Read;
    return read == TableRead::Read;
}

} // namespace tarnwick
