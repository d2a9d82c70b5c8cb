// Keys typed into a product's name at full speed and a click on another row, Add to Quote's
// shortcut or the window's close right after: the keys belong to the product typed in, the row
// clicked stays as it was, the quote takes the product as typed and the close saves it. The
// real main window is driven on the offscreen platform; some tests put a stand-in for the
// desktop's accessibility bridge in front of the program, which holds every key from the
// keyboard until its answer comes back, as the bridge does while an assistive tool listens.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "shell/gridview.h"
#include "shell/inputorder.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

#include <string>
#include <utility>
#include <vector>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

const QString Typed = QStringLiteral("Widget Beta");

/// Takes every key that enters a window from the keyboard and delivers a copy of it when its
/// answer comes, as the accessibility bridge does when its bus answers. Clicks pass.
class HoldingBridge : public QObject
{
public:
    HoldingBridge() { QCoreApplication::instance()->installEventFilter(this); }
    ~HoldingBridge() override
    {
        for (auto &held : m_held)
            delete held.second;
    }

    /// The answer arrives with the event loop's next pass.
    void answerSoon() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }
    bool holdsKeys() const { return !m_held.empty(); }

    int taken = 0;

protected:
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        for (auto &held : m_held) {
            if (held.first)
                QCoreApplication::postEvent(held.first, held.second);
            else
                delete held.second;
        }
        m_held.clear();
        return true;
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
        if (!key || !event->spontaneous() || !watched->isWindowType())
            return false;
        const auto *keyEvent = static_cast<QKeyEvent *>(event);
        m_held.emplace_back(watched,
            new QKeyEvent(keyEvent->type(), keyEvent->key(), keyEvent->modifiers(),
                keyEvent->nativeScanCode(), keyEvent->nativeVirtualKey(),
                keyEvent->nativeModifiers(), keyEvent->text()));
        ++taken;
        return true;
    }

private:
    std::vector<std::pair<QPointer<QObject>, QKeyEvent *>> m_held;
};

QByteArray fiveProducts()
{
    QByteArray file;
    for (int n = 1; n <= 5; ++n)
        file += catalogueLine({ QStringLiteral("TW-%1").arg(n * 100),
            QStringLiteral("Widget %1").arg(n), QStringLiteral("%1.5").arg(n), "", "" });
    return file;
}

class InputOrderWindowTest : public ShellTest
{
protected:
    void SetUp() override
    {
        ShellTest::SetUp();
        folder.writeFile(QStringLiteral("twdata.dat"), fiveProducts());
        window = startAndWait();
        ASSERT_NE(window, nullptr);
        grid = window->ui().GrdMain;
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        ASSERT_EQ(cellText(2, 1), "TW-200");
        ASSERT_EQ(cellText(4, 1), "TW-400");
        editButton()->trigger();
        ASSERT_TRUE(editButton()->isChecked());
        // TW-200's name cell becomes current; typing opens its editor.
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(1, 1));
        ASSERT_EQ(grid->currentIndex().row(), 1);
    }

    std::string cellText(int row, int field) const
    {
        return module->Catalogue().get(row, field).asText().toStdString();
    }
    std::string gridText(int row, int column) const
    {
        return grid->model()->index(row, column).data().toString().toStdString();
    }
    QAction *editButton() const { return window->actions().button(QStringLiteral("Edit")); }
    QPoint cellCentre(int row, int column) const
    {
        return grid->visualRect(grid->model()->index(row, column)).center();
    }
    /// Releases "Edit", which stores the cell being edited.
    void storeEdits()
    {
        editButton()->trigger();
        ASSERT_FALSE(editButton()->isChecked());
        ASSERT_FALSE(grid->isEditing());
    }
    void expectTw400Unchanged()
    {
        EXPECT_EQ(cellText(4, 1), "TW-400");
        EXPECT_EQ(cellText(4, 2), "Widget 4");
        EXPECT_EQ(gridText(3, 0), "TW-400");
        EXPECT_EQ(gridText(3, 1), "Widget 4");
    }

    /// Puts bridge in front of the program and types Typed into the window, every key held.
    void typeThroughBridge(HoldingBridge &bridge)
    {
        // The bridge puts its filter in front whenever a client registers; the program's own
        // filter comes back to the front with the next event, as it does in a real session.
        QEvent nudge(QEvent::User);
        QCoreApplication::sendEvent(window, &nudge);
        handle = window->windowHandle();
        ASSERT_NE(handle, nullptr);
        for (const QChar ch : Typed)
            QTest::keyClick(handle, ch.toLatin1());
        ASSERT_EQ(bridge.taken, 2 * Typed.size()); // every key is still on its way
    }

    frmMain *window = nullptr;
    GridView *grid = nullptr;
    QWindow *handle = nullptr;
};

