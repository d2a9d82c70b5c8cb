#include "shell/productgridcontroller.h"

#include "catalogue/cataloguetext.h"
#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "commands/catalogueedits.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "platform/appservices.h"
#include "platform/iprompts.h"
#include "products/priceschedule.h"
#include "products/productcommands.h"
#include "products/productgridmodel.h"
#include "products/productrow.h"
#include "products/schedulemodel.h"
#include "shell/cataloguework.h"
#include "shell/cellmarkdelegate.h"
#include "shell/gridview.h"
#include "shell/inputorder.h"
#include "shell/mainwindowui.h"
#include "shell/shelldialogs.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPlainTextEdit>

namespace tarnwick {

namespace {
/// The price schedule's columns: quantity and unit price.
constexpr int ScheduleFields = 2;
/// A click on the current cell opens no editor: Qt delays that editor by the double-click
/// time, and keys typed meanwhile would go to the grid's keyboard search and move the current
/// row. Typing opens the editor on the cell clicked, with the first key in it.
constexpr QAbstractItemView::EditTriggers EditTriggers = QAbstractItemView::DoubleClicked
    | QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed;
} // namespace

ProductGridController::ProductGridController(const AppServices &services, Module1 &module,
    EditHistory &history, MainWindowUi &ui, QAction *editButton, QMenu *gridMenu,
    QMenu *scheduleMenu, QObject *parent)
    : QObject(parent), m_services(services), m_module(module), m_history(history), m_ui(ui),
      m_editButton(editButton), m_gridMenu(gridMenu), m_scheduleMenu(scheduleMenu),
      m_search(services.prompts, &services.events)
{
    connect(
        &m_history, &EditHistory::productsChanged, this, &ProductGridController::productsChanged);
    // Keys typed into a cell just before a click on another row belong to the cell typed in:
    // the click waits for keys still on their way through the accessibility bus.
    new InputOrder(this);
}

void ProductGridController::bind(int firstColumnWidth)
{
    GridView *grid = m_ui.GrdMain;
    m_gridModel = new ProductGridModel(m_module.Catalogue(), m_module.locale(), this);
    m_gridModel->setCellWriter(
        [this](int row, int field, const Cell &value) { return gridCellTyped(row, field, value); });
    grid->setModel(m_gridModel);
    grid->setColumnWidth(0, firstColumnWidth);
    grid->setColumnWidth(1, grid->fontMetrics().horizontalAdvance(QLatin1Char('M')) * 16);
    grid->horizontalHeader()->setSectionsClickable(true);
    grid->viewport()->setMouseTracking(true);
    grid->viewport()->installEventFilter(this);
    grid->installEventFilter(this);
    // Outside edit mode the cursor keeps to the part-number column: Tab and Shift+Tab leave the
    // grid rather than snap back to the same cell or wrap to the product above.
    grid->setTabLeavesGrid(!editMode());
    connect(m_editButton, &QAction::toggled, grid,
        [grid](bool editing) { grid->setTabLeavesGrid(!editing); });
    connect(grid->selectionModel(), &QItemSelectionModel::currentChanged, this,
        &ProductGridController::GrdMain_RowColChange);
    connect(grid->horizontalHeader(), &QHeaderView::sectionClicked, this,
        &ProductGridController::GrdMain_HeadClick);

    m_module.ScheduleTable().redim(ProductRecord::PricePointCount, ScheduleFields);
    m_scheduleModel = new ScheduleModel(m_module.ScheduleTable(), m_module.locale(), this);
    m_scheduleModel->setCellWriter([this](int row, int column, const Cell &value) {
        return scheduleCellTyped(row, column, value);
    });
    m_scheduleModel->setListPriceSource([this] { return Cell(m_ui.TxtPrice->text()); });
    m_ui.PriceSchedule->setModel(m_scheduleModel);
    m_ui.PriceSchedule->setCellDelegate(new CellMarkDelegate(
        ScheduleModel::ProblemRole, CellMarkDelegate::warningIcon(), m_ui.PriceSchedule));
    m_ui.PriceSchedule->viewport()->installEventFilter(this);
    m_ui.PriceSchedule->installEventFilter(this);
    m_ui.TxtPrice->installEventFilter(this);
    m_ui.Txtincludes->installEventFilter(this);
    m_ui.Txtnotes->installEventFilter(this);
    m_ui.PriceSchedule->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    setEditMode(false);
    if (m_gridModel->rowCount() > 0)
        moveToRow(0);
}

bool ProductGridController::editMode() const
{
    return m_editButton->isChecked();
}

int ProductGridController::currentBookmark() const
{
    const QModelIndex current = m_ui.GrdMain->currentIndex();
    return current.isValid() ? ProductGridModel::bookmarkOfRow(current.row()) : 0;
}

ProductView ProductGridController::currentView() const
{
    const QModelIndex current = m_ui.GrdMain->currentIndex();
    return { currentBookmark(), current.isValid() ? current.column() : 0 };
}

void ProductGridController::moveToRow(int gridRow)
{
    m_repositioning = true;
    if (gridRow >= 0 && gridRow < m_gridModel->rowCount())
        m_ui.GrdMain->setCurrentIndex(m_gridModel->index(gridRow, 0));
    m_repositioning = false;
    showCurrentRow();
}

void ProductGridController::GrdMain_RowColChange(
    const QModelIndex &current, const QModelIndex &previous)
{
    if (m_repositioning)
        return;
    const bool writeBack = editMode() && previous.isValid() && m_gridTag != AddingNew;
    if (writeBack) {
        // Also when only the column changed: the row is shown again below, and what was typed
        // into the side boxes must be in the table first.
        writeBackRow({ ProductGridModel::bookmarkOfRow(previous.row()), previous.column() });
    } else if (!editMode() && current.isValid() && current.column() != 0) {
        // Outside edit mode the cursor stays in the first column; in edit mode (also on a
        // fresh row) it goes to the cell the user chose, so the keys land there.
        // The selection is left to the click or key that moved the cursor: with Ctrl held
        // the grid would otherwise toggle the clicked row out of the selection again.
        m_repositioning = true;
        m_ui.GrdMain->selectionModel()->setCurrentIndex(
            current.siblingAtColumn(0), QItemSelectionModel::NoUpdate);
        m_repositioning = false;
    }
    m_gridTag.clear();
    showCurrentRow();
}

void ProductGridController::showCurrentRow()
{
    const int row = currentBookmark();
    if (row < 1 || row > m_module.Catalogue().rowCount())
        return;
    showSideBoxes(ProductRow::sideBoxes(m_module.Catalogue(), row, m_module.locale()));
    PriceSchedule::PriceUpdate(m_module.Catalogue(), row, m_module.ScheduleTable());
    m_scheduleModel->reload();
    m_shownView = currentView();
    // What the status bar said about the product left is no news for this one.
    clearRowStatus();
}

void ProductGridController::clearRowStatus()
{
    if (!m_rowStatus.isEmpty() && m_ui.sbPanel1->text() == m_rowStatus)
        showRowStatus(QString());
}

void ProductGridController::showRowStatus(const QString &text)
{
    m_rowStatus = text;
    m_ui.sbPanel1->setText(text);
    // A long text goes past the window's edge: the tool tip holds all of it.
    m_ui.sbPanel1->setToolTip(plainToolTip(text));
}

void ProductGridController::GrdMain_HeadClick(int ColIndex)
{
    // The cell edit in progress and what was typed into the side boxes are stored in their own
    // row, as leaving the row stores them, before the rows move: the sort costs nothing typed.
    storeEditsBeforeStep();
    CatalogueEdits::sort(m_history, currentView(), ProductGridModel::fieldOfColumn(ColIndex));
    MainRefresh(false);
    m_repositioning = true;
    m_ui.GrdMain->setCurrentIndex(m_gridModel->index(0, 0));
    m_repositioning = false;
    m_editButton->setChecked(false); // a header click always ends edit mode, without storing
    setEditMode(false);
    showCurrentRow();
}

void ProductGridController::MainRefresh(bool keepCurrentRow)
{
    const QModelIndex current = m_ui.GrdMain->currentIndex();
    m_gridModel->reload();
    if (!keepCurrentRow || !current.isValid())
        return;
    const int row = qMin(current.row(), m_gridModel->rowCount() - 1);
    m_repositioning = true;
    if (row >= 0)
        m_ui.GrdMain->setCurrentIndex(m_gridModel->index(row, current.column()));
    m_repositioning = false;
}

void ProductGridController::GrdMain_MouseUp(Qt::MouseButton Button, const QPoint &position)
{
    if (Button != Qt::RightButton)
        return;
    const int row = m_ui.GrdMain->rowAt(position.y());
    if (row < 0 || row >= m_gridModel->rowCount())
        return;
    m_ui.GrdMain->setCurrentIndex(m_gridModel->index(row, 0));
    popUpGridMenu(m_ui.GrdMain->viewport()->mapToGlobal(position));
}

void ProductGridController::PriceSchedule_MouseUp(Qt::MouseButton Button, const QPoint &position)
{
    if (Button != Qt::RightButton)
        return;
    const QModelIndex index = m_ui.PriceSchedule->indexAt(position);
    if (!index.isValid())
        return;
    m_ui.PriceSchedule->setCurrentIndex(index);
    m_scheduleMenu->popup(m_ui.PriceSchedule->viewport()->mapToGlobal(position));
}

void ProductGridController::TxtPrice_LostFocus()
{
    m_ui.TxtPrice->setText(PriceSchedule::formatPriceBox(m_ui.TxtPrice->text(), m_module.locale()));
    m_scheduleModel->recheck();
}

void ProductGridController::popUpGridMenu(const QPoint &globalPosition)
{
    m_gridMenu->popup(globalPosition);
}

void ProductGridController::GrdMain_MouseMove()
{
    m_ui.sbPanel1->setText(
        QString::number(m_module.AllProducts().Count()) + QStringLiteral(" Products"));
}

bool ProductGridController::eventFilter(QObject *watched, QEvent *event)
{
    GridView *grid = m_ui.GrdMain;
    if (event->type() == QEvent::FocusOut) {
        // Leaving a side box stores it (a menu or another window taking the keyboard for a
        // moment does not leave it).
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        const bool left = reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason;
        if (watched == m_ui.TxtPrice) {
            TxtPrice_LostFocus();
            m_priceFromGrid = false;
        }
        if (left && watched == m_ui.TxtPrice) {
            storeSideBox(ProductRecord::Price);
            sayIfNoPrice(Cell(m_ui.TxtPrice->text()));
        } else if (left && watched == m_ui.Txtincludes)
            storeSideBox(ProductRecord::Includes);
        else if (left && watched == m_ui.Txtnotes)
            storeSideBox(ProductRecord::Notes);
    } else if (watched == m_ui.PriceSchedule->viewport()
        && event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        PriceSchedule_MouseUp(mouse->button(), mouse->position().toPoint());
    } else if (watched == grid->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        GrdMain_MouseUp(mouse->button(), mouse->position().toPoint());
    } else if (watched == grid->viewport() && event->type() == QEvent::MouseMove) {
        GrdMain_MouseMove();
    } else if (watched == m_ui.PriceSchedule && event->type() == QEvent::ContextMenu) {
        // The menu key and Shift+F10 open the schedule's menu at its current cell.
        const auto *menuEvent = static_cast<QContextMenuEvent *>(event);
        if (menuEvent->reason() == QContextMenuEvent::Keyboard
            && m_ui.PriceSchedule->currentIndex().isValid())
            m_scheduleMenu->popup(m_ui.PriceSchedule->keyboardMenuPosition());
        return true;
    } else if (watched == grid && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        // Outside edit mode the cursor keeps to the part number: Left and Right move nothing
        // (moving there and back would tell assistive tools of a cell it never stays in).
        if (!editMode() && !grid->isEditing() && key->modifiers() == Qt::NoModifier
            && (key->key() == Qt::Key_Left || key->key() == Qt::Key_Right))
            return true;
        if (priceCellTyped(*key))
            return true;
    } else if (watched == m_ui.TxtPrice && event->type() == QEvent::KeyPress) {
        if (priceBoxKey(*static_cast<QKeyEvent *>(event)))
            return true;
    } else if (watched == grid && event->type() == QEvent::ContextMenu) {
        // The menu key and Shift+F10 open the menu for the current row; a right click opens it
        // on release.
        const auto *menuEvent = static_cast<QContextMenuEvent *>(event);
        if (menuEvent->reason() == QContextMenuEvent::Keyboard && grid->currentIndex().isValid())
            popUpGridMenu(grid->keyboardMenuPosition());
        return true;
    }
    return QObject::eventFilter(watched, event);
}

bool ProductGridController::priceCellTyped(const QKeyEvent &key)
{
    const QString text = key.text();
    if (!editMode() || text.isEmpty() || !text.front().isPrint()
        || (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)))
        return false;
    const QModelIndex current = m_ui.GrdMain->currentIndex();
    if (!current.isValid() || (current.flags() & Qt::ItemIsEditable))
        return false;
    if (ProductGridModel::fieldOfColumn(current.column()) == ProductRecord::Price) {
        // As typing into a cell: the box's text is replaced by what is typed, in view.
        m_ui.SSTabmain->setCurrentIndex(0); // the Product tab, which holds the box
        m_ui.TxtPrice->setFocus(Qt::OtherFocusReason);
        m_ui.TxtPrice->setText(text);
        m_priceFromGrid = true;
        return true;
    }
    showRowStatus(tr("Price points are typed in the Price Schedule of the Product tab (F6 "
                     "goes there)."));
    return true;
}

