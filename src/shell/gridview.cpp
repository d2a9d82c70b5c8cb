#include "shell/gridview.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QKeyEvent>

namespace tarnwick {

QWidget *GridView::openEditor() const
{
    if (!isEditing())
        return nullptr;
    // Cell editors are the viewport's own child widgets.
    const QList<QWidget *> children =
        viewport()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *child : children) {
        if (!child->isHidden())
            return child;
    }
    return nullptr;
}

void GridView::commitPendingEdit()
{
    if (QWidget *editor = openEditor()) {
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

void GridView::discardPendingEdit()
{
    if (QWidget *editor = openEditor())
        closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

bool GridView::isContextMenuKey(const QKeyCombination &key)
{
    const Qt::KeyboardModifiers modifiers =
        key.keyboardModifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    return (key.key() == Qt::Key_Menu && modifiers == Qt::NoModifier)
        || (key.key() == Qt::Key_F10 && modifiers == Qt::ShiftModifier);
}

int GridView::focusOutDirection(const QKeyCombination &key)
{
    const Qt::KeyboardModifiers modifiers = key.keyboardModifiers() & ~Qt::KeypadModifier;
    if (!(modifiers & Qt::ControlModifier) || (modifiers & (Qt::AltModifier | Qt::MetaModifier)))
        return 0;
    // Shift+Tab arrives as Backtab on most desktops, as Tab with Shift on others.
    if (key.key() == Qt::Key_Backtab
        || (key.key() == Qt::Key_Tab && (modifiers & Qt::ShiftModifier)))
        return -1;
    return key.key() == Qt::Key_Tab ? 1 : 0;
}

bool GridView::requestContextMenu()
{
    const QModelIndex current = currentIndex();
    if (!current.isValid() || QApplication::activePopupWidget())
        return false;
    const QPoint global = keyboardMenuPosition();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, mapFromGlobal(global), global,
        QApplication::keyboardModifiers());
    QCoreApplication::sendEvent(this, &event);
    return true;
}

QPoint GridView::keyboardMenuPosition()
{
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return viewport()->mapToGlobal(viewport()->rect().center());
    scrollTo(current);
    const QRect cell = visualRect(current);
    return viewport()->mapToGlobal(QPoint(cell.left() + cell.height() / 2, cell.bottom()));
}

bool GridView::handleGridKey(const QKeyCombination &key)
{
    if (isContextMenuKey(key)) {
        requestContextMenu();
        return true;
    }
    if (const int direction = focusOutDirection(key)) {
        commitPendingEdit();
        // The widget's own focus chain, not the view's override that moves between cells.
        // NOLINTNEXTLINE(bugprone-parent-virtual-call): skipping the view's override is the point
        QWidget::focusNextPrevChild(direction > 0);
        return true;
    }
    return false;
}

void GridView::keyPressEvent(QKeyEvent *event)
{
    // On desktops that turn the Menu key into a context-menu event of their own, the menu is
    // open before the key arrives, and the key then goes to the menu.
    if (handleGridKey(event->keyCombination())) {
        event->accept();
        return;
    }
    QTableView::keyPressEvent(event);
}

void GridView::focusInEvent(QFocusEvent *event)
{
    // The view would make its first cell current when the keyboard comes back to it (a message
    // box closed, a menu went): a grid left without a current row (after a delete) stays so
    // until the user moves in it.
    const bool returning =
        event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason;
    if (returning && !currentIndex().isValid()) {
        // NOLINTNEXTLINE(bugprone-parent-virtual-call): the view's own would pick a current cell
        QAbstractScrollArea::focusInEvent(event);
        setAttribute(Qt::WA_InputMethodEnabled, false);
        viewport()->update();
        return;
    }
    QTableView::focusInEvent(event);
}

bool GridView::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
{
    const bool opened = QTableView::edit(index, trigger, event);
    // Ctrl+Tab in a cell editor leaves the grid too: the editor's keys pass here first.
    if (opened) {
        if (QWidget *editor = openEditor())
            editor->installEventFilter(this);
    }
    return opened;
}

bool GridView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && watched != this && watched != viewport()) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (focusOutDirection(key->keyCombination()) != 0 && handleGridKey(key->keyCombination()))
            return true;
    }
    return QTableView::eventFilter(watched, event);
}

} // namespace tarnwick
