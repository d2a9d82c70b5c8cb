// The main window's skeleton: named controls for assistive tools and UI automation, the
// menus and toolbar, the template menu items and Edit → Copy.
#include "shellfixture.h"

#include "shell/gridview.h"

#include "shell/mainwindowactions.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class MainWindowTest : public ShellTest
{
};

TEST_F(MainWindowTest, NamedControlsCarryTheirNameAsAccessibleDescription)
{
    frmMain *window = startAndWait();
    for (const char *name : { "GrdMain", "SSTabmain", "TxtPrice", "Txtincludes", "Txtnotes",
             "PriceSchedule", "FraPrice", "FraMain", "FraNotes", "FraQuote", "GrdQuote", "TxtTotal",
             "TxtDisc", "TxtQdisper", "tbToolBar", "sbStatusBar", "Frame1" }) {
        auto *widget = window->findChild<QWidget *>(QString::fromLatin1(name));
        ASSERT_NE(widget, nullptr) << name;
        EXPECT_EQ(widget->accessibleDescription(), QString::fromLatin1(name));
    }
    EXPECT_NE(qobject_cast<QTableView *>(window->ui().GrdMain), nullptr);
}

TEST_F(MainWindowTest, TheMenuBarHasItsMenusInOrder)
{
    frmMain *window = startAndWait();
    QStringList titles;
    for (QAction *menu : window->menuBar()->actions())
        titles << menu->text();
    EXPECT_EQ(titles,
        QStringList({ "&File", "&Edit", "&View", "&Products", "P&rint", "&Settings", "&Help" }));
    EXPECT_EQ(window->actions().action(QStringLiteral("mnuUserOptions"))->text(),
        QStringLiteral("&Password"));
    EXPECT_EQ(window->actions().action(QStringLiteral("mnuGrdMainQuote"))->text(),
        QStringLiteral("Add to &Quote"));
    EXPECT_EQ(window->actions().action(QStringLiteral("mnuCopyProductInfo"))->text(),
        QStringLiteral("&Copy Product Info"));
    EXPECT_EQ(window->actions().mnusystray()->actions().size(), 2);
}

TEST_F(MainWindowTest, TheToolbarHasItsKeysAndToolTips)
{
    frmMain *window = startAndWait();
    EXPECT_EQ(MainWindowActions::buttonKeys(),
        QStringList({ "Edit", "DelProd", "Insert", "Palm", "Export", "Find", "New", "Open", "Save",
            "Print", "Help" }));
    for (const QString &key : MainWindowActions::buttonKeys()) {
        QAction *button = window->actions().button(key);
        ASSERT_NE(button, nullptr) << key.toStdString();
        EXPECT_FALSE(button->toolTip().isEmpty()) << key.toStdString();
        EXPECT_FALSE(button->icon().isNull()) << key.toStdString();
    }
    EXPECT_TRUE(window->actions().button(QStringLiteral("Edit"))->isCheckable());
}

TEST_F(MainWindowTest, AssistiveToolsReadWhatEachToolbarButtonDoes)
{
    frmMain *window = startAndWait();
    QToolBar *bar = window->actions().toolBar();
    const auto nameOf = [&](const char *key) {
        return bar->widgetForAction(window->actions().button(QString::fromLatin1(key)))
            ->accessibleName();
    };
    EXPECT_EQ(nameOf("DelProd"), QStringLiteral("Delete product"));
    EXPECT_EQ(nameOf("New"), QStringLiteral("Modify products from a spreadsheet"));
    EXPECT_EQ(nameOf("Print"), QStringLiteral("Copy product report"));
    // The key a button has is in its tool tip, not in the name read out.
    EXPECT_EQ(nameOf("Find"), QStringLiteral("Find product"));
    EXPECT_EQ(nameOf("Palm"), QStringLiteral("Send to handheld"));
    for (QToolButton *button : bar->findChildren<QToolButton *>())
        EXPECT_FALSE(button->accessibleName().isEmpty()) << button->objectName().toStdString();
    // Each button's key, which names it for automation, is its description.
    for (const QString &key : MainWindowActions::buttonKeys())
        EXPECT_EQ(
            bar->widgetForAction(window->actions().button(key))->accessibleDescription(), key);
}

