#pragma once

#include "catalogue/productchanges.h"
#include "commands/edithistory.h"
#include "products/productrow.h"

namespace tarnwick {

class Cell;
class Table;
struct PriceChangePlan;

/// The changes of the catalogue a window asks for. Each makes one step of the history (or
/// none, when it would change nothing) and returns whether the change was accepted; view is
/// where the product grid stands when it is asked for, which an undo of the step restores.
/// Nothing else writes to the catalogue while the program runs.
namespace CatalogueEdits {

/// A part number or product name typed into the grid: cell (row, field) becomes value.
bool setCell(EditHistory &history, const ProductView &view, int row, int field, const Cell &value);

/// A side box left after a change: field (Price, Includes or Notes) of row becomes what the
/// box holds, stored as the write-back of a row stores it (ProductRow::sideBoxCell).
bool setSideBox(
    EditHistory &history, const ProductView &view, int row, int field, const SideBoxTexts &boxes);

/// An edit in the price schedule: shown is what the schedule shows afterwards (five rows of
/// quantity and price, as typed). The row's price points become those points sorted by
/// quantity, as the write-back of a row stores them, while the schedule keeps showing them as
/// typed until the row is shown again. A change of what is shown alone makes no step.
bool setSchedule(EditHistory &history, const ProductView &view, int row, const Table &shown);

/// "&Clear" of the price schedule: every price point of row emptied.
bool clearSchedule(EditHistory &history, const ProductView &view, int row);

/// "Insert" and "&Add": an empty product inserted at currentRow, as
/// ProductCommands::insertProduct places it. Returns the new row.
int insertProduct(EditHistory &history, const ProductView &view, int currentRow);

/// "Delete": removes row when it exists.
bool deleteProduct(EditHistory &history, const ProductView &view, int row);

/// "Delete &All": removes every product when there is any.
bool deleteAll(EditHistory &history, const ProductView &view);

/// A header click: the grid's sort on field (ProductCommands::sortCatalogue) as one step ("Sort
/// by Product Name"); none, and false, when no row moves.
bool sort(EditHistory &history, const ProductView &view, int field);

/// View → Refresh: the catalogue sorted on the part number as one step named "Refresh"; none,
/// and false, when it is already in that order.
bool refresh(EditHistory &history, const ProductView &view);

/// "Change Prices...": every price of plan gets its new value, as one step ("Change Prices (12
/// prices)"). False when the plan changes nothing, has a price below zero or names a cell
/// outside the catalogue's products.
bool changePrices(EditHistory &history, const ProductView &view, const PriceChangePlan &plan);

/// An import: the products of changes added and its cells changed, then the catalogue sorted
/// on the part number, as one step named after what it did ("Import (12 added, 40 changed)").
/// Nothing to add or change makes no step; false then, and for changes that do not fit the
/// catalogue (rows or fields outside it).
bool import(EditHistory &history, const ProductView &view, ProductChanges changes);

/// The name of an import's step.
QString importText(int added, int changed);

} // namespace CatalogueEdits

} // namespace tarnwick
