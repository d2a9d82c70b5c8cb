#include "platform/qt/currentitem.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QTreeView>

namespace tarnwick {

void announceCurrentItem(QAbstractItemView *view)
{
    const QModelIndex current = view->currentIndex();
    if (!QAccessible::isActive() || !current.isValid())
        return;
    QAccessibleInterface *whole = QAccessible::queryAccessibleInterface(view);
    QAccessibleTableInterface *table = whole ? whole->tableInterface() : nullptr;
    // A tree's cells are counted by the rows it shows, all levels together.
    int row = current.row();
    if (const auto *tree = qobject_cast<const QTreeView *>(view)) {
        row = 0;
        for (QModelIndex above = tree->indexAbove(current); above.isValid();
             above = tree->indexAbove(above))
            ++row;
    }
    QAccessibleInterface *item = table ? table->cellAt(row, current.column()) : nullptr;
    if (!item)
        return;
    QAccessibleEvent focus(view, QAccessible::Focus);
    focus.setChild(whole->indexOfChild(item));
    QAccessible::updateAccessibility(&focus);
}

} // namespace tarnwick
