#include "commands/quoteedits.h"

#include "catalogue/module1.h"
#include "commands/quotecommands.h"
#include "core/conversions.h"
#include "quotes/quoteaids.h"
#include "quotes/quotediscount.h"
#include "quotes/quoteline.h"

namespace tarnwick::QuoteEdits {

namespace {

/// "Remove from Quote TW-200"; without the part number when the line has none.
QString lineName(Module1 &module, const Table &quote, int row, const QString &what)
{
    if (row < 1 || row > quote.rowCount() || quote.fieldCount() < QuoteLine::PartNumber)
        return what;
    const Cell &part = quote.get(row, QuoteLine::PartNumber);
    const QString text = part.isNull() ? QString() : conv::toText(part, module.locale()).trimmed();
    return text.isEmpty() ? what : what + QLatin1Char(' ') + text;
}

/// Applies change to a copy of the quote and makes the step of kind Step from what differs;
/// no step when nothing does.
template <typename Step, typename Change>
bool cellsStep(EditHistory &history, const QuoteView &before, const QuoteView &after,
    const QString &text, Change change)
{
    Table &quote = history.module().QuoteTable();
    Table changed = quote;
    change(changed);
    CellChanges changes = differences(quote, changed);
    if (changes.empty())
        return false;
    history.push(new Step(history, text, before, after, std::move(changes)));
    return true;
}

QuoteView shown(const QuoteView &view)
{
    return { view.row, view.column, false };
}

QString cellStepName(int column)
{
    switch (column) {
    case QuoteGridColumn::Quantity:
        return QStringLiteral("Change Quantity");
    case QuoteGridColumn::Price:
        return QStringLiteral("Change Price");
    case QuoteGridColumn::PartNumber:
        return QStringLiteral("Edit Quote Part Number");
    default:
        return QStringLiteral("Edit Quote Product");
    }
}

} // namespace

QuoteList::AddLineResult addProduct(
    EditHistory &history, const QuoteView &before, int catalogueRow, const QString &includesText)
{
    Module1 &module = history.module();
    Table changed = module.QuoteTable();
    const QuoteList::AddLineResult added =
        QuoteList::addProduct(changed, module.Catalogue(), catalogueRow, includesText);
    if (added.status != QuoteList::AddStatus::Added)
        return added;
    const QString text = lineName(module, changed, added.row, QStringLiteral("Add to Quote"));
    history.push(
        new AddQuoteLine(history, text, before, { added.row, QuoteGridColumn::Quantity, false },
            differences(module.QuoteTable(), changed)));
    return added;
}

bool removeLine(EditHistory &history, const QuoteView &before, int row)
{
    Module1 &module = history.module();
    Table &quote = module.QuoteTable();
    if (row < 1 || row > quote.rowCount())
        return false;
    Table changed = quote;
    QuoteList::removeLine(changed, row);
    if (sameCells(quote, changed))
        return true;
    const QString text = lineName(module, quote, row, QStringLiteral("Remove from Quote"));
    history.push(new RemoveQuoteLine(history, text, before, shown(before), row));
    return true;
}

void removeAll(EditHistory &history, const QuoteView &before)
{
    Table &quote = history.module().QuoteTable();
    Table changed = quote;
    QuoteList::removeAllLines(changed);
    if (sameCells(quote, changed))
        return;
    const int rows = qMin(QuoteLine::firstFreeRow(quote), quote.rowCount());
    history.push(new RemoveAllQuoteLines(history, before, { 0, 0, true }, rows));
}

bool setCell(
    EditHistory &history, const QuoteView &before, int row, int column, const QString &text)
{
    Module1 &module = history.module();
    Table &quote = module.QuoteTable();
    if (row < 1 || row > quote.rowCount() || column < 0 || column >= QuoteGridColumn::Count)
        return false;
    const QString name = lineName(module, quote, row, cellStepName(column));
    cellsStep<EditQuoteCell>(history, before, shown(before), name, [&](Table &changed) {
        changed.put(row, column + 1, text);
        QuoteList::repriceLine(changed, module.Catalogue(), row, column, module.locale());
    });
    return true;
}

void resetPrices(EditHistory &history, const QuoteView &before, Discount::LockedLines locked)
{
    const QLocale locale = history.module().locale();
    cellsStep<ResetQuotePrices>(history, before, shown(before), QStringLiteral("Reset Prices"),
        [&](Table &changed) { Discount::resetPrices(changed, locale, locked); });
}

bool setQuantities(
    EditHistory &history, const QuoteView &before, int row, const std::vector<qint32> &quantities)
{
    Module1 &module = history.module();
    const Table &quote = module.QuoteTable();
    if (row < 1 || row >= QuoteLine::firstFreeRow(quote)
        || quote.fieldCount() < QuoteLine::Quantities)
        return false;
    const QString text = QuoteAids::quantitiesText(quantities);
    const QString name = lineName(module, quote, row, QStringLiteral("Price at Quantities"));
    return cellsStep<SetQuoteQuantities>(history, before, shown(before), name, [&](Table &changed) {
        changed.put(row, QuoteLine::Quantities, text.isEmpty() ? Cell() : Cell(text));
    });
}

bool setLocked(EditHistory &history, const QuoteView &before, int row, bool locked)
{
    Module1 &module = history.module();
    const Table &quote = module.QuoteTable();
    if (row < 1 || row >= QuoteLine::firstFreeRow(quote) || quote.fieldCount() < QuoteLine::Locked)
        return false;
    const QString name = lineName(
        module, quote, row, locked ? QStringLiteral("Lock Price") : QStringLiteral("Unlock Price"));
    return cellsStep<LockQuotePrice>(history, before, shown(before), name,
        [&](Table &changed) { QuoteLine::setLocked(changed, row, locked); });
}

void discountAll(
    EditHistory &history, const QuoteView &before, float multiplier, const QString &choice)
{
    const QLocale locale = history.module().locale();
    cellsStep<DiscountQuote>(history, before, shown(before),
        QStringLiteral("Discount All %1").arg(choice).trimmed(),
        [&](Table &changed) { Discount::applyToAllLines(changed, multiplier, locale); });
}

void discountLine(
    EditHistory &history, const QuoteView &before, int row, float multiplier, const QString &choice)
{
    Module1 &module = history.module();
    const QString name =
        lineName(module, module.QuoteTable(), row, QStringLiteral("Discount Product"));
    cellsStep<DiscountQuoteLine>(history, before, shown(before),
        QStringLiteral("%1 %2").arg(name, choice).trimmed(),
        [&](Table &changed) { Discount::applyToLine(changed, row, multiplier, module.locale()); });
}

bool replaceQuote(EditHistory &history, const QuoteView &before, const QuoteView &after,
    Table quote, const QString &text)
{
    if (sameCells(history.module().QuoteTable(), quote))
        return false;
    history.push(new ReplaceQuote(history, text, before, after, std::move(quote)));
    return true;
}

} // namespace tarnwick::QuoteEdits
