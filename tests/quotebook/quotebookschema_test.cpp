// The quote book's file: a book of the older version brought up to date, a damaged file kept
// aside under a dated name with a new book started, a book of a later version left alone, and
// the words start-up uses for each.
#include "quotebookfixture.h"

#include "quotebook/quotebookmessages.h"
#include "quotebook/quotebookrows.h"
#include "quotebook/quotebookschema.h"
#include "quotes/quoteline.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

const QDateTime At(QDate(2026, 5, 12), QTime(14, 3, 9));

/// A raw connection to a file, for making books as older versions and other programs left them.
class RawDatabase
{
public:
    explicit RawDatabase(const QString &path)
    {
        m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("raw"));
        m_db.setDatabaseName(path);
        EXPECT_TRUE(m_db.open());
    }
    ~RawDatabase()
    {
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("raw"));
    }
    void exec(const QString &sql, const QVariantList &values = {})
    {
        QSqlQuery query(m_db);
        query.prepare(sql);
        for (int i = 0; i < values.size(); ++i)
            query.bindValue(i, values.at(i));
        EXPECT_TRUE(query.exec()) << sql.toStdString() << ": "
                                  << query.lastError().text().toStdString();
    }
    QSqlDatabase &db() { return m_db; }

private:
    QSqlDatabase m_db;
};

class QuoteBookFileTest : public ::testing::Test
{
protected:
    QString path() const { return folder.filePath(QStringLiteral("quotes.db")); }
    QuoteBook::OpenResult open() { return book.open(path(), At); }

    const QLocale locale { QLocale::English, QLocale::UnitedStates };
    TempAppFolder folder;
    QuoteBook book { locale };
};

TEST_F(QuoteBookFileTest, ABookOfVersionOneIsBroughtUpToDate)
{
    {
        RawDatabase raw(path());
        QSqlError error;
        ASSERT_TRUE(QuoteBookSchema::migrate(raw.db(), 1, locale, error))
            << error.text().toStdString();
        raw.exec(QStringLiteral("INSERT INTO texts (id, body) VALUES (1, 'Hello'), (2, 'Bye')"));
        raw.exec(QStringLiteral(
            "INSERT INTO quotes (id, year, sequence, revision, customer, company, email, "
            "reference, quote_date, valid_until, status, heading_id, ending_id) VALUES "
            "(5, 2025, 41, 1, 'Old Customer', 'Old Company', '', '', '2025-11-03', "
            "'2025-12-03', 'accepted', 1, 2)"));
        // Lines of that version have no lock and no further quantities.
        QuoteContent content = sampleContent(3, QStringLiteral("OLD"));
        QSqlQuery insert(raw.db());
        const auto statementFor = [&](const QString &table, int rows) -> QSqlQuery & {
            insert.prepare(QuoteBookRows::insertLinesSql(table, rows, QuoteLine::Includes));
            return insert;
        };
        ASSERT_TRUE(QuoteBookRows::writeLines(statementFor, QStringLiteral("quote_lines"), 5,
            content, locale, error, QuoteLine::Includes));
        EXPECT_EQ(QuoteBookSchema::version(raw.db(), error), 1);
    }
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    QSqlError error;
    QSqlDatabase db = book.database();
    EXPECT_EQ(QuoteBookSchema::version(db, error), QuoteBookSchema::CurrentVersion);
    const QList<QuoteSummary> found = book.list(QStringLiteral("old-2"));
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].number(), QStringLiteral("Q-2025-0041"));
    EXPECT_EQ(found[0].revisionLetter(), QStringLiteral("B"));
    EXPECT_EQ(found[0].customerText(), QStringLiteral("Old Customer, Old Company"));
    EXPECT_EQ(found[0].status, QuoteStatus::Accepted);
    EXPECT_DOUBLE_EQ(found[0].total, 2.5 + 5.0 + 7.5);
    EXPECT_EQ(book.list(QStringLiteral("q-2025-0041")).size(), 1);
    const auto loaded = book.load(5);
    ASSERT_TRUE(loaded.has_value());
    EXPECT_TRUE(sameCells(loaded->content.lines, sampleContent(3, QStringLiteral("OLD")).lines));
    for (int row = 1; row <= 3; ++row) {
        EXPECT_FALSE(QuoteLine::isLocked(loaded->content.lines, row));
        EXPECT_TRUE(loaded->content.lines.get(row, QuoteLine::Quantities).isEmpty());
    }
    EXPECT_EQ(loaded->header.heading, QStringLiteral("Hello"));
    SavedQuote next = sampleQuote(QStringLiteral("New"), QDate(2025, 12, 1));
    ASSERT_TRUE(book.saveNew(next));
    EXPECT_EQ(next.header.number(), QStringLiteral("Q-2025-0042"));
}

