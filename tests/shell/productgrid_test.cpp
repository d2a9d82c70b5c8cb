// The product grid on the real main window: the side boxes follow the current row, edits
// are written back when a row is left in edit mode, a header click sorts and ends edit mode,
// the context menu and the product count in the status bar.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"
#include "shell/productgridcontroller.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolBar>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class ProductGridTest : public SampleWindowTest
{
protected:
    void pressEdit() { button("Edit")->trigger(); }
    /// Types text into a grid cell through its editor, without pressing Enter.
    QLineEdit *typeIntoCell(int gridRow, int column, const QString &text)
    {
        const QModelIndex index = grid->model()->index(gridRow, column);
        grid->setCurrentIndex(index);
        grid->edit(index);
        auto *editor = grid->viewport()->findChild<QLineEdit *>();
        if (!editor)
            return nullptr;
        editor->selectAll();
        QTest::keyClicks(editor, text);
        return editor;
    }
    void clickHeader(int column)
    {
        QHeaderView *header = grid->horizontalHeader();
        const QPoint at(header->sectionViewportPosition(column) + 5, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
    }
};

TEST_F(ProductGridTest, BrowseModeLocksTheSideBoxesAndWritesNothingBack)
{
    EXPECT_FALSE(button("Edit")->isChecked());
    EXPECT_TRUE(window->ui().TxtPrice->isReadOnly());
    EXPECT_TRUE(window->ui().Txtnotes->isReadOnly());
    window->ui().Txtnotes->setPlainText(QStringLiteral("changed"));
    QTest::keyClick(grid, Qt::Key_Down);
    EXPECT_EQ(grid->currentIndex().row(), 1);
    EXPECT_EQ(catalogue().get(1, 4), Cell("Two lines\r\nof notes"));
    EXPECT_EQ(window->ui().Txtnotes->toPlainText(), QStringLiteral("Zinc plated"));
}

TEST_F(ProductGridTest, AClickBelowTheLastRowKeepsTheCurrentRowHighlighted)
{
    window->resize(900, 700); // room below the sample's rows
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
        grid->visualRect(grid->model()->index(1, 1)).center());
    ASSERT_EQ(grid->selectionModel()->selectedRows().size(), 1);
    const int lastRow = grid->model()->rowCount() - 1;
    const QRect last = grid->visualRect(grid->model()->index(lastRow, 1));
    const QPoint below(last.center().x(), last.bottom() + 2 * last.height());
    ASSERT_LT(below.y(), grid->viewport()->height());
    ASSERT_FALSE(grid->indexAt(below).isValid());
    for (const Qt::MouseButton button : { Qt::LeftButton, Qt::RightButton }) {
        QTest::mouseClick(grid->viewport(), button, {}, below);
        EXPECT_EQ(grid->currentIndex().row(), 1);
        ASSERT_EQ(grid->selectionModel()->selectedRows().size(), 1) << button;
        EXPECT_EQ(grid->selectionModel()->selectedRows().front().row(), 1);
    }
}

TEST_F(ProductGridTest, BrowseModeKeepsTheCurrentColumnOnThePartNumber)
{
    grid->setCurrentIndex(grid->model()->index(1, 2));
    EXPECT_EQ(grid->currentIndex().row(), 1);
    EXPECT_EQ(grid->currentIndex().column(), 0);
}

// Outside edit mode Left and Right move the cursor nowhere, not to the next cell and back:
// assistive tools announce every cell the cursor reaches.
TEST_F(ProductGridTest, BrowseModeLeftAndRightMoveTheCursorNowhere)
{
    goToRow(2);
    grid->setFocus();
    QSignalSpy moved(grid->selectionModel(), &QItemSelectionModel::currentChanged);
    QTest::keyClick(grid, Qt::Key_Right);
    QTest::keyClick(grid, Qt::Key_Right);
    QTest::keyClick(grid, Qt::Key_Left);
    EXPECT_EQ(moved.count(), 0);
    EXPECT_EQ(grid->currentIndex().row(), 2);
    EXPECT_EQ(grid->currentIndex().column(), 0);
    // In edit mode they move between the cells.
    pressEdit();
    QTest::keyClick(grid, Qt::Key_Right);
    EXPECT_EQ(grid->currentIndex().column(), 1);
}

