// The quote book without a display: saving, numbering per year, revisions, loading every cell
// back, the list and its search, the status, the quote in hand and the backup.
#include "quotebookfixture.h"

#include "quotebook/quotebookrows.h"
#include "quotebook/quotebookschema.h"
#include "quotes/quoteline.h"
#include "support/diskfaults.h"
#include "support/filegroups.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlQuery>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

const QDate May12(2026, 5, 12);

TEST_F(QuoteBookTest, ANewBookIsInWalModeAtTheCurrentVersion)
{
    QSqlQuery query(book->database());
    ASSERT_TRUE(query.exec(QStringLiteral("PRAGMA journal_mode")) && query.next());
    EXPECT_EQ(query.value(0).toString(), QStringLiteral("wal"));
    query.finish();
    ASSERT_TRUE(query.exec(QStringLiteral("PRAGMA user_version")) && query.next());
    EXPECT_EQ(query.value(0).toInt(), QuoteBookSchema::CurrentVersion);
    query.finish();
    ASSERT_TRUE(query.exec(QStringLiteral("PRAGMA application_id")) && query.next());
    EXPECT_EQ(query.value(0).toInt(), 0x54574B51);
    EXPECT_EQ(book->quoteCount(), 0);
    EXPECT_TRUE(book->list().isEmpty());
}

TEST_F(QuoteBookTest, TheAddressOfABookReadAsItLiesKeepsEveryPartOfItsPath)
{
    EXPECT_EQ(QuoteBookRows::readAsItLiesUri(QStringLiteral("/home/Ann Lee/Tarnwick/quotes.db")),
        QStringLiteral("file:///home/Ann%20Lee/Tarnwick/quotes.db?immutable=1"));
    EXPECT_EQ(QuoteBookRows::readAsItLiesUri(QStringLiteral("//Server/Sales Team/quotes.db")),
        QStringLiteral("file:////Server/Sales%20Team/quotes.db?immutable=1"));
    EXPECT_EQ(QuoteBookRows::readAsItLiesUri(QStringLiteral("/data/50%#1/quotes.db")),
        QStringLiteral("file:///data/50%25%231/quotes.db?immutable=1"));
}

TEST_F(QuoteBookTest, SavedQuotesAreNumberedPerYear)
{
    SavedQuote first = sampleQuote(QStringLiteral("ACME"), May12);
    SavedQuote second = sampleQuote(QStringLiteral("Bolt & Co"), May12.addDays(3));
    SavedQuote nextYear = sampleQuote(QStringLiteral("Clamps"), QDate(2027, 1, 2));
    SavedQuote thirdOf2026 = sampleQuote(QStringLiteral("Drain"), QDate(2026, 12, 31));
    for (SavedQuote *quote : { &first, &second, &nextYear, &thirdOf2026 })
        ASSERT_TRUE(book->saveNew(*quote)) << book->errorString().toStdString();
    EXPECT_EQ(first.header.numberAndRevision(), QStringLiteral("Q-2026-0001 A"));
    EXPECT_EQ(second.header.numberAndRevision(), QStringLiteral("Q-2026-0002 A"));
    EXPECT_EQ(nextYear.header.numberAndRevision(), QStringLiteral("Q-2027-0001 A"));
    EXPECT_EQ(thirdOf2026.header.numberAndRevision(), QStringLiteral("Q-2026-0003 A"));
    EXPECT_NE(first.header.id, 0);
    EXPECT_DOUBLE_EQ(first.total, 2.5 + 5.0 + 7.5);
}

TEST_F(QuoteBookTest, NumbersAndRevisionLettersAreWrittenOut)
{
    EXPECT_EQ(QuoteNumbers::number(2026, 1), QStringLiteral("Q-2026-0001"));
    EXPECT_EQ(QuoteNumbers::number(2026, 12345), QStringLiteral("Q-2026-12345"));
    EXPECT_EQ(QuoteNumbers::revisionLetter(0), QStringLiteral("A"));
    EXPECT_EQ(QuoteNumbers::revisionLetter(25), QStringLiteral("Z"));
    EXPECT_EQ(QuoteNumbers::revisionLetter(26), QStringLiteral("AA"));
    EXPECT_EQ(QuoteNumbers::revisionLetter(27), QStringLiteral("AB"));
    EXPECT_EQ(QuoteNumbers::revisionLetter(701), QStringLiteral("ZZ"));
    EXPECT_EQ(QuoteNumbers::revisionLetter(702), QStringLiteral("AAA"));
}

