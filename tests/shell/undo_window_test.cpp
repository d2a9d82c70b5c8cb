// Edit → Undo and Redo on the real main window: the captions name the step and are disabled
// when there is none; Ctrl+Z and Ctrl+Y from the grid, the side boxes and an open cell editor
// (whose typing is taken back first); the grid, the side boxes and the schedule show again
// what they showed before the step; the title's unsaved mark and the recovery file follow
// the saved state.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "commands/edithistory.h"
#include "shell/gridview.h"
#include "shell/historycontroller.h"
#include "shell/mainwindowactions.h"
#include "shell/productgridcontroller.h"

#include <QAction>
#include <QApplication>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTest>
#include <QTextCursor>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class UndoWindowTest : public SampleWindowTest
{
protected:
    void SetUp() override
    {
        SampleWindowTest::SetUp();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }

    QAction *undo() const { return action("mnuEditUndo"); }
    QAction *redo() const { return action("mnuEditRedo"); }
    /// Ctrl+Z, Ctrl+Y or Ctrl+Shift+Z pressed in whatever control has the keyboard.
    static void keys(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    /// Gives a control the keyboard, as a click into it would.
    static void focus(QWidget *control)
    {
        control->setFocus(Qt::MouseFocusReason);
        ASSERT_TRUE(QTest::qWaitFor([control] { return control->hasFocus(); }, 10000));
    }
    void deleteRow(int gridRow)
    {
        goToRow(gridRow);
        fakes->prompts.answerMessage(MsgResult::Yes);
        button("DelProd")->trigger();
    }
    QStringList partNumbers() const
    {
        QStringList parts;
        for (int row = 0; row < grid->model()->rowCount(); ++row)
            parts << grid->model()->index(row, 0).data().toString();
        return parts;
    }
    bool waitForModified(bool modified)
    {
        return QTest::qWaitFor([&] { return window->isWindowModified() == modified; }, 5000);
    }
};

TEST_F(UndoWindowTest, TheEditMenuHasUndoAndRedoBelowItDisabledWhileThereIsNothingToDo)
{
    const QMenu *edit = window->menuBar()->findChild<QMenu *>(QStringLiteral("mnuEdit"));
    ASSERT_NE(edit, nullptr);
    ASSERT_GE(edit->actions().size(), 2);
    EXPECT_EQ(edit->actions().at(0)->objectName(), QStringLiteral("mnuEditUndo"));
    EXPECT_EQ(edit->actions().at(1)->objectName(), QStringLiteral("mnuEditRedo"));
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo"));
    EXPECT_EQ(redo()->text(), QStringLiteral("&Redo"));
    EXPECT_FALSE(undo()->isEnabled());
    EXPECT_FALSE(redo()->isEnabled());
    EXPECT_EQ(undo()->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Z));
    EXPECT_EQ(redo()->shortcuts(),
        QList<QKeySequence>({ QKeySequence(Qt::CTRL | Qt::Key_Y),
            QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z) }));
}

TEST_F(UndoWindowTest, TheCaptionsNameTheStepTheyWouldTakeBackOrDoAgain)
{
    deleteRow(1); // B-200
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Delete Product B-200"));
    EXPECT_TRUE(undo()->isEnabled());
    EXPECT_FALSE(redo()->isEnabled());
    undo()->trigger();
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo"));
    EXPECT_FALSE(undo()->isEnabled());
    EXPECT_EQ(redo()->text(), QStringLiteral("&Redo Delete Product B-200"));
    EXPECT_TRUE(redo()->isEnabled());
    EXPECT_EQ(HistoryController::caption(QStringLiteral("&Undo"), QStringLiteral("Edit Notes A&B")),
        QStringLiteral("&Undo Edit Notes A&&B"))
        << "an ampersand of the step shows as written";
    const QString longPart(200, QLatin1Char('P'));
    const QString shown = HistoryController::caption(
        QStringLiteral("&Undo"), QStringLiteral("Edit Part Number ") + longPart);
    EXPECT_EQ(shown,
        QStringLiteral("&Undo Edit Part Number ") + QString(42, QLatin1Char('P')) + QChar(0x2026))
        << "a long step is cut to 60 characters";
    // Never inside a character: an emoji of two units, a letter and its accent mark.
    const QString emoji = QStringLiteral("\U0001F600");
    EXPECT_EQ(HistoryController::caption(
                  QStringLiteral("&Undo"), QString(58, QLatin1Char('B')) + emoji + emoji),
        QStringLiteral("&Undo ") + QString(58, QLatin1Char('B')) + QChar(0x2026));
    EXPECT_EQ(HistoryController::caption(QStringLiteral("&Undo"),
                  QString(58, QLatin1Char('B')) + QStringLiteral("e\u0301e\u0301")),
        QStringLiteral("&Undo ") + QString(58, QLatin1Char('B')) + QChar(0x2026));
}