TEST_F(InputOrderWindowTest, KeysHeldByTheAccessibilityBridgeGoToTheCellTypedInBeforeTheClick)
{
    HoldingBridge bridge;
    ASSERT_NO_FATAL_FAILURE(typeThroughBridge(bridge));
    const QPoint tw400 = grid->viewport()->mapTo(window, cellCentre(3, 0));
    bridge.answerSoon();
    QTest::mouseClick(handle, Qt::LeftButton, {}, tw400);
    ASSERT_FALSE(bridge.holdsKeys());
    QCoreApplication::sendPostedEvents(); // the keys' copies, wherever they go

    EXPECT_EQ(grid->currentIndex().row(), 3); // the click was taken
    storeEdits();
    EXPECT_EQ(cellText(2, 2), Typed.toStdString());
    EXPECT_EQ(cellText(2, 1), "TW-200");
    expectTw400Unchanged();
}

TEST_F(InputOrderWindowTest, AShortcutTypedRightAfterHeldKeysActsOnWhatTheyTyped)
{
    HoldingBridge bridge;
    ASSERT_NO_FATAL_FAILURE(typeThroughBridge(bridge));
    // "Add to Quote" from the keyboard: the desktop hands a shortcut to the program at once,
    // past the bridge, while the name typed before it is still on its way.
    bridge.answerSoon();
    QTest::keyClick(handle, Qt::Key_D, Qt::ControlModifier);
    QCoreApplication::sendPostedEvents();

    const Table &quote = module->QuoteTable();
    ASSERT_GE(quote.rowCount(), 1);
    EXPECT_EQ(quote.get(1, 1).asText().toStdString(), "TW-200");
    EXPECT_EQ(quote.get(1, 2).asText().toStdString(), Typed.toStdString());
    EXPECT_EQ(window->focusWidget(), window->ui().GrdQuote);
    EXPECT_EQ(cellText(2, 2), Typed.toStdString());
    EXPECT_EQ(cellText(2, 1), "TW-200");
    expectTw400Unchanged();
}

TEST_F(InputOrderWindowTest, TheWindowClosedRightAfterHeldKeysSavesWhatTheyTyped)
{
    HoldingBridge bridge;
    ASSERT_NO_FATAL_FAILURE(typeThroughBridge(bridge));
    // The window manager's close button, right after the last key.
    bridge.answerSoon();
    QCloseEvent close;
    QCoreApplication::sendEvent(handle, &close);
    QCoreApplication::sendPostedEvents();

    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat")).contains(Typed.toUtf8()))
        << folder.readFile(QStringLiteral("twdata.dat")).toStdString();
}

