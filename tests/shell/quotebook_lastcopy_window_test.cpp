// The quote book gone from the folder while the copy of its last close (quotes.bak) is there:
// the start offers the copy back; declined, the new book numbers on after it and never
// replaces it.
#include "quotebookwindowfixture.h"

#include "quotebook/quotesession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class MissingBookWindowTest : public QuoteBookWindowTest
{
protected:
    /// Makes quotes.bak a book of count quotes dated 2026-05-12 (the window's "today").
    void writeLastCopy(int count)
    {
        QuoteBook copy(QLocale(QLocale::English, QLocale::UnitedStates));
        ASSERT_EQ(copy.open(folder.filePath(QStringLiteral("quotes.bak"))).status,
            QuoteBook::OpenStatus::Created);
        std::vector<SavedQuote> given(static_cast<std::size_t>(count));
        for (SavedQuote &quote : given) {
            quote.header.customer.customer = QStringLiteral("Earlier customer");
            quote.header.date = QDate(2026, 5, 12);
            quote.content.lines = Table(1, QuoteLine::FieldCount);
        }
        ASSERT_TRUE(copy.saveNewQuotes(given));
    }
    /// Starts again in the folder, whose quotes.db is gone, answering the question so.
    void startWithoutTheBook(int answer)
    {
        ASSERT_FALSE(folder.exists(QStringLiteral("quotes.db")));
        fakes->prompts.clear();
        fakes->prompts.answerMessage(answer);
        restart();
        installFakes();
    }
};

TEST_F(MissingBookWindowTest, TheCopyOfTheLastCloseIsOfferedAndYesBringsItsQuotesBack)
{
    writeLastCopy(2);
    startWithoutTheBook(MsgResult::Yes);

    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    const ShownPrompt &box = fakes->prompts.shown()[0];
    EXPECT_EQ(box.title, QStringLiteral("Quote Book"));
    EXPECT_EQ(box.style, MsgStyle::YesNo | MsgStyle::Question);
    EXPECT_TRUE(box.text.startsWith(
        QStringLiteral("The quote book \"%1\" is missing. The copy made when Tarnwick was last "
                       "closed, \"%2\", saved ")
            .arg(QDir::toNativeSeparators(folder.filePath(QStringLiteral("quotes.db"))),
                QDir::toNativeSeparators(folder.filePath(QStringLiteral("quotes.bak"))))))
        << box.text.toStdString();
    EXPECT_TRUE(box.text.contains(QStringLiteral(", holds 2 quotes.\n\nOpen the copy?")))
        << box.text.toStdString();
    ASSERT_TRUE(book().isOpen());
    EXPECT_EQ(book().quoteCount(), 2);
    EXPECT_TRUE(folder.exists(QStringLiteral("quotes.db")));
    EXPECT_TRUE(folder.exists(QStringLiteral("quotes.bak")));
}

TEST_F(MissingBookWindowTest, DeclinedTheNewBookNumbersOnAndNeverReplacesTheCopy)
{
    writeLastCopy(3);
    const QByteArray copy = folder.readFile(QStringLiteral("quotes.bak"));
    startWithoutTheBook(MsgResult::No);
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_FALSE(book().isOpen()) << "no book until there is something to keep";

    // The first line on screen is kept: the new book is made then.
    QSignalSpy kept(window->quoteBook().session(), &QuoteSession::kept);
    addToQuote(1);
    ASSERT_TRUE(kept.wait(5000));
    ASSERT_TRUE(book().isOpen());
    const QStringList aside = folder.fileNames().filter(QStringLiteral("quotes-backup-"));
    ASSERT_EQ(aside.size(), 1);
    EXPECT_EQ(folder.readFile(aside.first()), copy);
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("A new quote book has been started; the copy of the earlier one is kept "
                       "as \"%1\".")
            .arg(aside.first()));
    bookDialogs->customers.push_back(Acme);
    action("mnuQuoteSave")->trigger();
    ASSERT_EQ(book().list().size(), 1);
    EXPECT_EQ(book().list().first().number(), QStringLiteral("Q-2026-0004"))
        << "the numbers the copy's quotes carry are not given again";

    ASSERT_TRUE(window->close());
    EXPECT_EQ(folder.readFile(aside.first()), copy) << "the close copies the new book beside it";
    EXPECT_TRUE(folder.exists(QStringLiteral("quotes.bak")));
}

TEST_F(MissingBookWindowTest, ANewBookIsAsPrivateAsTheCatalogue)
{
    const QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::WriteGroup
        | QFileDevice::ReadOther | QFileDevice::WriteOther;
    ASSERT_TRUE(QFile::setPermissions(folder.filePath(QStringLiteral("twdata.dat")),
        QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    QSignalSpy kept(window->quoteBook().session(), &QuoteSession::kept);
    addToQuote(1);
    ASSERT_TRUE(kept.wait(5000));
    for (const QString &name : { QStringLiteral("quotes.db"), QStringLiteral("quotes.db-wal"),
             QStringLiteral("quotes.db-shm") }) {
        ASSERT_TRUE(folder.exists(name)) << name.toStdString();
        const QFileDevice::Permissions permissions = QFileInfo(folder.filePath(name)).permissions();
        EXPECT_TRUE(permissions.testFlags(QFileDevice::ReadOwner | QFileDevice::WriteOwner))
            << name.toStdString();
        EXPECT_FALSE(permissions & others) << name.toStdString();
    }
    ASSERT_TRUE(window->close());
    EXPECT_FALSE(QFileInfo(folder.filePath(QStringLiteral("quotes.bak"))).permissions() & others)
        << "nor is the copy made at the close";
}

TEST_F(MissingBookWindowTest, AnEmptyBookFileIsNoBookAndTheCopyIsOffered)
{
    writeLastCopy(2);
    folder.writeFile(QStringLiteral("quotes.db"), QByteArray());
    fakes->prompts.clear();
    fakes->prompts.answerMessage(MsgResult::Yes);
    restart();
    installFakes();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_TRUE(fakes->prompts.shown()[0].text.contains(QStringLiteral("holds 2 quotes")));
    EXPECT_TRUE(fakes->prompts.shown()[0].text.contains(QStringLiteral("quotes.db\" is empty.")))
        << fakes->prompts.shown()[0].text.toStdString();
    ASSERT_TRUE(book().isOpen());
    EXPECT_EQ(book().quoteCount(), 2);
}

TEST_F(MissingBookWindowTest, AnEmptyCopyIsNotOffered)
{
    writeLastCopy(0);
    startWithoutTheBook(MsgResult::Yes);
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_FALSE(folder.exists(QStringLiteral("quotes.db")));
}

} // namespace
