#pragma once

#include "core/cell.h"

#include <QLocale>
#include <QString>

#include <limits>
#include <optional>
#include <vector>

namespace tarnwick {

class Table;

/// How "Change Prices" changes a price: by a percentage or an amount, then rounded.
struct PriceChangeRule
{
    enum class By { Percent, Amount };
    enum class Rounding {
        Cents, ///< to the cent
        End95, ///< to the nearest price ending in .95
        End99, ///< to the nearest price ending in .99
        Whole, ///< to whole units
    };

    By by = By::Percent;
    /// +10 raises by 10 % (or 10.00), −5 lowers by 5 % (or 5.00).
    double value = 0;
    Rounding rounding = Rounding::Cents;
};

/// One price that the change gives a new value.
struct PriceChangeEntry
{
    int row = 0; ///< the catalogue row
    int field = 0; ///< the list price or a price point's price
    QString partNumber;
    QString what; ///< "List price", "Price 2" …
    Cell before;
    Cell after; ///< the new price as the catalogue stores prices ("14.95")
    double oldPrice = 0;
    double newPrice = 0;
};

/// The change planned for a set of products, before anything is changed.
struct PriceChangePlan
{
    /// The changes, in catalogue order; a plan made for a preview keeps only the first few.
    std::vector<PriceChangeEntry> entries;
    /// How many prices the change gives a new value (entries.size() unless entries were cut).
    std::size_t changeCount = 0;
    /// Whether entries holds every change, so the plan may be applied.
    bool complete() const { return entries.size() == changeCount; }
    /// Prices the change would take below zero; a plan with any is not applied.
    QStringList belowZero;
    /// Prices the change would take to MaxPrice or beyond; a plan with any is not applied.
    QStringList tooLarge;
};

namespace PriceChange {

/// No change takes a price to this or beyond (a percentage of 1E+20 typed by mistake): the
/// rounding to the cent stays exact well below it.
inline constexpr double MaxPrice = 1e12;

/// The new price for oldPrice by rule: changed by the percentage (old × (100 + p) ÷ 100) or
/// the amount (old + a), then rounded to the cent (halves away from zero), and then to the
/// nearest price ending in .95 or .99 or to whole units when the rule says so. A changed price
/// of MaxPrice or more (or no finite number) comes back unrounded.
double apply(double oldPrice, const PriceChangeRule &rule);

/// The list price and the price points' prices of rows (catalogue rows) by rule. Prices that
/// are no number, empty, or MaxPrice or more already stay as they are; a price whose new value
/// equals the old is left out.
/// With keepEntries, only the first keepEntries changes are kept as entries and the others
/// only counted: a preview of 100,000 products is worked out at once, without building
/// 600,000 entries it never shows.
PriceChangePlan plan(const Table &catalogue, const std::vector<int> &rows,
    const PriceChangeRule &rule, const QLocale &locale,
    std::size_t keepEntries = std::numeric_limits<std::size_t>::max());

/// The number typed into the change box, as the user's locale writes it: a percentage may
/// carry its percent sign ("10%", "2,5 %", "% 5"), as an amount may carry its currency. None
/// when the text is no number.
std::optional<double> typedChange(
    const QString &text, PriceChangeRule::By by, const QLocale &locale);

/// A preview line: "TW-100  List price  $12.85 → $14.14".
QString previewLine(const PriceChangeEntry &entry, const QLocale &locale);

/// The preview: a line for each of the first limit changes, then "… and N more." for the rest.
QString previewText(const PriceChangePlan &plan, const QLocale &locale, int limit);

/// The line under the preview. entered: whether the change is a number (without one, the plan
/// is empty and the line asks for it).
QString summary(const PriceChangePlan &plan, bool entered);

/// Whether the plan may be applied: a number entered, some price changed, none below zero or
/// too large.
bool canApply(const PriceChangePlan &plan, bool entered);

} // namespace PriceChange

} // namespace tarnwick
