#include "shell/passwordlock.h"

#include "platform/iprompts.h"
#include "platform/isettingsstore.h"
#include "shell/settingskeys.h"

namespace tarnwick::PasswordLock {

bool change(IPrompts &prompts, ISettingsStore &settings)
{
    const QString first = prompts.inputBox(NewPrompt, Title);
    QString second;
    if (!first.isEmpty()) {
        second = prompts.inputBox(RepeatPrompt, Title);
    } else if (prompts.msgBox(RemoveQuestion, MsgStyle::YesNo | MsgStyle::Question)
        != MsgResult::Yes) {
        return false;
    }
    if (first != second) {
        prompts.msgBox(MismatchMessage, MsgStyle::OkOnly);
        return false;
    }
    settings.save(
        SettingsKeys::Application, SettingsKeys::Section, SettingsKeys::UserPassword, first);
    return true;
}

bool admits(const QString &storedPassword, const QString &confirmedText)
{
    return storedPassword.isEmpty() || storedPassword == confirmedText;
}

} // namespace tarnwick::PasswordLock
