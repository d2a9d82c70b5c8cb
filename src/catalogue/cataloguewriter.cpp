#include "catalogue/cataloguewriter.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/storednumber.h"

#include <QStringView>

namespace tarnwick {

namespace {

constexpr QStringView FieldEnd = u"\x7f\x7f\x7f";
constexpr QStringView LineEnd = u"\r\n";

/// A cell's text in the file. Null joins a line as the empty text, as it did when the line
/// was built by joining the cells' texts. The price and the price points are written as
/// stored numbers, the same on every machine; a text that is no number stays as it is.
QString fileText(const Cell &cell, int field, const QLocale &locale)
{
    if (cell.isNull())
        return QString();
    const bool numberField = field == ProductRecord::Price || field >= ProductRecord::PricePoint1;
    return numberField ? stored::cellText(cell, locale) : conv::toText(cell, locale);
}

bool hasPartNumber(const Cell &cell, const QLocale &locale)
{
    // An empty cell (never assigned) counts as the empty text.
    return !cell.isNull() && !conv::toText(cell, locale).isEmpty();
}

} // namespace

CatalogueFileText catalogueFileText(const Table &table, const QLocale &locale, qint32 count)
{
    CatalogueFileText result;
    result.count = count;
    // The row counter is 32-bit on purpose: the earlier program counted rows in 16 bits and
    // could not save a catalogue of more than 32,767 rows at all.
    const qint32 lastRow = table.upperBound(1);
    for (qint32 row = 1; row <= lastRow; ++row) {
        if (!hasPartNumber(table.get(row, ProductRecord::PartNumber), locale)) {
            result.count = row - 1;
            continue;
        }
        for (int field = 1; field <= ProductRecord::FieldCount; ++field) {
            result.text += fileText(table.get(row, field), field, locale);
            result.text += FieldEnd;
        }
        result.text += LineEnd;
        result.count = row;
        ++result.rowsWritten;
    }
    return result;
}

} // namespace tarnwick
