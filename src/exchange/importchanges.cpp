#include "exchange/importchanges.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/importplan.h"

#include <QHash>

#include <algorithm>

namespace tarnwick {

namespace P = ProductRecord;

namespace {

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
            // From the last row up, so the first row of a repeated part number wins.
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

ProductChanges importChanges(ImportPlan plan, const Table &catalogue)
{
    ProductChanges changes;
    // The new products' cells are already laid out row after row: the table takes them over.
    changes.added = Table::fromCells(P::FieldCount, std::move(plan.addedCells));
    ProductRows rows(catalogue);
    for (ImportPlan::ChangedProduct &product : plan.changed) {
        const int row = rows.rowOf(product);
        if (row <= 0)
            continue;
        for (ImportPlan::FieldChange &change : product.fields)
            changes.updated.push_back({ row, change.field, std::move(change.after) });
    }
    return changes;
}

} // namespace tarnwick
