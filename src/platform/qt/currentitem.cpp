#include "platform/qt/currentitem.h"

#include <QAbstractItemView>
#include <QAccessible>

namespace tarnwick {

void announceCurrentItem(QAbstractItemView *view)
{
    const QModelIndex current = view->currentIndex();
    if (!QAccessible::isActive() || !current.isValid())
        return;
    QAccessibleInterface *whole = QAccessible::queryAccessibleInterface(view);
    QAccessibleTableInterface *table = whole ? whole->tableInterface() : nullptr;
    QAccessibleInterface *item = table ? table->cellAt(current.row(), current.column()) : nullptr;
    if (!item)
        return;
    QAccessibleEvent focus(view, QAccessible::Focus);
    focus.setChild(whole->indexOfChild(item));
    QAccessible::updateAccessibility(&focus);
}

} // namespace tarnwick
