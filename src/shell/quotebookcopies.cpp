// The quote book's copy from the last close (quotes.bak) beside a book that is damaged, missing
// or new, and the book's locks taken again after a file dialog.
#include "shell/quotebookcontroller.h"

#include "catalogue/module1.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/filewrite.h"
#include "platform/iprompts.h"
#include "quotebook/quotebookbackup.h"
#include "quotebook/quotebookmessages.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace tarnwick {

namespace {

const QString BookTitle = QStringLiteral("Quote Book");

} // namespace

QString QuoteBookController::keepLastCopy(const QuoteBook::OpenResult &replaced)
{
    // The copy made at the last close is the user's way back to the damaged book's quotes: the
    // new book's copies must never take its place. It moves beside the damaged file; where it
    // cannot, this run makes no copy at its close.
    const QString backup = m_services.environment.pathInAppFolder(BackupFileName);
    if (!QFileInfo::exists(backup))
        return {};
    QString kept = QuoteBookBackup::keepAside(backup, replaced.keptAs);
    if (!kept.isEmpty())
        return kept;
    m_keepBackup = true;
    return QFileInfo(backup).fileName();
}

bool QuoteBookController::openLastCopy()
{
    // The book gone from the folder (deleted, moved, not brought back by a sync) while the copy
    // of its last close is there: the copy is the user's quotes, offered back as the
    // catalogue's backup is.
    const QString backup = m_services.environment.pathInAppFolder(BackupFileName);
    const std::optional<int> quotes = QuoteBookBackup::quoteCount(backup);
    if (!quotes || *quotes < 1)
        return false;
    const QString when =
        m_module.locale().toString(QFileInfo(backup).lastModified(), QLocale::ShortFormat);
    const QString question = QuoteBookMessages::lastCopyQuestion(
        bookPath(), backup, when, *quotes, QFileInfo::exists(bookPath()));
    if (m_services.prompts.msgBox(question, MsgStyle::YesNo | MsgStyle::Question, BookTitle)
        != MsgResult::Yes)
        return false;
    if (QFileInfo(bookPath()).size() == 0)
        QFile::remove(bookPath());
    if (QFile::copy(backup, bookPath()))
        return true;
    m_services.prompts.msgBox(
        QuoteBookMessages::lastCopyNotOpened(bookPath(), backup), MsgStyle::Exclamation, BookTitle);
    return false;
}

void QuoteBookController::makeBookAsPrivateAsCatalogue()
{
    // The book holds customers' names and prices: a catalogue kept from other users' eyes keeps
    // its quotes from them too. SQLite made the log and its index beside the book with the
    // book's first permissions.
    for (const QLatin1String suffix :
        { QLatin1String(""), QLatin1String("-wal"), QLatin1String("-shm") }) {
        if (QFileInfo::exists(bookPath() + suffix))
            takeAccess(m_module.DataFile, bookPath() + suffix);
    }
}

void QuoteBookController::newBookBesideLastCopy()
{
    makeBookAsPrivateAsCatalogue();
    // A new book where the last close left a copy (the book went missing, and its copy was not
    // opened): the numbers the copy's quotes carry are not given again, and the copy moves
    // aside, so the new book's copy at the close never takes its place.
    const QString backup = m_services.environment.pathInAppFolder(BackupFileName);
    if (!QFileInfo::exists(backup))
        return;
    static_cast<void>(m_book.continueNumbersOf(backup));
    QString kept = QuoteBookBackup::keepEarlierCopy(backup, QDateTime::currentDateTime());
    if (kept.isEmpty()) {
        m_keepBackup = true;
        kept = QFileInfo(backup).fileName();
    }
    status(QuoteBookMessages::newBookBesideLastCopy(kept));
}

void QuoteBookController::retakeLocks()
{
    // A file dialog may have read quotes.db and dropped SQLite's locks: the book is opened
    // anew, which takes them again. A book deleted meanwhile (the dialogs offer Delete) stays
    // open as it is: opening anew would start an empty one, whose copy at the close would
    // replace quotes.bak.
    if (!m_book.isOpen() || !QFileInfo::exists(bookPath()))
        return;
    // Where the book cannot be opened again, the next command opens it as at the start and
    // says why it cannot.
    if (!m_book.reconnect())
        m_unavailable = m_book.errorString();
}

} // namespace tarnwick
