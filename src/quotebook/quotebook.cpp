#include "quotebook/quotebook.h"

#include "quotebook/quotebookbackup.h"
#include "quotebook/quotebookrows.h"
#include "quotebook/quotebookschema.h"

#include <QAtomicInteger>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>

namespace tarnwick {

namespace {

const QString Driver = QStringLiteral("QSQLITE");
const QString QuoteLines = QStringLiteral("quote_lines");
const QString InHandLines = QStringLiteral("in_hand_lines");

QAtomicInteger<quint64> lastConnection { 0 };

/// SQLite's codes for a file that is damaged (SQLITE_CORRUPT) or no database at all
/// (SQLITE_NOTADB); extended codes keep them in their low byte.
bool isDamage(const QSqlError &error)
{
    const int code = QuoteBookRows::resultCode(error);
    return code == 11 || code == 26;
}

QString plainWords(const QSqlError &error)
{
    const QString text = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    // SQLite's words for a disk that cannot be written or read name a "database"; the user
    // knows the quote book and the drive it is on.
    switch (QuoteBookRows::resultCode(error)) {
    case 8:
        return QStringLiteral("the quote book's file or folder cannot be written (%1)").arg(text);
    case 10:
        return QStringLiteral("the drive could not be read or written; was it taken away? (%1)")
            .arg(text);
    default:
        return text.isEmpty() ? QStringLiteral("an unknown error") : text;
    }
}

/// A damaged file in the words of the message that reports it: SQLite's own account of broken
/// pages names b-trees and page numbers.
const QString DamagedPages = QStringLiteral("parts of the file are damaged");

QString damageWords(const QSqlError &error)
{
    return QuoteBookRows::resultCode(error) == 11 ? DamagedPages : plainWords(error);
}

/// SQLite's result codes that say the file is not what the connection holds any more: a
/// write into a file moved or replaced (8, read-only: "database moved"), the disk failing
/// (10) or a file beside it that cannot be opened (14).
bool isDiskFailure(const QSqlError &error)
{
    const int code = QuoteBookRows::resultCode(error);
    return code == 8 || code == 10 || code == 14;
}

const QString NoBookInFolder =
    QStringLiteral("its folder cannot be written, so no quote book can be started there");

QVariant isoDate(const QDate &date)
{
    return QuoteBookRows::sqlText(date.toString(Qt::ISODate));
}

} // namespace

QuoteBook::QuoteBook(const QLocale &locale)
    : m_locale(locale), m_connection(QStringLiteral("tarnwick-quotebook-%1").arg(++lastConnection))
{
}

QuoteBook::~QuoteBook()
{
    close();
}

void QuoteBook::close()
{
    m_notesSearchTexts = false;
    m_statements.clear();
    m_lineSql.clear();
    m_textIds.clear();
    if (m_db.isValid()) {
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_connection);
    }
}

bool QuoteBook::reconnect()
{
    if (!isOpen())
        return false;
    if (openConnection(m_path) && prepareBook())
        return true;
    const QString why = m_error;
    close();
    m_error = why;
    return false;
}

bool QuoteBook::fail(const QSqlError &error)
{
    m_error = plainWords(error);
    m_diskFailed = m_diskFailed || isDiskFailure(error);
    return false;
}

bool QuoteBook::needsReopening() const
{
    if (!isOpen())
        return false;
    const std::optional<FileStamp> now = fileStamp(m_path);
    return now
        && ((m_diskFailed && !m_readOnly) || !m_openedFile || !now->isSameFile(*m_openedFile));
}

bool QuoteBook::fail(const QString &what)
{
    m_error = what;
    return false;
}