TEST_F(QuoteBookTest, ASavedQuoteComesBackWithEveryCellAndItsKind)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME Plumbing"), May12, 2);
    Table &lines = quote.content.lines;
    lines.put(1, QuoteLine::UnitPrice, 2.2499999f);
    lines.put(1, QuoteLine::ExtendedPrice, 2.2499999523162842);
    lines.put(2, QuoteLine::Includes, Cell::null());
    lines.put(2, QuoteLine::ProductName, QStringLiteral("Straße, Ø 15 mm, “quoted”"));
    lines.put(2, QuoteLine::UnitPrice, Cell());
    lines.put(2, QuoteLine::Quantity, "7 boxes");
    quote.content.sources = { PriceSource::Discount, PriceSource::Typed };
    quote.header.customer.reference = QStringLiteral("PO 4711");
    ASSERT_TRUE(book->saveNew(quote));
    ASSERT_EQ(reopen().status, QuoteBook::OpenStatus::Opened);

    const auto loaded = book->load(quote.header.id);
    ASSERT_TRUE(loaded.has_value()) << book->errorString().toStdString();
    EXPECT_TRUE(sameCells(loaded->content.lines, lines));
    EXPECT_EQ(loaded->content.lines.get(1, QuoteLine::UnitPrice).kind(), Cell::Kind::Single);
    EXPECT_EQ(loaded->content.lines.get(1, QuoteLine::ExtendedPrice).kind(), Cell::Kind::Double);
    EXPECT_EQ(loaded->content.lines.get(1, QuoteLine::Quantity).kind(), Cell::Kind::Int32);
    EXPECT_TRUE(loaded->content.lines.get(2, QuoteLine::Includes).isNull());
    EXPECT_TRUE(loaded->content.lines.get(2, QuoteLine::UnitPrice).isEmpty());
    EXPECT_EQ(loaded->content.sources, quote.content.sources);
    const QuoteHeader &header = loaded->header;
    EXPECT_EQ(header.numberAndRevision(), QStringLiteral("Q-2026-0001 A"));
    EXPECT_EQ(header.customer, quote.header.customer);
    EXPECT_EQ(header.date, May12);
    EXPECT_EQ(header.validUntil, QDate(2026, 6, 11));
    EXPECT_EQ(header.status, QuoteStatus::Draft);
    EXPECT_EQ(header.heading, QStringLiteral("Dear customer,"));
    EXPECT_EQ(header.ending, QStringLiteral("Kind regards"));
}

TEST_F(QuoteBookTest, ANumberBeyondItsKindChangedByAnotherProgramComesBackAsItsText)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), May12, 2);
    ASSERT_TRUE(book->saveNew(quote));
    QSqlQuery query(book->database());
    // 1e999 is how SQLite writes an infinite REAL.
    ASSERT_TRUE(query.exec(QStringLiteral(
        "UPDATE quote_lines SET unit_price = 1e39, extended_price = 1e999 WHERE line = 1")));
    query.finish();

    const auto loaded = book->load(quote.header.id);
    ASSERT_TRUE(loaded.has_value()) << book->errorString().toStdString();
    const Cell &unit = loaded->content.lines.get(1, QuoteLine::UnitPrice);
    const Cell &extended = loaded->content.lines.get(1, QuoteLine::ExtendedPrice);
    EXPECT_TRUE(unit.isText()) << "a single-precision price of 1e39 would be infinite";
    EXPECT_EQ(unit.asText(), QStringLiteral("1e+39"));
    EXPECT_TRUE(extended.isText());
    EXPECT_EQ(loaded->content.lines.get(2, QuoteLine::UnitPrice),
        quote.content.lines.get(2, QuoteLine::UnitPrice));
}

