// The quote book when things go wrong, on the real main window: the quote on screen outlives a
// crash, a book that will not take it is named in the status bar and at close, and a damaged
// book at start-up is kept aside with the copy of the last close.
#include "quotebookwindowfixture.h"

#include "quotebook/quotesession.h"
#include "shell/mainwindowactions.h"
#include "support/folderlisting.h"

#include <QAction>
#include <QCoreApplication>
#include <QFile>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>

#if defined(Q_OS_LINUX)
#include <sys/stat.h>
#endif

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

TEST_F(QuoteBookWindowTest, TheQuoteOnScreenOutlivesACrash)
{
    QSignalSpy kept(window->quoteBook().session(), &QuoteSession::kept);
    addToQuote(2);
    addToQuote(1);
    ASSERT_TRUE(kept.wait(5000));
    // No close: the windows go as a killed program's would.
    restart();
    installFakes();
    EXPECT_EQ(quoteColumn(0), (QStringList { "C-300", "B-200" }));
}

TEST_F(QuoteBookWindowTest, AQuoteTheBookWillNotTakeAtCloseIsNamed)
{
    QSignalSpy kept(window->quoteBook().session(), &QuoteSession::kept);
    addToQuote(1);
    ASSERT_TRUE(kept.wait(5000));
    // The book stops taking the quote in hand (as a read-only folder or a full disk would).
    QSqlQuery(book().database()).exec(QStringLiteral("DROP TABLE in_hand_lines"));
    addToQuote(0);
    fakes->prompts.clear();
    // The close asks first; No keeps Tarnwick open with the quote as it is.
    fakes->prompts.answerMessage(MsgResult::No);
    EXPECT_FALSE(window->close());
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    const ShownPrompt question = fakes->prompts.shown()[0];
    EXPECT_TRUE(question.text.startsWith(
        QStringLiteral("The quote on screen could not be kept for the next start: ")))
        << question.text.toStdString();
    EXPECT_TRUE(question.text.endsWith(QStringLiteral("Close Tarnwick anyway?")));
    EXPECT_EQ(question.title, QStringLiteral("Quote Book"));
    EXPECT_EQ(question.style, MsgStyle::YesNo | MsgStyle::Exclamation | MsgStyle::DefaultButton2);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(quoteColumn(0).size(), 2);
    // Yes closes, and the box is not shown a second time.
    fakes->prompts.clear();
    fakes->prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(window->close());
    EXPECT_EQ(fakes->prompts.shown().size(), 1U);
}

TEST_F(QuoteBookWindowTest, TheStatusBarTellsWhenTheQuoteIsSafeAgain)
{
    QuoteSession *session = window->quoteBook().session();
    QSignalSpy kept(session, &QuoteSession::kept);
    // The book failed to take the quote in hand (a full disk, say) ...
    Q_EMIT session->keepFailed(QStringLiteral("the disk is full"));
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("The quote on screen cannot be kept safe: the disk is full. Until it "
                       "is, keep a copy elsewhere (the quote's menu \u2192 Copy)."));
    // A hint in the first panel (the pointer over the product grid) leaves the warning mark.
    window->ui().sbPanel1->setText(QStringLiteral("31 Products"));
    EXPECT_TRUE(window->ui().sbUnsafe->isVisible());
    EXPECT_EQ(window->ui().sbUnsafe->toolTip(),
        QStringLiteral("The quote on screen cannot be kept safe: the disk is full. Until it "
                       "is, keep a copy elsewhere (the quote's menu \u2192 Copy)."));
    // ... and takes the next change.
    addToQuote(1);
    ASSERT_TRUE(kept.wait(5000));
    EXPECT_EQ(
        window->ui().sbPanel1->text(), QStringLiteral("The quote on screen is kept safe again."));
    EXPECT_FALSE(window->ui().sbUnsafe->isVisible());

    // Later keeps leave the status bar to other news.
    window->ui().sbPanel1->setText(QStringLiteral("Something else"));
    addToQuote(0);
    ASSERT_TRUE(kept.wait(5000));
    EXPECT_EQ(window->ui().sbPanel1->text(), QStringLiteral("Something else"));
}

