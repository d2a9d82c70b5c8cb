// The product grid's changes through the history: what the side boxes and the schedule hold is
// stored as steps (when a box is left, an entry committed, a row left, "Edit" released), and
// a step undone or redone is shown as it was.
#include "shell/productgridcontroller.h"

#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "commands/catalogueedits.h"
#include "products/priceladder.h"
#include "products/priceschedule.h"
#include "products/productcommands.h"
#include "products/productgridmodel.h"
#include "products/productrow.h"
#include "products/schedulemodel.h"
#include "shell/gridview.h"
#include "shell/mainwindowui.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <algorithm>

namespace tarnwick {

void ProductGridController::writeBackRow(const ProductView &view)
{
    const int row = view.row;
    if (row < 1 || row > m_module.Catalogue().rowCount())
        return;
    m_ui.PriceSchedule->commitPendingEdit();
    // Boxes that still show what the row holds change nothing: the row keeps its cells as
    // read, and the catalogue does not count as changed.
    if (boxesAsShown(row))
        return;
    // The boxes as three steps, the schedule sorted by quantity as a fourth, each only when it
    // changes the row (ProductRow::writeBack's rule, step by step).
    const SideBoxTexts boxes = boxTexts();
    for (const int field :
        { ProductRecord::Price, ProductRecord::Includes, ProductRecord::Notes }) {
        CatalogueEdits::setSideBox(m_history, view, row, field, boxes);
        forgetBoxTyping(field);
    }
    Table sorted = m_module.ScheduleTable();
    ProductRow::sortSchedule(sorted, m_module.locale());
    CatalogueEdits::setSchedule(m_history, view, row, sorted);
    m_scheduleModel->reload();
    refreshGridRow(row);
}

void ProductGridController::refreshGridRow(int row)
{
    refreshGridRows(row, row);
}

void ProductGridController::refreshGridRows(int first, int last)
{
    first = std::max(first, 1);
    last = std::min(last, m_gridModel->rowCount());
    if (first <= last)
        Q_EMIT m_gridModel->dataChanged(m_gridModel->index(first - 1, 0),
            m_gridModel->index(last - 1, m_gridModel->columnCount() - 1));
}

void ProductGridController::clearScheduleShown()
{
    m_ui.PriceSchedule->discardPendingEdit();
    PriceSchedule::ClearPrice(m_module.ScheduleTable());
    m_scheduleModel->reload();
    MainRefresh();
}

void ProductGridController::ClearPrice()
{
    // In edit mode the product's points are emptied as a step; in browse mode only what the
    // schedule shows, as the row is not stored when it is left.
    if (!editMode() || m_shownView.row < 1) {
        clearScheduleShown();
        return;
    }
    m_ui.PriceSchedule->discardPendingEdit();
    CatalogueEdits::clearSchedule(m_history, m_shownView, m_shownView.row);
    m_scheduleModel->reload();
    MainRefresh();
}

void ProductGridController::commitCurrentRow()
{
    m_ui.GrdMain->commitPendingEdit();
    writeBackRow(m_shownView);
    setSideBoxesLocked(true);
}

void ProductGridController::storePendingEdit()
{
    m_ui.GrdMain->commitPendingEdit();
    if (editMode())
        writeBackRow(m_shownView);
}

void ProductGridController::storeEditsBeforeStep()
{
    m_ui.GrdMain->commitPendingEdit();
    if (editMode() && m_gridTag != AddingNew)
        writeBackRow(m_shownView);
}

void ProductGridController::storeSideBox(int field)
{
    const int row = m_shownView.row;
    if (!editMode() || row < 1 || row > m_module.Catalogue().rowCount())
        return;
    CatalogueEdits::setSideBox(m_history, m_shownView, row, field, boxTexts());
    forgetBoxTyping(field);
    refreshGridRow(row);
    sayRowStanding(row);
}

void ProductGridController::forgetBoxTyping(int field)
{
    // The box's typing is a step of the history now: Ctrl+Z in the box takes the step back,
    // not the typing behind the history's back.
    if (field == ProductRecord::Price) {
        QLineEdit *box = m_ui.TxtPrice;
        if (!box->isUndoAvailable() && !box->isRedoAvailable())
            return;
        const int cursor = box->cursorPosition();
        box->setText(box->text()); // which forgets its undo history
        box->setCursorPosition(cursor);
        return;
    }
    QPlainTextEdit *box = field == ProductRecord::Includes ? m_ui.Txtincludes : m_ui.Txtnotes;
    box->document()->clearUndoRedoStacks();
}

bool ProductGridController::gridCellTyped(int row, int field, const Cell &value)
{
    const int column = field == ProductRecord::PartNumber ? 0 : 1;
    const bool taken = CatalogueEdits::setCell(m_history, { row, column }, row, field, value);
    if (taken && field == ProductRecord::Price)
        sayIfNoPrice(m_module.Catalogue().get(row, field));
    else if (taken)
        sayRowStanding(row);
    return taken;
}

bool ProductGridController::priceBoxKey(const QKeyEvent &key)
{
    // A price typed over the grid's Price cell lands in the list price box; Enter, Up and Down
    // there work as in the grid's other cells: the price is stored, and the keyboard goes back
    // to the Price cell of this product, the one above or the one below. When the typing began
    // on the grid, Tab and Shift+Tab go back to the grid's next or previous cell too (from a
    // box the user went to, they go on to the next control).
    const int pressed = key.key();
    const bool moves = pressed == Qt::Key_Up || pressed == Qt::Key_Down;
    const bool tabs = m_priceFromGrid && (pressed == Qt::Key_Tab || pressed == Qt::Key_Backtab);
    if (!moves && !tabs && pressed != Qt::Key_Return && pressed != Qt::Key_Enter)
        return false;
    const Qt::KeyboardModifiers allowed =
        tabs ? Qt::KeypadModifier | Qt::ShiftModifier : Qt::KeypadModifier;
    if ((key.modifiers() & ~allowed) != Qt::NoModifier || !editMode())
        return false;
    GridView *grid = m_ui.GrdMain;
    const QModelIndex current = grid->currentIndex();
    if (!current.isValid())
        return false;
    int column = 0;
    while (column < m_gridModel->columnCount()
        && ProductGridModel::fieldOfColumn(column) != ProductRecord::Price)
        ++column;
    int gridRow = current.row();
    if (pressed == Qt::Key_Up)
        gridRow = std::max(gridRow - 1, 0);
    else if (pressed == Qt::Key_Down)
        gridRow = std::min(gridRow + 1, m_gridModel->rowCount() - 1);
    else if (tabs)
        column = std::clamp(
            column + (pressed == Qt::Key_Tab && !(key.modifiers() & Qt::ShiftModifier) ? 1 : -1), 0,
            m_gridModel->columnCount() - 1);
    TxtPrice_LostFocus();
    storeSideBox(ProductRecord::Price);
    sayIfNoPrice(Cell(m_ui.TxtPrice->text()));
    grid->setFocus(Qt::OtherFocusReason);
    grid->setCurrentIndex(m_gridModel->index(gridRow, column));
    return true;
}

void ProductGridController::sayRowStanding(int row)
{
    // A part number another product has already, or none at all, is taken as typed, but said
    // at every change of the product until it is put right: quotes and imports find a product
    // by its number and would take the other one, and the file keeps no product without one.
    const QString said =
        ProductCommands::rowStandingText(m_module.Catalogue(), row, m_module.locale());
    if (!said.isEmpty())
        showRowStatus(said);
}

void ProductGridController::sayIfNoPrice(const Cell &price)
{
    // Kept as typed, as the catalogue keeps any text; but a quote would charge nothing for it.
    const QString said = PriceSchedule::listPriceNotice(price, m_module.locale());
    if (!said.isEmpty())
        showRowStatus(said);
}

bool ProductGridController::scheduleCellTyped(int row, int column, const Cell &value)
{
    Table shown = m_module.ScheduleTable();
    shown.put(row, column, value);
    const bool taken = CatalogueEdits::setSchedule(m_history, m_shownView, m_shownView.row, shown);
    refreshGridRow(m_shownView.row);
    // The ladder as typed so far is checked at once; the warning never stops the typing.
    const auto problems = PriceLadder::check(
        PriceLadder::pointsOfSchedule(shown), Cell(m_ui.TxtPrice->text()), m_module.locale());
    showRowStatus(PriceLadder::describe(problems));
    return taken;
}

void ProductGridController::productsChanged(const ProductChange &change)
{
    // What the status bar said about a product is no news once the catalogue has changed
    // (the step that calls for new words gives them after this).
    clearRowStatus();
    if (!change.replayed)
        return;
    // A step undone or redone: the grid goes to the row it names, and the side boxes and the
    // schedule show that row as they did then.
    m_gridTag.clear();
    if (change.onProductTab)
        m_ui.SSTabmain->setCurrentIndex(0);
    const ProductView &view = change.view;
    if (change.rowsChanged) {
        m_gridModel->reload();
    } else {
        refreshGridRow(view.row);
        refreshGridRows(change.firstRow, change.lastRow);
    }
    const bool isRow = view.row >= 1 && view.row <= m_gridModel->rowCount();
    m_repositioning = true;
    if (isRow)
        m_ui.GrdMain->setCurrentIndex(m_gridModel->index(view.row - 1, view.column));
    else
        m_ui.GrdMain->selectionModel()->clear();
    m_repositioning = false;
    if (!isRow) {
        clearSideBoxes();
        clearScheduleShown();
        m_shownView = {};
        return;
    }
    showSideBoxes(ProductRow::sideBoxes(m_module.Catalogue(), view.row, m_module.locale()));
    if (!change.scheduleKept)
        PriceSchedule::PriceUpdate(m_module.Catalogue(), view.row, m_module.ScheduleTable());
    m_scheduleModel->reload();
    m_shownView = view;
}

} // namespace tarnwick