// Books saved before searched their quotes with accents: opened now, their search text is made
// anew, so "jurgen" finds Jürgen's quotes there too.
TEST_F(QuoteBookFileTest, ABookSearchedWithAccentsIsSearchedWithoutThemOnceOpened)
{
    {
        RawDatabase raw(path());
        QSqlError error;
        ASSERT_TRUE(QuoteBookSchema::migrate(raw.db(), 3, locale, error))
            << error.text().toStdString();
        raw.exec(QStringLiteral("INSERT INTO texts (id, body) VALUES (1, 'Hello'), (2, 'Bye')"));
        raw.exec(QStringLiteral(
            "INSERT INTO quotes (id, year, sequence, revision, customer, company, email, "
            "reference, quote_date, valid_until, status, heading_id, ending_id, total) VALUES "
            "(5, 2026, 7, 0, 'Jürgen Weiß', '', '', '', '2026-03-01', '2026-03-31', 'sent', "
            "1, 2, 0)"));
        raw.exec(QStringLiteral("INSERT INTO quote_search (quote_id, haystack) VALUES (5, "
                                "'q-2026-0007\njürgen weiß')"));
    }
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    EXPECT_EQ(book.list(QStringLiteral("jurgen")).size(), 1);
    EXPECT_EQ(book.list(QStringLiteral("Jürgen")).size(), 1);
}

// Letters of their own were kept as they are: opened now, "lukasz" finds Łukasz and "soren"
// Søren in a book saved before.
TEST_F(QuoteBookFileTest, LettersOfTheirOwnAreFoundByThePlainLettersOnceOpened)
{
    {
        RawDatabase raw(path());
        QSqlError error;
        ASSERT_TRUE(QuoteBookSchema::migrate(raw.db(), 5, locale, error))
            << error.text().toStdString();
        raw.exec(QStringLiteral("INSERT INTO texts (id, body) VALUES (1, 'Hello'), (2, 'Bye')"));
        raw.exec(QStringLiteral(
            "INSERT INTO quotes (id, year, sequence, revision, customer, company, email, "
            "reference, quote_date, valid_until, status, heading_id, ending_id, total) VALUES "
            "(5, 2026, 7, 0, 'Łukasz Żółć', 'Søren & Cæsar', '', '', '2026-03-01', "
            "'2026-03-31', 'sent', 1, 2, 0)"));
        raw.exec(QStringLiteral("INSERT INTO quote_search (quote_id, haystack) VALUES (5, "
                                "'q-2026-0007\nłukasz żołc søren & cæsar')"));
    }
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    for (const char *typed : { "lukasz", "zolc", "soren", "caesar", "Łukasz", "SØREN" })
        EXPECT_EQ(book.list(QString::fromUtf8(typed)).size(), 1) << typed;
}

