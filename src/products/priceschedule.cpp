#include "products/priceschedule.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "core/storednumber.h"
#include "products/productrow.h"

namespace tarnwick::PriceSchedule {

namespace {

/// A cell as text the way the routines here concatenate and compare it: numbers in their
/// general form, the empty state and null as the empty text.
QString cellText(const Cell &cell, const QLocale &locale)
{
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

/// A price as SetPrice returns it: a single in the shortest text that reads back as the same
/// single ("123456.78", not "123456.8"), with the locale's decimal separator; a text as stored.
QString priceText(const Cell &cell, const QLocale &locale)
{
    if (cell.kind() == Cell::Kind::Single)
        return stored::shortestText(static_cast<float>(cell.asNumber()), locale);
    return cellText(cell, locale);
}

/// The first catalogue row whose part number is Number, 0 when there is none.
int productRow(const Table &catalogue, const QString &Number, const QLocale &locale)
{
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        const Cell &cell = catalogue.get(row, ProductRecord::PartNumber);
        if (!cell.isNull() && cellText(cell, locale) == Number)
            return row;
    }
    return 0;
}

/// "; " and three blanks between the points, then "quantity - $price" as stored.
QString pointText(const Table &catalogue, int row, int k, const QLocale &locale)
{
    return cellText(catalogue.get(row, ProductRecord::pricePointField(k)), locale)
        + QStringLiteral(" - $")
        + cellText(catalogue.get(row, ProductRecord::pricePointPriceField(k)), locale);
}

} // namespace

void PriceUpdate(const Table &catalogue, int row, Table &schedule)
{
    ProductRow::loadSchedule(catalogue, row, schedule);
}

void ClearPrice(Table &schedule)
{
    for (int k = 1; k <= ProductRecord::PricePointCount; ++k) {
        schedule.put(k, 1, Cell());
        schedule.put(k, 2, Cell());
    }
}

/// Price rule: start from the list price; then test the five points in slot order, and every
/// point whose threshold (converted to a 16-bit integer) the quantity reaches or exceeds
/// replaces the price with its own. So the last point reached in slot order wins, which in a
/// schedule sorted by quantity is the highest threshold reached; a quantity below every
/// threshold keeps the list price. A threshold that does not convert (above 32,767 or no
/// number) ends the reading quietly and the price chosen so far stands.
PriceLookup SetPrice(
    const Table &catalogue, const QString &Number, qint32 qty, const QLocale &locale)
{
    const int row = productRow(catalogue, Number, locale);
    if (row == 0)
        return {};
    return priceAtRow(catalogue, row, qty, locale);
}

PriceLookup priceAtRow(const Table &catalogue, int row, qint32 qty, const QLocale &locale)
{
    PriceLookup result;
    if (row < 1 || row > catalogue.rowCount() || catalogue.fieldCount() < ProductRecord::FieldCount)
        return result;
    result.found = true;
    result.price = priceText(catalogue.get(row, ProductRecord::Price), locale);
    try {
        for (int k = 1; k <= ProductRecord::PricePointCount; ++k) {
            const Cell &threshold = catalogue.get(row, ProductRecord::pricePointField(k));
            if (threshold.isBlank())
                continue;
            if (qty >= conv::toInt16(threshold, locale))
                result.price =
                    priceText(catalogue.get(row, ProductRecord::pricePointPriceField(k)), locale);
        }
    } catch (const VbError &error) {
        result.error = error;
    }
    return result;
}

float chargedPrice(const QString &price, const QLocale &locale)
{
    try {
        return conv::toSingle(Cell(price), locale);
    } catch (const VbError &) {
        return 0.0f;
    }
}

bool isUsablePrice(const QString &price, const QLocale &locale)
{
    const Cell cell(price);
    return conv::isNumeric(cell, locale) && !conv::isBeyondSingle(cell, locale);
}

/// Points 1 to 4 are shown when their quantity is set, point 5 when its price is set (a point
/// 5 with a quantity and no price is left out). The values are joined as stored, without
/// number formatting, so a text whose first point is unused begins with the separator.
QString creatdiscs(const Table &catalogue, int row, const QLocale &locale)
{
    const QString separator = QStringLiteral(";   ");
    QString text;
    if (!catalogue.get(row, ProductRecord::PricePoint1).isBlank())
        text = pointText(catalogue, row, 1, locale);
    for (int k = 2; k <= 4; ++k) {
        if (!catalogue.get(row, ProductRecord::pricePointField(k)).isBlank())
            text += separator + pointText(catalogue, row, k, locale);
    }
    if (!catalogue.get(row, ProductRecord::Price5).isBlank())
        text += separator + pointText(catalogue, row, 5, locale);
    return text;
}

QString formatPriceBox(const QString &text, const QLocale &locale)
{
    // "12,5" under an English locale is $12.50 now, as the catalogue file reads it later.
    return format(Cell(stored::asTyped(text, locale)), QStringLiteral("currency"), locale);
}

QString listPriceNotice(const Cell &price, const QLocale &locale)
{
    if (price.isBlank())
        return QString();
    const auto noNumber = [&locale](const QString &text) {
        return QStringLiteral("The list price \"%1\" is no number: a quote charges %2 for this "
                              "product until it is one, such as %3.")
            .arg(text, format(Cell(0.0), QStringLiteral("currency"), locale),
                locale.toString(12.5, 'f', 2));
    };
    // Below zero is kept as typed (a credit, a deposit returned), but said: typed by mistake,
    // every unit on a quote would take that much off its total.
    if (price.isNumber() || conv::isNumeric(price, locale)) {
        // A list price is kept as a single: beyond its range ("1e39", a pasted row of digits)
        // the catalogue reads it back as no number, and so does a quote's quantity.
        if (conv::isBeyondSingle(price, locale))
            return noNumber(conv::toText(price, locale));
        const double value = conv::toDouble(price, locale);
        if (value >= 0)
            return QString();
        return QStringLiteral("The list price %1 is below zero: every unit of this product on a "
                              "quote takes that much off its total.")
            .arg(format(Cell(value), QStringLiteral("currency"), locale));
    }
    if (!price.isText())
        return QString();
    const QString text = price.asText();
    if (text.trimmed().isEmpty())
        return QString();
    return noNumber(text);
}

} // namespace tarnwick::PriceSchedule