TEST_F(QuoteBookTest, ARevisionKeepsTheOneBeforeAsItWas)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), May12, 2);
    ASSERT_TRUE(book->saveNew(quote));
    const qint64 revisionA = quote.header.id;
    SavedQuote revision = quote;
    revision.content = sampleContent(5, QStringLiteral("R"));
    revision.header.date = May12.addDays(7);
    ASSERT_TRUE(book->saveRevision(revision));
    EXPECT_EQ(revision.header.numberAndRevision(), QStringLiteral("Q-2026-0001 B"));
    EXPECT_NE(revision.header.id, revisionA);
    ASSERT_TRUE(book->saveRevision(revision));
    EXPECT_EQ(revision.header.numberAndRevision(), QStringLiteral("Q-2026-0001 C"));

    const auto a = book->load(revisionA);
    ASSERT_TRUE(a.has_value());
    EXPECT_EQ(a->content.lines.rowCount(), 2);
    EXPECT_EQ(a->header.date, May12);
    SavedQuote next = sampleQuote(QStringLiteral("Other"), May12);
    ASSERT_TRUE(book->saveNew(next));
    EXPECT_EQ(next.header.numberAndRevision(), QStringLiteral("Q-2026-0002 A"));
}

TEST_F(QuoteBookTest, AnUpdateRewritesTheRevisionInPlace)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), May12, 4);
    ASSERT_TRUE(book->saveNew(quote));
    quote.content = sampleContent(1, QStringLiteral("U"));
    quote.header.customer.email = QStringLiteral("new@example.com");
    quote.header.heading = QStringLiteral("A new heading");
    ASSERT_TRUE(book->update(quote)) << book->errorString().toStdString();
    const auto loaded = book->load(quote.header.id);
    ASSERT_TRUE(loaded.has_value());
    EXPECT_TRUE(sameCells(loaded->content.lines, quote.content.lines));
    EXPECT_EQ(loaded->header.customer.email, QStringLiteral("new@example.com"));
    EXPECT_EQ(loaded->header.heading, QStringLiteral("A new heading"));
    EXPECT_EQ(book->quoteCount(), 1);
    EXPECT_EQ(book->list(QStringLiteral("P-4")).size(), 0) << "the old lines are not found";
    EXPECT_EQ(book->list(QStringLiteral("U-1")).size(), 1);
    EXPECT_DOUBLE_EQ(book->list().first().total, 2.5);
}

TEST_F(QuoteBookTest, UpdatingAQuoteThatIsNotThereSaysSo)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), May12);
    quote.header.id = 99;
    EXPECT_FALSE(book->update(quote));
    EXPECT_EQ(book->errorString(), QStringLiteral("the quote is no longer in the quote book"));
    EXPECT_EQ(book->quoteCount(), 0);
    EXPECT_FALSE(book->load(99).has_value());
}