// The search looked at neither the e-mail address nor the reference, and "mueller" did not find
// Müller: opened now, a book saved before finds its quotes so.
TEST_F(QuoteBookFileTest, MailAndReferenceAreFoundOnceOpened)
{
    {
        RawDatabase raw(path());
        QSqlError error;
        ASSERT_TRUE(QuoteBookSchema::migrate(raw.db(), 5, locale, error))
            << error.text().toStdString();
        raw.exec(QStringLiteral("PRAGMA user_version = 6")); // as an earlier program left it
        raw.exec(QStringLiteral("INSERT INTO texts (id, body) VALUES (1, 'Hello'), (2, 'Bye')"));
        raw.exec(QStringLiteral(
            "INSERT INTO quotes (id, year, sequence, revision, customer, company, email, "
            "reference, quote_date, valid_until, status, heading_id, ending_id, total) VALUES "
            "(5, 2026, 7, 0, 'Ann Lee', 'Müller AG', 'ann@lee.example', 'PO 88-Ä', '2026-03-01', "
            "'2026-03-31', 'sent', 1, 2, 0)"));
        raw.exec(QStringLiteral(
            "INSERT INTO quote_search (quote_id, haystack) VALUES (5, 'q-2026-0007\nann lee')"));
    }
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    for (const char *typed : { "ann@lee", "po 88-a", "po 88-ae", "ANN LEE", "mueller", "muller" })
        EXPECT_EQ(book.list(QString::fromUtf8(typed)).size(), 1) << typed;
    EXPECT_EQ(book.list(QStringLiteral("po 99")).size(), 0);
}

// "İzmir" was kept with its capital I (the dot taken apart) in the search text: a book saved
// so finds it by "izmir", as a new quote is, without its search texts made anew.
TEST_F(QuoteBookFileTest, ATurkishCapitalIIsFoundByTheSmallLetterOnceOpened)
{
    {
        RawDatabase raw(path());
        QSqlError error;
        ASSERT_TRUE(QuoteBookSchema::migrate(raw.db(), 5, locale, error))
            << error.text().toStdString();
        raw.exec(QStringLiteral("PRAGMA user_version = 7")); // as an earlier program left it
        raw.exec(QStringLiteral("INSERT INTO texts (id, body) VALUES (1, 'Hello'), (2, 'Bye')"));
        raw.exec(QStringLiteral(
            "INSERT INTO quotes (id, year, sequence, revision, customer, company, email, "
            "reference, quote_date, valid_until, status, heading_id, ending_id, total) VALUES "
            "(5, 2026, 7, 0, 'Ay\u015Fe Y\u0131lmaz', '\u0130zmir Tesisat', '', '', '2026-03-01', "
            "'2026-03-31', 'sent', 1, 2, 0)"));
        raw.exec(QStringLiteral("INSERT INTO quote_search (quote_id, haystack) VALUES (5, "
                                "'q-2026-0007\nayse yilmaz\nIzmir tesisat')"));
    }
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    for (const QString &typed : { QStringLiteral("izmir"), QStringLiteral("IZMIR"),
             QStringLiteral("\u0130zmir"), QStringLiteral("yilmaz") })
        EXPECT_EQ(book.list(typed).size(), 1) << typed.toStdString();
}

// Two earlier programs counted new search texts in the book's version (6 and 7), which locked
// every program before them out of a book whose tables had not changed. Opened now, such a
// book is at version 5 again, its rule kept apart, and its search texts are not made anew.
TEST_F(QuoteBookFileTest, ABookOfVersionSevenIsOfVersionFiveAgainForEarlierPrograms)
{
    {
        RawDatabase raw(path());
        QSqlError error;
        ASSERT_TRUE(QuoteBookSchema::migrate(raw.db(), 5, locale, error))
            << error.text().toStdString();
        raw.exec(QStringLiteral("PRAGMA user_version = 7"));
        raw.exec(QStringLiteral("INSERT INTO texts (id, body) VALUES (1, 'Hello'), (2, 'Bye')"));
        raw.exec(QStringLiteral(
            "INSERT INTO quotes (id, year, sequence, revision, customer, company, email, "
            "reference, quote_date, valid_until, status, heading_id, ending_id, total) VALUES "
            "(5, 2026, 7, 0, 'Ann Lee', '', '', '', '2026-03-01', '2026-03-31', 'sent', 1, 2, 0)"));
        raw.exec(QStringLiteral("INSERT INTO quote_search (quote_id, haystack) VALUES (5, "
                                "'q-2026-0007\nann lee\nwritten by rule seven')"));
    }
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    QSqlError error;
    QSqlDatabase db = book.database();
    EXPECT_EQ(QuoteBookSchema::version(db, error), 5);
    EXPECT_EQ(book.list(QStringLiteral("rule seven")).size(), 1) << "the text was kept";
    QSqlQuery rule(db);
    ASSERT_TRUE(rule.exec(QStringLiteral("SELECT rule FROM search_rule")) && rule.next());
    EXPECT_EQ(rule.value(0).toInt(), QuoteBookSchema::SearchRule);
    rule.finish();
    SavedQuote next = sampleQuote(QStringLiteral("Bo Ek"), QDate(2026, 3, 2));
    ASSERT_TRUE(book.saveNew(next));
    EXPECT_EQ(QuoteBookSchema::version(db, error), 5);
}

