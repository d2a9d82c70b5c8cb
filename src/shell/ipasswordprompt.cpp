#include "shell/ipasswordprompt.h"

#include "shell/frmpassword.h"

namespace tarnwick {

QString PasswordDialogPrompt::askPassword()
{
    FrmPassword dialog;
    dialog.exec();
    return dialog.Password;
}

} // namespace tarnwick
