// The main window's Help menu: the contents, the search and the About box, and the captions
// the window takes from the string table when it loads.
#include "shell/frmmain.h"

#include "platform/appservices.h"
#include "platform/chelp.h"
#include "shell/frmabout.h"
#include "shell/loadnumberedcaptions.h"
#include "shell/mainwindowactions.h"

#include <QAction>

namespace tarnwick {

void frmMain::connectHelpItems()
{
    const auto on = [this](const char *name, void (frmMain::*slot)()) {
        connect(m_actions->action(QString::fromLatin1(name)), &QAction::triggered, this, slot);
    };
    on("mnuHelpContents", &frmMain::mnuHelpContents_Click);
    on("mnuHelpSearchForHelpOn", &frmMain::mnuHelpSearchForHelpOn_Click);
    on("mnuHelpAbout", &frmMain::mnuHelpAbout_Click);
}

// The string table's "&About " is followed by the program's title: "&About Tarnwick".
void frmMain::loadCaptions()
{
    LoadNumberedCaptions(this);
    QAction *about = m_actions->action(QStringLiteral("mnuHelpAbout"));
    // The title without the mark for unsaved changes ("[*]").
    about->setText(about->text() + windowTitle().remove(QStringLiteral("[*]")));
}

void frmMain::mnuHelpContents_Click()
{
    CHelp(m_services.help).Show(CHelp::helpFilePath(m_services.environment), CHelp::MainWindow);
}

void frmMain::mnuHelpSearchForHelpOn_Click()
{
    CHelp(m_services.help).Show(CHelp::helpFilePath(m_services.environment), CHelp::SearchWindow);
}

void frmMain::mnuHelpAbout_Click()
{
    frmAbout about(m_services, this);
    // Modal to this window only: the help window F1 opens from the box takes input beside it.
    about.setWindowModality(Qt::WindowModal);
    about.exec();
}

} // namespace tarnwick
