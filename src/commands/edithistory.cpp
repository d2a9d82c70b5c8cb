#include "commands/edithistory.h"

#include <algorithm>

namespace tarnwick {

EditCommand::EditCommand(Module1 &module, const QString &text) : m_module(module)
{
    setText(text);
}

EditCommand::~EditCommand() = default;

void EditCommand::redo()
{
    forward();
    const bool replayed = m_done;
    m_done = true;
    announce(false, replayed);
}

void EditCommand::undo()
{
    backward();
    announce(true, true);
}

EditHistory::EditHistory(Module1 &module, QObject *parent) : QObject(parent), m_module(module)
{
    // No limit: the history of a run is kept whole (the steps hold little).
    m_stack.setUndoLimit(0);
    connect(&m_stack, &QUndoStack::indexChanged, this, &EditHistory::positionChanged);
    connect(&m_stack, &QUndoStack::cleanChanged, this, &EditHistory::positionChanged);
}

EditHistory::~EditHistory()
{
    // The steps go before the tables they refer to, without telling anyone.
    disconnect(&m_stack, nullptr, this, nullptr);
    m_stack.clear();
}

const EditCommand *EditHistory::command(int index) const
{
    return static_cast<const EditCommand *>(m_stack.command(index));
}

bool EditHistory::changesCatalogueBetween(int from, int to) const
{
    // Sorts alone can put every row back, and only two or more that move rows: anything else
    // is a change without working out where the rows went.
    int moves = 0;
    for (int index = from; index < to; ++index) {
        const EditCommand *step = command(index);
        if (!step || !step->changesCatalogue())
            continue;
        const std::vector<int> *order = step->rowOrder();
        if (order == nullptr)
            return true;
        moves += order->empty() ? 0 : 1;
    }
    if (moves < 2)
        return moves == 1;
    // Where the row now at k + 1 stood at position from (filled at the first sort met).
    std::vector<int> cameFrom;
    for (int index = from; index < to; ++index) {
        const EditCommand *step = command(index);
        if (!step || !step->changesCatalogue())
            continue;
        const std::vector<int> *order = step->rowOrder();
        if (order->empty())
            continue;
        if (cameFrom.empty()) {
            cameFrom.resize(order->size());
            for (std::size_t k = 0; k < cameFrom.size(); ++k)
                cameFrom[k] = int(k) + 1;
        }
        if (order->size() != cameFrom.size())
            return true;
        std::vector<int> next(cameFrom.size());
        for (std::size_t k = 0; k < next.size(); ++k)
            next[k] = cameFrom[std::size_t((*order)[k] - 1)];
        cameFrom = std::move(next);
    }
    for (std::size_t k = 0; k < cameFrom.size(); ++k) {
        if (cameFrom[k] != int(k) + 1)
            return true;
    }
    return false;
}

void EditHistory::push(EditCommand *command)
{
    const int at = m_stack.index();
    // The steps undone after the saved state go now: when none of them changed the catalogue,
    // the catalogue here is still the saved one; otherwise it can no longer be reached.
    if (m_savedIndex > at)
        m_savedIndex = changesCatalogueBetween(at, m_savedIndex) ? -1 : at;
    m_stack.push(command);
    positionChanged();
}

void EditHistory::runWork(const std::function<void()> &work) const
{
    if (m_runner)
        m_runner(work);
    else
        work();
}

void EditHistory::undo()
{
    m_stack.undo();
}

void EditHistory::redo()
{
    m_stack.redo();
}

void EditHistory::setSaved()
{
    m_savedIndex = m_stack.index();
    m_stack.setClean();
    positionChanged();
}

bool EditHistory::catalogueSaved() const
{
    if (m_savedIndex < 0)
        return false;
    const int at = m_stack.index();
    return !changesCatalogueBetween(std::min(at, m_savedIndex), std::max(at, m_savedIndex));
}

void EditHistory::announce(const ProductChange &change)
{
    Q_EMIT productsChanged(change);
}

void EditHistory::announce(const QuoteChange &change)
{
    Q_EMIT quoteChanged(change);
}

void EditHistory::positionChanged()
{
    Q_EMIT stepsChanged();
    const bool saved = catalogueSaved();
    if (saved == m_saved)
        return;
    m_saved = saved;
    Q_EMIT catalogueSavedChanged(saved);
}

} // namespace tarnwick
