#pragma once

#include "catalogue/table.h"
#include "core/cell.h"

#include <vector>

namespace tarnwick {

/// One cell of an existing product given a new value.
struct CellUpdate
{
    int row = 0; ///< the catalogue row, 1-based, as the catalogue stood before the change
    int field = 0; ///< 1..15
    Cell value;
};

/// A change of many products at once, as an import makes it: new products added to the
/// catalogue and cells of existing products given new values. The change is applied as one
/// undoable step; afterwards the catalogue is sorted on the part number, as at start-up.
struct ProductChanges
{
    /// The new products, one row of fifteen fields each, in the order they were found.
    Table added;
    /// Cells of existing products; rows are catalogue rows before the new products are added.
    std::vector<CellUpdate> updated;

    /// The number of existing products that get at least one new cell value.
    int changedProducts() const;
};

} // namespace tarnwick
