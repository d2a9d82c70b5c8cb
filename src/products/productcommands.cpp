#include "products/productcommands.h"

#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "core/conversions.h"

#include <algorithm>

namespace tarnwick::ProductCommands {

namespace {

/// Gives the catalogue its fifteen fields, keeping the rows and their contents.
void ensureProductFields(Table &catalogue)
{
    if (catalogue.fieldCount() != ProductRecord::FieldCount)
        catalogue.redimPreserve(catalogue.rowCount(), ProductRecord::FieldCount);
}

} // namespace

int insertProduct(Table &catalogue, Products &products, int currentRow)
{
    ensureProductFields(catalogue);
    const int row = std::clamp(currentRow, 1, catalogue.rowCount() + 1);
    catalogue.insertRows(row);
    products.setCount(products.Count() + 1);
    return row;
}

bool deleteProduct(Table &catalogue, Products &products, int row)
{
    if (row < 1 || row > catalogue.rowCount())
        return false;
    catalogue.deleteRows(row);
    products.setCount(products.Count() - 1);
    return true;
}

void deleteAll(Table &catalogue, Products &products)
{
    if (products.Count() <= 0)
        return;
    catalogue.redim(0, ProductRecord::FieldCount);
    products.setCount(0);
}

Table::SortKind sortKindOfField(int field)
{
    return ProductRecord::isNumberField(field) ? Table::SortKind::Numeric : Table::SortKind::Text;
}

void sortCatalogue(Table &catalogue, const Products &products, int field, const QLocale &locale)
{
    // A negative Count cannot come from the commands above; it is read as no products rather
    // than raising an error in the middle of a sort.
    const int rows = std::max(0, int(products.Count()));
    catalogue.redimPreserve(rows, ProductRecord::FieldCount);
    catalogue.sortRows(1, rows, field, sortKindOfField(field), locale);
}

int findProduct(const Table &catalogue, const Table &product)
{
    if (product.rowCount() < 1 || product.fieldCount() < ProductRecord::FieldCount
        || catalogue.fieldCount() < ProductRecord::FieldCount)
        return 0;
    const Cell &partNumber = product.get(1, ProductRecord::PartNumber);
    for (int row = catalogue.find(ProductRecord::PartNumber, partNumber); row > 0;
         row = catalogue.find(ProductRecord::PartNumber, partNumber, row + 1)) {
        bool same = true;
        for (int field = 1; same && field <= ProductRecord::FieldCount; ++field)
            same = catalogue.get(row, field) == product.get(1, field);
        if (same)
            return row;
    }
    return 0;
}

int otherRowWithPartNumber(const Table &catalogue, int row)
{
    if (row < 1 || row > catalogue.rowCount() || catalogue.fieldCount() < ProductRecord::PartNumber)
        return 0;
    const Cell &partNumber = catalogue.get(row, ProductRecord::PartNumber);
    if (partNumber.isBlank() || partNumber.isNull())
        return 0;
    for (int other = catalogue.find(ProductRecord::PartNumber, partNumber); other > 0;
         other = catalogue.find(ProductRecord::PartNumber, partNumber, other + 1)) {
        if (other != row)
            return other;
    }
    return 0;
}

QString partNumberTakenText(const Table &catalogue, int row, const QLocale &locale)
{
    const int other = otherRowWithPartNumber(catalogue, row);
    if (other == 0)
        return {};
    return QStringLiteral("Part number %1 is already used by \"%2\". Quotes and imports take the "
                          "first product with a part number: give this one another.")
        .arg(conv::toText(catalogue.get(row, ProductRecord::PartNumber), locale),
            conv::toText(catalogue.get(other, ProductRecord::ProductName), locale));
}

QList<int> rowsWithoutPartNumber(const Table &catalogue, const QLocale &locale)
{
    QList<int> rows;
    if (catalogue.fieldCount() < ProductRecord::FieldCount)
        return rows;
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        if (isProductWithoutPartNumber(catalogue.row(row), locale))
            rows.append(row);
    }
    return rows;
}

QString rowStandingText(const Table &catalogue, int row, const QLocale &locale)
{
    if (row < 1 || row > catalogue.rowCount() || catalogue.fieldCount() < ProductRecord::FieldCount)
        return {};
    if (QString taken = partNumberTakenText(catalogue, row, locale); !taken.isEmpty())
        return taken;
    if (isProductWithoutPartNumber(catalogue.row(row), locale))
        return QStringLiteral("This product has no part number: the catalogue file keeps only "
                              "products that have one. Type one to keep it.");
    return {};
}

QString savedText(int withoutPartNumber)
{
    QString saved = QStringLiteral("Catalogue saved");
    if (withoutPartNumber <= 0)
        return saved;
    if (withoutPartNumber == 1)
        return saved
            + QStringLiteral(", without 1 product that has no part number: type one to keep it.");
    return saved
        + QStringLiteral(", without %1 products that have no part number: type one for each "
                         "to keep them.")
              .arg(withoutPartNumber);
}

} // namespace tarnwick::ProductCommands
