#include "shell/cataloguelifecycle.h"

#include "catalogue/cataloguefile.h"
#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/recoveryfile.h"
#include "core/vberror.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"
#include "products/productcommands.h"
#include "shell/cataloguework.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

#include <utility>

namespace tarnwick {

namespace {
const QString CatalogueTitle = QStringLiteral("Catalogue");
const QString ProgramTitle = QStringLiteral("Tarnwick");
const QString CloseAnywayQuestion =
    QStringLiteral("\n\nClose Tarnwick anyway? The changes made to the catalogue since Tarnwick "
                   "started would be lost.");
const QString CloseAnywayKeptQuestion =
    QStringLiteral("\n\nClose Tarnwick anyway? The changes not saved are kept in the recovery "
                   "file, and Tarnwick offers to restore them at its next start.");
const QString CloseAnywayPartlyKeptQuestion =
    QStringLiteral("\n\nClose Tarnwick anyway? The recovery file keeps the changes as they were "
                   "at %1, and Tarnwick offers to restore them at its next start; the changes "
                   "made since would be lost.");
} // namespace

CatalogueLifecycle::CatalogueLifecycle(Module1 &module, IPrompts &prompts)
    : m_module(module), m_prompts(prompts), m_recovery(module)
{
}

CatalogueWork *CatalogueLifecycle::attachWork(QWidget *window)
{
    m_work = new CatalogueWork(m_module.Catalogue(), m_recovery, window);
    return m_work;
}

CatalogueReadResult CatalogueLifecycle::readAndSort()
{
    Table &catalogue = m_module.Catalogue();
    Products &products = m_module.AllProducts();
    CatalogueReadResult result = products.ReadProds(m_module.DataFile);
    // Cut to the products read and put them in part-number order, as a header click would.
    ProductCommands::sortCatalogue(
        catalogue, products, ProductRecord::PartNumber, m_module.locale());
    products.markAsFile();
    return result;
}

bool CatalogueLifecycle::readsInBackground() const
{
    // The wait needs this thread's event loop; without an application there is none.
    if (m_module.environment().isTestRun() || !QCoreApplication::instance())
        return false;
    const QFileInfo file(m_module.DataFile);
    return file.isFile() && file.size() >= m_backgroundReadBytes;
}

CatalogueReadResult CatalogueLifecycle::load()
{
    m_module.Catalogue().redim(InitialRows, ProductRecord::FieldCount);
    m_module.AllProducts();
    CatalogueReadResult result;
    if (readsInBackground())
        runWhileEventsFlow([&] { result = readAndSort(); });
    else
        result = readAndSort();
    m_module.SortedByPart = true;
    if (result.status == CatalogueReadResult::Status::Failed) {
        m_readFailed = true;
        // Kept and said once the start is past the password (showLoadMessages).
        m_unreadResult = result;
        m_unreadPending = true;
    }
    // A file that could not be read leaves no product on screen to correct.
    if (result.status != CatalogueReadResult::Status::Failed && !result.unreadNumbers.isEmpty())
        m_loadMessages << unreadNumbersMessage(result.unreadNumbers);
    return result;
}

void CatalogueLifecycle::showLoadMessages()
{
    if (std::exchange(m_unreadPending, false)) {
        // Kept now, so the message that says so can name the copy and the close, which saves
        // over the file, has nothing left to say. A start refused at the password writes
        // nothing.
        const QString copy =
            m_unreadFileKept ? QString() : preserveUnreadCatalogue(m_module.DataFile);
        m_unreadFileKept = m_unreadFileKept || !copy.isEmpty();
        m_loadMessages.prepend(unreadMessage(m_module.DataFile, m_unreadResult, copy));
    }
    const QStringList messages = std::exchange(m_loadMessages, {});
    for (const QString &message : messages)
        m_prompts.msgBox(message, MsgStyle::Exclamation, CatalogueTitle);
}

CatalogueWriteResult CatalogueLifecycle::save()
{
    if (m_readFailed && !m_unreadFileKept) {
        const QString copy = preserveUnreadCatalogue(m_module.DataFile);
        if (copy.isEmpty()) {
            CatalogueWriteResult notKept;
            notKept.ok = false;
            notKept.detail = QStringLiteral(
                "the file that could not be read at start-up could not be kept as a copy");
            return notKept;
        }
        m_unreadFileKept = true;
        m_prompts.msgBox(keptCopyMessage(copy), MsgStyle::Information, CatalogueTitle);
    }
    // A large catalogue is written while the window keeps answering.
    CatalogueWriteResult written;
    const auto write = [&] { written = m_module.AllProducts().WriteProds(m_module.DataFile); };
    if (m_work)
        m_work->run(write);
    else
        write();
    return written;
}

void CatalogueLifecycle::reportChangedCopy(const CatalogueWriteResult &saved)
{
    if (!saved.keptChangedCopy.isEmpty())
        m_prompts.msgBox(changedCopyMessage(m_module.DataFile, saved.keptChangedCopy),
            MsgStyle::Information, CatalogueTitle);
}

bool CatalogueLifecycle::saveBeforeClose()
{
    if (leavesUnreadFile()) {
        m_recovery.stop();
        return true;
    }
    // The file keeps a product by its part number: one without (said in the status bar while
    // it was worked on, and by every save) is left out, as the file's rules have it.
    const CatalogueWriteResult saved = save();
    // A catalogue file changed outside Tarnwick while nothing was changed here stays as it is
    // (leftChangedFile), without a word: closing loses nothing.
    if (saved.ok) {
        reportChangedCopy(saved);
        m_recovery.stop();
        m_recovery.saved();
        return true;
    }
    // The question says what a close would cost: nothing when the recovery file can take
    // the changes now (a read-only catalogue file in a folder that takes new files).
    const bool kept = m_recovery.writeNow();
    if (kept && !QFileInfo::exists(recoveryFilePath(m_module.DataFile))) {
        // Nothing was changed: closing loses nothing, so it asks nothing (a read-only
        // catalogue file would otherwise ask at every close).
        m_recovery.stop();
        return true;
    }
    // A recovery file written before the disk filled up keeps the changes up to then.
    const QFileInfo older(recoveryFilePath(m_module.DataFile));
    QString question = kept ? CloseAnywayKeptQuestion : CloseAnywayQuestion;
    if (!kept && older.exists()) {
        question = CloseAnywayPartlyKeptQuestion.arg(
            m_module.locale().toString(older.lastModified().time(), QLocale::ShortFormat));
    }
    const QString text = saveFailedMessage(m_module.DataFile, saved.detail) + question;
    const int style = MsgStyle::YesNo | MsgStyle::Exclamation | MsgStyle::DefaultButton2;
    if (m_prompts.msgBox(text, style, CatalogueTitle) != MsgResult::Yes)
        return false;
    // Closing without the save: the changes stay in the recovery file for the next start.
    m_recovery.stop();
    m_recovery.writeNow();
    return true;
}

bool CatalogueLifecycle::leavesUnreadFile()
{
    // A catalogue file the disk failed to give at the start (an I/O error, a drive that was
    // slow to come back) stays as it is when nothing was changed here: the next start tries it
    // again. Saved over, its products would be left only in the copy kept at the start.
    if (!m_readFailed || m_unreadResult.errorNumber != ErrorNumber::DeviceIOError)
        return false;
    m_recovery.checkNow();
    return !m_recovery.isModified();
}

bool CatalogueLifecycle::saveNow()
{
    if (leavesUnreadFile()) {
        m_prompts.msgBox(
            unreadFileLeftMessage(m_module.DataFile), MsgStyle::Information, CatalogueTitle);
        return false;
    }
    const CatalogueWriteResult saved = save();
    if (!saved.ok) {
        reportSaveFailure(m_module.DataFile, saved.detail);
        return false;
    }
    if (saved.leftChangedFile) {
        m_prompts.msgBox(
            changedFileLeftMessage(m_module.DataFile), MsgStyle::Information, CatalogueTitle);
        return false;
    }
    reportChangedCopy(saved);
    m_recovery.saved();
    return true;
}

bool CatalogueLifecycle::saveCopy(const QString &path)
{
    CatalogueWriteResult written;
    const auto write = [&] {
        written = writeCatalogueCopy(
            path, m_module.Catalogue(), m_module.AllProducts().Count(), m_module.locale());
    };
    if (m_work)
        m_work->run(write);
    else
        write();
    if (!written.ok) {
        reportSaveFailure(path, written.detail);
        return false;
    }
    return true;
}

void CatalogueLifecycle::reportSaveFailure(const QString &path, const QString &detail)
{
    m_prompts.msgBox(saveFailedMessage(path, detail), MsgStyle::Exclamation, CatalogueTitle);
}

QString CatalogueLifecycle::recoveryQuestion(
    const QString &when, int changed, int added, int deleted)
{
    const auto products = [](int number) {
        return number == 1 ? QStringLiteral("1 product")
                           : QStringLiteral("%1 products").arg(number);
    };
    return QStringLiteral("Tarnwick was not closed properly. Restore the changes made until %1?"
                          "\n\n%2 changed, %3 added, %4 deleted.")
        .arg(when, products(changed), QString::number(added), QString::number(deleted));
}

QString CatalogueLifecycle::changedSinceNote(const QString &written)
{
    return QStringLiteral("\n\nThe catalogue file has been written since then (%1): by a save, "
                          "another copy of Tarnwick or a program that keeps the folder in step. "
                          "The counts include its changes, and Yes would take them back; No "
                          "keeps the catalogue file as it is and these changes in a file of "
                          "their own.")
        .arg(written);
}

bool CatalogueLifecycle::offerRecovery()
{
    const QString path = recoveryFilePath(m_module.DataFile);
    const QFileInfo file(path);
    if (!file.isFile()) {
        if (offerNameInOtherCase() || offerBackup())
            return true;
        m_recovery.start();
        return false;
    }
    const QDateTime when = file.lastModified();
    Table recovered;
    qint32 recoveredCount = 0;
    bool unchecked = false;
    const CatalogueReadResult read =
        readChangesLeft(m_module.DataFile, recovered, recoveredCount, m_module.locale(), unchecked);
    const CatalogueChanges changes = compareCatalogues(
        m_module.Catalogue(), m_module.AllProducts().Count(), recovered, recoveredCount);
    if (read.status == CatalogueReadResult::Status::Ok && changes.changed == 0 && changes.added == 0
        && changes.deleted == 0) {
        // The last run ended between its save and removing the file: nothing to restore.
        removeRecoveryFile(m_module.DataFile);
        m_recovery.start();
        return false;
    }
    QString question = recoveryQuestion(m_module.locale().toString(when, QLocale::ShortFormat),
        changes.changed, changes.added, changes.deleted);
    // A catalogue file written after the changes (a save the crash interrupted before it could
    // remove them, or another copy of Tarnwick or a program keeping the folder in step) holds
    // what they lack: counted as theirs, Yes would take it back, so No becomes the default.
    const QDateTime fileWritten = QFileInfo(m_module.DataFile).lastModified();
    int style = MsgStyle::YesNo | MsgStyle::Question;
    if (catalogueWrittenSince(m_module.DataFile, when)) {
        QString written = m_module.locale().toString(fileWritten, QLocale::ShortFormat);
        // A time still to come: the clock of the computer that saved it ran ahead, or this
        // one's is behind. A time before the changes: a program that keeps the folder in step
        // gave it the time it had on the other computer.
        if (fileWritten > QDateTime::currentDateTime().addSecs(300))
            written += QStringLiteral(", a time this computer's clock has not reached");
        else if (fileWritten <= when)
            written += QStringLiteral(" by the time it carries, earlier than the changes");
        question += changedSinceNote(written);
        style |= MsgStyle::DefaultButton2;
    }
    if (unchecked) {
        question += UncheckedNote;
        style |= MsgStyle::DefaultButton2;
    }
    const bool restore = read.status == CatalogueReadResult::Status::Ok
        && m_prompts.msgBox(question, style, ProgramTitle) == MsgResult::Yes;
    if (!restore) {
        const QString kept = keepRecoveryFile(m_module.DataFile, when);
        m_keptRecovery = kept;
        if (read.status != CatalogueReadResult::Status::Ok && !kept.isEmpty())
            m_prompts.msgBox(QStringLiteral("The changes left by the last session could not be "
                                            "read: %1. They are kept as \"%2\".")
                                 .arg(read.detail, kept),
                MsgStyle::Exclamation, ProgramTitle);
        m_recovery.start();
        return false;
    }
    replaceCatalogue(std::move(recovered), recoveredCount);
    return true;
}

void CatalogueLifecycle::replaceCatalogue(Table &&catalogue, qint32 count)
{
    m_module.Catalogue() = std::move(catalogue);
    m_module.AllProducts().setCount(count);
    ProductCommands::sortCatalogue(
        m_module.Catalogue(), m_module.AllProducts(), ProductRecord::PartNumber, m_module.locale());
    m_module.SortedByPart = true;
    m_recovery.start(true);
}

QString CatalogueLifecycle::nameInOtherCase(const QString &dataFile)
{
    // Also when the file is there but empty: a close after the offer was declined writes it so,
    // and the catalogue in other capital letters is still the user's.
    const QFileInfo wanted(dataFile);
    if (wanted.exists() && (!wanted.isFile() || wanted.size() > 0))
        return {};
    const QStringList names = wanted.dir().entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        if (name != wanted.fileName() && name.compare(wanted.fileName(), Qt::CaseInsensitive) == 0
            && QFileInfo(wanted.dir().filePath(name)).size() > 0)
            return wanted.dir().filePath(name);
    }
    return {};
}

