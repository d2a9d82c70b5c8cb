#include "exchange/importapply.h"

#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "exchange/importplan.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace tarnwick {

namespace P = ProductRecord;

namespace {

/// Puts the rows of a table in the order given (order[k] is the row that goes to row k + 1),
/// moving each row's cells once, cycle by cycle.
void moveRowsInto(Table &table, const std::vector<int> &order)
{
    const int rows = int(order.size());
    std::vector<bool> placed(std::size_t(rows), false);
    for (int start = 0; start < rows; ++start) {
        if (placed[std::size_t(start)] || order[std::size_t(start)] == start + 1) {
            placed[std::size_t(start)] = true;
            continue;
        }
        std::array<Cell, P::FieldCount> held;
        const std::span<Cell> first = table.rowCells(start + 1);
        std::move(first.begin(), first.end(), held.begin());
        int to = start;
        for (;;) {
            placed[std::size_t(to)] = true;
            const int from = order[std::size_t(to)] - 1;
            const std::span<Cell> target = table.rowCells(to + 1);
            if (from == start) {
                std::move(held.begin(), held.end(), target.begin());
                break;
            }
            const std::span<Cell> source = table.rowCells(from + 1);
            std::move(source.begin(), source.end(), target.begin());
            to = from;
        }
    }
}

/// The order in which the table's sort on the part number puts rows 1..rows: the same sort run
/// over a table of the part numbers and their row numbers.
std::vector<int> partNumberOrder(const Table &catalogue, int rows, const QLocale &locale)
{
    Table keys(rows, 2);
    for (int row = 1; row <= rows; ++row) {
        keys.put(row, 1, catalogue.get(row, P::PartNumber));
        keys.put(row, 2, Cell(qint32(row)));
    }
    keys.sortRows(1, rows, 1, Table::SortKind::Text, locale);
    std::vector<int> order(static_cast<std::size_t>(rows));
    for (int row = 1; row <= rows; ++row)
        order[std::size_t(row - 1)] = int(keys.get(row, 2).asNumber());
    return order;
}

void appendProducts(Table &catalogue, const std::vector<Cell> &cells)
{
    const int added = int(cells.size()) / P::FieldCount;
    if (added == 0)
        return;
    const int first = catalogue.rowCount() + 1;
    catalogue.insertRows(first, added);
    for (int index = 0; index < added; ++index) {
        const auto from = cells.begin() + std::ptrdiff_t(index) * P::FieldCount;
        std::copy(from, from + P::FieldCount, catalogue.rowCells(first + index).begin());
    }
}

/// Finds existing products by part number: the row the plan found, or else the first row with
/// that part number now.
class ProductRows
{
public:
    explicit ProductRows(const Table &catalogue) : m_catalogue(catalogue) { }

    int rowOf(const ImportPlan::ChangedProduct &product)
    {
        const int row = product.catalogueRow;
        if (row >= 1 && row <= m_catalogue.rowCount()
            && m_catalogue.get(row, P::PartNumber) == Cell(product.partNumber))
            return row;
        if (m_index.isEmpty()) {
            for (int at = m_catalogue.rowCount(); at >= 1; --at) {
                const Cell &part = m_catalogue.get(at, P::PartNumber);
                if (part.isText())
                    m_index.insert(part.asText(), at);
            }
        }
        return m_index.value(product.partNumber, 0);
    }

private:
    const Table &m_catalogue;
    QHash<QString, int> m_index;
};

} // namespace

int AppliedImport::addedCount() const
{
    return int(addedCells.size()) / P::FieldCount;
}

std::vector<int> countAndSortOnPartNumber(
    Table &catalogue, Products &products, int appended, const QLocale &locale)
{
    products.setCount(products.Count() + appended);
    // As the grid's sort: a negative Count is read as no products.
    const int rows = std::max(0, int(products.Count()));
    catalogue.redimPreserve(rows, P::FieldCount);
    std::vector<int> order = partNumberOrder(catalogue, rows, locale);
    moveRowsInto(catalogue, order);
    return order;
}

AppliedImport applyImportPlan(
    const ImportPlan &plan, Table &catalogue, Products &products, const QLocale &locale)
{
    AppliedImport applied;
    applied.countBefore = products.Count();
    applied.rowsBefore = catalogue.rowCount();
    ProductRows rows(catalogue);
    for (const ImportPlan::ChangedProduct &product : plan.changed) {
        const int row = rows.rowOf(product);
        if (row <= 0)
            continue;
        for (const ImportPlan::FieldChange &change : product.fields) {
            applied.cells.push_back(
                { row, change.field, catalogue.get(row, change.field), change.after });
            catalogue.put(row, change.field, change.after);
        }
    }
    applied.addedCells = plan.addedCells;
    appendProducts(catalogue, applied.addedCells);
    applied.order = countAndSortOnPartNumber(catalogue, products, applied.addedCount(), locale);
    return applied;
}

void redoImport(const AppliedImport &applied, Table &catalogue, Products &products)
{
    for (const AppliedImport::CellChange &change : applied.cells)
        catalogue.put(change.row, change.field, change.after);
    catalogue.redimPreserve(applied.rowsBefore, P::FieldCount);
    appendProducts(catalogue, applied.addedCells);
    products.setCount(applied.countBefore + applied.addedCount());
    catalogue.redimPreserve(int(applied.order.size()), P::FieldCount);
    moveRowsInto(catalogue, applied.order);
}

void undoImport(const AppliedImport &applied, Table &catalogue, Products &products)
{
    std::vector<int> back(applied.order.size());
    for (std::size_t k = 0; k < applied.order.size(); ++k)
        back[std::size_t(applied.order[k] - 1)] = int(k) + 1;
    moveRowsInto(catalogue, back);
    catalogue.redimPreserve(applied.rowsBefore, P::FieldCount);
    for (auto change = applied.cells.rbegin(); change != applied.cells.rend(); ++change)
        catalogue.put(change->row, change->field, change->before);
    products.setCount(applied.countBefore);
}

} // namespace tarnwick
