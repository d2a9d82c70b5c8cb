#include "quotebook/quotesession.h"

#include "catalogue/table.h"
#include "quotebook/quotebookrows.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"

#include <algorithm>

namespace tarnwick {

namespace {

/// Whether two quotes' lines are the same as the quote book keeps them: a price typed as
/// "12,50" and the 12.5 the book gives back for it are the same price.
bool sameLines(const Table &a, const Table &b, const QLocale &locale)
{
    if (a.rowCount() != b.rowCount())
        return false;
    const int fields = qMin(a.fieldCount(), b.fieldCount());
    for (int row = 1; row <= a.rowCount(); ++row) {
        for (int field = 1; field <= fields; ++field) {
            const Cell &left = a.get(row, field);
            const Cell &right = b.get(row, field);
            if (!(left == right)
                && !(QuoteBookRows::bookCell(left, field, locale)
                    == QuoteBookRows::bookCell(right, field, locale)))
                return false;
        }
    }
    return true;
}

/// A revision saved today starts as a draft, dated today and valid for the usual days.
void startToday(QuoteHeader &header, const QDate &today)
{
    header.date = today;
    header.validUntil = today.addDays(DefaultValidDays);
    header.status = QuoteStatus::Draft;
}

} // namespace

QuoteSession::QuoteSession(QuoteBook &book, const Table &quote, const Table &catalogue,
    const QLocale &locale, QObject *parent)
    : QObject(parent), m_book(book), m_quote(quote), m_catalogue(catalogue), m_locale(locale)
{
    connect(&m_timer, &QTimer::timeout, this, &QuoteSession::keepInBackground);
}

bool QuoteSession::isEmpty() const
{
    return QuoteLine::lineCount(m_quote) == 0;
}

bool QuoteSession::isChanged() const
{
    if (!m_header.isSaved())
        return !isEmpty();
    return !sameLines(QuoteList::linesOf(m_quote), m_saved.lines, m_locale);
}

std::vector<PriceSource> QuoteSession::sources() const
{
    // Lines as they were last kept keep their sources; only new or changed lines are looked
    // up in the catalogue.
    auto sources =
        PriceSources::sourcesOf(m_quote, m_catalogue, m_known.lines, m_known.sources, m_locale);
    m_known.lines = QuoteList::linesOf(m_quote);
    m_known.sources = sources;
    return sources;
}

std::optional<QuoteSession::Typing> QuoteSession::typing() const
{
    return m_typingReader ? m_typingReader() : std::nullopt;
}

SavedQuote QuoteSession::record(const QuoteTexts &texts) const
{
    SavedQuote quote;
    quote.header = m_header;
    quote.header.heading = texts.heading;
    quote.header.ending = texts.ending;
    quote.content.sources = sources();
    quote.content.lines = QuoteList::linesOf(m_quote);
    return quote;
}

void QuoteSession::takeOver(const SavedQuote &quote)
{
    m_header = quote.header;
    m_saved = quote.content;
    m_known = quote.content;
    m_keptQuoteId = -1; // the book's quote in hand now names another revision
    Q_EMIT headerChanged();
}

bool QuoteSession::saveAsNew(SavedQuote &quote)
{
    if (!m_book.saveNew(quote))
        return false;
    takeOver(quote);
    keepNow();
    return true;
}

bool QuoteSession::saveNew(
    const CustomerDetails &customer, const QuoteTexts &texts, const QDate &today)
{
    SavedQuote quote = record(texts);
    quote.header.id = 0;
    quote.header.customer = customer;
    startToday(quote.header, today);
    return saveAsNew(quote);
}

bool QuoteSession::duplicate(
    const CustomerDetails &customer, const QuoteTexts &texts, const QDate &today)
{
    return saveNew(customer, texts, today);
}

bool QuoteSession::saveChanges(const QuoteTexts &texts)
{
    if (!m_header.isSaved())
        return false;
    SavedQuote quote = record(texts);
    if (!m_book.update(quote))
        return false;
    takeOver(quote);
    keepNow();
    return true;
}

bool QuoteSession::saveRevision(const QuoteTexts &texts, const QDate &today)
{
    if (!m_header.isSaved())
        return false;
    SavedQuote quote = record(texts);
    startToday(quote.header, today);
    if (!m_book.saveRevision(quote))
        return false;
    takeOver(quote);
    keepNow();
    return true;
}

std::optional<SavedQuote> QuoteSession::load(qint64 id)
{
    return m_book.load(id);
}

void QuoteSession::adopt(const SavedQuote &quote)
{
    takeOver(quote);
    keepNow();
}

void QuoteSession::startNew()
{
    m_header = QuoteHeader();
    m_saved = QuoteContent();
    m_keptQuoteId = -1;
    Q_EMIT headerChanged();
    keepNow();
}

void QuoteSession::setState(const State &state)
{
    std::optional<SavedQuote> saved;
    if (state.header.isSaved() && m_book.isOpen())
        saved = m_book.load(state.header.id);
    m_header = saved ? saved->header : state.header;
    m_saved = saved ? saved->content : state.saved;
    if (m_header.isSaved())
        m_known = m_saved; // the saved lines' price sources
    m_keptQuoteId = -1; // the quote in hand names another revision (or none) now
    m_note = state.note;
    Q_EMIT headerChanged();
    Q_EMIT replaced();
}

QList<int> QuoteSession::linesWithOtherPrices() const
{
    return PriceSources::linesWithOtherPrices(m_quote, sources(), m_catalogue, m_locale);
}

bool QuoteSession::markSent()
{
    if (!m_header.isSaved() || !m_book.setStatus(m_header.id, QuoteStatus::Sent))
        return false;
    m_header.status = QuoteStatus::Sent;
    Q_EMIT headerChanged();
    return true;
}

void QuoteSession::refreshStatus()
{
    if (!m_header.isSaved() || !m_book.isOpen())
        return;
    const auto quote = m_book.load(m_header.id);
    if (!quote || quote->header.status == m_header.status)
        return;
    m_header.status = quote->header.status;
    Q_EMIT headerChanged();
}

std::optional<Table> QuoteSession::restore()
{
    const auto inHand = m_book.inHand();
    if (!inHand)
        return std::nullopt;
    m_header = QuoteHeader();
    m_saved = QuoteContent();
    if (inHand->quoteId != 0) {
        if (const auto saved = m_book.load(inHand->quoteId)) {
            m_header = saved->header;
            m_saved = saved->content;
        }
    }
    m_known = inHand->content;
    m_keptQuoteId = m_header.id;
    Q_EMIT headerChanged();
    return inHand->content.lines;
}

std::optional<QuoteHeader> QuoteSession::saveMissedInHand(
    const QuoteTexts &texts, const QDate &today)
{
    const auto inHand = m_book.inHand();
    if (!inHand || inHand->content.lines.rowCount() == 0)
        return std::nullopt;
    SavedQuote quote;
    const auto continued =
        inHand->quoteId != 0 ? m_book.load(inHand->quoteId) : std::optional<SavedQuote>();
    if (continued && sameLines(continued->content.lines, inHand->content.lines, m_locale))
        return std::nullopt; // nothing but what the book holds as that revision
    if (continued) {
        quote.header = continued->header;
    } else {
        quote.header.heading = texts.heading;
        quote.header.ending = texts.ending;
        quote.header.customer.reference = QStringLiteral("Kept at an earlier close");
    }
    startToday(quote.header, today);
    quote.content = inHand->content;
    const bool saved = continued ? m_book.saveRevision(quote) : m_book.saveNew(quote);
    return saved ? std::optional<QuoteHeader>(quote.header) : std::nullopt;
}

bool QuoteSession::keepNow()
{
    return keep(typing());
}

bool QuoteSession::keep(const std::optional<Typing> &typed)
{
    if (!m_book.isOpen() || m_book.needsReopening()) {
        // Nothing to keep needs no book; a quote to keep opens (or makes) one.
        if (isEmpty() && !m_header.isSaved())
            return true;
        if (!m_opener || !m_opener())
            return false;
        // A book opened anew (another file in the place of the one that went) is not known
        // to hold the quote on screen.
        m_keptQuoteId = KeptNone;
    }
    const std::size_t digest = typed ? typed->digest : 0;
    if (keptAsItIs(digest))
        return true;
    QuoteBook::InHand inHand;
    inHand.quoteId = m_header.id;
    if (typed) {
        // The lines as typing would leave them; what is known of the quote's own lines stays
        // theirs, for when the typing is dropped.
        inHand.content.sources = PriceSources::sourcesOf(
            typed->lines, m_catalogue, m_known.lines, m_known.sources, m_locale);
        inHand.content.lines = QuoteList::linesOf(typed->lines);
    } else {
        inHand.content.sources = sources();
        inHand.content.lines = m_known.lines;
    }
    if (!m_book.keepInHand(inHand)) {
        Q_EMIT keepFailed(m_book.errorString());
        return false;
    }
    m_keptGeneration = m_quote.generation();
    m_keptQuoteId = m_header.id;
    m_keptTyping = digest;
    Q_EMIT kept();
    return true;
}

bool QuoteSession::keptAsItIs(std::size_t typing) const
{
    return m_quote.generation() == m_keptGeneration && m_header.id == m_keptQuoteId
        && typing == m_keptTyping;
}

void QuoteSession::markKept()
{
    m_keptGeneration = m_quote.generation();
    m_keptQuoteId = m_header.id;
    m_keptTyping = 0;
}

void QuoteSession::startKeeping(int intervalMs)
{
    m_interval = intervalMs;
    m_timer.start(intervalMs);
}

void QuoteSession::keepInBackground()
{
    // Most ticks find nothing to keep, and need no word with the book.
    const std::optional<Typing> typed = typing();
    if (m_book.isOpen() && !m_book.needsReopening() && keptAsItIs(typed ? typed->digest : 0))
        return;
    // The window never waits long for a book another program holds: the keep tries briefly,
    // and after a failure less and less often (up to every MaxRetryMs) until it works again.
    m_book.setBusyWait(BackgroundBusyWaitMs);
    const bool kept = keep(typed);
    m_book.setBusyWait(QuoteBook::BusyWaitMs);
    m_timer.setInterval(kept ? m_interval : std::min(m_timer.interval() * 2, MaxRetryMs));
}

void QuoteSession::stopKeeping()
{
    m_timer.stop();
}

} // namespace tarnwick
