#include "shell/quotecontroller.h"

#include "catalogue/module1.h"
#include "commands/quoteedits.h"
#include "core/conversions.h"
#include "platform/appservices.h"
#include "platform/iprompts.h"
#include "products/ui/frmdiscount.h"
#include "products/ui/frmdiscountprod.h"
#include "products/ui/frmquantities.h"
#include "quotes/quoteaids.h"
#include "quotes/quotediscount.h"
#include "quotes/quotegridmodel.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"
#include "quotes/quotepricing.h"
#include "shell/accessiblenames.h"
#include "shell/cellmarkdelegate.h"
#include "shell/columnwidths.h"
#include "shell/gridview.h"
#include "shell/mainwindowui.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTabWidget>
#include <QTableView>

namespace tarnwick {

namespace {
constexpr int QuoteTab = 1;
}

QuoteController::QuoteController(const AppServices &services, Module1 &module, EditHistory &history,
    MainWindowUi &ui, QMenu *quoteMenu, QObject *parent)
    : QObject(parent), m_services(services), m_module(module), m_history(history), m_ui(ui),
      m_quoteMenu(quoteMenu)
{
    connect(&m_history, &EditHistory::quoteChanged, this, &QuoteController::quoteChanged);
}

void QuoteController::bind()
{
    m_module.QuoteTable().redim(QuoteLine::MaxLines, QuoteLine::FieldCount);
    m_model =
        new QuoteGridModel(m_module.QuoteTable(), m_module.Catalogue(), m_module.locale(), this);
    m_model->setCellWriter([this](int row, int column, const QString &text) {
        const QuoteView before = currentView();
        return QuoteEdits::setCell(
            m_history, { row, column, before.totalsCleared }, row, column, text);
    });
    QTableView *grid = m_ui.GrdQuote;
    grid->setModel(m_model);
    grid->setSelectionBehavior(QAbstractItemView::SelectItems);
    // No editor on a click of the current cell: Qt would open it only after the double-click
    // time and send the keys typed meanwhile to the keyboard search. Typing opens it.
    grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
        | QAbstractItemView::AnyKeyPressed);
    // The product name takes the room that the part number, the prices and the quantity
    // leave, so the extended price stays in view.
    ColumnWidths::fitQuoteGrid(grid, m_module.locale());
    const auto fitValues = [this, grid] { ColumnWidths::fitQuoteValues(grid, m_module.locale()); };
    connect(m_model, &QAbstractItemModel::dataChanged, grid, fitValues);
    connect(m_model, &QAbstractItemModel::modelReset, grid, fitValues);
    grid->viewport()->setMouseTracking(true);
    grid->viewport()->installEventFilter(this);
    grid->installEventFilter(this);
    connect(m_model, &QuoteGridModel::quoteChanged, this, &QuoteController::QuotePrice);
    m_ui.GrdQuote->setCellDelegate(
        new CellMarkDelegate(QuoteGridModel::LockedRole, CellMarkDelegate::lockIcon(), grid));
    connect(grid->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
        showNextBreak();
        updateLineItems();
    });
    connect(m_quoteMenu, &QMenu::aboutToShow, this, &QuoteController::updateLineItems);
}

int QuoteController::currentGridRow() const
{
    const QModelIndex current = m_ui.GrdQuote->currentIndex();
    return current.isValid() ? current.row() : -1;
}

QuoteView QuoteController::currentView() const
{
    const QModelIndex current = m_ui.GrdQuote->currentIndex();
    if (!current.isValid())
        return { 0, 0, m_totalsCleared };
    return { QuoteGridModel::quoteRowOf(current.row()), current.column(), m_totalsCleared };
}

void QuoteController::storePendingEdit()
{
    // Entered by the user, an emptied part number ends the quote as the rules have it, and the
    // status bar says what that leaves out; taken in by a command or a close, it is dropped.
    const auto *editor = qobject_cast<const QLineEdit *>(m_ui.GrdQuote->openEditor());
    if (editor != nullptr
        && QuoteGridModel::dropsTyping(m_ui.GrdQuote->currentIndex(), editor->text())) {
        m_ui.GrdQuote->discardPendingEdit();
        return;
    }
    m_ui.GrdQuote->commitPendingEdit();
}

