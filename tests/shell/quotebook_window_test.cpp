// The quote book on the real main window: the quote menu's book commands, File → New, the
// quote on screen kept across a close, a quote opened with the prices of today's catalogue.
// (Save as PDF, Send and Save All: quotebook_send_window_test.cpp; crashes, failures to keep
// and damaged books: quotebook_safety_window_test.cpp.)
#include "quotebookwindowfixture.h"

#include "catalogue/productrecord.h"
#include "core/formats.h"
#include "quotebook/quotesession.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"
#include "quotes/quotenote.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

/// The letter after a single '&' of a caption, lower case.
QChar letterOf(const QString &caption)
{
    const qsizetype at = caption.indexOf(QLatin1Char('&'));
    return at >= 0 && at + 1 < caption.size() ? caption.at(at + 1).toLower() : QChar();
}

TEST_F(QuoteBookWindowTest, TheQuoteMenuOffersTheBookAfterQuoteNoteWithLettersOfTheirOwn)
{
    QStringList captions;
    for (QAction *item : window->actions().mnuQuote()->actions()) {
        if (!item->isSeparator())
            captions << item->text();
    }
    EXPECT_EQ(captions,
        (QStringList { "Remove &Product", "Remove &All", "&Reset Prices", "Discount &All",
            "Discount &Product", "&Lock Price", "Price a&t Quantities...", "&Copy", "&Quote Note",
            "&Save Quote...", "&Open Quote...", "&New Revision", "&Duplicate Quote",
            "Save as PD&F..." }));
    for (const char *name : { "mnuQuoteSave", "mnuQuoteOpen", "mnuQuoteRevision",
             "mnuQuoteDuplicate", "mnuQuotePdf", "mnuQuoteLock", "mnuQuoteQuantities" }) {
        const QChar letter = letterOf(action(name)->text());
        ASSERT_FALSE(letter.isNull()) << name;
        int users = 0;
        for (const QString &caption : captions)
            users += letterOf(caption) == letter ? 1 : 0;
        EXPECT_EQ(users, 1) << name;
    }
    EXPECT_EQ(action("mnuFileNew")->shortcut(), QKeySequence(QKeySequence::New));
}

TEST_F(QuoteBookWindowTest, ACustomersNameShowsAsTypedInTheFrameAndTheStatusBar)
{
    window->resize(1400, window->height()); // room for the whole title
    addToQuote(1);
    CustomerDetails customer = Acme;
    customer.customer = QStringLiteral("Ann <b>O'Brien</b>");
    customer.company = QStringLiteral("Zoë & Søn");
    bookDialogs->customers.push_back(customer);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(book().quoteCount(), 1);
    // A frame's title reads a single "&" as the mark of a shortcut key.
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, Ann <b>O'Brien</b>, Zoë && Søn"));
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Quote Q-2026-0001 A saved for Ann <b>O'Brien</b>, Zoë & Søn."));
    EXPECT_EQ(window->ui().sbPanel1->textFormat(), Qt::PlainText) << "no markup of the user's";
    EXPECT_EQ(window->ui().LblNextBreak->textFormat(), Qt::PlainText);
}

TEST_F(QuoteBookWindowTest, SaveQuoteAsksForTheCustomerOnceThenUpdatesThatRevision)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(book().quoteCount(), 1);
    EXPECT_EQ(bookDialogs->intros,
        QStringList { "The quote is saved under the next quote number, as revision A." });
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Quote Q-2026-0001 A saved for ACME Plumbing."));

    addToQuote(0);
    action("mnuQuoteSave")->trigger();
    EXPECT_TRUE(bookDialogs->customers.empty());
    ASSERT_EQ(book().quoteCount(), 1);
    const auto saved = book().load(book().list().first().id);
    ASSERT_TRUE(saved.has_value());
    EXPECT_EQ(saved->content.lines.rowCount(), 2);
    EXPECT_EQ(saved->header.customer, Acme);
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