TEST_F(QuoteBookTest, TheListIsNewestFirstAndSearchesNumberCustomerCompanyMailReferenceAndPart)
{
    std::vector<SavedQuote> quotes { sampleQuote(QStringLiteral("ACME Plumbing"), May12, 2,
                                         QStringLiteral("BV")),
        sampleQuote(QStringLiteral("Bolt Brothers"), May12.addDays(1), 2, QStringLiteral("TAP")),
        sampleQuote(QStringLiteral("Cöln Ölwerke"), May12.addDays(-1), 2, QStringLiteral("PIPE")) };
    quotes[2].header.customer.company = QStringLiteral("Wasser GmbH");
    quotes[1].header.customer.email = QStringLiteral("einkauf@bolt-brothers.example");
    quotes[2].header.customer.reference = QStringLiteral("Order 4711/Köln");
    ASSERT_TRUE(book->saveNewQuotes(quotes));
    const QList<QuoteSummary> all = book->list();
    ASSERT_EQ(all.size(), 3);
    EXPECT_EQ(all[0].customerText(), QStringLiteral("Bolt Brothers, Bolt Brothers Ltd"));
    EXPECT_EQ(all[1].number(), QStringLiteral("Q-2026-0001"));
    EXPECT_EQ(all[2].customerText(), QStringLiteral("Cöln Ölwerke, Wasser GmbH"));
    EXPECT_EQ(all[0].revisionLetter(), QStringLiteral("A"));
    EXPECT_EQ(all[0].date, May12.addDays(1));
    EXPECT_EQ(all[0].validUntil, quotes[1].header.validUntil);
    EXPECT_TRUE(all[0].validUntil.isValid());
    EXPECT_EQ(all[0].status, QuoteStatus::Draft);

    const auto numbers = [&](const QString &find) {
        QStringList found;
        for (const QuoteSummary &quote : book->list(find))
            found << quote.number();
        return found;
    };
    EXPECT_EQ(numbers(QStringLiteral("q-2026-0002")), QStringList { "Q-2026-0002" });
    EXPECT_EQ(numbers(QStringLiteral("acme")), QStringList { "Q-2026-0001" });
    EXPECT_EQ(numbers(QStringLiteral("ÖLWERKE")), QStringList { "Q-2026-0003" });
    EXPECT_EQ(numbers(QStringLiteral("wasser")), QStringList { "Q-2026-0003" });
    EXPECT_EQ(numbers(QStringLiteral("tap-2")), QStringList { "Q-2026-0002" });
    EXPECT_EQ(numbers(QStringLiteral("  plumbing   bv-1 ")), QStringList { "Q-2026-0001" });
    EXPECT_EQ(numbers(QStringLiteral("plumbing tap")), QStringList());
    EXPECT_EQ(numbers(QStringLiteral("2026")),
        (QStringList { "Q-2026-0002", "Q-2026-0001", "Q-2026-0003" }));
    EXPECT_EQ(numbers(QStringLiteral("buyer@example.com")),
        (QStringList { "Q-2026-0001", "Q-2026-0003" }));
    EXPECT_EQ(numbers(QStringLiteral("einkauf@bolt")), QStringList { "Q-2026-0002" });
    EXPECT_EQ(numbers(QStringLiteral("4711/koln")), QStringList { "Q-2026-0003" });
    EXPECT_EQ(numbers(QStringLiteral("order 4711 wasser")), QStringList { "Q-2026-0003" });
    EXPECT_EQ(numbers(QStringLiteral("' OR 1=1 --")), QStringList());
    // Without accents, as a keyboard without them types the name.
    EXPECT_EQ(numbers(QStringLiteral("coln olwerke")), QStringList { "Q-2026-0003" });
    EXPECT_EQ(numbers(QStringLiteral("coeln oelwerke")), QStringList { "Q-2026-0003" })
        << "umlauts spelt out";
    EXPECT_EQ(numbers(QStringLiteral("koeln")), QStringList { "Q-2026-0003" }) << "the reference";
    EXPECT_EQ(numbers(QStringLiteral("coeln wasser")), QStringList { "Q-2026-0003" });
    EXPECT_EQ(numbers(QStringLiteral("bolt brothers")), QStringList { "Q-2026-0002" });
    EXPECT_EQ(QuoteBookRows::searchable(QStringLiteral("Sanitärgroßhandel")),
        QStringLiteral("sanitargrosshandel"));
}

// A quote number as the program writes it elsewhere, with its revision letter (the frame, the
// PDF's heading and file name, the mail's subject), finds that revision.
TEST_F(QuoteBookTest, ANumberWithItsRevisionFindsThatRevision)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME GmbH"), May12);
    ASSERT_TRUE(book->saveNew(quote));
    ASSERT_TRUE(book->saveRevision(quote));
    SavedQuote other = sampleQuote(QStringLiteral("Bolt"), May12);
    ASSERT_TRUE(book->saveNew(other));
    const auto found = [&](const QString &find) {
        QStringList quotes;
        for (const QuoteSummary &summary : book->list(find))
            quotes << summary.number() + QLatin1Char(' ') + summary.revisionLetter();
        return quotes;
    };
    EXPECT_EQ(found(QStringLiteral("Q-2026-0001 A")), QStringList { "Q-2026-0001 A" });
    EXPECT_EQ(found(QStringLiteral("Q-2026-0001 B")), QStringList { "Q-2026-0001 B" })
        << "the B is the revision, not a word of \"GmbH\"";
    EXPECT_EQ(found(QStringLiteral("Q-2026-0001-A")), QStringList { "Q-2026-0001 A" });
    EXPECT_EQ(found(QStringLiteral("Q-2026-0001A")), QStringList { "Q-2026-0001 A" });
    EXPECT_EQ(found(QStringLiteral("Quote Q-2026-0001 B")), QStringList { "Q-2026-0001 B" });
    EXPECT_EQ(found(QStringLiteral("q-2026-0001 b")), QStringList { "Q-2026-0001 B" });
    EXPECT_EQ(
        found(QStringLiteral("Q-2026-0001")), (QStringList { "Q-2026-0001 B", "Q-2026-0001 A" }));
    EXPECT_EQ(found(QStringLiteral("Q-2026-0001 gmbh")),
        (QStringList { "Q-2026-0001 B", "Q-2026-0001 A" }));
    EXPECT_EQ(found(QStringLiteral("Q-2026-0001 bolt")), QStringList());
    EXPECT_EQ(found(QStringLiteral("Q-2026-0002 A")), QStringList { "Q-2026-0002 A" });
    EXPECT_EQ(found(QStringLiteral("Q-2026-0002 C")), QStringList());
}

