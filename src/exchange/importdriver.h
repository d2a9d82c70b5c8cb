#pragma once

#include "exchange/importapply.h"
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
class Products;
class Table;

/// Runs a workbook import while the event loop keeps going: every pass of the loop plans rows
/// for about BatchTime, so the import window stays responsive, its caption can change and it
/// can be closed, and nothing is repainted per row.
///
/// start() adds new products: when the sheet is done, or stopped after the row in hand, the
/// products planned so far are added in one step (apply()), counted into Count and the catalogue
/// is sorted on the part number, as at start-up. startPlan() only plans, for the preview: the
/// catalogue does not change, planned() hands the plan over and the window applies it later
/// through apply(); stopping it drops the plan.
class ImportDriver : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds BatchTime { 50 };
    /// Carries out a plan: applyImportPlan() unless replaced (for example by a command that can
    /// be undone).
    using Applier = std::function<AppliedImport(const ImportPlan &)>;

    ImportDriver(
        Table &catalogue, Products &products, const QLocale &locale, QObject *parent = nullptr);
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
    /// Carries out a plan with the applier and keeps what it did.
    AppliedImport apply(const ImportPlan &plan);
    void setApplier(Applier applier) { m_applier = std::move(applier); }
    /// What the last apply() did.
    const AppliedImport &lastApplied() const { return m_lastApplied; }
    /// The rows the last import that added skipped because their part number already existed.
    int skippedExisting() const { return m_skippedExisting; }

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

    Table &m_catalogue;
    Products &m_products;
    QLocale m_locale;
    QTimer m_timer;
    std::shared_ptr<const IWorkbook> m_workbook;
    std::unique_ptr<ImportPlanner> m_planner;
    ImportPlan m_plan;
    Applier m_applier;
    AppliedImport m_lastApplied;
    std::chrono::milliseconds m_batchTime = BatchTime;
    int m_lastRow = 0;
    int m_skippedExisting = 0;
    bool m_forPreview = false;
    bool m_failureReported = false;
    bool m_inBatch = false;
};

} // namespace tarnwick
