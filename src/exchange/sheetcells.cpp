#include "exchange/sheetcells.h"

#include "core/celltext.h"
#include "exchange/sheetvalue.h"

#include <algorithm>

namespace tarnwick {

SheetCells::SheetCells() = default;

SheetText SheetCells::textFrom(std::size_t start) const
{
    start = std::min(start, m_texts.size());
    return SheetText { quint32(start), quint32(m_texts.size() - start) };
}

SheetText SheetCells::addText(std::string_view utf8)
{
    const std::size_t start = m_texts.size();
    m_texts.append(utf8);
    return textFrom(start);
}

SheetText SheetCells::checkedTextFrom(std::size_t start)
{
    start = std::min(start, m_texts.size());
    const char *bytes = m_texts.data() + start;
    const std::size_t size = m_texts.size() - start;
    if (!celltext::isValidUtf8(bytes, qsizetype(size))) {
        const QByteArray repaired = QString::fromUtf8(bytes, qsizetype(size)).toUtf8();
        m_texts.resize(start);
        m_texts.append(repaired.constData(), std::size_t(repaired.size()));
    }
    const std::string_view text(m_texts.data() + start, m_texts.size() - start);
    m_texts.resize(start + SheetValue::utf8Prefix(text, MaxCellBytes).size());
    return textFrom(start);
}

void SheetCells::put(int row, int column, SheetText text)
{
    if (text.size != 0 && keeps(row, column))
        append(row, column, text, SheetCellKind::Value);
}

void SheetCells::putText(int row, int column, SheetText text)
{
    if (text.size != 0 && keeps(row, column))
        append(row, column, text, SheetCellKind::Text);
}

void SheetCells::putError(int row, int column)
{
    if (keeps(row, column))
        append(row, column, SheetText {}, SheetCellKind::Error);
}

bool SheetCells::keeps(int row, int column)
{
    if (m_stopped || column < 0 || column >= Columns || row < 1 || row > MaxRows)
        return false;
    if (m_ordered && m_lastRow >= 1 && row > m_lastRow + 1) {
        // An empty row above this one: nothing from here on is ever read.
        m_stopped = true;
        return false;
    }
    return true;
}

void SheetCells::append(int row, int column, SheetText text, SheetCellKind kind)
{
    bool newRow = false;
    if (m_ordered && !m_cells.empty()) {
        Cell &last = m_cells.back();
        if (int(last.row) == row && int(last.column) == column) {
            last.offset = text.offset;
            last.size = text.size;
            last.kind = kind;
            return;
        }
        if (row < int(last.row) || (int(last.row) == row && column < int(last.column)))
            m_ordered = false;
        newRow = row > int(last.row);
    }
    m_cells.push_back(Cell { quint32(row), text.offset, text.size, quint8(column), kind });
    m_lastRow = std::max(m_lastRow, row);
    if (newRow && m_rowComplete)
        m_rowComplete();
}

void SheetCells::repeatRow(int row, int count)
{
    if (!m_ordered || m_stopped || count <= 1 || row != m_lastRow || m_cells.empty()
        || int(m_cells.back().row) != row)
        return;
    count = std::min(count, MaxRows - row + 1);
    m_runs.push_back(Run { quint32(row), quint32(count) });
    m_lastRow = row + count - 1;
}

void SheetCells::finish()
{
    m_finished = true;
    m_reordered = m_reordered || !m_ordered;
    if (!m_ordered) {
        // Repeated rows come only from readers that go in order.
        m_runs.clear();
        std::stable_sort(m_cells.begin(), m_cells.end(), [](const Cell &a, const Cell &b) {
            return a.row != b.row ? a.row < b.row : a.column < b.column;
        });
        // Of a cell given twice the later value stays.
        std::vector<Cell> unique;
        unique.reserve(m_cells.size());
        for (const Cell &cell : m_cells) {
            if (!unique.empty() && unique.back().row == cell.row
                && unique.back().column == cell.column)
                unique.back() = cell;
            else
                unique.push_back(cell);
        }
        m_cells.swap(unique);
        m_ordered = true;
    }
    // The rows that are kept run from row 1 without a gap.
    quint32 expected = 1;
    std::size_t run = 0;
    std::size_t at = 0;
    while (at < m_cells.size() && m_cells[at].row == expected) {
        const quint32 row = m_cells[at].row;
        while (at < m_cells.size() && m_cells[at].row == row)
            ++at;
        while (run < m_runs.size() && m_runs[run].row < row)
            ++run;
        expected = row + (run < m_runs.size() && m_runs[run].row == row ? m_runs[run].count : 1);
    }
    m_cells.resize(at);
    m_cells.shrink_to_fit();
    m_rowCount = int(expected - 1);
}

const SheetCells::Cell *SheetCells::find(int column, int row) const
{
    if (row < 1 || row > m_rowCount || column < 0 || column >= Columns)
        return nullptr;
    auto stored = quint32(row);
    const auto run = std::upper_bound(m_runs.begin(), m_runs.end(), stored,
        [](quint32 value, const Run &r) { return value < r.row; });
    if (run != m_runs.begin() && stored < std::prev(run)->row + std::prev(run)->count)
        stored = std::prev(run)->row;
    const auto cell = std::lower_bound(m_cells.begin(), m_cells.end(),
        std::pair<quint32, int>(stored, column), [](const Cell &c, std::pair<quint32, int> key) {
            return c.row != key.first ? c.row < key.first : int(c.column) < key.second;
        });
    if (cell == m_cells.end() || cell->row != stored || int(cell->column) != column)
        return nullptr;
    return &*cell;
}

QString SheetCells::cellText(int column, int row) const
{
    const std::string_view text = textView(column, row);
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

bool SheetCells::isError(int column, int row) const
{
    const Cell *cell = find(column, row);
    return cell != nullptr && cell->kind == SheetCellKind::Error;
}

bool SheetCells::isTextCell(int column, int row) const
{
    const Cell *cell = find(column, row);
    return cell != nullptr && cell->kind == SheetCellKind::Text;
}

std::string_view SheetCells::textView(int column, int row) const
{
    const Cell *cell = find(column, row);
    return cell == nullptr ? std::string_view()
                           : std::string_view(m_texts.data() + cell->offset, cell->size);
}

} // namespace tarnwick
