#pragma once

#include "shell/gridcelldelegate.h"

#include <QIcon>

namespace tarnwick {

/// Shows a small icon in every cell whose model data for a given role is true (a price
/// schedule cell with a problem, a locked quote price); the cell's text stays as it is, drawn
/// as in every grid cell.
class CellMarkDelegate : public GridCellDelegate
{
    Q_OBJECT

public:
    CellMarkDelegate(int role, const QIcon &icon, QObject *parent = nullptr);

    /// The mark the cell shows; a null icon when it shows none.
    QIcon markOf(const QModelIndex &index) const;

    /// The warning sign of the price schedule.
    static QIcon warningIcon();
    /// A padlock, drawn when the desktop's theme has none.
    static QIcon lockIcon();

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    int m_role;
    QIcon m_icon;
};

} // namespace tarnwick
