#include "products/priceladder.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "core/storednumber.h"
#include "core/vberror.h"
#include "products/priceschedule.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace tarnwick::PriceLadder {

namespace {

constexpr int PointCount = ProductRecord::PricePointCount;

std::optional<double> numberOf(const Cell &cell, const QLocale &locale)
{
    if (cell.isBlank() || cell.isNull())
        return std::nullopt;
    return conv::cellNumber(cell, locale, conv::readsPlainDecimals(locale));
}

/// A threshold as SetPrice reads it: a 16-bit whole number, none when it cannot be read.
std::optional<qint16> thresholdOf(const Cell &cell, const QLocale &locale)
{
    try {
        return conv::toInt16(cell, locale);
    } catch (const VbError &) {
        return std::nullopt;
    }
}

QString quantityText(double quantity, const QLocale &locale)
{
    const QString text = format(Cell(quantity), QStringLiteral("#,###"), locale);
    return text.isEmpty() ? QStringLiteral("0") : text;
}

/// An amount of money with its sign in front: the reasons put amounts in brackets already, so
/// the Currency format's brackets for a negative amount would double them.
QString money(double amount, const QLocale &locale)
{
    if (amount < 0.0 && std::round(amount * 100.0) != 0.0)
        return locale.negativeSign() + format(Cell(-amount), QStringLiteral("Currency"), locale);
    return format(Cell(amount), QStringLiteral("Currency"), locale);
}

QString cellText(const Cell &cell, const QLocale &locale)
{
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

/// Whether price is above than as money, to the cent. The list price is kept in single
/// precision (16.4 is 16.3999996…) and a break price as the text typed ("16.40"): compared as
/// they are, equal prices would be one above the other.
bool costsMore(double price, double than)
{
    return std::round(price * 100.0) > std::round(than * 100.0);
}

/// Whether two amounts could show as different money: only then are their texts made and
/// compared (making them for every price of a large catalogue would keep the window waiting).
/// Amounts whose cents round alike and lie clear of a half cent show alike.
bool mayShowOtherwise(double a, double b)
{
    const double centsA = a * 100.0;
    const double centsB = b * 100.0;
    const auto nearHalf = [](double cents) {
        return std::fabs(std::fabs(cents - std::trunc(cents)) - 0.5) < 1e-3;
    };
    return std::round(centsA) != std::round(centsB) || nearHalf(centsA) || nearHalf(centsB)
        || !(std::fabs(centsA) < 1e15);
}

/// A used point: its slot, its threshold as read and its price, when it is a number, with
/// the price a quote charges.
struct Used
{
    int point;
    qint16 threshold;
    std::optional<double> price;
    std::optional<float> charged;
};

/// The quantities: each must be readable and above the one of the used point before it.
void checkQuantities(const Points &points, const QLocale &locale,
    std::vector<LadderProblem> &problems, std::vector<Used> &used)
{
    std::optional<Used> previous;
    for (int k = 1; k <= PointCount; ++k) {
        const Cell &quantity = points.quantity.at(std::size_t(k - 1));
        if (quantity.isBlank() || quantity.isNull())
            continue;
        const auto threshold = thresholdOf(quantity, locale);
        if (!threshold) {
            const auto number = numberOf(quantity, locale);
            const QString text = number
                ? QStringLiteral("Price Point %1 (%2) is above 32,767, the highest quantity a "
                                 "price point can have.")
                      .arg(k)
                      .arg(quantityText(*number, locale))
                : QStringLiteral("Price Point %1 (\"%2\") is no quantity.")
                      .arg(k)
                      .arg(cellText(quantity, locale));
            problems.push_back({ LadderProblem::Kind::UnusableQuantity, k, 1, text });
            continue;
        }
        if (previous && *threshold <= previous->threshold) {
            problems.push_back({ LadderProblem::Kind::NotAbovePrevious, k, 1,
                QStringLiteral("Price Point %1 (%2) is not above Price Point %3 (%4).")
                    .arg(k)
                    .arg(quantityText(*threshold, locale))
                    .arg(previous->point)
                    .arg(quantityText(previous->threshold, locale)) });
        }
        const auto number = numberOf(points.price.at(std::size_t(k - 1)), locale);
        // As a quote reads it: a single (from the double, which differs from reading the text
        // as a single at most in a last bit no amount of money shows).
        const bool fits = number && std::fabs(*number) <= double(std::numeric_limits<float>::max());
        Used point { k, *threshold, number,
            fits ? std::optional<float>(float(*number)) : std::optional<float>() };
        used.push_back(point);
        previous = point;
    }
}

/// A price with part of a cent (0.125) is shown to the cent in a quote and its document, while
/// every amount is worked out from the whole price: 30 at $0.12 come to $3.75 there. Said
/// with the break's own quantity, or 100 units where that quantity shows no difference.
/// What is said of a price (as a quote reads it, a single) with part of a cent, charged from
/// quantity on ("Price 2", "The list price"); empty for a price of whole cents.
QString fractionOfCentText(const QString &which, float price, qint32 from, const QLocale &locale)
{
    const double charged = double(price);
    const double cents = charged * 100.0;
    if (!(std::fabs(cents) < 1e13)
        || std::fabs(cents - std::round(cents)) <= 1e-6 * std::max(1.0, std::fabs(cents)))
        return QString();
    const QString shown = money(charged, locale);
    const double shownAmount = conv::round(charged, 2); // as the Currency format shows it
    double quantity = std::max(1.0, double(from));
    if (money(quantity * charged, locale) == money(quantity * shownAmount, locale))
        quantity = 100.0;
    QString text = QStringLiteral("%1 (%2) holds part of a cent: a quote shows %3 a unit and "
                                  "works out its amounts from %2.")
                       .arg(which, stored::shortestText(price, locale), shown);
    if (money(quantity * charged, locale) != money(quantity * shownAmount, locale)) {
        text += QStringLiteral(" %1 cost %2, not %1 \u00d7 %3.")
                    .arg(quantityText(quantity, locale), money(quantity * charged, locale), shown);
    }
    return text;
}

void checkFractionOfCent(
    const Used &point, const QLocale &locale, std::vector<LadderProblem> &problems)
{
    const QString text = fractionOfCentText(
        QStringLiteral("Price %1").arg(point.point), *point.charged, point.threshold, locale);
    if (!text.isEmpty())
        problems.push_back({ LadderProblem::Kind::FractionOfCent, point.point, 2, text });
}

/// The prices: each used point has one, none above the list price, none above the price of a
/// lower quantity.
void checkPrices(const std::vector<Used> &used, const Cell &listPrice, const QLocale &locale,
    std::vector<LadderProblem> &problems)
{
    const auto list = numberOf(listPrice, locale);
    std::vector<Used> ascending = used;
    std::stable_sort(ascending.begin(), ascending.end(),
        [](const Used &a, const Used &b) { return a.threshold < b.threshold; });
    for (const Used &point : used) {
        if (!point.price) {
            problems.push_back({ LadderProblem::Kind::MissingPrice, point.point, 2,
                QStringLiteral("Price Point %1 (%2) has no price.")
                    .arg(point.point)
                    .arg(quantityText(point.threshold, locale)) });
            continue;
        }
        if (costsMore(0.0, *point.price)) {
            problems.push_back({ LadderProblem::Kind::BelowZero, point.point, 2,
                QStringLiteral("Price %1 (%2) is below zero.")
                    .arg(point.point)
                    .arg(money(*point.price, locale)) });
        }
        // A quote keeps a price as a single: about seven digits, so $999,999.99 becomes
        // $1,000,000.00, and 0.215 shows as $0.22 where this schedule shows $0.21.
        bool shownOtherwise = false;
        if (point.charged && mayShowOtherwise(*point.price, double(*point.charged))) {
            const QString shown = money(*point.price, locale);
            const QString quoted = money(double(*point.charged), locale);
            if (shown != quoted) {
                shownOtherwise = true;
                problems.push_back({ LadderProblem::Kind::ShownOtherwise, point.point, 2,
                    QStringLiteral("Price %1 (%2) shows as %3 in a quote.")
                        .arg(point.point)
                        .arg(shown, quoted) });
            }
        }
        if (point.charged && !shownOtherwise)
            checkFractionOfCent(point, locale, problems);
        // A break from the first unit charges its price for every quantity typed: a list price
        // above it (a new one typed, say, with the old one left in the first price point) is
        // charged only by a line just added, until its quantity is typed.
        if (list && point.threshold <= 1 && costsMore(*list, *point.price)) {
            problems.push_back({ LadderProblem::Kind::ListPriceUnused, point.point, 2,
                QStringLiteral("Price %1 (%2) applies from the first unit: a quantity typed into "
                               "a quote gets it, never the list price (%3).")
                    .arg(point.point)
                    .arg(money(*point.price, locale), money(*list, locale)) });
        }
        if (list && costsMore(*point.price, *list)) {
            problems.push_back({ LadderProblem::Kind::AboveListPrice, point.point, 2,
                QStringLiteral("Price %1 (%2) is above the list price (%3).")
                    .arg(point.point)
                    .arg(money(*point.price, locale), money(*list, locale)) });
        }
        // The nearest lower quantity with a price.
        const Used *lower = nullptr;
        for (const Used &other : ascending) {
            if (other.threshold < point.threshold && other.price)
                lower = &other;
        }
        if (lower && costsMore(*point.price, *lower->price)) {
            problems.push_back({ LadderProblem::Kind::CostsMore, point.point, 2,
                QStringLiteral("%1 or more cost %2 each, more than %3 or more (%4).")
                    .arg(quantityText(point.threshold, locale), money(*point.price, locale),
                        quantityText(lower->threshold, locale), money(*lower->price, locale)) });
        }
    }
}

} // namespace

Points pointsOfProduct(const Table &catalogue, int row)
{
    Points points;
    if (row < 1 || row > catalogue.rowCount() || catalogue.fieldCount() < ProductRecord::FieldCount)
        return points;
    for (int k = 1; k <= PointCount; ++k) {
        points.quantity.at(std::size_t(k - 1)) =
            catalogue.get(row, ProductRecord::pricePointField(k));
        points.price.at(std::size_t(k - 1)) =
            catalogue.get(row, ProductRecord::pricePointPriceField(k));
    }
    return points;
}

Points pointsOfSchedule(const Table &schedule)
{
    Points points;
    for (int k = 1; k <= PointCount && k <= schedule.rowCount(); ++k) {
        if (schedule.fieldCount() < 2)
            break;
        points.quantity.at(std::size_t(k - 1)) = schedule.get(k, 1);
        points.price.at(std::size_t(k - 1)) = schedule.get(k, 2);
    }
    return points;
}

std::vector<LadderProblem> check(const Points &points, const Cell &listPrice, const QLocale &locale)
{
    std::vector<LadderProblem> problems;
    std::vector<Used> used;
    checkQuantities(points, locale, problems, used);
    checkPrices(used, listPrice, locale, problems);
    std::stable_sort(problems.begin(), problems.end(),
        [](const LadderProblem &a, const LadderProblem &b) { return a.point < b.point; });
    return problems;
}

std::vector<LadderProblem> checkProduct(const Table &catalogue, int row, const QLocale &locale)
{
    if (row < 1 || row > catalogue.rowCount() || catalogue.fieldCount() < ProductRecord::FieldCount)
        return {};
    return check(pointsOfProduct(catalogue, row), catalogue.get(row, ProductRecord::Price), locale);
}

QString describe(const std::vector<LadderProblem> &problems)
{
    QStringList texts;
    for (const LadderProblem &problem : problems)
        texts << problem.text;
    return texts.join(QLatin1Char(' '));
}

std::vector<ProductLadderProblems> checkCatalogue(const Table &catalogue, const QLocale &locale)
{
    std::vector<ProductLadderProblems> list;
    if (catalogue.fieldCount() < ProductRecord::FieldCount)
        return list;
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        const Cell &part = catalogue.get(row, ProductRecord::PartNumber);
        const Cell &name = catalogue.get(row, ProductRecord::ProductName);
        if (part.isBlank() && name.isBlank())
            continue;
        // A list price with part of a cent (from a supplier's sheet: typing rounds it) is shown
        // to the cent and charged whole, as such a price point is.
        QStringList said;
        const auto price = numberOf(catalogue.get(row, ProductRecord::Price), locale);
        if (price && std::fabs(*price) <= double(std::numeric_limits<float>::max()))
            said << fractionOfCentText(QStringLiteral("The list price"), float(*price), 1, locale);
        said.removeAll(QString());
        const auto problems = checkProduct(catalogue, row, locale);
        if (!problems.empty())
            said << describe(problems);
        if (!said.isEmpty())
            list.push_back({ row, cellText(part, locale), said.join(QLatin1Char(' ')) });
    }
    return list;
}

