#include "commands/quotecommands.h"

#include "catalogue/module1.h"

#include <utility>

namespace tarnwick {

QuoteStep::QuoteStep(
    EditHistory &history, const QString &text, const QuoteView &before, const QuoteView &after)
    : EditCommand(history.module(), text), m_history(history), m_before(before), m_after(after)
{
}

void QuoteStep::announce(bool undone, bool replayed)
{
    m_history.announce(QuoteChange { undone ? m_before : m_after, replayed });
}

QuoteCellsStep::QuoteCellsStep(EditHistory &history, const QString &text, const QuoteView &before,
    const QuoteView &after, CellChanges changes)
    : QuoteStep(history, text, before, after), m_changes(std::move(changes))
{
}

void QuoteCellsStep::forward()
{
    applyAfter(module().QuoteTable(), m_changes);
}

void QuoteCellsStep::backward()
{
    applyBefore(module().QuoteTable(), m_changes);
}

RemoveQuoteLine::RemoveQuoteLine(EditHistory &history, const QString &text, const QuoteView &before,
    const QuoteView &after, int row)
    : QuoteStep(history, text, before, after), m_row(row)
{
}

void RemoveQuoteLine::forward()
{
    Table &quote = module().QuoteTable();
    m_removed = quote.takeRows(m_row, 1);
    quote.insertRows(quote.rowCount() + 1); // the quote keeps its size
}

void RemoveQuoteLine::backward()
{
    Table &quote = module().QuoteTable();
    quote.deleteRows(quote.rowCount());
    quote.insertTable(m_row, std::move(m_removed));
}

RemoveAllQuoteLines::RemoveAllQuoteLines(
    EditHistory &history, const QuoteView &before, const QuoteView &after, int rows)
    : QuoteStep(history, QStringLiteral("Remove All Quote Lines"), before, after), m_rows(rows)
{
}

void RemoveAllQuoteLines::forward()
{
    Table &quote = module().QuoteTable();
    m_removed = quote.takeRows(1, m_rows);
    quote.insertRows(quote.rowCount() + 1, m_rows);
}

void RemoveAllQuoteLines::backward()
{
    Table &quote = module().QuoteTable();
    quote.deleteRows(quote.rowCount() - m_rows + 1, m_rows);
    quote.insertTable(1, std::move(m_removed));
}

ReplaceQuote::ReplaceQuote(EditHistory &history, const QString &text, const QuoteView &before,
    const QuoteView &after, Table quote)
    : QuoteStep(history, text, before, after), m_other(std::move(quote))
{
}

void ReplaceQuote::swapQuote()
{
    std::swap(module().QuoteTable(), m_other);
}

void ReplaceQuote::forward()
{
    swapQuote();
}

void ReplaceQuote::backward()
{
    swapQuote();
}

} // namespace tarnwick
