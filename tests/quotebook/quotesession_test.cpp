// The quote in hand: saved for a customer, changed or not, saved again into its revision, a
// new revision, a duplicate, kept in the book and found again at the next start, opened with
// the prices of today's catalogue.
#include "quotebookfixture.h"

#include "catalogue/productrecord.h"
#include "core/conversions.h"
#include "quotebook/quotesession.h"
#include "quotes/quotegridmodel.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"

#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

/// Another program writing the quote book at path, holding it for as long as this lives.
class BookHolder
{
public:
    explicit BookHolder(const QString &path)
    {
        QSqlDatabase other =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("holder"));
        other.setDatabaseName(path);
        held = other.open() && QSqlQuery(other).exec(QStringLiteral("BEGIN IMMEDIATE"));
    }
    ~BookHolder()
    {
        {
            QSqlDatabase other = QSqlDatabase::database(QStringLiteral("holder"), false);
            QSqlQuery(other).exec(QStringLiteral("ROLLBACK"));
            other.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("holder"));
    }
    BookHolder(const BookHolder &) = delete;
    BookHolder &operator=(const BookHolder &) = delete;

    bool held = false;
};

class QuoteSessionTest : public QuoteBookTest
{
protected:
    void SetUp() override
    {
        QuoteBookTest::SetUp();
        catalogue.redim(3, ProductRecord::FieldCount);
        const char *products[][3] = { { "BV-1050", "Ball valve", "12.5" },
            { "TAP-20", "Tap", "4.00" }, { "PIPE-3", "Pipe", "3" } };
        for (int row = 1; row <= 3; ++row) {
            for (int field = 1; field <= 3; ++field)
                catalogue.put(row, field, products[row - 1][field - 1]);
        }
        // List prices as the catalogue holds them once read: single-precision numbers.
        for (int row = 1; row <= 3; ++row)
            catalogue.put(row, ProductRecord::Price,
                Cell(float(conv::toDouble(catalogue.get(row, ProductRecord::Price), locale))));
        catalogue.put(1, ProductRecord::PricePoint1, "10");
        catalogue.put(1, ProductRecord::Price1, "10.95");
        session = std::make_unique<QuoteSession>(*book, quote, catalogue, locale);
    }
    void add(int catalogueRow, const QString &quantity = QString())
    {
        const int row = QuoteList::addProduct(quote, catalogue, catalogueRow, QString()).row;
        if (!quantity.isEmpty()) {
            quote.put(row, QuoteLine::Quantity, quantity);
            QuoteList::repriceLine(quote, catalogue, row, QuoteGridColumn::Quantity, locale);
        }
    }
    /// The quote with quantity typed into its first line, as entering it would leave it.
    Table quantityTyped(const QString &quantity) const
    {
        Table typed = quote;
        typed.put(1, QuoteLine::Quantity, quantity);
        QuoteList::repriceLine(typed, catalogue, 1, QuoteGridColumn::Quantity, locale);
        return typed;
    }
    CustomerDetails acme() const
    {
        return { QStringLiteral("ACME Plumbing"), QString(), QStringLiteral("buy@acme.test"),
            QStringLiteral("PO 7") };
    }

    Table catalogue;
    Table quote { QuoteLine::MaxLines, QuoteLine::FieldCount };
    std::unique_ptr<QuoteSession> session;
};

TEST_F(QuoteSessionTest, AQuoteNeverSavedIsChangedOnceItHasALine)
{
    EXPECT_FALSE(session->isChanged());
    EXPECT_TRUE(session->isEmpty());
    add(1);
    EXPECT_TRUE(session->isChanged());
    EXPECT_FALSE(session->header().isSaved());
}

TEST_F(QuoteSessionTest, TheFirstSaveNumbersTheQuoteForItsCustomer)
{
    add(1, QStringLiteral("10"));
    add(2);
    QSignalSpy headerChanged(session.get(), &QuoteSession::headerChanged);
    ASSERT_TRUE(session->saveNew(acme(), SampleTexts, SampleToday));
    EXPECT_EQ(headerChanged.count(), 1);
    const QuoteHeader &header = session->header();
    EXPECT_EQ(header.numberAndRevision(), QStringLiteral("Q-2026-0001 A"));
    EXPECT_EQ(header.customer, acme());
    EXPECT_EQ(header.date, SampleToday);
    EXPECT_EQ(header.validUntil, QDate(2026, 6, 11));
    EXPECT_EQ(header.heading, QStringLiteral("Heading"));
    EXPECT_FALSE(session->isChanged());

    const auto saved = book->load(header.id);
    ASSERT_TRUE(saved.has_value());
    EXPECT_TRUE(sameCells(saved->content.lines, QuoteList::linesOf(quote)));
    EXPECT_EQ(saved->content.sources,
        (std::vector<PriceSource> { PriceSource::PricePoint, PriceSource::ListPrice }));
    EXPECT_DOUBLE_EQ(saved->total, 109.5 + 4.0);
}

