#include "quotes/quoteline.h"

#include "catalogue/table.h"
#include "core/conversions.h"

namespace tarnwick::QuoteLine {

int firstFreeRow(const Table &quote)
{
    int row = 1;
    while (row <= quote.rowCount() && !quote.get(row, PartNumber).isBlank())
        ++row;
    return row;
}

qint32 quantity(const Table &quote, int row, const QLocale &locale)
{
    const QString text = conv::toText(quote.get(row, Quantity), locale);
    return conv::toInt32(Cell(conv::toSingle(Cell(text), locale)), locale);
}

int lineCount(const Table &quote)
{
    return firstFreeRow(quote) - 1;
}

bool isLocked(const Table &quote, int row)
{
    if (row < 1 || row > quote.rowCount() || quote.fieldCount() < Locked)
        return false;
    const Cell &cell = quote.get(row, Locked);
    return cell.isNumber() && cell.asNumber() != 0;
}

void setLocked(Table &quote, int row, bool locked)
{
    if (row < 1 || row > quote.rowCount() || quote.fieldCount() < Locked)
        return;
    quote.put(row, Locked, locked ? Cell(qint32(1)) : Cell());
}

} // namespace tarnwick::QuoteLine