// A book that replaced a damaged one does not give again the numbers the damaged one gave:
// its copy from the last close says which, and so may the damaged file.
TEST_F(QuoteBookTest, NumbersAnotherBookGaveOutAreNotGivenAgain)
{
    const QString otherPath = folder.filePath(QStringLiteral("quotes-backup.db"));
    {
        QuoteBook other(locale);
        ASSERT_EQ(other.open(otherPath).status, QuoteBook::OpenStatus::Created);
        std::vector<SavedQuote> given;
        for (int i = 0; i < 3; ++i)
            given.push_back(sampleQuote(QStringLiteral("Old"), May12));
        for (int i = 0; i < 7; ++i)
            given.push_back(sampleQuote(QStringLiteral("Older"), QDate(2025, 11, 3)));
        ASSERT_TRUE(other.saveNewQuotes(given));
    }
    const QString garbage = folder.filePath(QStringLiteral("quotes-damaged.db"));
    folder.writeFile(QStringLiteral("quotes-damaged.db"), QByteArray(9000, 'q'));
    EXPECT_TRUE(book->continueNumbersOf(garbage)) << "a file that cannot be read changes nothing";
    EXPECT_TRUE(book->continueNumbersOf(otherPath));
    EXPECT_TRUE(book->continueNumbersOf(folder.filePath(QStringLiteral("absent.db"))));

    SavedQuote thisYear = sampleQuote(QStringLiteral("New"), May12);
    ASSERT_TRUE(book->saveNew(thisYear));
    EXPECT_EQ(thisYear.header.number(), QStringLiteral("Q-2026-0004"));
    SavedQuote lastYear = sampleQuote(QStringLiteral("Late"), QDate(2025, 12, 30));
    ASSERT_TRUE(book->saveNew(lastYear));
    EXPECT_EQ(lastYear.header.number(), QStringLiteral("Q-2025-0008"));
    SavedQuote nextYear = sampleQuote(QStringLiteral("Early"), QDate(2027, 1, 4));
    ASSERT_TRUE(book->saveNew(nextYear));
    EXPECT_EQ(nextYear.header.number(), QStringLiteral("Q-2027-0001"));
    // Kept with the book, and never lowered by a book that gave out fewer.
    ASSERT_EQ(reopen().status, QuoteBook::OpenStatus::Opened);
    SavedQuote again = sampleQuote(QStringLiteral("Again"), May12);
    ASSERT_TRUE(book->saveNew(again));
    EXPECT_EQ(again.header.number(), QStringLiteral("Q-2026-0005"));
    EXPECT_EQ(
        QDir(folder.path()).entryList({ QStringLiteral("quotes-backup.db-*") }), QStringList())
        << "reading the other book leaves no files beside it";
}

TEST_F(QuoteBookTest, RevisionsAreListedEachAndTheStatusIsKept)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), May12);
    ASSERT_TRUE(book->saveNew(quote));
    ASSERT_TRUE(book->setStatus(quote.header.id, QuoteStatus::Sent));
    ASSERT_TRUE(book->saveRevision(quote));
    ASSERT_TRUE(book->setStatus(quote.header.id, QuoteStatus::Accepted));
    const QList<QuoteSummary> all = book->list();
    ASSERT_EQ(all.size(), 2);
    EXPECT_EQ(all[0].revisionLetter(), QStringLiteral("B"));
    EXPECT_EQ(all[0].status, QuoteStatus::Accepted);
    EXPECT_EQ(all[1].revisionLetter(), QStringLiteral("A"));
    EXPECT_EQ(all[1].status, QuoteStatus::Sent);
    EXPECT_FALSE(book->setStatus(12345, QuoteStatus::Declined));
}

