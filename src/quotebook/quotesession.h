#pragma once

#include "catalogue/table.h"
#include "quotebook/quotebook.h"
#include "quotebook/quoterecord.h"
#include "quotes/quotenote.h"

#include <QDate>
#include <QList>
#include <QLocale>
#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>
#include <vector>

namespace tarnwick {

class Table;

/// The quote in hand, as the quote book sees it: which saved revision it continues (if any),
/// whether it changed since that was saved, and keeping it in the book so that it outlives
/// the program (a close, a crash, a kill). It reads the quote table and never changes it: what
/// to load into the quote is handed back, and the quote's own functions load it.
class QuoteSession : public QObject
{
    Q_OBJECT

public:
    QuoteSession(QuoteBook &book, const Table &quote, const Table &catalogue, const QLocale &locale,
        QObject *parent = nullptr);

    QuoteBook &book() { return m_book; }
    const QuoteHeader &header() const { return m_header; }
    /// The quote differs from the revision it continues; a quote never saved counts as changed
    /// once it has a line.
    bool isChanged() const;
    /// The quote has no line.
    bool isEmpty() const;

    /// Start-up: the quote in hand as the book kept it. Its header is taken over here; the
    /// lines come back for the quote to load. None when the book keeps no quote in hand.
    std::optional<Table> restore();
    /// The quote in hand the book kept from an earlier run, when this run could not bring it
    /// back at its start (the book was held by another program then): saved as a quote of its
    /// own before this run's quote is kept in its place, as the next revision of the quote it
    /// continued or as a new quote dated today. None when the book keeps no such lines, they
    /// are that revision unchanged, or the save failed (errorString() of the book says why).
    std::optional<QuoteHeader> saveMissedInHand(const QuoteTexts &texts, const QDate &today);

    /// The first save: the quote gets the next number of today's year, revision A, dated today
    /// and valid for DefaultValidDays, for customer.
    bool saveNew(const CustomerDetails &customer, const QuoteTexts &texts, const QDate &today);
    /// Later saves: the revision in hand takes the quote's lines and texts as they are now.
    bool saveChanges(const QuoteTexts &texts);
    /// "New Revision": the revision saved so far stays as it is; the quote in hand becomes the
    /// next revision of the same number, dated today, saved at once.
    bool saveRevision(const QuoteTexts &texts, const QDate &today);
    /// "Duplicate Quote": the same lines under a new number for customer (saveNew's rules).
    bool duplicate(const CustomerDetails &customer, const QuoteTexts &texts, const QDate &today);

    /// A saved quote as the book has it, for opening.
    std::optional<SavedQuote> load(qint64 id);
    /// The quote's lines are now those of quote: it becomes the revision in hand, unchanged.
    void adopt(const SavedQuote &quote);
    /// The quote was emptied for a new one (File → New): nothing saved is in hand any more.
    void startNew();
    /// The lines priced from the catalogue whose price is another in today's catalogue.
    QList<int> linesWithOtherPrices() const;

    /// Which saved revision the quote in hand continues, and its lines as saved: what an undo
    /// of a quote opened, duplicated or started afresh takes back along with the lines.
    struct State
    {
        QuoteHeader header;
        QuoteContent saved;
        /// Quote Note's heading and ending with this quote in hand, which an undo or a redo
        /// puts back with it; none where Quote Note is left as it is.
        std::optional<QuoteTexts> note;
    };
    State state() const { return { m_header, m_saved, std::nullopt }; }
    /// Back to state. A saved revision is read from the book again, so a save, a status or a
    /// revision made since counts; the state given stands when the book cannot be read.
    void setState(const State &state);
    /// The state that adopt(quote) and startNew() give, without taking it on.
    static State stateOf(const SavedQuote &quote)
    {
        return { quote.header, quote.content,
            QuoteTexts { quote.header.heading, quote.header.ending } };
    }
    /// Quote Note's texts the last setState asked for (none when it asked for none).
    const std::optional<QuoteTexts> &noteTexts() const { return m_note; }
    /// Reads Quote Note's texts as they are now, for a step that leaves the quote in hand to
    /// take along (what the user typed there since counts).
    void setNoteReader(std::function<QuoteTexts()> reader) { m_noteReader = std::move(reader); }
    std::optional<QuoteTexts> currentNote() const
    {
        return m_noteReader ? std::optional<QuoteTexts>(m_noteReader()) : std::nullopt;
    }

