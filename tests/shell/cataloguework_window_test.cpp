// Long work on a large catalogue runs on a worker thread while the window keeps answering:
// the header sort and the save at close give the same catalogue and file as on the window's
// own thread, the grid reads nothing meanwhile, and a close asked for meanwhile waits.
#include "shellfixture.h"

#include "shell/cataloguework.h"
#include "shell/gridview.h"

#include <QAccessible>
#include <QAction>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QWindow>

#include <atomic>
#include <thread>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

/// Calls back for every event of the objects it watches.
class EventWatch : public QObject
{
public:
    explicit EventWatch(std::function<void(QObject *, QEvent *)> seen) : m_seen(std::move(seen)) { }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        m_seen(watched, event);
        return false;
    }

private:
    std::function<void(QObject *, QEvent *)> m_seen;
};

class CatalogueWorkTest : public SampleWindowTest
{
protected:
    void SetUp() override
    {
        SampleWindowTest::SetUp();
        work = window->catalogue().work();
        ASSERT_NE(work, nullptr);
        // Every catalogue counts as large here.
        work->setBackgroundRows(0);
    }

    CatalogueWork *work = nullptr;
};

TEST_F(CatalogueWorkTest, AHeaderClickSortsOnTheWorkerAsItWouldHere)
{
    int workStarted = 0;
    QObject::connect(work, &CatalogueWork::started, [&] { ++workStarted; });
    Q_EMIT grid->horizontalHeader()->sectionClicked(1);
    EXPECT_EQ(workStarted, 1);
    EXPECT_EQ(catalogue().get(1, 2), Cell("Anchor"));
    EXPECT_EQ(catalogue().get(2, 2), Cell("Bolt"));
    EXPECT_EQ(catalogue().get(3, 2), Cell("Clamp"));
    EXPECT_EQ(grid->model()->index(0, 1).data().toString(), QStringLiteral("Anchor"));
    EXPECT_EQ(grid->currentIndex().row(), 0);
}

TEST_F(CatalogueWorkTest, TheGridReadsNothingWhileTheWorkRuns)
{
    std::atomic<bool> release { false };
    QVariant shownDuring = QStringLiteral("not looked at");
    int rowsDuring = -1;
    // Looked at from the window's thread while the worker waits for the release.
    QTimer::singleShot(0, [&] {
        shownDuring = grid->model()->index(0, 0).data();
        rowsDuring = grid->model()->rowCount();
        release = true;
    });
    work->run([&] {
        while (!release)
            std::this_thread::yield();
    });
    EXPECT_FALSE(shownDuring.isValid()) << "the model read a cell during the work";
    EXPECT_EQ(rowsDuring, 3);
    EXPECT_EQ(grid->model()->index(0, 0).data().toString(), QStringLiteral("A-100"));
}

// A row the keys just moved to waits to be drawn when the work starts: it is drawn before, from
// the catalogue, never during the work, when the grid reads nothing and would show empty cells
// for as long as a large catalogue's save takes.
TEST_F(CatalogueWorkTest, WhatWaitsToBeDrawnIsDrawnBeforeTheWorkNotWithEmptyCells)
{
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    bool running = false;
    int paintsDuring = 0;
    QObject *viewport = grid->viewport();
    auto watch = std::make_unique<EventWatch>([&](QObject *watched, QEvent *event) {
        if (running && watched == viewport && event->type() == QEvent::Paint)
            ++paintsDuring;
    });
    viewport->installEventFilter(watch.get());
    grid->viewport()->update();
    QObject::connect(work, &CatalogueWork::started, [&] { running = true; });
    std::atomic<bool> release { false };
    QTimer::singleShot(0, [&] {
        QCoreApplication::sendPostedEvents();
        release = true;
    });
    work->run([&] {
        while (!release)
            std::this_thread::yield();
    });
    running = false;
    EXPECT_EQ(paintsDuring, 0);
}

TEST_F(CatalogueWorkTest, ACloseAskedForMeanwhileWaitsForTheWorkAndThenSaves)
{
    std::atomic<bool> release { false };
    bool visibleAfterClose = false;
    QTimer::singleShot(0, [&] {
        window->close();
        visibleAfterClose = window->isVisible();
        release = true;
    });
    work->run([&] {
        while (!release)
            std::this_thread::yield();
    });
    EXPECT_TRUE(visibleAfterClose) << "the close waited for the work";
    // The close is carried out once the work is done, through the window's own close, which
    // saves (on the worker as well here).
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isVisible(); }, 10000));
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")),
        catalogueLine({ "A-100", "Anchor", "12.5", "Two lines\r\nof notes", "Washer" })
            + catalogueLine(
                { "B-200", "Bolt", "2.5", "Zinc plated", "Nut", "1", "2.5", "100", "2" })
            + catalogueLine({ "C-300", "Clamp", "", "", "" }));
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.bak")))
        << "an unchanged catalogue makes no backup of itself";
}

// A log-out or termination signal during a long sort waits for it, and then still asks
// nobody anything (nobody is there to answer): the copy is handed over and the window closes.
TEST_F(CatalogueWorkTest, ATerminationDuringTheWorkClosesAfterItWithoutAQuestion)
{
    fakes->clipboard.keepsAfterExit = false;
    action("mnucopyproduct")->trigger();
    std::atomic<bool> release { false };
    QTimer::singleShot(0, [&] {
        window->requestClose();
        release = true;
    });
    work->run([&] {
        while (!release)
            std::this_thread::yield();
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isVisible(); }, 10000));
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_EQ(fakes->clipboard.handOverCount(), 1);
}

