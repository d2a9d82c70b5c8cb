// The main window from the keyboard alone: the grids' menus on Shift+F10 and the Menu key at
// the current row, Ctrl+Tab out of a grid, F6 round the panes, the key of "Add to Quote", a
// quote made and copied without the mouse, and the side boxes after a delete when the keyboard
// comes back to the grid.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "platform/iprompts.h"
#include "products/productcommands.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QApplication>
#include <QFocusEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTest>
#include <QToolBar>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class KeyboardWindowTest : public ActiveWindowTest
{
protected:
    void TearDown() override
    {
        if (QWidget *popup = QApplication::activePopupWidget())
            popup->close();
        SampleWindowTest::TearDown();
    }

    /// Sends a key to whichever control has the keyboard focus at that moment.
    static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget *target = QApplication::activePopupWidget();
        if (!target)
            target = QApplication::focusWidget();
        ASSERT_NE(target, nullptr);
        QTest::keyClick(target, Qt::Key(key), modifiers);
    }
    static void type(const QString &text)
    {
        for (const QChar ch : text)
            QTest::keyClick(QApplication::focusWidget(), ch.toLatin1());
    }
    static bool waitForMenu(const QMenu *menu)
    {
        return QTest::qWaitFor([menu] { return menu->isVisible(); }, 10000);
    }
    static bool within(const QWidget *widget, const QWidget *pane)
    {
        return widget && (widget == pane || pane->isAncestorOf(widget));
    }
    void focusGrid(GridView *view)
    {
        view->setFocus(Qt::OtherFocusReason);
        ASSERT_TRUE(QTest::qWaitFor([view] { return view->hasFocus(); }, 10000));
    }
    /// Where the menu of view's current cell should open: below the cell, on the screen.
    static QPoint cellMenuPoint(GridView *view)
    {
        const QRect cell = view->visualRect(view->currentIndex());
        return view->viewport()->mapToGlobal(
            QPoint(cell.left() + cell.height() / 2, cell.bottom()));
    }
    QString partInGridRow(int row) const { return grid->model()->index(row, 0).data().toString(); }
    QString quoteCell(int row, int column) const { return gridCellText(quoteGrid, row, column); }
};

