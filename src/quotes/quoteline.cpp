#include "quotes/quoteline.h"

#include "catalogue/table.h"

namespace tarnwick::QuoteLine {

int firstFreeRow(const Table &quote)
{
    int row = 1;
    while (row <= quote.rowCount() && !quote.get(row, PartNumber).isBlank())
        ++row;
    return row;
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