std::optional<QuoteSession::Typing> QuoteController::typing() const
{
    const auto *editor = qobject_cast<const QLineEdit *>(m_ui.GrdQuote->openEditor());
    if (editor == nullptr)
        return std::nullopt;
    const QModelIndex at = m_ui.GrdQuote->currentIndex();
    std::optional<Table> lines = m_model->linesWithTyping(at, editor->text());
    if (!lines)
        return std::nullopt;
    // Never 0, which stands for no typing.
    const std::size_t digest = qHashMulti(1, at.row(), at.column(), editor->text()) | 1U;
    return QuoteSession::Typing { std::move(*lines), digest };
}

void QuoteController::moveToRow(int gridRow, int column)
{
    if (gridRow >= 0 && gridRow < m_model->rowCount())
        m_ui.GrdQuote->setCurrentIndex(m_model->index(gridRow, column));
}

void QuoteController::addProduct(int catalogueRow, const QString &includesText)
{
    const QuoteList::AddLineResult added =
        QuoteEdits::addProduct(m_history, currentView(), catalogueRow, includesText);
    if (added.status == QuoteList::AddStatus::QuoteFull) {
        m_services.prompts.msgBox(
            QuoteList::quoteFullMessage(), QuoteList::QuoteFullStyle, QStringLiteral("Quote"));
        return;
    }
    if (added.status != QuoteList::AddStatus::Added)
        return;
    m_model->reload();
    m_ui.SSTabmain->setCurrentIndex(QuoteTab);
    // The new line's quantity is what the user types next.
    moveToRow(added.row - 1, QuoteGridColumn::Quantity);
    m_ui.GrdQuote->setFocus();
    QuotePrice();
}

void QuoteController::removeCurrentLine()
{
    const int row = currentGridRow();
    if (row < 0)
        return;
    QuoteEdits::removeLine(m_history, currentView(), QuoteGridModel::quoteRowOf(row));
    m_model->reload();
    moveToRow(row);
    QuotePrice();
}

void QuoteController::removeAllLines()
{
    QuoteEdits::removeAll(m_history, currentView());
    m_model->reload();
    clearTotals();
}

void QuoteController::clearTotals()
{
    const QuoteTotals cleared = QuotePricing::clearedTotals();
    m_ui.TxtTotal->setText(cleared.total);
    m_ui.TxtDisc->setText(cleared.discount);
    m_ui.TxtQdisper->setText(cleared.percent);
    setNextBreakText(QString());
    m_totalsCleared = true;
}

void QuoteController::resetPrices()
{
    const QModelIndex current = m_ui.GrdQuote->currentIndex();
    Discount::LockedLines locked = Discount::LockedLines::Keep;
    if (Discount::anyLocked(m_module.QuoteTable())) {
        // No is the default: one Enter must not throw away every price agreed with the
        // customer.
        const int answer = m_services.prompts.msgBox(UnlockQuestion,
            MsgStyle::YesNoCancel | MsgStyle::Question | MsgStyle::DefaultButton2,
            QStringLiteral("Reset Prices"));
        if (answer != MsgResult::Yes && answer != MsgResult::No)
            return;
        if (answer == MsgResult::Yes)
            locked = Discount::LockedLines::Unlock;
    }
    QuoteEdits::resetPrices(m_history, currentView(), locked);
    QuotePrice();
    m_model->reload();
    moveToRow(0);
    if (current.isValid())
        moveToRow(current.row(), current.column());
}

void QuoteController::showDiscountAll(QWidget *owner)
{
    auto *form = new FrmDiscount(m_module.QuoteTable(), m_module.locale(), owner);
    form->setAttribute(Qt::WA_DeleteOnClose);
    form->setApply([this](float multiplier, const QString &choice) {
        QuoteEdits::discountAll(m_history, currentView(), multiplier, choice);
    });
    connect(form, &DiscountForm::discountApplied, this, [this] {
        QuotePrice();
        m_model->reload();
    });
    form->open();
}

