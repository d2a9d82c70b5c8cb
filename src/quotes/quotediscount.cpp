#include "quotes/quotediscount.h"

#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/errortrap.h"
#include "quotes/quoteline.h"

namespace tarnwick::Discount {

namespace {

double number(const Table &quote, int row, int field, const QLocale &locale)
{
    return conv::toDouble(quote.get(row, field), locale);
}

/// Quantity (the whole number the line is priced at) × unit price; a product beyond the
/// double range raises the overflow error.
double extendedPrice(const Table &quote, int row, const QLocale &locale)
{
    return conv::checkedDouble(double(QuoteLine::quantity(quote, row, locale))
        * number(quote, row, QuoteLine::UnitPrice, locale));
}

/// Unit price := list price × multiplier, then extended price := quantity × unit price, each
/// as its own step: a list price that is no number leaves the unit price as it was, and the
/// extended price is still recomputed from it.
void discountLine(Table &quote, int row, float multiplier, const QLocale &locale)
{
    ErrorTrap trap;
    trap.step([&] {
        quote.put(row, QuoteLine::UnitPrice,
            discountedPrice(quote.get(row, QuoteLine::ListPrice), multiplier, locale));
    });
    trap.step([&] { quote.put(row, QuoteLine::ExtendedPrice, extendedPrice(quote, row, locale)); });
}

} // namespace

Cell discountedPrice(const Cell &listPrice, float multiplier, const QLocale &locale)
{
    if (listPrice.kind() == Cell::Kind::Single) {
        // Both factors have 24 significant bits: their product is exact in a double.
        return Cell(conv::toSingle(Cell(listPrice.asNumber() * double(multiplier)), locale));
    }
    return Cell(conv::checkedDouble(conv::toDouble(listPrice, locale) * double(multiplier)));
}

/// Only lines whose unit price is numeric are discounted; the others stay as they are.
void applyToAllLines(Table &quote, float multiplier, const QLocale &locale)
{
    const int end = QuoteLine::firstFreeRow(quote);
    for (int row = 1; row < end; ++row) {
        if (conv::isNumeric(quote.get(row, QuoteLine::UnitPrice), locale))
            discountLine(quote, row, multiplier, locale);
    }
}

/// Here the list price is the cell tested, not the unit price as in applyToAllLines: a line
/// with a typed price that is no number is still discounted from its list price.
void applyToLine(Table &quote, int row, float multiplier, const QLocale &locale)
{
    if (row < 1 || row > quote.rowCount())
        return;
    if (conv::isNumeric(quote.get(row, QuoteLine::ListPrice), locale))
        discountLine(quote, row, multiplier, locale);
}

void resetPrices(Table &quote, const QLocale &locale, LockedLines locked)
{
    const int end = QuoteLine::firstFreeRow(quote);
    for (int row = 1; row < end; ++row) {
        if (QuoteLine::isLocked(quote, row)) {
            if (locked == LockedLines::Keep)
                continue;
            QuoteLine::setLocked(quote, row, false);
        }
        resetLine(quote, row, locale);
    }
}

void resetLine(Table &quote, int row, const QLocale &locale)
{
    if (row < 1 || row > quote.rowCount())
        return;
    quote.put(row, QuoteLine::UnitPrice, quote.get(row, QuoteLine::ListPrice));
    ErrorTrap trap;
    trap.step([&] { quote.put(row, QuoteLine::ExtendedPrice, extendedPrice(quote, row, locale)); });
}

bool anyLocked(const Table &quote)
{
    const int end = QuoteLine::firstFreeRow(quote);
    for (int row = 1; row < end; ++row) {
        if (QuoteLine::isLocked(quote, row))
            return true;
    }
    return false;
}

} // namespace tarnwick::Discount