TEST_F(QuoteBookWindowTest, CancellingSaveQuoteSavesNothingAndAnEmptyQuoteIsNotSaved)
{
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        QStringLiteral("The quote has no lines. Add products to it first."));
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Save Quote"));
    addToQuote(0);
    bookDialogs->customers.push_back(std::nullopt);
    action("mnuQuoteSave")->trigger();
    EXPECT_EQ(book().quoteCount(), 0);
    EXPECT_EQ(window->ui().FraQuote->title(), QStringLiteral("Quote Details"));
}

TEST_F(QuoteBookWindowTest, TheQuoteOnScreenIsThereAgainAfterACloseAndAStart)
{
    addToQuote(1);
    addToQuote(0);
    const QStringList parts = quoteColumn(0);
    const QStringList before = totals();
    closeAndStart();
    EXPECT_EQ(quoteColumn(0), parts);
    EXPECT_EQ(totals(), before);
    EXPECT_TRUE(folder.exists(QStringLiteral("quotes.bak")));
    EXPECT_EQ(window->ui().FraQuote->title(), QStringLiteral("Quote Details"));
}

// A quantity still being typed into the quote reaches the book on its own timer, as the product
// grid's typing reaches the recovery file: a crash or a kill does not lose it.
TEST_F(QuoteBookWindowTest, AQuantityStillBeingTypedIsKeptInTheBook)
{
    addToQuote(1); // B-200 Bolt 2.5, 100 or more at 2
    QTableView *quote = window->ui().GrdQuote;
    quote->setCurrentIndex(quote->model()->index(0, QuoteGridColumn::Quantity));
    quote->setFocus();
    quote->edit(quote->currentIndex());
    auto *editor = qobject_cast<QLineEdit *>(window->ui().GrdQuote->openEditor());
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("120"));

    QuoteBook &book = window->quoteBook().session()->book();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            const auto inHand = book.inHand();
            return inHand && inHand->content.lines.get(1, QuoteLine::Quantity) == Cell(qint32(120));
        },
        10000));
    EXPECT_EQ(book.inHand()->content.lines.get(1, QuoteLine::UnitPrice), Cell(2.0f))
        << "priced at the break, as entering it would";
    EXPECT_EQ(quoteColumn(QuoteGridColumn::Quantity).value(0), QStringLiteral("1"))
        << "not entered yet";
}

// A product without a list price comes onto the quote at nothing, and the status bar says so.
TEST_F(QuoteBookWindowTest, AProductWithoutAPriceIsSaidToBeChargedNothing)
{
    addToQuote(2); // C-300 Clamp, no list price
    EXPECT_EQ(quoteColumn(0), QStringList { "C-300" });
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Line 1 has no price; the line is charged $0.00 until one is typed."));
}

namespace {

/// Opens the first line's part number in the quote grid and clears it, as a user about to type
/// another one does; the cell is left being edited. Null when no editor opened.
QLineEdit *clearFirstPartNumber(GridView *quote)
{
    quote->setCurrentIndex(quote->model()->index(0, QuoteGridColumn::PartNumber));
    QTest::keyClick(quote, Qt::Key_F2);
    auto *editor = quote->viewport()->findChild<QLineEdit *>();
    if (editor != nullptr) {
        editor->selectAll();
        QTest::keyClick(editor, Qt::Key_Backspace);
    }
    return editor;
}

class EmptiedPartNumberTest : public QuoteBookWindowTest
{
protected:
    /// Adds B-200 and A-100 to the quote and clears line 1's part number in its open editor.
    QLineEdit *twoLinesWithTheFirstPartNumberCleared()
    {
        addToQuote(1);
        addToQuote(0);
        return clearFirstPartNumber(window->ui().GrdQuote);
    }
};

} // namespace

// Emptied and entered, a part number ends the quote at its line: the status bar says what that
// leaves out, and the lines come back with Undo or with the next product added.
TEST_F(EmptiedPartNumberTest, APartNumberEmptiedSaysWhatTheQuoteLeavesOut)
{
    GridView *quote = window->ui().GrdQuote;
    QLineEdit *editor = twoLinesWithTheFirstPartNumberCleared();
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([quote] { return !quote->isEditing(); }, 10000));
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Line 1 has no part number, so the quote ends there, without the line "
                       "below it; Undo, or the next product added to the quote, fills line 1 "
                       "again."));
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    action("mnuEditUndo")->trigger();
    EXPECT_EQ(quoteColumn(0), (QStringList { "B-200", "A-100" }));
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
    action("mnuEditRedo")->trigger();
    addToQuote(0);
    EXPECT_EQ(quoteColumn(0).size(), 2) << "the product added takes line 1";
    EXPECT_EQ(quoteColumn(0).value(1), QStringLiteral("A-100"));
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
}

