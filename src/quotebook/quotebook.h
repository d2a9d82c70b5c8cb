#pragma once

#include "platform/filestamp.h"
#include "quotebook/quoterecord.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QLocale>
#include <QSqlDatabase>
#include <QSqlError>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class QSqlQuery;

namespace tarnwick {

/// The quote book: every saved quote, each revision of it and the quote in hand, in one
/// SQLite database ("quotes.db" in the application folder) through Qt SQL. The book is
/// written in WAL mode, one transaction per save; its tables carry a version and are brought
/// up to date when an older book is opened (QuoteBookSchema). Nothing here shows a window:
/// every operation says whether it worked, and errorString() why not, in plain words.
class QuoteBook
{
public:
    /// What open() found.
    enum class OpenStatus {
        Opened, ///< an existing book, brought up to date
        Created, ///< there was no book yet: a new, empty one
        Replaced, ///< the book was damaged: kept aside (keptAs) and a new, empty one started
        TooNew, ///< written by a later version of the program: left alone and not opened
        /// on a disk or in a folder that cannot be written: opened to read its quotes only
        ReadOnly,
        Failed, ///< no book could be opened or created (detail says why)
    };
    struct OpenResult
    {
        OpenStatus status = OpenStatus::Failed;
        QString detail; ///< why the book was damaged or could not be opened
        QString keptAs; ///< where a damaged book was kept
    };

    /// The quote in hand: the lines on screen and the saved revision they continue (0 when
    /// they were never saved).
    struct InHand
    {
        qint64 quoteId = 0;
        QuoteContent content;
    };

    explicit QuoteBook(const QLocale &locale);
    ~QuoteBook();
    QuoteBook(const QuoteBook &) = delete;
    QuoteBook &operator=(const QuoteBook &) = delete;

    /// Opens the book at path, creating it when there is none. A file that is not a sound
    /// quote book is renamed to "<name>-damaged-<date>-<time>.db" beside it (with its
    /// "-wal" and "-shm" files) and a new book is started; nothing is deleted.
    OpenResult open(const QString &path, const QDateTime &now = QDateTime::currentDateTime());
    void close();
    /// Closes the open book's connection and opens the same file again, without open()'s
    /// checks (the book was sound a moment ago): SQLite takes its locks anew. False, with the
    /// book closed, when it cannot be opened again.
    bool reconnect();
    bool isOpen() const { return m_db.isOpen(); }
    /// Open to be read only: its folder cannot be written (OpenStatus::ReadOnly).
    bool isReadOnly() const { return isOpen() && m_readOnly; }
    /// Open for this program alone: its drive cannot keep the index SQLite shares.
    bool isHeldAlone() const { return isOpen() && m_alone; }
    /// True when the open connection no longer reaches the file at path(): another file has
    /// taken its place (a drive taken away and put back, where SQLite still holds the file of
    /// the drive that went), or the disk failed under it. A book whose file is gone stays as
    /// it is: opening anew would start an empty one.
    bool needsReopening() const;
    QString path() const { return m_path; }
    QString errorString() const { return m_error; }
    /// Whether the last list() could not read the book (errorString() says why): an empty
    /// list is then no answer.
    bool listFailed() const { return m_listFailed; }

    /// Saves quote as a new quote: the next number of the year of its date, revision A. Sets
    /// its id, year, sequence and revision.
    bool saveNew(SavedQuote &quote);
    /// After a damaged book was replaced by this one: the numbers the book at otherBook gave out
    /// (its copy from the last close, or what the damaged file still shows) are not given again;
    /// new quotes of each year continue after the highest of them. A file that cannot be read
    /// changes nothing. False only when this book could not keep them.
    bool continueNumbersOf(const QString &otherBook);
    /// Saves many quotes as new quotes, as saveNew() each, in one transaction (all or none):
    /// quotes taken over from elsewhere, or a large book made for measuring.
    bool saveNewQuotes(std::vector<SavedQuote> &quotes);
    /// Saves quote as the next revision of its number (its year and sequence); the revisions
    /// before stay as they are. Sets its id and revision.
    bool saveRevision(SavedQuote &quote);
    /// The revision saveRevision would give the next revision of the quote numbered year and
    /// sequence (one after the highest saved); nullopt when the book cannot tell.
    std::optional<int> nextRevision(int year, int sequence);
    /// Writes quote over the revision it is (header.id): customer, status, texts and lines.
    bool update(SavedQuote &quote);
    std::optional<SavedQuote> load(qint64 id);
    /// The saved quotes, newest first (by date, then number and revision); with find, only
    /// those whose number, customer, company or a part number contains every word of it,
    /// ignoring case.
    QList<QuoteSummary> list(const QString &find = QString());
    bool setStatus(qint64 id, QuoteStatus status);
    int quoteCount();

