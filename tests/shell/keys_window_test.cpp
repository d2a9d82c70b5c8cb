// Keys, cells and commands of the real main window driven as a user does it: clicks followed
// at once by typed keys (no waits in between), the cell the quote grid offers after "Add to
// Quote", the text a price editor opens with, header clicks and deletes in edit mode, the
// menu mnemonics, the quote grid's corner button, the status bar over the toolbar and the
// check mark of Products → Edit.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "platform/iprompts.h"
#include "products/ui/frmdiscount.h"
#include "quotes/quotelist.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"
#include "shell/productgridcontroller.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSet>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QToolBar>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

/// The letter after a single '&' of a caption, lower case; a null QChar when there is none.
QChar mnemonicOf(const QString &caption)
{
    for (int at = 0; at + 1 < caption.size(); ++at) {
        if (caption.at(at) != QLatin1Char('&'))
            continue;
        if (caption.at(at + 1) == QLatin1Char('&')) {
            ++at;
            continue;
        }
        return caption.at(at + 1).toLower();
    }
    return QChar();
}

class KeysWindowTest : public ActiveWindowTest
{
protected:
    /// Sends each key to whichever control has the keyboard focus at that moment, as the
    /// keyboard does, without waiting between keys.
    static void type(const QString &text)
    {
        for (const QChar ch : text)
            QTest::keyClick(QApplication::focusWidget(), ch.toLatin1());
    }
    static void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    /// Enter commits the cell on the next pass of the event loop; waits for that only.
    static void enter(const GridView *view)
    {
        press(Qt::Key_Return);
        ASSERT_TRUE(QTest::qWaitFor([view] { return !view->isEditing(); }, 10000));
    }
    static void clickCell(QTableView *view, int row, int column)
    {
        const QRect cell = view->visualRect(view->model()->index(row, column));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, cell.center());
    }
    /// Right-clicks a product and chooses "Add to &Quote".
    void addToQuote(int gridRow)
    {
        const QRect cell = grid->visualRect(grid->model()->index(gridRow, 1));
        QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, cell.center());
        window->actions().mnuMainGrid()->hide();
        action("mnuGrdMainQuote")->trigger();
    }
    QString quoteCell(int row, int column) const { return gridCellText(quoteGrid, row, column); }
    /// The catalogue row holding a part number, 0 when none does.
    int rowOfPart(const QString &part)
    {
        for (int row = 1; row <= catalogue().rowCount(); ++row) {
            if (catalogue().get(row, 1) == Cell(part))
                return row;
        }
        return 0;
    }
};

TEST_F(KeysWindowTest, ANewProductTypedAtOnceAfterAClickLandsInItsOwnCells)
{
    goToRow(1);
    button("Insert")->trigger();
    clickCell(grid, 1, 0); // the fresh row's part number cell, already current
    type(QStringLiteral("W-250"));
    press(Qt::Key_Tab);
    type(QStringLiteral("New Widget"));
    enter(grid);
    button("Edit")->trigger();
    const int row = rowOfPart(QStringLiteral("W-250"));
    ASSERT_EQ(row, 2);
    EXPECT_EQ(catalogue().get(row, 2), Cell("New Widget"));
    EXPECT_EQ(catalogue().get(1, 1), Cell("A-100"));
    EXPECT_EQ(catalogue().get(3, 1), Cell("B-200"));
    EXPECT_EQ(catalogue().get(4, 1), Cell("C-300"));
}

TEST_F(KeysWindowTest, KeysTypedAtOnceAfterClickingAnotherProductsCellLandInThatCell)
{
    button("Edit")->trigger();
    clickCell(grid, 2, 1);
    clickCell(grid, 2, 1);
    type(QStringLiteral("Clamp XL"));
    enter(grid);
    EXPECT_EQ(catalogue().get(3, 2), Cell("Clamp XL"));
    EXPECT_EQ(catalogue().get(1, 2), Cell("Anchor"));
    EXPECT_EQ(catalogue().get(2, 2), Cell("Bolt"));
}

