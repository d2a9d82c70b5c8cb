#pragma once

#include <QtGlobal>

class QLocale;

namespace tarnwick {

class Table;

namespace QuoteLine {

// The fields of one quote line, in the fixed order of the quote table. Fields 1 to 5 are the
// quote grid's columns; the list price feeds the list total and every discount, the includes
// text the quote document; the lock and the further quantities are kept with the line, so
// they move, go and come back with it and are saved with it.
constexpr int PartNumber = 1;
constexpr int ProductName = 2;
constexpr int UnitPrice = 3;
constexpr int Quantity = 4;
constexpr int ExtendedPrice = 5;
constexpr int ListPrice = 6;
constexpr int Includes = 7;
/// 1 when the line's unit price is locked: a quantity change keeps it (empty otherwise).
constexpr int Locked = 8;
/// The further quantities the line is priced at, as stored text ("100;500;1000"; empty
/// when there are none).
constexpr int Quantities = 9;
constexpr int FieldCount = 9;
/// The quote table is created with room for exactly this many lines.
constexpr int MaxLines = 250;

/// The first free row of the quote: the quote keeps no line count, its lines are rows 1, 2, …
/// up to (not including) the first row whose part number is blank. When every row is used the
/// result is one past the last row.
int firstFreeRow(const Table &quote);

/// The number of lines of the quote, firstFreeRow() − 1.
int lineCount(const Table &quote);

/// Quote row row's quantity, the one number every price and total of the line is worked
/// out from: the cell's text read as a single, rounded half to even to a 32-bit whole
/// number. Raises 13 when the cell holds no number and 6 when it lies beyond that range.
qint32 quantity(const Table &quote, int row, const QLocale &locale);

/// Whether quote row row's unit price is locked (a table without the field has no locks).
bool isLocked(const Table &quote, int row);
/// Locks or unlocks quote row row's unit price.
void setLocked(Table &quote, int row, bool locked);

} // namespace QuoteLine

} // namespace tarnwick
