#include "shell/passwordlock.h"

#include "platform/iprompts.h"
#include "platform/isettingsstore.h"
#include "platform/passwordhash.h"
#include "shell/settingskeys.h"

namespace tarnwick::PasswordLock {

namespace {

bool storePasswordValue(ISettingsStore &settings, const QString &value)
{
    return settings.save(
        SettingsKeys::Application, SettingsKeys::Section, SettingsKeys::UserPassword, value);
}

/// What the settings keep for password: the empty text for none, otherwise its hash.
std::optional<QString> storedForm(const QString &password)
{
    if (password.isEmpty())
        return QString();
    return PasswordHash::hash(password);
}

} // namespace

QString saveFailedMessage(const QString &reason, bool hadPassword)
{
    return QStringLiteral("The password could not be saved: %1. %2")
        .arg(reason,
            hadPassword ? QStringLiteral("The previous password is still in force.")
                        : QStringLiteral("Tarnwick still starts without a password."));
}

bool change(IPrompts &prompts, ISettingsStore &settings)
{
    const QString first = prompts.passwordBox(NewPrompt, Title);
    QString second;
    if (!first.isEmpty()) {
        second = prompts.passwordBox(RepeatPrompt, Title);
    } else if (prompts.msgBox(RemoveQuestion, MsgStyle::YesNo | MsgStyle::Question)
        != MsgResult::Yes) {
        return false;
    }
    if (first != second) {
        prompts.msgBox(MismatchMessage, MsgStyle::OkOnly);
        return false;
    }
    // What the box says of the lock the failure leaves: the one before, or none.
    const bool hadPassword = !settings
                                  .get(SettingsKeys::Application, SettingsKeys::Section,
                                      SettingsKeys::UserPassword, QString())
                                  .isEmpty();
    const std::optional<QString> value = storedForm(first);
    if (!value) {
        prompts.msgBox(saveFailedMessage(
                           QStringLiteral("there is not enough memory to protect it"), hadPassword),
            MsgStyle::OkOnly | MsgStyle::Exclamation, Title);
        return false;
    }
    if (!storePasswordValue(settings, *value)) {
        prompts.msgBox(saveFailedMessage(settings.writeError(), hadPassword),
            MsgStyle::OkOnly | MsgStyle::Exclamation, Title);
        return false;
    }
    return true;
}

bool isDamaged(const QString &storedPassword)
{
    // Cut anywhere after "$argon" it is still recognisably a hash.
    return storedPassword.startsWith(QLatin1String("$argon"))
        && !PasswordHash::isHash(storedPassword);
}

QString damagedMessage(const QString &settingsLocation)
{
    return QStringLiteral(
        "The start-up password kept in Tarnwick's settings is damaged and can no longer be "
        "checked, so Tarnwick cannot be opened with it.\n\nTo open Tarnwick again, remove the "
        "line that begins with \"UserPassword=\" from the settings file \"%1\" (Tarnwick is "
        "closed now), start Tarnwick and set the password anew under Settings \u2192 Password. "
        "Your catalogue and quotes are not affected.")
        .arg(settingsLocation);
}

bool admits(const QString &storedPassword, const QString &confirmedText)
{
    if (isDamaged(storedPassword))
        return false;
    return storedPassword.isEmpty() || PasswordHash::matches(storedPassword, confirmedText);
}

bool unlock(ISettingsStore &settings, const QString &storedPassword, const QString &confirmedText)
{
    if (!admits(storedPassword, confirmedText))
        return false;
    if (!storedPassword.isEmpty() && !PasswordHash::isHash(storedPassword)) {
        if (const std::optional<QString> hashed = PasswordHash::hash(confirmedText))
            storePasswordValue(settings, *hashed);
    }
    return true;
}

} // namespace tarnwick::PasswordLock
