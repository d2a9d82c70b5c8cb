// What a keyboard and screen-reader user meets in the main window's panes and the small
// windows it opens: where Tab goes from the product grid, where the keyboard is after Locate
// Product, the names of the quote's cell editor and the discount windows, the Quote Note
// window over the main window, the order of Catalogue Properties.
#include "shellfixture.h"

#include "products/ui/frmdiscount.h"
#include "products/ui/frmdiscountprod.h"
#include "shell/documentscontroller.h"
#include "shell/frmproperties.h"
#include "shell/frmquotenote.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class ReachWindowTest : public ActiveWindowTest
{
protected:
    /// Sends a key to whichever control has the keyboard at that moment.
    static void pressKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget *target = QApplication::focusWidget();
        ASSERT_NE(target, nullptr);
        QTest::keyClick(target, Qt::Key(key), modifiers);
    }
    static bool keyboardIn(const QWidget *pane)
    {
        const QWidget *focus = QApplication::focusWidget();
        return focus && (focus == pane || pane->isAncestorOf(focus));
    }
    void giveKeyboardTo(QWidget *widget)
    {
        widget->setFocus(Qt::OtherFocusReason);
        ASSERT_TRUE(QTest::qWaitFor([widget] { return widget->hasFocus(); }, 10000));
    }
    void addRowToQuote(int gridRow)
    {
        goToRow(gridRow);
        action("mnuGrdMainQuote")->trigger();
    }
};

// Outside edit mode the grid's cursor keeps to the part number: Tab has no cell to go to and
// Shift+Tab would wrap to the product above. Both leave the grid, the product stays current.
TEST_F(ReachWindowTest, OutsideEditModeTabAndShiftTabLeaveTheProductGrid)
{
    goToRow(2);
    giveKeyboardTo(grid);
    pressKey(Qt::Key_Tab);
    EXPECT_FALSE(keyboardIn(grid));
    EXPECT_EQ(grid->currentIndex().row(), 2);

    giveKeyboardTo(grid);
    pressKey(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_FALSE(keyboardIn(grid));
    EXPECT_EQ(grid->currentIndex().row(), 2) << "Shift+Tab moved to the product above";
}

TEST_F(ReachWindowTest, InEditModeTabMovesBetweenTheProductsCells)
{
    goToRow(1);
    button("Edit")->trigger();
    ASSERT_TRUE(button("Edit")->isChecked());
    giveKeyboardTo(grid);
    pressKey(Qt::Key_Tab);
    EXPECT_TRUE(keyboardIn(grid));
    EXPECT_EQ(grid->currentIndex(), grid->model()->index(1, 1));

    button("Edit")->trigger();
    giveKeyboardTo(grid);
    pressKey(Qt::Key_Tab);
    EXPECT_FALSE(keyboardIn(grid)) << "browse mode again";
}

TEST_F(ReachWindowTest, LocateProductPutsTheKeyboardOnTheProductFound)
{
    addRowToQuote(0);
    giveKeyboardTo(quoteGrid);
    dialogs.textAnswers << QStringLiteral("clamp");
    button("Find")->trigger();
    EXPECT_EQ(grid->currentIndex().row(), 2);
    EXPECT_TRUE(grid->hasFocus());

    // No match leaves the keyboard where it was.
    giveKeyboardTo(quoteGrid);
    dialogs.textAnswers << QStringLiteral("no such product");
    fakes->prompts.answerMessage(MsgResult::Ok);
    button("Find")->trigger();
    EXPECT_TRUE(quoteGrid->hasFocus());
}

TEST_F(ReachWindowTest, TheQuoteCellBeingTypedIntoIsNamedByItsColumn)
{
    addRowToQuote(0);
    window->ui().SSTabmain->setCurrentIndex(1);
    const int quantity = 3;
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, quantity));
    giveKeyboardTo(quoteGrid);
    pressKey(Qt::Key_F2);
    QWidget *editor = quoteGrid->openEditor();
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->accessibleName(),
        quoteGrid->model()->headerData(quantity, Qt::Horizontal).toString());
    EXPECT_EQ(editor->accessibleName(), QStringLiteral("Quantity"));
}

