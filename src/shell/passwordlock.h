#pragma once

#include <QString>

namespace tarnwick {

class IPrompts;
class ISettingsStore;

/// The user's own start-up password: set, changed or removed from the "&Settings" menu, asked
/// for at every start while one is set. The settings keep a salted Argon2id hash of it
/// (PasswordHash), never the password itself; an empty value means no password.
namespace PasswordLock {

inline constexpr QLatin1String Title("Password");
inline constexpr QLatin1String NewPrompt("Please enter the new password.");
inline constexpr QLatin1String RepeatPrompt("Please reenter the new password");
inline constexpr QLatin1String RemoveQuestion("Remove password?");
inline constexpr QLatin1String MismatchMessage(
    "The two passwords are different. To prevent errors, they must be the same.");

/// "The password could not be saved: <reason>. The previous password is still in force.", or,
/// where none was set (hadPassword false), "… Tarnwick still starts without a password."
QString saveFailedMessage(const QString &reason, bool hadPassword = true);

/// Asks for the new password twice and stores its hash when both answers agree. An empty first
/// answer (or Cancel) asks whether to remove the lock, which stores the empty text. Returns
/// true when the setting changed; a store that cannot be written is reported under Title.
bool change(IPrompts &prompts, ISettingsStore &settings);

/// True when the stored value is meant as a hash ("$argon…") but no longer is one (cut short,
/// or changed by hand): no password can be checked against it, and it is not taken for a
/// password in clear text either.
bool isDamaged(const QString &storedPassword);

/// Why the start ends without asking when the stored value isDamaged, and how the owner gets
/// in again; settingsLocation is where the settings are kept.
QString damagedMessage(const QString &settingsLocation);

/// True when the start may go on: no password is set, or the confirmed text is the password
/// (exactly: letter case and blanks count). A stored value that is not a hash is a password in
/// clear text (see PasswordHash::isHash); a damaged one admits nothing.
bool admits(const QString &storedPassword, const QString &confirmedText);

/// admits(), and when a password kept in clear text unlocks, it is replaced in the settings by
/// its hash. If that cannot be written the start still goes on and the next unlock tries again.
bool unlock(ISettingsStore &settings, const QString &storedPassword, const QString &confirmedText);

} // namespace PasswordLock

} // namespace tarnwick