TEST_F(QuoteBookTest, TheQuoteInHandIsKeptAndReplaced)
{
    EXPECT_FALSE(book->inHand().has_value());
    QuoteBook::InHand inHand;
    inHand.content = sampleContent(3);
    inHand.content.sources[1] = PriceSource::PricePoint;
    ASSERT_TRUE(book->keepInHand(inHand));
    inHand.content = sampleContent(2, QStringLiteral("K"));
    inHand.quoteId = 7;
    ASSERT_TRUE(book->keepInHand(inHand));
    ASSERT_EQ(reopen().status, QuoteBook::OpenStatus::Opened);
    const auto kept = book->inHand();
    ASSERT_TRUE(kept.has_value());
    EXPECT_EQ(kept->quoteId, 7);
    EXPECT_TRUE(sameCells(kept->content.lines, inHand.content.lines));
    EXPECT_EQ(kept->content.sources, inHand.content.sources);

    ASSERT_TRUE(book->keepInHand(QuoteBook::InHand()));
    const auto empty = book->inHand();
    ASSERT_TRUE(empty.has_value());
    EXPECT_EQ(empty->quoteId, 0);
    EXPECT_EQ(empty->content.lines.rowCount(), 0);
}

TEST_F(QuoteBookTest, ALockedLineAndItsFurtherQuantitiesSurviveSaveAndOpen)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), May12, 3);
    Table &lines = quote.content.lines;
    QuoteLine::setLocked(lines, 2, true);
    lines.put(2, QuoteLine::Quantities, QStringLiteral("50;100;250"));
    lines.put(3, QuoteLine::Quantities, QStringLiteral("12"));
    ASSERT_TRUE(QuoteLine::isLocked(lines, 2));
    ASSERT_TRUE(book->saveNew(quote));
    QuoteBook::InHand inHand;
    inHand.content = quote.content;
    inHand.quoteId = quote.header.id;
    ASSERT_TRUE(book->keepInHand(inHand));
    ASSERT_EQ(reopen().status, QuoteBook::OpenStatus::Opened);

    const auto loaded = book->load(quote.header.id);
    ASSERT_TRUE(loaded.has_value()) << book->errorString().toStdString();
    const auto kept = book->inHand();
    ASSERT_TRUE(kept.has_value());
    for (const Table *back : { &loaded->content.lines, &kept->content.lines }) {
        EXPECT_TRUE(sameCells(*back, lines));
        EXPECT_FALSE(QuoteLine::isLocked(*back, 1));
        EXPECT_TRUE(QuoteLine::isLocked(*back, 2));
        EXPECT_FALSE(QuoteLine::isLocked(*back, 3));
        EXPECT_TRUE(back->get(1, QuoteLine::Quantities).isEmpty());
        EXPECT_EQ(back->get(2, QuoteLine::Quantities), Cell(QStringLiteral("50;100;250")));
        EXPECT_EQ(back->get(3, QuoteLine::Quantities), Cell(QStringLiteral("12")));
    }
}

TEST_F(QuoteBookTest, TheBackupIsAWholeBookOfItsOwn)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), May12, 4);
    ASSERT_TRUE(book->saveNew(quote));
    const QString backup = folder.filePath(QStringLiteral("quotes.bak"));
    folder.writeFile(QStringLiteral("quotes.bak"), "the backup before");
    ASSERT_TRUE(book->backupTo(backup)) << book->errorString().toStdString();
    EXPECT_FALSE(QFileInfo::exists(backup + QStringLiteral("-wal")));
    EXPECT_FALSE(QFileInfo::exists(backup + QStringLiteral(".new")));
    QuoteBook copy(locale);
    ASSERT_EQ(copy.open(backup).status, QuoteBook::OpenStatus::Opened);
    const auto loaded = copy.load(quote.header.id);
    ASSERT_TRUE(loaded.has_value());
    EXPECT_TRUE(sameCells(loaded->content.lines, quote.content.lines));
}

