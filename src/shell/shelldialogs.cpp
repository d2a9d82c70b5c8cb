#include "shell/shelldialogs.h"

#include "shell/dialog.h"
#include "shell/frmpassword.h"

#include <QApplication>
#include <QEventLoop>

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
    if (m_textDialog) {
        m_textDialog->raise();
        m_textDialog->activateWindow();
        return {};
    }
    // Modeless: the command waits for the dialog with the event loop running, so the window
    // behind it keeps taking clicks, and a close of that window (which closes its other
    // windows) ends the wait as Cancel does. Deleting the window deletes the dialog with it.
    QPointer<Dialog> dialog = new Dialog(QApplication::activeWindow());
    m_textDialog = dialog.get();
    dialog->setWindowTitle(caption);
    dialog->setMsgText(prompt);
    dialog->setText(text);
    dialog->Active = true;
    QEventLoop wait;
    QObject::connect(dialog, &QDialog::finished, &wait, &QEventLoop::quit);
    QObject::connect(dialog, &QObject::destroyed, &wait, &QEventLoop::quit);
    dialog->show();
    wait.exec();
    if (!dialog)
        return {};
    dialog->Active = false;
    QString entered = dialog->text();
    delete dialog.get();
    return entered;
}

} // namespace tarnwick