TEST_F(ProductGridTest, LeavingARowInEditModeStoresTheSideBoxesAndSurvivesARestart)
{
    pressEdit();
    EXPECT_FALSE(window->ui().TxtPrice->isReadOnly());
    window->ui().TxtPrice->setText(QStringLiteral("20"));
    window->ui().Txtincludes->setPlainText(QStringLiteral("Washer, nut"));
    window->ui().Txtnotes->setPlainText(QStringLiteral("New notes"));
    QTest::keyClick(grid, Qt::Key_Down);
    EXPECT_EQ(catalogue().get(1, 3), Cell("$20.00"));
    EXPECT_EQ(catalogue().get(1, 5), Cell("Washer, nut"));
    EXPECT_EQ(catalogue().get(1, 4), Cell("New notes"));
    EXPECT_EQ(grid->model()->index(0, 2).data().toString(), QStringLiteral("$20.00"));

    window->close();
    restart();
    EXPECT_EQ(module->Catalogue().get(1, 3), Cell(20.0f));
    EXPECT_EQ(module->Catalogue().get(1, 4), Cell("New notes"));
}

// Notes and includes as other programs write them (a lone LF or CR, a line separator, a
// no-break space), which a multi-line box shows its own way: passing through the product in
// edit mode changes nothing, and the file keeps its bytes.
TEST_F(ShellTest, PassingThroughAProductInEditModeKeepsItsNotesAsTheFileHoldsThem)
{
    const QByteArray catalogue = catalogueLine({ "A-1", "Anchor", "1",
                                     QStringLiteral("a\nb\u00A0c"), QStringLiteral("c\rd\u2028e") })
        + catalogueLine({ "B-2", "Bolt", "2" });
    folder.writeFile(QStringLiteral("twdata.dat"), catalogue);
    frmMain *window = startAndWait();
    ASSERT_NE(window, nullptr);
    auto *grid = window->ui().GrdMain;
    window->actions().button(QStringLiteral("Edit"))->trigger();
    grid->setFocus();
    grid->setCurrentIndex(grid->model()->index(0, 0));
    QTest::keyClick(grid, Qt::Key_Down);
    QTest::keyClick(grid, Qt::Key_Up);
    QTest::keyClick(grid, Qt::Key_Down);
    EXPECT_EQ(module->Catalogue().get(1, 4), Cell(QStringLiteral("a\nb\u00A0c")));
    EXPECT_EQ(module->Catalogue().get(1, 5), Cell(QStringLiteral("c\rd\u2028e")));
    EXPECT_FALSE(window->isWindowModified());
    window->actions().action(QStringLiteral("mnuFileSave"))->trigger();
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), catalogue);
}

TEST_F(ProductGridTest, MovingToAnotherColumnOfTheSameRowKeepsWhatWasTypedInTheBoxes)
{
    pressEdit();
    window->ui().Txtnotes->setPlainText(QStringLiteral("Typed before moving"));
    grid->setCurrentIndex(grid->model()->index(0, 1));
    EXPECT_EQ(window->ui().Txtnotes->toPlainText(), QStringLiteral("Typed before moving"));
    EXPECT_EQ(catalogue().get(1, 4), Cell("Typed before moving"));
}

TEST_F(ProductGridTest, ANameTypedInTheGridIsStoredInEditMode)
{
    pressEdit();
    QLineEdit *editor = typeIntoCell(0, 1, QStringLiteral("Wall anchor"));
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Return);
    // The grid stores the edit once the key press has been handled.
    EXPECT_TRUE(QTest::qWaitFor([this] { return !grid->isEditing(); }, 10000));
    EXPECT_EQ(catalogue().get(1, 2), Cell("Wall anchor"));
}

TEST_F(ProductGridTest, TheGridAcceptsNoTypingInBrowseMode)
{
    EXPECT_EQ(typeIntoCell(0, 1, QStringLiteral("x")), nullptr);
    EXPECT_EQ(catalogue().get(1, 2), Cell("Anchor"));
}

TEST_F(ProductGridTest, ANonNumericListPriceIsStoredAsTyped)
{
    pressEdit();
    window->ui().TxtPrice->setText(QStringLiteral("call for price"));
    QTest::keyClick(grid, Qt::Key_Down);
    EXPECT_EQ(catalogue().get(1, 3), Cell("call for price"));
}

TEST_F(ProductGridTest, ReleasingEditStoresTheRowAndLocksTheBoxes)
{
    pressEdit();
    window->ui().Txtnotes->setPlainText(QStringLiteral("Kept"));
    pressEdit();
    EXPECT_FALSE(button("Edit")->isChecked());
    EXPECT_EQ(catalogue().get(1, 4), Cell("Kept"));
    EXPECT_TRUE(window->ui().Txtnotes->isReadOnly());
}

TEST_F(ProductGridTest, TheProductsMenuEditItemTogglesTheEditButton)
{
    window->actions().action(QStringLiteral("mnuEditProd"))->trigger();
    EXPECT_TRUE(button("Edit")->isChecked());
    EXPECT_FALSE(window->ui().TxtPrice->isReadOnly());
    window->actions().action(QStringLiteral("mnuEditProd"))->trigger();
    EXPECT_FALSE(button("Edit")->isChecked());
}