// A quote that an earlier program (one without today's search rule) saves into a book this one
// has opened gets its search text made anew at the next opening: "lukasz" finds Łukasz.
TEST_F(QuoteBookFileTest, AQuoteAnEarlierProgramSavedIsSearchedByTodaysRuleOnceOpened)
{
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Created);
    SavedQuote first = sampleQuote(QStringLiteral("Ann Lee"), QDate(2026, 3, 1));
    ASSERT_TRUE(book.saveNew(first));
    book.close();
    {
        RawDatabase raw(path());
        raw.exec(QStringLiteral(
            "INSERT INTO quotes (id, year, sequence, revision, customer, company, email, "
            "reference, quote_date, valid_until, status, heading_id, ending_id, total) "
            "SELECT 99, 2026, 42, 0, 'Łukasz Żółć', '', '', '', '2026-03-05', '2026-04-04', "
            "'draft', heading_id, ending_id, 0 FROM quotes LIMIT 1"));
        raw.exec(QStringLiteral("INSERT INTO quote_search (quote_id, haystack) VALUES (99, "
                                "'q-2026-0042\nłukasz żołc')"));
    }
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    EXPECT_EQ(book.list(QStringLiteral("lukasz")).size(), 1);
    EXPECT_EQ(book.list(QStringLiteral("zolc")).size(), 1);
    QSqlQuery stale(book.database());
    ASSERT_TRUE(stale.exec(QStringLiteral("SELECT count(*) FROM search_stale")) && stale.next());
    EXPECT_EQ(stale.value(0).toInt(), 0) << "made anew and forgotten";
    stale.finish();
    SavedQuote own = sampleQuote(QStringLiteral("Bo Ek"), QDate(2026, 3, 6));
    ASSERT_TRUE(book.saveNew(own));
    ASSERT_TRUE(stale.exec(QStringLiteral("SELECT count(*) FROM search_stale")) && stale.next());
    EXPECT_EQ(stale.value(0).toInt(), 0) << "its own texts are of today's rule";
}

// Search texts are made from the quotes: a book that needs none made anew opens without being
// written to, and one that does opens all the same while another program holds it for writing,
// its texts made at the next opening.
TEST_F(QuoteBookFileTest, ABookAnotherProgramHoldsForWritingStillOpens)
{
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Created);
    SavedQuote first = sampleQuote(QStringLiteral("Ann Lee"), QDate(2026, 3, 1));
    ASSERT_TRUE(book.saveNew(first));
    book.close();
    RawDatabase raw(path());
    raw.exec(QStringLiteral("BEGIN IMMEDIATE"));
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    EXPECT_EQ(book.quoteCount(), 1);
    book.close();
    raw.exec(QStringLiteral("INSERT OR REPLACE INTO quote_search (quote_id, haystack) "
                            "VALUES (?, 'q-2026-0001\nłukasz')"),
        { first.header.id });
    raw.exec(QStringLiteral("COMMIT"));
    raw.exec(QStringLiteral("BEGIN IMMEDIATE"));
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    EXPECT_EQ(book.list(QStringLiteral("ann lee")).size(), 0) << "not made anew yet";
    book.close();
    raw.exec(QStringLiteral("ROLLBACK"));
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    EXPECT_EQ(book.list(QStringLiteral("ann lee")).size(), 1);
}

