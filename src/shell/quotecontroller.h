#pragma once

#include "commands/edithistory.h"
#include "quotebook/quotesession.h"

#include <QObject>
#include <QPoint>

class QAction;
class QMenu;
class QWidget;

namespace tarnwick {

struct AppServices;
struct MainWindowUi;
class Module1;
class QuoteGridModel;
class Table;

/// The quote tab: the quote grid over the shared quote table, its totals, its context menu
/// and the quote commands (add a product, remove lines, reset prices, discounts). Every change
/// of the quote is asked of the history of changes (QuoteEdits); an undo or redo of a step opens
/// the quote tab with the grid where it stood. The main window owns one and forwards its
/// handlers here.
class QuoteController : public QObject
{
    Q_OBJECT

public:
    static constexpr QLatin1String GridHint { "Right click on products for options." };
    static constexpr QLatin1String UnlockQuestion { "Unlock the locked prices too?" };

    QuoteController(const AppServices &services, Module1 &module, EditHistory &history,
        MainWindowUi &ui, QMenu *quoteMenu, QObject *parent = nullptr);

    /// Creates the empty quote table (250 lines of 7 fields) and binds the quote grid to it.
    void bind();

    /// Adds catalogue row as a new line at list price, quantity 1, opens the quote tab and
    /// shows the totals. A full quote is refused with a message and stays unchanged.
    void addProduct(int catalogueRow, const QString &includesText);
    void removeCurrentLine();
    void removeAllLines();
    /// "&Reset Prices"; with locked lines it first asks whether to unlock them too.
    void resetPrices();
    /// "Lock Price": locks the current line's unit price, or unlocks it when it is locked.
    void toggleLock();
    /// "Price at Quantities": opens FrmQuantities for the current line; OK keeps the
    /// quantities with the line as one step.
    void showQuantities(QWidget *owner);
    /// The next break of the current line under the totals (LblNextBreak).
    void showNextBreak();
    /// Opens the discount window for all lines, or for the current line only.
    void showDiscountAll(QWidget *owner);
    void showDiscountLine(QWidget *owner);
    /// Recomputes the total, the discount amount and the discount percent.
    void QuotePrice();

    /// The quote in hand put back at start-up (not a step of the history): the quote's lines
    /// become lines; the grid and the totals follow. False, with the quote unchanged, when
    /// there are more lines than the quote holds.
    bool replaceLines(const Table &lines);
    /// Says in the status bar while a line holds a quantity or price that is no number
    /// (QuoteList::unreadNotice), and takes it back once none does.
    void sayUnreadCells();
    /// After a message about the quote as a whole (copied, saved, written as a PDF, sent):
    /// while lines are charged $0.00 so, the message goes on to say which, so the quote never
    /// leaves Tarnwick with such a line unmentioned; it is taken back with the notice.
    void sayUnreadCellsAfter(const QString &message);
    /// The grid and the totals after the whole quote was replaced (a quote opened, a new one):
    /// the grid at view, the totals shown or, with view.totalsCleared, empty.
    void showQuote(const QuoteView &view);

    /// The quote grid's current row (0-based), -1 when there is none.
    int currentGridRow() const;
    /// Where the quote grid stands, for the history.
    QuoteView currentView() const;
    /// Stores an open cell editor of the quote grid (before an undo or a redo, a command, a
    /// close), except a part number emptied and not entered, which is dropped.
    void storePendingEdit();
    /// What is being typed into a cell of the quote grid and not stored yet, with the lines as
    /// storing it would leave them; none when no cell is being typed into or the typing would
    /// change nothing.
    std::optional<QuoteSession::Typing> typing() const;
    /// View → Refresh: stores an open cell editor, reads the quote table into the grid again,
    /// the same cell current, and recomputes the totals.
    void redraw();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// The next break's text, and its name for assistive tools (an empty label says so).
    void setNextBreakText(const QString &text);
    /// Shows a step that was undone or redone.
    void quoteChanged(const QuoteChange &change);
    void clearTotals();
    void GrdQuote_MouseUp(Qt::MouseButton Button, const QPoint &position);
    void GrdQuote_MouseMove();
    void moveToRow(int gridRow, int column = 0);
    /// "Lock Price" is checked on a locked line; it and "Price at Quantities" are enabled on a
    /// line.
    void updateLineItems();
    QAction *menuItem(const char *name) const;

    const AppServices &m_services;
    Module1 &m_module;
    EditHistory &m_history;
    /// The status bar's words about a quantity or price the quote holds as no number.
    QString m_typedNotice;
    MainWindowUi &m_ui;
    QMenu *m_quoteMenu;
    QuoteGridModel *m_model = nullptr;
    /// The total boxes show no totals: at the start, before the first line, and after
    /// "Remove All".
    bool m_totalsCleared = true;
};

} // namespace tarnwick
