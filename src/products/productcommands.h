#pragma once

#include "catalogue/table.h"

#include <QLatin1String>
#include <QList>
#include <QLocale>
#include <QString>

namespace tarnwick {

class Products;

/// The product commands of the main window's toolbar and "&Products" menu that change the
/// catalogue table: insert, delete one, delete all, and the grid's sort. Each keeps the
/// products' Count equal to the table's row count. The questions are asked by the window;
/// their texts, titles and styles are kept here.
namespace ProductCommands {

inline constexpr QLatin1String DeleteQuestion { "Delete this product?" };
inline constexpr QLatin1String DeleteAllQuestion { "Delete All Products?" };
inline constexpr QLatin1String DeleteTitle { "Delete" };
inline constexpr QLatin1String ExportQuestion {
    "Do you want to export the products to an Excel readable file?"
};
inline constexpr QLatin1String ExportTitle { "Export to File" };
inline constexpr QLatin1String ImportQuestion {
    "Do you want to modify the products with an Excel spreadsheet?"
};
inline constexpr QLatin1String ImportTitle { "Input Excel Data" };

/// Yes/No with the question icon.
constexpr int DeleteStyle = 36;
/// The texts "32" and "4" joined and read as a number: Yes/No, information icon (64), the
/// second button (No) as default (256). Kept on purpose; it is not the 36 of the other
/// questions.
constexpr int ExportStyle = 324;
/// Yes/No without an icon.
constexpr int ImportStyle = 4;

/// Inserts one empty product row (all fifteen cells Empty) at table row currentRow; that row
/// and the rows after it move down. An empty table, or a currentRow below 1, gives row 1; a
/// currentRow past the last row appends. Count grows by one. Returns the new row's index.
/// The table has fifteen fields afterwards.
int insertProduct(Table &catalogue, Products &products, int currentRow);

/// Removes table row row when it exists (1..rowCount) and lowers Count by one; returns false
/// and changes nothing otherwise (e.g. on an empty grid).
bool deleteProduct(Table &catalogue, Products &products, int row);

/// Empties the catalogue (no rows, fifteen fields) and sets Count to 0, when Count is above 0;
/// with no products it does nothing.
void deleteAll(Table &catalogue, Products &products);

/// How the grid's sort compares a field: as text for the part number, the name, the notes and
/// the includes (1, 2, 4, 5); by numeric value for the list price and the price points (3 and
/// 6..15), so "$12.50" sorts as 12.5 and "100" after "20". Other field numbers give Text.
Table::SortKind sortKindOfField(int field);

/// The grid's sort: re-dimensions the table to Count rows × 15 fields keeping its contents (a
/// larger Count gives empty rows at the end, a smaller one drops the excess rows), then sorts
/// rows 1..Count ascending and stably on field with sortKindOfField(field).
void sortCatalogue(Table &catalogue, const Products &products, int field, const QLocale &locale);

/// The first catalogue row whose fifteen fields equal those of row 1 of product (one product
/// row, as taken before a sort); 0 when there is none.
int findProduct(const Table &catalogue, const Table &product);

/// Another catalogue row with the part number of row (quotes and imports find a product by its
/// part number, and take the first); 0 when the number is empty or no other row has it.
int otherRowWithPartNumber(const Table &catalogue, int row);

/// What the status bar says when row's part number was typed and another product has it
/// already ("Part number A-100 is already used by "Anchor". …"); empty when none has.
QString partNumberTakenText(const Table &catalogue, int row, const QLocale &locale);

/// The rows the catalogue file would not keep although something was typed into them: no part
/// number, but a name, a price, a note or a price point (a fresh row left empty is no product
/// yet). Row numbers, in order.
QList<int> rowsWithoutPartNumber(const Table &catalogue, const QLocale &locale);

/// What the status bar says about row while it is worked on: its part number is another
/// product's, or it has none and is not kept; empty when neither.
QString rowStandingText(const Table &catalogue, int row, const QLocale &locale);

/// "Catalogue saved" with, when products were left out for want of a part number, how many.
QString savedText(int withoutPartNumber);

} // namespace ProductCommands

} // namespace tarnwick
