#include "shell/quotebookcontroller.h"

#include "catalogue/module1.h"
#include "commands/quoteedits.h"
#include "core/formats.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/ifiledialogs.h"
#include "platform/iprompts.h"
#include "quotebook/quotebookbackup.h"
#include "quotebook/quotebookedits.h"
#include "quotebook/quotebookmessages.h"
#include "quotebook/quotesession.h"
#include "quotebook/ui/quotebookdialogs.h"
#include "quotes/pricesource.h"
#include "quotes/quotelist.h"
#include "quotes/quotenote.h"
#include "shell/filedialogwatch.h"
#include "shell/gridview.h"
#include "shell/mainwindowui.h"
#include "shell/quotecontroller.h"
#include "shell/statustext.h"

#include <QDateTime>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>
#include <chrono>
#include <utility>

namespace tarnwick {

namespace {

namespace Titles {
const QString Save = QStringLiteral("Save Quote");
const QString Open = QStringLiteral("Open Quote");
const QString Revision = QStringLiteral("New Revision");
const QString Duplicate = QStringLiteral("Duplicate Quote");
const QString Book = QStringLiteral("Quote Book");
} // namespace Titles

const QString FirstSaveIntro =
    QStringLiteral("The quote is saved under the next quote number, as revision A.");
const QString DuplicateIntro =
    QStringLiteral("The same lines are saved under a new quote number for this customer.");
constexpr int KeepInterval = 500;

} // namespace

QuoteBookController::QuoteBookController(const AppServices &services, Module1 &module,
    EditHistory &history, MainWindowUi &ui, QuoteController &quote, QWidget *owner)
    : QObject(owner), m_services(services), m_module(module), m_history(history), m_ui(ui),
      m_quote(quote), m_owner(owner), m_book(module.locale()),
      m_session(std::make_unique<QuoteSession>(
          m_book, module.QuoteTable(), module.Catalogue(), module.locale())),
      m_dialogs(std::make_unique<QtQuoteBookDialogs>(services.prompts, module.locale())),
      m_today([] { return QDate::currentDate(); })
{
    connect(m_session.get(), &QuoteSession::headerChanged, this, &QuoteBookController::showHeader);
    m_session->setTypingReader([this] { return m_quote.typing(); });
    // Left open overnight, the frame keeps up with the day.
    m_dayWatch.setObjectName(QStringLiteral("dayWatch"));
    m_dayWatch.setSingleShot(true);
    m_dayWatch.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_dayWatch, &QTimer::timeout, this, [this] {
        if (m_today() != m_shownDay)
            dayChanged();
        else
            armDayWatch();
    });
    armDayWatch();
    m_ui.FraQuote->installEventFilter(this);
    new FileDialogWatch([this] { retakeLocks(); }, this);
    // "New quote." no longer says what is on screen once a step of the quote is undone or
    // redone (File → New undone brings the quote before it back), nor does Remove All's.
    connect(&history, &EditHistory::quoteChanged, this, [this] {
        m_ui.sbPanel1->takeBack(NewQuoteMessage);
        m_ui.sbPanel1->takeBack(m_removedAllMessage);
    });
    connect(m_session.get(), &QuoteSession::keepFailed, this, [this](const QString &detail) {
        m_keepFailing = true;
        const QString text =
            QStringLiteral("The quote on screen cannot be kept safe: %1. Until it is, keep a "
                           "copy elsewhere (the quote's menu \u2192 Copy).")
                .arg(detail);
        status(text);
        // The first panel's hints replace the message; the mark stays until the quote is safe.
        m_ui.sbUnsafe->setReason(QStringLiteral("quote"), text);
    });
    connect(m_session.get(), &QuoteSession::kept, this, [this] {
        if (std::exchange(m_keepFailing, false)) {
            status(QStringLiteral("The quote on screen is kept safe again."));
            m_ui.sbUnsafe->clearReason(QStringLiteral("quote"));
        }
    });
}

QuoteBookController::~QuoteBookController()
{
    m_session->stopKeeping();
}

void QuoteBookController::setDialogs(std::unique_ptr<IQuoteBookDialogs> dialogs)
{
    m_dialogs = std::move(dialogs);
}

/// A book that is there is opened at once, to bring back the quote in hand; a first one is
/// created only when there is something to keep, so a run that never quotes leaves no file.
void QuoteBookController::start()
{
    if (m_started)
        return;
    m_started = true;
    // An empty file (a sync tool's placeholder) holds no book: the copy is offered as for none.
    if (QFileInfo(bookPath()).size() > 0 || openLastCopy()) {
        if (openBook(true))
            restoreInHand();
        else
            m_missedInHand = true;
    }
    m_session->setOpener([this] { return openBook(false); });
    m_session->startKeeping(KeepInterval);
}

