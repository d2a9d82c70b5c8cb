#pragma once

#include "catalogue/table.h"
#include "commands/cellchanges.h"
#include "commands/edithistory.h"

namespace tarnwick {

/// A step of the quote: where the quote grid stood before it and goes after it. The catalogue
/// is not touched.
class QuoteStep : public EditCommand
{
public:
    bool changesCatalogue() const override { return false; }

protected:
    QuoteStep(
        EditHistory &history, const QString &text, const QuoteView &before, const QuoteView &after);
    void announce(bool undone, bool replayed) override;

private:
    EditHistory &m_history;
    QuoteView m_before;
    QuoteView m_after;
};

/// Cells of the quote given new values; holds each cell's old and new value.
class QuoteCellsStep : public QuoteStep
{
public:
    QuoteCellsStep(EditHistory &history, const QString &text, const QuoteView &before,
        const QuoteView &after, CellChanges changes);

protected:
    void forward() override;
    void backward() override;

private:
    CellChanges m_changes;
};

/// "Add to &Quote": a product's new line.
class AddQuoteLine : public QuoteCellsStep
{
public:
    using QuoteCellsStep::QuoteCellsStep;
};

/// A quantity, price, part number or product name typed into the quote grid, with the
/// re-pricing of the line that follows it.
class EditQuoteCell : public QuoteCellsStep
{
public:
    using QuoteCellsStep::QuoteCellsStep;
};

/// "Lock Price": a line's unit price locked or unlocked.
class LockQuotePrice : public QuoteCellsStep
{
public:
    using QuoteCellsStep::QuoteCellsStep;
};

/// "Price at Quantities": the further quantities kept with a line.
class SetQuoteQuantities : public QuoteCellsStep
{
public:
    using QuoteCellsStep::QuoteCellsStep;
};

/// "&Reset Prices": every line back to its list price.
class ResetQuotePrices : public QuoteCellsStep
{
public:
    using QuoteCellsStep::QuoteCellsStep;
};

/// "Discount &All": a discount applied to every line.
class DiscountQuote : public QuoteCellsStep
{
public:
    using QuoteCellsStep::QuoteCellsStep;
};

/// "Discount &Product": a discount applied to one line.
class DiscountQuoteLine : public QuoteCellsStep
{
public:
    using QuoteCellsStep::QuoteCellsStep;
};

/// "Remove &Product": one line removed (the lines after it move up, the quote keeps its size);
/// holds the removed line.
class RemoveQuoteLine : public QuoteStep
{
public:
    RemoveQuoteLine(EditHistory &history, const QString &text, const QuoteView &before,
        const QuoteView &after, int row);

protected:
    void forward() override;
    void backward() override;

private:
    int m_row;
    Table m_removed;
};

/// "Remove &All": the rows from the first to the first free one removed (the quote keeps its
/// size); holds the removed rows.
class RemoveAllQuoteLines : public QuoteStep
{
public:
    RemoveAllQuoteLines(
        EditHistory &history, const QuoteView &before, const QuoteView &after, int rows);

protected:
    void forward() override;
    void backward() override;

private:
    int m_rows;
    Table m_removed;
};

/// The whole quote replaced by another one (a quote opened or a new quote started); holds the
/// other quote.
class ReplaceQuote : public QuoteStep
{
public:
    ReplaceQuote(EditHistory &history, const QString &text, const QuoteView &before,
        const QuoteView &after, Table quote);

protected:
    void forward() override;
    void backward() override;

private:
    void swapQuote();

    Table m_other;
};

} // namespace tarnwick