bool QuoteBook::openConnection(const QString &path, bool readOnly)
{
    close();
    m_db = QSqlDatabase::addDatabase(Driver, m_connection);
    m_db.setDatabaseName(path);
    if (readOnly && m_alone) {
        // Looked at as it lies: without the log's index a read-only look cannot share the
        // book, and nothing else holds it.
        QuoteBookRows::readAsItLies(m_db, path);
    } else if (readOnly) {
        m_db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    }
    m_diskFailed = false;
    m_readOnly = false;
    if (m_db.open()) {
        m_openedFile = fileStamp(path);
        // Held for this program alone, SQLite keeps the log's index in memory.
        QSqlError error;
        if (readOnly || !m_alone
            || QuoteBookRows::run(m_db, QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"), error))
            return true;
        fail(error);
        close();
        return false;
    }
    fail(m_db.lastError());
    close();
    return false;
}

QString QuoteBook::damagedName(const QString &path, const QDateTime &now)
{
    const QFileInfo file(path);
    return file.dir().filePath(
        QStringLiteral("%1-damaged-%2.db")
            .arg(file.completeBaseName(), now.toString(QStringLiteral("yyyyMMdd-HHmmss"))));
}

QuoteBook::OpenResult QuoteBook::open(const QString &path, const QDateTime &now)
{
    m_alone = false;
    OpenResult shared = openOnce(path, now);
    // Some drives cannot keep the index SQLite shares between the programs that read the log
    // (some network shares and USB file systems refuse to size or map it): every use of the
    // book then fails as a disk error. Held for this program alone, the book needs no such
    // file; Tarnwick's own lock already keeps a second copy away.
    if (shared.status != OpenStatus::Failed || !m_diskFailed
        || !QFileInfo(QFileInfo(path).absolutePath()).isWritable())
        return shared;
    m_alone = true;
    OpenResult alone = openOnce(path, now);
    if (alone.status != OpenStatus::Failed)
        return alone;
    m_alone = false;
    m_error = shared.detail;
    return shared;
}

QuoteBook::OpenResult QuoteBook::openOnce(const QString &path, const QDateTime &now)
{
    close();
    m_diskFailed = false;
    m_path = path;
    OpenResult result;
    if (!QSqlDatabase::isDriverAvailable(Driver)) {
        result.detail = QStringLiteral("the SQLite driver of Qt is not installed");
        m_error = result.detail;
        return result;
    }
    const QFileInfo file(path);
    const bool existed = file.exists() && file.size() > 0;
    // A write-protected stick, a read-only share: its quotes can still be looked at.
    if (existed && !QFileInfo(file.absolutePath()).isWritable()) {
        if (openToRead(result))
            return result;
        m_error = result.detail;
        return result;
    }
    if (existed && !openExisting(result, now))
        return result;
    if (result.status == OpenStatus::Opened)
        return result;
    if (!openConnection(path) || !prepareBook()) {
        // SQLite says only that it is "unable to open database file".
        const QString why =
            !existed && !QFileInfo(file.absolutePath()).isWritable() ? NoBookInFolder : m_error;
        close();
        if (result.detail.isEmpty())
            result.detail = why;
        m_error = why;
        return result;
    }
    result.status = existed ? OpenStatus::Replaced : OpenStatus::Created;
    return result;
}

/// An existing file: a sound book is opened (result Opened), a damaged one kept aside (true,
/// so a new book is started); false when open() has nothing more to do.
bool QuoteBook::openExisting(OpenResult &result, const QDateTime &now)
{
    const Check check = checkExisting(result.detail);
    close();
    forgetCheckFiles();
    switch (check) {
    case Check::Sound:
        if (openConnection(m_path) && prepareBook()) {
            result.status = OpenStatus::Opened;
            return true;
        }
        result.detail = m_error;
        close();
        return false;
    case Check::TooNew:
        result.status = OpenStatus::TooNew;
        return false;
    case Check::Failed:
        return false;
    case Check::Damaged:
        result.keptAs = keepAside(now);
        return !result.keptAs.isEmpty();
    }
    return false;
}

void QuoteBook::forgetCheckFiles()
{
    // Looking at a book, even read-only, may leave an empty log and the log's index (a map
    // SQLite rebuilds at will) beside it; those the check made itself go again, and a log
    // with anything in it stays.
    for (const QString &leftover : m_checkLeftovers) {
        const QFileInfo file(leftover);
        if (file.exists() && (file.size() == 0 || leftover.endsWith(QLatin1String("-shm"))))
            QFile::remove(leftover);
    }
    m_checkLeftovers.clear();
}

bool QuoteBook::openToRead(OpenResult &result)
{
    close();
    m_db = QSqlDatabase::addDatabase(Driver, m_connection);
    QuoteBookRows::readAsItLies(m_db, m_path);
    if (!m_db.open()) {
        result.detail = plainWords(m_db.lastError());
        close();
        return false;
    }
    QString detail;
    int version = -1;
    const Check check = checkFacts(detail, &version);
    // A book of an earlier version would have to be brought up to date, which needs writing.
    // (One of these tables whose search texts an earlier rule made is read as it is: its
    // search may miss what today's rule finds.)
    if (check != Check::Sound || version < QuoteBookSchema::CurrentVersion) {
        if (check == Check::TooNew)
            result.status = OpenStatus::TooNew;
        result.detail = check != Check::Sound
            ? detail
            : QStringLiteral("its folder cannot be written, and the book must be brought up to "
                             "date first");
        close();
        return false;
    }
    m_readOnly = true;
    m_openedFile = fileStamp(m_path);
    result.status = OpenStatus::ReadOnly;
    result.detail = QStringLiteral("its folder cannot be written");
    return true;
}

QuoteBook::Check QuoteBook::checkExisting(QString &detail)
{
    for (const QLatin1String suffix : { QLatin1String("-wal"), QLatin1String("-shm") }) {
        if (!QFileInfo::exists(m_path + suffix))
            m_checkLeftovers << m_path + suffix;
    }
    // Looked at read-only: a file that turns out damaged is kept exactly as it was found,
    // its log included.
    if (!openConnection(m_path, true)) {
        detail = m_error;
        return Check::Failed;
    }
    QSqlQuery check(m_db);
    if (!check.exec(QStringLiteral("PRAGMA quick_check"))) {
        m_diskFailed = m_diskFailed || isDiskFailure(check.lastError());
        detail = damageWords(check.lastError());
        return isDamage(check.lastError()) ? Check::Damaged : Check::Failed;
    }
    const QString verdict = check.next() ? check.value(0).toString() : QString();
    check.finish();
    if (verdict != QLatin1String("ok")) {
        detail = verdict.isEmpty() ? QStringLiteral("the file could not be checked") : DamagedPages;
        return Check::Damaged;
    }
    return checkFacts(detail);
}

/// The application id and version of a file that passed SQLite's check: a quote book, a
/// book of a later version, an empty SQLite file (taken as a new book), or another program's.
QuoteBook::Check QuoteBook::checkFacts(QString &detail, int *versionRead)
{
    QSqlQuery facts(m_db);
    if (!facts.exec(QStringLiteral("SELECT (SELECT application_id FROM pragma_application_id), "
                                   "(SELECT user_version FROM pragma_user_version), "
                                   "(SELECT count(*) FROM sqlite_master)"))
        || !facts.next()) {
        m_diskFailed = m_diskFailed || isDiskFailure(facts.lastError());
        detail = damageWords(facts.lastError());
        return isDamage(facts.lastError()) ? Check::Damaged : Check::Failed;
    }
    const qint32 applicationId = facts.value(0).toInt();
    const int version = facts.value(1).toInt();
    const int objects = facts.value(2).toInt();
    facts.finish();
    if (versionRead)
        *versionRead = version;
    if (applicationId == 0 && version == 0 && objects == 0)
        return Check::Sound;
    if (applicationId != QuoteBookSchema::ApplicationId) {
        detail = QStringLiteral("it is not a Tarnwick quote book");
        return Check::Damaged;
    }
    if (version > QuoteBookSchema::LastKnownVersion) {
        detail = QStringLiteral("it was written by a later version of Tarnwick");
        return Check::TooNew;
    }
    return Check::Sound;
}

/// WAL mode (readers never wait for a save, a save appends to the log), foreign keys, a short
/// wait on a busy file, and the tables of the current version.
bool QuoteBook::prepareBook()
{
    QSqlError error;
    QSqlQuery wal(m_db);
    if (!wal.exec(QStringLiteral("PRAGMA journal_mode = WAL")))
        return fail(wal.lastError());
    wal.finish();
    if (!QuoteBookRows::run(m_db, QStringLiteral("PRAGMA foreign_keys = ON"), error)
        || !QuoteBookRows::run(
            m_db, QStringLiteral("PRAGMA busy_timeout = %1").arg(BusyWaitMs), error)
        || !QuoteBookSchema::migrate(m_db, QuoteBookSchema::CurrentVersion, m_locale, error))
        return fail(error);
    // The search texts are made from the quotes themselves: a book whose texts cannot be made
    // anew now (a full disk, a book another program holds for a moment) opens all the same,
    // and the next opening tries again.
    QSqlError searchError;
    m_notesSearchTexts = QuoteBookSchema::updateSearchTexts(m_db, searchError);
    // A drive that cannot keep the log's shared index lets the book be read but never written:
    // a write is tried at once, so open() can hold the book alone instead. (A book another
    // program is writing is no such failure.)
    QSqlQuery probe(m_db);
    if (!probe.exec(QStringLiteral("BEGIN IMMEDIATE"))) {
        if (isDiskFailure(probe.lastError()))
            return fail(probe.lastError());
        return true;
    }
    probe.finish();
    return QuoteBookRows::run(m_db, QStringLiteral("COMMIT"), error) || fail(error);
}

void QuoteBook::setBusyWait(int milliseconds)
{
    if (!isOpen())
        return;
    QSqlError error;
    QuoteBookRows::run(m_db, QStringLiteral("PRAGMA busy_timeout = %1").arg(milliseconds), error);
}

QString QuoteBook::keepAside(const QDateTime &now)
{
    QString kept = damagedName(m_path, now);
    for (int n = 2; QFileInfo::exists(kept); ++n)
        kept =
            damagedName(m_path, now).replace(QLatin1String(".db"), QStringLiteral("-%1.db").arg(n));
    if (!QFile::rename(m_path, kept)) {
        m_error = QStringLiteral("the damaged file could not be renamed");
        return QString();
    }
    // The log and its index belong to the file: they go with it under its new name.
    for (const QLatin1String suffix : { QLatin1String("-wal"), QLatin1String("-shm") }) {
        if (QFileInfo::exists(m_path + suffix))
            QFile::rename(m_path + suffix, kept + suffix);
    }
    return kept;
}

bool QuoteBook::begin()
{
    QSqlError error;
    return QuoteBookRows::run(m_db, QStringLiteral("BEGIN IMMEDIATE"), error) || fail(error);
}

bool QuoteBook::commit()
{
    QSqlError error;
    if (QuoteBookRows::run(m_db, QStringLiteral("COMMIT"), error))
        return true;
    fail(error);
    rollback();
    return false;
}

void QuoteBook::rollback()
{
    // Texts added by the transaction are gone again.
    m_textIds.clear();
    QSqlError ignored;
    QuoteBookRows::run(m_db, QStringLiteral("ROLLBACK"), ignored);
}

QSqlQuery &QuoteBook::prepared(const QString &sql)
{
    Statement &statement = m_statements[sql];
    if (!statement.query || !statement.ready) {
        // A statement that could not be prepared fails when it is run, with its error, and is
        // prepared afresh the next time.
        statement.query = std::make_unique<QSqlQuery>(m_db);
        statement.ready = statement.query->prepare(sql);
    }
    return *statement.query;
}

/// A save waits until the disk has it; keeping the quote in hand only hands it to the system.
bool QuoteBook::fullSync(bool full)
{
    QSqlError error;
    return QuoteBookRows::run(m_db,
               full ? QStringLiteral("PRAGMA synchronous = FULL")
                    : QStringLiteral("PRAGMA synchronous = NORMAL"),
               error)
        || fail(error);
}

QuoteBookRows::StatementFor QuoteBook::statementFor()
{
    return [this](const QString &table, int rows) -> QSqlQuery & {
        // Looked up by table and count: the statement's text is long.
        QString &sql = m_lineSql[{ table, rows }];
        if (sql.isEmpty())
            sql = QuoteBookRows::insertLinesSql(table, rows);
        return prepared(sql);
    };
}

qint64 QuoteBook::textId(const QString &text)
{
    const auto known = m_textIds.constFind(text);
    if (known != m_textIds.constEnd())
        return *known;
    QSqlError error;
    QSqlQuery &insert = prepared(QStringLiteral("INSERT OR IGNORE INTO texts (body) VALUES (?)"));
    insert.bindValue(0, QuoteBookRows::sqlText(text));
    QSqlQuery &select = prepared(QStringLiteral("SELECT id FROM texts WHERE body = ?"));
    select.bindValue(0, QuoteBookRows::sqlText(text));
    if (!QuoteBookRows::run(insert, error) || !QuoteBookRows::run(select, error)) {
        fail(error);
        return 0;
    }
    const qint64 id = select.next() ? select.value(0).toLongLong() : 0;
    select.finish();
    if (id != 0)
        m_textIds.insert(text, id);
    return id;
}

bool QuoteBook::insertQuote(SavedQuote &quote)
{
    QuoteHeader &header = quote.header;
    const qint64 heading = textId(header.heading);
    const qint64 ending = textId(header.ending);
    if (heading == 0 || ending == 0)
        return false;
    QSqlQuery &insert = prepared(QStringLiteral(
        "INSERT INTO quotes (year, sequence, revision, customer, company, email, reference, "
        "quote_date, valid_until, status, heading_id, ending_id, total) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    const QVariantList values { header.year, header.sequence, header.revision,
        QuoteBookRows::sqlText(header.customer.customer),
        QuoteBookRows::sqlText(header.customer.company),
        QuoteBookRows::sqlText(header.customer.email),
        QuoteBookRows::sqlText(header.customer.reference), isoDate(header.date),
        isoDate(header.validUntil), QuoteStatuses::name(header.status), heading, ending,
        quote.total };
    for (int i = 0; i < values.size(); ++i)
        insert.bindValue(i, values.at(i));
    QSqlError error;
    if (!QuoteBookRows::run(insert, error))
        return fail(error);
    header.id = insert.lastInsertId().toLongLong();
    return writeSearchAndLines(quote);
}

bool QuoteBook::writeSearchAndLines(const SavedQuote &quote)
{
    QSqlError error;
    QSqlQuery &clear = prepared(QStringLiteral("DELETE FROM quote_lines WHERE quote_id = ?"));
    clear.bindValue(0, quote.header.id);
    QSqlQuery &search = prepared(
        QStringLiteral("INSERT OR REPLACE INTO quote_search (quote_id, haystack) VALUES (?, ?)"));
    search.bindValue(0, quote.header.id);
    search.bindValue(1, QuoteBookRows::haystack(quote.header, quote.content.lines));
    if (!QuoteBookRows::run(clear, error) || !QuoteBookRows::run(search, error)
        || !QuoteBookRows::writeLines(
            statementFor(), QuoteLines, quote.header.id, quote.content, m_locale, error))
        return fail(error);
    if (m_notesSearchTexts) {
        QSqlQuery &made = prepared(QStringLiteral("DELETE FROM search_stale WHERE quote_id = ?"));
        made.bindValue(0, quote.header.id);
        if (!QuoteBookRows::run(made, error))
            return fail(error);
    }
    return true;
}

bool QuoteBook::backupTo(const QString &path)
{
    QString error;
    if (QuoteBookBackup::write(m_db, path, error))
        return true;
    return fail(error);
}

} // namespace tarnwick