QString QuoteBookController::bookPath() const
{
    return m_services.environment.pathInAppFolder(BookFileName);
}

bool QuoteBookController::openBook(bool inABox)
{
    // A drive taken away and put back holds the book again, but the connection still holds
    // the file of the drive that went: the book is opened anew, as at the start.
    if (m_book.needsReopening())
        m_book.close();
    if (m_book.isOpen())
        return true;
    if (!m_openable)
        return false;
    const QuoteBook::OpenResult result = m_book.open(bookPath());
    if (result.status == QuoteBook::OpenStatus::Replaced) {
        // The numbers the damaged book gave to customers are not given again: the new book
        // continues after those its last copy and the damaged file still show. (Where it cannot
        // keep them, it still takes quotes.)
        static_cast<void>(
            m_book.continueNumbersOf(m_services.environment.pathInAppFolder(BackupFileName)));
        static_cast<void>(m_book.continueNumbersOf(result.keptAs));
    }
    if (result.status == QuoteBook::OpenStatus::Created)
        newBookBesideLastCopy();
    else if (result.status == QuoteBook::OpenStatus::Replaced)
        makeBookAsPrivateAsCatalogue();
    const QString lastCopy =
        result.status == QuoteBook::OpenStatus::Replaced ? keepLastCopy(result) : QString();
    const QString message = QuoteBookMessages::opened(result, bookPath(), lastCopy);
    if (!message.isEmpty() && inABox)
        m_services.prompts.msgBox(message, MsgStyle::Exclamation, Titles::Book);
    else if (!message.isEmpty())
        status(message);
    // A book of a later version stays as it is for the whole run.
    m_openable = result.status != QuoteBook::OpenStatus::TooNew;
    // A book that could not be opened before (another program held it): once the quote on
    // screen is in it, the status bar takes back what it said.
    if (m_book.isOpen() && !m_unavailable.isEmpty())
        m_keepFailing = true;
    m_unavailable = m_book.isOpen() ? QString() : result.detail;
    if (m_book.isOpen() && std::exchange(m_missedInHand, false))
        saveMissedInHand();
    return m_book.isOpen();
}

void QuoteBookController::saveMissedInHand()
{
    // The quote the last run left on screen was not brought back at the start: before this
    // run's quote is kept in its place, it becomes a quote of its own.
    const auto saved = m_session->saveMissedInHand(currentTexts(), QDate::currentDate());
    if (saved) {
        status(QStringLiteral("The quote on screen when Tarnwick last closed could not be brought "
                              "back at the start; it is saved as %1 (Open Quote finds it).")
                   .arg(saved->numberAndRevision()));
    }
}

void QuoteBookController::restoreInHand()
{
    const auto lines = m_session->restore();
    if (!lines)
        return;
    if (!m_quote.replaceLines(*lines)) {
        m_session->startNew();
        return;
    }
    m_session->markKept(); // the book holds these lines already
    if (const QString gone = linesWithoutProduct(); !gone.isEmpty())
        status(gone);
}

QString QuoteBookController::linesWithoutProduct() const
{
    return QuoteBookMessages::linesWithoutProduct(
        m_module.QuoteTable(), m_module.Catalogue(), m_module.locale());
}

void QuoteBookController::sessionEnding()
{
    m_quote.storePendingEdit();
    m_session->keepNow();
}

QString QuoteBookController::keepForClose()
{
    m_quote.storePendingEdit();
    const bool kept = m_session->keepNow();
    if (!m_book.isOpen())
        return m_session->isEmpty() ? QString() : QuoteBookMessages::notKept(m_unavailable);
    return kept ? QString() : QuoteBookMessages::notKeptInBook(m_book.errorString());
}

bool QuoteBookController::readyToClose()
{
    m_lossAccepted = false;
    if (!m_started)
        return true;
    const QString problem = keepForClose();
    if (problem.isEmpty())
        return true;
    // As for the catalogue: the user may rather wait for the book, or save or copy the quote.
    const int style = MsgStyle::YesNo | MsgStyle::Exclamation | MsgStyle::DefaultButton2;
    m_lossAccepted =
        m_services.prompts.msgBox(
            problem + QStringLiteral("\n\nClose Tarnwick anyway?"), style, Titles::Book)
        == MsgResult::Yes;
    return m_lossAccepted;
}

