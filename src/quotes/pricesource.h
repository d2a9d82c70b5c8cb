#pragma once

#include <QList>
#include <QLocale>
#include <QString>

#include <optional>
#include <vector>

namespace tarnwick {

class Table;

/// How the unit price of a quote line came about. A saved quote keeps it with every line, so
/// that opening it later can tell prices taken from the catalogue (which may have changed
/// since) from prices the user chose.
enum class PriceSource {
    ListPrice, ///< the product's list price
    PricePoint, ///< the price of a price point the quantity reached (SetPrice)
    Discount, ///< the list price less one of the discount rates
    Typed, ///< a price typed into the quote, or one that fits none of the above
};

namespace PriceSources {

/// The word a saved quote stores: "list", "point", "discount", "typed".
QString storedName(PriceSource source);
/// The source of a stored word; none for any other text.
std::optional<PriceSource> fromStoredName(const QString &name);
/// In words for the user: "list price", "price point", "discount", "typed".
QString caption(PriceSource source);

/// Tells how quote row's unit price came about, from the line and today's catalogue (see the
/// .cpp for the rule).
PriceSource infer(const Table &quote, int row, const Table &catalogue, const QLocale &locale);

/// The sources of every line of quote (rows 1 to its line count). A line equal in all its
/// fields to a line of known (the lines of the quote as last saved) keeps that line's source,
/// each known line matching once; the others are inferred.
std::vector<PriceSource> sourcesOf(const Table &quote, const Table &catalogue, const Table &known,
    const std::vector<PriceSource> &knownSources, const QLocale &locale);

/// The rows (1-based) of the lines whose part number today's catalogue does not hold (its
/// product was deleted or renumbered since the quote was saved) and that still charge a price,
/// in order. Lines without a part number are not among them, nor lines at 0, which
/// QuoteList::unreadNotice names.
QList<int> pricedLinesWithoutProduct(
    const Table &quote, const Table &catalogue, const QLocale &locale);

/// The rows (1-based) of the lines priced from the catalogue whose price is another in today's
/// catalogue: for a line at its list price that list price, for a line at a price point the
/// price its quantity gets (a new list price beside an unchanged price point is no other price).
/// Lines of products the catalogue no longer has are not among them: they cannot be priced
/// from it.
QList<int> linesWithOtherPrices(const Table &quote, const std::vector<PriceSource> &sources,
    const Table &catalogue, const QLocale &locale);

/// Prices the given rows from today's catalogue: the list price is the product's, the unit price
/// what SetPrice gives for the line's quantity (as a typed quantity re-prices a line), or for a
/// line whose source is the list price that list price, and the extended price unit price ×
/// quantity.
void updateFromCatalogue(Table &quote, const Table &catalogue, const QList<int> &rows,
    const std::vector<PriceSource> &sources, const QLocale &locale);

} // namespace PriceSources

} // namespace tarnwick
