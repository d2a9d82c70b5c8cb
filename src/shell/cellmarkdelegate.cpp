#include "shell/cellmarkdelegate.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QStyle>

namespace tarnwick {

CellMarkDelegate::CellMarkDelegate(int role, const QIcon &icon, QObject *parent)
    : GridCellDelegate(parent), m_role(role), m_icon(icon)
{
}

QIcon CellMarkDelegate::markOf(const QModelIndex &index) const
{
    return index.data(m_role).toBool() ? m_icon : QIcon();
}

void CellMarkDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QIcon mark = markOf(index);
    if (mark.isNull())
        return;
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->icon = mark;
    const int side = option->fontMetrics.height() - 2;
    option->decorationSize = QSize(side, side);
}

QIcon CellMarkDelegate::warningIcon()
{
    return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
}

QIcon CellMarkDelegate::lockIcon()
{
    QIcon themed = QIcon::fromTheme(QStringLiteral("object-locked"));
    if (!themed.isNull())
        return themed;
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(60, 60, 60), 3.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(QRectF(9, 3, 14, 18), 0, 180 * 16);
    painter.drawLine(QPointF(9, 12), QPointF(9, 15));
    painter.drawLine(QPointF(23, 12), QPointF(23, 15));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(200, 150, 30));
    painter.drawRoundedRect(QRectF(5, 14, 22, 16), 3, 3);
    painter.setBrush(QColor(60, 60, 60));
    painter.drawEllipse(QRectF(14, 19, 4, 4));
    painter.end();
    return QIcon(pixmap);
}

} // namespace tarnwick