QString CatalogueLifecycle::otherCaseQuestion(const QString &dataFile, const QString &found)
{
    if (QFileInfo::exists(dataFile))
        return QStringLiteral("The folder holds \"%1\", and \"%2\", the name Tarnwick keeps its "
                              "catalogue under, is empty (this computer tells capital letters "
                              "apart).\n\nRename \"%1\" to \"%2\" in its place and open it? No "
                              "starts with an empty catalogue and leaves the files as they are.")
            .arg(QFileInfo(found).fileName(), QFileInfo(dataFile).fileName());
    return QStringLiteral("The folder holds \"%1\", but no \"%2\", the name Tarnwick keeps its "
                          "catalogue under (this computer tells capital letters apart).\n\n"
                          "Rename \"%1\" to \"%2\" and open it? No starts with an empty "
                          "catalogue and leaves the file as it is.")
        .arg(QFileInfo(found).fileName(), QFileInfo(dataFile).fileName());
}

bool CatalogueLifecycle::offerNameInOtherCase()
{
    const QString found = nameInOtherCase(m_module.DataFile);
    if (found.isEmpty())
        return false;
    const int style = MsgStyle::YesNo | MsgStyle::Question;
    if (m_prompts.msgBox(otherCaseQuestion(m_module.DataFile, found), style, CatalogueTitle)
        != MsgResult::Yes)
        return false;
    // An empty file of the right name (a close after the offer was declined) gives way.
    if (QFileInfo::exists(m_module.DataFile) && QFileInfo(m_module.DataFile).size() == 0)
        QFile::remove(m_module.DataFile);
    if (!QFile::rename(found, m_module.DataFile)) {
        m_prompts.msgBox(
            QStringLiteral("\"%1\" could not be renamed to \"%2\". Tarnwick starts "
                           "with an empty catalogue; rename the file yourself, then "
                           "start Tarnwick again.")
                .arg(QDir::toNativeSeparators(found), QFileInfo(m_module.DataFile).fileName()),
            MsgStyle::Exclamation, CatalogueTitle);
        return false;
    }
    // Read as at any start: what it holds wrong is said, and it counts as saved.
    load();
    showLoadMessages();
    m_recovery.start();
    return true;
}

