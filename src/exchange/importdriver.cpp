#include "exchange/importdriver.h"

#include "exchange/importchanges.h"
#include "exchange/workbook.h"

#include <QElapsedTimer>
#include <QPointer>

namespace tarnwick {

ImportDriver::ImportDriver(
    const Table &catalogue, const QLocale &locale, Applier applier, QObject *parent)
    : QObject(parent), m_catalogue(catalogue), m_locale(locale), m_applier(std::move(applier))
{
    // One millisecond between two batches, not zero: other timers (the caption's) and the
    // window system's events get their turn after every batch.
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, [this] { runBatch(m_batchTime); });
}

ImportDriver::~ImportDriver() = default;

void ImportDriver::start(
    std::shared_ptr<const IWorkbook> workbook, const QString &letters, bool firstRowHasHeaders)
{
    if (isRunning())
        return;
    m_forPreview = false;
    begin(std::move(workbook), letters, firstRowHasHeaders, ImportAction::AddNew);
}

void ImportDriver::startPlan(std::shared_ptr<const IWorkbook> workbook, const QString &letters,
    bool firstRowHasHeaders, ImportAction action)
{
    if (isRunning())
        return;
    m_forPreview = true;
    begin(std::move(workbook), letters, firstRowHasHeaders, action);
}

void ImportDriver::begin(std::shared_ptr<const IWorkbook> workbook, const QString &letters,
    bool firstRowHasHeaders, ImportAction action)
{
    m_failureReported = false;
    m_skippedExisting = 0;
    m_unreadFrom = 0;
    m_plan = ImportPlan {};
    m_plan.action = action;
    m_workbook = std::move(workbook);
    if (!m_workbook) {
        reportFailure();
        if (m_forPreview) {
            Q_EMIT planned();
        } else {
            Q_EMIT finished(0);
        }
        return;
    }
    m_planner = std::make_unique<ImportPlanner>(
        *m_workbook, m_catalogue, letters, firstRowHasHeaders, action, m_locale);
    m_timer.start();
}

int ImportDriver::currentRow() const
{
    return m_planner ? m_planner->currentRow() : m_lastRow;
}

void ImportDriver::stop()
{
    if (!isRunning())
        return;
    if (!m_forPreview) {
        finish();
        return;
    }
    m_timer.stop();
    m_lastRow = m_planner->currentRow();
    m_planner.reset();
    m_workbook.reset();
}

void ImportDriver::runBatch(std::chrono::milliseconds budget)
{
    // A message box about failed rows runs its own event loop; no batch starts inside it.
    if (!m_planner || m_inBatch)
        return;
    m_inBatch = true;
    QElapsedTimer clock;
    clock.start();
    bool more = true;
    do {
        more = m_planner->step();
    } while (more && clock.elapsed() < budget.count());
    const bool failed = m_planner->plan().firstError.has_value();
    m_inBatch = false;
    if (failed && !m_failureReported) {
        m_timer.stop();
        const QPointer<ImportDriver> alive(this);
        reportFailure();
        // The user may have closed the window while the message was up.
        if (!alive || !m_planner)
            return;
        m_timer.start();
    }
    if (!more)
        finish();
}

void ImportDriver::reportFailure()
{
    m_failureReported = true;
    Q_EMIT rowsFailed();
}

void ImportDriver::apply(ImportPlan plan)
{
    ProductChanges changes = importChanges(std::move(plan), m_catalogue);
    if (m_applier)
        m_applier(std::move(changes));
}

void ImportDriver::finish()
{
    m_timer.stop();
    m_lastRow = m_planner->currentRow();
    ImportPlan plan = m_planner->takePlan();
    m_planner.reset();
    m_workbook.reset();
    if (m_forPreview) {
        m_plan = std::move(plan);
        Q_EMIT planned();
        return;
    }
    m_skippedExisting = plan.skippedCount(SkipReason::PartNumberExists);
    m_unreadFrom = plan.endedAfterUnreadableRows ? plan.rowsLeftBelow : 0;
    const int added = plan.addedCount();
    apply(std::move(plan));
    Q_EMIT finished(added);
}

} // namespace tarnwick
