#pragma once

#include "catalogue/productchanges.h"
#include "catalogue/table.h"
#include "commands/cellchanges.h"
#include "commands/edithistory.h"

#include <QLocale>

#include <utility>
#include <vector>

namespace tarnwick {

/// A step of the catalogue: where the grid stood before it and goes after it.
class ProductStep : public EditCommand
{
public:
    bool changesCatalogue() const override { return true; }

protected:
    ProductStep(EditHistory &history, const QString &text, const ProductView &before,
        const ProductView &after, bool rowsChanged);
    void announce(bool undone, bool replayed) override;
    /// Whether the price schedule shows what the step left in the schedule table.
    virtual bool keepsSchedule() const { return false; }
    /// Whether the step changes what only the Product tab shows (a side box, the schedule).
    virtual bool onProductTab() const { return false; }
    /// The first and last rows whose cells the step changes in place; {0, 0} for none.
    virtual std::pair<int, int> changedRows() const { return { 0, 0 }; }
    EditHistory &history() const { return m_history; }

private:
    EditHistory &m_history;
    ProductView m_before;
    ProductView m_after;
    bool m_rowsChanged;
};

/// Cells of products given new values; holds each cell's old and new value.
class ProductCellsStep : public ProductStep
{
protected:
    ProductCellsStep(
        EditHistory &history, const QString &text, const ProductView &view, CellChanges changes);
    void forward() override;
    void backward() override;
    std::pair<int, int> changedRows() const override { return m_rows; }

private:
    CellChanges m_changes;
    std::pair<int, int> m_rows;
};

/// A part number or product name typed into the product grid.
class EditProductCell : public ProductCellsStep
{
public:
    EditProductCell(
        EditHistory &history, const QString &text, const ProductView &view, CellChange change);
};

/// The list price, includes or notes box left after a change.
class EditSideBox : public ProductCellsStep
{
public:
    EditSideBox(
        EditHistory &history, const QString &text, const ProductView &view, CellChange change);

protected:
    bool onProductTab() const override { return true; }
};

/// "Change Prices...": list prices and break prices of many products changed at once.
class ChangePrices : public ProductCellsStep
{
public:
    ChangePrices(
        EditHistory &history, const QString &text, const ProductView &view, CellChanges changes);
};

/// An edit in the price schedule: the product's price points (fields 6 to 15, sorted by
/// quantity) and what the schedule shows (as the user typed it), before and after.
class EditSchedule : public ProductCellsStep
{
public:
    EditSchedule(EditHistory &history, const QString &text, const ProductView &view,
        CellChanges changes, Table shownBefore, Table shownAfter);

protected:
    void forward() override;
    void backward() override;
    bool keepsSchedule() const override { return true; }
    bool onProductTab() const override { return true; }

private:
    Table m_shownBefore;
    Table m_shownAfter;
};

/// "&Clear" of the price schedule's menu: every price point of the product emptied.
class ClearSchedule : public EditSchedule
{
public:
    using EditSchedule::EditSchedule;
};

/// "Insert" and "&Add": an empty product inserted at a row.
class InsertProduct : public ProductStep
{
public:
    InsertProduct(EditHistory &history, const ProductView &before, int row);

protected:
    void forward() override;
    void backward() override;

private:
    int m_row;
};

/// "Delete" of one product; holds the row it removed.
class DeleteProduct : public ProductStep
{
public:
    DeleteProduct(EditHistory &history, const QString &text, const ProductView &before, int row);

protected:
    void forward() override;
    void backward() override;

private:
    int m_row;
    Table m_removed;
};

/// "Delete &All"; holds the rows it removed (taken over, not copied) and the product count.
class DeleteAllProducts : public ProductStep
{
public:
    DeleteAllProducts(EditHistory &history, const ProductView &before);

protected:
    void forward() override;
    void backward() override;

private:
    Table m_removed;
    qint32 m_count = 0;
};

/// The catalogue sorted as the grid's header sort does it (cut or padded to Count rows, then
/// rows 1..Count ordered on a field): holds the permutation, not a copy, and the rows the cut
/// dropped, if any.
class CatalogueSort
{
public:
    /// Sorts and keeps what is needed to take the sort back.
    void sort(Table &catalogue, qint32 count, int field, const QLocale &locale);
    /// Sorts again as sort() did.
    void redo(Table &catalogue);
    /// Puts the rows back in their order before the sort.
    void undo(Table &catalogue);
    /// Whether the sort moved, added or dropped any row.
    bool changedRows() const;
    /// Where the rows went (EditCommand::rowOrder); nullptr when the sort added or dropped rows.
    const std::vector<int> *order() const { return m_rows == m_rowsBefore ? &m_order : nullptr; }

private:
    void resize(Table &catalogue);

    int m_rowsBefore = 0;
    int m_rows = 0;
    Table m_dropped;
    /// m_order[k] is the row that went to row k + 1; empty when no row moved.
    std::vector<int> m_order;
};

/// A header click: the catalogue sorted on a field. It is made with the sort already done (the
/// step's first redo finds it done), so a sort that moves nothing need not become a step.
class SortProducts : public ProductStep
{
public:
    SortProducts(EditHistory &history, const QString &text, const ProductView &before, int field,
        CatalogueSort done);
    bool changesCatalogue() const override { return m_sort.changedRows(); }
    const std::vector<int> *rowOrder() const override { return m_sort.order(); }

protected:
    void forward() override;
    void backward() override;

private:
    int m_field;
    bool m_sortedByPartBefore = true;
    /// The catalogue is in the sort's order already: the first redo only records the step.
    bool m_done = true;
    CatalogueSort m_sort;
};

/// An import: products added and cells of existing products changed, then the catalogue sorted
/// on the part number. Holds the added rows (taken over), the old values of the changed cells
/// and the sort's permutation.
class ImportProducts : public ProductStep
{
public:
    ImportProducts(EditHistory &history, const QString &text, const ProductView &before,
        ProductChanges changes);

protected:
    void forward() override;
    void backward() override;

private:
    ProductChanges m_changes;
    std::vector<Cell> m_oldValues;
    int m_addedRows = 0;
    int m_at = 0;
    bool m_sortedByPartBefore = true;
    bool m_applied = false;
    CatalogueSort m_sort;
};

} // namespace tarnwick