TEST_F(KeyboardWindowTest, AltPThenAGoesToAddFirstAndEnterAdds)
{
    auto *products = window->menuBar()->findChild<QMenu *>(QStringLiteral("mnuProducts"));
    ASSERT_NE(products, nullptr);
    const int before = module->AllProducts().Count();
    // Opened from the keyboard, as the menu bar opens it: shown, then its first item
    // highlighted.
    products->popup(QPoint(0, 0));
    products->setActiveAction(products->actions().constFirst());
    ASSERT_TRUE(waitForMenu(products));
    ASSERT_TRUE(QTest::qWaitFor([&] { return products->activeAction() == nullptr; }));
    QTest::keyClick(products, Qt::Key_A);
    ASSERT_NE(products->activeAction(), nullptr);
    EXPECT_EQ(products->activeAction()->objectName(), QStringLiteral("mnuAddProd"));
    QTest::keyClick(products, Qt::Key_Return);
    EXPECT_EQ(module->AllProducts().Count(), before + 1) << "Add, not the Delete All question";
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

TEST_F(KeyboardWindowTest, ShiftF10OpensTheProductMenuAtTheCurrentRow)
{
    QMenu *menu = window->actions().mnuMainGrid();
    goToRow(2);
    focusGrid(grid);
    press(Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_TRUE(waitForMenu(menu));
    EXPECT_EQ(menu->pos(), cellMenuPoint(grid));
    EXPECT_EQ(grid->currentIndex().row(), 2);
}

TEST_F(KeyboardWindowTest, TheMenuKeyOpensTheProductMenuAndItsItemsWorkOnTheCurrentRow)
{
    QMenu *menu = window->actions().mnuMainGrid();
    goToRow(1);
    const QString part = partInGridRow(1);
    focusGrid(grid);
    press(Qt::Key_Menu);
    ASSERT_TRUE(waitForMenu(menu));
    EXPECT_EQ(menu->pos(), cellMenuPoint(grid));
    press(Qt::Key_Q); // Add to &Quote
    ASSERT_TRUE(QTest::qWaitFor([menu] { return !menu->isVisible(); }, 10000));
    ASSERT_EQ(QuoteLine::lineCount(module->QuoteTable()), 1);
    EXPECT_EQ(quoteCell(0, QuoteGridColumn::PartNumber), part);
}

TEST_F(KeyboardWindowTest, ShiftF10AndTheMenuKeyOpenTheQuoteMenuAtTheCurrentRow)
{
    QMenu *menu = window->actions().mnuQuote();
    goToRow(0);
    action("mnuGrdMainQuote")->trigger();
    goToRow(1);
    action("mnuGrdMainQuote")->trigger();
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(1, QuoteGridColumn::Price));
    focusGrid(quoteGrid);
    for (const auto &[key, modifiers] : { std::pair { Qt::Key_F10, Qt::ShiftModifier },
             std::pair { Qt::Key_Menu, Qt::NoModifier } }) {
        press(key, modifiers);
        ASSERT_TRUE(waitForMenu(menu));
        EXPECT_EQ(menu->pos(), cellMenuPoint(quoteGrid));
        press(Qt::Key_Escape);
        ASSERT_TRUE(QTest::qWaitFor([menu] { return !menu->isVisible(); }, 10000));
    }
}

TEST_F(KeyboardWindowTest, TheScheduleMenuOpensFromTheKeyboardToo)
{
    goToRow(0);
    auto *schedule = window->ui().PriceSchedule;
    schedule->setCurrentIndex(schedule->model()->index(0, 0));
    focusGrid(schedule);
    press(Qt::Key_F10, Qt::ShiftModifier);
    const QMenu *menu = window->actions().mnups();
    ASSERT_NE(menu, nullptr);
    ASSERT_TRUE(waitForMenu(menu));
    EXPECT_EQ(menu->pos(), cellMenuPoint(schedule));
}

TEST_F(KeyboardWindowTest, WithoutACurrentRowNoMenuOpens)
{
    grid->selectionModel()->clear();
    grid->setCurrentIndex(QModelIndex());
    EXPECT_FALSE(grid->requestContextMenu());
    EXPECT_FALSE(window->actions().mnuMainGrid()->isVisible());
}

TEST_F(KeyboardWindowTest, TabMovesBetweenCellsAndCtrlTabLeavesTheGrid)
{
    button("Edit")->trigger(); // outside edit mode the cursor keeps to the first column
    goToRow(0);
    focusGrid(grid);
    press(Qt::Key_Tab);
    EXPECT_TRUE(grid->hasFocus());
    EXPECT_EQ(grid->currentIndex(), grid->model()->index(0, 1));

    press(Qt::Key_Tab, Qt::ControlModifier);
    QWidget *next = QApplication::focusWidget();
    ASSERT_NE(next, nullptr);
    EXPECT_FALSE(within(next, grid));

    focusGrid(grid);
    press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    QWidget *previous = QApplication::focusWidget();
    ASSERT_NE(previous, nullptr);
    EXPECT_FALSE(within(previous, grid));
    EXPECT_NE(previous, next);
}

TEST_F(KeyboardWindowTest, CtrlTabLeavesTheQuoteGridAndACellEditorStoringWhatWasTyped)
{
    goToRow(0);
    action("mnuGrdMainQuote")->trigger();
    ASSERT_TRUE(quoteGrid->hasFocus());
    ASSERT_EQ(quoteGrid->currentIndex().column(), QuoteGridColumn::Quantity);
    type(QStringLiteral("4"));
    ASSERT_TRUE(quoteGrid->isEditing());
    press(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_FALSE(within(QApplication::focusWidget(), quoteGrid));
    EXPECT_FALSE(quoteGrid->isEditing());
    EXPECT_EQ(quoteCell(0, QuoteGridColumn::Quantity), QStringLiteral("4"));
}

TEST_F(KeyboardWindowTest, F6GoesRoundTheProductGridTheSideBoxesAndTheQuote)
{
    QTabWidget *tabs = window->ui().SSTabmain;
    focusGrid(grid);
    press(Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), window->ui().TxtPrice);
    EXPECT_EQ(tabs->currentIndex(), 0);
    press(Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), quoteGrid);
    EXPECT_EQ(tabs->currentIndex(), 1);
    press(Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), grid);
    press(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), quoteGrid);
    press(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), window->ui().TxtPrice);
    EXPECT_EQ(tabs->currentIndex(), 0);
    // From a box of the side boxes, F6 goes on to the quote.
    window->ui().Txtnotes->setFocus();
    press(Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), quoteGrid);
}

