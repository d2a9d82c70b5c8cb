#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class QAction;
class QWidget;

namespace tarnwick {

class CatalogueWork;
class EditHistory;
class ProductGridController;
class QuoteController;

/// Edit → "&Undo" and "&Redo" over the history of changes: their captions name the step they
/// would take back or do again ("&Undo Delete Product TW-200"), and they are disabled when
/// there is none. In a text box or an open cell editor that has typing to take back, they undo
/// and redo that typing first, as text boxes do; Ctrl+Z, Ctrl+Y and Ctrl+Shift+Z come here from
/// every control of the main window. Before a step is undone or redone, what is being typed is
/// stored as a step of its own, so nothing typed is lost.
class HistoryController : public QObject
{
    Q_OBJECT

public:
    HistoryController(EditHistory &history, ProductGridController &grid, QuoteController &quote,
        QAction *undo, QAction *redo, QWidget *window);
    ~HistoryController() override;

    /// Edit → Undo with the keyboard in control (the control the user was in).
    void undo(QWidget *control);
    /// Edit → Redo with the keyboard in control.
    void redo(QWidget *control);

    /// Works Undo and Redo out again when long work on the catalogue ends: the window's commands
    /// were held unavailable meanwhile, and what they were then asked to be is not kept.
    void followWork(CatalogueWork *work);

    /// The caption of Edit → Undo or Redo for a step: "&Undo" followed by its name, its
    /// ampersands doubled so they show as written.
    static QString caption(const QString &command, const QString &step);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void updateActions();
    void storePendingEdits();
    /// Follows the typing of the control the keyboard went to, so Undo and Redo are offered
    /// while it has typing to take back or do again.
    void followTyping(QWidget *control);

    EditHistory &m_history;
    ProductGridController &m_grid;
    QuoteController &m_quote;
    QAction *m_undo;
    QAction *m_redo;
    QWidget *m_window;
    /// The text control the user is in (a menu taking the keyboard for a moment leaves it so).
    QPointer<QWidget> m_typingControl;
    QList<QMetaObject::Connection> m_typing;
};

} // namespace tarnwick
