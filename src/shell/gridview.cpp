#include "shell/gridview.h"

#include "platform/keynavigation.h"
#include "platform/qt/currentitem.h"
#include "shell/gridcelldelegate.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tarnwick {

GridView::GridView(QWidget *parent) : QTableView(parent)
{
    setItemDelegate(new GridCellDelegate(this));
    showKeyboard(false);
}

void GridView::setCellDelegate(GridCellDelegate *delegate)
{
    QAbstractItemDelegate *before = itemDelegate();
    setItemDelegate(delegate);
    if (before != delegate)
        delete before;
}

QWidget *GridView::openEditor() const
{
    if (!isEditing())
        return nullptr;
    // The view's own editor of the current cell: an editor closed a moment ago is still among
    // the viewport's children until it is deleted, and committing it would reach no cell.
    return indexWidget(currentIndex());
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
    return KeyNavigation::ctrlTabDirection(key);
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
    const int direction = m_tabLeaves ? KeyNavigation::tabDirection(key) : focusOutDirection(key);
    if (direction) {
        commitPendingEdit();
        // The widget's own focus chain, not the view's override that moves between cells.
        // NOLINTNEXTLINE(bugprone-parent-virtual-call): skipping the view's override is the point
        QWidget::focusNextPrevChild(direction > 0);
        return true;
    }
    return false;
}

void GridView::mousePressEvent(QMouseEvent *event)
{
    if (!indexAt(event->position().toPoint()).isValid()) {
        setFocus(Qt::MouseFocusReason);
        event->accept();
        return;
    }
    QTableView::mousePressEvent(event);
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

void GridView::inputMethodEvent(QInputMethodEvent *event)
{
    // A letter made of several keys (a dead key's é, a Compose sequence, an input method's
    // word) comes as an input-method event, which Qt 6.4's view opens the editor for but does
    // not pass on as it passes a key: typed first into a cell, it was lost. Opened here, the
    // editor gets the letter (a composition still under way is left to the view, so the input
    // method keeps its box while it composes).
    if (!isEditing() && !event->commitString().isEmpty() && event->preeditString().isEmpty()
        && currentIndex().isValid() && edit(currentIndex(), AnyKeyPressed, nullptr)) {
        if (QWidget *editor = openEditor()) {
            QCoreApplication::sendEvent(
                editor->focusProxy() ? editor->focusProxy() : editor, event);
            event->accept();
            return;
        }
    }
    QTableView::inputMethodEvent(event);
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
    showKeyboard(true);
    // Coming back to the grid (after a dialog, F6, Locate Product), a screen reader hears which
    // product is current, not only "Products table".
    announceCurrentItem(this);
}

void GridView::focusOutEvent(QFocusEvent *event)
{
    QTableView::focusOutEvent(event);
    // A menu or another window taking the keyboard for a moment leaves the grid as it is.
    const Qt::FocusReason reason = event->reason();
    if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason && !hasKeyboard())
        showKeyboard(false);
}

bool GridView::hasKeyboard() const
{
    const QWidget *focus = QApplication::focusWidget();
    return focus && (focus == this || isAncestorOf(focus));
}

QColor GridView::quietHighlight(const QPalette &normal, QPalette::ColorGroup group)
{
    // A fifth of the way from the cells' background to their text: a grey that stands out on
    // a light and a dark theme alike (a dark theme's Midlight can be its background).
    const QColor base = normal.color(group, QPalette::Base).toRgb();
    const QColor text = normal.color(group, QPalette::Text).toRgb();
    const auto between = [](float from, float to) { return from + (to - from) / 5; };
    return QColor::fromRgbF(between(base.redF(), text.redF()),
        between(base.greenF(), text.greenF()), between(base.blueF(), text.blueF()));
}

void GridView::showKeyboard(bool here)
{
    // Both grids would otherwise look alike, whichever has the keyboard.
    QPalette colours = palette();
    const QPalette normal = QApplication::palette(this);
    for (const QPalette::ColorGroup group : { QPalette::Active, QPalette::Inactive }) {
        colours.setColor(group, QPalette::Highlight,
            here ? normal.color(group, QPalette::Highlight) : quietHighlight(normal, group));
        colours.setColor(group, QPalette::HighlightedText,
            here ? normal.color(group, QPalette::HighlightedText)
                 : normal.color(group, QPalette::Text));
    }
    setPalette(colours);
}

void GridView::scrollContentsBy(int dx, int dy)
{
    QTableView::scrollContentsBy(dx, dy);
    if (dx != 0)
        viewport()->update();
}

void GridView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    // The style's focus frame is a faint dotted line on the selected row: the cell the next key
    // goes to gets a clear frame.
    const QModelIndex current = currentIndex();
    if (!hasFocus() || isEditing() || !current.isValid())
        return;
    const QRect cell = visualRect(current);
    if (cell.isEmpty())
        return;
    QPainter painter(viewport());
    const bool selected = selectionModel() && selectionModel()->isSelected(current);
    painter.setPen(
        QPen(palette().color(selected ? QPalette::HighlightedText : QPalette::Highlight), 2));
    painter.drawRect(QRectF(cell).adjusted(1.5, 1.5, -1.5, -1.5));
}

QItemSelectionModel::SelectionFlags GridView::selectionCommand(
    const QModelIndex &index, const QEvent *event) const
{
    if (event || selectionMode() != ExtendedSelection)
        return QTableView::selectionCommand(index, event);
    const QItemSelectionModel::SelectionFlags whole = selectionBehavior() == SelectRows
        ? QItemSelectionModel::Rows
        : selectionBehavior() == SelectColumns ? QItemSelectionModel::Columns
                                               : QItemSelectionModel::NoUpdate;
    return QItemSelectionModel::ClearAndSelect | whole;
}

bool GridView::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
{
    const bool opened = QTableView::edit(index, trigger, event);
    // Ctrl+Tab in a cell editor leaves the grid too: the editor's keys pass here first.
    if (opened) {
        if (QWidget *editor = openEditor()) {
            editor->installEventFilter(this);
            // Assistive tools read the box being typed into by its column's caption.
            editor->setAccessibleName(
                model()->headerData(index.column(), Qt::Horizontal).toString());
        }
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