bool CatalogueLifecycle::offerBackup()
{
    // A missing catalogue file is no error (the first start has none), but a backup beside
    // it means there was a catalogue: deleted, renamed or moved away by mistake.
    const QString backup = catalogueBackupPath(m_module.DataFile);
    const QFileInfo file(backup);
    // An empty catalogue file hides the backup no better: a close after the offer was
    // declined writes one, and so may a sync tool.
    // So does one that could not be read (kept aside already): the backup is the way back.
    const QFileInfo data(m_module.DataFile);
    const bool empty = data.isFile() && data.size() == 0;
    // (A folder in the catalogue file's place is no such file: no save could write the backup
    // opened in its place, and the save says why.)
    if ((data.exists() && !empty && !m_readFailed) || data.isDir() || !file.isFile())
        return false;
    const QString state = m_readFailed ? QStringLiteral("could not be read")
        : empty                        ? QStringLiteral("is empty")
                                       : QStringLiteral("is missing");
    Table restored;
    qint32 count = 0;
    const CatalogueReadResult read = readCatalogueCopy(backup, restored, count, m_module.locale());
    if (read.status != CatalogueReadResult::Status::Ok) {
        // Nothing to open, but the user must know the catalogue is gone and where its
        // remains are; the backup stays as it is.
        m_prompts.msgBox(
            QStringLiteral("The catalogue file \"%1\" %2, and its backup \"%3\" cannot be "
                           "read completely: %4.\n\nTarnwick starts with an empty catalogue. "
                           "The backup is left as it is.")
                .arg(QDir::toNativeSeparators(m_module.DataFile), state,
                    QDir::toNativeSeparators(backup), read.detail),
            MsgStyle::Exclamation, CatalogueTitle);
        return false;
    }
    if (count < 1)
        return false;
    const QString question = backupQuestion(m_module.DataFile, backup,
        m_module.locale().toString(file.lastModified(), QLocale::ShortFormat), count, state);
    // A catalogue emptied on purpose and saved is empty too: there, Enter keeps it so.
    const int style = MsgStyle::YesNo | MsgStyle::Question | (empty ? MsgStyle::DefaultButton2 : 0);
    if (m_prompts.msgBox(question, style, CatalogueTitle) != MsgResult::Yes) {
        // The catalogue started anew makes backups of its own: the one declined keeps its
        // products under a name of its own, and is not offered again.
        m_keptBackup = keepBackupAside(m_module.DataFile);
        return false;
    }
    replaceCatalogue(std::move(restored), count);
    return true;
}