TEST_F(KeysWindowTest, AQuantityTypedAtOnceAfterClickingTheCurrentQuantityCellIsKept)
{
    addToQuote(1); // B-200 Bolt, list 2.50
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, QuoteGridColumn::Quantity));
    clickCell(quoteGrid, 0, QuoteGridColumn::Quantity);
    type(QStringLiteral("10"));
    enter(quoteGrid);
    EXPECT_EQ(quoteCell(0, QuoteGridColumn::Quantity), QStringLiteral("10"));
    EXPECT_EQ(quoteCell(0, QuoteGridColumn::ExtPrice), QStringLiteral("$25.00"));
    EXPECT_EQ(window->ui().TxtTotal->text(), QStringLiteral("$25.00"));
}

TEST_F(KeysWindowTest, AfterAddToQuoteTheTypedNumberIsTheNewLinesQuantity)
{
    addToQuote(0); // A-100 Anchor 12.50
    addToQuote(1); // B-200 Bolt 2.50
    EXPECT_EQ(quoteGrid->currentIndex(), quoteGrid->model()->index(1, QuoteGridColumn::Quantity));
    type(QStringLiteral("10"));
    enter(quoteGrid);
    EXPECT_EQ(quoteCell(1, QuoteGridColumn::PartNumber), QStringLiteral("B-200"));
    EXPECT_EQ(quoteCell(1, QuoteGridColumn::Quantity), QStringLiteral("10"));
    EXPECT_EQ(quoteCell(1, QuoteGridColumn::ExtPrice), QStringLiteral("$25.00"));
    EXPECT_EQ(window->ui().TxtTotal->text(), QStringLiteral("$37.50"));
}

TEST_F(KeysWindowTest, AnEditorOnADiscountedPriceOpensWithThePriceAsTheUserKnowsIt)
{
    addToQuote(0); // A-100 Anchor 12.50
    action("mnudiscountAll")->trigger();
    auto *form = window->findChild<FrmDiscount *>();
    ASSERT_NE(form, nullptr);
    auto *combo = form->findChild<QComboBox *>(QStringLiteral("CmboDisc"));
    combo->setCurrentIndex(combo->findText(QStringLiteral("10%")));
    QTest::mouseClick(form->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::LeftButton);
    ASSERT_EQ(quoteCell(0, QuoteGridColumn::Price), QStringLiteral("$11.25"));
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, QuoteGridColumn::Price));
    quoteGrid->setFocus();
    press(Qt::Key_F2);
    auto *editor = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->text(), QStringLiteral("11.25"));
    press(Qt::Key_Escape);
}

TEST_F(KeysWindowTest, AHeaderClickInEditModeKeepsThePendingCellEditAndStoresTheSideBoxes)
{
    button("Edit")->trigger();
    goToRow(0); // A-100 Anchor
    window->ui().TxtPrice->setText(QStringLiteral("$13.75"));
    clickCell(grid, 0, 1);
    type(QStringLiteral("Anchor bolt"));
    ASSERT_TRUE(grid->isEditing());
    const int nameColumn = 1;
    const QRect header(grid->horizontalHeader()->sectionViewportPosition(nameColumn), 0,
        grid->horizontalHeader()->sectionSize(nameColumn), grid->horizontalHeader()->height());
    QTest::mouseClick(grid->horizontalHeader()->viewport(), Qt::LeftButton, {}, header.center());
    const int row = rowOfPart(QStringLiteral("A-100"));
    ASSERT_GT(row, 0);
    EXPECT_EQ(catalogue().get(row, 2), Cell("Anchor bolt"));
    // The price box is stored as leaving the row stores it: formatted as currency.
    EXPECT_EQ(catalogue().get(row, 3), Cell("$13.75"));
    EXPECT_FALSE(button("Edit")->isChecked());
}

