#include "exchange/xlsxparts.h"

#include "exchange/xmlpull.h"
#include "exchange/ziparchive.h"

#include <QString>

#include <charconv>
#include <unordered_map>

namespace tarnwick::XlsxParts {

namespace {

using Token = XmlPull::Token;

/// Reads a member through a parser: calls f with the parser for every start element until
/// the end; false when the member is missing or invalid, or f returned false.
template <typename F>
bool eachStartElement(const ZipArchive &archive, const std::string &name, F &&f)
{
    const std::unique_ptr<ZipArchive::Member> member = ZipArchive::readAhead(archive.member(name));
    if (!member)
        return false;
    XmlPull xml([&member](char *data, qint64 size) { return member->read(data, size); });
    for (;;) {
        const Token token = xml.next();
        if (token == Token::End)
            return true;
        if (token == Token::Invalid)
            return false;
        if (token == Token::StartElement && !f(xml))
            return false;
    }
}

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// The member a relationship of a part in folder points to ("worksheets/sheet1.xml" from
/// "xl/" is "xl/worksheets/sheet1.xml"; "/xl/styles.xml" is "xl/styles.xml").
std::string resolveTarget(std::string_view folder, std::string_view target)
{
    std::vector<std::string_view> parts;
    const std::string joined = target.substr(0, 1) == "/"
        ? std::string(target.substr(1))
        : std::string(folder) + std::string(target);
    std::string_view rest(joined);
    while (!rest.empty()) {
        const std::size_t slash = rest.find('/');
        const std::string_view part = rest.substr(0, slash);
        if (part == "..") {
            if (!parts.empty())
                parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash + 1);
    }
    std::string path;
    for (const std::string_view part : parts) {
        if (!path.empty())
            path += '/';
        path.append(part);
    }
    return path;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

/// The code unit of an escape "_xHHHH_" at text[at], or -1.
int escapedUnit(std::string_view text, std::size_t at)
{
    if (at + 7 > text.size() || text[at] != '_' || (text[at + 1] != 'x' && text[at + 1] != 'X')
        || text[at + 6] != '_')
        return -1;
    int unit = 0;
    for (std::size_t i = at + 2; i < at + 6; ++i) {
        const int digit = hexDigit(text[i]);
        if (digit < 0)
            return -1;
        unit = unit * 16 + digit;
    }
    return unit;
}

void appendUtf8(std::string &out, char32_t c)
{
    const QByteArray bytes = QString::fromUcs4(&c, 1).toUtf8();
    out.append(bytes.constData(), std::size_t(bytes.size()));
}

/// Appends a text of the format with its "_xHHHH_" escapes (characters XML cannot carry)
/// decoded; a surrogate pair may be written as two escapes.
void appendUnescaped(std::string &out, std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t escape = text.find("_x", at);
        if (escape == std::string_view::npos) {
            out.append(text.substr(at));
            return;
        }
        out.append(text.substr(at, escape - at));
        int unit = escapedUnit(text, escape);
        if (unit < 0) {
            out += '_';
            at = escape + 1;
            continue;
        }
        at = escape + 7;
        char32_t character = char32_t(unit);
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            const int low = escapedUnit(text, at);
            if (low >= 0xDC00 && low <= 0xDFFF) {
                character = 0x10000 + (char32_t(unit - 0xD800) << 10) + char32_t(low - 0xDC00);
                at += 7;
            }
        }
        if (character >= 0xD800 && character <= 0xDFFF)
            character = 0xFFFD;
        if (character != 0)
            appendUtf8(out, character);
    }
}

int numberAttribute(std::string_view value, int fallback)
{
    int number = fallback;
    const auto result = std::from_chars(value.data(), value.data() + value.size(), number);
    return result.ec == std::errc() ? number : fallback;
}

} // namespace