// Emptied but not entered, a part number is dropped by a close rather than stored: stored, it
// would end the quote at its line and the book would keep none of the lines below it.
TEST_F(EmptiedPartNumberTest, APartNumberEmptiedButNotEnteredIsDroppedByAClose)
{
    GridView *quote = window->ui().GrdQuote;
    QLineEdit *editor = twoLinesWithTheFirstPartNumberCleared();
    ASSERT_NE(editor, nullptr);
    ASSERT_TRUE(quote->isEditing());
    closeAndStart();
    EXPECT_EQ(quoteColumn(0), (QStringList { "B-200", "A-100" }));
}

// A part number emptied to be typed again, or half typed, is not kept as it stands: it would
// end the quote at its line, or name another product.
TEST_F(QuoteBookWindowTest, APartNumberBeingTypedIsNotKeptAsItStands)
{
    addToQuote(1);
    addToQuote(0);
    QuoteSession &session = *window->quoteBook().session();
    ASSERT_TRUE(session.keepNow());
    QTableView *quote = window->ui().GrdQuote;
    quote->setCurrentIndex(quote->model()->index(0, QuoteGridColumn::PartNumber));
    quote->setFocus();
    quote->edit(quote->currentIndex());
    auto *editor = qobject_cast<QLineEdit *>(window->ui().GrdQuote->openEditor());
    ASSERT_NE(editor, nullptr);
    for (const QString &typed : { QString(), QStringLiteral("A-1") }) {
        editor->setText(typed);
        ASSERT_TRUE(session.keepNow());
        const auto inHand = session.book().inHand();
        ASSERT_TRUE(inHand.has_value());
        EXPECT_EQ(QuoteLine::lineCount(inHand->content.lines), 2) << typed.toStdString();
        EXPECT_EQ(inHand->content.lines.get(1, QuoteLine::PartNumber), Cell("B-200"));
    }
}

// A quote brought back at the start with a quantity that is no number says so at once.
TEST_F(QuoteBookWindowTest, AQuoteBroughtBackWithAQuantityThatIsNoNumberSaysSo)
{
    addToQuote(1);
    editGridCell(window->ui().GrdQuote, 0, QuoteGridColumn::Quantity, QStringLiteral("ten"));
    closeAndStart();
    EXPECT_EQ(quoteColumn(QuoteGridColumn::Quantity).value(0), QStringLiteral("ten"));
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Line 1: the quantity \"ten\" is no number; the line is charged $0.00 "
                       "until a whole number is typed."));
}

// So does one whose product has gone from the catalogue meanwhile.
TEST_F(QuoteBookWindowTest, AQuoteBroughtBackWithAProductNoLongerThereSaysSo)
{
    addToQuote(1); // B-200
    addToQuote(0);
    const QStringList prices = quoteColumn(2);
    catalogue().put(2, ProductRecord::PartNumber, "B-201");
    closeAndStart();
    EXPECT_EQ(quoteColumn(2), prices);
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Line 1: \"B-200\" is not in the catalogue; the line keeps its price until "
                       "its quantity is changed."));
}

