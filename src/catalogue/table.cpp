#include "catalogue/table.h"

#include "core/vberror.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <utility>

namespace tarnwick {

namespace {

[[noreturn]] void raiseOutOfRange()
{
    throw VbError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
}

std::atomic<quint64> lastTableGeneration { 0 };

} // namespace

void Table::touch()
{
    m_generation = lastTableGeneration.fetch_add(1, std::memory_order_relaxed) + 1;
}

Table::Table(int rows, int fields)
{
    redim(rows, fields);
}

Table Table::fromCells(int fields, std::vector<Cell> &&cells)
{
    if (fields <= 0 || cells.size() % std::size_t(fields) != 0
        || cells.size() / std::size_t(fields) > std::size_t(std::numeric_limits<int>::max()))
        raiseOutOfRange();
    Table table;
    table.m_rows = int(cells.size() / std::size_t(fields));
    table.m_fields = fields;
    table.m_cells = std::move(cells);
    table.touch();
    return table;
}

Table::Table(const Table &other)
    : m_rows(other.m_rows), m_fields(other.m_fields), m_cells(other.m_cells.size()),
      m_generation(other.m_generation)
{
    Cell::copyAll(
        other.m_cells.data(), other.m_cells.data() + other.m_cells.size(), m_cells.data());
}

Table &Table::operator=(const Table &other)
{
    if (this != &other) {
        Table copy(other);
        *this = std::move(copy);
    }
    return *this;
}

Table::~Table()
{
    Cell::releaseAll(m_cells.data(), m_cells.data() + m_cells.size());
}

void Table::redim(int rows, int fields)
{
    if (rows < 0 || fields < 0)
        raiseOutOfRange();
    std::vector<Cell> cells(std::size_t(rows) * std::size_t(fields));
    m_cells.swap(cells);
    Cell::releaseAll(cells.data(), cells.data() + cells.size());
    m_rows = rows;
    m_fields = fields;
    touch();
}

void Table::redimPreserve(int rows, int fields)
{
    if (rows < 0 || fields < 0)
        raiseOutOfRange();
    if (fields == m_fields) {
        // Same row width: the cells stay where they are and the vector only grows or shrinks
        // at its end, which keeps growing a large catalogue cheap.
        if (std::size_t(rows) * std::size_t(fields) < m_cells.size())
            Cell::releaseAll(m_cells.data() + std::size_t(rows) * std::size_t(fields),
                m_cells.data() + m_cells.size());
        m_cells.resize(std::size_t(rows) * std::size_t(fields));
        m_rows = rows;
        touch();
        return;
    }
    std::vector<Cell> cells(std::size_t(rows) * std::size_t(fields));
    const int keptRows = std::min(rows, m_rows);
    const int keptFields = std::min(fields, m_fields);
    for (int r = 0; r < keptRows; ++r) {
        for (int f = 0; f < keptFields; ++f)
            cells[std::size_t(r) * fields + f] = std::move(m_cells[std::size_t(r) * m_fields + f]);
    }
    m_cells.swap(cells);
    m_rows = rows;
    m_fields = fields;
    touch();
}

int Table::upperBound(int dimension) const
{
    if (dimension == 1)
        return m_rows;
    if (dimension == 2)
        return m_fields;
    raiseOutOfRange();
}

const Cell &Table::get(int row, int field) const
{
    checkBounds(row, field);
    return m_cells[index(row, field)];
}

void Table::put(int row, int field, const Cell &value)
{
    checkBounds(row, field);
    Cell &cell = m_cells[index(row, field)];
    // Writing back what a cell already holds (a row's boxes stored on leaving it) is no change.
    if (cell == value)
        return;
    cell = value;
    touch();
}

void Table::put(int row, int field, Cell &&value)
{
    checkBounds(row, field);
    Cell &cell = m_cells[index(row, field)];
    if (cell == value)
        return;
    cell = std::move(value);
    touch();
}

std::span<Cell> Table::rowCells(int row)
{
    checkBounds(row, 1);
    touch();
    return { m_cells.data() + index(row, 1), std::size_t(m_fields) };
}

std::span<const Cell> Table::row(int row) const
{
    checkBounds(row, 1);
    return { m_cells.data() + index(row, 1), std::size_t(m_fields) };
}

void Table::insertRows(int row, int count)
{
    if (row < 1 || row > m_rows + 1 || count < 0)
        raiseOutOfRange();
    const auto at = m_cells.begin() + std::ptrdiff_t(row - 1) * m_fields;
    m_cells.insert(at, std::size_t(count) * std::size_t(m_fields), Cell());
    m_rows += count;
    if (count > 0)
        touch();
}

void Table::deleteRows(int row, int count)
{
    if (row < 1 || count < 0 || row > m_rows || count > m_rows - row + 1)
        raiseOutOfRange();
    const auto first = m_cells.begin() + std::ptrdiff_t(row - 1) * m_fields;
    m_cells.erase(first, first + std::ptrdiff_t(count) * m_fields);
    m_rows -= count;
    if (count > 0)
        touch();
}

Table Table::takeRows(int row, int count)
{
    if (row < 1 || count < 0 || row > m_rows + 1 || count > m_rows - row + 1)
        raiseOutOfRange();
    Table taken;
    taken.m_fields = m_fields;
    taken.m_rows = count;
    taken.touch();
    if (count == m_rows) {
        // Every row: the cells change hands at once (a "Delete All" of any size).
        taken.m_cells.swap(m_cells);
    } else if (count > 0) {
        const auto first = m_cells.begin() + std::ptrdiff_t(row - 1) * m_fields;
        const auto last = first + std::ptrdiff_t(count) * m_fields;
        taken.m_cells.assign(std::make_move_iterator(first), std::make_move_iterator(last));
        m_cells.erase(first, last);
    }
    m_rows -= count;
    if (count > 0)
        touch();
    return taken;
}

void Table::insertTable(int row, Table &&rows)
{
    if (row < 1 || row > m_rows + 1 || (rows.m_rows > 0 && rows.m_fields != m_fields))
        raiseOutOfRange();
    const int count = rows.m_rows;
    if (count == 0)
        return;
    if (m_rows == 0) {
        m_cells.swap(rows.m_cells);
    } else {
        const auto at = m_cells.begin() + std::ptrdiff_t(row - 1) * m_fields;
        m_cells.insert(at, std::make_move_iterator(rows.m_cells.begin()),
            std::make_move_iterator(rows.m_cells.end()));
    }
    m_rows += count;
    rows.m_cells.clear();
    rows.m_rows = 0;
    rows.touch();
    touch();
}

void Table::clearRow(int row)
{
    if (row < 1 || row > m_rows)
        raiseOutOfRange();
    const auto first = m_cells.begin() + std::ptrdiff_t(row - 1) * m_fields;
    if (std::any_of(first, first + m_fields, [](const Cell &cell) { return !cell.isEmpty(); })) {
        std::fill(first, first + m_fields, Cell());
        touch();
    }
}

int Table::find(int field, const Cell &value, int startRow) const
{
    if (field < 1 || field > m_fields || startRow < 1)
        raiseOutOfRange();
    for (int row = startRow; row <= m_rows; ++row) {
        const Cell &cell = m_cells[index(row, field)];
        // Numbers are equal by value whatever their precision (a single 12.5 finds a double
        // 12.5); everything else must match exactly, texts with their letter case.
        const bool equal = (cell.isNumber() && value.isNumber())
            ? cell.asNumber() == value.asNumber()
            : cell == value;
        if (equal)
            return row;
    }
    return 0;
}

void Table::checkBounds(int row, int field) const
{
    if (row < 1 || row > m_rows || field < 1 || field > m_fields)
        raiseOutOfRange();
}

std::size_t Table::index(int row, int field) const
{
    return std::size_t(row - 1) * std::size_t(m_fields) + std::size_t(field - 1);
}

bool sameCells(const Table &a, const Table &b)
{
    if (a.rowCount() != b.rowCount() || a.fieldCount() != b.fieldCount())
        return false;
    for (int row = 1; row <= a.rowCount(); ++row) {
        for (int field = 1; field <= a.fieldCount(); ++field) {
            if (!(a.get(row, field) == b.get(row, field)))
                return false;
        }
    }
    return true;
}

} // namespace tarnwick
