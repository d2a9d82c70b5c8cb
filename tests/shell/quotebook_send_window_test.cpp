// The quote's way out of the book on the real main window: Save as PDF, File → Send with or
// without a mail program, the status set in the Quotes window and the revision a change to an
// answered quote becomes, Save All. (The book's other commands: quotebook_window_test.cpp.)
#include "quotebookwindowfixture.h"

#include "catalogue/productrecord.h"
#include "core/conversions.h"
#include "quotes/quotelist.h"
#include "quotes/quotenote.h"
#include "shell/gridview.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QProcess>
#include <QRegularExpression>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

TEST_F(QuoteBookWindowTest, SaveAsPdfWritesTheQuoteWhereTheUserChooses)
{
    addToQuote(1);
    addToQuote(0);
    bookDialogs->customers.push_back(Acme);
    const QString path = folder.filePath(QStringLiteral("out.pdf"));
    fakes->fileDialogs.answer(FileDialogResult { path, 1 });
    action("mnuQuotePdf")->trigger();
    ASSERT_EQ(fakes->fileDialogs.requests().size(), 1U);
    EXPECT_EQ(fakes->fileDialogs.requests()[0].title, QStringLiteral("Save Quote as PDF"));
    EXPECT_EQ(fakes->fileDialogs.requests()[0].fileName, QStringLiteral("Q-2026-0001-A.pdf"));
    EXPECT_EQ(fakes->fileDialogs.requests()[0].filter,
        QStringLiteral("PDF Files (*.pdf)|*.pdf|All Files (*.*)|*.*"));
    EXPECT_EQ(book().quoteCount(), 1) << "the quote was saved first, to have its number";

    // Read back by poppler: the page header, both lines with their price lines, the total
    // the window shows.
    QProcess reader;
    reader.start(
        QStringLiteral("pdftotext"), { QStringLiteral("-layout"), path, QStringLiteral("-") });
    ASSERT_TRUE(reader.waitForFinished(20000)) << "pdftotext must be installed";
    const QString text =
        QString::fromUtf8(reader.readAllStandardOutput())
            .replace(QRegularExpression(QStringLiteral("[ \\t]+")), QStringLiteral(" "));
    EXPECT_TRUE(text.contains(QStringLiteral("Quote Q-2026-0001 A"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("ACME Plumbing")));
    EXPECT_TRUE(text.contains(QStringLiteral("Page 1 of 1")));
    const qsizetype bolt = text.indexOf(QStringLiteral("B-200 Bolt\nQuantity 1 Price $2.50 "
                                                       "Extended Price $2.50\nNut\n"));
    const qsizetype anchor = text.indexOf(QStringLiteral("A-100 Anchor\nQuantity 1 Price $12.50 "
                                                         "Extended Price $12.50\nWasher\n"));
    EXPECT_GE(bolt, 0) << text.toStdString();
    EXPECT_GT(anchor, bolt) << "the lines in the quote's order";
    EXPECT_TRUE(text.contains(QStringLiteral("Order Total = %1").arg(totals().first())));
    EXPECT_EQ(totals().first(), QStringLiteral("$15.00"));
}

TEST_F(QuoteBookWindowTest, SavingAQuoteEmptiedOfItsLinesAsksFirst)
{
    addToQuote(1);
    addToQuote(0);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    const qint64 id = book().list().first().id;
    // Emptied line by line it is still that quote ("Remove All" would start a new one).
    for (int line = 0; line < 2; ++line) {
        GridView *quoteGrid = window->ui().GrdQuote;
        quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, 0));
        action("mnuQuoteDelete")->trigger();
    }
    ASSERT_EQ(quoteColumn(0), QStringList());
    fakes->prompts.clear();

    fakes->prompts.answerMessage(MsgResult::No);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        QStringLiteral("Quote Q-2026-0001 A has no lines now. Save it without lines, in place of "
                       "the lines it was saved with?"));
    EXPECT_EQ(fakes->prompts.shown()[0].style,
        MsgStyle::YesNo | MsgStyle::Question | MsgStyle::DefaultButton2);
    EXPECT_EQ(book().load(id)->content.lines.rowCount(), 2) << "No keeps the saved lines";

    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuQuoteSave")->trigger();
    EXPECT_EQ(book().load(id)->content.lines.rowCount(), 0) << "Yes saves it as it is";
}

