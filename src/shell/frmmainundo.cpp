// The main window's Edit → Undo and Redo: both go to its HistoryController with the control
// the user was in, whose typing they take back first.
#include "shell/frmmain.h"

#include "shell/historycontroller.h"
#include "shell/mainwindowactions.h"

#include <QAction>

namespace tarnwick {

void frmMain::connectUndoItems()
{
    QAction *undo = m_actions->action(QStringLiteral("mnuEditUndo"));
    QAction *redo = m_actions->action(QStringLiteral("mnuEditRedo"));
    m_undo = new HistoryController(*m_history, *m_grid, *m_quote, undo, redo, this);
    connect(undo, &QAction::triggered, this, &frmMain::mnuEditUndo_Click);
    connect(redo, &QAction::triggered, this, &frmMain::mnuEditRedo_Click);
}

void frmMain::mnuEditUndo_Click()
{
    m_undo->undo(m_activeControl ? m_activeControl.data() : focusWidget());
}

void frmMain::mnuEditRedo_Click()
{
    m_undo->redo(m_activeControl ? m_activeControl.data() : focusWidget());
}

} // namespace tarnwick
