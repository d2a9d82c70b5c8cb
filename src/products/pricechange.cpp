#include "products/pricechange.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "core/storednumber.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tarnwick::PriceChange {

namespace {

/// Money rounding: the amount is first taken to six decimals (so 12.85 × 1.1 counts as the
/// 14.135 it is meant to be, not the 14.13499… a double holds), then to units of unit (0.01 or
/// 1) with halves away from zero, as a price list is rounded by hand.
double roundMoney(double amount, long long microsPerUnit)
{
    const long long micros = std::llround(amount * 1e6);
    const long long half = microsPerUnit / 2;
    const long long units = (micros >= 0 ? micros + half : micros - half) / microsPerUnit;
    return double(units) * double(microsPerUnit) / 1e6;
}

constexpr long long Cent = 10000;
constexpr long long Unit = 1000000;

/// The nearest price n + ending with n a whole number of at least 0.
double nearestEnding(double price, double ending)
{
    const double whole = std::max(0.0, roundMoney(price - ending, Unit));
    return roundMoney(whole + ending, Cent);
}

QString textOf(const Cell &cell, const QLocale &locale)
{
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

/// What a field is called in the preview: "List price", "Price 2" …
QString fieldName(int field)
{
    if (field == ProductRecord::Price)
        return QStringLiteral("List price");
    for (int k = 1; k <= ProductRecord::PricePointCount; ++k) {
        if (field == ProductRecord::pricePointPriceField(k))
            return QStringLiteral("Price %1").arg(k);
    }
    return {};
}

void planField(PriceChangePlan &plan, const Table &catalogue, int row, int field,
    const PriceChangeRule &rule, const QLocale &locale, std::size_t keepEntries)
{
    const Cell &cell = catalogue.get(row, field);
    if (cell.isBlank() || cell.isNull())
        return;
    const std::optional<double> number =
        conv::cellNumber(cell, locale, conv::readsPlainDecimals(locale));
    if (!number)
        return;
    double oldPrice = *number;
    // A list price kept in single precision is the price its shortest text says (39.10, not
    // the 39.0999985 the single holds), so 5 % more is the 41.055 that rounds to 41.06.
    if (cell.kind() == Cell::Kind::Single) {
        if (const auto typed = stored::readNumber(stored::numberText(float(oldPrice))))
            oldPrice = *typed;
    }
    // A price below zero (a credit, a deposit returned) is no price a rise or a fall is meant
    // for: it stays as it is and does not keep the others from changing.
    if (oldPrice < 0)
        return;
    // A free item (a price of zero) stays free: an amount added to every price is no price
    // for it, and one taken off would not take it below zero and refuse the whole change.
    if (oldPrice == 0)
        return;
    // A price that is a trillion or more already (read from a damaged sheet, say) is no price a
    // change can be worked out from: it stays as it is, as a price that is no number does, and
    // does not keep the others from changing.
    if (!(std::fabs(oldPrice) < MaxPrice))
        return;
    const double newPrice = apply(oldPrice, rule);
    const auto named = [&] {
        return QStringLiteral("%1 %2").arg(
            textOf(catalogue.get(row, ProductRecord::PartNumber), locale),
            fieldName(field).toLower());
    };
    if (!(std::fabs(newPrice) < MaxPrice)) {
        plan.tooLarge << named();
        return;
    }
    if (newPrice < 0) {
        plan.belowZero << named();
        return;
    }
    // A list price kept in single precision (16.4 is 16.3999996…) is unchanged when the new
    // price is the same single.
    const bool single = cell.kind() == Cell::Kind::Single;
    if (newPrice == oldPrice || (single && float(newPrice) == float(oldPrice)))
        return;
    ++plan.changeCount;
    if (plan.entries.size() >= keepEntries)
        return;
    // A price point's price as every price point is kept, in the user's own form ("7,49" in
    // German); the list price in the stored form, as the catalogue file has it.
    const QString text = stored::numberText(newPrice);
    Cell after =
        field == ProductRecord::Price ? Cell(text) : Cell(stored::ownForm(text, newPrice, locale));
    plan.entries.push_back(
        { row, field, textOf(catalogue.get(row, ProductRecord::PartNumber), locale),
            fieldName(field), cell, std::move(after), oldPrice, newPrice });
}

/// The first five prices named, and how many more there are.
QString firstNames(const QStringList &names)
{
    const QString first = names.mid(0, 5).join(QStringLiteral(", "));
    return names.size() <= 5 ? first
                             : QStringLiteral("%1 and %2 more").arg(first).arg(names.size() - 5);
}

} // namespace

double apply(double oldPrice, const PriceChangeRule &rule)
{
    const double changed = rule.by == PriceChangeRule::By::Percent
        ? oldPrice * (100.0 + rule.value) / 100.0
        : oldPrice + rule.value;
    if (!(std::fabs(changed) < MaxPrice))
        return changed;
    const double cents = roundMoney(changed, Cent);
    // An ending never turns a change round or undoes it: a price lowered does not end at or
    // above what it was, nor one raised at or below it (a $0.25 item lowered by 10 % is $0.23,
    // not $0.99), and a price that comes to zero stays zero (a free item stays free).
    // Whole units are the ending 1.00: $0.49 raised by 1 % is not $0.00, nor $1.40 raised by
    // 1 % $1.00.
    const auto withEnding = [&](double firstEnding, double ended) {
        // Below half a unit under the first ending there is no ending near the price: $0.05
        // raised by 1 % is not $0.99.
        if (cents <= 0 || cents < firstEnding - 0.5)
            return cents;
        const bool turned =
            (changed < oldPrice && ended >= oldPrice) || (changed > oldPrice && ended <= oldPrice);
        return turned ? cents : ended;
    };
    switch (rule.rounding) {
    case PriceChangeRule::Rounding::End95:
        return withEnding(0.95, nearestEnding(cents, 0.95));
    case PriceChangeRule::Rounding::End99:
        return withEnding(0.99, nearestEnding(cents, 0.99));
    case PriceChangeRule::Rounding::Whole:
        return withEnding(1.0, roundMoney(cents, Unit));
    case PriceChangeRule::Rounding::Cents:
        break;
    }
    return cents;
}

PriceChangePlan plan(const Table &catalogue, const std::vector<int> &rows,
    const PriceChangeRule &rule, const QLocale &locale, std::size_t keepEntries)
{
    PriceChangePlan result;
    if (catalogue.fieldCount() < ProductRecord::FieldCount)
        return result;
    for (const int row : rows) {
        if (row < 1 || row > catalogue.rowCount())
            continue;
        planField(result, catalogue, row, ProductRecord::Price, rule, locale, keepEntries);
        for (int k = 1; k <= ProductRecord::PricePointCount; ++k) {
            planField(result, catalogue, row, ProductRecord::pricePointPriceField(k), rule, locale,
                keepEntries);
        }
    }
    return result;
}

std::optional<double> typedChange(
    const QString &text, PriceChangeRule::By by, const QLocale &locale)
{
    QString number = text.trimmed();
    if (by == PriceChangeRule::By::Percent) {
        for (const QString &sign : { locale.percent(), QStringLiteral("%") }) {
            if (number.endsWith(sign))
                number = number.chopped(sign.size()).trimmed();
            else if (number.startsWith(sign))
                number = number.mid(sign.size()).trimmed();
            else
                continue;
            break;
        }
    }
    return conv::parseNumber(number, locale);
}

QString previewLine(const PriceChangeEntry &entry, const QLocale &locale)
{
    const QString currency = QStringLiteral("Currency");
    return QStringLiteral("%1  %2  %3 \u2192 %4")
        .arg(entry.partNumber, entry.what, format(Cell(entry.oldPrice), currency, locale),
            format(Cell(entry.newPrice), currency, locale));
}

QString previewText(const PriceChangePlan &plan, const QLocale &locale, int limit)
{
    QStringList lines;
    const int count = int(plan.changeCount);
    const int kept = int(plan.entries.size());
    for (int i = 0; i < kept && i < limit; ++i)
        lines << previewLine(plan.entries[std::size_t(i)], locale);
    const int shown = std::min(kept, limit);
    if (count > shown)
        lines << QStringLiteral("\u2026 and %1 more.").arg(count - shown);
    return lines.join(QLatin1Char('\n'));
}

QString summary(const PriceChangePlan &plan, bool entered)
{
    if (!entered)
        return QStringLiteral("Enter the percentage or the amount as a number.");
    if (!plan.tooLarge.isEmpty())
        return QStringLiteral("The change would take prices to a trillion or more: %1.")
            .arg(firstNames(plan.tooLarge));
    if (!plan.belowZero.isEmpty())
        return QStringLiteral("The change would take prices below zero: %1.")
            .arg(firstNames(plan.belowZero));
    if (plan.changeCount == 0)
        return QStringLiteral("No price changes.");
    return plan.changeCount == 1
        ? QStringLiteral("1 price will change.")
        : QStringLiteral("%1 prices will change.").arg(qulonglong(plan.changeCount));
}

bool canApply(const PriceChangePlan &plan, bool entered)
{
    return entered && plan.belowZero.isEmpty() && plan.tooLarge.isEmpty() && plan.changeCount > 0;
}

} // namespace tarnwick::PriceChange