void ProductGridController::setSideBoxesLocked(bool locked)
{
    m_ui.TxtPrice->setReadOnly(locked);
    m_ui.Txtincludes->setReadOnly(locked);
    m_ui.Txtnotes->setReadOnly(locked);
}

void ProductGridController::setEditMode(bool on)
{
    setSideBoxesLocked(!on);
    m_gridModel->setEditable(on);
    m_ui.GrdMain->setEditTriggers(on ? EditTriggers : QAbstractItemView::NoEditTriggers);
    m_scheduleModel->setEditable(on);
    m_ui.PriceSchedule->setEditTriggers(on ? EditTriggers : QAbstractItemView::NoEditTriggers);
}

void ProductGridController::clearSideBoxes()
{
    showSideBoxes({});
}

void ProductGridController::showSideBoxes(const SideBoxTexts &boxes)
{
    m_ui.TxtPrice->setText(boxes.price);
    m_ui.Txtincludes->setPlainText(boxes.includes);
    m_ui.Txtnotes->setPlainText(boxes.notes);
    m_boxesGiven = boxes;
    m_includesShown = m_ui.Txtincludes->toPlainText();
    m_notesShown = m_ui.Txtnotes->toPlainText();
}

void ProductGridController::showNoRow()
{
    m_repositioning = true;
    m_ui.GrdMain->selectionModel()->clear();
    m_repositioning = false;
    clearSideBoxes();
    clearScheduleShown();
    m_shownView = {};
}

