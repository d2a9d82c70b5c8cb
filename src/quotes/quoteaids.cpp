#include "quotes/quoteaids.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "core/vberror.h"
#include "products/priceladder.h"
#include "products/priceschedule.h"
#include "quotes/quoteline.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tarnwick::QuoteAids {

namespace {

/// What a line is: its product's catalogue row (the first with its part number, as SetPrice
/// finds it), its quantity and its unit price as the quote holds them.
struct LineFacts
{
    QString partNumber;
    int productRow = 0;
    qint32 quantity = 0;
    float unitPrice = 0;
};

std::optional<LineFacts> factsOf(
    const Table &quote, const Table &catalogue, int row, const QLocale &locale)
{
    if (row < 1 || row >= QuoteLine::firstFreeRow(quote) || row > quote.rowCount())
        return std::nullopt;
    LineFacts facts;
    try {
        facts.partNumber = conv::toText(quote.get(row, QuoteLine::PartNumber), locale);
        facts.quantity = QuoteLine::quantity(quote, row, locale);
        facts.unitPrice = conv::toSingle(quote.get(row, QuoteLine::UnitPrice), locale);
    } catch (const VbError &) {
        return std::nullopt;
    }
    for (int product = 1; product <= catalogue.rowCount(); ++product) {
        const Cell &part = catalogue.get(product, ProductRecord::PartNumber);
        if (!part.isNull() && conv::toText(part, locale) == facts.partNumber) {
            facts.productRow = product;
            return facts;
        }
    }
    return std::nullopt;
}

QString money(double amount, const QLocale &locale)
{
    return format(Cell(amount), QStringLiteral("Currency"), locale);
}

QString quantity(qint32 amount, const QLocale &locale)
{
    return format(Cell(amount), QStringLiteral("#,###"), locale);
}

} // namespace

std::optional<NextBreak> nextBreak(
    const Table &quote, const Table &catalogue, int row, const QLocale &locale)
{
    if (QuoteLine::isLocked(quote, row))
        return std::nullopt;
    const auto facts = factsOf(quote, catalogue, row, locale);
    // A quantity below zero (goods taken back) reaches no break by ordering more.
    if (!facts || facts->quantity < 0)
        return std::nullopt;
    for (const PriceBreak &entry : PriceLadder::breaks(catalogue, facts->productRow, locale)) {
        if (entry.quantity <= facts->quantity || !(entry.price < facts->unitPrice))
            continue;
        const double saving = conv::round(
            (double(facts->unitPrice) - double(entry.price)) * double(entry.quantity), 2);
        return NextBreak { facts->partNumber, entry.quantity, entry.price,
            entry.quantity - facts->quantity, saving };
    }
    return std::nullopt;
}

QString nextBreakText(const Table &quote, const Table &catalogue, int row, const QLocale &locale)
{
    const auto next = nextBreak(quote, catalogue, row, locale);
    if (!next)
        return QString();
    const QString units = next->moreUnits == 1
        ? QStringLiteral("1 more unit saves")
        : QStringLiteral("%1 more units save").arg(quantity(next->moreUnits, locale));
    return QStringLiteral("Next break for %1: %2 or more at %3 each \u2014 %4 %5 on this line.")
        .arg(next->partNumber, quantity(next->quantity, locale), money(next->price, locale), units,
            money(next->saving, locale));
}

QStringList volumePriceLines(
    const Table &quote, const Table &catalogue, int row, const QLocale &locale)
{
    QStringList lines;
    // A locked line is charged its price whatever the quantity: no break would apply.
    if (QuoteLine::isLocked(quote, row))
        return lines;
    const auto facts = factsOf(quote, catalogue, row, locale);
    if (!facts)
        return lines;
    float below = facts->unitPrice;
    for (const PriceBreak &entry : PriceLadder::breaks(catalogue, facts->productRow, locale)) {
        if (entry.quantity <= facts->quantity || !(entry.price < below))
            continue;
        lines << QStringLiteral("Order %1 or more: %2 each.")
                     .arg(quantity(entry.quantity, locale), money(entry.price, locale));
        below = entry.price;
    }
    return lines;
}