TEST_F(UndoWindowTest, CtrlZFromTheGridBringsADeletedProductBackWithItsBoxesAndCtrlYDeletesItAgain)
{
    deleteRow(1);
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "C-300" }));
    focus(grid);
    keys(Qt::Key_Z);
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_EQ(module->AllProducts().Count(), 3);
    EXPECT_EQ(grid->currentIndex().row(), 1) << "the grid is back on the row it was on";
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("$2.50"));
    EXPECT_EQ(window->ui().Txtnotes->toPlainText(), QStringLiteral("Zinc plated"));
    EXPECT_EQ(
        window->ui().PriceSchedule->model()->index(1, 0).data().toString(), QStringLiteral("100"))
        << "its price points shown";

    keys(Qt::Key_Y);
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "C-300" }));
    EXPECT_EQ(window->ui().TxtPrice->text(), QString());
    keys(Qt::Key_Z);
    keys(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "C-300" })) << "Ctrl+Shift+Z redoes too";
}

TEST_F(UndoWindowTest, ASideBoxLeftIsOneStepAndCtrlZInABoxTakesBackItsTypingFirst)
{
    button("Edit")->trigger();
    goToRow(0); // A-100, $12.50
    QLineEdit *price = window->ui().TxtPrice;
    focus(price);
    price->selectAll();
    QTest::keyClicks(price, QStringLiteral("9"));
    keys(Qt::Key_Z);
    EXPECT_EQ(price->text(), QStringLiteral("$12.50")) << "the box's own typing goes first";
    EXPECT_FALSE(undo()->isEnabled());

    price->selectAll();
    QTest::keyClicks(price, QStringLiteral("9"));
    focus(window->ui().Txtnotes); // leaving the box stores it
    EXPECT_EQ(catalogue().get(1, 3), Cell("$9.00"));
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Edit List Price A-100"));

    keys(Qt::Key_Z); // nothing typed in the notes: the step goes
    EXPECT_EQ(catalogue().get(1, 3), Cell(12.5f));
    EXPECT_EQ(price->text(), QStringLiteral("$12.50"));
    EXPECT_EQ(redo()->text(), QStringLiteral("&Redo Edit List Price A-100"));
}

TEST_F(UndoWindowTest, UndoAndRedoOfASideBoxBringTheProductTabForward)
{
    button("Edit")->trigger();
    goToRow(0);
    focus(window->ui().Txtnotes);
    QTest::keyClicks(window->ui().Txtnotes, QStringLiteral(" More"));
    focus(grid);
    ASSERT_EQ(undo()->text(), QStringLiteral("&Undo Edit Notes A-100"));
    QTabWidget *tabs = window->ui().SSTabmain;
    tabs->setCurrentIndex(1); // the quote in front, the notes hidden behind it
    undo()->trigger();
    EXPECT_EQ(tabs->currentIndex(), 0) << "the change taken back is in view";
    EXPECT_EQ(window->ui().Txtnotes->toPlainText(), QStringLiteral("Two lines\nof notes"));
    tabs->setCurrentIndex(1);
    redo()->trigger();
    EXPECT_EQ(tabs->currentIndex(), 0);
    // A name lies in the grid, in view whatever tab is in front: the tab stays.
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(0, 1), QStringLiteral("Anchor, big")));
    tabs->setCurrentIndex(1);
    undo()->trigger();
    EXPECT_EQ(tabs->currentIndex(), 1);
}

TEST_F(UndoWindowTest, TypingTakenBackInABoxCanBeDoneAgain)
{
    button("Edit")->trigger();
    goToRow(0);
    QPlainTextEdit *notes = window->ui().Txtnotes;
    focus(notes);
    notes->moveCursor(QTextCursor::End);
    QTest::keyClicks(notes, QStringLiteral(" More"));
    EXPECT_TRUE(undo()->isEnabled());
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Typing"));
    keys(Qt::Key_Z);
    EXPECT_EQ(notes->toPlainText(), QStringLiteral("Two lines\nof notes"));
    // Nothing else to take back, but the typing to do again: Redo offers it.
    EXPECT_FALSE(undo()->isEnabled());
    ASSERT_TRUE(redo()->isEnabled());
    EXPECT_EQ(redo()->text(), QStringLiteral("&Redo Typing"));
    redo()->trigger();
    EXPECT_EQ(notes->toPlainText(), QStringLiteral("Two lines\nof notes More"));
    EXPECT_FALSE(redo()->isEnabled());
}