TEST_F(QuoteBookWindowTest, NoQuoteBookIsMadeUntilThereIsAQuoteToKeep)
{
    EXPECT_FALSE(folder.exists(QStringLiteral("quotes.db")));
    ASSERT_TRUE(window->close());
    EXPECT_FALSE(folder.exists(QStringLiteral("quotes.db")));
    EXPECT_FALSE(folder.exists(QStringLiteral("quotes.bak")));
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

TEST_F(QuoteBookWindowTest, TheFirstLineMakesTheQuoteBook)
{
    QSignalSpy kept(window->quoteBook().session(), &QuoteSession::kept);
    addToQuote(0);
    ASSERT_TRUE(kept.wait(5000));
    EXPECT_TRUE(folder.exists(QStringLiteral("quotes.db")));
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

TEST_F(QuoteBookWindowTest, ASavedQuoteComesBackAsItsRevision)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    closeAndStart();
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    EXPECT_FALSE(window->quoteBook().session()->isChanged());
}

TEST_F(QuoteBookWindowTest, NewOffersToSaveAChangedQuoteFirst)
{
    addToQuote(1);
    fakes->prompts.answerMessage(MsgResult::Cancel);
    action("mnuFileNew")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        QStringLiteral("The quote on screen has not been saved. Save it first?"));
    EXPECT_EQ(fakes->prompts.shown()[0].style, MsgStyle::YesNoCancel | MsgStyle::Question);
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("New Quote"));
    EXPECT_EQ(quoteColumn(0), QStringList { "B-200" }) << "Cancel keeps the quote";

    fakes->prompts.answerMessage(MsgResult::Yes);
    bookDialogs->customers.push_back(Acme);
    action("mnuFileNew")->trigger();
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    EXPECT_EQ(totals(), (QStringList { "", "", "" }));
    EXPECT_EQ(book().quoteCount(), 1);
    EXPECT_EQ(window->ui().FraQuote->title(), QStringLiteral("Quote Details"));

    addToQuote(0);
    fakes->prompts.answerMessage(MsgResult::No);
    action("mnuFileNew")->trigger();
    EXPECT_TRUE(quoteColumn(0).isEmpty());
    EXPECT_EQ(book().quoteCount(), 1);
    fakes->prompts.clear();
    action("mnuFileNew")->trigger();
    EXPECT_TRUE(fakes->prompts.shown().empty()) << "an empty quote is replaced without a word";
}

TEST_F(QuoteBookWindowTest, UndoingNewTakesBackTheQuoteAndItsMessage)
{
    addToQuote(1);
    fakes->prompts.answerMessage(MsgResult::No);
    action("mnuFileNew")->trigger();
    EXPECT_EQ(window->ui().sbPanel1->text(), QStringLiteral("New quote."));
    action("mnuEditUndo")->trigger();
    EXPECT_EQ(quoteColumn(0), QStringList { "B-200" });
    EXPECT_EQ(window->ui().sbPanel1->text(), QString()) << "the message no longer says so";
}

TEST_F(QuoteBookWindowTest, OpenQuoteBringsBackTheSavedPricesAndOffersTodays)
{
    addToQuote(1); // B-200 Bolt 2.5, 100 or more at 2
    addToQuote(0); // A-100 Anchor 12.5
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    const QStringList savedTotals = totals();
    const QStringList savedPrices = quoteColumn(2);
    action("mnuFileNew")->trigger();

    catalogue().put(1, ProductRecord::Price, "13");
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    fakes->prompts.answerMessage(MsgResult::No);
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(quoteColumn(0), (QStringList { "B-200", "A-100" }));
    EXPECT_EQ(quoteColumn(2), savedPrices);
    EXPECT_EQ(totals(), savedTotals);
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        QStringLiteral("1 lines have other prices in today's catalogue. Update them?"));
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Open Quote"));
    EXPECT_EQ(fakes->prompts.shown()[0].style, MsgStyle::YesNo | MsgStyle::Question);
    EXPECT_FALSE(window->quoteBook().session()->isChanged());

    action("mnuFileNew")->trigger();
    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(quoteColumn(2), (QStringList { "$2.50", "$13.00" }));
    EXPECT_EQ(totals(), (QStringList { "$15.50", "$0.00", "0.00%" }));
    EXPECT_TRUE(window->quoteBook().session()->isChanged());
}

