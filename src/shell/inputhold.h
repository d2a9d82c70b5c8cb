#pragma once

#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

class QAction;
class QKeyEvent;
class QWidget;

namespace tarnwick {

/// Holds the keys that reach a window while long work runs in a loop of its own (the
/// catalogue's worker, a print), and posts them again afterwards, in their order. Such a loop
/// takes no input from the window system, but while an assistive tool listens, keys come back
/// from the accessibility bus as posted copies, which any loop delivers: typed into the grid
/// meanwhile, they would change the catalogue the work reads. Keys for except's window (the
/// print's progress window, whose Cancel must answer) pass; a dialog opened meanwhile (its
/// own loop does) keeps its keys as well.
class KeysHeldBack : public QObject
{
public:
    explicit KeysHeldBack(const QWidget *except = nullptr);
    ~KeysHeldBack() override;
    KeysHeldBack(const KeysHeldBack &) = delete;
    KeysHeldBack &operator=(const KeysHeldBack &) = delete;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Held
    {
        QPointer<QObject> window;
        std::unique_ptr<QKeyEvent> key;
    };
    QPointer<const QWidget> m_except;
    std::vector<Held> m_held;
};

/// Makes the commands of windows unavailable while long work reads the catalogue, and
/// available again afterwards (those that were). Input waits anyway, but an assistive tool
/// carries out a menu item or a toolbar button through the accessibility bus, which no input
/// filter holds: a command that changed the catalogue meanwhile would change it under the
/// work's hands (a row inserted while it is saved cuts the file short; a sort halfway through
/// a printed list leaves products out of it). An unavailable command is shown so and does
/// nothing.
class CommandsHeldBack
{
public:
    explicit CommandsHeldBack(const QList<QWidget *> &windows);
    ~CommandsHeldBack();
    CommandsHeldBack(const CommandsHeldBack &) = delete;
    CommandsHeldBack &operator=(const CommandsHeldBack &) = delete;

private:
    void holdBack(QAction *action);

    std::vector<QPointer<QAction>> m_disabled;
    std::vector<QMetaObject::Connection> m_watches;
};

} // namespace tarnwick
