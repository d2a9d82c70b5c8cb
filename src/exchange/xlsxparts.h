#pragma once

#include "exchange/sheetcells.h"
#include "exchange/sheetvalue.h"

#include <string>
#include <vector>

namespace tarnwick {

class XmlPull;
class ZipArchive;

/// The parts of an Office Open XML workbook the reader needs besides the worksheet.
namespace XlsxParts {

/// Where the first worksheet, the shared strings and the styles are, and the date system.
struct Workbook
{
    std::string sheet;
    std::string sharedStrings;
    std::string styles;
    bool system1904 = false;
    /// The workbook asks to be worked out anew when it is opened ("fullCalcOnLoad"): programs
    /// that write workbooks without computing them say so, and the results they store in
    /// formula cells are stand-ins (0, or nothing).
    bool resultsToBeWorkedOut = false;
};

/// Reads "xl/workbook.xml" and its relationships; false when there is no worksheet.
bool readWorkbook(const ZipArchive &archive, Workbook &workbook);
/// The kind of every cell format ("cellXfs" of the styles), in order. A workbook without
/// styles has none; false when the styles are damaged.
bool readCellFormats(const ZipArchive &archive, const std::string &member,
    std::vector<SheetValue::FormatKind> &kinds);
/// Puts the shared strings into the cells' text store, in order; false when they are damaged.
bool readSharedStrings(const ZipArchive &archive, const std::string &member, SheetCells &cells,
    std::vector<SheetText> &strings);
/// Appends the text of the string item the parser is on ("si" or "is"): its texts and those of
/// its rich-text runs, without phonetic runs, "_xHHHH_" escapes decoded, line breaks as CR LF.
bool appendStringItem(XmlPull &xml, std::string &out);

} // namespace XlsxParts

} // namespace tarnwick