TEST_F(InputOrderWindowTest, KeysAndAClickQueuedInOneGoAreHandledInTheirOrder)
{
    handle = window->windowHandle();
    ASSERT_NE(handle, nullptr);
    for (const QChar ch : Typed) {
        const auto key = Qt::Key(ch.toUpper().unicode());
        QCoreApplication::postEvent(handle, new QKeyEvent(QEvent::KeyPress, key, {}, QString(ch)));
        QCoreApplication::postEvent(
            handle, new QKeyEvent(QEvent::KeyRelease, key, {}, QString(ch)));
    }
    const QPointF at = cellCentre(3, 0);
    const QPointF global = grid->viewport()->mapToGlobal(at);
    QCoreApplication::postEvent(grid->viewport(),
        new QMouseEvent(QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton, {}));
    QCoreApplication::postEvent(grid->viewport(),
        new QMouseEvent(QEvent::MouseButtonRelease, at, global, Qt::LeftButton, {}, {}));
    QCoreApplication::sendPostedEvents();

    EXPECT_EQ(grid->currentIndex().row(), 3);
    storeEdits();
    EXPECT_EQ(cellText(2, 2), Typed.toStdString());
    expectTw400Unchanged();
}

TEST_F(InputOrderWindowTest, AClickWaitsNoLongerForAKeyTheBridgeKeeps)
{
    // A key an assistive tool keeps for itself never comes back: the click goes on without it.
    handle = window->windowHandle();
    InputOrder *order = window->findChild<InputOrder *>();
    ASSERT_NE(order, nullptr);
    class KeepingBridge : public QObject
    {
    protected:
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            return event->type() == QEvent::KeyPress && event->spontaneous()
                && watched->isWindowType();
        }
    } keeping;
    QCoreApplication::instance()->installEventFilter(&keeping);
    QEvent nudge(QEvent::User);
    QCoreApplication::sendEvent(window, &nudge);
    QTest::keyPress(handle, Qt::Key_F13);
    EXPECT_EQ(order->keysOnTheirWay(), 1);
    QTest::mouseClick(
        handle, Qt::LeftButton, {}, grid->viewport()->mapTo(window, cellCentre(3, 0)));
    EXPECT_EQ(order->keysOnTheirWay(), 0);
    EXPECT_EQ(grid->currentIndex().row(), 3);
    QCoreApplication::instance()->removeEventFilter(&keeping);
}

// A key the focused box keeps for itself when it arrives (Ctrl+Z in a line edit) becomes a
// shortcut only when the bridge's copy of it reaches another widget (Return moved the keyboard
// on meanwhile): it is handled in its place, before the keys typed after it.
TEST(InputOrderCopies, AShortcutOfAHeldKeysCopyComesBeforeTheKeysAfterIt)
{
    QStringList handled;
    class KeyLog : public QWidget
    {
    public:
        explicit KeyLog(QStringList &log) : m_log(log) { setFocusPolicy(Qt::StrongFocus); }

    protected:
        void keyPressEvent(QKeyEvent *event) override
        {
            if (!event->text().isEmpty()) // not the Ctrl going down
                m_log << event->text();
        }

    private:
        QStringList &m_log;
    };
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *box = new QLineEdit(&window);
    auto *next = new KeyLog(handled);
    layout->addWidget(box);
    layout->addWidget(next);
    QObject::connect(box, &QLineEdit::returnPressed, [&] {
        handled << QStringLiteral("Return");
        next->setFocus();
    });
    auto *undo = new QAction(&window);
    undo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    window.addAction(undo);
    QObject::connect(undo, &QAction::triggered, [&] { handled << QStringLiteral("Undo"); });
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    box->setFocus();
    InputOrder order(&window);
    HoldingBridge bridge;
    QEvent nudge(QEvent::User);
    QCoreApplication::sendEvent(&window, &nudge);
    QWindow *handle = window.windowHandle();
    QTest::keyClick(handle, Qt::Key_Return);
    QTest::keyClick(handle, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(handle, Qt::Key_7);
    ASSERT_EQ(bridge.taken, 8); // Ctrl goes down and up around the Z
    bridge.answerSoon();
    ASSERT_TRUE(QTest::qWaitFor([&] { return handled.size() >= 3; }, 5000));
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(handled, (QStringList { "Return", "Undo", "7" }));
    EXPECT_EQ(order.keysOnTheirWay(), 0);
}

} // namespace
