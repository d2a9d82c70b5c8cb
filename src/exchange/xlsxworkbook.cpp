// The Office Open XML workbook reader: the first worksheet, read as it is inflated, with the
// shared strings and the cell formats that tell dates from numbers.
#include "exchange/sheetcells.h"
#include "exchange/sheetvalue.h"
#include "exchange/workbookformats.h"
#include "exchange/xlsxparts.h"
#include "exchange/xmlpull.h"
#include "exchange/ziparchive.h"

#include <charconv>
#include <limits>

namespace tarnwick {

namespace {

using Token = XmlPull::Token;

/// std::from_chars for the short decimal numbers of every cell (its row, style and shared
/// string): up to nine digits are read here, anything else by from_chars itself.
template <typename Number>
std::from_chars_result readNumber(const char *first, const char *last, Number &value)
{
    const char *at = first;
    Number number = 0;
    for (; at != last && at - first < 9 && unsigned(*at - '0') < 10; ++at)
        number = number * 10 + Number(*at - '0');
    if (at == first || (at != last && unsigned(*at - '0') < 10))
        return std::from_chars(first, last, value);
    value = number;
    return { at, std::errc() };
}

/// Column and row of a reference such as "BC12" (column 54, row 12); false when it is none or
/// lies beyond the largest worksheet.
bool parseCellReference(std::string_view reference, int &column, int &row)
{
    std::size_t at = 0;
    int letters = 0;
    column = 0;
    for (; at < reference.size() && letters < 4; ++at, ++letters) {
        const char c = reference[at];
        if (c >= 'A' && c <= 'Z')
            column = column * 26 + (c - 'A' + 1);
        else if (c >= 'a' && c <= 'z')
            column = column * 26 + (c - 'a' + 1);
        else
            break;
    }
    --column;
    const auto result = readNumber(reference.data() + at, reference.data() + reference.size(), row);
    return letters >= 1 && letters <= 3 && result.ec == std::errc()
        && result.ptr == reference.data() + reference.size() && column < 16384 && row >= 1
        && row <= SheetCells::MaxRows;
}

enum class XlsxCellType { Number, SharedString, Text, Boolean, Error, Date };

XlsxCellType xlsxCellType(std::string_view type)
{
    if (isName(type, "s"))
        return XlsxCellType::SharedString;
    if (isName(type, "str") || isName(type, "inlineStr"))
        return XlsxCellType::Text;
    if (isName(type, "b"))
        return XlsxCellType::Boolean;
    if (isName(type, "e"))
        return XlsxCellType::Error;
    if (isName(type, "d"))
        return XlsxCellType::Date;
    return XlsxCellType::Number;
}

class XlsxSheetReader
{
public:
    XlsxSheetReader(XmlPull &xml, SheetCells &cells, const std::vector<SheetText> &strings,
        const std::vector<SheetValue::FormatKind> &formats, const XlsxParts::Workbook &workbook)
        : m_xml(xml), m_cells(cells), m_strings(strings), m_formats(formats),
          m_system1904(workbook.system1904), m_resultsStandIn(workbook.resultsToBeWorkedOut)
    {
    }

    bool read()
    {
        for (;;) {
            const Token token = m_xml.next();
            if (token == Token::Invalid)
                return false;
            if (token == Token::End || m_cells.stopped())
                return true;
            if (token != Token::StartElement)
                continue;
            const std::string_view name = m_xml.localName();
            if (isName(name, "row")) {
                int row = 0;
                const std::string_view number = m_xml.attribute("r");
                const auto result = readNumber(number.data(), number.data() + number.size(), row);
                // A row without its number follows the one before; past the last row a sheet
                // can have, it stays there (the cells then fall outside the sheet).
                m_row = result.ec == std::errc() && row >= 1
                    ? row
                    : (m_row < std::numeric_limits<int>::max() ? m_row + 1 : m_row);
                m_column = -1;
            } else if (isName(name, "c")) {
                if (!readCell())
                    return false;
            }
        }
    }

private:
    bool readCell()
    {
        int column = m_column + 1;
        int row = m_row;
        const std::string_view reference = m_xml.attribute("r");
        const bool placed = reference.empty() || parseCellReference(reference, column, row);
        int style = 0;
        const std::string_view styleText = m_xml.attribute("s");
        readNumber(styleText.data(), styleText.data() + styleText.size(), style);
        const XlsxCellType type = xlsxCellType(m_xml.attribute("t"));
        std::string &texts = m_cells.texts();
        const std::size_t start = texts.size();
        m_value.clear();
        bool hasValue = false;
        bool hasFormula = false;
        std::string_view value;
        if (m_xml.readPlainContent("v", value)) {
            hasValue = true;
        } else if (!readContent(hasValue, hasFormula)) {
            return false;
        } else {
            value = m_value;
        }
        if (!placed) {
            texts.resize(start);
            return true;
        }
        m_column = column;
        m_row = row;
        if (column >= SheetCells::Columns)
            return true;
        // A formula without its result (no value, or an empty one where the result is no
        // text): programs that write workbooks without computing them leave the result to the
        // spreadsheet, storing nothing, or 0 where the workbook asks to be worked out anew when
        // opened. There is no value to take; like an error, it is said. (A result such a
        // program was given is stored as given, and taken.)
        const bool standIn = m_resultsStandIn && (value.empty() || value == "0");
        if (hasFormula && (standIn || !hasValue || (value.empty() && type != XlsxCellType::Text))) {
            texts.resize(start);
            m_cells.putError(row, column);
            return true;
        }
        if (!hasValue)
            return true;
        return putValue(row, column, type, style, value, start);
    }

