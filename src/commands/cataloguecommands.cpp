#include "commands/cataloguecommands.h"

#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "products/productcommands.h"

#include <algorithm>

namespace tarnwick {

namespace {

Table &catalogueOf(Module1 &module)
{
    return module.Catalogue();
}

void addToCount(Module1 &module, qint32 delta)
{
    Products &products = module.AllProducts();
    products.setCount(products.Count() + delta);
}

} // namespace

ProductStep::ProductStep(EditHistory &history, const QString &text, const ProductView &before,
    const ProductView &after, bool rowsChanged)
    : EditCommand(history.module(), text), m_history(history), m_before(before), m_after(after),
      m_rowsChanged(rowsChanged)
{
}

void ProductStep::announce(bool undone, bool replayed)
{
    const auto [firstRow, lastRow] = changedRows();
    m_history.announce(ProductChange { undone ? m_before : m_after, m_rowsChanged, keepsSchedule(),
        replayed, firstRow, lastRow, onProductTab() });
}

ProductCellsStep::ProductCellsStep(
    EditHistory &history, const QString &text, const ProductView &view, CellChanges changes)
    : ProductStep(history, text, view, view, false), m_changes(std::move(changes)), m_rows(0, 0)
{
    const auto [first, last] = std::minmax_element(m_changes.begin(), m_changes.end(),
        [](const CellChange &a, const CellChange &b) { return a.row < b.row; });
    if (first != m_changes.end())
        m_rows = { first->row, last->row };
}

void ProductCellsStep::forward()
{
    applyAfter(catalogueOf(module()), m_changes);
}

void ProductCellsStep::backward()
{
    applyBefore(catalogueOf(module()), m_changes);
}

EditProductCell::EditProductCell(
    EditHistory &history, const QString &text, const ProductView &view, CellChange change)
    : ProductCellsStep(history, text, view, { std::move(change) })
{
}

ChangePrices::ChangePrices(
    EditHistory &history, const QString &text, const ProductView &view, CellChanges changes)
    : ProductCellsStep(history, text, view, std::move(changes))
{
}

EditSideBox::EditSideBox(
    EditHistory &history, const QString &text, const ProductView &view, CellChange change)
    : ProductCellsStep(history, text, view, { std::move(change) })
{
}

EditSchedule::EditSchedule(EditHistory &history, const QString &text, const ProductView &view,
    CellChanges changes, Table shownBefore, Table shownAfter)
    : ProductCellsStep(history, text, view, std::move(changes)),
      m_shownBefore(std::move(shownBefore)), m_shownAfter(std::move(shownAfter))
{
}

void EditSchedule::forward()
{
    ProductCellsStep::forward();
    module().ScheduleTable() = m_shownAfter;
}

void EditSchedule::backward()
{
    ProductCellsStep::backward();
    module().ScheduleTable() = m_shownBefore;
}

InsertProduct::InsertProduct(EditHistory &history, const ProductView &before, int row)
    : ProductStep(history, QStringLiteral("Add Product"), before, { row, 0 }, true), m_row(row)
{
}

void InsertProduct::forward()
{
    Table &catalogue = catalogueOf(module());
    if (catalogue.fieldCount() != ProductRecord::FieldCount)
        catalogue.redimPreserve(catalogue.rowCount(), ProductRecord::FieldCount);
    catalogue.insertRows(m_row);
    addToCount(module(), 1);
}

void InsertProduct::backward()
{
    catalogueOf(module()).deleteRows(m_row);
    addToCount(module(), -1);
}

DeleteProduct::DeleteProduct(
    EditHistory &history, const QString &text, const ProductView &before, int row)
    : ProductStep(history, text, before, {}, true), m_row(row)
{
}

void DeleteProduct::forward()
{
    m_removed = catalogueOf(module()).takeRows(m_row, 1);
    addToCount(module(), -1);
}

void DeleteProduct::backward()
{
    catalogueOf(module()).insertTable(m_row, std::move(m_removed));
    addToCount(module(), 1);
}

DeleteAllProducts::DeleteAllProducts(EditHistory &history, const ProductView &before)
    : ProductStep(history, QStringLiteral("Delete All Products"), before, {}, true)
{
}

void DeleteAllProducts::forward()
{
    Table &catalogue = catalogueOf(module());
    m_count = module().AllProducts().Count();
    m_removed = catalogue.takeRows(1, catalogue.rowCount());
    module().AllProducts().setCount(0);
}

void DeleteAllProducts::backward()
{
    catalogueOf(module()).insertTable(1, std::move(m_removed));
    module().AllProducts().setCount(m_count);
}

void CatalogueSort::resize(Table &catalogue)
{
    if (m_rows < m_rowsBefore)
        m_dropped = catalogue.takeRows(m_rows + 1, m_rowsBefore - m_rows);
    else if (m_rows > m_rowsBefore)
        catalogue.insertRows(m_rowsBefore + 1, m_rows - m_rowsBefore);
}

void CatalogueSort::sort(Table &catalogue, qint32 count, int field, const QLocale &locale)
{
    // As the grid's sort: a negative Count is read as no products.
    m_rowsBefore = catalogue.rowCount();
    m_rows = std::max(0, int(count));
    resize(catalogue);
    m_order =
        catalogue.sortedOrder(1, m_rows, field, ProductCommands::sortKindOfField(field), locale);
    bool moved = false;
    for (std::size_t k = 0; k < m_order.size() && !moved; ++k)
        moved = m_order[k] != int(k) + 1;
    if (!moved) {
        // Nothing to keep for a sort that leaves every row where it is.
        m_order.clear();
        m_order.shrink_to_fit();
    }
    catalogue.reorderRows(1, m_order);
}

void CatalogueSort::redo(Table &catalogue)
{
    resize(catalogue);
    catalogue.reorderRows(1, m_order);
}

void CatalogueSort::undo(Table &catalogue)
{
    if (!m_order.empty()) {
        // The row now at k + 1 goes back to row m_order[k].
        std::vector<int> back(m_order.size());
        for (std::size_t k = 0; k < m_order.size(); ++k)
            back[std::size_t(m_order[k] - 1)] = int(k) + 1;
        catalogue.reorderRows(1, back);
    }
    if (m_rows < m_rowsBefore)
        catalogue.insertTable(m_rows + 1, std::move(m_dropped));
    else if (m_rows > m_rowsBefore)
        catalogue.deleteRows(m_rowsBefore + 1, m_rows - m_rowsBefore);
}

bool CatalogueSort::changedRows() const
{
    return !m_order.empty() || m_rows != m_rowsBefore;
}

SortProducts::SortProducts(EditHistory &history, const QString &text, const ProductView &before,
    int field, CatalogueSort done)
    : ProductStep(history, text, before, { 1, 0 }, true), m_field(field), m_sort(std::move(done))
{
}

void SortProducts::forward()
{
    Module1 &data = module();
    m_sortedByPartBefore = data.SortedByPart;
    if (!m_done)
        history().runWork([&] { m_sort.redo(data.Catalogue()); });
    m_done = false;
    data.SortedByPart = m_field == ProductRecord::PartNumber;
}

void SortProducts::backward()
{
    history().runWork([this] { m_sort.undo(module().Catalogue()); });
    module().SortedByPart = m_sortedByPartBefore;
}

ImportProducts::ImportProducts(
    EditHistory &history, const QString &text, const ProductView &before, ProductChanges changes)
    : ProductStep(history, text, before, { 1, 0 }, true), m_changes(std::move(changes)),
      m_addedRows(m_changes.added.rowCount())
{
}

void ImportProducts::forward()
{
    Module1 &data = module();
    Table &catalogue = data.Catalogue();
    m_sortedByPartBefore = data.SortedByPart;
    const bool first = !m_applied;
    if (first)
        m_oldValues.reserve(m_changes.updated.size());
    for (std::size_t k = 0; k < m_changes.updated.size(); ++k) {
        const CellUpdate &update = m_changes.updated[k];
        if (first)
            m_oldValues.push_back(catalogue.get(update.row, update.field));
        catalogue.put(update.row, update.field, update.value);
    }
    // The new products follow the last product, so the sort's cut to Count keeps them.
    if (first)
        m_at = std::clamp(int(data.AllProducts().Count()) + 1, 1, catalogue.rowCount() + 1);
    catalogue.insertTable(m_at, std::move(m_changes.added));
    addToCount(data, m_addedRows);
    if (first)
        m_sort.sort(
            catalogue, data.AllProducts().Count(), ProductRecord::PartNumber, data.locale());
    else
        m_sort.redo(catalogue);
    m_applied = true;
    data.SortedByPart = true;
}

void ImportProducts::backward()
{
    Module1 &data = module();
    Table &catalogue = data.Catalogue();
    m_sort.undo(catalogue);
    m_changes.added = catalogue.takeRows(m_at, m_addedRows);
    addToCount(data, -m_addedRows);
    for (std::size_t k = m_changes.updated.size(); k-- > 0;) {
        const CellUpdate &update = m_changes.updated[k];
        catalogue.put(update.row, update.field, m_oldValues[k]);
    }
    data.SortedByPart = m_sortedByPartBefore;
}

} // namespace tarnwick