TEST_F(QuoteBookFileTest, LinesKeptBeforeLocksWereStoredReadAsUnlocked)
{
    {
        RawDatabase raw(path());
        QSqlError error;
        ASSERT_TRUE(QuoteBookSchema::migrate(raw.db(), 2, locale, error))
            << error.text().toStdString();
        QSqlQuery insert(raw.db());
        const auto statementFor = [&](const QString &table, int rows) -> QSqlQuery & {
            insert.prepare(QuoteBookRows::insertLinesSql(table, rows, QuoteLine::Includes));
            return insert;
        };
        ASSERT_TRUE(QuoteBookRows::writeLines(statementFor, QStringLiteral("in_hand_lines"), 0,
            sampleContent(2, QStringLiteral("HAND")), locale, error, QuoteLine::Includes));
        raw.exec(QStringLiteral("INSERT INTO in_hand (id, quote_id) VALUES (1, 0)"));
    }
    ASSERT_EQ(open().status, QuoteBook::OpenStatus::Opened) << book.errorString().toStdString();
    QSqlError error;
    QSqlDatabase db = book.database();
    EXPECT_EQ(QuoteBookSchema::version(db, error), QuoteBookSchema::CurrentVersion);
    const auto kept = book.inHand();
    ASSERT_TRUE(kept.has_value());
    EXPECT_TRUE(sameCells(kept->content.lines, sampleContent(2, QStringLiteral("HAND")).lines));
    EXPECT_FALSE(QuoteLine::isLocked(kept->content.lines, 1));
    EXPECT_TRUE(kept->content.lines.get(2, QuoteLine::Quantities).isEmpty());
    // The quote in hand can be kept again with a lock.
    QuoteBook::InHand again = *kept;
    QuoteLine::setLocked(again.content.lines, 1, true);
    ASSERT_TRUE(book.keepInHand(again));
    const auto relocked = book.inHand();
    ASSERT_TRUE(relocked.has_value());
    EXPECT_TRUE(QuoteLine::isLocked(relocked->content.lines, 1));
}

TEST_F(QuoteBookFileTest, AFailedStepLeavesTheBookAtTheVersionBefore)
{
    {
        RawDatabase raw(path());
        QSqlError error;
        ASSERT_TRUE(QuoteBookSchema::migrate(raw.db(), 1, locale, error));
        // Something a later step wants to create is already there: that step fails whole.
        raw.exec(QStringLiteral("CREATE TABLE quote_search (x)"));
        EXPECT_FALSE(QuoteBookSchema::migrate(raw.db(), 2, locale, error));
        EXPECT_EQ(QuoteBookSchema::version(raw.db(), error), 1);
        QSqlQuery columns(raw.db());
        ASSERT_TRUE(columns.exec(QStringLiteral("SELECT count(*) FROM pragma_table_info('quotes') "
                                                "WHERE name = 'total'"))
            && columns.next());
        EXPECT_EQ(columns.value(0).toInt(), 0) << "the step's other changes are undone";
    }
    const QuoteBook::OpenResult result = open();
    EXPECT_EQ(result.status, QuoteBook::OpenStatus::Failed);
    EXPECT_TRUE(result.detail.contains(QLatin1String("quote_search")))
        << result.detail.toStdString();
    EXPECT_TRUE(QFileInfo::exists(path())) << "a sound book is never moved aside";
}

TEST_F(QuoteBookFileTest, AFileThatIsNoDatabaseIsKeptAsideAndANewBookStarted)
{
    folder.writeFile(
        QStringLiteral("quotes.db"), QByteArray("these are not the quotes").repeated(300));
    folder.writeFile(QStringLiteral("quotes.db-wal"), "its log");
    const QuoteBook::OpenResult result = open();
    ASSERT_EQ(result.status, QuoteBook::OpenStatus::Replaced);
    EXPECT_EQ(result.keptAs, folder.filePath(QStringLiteral("quotes-damaged-20260512-140309.db")));
    EXPECT_EQ(result.detail, QStringLiteral("file is not a database"));
    EXPECT_EQ(folder.readFile(QStringLiteral("quotes-damaged-20260512-140309.db")),
        QByteArray("these are not the quotes").repeated(300));
    EXPECT_EQ(folder.readFile(QStringLiteral("quotes-damaged-20260512-140309.db-wal")),
        QByteArray("its log"));
    ASSERT_TRUE(book.isOpen());
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), QDate(2026, 5, 12));
    EXPECT_TRUE(book.saveNew(quote));

    EXPECT_EQ(QuoteBookMessages::opened(result, path(), QStringLiteral("quotes.bak")),
        QStringLiteral("The quote book \"%1\" is damaged and could not be read (file is not a "
                       "database).\n\nIt has been kept as \"quotes-damaged-20260512-140309.db\", "
                       "and a new, empty quote book has been started. The copy made when Tarnwick "
                       "was last closed is \"quotes.bak\" in the same folder.")
            .arg(path()));
}