QString CatalogueLifecycle::backupQuestion(const QString &dataFile, const QString &backup,
    const QString &when, int products, const QString &state)
{
    return QStringLiteral("The catalogue file \"%1\" %2. Its backup \"%3\", saved %4, "
                          "holds %5 %6.\n\nOpen the backup? It is saved as the catalogue file "
                          "with your next save. No starts with an empty catalogue and keeps the "
                          "backup beside it under a name of its own.")
        .arg(QDir::toNativeSeparators(dataFile), state, QDir::toNativeSeparators(backup), when)
        .arg(products)
        .arg(products == 1 ? QStringLiteral("product") : QStringLiteral("products"));
}

QString CatalogueLifecycle::unreadMessage(
    const QString &dataFile, const CatalogueReadResult &result, const QString &keptCopy)
{
    const QString kept = keptCopy.isEmpty()
        ? QStringLiteral("The file itself is kept: before Tarnwick saves the catalogue, it is "
                         "copied to a file of its own in the same folder.")
        : QStringLiteral("The file itself has been kept as \"%1\".")
              .arg(QDir::toNativeSeparators(keptCopy));
    // The file could not be got at (a disk that failed, rights taken away): it may well be read
    // at the next start.
    const QString again = result.errorNumber == ErrorNumber::DeviceIOError
        ? QStringLiteral(" Closed without changes, Tarnwick leaves the file as it is and tries "
                         "to read it again at the next start.")
        : QString();
    return QStringLiteral("The catalogue file \"%1\" could not be read completely: %2 "
                          "(error %3).\n\nTarnwick starts without the products of that file. ")
               .arg(QDir::toNativeSeparators(dataFile), result.detail)
               .arg(result.errorNumber)
        + kept + again;
}

