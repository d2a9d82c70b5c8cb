#include "shell/inputorder.h"

#include <QApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace tarnwick {

namespace {

bool isKeyEvent(const QEvent *event)
{
    return event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
}

bool isMouseButtonEvent(const QEvent *event)
{
    return event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease
        || event->type() == QEvent::MouseButtonDblClick;
}

/// Whether the event reaches the program without passing the accessibility bridge, and so
/// could be handled before keys typed ahead of it: a click, a key taken as a shortcut (Qt
/// matches shortcuts before the key enters a window, where the bridge would hold it), or the
/// close of a window (the window manager's, and the program's own, which saves what was typed;
/// either waits only while keys are on their way).
bool overtakesKeys(const QObject *watched, const QEvent *event)
{
    if (event->type() == QEvent::Shortcut)
        return true;
    if (event->type() == QEvent::Close)
        return watched->isWindowType();
    return isMouseButtonEvent(event) && event->spontaneous();
}

/// Whether a window hands its keys to this widget (rather than the widget being a parent the
/// key passes on to).
bool receivesKeysFirst(const QWidget *widget)
{
    if (widget == QWidget::keyboardGrabber())
        return true;
    if (const QWidget *popup = QApplication::activePopupWidget())
        return widget == popup || widget == popup->focusWidget();
    const QWidget *focus = QApplication::focusWidget();
    return focus ? widget == focus : widget->isWindow();
}

} // namespace

InputOrder::InputOrder(QObject *parent) : QObject(parent)
{
    m_clock.start();
    if (QCoreApplication *app = QCoreApplication::instance())
        app->installEventFilter(this);
}

InputOrder::TypedKey InputOrder::typedKey(const QKeyEvent *event, qint64 now)
{
    return { int(event->type()), event->key(), event->nativeScanCode(), event->text(), now };
}

bool InputOrder::eventFilter(QObject *watched, QEvent *event)
{
    // The accessibility bridge installs its filter whenever a client registers on the bus, in
    // front of this one: this filter moves back to the front, so it sees each key before the
    // bridge takes it away.
    if (QCoreApplication *app = QCoreApplication::instance())
        app->installEventFilter(this);
    if (isKeyEvent(event)) {
        const auto *key = static_cast<const QKeyEvent *>(event);
        if (watched->isWindowType())
            keyAtWindow(key);
        else if (watched->isWidgetType())
            keyAtWidget(watched, key);
    } else if (event->type() == QEvent::Shortcut && shortcutOfACopy()) {
        // The copy of a key the bridge held, taken as a shortcut only now: it comes in its
        // order, and the keys after it wait behind it.
        return false;
    } else if (overtakesKeys(watched, event) && !m_onTheirWay.empty() && !m_waiting) {
        const QPointer<QObject> receiver(watched);
        waitForKeysOnTheirWay();
        // A key handled meanwhile may have closed the window clicked: the click goes nowhere.
        if (!receiver)
            return true;
    }
    return false;
}

bool InputOrder::shortcutOfACopy()
{
    // The last key to enter a window is a copy the bridge posted and has reached no widget:
    // the shortcut is that key's (Qt tries shortcuts again as a copy is delivered).
    if (m_copyEntry != m_windowEntries || m_deliveredEntry == m_windowEntries)
        return false;
    m_deliveredEntry = m_windowEntries;
    arrived(m_copy);
    return true;
}

void InputOrder::arrived(const TypedKey &key)
{
    for (auto it = m_onTheirWay.begin(); it != m_onTheirWay.end(); ++it) {
        if (it->type == key.type && it->key == key.key && it->scanCode == key.scanCode
            && it->text == key.text) {
            // Keys before this one never came back: the bus kept them.
            m_onTheirWay.erase(m_onTheirWay.begin(), it + 1);
            break;
        }
    }
    if (m_onTheirWay.empty())
        Q_EMIT keysCaughtUp();
}

void InputOrder::keyAtWindow(const QKeyEvent *event)
{
    ++m_windowEntries;
    if (!event->spontaneous() && event->type() == QEvent::KeyPress) {
        m_copyEntry = m_windowEntries;
        m_copy = typedKey(event, 0);
    }
    // A key from the keyboard enters spontaneously; the bridge's later copy of it does not.
    if (event->spontaneous()) {
        const qint64 now = m_clock.elapsed();
        forgetKeysOlderThan(now - MaxWaitMs);
        m_onTheirWay.push_back(typedKey(event, now));
    }
}

void InputOrder::keyAtWidget(const QObject *receiver, const QKeyEvent *event)
{
    if (m_deliveredEntry == m_windowEntries || m_onTheirWay.empty()
        || !receivesKeysFirst(static_cast<const QWidget *>(receiver)))
        return;
    m_deliveredEntry = m_windowEntries;
    arrived(typedKey(event, 0));
}

void InputOrder::forgetKeysOlderThan(qint64 moment)
{
    while (!m_onTheirWay.empty() && m_onTheirWay.front().enteredAt < moment)
        m_onTheirWay.pop_front();
}

void InputOrder::waitForKeysOnTheirWay()
{
    const qint64 now = m_clock.elapsed();
    forgetKeysOlderThan(now - MaxWaitMs);
    if (m_onTheirWay.empty())
        return;
    const qint64 left = m_onTheirWay.back().enteredAt + MaxWaitMs - now;
    m_waiting = true;
    QEventLoop loop;
    QTimer limit;
    limit.setSingleShot(true);
    connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(this, &InputOrder::keysCaughtUp, &loop, &QEventLoop::quit);
    limit.start(int(qMax<qint64>(left, 1)));
    // Posted events (the keys' copies among them) and timers run; further keys and clicks stay
    // queued behind this click.
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    m_waiting = false;
    m_onTheirWay.clear();
}

} // namespace tarnwick
