#include "products/discount.h"

#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/errortrap.h"
#include "products/quotetable.h"

#include <array>
#include <utility>

namespace tarnwick::Discount {

namespace {

struct Rate
{
    const char *text;
    float rate; ///< held as a single: "1%" is the single nearest 0.01
};

constexpr std::array<Rate, 14> Rates { {
    { "List Price", 0.0f },
    { "1%", 0.01f },
    { "2%", 0.02f },
    { "3%", 0.03f },
    { "4%", 0.04f },
    { "5%", 0.05f },
    { "6%", 0.06f },
    { "7%", 0.07f },
    { "8%", 0.08f },
    { "9%", 0.09f },
    { "10%", 0.10f },
    { "15%", 0.15f },
    { "20%", 0.20f },
    { "25%", 0.25f },
} };

double number(const Table &quote, int row, int field, const QLocale &locale)
{
    return conv::toDouble(quote.get(row, field), locale);
}

/// Unit price := list price × multiplier, then extended price := quantity × unit price, each
/// as its own step: a list price that is no number leaves the unit price as it was, and the
/// extended price is still recomputed from it.
void discountLine(Table &quote, int row, float multiplier, const QLocale &locale)
{
    ErrorTrap trap;
    trap.step([&] {
        quote.put(row, QuoteLine::UnitPrice,
            number(quote, row, QuoteLine::ListPrice, locale) * double(multiplier));
    });
    trap.step([&] {
        quote.put(row, QuoteLine::ExtendedPrice,
            conv::checkedDouble(number(quote, row, QuoteLine::Quantity, locale)
                * number(quote, row, QuoteLine::UnitPrice, locale)));
    });
}

} // namespace

const QStringList &choices()
{
    static const QStringList list { QStringLiteral("1%"), QStringLiteral("2%'"),
        QStringLiteral("3%"), QStringLiteral("4%"), QStringLiteral("5%"), QStringLiteral("6%"),
        QStringLiteral("7%"), QStringLiteral("8%"), QStringLiteral("9%"), QStringLiteral("10%"),
        QStringLiteral("15%"), QStringLiteral("20%"), QStringLiteral("25%") };
    return list;
}

float rateOf(const QString &text)
{
    for (const Rate &entry : Rates) {
        if (text == QLatin1String(entry.text))
            return entry.rate;
    }
    return 0.0f;
}

/// Multiplier rule: 1 − rate is computed in double precision and then stored as a single, so
/// "1%" multiplies by the single nearest 0.99 (0.99000001). Discounted prices are list price ×
/// this single, computed in double precision and not rounded afterwards.
float multiplierOf(float rate)
{
    return static_cast<float>(1.0 - double(rate));
}

float multiplierFor(const QString &text)
{
    return multiplierOf(rateOf(text));
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

void resetPrices(Table &quote, const QLocale &locale)
{
    const int end = QuoteLine::firstFreeRow(quote);
    for (int row = 1; row < end; ++row) {
        quote.put(row, QuoteLine::UnitPrice, quote.get(row, QuoteLine::ListPrice));
        ErrorTrap trap;
        trap.step([&] {
            quote.put(row, QuoteLine::ExtendedPrice,
                conv::checkedDouble(number(quote, row, QuoteLine::Quantity, locale)
                    * number(quote, row, QuoteLine::UnitPrice, locale)));
        });
    }
}

} // namespace tarnwick::Discount
