#pragma once

#include <QLocale>
#include <QString>

namespace tarnwick {

class Cell;
class Table;

/// The texts of the side boxes beside the product grid: list price, includes and notes.
struct SideBoxTexts
{
    QString price;
    QString includes;
    QString notes;
};

namespace ProductRow {

/// What the side boxes show for catalogue row: the price in the "currency" format, the
/// includes and notes texts.
SideBoxTexts sideBoxes(const Table &catalogue, int row, const QLocale &locale);

/// Loads the five price points of catalogue row into the schedule table (5 rows: quantity,
/// price).
void loadSchedule(const Table &catalogue, int row, Table &schedule);

/// Writes the side boxes and the price schedule back into catalogue row: the price as typed,
/// formatted with "currency" (a text that is no number is kept as typed), the includes and
/// notes texts, and the schedule's rows sorted by quantity into fields 6 to 15. DEL characters
/// are removed on the way in.
void writeBack(
    Table &catalogue, int row, const SideBoxTexts &boxes, Table &schedule, const QLocale &locale);

/// The cell a side box is stored as in field (Price, Includes or Notes) of a product: the price
/// as typed, formatted with "currency" (a text that is no number is kept as typed), the
/// includes and notes texts as they are; DEL characters are removed. Other fields: empty.
Cell sideBoxCell(int field, const SideBoxTexts &boxes, const QLocale &locale);

/// Sorts the schedule's five rows by quantity, ascending; rows without a quantity go last, so
/// a partial schedule keeps its points in the first slots.
void sortSchedule(Table &schedule, const QLocale &locale);

} // namespace ProductRow

} // namespace tarnwick