/// Break rule: every threshold SetPrice can read is a break, counted from 1 when it is below
/// 1; the price of a break is what SetPrice charges at its quantity, read as the quote reads it.
std::vector<PriceBreak> breaks(const Table &catalogue, int row, const QLocale &locale)
{
    std::vector<PriceBreak> list;
    if (row < 1 || row > catalogue.rowCount() || catalogue.fieldCount() < ProductRecord::FieldCount)
        return list;
    std::vector<qint32> quantities;
    for (int k = 1; k <= PointCount; ++k) {
        const Cell &quantity = catalogue.get(row, ProductRecord::pricePointField(k));
        if (quantity.isBlank() || quantity.isNull())
            continue;
        if (const auto threshold = thresholdOf(quantity, locale))
            quantities.push_back(std::max<qint32>(1, *threshold));
    }
    std::sort(quantities.begin(), quantities.end());
    quantities.erase(std::unique(quantities.begin(), quantities.end()), quantities.end());
    for (const qint32 quantity : quantities) {
        const PriceLookup lookup = PriceSchedule::priceAtRow(catalogue, row, quantity, locale);
        // A quote charges $0.00 from a point without a usable price, and says so as a fault:
        // it is no break to offer a customer.
        if (!PriceSchedule::isUsablePrice(lookup.price, locale))
            continue;
        list.push_back({ quantity, PriceSchedule::chargedPrice(lookup.price, locale) });
    }
    return list;
}

} // namespace tarnwick::PriceLadder