TEST_F(KeyboardWindowTest, ATabBroughtForwardByItsLetterTakesTheKeyboardWithIt)
{
    goToRow(1); // B-200
    focusGrid(grid);
    press(Qt::Key_D, Qt::ControlModifier); // a line on the quote, as one brought back at start
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, QuoteGridColumn::PartNumber));
    window->actions().action(QStringLiteral("mnuEditProd"))->trigger();
    // The quote's tab is in front already: its letter still takes the keyboard there.
    ASSERT_EQ(window->ui().SSTabmain->currentIndex(), 1);
    focusGrid(grid);
    press(Qt::Key_Q, Qt::AltModifier);
    ASSERT_EQ(window->ui().SSTabmain->currentIndex(), 1);
    EXPECT_EQ(QApplication::focusWidget(), quoteGrid);
    EXPECT_EQ(quoteGrid->currentIndex().column(), QuoteGridColumn::Quantity);
    type(QStringLiteral("25"));
    press(Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !quoteGrid->isEditing(); }, 10000));
    EXPECT_EQ(catalogue().get(2, 1), Cell("B-200")) << "the typing did not go into the product";
    EXPECT_EQ(gridCellText(quoteGrid, 0, QuoteGridColumn::PartNumber), QStringLiteral("B-200"))
        << "nor into the quote line's part number";
    EXPECT_EQ(gridCellText(quoteGrid, 0, QuoteGridColumn::Quantity), QStringLiteral("25"));
    press(Qt::Key_O, Qt::AltModifier);
    EXPECT_EQ(window->ui().SSTabmain->currentIndex(), 0);
    EXPECT_EQ(QApplication::focusWidget(), window->ui().TxtPrice);
}

TEST_F(KeyboardWindowTest, AProductTabLetterWithTheQuoteInFrontGoesToItsBox)
{
    window->actions().action(QStringLiteral("mnuEditProd"))->trigger();
    goToRow(1); // B-200
    const Cell name = catalogue().get(2, 2);
    window->ui().SSTabmain->setCurrentIndex(1);
    focusGrid(grid);
    press(Qt::Key_C, Qt::AltModifier); // List pri&ce
    EXPECT_EQ(window->ui().SSTabmain->currentIndex(), 0);
    ASSERT_EQ(QApplication::focusWidget(), window->ui().TxtPrice);
    type(QStringLiteral("17.25")); // replaces the price shown, as after the label's letter
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("17.25"));
    EXPECT_EQ(catalogue().get(2, 2), name) << "the typing did not rename the product";

    press(Qt::Key_Q, Qt::AltModifier);
    ASSERT_EQ(window->ui().SSTabmain->currentIndex(), 1);
    press(Qt::Key_N, Qt::AltModifier); // &Notes
    EXPECT_EQ(window->ui().SSTabmain->currentIndex(), 0);
    EXPECT_EQ(QApplication::focusWidget(), window->ui().Txtnotes);
    press(Qt::Key_Q, Qt::AltModifier);
    press(Qt::Key_I, Qt::AltModifier); // &Includes
    EXPECT_EQ(window->ui().SSTabmain->currentIndex(), 0);
    EXPECT_EQ(QApplication::focusWidget(), window->ui().Txtincludes);
    // With the product tab in front the letters work as they always did.
    press(Qt::Key_C, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget(), window->ui().TxtPrice);
}