TEST_F(QuoteBookWindowTest, AHeadingChangedAfterTheSaveIsSavedBeforeThePdfIsWritten)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(book().quoteCount(), 1);
    const qint64 id = book().list().first().id;
    // Quote Note: new texts after the save.
    ASSERT_TRUE(QuoteNote::saveNotes(
        folder.path(), QStringLiteral("NEW HEADING"), QStringLiteral("NEW ENDING")));

    const QString path = folder.filePath(QStringLiteral("out.pdf"));
    fakes->fileDialogs.answer(FileDialogResult { path, 1 });
    action("mnuQuotePdf")->trigger();
    EXPECT_TRUE(fakes->prompts.shown().empty()) << "a draft is saved into its revision";
    EXPECT_EQ(book().load(id)->header.heading, QStringLiteral("NEW HEADING"));
    EXPECT_EQ(book().load(id)->header.ending, QStringLiteral("NEW ENDING"));
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"), { path, QStringLiteral("-") });
    ASSERT_TRUE(reader.waitForFinished(20000)) << "pdftotext must be installed";
    const QString text = QString::fromUtf8(reader.readAllStandardOutput());
    EXPECT_TRUE(text.contains(QStringLiteral("NEW HEADING"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("NEW ENDING"))) << text.toStdString();
}

TEST_F(QuoteBookWindowTest, SendHandsThePdfToTheMailProgramAndMarksTheQuoteSent)
{
    addToQuote(1);
    fakes->launcher.installed << QStringLiteral("xdg-email");
    bookDialogs->customers.push_back(Acme);
    action("mnuFileSend")->trigger();
    ASSERT_EQ(fakes->launcher.starts.size(), 1U);
    const auto &start = fakes->launcher.starts[0];
    EXPECT_EQ(start.program, QStringLiteral("/usr/bin/xdg-email"));
    ASSERT_EQ(start.arguments.size(), 8);
    EXPECT_EQ(
        start.arguments.mid(0, 3), (QStringList { "--utf8", "--subject", "Quote Q-2026-0001 A" }));
    EXPECT_EQ(start.arguments[5], QStringLiteral("--attach"));
    EXPECT_TRUE(start.arguments[6].endsWith(QLatin1String("/Q-2026-0001-A.pdf")));
    QFile pdf(start.arguments[6]);
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    EXPECT_TRUE(pdf.read(4) == "%PDF");
    EXPECT_EQ(start.arguments[7], QStringLiteral("buy@acme.test"));
    EXPECT_EQ(book().list().first().status, QuoteStatus::Sent);
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing (sent)"));
    QDir(QFileInfo(start.arguments[6]).path()).removeRecursively();

    // Changing a sent quote and saving it asks whether it becomes the next revision.
    addToQuote(0);
    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        QStringLiteral("Quote Q-2026-0001 A has been sent to the customer. Save the changes as "
                       "revision B, keeping Q-2026-0001 A as it was sent?\n\nNo saves them into "
                       "Q-2026-0001 A itself."));
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 B, ACME Plumbing"));

    // The sent revision changed again, with B saved already: the question names the revision
    // the save makes.
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 A");
    action("mnuQuoteOpen")->trigger();
    addToQuote(1);
    fakes->prompts.answerMessage(MsgResult::Yes);
    const std::size_t before = fakes->prompts.shown().size();
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), before + 1);
    EXPECT_EQ(fakes->prompts.shown().back().text,
        QStringLiteral("Quote Q-2026-0001 A has been sent to the customer. Save the changes as "
                       "revision C, keeping Q-2026-0001 A as it was sent?\n\nNo saves them into "
                       "Q-2026-0001 A itself."));
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 C, ACME Plumbing"));
}

