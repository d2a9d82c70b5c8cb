#include "shell/shelldialogs.h"

#include "shell/dialog.h"
#include "shell/frmpassword.h"

#include <QApplication>

namespace tarnwick {

QString ShellDialogs::askPassword()
{
    FrmPassword dialog;
    m_passwordPrompt = &dialog;
    dialog.exec();
    m_passwordPrompt = nullptr;
    return dialog.Password;
}

void ShellDialogs::closePasswordPrompt()
{
    if (m_passwordPrompt)
        m_passwordPrompt->reject();
}

QString ShellDialogs::askText(const QString &caption, const QString &prompt, const QString &text)
{
    Dialog dialog(QApplication::activeWindow());
    dialog.setWindowTitle(caption);
    dialog.setMsgText(prompt);
    dialog.setText(text);
    dialog.Active = true;
    dialog.exec();
    dialog.Active = false;
    return dialog.text();
}

} // namespace tarnwick