    /// Keeps the quote in hand, replacing the one kept before. Written without waiting for
    /// the disk: it survives the program's end at any moment, though not a power cut.
    bool keepInHand(const InHand &inHand);
    /// How long a statement waits for a book another connection is writing: BusyWaitMs, or
    /// less where the window must not wait (the quote kept in the background).
    void setBusyWait(int milliseconds);
    static constexpr int BusyWaitMs = 2000;
    /// The quote in hand as last kept; none when there is none (or on an error).
    std::optional<InHand> inHand();

    /// Copies the book into the file at path by SQLite's online backup (QuoteBookBackup).
    bool backupTo(const QString &path);

    /// The connection, for tests that look at the tables themselves.
    QSqlDatabase database() const { return m_db; }

    /// Where a damaged book at path is kept at time now:
    /// "<folder>/<name>-damaged-<yyyyMMdd>-<HHmmss>.db".
    static QString damagedName(const QString &path, const QDateTime &now);

private:
    enum class Check { Sound, Damaged, TooNew, Failed };
    Check checkExisting(QString &detail);
    /// versionRead, when given, receives the book's version as read.
    Check checkFacts(QString &detail, int *versionRead = nullptr);
    bool openExisting(OpenResult &result, const QDateTime &now);
    void forgetCheckFiles();
    OpenResult openOnce(const QString &path, const QDateTime &now);
    bool openConnection(const QString &path, bool readOnly = false);
    /// The book in a folder that cannot be written, opened to be read as it lies (SQLite's
    /// "immutable": no lock, no log beside it, which such a folder could not take).
    bool openToRead(OpenResult &result);
    bool prepareBook();
    QString keepAside(const QDateTime &now);
    bool fail(const QSqlError &error);
    bool fail(const QString &what);
    bool begin();
    bool commit();
    void rollback();
    bool fullSync(bool full);
    qint64 textId(const QString &text);
    /// The statement sql, prepared once per connection and kept for the next save.
    QSqlQuery &prepared(const QString &sql);
    std::function<QSqlQuery &(const QString &, int)> statementFor();
    bool insertQuote(SavedQuote &quote);
    bool numberAndInsert(SavedQuote &quote);
    bool writeSearchAndLines(const SavedQuote &quote);

    QLocale m_locale;
    QString m_connection;
    QSqlDatabase m_db;
    QString m_path;
    QString m_error;
    /// Which file the connection opened (FileStamp::isSameFile tells it from a file put in its
    /// place), and whether the disk failed under it since.
    std::optional<FileStamp> m_openedFile;
    bool m_diskFailed = false;
    bool m_listFailed = false;
    bool m_readOnly = false; ///< opened by openToRead
    /// The book notes the quotes whose search texts are written (its search_stale table); the
    /// program's own saves, written by today's rule, take theirs out again.
    bool m_notesSearchTexts = false;
    /// Held for this program alone (SQLite's exclusive locking mode): the drive cannot keep
    /// the index SQLite shares between programs.
    bool m_alone = false;
    QStringList m_checkLeftovers;
    struct Statement
    {
        std::unique_ptr<QSqlQuery> query;
        bool ready = false;
    };
    std::map<QString, Statement> m_statements;
    std::map<std::pair<QString, int>, QString> m_lineSql;
    /// The keys of the texts in the book, as far as they were asked for.
    QHash<QString, qint64> m_textIds;
};

} // namespace tarnwick
