#include "catalogue/cataloguewriter.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"

#include <QStringView>

namespace tarnwick {

namespace {

constexpr QStringView FieldEnd = u"\x7f\x7f\x7f";
constexpr QStringView LineEnd = u"\r\n";

/// A cell's text in the file. Null joins a line as the empty text, as it did when the line
/// was built by joining the cells' texts.
QString fileText(const Cell &cell, const QLocale &locale)
{
    return cell.isNull() ? QString() : conv::toText(cell, locale);
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
            result.text += fileText(table.get(row, field), locale);
            result.text += FieldEnd;
        }
        result.text += LineEnd;
        result.count = row;
        ++result.rowsWritten;
    }
    return result;
}

} // namespace tarnwick