void QuoteController::showDiscountLine(QWidget *owner)
{
    const int row = currentGridRow();
    auto *form = new FrmDiscountprod(m_module.QuoteTable(), row, m_module.locale(), owner);
    form->setAttribute(Qt::WA_DeleteOnClose);
    form->setApply([this, row](float multiplier, const QString &choice) {
        QuoteEdits::discountLine(
            m_history, currentView(), QuoteGridModel::quoteRowOf(row), multiplier, choice);
    });
    connect(form, &DiscountForm::discountApplied, this, [this] {
        const QModelIndex current = m_ui.GrdQuote->currentIndex();
        QuotePrice();
        m_model->reload();
        if (current.isValid())
            moveToRow(current.row(), current.column());
    });
    form->open();
}

void QuoteController::QuotePrice()
{
    const QuoteTotals totals = QuotePricing::QuotePrice(m_module.QuoteTable(), m_module.locale());
    m_ui.TxtTotal->setText(totals.total);
    m_ui.TxtDisc->setText(totals.discount);
    m_ui.TxtQdisper->setText(totals.percent);
    m_totalsCleared = false;
    showNextBreak();
}

void QuoteController::showNextBreak()
{
    const int row = currentGridRow() + 1;
    setNextBreakText(row < 1 ? QString()
                             : QuoteAids::nextBreakText(m_module.QuoteTable(), m_module.Catalogue(),
                                 row, m_module.locale()));
}

void QuoteController::setNextBreakText(const QString &text)
{
    m_ui.LblNextBreak->setText(text);
    // An empty label would be read by the frame's title ("Quote Details"): it says what it is.
    m_ui.LblNextBreak->setAccessibleName(text.isEmpty() ? tr("No next price break") : text);
}

QAction *QuoteController::menuItem(const char *name) const
{
    return m_quoteMenu->findChild<QAction *>(QString::fromLatin1(name));
}

void QuoteController::updateLineItems()
{
    const int row = currentGridRow() + 1;
    const bool isLine = row >= 1 && row < QuoteLine::firstFreeRow(m_module.QuoteTable());
    if (QAction *lock = menuItem("mnuQuoteLock")) {
        lock->setEnabled(isLine);
        lock->setChecked(QuoteLine::isLocked(m_module.QuoteTable(), row));
    }
    if (QAction *quantities = menuItem("mnuQuoteQuantities"))
        quantities->setEnabled(isLine);
}

void QuoteController::showQuantities(QWidget *owner)
{
    storePendingEdit();
    const int row = currentGridRow() + 1;
    const Table &quote = m_module.QuoteTable();
    if (row < 1 || row >= QuoteLine::firstFreeRow(quote))
        return;
    const QLocale locale = m_module.locale();
    const QString part = conv::toText(quote.get(row, QuoteLine::PartNumber), locale);
    const QString name = conv::toText(quote.get(row, QuoteLine::ProductName), locale);
    auto pricer = [this, part, locale](const std::vector<qint32> &quantities) {
        return QuoteAids::pricesAt(m_module.Catalogue(), part, quantities, locale);
    };
    auto *form = new FrmQuantities(QStringLiteral("%1 %2").arg(part, name).trimmed(),
        QuoteAids::quantitiesOf(quote, row), pricer, locale, owner);
    form->setAttribute(Qt::WA_DeleteOnClose);
    exposeObjectNames(form);
    connect(form, &QDialog::accepted, this, [this, form, row] {
        QuoteEdits::setQuantities(m_history, currentView(), row, form->quantities());
    });
    form->open();
}

void QuoteController::toggleLock()
{
    storePendingEdit();
    const int row = currentGridRow() + 1;
    const bool locked = QuoteLine::isLocked(m_module.QuoteTable(), row);
    if (QuoteEdits::setLocked(m_history, currentView(), row, !locked))
        Q_EMIT m_model->dataChanged(
            m_model->index(row - 1, 0), m_model->index(row - 1, QuoteGridColumn::Count - 1));
    updateLineItems();
    showNextBreak();
}

