#pragma once

#include "catalogue/productchanges.h"

namespace tarnwick {

class Table;
struct ImportPlan;

/// The change of the catalogue that carrying out a plan comes to, for the one step of the
/// history that makes it (CatalogueEdits::import): the plan's new products as rows of fifteen
/// fields, and the new value of every changed field at the row where its product is now. A
/// product is found by its part number: at the row the plan found, or else at the first row
/// that holds the part number now (the catalogue may have been sorted since the plan was made);
/// a product that is no longer there is left out. The catalogue is only read.
ProductChanges importChanges(ImportPlan plan, const Table &catalogue);

} // namespace tarnwick
