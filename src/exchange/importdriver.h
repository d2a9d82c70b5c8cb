#pragma once

#include "catalogue/table.h"

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
struct ProductChanges;
class WorkbookImport;

/// Runs a workbook import while the event loop keeps going: every pass of the loop handles
/// rows for about BatchTime, so the import window stays responsive, its caption can change and
/// it can be closed, and nothing is repainted per row. Stopping takes effect after the row in
/// hand; what was added so far is kept. The new products are gathered in a table of their own
/// and put into the catalogue at the end, all at once: by the owner's apply function (which
/// makes the import one step of its history), or else appended, counted into Count and the
/// catalogue sorted on the part number, as at start-up.
class ImportDriver : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds BatchTime { 50 };

    ImportDriver(
        Table &catalogue, Products &products, const QLocale &locale, QObject *parent = nullptr);
    ~ImportDriver() override;

    /// Starts the import of a workbook that was read. No workbook (nullptr) is reported as
    /// failed rows and finishes the import at once, with nothing added.
    void start(
        std::unique_ptr<IWorkbook> workbook, const QString &letters, bool firstRowHasHeaders);

    bool isRunning() const { return m_import != nullptr; }
    /// The worksheet row the import reads next (the progress caption shows it).
    int currentRow() const;
    /// Stops after the row in hand and finishes the import.
    void stop();
    /// Handles rows for at most budget (always at least one), then finishes the import when the
    /// sheet is done.
    void runBatch(std::chrono::milliseconds budget);
    /// The time each pass of the event loop spends on rows (BatchTime unless changed; 0 handles
    /// one row per pass).
    void setBatchTime(std::chrono::milliseconds time) { m_batchTime = time; }

    /// Puts what an import found into the catalogue (and sorts it on the part number).
    using Apply = std::function<void(ProductChanges changes)>;
    void setApply(Apply apply) { m_apply = std::move(apply); }

Q_SIGNALS:
    /// A row could not be read completely; sent once per import. The rest is still handled.
    void rowsFailed();
    /// The import is over; changes products were added.
    void finished(int changes);

private:
    void reportFailure();
    void finish();

    Table &m_catalogue;
    Products &m_products;
    QLocale m_locale;
    QTimer m_timer;
    std::unique_ptr<IWorkbook> m_workbook;
    std::unique_ptr<WorkbookImport> m_import;
    /// The products found so far, fifteen fields each.
    Table m_added;
    Apply m_apply;
    std::chrono::milliseconds m_batchTime = BatchTime;
    int m_lastRow = 0;
    bool m_failureReported = false;
    bool m_inBatch = false;
};

} // namespace tarnwick
