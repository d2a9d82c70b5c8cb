#include "shell/editcontroller.h"

#include "platform/iclipboard.h"
#include "shell/onelineboxes.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>

namespace tarnwick {

namespace {

/// A click, or a key that is not a lone modifier (Alt opens the menu bar).
bool isUserInput(const QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress)
        return true;
    if (event->type() != QEvent::KeyPress)
        return false;
    switch (static_cast<const QKeyEvent *>(event)->key()) {
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Control:
    case Qt::Key_Shift:
    case Qt::Key_Meta:
        return false;
    default:
        return true;
    }
}

} // namespace

EditController::EditController(IClipboard &clipboard, QWidget *window)
    : QObject(window), m_clipboard(clipboard), m_window(window)
{
}

EditController::~EditController()
{
    stop();
}

void EditController::watch()
{
    m_focusConnection = connect(qApp, &QApplication::focusChanged, this,
        [this](QWidget *, QWidget *now) { rememberActiveControl(now); });
    for (QLineEdit *box : m_window->findChildren<QLineEdit *>()) {
        connect(box, &QLineEdit::selectionChanged, this, [this, box] { rememberSelection(box); });
        box->installEventFilter(this);
        m_boxes << box;
    }
}

void EditController::stop()
{
    disconnect(m_focusConnection);
    for (const QPointer<QLineEdit> &box : std::as_const(m_boxes)) {
        if (box) {
            box->removeEventFilter(this);
            disconnect(box, nullptr, this, nullptr);
        }
    }
    m_boxes.clear();
}

QWidget *EditController::activeControl() const
{
    return m_activeControl ? m_activeControl.data() : m_window->focusWidget();
}

void EditController::rememberActiveControl(QWidget *now)
{
    // Opening a menu from the keyboard moves the focus to the menu bar; the commands work on
    // the control the user was in before that.
    if (now && m_window->isAncestorOf(now) && !qobject_cast<QMenuBar *>(now)
        && !qobject_cast<QMenu *>(now))
        m_activeControl = now;
}

void EditController::rememberSelection(QLineEdit *box)
{
    if (box->hasSelectedText()) {
        m_selectionOwner = box;
        m_selection = box->selectedText();
        m_selectionStart = box->selectionStart();
    }
}

bool EditController::eventFilter(QObject *watched, QEvent *event)
{
    // Typing or clicking in the box forgets the selection it lost to the menu.
    if (watched == m_selectionOwner && isUserInput(event)) {
        m_selection.clear();
        m_selectionStart = -1;
    }
    return QObject::eventFilter(watched, event);
}

void EditController::restoreSelection(QLineEdit *box) const
{
    if (!box->hasSelectedText() && m_selectionOwner == box && m_selectionStart >= 0
        && box->text().mid(m_selectionStart, m_selection.size()) == m_selection)
        box->setSelection(m_selectionStart, int(m_selection.size()));
}

QString EditController::selectedTextOf(QWidget *control) const
{
    if (auto *line = qobject_cast<QLineEdit *>(control)) {
        if (!line->hasSelectedText() && m_selectionOwner == line)
            return m_selection;
        return line->selectedText();
    }
    if (auto *text = qobject_cast<QPlainTextEdit *>(control))
        return text->textCursor().selectedText().replace(
            QChar::ParagraphSeparator, QLatin1Char('\n'));
    if (auto *view = qobject_cast<QAbstractItemView *>(control))
        return view->currentIndex().data().toString();
    return {};
}

void EditController::putOnClipboard(const QString &text)
{
    m_clipboard.clear();
    m_clipboard.setText(text);
}

void EditController::copy()
{
    QWidget *control = activeControl();
    // A grid without a current cell (right after a delete) has nothing to copy: the clipboard
    // keeps what it held.
    if (auto *grid = qobject_cast<QAbstractItemView *>(control);
        grid && !grid->currentIndex().isValid())
        return;
    putOnClipboard(selectedTextOf(control));
}

void EditController::cut()
{
    QWidget *control = activeControl();
    if (auto *grid = qobject_cast<QAbstractItemView *>(control)) {
        const QString text = selectedTextOf(grid);
        if (QLineEdit *editor = openCellEditor(grid)) {
            putOnClipboard(text);
            editor->clear();
            return;
        }
    } else if (cutFromBox(control)) {
        return;
    }
    QApplication::beep();
}

bool EditController::cutFromBox(QWidget *control)
{
    if (auto *line = qobject_cast<QLineEdit *>(control); line && !line->isReadOnly()) {
        restoreSelection(line);
        if (!line->hasSelectedText())
            return false;
        putOnClipboard(line->selectedText());
        line->del();
        return true;
    }
    auto *text = qobject_cast<QPlainTextEdit *>(control);
    if (!text || text->isReadOnly() || !text->textCursor().hasSelection())
        return false;
    putOnClipboard(selectedTextOf(text));
    text->textCursor().removeSelectedText();
    return true;
}

void EditController::paste()
{
    QWidget *control = activeControl();
    const QString text = m_clipboard.text();
    if (auto *grid = qobject_cast<QAbstractItemView *>(control)) {
        if (QLineEdit *editor = openCellEditor(grid)) {
            editor->setText(OneLineBoxes::oneLine(text));
            return;
        }
    } else if (pasteIntoBox(control, text)) {
        return;
    }
    QApplication::beep();
}

bool EditController::pasteIntoBox(QWidget *control, const QString &text)
{
    if (auto *line = qobject_cast<QLineEdit *>(control); line && !line->isReadOnly()) {
        restoreSelection(line);
        line->insert(OneLineBoxes::oneLine(text));
        return true;
    }
    auto *box = qobject_cast<QPlainTextEdit *>(control);
    if (!box || box->isReadOnly())
        return false;
    box->insertPlainText(withoutTrailingLineBreak(text));
    return true;
}

QLineEdit *EditController::openCellEditor(QAbstractItemView *grid)
{
    const QModelIndex index = grid->currentIndex();
    if (!index.isValid() || !(index.flags() & Qt::ItemIsEditable))
        return nullptr;
    // A cell's editor is a child of the grid's viewport.
    const auto openEditor = [grid]() -> QLineEdit * {
        for (QLineEdit *editor : grid->viewport()->findChildren<QLineEdit *>()) {
            if (editor->isVisible())
                return editor;
        }
        return nullptr;
    };
    if (QLineEdit *editor = openEditor())
        return editor;
    grid->edit(index);
    return openEditor();
}

QString EditController::withoutTrailingLineBreak(const QString &text)
{
    if (text.endsWith(QLatin1String("\r\n")))
        return text.chopped(2);
    if (text.endsWith(QLatin1Char('\n')) || text.endsWith(QLatin1Char('\r')))
        return text.chopped(1);
    return text;
}

} // namespace tarnwick