void ProductGridController::editButtonToggled()
{
    if (editMode()) {
        setEditMode(true);
        return;
    }
    commitCurrentRow();
    setEditMode(false);
}

SideBoxTexts ProductGridController::boxTexts() const
{
    // A multi-line box hands its lines over ended by LF; the catalogue keeps CR LF. A box
    // still showing what it was given gives that back: it shows a lone LF or CR, a line
    // separator or a no-break space its own way, and reading it back would change a note
    // no one typed in.
    const auto lines = [](const QPlainTextEdit *box, const QString &shown, const QString &given) {
        QString text = box->toPlainText();
        return text == shown ? given : text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    };
    return { m_ui.TxtPrice->text(), lines(m_ui.Txtincludes, m_includesShown, m_boxesGiven.includes),
        lines(m_ui.Txtnotes, m_notesShown, m_boxesGiven.notes) };
}

bool ProductGridController::boxesAsShown(int row) const
{
    const Table &catalogue = m_module.Catalogue();
    Table shownSchedule(ProductRecord::PricePointCount, ScheduleFields);
    PriceSchedule::PriceUpdate(catalogue, row, shownSchedule);
    const Table &schedule = m_module.ScheduleTable();
    if (schedule.rowCount() != shownSchedule.rowCount()
        || schedule.fieldCount() != shownSchedule.fieldCount())
        return false;
    for (int r = 1; r <= schedule.rowCount(); ++r) {
        for (int f = 1; f <= schedule.fieldCount(); ++f) {
            if (!(schedule.get(r, f) == shownSchedule.get(r, f)))
                return false;
        }
    }
    const SideBoxTexts shown = ProductRow::sideBoxes(catalogue, row, m_module.locale());
    const SideBoxTexts boxes = boxTexts();
    return boxes.price == shown.price && boxes.includes == shown.includes
        && boxes.notes == shown.notes;
}

