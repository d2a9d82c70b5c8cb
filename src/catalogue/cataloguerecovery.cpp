#include "catalogue/cataloguerecovery.h"

#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/recoveryfile.h"
#include "catalogue/table.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QThread>

namespace tarnwick {

CatalogueRecovery::CatalogueRecovery(Module1 &module, QObject *parent)
    : QObject(parent), m_module(module)
{
    m_timer.setInterval(250);
    connect(&m_timer, &QTimer::timeout, this, &CatalogueRecovery::check);
}

CatalogueRecovery::~CatalogueRecovery()
{
    waitForWrite();
}

void CatalogueRecovery::suspend()
{
    m_resumeWatching = m_timer.isActive();
    m_timer.stop();
}

void CatalogueRecovery::resume()
{
    if (m_resumeWatching)
        m_timer.start();
    m_resumeWatching = false;
}

QString CatalogueRecovery::path() const
{
    return recoveryFilePath(m_module.DataFile);
}

void CatalogueRecovery::setIntervals(int checkMilliseconds, int writeMilliseconds)
{
    m_timer.setInterval(checkMilliseconds);
    m_writeInterval = writeMilliseconds;
}

void CatalogueRecovery::start(bool unsaved)
{
    m_savedState = currentState();
    // Recovered changes are written again at once: the file then holds them as this run
    // keeps them (sorted, in this run's form).
    m_writtenState = unsaved ? State { 0, 0 } : m_savedState;
    m_forcedUnsaved = unsaved;
    m_fileExists = QFileInfo::exists(path());
    m_restoredState = unsaved && m_fileExists ? std::optional<State>(m_savedState) : std::nullopt;
    setModified(unsaved);
    m_sinceWrite.invalidate();
    m_timer.start();
}

void CatalogueRecovery::stop()
{
    m_timer.stop();
    waitForWrite();
}

int CatalogueRecovery::pendingRow(Table &row) const
{
    if (!m_pendingRow)
        return 0;
    row.redim(1, ProductRecord::FieldCount);
    const int at = m_pendingRow(row);
    const Table &catalogue = m_module.Catalogue();
    if (at < 1 || at > catalogue.rowCount() || catalogue.fieldCount() != row.fieldCount())
        return 0;
    for (int field = 1; field <= ProductRecord::FieldCount; ++field) {
        if (!(row.get(1, field) == catalogue.get(at, field)))
            return at;
    }
    return 0;
}

CatalogueRecovery::State CatalogueRecovery::currentState() const
{
    State state { m_module.Catalogue().generation(), 0 };
    Table row;
    const int at = pendingRow(row);
    if (at > 0) {
        size_t digest = qHash(at);
        for (int field = 1; field <= ProductRecord::FieldCount; ++field) {
            const Cell &cell = row.get(1, field);
            digest = qHashMulti(digest, int(cell.kind()), cell.asText(), cell.asNumber());
        }
        state.pendingEdit = digest == 0 ? 1 : digest;
    }
    return state;
}

void CatalogueRecovery::setModified(bool modified)
{
    if (m_modified == modified)
        return;
    m_modified = modified;
    Q_EMIT modifiedChanged(modified);
}

void CatalogueRecovery::check()
{
    lookAtCatalogue();
    Q_EMIT checked();
}

bool CatalogueRecovery::differsFromSaved(const State &now) const
{
    if (m_forcedUnsaved)
        return true;
    if (!m_savedCheck.isSaved)
        return !(now == m_savedState);
    return now.pendingEdit != 0 || !m_savedCheck.isSaved();
}

void CatalogueRecovery::checkNow()
{
    if (m_timer.isActive())
        check();
}

void CatalogueRecovery::lookAtCatalogue()
{
    const State now = currentState();
    const bool modified = differsFromSaved(now);
    setModified(modified);
    if (m_worker || now == m_writtenState)
        return;
    if (!modified) {
        // Back at the saved catalogue (every change undone): nothing needs keeping.
        if (m_fileExists && removeRecoveryFile(m_module.DataFile))
            m_fileExists = false;
        if (!m_fileExists)
            m_writtenState = now;
        return;
    }
    // Changes are written at most once per write interval: a burst of typing costs one write.
    if (m_sinceWrite.isValid() && m_sinceWrite.elapsed() < m_writeInterval)
        return;
    startWrite();
}

std::unique_ptr<Table> CatalogueRecovery::snapshot() const
{
    auto copy = std::make_unique<Table>(m_module.Catalogue());
    Table row;
    if (const int at = pendingRow(row); at > 0) {
        for (int field = 1; field <= ProductRecord::FieldCount; ++field)
            copy->put(at, field, row.get(1, field));
    }
    return copy;
}

bool CatalogueRecovery::folderIsGone()
{
    // The recovery file lives beside the catalogue file: where that has gone with its backup
    // (a drive taken away), the folder left is not the catalogue's, and changes kept there
    // would be offered to a later run on the wrong folder, or hidden under the drive.
    const QString gone = m_module.AllProducts().fileGoneProblem(m_module.DataFile);
    if (gone.isEmpty())
        return false;
    if (m_lastError != gone) {
        m_lastError = gone;
        Q_EMIT writeFailed(m_lastError);
    }
    return true;
}

void CatalogueRecovery::startWrite()
{
    if (folderIsGone()) {
        m_sinceWrite.start();
        return;
    }
    m_writingState = currentState();
    m_writing = snapshot();
    m_sinceWrite.start();
    const qint32 count = m_module.AllProducts().Count();
    const QLocale locale = m_module.locale();
    const Table *table = m_writing.get();
    const QString dataFile = m_module.DataFile;
    const RecoveryBase base { m_module.AllProducts().fileStampKnown() };
    m_worker.reset(QThread::create([this, table, count, locale, dataFile, base] {
        m_writeResult = keepChanges(dataFile, *table, count, locale, base);
    }));
    connect(m_worker.get(), &QThread::finished, this, &CatalogueRecovery::writeFinished,
        Qt::QueuedConnection);
    m_worker->start(QThread::LowPriority);
}

void CatalogueRecovery::writeFinished()
{
    if (!m_worker)
        return;
    m_worker->wait();
    m_worker.reset();
    m_writing.reset();
    if (m_writeResult.ok) {
        m_writtenState = m_writingState;
        m_restoredState.reset();
        m_fileExists = true;
        const bool failedBefore = !m_lastError.isEmpty();
        m_lastError.clear();
        Q_EMIT written();
        if (failedBefore)
            Q_EMIT writeRecovered();
    } else if (m_lastError != m_writeResult.detail) {
        m_lastError = m_writeResult.detail;
        Q_EMIT writeFailed(m_lastError);
    }
}

void CatalogueRecovery::waitForWrite()
{
    if (m_worker)
        writeFinished();
}

bool CatalogueRecovery::writeNow()
{
    waitForWrite();
    const State now = currentState();
    if (m_savedCheck.isSaved && !differsFromSaved(now)) {
        // Every change was taken back: there is nothing to keep.
        if (m_fileExists && removeRecoveryFile(m_module.DataFile))
            m_fileExists = false;
        m_writtenState = now;
        return !m_fileExists;
    }
    if (now == m_writtenState && (m_fileExists || !m_modified))
        return true;
    if (folderIsGone())
        return false;
    const std::unique_ptr<Table> copy = snapshot();
    const CatalogueWriteResult result =
        keepChanges(m_module.DataFile, *copy, m_module.AllProducts().Count(), m_module.locale(),
            RecoveryBase { m_module.AllProducts().fileStampKnown() });
    if (!result.ok) {
        m_lastError = result.detail;
        // Restored changes not written again in this run's form (a full disk) are still in
        // the file the last run left, which a failed write leaves as it was.
        return m_restoredState && now == *m_restoredState && QFileInfo::exists(path());
    }
    m_restoredState.reset();
    m_writtenState = now;
    m_fileExists = true;
    if (!m_lastError.isEmpty()) {
        m_lastError.clear();
        Q_EMIT writeRecovered();
    }
    return true;
}

void CatalogueRecovery::saved()
{
    waitForWrite();
    // The pending edits were stored into the catalogue before the save.
    m_savedState = currentState();
    m_writtenState = m_savedState;
    m_forcedUnsaved = false;
    m_restoredState.reset();
    removeRecoveryFile(m_module.DataFile);
    m_fileExists = false;
    // Saved changes need no keeping: a later failure to keep new ones is news again.
    m_lastError.clear();
    if (m_savedCheck.markSaved)
        m_savedCheck.markSaved();
    setModified(false);
}

} // namespace tarnwick
