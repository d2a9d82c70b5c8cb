#include "products/productsearch.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "platform/ieventpump.h"
#include "platform/iprompts.h"

#include <algorithm>

namespace tarnwick {

namespace {

/// Whether the cell's text contains needle, ignoring letter case. needle is already upper-
/// cased, so this is the comparison of both texts upper-cased, without building an upper-cased
/// copy of every cell. A null cell has no text and never matches.
bool cellContains(const Cell &cell, const QString &needle, const QLocale &locale)
{
    if (cell.isNull() || cell.isEmpty())
        return false;
    if (cell.isText())
        return cell.asText().contains(needle, Qt::CaseInsensitive);
    return conv::toText(cell, locale).contains(needle, Qt::CaseInsensitive);
}

} // namespace

ProductSearch::ProductSearch(IPrompts &prompts, IEventPump *events)
    : m_prompts(prompts), m_events(events)
{
}

QString ProductSearch::prompt() const
{
    return m_remembered.isEmpty() ? QString(FirstPrompt) : QString(AgainPrompt);
}

int ProductSearch::find(
    const QString &entered, int currentGridRow, const Table &catalogue, const QLocale &locale)
{
    if (entered.isEmpty())
        return -1;
    const bool continued = entered == m_remembered;
    m_remembered = entered;
    const QString needle = entered.toUpper();
    const int start = continued ? std::max(0, currentGridRow + 1) : 0;
    const int found = scan(needle, start, catalogue, locale);
    if (found >= 0)
        return found;
    if (!continued)
        return reportNoMatches();
    if (!askToWrap())
        return -1;
    // The question is asked once per search: a wrapped search that still finds nothing ends
    // with the plain message.
    const int wrapped = scan(needle, 0, catalogue, locale);
    return wrapped >= 0 ? wrapped : reportNoMatches();
}

int ProductSearch::scan(
    const QString &needle, int fromGridRow, const Table &catalogue, const QLocale &locale)
{
    for (int row = fromGridRow + 1; row <= catalogue.rowCount(); ++row) {
        if (cellContains(catalogue.get(row, ProductRecord::PartNumber), needle, locale)
            || cellContains(catalogue.get(row, ProductRecord::ProductName), needle, locale))
            return row - 1;
    }
    return -1;
}

bool ProductSearch::askToWrap()
{
    const int answer =
        m_prompts.msgBox(WrapQuestion, MsgStyle::YesNo + MsgStyle::Question, FindTitle);
    if (answer != MsgResult::Yes)
        return false;
    if (m_events)
        m_events->processPendingEvents();
    return true;
}

int ProductSearch::reportNoMatches()
{
    m_prompts.msgBox(NoMatchesMessage, MsgStyle::OkOnly, FindTitle);
    return -1;
}

} // namespace tarnwick