TEST_F(QuoteBookWindowTest, OpenQuoteNamesTheLinesWhoseProductsAreGone)
{
    addToQuote(1); // B-200
    addToQuote(0);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    const QStringList savedPrices = quoteColumn(2);
    action("mnuFileNew")->trigger();

    catalogue().put(1, ProductRecord::PartNumber, "A-101"); // A-100 is no more
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    fakes->prompts.clear();
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(quoteColumn(0), (QStringList { "B-200", "A-100" }));
    EXPECT_EQ(quoteColumn(2), savedPrices) << "the line keeps its saved price";
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Quote Q-2026-0001 A opened. Line 2: \"A-100\" is not in the catalogue; "
                       "the line keeps its price until its quantity is changed."));
    EXPECT_TRUE(fakes->prompts.shown().empty());

    // A quantity typed there prices the line from the catalogue, at nothing: the line is no
    // longer one that keeps its price, and the notice of such lines names it instead.
    editGridCell(window->ui().GrdQuote, 1, QuoteGridColumn::Quantity, QStringLiteral("3"));
    EXPECT_EQ(quoteColumn(2).value(1), QStringLiteral("$0.00"));
    action("mnuQuoteSave")->trigger();
    action("mnuFileNew")->trigger();
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Quote Q-2026-0001 A opened. Line 2: \"A-100\" is not in the catalogue; "
                       "the line is charged $0.00 until a price is typed."));

    catalogue().put(2, ProductRecord::PartNumber, "B-201");
    editGridCell(window->ui().GrdQuote, 1, QuoteGridColumn::Price, QStringLiteral("9"));
    action("mnuQuoteSave")->trigger();
    action("mnuFileNew")->trigger();
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Quote Q-2026-0001 A opened. Lines 1, 2: their part numbers are not in "
                       "the catalogue; the lines keep their prices until their quantities are "
                       "changed."));
}

TEST_F(QuoteBookWindowTest, DigitsTypedAfterOpenQuoteGoToTheFirstLinesQuantity)
{
    addToQuote(1);
    addToQuote(0);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    action("mnuFileNew")->trigger();
    // The keyboard is in the quote (Alt+Q) when the user opens a saved one.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QTableView *products = window->ui().GrdMain;
    products->setFocus(Qt::OtherFocusReason);
    ASSERT_TRUE(QTest::qWaitFor([products] { return products->hasFocus(); }, 10000));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Q, Qt::AltModifier);
    QTableView *quote = window->ui().GrdQuote;
    ASSERT_TRUE(QTest::qWaitFor([quote] { return quote->hasFocus(); }, 10000));
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(quote->currentIndex().row(), 0);
    EXPECT_EQ(quote->currentIndex().column(), QuoteGridColumn::Quantity);

    ASSERT_TRUE(quote->hasFocus());
    for (const char key : { '4', '0' })
        QTest::keyClick(QApplication::focusWidget(), key);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    auto *view = window->ui().GrdQuote;
    ASSERT_TRUE(QTest::qWaitFor([view] { return !view->isEditing(); }, 10000));
    EXPECT_EQ(quoteColumn(QuoteGridColumn::PartNumber), (QStringList { "B-200", "A-100" }));
    EXPECT_EQ(quoteColumn(QuoteGridColumn::Quantity).value(0), QStringLiteral("40"));
}

TEST_F(QuoteBookWindowTest, AQuoteOnScreenPastItsLastValidDaySaysSo)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger(); // on May 12, valid until June 11
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing"));
    mainWindow->quoteBook().setToday([] { return QDate(2026, 6, 12); });
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing (expired)"));

    // It goes to the customer only when the user says so: No, the default, sends nothing.
    fakes->launcher.installed << QStringLiteral("xdg-email");
    fakes->prompts.answerMessage(MsgResult::No);
    action("mnuFileSend")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        QStringLiteral("Quote Q-2026-0001 A was valid until Thursday, June 11, 2026. Send it as "
                       "it is?\n\nNew Revision makes a copy dated today, valid for another 30 "
                       "days."));
    EXPECT_EQ(fakes->prompts.shown()[0].style,
        MsgStyle::YesNo | MsgStyle::Question | MsgStyle::DefaultButton2);
    EXPECT_TRUE(fakes->launcher.starts.empty());
    EXPECT_EQ(book().list().first().status, QuoteStatus::Draft);
    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuFileSend")->trigger();
    ASSERT_EQ(fakes->launcher.starts.size(), 1U);
    EXPECT_EQ(book().list().first().status, QuoteStatus::Sent);
    QDir(QFileInfo(fakes->launcher.starts[0].arguments[6]).path()).removeRecursively();
}

