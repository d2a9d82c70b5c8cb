#pragma once

#include <QObject>

#include <functional>

class QWidget;

namespace tarnwick {

class CatalogueRecovery;
class Table;

/// Runs work on a worker thread while this thread keeps handling its events other than user
/// input (timers, painting, the desktop's requests), and returns when the work has finished.
/// Keys that reach a window meanwhile (an assistive tool hands them back as posted events)
/// are held and posted again afterwards.
/// An exception the work throws is thrown again here. Without an application object (no
/// event loop) the work runs on this thread.
void runWhileEventsFlow(const std::function<void()> &work);

/// Long work on a large catalogue (sorting it, saving it) done on a worker thread, so the
/// window keeps answering however large the catalogue is. While it runs nothing on the
/// window's thread reads the catalogue: the product grid keeps showing what it showed
/// (started() and finished() tell it), the recovery watch pauses, user input waits, the
/// window's commands are unavailable, and a close of the window waits until the work is done. Small
/// catalogues are worked on at once, on the window's thread.
class CatalogueWork : public QObject
{
    Q_OBJECT

public:
    /// Catalogues of at least this many rows are worked on in the background.
    static constexpr int DefaultBackgroundRows = 20000;

    CatalogueWork(const Table &catalogue, CatalogueRecovery &recovery, QWidget *window);

    /// Runs work, in the background for a large catalogue. Work started while other work runs
    /// runs at once.
    void run(const std::function<void()> &work);
    bool isRunning() const { return m_running; }

    int backgroundRows() const { return m_backgroundRows; }
    void setBackgroundRows(int rows) { m_backgroundRows = rows; }

Q_SIGNALS:
    /// Background work starts: nothing may read the catalogue until finished().
    void started();
    void finished();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const Table &m_catalogue;
    CatalogueRecovery &m_recovery;
    QWidget *m_window;
    int m_backgroundRows = DefaultBackgroundRows;
    bool m_running = false;
    bool m_closeAsked = false;
};

} // namespace tarnwick
