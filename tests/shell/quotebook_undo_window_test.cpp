// The quote book's replacements of the quote on screen as steps of the history, on the real
// main window: a quote opened, File → New and a duplicate each taken back with Ctrl+Z from the
// quote grid, with the revision the quote continued, and done again with Ctrl+Y; the price
// update of an opened quote a step of its own.
#include "quotebookwindowfixture.h"

#include "catalogue/productrecord.h"
#include "quotebook/quotesession.h"
#include "quotes/quotenote.h"
#include "shell/documentscontroller.h"
#include "shell/frmquotenote.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QFile>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTextEdit>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class QuoteBookUndoWindowTest : public QuoteBookWindowTest
{
protected:
    void SetUp() override
    {
        QuoteBookWindowTest::SetUp();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    QString title() const { return window->ui().FraQuote->title(); }
    QuoteSession &session() const { return *window->quoteBook().session(); }
    void keyOnQuoteGrid(Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        GridView *quoteGrid = window->ui().GrdQuote;
        window->ui().SSTabmain->setCurrentIndex(1);
        quoteGrid->setFocus(Qt::MouseFocusReason);
        ASSERT_TRUE(QTest::qWaitFor([quoteGrid] { return quoteGrid->hasFocus(); }, 10000));
        QTest::keyClick(quoteGrid, key, modifiers);
    }
    void ctrlZ() { keyOnQuoteGrid(Qt::Key_Z, Qt::ControlModifier); }
    void ctrlY() { keyOnQuoteGrid(Qt::Key_Y, Qt::ControlModifier); }
    /// Quote Note's heading and ending, set as its OK sets them.
    void setNote(const QString &heading, const QString &ending = QString())
    {
        ASSERT_TRUE(QuoteNote::saveNotes(folder.path(), heading, ending));
    }
    QString noteHeading() const { return QuoteNote::readHeading(folder.path()); }
    /// A quote of one line whose Quote Note heading "Dear customer" has " of ours" typed after
    /// it in the open Quote Note window, not saved; the heading's box.
    QTextEdit *typeIntoQuoteNote()
    {
        setNote(QStringLiteral("Dear customer"));
        addToQuote(0);
        action("mnuQuoteNote")->trigger();
        auto *heading =
            window->documents().quoteNoteWindow()->findChild<QTextEdit *>(QStringLiteral("txttop"));
        heading->moveCursor(QTextCursor::End);
        QTest::keyClicks(heading, QStringLiteral(" of ours"));
        return heading;
    }
    QString noteEnding() const { return QuoteNote::readEnding(folder.path()); }
    /// Q-2026-0001 A saved for ACME with the heading "For ACME", then File → New, with Quote
    /// Note holding heading for the new quote.
    void acmeSavedThenANewQuoteWith(const QString &heading)
    {
        setNote(QStringLiteral("For ACME"));
        saveBoltForAcme();
        action("mnuFileNew")->trigger();
        setNote(heading);
    }
    /// B-200 saved for ACME as Q-2026-0001 A.
    void saveBoltForAcme()
    {
        addToQuote(1);
        bookDialogs->customers.push_back(Acme);
        action("mnuQuoteSave")->trigger();
        ASSERT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    }
};

TEST_F(QuoteBookUndoWindowTest, OpenQuoteThenCtrlZBringsBackTheQuoteThatWasOnScreen)
{
    saveBoltForAcme();
    action("mnuFileNew")->trigger();
    addToQuote(0); // A-100, never saved
    const QStringList unsavedTotals = totals();
    fakes->prompts.answerMessage(MsgResult::No); // do not save the quote on screen first
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    ASSERT_EQ(quoteColumn(0), QStringList { "B-200" });
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    EXPECT_EQ(action("mnuEditUndo")->text(), QStringLiteral("&Undo Open Quote Q-2026-0001 A"));

    window->ui().SSTabmain->setCurrentIndex(0);
    ctrlZ();
    EXPECT_EQ(window->ui().SSTabmain->currentIndex(), 1);
    EXPECT_EQ(quoteColumn(0), QStringList { "A-100" });
    EXPECT_EQ(totals(), unsavedTotals);
    EXPECT_EQ(title(), QStringLiteral("Quote Details"));
    EXPECT_TRUE(session().isChanged()) << "the quote on screen was never saved";
    EXPECT_EQ(action("mnuEditUndo")->text(), QStringLiteral("&Undo Add to Quote A-100"));
    // What is on screen is what the next start finds.
    QSignalSpy kept(&session(), &QuoteSession::kept);
    ASSERT_TRUE(kept.wait(5000));
    const auto inHand = book().inHand();
    ASSERT_TRUE(inHand.has_value());
    EXPECT_EQ(inHand->quoteId, 0);
    EXPECT_EQ(
        inHand->content.lines.get(1, QuoteLine::PartNumber).asText(), QStringLiteral("A-100"));

    ctrlY();
    EXPECT_EQ(quoteColumn(0), QStringList { "B-200" });
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    EXPECT_FALSE(session().isChanged());
    EXPECT_EQ(book().quoteCount(), 1) << "undo and redo save nothing";
}

TEST_F(QuoteBookUndoWindowTest, NewThenCtrlZBringsBackTheSavedQuote)
{
    saveBoltForAcme();
    const QStringList savedTotals = totals();
    action("mnuFileNew")->trigger();
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    EXPECT_EQ(totals(), (QStringList { "", "", "" }));
    EXPECT_EQ(title(), QStringLiteral("Quote Details"));

    ctrlZ();
    EXPECT_EQ(quoteColumn(0), QStringList { "B-200" });
    EXPECT_EQ(totals(), savedTotals);
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    EXPECT_FALSE(session().isChanged());

    ctrlY();
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    EXPECT_EQ(totals(), (QStringList { "", "", "" }));
    EXPECT_EQ(title(), QStringLiteral("Quote Details"));
}

// Undone, "Remove All" brings back the saved quote, and the status bar no longer says the quote
// on screen is a new one.
TEST_F(QuoteBookUndoWindowTest, RemoveAllUndoneTakesBackWhatItSaid)
{
    saveBoltForAcme();
    action("mnuquoteclear")->trigger();
    ASSERT_TRUE(window->ui().sbPanel1->text().endsWith(QStringLiteral("is a new one.")));
    ctrlZ();
    EXPECT_EQ(quoteColumn(0), QStringList { "B-200" });
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
}

// "Remove All" empties the quote to start a new one: a saved quote emptied so stays in the book
// as it was saved, and the lines added next are a new quote for another customer.
TEST_F(QuoteBookUndoWindowTest, RemoveAllOnASavedQuoteStartsANewOneAndLeavesTheSavedOneAsItIs)
{
    saveBoltForAcme();
    const qint64 acme = book().list().first().id;
    const QStringList savedTotals = totals();
    action("mnuquoteclear")->trigger();
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    EXPECT_EQ(totals(), (QStringList { "", "", "" }));
    EXPECT_EQ(title(), QStringLiteral("Quote Details"));
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Quote Q-2026-0001 A stays in the quote book as last saved; the quote on "
                       "screen is a new one."));
    EXPECT_EQ(action("mnuEditUndo")->text(), QStringLiteral("&Undo Remove All Quote Lines"));

    addToQuote(0);
    const CustomerDetails other { QStringLiteral("Other Co"), QString(), QString(), QString() };
    bookDialogs->customers.push_back(other);
    action("mnuQuoteSave")->trigger();
    EXPECT_TRUE(bookDialogs->customers.empty()) << "Save Quote asks who the new quote is for";
    ASSERT_EQ(book().quoteCount(), 2);
    const auto acmeQuote = book().load(acme);
    ASSERT_TRUE(acmeQuote.has_value());
    ASSERT_EQ(acmeQuote->content.lines.rowCount(), 1) << "ACME's quote keeps its line";
    EXPECT_EQ(
        acmeQuote->content.lines.get(1, QuoteLine::PartNumber).asText(), QStringLiteral("B-200"));
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0002 A, Other Co"));

    // Back to before Remove All: ACME's quote on screen again, with its lines and totals.
    ctrlZ();
    ctrlZ();
    EXPECT_EQ(quoteColumn(0), QStringList { "B-200" });
    EXPECT_EQ(totals(), savedTotals);
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    ctrlY();
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    EXPECT_EQ(title(), QStringLiteral("Quote Details"));
}