TEST_F(MainWindowTest, TheSaveButtonSavesTheCatalogueAtOnce)
{
    frmMain *window = startAndWait();
    EXPECT_FALSE(folder.exists(QStringLiteral("twdata.dat")));
    window->actions().button(QStringLiteral("Save"))->trigger();
    EXPECT_TRUE(fakes->prompts.texts().isEmpty());
    EXPECT_TRUE(folder.exists(QStringLiteral("twdata.dat")));
}

TEST_F(MainWindowTest, TheHelpButtonOpensTheHelpFileAtMain)
{
    frmMain *window = startAndWait();
    window->actions().button(QStringLiteral("Help"))->trigger();
    ASSERT_EQ(fakes->help.calls.size(), 1);
    EXPECT_EQ(fakes->help.calls.first(),
        folder.filePath(QStringLiteral("Tarnwick Help.chm")) + QStringLiteral(">Main|0|0"));
}

TEST_F(MainWindowTest, EditCopyPutsTheSelectedTextOfTheFocusedBoxOnTheClipboard)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    frmMain *window = startAndWait();
    window->activateWindow();
    QLineEdit *price = window->ui().TxtPrice;
    window->ui().SSTabmain->setCurrentIndex(0);
    price->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->focusWidget() == price; }, 10000));
    price->setSelection(1, 5);
    window->actions().action(QStringLiteral("mnuEditCopy"))->trigger();
    EXPECT_EQ(fakes->clipboard.clearCount(), 1);
    EXPECT_EQ(fakes->clipboard.text(), QStringLiteral("12.50"));
}

TEST_F(MainWindowTest, EditCopyFromTheKeyboardMenuUsesTheControlTheUserWasIn)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    frmMain *window = startAndWait();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QLineEdit *price = window->ui().TxtPrice;
    price->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::focusWidget() == price; }, 10000));
    price->selectAll();
    window->menuBar()->setFocus(Qt::MenuBarFocusReason); // Alt+E moves the focus to the menu bar
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->focusWidget() == window->menuBar(); }, 10000));
    window->actions().action(QStringLiteral("mnuEditCopy"))->trigger();
    EXPECT_EQ(fakes->clipboard.text(), QStringLiteral("$12.50"));
}

TEST_F(MainWindowTest, TheSideBoxesFollowTheCurrentRow)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    frmMain *window = startAndWait();
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("$12.50"));
    EXPECT_EQ(window->ui().Txtnotes->toPlainText(), QStringLiteral("Two lines\nof notes"));
    window->ui().GrdMain->setCurrentIndex(window->ui().GrdMain->model()->index(1, 0));
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("$2.50"));
    EXPECT_EQ(window->ui().Txtincludes->toPlainText(), QStringLiteral("Nut"));
    const QAbstractItemModel *schedule = window->ui().PriceSchedule->model();
    EXPECT_EQ(schedule->index(1, 0).data().toString(), QStringLiteral("100"));
    EXPECT_EQ(schedule->index(1, 1).data().toString(), QStringLiteral("$2.00"));
}

// A first start in an empty folder shows an empty grid; the status bar says how to fill it.
// A start with products says nothing of it.
TEST_F(MainWindowTest, AnEmptyCatalogueAtTheStartSaysHowToFillIt)
{
    frmMain *window = startAndWait();
    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("The catalogue is empty: press Insert product on the toolbar to add a "
                       "product, or Open spreadsheet to bring in a price list."));
    mainWindow.reset();
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    restart();
    ASSERT_NE(mainWindow, nullptr);
    EXPECT_EQ(mainWindow->ui().sbPanel1->text(), QString());
}

} // namespace
