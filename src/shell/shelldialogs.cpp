#include "shell/shelldialogs.h"

#include "shell/dialog.h"
#include "shell/frmpassword.h"

#include <QApplication>

namespace tarnwick {

QString ShellDialogs::askPassword()
{
    FrmPassword dialog;
    dialog.exec();
    return dialog.Password;
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
