#pragma once

#include "commands/edithistory.h"
#include "products/productrow.h"
#include "products/productsearch.h"

#include <QObject>
#include <QPoint>
#include <QString>

class QAction;
class QKeyEvent;
class QMenu;
class QModelIndex;

namespace tarnwick {

struct AppServices;
struct MainWindowUi;
class Cell;
class IShellDialogs;
class Module1;
class ProductGridModel;
class ScheduleModel;
class Table;
class CatalogueWork;

/// The product grid with its side boxes and the product commands that work on them: showing
/// the current row, writing the side boxes back when a row is left in edit mode, sorting on a
/// header click, the context menu, the product count, insert, delete and find. Every change
/// of the catalogue is asked of the history of changes (CatalogueEdits), and an undo or redo
/// of a step is shown here: the grid goes back to the row it stood on, the side boxes and the
/// schedule show what they showed. The main window owns one and forwards its handlers here.
class ProductGridController : public QObject
{
    Q_OBJECT

public:
    static constexpr QLatin1String AddingNew { "Adding New" };

    ProductGridController(const AppServices &services, Module1 &module, EditHistory &history,
        MainWindowUi &ui, QAction *editButton, QMenu *gridMenu, QMenu *scheduleMenu,
        QObject *parent = nullptr);

    /// Creates the price-schedule table (5 points of quantity and price), binds the product
    /// grid and the schedule to their tables and shows the first product.
    void bind(int firstColumnWidth);

    bool editMode() const;
    /// The grid's tag: AddingNew while a freshly inserted row has not been left.
    QString gridTag() const { return m_gridTag; }
    /// The table row of the grid's current row, 0 when there is none.
    int currentBookmark() const;
    /// Moves the grid to a row (0-based) and shows it, without writing anything back.
    void moveToRow(int gridRow);

    void showCurrentRow();
    /// Re-reads the catalogue into the grid; keepCurrentRow puts the cursor back on the same
    /// grid row.
    void MainRefresh(bool keepCurrentRow = true);
    void ClearPrice();

    /// The "Edit" button was toggled: pressing it unlocks the side boxes, releasing it stores
    /// the current row and locks them.
    void editButtonToggled();
    /// Stores a pending cell edit, the side boxes and the schedule into the current row.
    void commitCurrentRow();
    /// Stores what is being typed (the grid's open cell, and in edit mode the side boxes and
    /// the schedule) before a close, a save or a command that uses the product.
    void storePendingEdit();
    /// Before another step of the history, an undo or a redo: an open cell editor and, in edit
    /// mode, the side boxes and the schedule are stored, each change as a step of its own, as
    /// leaving the row stores them (not on a fresh row not yet left).
    void storeEditsBeforeStep();
    /// Where the grid stands: the current row's catalogue row and its column.
    ProductView currentView() const;
    /// The product being edited as storing its side boxes and schedule would leave it, in row
    /// 1 of row (one row, fifteen fields), and its catalogue row; 0 while no product is being
    /// edited or its boxes show what it holds. The recovery file keeps such edits.
    int pendingRow(Table &row) const;
    /// The catalogue was replaced as a whole (changes restored at start): shows it again from
    /// its first product.
    void catalogueReplaced();
    /// The side boxes' texts as the catalogue keeps them (lines ended by CR LF).
    SideBoxTexts boxTexts() const;
    /// Whether the side boxes and the schedule still show what catalogue row holds.
    bool boxesAsShown(int row) const;
    void insertProduct();
    void deleteProduct();
    void deleteAllProducts();
    void findProduct(IShellDialogs &dialogs);
    /// View → Refresh: stores what is being typed as leaving the row stores it, sorts the
    /// catalogue on the part number and shows it again, the same product current (edit mode
    /// stays as it is).
    void refresh();
    /// Sorts of a large catalogue run through work; the grid keeps what it shows meanwhile.
    void setCatalogueWork(CatalogueWork *work);

public Q_SLOTS:
    void GrdMain_RowColChange(const QModelIndex &current, const QModelIndex &previous);
    void GrdMain_HeadClick(int ColIndex);
    void GrdMain_MouseUp(Qt::MouseButton Button, const QPoint &position);
    void GrdMain_MouseMove();
    void PriceSchedule_MouseUp(Qt::MouseButton Button, const QPoint &position);
    void TxtPrice_LostFocus();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// Shows a step that was undone or redone (the user's own changes are shown as made).
    void productsChanged(const ProductChange &change);
    /// News about the product shown (the schedule's problems, a part number another product
    /// has) in the status bar, the whole of it as the tool tip; it goes when another row shows.
    void showRowStatus(const QString &text);
    /// Says in the status bar when a list price is no number or below zero
    /// (PriceSchedule::listPriceNotice).
    void sayIfNoPrice(const Cell &price);
    void sayRowStanding(int row);
    bool priceBoxKey(const QKeyEvent &key);
    /// Takes those words away when the status bar still shows them.
    void clearRowStatus();
    /// A side box was left: its text is stored in the product it shows.
    void storeSideBox(int field);
    /// A side box's own undo history is dropped once its text is a step of the history.
    void forgetBoxTyping(int field);
    /// A key typed on a price cell of the grid in edit mode: prices are typed in the side
    /// boxes, so the list price goes to its box and a price point gets a word where to type
    /// it (instead of the grid's search moving to another product). True when it was taken.
    bool priceCellTyped(const QKeyEvent &key);
    bool gridCellTyped(int row, int field, const Cell &value);
    bool scheduleCellTyped(int row, int column, const Cell &value);
    /// Empties what the schedule shows, storing nothing.
    void clearScheduleShown();
    void setSideBoxesLocked(bool locked);
    void clearSideBoxes();
    /// Shows a row's texts in the side boxes, and keeps them for boxTexts().
    void showSideBoxes(const SideBoxTexts &boxes);
    /// Leaves the grid with no current row and empty side boxes and schedule.
    void showNoRow();
    void setEditMode(bool on);
    void writeBackRow(const ProductView &view);
    void refreshGridRow(int row);
    /// Repaints the grid rows first to last (1-based; clipped to the grid).
    void refreshGridRows(int first, int last);
    void popUpGridMenu(const QPoint &globalPosition);

    const AppServices &m_services;
    Module1 &m_module;
    EditHistory &m_history;
    MainWindowUi &m_ui;
    QAction *m_editButton;
    QMenu *m_gridMenu;
    QMenu *m_scheduleMenu;
    ProductGridModel *m_gridModel = nullptr;
    ScheduleModel *m_scheduleModel = nullptr;
    ProductSearch m_search;
    CatalogueWork *m_work = nullptr;
    QString m_gridTag;
    /// The list price box has the keyboard because a price was typed on the grid's Price cell.
    bool m_priceFromGrid = false;
    /// The row the side boxes and the schedule show, and the grid's column then.
    ProductView m_shownView;
    /// The texts the side boxes were given, and the multi-line boxes' texts as they showed
    /// them: a box still showing them gives back the row's own text.
    SideBoxTexts m_boxesGiven;
    QString m_includesShown;
    QString m_notesShown;
    bool m_repositioning = false;
    QString m_rowStatus; ///< what showRowStatus() last put in the status bar
};

} // namespace tarnwick