TEST_F(KeyboardWindowTest, APriceTypedOnThePriceColumnGoesToTheListPriceBox)
{
    window->actions().action(QStringLiteral("mnuEditProd"))->trigger();
    goToRow(1); // B-200, list price 2.5
    window->ui().SSTabmain->setCurrentIndex(1); // the quote in front: the box is not in view
    focusGrid(grid);
    grid->setCurrentIndex(grid->model()->index(1, 2)); // its Price cell
    type(QStringLiteral("4.25"));
    EXPECT_EQ(QApplication::focusWidget(), window->ui().TxtPrice);
    EXPECT_TRUE(window->ui().TxtPrice->isVisible()) << "the Product tab came forward";
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("4.25"));
    EXPECT_EQ(grid->currentIndex().row(), 1) << "the grid's search did not move to another row";
    press(Qt::Key_F6); // on to the quote: the box is stored
    EXPECT_EQ(catalogue().get(2, 1), Cell("B-200"));
    EXPECT_EQ(catalogue().get(2, 3), Cell("$4.25")); // as the box shows it

    // A price point's column says where price points are typed, and changes nothing.
    focusGrid(grid);
    grid->setCurrentIndex(grid->model()->index(1, 3));
    const quint64 before = catalogue().generation();
    type(QStringLiteral("9"));
    EXPECT_EQ(QApplication::focusWidget(), grid);
    EXPECT_TRUE(window->ui().sbPanel1->text().startsWith(
        QStringLiteral("Price points are typed in the Price Schedule")));
    EXPECT_EQ(catalogue().generation(), before);
    EXPECT_EQ(grid->currentIndex().row(), 1);
}

TEST_F(KeyboardWindowTest, OnlyTheGridWithTheKeyboardShowsItsSelectionInTheHighlight)
{
    const QColor highlight =
        QApplication::palette(grid).color(QPalette::Active, QPalette::Highlight);
    const auto shown = [](const GridView *view) {
        return view->palette().color(QPalette::Active, QPalette::Highlight);
    };
    focusGrid(grid);
    EXPECT_EQ(shown(grid), highlight);
    EXPECT_NE(shown(quoteGrid), highlight);
    press(Qt::Key_D, Qt::ControlModifier); // Add to Quote: the keyboard goes to the quote
    ASSERT_EQ(QApplication::focusWidget(), quoteGrid);
    EXPECT_EQ(shown(quoteGrid), highlight);
    EXPECT_NE(shown(grid), highlight);
    // Its own cell editor keeps the keyboard in the grid.
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, 3));
    quoteGrid->edit(quoteGrid->currentIndex());
    ASSERT_NE(quoteGrid->openEditor(), nullptr);
    EXPECT_EQ(shown(quoteGrid), highlight);
}

// A dark desktop theme whose Midlight is nearly its background: the grid without the keyboard
// must still show which row is selected.
TEST_F(KeyboardWindowTest, TheSelectionOfTheGridWithoutTheKeyboardShowsOnADarkTheme)
{
    struct PaletteKept
    {
        QPalette before = QApplication::palette();
        ~PaletteKept() { QApplication::setPalette(before); }
    } kept;
    QPalette dark = kept.before;
    for (const QPalette::ColorGroup group : { QPalette::Active, QPalette::Inactive }) {
        dark.setColor(group, QPalette::Window, QColor(53, 53, 53));
        dark.setColor(group, QPalette::WindowText, QColor(238, 238, 238));
        dark.setColor(group, QPalette::Base, QColor(45, 45, 45));
        dark.setColor(group, QPalette::AlternateBase, QColor(36, 36, 36));
        dark.setColor(group, QPalette::Text, QColor(238, 238, 238));
        dark.setColor(group, QPalette::Midlight, QColor(42, 42, 42));
        dark.setColor(group, QPalette::Highlight, QColor(21, 83, 158));
        dark.setColor(group, QPalette::HighlightedText, Qt::white);
    }
    QApplication::setPalette(dark);
    const auto grey = [](const GridView *view, QPalette::ColorRole role) {
        return qGray(view->palette().color(QPalette::Active, role).rgb());
    };
    const auto standsOut = [&](const GridView *view) {
        const int selected = grey(view, QPalette::Highlight);
        EXPECT_GE(std::abs(selected - 45), 30) << "against the rows";
        EXPECT_GE(std::abs(selected - 36), 30) << "against the alternate rows";
        EXPECT_GE(std::abs(grey(view, QPalette::HighlightedText) - selected), 100)
            << "its text can be read";
    };
    focusGrid(grid);
    standsOut(quoteGrid);
    press(Qt::Key_D, Qt::ControlModifier); // Add to Quote: the keyboard goes to the quote
    ASSERT_EQ(QApplication::focusWidget(), quoteGrid);
    standsOut(grid);

    // Back on a light theme, the keyboard moving on: the grey of that theme.
    QApplication::setPalette(kept.before);
    press(Qt::Key_F6);
    ASSERT_EQ(QApplication::focusWidget(), grid);
    EXPECT_EQ(quoteGrid->palette().color(QPalette::Active, QPalette::Highlight),
        GridView::quietHighlight(QApplication::palette(quoteGrid), QPalette::Active));
    EXPECT_EQ(grid->palette().color(QPalette::Active, QPalette::Highlight),
        QApplication::palette(grid).color(QPalette::Active, QPalette::Highlight));
}