TEST_F(ProductGridTest, AHeaderClickKeepsAPendingCellEditAndEndsEditMode)
{
    pressEdit();
    ASSERT_NE(typeIntoCell(1, 1, QStringLiteral("Zed")), nullptr);
    clickHeader(1);
    EXPECT_FALSE(button("Edit")->isChecked());
    EXPECT_TRUE(window->ui().TxtPrice->isReadOnly());
    EXPECT_FALSE(grid->isEditing());
    QStringList names;
    for (int row = 1; row <= catalogue().rowCount(); ++row)
        names << catalogue().get(row, 2).asText();
    EXPECT_EQ(names, QStringList({ "Anchor", "Clamp", "Zed" })) << "the typed name is kept";
    EXPECT_EQ(grid->currentIndex().row(), 0);
    EXPECT_FALSE(module->SortedByPart);
}

TEST_F(ProductGridTest, AHeaderClickStoresTheSideBoxesInTheirOwnRowBeforeSorting)
{
    pressEdit();
    goToRow(2); // C-300 Clamp
    window->ui().Txtnotes->setPlainText(QStringLiteral("Clamp notes"));
    clickHeader(2); // by price: B-200, A-100, then C-300 without a price
    EXPECT_EQ(catalogue().get(3, 1), Cell("C-300"));
    EXPECT_EQ(catalogue().get(3, 4), Cell("Clamp notes"));
    EXPECT_EQ(catalogue().get(1, 4), Cell("Zinc plated"));
}

TEST_F(ProductGridTest, AHeaderClickSortsOnTheFieldTheColumnShows)
{
    clickHeader(2); // "Price": by list price, as numbers
    QStringList parts;
    for (int row = 1; row <= catalogue().rowCount(); ++row)
        parts << catalogue().get(row, 1).asText();
    EXPECT_EQ(parts, QStringList({ "B-200", "A-100", "C-300" }));
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("$2.50"));
    clickHeader(0);
    EXPECT_EQ(catalogue().get(1, 1), Cell("A-100"));
    EXPECT_TRUE(module->SortedByPart);
}

TEST_F(ProductGridTest, ARightClickOnARowSelectsItAndOpensTheGridMenu)
{
    const QRect second = grid->visualRect(grid->model()->index(1, 1));
    QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, second.center());
    EXPECT_EQ(grid->currentIndex().row(), 1);
    QMenu *menu = window->actions().mnuMainGrid();
    EXPECT_TRUE(menu->isVisible());
    QStringList items;
    for (QAction *action : menu->actions())
        items << action->text();
    EXPECT_EQ(items, QStringList({ "Add to &Quote", "&Copy Product Info" }));
    menu->hide();
}

TEST_F(ProductGridTest, TheMenuKeyOpensTheGridMenuForTheCurrentRow)
{
    goToRow(2);
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
    QApplication::sendEvent(grid, &menuKey);
    EXPECT_TRUE(window->actions().mnuMainGrid()->isVisible());
    EXPECT_EQ(grid->currentIndex().row(), 2);
    window->actions().mnuMainGrid()->hide();
}

TEST_F(ProductGridTest, ARightClickBelowTheLastRowOpensNoMenu)
{
    const QRect last = grid->visualRect(grid->model()->index(2, 1));
    QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, last.center() + QPoint(0, 80));
    EXPECT_EQ(grid->currentIndex().row(), 0);
    EXPECT_FALSE(window->actions().mnuMainGrid()->isVisible());
}

TEST_F(ProductGridTest, TheStatusBarCountsTheProductsWhileThePointerIsOverTheGrid)
{
    QTest::mouseMove(grid->viewport(), QPoint(20, 10));
    EXPECT_EQ(window->ui().sbPanel1->text(), QStringLiteral("3 Products"));
    QMouseEvent overToolbar(QEvent::MouseMove, QPointF(5, 5), QPointF(5, 5), Qt::NoButton,
        Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(window->actions().toolBar(), &overToolbar);
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
}

TEST_F(ProductGridTest, TheQuoteFrameGivesItsHint)
{
    QMouseEvent over(QEvent::MouseMove, QPointF(5, 5), QPointF(5, 5), Qt::NoButton, Qt::NoButton,
        Qt::NoModifier);
    QApplication::sendEvent(window->ui().FraQuote, &over);
    EXPECT_EQ(window->ui().sbPanel1->text(), QStringLiteral("Right click for quote options."));
}

} // namespace
