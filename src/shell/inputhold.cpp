#include "shell/inputhold.h"

#include <QAction>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>
#include <QWindow>

namespace tarnwick {

KeysHeldBack::KeysHeldBack(const QWidget *except) : m_except(except)
{
    QCoreApplication::instance()->installEventFilter(this);
}

KeysHeldBack::~KeysHeldBack()
{
    QCoreApplication::instance()->removeEventFilter(this);
    for (Held &held : m_held) {
        if (held.window)
            QCoreApplication::postEvent(held.window, held.key.release());
    }
}

bool KeysHeldBack::eventFilter(QObject *watched, QEvent *event)
{
    // The loop takes no keys from the window system.
    if ((event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        || !watched->isWindowType() || event->spontaneous())
        return false;
    if (m_except && watched == m_except->windowHandle())
        return false;
    m_held.push_back(
        { watched, std::unique_ptr<QKeyEvent>(static_cast<QKeyEvent *>(event)->clone()) });
    return true;
}

CommandsHeldBack::CommandsHeldBack(const QList<QWidget *> &windows)
{
    for (QWidget *window : windows) {
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
}

CommandsHeldBack::~CommandsHeldBack()
{
    for (const QMetaObject::Connection &watch : m_watches)
        QObject::disconnect(watch);
    for (const QPointer<QAction> &action : m_disabled) {
        if (action)
            action->setEnabled(true);
    }
}

void CommandsHeldBack::holdBack(QAction *action)
{
    action->setEnabled(false);
    m_disabled.emplace_back(action);
}

} // namespace tarnwick