TEST_F(UndoWindowTest, UndoStoresWhatIsStillBeingTypedAsAStepBeforeTakingItBack)
{
    button("Edit")->trigger();
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(2, 1), QStringLiteral("Clamp, G")));
    goToRow(2); // C-300
    const Cell includes = catalogue().get(3, 5);
    window->ui().Txtincludes->setPlainText(QStringLiteral("Typed, not left"));
    focus(grid);
    keys(Qt::Key_Z);
    EXPECT_EQ(catalogue().get(3, 5), includes) << "the typing was stored, then taken back";
    EXPECT_EQ(catalogue().get(3, 2), Cell("Clamp, G")) << "the step before stays";
    EXPECT_EQ(window->ui().Txtincludes->toPlainText(), QString());
    EXPECT_EQ(redo()->text(), QStringLiteral("&Redo Edit Includes C-300"));
    keys(Qt::Key_Y);
    EXPECT_EQ(catalogue().get(3, 5), Cell("Typed, not left"));
    EXPECT_EQ(window->ui().Txtincludes->toPlainText(), QStringLiteral("Typed, not left"));
}

TEST_F(UndoWindowTest, CtrlZInAnOpenCellEditorTakesBackItsTypingBeforeAnyStep)
{
    deleteRow(2);
    button("Edit")->trigger();
    const QModelIndex name = grid->model()->index(0, 1);
    grid->setCurrentIndex(name);
    grid->edit(name);
    auto *editor = grid->viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    focus(editor);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("Wall plug"));
    keys(Qt::Key_Z);
    EXPECT_EQ(editor->text(), QStringLiteral("Anchor"));
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "B-200" })) << "the delete stays";
}

TEST_F(UndoWindowTest, ANameTypedInTheGridIsOneStep)
{
    button("Edit")->trigger();
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(2, 1), QStringLiteral("Clamp, G")));
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Edit Product Name C-300"));
    goToRow(0);
    undo()->trigger();
    EXPECT_EQ(catalogue().get(3, 2), Cell("Clamp"));
    EXPECT_EQ(grid->currentIndex().row(), 2);
    EXPECT_EQ(grid->currentIndex().column(), 1);
}

TEST_F(UndoWindowTest, EachScheduleEditIsAStepAndUndoShowsTheScheduleAsItWas)
{
    button("Edit")->trigger();
    goToRow(2); // C-300, no price points
    QAbstractItemModel *schedule = window->ui().PriceSchedule->model();
    ASSERT_TRUE(schedule->setData(schedule->index(0, 0), QStringLiteral("50")));
    ASSERT_TRUE(schedule->setData(schedule->index(1, 0), QStringLiteral("10")));
    EXPECT_EQ(catalogue().get(3, 6), Cell("10")) << "stored sorted by quantity";
    EXPECT_EQ(schedule->index(1, 0).data(Qt::EditRole).toString(), QStringLiteral("10"))
        << "shown where it was typed";
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Edit Price Schedule C-300"));
    undo()->trigger();
    EXPECT_EQ(catalogue().get(3, 6), Cell("50"));
    EXPECT_EQ(schedule->index(0, 0).data(Qt::EditRole).toString(), QStringLiteral("50"));
    EXPECT_EQ(schedule->index(1, 0).data(Qt::EditRole).toString(), QString());

    action("mnuclearprices")->trigger();
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Clear Price Schedule C-300"));
    EXPECT_TRUE(catalogue().get(3, 6).isEmpty());
    undo()->trigger();
    EXPECT_EQ(catalogue().get(3, 6), Cell("50"));
}

TEST_F(UndoWindowTest, AHeaderSortIsUndoneToTheOrderAndRowBeforeIt)
{
    goToRow(2);
    QHeaderView *header = grid->horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
        QPoint(header->sectionViewportPosition(2) + 5, header->height() / 2));
    EXPECT_EQ(partNumbers(), QStringList({ "B-200", "A-100", "C-300" }));
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Sort by Price"));
    undo()->trigger();
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_EQ(grid->currentIndex().row(), 2);
    EXPECT_TRUE(module->SortedByPart);
}

TEST_F(UndoWindowTest, InsertDeleteAllAndTheirUndos)
{
    goToRow(1);
    button("Insert")->trigger();
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Add Product"));
    undo()->trigger();
    EXPECT_EQ(module->AllProducts().Count(), 3);
    EXPECT_EQ(grid->currentIndex().row(), 1);
    EXPECT_EQ(window->grid().gridTag(), QString());

    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuDelAll")->trigger();
    EXPECT_EQ(grid->model()->rowCount(), 0);
    undo()->trigger();
    EXPECT_EQ(partNumbers(), QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("$2.50"));
}

