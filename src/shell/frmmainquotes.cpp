// The main window's quote book commands: the quote menu's "Save Quote", "Open Quote", "New
// Revision", "Duplicate Quote" and "Save as PDF", and File → New, Save All and Send.
#include "shell/frmmain.h"

#include "shell/mainwindowactions.h"
#include "shell/quotebookcontroller.h"
#include "shell/savecontroller.h"

#include <QAction>

namespace tarnwick {

void frmMain::connectQuoteBookItems()
{
    const auto on = [this](const char *name, void (frmMain::*slot)()) {
        connect(m_actions->action(QString::fromLatin1(name)), &QAction::triggered, this, slot);
    };
    on("mnuQuoteSave", &frmMain::mnuQuoteSave_Click);
    on("mnuQuoteOpen", &frmMain::mnuQuoteOpen_Click);
    on("mnuQuoteRevision", &frmMain::mnuQuoteRevision_Click);
    on("mnuQuoteDuplicate", &frmMain::mnuQuoteDuplicate_Click);
    on("mnuQuotePdf", &frmMain::mnuQuotePdf_Click);
    on("mnuFileNew", &frmMain::mnuFileNew_Click);
    on("mnuFileSaveAll", &frmMain::mnuFileSaveAll_Click);
    on("mnuFileSend", &frmMain::mnuFileSend_Click);
}

void frmMain::mnuQuoteSave_Click()
{
    m_book->saveQuote();
}

void frmMain::mnuQuoteOpen_Click()
{
    m_book->openQuote();
}

void frmMain::mnuQuoteRevision_Click()
{
    m_book->newRevision();
}

void frmMain::mnuQuoteDuplicate_Click()
{
    m_book->duplicateQuote();
}

void frmMain::mnuQuotePdf_Click()
{
    m_book->saveAsPdf();
}

void frmMain::mnuFileNew_Click()
{
    m_book->newQuote();
}

void frmMain::mnuFileSaveAll_Click()
{
    m_save->save();
    m_book->saveChangedQuote();
}

void frmMain::mnuFileSend_Click()
{
    m_book->send();
}

} // namespace tarnwick