class DamagedBookWindowTest : public ShellTest
{
};

TEST_F(DamagedBookWindowTest, ADamagedQuoteBookIsReportedKeptAndReplaced)
{
    folder.writeFile(QStringLiteral("quotes.db"), QByteArray(9000, 'q'));
    startAndWait();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    const ShownPrompt &box = fakes->prompts.shown()[0];
    EXPECT_TRUE(box.text.startsWith(QStringLiteral("The quote book \"%1\" is damaged and could not "
                                                   "be read (file is not a database).")
                                        .arg(folder.filePath(QStringLiteral("quotes.db")))))
        << box.text.toStdString();
    EXPECT_EQ(box.title, QStringLiteral("Quote Book"));
    EXPECT_EQ(box.style, MsgStyle::Exclamation);
    const QStringList kept = folder.fileNames().filter(QStringLiteral("quotes-damaged-"));
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(folder.readFile(kept.first()), QByteArray(9000, 'q'));
    EXPECT_TRUE(mainWindow->quoteBook().book().isOpen());
}

// The new book does not give again the numbers the damaged one gave to customers: it
// continues after those of the copy made at the last close.
TEST_F(DamagedBookWindowTest, TheNewBookContinuesAfterTheNumbersTheDamagedOneGave)
{
    // One day for both, so a run across midnight at the year's end numbers in one year.
    const QDate today = QDate::currentDate();
    {
        QuoteBook copy(QLocale(QLocale::English, QLocale::UnitedStates));
        ASSERT_EQ(copy.open(folder.filePath(QStringLiteral("quotes.bak"))).status,
            QuoteBook::OpenStatus::Created);
        std::vector<SavedQuote> given(3);
        for (SavedQuote &quote : given) {
            quote.header.customer.customer = QStringLiteral("Earlier customer");
            quote.header.date = today;
            quote.content.lines = Table(1, QuoteLine::FieldCount);
        }
        ASSERT_TRUE(copy.saveNewQuotes(given));
        ASSERT_EQ(given.back().header.sequence, 3);
    }
    folder.writeFile(QStringLiteral("quotes.db"), QByteArray(9000, 'q'));
    startAndWait();
    ASSERT_TRUE(mainWindow->quoteBook().book().isOpen());
    SavedQuote next;
    next.header.customer.customer = QStringLiteral("Next customer");
    next.header.date = today;
    next.content.lines = Table(1, QuoteLine::FieldCount);
    ASSERT_TRUE(mainWindow->quoteBook().book().saveNew(next));
    EXPECT_EQ(next.header.sequence, 4);
}

TEST_F(DamagedBookWindowTest, TheCopyOfTheLastCloseOutlivesTheNewBook)
{
    folder.writeFile(QStringLiteral("quotes.db"), QByteArray(9000, 'q'));
    folder.writeFile(QStringLiteral("quotes.bak"), QByteArray("the good book of yesterday"));
    startAndWait();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    const QStringList kept = folder.fileNames().filter(QStringLiteral("quotes-backup-"));
    ASSERT_EQ(kept.size(), 1);
    EXPECT_TRUE(kept.first().endsWith(QStringLiteral(".db")));
    EXPECT_EQ(folder.readFile(kept.first()), QByteArray("the good book of yesterday"));
    EXPECT_TRUE(fakes->prompts.shown()[0].text.endsWith(
        QStringLiteral(" The copy made when Tarnwick was last closed is \"%1\" in the same "
                       "folder.")
            .arg(kept.first())))
        << fakes->prompts.shown()[0].text.toStdString();

    EXPECT_TRUE(mainWindow->close());
    EXPECT_EQ(folder.readFile(kept.first()), QByteArray("the good book of yesterday"))
        << "the close copies the new book to quotes.bak, never over the kept copy";
    EXPECT_TRUE(folder.exists(QStringLiteral("quotes.bak")));
}

