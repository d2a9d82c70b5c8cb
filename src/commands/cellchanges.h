#pragma once

#include "core/cell.h"

#include <vector>

namespace tarnwick {

class Table;

/// One cell of a table before and after a step.
struct CellChange
{
    int row = 0;
    int field = 0;
    Cell before;
    Cell after;
};

using CellChanges = std::vector<CellChange>;

/// The cells in which after differs from before; both tables have the same shape.
CellChanges differences(const Table &before, const Table &after);

/// Writes the after values of changes into table, in their order.
void applyAfter(Table &table, const CellChanges &changes);
/// Writes the before values of changes into table, last change first.
void applyBefore(Table &table, const CellChanges &changes);

} // namespace tarnwick