QString CatalogueLifecycle::saveFailedMessage(const QString &dataFile, const QString &detail)
{
    // A copy saved under a new name has no file on disk to speak of.
    const QString left = QFileInfo::exists(dataFile)
        ? QStringLiteral("The file on disk has not been changed.")
        : QStringLiteral("No file has been written.");
    return QStringLiteral("The catalogue could not be saved to \"%1\": %2.\n\n%3")
        .arg(QDir::toNativeSeparators(dataFile), detail, left);
}

QString CatalogueLifecycle::unreadNumbersMessage(
    const QList<CatalogueReadResult::UnreadNumber> &numbers)
{
    // Most often typed so: the words blame neither the file nor the user.
    QString text = QStringLiteral("Some prices or price points in the catalogue are not numbers "
                                  "(typed so, or written so by another program), and a quote "
                                  "charges nothing for them. They are kept as they are; please "
                                  "correct them:\n");
    // A box stays readable: the first ones are listed, the rest counted.
    constexpr qsizetype Listed = 20;
    for (qsizetype i = 0; i < std::min(numbers.size(), Listed); ++i) {
        const CatalogueReadResult::UnreadNumber &number = numbers[i];
        text += QStringLiteral("\nProduct \"%1\", %2: \"%3\"")
                    .arg(number.partNumber, ProductRecord::fieldCaption(number.field), number.text);
    }
    if (numbers.size() > Listed)
        text += QStringLiteral("\n\u2026 and %1 more.").arg(numbers.size() - Listed);
    return text;
}

