#pragma once

#include <QLocale>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <memory>

namespace tarnwick {

class IWorkbook;
class Products;
class Table;
class WorkbookImport;

/// Runs a workbook import while the event loop keeps going: every pass of the loop handles
/// rows for about BatchTime, so the import window stays responsive, its caption can change and
/// it can be closed, and nothing is repainted per row. Stopping takes effect after the row in
/// hand; what was added so far is kept. At the end the added products are counted into Count
/// and the catalogue is sorted on the part number, as at start-up.
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
    std::chrono::milliseconds m_batchTime = BatchTime;
    int m_lastRow = 0;
    bool m_failureReported = false;
    bool m_inBatch = false;
};

} // namespace tarnwick
