// The main window's Edit menu. Undo and Redo go to its HistoryController, Cut, Copy and Paste to
// its EditController, both with the control the user was in before the menu took the keyboard
// (whose typing Undo takes back first); Paste Special goes to the import.
#include "shell/frmmain.h"

#include "shell/cataloguework.h"
#include "shell/editcontroller.h"
#include "shell/exchangecontroller.h"
#include "shell/historycontroller.h"
#include "shell/mainwindowactions.h"

#include <QAction>

namespace tarnwick {

void frmMain::connectEditItems()
{
    const auto on = [this](const char *name, void (frmMain::*slot)()) {
        connect(m_actions->action(QString::fromLatin1(name)), &QAction::triggered, this, slot);
    };
    m_undo = new HistoryController(*m_history, *m_grid, *m_quote,
        m_actions->action(QStringLiteral("mnuEditUndo")),
        m_actions->action(QStringLiteral("mnuEditRedo")), this);
    if (CatalogueWork *work = m_catalogue.work())
        m_undo->followWork(work);
    on("mnuEditUndo", &frmMain::mnuEditUndo_Click);
    on("mnuEditRedo", &frmMain::mnuEditRedo_Click);
    on("mnuEditCut", &frmMain::mnuEditCut_Click);
    on("mnuEditCopy", &frmMain::mnuEditCopy_Click);
    on("mnuEditPaste", &frmMain::mnuEditPaste_Click);
    on("mnuEditPasteSpecial", &frmMain::mnuEditPasteSpecial_Click);
}

void frmMain::mnuEditUndo_Click()
{
    m_undo->undo(m_edit->activeControl());
}

void frmMain::mnuEditRedo_Click()
{
    m_undo->redo(m_edit->activeControl());
}

void frmMain::mnuEditCut_Click()
{
    m_edit->cut();
}

void frmMain::mnuEditCopy_Click()
{
    m_edit->copy();
}

void frmMain::mnuEditPaste_Click()
{
    m_edit->paste();
}

void frmMain::mnuEditPasteSpecial_Click()
{
    m_exchange->pasteSpecial();
}

} // namespace tarnwick