void QuoteController::sayUnreadCells()
{
    // A quantity or price kept as typed but charged as nothing is said for as long as the
    // quote holds it.
    const QString unread =
        QuoteList::unreadNotice(m_module.QuoteTable(), m_module.Catalogue(), m_module.locale());
    if (!unread.isEmpty())
        m_ui.sbPanel1->setText(unread);
    else if (!m_typedNotice.isEmpty())
        m_ui.sbPanel1->takeBack(m_typedNotice);
    m_typedNotice = unread;
}

void QuoteController::sayUnreadCellsAfter(const QString &message)
{
    const QString unread =
        QuoteList::unreadNotice(m_module.QuoteTable(), m_module.Catalogue(), m_module.locale());
    if (unread.isEmpty()) {
        m_ui.sbPanel1->setText(message);
        return;
    }
    m_typedNotice = message + QLatin1Char(' ') + unread;
    m_ui.sbPanel1->setText(m_typedNotice);
}

void QuoteController::quoteChanged(const QuoteChange &change)
{
    sayUnreadCells();
    if (!change.replayed)
        return;
    // A step undone or redone: the quote tab shows the grid where it stood then.
    m_ui.GrdQuote->discardPendingEdit();
    m_ui.SSTabmain->setCurrentIndex(QuoteTab);
    showQuote(change.view);
}

void QuoteController::showQuote(const QuoteView &view)
{
    m_model->reload();
    if (view.row >= 1)
        moveToRow(view.row - 1, view.column);
    if (view.totalsCleared)
        clearTotals();
    else
        QuotePrice();
    updateLineItems();
}

bool QuoteController::replaceLines(const Table &lines)
{
    if (!QuoteList::replaceLines(m_module.QuoteTable(), lines))
        return false;
    showQuote({ lines.rowCount() > 0 ? 1 : 0, QuoteGridColumn::Quantity, lines.rowCount() == 0 });
    sayUnreadCells();
    return true;
}

void QuoteController::GrdQuote_MouseUp(Qt::MouseButton Button, const QPoint &position)
{
    if (Button != Qt::RightButton)
        return;
    const QModelIndex index = m_ui.GrdQuote->indexAt(position);
    if (!index.isValid())
        return;
    m_ui.GrdQuote->setCurrentIndex(index);
    m_quoteMenu->popup(m_ui.GrdQuote->viewport()->mapToGlobal(position));
}

void QuoteController::GrdQuote_MouseMove()
{
    m_ui.sbPanel1->setText(GridHint);
}

bool QuoteController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_ui.GrdQuote && event->type() == QEvent::ContextMenu) {
        // The menu key and Shift+F10 open the quote menu for the current cell; a right click
        // opens it on release.
        const auto *menuEvent = static_cast<QContextMenuEvent *>(event);
        const QModelIndex current = m_ui.GrdQuote->currentIndex();
        if (menuEvent->reason() == QContextMenuEvent::Keyboard && current.isValid())
            m_quoteMenu->popup(m_ui.GrdQuote->keyboardMenuPosition());
        return true;
    }
    if (watched == m_ui.GrdQuote->viewport()) {
        if (event->type() == QEvent::MouseButtonRelease) {
            const auto *mouse = static_cast<QMouseEvent *>(event);
            GrdQuote_MouseUp(mouse->button(), mouse->position().toPoint());
        } else if (event->type() == QEvent::MouseMove) {
            GrdQuote_MouseMove();
        }
    }
    return QObject::eventFilter(watched, event);
}

void QuoteController::redraw()
{
    storePendingEdit();
    const QModelIndex current = m_ui.GrdQuote->currentIndex();
    m_model->reload();
    if (current.isValid())
        moveToRow(current.row(), current.column());
    if (QuoteLine::lineCount(m_module.QuoteTable()) > 0)
        QuotePrice();
}

} // namespace tarnwick