TEST_F(QuoteBookTest, TheBackupIsAsPrivateAsTheBookAndOfItsGroup)
{
    ASSERT_TRUE(
        QFile::setPermissions(bookPath(), QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    const long group = giveOtherGroup(bookPath());
    const QString backup = folder.filePath(QStringLiteral("quotes.bak"));
    ASSERT_TRUE(book->backupTo(backup)) << book->errorString().toStdString();
    EXPECT_EQ(QFileInfo(backup).permissions(), QFileInfo(bookPath()).permissions());
    EXPECT_FALSE(QFileInfo(backup).permissions() & QFileDevice::ReadOther);
    EXPECT_EQ(groupOf(backup), group);
}

TEST_F(QuoteBookTest, ABackupThatCannotBeWrittenLeavesTheOldOne)
{
    folder.writeFile(QStringLiteral("quotes.bak"), "the backup before");
    const QString into = folder.filePath(QStringLiteral("no such folder/quotes.bak"));
    EXPECT_FALSE(book->backupTo(into));
    EXPECT_FALSE(book->errorString().isEmpty());
    EXPECT_EQ(folder.readFile(QStringLiteral("quotes.bak")), QByteArray("the backup before"));
}

TEST_F(QuoteBookTest, ABackupCutShortByAFullDiskLeavesNothingBehind)
{
    // A book of several pages, so the copy fails part-way as on a disk that fills up.
    for (int i = 0; i < 40; ++i) {
        SavedQuote quote = sampleQuote(QStringLiteral("Customer %1").arg(i), May12, 20);
        ASSERT_TRUE(book->saveNew(quote)) << book->errorString().toStdString();
    }
    folder.writeFile(QStringLiteral("quotes.bak"), "the backup before");
    {
        const test::FileSizeLimit full(12 * 1024);
        ASSERT_TRUE(full.active());
        EXPECT_FALSE(book->backupTo(folder.filePath(QStringLiteral("quotes.bak"))));
    }
    EXPECT_FALSE(book->errorString().isEmpty());
    EXPECT_EQ(folder.readFile(QStringLiteral("quotes.bak")), QByteArray("the backup before"));
    EXPECT_FALSE(folder.exists(QStringLiteral("quotes.bak.new")));
    EXPECT_FALSE(folder.exists(QStringLiteral("quotes.bak.new-journal")));
}

// A write-protected drive: its quotes can be looked at, nothing can be saved, and nothing is
// left beside the book (no log could be).
TEST_F(QuoteBookTest, ABookOnADiskThatCannotBeWrittenIsOpenedToBeRead)
{
    const QString disk = folder.filePath(QStringLiteral("stick"));
    const TinyDisk tiny(disk, 1024);
    if (!tiny.mounted())
        FAIL() << "the check needs a small file system, which cannot be mounted here (the tests "
                  "run as root): "
               << tiny.failure().toStdString();
    const QString path = QDir(disk).filePath(QStringLiteral("quotes.db"));
    {
        QuoteBook onStick(locale);
        ASSERT_EQ(onStick.open(path).status, QuoteBook::OpenStatus::Created);
        SavedQuote quote = sampleQuote(QStringLiteral("Acme"), SampleToday);
        ASSERT_TRUE(onStick.saveNew(quote));
    }
    ASSERT_TRUE(tiny.makeReadOnly());
    const QStringList files = QDir(disk).entryList(QDir::Files);

    QuoteBook onStick(locale);
    const QuoteBook::OpenResult opened = onStick.open(path);
    EXPECT_EQ(opened.status, QuoteBook::OpenStatus::ReadOnly);
    EXPECT_TRUE(onStick.isReadOnly());
    ASSERT_EQ(onStick.quoteCount(), 1);
    const auto saved = onStick.load(onStick.list().first().id);
    ASSERT_TRUE(saved.has_value());
    EXPECT_EQ(saved->header.customer.customer, QStringLiteral("Acme"));
    SavedQuote another = sampleQuote(QStringLiteral("Beta"), SampleToday);
    EXPECT_FALSE(onStick.saveNew(another));
    EXPECT_TRUE(onStick.errorString().startsWith(
        QStringLiteral("the quote book's file or folder cannot be written")))
        << onStick.errorString().toStdString();
    EXPECT_FALSE(onStick.needsReopening()) << "a book that can only be read stays open";
    EXPECT_EQ(QDir(disk).entryList(QDir::Files), files);
}

// A stick that is write-protected before the first quote is saved on it: no book can be
// started there, and the reason is the folder, in the user's words.
TEST_F(QuoteBookTest, NoBookIsStartedInAFolderThatCannotBeWritten)
{
    const QString disk = folder.filePath(QStringLiteral("stick"));
    const TinyDisk tiny(disk, 1024);
    if (!tiny.mounted())
        FAIL() << "the check needs a small file system, which cannot be mounted here (the tests "
                  "run as root): "
               << tiny.failure().toStdString();
    ASSERT_TRUE(tiny.makeReadOnly());
    const QString path = QDir(disk).filePath(QStringLiteral("quotes.db"));

    QuoteBook onStick(locale);
    const QuoteBook::OpenResult opened = onStick.open(path);
    EXPECT_EQ(opened.status, QuoteBook::OpenStatus::Failed);
    EXPECT_FALSE(onStick.isOpen());
    EXPECT_EQ(opened.detail,
        QStringLiteral("its folder cannot be written, so no quote book can be started there"));
    EXPECT_EQ(onStick.errorString(), opened.detail);
    EXPECT_TRUE(QDir(disk).entryList(QDir::Files).isEmpty());
}

// Some drives cannot keep the index SQLite shares between the programs that use a book (some
// network shares and USB file systems; here a folder stands where that file would go): the
// book is then held by Tarnwick alone, and works.
TEST_F(QuoteBookTest, ABookWhoseDriveCannotKeepTheSharedIndexIsHeldAlone)
{
    EXPECT_FALSE(book->isHeldAlone());
    const QString path = folder.filePath(QStringLiteral("share/quotes.db"));
    ASSERT_TRUE(QDir().mkpath(path + QStringLiteral("-shm")));
    {
        QuoteBook onShare(locale);
        const QuoteBook::OpenResult opened = onShare.open(path);
        ASSERT_TRUE(opened.status == QuoteBook::OpenStatus::Created
            || opened.status == QuoteBook::OpenStatus::Opened)
            << opened.detail.toStdString();
        EXPECT_TRUE(onShare.isHeldAlone());
        SavedQuote quote = sampleQuote(QStringLiteral("Acme"), SampleToday);
        ASSERT_TRUE(onShare.saveNew(quote)) << onShare.errorString().toStdString();
    }
    QuoteBook again(locale);
    ASSERT_EQ(again.open(path).status, QuoteBook::OpenStatus::Opened)
        << again.errorString().toStdString();
    EXPECT_TRUE(again.isHeldAlone());
    EXPECT_EQ(again.quoteCount(), 1);
    SavedQuote another = sampleQuote(QStringLiteral("Beta"), SampleToday);
    EXPECT_TRUE(again.saveNew(another));
    EXPECT_EQ(again.quoteCount(), 2);
}

TEST_F(QuoteBookTest, AClosedBookRefusesPolitely)
{
    book->close();
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), May12);
    EXPECT_FALSE(book->saveNew(quote));
    EXPECT_EQ(book->errorString(), QStringLiteral("the quote book is not open"));
    EXPECT_EQ(quote.header.id, 0);
    EXPECT_TRUE(book->list().isEmpty());
    EXPECT_FALSE(book->keepInHand(QuoteBook::InHand()));
}

