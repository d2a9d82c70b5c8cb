#pragma once

#include "exchange/columnmapping.h"
#include "exchange/importplan.h"

#include <QString>
#include <QStringList>

#include <array>
#include <vector>

namespace tarnwick {

class IWorkbook;

/// Helpers of the "Update" window's mapping: the sample of the sheet's first rows, "Match
/// Headers" and the letter table read back into list positions ("Last Mapping").
namespace ColumnMapping {

/// The texts of the header row's cells, column A on, up to the first empty one (at most
/// MaxColumns): the headers the column entries are made of.
QStringList headerTexts(const IWorkbook &workbook);

/// Whether OK may go on: adding needs the part number and the product name mapped, updating
/// only the part number (an unmapped name leaves the names as they are).
bool mappingComplete(const std::array<int, ListCount> &positions, ImportAction action);

/// The letter of a column counted from 0: "A" for 0 … "R" for 17.
QString columnName(int column);

/// The positions that "Match Headers" selects, by list index: for each list the first column
/// whose header equals the name of its field, ignoring letter case and blanks around it
/// ("Part Number", "Product Name", "Price" or "List Price", "Notes", "Includes",
/// "Price Point 1", "Price 1" … "Price 5"), counted as the list counts it (after "Skip Field" in
/// the optional lists); -1 for a list no header matches.
std::array<int, ListCount> matchHeaders(const QStringList &headers);

/// The selected positions that give a letter table (the inverse of columnLetters): "@" is no
/// selection in the required lists and "Skip Field" in the others, "?" no selection.
std::array<int, ListCount> positionsFromLetters(const QString &letters);

/// The first rows of a sheet as the "Update" window shows them: a caption per column (its
/// letter, a line break and its header) and the texts of up to count rows from firstRow on,
/// ending before the first row whose cells are all empty.
struct SampleRows
{
    QStringList captions;
    std::vector<QStringList> rows;
};
SampleRows sampleRows(
    const IWorkbook &workbook, const QStringList &headers, int firstRow, int count = 5);

} // namespace ColumnMapping

} // namespace tarnwick