void QuoteBookController::shutDown()
{
    if (!m_started)
        return;
    m_session->stopKeeping();
    const QString problem = keepForClose();
    // What readyToClose() asked about is not said again.
    if (!problem.isEmpty() && !m_lossAccepted)
        report(problem, Titles::Book);
    if (!m_book.isOpen())
        return;
    const QString backup = m_services.environment.pathInAppFolder(BackupFileName);
    // A book that could only be read has not changed, and its folder takes no copy.
    if (!m_keepBackup && !m_book.isReadOnly() && !m_book.backupTo(backup))
        report(QuoteBookMessages::backupFailed(backup, m_book.errorString()), Titles::Book);
    m_book.close();
}

bool QuoteBookController::ready(const QString &title)
{
    // A command of the book works on the quote as the user sees it: a cell still being typed
    // in (the menu bar leaves its editor open) is part of it.
    m_quote.storePendingEdit();
    if (openBook(false))
        return true;
    report(QuoteBookMessages::unavailable(m_unavailable), title);
    return false;
}

QuoteTexts QuoteBookController::currentTexts() const
{
    return QuoteNote::readTexts(m_services.environment.appFolder());
}

bool QuoteBookController::noteSettled(const QString &title)
{
    return !m_settleNote || m_settleNote(title);
}

bool QuoteBookController::hasChanges() const
{
    if (m_session->isChanged())
        return true;
    const QuoteHeader &header = m_session->header();
    return header.isSaved() && currentTexts() != QuoteTexts { header.heading, header.ending };
}

void QuoteBookController::report(const QString &text, const QString &title)
{
    m_services.prompts.msgBox(text, MsgStyle::Exclamation, title);
}

void QuoteBookController::armDayWatch()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime midnight(now.date().addDays(1), QTime(0, 0, 1));
    // Looked at once a minute as well: the timer's clock stands still while the computer
    // sleeps, and a clock set forward passes midnight without it.
    constexpr qint64 Minute = 60 * 1000;
    m_dayWatch.start(
        std::chrono::milliseconds(std::clamp<qint64>(now.msecsTo(midnight), 1000, Minute)));
}

void QuoteBookController::dayChanged()
{
    showHeader();
    armDayWatch();
}

void QuoteBookController::setToday(std::function<QDate()> today)
{
    m_today = std::move(today);
    if (m_session)
        showHeader();
}

void QuoteBookController::status(const QString &text)
{
    m_quote.sayUnreadCellsAfter(text);
}

void QuoteBookController::showHeader()
{
    m_shownDay = m_today();
    const QuoteHeader &header = m_session->header();
    QString start = FrameCaption;
    QString customer;
    QString end;
    if (header.isSaved()) {
        start += QStringLiteral(": ") + header.numberAndRevision();
        if (!header.customerText().isEmpty()) {
            start += QStringLiteral(", ");
            customer = header.customerText();
        }
        QStringList marks;
        if (header.status != QuoteStatus::Draft)
            marks << QuoteStatuses::name(header.status);
        if (m_today && QuoteNumbers::hasExpired(header.validUntil, header.status, m_today()))
            marks << QStringLiteral("expired");
        if (!marks.isEmpty())
            end = QStringLiteral(" (%1)").arg(marks.join(QLatin1String(", ")));
    }
    // A long customer is cut to the frame's width, so the status stays in view; the tool tip
    // has all of it.
    QGroupBox *frame = m_ui.FraQuote;
    const QFontMetrics metrics(frame->font());
    const int room =
        frame->width() - 2 * metrics.averageCharWidth() - metrics.horizontalAdvance(start + end);
    const QString shown = !frame->isVisible() || metrics.horizontalAdvance(customer) <= room
        ? customer
        : metrics.elidedText(customer, Qt::ElideRight, std::max(room, 0));
    // A frame's title reads "&" as the mark of a shortcut key: "Zoë & Søn" keeps its "&".
    const auto doubled = [](QString text) { return text.replace(u'&', QStringLiteral("&&")); };
    frame->setTitle(doubled(start) + doubled(shown) + end);
    frame->setToolTip(shown == customer ? QString() : plainToolTip(start + customer + end));
}

bool QuoteBookController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_ui.FraQuote
        && (event->type() == QEvent::Resize || event->type() == QEvent::Show))
        showHeader();
    return QObject::eventFilter(watched, event);
}