TEST_F(UndoWindowTest, UndoAfterASaveMarksTheWindowUnsavedAndUndoingBackClearsTheMark)
{
    deleteRow(0);
    ASSERT_TRUE(waitForModified(true));
    action("mnuFileSave")->trigger();
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Tarnwick[*]"));

    undo()->trigger();
    EXPECT_TRUE(waitForModified(true)) << "the product came back after the save";
    EXPECT_TRUE(QTest::qWaitFor([this] { return folder.exists(RecoveryFile); }, 5000))
        << "the unsaved catalogue is kept";
    redo()->trigger();
    EXPECT_TRUE(waitForModified(false)) << "back at the saved catalogue";
    EXPECT_TRUE(QTest::qWaitFor([this] { return !folder.exists(RecoveryFile); }, 5000));

    undo()->trigger();
    ASSERT_TRUE(waitForModified(true));
    undo()->trigger(); // nothing left: the same state
    window->close();
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains("A-100"))
        << "closing saves what the window shows";
}

TEST_F(UndoWindowTest, AChangeUndoneLeavesTheBackupAsItWasAtTheClose)
{
    // The backup of an earlier run (here: before a "Delete All") is the only copy of it.
    window->close();
    const QByteArray saved = folder.readFile(QStringLiteral("twdata.dat"));
    folder.writeFile(QStringLiteral("twdata.bak"), catalogueLine({ "ONLY-COPY", "Kept" }));
    restart();
    window = mainWindow.get();
    grid = window->ui().GrdMain;
    button("Insert")->trigger();
    ASSERT_TRUE(waitForModified(true));
    undo()->trigger();
    ASSERT_TRUE(waitForModified(false));
    window->close();
    EXPECT_EQ(
        folder.readFile(QStringLiteral("twdata.bak")), catalogueLine({ "ONLY-COPY", "Kept" }));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), saved);
}

TEST_F(UndoWindowTest, CtrlZSelectsOnlyTheRowOfTheStep)
{
    button("Edit")->trigger();
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(0, 1), QStringLiteral("Renamed")));
    goToRow(2);
    focus(grid);
    // Through the window system, as a user's keys come: Ctrl is down while the step is undone.
    QTest::keyClick(window->windowHandle(), Qt::Key_Z, Qt::ControlModifier);
    ASSERT_EQ(grid->currentIndex().row(), 0);
    const QModelIndexList rows = grid->selectionModel()->selectedRows();
    EXPECT_EQ(rows.size(), 1);
    EXPECT_EQ(rows.value(0).row(), 0);
    // The window system keeps the last event's keys as held: the next test starts without.
    QTest::mouseMove(window->windowHandle(), grid->viewport()->mapTo(window, QPoint(4, 4)));
    EXPECT_EQ(QGuiApplication::keyboardModifiers(), Qt::NoModifier);
}

TEST_F(UndoWindowTest, CtrlZInABoxWhoseTypingIsAStepAlreadyTakesTheStepBack)
{
    button("Edit")->trigger();
    goToRow(0); // A-100, notes "Two lines\r\nof notes"
    QPlainTextEdit *notes = window->ui().Txtnotes;
    focus(notes);
    notes->moveCursor(QTextCursor::End);
    QTest::keyClicks(notes, QStringLiteral(" more"));
    focus(window->ui().Txtincludes); // leaving the box stores it
    EXPECT_EQ(undo()->text(), QStringLiteral("&Undo Edit Notes A-100"));
    focus(notes);
    keys(Qt::Key_Z);
    EXPECT_FALSE(notes->toPlainText().endsWith(QLatin1String(" more")));
    EXPECT_FALSE(catalogue().get(1, 4).asText().endsWith(QLatin1String(" more")))
        << "the step was taken back, not only the box's typing";
    EXPECT_EQ(redo()->text(), QStringLiteral("&Redo Edit Notes A-100"));
    keys(Qt::Key_Y);
    EXPECT_TRUE(catalogue().get(1, 4).asText().endsWith(QLatin1String(" more")));
    EXPECT_TRUE(notes->toPlainText().endsWith(QLatin1String(" more")));
}

TEST_F(UndoWindowTest, UndoingEveryChangeBeforeAnySaveClearsTheMark)
{
    button("Edit")->trigger();
    ASSERT_TRUE(grid->model()->setData(grid->model()->index(0, 1), QStringLiteral("Renamed")));
    ASSERT_TRUE(waitForModified(true));
    undo()->trigger();
    EXPECT_TRUE(waitForModified(false));
}

} // namespace