// A price typed in the user's own form ("$1,234.50") is kept in the book as the number it is;
// the quote that typed it is not "changed" against that number, however it is looked at again.
TEST_F(QuoteSessionTest, APriceTypedInTheUsersFormIsTheSamePriceAsTheBookKeepsIt)
{
    add(1, QStringLiteral("2"));
    quote.put(1, QuoteLine::UnitPrice, "$1,234.50");
    QuoteList::repriceLine(quote, catalogue, 1, QuoteGridColumn::Price, locale);
    ASSERT_TRUE(session->saveNew(acme(), SampleTexts, SampleToday));
    const auto saved = book->load(session->header().id);
    ASSERT_TRUE(saved.has_value());
    EXPECT_EQ(saved->content.lines.get(1, QuoteLine::UnitPrice), Cell(1234.5));
    ASSERT_TRUE(session->keepNow());

    // The quote on screen against the saved revision as the book gives it back.
    ASSERT_EQ(reopen().status, QuoteBook::OpenStatus::Opened);
    QuoteSession next(*book, quote, catalogue, locale);
    ASSERT_TRUE(next.restore().has_value());
    EXPECT_TRUE(next.header().isSaved());
    EXPECT_FALSE(next.isChanged()) << "the typed text and the book's number are one price";
}

TEST_F(QuoteSessionTest, LaterSavesUpdateThatRevision)
{
    add(1);
    ASSERT_TRUE(session->saveNew(acme(), SampleTexts, SampleToday));
    add(3, QStringLiteral("4"));
    EXPECT_TRUE(session->isChanged());
    ASSERT_TRUE(session->saveChanges({ QStringLiteral("New heading"), QStringLiteral("Ending") }));
    EXPECT_FALSE(session->isChanged());
    EXPECT_EQ(book->quoteCount(), 1);
    const auto saved = book->load(session->header().id);
    ASSERT_TRUE(saved.has_value());
    EXPECT_EQ(saved->content.lines.rowCount(), 2);
    EXPECT_EQ(saved->header.heading, QStringLiteral("New heading"));
    // Going back to the lines as saved is no change.
    QuoteList::removeLine(quote, 2);
    QuoteList::addProduct(quote, catalogue, 3, QString());
    quote.put(2, QuoteLine::Quantity, "4");
    QuoteList::repriceLine(quote, catalogue, 2, QuoteGridColumn::Quantity, locale);
    EXPECT_FALSE(session->isChanged());
}

TEST_F(QuoteSessionTest, ANewRevisionKeepsTheSavedOneUnchanged)
{
    add(1);
    ASSERT_TRUE(session->saveNew(acme(), SampleTexts, SampleToday));
    const qint64 revisionA = session->header().id;
    add(2);
    ASSERT_TRUE(session->saveRevision(SampleTexts, SampleToday.addDays(2)));
    EXPECT_EQ(session->header().numberAndRevision(), QStringLiteral("Q-2026-0001 B"));
    EXPECT_EQ(session->header().date, SampleToday.addDays(2));
    EXPECT_EQ(session->header().customer, acme());
    EXPECT_FALSE(session->isChanged());
    EXPECT_EQ(book->load(revisionA)->content.lines.rowCount(), 1);
    EXPECT_EQ(book->load(session->header().id)->content.lines.rowCount(), 2);
}