    /// The revision in hand is marked as sent to the customer.
    bool markSent();
    /// Takes the status the book holds for the quote in hand (the Quotes window sets statuses
    /// in the book); headerChanged() when it is another.
    void refreshStatus();

    /// Keeps the quote in hand in the book when it changed since last kept. True when the book
    /// holds the quote as it is now.
    bool keepNow();
    /// After restore(): the quote on screen holds the lines the book keeps, so nothing is
    /// written until it changes.
    void markKept();
    /// Looks at the quote every intervalMs milliseconds and keeps it when it changed, so a
    /// change reaches the disk within about that time.
    void startKeeping(int intervalMs = 500);
    /// The timer's keep: a short wait on a busy book, and fewer tries while it stays busy.
    void keepInBackground();
    static constexpr int BackgroundBusyWaitMs = 50;
    static constexpr int MaxRetryMs = 8000;
    int keepInterval() const { return m_timer.interval(); }
    void stopKeeping();
    /// Opens the book when there is a quote to keep and the book is not open yet (a first
    /// book is made only once it is needed); true when it is open.
    void setOpener(std::function<bool()> opener) { m_opener = std::move(opener); }

    /// How each line's unit price came about, for the lines as they are now.
    std::vector<PriceSource> sources() const;

    /// A cell of the quote still being typed into: the lines as storing it would leave them,
    /// and a digest of the typing that tells one from another.
    struct Typing
    {
        Table lines;
        std::size_t digest = 0;
    };
    /// Reads the typing in the quote's grid, if any. The quote is kept with it, as a close
    /// would store it, so a crash or a kill does not lose what was typed but not yet entered.
    void setTypingReader(std::function<std::optional<Typing>()> reader)
    {
        m_typingReader = std::move(reader);
    }
    /// The quote as it would be saved now: the header in hand with the lines and texts given.
    SavedQuote record(const QuoteTexts &texts) const;

    QString errorString() const { return m_book.errorString(); }

Q_SIGNALS:
    /// The number, revision, customer or status of the quote in hand changed.
    void headerChanged();
    /// Another quote is in hand through setState: one opened, a new one, or the one an undo or
    /// redo brings back (noteTexts() says what Quote Note holds with it).
    void replaced();
    /// The quote in hand was written to the book (tests wait for this).
    void kept();
    /// Keeping the quote in hand failed; detail in plain words.
    void keepFailed(const QString &detail);

private:
    /// The book holds the quote in hand as it is now, with the typing of that digest (0: none).
    bool keptAsItIs(std::size_t typing) const;
    std::optional<Typing> typing() const;
    /// keepNow with the typing read once by the caller.
    bool keep(const std::optional<Typing> &typed);
    bool saveAsNew(SavedQuote &quote);
    void takeOver(const SavedQuote &quote);

    QuoteBook &m_book;
    const Table &m_quote;
    const Table &m_catalogue;
    QLocale m_locale;
    QuoteHeader m_header;
    QuoteContent m_saved; ///< the lines of the revision in hand as saved
    std::optional<QuoteTexts> m_note; ///< Quote Note's texts asked for by the last setState
    std::function<QuoteTexts()> m_noteReader;
    mutable QuoteContent m_known; ///< the lines as last kept, with their price sources
    quint64 m_keptGeneration = 0;
    /// The id of the quote kept in hand; KeptNone when the book is not known to hold any.
    static constexpr qint64 KeptNone = -2;
    qint64 m_keptQuoteId = -1;
    /// The digest of the typing kept with the quote; 0 for none.
    std::size_t m_keptTyping = 0;
    std::function<std::optional<Typing>()> m_typingReader;
    QTimer m_timer;
    int m_interval = 500; ///< the keep timer's interval while keeping works
    std::function<bool()> m_opener;
};

} // namespace tarnwick