int ProductGridController::pendingRow(Table &row) const
{
    const int at = currentBookmark();
    const Table &catalogue = m_module.Catalogue();
    if (!editMode() || at < 1 || at > catalogue.rowCount())
        return 0;
    // A part number or name still being typed into the grid's cell counts too (a new
    // product's name is typed there).
    int typedField = 0;
    QString typed;
    if (const auto *editor = qobject_cast<const QLineEdit *>(m_ui.GrdMain->openEditor())) {
        typedField = ProductGridModel::fieldOfColumn(m_ui.GrdMain->currentIndex().column());
        typed = withoutFieldEndCharacters(editor->text());
        const Cell &stored = catalogue.get(at, typedField);
        if (typed == (stored.isNull() ? QString() : conv::toText(stored, m_module.locale())))
            typedField = 0;
    }
    if (typedField == 0 && boxesAsShown(at))
        return 0;
    for (int field = 1; field <= ProductRecord::FieldCount; ++field)
        row.put(1, field, catalogue.get(at, field));
    Table scheduleCopy = m_module.ScheduleTable();
    ProductRow::writeBack(row, 1, boxTexts(), scheduleCopy, m_module.locale());
    if (typedField != 0)
        row.put(1, typedField, Cell(typed));
    return at;
}

void ProductGridController::catalogueReplaced()
{
    m_gridModel->reload();
    if (m_gridModel->rowCount() > 0)
        moveToRow(0);
    showCurrentRow();
}