TEST_F(QuoteSessionTest, ADuplicateHasTheSameLinesUnderANewNumber)
{
    add(1, QStringLiteral("12"));
    add(2);
    ASSERT_TRUE(session->saveNew(acme(), SampleTexts, SampleToday));
    const qint64 original = session->header().id;
    const CustomerDetails other { QStringLiteral("Bolt Brothers"), QStringLiteral("Bolt Ltd"), {},
        {} };
    ASSERT_TRUE(session->duplicate(other, SampleTexts, SampleToday));
    EXPECT_EQ(session->header().numberAndRevision(), QStringLiteral("Q-2026-0002 A"));
    EXPECT_EQ(session->header().customer, other);
    EXPECT_TRUE(sameCells(
        book->load(session->header().id)->content.lines, book->load(original)->content.lines));
    EXPECT_EQ(book->load(original)->header.customer, acme());
}

TEST_F(QuoteSessionTest, AStateTakenBackNamesTheRevisionAsTheBookHasItNow)
{
    const QuoteSession::State unsaved = session->state();
    add(1);
    ASSERT_TRUE(session->saveNew(acme(), SampleTexts, SampleToday));
    const QuoteSession::State saved = session->state();
    ASSERT_TRUE(session->markSent());
    QSignalSpy header(session.get(), &QuoteSession::headerChanged);

    session->setState(unsaved);
    EXPECT_EQ(header.count(), 1);
    EXPECT_FALSE(session->header().isSaved());
    EXPECT_TRUE(session->isChanged()) << "a line that was never saved";

    session->setState(saved);
    EXPECT_EQ(session->header().numberAndRevision(), QStringLiteral("Q-2026-0001 A"));
    EXPECT_EQ(session->header().status, QuoteStatus::Sent) << "as the book has it, not as it was";
    EXPECT_FALSE(session->isChanged());
    // The quote in hand names that revision at the next keep.
    ASSERT_TRUE(session->keepNow());
    EXPECT_EQ(book->inHand()->quoteId, session->header().id);

    // Without the book the state given stands.
    book->close();
    session->setState(saved);
    EXPECT_EQ(session->header().status, QuoteStatus::Draft);
    EXPECT_FALSE(session->isChanged());
}

TEST_F(QuoteSessionTest, TheQuoteInHandIsKeptWhenItChangesAndRestoredAtTheNextStart)
{
    EXPECT_TRUE(session->keepNow());
    add(1, QStringLiteral("10"));
    add(2);
    QSignalSpy kept(session.get(), &QuoteSession::kept);
    ASSERT_TRUE(session->keepNow());
    EXPECT_EQ(kept.count(), 1);
    ASSERT_TRUE(session->keepNow());
    EXPECT_EQ(kept.count(), 1) << "nothing changed: nothing written";

    ASSERT_EQ(reopen().status, QuoteBook::OpenStatus::Opened);
    Table restoredQuote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    QuoteSession next(*book, restoredQuote, catalogue, locale);
    const auto lines = next.restore();
    ASSERT_TRUE(lines.has_value());
    EXPECT_TRUE(sameCells(*lines, QuoteList::linesOf(quote)));
    EXPECT_FALSE(next.header().isSaved());
}

TEST_F(QuoteSessionTest, ASavedQuoteInHandComesBackAsThatRevisionWithItsChanges)
{
    add(1);
    ASSERT_TRUE(session->saveNew(acme(), SampleTexts, SampleToday));
    add(2);
    ASSERT_TRUE(session->keepNow());
    ASSERT_EQ(reopen().status, QuoteBook::OpenStatus::Opened);
    Table restoredQuote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    QuoteSession next(*book, restoredQuote, catalogue, locale);
    const auto lines = next.restore();
    ASSERT_TRUE(lines.has_value());
    QuoteList::replaceLines(restoredQuote, *lines);
    EXPECT_EQ(next.header().numberAndRevision(), QStringLiteral("Q-2026-0001 A"));
    EXPECT_EQ(next.header().customer, acme());
    EXPECT_EQ(lines->rowCount(), 2);
    EXPECT_TRUE(next.isChanged()) << "the second line was never saved";
}

TEST_F(QuoteSessionTest, AQuoteInHandTheStartCouldNotBringBackIsSavedBeforeItIsReplaced)
{
    add(1, QStringLiteral("10"));
    add(2);
    ASSERT_TRUE(session->keepNow());
    // The next run could not open the book at its start; its own quote is about to be kept.
    Table otherQuote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    QuoteSession next(*book, otherQuote, catalogue, locale);
    const auto saved = next.saveMissedInHand(SampleTexts, SampleToday);
    ASSERT_TRUE(saved.has_value()) << book->errorString().toStdString();
    EXPECT_EQ(saved->numberAndRevision(), QStringLiteral("Q-2026-0001 A"));
    const auto loaded = book->load(saved->id);
    ASSERT_TRUE(loaded.has_value());
    EXPECT_TRUE(sameCells(loaded->content.lines, QuoteList::linesOf(quote)));
    EXPECT_EQ(loaded->header.customer.reference, QStringLiteral("Kept at an earlier close"));
    EXPECT_EQ(loaded->header.date, SampleToday);
}