    /// The cell's content token by token: its value into m_value, an inline string into the
    /// texts; whether it holds a formula.
    bool readContent(bool &hasValue, bool &hasFormula)
    {
        std::string &texts = m_cells.texts();
        const int depth = m_xml.depth();
        while (m_xml.nextWithin(depth)) {
            if (m_xml.token() != Token::StartElement)
                continue;
            if (isName(m_xml.localName(), "v")) {
                hasValue = true;
                if (!readValue())
                    return false;
            } else if (isName(m_xml.localName(), "is")) {
                hasValue = true;
                if (!XlsxParts::appendStringItem(m_xml, texts))
                    return false;
            } else if (isName(m_xml.localName(), "f")) {
                hasFormula = true;
                if (!m_xml.skipElement())
                    return false;
            } else if (!m_xml.skipElement()) {
                return false;
            }
        }
        return !m_xml.failed();
    }

    bool readValue()
    {
        const int depth = m_xml.depth();
        while (m_xml.nextWithin(depth)) {
            if (m_xml.token() == Token::Text && m_value.size() <= SheetCells::MaxCellBytes)
                m_value.append(m_xml.text());
        }
        return !m_xml.failed();
    }

    bool putValue(int row, int column, XlsxCellType type, int style, std::string_view value,
        std::size_t start)
    {
        std::string &texts = m_cells.texts();
        double number = 0;
        std::int64_t day = 0;
        std::int64_t seconds = 0;
        bool typedText = false;
        switch (type) {
        case XlsxCellType::SharedString: {
            std::size_t index = 0;
            const auto result = readNumber(value.data(), value.data() + value.size(), index);
            // A shared text the workbook does not hold is one damaged cell, said as an error,
            // not a reason to refuse the whole sheet.
            if (result.ec != std::errc() || index >= m_strings.size())
                m_cells.putError(row, column);
            else
                m_cells.putText(row, column, m_strings[index]);
            return true;
        }
        case XlsxCellType::Error:
            m_cells.putError(row, column);
            return true;
        case XlsxCellType::Boolean:
            texts += value == "1" || value == "true" ? "TRUE" : "FALSE";
            break;
        case XlsxCellType::Date:
            if (SheetValue::parseIsoDateTime(value, day, seconds))
                SheetValue::appendDayAndSeconds(texts, day, seconds);
            else
                SheetValue::appendText(texts, value);
            break;
        case XlsxCellType::Number: {
            const auto kind = style >= 0 && std::size_t(style) < m_formats.size()
                ? m_formats[std::size_t(style)]
                : SheetValue::FormatKind::Number;
            if (kind == SheetValue::FormatKind::Number
                && SheetValue::appendPlainDecimal(texts, value))
                break;
            if (SheetValue::parseNumber(value, number)) {
                SheetValue::appendValue(texts, number, kind, m_system1904);
                break;
            }
            [[fallthrough]];
        }
        case XlsxCellType::Text:
            typedText = true;
            SheetValue::appendText(texts, value);
            break;
        }
        if (typedText)
            m_cells.putText(row, column, m_cells.checkedTextFrom(start));
        else
            m_cells.put(row, column, m_cells.checkedTextFrom(start));
        return !m_cells.overflowed();
    }

    XmlPull &m_xml;
    SheetCells &m_cells;
    const std::vector<SheetText> &m_strings;
    const std::vector<SheetValue::FormatKind> &m_formats;
    const bool m_system1904;
    /// The workbook asks to be worked out when opened: a formula result of 0 is a stand-in.
    const bool m_resultsStandIn;
    int m_row = 0;
    int m_column = -1;
    std::string m_value;
};

} // namespace

bool readXlsxSheet(ZipArchive &archive, SheetCells &cells)
{
    XlsxParts::Workbook workbook;
    std::vector<SheetValue::FormatKind> formats;
    std::vector<SheetText> strings;
    if (!XlsxParts::readWorkbook(archive, workbook)
        || !XlsxParts::readCellFormats(archive, workbook.styles, formats)
        || !XlsxParts::readSharedStrings(archive, workbook.sharedStrings, cells, strings))
        return false;
    const std::unique_ptr<ZipArchive::Member> sheet =
        ZipArchive::readAhead(archive.member(workbook.sheet));
    if (!sheet)
        return false;
    XmlPull xml([&sheet](char *data, qint64 size) { return sheet->read(data, size); });
    return XlsxSheetReader(xml, cells, strings, formats, workbook).read();
}

} // namespace tarnwick
