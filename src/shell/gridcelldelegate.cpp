#include "shell/gridcelldelegate.h"

#include <QAbstractItemView>

#include <algorithm>

namespace tarnwick {

QRect GridCellDelegate::shownPart(const QRect &cell, const QRect &shown)
{
    // Only the width is narrowed: a row cut at the bottom keeps its text where the rows
    // above have theirs.
    const int left = std::max(cell.left(), shown.left());
    const int right = std::min(cell.right(), shown.right());
    if (right < left)
        return cell;
    return QRect(QPoint(left, cell.top()), QPoint(right, cell.bottom()));
}

void GridCellDelegate::paint(
    QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const auto *view = qobject_cast<const QAbstractItemView *>(option.widget);
    if (!view) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem shown(option);
    shown.rect = shownPart(option.rect, view->viewport()->rect());
    QStyledItemDelegate::paint(painter, shown, index);
}

} // namespace tarnwick
