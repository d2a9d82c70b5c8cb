#pragma once

#include <QTableView>

namespace tarnwick {

class GridCellDelegate;

/// A grid of the main window: a QTableView that can commit or drop the cell edit in progress,
/// as the product, schedule and quote commands need. From the keyboard, Shift+F10 and the
/// Menu key ask for the grid's context menu at its current cell (a keyboard context-menu
/// event the grid's owner answers), Ctrl+Tab and Ctrl+Shift+Tab leave the grid for the next
/// or previous control (Tab moves between cells), also from an open cell editor. Focus coming
/// back to the window leaves a grid without a current row as it is. The grid that has the
/// keyboard shows it: its selection in the highlight colour and its current cell framed; a
/// grid without the keyboard shows its selection in a quiet grey.
class GridView : public QTableView
{
    Q_OBJECT

public:
    explicit GridView(QWidget *parent = nullptr);

    /// Draws the cells with delegate (one that marks some of them) in place of the grid's own.
    void setCellDelegate(GridCellDelegate *delegate);
    /// True while a cell editor is open.
    bool isEditing() const { return state() == QAbstractItemView::EditingState; }
    /// Stores the cell edit in progress, as pressing Enter would.
    void commitPendingEdit();
    /// Drops the cell edit in progress; the cell keeps its previous text.
    void discardPendingEdit();
    /// Sends the grid the context-menu event of the keyboard, for its current cell (scrolled
    /// into view); false when no cell is current or a menu is already open.
    bool requestContextMenu();
    /// Where a menu opened from the keyboard appears: below the current cell's left edge, the
    /// cell scrolled into view first.
    QPoint keyboardMenuPosition();

    /// Shift+F10 or the Menu key.
    static bool isContextMenuKey(const QKeyCombination &key);
    /// Ctrl+Tab (1), Ctrl+Shift+Tab (-1), anything else 0.
    static int focusOutDirection(const QKeyCombination &key);
    /// Whether Tab and Shift+Tab, too, move the keyboard to the next or previous control
    /// instead of between cells: for a grid whose cursor keeps to one column, where Tab has no
    /// cell to go to and Shift+Tab would wrap to the row above. Off at first.
    void setTabLeavesGrid(bool leaves) { m_tabLeaves = leaves; }

    using QTableView::edit;

    /// The open cell editor; none when no cell is being edited.
    QWidget *openEditor() const;
    /// Whether the keyboard is in the grid or its cell editor.
    bool hasKeyboard() const;
    /// The colour of the selection of a grid without the keyboard, in palette normal.
    static QColor quietHighlight(const QPalette &normal, QPalette::ColorGroup group);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    /// A press below the last row or beside the last column takes the keyboard but leaves the
    /// current row and its highlight as they are (the view would clear the selection).
    void mousePressEvent(QMouseEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    /// A sideways scroll draws the whole viewport anew: a cell partly in view is drawn in its
    /// part that shows, so the pixels the view would move along are not that cell any more.
    void scrollContentsBy(int dx, int dy) override;
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;
    /// A move the program makes (no event: undo, a header sort, Locate Product) selects the
    /// new current row alone. Qt would read keys still held, such as the Ctrl of Ctrl+Z, as a
    /// Ctrl+click on it and keep the rows selected before.
    QItemSelectionModel::SelectionFlags selectionCommand(
        const QModelIndex &index, const QEvent *event = nullptr) const override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// Paints the selection as the grid with (or without) the keyboard.
    void showKeyboard(bool here);
    /// Handles the grid's own keys for key; true when it was one of them.
    bool handleGridKey(const QKeyCombination &key);

    bool m_tabLeaves = false;
};

} // namespace tarnwick
