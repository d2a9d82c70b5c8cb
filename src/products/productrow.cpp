#include "products/productrow.h"

#include "catalogue/cataloguetext.h"
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"

namespace tarnwick::ProductRow {

namespace {

QString safeText(const Cell &cell, const QLocale &locale)
{
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

} // namespace

SideBoxTexts sideBoxes(const Table &catalogue, int row, const QLocale &locale)
{
    return { format(catalogue.get(row, ProductRecord::Price), QStringLiteral("currency"), locale),
        safeText(catalogue.get(row, ProductRecord::Includes), locale),
        safeText(catalogue.get(row, ProductRecord::Notes), locale) };
}

void loadSchedule(const Table &catalogue, int row, Table &schedule)
{
    for (int k = 1; k <= ProductRecord::PricePointCount; ++k) {
        schedule.put(k, 1, catalogue.get(row, ProductRecord::pricePointField(k)));
        schedule.put(k, 2, catalogue.get(row, ProductRecord::pricePointPriceField(k)));
    }
}

void sortSchedule(Table &schedule, const QLocale &locale)
{
    schedule.sortRows(1, ProductRecord::PricePointCount, 1, Table::SortKind::Numeric, locale);
}

Cell sideBoxCell(int field, const SideBoxTexts &boxes, const QLocale &locale)
{
    switch (field) {
    case ProductRecord::Price:
        return format(
            Cell(withoutFieldEndCharacters(boxes.price)), QStringLiteral("currency"), locale);
    case ProductRecord::Includes:
        return withoutFieldEndCharacters(boxes.includes);
    case ProductRecord::Notes:
        return withoutFieldEndCharacters(boxes.notes);
    default:
        return {};
    }
}

void writeBack(
    Table &catalogue, int row, const SideBoxTexts &boxes, Table &schedule, const QLocale &locale)
{
    for (const int field : { ProductRecord::Price, ProductRecord::Includes, ProductRecord::Notes })
        catalogue.put(row, field, sideBoxCell(field, boxes, locale));
    sortSchedule(schedule, locale);
    for (int k = 1; k <= ProductRecord::PricePointCount; ++k) {
        catalogue.put(row, ProductRecord::pricePointField(k), schedule.get(k, 1));
        catalogue.put(row, ProductRecord::pricePointPriceField(k), schedule.get(k, 2));
    }
}

} // namespace tarnwick::ProductRow
