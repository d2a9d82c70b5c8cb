#pragma once

#include <QObject>
#include <QUndoCommand>
#include <QUndoStack>

#include <functional>
#include <vector>

namespace tarnwick {

class Module1;

/// Where the product grid stands: the catalogue row it shows (1-based; 0 for none) and the grid
/// column of its cursor.
struct ProductView
{
    int row = 0;
    int column = 0;
};

/// Where the quote grid stands: the quote row of its cursor (1-based; 0 for none), its column,
/// and whether the total boxes are empty ("Remove All" empties them) rather than showing the
/// totals.
struct QuoteView
{
    int row = 0;
    int column = 0;
    bool totalsCleared = false;
};

/// What a step did to the catalogue, for the windows that show it.
struct ProductChange
{
    /// Where the grid goes: after the change, or, for an undo, where it stood before it.
    ProductView view;
    /// Rows were added, removed or moved: the grid reads the catalogue again.
    bool rowsChanged = false;
    /// The price schedule shows what the step left in the schedule table; otherwise it shows
    /// the price points of the row in view.
    bool scheduleKept = false;
    /// An undo or a redo, not the user's own change (which the window shows itself).
    bool replayed = false;
    /// The first and last catalogue rows whose cells the step changed (0 when it changed no
    /// cell in place), for the grid to show them again.
    int firstRow = 0;
    int lastRow = 0;
    /// The step changed what only the Product tab shows (a side box or the price schedule):
    /// an undo or redo brings that tab forward, as one of the quote brings the Quote tab.
    bool onProductTab = false;
};

/// What a step did to the quote, for the windows that show it.
struct QuoteChange
{
    QuoteView view;
    bool replayed = false;
};

/// One step of the history: a change of the catalogue or of the quote that can be taken back.
/// redo() does the change (QUndoStack::push runs it at once), undo() restores the state before
/// it; each tells the windows through the history, so a change made by undo or redo is shown
/// as the user's own change is.
class EditCommand : public QUndoCommand
{
public:
    ~EditCommand() override;

    /// Whether the step changes the catalogue (and so the catalogue file at the next save);
    /// steps of the quote change only the quote.
    virtual bool changesCatalogue() const = 0;
    /// For a step that only moves the catalogue's rows (a sort): where each row went, entry k
    /// being the row that went to row k + 1 (empty when none moved); nullptr for a step that
    /// changes anything else. Sorts that together put every row back count as no change.
    virtual const std::vector<int> *rowOrder() const { return nullptr; }

    void redo() final;
    void undo() final;

protected:
    EditCommand(Module1 &module, const QString &text);

    /// Does the change.
    virtual void forward() = 0;
    /// Takes the change back.
    virtual void backward() = 0;
    /// Tells the windows what the step did (undone: after an undo; replayed: not its first run).
    virtual void announce(bool undone, bool replayed) = 0;

    Module1 &module() const { return m_module; }

private:
    Module1 &m_module;
    bool m_done = false;
};

/// The one history of the changes of a run, in memory and without limit: every change of the
/// catalogue and the quote is a step (an EditCommand) pushed here, and undo and redo walk it.
/// It also tells whether the catalogue is as last saved: a save marks the stack's clean state,
/// and the catalogue counts as saved while every step between the current position and the
/// saved one changes the quote only.
class EditHistory : public QObject
{
    Q_OBJECT

public:
    explicit EditHistory(Module1 &module, QObject *parent = nullptr);
    ~EditHistory() override;

    Module1 &module() const { return m_module; }
    const QUndoStack &stack() const { return m_stack; }

    /// Does the change and keeps it as the newest step, dropping the steps undone before it.
    /// The history owns the command.
    void push(EditCommand *command);

    bool canUndo() const { return m_stack.canUndo(); }
    bool canRedo() const { return m_stack.canRedo(); }
    /// The name of the step Undo would take back ("Delete Product TW-200"); empty for none.
    QString undoText() const { return m_stack.undoText(); }
    QString redoText() const { return m_stack.redoText(); }
    void undo();
    void redo();
    /// The number of steps kept (done and undone).
    int count() const { return m_stack.count(); }
    /// The step at position index (0 is the oldest), for looking at; nullptr outside.
    const EditCommand *command(int index) const;

    /// The catalogue was saved: the current position is the saved state.
    void setSaved();
    /// Whether the catalogue is as at the last save (at the start: as read).
    bool catalogueSaved() const;

    /// Runs the long part of a step (the sort of a large catalogue): at once, unless the window
    /// gave a runner that does it on a worker thread while the window keeps answering.
    using WorkRunner = std::function<void(const std::function<void()> &)>;
    void setWorkRunner(WorkRunner runner) { m_runner = std::move(runner); }
    void runWork(const std::function<void()> &work) const;

    /// Called by the steps: tells the windows what changed.
    void announce(const ProductChange &change);
    void announce(const QuoteChange &change);

Q_SIGNALS:
    void productsChanged(const tarnwick::ProductChange &change);
    void quoteChanged(const tarnwick::QuoteChange &change);
    /// The catalogue came to or left its saved state (by a change, an undo, a redo or a save).
    void catalogueSavedChanged(bool saved);
    /// Undo or redo became possible or impossible, or the names of their steps changed.
    void stepsChanged();

private:
    /// Whether any step in positions from..to-1 changes the catalogue.
    bool changesCatalogueBetween(int from, int to) const;
    void positionChanged();

    Module1 &m_module;
    WorkRunner m_runner;
    QUndoStack m_stack;
    /// The position of the saved state; -1 once the steps leading back to it were dropped.
    int m_savedIndex = 0;
    bool m_saved = true;
};

} // namespace tarnwick