TEST_F(KeyboardWindowTest, PassingThroughTheSideBoxesInEditModeChangesNothing)
{
    window->actions().action(QStringLiteral("mnuEditProd"))->trigger();
    goToRow(1); // B-200, list price 2.5
    focusGrid(grid);
    const quint64 before = catalogue().generation();
    press(Qt::Key_F6);
    ASSERT_EQ(QApplication::focusWidget(), window->ui().TxtPrice);
    press(Qt::Key_Tab);
    press(Qt::Key_F6, Qt::ShiftModifier);
    ASSERT_EQ(QApplication::focusWidget(), grid);

    EXPECT_EQ(catalogue().generation(), before) << "no cell was written";
    EXPECT_FALSE(window->actions().action(QStringLiteral("mnuEditUndo"))->isEnabled());
    EXPECT_TRUE(catalogue().get(2, 3).isNumber()) << "the list price keeps its number";
    EXPECT_FALSE(window->isWindowModified());
}

TEST_F(KeyboardWindowTest, AddToQuoteHasAKeyNoStandardActionUsesShownInTheMenu)
{
    QAction *add = action("mnuGrdMainQuote");
    const QKeySequence key = MainWindowActions::addToQuoteShortcut();
    EXPECT_EQ(add->shortcut(), key);
    EXPECT_FALSE(key.isEmpty());
    EXPECT_TRUE(add->isShortcutVisibleInContextMenu());
    EXPECT_TRUE(window->QWidget::actions().contains(add));
    for (int standard = QKeySequence::HelpContents; standard <= QKeySequence::Cancel; ++standard) {
        const QList<QKeySequence> bindings =
            QKeySequence::keyBindings(QKeySequence::StandardKey(standard));
        EXPECT_FALSE(bindings.contains(key)) << standard;
    }
    for (QAction *other : window->findChildren<QAction *>()) {
        if (other != add) {
            EXPECT_NE(other->shortcut(), key) << qPrintable(other->objectName());
        }
    }
}