TEST_F(QuoteSessionTest, AMissedQuoteInHandContinuingARevisionBecomesItsNextOrNothingWhenUnchanged)
{
    add(1);
    ASSERT_TRUE(session->saveNew(acme(), SampleTexts, SampleToday));
    ASSERT_TRUE(session->keepNow());
    Table otherQuote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    QuoteSession next(*book, otherQuote, catalogue, locale);
    EXPECT_FALSE(next.saveMissedInHand(SampleTexts, SampleToday).has_value())
        << "the book holds these lines as that revision already";
    EXPECT_EQ(book->quoteCount(), 1);

    add(2);
    ASSERT_TRUE(session->keepNow());
    const auto saved = next.saveMissedInHand(SampleTexts, SampleToday);
    ASSERT_TRUE(saved.has_value());
    EXPECT_EQ(saved->numberAndRevision(), QStringLiteral("Q-2026-0001 B"));
    EXPECT_EQ(saved->customer, acme());
}

TEST_F(QuoteSessionTest, TheKeeperWritesWithinItsInterval)
{
    session->startKeeping(20);
    QSignalSpy kept(session.get(), &QuoteSession::kept);
    add(3);
    ASSERT_TRUE(kept.wait(5000));
    session->stopKeeping();
    const auto inHand = book->inHand();
    ASSERT_TRUE(inHand.has_value());
    EXPECT_EQ(inHand->content.lines.get(1, QuoteLine::PartNumber), Cell("PIPE-3"));
}

TEST_F(QuoteSessionTest, ABookAnotherProgramHoldsIsTriedLessOftenUntilItIsFree)
{
    session->startKeeping(500);
    add(3);
    {
        // Another program writing the book holds it for as long as it likes.
        const BookHolder holder(book->path());
        ASSERT_TRUE(holder.held);
        QSignalSpy failed(session.get(), &QuoteSession::keepFailed);
        session->keepInBackground();
        EXPECT_EQ(failed.size(), 1);
        EXPECT_EQ(session->keepInterval(), 1000);
        session->keepInBackground();
        EXPECT_EQ(session->keepInterval(), 2000);
        for (int i = 0; i < 10; ++i)
            session->keepInBackground();
        EXPECT_EQ(session->keepInterval(), QuoteSession::MaxRetryMs);
        QSqlQuery wait(book->database());
        ASSERT_TRUE(wait.exec(QStringLiteral("PRAGMA busy_timeout")) && wait.next());
        EXPECT_EQ(wait.value(0).toInt(), QuoteBook::BusyWaitMs)
            << "saves the user asks for wait as before";
    }
    QSignalSpy kept(session.get(), &QuoteSession::kept);
    session->keepInBackground();
    EXPECT_EQ(kept.size(), 1);
    EXPECT_EQ(session->keepInterval(), 500) << "back to its pace once the book is free";
    session->stopKeeping();
    EXPECT_EQ(book->inHand()->content.lines.get(1, QuoteLine::PartNumber), Cell("PIPE-3"));
}