// The PDF goes through the folder for temporary files: one that cannot take it is said, and
// the quote stays a draft; one that is not there is not replaced by the working folder.
TEST_F(QuoteBookWindowTest, SendSaysWhenTheFolderForTemporaryFilesCannotTakeThePdf)
{
    addToQuote(1);
    fakes->launcher.installed << QStringLiteral("xdg-email");
    bookDialogs->customers.push_back(Acme);
    const QByteArray before = qgetenv("TMPDIR");
    const QString file = folder.filePath(QStringLiteral("not-a-folder"));
    folder.writeFile(QStringLiteral("not-a-folder"), "a file");
    qputenv("TMPDIR", QFile::encodeName(file));
    action("mnuFileSend")->trigger();
    const QString missing = folder.filePath(QStringLiteral("gone"));
    qputenv("TMPDIR", QFile::encodeName(missing));
    action("mnuFileSend")->trigger();
    if (before.isNull())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", before);

    EXPECT_TRUE(fakes->launcher.starts.empty());
    ASSERT_EQ(fakes->prompts.shown().size(), 2U);
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Send Quote"));
    // The cause in the system's words (its language), then the way on.
    const QString shown = fakes->prompts.shown()[0].text;
    EXPECT_TRUE(shown.startsWith(QStringLiteral("The quote's PDF could not be written to the "
                                                "folder for temporary files, \"%1\": ")
                                     .arg(QDir::toNativeSeparators(file))))
        << shown.toStdString();
    EXPECT_TRUE(shown.endsWith(
        QStringLiteral(". The quote was not sent; Save as PDF writes it where you choose.")));
    EXPECT_TRUE(fakes->prompts.shown()[1].text.contains(
        QStringLiteral("\"%1\": the folder cannot be found.")
            .arg(QDir::toNativeSeparators(missing))))
        << fakes->prompts.shown()[1].text.toStdString();
    EXPECT_EQ(book().list().first().status, QuoteStatus::Draft);
    EXPECT_TRUE(QDir(QDir::currentPath())
                    .entryList({ QStringLiteral("tarnwick-quote-*") }, QDir::Dirs)
                    .isEmpty());
}

TEST_F(QuoteBookWindowTest, AStatusSetInTheQuotesWindowHoldsForTheQuoteOnScreen)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(book().quoteCount(), 1);
    const qint64 id = book().list().first().id;
    // Marked as sent in the Quotes window, which is then closed without opening a quote.
    bookDialogs->whileChoosing = [id](QuoteBook &quotes) {
        EXPECT_TRUE(quotes.setStatus(id, QuoteStatus::Sent));
    };
    action("mnuQuoteOpen")->trigger();
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing (sent)"));

    // A change to the sent quote is asked about, and the answer Cancel saves nothing.
    addToQuote(0);
    fakes->prompts.answerMessage(MsgResult::Cancel);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].style & 0x7, MsgStyle::YesNoCancel);
    EXPECT_EQ(book().list().first().status, QuoteStatus::Sent);
    EXPECT_EQ(book().load(id)->content.lines.rowCount(), 1) << "the sent revision is unchanged";
}

// An accepted or declined quote is a record of what the customer answered: a change to it is
// offered as the next revision, as for a sent one.
TEST_F(QuoteBookWindowTest, AChangeToAnAcceptedOrDeclinedQuoteIsOfferedAsTheNextRevision)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    const qint64 id = book().list().first().id;
    bookDialogs->whileChoosing = [id](QuoteBook &quotes) {
        EXPECT_TRUE(quotes.setStatus(id, QuoteStatus::Accepted));
    };
    action("mnuQuoteOpen")->trigger();
    bookDialogs->whileChoosing = nullptr;
    ASSERT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 A, ACME Plumbing (accepted)"));

    addToQuote(0);
    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        QStringLiteral("Quote Q-2026-0001 A has been accepted by the customer. Save the changes "
                       "as revision B, keeping Q-2026-0001 A as it was accepted?\n\nNo saves "
                       "them into Q-2026-0001 A itself."));
    EXPECT_EQ(window->ui().FraQuote->title(),
        QStringLiteral("Quote Details: Q-2026-0001 B, ACME Plumbing"));
    const std::optional<SavedQuote> accepted = book().load(id);
    ASSERT_TRUE(accepted.has_value());
    EXPECT_EQ(accepted->header.status, QuoteStatus::Accepted);
    EXPECT_EQ(accepted->content.lines.rowCount(), 1) << "the accepted revision is unchanged";

    // Declined, and changed: No saves into the declined revision itself, as the user chose.
    const qint64 revisionB = book().list().first().id;
    ASSERT_NE(revisionB, id);
    ASSERT_TRUE(book().setStatus(revisionB, QuoteStatus::Declined));
    bookDialogs->chooseNumber = QStringLiteral("Q-2026-0001 B");
    action("mnuQuoteOpen")->trigger();
    addToQuote(2);
    fakes->prompts.answerMessage(MsgResult::No);
    action("mnuQuoteSave")->trigger();
    EXPECT_TRUE(fakes->prompts.shown().back().text.startsWith(
        QStringLiteral("Quote Q-2026-0001 B has been declined by the customer. Save the changes as "
                       "revision C, keeping Q-2026-0001 B as it was declined?")));
    EXPECT_EQ(book().quoteCount(), 2);
    EXPECT_EQ(book().load(revisionB)->content.lines.rowCount(), 3);
}

