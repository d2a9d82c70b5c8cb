#pragma once

#include "exchange/workbook.h"

#include <QtGlobal>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

/// What a worksheet cell holds, as its reader tells it: a value in one of the forms the readers
/// write (numbers in the stored form, dates, TRUE and FALSE), an error, or a text typed as text.
enum class SheetCellKind : quint8 { Value, Error, Text };

/// A text kept in a SheetCells' text store: where it starts and how many bytes it has.
struct SheetText
{
    quint32 offset = 0;
    quint32 size = 0;
};

/// The first worksheet as a reader keeps it: only the cells the import can use, compactly.
///
/// Only columns A to R are kept (ImportColumns), and only the rows down to the first row that
/// is empty in all of them: the import stops at the first empty part number, so no row below
/// that one is ever read. Texts are UTF-8 bytes in one store, each cell 16 bytes beside it; a
/// reader may put a text into the store once (a shared string) and give it to many cells.
/// Error cells (#DIV/0!, #N/A) have no text and are marked as errors; text cells (a text typed
/// into the sheet, as opposed to a number, date or truth value written as text) are marked as
/// such, so the import reads their digits as the user's locale does.
///
/// Readers put cells row by row. When a row arrives that leaves an empty row between it and
/// the rows before it (in the order the rows came), stopped() turns true and nothing more is
/// kept: the reader can end there. Cells that arrive out of order are sorted at finish(); a
/// cell given twice keeps the later value.
class SheetCells : public IWorkbook
{
public:
    /// The columns that are kept: A to R, all the import window offers.
    static constexpr int Columns = 18;
    /// The rows of the largest worksheet a spreadsheet holds.
    static constexpr int MaxRows = 1048576;
    /// The most text bytes kept in all; a sheet that holds more is taken for no workbook.
    static constexpr std::size_t MaxTextBytes = std::size_t(1) << 30;
    /// The longest cell text kept, in UTF-8 bytes; a longer text is cut.
    static constexpr std::size_t MaxCellBytes = std::size_t(1) << 20;

    SheetCells();

    /// The text store: a reader appends the bytes of a text here (valid UTF-8, line breaks as
    /// CR LF), then takes it with textFrom().
    std::string &texts() { return m_texts; }
    /// The text from start to the end of the store.
    SheetText textFrom(std::size_t start) const;
    /// Appends bytes to the store as they stand and returns them as a text.
    SheetText addText(std::string_view utf8);
    /// The bytes from start to the end of the store as a text: each invalid UTF-8 sequence
    /// replaced by U+FFFD, cut to MaxCellBytes without splitting a character.
    SheetText checkedTextFrom(std::size_t start);

    /// Puts a text into a cell (row 1 is the first row, column 0 is column A). An empty text
    /// leaves the cell empty; a column beyond R or a row beyond MaxRows is not kept.
    void put(int row, int column, SheetText text);
    /// As put, for a cell the sheet holds as text (SheetCellKind::Text).
    void putText(int row, int column, SheetText text);
    /// Marks a cell as holding an error value.
    void putError(int row, int column);
    /// The row last put stands for count rows (a row repeated count times in the file).
    void repeatRow(int row, int count);
    /// True once nothing more is kept (see the class comment).
    bool stopped() const { return m_stopped; }
    /// True when the text store went beyond MaxTextBytes.
    bool overflowed() const { return m_texts.size() > MaxTextBytes; }
    /// Ends the reading: sorts what came out of order and counts the rows that are kept.
    void finish();

    /// Set by the readers of formats that keep numbers as numbers (IWorkbook::numbersInStoredForm).
    void setNumbersInStoredForm(bool stored) { m_numbersInStoredForm = stored; }
    bool numbersInStoredForm() const override { return m_numbersInStoredForm; }
    /// A row came after an empty one and was not kept (stopped()).
    bool hasRowsAfterAGap() const override { return m_stopped; }
    /// After finish(): rowCount().
    int rowCountHint() const override { return m_rowCount; }