TEST_F(QuoteBookFileTest, ABookWithDamagedPagesIsKeptAside)
{
    {
        QuoteBook first(locale);
        ASSERT_EQ(first.open(path()).status, QuoteBook::OpenStatus::Created);
        std::vector<SavedQuote> quotes;
        quotes.reserve(40);
        for (int i = 0; i < 40; ++i)
            quotes.push_back(sampleQuote(QStringLiteral("C%1").arg(i), QDate(2026, 5, 12), 20));
        ASSERT_TRUE(first.saveNewQuotes(quotes));
    }
    QByteArray bytes = folder.readFile(QStringLiteral("quotes.db"));
    ASSERT_GT(bytes.size(), 8 * 4096);
    for (qsizetype at = 2 * 4096; at < bytes.size(); at += 4096)
        bytes.replace(at, 64, QByteArray(64, '\xa5'));
    folder.writeFile(QStringLiteral("quotes.db"), bytes);
    const QuoteBook::OpenResult result = open();
    ASSERT_EQ(result.status, QuoteBook::OpenStatus::Replaced) << result.detail.toStdString();
    EXPECT_EQ(result.detail, QStringLiteral("parts of the file are damaged"));
    EXPECT_EQ(folder.readFile(QStringLiteral("quotes-damaged-20260512-140309.db")), bytes);
    EXPECT_EQ(book.quoteCount(), 0);
}

TEST_F(QuoteBookFileTest, AnotherProgramsDatabaseIsNotTakenForTheBook)
{
    {
        RawDatabase raw(path());
        raw.exec(QStringLiteral("CREATE TABLE addresses (name TEXT)"));
    }
    const QuoteBook::OpenResult result = open();
    ASSERT_EQ(result.status, QuoteBook::OpenStatus::Replaced);
    EXPECT_EQ(result.detail, QStringLiteral("it is not a Tarnwick quote book"));
    EXPECT_TRUE(QFileInfo::exists(result.keptAs));
}

TEST_F(QuoteBookFileTest, TwoDamagedBooksInOneSecondKeepBoth)
{
    folder.writeFile(QStringLiteral("quotes-damaged-20260512-140309.db"), "an earlier one");
    folder.writeFile(QStringLiteral("quotes.db"), QByteArray(5000, 'x'));
    const QuoteBook::OpenResult result = open();
    ASSERT_EQ(result.status, QuoteBook::OpenStatus::Replaced);
    EXPECT_EQ(
        QFileInfo(result.keptAs).fileName(), QStringLiteral("quotes-damaged-20260512-140309-2.db"));
    EXPECT_EQ(folder.readFile(QStringLiteral("quotes-damaged-20260512-140309.db")),
        QByteArray("an earlier one"));
}

TEST_F(QuoteBookFileTest, AnEmptyFileIsANewBook)
{
    folder.writeFile(QStringLiteral("quotes.db"), QByteArray());
    EXPECT_EQ(open().status, QuoteBook::OpenStatus::Created);
    EXPECT_TRUE(book.isOpen());
}

