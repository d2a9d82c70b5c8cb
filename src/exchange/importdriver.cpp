#include "exchange/importdriver.h"

#include "catalogue/productchanges.h"
#include "catalogue/productrecord.h"
#include "exchange/workbook.h"
#include "exchange/workbookimport.h"

#include <QElapsedTimer>
#include <QPointer>

namespace tarnwick {

ImportDriver::ImportDriver(
    Table &catalogue, Products &products, const QLocale &locale, QObject *parent)
    : QObject(parent), m_catalogue(catalogue), m_products(products), m_locale(locale)
{
    // One millisecond between two batches, not zero: other timers (the caption's) and the
    // window system's events get their turn after every batch.
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, [this] { runBatch(m_batchTime); });
}

ImportDriver::~ImportDriver() = default;

void ImportDriver::start(
    std::unique_ptr<IWorkbook> workbook, const QString &letters, bool firstRowHasHeaders)
{
    if (isRunning()) {
        return;
    }
    m_failureReported = false;
    m_workbook = std::move(workbook);
    if (!m_workbook) {
        reportFailure();
        Q_EMIT finished(0);
        return;
    }
    m_added.redim(0, ProductRecord::FieldCount);
    m_import = std::make_unique<WorkbookImport>(
        *m_workbook, m_catalogue, m_added, letters, firstRowHasHeaders, m_locale);
    m_timer.start();
}

int ImportDriver::currentRow() const
{
    return m_import ? m_import->currentRow() : m_lastRow;
}

void ImportDriver::stop()
{
    if (isRunning()) {
        finish();
    }
}

void ImportDriver::runBatch(std::chrono::milliseconds budget)
{
    // A message box about failed rows runs its own event loop; no batch starts inside it.
    if (!m_import || m_inBatch) {
        return;
    }
    m_inBatch = true;
    QElapsedTimer clock;
    clock.start();
    bool more = true;
    do {
        more = m_import->step();
    } while (more && clock.elapsed() < budget.count());
    const bool failed = m_import->firstError().has_value();
    m_inBatch = false;
    if (failed && !m_failureReported) {
        m_timer.stop();
        const QPointer<ImportDriver> alive(this);
        reportFailure();
        // The user may have closed the window while the message was up.
        if (!alive || !m_import) {
            return;
        }
        m_timer.start();
    }
    if (!more) {
        finish();
    }
}

void ImportDriver::reportFailure()
{
    m_failureReported = true;
    Q_EMIT rowsFailed();
}

void ImportDriver::finish()
{
    m_timer.stop();
    const int changes = m_import->changes();
    m_lastRow = m_import->currentRow();
    m_import.reset();
    m_workbook.reset();
    ProductChanges found;
    found.added = std::move(m_added);
    m_added = Table();
    if (m_apply) {
        m_apply(std::move(found));
    } else {
        m_catalogue.insertTable(m_catalogue.rowCount() + 1, std::move(found.added));
        finishImport(m_catalogue, m_products, changes, m_locale);
    }
    Q_EMIT finished(changes);
}

} // namespace tarnwick
