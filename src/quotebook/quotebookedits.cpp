#include "quotebook/quotebookedits.h"

#include "catalogue/module1.h"
#include "commands/cellchanges.h"
#include "commands/quotecommands.h"

#include <utility>

namespace tarnwick::QuoteBookEdits {

namespace {

/// ReplaceQuote, with the quote in hand's revision swapped along with the lines.
class ReplaceQuoteInHand : public ReplaceQuote
{
public:
    ReplaceQuoteInHand(EditHistory &history, QuoteSession &session, const QString &text,
        const QuoteSide &before, const QuoteSide &after, Table quote)
        : ReplaceQuote(history, text, before.view, after.view, std::move(quote)),
          m_session(session), m_before(before.state), m_after(after.state)
    {
    }

protected:
    // The side that is left takes Quote Note's texts as they are now, typed changes included,
    // so coming back to it brings them back.
    void forward() override
    {
        ReplaceQuote::forward();
        if (const auto now = m_session.currentNote(); now && m_before.note)
            m_before.note = now;
        m_session.setState(m_after);
    }
    void backward() override
    {
        ReplaceQuote::backward();
        if (const auto now = m_session.currentNote(); now && m_after.note)
            m_after.note = now;
        m_session.setState(m_before);
    }

private:
    QuoteSession &m_session;
    QuoteSession::State m_before;
    QuoteSession::State m_after;
};

} // namespace

bool replaceQuote(EditHistory &history, QuoteSession &session, const QuoteSide &before,
    const QuoteSide &after, Table quote, const QString &text)
{
    if (sameCells(history.module().QuoteTable(), quote)
        && before.state.header.id == after.state.header.id)
        return false;
    history.push(new ReplaceQuoteInHand(history, session, text, before, after, std::move(quote)));
    return true;
}

} // namespace tarnwick::QuoteBookEdits
