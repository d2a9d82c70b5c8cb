#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace tarnwick {

class Table;

/// The next cheaper break of a quote line: from quantity on, price each; moreUnits more units
/// than the line has reach it, and the line then saves saving.
struct NextBreak
{
    QString partNumber;
    qint32 quantity = 0;
    float price = 0;
    qint32 moreUnits = 0;
    double saving = 0;
};

/// The price of a product at one quantity, as a quote line of that quantity would get it.
struct QuantityPrice
{
    qint32 quantity = 0;
    float unitPrice = 0; ///< SetPrice's price, read as the quote reads it
    double extended = 0; ///< unit price × quantity
    /// False when the catalogue gives no usable price at this quantity (no such product, a
    /// point without its price, "call"): a quote line would be charged $0.00 for it.
    bool priced = true;
    /// False when the catalogue holds no such product (deleted since it was quoted).
    bool inCatalogue = true;
};

/// What became of the quantities typed into "Price at Quantities".
struct QuantityEntry
{
    std::vector<qint32> quantities; ///< the quantities read, in the order typed
    QString error; ///< why an entry is no quantity; empty when every entry is one
};

/// Help with the price points of a quote line: the next break and the volume prices the quote
/// document may show under a line. Both use the breaks a quote really gets (PriceLadder).
namespace QuoteAids {

/// The next break of quote row row: the lowest break above the line's quantity whose price is
/// below the line's unit price. Reaching it saves (unit price − break price) × its quantity,
/// rounded to the cent, on the line. None for a locked line (its price stays), a line whose
/// product is not in the catalogue, or when no break above the quantity is cheaper.
std::optional<NextBreak> nextBreak(
    const Table &quote, const Table &catalogue, int row, const QLocale &locale);

/// "Next break for TW-100: 25 or more at $10.95 each — 3 more units save $23.75 on this
/// line."; the empty text when the line has no next break.
QString nextBreakText(const Table &quote, const Table &catalogue, int row, const QLocale &locale);

/// The document's lines for quote row row when volume prices are shown: one per break above
/// the line's quantity that is cheaper than the line's unit price and than the break before it
/// ("Order 25 or more: $10.95 each."); none for a locked line.
QStringList volumePriceLines(
    const Table &quote, const Table &catalogue, int row, const QLocale &locale);

/// At most this many further quantities are kept with a line.
constexpr int MaxQuantities = 5;

/// The further quantities kept with quote row row (empty when none or unreadable).
std::vector<qint32> quantitiesOf(const Table &quote, int row);
/// The stored form of quantities: "100;500;1000" (empty for none).
QString quantitiesText(const std::vector<qint32> &quantities);
/// Reads typed entries (blank ones are skipped): each a whole number from 1 to 2,147,483,647,
/// at most MaxQuantities of them.
QuantityEntry readQuantities(const QStringList &entries, const QLocale &locale);

/// Why prices cannot be kept with a line: "The catalogue gives no price at 10: …" for the
/// first quantity without a usable price, or that the product is no longer in the catalogue;
/// empty when every one has one.
QString unpricedQuantity(const std::vector<QuantityPrice> &prices, const QLocale &locale);
/// The unit and extended price of the product partNumber at each quantity (SetPrice).
std::vector<QuantityPrice> pricesAt(const Table &catalogue, const QString &partNumber,
    const std::vector<qint32> &quantities, const QLocale &locale);
/// The prices of quote row row at its kept quantities.
std::vector<QuantityPrice> linePricesAt(
    const Table &quote, const Table &catalogue, int row, const QLocale &locale);

} // namespace QuoteAids

} // namespace tarnwick