TEST_F(KeysWindowTest, AfterADeleteTheSideBoxesAndTheScheduleAreEmpty)
{
    goToRow(1); // B-200 Bolt, with two price points
    fakes->prompts.answerMessage(int(MsgResult::Yes));
    button("DelProd")->trigger();
    EXPECT_FALSE(grid->currentIndex().isValid());
    EXPECT_EQ(window->ui().TxtPrice->text(), QString());
    EXPECT_EQ(window->ui().Txtincludes->toPlainText(), QString());
    EXPECT_EQ(window->ui().Txtnotes->toPlainText(), QString());
    EXPECT_TRUE(module->ScheduleTable().get(1, 1).isBlank());
    EXPECT_TRUE(module->ScheduleTable().get(1, 2).isBlank());
}

TEST_F(KeysWindowTest, NoLabelOrTabMnemonicTakesTheLetterOfAMenu)
{
    QSet<QChar> menus;
    for (QAction *menu : window->menuBar()->actions()) {
        const QChar letter = mnemonicOf(menu->text());
        ASSERT_FALSE(letter.isNull()) << menu->text().toStdString();
        EXPECT_FALSE(menus.contains(letter)) << menu->text().toStdString();
        menus.insert(letter);
    }
    QStringList captions;
    for (const QLabel *label : window->findChildren<QLabel *>())
        captions << label->text();
    for (const QGroupBox *box : window->findChildren<QGroupBox *>())
        captions << box->title();
    for (const QAbstractButton *control : window->findChildren<QAbstractButton *>())
        captions << control->text();
    for (const QTabWidget *tabs : window->findChildren<QTabWidget *>()) {
        for (int tab = 0; tab < tabs->count(); ++tab)
            captions << tabs->tabText(tab);
    }
    for (const QString &caption : captions) {
        const QChar letter = mnemonicOf(caption);
        EXPECT_TRUE(letter.isNull() || !menus.contains(letter)) << caption.toStdString();
    }
}

TEST_F(KeysWindowTest, AltPOpensTheProductsMenu)
{
    QMenu *products = window->menuBar()->findChild<QMenu *>(QStringLiteral("mnuProducts"));
    if (!products) {
        for (QAction *menu : window->menuBar()->actions()) {
            if (menu->text() == QStringLiteral("&Products"))
                products = menu->menu();
        }
    }
    ASSERT_NE(products, nullptr);
    grid->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_P, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return products->isVisible(); }, 10000));
    EXPECT_NE(QApplication::focusWidget(), window->ui().TxtPrice);
    products->hide();
}

TEST_F(KeysWindowTest, ARightClickOnTheQuoteGridsCornerButtonShowsNoMenu)
{
    addToQuote(0);
    auto *corner = quoteGrid->findChild<QAbstractButton *>();
    ASSERT_NE(corner, nullptr);
    QTest::mouseClick(corner, Qt::RightButton, {}, QPoint(2, 2));
    EXPECT_FALSE(window->actions().mnuQuote()->isVisible());
    window->actions().mnuQuote()->hide();
}

TEST_F(KeysWindowTest, MovingOverAToolbarButtonClearsTheStatusBar)
{
    window->ui().sbPanel1->setText(QStringLiteral("3 Products"));
    QWidget *editButton = window->actions().toolBar()->widgetForAction(button("Edit"));
    ASSERT_NE(editButton, nullptr);
    QMouseEvent move(QEvent::MouseMove, QPointF(3, 3), editButton->mapToGlobal(QPointF(3, 3)),
        Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(editButton, &move);
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
}

TEST_F(KeysWindowTest, ProductsEditIsCheckedInStepWithTheEditButton)
{
    QAction *item = action("mnuEditProd");
    EXPECT_TRUE(item->isCheckable());
    button("Edit")->trigger();
    EXPECT_TRUE(item->isChecked());
    item->trigger();
    EXPECT_FALSE(button("Edit")->isChecked());
    EXPECT_FALSE(item->isChecked());
    EXPECT_TRUE(window->ui().TxtPrice->isReadOnly());
    item->trigger();
    EXPECT_TRUE(button("Edit")->isChecked());
    EXPECT_TRUE(item->isChecked());
    EXPECT_FALSE(window->ui().TxtPrice->isReadOnly());
}

} // namespace
