#pragma once

#include "core/cell.h"

#include <QLocale>

#include <span>
#include <vector>

namespace tarnwick {

/// The two-dimensional table of cells behind every grid of the program: the catalogue
/// (rows × 15 fields), the quote (250 × 7) and the price schedule (5 × 2). Rows and fields
/// count from 1. Reading or writing outside the bounds raises VbError 9.
class Table
{
public:
    enum class SortKind {
        Text, ///< by the cells' texts, ignoring letter case, then case-sensitively
        Numeric, ///< by numeric value; blank and non-numeric cells after all numbers
    };

    Table() = default;
    Table(int rows, int fields);
    /// A table of fields fields whose cells, row after row, are cells, taken over without a
    /// copy; cells must hold whole rows.
    static Table fromCells(int fields, std::vector<Cell> &&cells);
    Table(const Table &other);
    Table(Table &&) noexcept = default;
    Table &operator=(const Table &other);
    Table &operator=(Table &&) noexcept = default;
    ~Table();

    /// Re-dimensions to rows 1..rows and fields 1..fields; every cell becomes empty.
    void redim(int rows, int fields);
    /// Re-dimensions keeping the contents that still fit; new cells are empty.
    void redimPreserve(int rows, int fields);

    int rowCount() const { return m_rows; }
    int fieldCount() const { return m_fields; }
    /// Upper bound of dimension 1 (rows) or 2 (fields); other dimensions raise 9.
    int upperBound(int dimension = 1) const;

    const Cell &get(int row, int field) const;
    void put(int row, int field, const Cell &value);
    /// As above, taking the cell over instead of copying it.
    void put(int row, int field, Cell &&value);

    /// The cells of one row, fields 1..fieldCount() in order, for filling a row at once.
    std::span<Cell> rowCells(int row);
    /// The cells of one row to read, fields 1..fieldCount() in order.
    std::span<const Cell> row(int row) const;

    /// Inserts count empty rows before row (1..rowCount()+1; rowCount()+1 appends).
    void insertRows(int row, int count = 1);
    /// Deletes count rows starting at row; the rows after move up.
    void deleteRows(int row, int count = 1);
    /// Clears every cell of one row.
    void clearRow(int row);

    /// Sorts rows first..last ascending on field, stable, comparing as kind says.
    void sortRows(int first, int last, int field, SortKind kind, const QLocale &locale);
    /// The order sortRows would put rows first..last in, without moving them: order[k] is the
    /// row that goes to row first + k. Empty when last < first.
    std::vector<int> sortedOrder(
        int first, int last, int field, SortKind kind, const QLocale &locale) const;
    /// Puts rows first.. in the order given: order[k] is the old row (1-based) that goes to
    /// row first + k. The rows move in place, cycle by cycle, without a second table.
    void reorderRows(int first, const std::vector<int> &order);

    /// Takes count rows starting at row out of the table, the rows after moving up, and
    /// returns them as a table of their own (same fields), without copying their cells.
    Table takeRows(int row, int count);
    /// Inserts the rows of rows before row (1..rowCount()+1), taking their cells over; rows
    /// must have this table's fields. rows is left empty.
    void insertTable(int row, Table &&rows);

    /// The first row from startRow on whose cell in field equals value; 0 when there is none.
    int find(int field, const Cell &value, int startRow = 1) const;

    /// A number that changes whenever the table's contents or shape change (a cell written
    /// with another value, rows inserted, deleted or moved by a sort, a re-dimension, a row
    /// handed out by rowCells) and stays as it is otherwise. Numbers are unique across all
    /// tables of the run, so a copy of a table has its source's number until either changes:
    /// equal numbers mean equal contents.
    quint64 generation() const { return m_generation; }

private:
    void checkBounds(int row, int field) const;
    std::size_t index(int row, int field) const;

    /// Gives the table a new generation number.
    void touch();

    int m_rows = 0;
    int m_fields = 0;
    std::vector<Cell> m_cells;
    quint64 m_generation = 0;
};

/// Whether two tables hold the same cells in the same shape.
bool sameCells(const Table &a, const Table &b);

} // namespace tarnwick