namespace {

const QString ChangedOutside =
    QStringLiteral("The catalogue file \"%1\" has been changed outside Tarnwick since Tarnwick "
                   "read or last saved it (by another copy of Tarnwick, or by a program that "
                   "keeps this folder in step with another computer).");

} // namespace

QString CatalogueLifecycle::changedCopyMessage(const QString &dataFile, const QString &copyPath)
{
    return ChangedOutside.arg(QDir::toNativeSeparators(dataFile))
        + QStringLiteral(" Your catalogue has been saved in its place; the version found there "
                         "is kept as \"%1\".")
              .arg(QDir::toNativeSeparators(copyPath));
}

QString CatalogueLifecycle::unreadFileLeftMessage(const QString &dataFile)
{
    return QStringLiteral("Nothing has been changed since Tarnwick started without the products "
                          "of \"%1\", so the file is left as it is: Tarnwick tries to read it "
                          "again at the next start.")
        .arg(QDir::toNativeSeparators(dataFile));
}

QString CatalogueLifecycle::changedFileLeftMessage(const QString &dataFile)
{
    return ChangedOutside.arg(QDir::toNativeSeparators(dataFile))
        + QStringLiteral(" Nothing has been changed here, so it is left as it is: close "
                         "Tarnwick and start it again to work with that version.");
}

QString CatalogueLifecycle::keptCopyMessage(const QString &copyPath)
{
    return QStringLiteral("The catalogue file that could not be read at start-up has been kept "
                          "as \"%1\".")
        .arg(QDir::toNativeSeparators(copyPath));
}

} // namespace tarnwick
