#include "commands/cellchanges.h"

#include "catalogue/table.h"

namespace tarnwick {

CellChanges differences(const Table &before, const Table &after)
{
    CellChanges changes;
    for (int row = 1; row <= before.rowCount(); ++row) {
        for (int field = 1; field <= before.fieldCount(); ++field) {
            const Cell &was = before.get(row, field);
            const Cell &now = after.get(row, field);
            if (!(was == now))
                changes.push_back({ row, field, was, now });
        }
    }
    return changes;
}

void applyAfter(Table &table, const CellChanges &changes)
{
    for (const CellChange &change : changes)
        table.put(change.row, change.field, change.after);
}

void applyBefore(Table &table, const CellChanges &changes)
{
    for (auto change = changes.rbegin(); change != changes.rend(); ++change)
        table.put(change->row, change->field, change->before);
}

} // namespace tarnwick