// A quantity typed into the grid and not entered yet is kept as storing it would leave the
// quote, so a crash or a kill keeps it, as it keeps the product grid's typing.
TEST_F(QuoteSessionTest, TheQuoteIsKeptWithTheTypingNotEnteredYet)
{
    add(1, QStringLiteral("2"));
    ASSERT_TRUE(session->keepNow());
    std::optional<QuoteSession::Typing> typing;
    session->setTypingReader([&] { return typing; });
    typing = QuoteSession::Typing { quantityTyped(QStringLiteral("12")), 7 };
    QSignalSpy kept(session.get(), &QuoteSession::kept);
    ASSERT_TRUE(session->keepNow());
    EXPECT_EQ(kept.count(), 1);
    const auto inHand = book->inHand();
    ASSERT_TRUE(inHand.has_value());
    EXPECT_EQ(inHand->content.lines.get(1, QuoteLine::Quantity), Cell(qint32(12)));
    EXPECT_EQ(
        conv::toDouble(inHand->content.lines.get(1, QuoteLine::UnitPrice), locale), double(10.95f))
        << "priced at the break, as storing the quantity prices it";
    EXPECT_EQ(conv::toText(quote.get(1, QuoteLine::Quantity), locale), QStringLiteral("2"))
        << "the quote itself is left as it is";
    ASSERT_TRUE(session->keepNow());
    EXPECT_EQ(kept.count(), 1) << "the same typing: nothing written";

    // The typing dropped (Escape): the book holds the quote as it is again.
    typing.reset();
    ASSERT_TRUE(session->keepNow());
    EXPECT_EQ(kept.count(), 2);
    EXPECT_EQ(conv::toText(book->inHand()->content.lines.get(1, QuoteLine::Quantity), locale),
        QStringLiteral("2"));
}

// Typing kept and then dropped leaves what is known of the line as it was: a line at a price
// point whose price the catalogue has changed since is still one at a price point, which
// opening the quote later offers to update.
TEST_F(QuoteSessionTest, TypingDroppedLeavesTheLinesPriceSourceAsItWas)
{
    add(1, QStringLiteral("10"));
    ASSERT_TRUE(session->keepNow());
    ASSERT_EQ(book->inHand()->content.sources.at(0), PriceSource::PricePoint);
    catalogue.put(1, ProductRecord::Price1, "9.99");
    std::optional<QuoteSession::Typing> typing;
    session->setTypingReader([&] { return typing; });
    typing = QuoteSession::Typing { quantityTyped(QStringLiteral("12")), 5 };
    ASSERT_TRUE(session->keepNow());
    typing.reset();
    ASSERT_TRUE(session->keepNow());
    const auto inHand = book->inHand();
    ASSERT_TRUE(inHand.has_value());
    EXPECT_EQ(conv::toText(inHand->content.lines.get(1, QuoteLine::Quantity), locale),
        QStringLiteral("10"));
    EXPECT_EQ(inHand->content.sources.at(0), PriceSource::PricePoint);
}

TEST_F(QuoteSessionTest, AQuoteBroughtBackIsNotWrittenAgainUntilItChanges)
{
    add(3);
    ASSERT_TRUE(session->keepNow());
    // The next start brings the quote back onto a fresh quote table.
    Table screen(QuoteLine::MaxLines, QuoteLine::FieldCount);
    QuoteSession next(*book, screen, catalogue, locale);
    const auto lines = next.restore();
    ASSERT_TRUE(lines.has_value());
    ASSERT_TRUE(QuoteList::replaceLines(screen, *lines));
    next.markKept();

    // Another program holds the book: nothing needs writing, so nothing fails.
    const BookHolder holder(book->path());
    ASSERT_TRUE(holder.held);
    QSignalSpy failed(&next, &QuoteSession::keepFailed);
    EXPECT_TRUE(next.keepNow());
    EXPECT_TRUE(failed.isEmpty());
}

TEST_F(QuoteSessionTest, OpeningAQuoteFindsTheLinesThatCostOtherwiseToday)
{
    add(1, QStringLiteral("10")); // price point 10.95
    add(2); // list price 4.00
    add(3); // list price 3, typed below
    quote.put(3, QuoteLine::UnitPrice, "2.75");
    QuoteList::repriceLine(quote, catalogue, 3, QuoteGridColumn::Price, locale);
    ASSERT_TRUE(session->saveNew(acme(), SampleTexts, SampleToday));
    const qint64 id = session->header().id;
    session->startNew();
    QuoteList::replaceLines(quote, Table(0, QuoteLine::FieldCount));
    EXPECT_FALSE(session->header().isSaved());

    catalogue.put(1, ProductRecord::Price1, "11.25");
    catalogue.put(2, ProductRecord::Price, "$4.20");
    catalogue.put(3, ProductRecord::Price, "3.10");
    const auto saved = session->load(id);
    ASSERT_TRUE(saved.has_value());
    QuoteList::replaceLines(quote, saved->content.lines);
    session->adopt(*saved);
    EXPECT_FALSE(session->isChanged());
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell(10.95f)) << "saved prices, not re-priced";
    EXPECT_EQ(session->linesWithOtherPrices(), (QList<int> { 1, 2 }));
}

} // namespace
