#pragma once

#include "commands/edithistory.h"
#include "quotes/quotediscount.h"
#include "quotes/quotelist.h"

#include <vector>

namespace tarnwick {

class Table;

/// The changes of the quote a window asks for. Each makes one step of the history (or none,
/// when it would change nothing); before is where the quote grid stands when it is asked for,
/// which an undo of the step restores. The rules are those of QuoteList and Discount, applied
/// to the quote through the step.
namespace QuoteEdits {

/// "Add to &Quote": catalogue row as a new line (QuoteList::addProduct).
QuoteList::AddLineResult addProduct(
    EditHistory &history, const QuoteView &before, int catalogueRow, const QString &includesText);

/// "Remove &Product": removes quote row (1-based). False when the row does not exist.
bool removeLine(EditHistory &history, const QuoteView &before, int row);

/// "Remove &All" (QuoteList::removeAllLines); afterwards the total boxes are empty.
void removeAll(EditHistory &history, const QuoteView &before);

/// A text typed into grid column column of quote row row, and the re-pricing of the line
/// that follows a quantity or a price (QuoteList::repriceLine), as one step. False when the
/// cell does not exist.
bool setCell(
    EditHistory &history, const QuoteView &before, int row, int column, const QString &text);

/// "&Reset Prices"; locked lines kept or unlocked and reset as locked says.
void resetPrices(EditHistory &history, const QuoteView &before,
    Discount::LockedLines locked = Discount::LockedLines::Unlock);

/// "Price at Quantities": the further quantities kept with quote row row ("Price at Quantities
/// TW-100"). False when the row is no line of the quote or already has them.
bool setQuantities(
    EditHistory &history, const QuoteView &before, int row, const std::vector<qint32> &quantities);

/// "Lock Price": quote row row's unit price locked or unlocked ("Lock Price TW-100", "Unlock
/// Price TW-100"). False when the row is no line of the quote or already so.
bool setLocked(EditHistory &history, const QuoteView &before, int row, bool locked);

/// "Discount &All" with the multiplier of the choice (for the step's name, "5%").
void discountAll(
    EditHistory &history, const QuoteView &before, float multiplier, const QString &choice);

/// "Discount &Product": quote row row discounted.
void discountLine(EditHistory &history, const QuoteView &before, int row, float multiplier,
    const QString &choice);

/// The whole quote replaced by quote (a quote opened, a new quote started), named text; after
/// is where the quote grid goes.
bool replaceQuote(EditHistory &history, const QuoteView &before, const QuoteView &after,
    Table quote, const QString &text);

} // namespace QuoteEdits

} // namespace tarnwick
