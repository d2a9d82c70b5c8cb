#include "quotes/quotelist.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/errortrap.h"
#include "core/formats.h"
#include "products/priceschedule.h"
#include "quotes/quoteline.h"

#include <QStringList>

#include <algorithm>

namespace tarnwick::QuoteList {

namespace {

/// Keeps the quote at its full size after rows were deleted from it.
void refill(Table &quote, int deleted)
{
    quote.insertRows(quote.rowCount() + 1, deleted);
}

} // namespace

QString quoteFullMessage()
{
    return QString::fromUtf8(QuoteFullText);
}

AddLineResult addProduct(
    Table &quote, const Table &catalogue, int catalogueRow, const QString &includesText)
{
    if (catalogueRow < 1 || catalogueRow > catalogue.rowCount())
        return { AddStatus::NoProduct, 0 };
    const int row = QuoteLine::firstFreeRow(quote);
    if (row > quote.rowCount())
        return { AddStatus::QuoteFull, 0 };
    const Cell &listPrice = catalogue.get(catalogueRow, ProductRecord::Price);
    quote.put(row, QuoteLine::PartNumber, catalogue.get(catalogueRow, ProductRecord::PartNumber));
    quote.put(row, QuoteLine::ProductName, catalogue.get(catalogueRow, ProductRecord::ProductName));
    quote.put(row, QuoteLine::UnitPrice, listPrice);
    quote.put(row, QuoteLine::Quantity, qint32(1));
    quote.put(row, QuoteLine::ExtendedPrice, listPrice);
    quote.put(row, QuoteLine::ListPrice, listPrice);
    quote.put(row, QuoteLine::Includes, includesText);
    // The row may be one whose part number was cleared: what the user set for that line (its
    // lock, its further quantities) is not the new product's.
    for (int field = QuoteLine::Includes + 1; field <= quote.fieldCount(); ++field)
        quote.put(row, field, Cell());
    return { AddStatus::Added, row };
}

namespace {

/// The unit price of a line that is a number beyond a single's range ("1e39" typed, or a list
/// price so added), which the line's re-pricing cannot take and the totals count as nothing;
/// empty for any other line.
QString priceOutOfRange(const Table &quote, int row, const QLocale &locale)
{
    const Cell &unit = quote.get(row, QuoteLine::UnitPrice);
    if (!conv::isBeyondSingle(unit, locale))
        return QString();
    return conv::toText(unit, locale);
}

/// What is said of a line charged 0 because the catalogue gives no price for it (re-priced
/// after its product was deleted, or at a quantity whose price point has no price, or for a
/// product whose list price is no number); empty for any other line, a typed 0 for a product
/// the catalogue prices included.
QString unpricedLine(const Table &quote, const Table &catalogue, int row, const QLocale &locale)
{
    const Cell &unit = quote.get(row, QuoteLine::UnitPrice);
    if (!(unit.isNumber() || conv::isNumeric(unit, locale)) || conv::toDouble(unit, locale) != 0)
        return QString();
    const Cell &partCell = quote.get(row, QuoteLine::PartNumber);
    const QString part = partCell.isNull() ? QString() : conv::toText(partCell, locale);
    qint32 quantity = 0;
    ErrorTrap trap;
    if (!trap.step([&] { quantity = QuoteLine::quantity(quote, row, locale); }))
        return QString();
    PriceLookup lookup;
    if (!trap.step([&] { lookup = PriceSchedule::SetPrice(catalogue, part, quantity, locale); }))
        return QString();
    const QString nothing = format(Cell(0.0), QStringLiteral("currency"), locale);
    if (!lookup.found) {
        return QStringLiteral("Line %1: \"%2\" is not in the catalogue; the line is charged %3 "
                              "until a price is typed.")
            .arg(row)
            .arg(part, nothing);
    }
    if (PriceSchedule::isUsablePrice(lookup.price, locale))
        return QString();
    return QStringLiteral("Line %1: the catalogue gives no price for %2 of \"%3\"; the line is "
                          "charged %4 until a price is typed.")
        .arg(row)
        .arg(locale.toString(quantity), part, nothing);
}

/// The first line charged nothing for a quantity or price that is no number, out of range, or
/// without a price in the catalogue, then the numbers of the others; empty for none.
QString chargedNothingNotice(const Table &quote, const Table &catalogue, const QLocale &locale)
{
    const auto unread = [&](int row, int field) {
        const Cell &cell = quote.get(row, field);
        if (!cell.isText())
            return QString();
        const QString text = cell.asText();
        return text.trimmed().isEmpty() || conv::isNumeric(cell, locale) ? QString() : text;
    };
    // A number a line cannot take as its quantity (beyond the whole numbers it counts in) is
    // charged as nothing as well.
    const auto outOfRange = [&](int row) {
        const Cell &cell = quote.get(row, QuoteLine::Quantity);
        if (cell.isEmpty() || (cell.isText() && cell.asText().trimmed().isEmpty()))
            return QString();
        ErrorTrap trap;
        return trap.step([&] { QuoteLine::quantity(quote, row, locale); })
            ? QString()
            : conv::toText(cell, locale);
    };
    const QString nothing = format(Cell(0.0), QStringLiteral("currency"), locale);
    QString first;
    QList<int> others;
    const int lines = QuoteLine::lineCount(quote);
    for (int row = 1; row <= lines; ++row) {
        QString said;
        // A quantity or price cleared and entered is no number either.
        const auto cleared = [&](int field) {
            const Cell &cell = quote.get(row, field);
            return cell.isBlank() || (cell.isText() && cell.asText().trimmed().isEmpty());
        };
        if (cleared(QuoteLine::Quantity)) {
            said = QStringLiteral("Line %1 has no quantity; the line is charged %2 until one is "
                                  "typed.")
                       .arg(row)
                       .arg(nothing);
        } else if (cleared(QuoteLine::UnitPrice)) {
            said = QStringLiteral("Line %1 has no price; the line is charged %2 until one is "
                                  "typed.")
                       .arg(row)
                       .arg(nothing);
        } else if (const QString text = unread(row, QuoteLine::Quantity); !text.isEmpty()) {
            said = QStringLiteral("Line %1: the quantity \"%2\" is no number; the line is "
                                  "charged %3 until a whole number is typed.")
                       .arg(row)
                       .arg(text, nothing);
        } else if (const QString number = outOfRange(row); !number.isEmpty()) {
            said = QStringLiteral("Line %1: the quantity \"%2\" is out of range; the line is "
                                  "charged %3 until a smaller whole number is typed.")
                       .arg(row)
                       .arg(number, nothing);
        } else if (const QString price = unread(row, QuoteLine::UnitPrice); !price.isEmpty()) {
            said = QStringLiteral("Line %1: the price \"%2\" is no number; the line is charged "
                                  "%3 until a price is typed.")
                       .arg(row)
                       .arg(price, nothing);
        } else if (const QString big = priceOutOfRange(quote, row, locale); !big.isEmpty()) {
            said = QStringLiteral("Line %1: the price \"%2\" is out of range; the line is "
                                  "charged %3 until a smaller price is typed.")
                       .arg(row)
                       .arg(big, nothing);
        } else {
            said = unpricedLine(quote, catalogue, row, locale);
        }
        if (said.isEmpty())
            continue;
        if (first.isEmpty())
            first = said;
        else
            others << row;
    }
    if (others.isEmpty())
        return first;
    // The others are counted in, so a customer's document never carries a line at nothing
    // that the status bar did not name.
    constexpr qsizetype Named = 5;
    QStringList rows;
    for (qsizetype i = 0; i < std::min(others.size(), Named); ++i)
        rows << QString::number(others[i]);
    QString list;
    if (others.size() == 1) {
        list = QStringLiteral("Line %1 is").arg(rows.first());
    } else if (others.size() <= Named) {
        const QString last = rows.takeLast();
        list = QStringLiteral("Lines %1 and %2 are").arg(rows.join(QStringLiteral(", ")), last);
    } else {
        list = QStringLiteral("Lines %1 and %2 more are")
                   .arg(rows.join(QStringLiteral(", ")))
                   .arg(others.size() - Named);
    }
    return first + QStringLiteral(" %1 charged %2 as well.").arg(list, nothing);
}

/// The lines left below a part number emptied in the middle of the quote, which ends there.
QString cutOffNotice(const Table &quote)
{
    const int end = QuoteLine::firstFreeRow(quote);
    int below = 0;
    for (int row = end + 1; row <= quote.rowCount(); ++row) {
        if (!quote.get(row, QuoteLine::PartNumber).isBlank())
            ++below;
    }
    if (below == 0)
        return QString();
    // The line takes no typing now (it is past the quote's end): Undo gives its part number
    // back, and the next product added to the quote goes there.
    const QString left = below == 1 ? QStringLiteral("the line below it")
                                    : QStringLiteral("the %1 lines below it").arg(below);
    return QStringLiteral("Line %1 has no part number, so the quote ends there, without %2; Undo, "
                          "or the next product added to the quote, fills line %1 again.")
        .arg(end)
        .arg(left);
}

} // namespace

QString unreadNotice(const Table &quote, const Table &catalogue, const QLocale &locale)
{
    const QString charged = chargedNothingNotice(quote, catalogue, locale);
    const QString cutOff = cutOffNotice(quote);
    if (charged.isEmpty() || cutOff.isEmpty())
        return charged + cutOff;
    return charged + QLatin1Char(' ') + cutOff;
}

/// Re-pricing rule: q is the line's quantity (QuoteLine::quantity). When the quantity was
/// changed, the cell is given q itself, so the quantity shown is the one every price and total
/// is worked out from (2.5 is shown and charged as 2), and the unit price becomes SetPrice's
/// price for q, read as a single (so a typed price lasts only until the next quantity change),
/// except on a locked line, which keeps its unit price; when the price was changed, the typed
/// price, read as a single, is kept whatever the price points say. The extended price is then
/// unit price × q in double precision, not rounded. A price that does not convert counts as 0
/// (an unknown part number, a price point without its price), and so does a quantity that does
/// not (the cell then keeps what was typed). Edits of the part number or the product name
/// change no price.
void repriceLine(
    Table &quote, const Table &catalogue, int row, int changedColumn, const QLocale &locale)
{
    if (row < 1 || row > quote.rowCount())
        return;
    if (changedColumn != QuoteGridColumn::Quantity && changedColumn != QuoteGridColumn::Price)
        return;
    ErrorTrap trap;
    qint32 q = 0;
    float p = 0.0f;
    const bool quantityRead = trap.step([&] { q = QuoteLine::quantity(quote, row, locale); });
    if (changedColumn == QuoteGridColumn::Quantity && quantityRead)
        quote.put(row, QuoteLine::Quantity, q);
    if (changedColumn == QuoteGridColumn::Quantity && !QuoteLine::isLocked(quote, row)) {
        trap.step([&] {
            const QString number = conv::toText(quote.get(row, QuoteLine::PartNumber), locale);
            const PriceLookup lookup = PriceSchedule::SetPrice(catalogue, number, q, locale);
            p = conv::toSingle(Cell(lookup.price), locale);
        });
        quote.put(row, QuoteLine::UnitPrice, p);
    } else {
        trap.step([&] { p = conv::toSingle(quote.get(row, QuoteLine::UnitPrice), locale); });
    }
    quote.put(row, QuoteLine::ExtendedPrice, double(p) * double(q));
}

bool removeLine(Table &quote, int row)
{
    if (row < 1 || row > quote.rowCount())
        return false;
    quote.deleteRows(row);
    refill(quote, 1);
    return true;
}

void removeAllLines(Table &quote)
{
    const int deleted = qMin(QuoteLine::firstFreeRow(quote), quote.rowCount());
    if (deleted < 1)
        return;
    quote.deleteRows(1, deleted);
    refill(quote, deleted);
}

Table linesOf(const Table &quote)
{
    const int count = qMin(QuoteLine::lineCount(quote), quote.rowCount());
    Table lines(count, quote.fieldCount());
    for (int row = 1; row <= count; ++row) {
        for (int field = 1; field <= quote.fieldCount(); ++field)
            lines.put(row, field, quote.get(row, field));
    }
    return lines;
}

bool replaceLines(Table &quote, const Table &lines)
{
    if (lines.rowCount() > quote.rowCount())
        return false;
    const int fields = qMin(lines.fieldCount(), quote.fieldCount());
    for (int row = 1; row <= quote.rowCount(); ++row) {
        quote.clearRow(row);
        if (row > lines.rowCount())
            continue;
        for (int field = 1; field <= fields; ++field)
            quote.put(row, field, lines.get(row, field));
    }
    return true;
}

} // namespace tarnwick::QuoteList
