#include "commands/catalogueedits.h"

#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "commands/cataloguecommands.h"
#include "core/conversions.h"
#include "products/pricechange.h"

#include <algorithm>

namespace tarnwick::CatalogueEdits {

namespace {

namespace P = ProductRecord;

bool isProductRow(const Table &catalogue, int row)
{
    return row >= 1 && row <= catalogue.rowCount() && catalogue.fieldCount() >= P::FieldCount;
}

/// "Delete Product TW-200"; without the part number when the product has none.
QString stepName(const QString &what, const Cell &partNumber, const QLocale &locale)
{
    const QString part = partNumber.isNull() ? QString() : conv::toText(partNumber, locale);
    return part.trimmed().isEmpty() ? what : what + QLatin1Char(' ') + part.trimmed();
}

QString partOf(Module1 &module, int row, const QString &what)
{
    return stepName(what, module.Catalogue().get(row, P::PartNumber), module.locale());
}

bool isScheduleShape(const Table &schedule)
{
    return schedule.rowCount() == P::PricePointCount && schedule.fieldCount() == 2;
}

/// Makes the schedule step that shows shown and stores its points, sorted by quantity, in row.
template <typename Step>
bool scheduleStep(
    EditHistory &history, const ProductView &view, int row, const Table &shown, const QString &what)
{
    Module1 &module = history.module();
    Table &catalogue = module.Catalogue();
    if (!isScheduleShape(shown))
        return false;
    if (!isProductRow(catalogue, row)) {
        // No product in view: the schedule shows the edit and nothing is stored.
        module.ScheduleTable() = shown;
        return true;
    }
    Table sorted = shown;
    ProductRow::sortSchedule(sorted, module.locale());
    CellChanges changes;
    for (int k = 1; k <= P::PricePointCount; ++k) {
        const int fields[] = { P::pricePointField(k), P::pricePointPriceField(k) };
        for (int column = 1; column <= 2; ++column) {
            const Cell &stored = catalogue.get(row, fields[column - 1]);
            const Cell &point = sorted.get(k, column);
            if (!(stored == point))
                changes.push_back({ row, fields[column - 1], stored, point });
        }
    }
    if (changes.empty()) {
        module.ScheduleTable() = shown;
        return true;
    }
    history.push(new Step(history, partOf(module, row, what), view, std::move(changes),
        module.ScheduleTable(), shown));
    return true;
}

bool fitsCatalogue(const Table &catalogue, const ProductChanges &changes)
{
    if (changes.added.rowCount() > 0 && changes.added.fieldCount() != P::FieldCount)
        return false;
    return std::all_of(changes.updated.begin(), changes.updated.end(), [&](const CellUpdate &u) {
        return u.row >= 1 && u.row <= catalogue.rowCount() && u.field >= 1
            && u.field <= P::FieldCount;
    });
}

/// Whether the import's sort on the part number would leave the catalogue as it is.
bool alreadySorted(Module1 &module)
{
    const Table &catalogue = module.Catalogue();
    const int rows = std::max(0, int(module.AllProducts().Count()));
    if (rows != catalogue.rowCount())
        return false;
    const std::vector<int> order =
        catalogue.sortedOrder(1, rows, P::PartNumber, Table::SortKind::Text, module.locale());
    for (std::size_t k = 0; k < order.size(); ++k) {
        if (order[k] != int(k) + 1)
            return false;
    }
    return true;
}

/// The text of one side box.
const QString &boxText(const SideBoxTexts &boxes, int field)
{
    return field == P::Price ? boxes.price : field == P::Includes ? boxes.includes : boxes.notes;
}

} // namespace

bool setCell(EditHistory &history, const ProductView &view, int row, int field, const Cell &value)
{
    Module1 &module = history.module();
    Table &catalogue = module.Catalogue();
    if (!isProductRow(catalogue, row) || field < 1 || field > P::FieldCount)
        return false;
    const Cell &old = catalogue.get(row, field);
    if (old == value)
        return true;
    const QString what = QStringLiteral("Edit ") + P::fieldCaption(field);
    const QString text =
        field == P::PartNumber ? stepName(what, value, module.locale()) : partOf(module, row, what);
    history.push(new EditProductCell(history, text, view, { row, field, old, value }));
    return true;
}

bool setSideBox(
    EditHistory &history, const ProductView &view, int row, int field, const SideBoxTexts &boxes)
{
    Module1 &module = history.module();
    Table &catalogue = module.Catalogue();
    if (!isProductRow(catalogue, row)
        || (field != P::Price && field != P::Includes && field != P::Notes))
        return false;
    // A box that still shows what the row holds changes nothing, however the cell is kept: a
    // list price read as the number 14.14 shows as "$14.14", which would be stored as text.
    const SideBoxTexts shown = ProductRow::sideBoxes(catalogue, row, module.locale());
    if (boxText(shown, field) == boxText(boxes, field))
        return true;
    const Cell value = ProductRow::sideBoxCell(field, boxes, module.locale());
    const Cell &old = catalogue.get(row, field);
    if (old == value)
        return true;
    const QString what = field == P::Price ? QStringLiteral("Edit List Price")
                                           : QStringLiteral("Edit ") + P::fieldCaption(field);
    history.push(
        new EditSideBox(history, partOf(module, row, what), view, { row, field, old, value }));
    return true;
}

bool setSchedule(EditHistory &history, const ProductView &view, int row, const Table &shown)
{
    return scheduleStep<EditSchedule>(
        history, view, row, shown, QStringLiteral("Edit Price Schedule"));
}

bool clearSchedule(EditHistory &history, const ProductView &view, int row)
{
    const Table empty(P::PricePointCount, 2);
    return scheduleStep<ClearSchedule>(
        history, view, row, empty, QStringLiteral("Clear Price Schedule"));
}

bool changePrices(EditHistory &history, const ProductView &view, const PriceChangePlan &plan)
{
    const Table &catalogue = history.module().Catalogue();
    if (plan.entries.empty() || !plan.complete() || !plan.belowZero.isEmpty()
        || !plan.tooLarge.isEmpty())
        return false;
    CellChanges changes;
    for (const PriceChangeEntry &entry : plan.entries) {
        if (!isProductRow(catalogue, entry.row) || entry.field < 1 || entry.field > P::FieldCount)
            return false;
        changes.push_back(
            { entry.row, entry.field, catalogue.get(entry.row, entry.field), entry.after });
    }
    const QString text = changes.size() == 1
        ? QStringLiteral("Change Prices (1 price)")
        : QStringLiteral("Change Prices (%1 prices)").arg(changes.size());
    history.push(new ChangePrices(history, text, view, std::move(changes)));
    return true;
}

int insertProduct(EditHistory &history, const ProductView &view, int currentRow)
{
    const int row = std::clamp(currentRow, 1, history.module().Catalogue().rowCount() + 1);
    history.push(new InsertProduct(history, view, row));
    return row;
}

bool deleteProduct(EditHistory &history, const ProductView &view, int row)
{
    Module1 &module = history.module();
    if (row < 1 || row > module.Catalogue().rowCount())
        return false;
    const QString text = isProductRow(module.Catalogue(), row)
        ? partOf(module, row, QStringLiteral("Delete Product"))
        : QStringLiteral("Delete Product");
    history.push(new DeleteProduct(history, text, view, row));
    return true;
}

bool deleteAll(EditHistory &history, const ProductView &view)
{
    if (history.module().AllProducts().Count() <= 0)
        return false;
    history.push(new DeleteAllProducts(history, view));
    return true;
}

/// The catalogue sorted on field as a step named text. The sort is made before the step: one
/// that moves no row is no step, so it costs no second sort and leaves Redo as it was.
bool sortStep(EditHistory &history, const ProductView &view, int field, const QString &text)
{
    Module1 &module = history.module();
    CatalogueSort sorted;
    history.runWork([&] {
        sorted.sort(module.Catalogue(), module.AllProducts().Count(), field, module.locale());
    });
    if (!sorted.changedRows())
        return false;
    history.push(new SortProducts(history, text, view, field, std::move(sorted)));
    return true;
}

bool sort(EditHistory &history, const ProductView &view, int field)
{
    return sortStep(history, view, field, QStringLiteral("Sort by ") + P::fieldCaption(field));
}

bool refresh(EditHistory &history, const ProductView &view)
{
    return sortStep(history, view, P::PartNumber, QStringLiteral("Refresh"));
}

QString importText(int added, int changed)
{
    if (changed == 0)
        return QStringLiteral("Import (%1 added)").arg(added);
    if (added == 0)
        return QStringLiteral("Import (%1 changed)").arg(changed);
    return QStringLiteral("Import (%1 added, %2 changed)").arg(added).arg(changed);
}

bool import(EditHistory &history, const ProductView &view, ProductChanges changes)
{
    Module1 &module = history.module();
    if (!fitsCatalogue(module.Catalogue(), changes))
        return false;
    if (changes.added.rowCount() == 0 && changes.updated.empty() && alreadySorted(module))
        return false;
    const QString text = importText(changes.added.rowCount(), changes.changedProducts());
    history.push(new ImportProducts(history, text, view, std::move(changes)));
    return true;
}

} // namespace tarnwick::CatalogueEdits
