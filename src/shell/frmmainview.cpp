// The main window's File → Properties and its View menu: the catalogue's properties, Refresh
// (the catalogue sorted on the part number and the grids shown again) and the manual in the
// desktop's web browser.
#include "shell/frmmain.h"

#include "help/helpmanual.h"
#include "help/manualpages.h"
#include "platform/appservices.h"
#include "platform/iprompts.h"
#include "shell/frmproperties.h"
#include "shell/productgridcontroller.h"
#include "shell/quotecontroller.h"

namespace tarnwick {

void frmMain::showProperties()
{
    auto *form = findChild<FrmProperties *>(QString(), Qt::FindDirectChildrenOnly);
    if (form) {
        form->Form_Load();
    } else {
        form = new FrmProperties(m_services, m_module, this);
        form->setAttribute(Qt::WA_DeleteOnClose);
    }
    form->show();
    form->raise();
    form->activateWindow();
}

void frmMain::refreshView()
{
    m_grid->refresh();
    m_quote->redraw();
}

void frmMain::openManualInBrowser()
{
    HelpManual manual;
    if (!manual.load()) {
        m_services.prompts.msgBox(
            manual.errorString(), MsgStyle::OkOnly | MsgStyle::Exclamation, ManualPages::Title);
        return;
    }
    ManualPages::openInBrowser(manual, m_services.desktop, m_services.prompts);
}

} // namespace tarnwick
