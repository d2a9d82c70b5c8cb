#pragma once

#include "catalogue/productchanges.h"
#include "exchange/importplan.h"

#include <QLocale>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

namespace tarnwick {

class IWorkbook;
class Table;

/// Runs a workbook import while the event loop keeps going: every pass of the loop plans rows
/// for about BatchTime, so the import window stays responsive, its caption can change and it
/// can be closed, and nothing is repainted per row. The catalogue is only read while rows are
/// planned; what an import does to it is handed to the owner's Applier at once, which makes it
/// one step of the history of changes (the new products added, the changed fields written,
/// Count and the sort on the part number, as at start-up).
///
/// start() adds new products: when the sheet is done, or stopped after the row in hand, the
/// products planned so far are applied. startPlan() only plans, for the preview: planned()
/// hands the plan over and the window applies it later through apply(); stopping it drops the
/// plan.
class ImportDriver : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds BatchTime { 50 };
    /// Puts what an import comes to into the catalogue (CatalogueEdits::import in the program).
    using Applier = std::function<void(ProductChanges changes)>;

    ImportDriver(
        const Table &catalogue, const QLocale &locale, Applier applier, QObject *parent = nullptr);
    ~ImportDriver() override;

    /// Starts adding the new rows of a workbook that was read. No workbook (nullptr) is reported
    /// as failed rows and finishes the import at once, with nothing added.
    void start(
        std::shared_ptr<const IWorkbook> workbook, const QString &letters, bool firstRowHasHeaders);
    /// Starts planning an import of a workbook that was read, without changing the catalogue.
    /// No workbook is reported as failed rows and gives an empty plan at once.
    void startPlan(std::shared_ptr<const IWorkbook> workbook, const QString &letters,
        bool firstRowHasHeaders, ImportAction action);

    bool isRunning() const { return m_planner != nullptr; }
    /// The worksheet row the import reads next (the progress caption shows it).
    int currentRow() const;
    /// Stops after the row in hand: an import that adds adds what it planned so far; a plan
    /// for the preview is dropped.
    void stop();
    /// Handles rows for at most budget (always at least one), then finishes when the sheet is
    /// done.
    void runBatch(std::chrono::milliseconds budget);
    /// The time each pass of the event loop spends on rows (BatchTime unless changed; 0 handles
    /// one row per pass).
    void setBatchTime(std::chrono::milliseconds time) { m_batchTime = time; }

    /// After planned(): the plan (once).
    ImportPlan takePlan() { return std::move(m_plan); }
    /// Carries out a plan: hands its changes (importChanges) to the applier.
    void apply(ImportPlan plan);
    /// The rows the last import that added skipped because their part number already existed.
    int skippedExisting() const { return m_skippedExisting; }
    /// The row from which on the last import that added read nothing, as it ended after
    /// ImportPlanner::MaxUnreadableRows unreadable rows in a row; 0 when it did not end so.
    int unreadFrom() const { return m_unreadFrom; }

Q_SIGNALS:
    /// A row could not be read completely; sent once per import. The rest is still handled.
    void rowsFailed();
    /// An import that adds is over; changes products were added.
    void finished(int changes);
    /// A plan for the preview is complete: see takePlan().
    void planned();

private:
    void begin(std::shared_ptr<const IWorkbook> workbook, const QString &letters,
        bool firstRowHasHeaders, ImportAction action);
    void reportFailure();
    void finish();

    const Table &m_catalogue;
    QLocale m_locale;
    Applier m_applier;
    QTimer m_timer;
    std::shared_ptr<const IWorkbook> m_workbook;
    std::unique_ptr<ImportPlanner> m_planner;
    ImportPlan m_plan;
    std::chrono::milliseconds m_batchTime = BatchTime;
    int m_lastRow = 0;
    int m_skippedExisting = 0;
    int m_unreadFrom = 0;
    bool m_forPreview = false;
    bool m_failureReported = false;
    bool m_inBatch = false;
};

} // namespace tarnwick
