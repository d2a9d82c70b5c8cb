#pragma once

#include <QLocale>
#include <QString>

namespace tarnwick {

class Table;

/// The two sums behind the quote's totals, in the precisions they are accumulated in.
struct QuoteSums
{
    double total = 0.0; ///< the rounded extended prices
    float listTotal = 0.0f; ///< the rounded list price × quantity of each line, as a single
};

/// The texts of the three total boxes under the quote grid.
struct QuoteTotals
{
    QString total; ///< TxtTotal
    QString discount; ///< TxtDisc
    QString percent; ///< TxtQdisper
};

/// The two texts a row change of the quote grid puts into TxtTotal and TxtDisc before the
/// totals are recomputed.
struct ZeroedTotals
{
    QString total; ///< "$00.00"
    QString discount; ///< "$0.00"
};

namespace QuotePricing {

/// Sums the lines of the quote (see the .cpp for the rule).
QuoteSums sums(const Table &quote, const QLocale &locale);

/// The box texts of the given sums: total, list total − total, and that discount as a share
/// of the list total.
QuoteTotals texts(const QuoteSums &sums, const QLocale &locale);

/// Recomputes the totals of the quote: texts(sums(quote)).
QuoteTotals QuotePrice(const Table &quote, const QLocale &locale);

/// What the boxes show after "Remove All": three empty texts.
inline QuoteTotals clearedTotals()
{
    return {};
}

/// TxtTotal as 0 in the "$#,#00.00" format and TxtDisc as 0 in "Currency".
ZeroedTotals zeroedTotals(const QLocale &locale);

} // namespace QuotePricing

} // namespace tarnwick
