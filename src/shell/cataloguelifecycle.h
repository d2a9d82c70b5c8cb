#pragma once

#include "catalogue/cataloguefile.h"
#include "catalogue/cataloguerecovery.h"

#include <QString>
#include <QStringList>

class QWidget;

namespace tarnwick {

class CatalogueWork;
class IPrompts;
class Module1;

/// Loads the catalogue at start-up and writes it back at shut-down, and tells the user when
/// either goes wrong. A catalogue file that could not be read completely is kept under a
/// name of its own as soon as the start finds it so (at the latest before a save replaces it),
/// so nothing in it is lost.
class CatalogueLifecycle
{
public:
    static constexpr int InitialRows = 1000;

    CatalogueLifecycle(Module1 &module, IPrompts &prompts);

    /// Sizes the catalogue to 1000 rows, reads the file, cuts the table to Count rows and sorts
    /// it on the part number. A file that exists but could not be read completely, and stored
    /// numbers that could not be read, are kept for showLoadMessages().
    /// A file of at least backgroundReadBytes() is read and sorted on a worker thread while
    /// this thread keeps handling its events (the splash keeps ticking and painting); nothing
    /// else touches the catalogue until load() returns. The "test" command line always reads
    /// here, as its boxes must.
    CatalogueReadResult load();
    /// Shows, once, what load() found wrong with the file. The start calls it after the
    /// password: the messages quote the catalogue's products.
    void showLoadMessages();

    /// Files of this size or more are read on a worker thread (4 MB, about 10,000 products).
    qint64 backgroundReadBytes() const { return m_backgroundReadBytes; }
    void setBackgroundReadBytes(qint64 bytes) { m_backgroundReadBytes = bytes; }

    /// Writes the catalogue back, first keeping an unread catalogue file as a copy. When the
    /// result is not ok the file on disk is unchanged; the caller tells the user.
    CatalogueWriteResult save();

    /// Shut-down: saves, and when the save fails asks whether to close all the same. Returns
    /// true when the program may close (saved, or the user accepted closing without the save:
    /// the changes then stay in the recovery file, offered at the next start).
    bool saveBeforeClose();

    /// File → Save: saves at once and reports a failure. True when saved.
    bool saveNow();
    /// File → Save As: writes a copy of the catalogue to path without changing which file
    /// the program uses. A failure is reported; true when written.
    bool saveCopy(const QString &path);

    /// Makes the long work on the catalogue of window (see CatalogueWork); saves of a large
    /// catalogue run through it, so the window keeps answering meanwhile.
    CatalogueWork *attachWork(QWidget *window);
    CatalogueWork *work() const { return m_work; }

    /// Keeps the changes not yet saved in the recovery file; started once the catalogue is
    /// loaded (and after offerRecovery()).
    CatalogueRecovery &recovery() { return m_recovery; }

    /// Start-up, before the main window shows: when the last run left changes in the recovery
    /// file, asks whether to restore them. Yes puts the recovered catalogue in place (marked
    /// unsaved) and returns true; No keeps the file under a name of its own
    /// ("twdata-recovered-<date>-<time>.dat"). Without a recovery file, when the catalogue
    /// file is missing but its backup "twdata.bak" is there, offers to open the backup the same
    /// way. Starts the recovery watch either way.
    bool offerRecovery();
    /// Where offerRecovery() kept the changes the user did not restore; empty otherwise.
    QString keptRecoveryFile() const { return m_keptRecovery; }
    /// Where the backup declined at the start was moved; empty when none was.
    QString keptBackupFile() const { return m_keptBackup; }

    /// The question asked at start when the recovery file holds changes.
    static QString recoveryQuestion(const QString &when, int changed, int added, int deleted);
    /// What the recovery question adds when the catalogue file was written after the changes
    /// it offers (at written), and No is then the default.
    static QString changedSinceNote(const QString &written);
    /// Added to the question when the file does not end as this version ends it.
    static inline const QString UncheckedNote = QStringLiteral(
        "\n\nThe file does not end as this version of Tarnwick ends it: an earlier version "
        "wrote it, or it was cut short, which would count the products after the cut as "
        "deleted. No keeps the catalogue file as it is and these changes in a file of their "
        "own.");

    /// The file in dataFile's folder whose name is dataFile's in other capital letters; empty
    /// when there is none (or the file itself is there).
    static QString nameInOtherCase(const QString &dataFile);
    /// The question asked at start when the catalogue file is missing and such a file is there.
    static QString otherCaseQuestion(const QString &dataFile, const QString &found);

    /// The question asked at start when the catalogue file is missing, empty or could not be
    /// read (state: "is missing", "is empty", "could not be read") and its backup is there.
    static QString backupQuestion(const QString &dataFile, const QString &backup,
        const QString &when, int products, const QString &state);

    /// The message shown when the catalogue file could not be read completely; keptCopy is
    /// where it has been kept, empty when it could not be kept yet (the save tries again).
    static QString unreadMessage(const QString &dataFile, const CatalogueReadResult &result,
        const QString &keptCopy = QString());
    /// The message shown when the catalogue could not be saved.
    static QString saveFailedMessage(const QString &dataFile, const QString &detail);
    static QString keptCopyMessage(const QString &copyPath);
    /// The catalogue file had been changed outside Tarnwick; the save kept that version as
    /// copyPath before it wrote this one.
    static QString changedCopyMessage(const QString &dataFile, const QString &copyPath);
    /// The catalogue file has been changed outside Tarnwick and nothing here has: Save leaves
    /// it as it is.
    static QString changedFileLeftMessage(const QString &dataFile);
    /// The catalogue file could not be got at when Tarnwick started and nothing has changed
    /// since: Save leaves it for the next start.
    static QString unreadFileLeftMessage(const QString &dataFile);
    /// The message listing stored numbers that could not be read: product and field of each.
    static QString unreadNumbersMessage(const QList<CatalogueReadResult::UnreadNumber> &numbers);

private:
    /// ReadProds, cut to Count, sort on the part number.
    CatalogueReadResult readAndSort();
    bool readsInBackground() const;
    /// Puts a catalogue read from a copy (the recovery file, the backup) in place of the one
    /// loaded, in part-number order, as changes not saved yet.
    void replaceCatalogue(Table &&catalogue, qint32 count);
    /// Whether a save leaves the catalogue file as it is: it could not be got at when Tarnwick
    /// started (error 57) and nothing has changed since.
    bool leavesUnreadFile();
    /// The backup of a missing catalogue file, when the user wants it; false otherwise.
    bool offerBackup();
    /// A missing catalogue file whose name is there in other capital letters ("TWDATA.DAT",
    /// copied from a stick or an old tool): renamed and read when the user wants it.
    bool offerNameInOtherCase();

    Module1 &m_module;
    IPrompts &m_prompts;
    /// Tells the user that a save (the catalogue or a copy) failed.
    void reportSaveFailure(const QString &path, const QString &detail);
    /// Says where a save kept the version of the catalogue file it found changed.
    void reportChangedCopy(const CatalogueWriteResult &saved);

    CatalogueRecovery m_recovery;
    CatalogueWork *m_work = nullptr;
    bool m_readFailed = false;
    QStringList m_loadMessages; ///< what load() found, for showLoadMessages()
    bool m_unreadFileKept = false;
    CatalogueReadResult m_unreadResult; ///< the failed read, until showLoadMessages says it
    bool m_unreadPending = false;
    QString m_keptRecovery;
    QString m_keptBackup;
    qint64 m_backgroundReadBytes = 4 * 1024 * 1024;
};

} // namespace tarnwick
