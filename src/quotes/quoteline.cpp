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

} // namespace tarnwick::QuoteLine