TEST_F(QuoteBookFileTest, ABookOfALaterVersionIsLeftAlone)
{
    {
        QuoteBook first(locale);
        ASSERT_EQ(first.open(path()).status, QuoteBook::OpenStatus::Created);
        RawDatabase raw(path());
        raw.exec(QStringLiteral("PRAGMA user_version = 9"));
    }
    const QByteArray before = folder.readFile(QStringLiteral("quotes.db"));
    const QuoteBook::OpenResult result = open();
    EXPECT_EQ(result.status, QuoteBook::OpenStatus::TooNew);
    EXPECT_FALSE(book.isOpen());
    EXPECT_EQ(folder.readFile(QStringLiteral("quotes.db")), before);
    EXPECT_EQ(folder.fileNames(), QStringList { QStringLiteral("quotes.db") });
    EXPECT_EQ(QuoteBookMessages::opened(result, path(), QString()),
        QStringLiteral("The quote book \"%1\" was written by a later version of Tarnwick. It has "
                       "been left as it is; quotes cannot be saved or opened until that version "
                       "is used again.")
            .arg(path()));
}

TEST_F(QuoteBookFileTest, AFolderThatIsNotThereIsReported)
{
    const QuoteBook::OpenResult result =
        book.open(folder.filePath(QStringLiteral("missing/quotes.db")), At);
    EXPECT_EQ(result.status, QuoteBook::OpenStatus::Failed);
    EXPECT_FALSE(result.detail.isEmpty());
    EXPECT_FALSE(book.isOpen());
    EXPECT_TRUE(
        QuoteBookMessages::opened(result, QStringLiteral("x/quotes.db"), QString())
            .startsWith(QLatin1String("The quote book \"x/quotes.db\" could not be opened: ")));
}

TEST_F(QuoteBookFileTest, ASoundOrNewBookIsOpenedWithoutAWord)
{
    EXPECT_TRUE(QuoteBookMessages::opened(
        { QuoteBook::OpenStatus::Created, {}, {} }, path(), QStringLiteral("quotes.bak"))
                    .isEmpty());
    EXPECT_TRUE(QuoteBookMessages::opened(
        { QuoteBook::OpenStatus::Opened, {}, {} }, path(), QStringLiteral("quotes.bak"))
                    .isEmpty());
}

TEST(QuoteBookMessagesTest, TheSaveMessageEndsInOneFullStop)
{
    QuoteHeader header;
    header.id = 12;
    header.year = 2026;
    header.sequence = 7;
    header.customer.customer = QStringLiteral("Jane Roe");
    header.customer.company = QStringLiteral("Heating Supply Co. Ltd.");
    EXPECT_EQ(QuoteBookMessages::saved(header),
        QStringLiteral("Quote Q-2026-0007 A saved for Jane Roe, Heating Supply Co. Ltd."));
    header.customer.company = QStringLiteral("Acme Plumbing");
    EXPECT_EQ(QuoteBookMessages::saved(header),
        QStringLiteral("Quote Q-2026-0007 A saved for Jane Roe, Acme Plumbing."));
    header.customer = {};
    EXPECT_EQ(QuoteBookMessages::saved(header), QStringLiteral("Quote Q-2026-0007 A saved."));
}

TEST(QuoteBookMessagesTest, OtherPricesAreCounted)
{
    EXPECT_EQ(QuoteBookMessages::otherPrices(3),
        QStringLiteral("3 lines have other prices in today's catalogue. Update them?"));
    EXPECT_EQ(QuoteBookMessages::otherPrices(1),
        QStringLiteral("1 lines have other prices in today's catalogue. Update them?"));
}

TEST(QuoteBookMessagesTest, LinesWithoutTheirProductsAreNamed)
{
    Table quote(8, QuoteLine::FieldCount);
    for (int row = 1; row <= 8; ++row)
        quote.put(row, QuoteLine::PartNumber, Cell(QStringLiteral("P-%1").arg(row)));
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    EXPECT_EQ(QuoteBookMessages::withoutProduct(quote, { 3 }, english),
        QStringLiteral("Line 3: \"P-3\" is not in the catalogue; the line keeps its price until "
                       "its quantity is changed."));
    EXPECT_EQ(QuoteBookMessages::withoutProduct(quote, { 1, 2, 3, 4, 5, 6, 8 }, english),
        QStringLiteral("Lines 1, 2, 3, 4, 5 and 2 more: their part numbers are not in the "
                       "catalogue; the lines keep their prices until their quantities are "
                       "changed."));
}

} // namespace