TEST_F(QuoteBookTest, TenThousandQuotesOfTwentyLines)
{
    std::vector<SavedQuote> quotes;
    for (int i = 0; i < 10000; ++i) {
        SavedQuote quote = sampleQuote(QStringLiteral("Customer %1").arg(i), May12.addDays(i % 300),
            20, QStringLiteral("PN%1").arg(i));
        quotes.push_back(std::move(quote));
    }
    ASSERT_TRUE(book->saveNewQuotes(quotes)) << book->errorString().toStdString();
    // The dates run into 2027, where the numbers start again at 1.
    EXPECT_EQ(quotes.back().header.number(), QStringLiteral("Q-2026-7822"));
    EXPECT_EQ(quotes[234].header.numberAndRevision(), QStringLiteral("Q-2027-0001 A"));
    ASSERT_EQ(reopen().status, QuoteBook::OpenStatus::Opened);
    EXPECT_EQ(book->quoteCount(), 10000);
    const QList<QuoteSummary> all = book->list();
    ASSERT_EQ(all.size(), 10000);
    for (int i = 1; i < all.size(); ++i)
        ASSERT_GE(all[i - 1].date, all[i].date) << i;
    EXPECT_EQ(book->list(QStringLiteral("customer 9999")).size(), 1)
        << "no quote has 9999 in its number";
    const QList<QuoteSummary> byPart = book->list(QStringLiteral("pn9876-20"));
    ASSERT_EQ(byPart.size(), 1);
    EXPECT_EQ(byPart.first().customerText(), QStringLiteral("Customer 9876, Customer 9876 Ltd"));
    const auto loaded = book->load(byPart.first().id);
    ASSERT_TRUE(loaded.has_value());
    EXPECT_TRUE(sameCells(loaded->content.lines, quotes[9876].content.lines));
}

} // namespace