// The book another program held at the start can be opened later: once the quote on screen
// is in it, the status bar says so instead of keeping the start's "could not be opened".
TEST_F(DamagedBookWindowTest, ABookThatCanBeOpenedLaterSaysTheQuoteIsSafeAgain)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    QDir(folder.path()).mkdir(QStringLiteral("quotes.db"));
    startAndWait();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    ASSERT_TRUE(QDir(folder.path()).rmdir(QStringLiteral("quotes.db")));
    QSignalSpy kept(mainWindow->quoteBook().session(), &QuoteSession::kept);
    QTableView *products = mainWindow->ui().GrdMain;
    products->setCurrentIndex(products->model()->index(0, 0));
    mainWindow->actions().action(QStringLiteral("mnuGrdMainQuote"))->trigger();
    ASSERT_TRUE(kept.wait(5000));
    EXPECT_EQ(mainWindow->ui().sbPanel1->text(),
        QStringLiteral("The quote on screen is kept safe again."));
}

TEST_F(DamagedBookWindowTest, WithoutABookTheCommandsSayWhy)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    QDir(folder.path()).mkdir(QStringLiteral("quotes.db"));
    startAndWait();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_TRUE(fakes->prompts.shown()[0].text.contains(QLatin1String("could not be opened")));
    fakes->prompts.clear();
    mainWindow->actions().action(QStringLiteral("mnuQuoteOpen"))->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_TRUE(fakes->prompts.shown()[0].text.startsWith(
        QLatin1String("The quote book is not available: ")));
    // A quote that has no book to be kept in is named at the close.
    QTableView *products = mainWindow->ui().GrdMain;
    products->setCurrentIndex(products->model()->index(0, 0));
    mainWindow->actions().action(QStringLiteral("mnuGrdMainQuote"))->trigger();
    fakes->prompts.clear();
    fakes->prompts.answerMessage(MsgResult::Yes);
    EXPECT_TRUE(mainWindow->close());
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_TRUE(fakes->prompts.shown()[0].text.startsWith(
        QLatin1String("The quote on screen could not be kept for the next start: the quote book "
                      "is not available (")));
    EXPECT_TRUE(fakes->prompts.shown()[0].text.endsWith(QLatin1String("Close Tarnwick anyway?")));
}

#if defined(Q_OS_LINUX)
/// Whether this process holds a lock on the file at path (/proc/locks names it by its inode).
bool holdsLockOn(const QString &path)
{
    struct stat info
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return false;
    QFile locks(QStringLiteral("/proc/locks"));
    if (!locks.open(QIODevice::ReadOnly))
        return false;
    const QByteArray pid = QByteArray::number(QCoreApplication::applicationPid());
    const QByteArray inode = ':' + QByteArray::number(quint64(info.st_ino));
    // "1: POSIX  ADVISORY  READ 4242 08:02:1234567 128 128"; waiting locks have "->" first.
    for (const QByteArray &line : locks.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() >= 6 && fields.at(1) != "->" && fields.at(4) == pid
            && fields.at(5).endsWith(inode))
            return true;
    }
    return false;
}

class QuoteBookLockTest : public QuoteBookWindowTest
{
protected:
    /// The quote book's file, made by a first line on the quote and kept by the program.
    QString bookMadeByAFirstLine()
    {
        QSignalSpy kept(window->quoteBook().session(), &QuoteSession::kept);
        addToQuote(1);
        EXPECT_TRUE(kept.wait(5000));
        return folder.filePath(QStringLiteral("quotes.db"));
    }
};

