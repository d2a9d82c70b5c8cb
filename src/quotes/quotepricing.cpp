#include "quotes/quotepricing.h"

#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/errortrap.h"
#include "core/formats.h"
#include "quotes/quoteline.h"

namespace tarnwick::QuotePricing {

namespace {

constexpr int MoneyDecimals = 2;
constexpr double PercentScale = 100.0;

/// value, or a plain +0 when value × scale shows as zero at two decimals, so that a discount
/// of -0.001 shows as "$0.00" and "0.00%", never as a negative zero.
double unsignedZero(double value, double scale = 1.0)
{
    return conv::round(value * scale, MoneyDecimals) == 0.0 ? 0.0 : value;
}

} // namespace

namespace {

/// The line's quantity as the list total reads it: the one the re-pricing charged, so a line
/// the re-pricing could not price (a quantity beyond the 32-bit range raises 6) adds nothing
/// to either sum, and a fraction counts as the whole number the line was priced at.
double listQuantity(const Table &quote, int row, const QLocale &locale)
{
    return double(QuoteLine::quantity(quote, row, locale));
}

} // namespace

/// Totals rule: for each line, and for the first free row after them (which adds nothing),
/// the total grows by the extended price rounded to 2 decimals (halves to even), accumulated
/// as a double; the list total grows by list price × quantity rounded the same way,
/// accumulated as a single, so the discount figures carry a single's precision. A cell that
/// is no number adds nothing to its sum, nor does a step that overflows (a quantity outside
/// the 32-bit range, a list total beyond the single range, a total beyond the double range).
QuoteSums sums(const Table &quote, const QLocale &locale)
{
    QuoteSums result;
    const int last = qMin(QuoteLine::firstFreeRow(quote), quote.rowCount());
    for (int row = 1; row <= last; ++row) {
        ErrorTrap trap;
        // A unit price beyond a single's range (a list price of "1e39" added as it stands) is
        // no price the line can charge: it adds nothing to the total, as the status bar says.
        if (!conv::isBeyondSingle(quote.get(row, QuoteLine::UnitPrice), locale)) {
            trap.step([&] {
                result.total = conv::checkedDouble(result.total
                    + conv::round(conv::toDouble(quote.get(row, QuoteLine::ExtendedPrice), locale),
                        MoneyDecimals));
            });
        }
        trap.step([&] {
            const double list =
                conv::checkedDouble(conv::toDouble(quote.get(row, QuoteLine::ListPrice), locale)
                    * listQuantity(quote, row, locale));
            result.listTotal = conv::toSingle(
                Cell(double(result.listTotal) + conv::round(list, MoneyDecimals)), locale);
        });
    }
    return result;
}

/// The discount is list total − total in double precision, the percent that discount ÷ list
/// total; with a list total of 0 (an empty quote, lines without list prices) the percent is
/// 0. A figure that overflows the double range leaves its box empty.
QuoteTotals texts(const QuoteSums &sums, const QLocale &locale)
{
    const QString currency = QStringLiteral("Currency");
    QuoteTotals result;
    ErrorTrap trap; // a figure that overflows leaves its box empty
    trap.step([&] { result.total = format(Cell(unsignedZero(sums.total)), currency, locale); });
    trap.step([&] {
        const double discount = conv::checkedDouble(double(sums.listTotal) - sums.total);
        result.discount = format(Cell(unsignedZero(discount)), currency, locale);
    });
    trap.step([&] {
        const double discount = double(sums.listTotal) - sums.total;
        const double share =
            conv::checkedDouble(sums.listTotal == 0.0f ? 0.0 : discount / double(sums.listTotal));
        result.percent =
            format(Cell(unsignedZero(share, PercentScale)), QStringLiteral("percent"), locale);
    });
    return result;
}

QuoteTotals QuotePrice(const Table &quote, const QLocale &locale)
{
    return texts(sums(quote, locale), locale);
}

ZeroedTotals zeroedTotals(const QLocale &locale)
{
    return { format(Cell(0.0), QStringLiteral("$#,#00.00"), locale),
        format(Cell(0.0), QStringLiteral("Currency"), locale) };
}

} // namespace tarnwick::QuotePricing