/// The first save asks who the quote is for; an empty quote is not saved.
bool QuoteBookController::saveFirstTime(const QString &title)
{
    if (m_session->isEmpty()) {
        report(QuoteBookMessages::nothingToSave(), title);
        return false;
    }
    const auto details = m_dialogs->askCustomer(m_owner, CustomerDetails(), FirstSaveIntro);
    if (!details)
        return false;
    if (!m_session->saveNew(*details, currentTexts(), m_today())) {
        report(QuoteBookMessages::saveFailed(m_session->errorString()), title);
        return false;
    }
    status(QuoteBookMessages::saved(m_session->header()));
    return true;
}

/// A saved quote is saved into its own revision, except that a quote already sent, accepted or
/// declined may go into the next revision instead (the user chooses).
bool QuoteBookController::saveInHand(const QString &title)
{
    if (!m_session->header().isSaved())
        return saveFirstTime(title);
    // Removing every line and saving would throw the saved lines away: asked first, No the
    // default.
    if (m_session->isEmpty()
        && m_services.prompts.msgBox(QuoteBookMessages::emptiedQuestion(m_session->header()),
               MsgStyle::YesNo | MsgStyle::Question | MsgStyle::DefaultButton2, title)
            != MsgResult::Yes)
        return false;
    bool saved = false;
    if (m_session->header().status != QuoteStatus::Draft) {
        const QuoteHeader &header = m_session->header();
        const int next =
            m_book.nextRevision(header.year, header.sequence).value_or(header.revision + 1);
        const int answer = m_services.prompts.msgBox(QuoteBookMessages::sentQuestion(header, next),
            MsgStyle::YesNoCancel | MsgStyle::Question, title);
        if (answer == MsgResult::Cancel)
            return false;
        saved = answer == MsgResult::Yes ? m_session->saveRevision(currentTexts(), m_today())
                                         : m_session->saveChanges(currentTexts());
    } else {
        saved = m_session->saveChanges(currentTexts());
    }
    if (!saved) {
        report(QuoteBookMessages::saveFailed(m_session->errorString()), title);
        return false;
    }
    status(QuoteBookMessages::saved(m_session->header()));
    return true;
}

/// Before the quote in hand is replaced: a changed quote may be saved first (its heading or
/// ending changed in Quote Note counts: the next quote's own texts take their place). False
/// when the user cancelled (or the save failed), and nothing should replace it.
bool QuoteBookController::offerToSave(const QString &title)
{
    if (!noteSettled(title))
        return false;
    if (!hasChanges())
        return true;
    const int answer = m_services.prompts.msgBox(QuoteBookMessages::saveFirst(m_session->header()),
        MsgStyle::YesNoCancel | MsgStyle::Question, title);
    if (answer == MsgResult::Cancel)
        return false;
    return answer == MsgResult::No || saveInHand(title);
}

/// A PDF or a mail names the quote's number: the quote is saved first when it is not.
bool QuoteBookController::ensureSaved(const QString &title)
{
    // The PDF shows the heading and ending the quote was saved with: texts changed in Quote
    // Note since then change the quote too, which is saved first (a sent one is asked about).
    if (!noteSettled(title))
        return false;
    if (m_session->header().isSaved() && !hasChanges())
        return true;
    return saveInHand(title);
}

void QuoteBookController::saveQuote()
{
    if (!ready(Titles::Save) || !noteSettled(Titles::Save))
        return;
    // Nothing to save: a sent quote would otherwise be asked about "the changes".
    const QuoteHeader &header = m_session->header();
    if (header.isSaved() && !hasChanges()) {
        status(QStringLiteral("Quote %1 has not changed since it was saved.")
                   .arg(header.numberAndRevision()));
        return;
    }
    saveInHand(Titles::Save);
}

bool QuoteBookController::saveChangedQuote()
{
    m_quote.storePendingEdit();
    if (!m_session->isChanged())
        return true;
    return ready(Titles::Save) && saveInHand(Titles::Save);
}