    /// After finish(): the rows 1..rowCount() that hold a cell in every row.
    int rowCount() const { return m_rowCount; }
    QString cellText(int column, int row) const override;
    bool isError(int column, int row) const override;
    bool isTextCell(int column, int row) const override;
    /// After finish(): the cell's text without copying, or an empty view.
    std::string_view textView(int column, int row) const;

    /// After finish(): calls f(row, column, kind, text) for every cell of the rows
    /// 1..rowCount(), row by row and left to right, a repeated row once per row it stands for.
    template <typename F> void forEachCell(F &&f) const
    {
        RowCursor cursor;
        forEachCompleteCell(cursor, std::forward<F>(f));
    }

    /// How far forEachCompleteCell has gone.
    struct RowCursor
    {
        std::size_t cell = 0;
        std::size_t run = 0;
        int row = 1;
        bool ended = false;
    };
    /// As forEachCell, for the rows from cursor on that no later cell can change, and moves the
    /// cursor past them: while a reader still puts cells in order, every row before the last one
    /// that holds a cell; after finish(), all rows.
    template <typename F> void forEachCompleteCell(RowCursor &cursor, F &&f) const
    {
        const std::size_t end = m_finished ? m_cells.size() : lastRowStart();
        while (!cursor.ended && cursor.cell < end) {
            const std::size_t first = cursor.cell;
            const quint32 stored = m_cells[first].row;
            // The rows run from row 1 without a gap (finish() keeps no more than that).
            if (stored != quint32(cursor.row)) {
                cursor.ended = true;
                break;
            }
            std::size_t at = first;
            while (at < end && m_cells[at].row == stored)
                ++at;
            int count = 1;
            while (cursor.run < m_runs.size() && m_runs[cursor.run].row < stored)
                ++cursor.run;
            if (cursor.run < m_runs.size() && m_runs[cursor.run].row == stored)
                count = int(m_runs[cursor.run].count);
            for (int k = 0; k < count; ++k, ++cursor.row) {
                for (std::size_t i = first; i < at; ++i) {
                    const Cell &cell = m_cells[i];
                    f(cursor.row, int(cell.column), cell.kind,
                        std::string_view(m_texts.data() + cell.offset, cell.size));
                }
            }
            cursor.cell = at;
        }
    }
    /// Called while a reader puts cells in order, each time a cell of a new row arrives: the
    /// rows before it are complete (forEachCompleteCell), so a writer can hand them on.
    void setRowCompleteListener(std::function<void()> listener)
    {
        m_rowComplete = std::move(listener);
    }
    /// After finish(): whether cells came out of order and were sorted, so rows handed on while
    /// reading may have changed.
    bool wasReordered() const { return m_reordered; }

private:
    struct Cell
    {
        quint32 row;
        quint32 offset;
        quint32 size;
        quint8 column;
        SheetCellKind kind;
    };
    struct Run
    {
        quint32 row;
        quint32 count;
    };

    bool keeps(int row, int column);
    void append(int row, int column, SheetText text, SheetCellKind kind);
    /// The stored cell at (column, row), or nullptr.
    const Cell *find(int column, int row) const;
    /// Where the cells of the last row that holds a cell start.
    std::size_t lastRowStart() const
    {
        std::size_t at = m_cells.size();
        while (at > 0 && m_cells[at - 1].row == m_cells.back().row)
            --at;
        return at;
    }

    std::string m_texts;
    std::vector<Cell> m_cells;
    std::vector<Run> m_runs;
    /// The last row that holds a cell; rows arrived in order so far.
    int m_lastRow = 0;
    bool m_ordered = true;
    bool m_stopped = false;
    bool m_finished = false;
    bool m_reordered = false;
    bool m_numbersInStoredForm = false;
    int m_rowCount = 0;
    std::function<void()> m_rowComplete;
};

} // namespace tarnwick