void ProductGridController::insertProduct()
{
    const ProductView before = currentView();
    if (editMode())
        commitCurrentRow();
    m_gridTag = AddingNew;
    const int row = CatalogueEdits::insertProduct(m_history, before, before.row);
    MainRefresh(false);
    m_repositioning = true;
    m_ui.GrdMain->setCurrentIndex(m_gridModel->index(row - 1, 0));
    m_repositioning = false;
    // The boxes are emptied before the keyboard leaves the one it is in: leaving a box stores
    // it into the row shown, which is the new product now.
    clearScheduleShown();
    clearSideBoxes();
    m_shownView = { row, 0 };
    m_ui.GrdMain->setFocus();
    m_editButton->setChecked(true);
    setEditMode(true);
}

void ProductGridController::deleteProduct()
{
    // The command deletes the current product only: while it asks, only that row is shown
    // selected, and a "No" gives the other rows their selection back.
    QItemSelectionModel *selection = m_ui.GrdMain->selectionModel();
    const QItemSelection selected = selection->selection();
    const QModelIndex current = selection->currentIndex();
    // From the ranges, not the rows: Ctrl+A on a million products is one range.
    const bool narrowed = current.isValid()
        && (selected.size() > 1 || (selected.size() == 1 && selected.first().height() > 1));
    if (narrowed)
        selection->select(current, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (m_services.prompts.msgBox(ProductCommands::DeleteQuestion, ProductCommands::DeleteStyle,
            ProductCommands::DeleteTitle)
        != MsgResult::Yes) {
        if (narrowed)
            selection->select(selected, QItemSelectionModel::ClearAndSelect);
        return;
    }
    storeEditsBeforeStep();
    CatalogueEdits::deleteProduct(m_history, currentView(), currentBookmark());
    // No row stays current: the emptied side boxes must not be written into another product.
    MainRefresh(false);
    showNoRow();
}

void ProductGridController::deleteAllProducts()
{
    if (m_services.prompts.msgBox(ProductCommands::DeleteAllQuestion, ProductCommands::DeleteStyle,
            ProductCommands::DeleteTitle)
        != MsgResult::Yes)
        return;
    storeEditsBeforeStep();
    CatalogueEdits::deleteAll(m_history, currentView());
    MainRefresh(false);
    showNoRow();
}

void ProductGridController::setCatalogueWork(CatalogueWork *work)
{
    m_work = work;
    // A header click's sort (and its undo and redo) of a large catalogue runs as such work.
    m_history.setWorkRunner([work](const std::function<void()> &sort) { work->run(sort); });
    // While another thread works on the catalogue, the grid shows what it showed and its
    // model reads nothing; the work's end reloads it.
    connect(work, &CatalogueWork::started, this, [this] {
        // What waits to be drawn (the row the keys just moved to) is drawn now, from the
        // catalogue as it is: drawn during the work, it would show empty cells.
        m_ui.GrdMain->repaint();
        m_ui.GrdMain->setUpdatesEnabled(false);
        if (m_gridModel)
            m_gridModel->setFrozen(true);
    });
    connect(work, &CatalogueWork::finished, this, [this] {
        if (m_gridModel)
            m_gridModel->setFrozen(false);
        m_ui.GrdMain->setUpdatesEnabled(true);
    });
}

void ProductGridController::findProduct(IShellDialogs &dialogs)
{
    const QString entered =
        dialogs.askText(ProductSearch::Title, m_search.prompt(), m_search.rememberedText());
    const QModelIndex current = m_ui.GrdMain->currentIndex();
    const int row = m_search.find(
        entered, current.isValid() ? current.row() : -1, m_module.Catalogue(), m_module.locale());
    if (row < 0)
        return;
    m_ui.GrdMain->setCurrentIndex(m_gridModel->index(row, 0));
    // The keyboard goes to the product found, wherever it was before the search: the next key
    // (Ctrl+D, the menu key) is meant for it.
    m_ui.GrdMain->setFocus(Qt::OtherFocusReason);
}

void ProductGridController::refresh()
{
    // What is being typed is stored first, as leaving the row stores it; the sort is a step of
    // its own.
    storeEditsBeforeStep();
    const int current = currentBookmark();
    Table &catalogue = m_module.Catalogue();
    Table product(1, ProductRecord::FieldCount);
    if (current >= 1 && current <= catalogue.rowCount()) {
        for (int field = 1; field <= ProductRecord::FieldCount; ++field)
            product.put(1, field, catalogue.get(current, field));
    }
    if (!CatalogueEdits::refresh(m_history, currentView()))
        m_module.SortedByPart = true; // already in part-number order
    MainRefresh(false);
    const int row = current >= 1 ? ProductCommands::findProduct(catalogue, product) : 0;
    if (row < 1) {
        showNoRow();
        return;
    }
    moveToRow(row - 1);
    m_ui.GrdMain->scrollTo(m_ui.GrdMain->currentIndex());
}

} // namespace tarnwick