TEST_F(QuoteBookLockTest, TheBookTakesItsLocksAgainAfterAFileDialogListedItsFolder)
{
    const QString bookFile = bookMadeByAFirstLine();
    ASSERT_TRUE(holdsLockOn(bookFile));
    {
        // A dialog of Qt's own making, as the print dialog's "Print to File" browser is.
        QFileDialog dialog(window, QString(), folder.path());
        dialog.setOption(QFileDialog::DontUseNativeDialog);
        ASSERT_TRUE(showFolderListing(dialog));
        EXPECT_FALSE(holdsLockOn(bookFile))
            << "reading the book's first bytes to find its type dropped the locks";
        dialog.hide();
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return holdsLockOn(bookFile); }, 5000));
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    EXPECT_EQ(book().quoteCount(), 1) << "the book opened anew takes the save";
}

TEST_F(QuoteBookLockTest, ThePrintDialogClosedGivesTheBookItsLocksBack)
{
    const QString bookFile = bookMadeByAFirstLine();
    ASSERT_TRUE(holdsLockOn(bookFile));
    // What the print dialog's output file box does when a path into the folder is typed:
    // the suggestions read the book's first bytes.
    {
        QFile read(bookFile);
        ASSERT_TRUE(read.open(QIODevice::ReadOnly));
    }
    ASSERT_FALSE(holdsLockOn(bookFile));
    QPrinter printer;
    QPrintDialog dialog(&printer, window);
    dialog.show();
    dialog.hide();
    EXPECT_TRUE(QTest::qWaitFor([&] { return holdsLockOn(bookFile); }, 5000));
}
#endif

TEST_F(QuoteBookWindowTest, ABookDeletedWhileOpenIsNotReplacedByAnEmptyOneAfterADialog)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(book().quoteCount(), 1);
    // The file dialogs offer Delete on every file they list, quotes.db among them.
    ASSERT_TRUE(QFile::remove(folder.filePath(QStringLiteral("quotes.db"))));
    QFileDialog dialog(window, QString(), folder.path());
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.show();
    dialog.hide();
    // The dialog's closing is answered from the event loop.
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_FALSE(folder.exists(QStringLiteral("quotes.db"))) << "no empty book in its place";
    EXPECT_EQ(book().quoteCount(), 1) << "the open book, with its quote, is kept";
}

// A drive taken away and put back in the same place holds quotes.db again, but the book's
// connection still held the file of the drive that went: every save failed until a restart.
// Another file in the book's place (here a copy put there by a rename) is opened anew.
TEST_F(QuoteBookWindowTest, ABookWhoseFileWasReplacedIsOpenedAnewAndTakesTheSave)
{
    addToQuote(1);
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(book().quoteCount(), 1);
    const QString path = folder.filePath(QStringLiteral("quotes.db"));
    const QString copy = folder.filePath(QStringLiteral("copy.db"));
    // The drive comes back with the same files, none of them the files the connection holds:
    // the book (its log written into it first) is copied, and the copy takes the place of the
    // book, its log and the log's index.
    ASSERT_TRUE(
        QSqlQuery(book().database()).exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)")));
    ASSERT_TRUE(QFile::copy(path, copy));
    for (const char *suffix : { "", "-wal", "-shm" })
        QFile::remove(path + QLatin1String(suffix));
    ASSERT_TRUE(QFile::rename(copy, path));
    EXPECT_TRUE(book().needsReopening());

    addToQuote(0);
    fakes->prompts.clear();
    action("mnuQuoteSave")->trigger();
    EXPECT_TRUE(fakes->prompts.shown().empty())
        << fakes->prompts.shown().front().text.toStdString();
    EXPECT_FALSE(book().needsReopening());
    // The save is in the file that is there now.
    QuoteBook reader(locale);
    ASSERT_EQ(reader.open(path).status, QuoteBook::OpenStatus::Opened);
    ASSERT_EQ(reader.quoteCount(), 1);
    const auto saved = reader.load(reader.list().first().id);
    ASSERT_TRUE(saved.has_value());
    EXPECT_EQ(saved->content.lines.rowCount(), 2);
}

} // namespace
