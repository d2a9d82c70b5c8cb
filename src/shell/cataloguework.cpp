#include "shell/cataloguework.h"

#include "catalogue/cataloguerecovery.h"
#include "catalogue/table.h"
#include "shell/inputhold.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QThread>
#include <QWidget>

#include <exception>
#include <memory>

namespace tarnwick {

void runWhileEventsFlow(const std::function<void()> &work)
{
    if (!QCoreApplication::instance()) {
        work();
        return;
    }
    // The worker has what it works on to itself until it ends; the loop keeps this thread's
    // timers and painting going meanwhile.
    QEventLoop loop;
    std::exception_ptr failure;
    std::unique_ptr<QThread> worker(QThread::create([&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    }));
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit);
    worker->start();
    {
        const KeysHeldBack heldBack;
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    worker->wait();
    if (failure)
        std::rethrow_exception(failure);
}

CatalogueWork::CatalogueWork(const Table &catalogue, CatalogueRecovery &recovery, QWidget *window)
    : QObject(window), m_catalogue(catalogue), m_recovery(recovery), m_window(window)
{
    m_window->installEventFilter(this);
}

void CatalogueWork::run(const std::function<void()> &work)
{
    if (m_running || m_catalogue.rowCount() < m_backgroundRows) {
        work();
        return;
    }
    m_running = true;
    m_recovery.suspend();
    Q_EMIT started();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    std::exception_ptr failure;
    try {
        const CommandsHeldBack commands({ m_window });
        runWhileEventsFlow(work);
    } catch (...) {
        failure = std::current_exception();
    }
    QApplication::restoreOverrideCursor();
    m_running = false;
    Q_EMIT finished();
    m_recovery.resume();
    if (m_closeAsked) {
        // The close asked for meanwhile is carried out now, as the window's own close.
        m_closeAsked = false;
        QMetaObject::invokeMethod(m_window, &QWidget::close, Qt::QueuedConnection);
    }
    if (failure)
        std::rethrow_exception(failure);
}

bool CatalogueWork::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window && event->type() == QEvent::Close && m_running) {
        event->ignore();
        m_closeAsked = true;
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace tarnwick
