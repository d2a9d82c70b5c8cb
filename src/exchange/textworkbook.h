#pragma once

#include "exchange/sheetcells.h"

#include <QByteArray>

namespace tarnwick {

/// Tab-separated text as one worksheet: the export's own files and the text spreadsheets save.
/// Lines end in CR LF or LF and cells are separated by one tab. Characters are read as the
/// catalogue file's are (UTF-8, else Windows-1252); text that starts with a byte-order mark of
/// UTF-16 is read as UTF-16.
///
/// A cell that starts with a double quote and whose closing quote is followed by a tab, a line
/// end or the end of the text is quoted, as spreadsheets write cells: the quotes go, a doubled
/// quote inside stands for one ("P0001" gives P0001, """" gives "), and tabs and line breaks
/// inside belong to the cell. Any other cell is taken as it stands.
///
/// The export writes a line break inside a field as it stands, so a product with a note of two
/// lines spans two lines of the file. A line that holds fewer cells than the first line (the
/// header) is therefore joined with the lines after it, line break included, as long as the
/// joined row still has no more cells than the header. A line without any tab (a blank line, or
/// a part number alone) is never joined, so it stays a row of its own.
class TextWorkbook : public IWorkbook
{
public:
    explicit TextWorkbook(const QByteArray &bytes);
    QString cellText(int column, int row) const override { return m_cells.cellText(column, row); }
    bool hasRowsAfterAGap() const override { return m_cells.hasRowsAfterAGap(); }
    int rowCountHint() const override { return m_cells.rowCountHint(); }

private:
    SheetCells m_cells;
};

} // namespace tarnwick
