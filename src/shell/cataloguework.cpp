#include "shell/cataloguework.h"

#include "catalogue/cataloguerecovery.h"
#include "catalogue/table.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QKeyEvent>
#include <QPointer>
#include <QThread>
#include <QWidget>

#include <exception>
#include <memory>
#include <vector>

namespace tarnwick {

namespace {

/// Holds the keys that reach a window while the worker runs and posts them again afterwards,
/// in their order. The loop below takes no input from the window system, but while an
/// assistive tool listens, keys come back from the accessibility bus as posted copies, which
/// any loop delivers: typed into the grid meanwhile, they would write the catalogue the worker
/// has.
class KeysHeldBack : public QObject
{
public:
    KeysHeldBack() { QCoreApplication::instance()->installEventFilter(this); }
    ~KeysHeldBack() override
    {
        QCoreApplication::instance()->removeEventFilter(this);
        for (Held &held : m_held) {
            if (held.window)
                QCoreApplication::postEvent(held.window, held.key.release());
        }
    }
    KeysHeldBack(const KeysHeldBack &) = delete;
    KeysHeldBack &operator=(const KeysHeldBack &) = delete;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // The loop takes no keys from the window system; a dialog opened meanwhile (its own
        // loop does) keeps its keys.
        if ((event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
            || !watched->isWindowType() || event->spontaneous())
            return false;
        m_held.push_back(
            { watched, std::unique_ptr<QKeyEvent>(static_cast<QKeyEvent *>(event)->clone()) });
        return true;
    }

private:
    struct Held
    {
        QPointer<QObject> window;
        std::unique_ptr<QKeyEvent> key;
    };
    std::vector<Held> m_held;
};

/// Makes the window's commands unavailable while the worker has the catalogue, and available
/// again afterwards (those that were). Input waits anyway, but an assistive tool carries out a
/// menu item or a toolbar button through the accessibility bus, which no input filter holds:
/// a command that changed the catalogue meanwhile would change it under the worker's hands
/// (a row inserted while it saves, say, cuts the file short). An unavailable command is shown
/// so and does nothing.
class CommandsHeldBack
{
public:
    explicit CommandsHeldBack(QWidget *window)
    {
        for (QAction *action : window->findChildren<QAction *>()) {
            if (action->isEnabled())
                holdBack(action);
            // One made available meanwhile (Undo, once an assistive tool changed a box's
            // text) is held back as well.
            m_watches.push_back(QObject::connect(
                action, &QAction::enabledChanged, action, [this, action](bool enabled) {
                    if (enabled)
                        holdBack(action);
                }));
        }
    }
    ~CommandsHeldBack()
    {
        for (const QMetaObject::Connection &watch : m_watches)
            QObject::disconnect(watch);
        for (const QPointer<QAction> &action : m_disabled) {
            if (action)
                action->setEnabled(true);
        }
    }
    CommandsHeldBack(const CommandsHeldBack &) = delete;
    CommandsHeldBack &operator=(const CommandsHeldBack &) = delete;

private:
    void holdBack(QAction *action)
    {
        action->setEnabled(false);
        m_disabled.emplace_back(action);
    }

    std::vector<QPointer<QAction>> m_disabled;
    std::vector<QMetaObject::Connection> m_watches;
};

} // namespace

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
        const CommandsHeldBack commands(m_window);
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
