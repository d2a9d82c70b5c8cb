#pragma once

#include <QStyledItemDelegate>

namespace tarnwick {

/// The cells of the main window's grids. A cell only partly in view (the last column at the
/// grid's right edge, or one scrolled half out on the left) is drawn in the part that shows:
/// an amount aligned to the right would otherwise show only its first digits ("$38" of
/// "$389.00") and read as another amount. Text too long for that part ends in "…", as in any
/// cell too narrow for its text.
class GridCellDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// The part of cell, in viewport coordinates, that a viewport as wide as shown shows.
    static QRect shownPart(const QRect &cell, const QRect &shown);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
        const QModelIndex &index) const override;
};

} // namespace tarnwick