TEST_F(CatalogueWorkTest, KeysHandedBackByTheAccessibilityBusDuringTheWorkWaitForIt)
{
    // While an assistive tool listens, keys come back from the desktop's accessibility bus as
    // posted copies, which the work's event loop would deliver: typing into a cell then would
    // write the catalogue while the worker has it.
    button("Edit")->trigger();
    goToRow(1);
    grid->setFocus();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QWindow *handle = window->windowHandle();
    ASSERT_NE(handle, nullptr);
    std::atomic<bool> release { false };
    bool editingDuring = true;
    QTimer::singleShot(0, [&] {
        QCoreApplication::postEvent(
            handle, new QKeyEvent(QEvent::KeyPress, Qt::Key_Q, {}, QStringLiteral("Q")));
        QCoreApplication::postEvent(
            handle, new QKeyEvent(QEvent::KeyRelease, Qt::Key_Q, {}, QStringLiteral("Q")));
        QTimer::singleShot(0, [&] {
            editingDuring = grid->isEditing();
            release = true;
        });
    });
    work->run([&] {
        while (!release)
            std::this_thread::yield();
    });
    EXPECT_FALSE(editingDuring) << "a key reached the grid during the work";
    ASSERT_TRUE(QTest::qWaitFor([&] { return grid->isEditing(); }, 5000));
    button("Edit")->trigger();
    EXPECT_EQ(catalogue().get(2, 1), Cell("Q")) << "the key typed into B-200's part number";
}

// An assistive tool carries out a menu item or a toolbar button through the accessibility bus,
// which no input filter holds: while the worker has the catalogue, the window's commands are
// unavailable, so "Add" inserts no row into the catalogue the worker saves or sorts.
TEST_F(CatalogueWorkTest, CommandsCarriedOutByAnAssistiveToolWaitForTheWork)
{
    QAction *add = window->actions().action(QStringLiteral("mnuAddProd"));
    QMenu *products = nullptr;
    for (QObject *object : add->associatedObjects()) {
        if (auto *menu = qobject_cast<QMenu *>(object))
            products = menu;
    }
    ASSERT_NE(products, nullptr);
    const auto pressThroughAccessibility = [](QAccessibleInterface *parent, const QString &name) {
        for (int i = 0; parent != nullptr && i < parent->childCount(); ++i) {
            QAccessibleInterface *child = parent->child(i);
            if (child != nullptr && child->text(QAccessible::Name) == name
                && child->actionInterface() != nullptr) {
                child->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
                return true;
            }
        }
        return false;
    };
    QAction *undo = window->actions().action(QStringLiteral("mnuEditUndo"));
    QAction *redo = window->actions().action(QStringLiteral("mnuEditRedo"));
    ASSERT_FALSE(undo->isEnabled()) << "nothing to undo yet";
    QAction *stillUnavailable = nullptr;
    for (QAction *action : window->findChildren<QAction *>()) {
        if (!action->isEnabled() && !action->text().isEmpty() && action != undo && action != redo)
            stillUnavailable = action;
    }
    ASSERT_NE(stillUnavailable, nullptr) << "a command unavailable before the work";
    std::atomic<bool> release { false };
    bool found = false;
    bool addAvailableDuring = true;
    int rowsDuring = -1;
    bool undoAvailableDuring = true;
    QTimer::singleShot(0, [&] {
        addAvailableDuring = add->isEnabled();
        // Made available meanwhile, as a box's changed text makes Undo available.
        undo->setEnabled(true);
        undoAvailableDuring = undo->isEnabled();
        found = pressThroughAccessibility(
                    QAccessible::queryAccessibleInterface(products), QStringLiteral("Add"))
            && pressThroughAccessibility(
                QAccessible::queryAccessibleInterface(window->actions().toolBar()),
                QStringLiteral("Insert product"));
        rowsDuring = catalogue().rowCount();
        release = true;
    });
    const int rowsBefore = catalogue().rowCount();
    work->run([&] {
        while (!release)
            std::this_thread::yield();
    });
    EXPECT_TRUE(found) << "the menu item and the toolbar button as the accessibility bus sees them";
    EXPECT_FALSE(addAvailableDuring);
    EXPECT_FALSE(undoAvailableDuring) << "a command made available during the work";
    EXPECT_EQ(rowsDuring, rowsBefore) << "a row was inserted while the worker had the catalogue";
    EXPECT_EQ(catalogue().rowCount(), rowsBefore);
    EXPECT_TRUE(add->isEnabled()) << "available again after the work";
    EXPECT_FALSE(undo->isEnabled()) << "worked out again after the work: nothing to undo";
    EXPECT_FALSE(stillUnavailable->isEnabled()) << "a command unavailable before stays so";
    // Available again, the same press adds a row.
    ASSERT_TRUE(pressThroughAccessibility(
        QAccessible::queryAccessibleInterface(products), QStringLiteral("Add")));
    EXPECT_EQ(catalogue().rowCount(), rowsBefore + 1);
}

TEST_F(CatalogueWorkTest, AFailureOfTheWorkIsRaisedOnTheWindowsThread)
{
    EXPECT_THROW(work->run([] { throw std::runtime_error("broken"); }), std::runtime_error);
    EXPECT_FALSE(work->isRunning());
    EXPECT_EQ(grid->model()->index(0, 0).data().toString(), QStringLiteral("A-100"));
}

} // namespace