// A quote never saved has no number to keep: "Remove All" leaves it the quote in hand.
TEST_F(QuoteBookUndoWindowTest, RemoveAllOnAnUnsavedQuoteOnlyRemovesItsLines)
{
    addToQuote(1);
    action("mnuquoteclear")->trigger();
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    addToQuote(0);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    EXPECT_TRUE(bookDialogs->customers.empty());
    EXPECT_EQ(book().quoteCount(), 1);
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
}

TEST_F(QuoteBookUndoWindowTest, AQuoteDroppedByNewComesBackWithCtrlZ)
{
    addToQuote(2);
    addToQuote(0);
    fakes->prompts.answerMessage(MsgResult::No); // drop the changes
    action("mnuFileNew")->trigger();
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    ctrlZ();
    EXPECT_EQ(quoteColumn(0), (QStringList { "C-300", "A-100" }));
    EXPECT_EQ(book().quoteCount(), 0);
}

TEST_F(QuoteBookUndoWindowTest, DuplicateThenCtrlZContinuesTheOriginalQuote)
{
    saveBoltForAcme();
    const CustomerDetails bolt { QStringLiteral("Bolt Brothers"), QString(), {}, {} };
    bookDialogs->customers.push_back(bolt);
    action("mnuQuoteDuplicate")->trigger();
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0002 A, Bolt Brothers"));
    EXPECT_EQ(action("mnuEditUndo")->text(), QStringLiteral("&Undo Duplicate Quote Q-2026-0002 A"));

    ctrlZ();
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    EXPECT_EQ(quoteColumn(0), QStringList { "B-200" });
    EXPECT_EQ(book().quoteCount(), 2) << "the duplicate stays saved";
    // A change now goes into the original quote.
    addToQuote(0);
    action("mnuQuoteSave")->trigger();
    EXPECT_EQ(book().load(book().list().last().id)->content.lines.rowCount(), 2);
}

