#include "quotes/pricesource.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/errortrap.h"
#include "products/discount.h"
#include "products/priceschedule.h"
#include "quotes/quotediscount.h"
#include "quotes/quotegridmodel.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"

#include <array>

namespace tarnwick::PriceSources {

namespace {

struct SourceName
{
    PriceSource source;
    const char *stored;
    const char *caption;
};

constexpr std::array<SourceName, 4> SourceNames { {
    { PriceSource::ListPrice, "list", "list price" },
    { PriceSource::PricePoint, "point", "price point" },
    { PriceSource::Discount, "discount", "discount" },
    { PriceSource::Typed, "typed", "typed" },
} };

std::optional<double> numberIn(const Cell &cell, const QLocale &locale)
{
    if (!conv::isNumeric(cell, locale))
        return std::nullopt;
    std::optional<double> number;
    ErrorTrap trap;
    trap.step([&] { number = conv::toDouble(cell, locale); });
    return number;
}

/// Two prices are the same when both are numbers equal at single precision (the precision a
/// re-priced unit price is held in), or, when either is no number, when their texts are equal.
bool samePrice(const Cell &a, const Cell &b, const QLocale &locale)
{
    const auto x = numberIn(a, locale);
    const auto y = numberIn(b, locale);
    if (x && y)
        return float(*x) == float(*y);
    if (x || y)
        return false;
    return (a.isNull() ? QString() : conv::toText(a, locale))
        == (b.isNull() ? QString() : conv::toText(b, locale));
}

QString partNumberOf(const Table &quote, int row, const QLocale &locale)
{
    const Cell &cell = quote.get(row, QuoteLine::PartNumber);
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

/// The catalogue row of a part number as SetPrice finds it (the first match); 0 for none.
int catalogueRowOf(const Table &catalogue, const QString &number, const QLocale &locale)
{
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        const Cell &cell = catalogue.get(row, ProductRecord::PartNumber);
        if (!cell.isNull() && conv::toText(cell, locale) == number)
            return row;
    }
    return 0;
}

/// What SetPrice gives the line for its quantity, as the single a re-priced line holds; none
/// when the product is not in the catalogue or its price is no number.
std::optional<float> catalogueUnitPrice(
    const Table &quote, int row, const Table &catalogue, const QLocale &locale)
{
    std::optional<float> price;
    ErrorTrap trap;
    trap.step([&] {
        const qint32 quantity = QuoteLine::quantity(quote, row, locale);
        const PriceLookup lookup =
            PriceSchedule::SetPrice(catalogue, partNumberOf(quote, row, locale), quantity, locale);
        if (lookup.found)
            price = conv::toSingle(Cell(lookup.price), locale);
    });
    return price;
}

/// Whether unit is list × the multiplier of one of the discount rates, as a discount writes it.
bool isDiscounted(const Cell &unit, const Cell &list, const QLocale &locale)
{
    const auto unitNumber = numberIn(unit, locale);
    if (!unitNumber || !numberIn(list, locale))
        return false;
    for (const QString &choice : Discount::choices()) {
        const float multiplier = Discount::multiplierFor(choice);
        if (multiplier == 1.0f)
            continue;
        std::optional<double> discounted;
        ErrorTrap trap;
        trap.step(
            [&] { discounted = Discount::discountedPrice(list, multiplier, locale).asNumber(); });
        if (discounted && *unitNumber == *discounted)
            return true;
    }
    return false;
}

bool sameLine(const Table &a, int rowA, const Table &b, int rowB)
{
    const int fields = qMin(a.fieldCount(), b.fieldCount());
    for (int field = 1; field <= fields; ++field) {
        if (!(a.get(rowA, field) == b.get(rowB, field)))
            return false;
    }
    return true;
}

} // namespace

QString storedName(PriceSource source)
{
    for (const SourceName &name : SourceNames) {
        if (name.source == source)
            return QString::fromLatin1(name.stored);
    }
    return QStringLiteral("typed");
}

std::optional<PriceSource> fromStoredName(const QString &name)
{
    for (const SourceName &entry : SourceNames) {
        if (name == QLatin1String(entry.stored))
            return entry.source;
    }
    return std::nullopt;
}

QString caption(PriceSource source)
{
    for (const SourceName &name : SourceNames) {
        if (name.source == source)
            return QString::fromLatin1(name.caption);
    }
    return {};
}

/// Source rule, tested in this order: a unit price equal to the line's list price is the
/// list price; one equal to what SetPrice gives for the line's quantity today is a price
/// point; one equal to the list price times the multiplier of one of the discount rates is a
/// discount; anything else (a typed price, a price the catalogue no longer gives) counts as
/// typed.
PriceSource infer(const Table &quote, int row, const Table &catalogue, const QLocale &locale)
{
    const Cell &unit = quote.get(row, QuoteLine::UnitPrice);
    const Cell &list = quote.get(row, QuoteLine::ListPrice);
    if (!numberIn(unit, locale))
        return PriceSource::Typed;
    if (samePrice(unit, list, locale))
        return PriceSource::ListPrice;
    const auto fromCatalogue = catalogueUnitPrice(quote, row, catalogue, locale);
    if (fromCatalogue && float(*numberIn(unit, locale)) == *fromCatalogue)
        return PriceSource::PricePoint;
    if (isDiscounted(unit, list, locale))
        return PriceSource::Discount;
    return PriceSource::Typed;
}

std::vector<PriceSource> sourcesOf(const Table &quote, const Table &catalogue, const Table &known,
    const std::vector<PriceSource> &knownSources, const QLocale &locale)
{
    const int lines = QuoteLine::lineCount(quote);
    std::vector<bool> used(std::size_t(known.rowCount()), false);
    std::vector<PriceSource> sources;
    sources.reserve(std::size_t(qMax(lines, 0)));
    for (int row = 1; row <= lines && row <= quote.rowCount(); ++row) {
        std::optional<PriceSource> source;
        for (int k = 1; k <= known.rowCount() && k <= int(knownSources.size()); ++k) {
            if (!used[std::size_t(k - 1)] && sameLine(quote, row, known, k)) {
                used[std::size_t(k - 1)] = true;
                source = knownSources[std::size_t(k - 1)];
                break;
            }
        }
        sources.push_back(source ? *source : infer(quote, row, catalogue, locale));
    }
    return sources;
}

QList<int> pricedLinesWithoutProduct(
    const Table &quote, const Table &catalogue, const QLocale &locale)
{
    // The catalogue is read once, whatever the number of lines.
    QSet<QString> wanted;
    const int lines = std::min(QuoteLine::lineCount(quote), quote.rowCount());
    for (int row = 1; row <= lines; ++row) {
        if (const QString part = partNumberOf(quote, row, locale); !part.isEmpty())
            wanted.insert(part);
    }
    QSet<QString> held;
    for (int row = 1; row <= catalogue.rowCount() && held.size() < wanted.size(); ++row) {
        const Cell &cell = catalogue.get(row, ProductRecord::PartNumber);
        if (cell.isNull())
            continue;
        if (const QString part = conv::toText(cell, locale); wanted.contains(part))
            held.insert(part);
    }
    QList<int> rows;
    for (int row = 1; row <= lines; ++row) {
        const QString part = partNumberOf(quote, row, locale);
        const auto unit = numberIn(quote.get(row, QuoteLine::UnitPrice), locale);
        if (!part.isEmpty() && !held.contains(part) && unit && *unit != 0)
            rows.append(row);
    }
    return rows;
}

QList<int> linesWithOtherPrices(const Table &quote, const std::vector<PriceSource> &sources,
    const Table &catalogue, const QLocale &locale)
{
    QList<int> rows;
    const int lines = qMin(QuoteLine::lineCount(quote), int(sources.size()));
    for (int row = 1; row <= lines && row <= quote.rowCount(); ++row) {
        const PriceSource source = sources[std::size_t(row - 1)];
        // A locked price was agreed with the customer: today's catalogue does not change it.
        if ((source != PriceSource::ListPrice && source != PriceSource::PricePoint)
            || QuoteLine::isLocked(quote, row))
            continue;
        const int product = catalogueRowOf(catalogue, partNumberOf(quote, row, locale), locale);
        const auto unitToday = catalogueUnitPrice(quote, row, catalogue, locale);
        if (product == 0 || !unitToday)
            continue;
        // A line at its list price stays there (Reset Prices put it there, or no price point
        // applied): only today's list price matters to it, not a price point its quantity
        // reaches.
        // A line at a price point costs what it did while that point's price stands: a new
        // list price changes only the discount its document shows beside it, no price.
        const auto unit = numberIn(quote.get(row, QuoteLine::UnitPrice), locale);
        const bool unitDiffers =
            source != PriceSource::ListPrice && (!unit || float(*unit) != *unitToday);
        const bool listDiffers = source == PriceSource::ListPrice
            && !samePrice(quote.get(row, QuoteLine::ListPrice),
                catalogue.get(product, ProductRecord::Price), locale);
        if (unitDiffers || listDiffers)
            rows.append(row);
    }
    return rows;
}

void updateFromCatalogue(Table &quote, const Table &catalogue, const QList<int> &rows,
    const std::vector<PriceSource> &sources, const QLocale &locale)
{
    for (const int row : rows) {
        if (row < 1 || row > quote.rowCount())
            continue;
        const int product = catalogueRowOf(catalogue, partNumberOf(quote, row, locale), locale);
        if (product == 0)
            continue;
        quote.put(row, QuoteLine::ListPrice, catalogue.get(product, ProductRecord::Price));
        const bool atListPrice =
            row <= int(sources.size()) && sources[std::size_t(row - 1)] == PriceSource::ListPrice;
        if (atListPrice) {
            Discount::resetLine(quote, row, locale);
            // The extended price worked out as a quantity typed into the line works it out,
            // from the unit price in single precision: $104,999.99 × 32,766 is then the same
            // whichever way the line got it.
            QuoteList::repriceLine(quote, catalogue, row, QuoteGridColumn::Price, locale);
        } else {
            QuoteList::repriceLine(quote, catalogue, row, QuoteGridColumn::Quantity, locale);
        }
    }
}

} // namespace tarnwick::PriceSources