TEST_F(QuoteBookWindowTest, OpenQuoteOffersToSaveTheQuoteOnScreenFirst)
{
    addToQuote(0);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    addToQuote(1);
    fakes->prompts.answerMessage(MsgResult::Yes);
    bookDialogs->chooseNumber.reset();
    action("mnuQuoteOpen")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        QStringLiteral("Quote Q-2026-0001 A has changed since it was saved. Save the changes "
                       "first?"));
    EXPECT_EQ(bookDialogs->chooserShown, 1);
    EXPECT_EQ(book().load(book().list().first().id)->content.lines.rowCount(), 2);
}

TEST_F(QuoteBookWindowTest, NewRevisionAndDuplicateQuote)
{
    addToQuote(0);
    action("mnuQuoteRevision")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        QStringLiteral("A new revision continues a saved quote. Save the quote first."));
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    addToQuote(1);
    action("mnuQuoteRevision")->trigger();
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 B, ACME Plumbing"));
    const CustomerDetails bolt { QStringLiteral("Bolt Brothers"), QStringLiteral("Bolt Ltd"), {},
        {} };
    bookDialogs->customers.push_back(bolt);
    action("mnuQuoteDuplicate")->trigger();
    EXPECT_EQ(bookDialogs->intros.last(),
        QStringLiteral("The same lines are saved under a new quote number for this customer."));
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0002 A, Bolt Brothers, Bolt Ltd"));
    QStringList listed;
    for (const QuoteSummary &quote : book().list())
        listed << quote.number() + QLatin1Char(' ') + quote.revisionLetter();
    EXPECT_EQ(listed, (QStringList { "Q-2026-0002 A", "Q-2026-0001 B", "Q-2026-0001 A" }));
}

TEST_F(QuoteBookWindowTest, ALongCustomerIsCutInTheFramesTitleAndTheStatusStaysInView)
{
    window->ui().SSTabmain->setCurrentIndex(1);
    addToQuote(1);
    CustomerDetails longOne = Acme;
    longOne.customer = QStringLiteral("Maximilian Oberhuber-Schwarzenberg & Sons");
    longOne.company =
        QStringLiteral("Northern Plumbing and Heating Supplies Limited of the Greater Region");
    bookDialogs->customers.push_back(longOne);
    action("mnuQuoteSave")->trigger();
    const qint64 id = book().list().first().id;
    bookDialogs->whileChoosing = [id](QuoteBook &quotes) {
        EXPECT_TRUE(quotes.setStatus(id, QuoteStatus::Sent));
    };
    action("mnuQuoteOpen")->trigger();

    QGroupBox *frame = window->ui().FraQuote;
    ASSERT_TRUE(frame->isVisible());
    EXPECT_TRUE(
        frame->title().startsWith(QStringLiteral("Quote Details: Q-2026-0001 A, Maximilian")))
        << frame->title().toStdString();
    EXPECT_TRUE(frame->title().endsWith(QStringLiteral("\u2026 (sent)")))
        << frame->title().toStdString();
    EXPECT_LE(frame->fontMetrics().horizontalAdvance(
                  QString(frame->title()).replace(QStringLiteral("&&"), QStringLiteral("&"))),
        frame->width());
    EXPECT_EQ(frame->toolTip(),
        plainToolTip(QStringLiteral("Quote Details: Q-2026-0001 A, Maximilian "
                                    "Oberhuber-Schwarzenberg & Sons, Northern Plumbing and Heating "
                                    "Supplies Limited of the Greater Region (sent)")));

    // Wider, the frame shows more of the customer.
    const qsizetype before = frame->title().size();
    window->resize(window->width() + 300, window->height());
    EXPECT_TRUE(QTest::qWaitFor([&] { return frame->title().size() > before; }, 10000));

    // The title set while the quote tab is hidden (the quote restored at the next start) is cut
    // when the tab shows.
    window->ui().SSTabmain->setCurrentIndex(0);
    Q_EMIT window->quoteBook().session()->headerChanged();
    window->ui().SSTabmain->setCurrentIndex(1);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return frame->title().endsWith(QStringLiteral("\u2026 (sent)")); }, 10000))
        << frame->title().toStdString();
}

} // namespace
