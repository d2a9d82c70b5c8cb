#pragma once

#include "commands/edithistory.h"
#include "quotebook/quotebook.h"
#include "quotebook/quotesession.h"

#include <QDate>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class QWidget;

namespace tarnwick {

struct AppServices;
struct MainWindowUi;
class IQuoteBookDialogs;
class Module1;
class QuoteController;
class QuoteSession;
struct QuoteTexts;
class Table;

/// The quote book on the main window: "Save Quote", "Open Quote", "New Revision", "Duplicate
/// Quote" and "Save as PDF" on the quote menu, File → New and Send, and the quote in hand
/// kept in "quotes.db" from start to close. A quote opened, a new quote and a duplicate replace
/// the quote on screen as one step of the history (QuoteBookEdits), which an undo takes back
/// with the revision the quote continued; the book and the quote in hand are the
/// QuoteSession's.
class QuoteBookController : public QObject
{
    Q_OBJECT

public:
    static constexpr QLatin1String BookFileName { "quotes.db" };
    static constexpr QLatin1String BackupFileName { "quotes.bak" };
    static constexpr QLatin1String FrameCaption { "Quote Details" };
    /// The status bar's word once File → New or "Remove All" has put a new quote on screen.
    static constexpr QLatin1String NewQuoteMessage { "New quote." };

    QuoteBookController(const AppServices &services, Module1 &module, EditHistory &history,
        MainWindowUi &ui, QuoteController &quote, QWidget *owner);
    ~QuoteBookController() override;

    /// After the password, before the window shows: opens the quote book (reporting a damaged
    /// one), puts the quote in hand back on screen and keeps it from then on.
    void start();
    /// Before a close: keeps the quote in hand with what is being typed. When the book cannot
    /// take it, says so and asks whether to close all the same; false keeps Tarnwick open
    /// (the quote goes on being kept safe).
    bool readyToClose();
    /// Shut-down: keeps the quote in hand, copies the book to "quotes.bak" and closes it.
    void shutDown();
    /// The desktop session ends: the quote in hand, with a cell being typed, is kept at once.
    void sessionEnding();

    void saveQuote();
    void openQuote();
    void newRevision();
    void duplicateQuote();
    void saveAsPdf();
    /// File → New: an empty quote, after offering to save a changed one.
    void newQuote();
    /// "Remove All": the lines go. A saved quote emptied so is a new quote, and the saved one
    /// stays in the book as it is: the next Save Quote asks who the new one is for.
    void removeAll();
    /// File → Send: the quote's PDF in the customer's mail, the quote marked sent.
    void send();
    /// File → Save All's part: saves the quote when it has changed (asking for the customer
    /// the first time). True when nothing is left unsaved.
    bool saveChangedQuote();