void QuoteBookController::openQuote()
{
    if (!ready(Titles::Open) || !offerToSave(Titles::Open))
        return;
    const auto chosen = m_dialogs->chooseQuote(m_owner, m_book);
    // The Quotes window may have set the status of the quote on screen: a sent quote is asked
    // about before it changes, and a save keeps its status.
    m_session->refreshStatus();
    if (!chosen)
        return;
    const auto quote = m_session->load(*chosen);
    if (!quote) {
        report(QStringLiteral("The quote could not be opened: %1.").arg(m_book.errorString()),
            Titles::Open);
        return;
    }
    const QString number = quote->header.numberAndRevision();
    if (!replaceOnScreen(quote->content.lines, m_session->state(), QuoteSession::stateOf(*quote),
            QStringLiteral("Open Quote %1").arg(number), Titles::Open))
        return;
    QString opened = QStringLiteral("Quote %1 opened.").arg(number);
    if (const QString gone = linesWithoutProduct(); !gone.isEmpty())
        opened += QLatin1Char(' ') + gone;
    status(opened);
    offerTodaysPrices(quote->content.sources);
}

bool QuoteBookController::replaceOnScreen(const Table &lines, const QuoteSession::State &before,
    const QuoteSession::State &after, const QString &text, const QString &title)
{
    const Table &current = m_module.QuoteTable();
    Table quote(current.rowCount(), current.fieldCount());
    if (!QuoteList::replaceLines(quote, lines)) {
        report(QStringLiteral("The quote could not be opened: it has too many lines."), title);
        return false;
    }
    const bool empty = lines.rowCount() == 0;
    // The keyboard lands on the first line's quantity: digits typed next must not rename its
    // part number.
    const QuoteView view { empty ? 0 : 1, QuoteGridColumn::Quantity, empty };
    // Quote Note goes with the quote: a saved one brings its own texts, a new one keeps what
    // Quote Note holds, and an undo gives back what it held before.
    QuoteSession::State from = before;
    from.note = currentTexts();
    QuoteSession::State to = after;
    if (!to.note)
        to.note = from.note;
    if (QuoteBookEdits::replaceQuote(m_history, *m_session, { m_quote.currentView(), from },
            { view, to }, std::move(quote), text))
        m_quote.showQuote(view);
    m_session->keepNow();
    return true;
}

void QuoteBookController::offerTodaysPrices(const std::vector<PriceSource> &sources)
{
    const Table &quote = m_module.QuoteTable();
    const QList<int> rows =
        PriceSources::linesWithOtherPrices(quote, sources, m_module.Catalogue(), m_module.locale());
    if (rows.isEmpty()
        || m_services.prompts.msgBox(QuoteBookMessages::otherPrices(int(rows.size())),
               MsgStyle::YesNo | MsgStyle::Question, Titles::Open)
            != MsgResult::Yes)
        return;
    Table repriced = quote;
    PriceSources::updateFromCatalogue(
        repriced, m_module.Catalogue(), rows, sources, m_module.locale());
    const QuoteView view = m_quote.currentView();
    if (QuoteEdits::replaceQuote(
            m_history, view, view, std::move(repriced), QStringLiteral("Update Prices")))
        m_quote.showQuote(view);
}

void QuoteBookController::newRevision()
{
    if (!ready(Titles::Revision) || !noteSettled(Titles::Revision))
        return;
    if (!m_session->header().isSaved()) {
        report(QuoteBookMessages::revisionNeedsSave(), Titles::Revision);
        return;
    }
    if (!m_session->saveRevision(currentTexts(), m_today())) {
        report(QuoteBookMessages::saveFailed(m_session->errorString()), Titles::Revision);
        return;
    }
    status(QuoteBookMessages::saved(m_session->header()));
}

void QuoteBookController::duplicateQuote()
{
    if (!ready(Titles::Duplicate) || !noteSettled(Titles::Duplicate))
        return;
    if (m_session->isEmpty()) {
        report(QuoteBookMessages::nothingToSave(), Titles::Duplicate);
        return;
    }
    const auto details = m_dialogs->askCustomer(m_owner, CustomerDetails(), DuplicateIntro);
    if (!details)
        return;
    QuoteSession::State before = m_session->state();
    before.note = currentTexts();
    if (!m_session->duplicate(*details, currentTexts(), m_today())) {
        report(QuoteBookMessages::saveFailed(m_session->errorString()), Titles::Duplicate);
        return;
    }
    // The same lines, now continuing the duplicate: an undo goes back to the original quote
    // (the duplicate stays in the book).
    QuoteSession::State after = m_session->state();
    after.note = before.note; // saved with the texts Quote Note holds
    const QuoteView view = m_quote.currentView();
    QuoteBookEdits::replaceQuote(m_history, *m_session, { view, before }, { view, after },
        m_module.QuoteTable(),
        QStringLiteral("Duplicate Quote %1").arg(after.header.numberAndRevision()));
    status(QuoteBookMessages::saved(m_session->header()));
}

} // namespace tarnwick