TEST_F(ReachWindowTest, TheTwoDiscountWindowsSayWhichLinesTheyAreFor)
{
    addRowToQuote(0);
    addRowToQuote(1);
    const QString secondPart = gridCellText(quoteGrid, 1, 0);
    action("mnudiscountAll")->trigger();
    auto *all = window->findChild<FrmDiscount *>();
    ASSERT_NE(all, nullptr);
    EXPECT_EQ(all->findChild<QLabel *>(QStringLiteral("LblScope"))->text(),
        QStringLiteral("Every line of the quote"));
    EXPECT_EQ(all->findChild<QComboBox *>(QStringLiteral("CmboDisc"))->accessibleName(),
        QStringLiteral("Apply Discount"));
    EXPECT_EQ(all->windowTitle(), QStringLiteral("Discount"));
    all->close();

    quoteGrid->setCurrentIndex(quoteGrid->model()->index(1, 0));
    action("mnuDiscprod")->trigger();
    auto *one = window->findChild<FrmDiscountprod *>();
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(one->findChild<QLabel *>(QStringLiteral("LblScope"))->text(),
        QStringLiteral("Line 2 of the quote: ") + secondPart);
    EXPECT_EQ(one->windowTitle(), QStringLiteral("Discount"));
    // Found by its title: the window's name is the title alone.
    QAccessibleInterface *named = QAccessible::queryAccessibleInterface(one);
    ASSERT_NE(named, nullptr);
    EXPECT_EQ(named->text(QAccessible::Name), QStringLiteral("Discount"));
}

TEST_F(ReachWindowTest, QuoteNoteOpensAsADialogOverTheMainWindow)
{
    action("mnuQuoteNote")->trigger();
    FrmQuoteNote *note = window->documents().quoteNoteWindow();
    ASSERT_NE(note, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(note));
    EXPECT_EQ(note->windowType(), Qt::Dialog) << "kept above the main window by the desktop";
    EXPECT_EQ(note->parentWidget(), window);
    EXPECT_FALSE(note->isModal()) << "the quote stays in reach while the note is open";
    const QPoint offset = note->geometry().center() - window->geometry().center();
    EXPECT_LE(offset.manhattanLength(), 40) << "centred on the main window";
}

TEST_F(ReachWindowTest, PropertiesTabsFromTheFolderToItsOpenFolderButton)
{
    action("mnuFileProperties")->trigger();
    auto *properties = window->findChild<FrmProperties *>();
    ASSERT_NE(properties, nullptr);
    properties->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(properties));
    auto *folderBox = properties->findChild<QLineEdit *>(QStringLiteral("TxtAppFolder"));
    giveKeyboardTo(folderBox);
    pressKey(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(),
        properties->findChild<QPushButton *>(QStringLiteral("CmdOpenFolder")))
        << qPrintable(QApplication::focusWidget()->objectName());
    pressKey(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(),
        properties->findChild<QLineEdit *>(QStringLiteral("TxtDataFile")));
}

// Without a desktop icon theme the toolbar falls back on Qt's own pictures: Save is the one
// every program saves with, and no other button looks like it (Export did).
TEST_F(ReachWindowTest, OnlyTheSaveButtonLooksLikeSaving)
{
    const auto imageOf = [](const QIcon &icon) { return icon.pixmap(16, 16).toImage(); };
    const QImage save = imageOf(QIcon::fromTheme(QStringLiteral("document-save"),
        window->style()->standardIcon(QStyle::SP_DialogSaveButton)));
    EXPECT_EQ(imageOf(button("Save")->icon()), save);
    for (const QString &key : MainWindowActions::buttonKeys()) {
        if (key != QLatin1String("Save")) {
            EXPECT_NE(imageOf(window->actions().button(key)->icon()), save) << qPrintable(key);
        }
    }
}

// F6 from the list price to the quote: the keyboard goes straight there, without passing the
// product grid on the way (a screen reader announced "Products table" first).
TEST_F(ReachWindowTest, F6GoesStraightToTheNextPaneWithoutPassingThroughTheGrid)
{
    addRowToQuote(0);
    window->ui().SSTabmain->setCurrentIndex(0);
    giveKeyboardTo(window->ui().TxtPrice);
    struct FocusCount : QObject
    {
        int in = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            in += event->type() == QEvent::FocusIn ? 1 : 0;
            return false;
        }
    } gridFocus;
    grid->installEventFilter(&gridFocus);
    pressKey(Qt::Key_F6);
    EXPECT_TRUE(keyboardIn(quoteGrid));
    pressKey(Qt::Key_F6, Qt::ShiftModifier); // back to the list price
    EXPECT_EQ(QApplication::focusWidget(), window->ui().TxtPrice);
    grid->removeEventFilter(&gridFocus);
    EXPECT_EQ(gridFocus.in, 0);
}

} // namespace
