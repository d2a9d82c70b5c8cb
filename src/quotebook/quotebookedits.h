#pragma once

#include "commands/edithistory.h"
#include "quotebook/quotesession.h"

class QString;

namespace tarnwick {

class Table;

/// The quote on screen replaced by another one as one step of the history: a quote opened, a
/// new quote started, a quote duplicated for another customer. The step holds the lines and
/// the quote in hand's saved revision on both sides, so an undo brings back the quote that was
/// on screen together with the revision it continued, and a redo the other one.
namespace QuoteBookEdits {

/// The quote on screen on either side of a step: where the grid stands and the revision the
/// quote in hand continues.
struct QuoteSide
{
    QuoteView view;
    QuoteSession::State state;
};

/// Replaces the quote table by quote (as many rows and fields as the quote table) and the
/// session's state by after.state, as one step named text; before is what an undo brings
/// back (the session may have moved on already, as a duplicate saved under its new number
/// has). False, and no step, when neither the cells nor the revision in hand would change.
bool replaceQuote(EditHistory &history, QuoteSession &session, const QuoteSide &before,
    const QuoteSide &after, Table quote, const QString &text);

} // namespace QuoteBookEdits

} // namespace tarnwick
