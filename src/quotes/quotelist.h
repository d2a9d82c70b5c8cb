#pragma once

#include "platform/iprompts.h"

#include <QLocale>
#include <QString>

namespace tarnwick {

class Table;

/// The quote grid's columns (column index c shows quote field c + 1).
namespace QuoteGridColumn {
constexpr int PartNumber = 0;
constexpr int Product = 1;
constexpr int Price = 2;
constexpr int Quantity = 3;
constexpr int ExtPrice = 4;
constexpr int Count = 5;
} // namespace QuoteGridColumn

namespace QuoteList {

/// What became of "Add to Quote".
enum class AddStatus {
    Added, ///< the product is the quote's new last line
    QuoteFull, ///< every one of the 250 rows is used; nothing changed
    NoProduct, ///< the catalogue row does not exist; nothing changed
};

struct AddLineResult
{
    AddStatus status = AddStatus::NoProduct;
    int row = 0; ///< the quote row of the new line (1-based), 0 when nothing was added
};

/// The message for AddStatus::QuoteFull, shown with QuoteFullStyle.
inline constexpr char QuoteFullText[] =
    "The quote is full: it holds at most 250 lines. Remove a line before adding another "
    "product.";
constexpr int QuoteFullStyle = MsgStyle::Exclamation;
QString quoteFullMessage();

/// Adds catalogue row as a new line at the first free row: part number, name and list price
/// from the catalogue, quantity 1, extended price and the line's list price = the list price,
/// and includesText (what the Includes box shows) as the line's includes text.
AddLineResult addProduct(
    Table &quote, const Table &catalogue, int catalogueRow, const QString &includesText);

/// Re-prices quote row (1-based) after the user changed the cell in grid column changedColumn;
/// see the .cpp for the rule.
void repriceLine(
    Table &quote, const Table &catalogue, int row, int changedColumn, const QLocale &locale);

/// What the status bar says while a line of the quote holds a quantity or unit price that is
/// no number, or a quantity beyond those a line counts in, which the line's re-pricing counts
/// as 0 (the cell keeps what was typed), or is charged 0 because the catalogue gives no price
/// for it (its product is gone, or has no price at that quantity): the first such line, then
/// the numbers of the others; and, where a part number was emptied in the middle of the quote
/// (which ends there), how many lines below it are left out. Empty when there is none of these.
QString unreadNotice(const Table &quote, const Table &catalogue, const QLocale &locale);

/// "Remove Product": deletes quote row (1-based); the lines after it move up and the quote
/// keeps its 250 rows. False when row is outside the table.
bool removeLine(Table &quote, int row);

/// "Remove All": deletes the rows from the first up to and including the first free row, so
/// lines after a line without part number survive and move to the top; the quote keeps its
/// 250 rows. Afterwards the three total boxes show the empty text.
void removeAllLines(Table &quote);

/// The quote's lines as a table of their own: rows 1 to lineCount(), the quote's fields each.
Table linesOf(const Table &quote);

/// Opening a saved quote, and File → New with an empty table: the quote's lines become the rows
/// of lines (as many of its fields as the quote has), and every other row of the quote is
/// emptied. The quote keeps its size. False, with nothing changed, when lines holds more rows
/// than the quote.
bool replaceLines(Table &quote, const Table &lines);

} // namespace QuoteList

} // namespace tarnwick