bool readWorkbook(const ZipArchive &archive, Workbook &workbook)
{
    // The worksheets in the workbook's order, each with whether the workbook hides it.
    std::vector<std::pair<std::string, bool>> sheetIds;
    if (!eachStartElement(archive, "xl/workbook.xml", [&](XmlPull &xml) {
            if (xml.localName() == "sheet") {
                const std::string_view state = xml.attribute("state");
                sheetIds.emplace_back(std::string(xml.attributeByLocalName("id")),
                    state == "hidden" || state == "veryHidden");
            } else if (xml.localName() == "workbookPr") {
                const std::string_view system = xml.attribute("date1904");
                workbook.system1904 = system == "1" || system == "true";
            } else if (xml.localName() == "calcPr") {
                const std::string_view full = xml.attribute("fullCalcOnLoad");
                workbook.resultsToBeWorkedOut = full == "1" || full == "true";
            }
            return sheetIds.size() < 100000;
        }))
        return false;
    struct Relationship
    {
        std::string type;
        std::string target;
    };
    std::unordered_map<std::string, Relationship> relationships;
    if (!eachStartElement(archive, "xl/_rels/workbook.xml.rels", [&](XmlPull &xml) {
            if (xml.localName() == "Relationship" && xml.attribute("TargetMode") != "External")
                relationships[std::string(xml.attribute("Id"))] =
                    Relationship { std::string(xml.attribute("Type")),
                        resolveTarget("xl/", xml.attribute("Target")) };
            return relationships.size() < 100000;
        }))
        return false;
    for (const auto &[id, relationship] : relationships) {
        if (endsWith(relationship.type, "/sharedStrings"))
            workbook.sharedStrings = relationship.target;
        else if (endsWith(relationship.type, "/styles"))
            workbook.styles = relationship.target;
    }
    // The first worksheet the workbook shows; the first of all where it hides every one.
    for (const bool takeHidden : { false, true }) {
        for (const auto &[id, hidden] : sheetIds) {
            const auto found = relationships.find(id);
            // A relationship without a type is taken for the worksheet it names; chart sheets
            // and dialog sheets say what they are.
            if ((takeHidden || !hidden) && found != relationships.end()
                && (found->second.type.empty() || endsWith(found->second.type, "/worksheet"))) {
                workbook.sheet = found->second.target;
                return true;
            }
        }
    }
    return false;
}

bool readCellFormats(const ZipArchive &archive, const std::string &member,
    std::vector<SheetValue::FormatKind> &kinds)
{
    if (member.empty() || !archive.contains(member))
        return true;
    std::unordered_map<int, SheetValue::FormatKind> codes;
    int cellFormatsDepth = -1;
    return eachStartElement(archive, member, [&](XmlPull &xml) {
        const std::string_view name = xml.localName();
        if (name == "numFmt") {
            codes[numberAttribute(xml.attribute("numFmtId"), -1)] =
                SheetValue::kindOfFormatCode(xml.attribute("formatCode"));
        } else if (name == "cellXfs") {
            cellFormatsDepth = xml.depth();
        } else if (name == "xf" && xml.depth() == cellFormatsDepth + 1) {
            const int id = numberAttribute(xml.attribute("numFmtId"), 0);
            const auto code = codes.find(id);
            kinds.push_back(
                code != codes.end() ? code->second : SheetValue::kindOfBuiltInFormat(id));
        } else if (cellFormatsDepth >= 0 && xml.depth() <= cellFormatsDepth) {
            cellFormatsDepth = -1;
        }
        return true;
    });
}

bool readSharedStrings(const ZipArchive &archive, const std::string &member, SheetCells &cells,
    std::vector<SheetText> &strings)
{
    if (member.empty() || !archive.contains(member))
        return true;
    return eachStartElement(archive, member, [&](XmlPull &xml) {
        if (xml.localName() != "si")
            return true;
        const std::size_t start = cells.texts().size();
        if (!appendStringItem(xml, cells.texts()))
            return false;
        strings.push_back(cells.checkedTextFrom(start));
        return !cells.overflowed();
    });
}

namespace {

/// The text of one run of a string item (or of the whole item), "_x000D_" and the like
/// unescaped, the item kept to a cell's length.
void appendItemText(std::string &out, std::size_t itemStart, std::string_view text)
{
    if (text.find("_x") == std::string_view::npos && text.find("_X") == std::string_view::npos) {
        SheetValue::appendText(out, text);
    } else {
        std::string unescaped;
        appendUnescaped(unescaped, text);
        SheetValue::appendText(out, unescaped);
    }
    if (out.size() - itemStart > SheetCells::MaxCellBytes + 4)
        out.resize(itemStart + SheetCells::MaxCellBytes + 4);
}

} // namespace

bool appendStringItem(XmlPull &xml, std::string &out)
{
    const std::size_t itemStart = out.size();
    std::string_view plain;
    if (xml.readPlainContent("t", plain)) {
        appendItemText(out, itemStart, plain);
        return true;
    }
    const int depth = xml.depth();
    std::string text;
    while (xml.nextWithin(depth)) {
        if (xml.token() != Token::StartElement)
            continue;
        const std::string_view name = xml.localName();
        if (name == "r")
            continue;
        if (name != "t") {
            // Run properties, phonetic runs and their properties are no part of the text.
            if (!xml.skipElement())
                return false;
            continue;
        }
        const int textDepth = xml.depth();
        text.clear();
        while (xml.nextWithin(textDepth)) {
            if (xml.token() == Token::Text && text.size() <= SheetCells::MaxCellBytes)
                text.append(xml.text());
        }
        if (xml.failed())
            return false;
        appendItemText(out, itemStart, text);
    }
    return !xml.failed();
}

} // namespace tarnwick::XlsxParts
