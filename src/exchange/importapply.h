#pragma once

#include "core/cell.h"

#include <QLocale>

#include <vector>

namespace tarnwick {

class Products;
class Table;
struct ImportPlan;

/// What carrying out an import did to the catalogue, with everything needed to do it again or
/// take it back (and nothing else: no copy of the catalogue). In order, an import
///  1. writes the changed fields of existing products (rows as they were before),
///  2. appends the new products after row rowsBefore and counts them into Count,
///  3. sorts the catalogue on the part number, as at start-up: order[k] is the row (numbered as
///     after step 2) that the sort moved to row k + 1.
struct AppliedImport
{
    struct CellChange
    {
        int row = 0;
        int field = 0;
        Cell before;
        Cell after;
    };

    int countBefore = 0;
    int rowsBefore = 0;
    /// The new products, ProductRecord::FieldCount cells each.
    std::vector<Cell> addedCells;
    std::vector<CellChange> cells;
    std::vector<int> order;

    int addedCount() const;
    /// True when the import neither added nor changed a product (it may still have sorted).
    bool changesNothing() const { return addedCells.empty() && cells.empty(); }
};

/// Carries out a plan in one call: the changed fields of existing products, the new products at
/// the end, Count, then the sort on the part number. Existing products are found by their part
/// number (the row the plan found first; another row with that part number if the catalogue was
/// re-sorted since); a product that is no longer there is left out. Returns what was done.
AppliedImport applyImportPlan(
    const ImportPlan &plan, Table &catalogue, Products &products, const QLocale &locale);

/// Does an applied import again on the catalogue it was taken back from (redo).
void redoImport(const AppliedImport &applied, Table &catalogue, Products &products);
/// Takes an applied import back: the catalogue's rows, cells and Count are as before it (undo).
void undoImport(const AppliedImport &applied, Table &catalogue, Products &products);

/// Counts rows appended to the catalogue into Count and sorts it on the part number as at
/// start-up; returns the sort's order as AppliedImport::order describes it, so that the sort
/// can be taken back.
std::vector<int> countAndSortOnPartNumber(
    Table &catalogue, Products &products, int appended, const QLocale &locale);

} // namespace tarnwick