TEST_F(QuoteBookWindowTest, SendWithoutXdgEmailOpensAMailtoLinkAndSaysToAttachThePdf)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuFileSend")->trigger();
    ASSERT_EQ(fakes->launcher.openedUrls.size(), 1);
    EXPECT_TRUE(fakes->launcher.openedUrls[0].startsWith(
        QLatin1String("mailto:buy@acme.test?subject=Quote%20Q-2026-0001%20A&body=")));
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_TRUE(fakes->prompts.shown()[0].text.startsWith(
        QLatin1String("The mail program opens without the attachment. Attach the quote's PDF to "
                      "the message; it is saved as \"")));
    EXPECT_EQ(book().list().first().status, QuoteStatus::Sent);
    const QString text = fakes->prompts.shown()[0].text;
    const QString pdf = text.section(QLatin1Char('"'), 1, 1);
    EXPECT_TRUE(QFileInfo::exists(pdf)) << pdf.toStdString();
    QDir(QFileInfo(pdf).path()).removeRecursively();
}

TEST_F(QuoteBookWindowTest, SaveAllSavesTheCatalogueAndTheQuote)
{
    goToRow(0);
    addToQuote(0);
    catalogue().put(3, ProductRecord::ProductName, "Clamp, renamed");
    bookDialogs->customers.push_back(Acme);
    action("mnuFileSaveAll")->trigger();
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("Clamp, renamed"));
    EXPECT_EQ(book().quoteCount(), 1);
    action("mnuFileSaveAll")->trigger();
    EXPECT_EQ(book().quoteCount(), 1) << "an unchanged quote is not saved again";
}

// A quantity still being typed when a command is chosen from the menu bar belongs to the quote
// that command saves, prints or sends.
TEST_F(QuoteBookWindowTest, AQuantityStillBeingTypedIsInWhatTheBookSavesPrintsAndSends)
{
    addToQuote(1);
    fakes->launcher.installed << QStringLiteral("xdg-email");
    bookDialogs->customers.push_back(Acme);
    GridView *quoteGrid = window->ui().GrdQuote;
    const auto typeQuantity = [&](const QString &quantity) {
        quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, QuoteGridColumn::Quantity));
        QTest::keyClick(quoteGrid, Qt::Key_F2);
        auto *editor = qobject_cast<QLineEdit *>(quoteGrid->indexWidget(quoteGrid->currentIndex()));
        ASSERT_NE(editor, nullptr);
        editor->selectAll();
        QTest::keyClicks(editor, quantity);
        ASSERT_TRUE(quoteGrid->isEditing());
    };
    const auto expectSaved = [&](qint32 quantity, const char *command) {
        EXPECT_EQ(module->QuoteTable().get(1, QuoteLine::Quantity), Cell(quantity)) << command;
        ASSERT_EQ(book().quoteCount(), 1) << command;
        EXPECT_DOUBLE_EQ(book().list().first().total,
            conv::toDouble(module->QuoteTable().get(1, QuoteLine::ExtendedPrice), locale))
            << command;
        EXPECT_FALSE(window->quoteBook().session()->isChanged()) << command;
    };
    typeQuantity(QStringLiteral("3"));
    action("mnuQuoteSave")->trigger();
    expectSaved(3, "Save Quote");
    typeQuantity(QStringLiteral("4"));
    action("mnuFileSaveAll")->trigger();
    expectSaved(4, "Save All");
    typeQuantity(QStringLiteral("5"));
    fakes->fileDialogs.answer(FileDialogResult { folder.filePath(QStringLiteral("q.pdf")), 1 });
    action("mnuQuotePdf")->trigger();
    expectSaved(5, "Save as PDF");
    typeQuantity(QStringLiteral("6"));
    action("mnuFileSend")->trigger();
    expectSaved(6, "Send");
    EXPECT_EQ(book().list().first().status, QuoteStatus::Sent);
    ASSERT_EQ(fakes->launcher.starts.size(), 1U);
    QDir(QFileInfo(fakes->launcher.starts[0].arguments[6]).path()).removeRecursively();
}

TEST_F(QuoteBookWindowTest, SaveQuoteOnAnUnchangedSentQuoteAsksNothing)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    ASSERT_TRUE(window->quoteBook().session()->markSent());
    action("mnuQuoteSave")->trigger();
    EXPECT_TRUE(fakes->prompts.shown().empty()) << "no question about changes there are none of";
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Quote Q-2026-0001 A has not changed since it was saved."));
    EXPECT_EQ(book().quoteCount(), 1);
}

} // namespace
