#pragma once

#include <QTableView>

namespace tarnwick {

/// A grid of the main window: a QTableView that can commit or drop the cell edit in progress,
/// as the product, schedule and quote commands need.
class GridView : public QTableView
{
    Q_OBJECT

public:
    using QTableView::QTableView;

    /// True while a cell editor is open.
    bool isEditing() const { return state() == QAbstractItemView::EditingState; }
    /// Stores the cell edit in progress, as pressing Enter would.
    void commitPendingEdit();
    /// Drops the cell edit in progress; the cell keeps its previous text.
    void discardPendingEdit();

private:
    QWidget *openEditor() const;
};

} // namespace tarnwick