    QuoteSession *session() const { return m_session.get(); }
    QuoteBook &book() { return m_book; }
    void setDialogs(std::unique_ptr<IQuoteBookDialogs> dialogs);
    /// The day quotes are dated and run out against (the computer's date unless set); the
    /// frame above the quote shows at once whether the quote on screen has run out.
    void setToday(std::function<QDate()> today);
    /// A new day began while Tarnwick runs: the frame says "(expired)" of a quote on screen that
    /// ran out at midnight. Called by a timer ("dayWatch") that looks at the date at each
    /// midnight and once a minute.
    void dayChanged();
    /// Asked, with the command's title, before the quote on screen is saved (Save Quote, New
    /// Revision, Duplicate Quote, a PDF or a mail) or replaced: false when the user stays as
    /// things are (Quote Note's unsaved typing, say, is not settled).
    void setSettleNote(std::function<bool(const QString &)> settle)
    {
        m_settleNote = std::move(settle);
    }

private:
    QString bookPath() const;
    /// Moves the copy made at the last close beside the damaged book replaced; its file name,
    /// empty when there was none.
    QString keepLastCopy(const QuoteBook::OpenResult &replaced);
    /// With the book missing at the start and the copy of its last close there: offers the
    /// copy, and puts it in the book's place when the user agrees. True when it is there now.
    bool openLastCopy();
    /// A new book was created: it takes the catalogue's permissions, and where the copy of an
    /// earlier book lies beside it, numbers go on after the copy's and the copy moves aside
    /// (said in the status bar).
    void newBookBesideLastCopy();
    /// Gives the book's files the permissions of the catalogue file.
    void makeBookAsPrivateAsCatalogue();
    /// Opens the book when it is not open yet; a failure is told in a box or in the status bar.
    bool openBook(bool inABox);
    bool ready(const QString &title);
    QuoteTexts currentTexts() const;
    /// The quote in hand changed since it was saved: its lines, or Quote Note's texts are no
    /// longer the ones the saved quote was saved with.
    bool hasChanges() const;
    /// An expired quote about to go out as a PDF (what: "Send", "Save the PDF of"): true when it
    /// has not expired or the user goes on all the same.
    bool sendsExpired(const QString &what, const QString &title);
    /// Quote Note's unsaved typing settled (see setSettleNote); false when the user cancelled.
    bool noteSettled(const QString &title);
    bool saveFirstTime(const QString &title);
    bool saveInHand(const QString &title);
    bool offerToSave(const QString &title);
    bool ensureSaved(const QString &title);
    bool writePdf(const QString &path, const QString &title);
    /// The whole quote on screen replaced by lines as one step named text, the quote in hand
    /// going from before to after. False, with a message, when there are too many lines.
    bool replaceOnScreen(const Table &lines, const QuoteSession::State &before,
        const QuoteSession::State &after, const QString &text, const QString &title);
    /// Lines priced from the catalogue that cost otherwise today, re-priced when the user
    /// agrees (one more step).
    void offerTodaysPrices(const std::vector<PriceSource> &sources);
    void restoreInHand();
    /// What the status bar says of the quote's lines whose products the catalogue no longer
    /// holds and that keep their prices (QuoteBookMessages::withoutProduct); empty for none.
    QString linesWithoutProduct() const;
    /// Keeps the quote in hand with what is being typed; what a close would lose when the book
    /// cannot take it (empty when it is kept, or there is nothing to keep).
    QString keepForClose();
    /// Saves the quote the last run kept, which the start could not bring back, as a quote of
    /// its own (said in the status bar).
    void saveMissedInHand();
    void showHeader();
    /// Starts the watch of the day: at the next midnight, or in a minute if sooner.
    void armDayWatch();
    /// Opens the book anew after a file dialog has closed (see FileDialogWatch).
    void retakeLocks();
    /// A frame shown or resized shows its title again, cut to its width.
    bool eventFilter(QObject *watched, QEvent *event) override;
    void report(const QString &text, const QString &title);
    void status(const QString &text);

    const AppServices &m_services;
    Module1 &m_module;
    EditHistory &m_history;
    MainWindowUi &m_ui;
    QuoteController &m_quote;
    QWidget *m_owner;
    QuoteBook m_book;
    std::unique_ptr<QuoteSession> m_session;
    std::unique_ptr<IQuoteBookDialogs> m_dialogs;
    std::function<QDate()> m_today;
    QTimer m_dayWatch { this };
    /// The day the frame above the quote was last shown for.
    QDate m_shownDay;
    std::function<bool(const QString &)> m_settleNote;
    QString m_unavailable; ///< why the book could not be opened; empty once it is
    bool m_openable = true; ///< false once the book turned out to be of a later version
    bool m_started = false;
    bool m_lossAccepted = false; ///< the user chose to close though the quote was not kept
    /// The book could not be opened at the start: the quote it keeps from the last run was
    /// not brought back, and must not be replaced unseen once the book opens.
    bool m_missedInHand = false;
    /// The copy of a damaged book's last close could not be moved aside: it stays untouched.
    bool m_keepBackup = false;
    bool m_keepFailing = false; ///< the status bar says the quote cannot be kept safe
    /// What Remove All of a saved quote said last, taken back by an undo or redo.
    QString m_removedAllMessage;
};

} // namespace tarnwick