TEST_F(KeyboardWindowTest, ToolbarCommandsNoMenuHoldsHaveKeysShownInTheirToolTips)
{
    EXPECT_TRUE(button("Find")->toolTip().endsWith(QStringLiteral(" (%1)").arg(
        QKeySequence(QKeySequence::Find).toString(QKeySequence::NativeText))));
    const std::pair<const char *, QKeySequence> keys[] = {
        { "Palm", MainWindowActions::handheldShortcut() },
        { "Export", MainWindowActions::exportShortcut() },
        { "New", MainWindowActions::modifyShortcut() },
    };
    for (const auto &[name, key] : keys) {
        EXPECT_FALSE(key.isEmpty()) << name;
        EXPECT_TRUE(button(name)->toolTip().endsWith(
            QStringLiteral(" (%1)").arg(key.toString(QKeySequence::NativeText))))
            << name;
        for (int standard = QKeySequence::HelpContents; standard <= QKeySequence::Cancel;
             ++standard)
            EXPECT_FALSE(
                QKeySequence::keyBindings(QKeySequence::StandardKey(standard)).contains(key))
                << name << " " << standard;
        for (QAction *other : window->findChildren<QAction *>()) {
            if (other != button(name)) {
                EXPECT_NE(other->shortcut(), key) << name << " " << qPrintable(other->objectName());
            }
        }
    }

    // Buttons whose menu items have keys show them too.
    EXPECT_EQ(button("Save")->toolTip(),
        QStringLiteral("Save (%1)")
            .arg(QKeySequence(QKeySequence::Save).toString(QKeySequence::NativeText)));
    EXPECT_EQ(button("Help")->toolTip(),
        QStringLiteral("Help (%1)")
            .arg(QKeySequence(QKeySequence::HelpContents).toString(QKeySequence::NativeText)));

    // Export and "modify with a spreadsheet" ask their questions from the keyboard.
    focusGrid(grid);
    fakes->prompts.answerMessage(MsgResult::No);
    fakes->prompts.answerMessage(MsgResult::No);
    press(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
    press(Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(fakes->prompts.texts(),
        QStringList({ QString(ProductCommands::ExportQuestion),
            QString(ProductCommands::ImportQuestion) }));

    // The find key finds from the grid, as the button does.
    focusGrid(grid);
    dialogs.textAnswers << QStringLiteral("clamp");
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(grid->currentIndex().row(), 2);
    ASSERT_EQ(dialogs.textRequests.size(), 1U);

    // The toolbar cannot be hidden, and the keys work even if it were.
    EXPECT_FALSE(window->actions().toolBar()->toggleViewAction()->isVisible());
    window->actions().toolBar()->hide();
    goToRow(0);
    dialogs.textAnswers << QStringLiteral("bolt");
    focusGrid(grid);
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(grid->currentIndex().row(), 1);
    EXPECT_EQ(dialogs.textRequests.size(), 2U);
    window->actions().toolBar()->show();

    // The handheld's key asks before it sends, as the button does.
    fakes->prompts.answerMessage(MsgResult::Cancel);
    press(Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(fakes->prompts.texts().size(), 3);
    EXPECT_TRUE(fakes->prompts.texts()[2].startsWith(QStringLiteral("Send ")))
        << fakes->prompts.texts()[2].toStdString();
}

TEST_F(KeyboardWindowTest, TheKeyOfAddToQuoteAddsTheCurrentProduct)
{
    goToRow(2);
    const QString part = partInGridRow(2);
    focusGrid(grid);
    press(MainWindowActions::addToQuoteShortcut()[0].key(),
        MainWindowActions::addToQuoteShortcut()[0].keyboardModifiers());
    ASSERT_EQ(QuoteLine::lineCount(module->QuoteTable()), 1);
    EXPECT_EQ(quoteCell(0, QuoteGridColumn::PartNumber), part);
}

TEST_F(KeyboardWindowTest, AQuoteIsMadeAndCopiedWithTheKeyboardAlone)
{
    focusGrid(grid);
    press(Qt::Key_Home, Qt::ControlModifier);
    press(Qt::Key_Down);
    const QString part = partInGridRow(grid->currentIndex().row());
    ASSERT_EQ(grid->currentIndex().row(), 1);
    press(Qt::Key_D, Qt::ControlModifier); // Add to Quote
    ASSERT_EQ(QApplication::focusWidget(), quoteGrid);
    type(QStringLiteral("12"));
    press(Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !quoteGrid->isEditing(); }, 10000));
    EXPECT_EQ(quoteCell(0, QuoteGridColumn::Quantity), QStringLiteral("12"));
    const QString total = window->ui().TxtTotal->text();
    EXPECT_EQ(total, quoteCell(0, QuoteGridColumn::ExtPrice));

    QMenu *menu = window->actions().mnuQuote();
    press(Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_TRUE(waitForMenu(menu));
    press(Qt::Key_C); // &Copy
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return fakes->clipboard.richDocument().has_value(); }, 10000));
    const QString document = fakes->clipboard.richDocument()->plainText;
    EXPECT_TRUE(document.contains(part + QStringLiteral(" \t"))) << qPrintable(document);
    EXPECT_TRUE(document.contains(QStringLiteral("Order Total = ") + total))
        << qPrintable(document);
}

TEST_F(KeyboardWindowTest, AfterADeleteTheSideBoxesStayEmptyWhenTheKeyboardComesBack)
{
    goToRow(0);
    focusGrid(grid);
    fakes->prompts.answerMessage(int(MsgResult::Yes));
    button("DelProd")->trigger();
    ASSERT_FALSE(grid->currentIndex().isValid());
    // The question box closed: the window and the grid get the keyboard back.
    QFocusEvent back(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(grid, &back);
    QFocusEvent popupGone(QEvent::FocusIn, Qt::PopupFocusReason);
    QApplication::sendEvent(grid, &popupGone);
    EXPECT_FALSE(grid->currentIndex().isValid());
    EXPECT_EQ(window->ui().TxtPrice->text(), QString());
    EXPECT_EQ(window->ui().Txtincludes->toPlainText(), QString());
    EXPECT_EQ(window->ui().Txtnotes->toPlainText(), QString());
    // Moving in the grid again shows the row moved to.
    press(Qt::Key_Down);
    EXPECT_TRUE(grid->currentIndex().isValid());
}

} // namespace
