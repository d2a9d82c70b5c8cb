// The import's reading of number texts whose marks could mean either: the decimal mark the
// sheet's other number texts are written with, and a number written in another locale's way.
#include "exchange/importplan.h"

#include "catalogue/productrecord.h"
#include "core/conversions.h"
#include "core/vberror.h"
#include "exchange/columnmapping.h"
#include "exchange/workbook.h"

#include <algorithm>
#include <array>
#include <span>

namespace tarnwick {

namespace P = ProductRecord;

void ImportPlanner::followSheetMark(Cell &cell, int column)
{
    // A workbook's number cell is the number it holds, whatever its texts write (2.675 is no
    // 2,675 beside a text "12,50"), also where the user's locale reads its form as it is.
    if (!cell.isText() || m_localeMark == decimalmark::Mark::Unknown
        || !decimalmark::readMarks(cell.textView()).ambiguous
        || isStoredNumber(cell, column, m_row))
        return;
    const decimalmark::Mark sheet = sheetMark();
    if (sheet == decimalmark::Mark::Unknown)
        return;
    // Even where the user's decimal mark is the sheet's, the other mark may not be the user's
    // group ("1.000" in French, which groups with a blank): the text in the user's own form is
    // what the sheet means, unless the user's reading of it means that already.
    const QString text = cell.asText();
    Cell own(decimalmark::rewritten(text, sheet, m_locale));
    if (own.asText() == text)
        return;
    const std::optional<double> asRead = conv::cellNumber(cell, m_locale, m_plainDecimals);
    const std::optional<double> meant = conv::cellNumber(own, m_locale, m_plainDecimals);
    if (asRead && meant && *asRead == *meant)
        return;
    cell = std::move(own);
    m_plan.sheetMark = sheet;
    if (m_plan.readWithSheetMark++ == 0) {
        m_plan.firstSheetMarkRow = m_row;
        m_plan.firstSheetMarkText = text;
        m_plan.firstSheetMarkReading = cell.asText().trimmed();
    }
}

bool ImportPlanner::isStoredNumber(const Cell &cell, int column, int row) const
{
    // A workbook's number cell is plain digits with a "." (which says nothing of how its texts
    // are written); a text cell of such digits is marked as one.
    if (!m_workbook.numbersInStoredForm() || !cell.isText() || m_workbook.isTextCell(column, row))
        return false;
    const CellTextView view = cell.textView();
    if (view.encoding != TextEncoding::Utf16)
        return conv::isPlainDecimal(view.bytes(), view.size);
    const QByteArray latin = cell.asText().toLatin1();
    return conv::isPlainDecimal(latin.constData(), latin.size());
}

decimalmark::Mark ImportPlanner::sheetMark()
{
    if (m_sheetMark)
        return *m_sheetMark;
    // The mapped number columns' texts, down to the first row empty in every mapped column.
    std::array<bool, ColumnMapping::ListCount> numberSlot {};
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        const int slot = m_listSlot[std::size_t(index)];
        if (slot >= 0)
            numberSlot[std::size_t(slot)] = P::isNumberField(ColumnMapping::catalogueField(index));
    }
    const std::size_t count = m_readColumns.size();
    std::array<Cell, ColumnMapping::ListCount> cells;
    std::array<bool, ColumnMapping::ListCount> errors {};
    const auto read = std::span(cells).first(count);
    decimalmark::SheetMarks marks;
    int failedRows = 0;
    // The first rows say it where any do (a price in every row): a sheet of a million rows is
    // not read twice for it.
    const int lastRow = m_firstRow + MarkRows - 1;
    // Once a text says the locale's own mark, the sheet is read as the locale reads it, whatever
    // follows (a sheet of both marks is read so too).
    for (int row = m_firstRow;
         row <= lastRow && !marks.said(m_localeMark) && failedRows < MaxUnreadableRows; ++row) {
        try {
            m_workbook.readCells(row, m_readColumns, read, std::span(errors).first(count));
            failedRows = 0;
        } catch (const VbError &) {
            ++failedRows;
            continue;
        }
        if (std::all_of(read.begin(), read.end(), [](const Cell &c) { return c.isBlank(); }))
            break;
        for (std::size_t i = 0; i < count; ++i) {
            if (numberSlot[i] && !isStoredNumber(read[i], m_readColumns[i], row))
                marks.add(read[i].textView());
        }
    }
    m_sheetMark = marks.said(m_localeMark) ? m_localeMark : marks.result();
    return *m_sheetMark;
}

std::optional<double> ImportPlanner::numberByMarks(const Cell &cell) const
{
    // An ambiguous text is in the user's form by now (followSheetMark), read as the user reads it.
    const decimalmark::Reading reading = decimalmark::readMarks(cell.textView());
    return decimalmark::valueOf(cell.asText(), reading.ambiguous ? m_localeMark : reading.says);
}

} // namespace tarnwick
