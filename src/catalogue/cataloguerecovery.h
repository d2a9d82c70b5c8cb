#pragma once

#include "catalogue/cataloguefile.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

class QThread;

namespace tarnwick {

class Module1;
class Table;

/// Keeps the changes not yet saved on disk, so a crash, a kill or a power cut loses nothing
/// but the last moment's typing. A few times a second it compares the catalogue's
/// generation with the one last saved; a catalogue that differs from what the recovery file
/// holds is copied (a cheap snapshot: the texts are shared) and written to the recovery file
/// on a worker thread, through the same safe writing as a save, so the file on disk is always
/// whole and the user-interface thread never waits for the disk.
///
/// Edits the catalogue has not taken yet (the side boxes of a product being edited) are asked
/// for through pendingRow and count as changes too: each snapshot holds them as a close would
/// store them. With the history of changes attached (setSavedState), a catalogue whose changes
/// were all undone counts as saved again, and the recovery file goes.
class CatalogueRecovery : public QObject
{
    Q_OBJECT

public:
    explicit CatalogueRecovery(Module1 &module, QObject *parent = nullptr);
    ~CatalogueRecovery() override;

    /// Starts watching. The catalogue as it is now is what is saved, unless unsaved says it
    /// was recovered from a run that did not end cleanly: then it counts as changed until a
    /// save.
    void start(bool unsaved = false);
    /// Stops watching and waits for a write in flight (a close; the file is removed by saved()).
    void stop();
    /// Stops looking at the catalogue while another thread works on it, and goes on after.
    void suspend();
    void resume();

    /// Fills row 1 of a table of one row and fifteen fields with the product being edited as
    /// storing its pending edits would leave it, and returns its catalogue row; 0 when no
    /// product is being edited.
    using PendingRow = std::function<int(Table &row)>;
    void setPendingRow(PendingRow pendingRow) { m_pendingRow = std::move(pendingRow); }

    /// Whether the catalogue (with its pending edits) differs from what was last saved.
    bool isModified() const { return m_modified; }

    /// How the history of changes tells whether the catalogue is at its saved state, and
    /// learns of a save. Without it a catalogue changed since the save counts as unsaved, even
    /// when the changes were taken back.
    struct SavedState
    {
        std::function<bool()> isSaved;
        std::function<void()> markSaved;
    };
    void setSavedState(SavedState state) { m_savedCheck = std::move(state); }
    /// Looks at the catalogue now instead of at the next tick (after an undo or a redo).
    void checkNow();

    /// A save succeeded: what the catalogue holds now is saved, and the recovery file goes.
    void saved();

    /// Writes the recovery file now, on this thread, when there are unsaved changes (the
    /// session ends, a test). Returns whether the file holds every change.
    bool writeNow();

    /// How often the catalogue is looked at, and the least time between two writes.
    void setIntervals(int checkMilliseconds, int writeMilliseconds);

    QString path() const;
    /// The last failure to write the recovery file, in plain words; empty after a success.
    QString lastError() const { return m_lastError; }

Q_SIGNALS:
    /// The window's "changed" mark follows this.
    void modifiedChanged(bool modified);
    /// A recovery file was written with the changes up to the given state (tests wait for it).
    void written();
    /// The catalogue was looked at (tests count these instead of waiting for a time).
    void checked();
    /// The recovery file could not be written; detail in plain words.
    void writeFailed(const QString &detail);
    /// After writeFailed(): the recovery file was written again, the changes are safe.
    void writeRecovered();

private:
    struct State
    {
        quint64 generation = 0;
        size_t pendingEdit = 0; ///< a digest of the pending edit; 0 for none
        bool operator==(const State &) const = default;
    };
    State currentState() const;
    /// Whether the catalogue in state now differs from the saved one.
    bool differsFromSaved(const State &now) const;
    void check();
    void lookAtCatalogue();
    /// The pending edit's row and its cells; row 0 when nothing differs from the catalogue.
    int pendingRow(Table &row) const;
    std::unique_ptr<Table> snapshot() const;
    /// True (and said once through writeFailed) when the catalogue file has gone from its
    /// folder with its backup: nothing is written there.
    bool folderIsGone();
    void startWrite();
    void writeFinished();
    void waitForWrite();
    void setModified(bool modified);

    Module1 &m_module;
    QTimer m_timer;
    int m_writeInterval = 1000;
    QElapsedTimer m_sinceWrite;
    PendingRow m_pendingRow;
    SavedState m_savedCheck;
    State m_savedState;
    State m_writtenState; ///< what the recovery file holds (or, with none, the saved state)
    State m_writingState; ///< what the write in flight will hold
    bool m_forcedUnsaved = false;
    /// The catalogue as restored from the recovery file at the start, while that file (left by
    /// the last run) still holds it; none once this run has written the file or saved.
    std::optional<State> m_restoredState;
    bool m_resumeWatching = false; ///< the watch was on when it was suspended
    bool m_modified = false;
    bool m_fileExists = false;
    QString m_lastError;
    std::unique_ptr<QThread> m_worker;
    std::unique_ptr<Table> m_writing;
    CatalogueWriteResult m_writeResult;
};

} // namespace tarnwick