TEST_F(QuoteBookUndoWindowTest, TodaysPricesAreAStepOfTheirOwnAfterTheOpen)
{
    addToQuote(0); // A-100 Anchor 12.50
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    const QStringList savedPrices = quoteColumn(2);
    action("mnuFileNew")->trigger();
    catalogue().put(1, ProductRecord::Price, "13");
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(quoteColumn(2), QStringList { "$13.00" });
    EXPECT_TRUE(session().isChanged());
    EXPECT_EQ(action("mnuEditUndo")->text(), QStringLiteral("&Undo Update Prices"));

    ctrlZ();
    EXPECT_EQ(quoteColumn(2), savedPrices);
    EXPECT_FALSE(session().isChanged());
    EXPECT_EQ(title(), QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    ctrlZ();
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    EXPECT_EQ(title(), QStringLiteral("Quote Details"));
}

// Quote Note holds the heading of the quote on screen: a saved quote opened again (or brought
// back by an undo) takes the texts it was saved with, so its PDF reads as it was sent.
TEST_F(QuoteBookUndoWindowTest, AQuoteOpenedAgainBringsBackItsOwnHeadingAndEnding)
{
    setNote(QStringLiteral("Quotation for ACME"), QStringLiteral("Yours, Jo"));
    saveBoltForAcme();
    fakes->prompts.answerMessage(MsgResult::Yes); // Send: mark it sent
    ASSERT_TRUE(session().markSent());

    action("mnuFileNew")->trigger();
    setNote(QStringLiteral("Quotation for OTHER CUSTOMER"), QStringLiteral("Bye"));
    addToQuote(0);
    bookDialogs->customers.push_back(CustomerDetails { QStringLiteral("Other"), {}, {}, {} });
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(book().quoteCount(), 2);

    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(noteHeading(), QStringLiteral("Quotation for ACME"));
    EXPECT_EQ(noteEnding(), QStringLiteral("Yours, Jo"));

    // Its PDF is the quote as sent: no question, no new revision, the sent heading.
    const QString path = folder.filePath(QStringLiteral("sent.pdf"));
    fakes->fileDialogs.answer(FileDialogResult { path, 1 });
    action("mnuQuotePdf")->trigger();
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_EQ(book().quoteCount(), 2);
    EXPECT_TRUE(QFile::exists(path));

    // Back to the other customer's quote: its own texts again.
    ctrlZ();
    EXPECT_EQ(noteHeading(), QStringLiteral("Quotation for OTHER CUSTOMER"));
    EXPECT_EQ(noteEnding(), QStringLiteral("Bye"));
    ctrlY();
    EXPECT_EQ(noteHeading(), QStringLiteral("Quotation for ACME"));
}

// A heading changed in Quote Note for the quote on screen is a change of that quote: opening
// another one first offers to save it, so the new heading is not lost to the other's.
TEST_F(QuoteBookUndoWindowTest, AHeadingChangedForTheQuoteOnScreenIsOfferedForSavingFirst)
{
    saveBoltForAcme();
    setNote(QStringLiteral("Dear ACME"));
    fakes->prompts.answerMessage(MsgResult::Yes); // save the changes first
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    ASSERT_EQ(fakes->prompts.texts().size(), 1);
    EXPECT_EQ(fakes->prompts.texts()[0],
        QStringLiteral(
            "Quote Q-2026-0001 A has changed since it was saved. Save the changes first?"));
    EXPECT_EQ(book().load(book().list().first().id)->header.heading, QStringLiteral("Dear ACME"));
    EXPECT_EQ(noteHeading(), QStringLiteral("Dear ACME"));
}

// What the user had typed into Quote Note for the quote on screen is not lost to a quote opened
// over it: Ctrl+Z brings the quote and its texts back together.
TEST_F(QuoteBookUndoWindowTest, UndoingAnOpenGivesQuoteNoteBackWhatItHeld)
{
    setNote(QStringLiteral("For ACME"));
    saveBoltForAcme();
    action("mnuFileNew")->trigger();
    addToQuote(0); // a new quote, never saved
    setNote(QStringLiteral("Typed for the new customer"), QStringLiteral("Regards"));
    fakes->prompts.answerMessage(MsgResult::No); // do not save the new quote first
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    ASSERT_EQ(noteHeading(), QStringLiteral("For ACME"));

    ctrlZ();
    EXPECT_EQ(noteHeading(), QStringLiteral("Typed for the new customer"));
    EXPECT_EQ(noteEnding(), QStringLiteral("Regards"));
    ctrlY();
    EXPECT_EQ(noteHeading(), QStringLiteral("For ACME"));
}

// A heading changed for the opened quote is not lost to an undo and a redo: the step takes it
// along when it leaves that quote.
TEST_F(QuoteBookUndoWindowTest, AHeadingChangedAfterTheOpenComesBackWithTheRedo)
{
    acmeSavedThenANewQuoteWith(QStringLiteral("Template"));
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    ASSERT_EQ(noteHeading(), QStringLiteral("For ACME"));
    setNote(QStringLiteral("For ACME, revised"));

    ctrlZ();
    EXPECT_EQ(noteHeading(), QStringLiteral("Template"));
    ctrlY();
    EXPECT_EQ(noteHeading(), QStringLiteral("For ACME, revised"));
}

// Typing left in an open Quote Note window is for the quote on screen: before another quote
// comes on screen the user saves it for that quote, drops it, or stays.
TEST_F(QuoteBookUndoWindowTest, TypingLeftInQuoteNoteIsSettledBeforeAnotherQuoteComes)
{
    acmeSavedThenANewQuoteWith(QStringLiteral("For Bolt"));
    addToQuote(0);
    bookDialogs->customers.push_back(CustomerDetails { QStringLiteral("Bolt"), {}, {}, {} });
    action("mnuQuoteSave")->trigger(); // Q-2026-0002 A, on screen
    action("mnuQuoteNote")->trigger();
    auto *heading =
        window->documents().quoteNoteWindow()->findChild<QTextEdit *>(QStringLiteral("txttop"));
    heading->moveCursor(QTextCursor::End);
    QTest::keyClicks(heading, QStringLiteral(" and Sons"));

    // Cancel: nothing changes.
    fakes->prompts.answerMessage(MsgResult::Cancel);
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(bookDialogs->chooserShown, 0);
    EXPECT_EQ(fakes->prompts.texts().last(),
        QStringLiteral("Quote Note holds changes to the heading or ending that are not saved. "
                       "Save them for the quote on screen first?"));

    // Yes: saved for the quote on screen, which is then offered for saving itself.
    fakes->prompts.answerMessage(MsgResult::Yes);
    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(fakes->prompts.texts().last(),
        QStringLiteral(
            "Quote Q-2026-0002 A has changed since it was saved. Save the changes first?"));
    EXPECT_EQ(
        book().load(book().list().first().id)->header.heading, QStringLiteral("For Bolt and Sons"));
    EXPECT_EQ(heading->toPlainText(), QStringLiteral("For ACME")) << "the window follows";

    // No: the typing goes, the next quote's texts come.
    QTest::keyClicks(heading, QStringLiteral("XX"));
    fakes->prompts.answerMessage(MsgResult::No);
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0002 A");
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(heading->toPlainText(), QStringLiteral("For Bolt and Sons"));
    EXPECT_EQ(noteHeading(), QStringLiteral("For Bolt and Sons"));
}

// Saving the quote on screen in any way settles the typing first, so the saved quote (and its
// PDF) carries what the window shows.
TEST_F(QuoteBookUndoWindowTest, SavingTheQuoteSettlesTypingLeftInQuoteNote)
{
    acmeSavedThenANewQuoteWith(QStringLiteral("For Bolt"));
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    action("mnuQuoteNote")->trigger();
    auto *heading =
        window->documents().quoteNoteWindow()->findChild<QTextEdit *>(QStringLiteral("txttop"));
    heading->moveCursor(QTextCursor::End);
    QTest::keyClicks(heading, QStringLiteral(", revised"));

    fakes->prompts.answerMessage(MsgResult::Cancel);
    action("mnuQuoteRevision")->trigger();
    EXPECT_EQ(book().quoteCount(), 1) << "Cancel: no revision";

    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(fakes->prompts.texts().size(), 2);
    EXPECT_EQ(
        book().load(book().list().first().id)->header.heading, QStringLiteral("For ACME, revised"));
    EXPECT_FALSE(window->documents().quoteNoteWindow()->hasTyping());
}

// Closing Tarnwick with typing left in the Quote Note window asks about it as the quote
// commands do: Cancel keeps the program open with the typing, Yes keeps it for the quote on
// screen, which the next run brings back with its texts.
TEST_F(QuoteBookUndoWindowTest, ClosingWithTypingLeftInQuoteNoteAsksFirst)
{
    QTextEdit *heading = typeIntoQuoteNote();

    fakes->prompts.answerMessage(MsgResult::Cancel);
    EXPECT_FALSE(window->close());
    EXPECT_EQ(fakes->prompts.texts().last(),
        QStringLiteral("Quote Note holds changes to the heading or ending that are not saved. "
                       "Save them for the quote on screen first?"));
    EXPECT_EQ(fakes->prompts.shown().back().title, QStringLiteral("Quote Note"));
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(heading->toPlainText(), QStringLiteral("Dear customer of ours"));
    EXPECT_EQ(noteHeading(), QStringLiteral("Dear customer"));

    fakes->prompts.answerMessage(MsgResult::Yes);
    closeAndStart();
    EXPECT_EQ(noteHeading(), QStringLiteral("Dear customer of ours"));
    EXPECT_EQ(QuoteLine::lineCount(module->QuoteTable()), 1) << "the quote it was typed for";
}

// A log-out or a shut-down (a termination signal) waits for no answer: the typing is kept for
// the quote on screen, as Yes would, and the close goes on.
TEST_F(QuoteBookUndoWindowTest, ATerminationKeepsTheTypingLeftInQuoteNoteWithoutAsking)
{
    ASSERT_NE(typeIntoQuoteNote(), nullptr);
    window->requestClose();
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_EQ(noteHeading(), QStringLiteral("Dear customer of ours"));
}

// An open Quote Note window shows the texts that come with the quote on screen. What was typed
// there and not saved goes with the quote it was typed for when an undo or a redo (also from
// the Edit menu, which asks nothing) takes that quote away, and comes back with it: OK never
// gives it to the other quote.
TEST_F(QuoteBookUndoWindowTest, AnOpenQuoteNoteWindowFollowsTheQuoteAndTypingStaysWithIt)
{
    acmeSavedThenANewQuoteWith(QStringLiteral("For nobody yet"));
    action("mnuQuoteNote")->trigger();
    FrmQuoteNote *note = window->documents().quoteNoteWindow();
    ASSERT_NE(note, nullptr);
    auto *heading = note->findChild<QTextEdit *>(QStringLiteral("txttop"));
    ASSERT_EQ(heading->toPlainText(), QStringLiteral("For nobody yet"));

    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(heading->toPlainText(), QStringLiteral("For ACME"));

    heading->moveCursor(QTextCursor::End);
    QTest::keyClicks(heading, QStringLiteral(" and sons"));
    action("mnuEditUndo")->trigger(); // back to the new quote
    EXPECT_EQ(heading->toPlainText(), QStringLiteral("For nobody yet"));
    EXPECT_EQ(noteHeading(), QStringLiteral("For nobody yet"));
    action("mnuEditRedo")->trigger(); // quote A again, with what was typed for it
    EXPECT_EQ(heading->toPlainText(), QStringLiteral("For ACME and sons"));
    EXPECT_EQ(noteHeading(), QStringLiteral("For ACME and sons"));
}

} // namespace
