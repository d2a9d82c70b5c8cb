#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <deque>

class QKeyEvent;

namespace tarnwick {

/// Keeps keys typed ahead of a click, a shortcut or a window's close ahead of it.
///
/// While an assistive-technology client listens on the desktop's accessibility bus, Qt hands every
/// key from the keyboard to that bus first and delivers it only when the bus answers, as a posted
/// copy; a mouse click is not held back that way, nor a key Qt takes as a shortcut (matched before
/// the key enters a window), nor the window manager's close. Keys typed at full speed and a click
/// right after were therefore handled click first: the rest of a product name went into the cell
/// clicked; a price typed and then Ctrl+D ("Add to Quote") put the product into the quote as it was
/// and the typing into the quote's line; a name typed and the window closed at once was saved
/// without it. InputOrder is an application event filter that notes each key entering a window
/// until it reaches a widget. A mouse button event, a shortcut or a close that arrives while such
/// keys are on their way waits for them (the event loop runs meanwhile, without taking further user
/// input) and then goes on unchanged. A key the bus keeps for itself (an assistive tool's own
/// shortcut) never comes back: nothing waits for it longer than MaxWaitMs.
class InputOrder : public QObject
{
    Q_OBJECT

public:
    /// The longest a click, a shortcut or a close waits for keys typed before it, in milliseconds.
    static constexpr int MaxWaitMs = 250;

    /// Installs itself as a filter of the running application; removed when destroyed.
    explicit InputOrder(QObject *parent = nullptr);

    /// Keys that entered a window and have not reached a widget yet.
    int keysOnTheirWay() const { return int(m_onTheirWay.size()); }

Q_SIGNALS:
    /// The last key on its way reached its widget.
    void keysCaughtUp();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct TypedKey
    {
        int type;
        int key;
        quint32 scanCode;
        QString text;
        qint64 enteredAt;
    };

    static TypedKey typedKey(const QKeyEvent *event, qint64 now);
    void keyAtWindow(const QKeyEvent *event);
    void keyAtWidget(const QObject *receiver, const QKeyEvent *event);
    void forgetKeysOlderThan(qint64 moment);
    void waitForKeysOnTheirWay();
    /// Whether a shortcut now is that of the bridge's copy of a key entering a window; the key
    /// counts as delivered then.
    bool shortcutOfACopy();
    /// The key has come: it and the keys before it are no longer on their way.
    void arrived(const TypedKey &key);

    std::deque<TypedKey> m_onTheirWay;
    /// Key events seen at a window; a key counts as delivered once per such entry, so its
    /// propagation to parent widgets is not taken for further keys.
    quint64 m_windowEntries = 0;
    quint64 m_deliveredEntry = 0;
    /// The last copy of a key press the bridge posted, and the entry it entered its window as.
    TypedKey m_copy {};
    quint64 m_copyEntry = 0;
    bool m_waiting = false;
    QElapsedTimer m_clock;
};

} // namespace tarnwick
