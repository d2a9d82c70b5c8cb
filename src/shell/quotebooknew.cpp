// A new quote on screen: File → New, and "Remove All" on a quote the book holds.
#include "shell/quotebookcontroller.h"

#include "catalogue/module1.h"
#include "quotebook/quotesession.h"
#include "shell/quotecontroller.h"

namespace tarnwick {

namespace {

const QString NewQuoteTitle = QStringLiteral("New Quote");

} // namespace

void QuoteBookController::newQuote()
{
    m_quote.storePendingEdit();
    // A changed quote (its lines, or its heading and ending) is offered for saving; without a
    // book it cannot be, and goes (an undo brings it back).
    if (!noteSettled(NewQuoteTitle))
        return;
    if (hasChanges() && openBook(false) && !offerToSave(NewQuoteTitle))
        return;
    replaceOnScreen(Table(0, m_module.QuoteTable().fieldCount()), m_session->state(),
        QuoteSession::State(), NewQuoteTitle, NewQuoteTitle);
    status(NewQuoteMessage);
}

void QuoteBookController::removeAll()
{
    const QuoteHeader saved = m_session->header();
    if (!saved.isSaved()) {
        m_quote.removeAllLines();
        return;
    }
    m_quote.storePendingEdit();
    // Emptied to start anew, a saved quote is not that quote any more: new lines saved under
    // its number would silently take the place of what the customer was offered. One step
    // takes back the lines and the quote they belong to.
    replaceOnScreen(Table(0, m_module.QuoteTable().fieldCount()), m_session->state(),
        QuoteSession::State(), QStringLiteral("Remove All Quote Lines"),
        QStringLiteral("Remove All"));
    m_removedAllMessage = QStringLiteral("Quote %1 stays in the quote book as last saved; the "
                                         "quote on screen is a new one.")
                              .arg(saved.numberAndRevision());
    status(m_removedAllMessage);
}

} // namespace tarnwick
