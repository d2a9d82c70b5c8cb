// The Edit menu of the real main window: Cut and Paste on the text box or grid cell the user
// was in, as Copy works, and every menu's letters.
#include "shellfixture.h"

#include "shell/mainwindowactions.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QSet>
#include <QTabWidget>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class EditWindowTest : public SampleWindowTest
{
protected:
    void SetUp() override
    {
        SampleWindowTest::SetUp();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        window->ui().SSTabmain->setCurrentIndex(0);
    }

    void focus(QWidget *control) const
    {
        control->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::focusWidget() == control; }));
    }

    /// Alt moves the keyboard to the menu bar, as opening the Edit menu from the keyboard does.
    void focusMenuBar() const
    {
        window->menuBar()->setFocus(Qt::MenuBarFocusReason);
        ASSERT_TRUE(
            QTest::qWaitFor([&] { return window->focusWidget() == window->menuBar(); }, 10000));
    }

    void trigger(const char *name) { action(name)->trigger(); }
};

QChar mnemonicIn(const QString &caption)
{
    for (int at = 0; at + 1 < caption.size(); ++at) {
        if (caption.at(at) == QLatin1Char('&') && caption.at(at + 1) != QLatin1Char('&'))
            return caption.at(at + 1).toLower();
        if (caption.at(at) == QLatin1Char('&'))
            ++at;
    }
    return QChar();
}

} // namespace

TEST_F(EditWindowTest, CutTakesTheSelectionOfTheBoxOntoTheClipboard)
{
    button("Edit")->trigger();
    QLineEdit *price = window->ui().TxtPrice;
    focus(price);
    price->setSelection(1, 2);
    focusMenuBar();
    trigger("mnuEditCut");
    EXPECT_EQ(fakes->clipboard.text(), "12");
    EXPECT_EQ(fakes->clipboard.clearCount(), 1);
    EXPECT_EQ(price->text(), "$.50");
}

TEST_F(EditWindowTest, PasteReplacesTheSelectionOfTheBox)
{
    button("Edit")->trigger();
    QLineEdit *price = window->ui().TxtPrice;
    focus(price);
    price->selectAll();
    fakes->clipboard.setText("14.75\n"); // as a spreadsheet copies one cell
    focusMenuBar();
    trigger("mnuEditPaste");
    EXPECT_EQ(price->text(), "14.75");
    // Leaving edit mode stores the pasted price as a typed one would be.
    button("Edit")->trigger();
    EXPECT_EQ(catalogue().get(1, 3), Cell("$14.75"));
}

TEST_F(EditWindowTest, PasteGoesIntoTheNotesAtTheCursor)
{
    button("Edit")->trigger();
    QPlainTextEdit *notes = window->ui().Txtnotes;
    focus(notes);
    QTextCursor cursor = notes->textCursor();
    cursor.movePosition(QTextCursor::End);
    notes->setTextCursor(cursor);
    fakes->clipboard.setText(" and more\n");
    trigger("mnuEditPaste");
    EXPECT_EQ(notes->toPlainText(), "Two lines\nof notes and more");
    cursor.movePosition(QTextCursor::Start);
    cursor.movePosition(QTextCursor::EndOfWord, QTextCursor::KeepAnchor);
    notes->setTextCursor(cursor);
    trigger("mnuEditCut");
    EXPECT_EQ(fakes->clipboard.text(), "Two");
    EXPECT_EQ(notes->toPlainText(), " lines\nof notes and more");
}

TEST_F(EditWindowTest, ALockedBoxIsNotChangedByCutOrPaste)
{
    QLineEdit *price = window->ui().TxtPrice;
    ASSERT_TRUE(price->isReadOnly());
    focus(price);
    price->selectAll();
    fakes->clipboard.setText("99");
    trigger("mnuEditCut");
    trigger("mnuEditPaste");
    EXPECT_EQ(price->text(), "$12.50");
    EXPECT_EQ(fakes->clipboard.text(), "99");
    EXPECT_EQ(fakes->clipboard.clearCount(), 0);
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

TEST_F(EditWindowTest, PasteOnTheGridTypesIntoTheCurrentCellInEditMode)
{
    goToRow(0);
    grid->setCurrentIndex(grid->model()->index(0, 1));
    focus(grid);
    fakes->clipboard.setText("Anchor bolt\r\n");
    trigger("mnuEditPaste");
    EXPECT_EQ(grid->model()->index(0, 1).data().toString(), "Anchor") << "browse mode";

    button("Edit")->trigger();
    grid->setCurrentIndex(grid->model()->index(0, 1));
    focus(grid);
    trigger("mnuEditPaste");
    window->ui().GrdMain->commitPendingEdit();
    EXPECT_EQ(grid->model()->index(0, 1).data().toString(), "Anchor bolt");
    EXPECT_EQ(catalogue().get(1, 2), Cell("Anchor bolt"));
}

TEST_F(EditWindowTest, CutOnTheGridCopiesTheCellAndEmptiesItsEditor)
{
    button("Edit")->trigger();
    grid->setCurrentIndex(grid->model()->index(1, 1));
    focus(grid);
    trigger("mnuEditCut");
    EXPECT_EQ(fakes->clipboard.text(), "Bolt");
    auto *editor = grid->viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(editor->text().isEmpty());
    window->ui().GrdMain->discardPendingEdit();
    EXPECT_EQ(catalogue().get(2, 2), Cell("Bolt")) << "Escape keeps the cell";
}

TEST_F(EditWindowTest, CopyOnTheGridCopiesTheCurrentCellAndNothingWithoutOne)
{
    grid->setCurrentIndex(grid->model()->index(1, 1));
    focus(grid);
    trigger("mnuEditCopy");
    // Outside edit mode the cursor keeps to the part number.
    EXPECT_EQ(fakes->clipboard.text(), "B-200");

    // Right after a delete no cell is current: the clipboard keeps what it held.
    fakes->prompts.answerMessage(int(MsgResult::Yes));
    button("DelProd")->trigger();
    ASSERT_FALSE(grid->currentIndex().isValid());
    fakes->clipboard.setText(QStringLiteral("kept"));
    focus(grid);
    trigger("mnuEditCopy");
    EXPECT_EQ(fakes->clipboard.text(), "kept");
}

TEST_F(EditWindowTest, CutCopyAndPasteHaveTheirUsualKeys)
{
    EXPECT_EQ(action("mnuEditCut")->shortcut(), QKeySequence(QKeySequence::Cut));
    EXPECT_EQ(action("mnuEditCopy")->shortcut(), QKeySequence(QKeySequence::Copy));
    EXPECT_EQ(action("mnuEditPaste")->shortcut(), QKeySequence(QKeySequence::Paste));
    EXPECT_EQ(action("mnuEditPasteSpecial")->text(), "Paste &Special...");
}

TEST_F(EditWindowTest, EveryItemOfTheEditMenuHasALetterOfItsOwn)
{
    const QMenu *edit = window->menuBar()->findChild<QMenu *>(QStringLiteral("mnuEdit"));
    ASSERT_NE(edit, nullptr);
    QSet<QChar> letters;
    int items = 0;
    for (const QAction *item : edit->actions()) {
        if (item->isSeparator())
            continue;
        ++items;
        const QChar letter = mnemonicIn(item->text());
        ASSERT_FALSE(letter.isNull()) << item->text().toStdString();
        EXPECT_FALSE(letters.contains(letter)) << item->text().toStdString();
        letters.insert(letter);
    }
    EXPECT_GE(items, 5);
}