std::vector<qint32> quantitiesOf(const Table &quote, int row)
{
    std::vector<qint32> quantities;
    if (row < 1 || row > quote.rowCount() || quote.fieldCount() < QuoteLine::Quantities)
        return quantities;
    const Cell &cell = quote.get(row, QuoteLine::Quantities);
    if (!cell.isText())
        return quantities;
    for (const QString &part : cell.asText().split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        bool ok = false;
        const qint32 quantity = part.trimmed().toInt(&ok);
        if (ok && quantity > 0 && int(quantities.size()) < MaxQuantities)
            quantities.push_back(quantity);
    }
    return quantities;
}

QString quantitiesText(const std::vector<qint32> &quantities)
{
    QStringList parts;
    for (const qint32 quantity : quantities)
        parts << QString::number(quantity);
    return parts.join(QLatin1Char(';'));
}

QuantityEntry readQuantities(const QStringList &entries, const QLocale &locale)
{
    QuantityEntry entry;
    for (const QString &typed : entries) {
        const QString text = typed.trimmed();
        if (text.isEmpty())
            continue;
        const auto number = conv::parseNumber(text, locale);
        if (!number || *number != std::floor(*number) || *number < 1 || *number > 2147483647.0) {
            entry.error =
                QStringLiteral("\"%1\" is no quantity: enter a whole number of 1 or more.")
                    .arg(text);
            return entry;
        }
        if (std::find(entry.quantities.cbegin(), entry.quantities.cend(), qint32(*number))
            != entry.quantities.cend()) {
            entry.error =
                QStringLiteral("\"%1\" is entered twice: enter each quantity once.").arg(text);
            return entry;
        }
        if (int(entry.quantities.size()) == MaxQuantities) {
            entry.error = QStringLiteral("Enter at most %1 quantities.").arg(MaxQuantities);
            return entry;
        }
        entry.quantities.push_back(qint32(*number));
    }
    return entry;
}

std::vector<QuantityPrice> pricesAt(const Table &catalogue, const QString &partNumber,
    const std::vector<qint32> &quantities, const QLocale &locale)
{
    std::vector<QuantityPrice> prices;
    for (const qint32 quantity : quantities) {
        const PriceLookup lookup = PriceSchedule::SetPrice(catalogue, partNumber, quantity, locale);
        const float unit = PriceSchedule::chargedPrice(lookup.price, locale);
        const bool priced = lookup.found && PriceSchedule::isUsablePrice(lookup.price, locale);
        prices.push_back({ quantity, unit, double(unit) * double(quantity), priced, lookup.found });
    }
    return prices;
}

QString unpricedQuantity(const std::vector<QuantityPrice> &prices, const QLocale &locale)
{
    for (const QuantityPrice &price : prices) {
        // No price point of a product that is gone can be given its price.
        if (!price.inCatalogue)
            return QStringLiteral("The product is no longer in the catalogue: no quantity can be "
                                  "priced for it.");
        if (!price.priced) {
            return QStringLiteral("The catalogue gives no price at %1: give that price point "
                                  "its price, or leave the quantity out.")
                .arg(quantity(price.quantity, locale));
        }
    }
    return QString();
}

std::vector<QuantityPrice> linePricesAt(
    const Table &quote, const Table &catalogue, int row, const QLocale &locale)
{
    const std::vector<qint32> quantities = quantitiesOf(quote, row);
    if (quantities.empty() || row < 1 || row > quote.rowCount())
        return {};
    const Cell &part = quote.get(row, QuoteLine::PartNumber);
    std::vector<QuantityPrice> prices = pricesAt(
        catalogue, part.isNull() ? QString() : conv::toText(part, locale), quantities, locale);
    // The customer's document offers no quantity at $0.00 (the price point lost its price
    // after the quantities were kept).
    std::erase_if(prices, [](const QuantityPrice &price) { return !price.priced; });
    return prices;
}

} // namespace tarnwick::QuoteAids
