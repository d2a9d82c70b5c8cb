#include "shell/historycontroller.h"

#include "commands/edithistory.h"
#include "core/celltext.h"
#include "shell/cataloguework.h"
#include "shell/productgridcontroller.h"
#include "shell/quotecontroller.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace tarnwick {

namespace {

bool isUndoKey(const QKeyEvent *key)
{
    return key->keyCombination() == QKeyCombination(Qt::ControlModifier, Qt::Key_Z);
}

bool isRedoKey(const QKeyEvent *key)
{
    return key->keyCombination() == QKeyCombination(Qt::ControlModifier, Qt::Key_Y)
        || key->keyCombination()
        == QKeyCombination(Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_Z);
}

bool isTextControl(const QObject *object)
{
    return qobject_cast<const QLineEdit *>(object) || qobject_cast<const QPlainTextEdit *>(object)
        || qobject_cast<const QTextEdit *>(object);
}

/// Whether a text control has typing to take back (or to do again).
bool hasTyping(const QWidget *control, bool again)
{
    if (const auto *line = qobject_cast<const QLineEdit *>(control))
        return !line->isReadOnly() && (again ? line->isRedoAvailable() : line->isUndoAvailable());
    const QTextDocument *document = nullptr;
    if (const auto *plain = qobject_cast<const QPlainTextEdit *>(control);
        plain && !plain->isReadOnly())
        document = plain->document();
    else if (const auto *rich = qobject_cast<const QTextEdit *>(control);
             rich && !rich->isReadOnly())
        document = rich->document();
    return document && (again ? document->isRedoAvailable() : document->isUndoAvailable());
}

/// Takes back (or does again) typing in a text control; false when it has none to take back.
bool undoTyping(QWidget *control, bool again)
{
    if (!hasTyping(control, again))
        return false;
    if (auto *line = qobject_cast<QLineEdit *>(control))
        again ? line->redo() : line->undo();
    else if (auto *plain = qobject_cast<QPlainTextEdit *>(control))
        again ? plain->redo() : plain->undo();
    else
        again ? static_cast<QTextEdit *>(control)->redo()
              : static_cast<QTextEdit *>(control)->undo();
    return true;
}

} // namespace

HistoryController::HistoryController(EditHistory &history, ProductGridController &grid,
    QuoteController &quote, QAction *undo, QAction *redo, QWidget *window)
    : QObject(window), m_history(history), m_grid(grid), m_quote(quote), m_undo(undo), m_redo(redo),
      m_window(window)
{
    connect(&m_history, &EditHistory::stepsChanged, this, &HistoryController::updateActions);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        // A menu taking the keyboard for a moment leaves the control the user was in.
        if (!now || !m_window->isAncestorOf(now) || qobject_cast<QMenuBar *>(now)
            || qobject_cast<QMenu *>(now))
            return;
        followTyping(isTextControl(now) ? now : nullptr);
        updateActions();
    });
    updateActions();
    qApp->installEventFilter(this);
}

void HistoryController::followWork(CatalogueWork *work)
{
    connect(work, &CatalogueWork::finished, this, &HistoryController::updateActions);
}

void HistoryController::followTyping(QWidget *control)
{
    for (const QMetaObject::Connection &connection : std::as_const(m_typing))
        disconnect(connection);
    m_typing.clear();
    m_typingControl = control;
    if (auto *line = qobject_cast<QLineEdit *>(control)) {
        m_typing << connect(line, &QLineEdit::textChanged, this, &HistoryController::updateActions);
        return;
    }
    QTextDocument *document = nullptr;
    if (auto *plain = qobject_cast<QPlainTextEdit *>(control))
        document = plain->document();
    else if (auto *rich = qobject_cast<QTextEdit *>(control))
        document = rich->document();
    if (document) {
        m_typing << connect(
            document, &QTextDocument::undoAvailable, this, &HistoryController::updateActions);
        m_typing << connect(
            document, &QTextDocument::redoAvailable, this, &HistoryController::updateActions);
    }
}

HistoryController::~HistoryController()
{
    if (qApp)
        qApp->removeEventFilter(this);
}

QString HistoryController::caption(const QString &command, const QString &step)
{
    if (step.isEmpty())
        return command;
    // A step named after a part number of 200 characters would make the Edit menu wider than
    // the screen and push the keys out of it.
    constexpr qsizetype Longest = 60;
    QString shown =
        step.size() > Longest ? celltext::leftWhole(step, Longest - 1) + QChar(0x2026) : step;
    shown.replace(QLatin1Char('&'), QStringLiteral("&&"));
    return command + QLatin1Char(' ') + shown;
}

void HistoryController::updateActions()
{
    // Typing in the control the user is in comes first, as undo() and redo() take it first.
    const QWidget *control = m_typingControl.data();
    const bool typingBack = control && hasTyping(control, false);
    const bool typingAgain = control && hasTyping(control, true);
    m_undo->setText(typingBack ? QStringLiteral("&Undo Typing")
                               : caption(QStringLiteral("&Undo"), m_history.undoText()));
    m_undo->setEnabled(typingBack || m_history.canUndo());
    m_redo->setText(typingAgain ? QStringLiteral("&Redo Typing")
                                : caption(QStringLiteral("&Redo"), m_history.redoText()));
    m_redo->setEnabled(typingAgain || m_history.canRedo());
}

void HistoryController::storePendingEdits()
{
    m_quote.storePendingEdit();
    m_grid.storeEditsBeforeStep();
}

void HistoryController::undo(QWidget *control)
{
    if (undoTyping(control, false))
        return;
    storePendingEdits();
    if (m_history.canUndo())
        m_history.undo();
}

void HistoryController::redo(QWidget *control)
{
    if (undoTyping(control, true))
        return;
    // What is being typed becomes a step of its own, which leaves nothing to redo.
    storePendingEdits();
    if (m_history.canRedo())
        m_history.redo();
}

bool HistoryController::eventFilter(QObject *watched, QEvent *event)
{
    // A text control of the main window would take Ctrl+Z for its own undo; the keys go to
    // Edit → Undo and Redo instead, which undo the control's typing first.
    if (event->type() == QEvent::ShortcutOverride && isTextControl(watched)) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const auto *widget = static_cast<QWidget *>(watched);
        if ((isUndoKey(key) || isRedoKey(key)) && m_window->isAncestorOf(widget)) {
            event->ignore();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace tarnwick
