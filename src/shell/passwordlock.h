#pragma once

#include <QString>

namespace tarnwick {

class IPrompts;
class ISettingsStore;

/// The user's own start-up password: set, changed or removed from the "&Settings" menu, asked
/// for at every start while one is set. It is stored as typed and compared exactly.
namespace PasswordLock {

inline constexpr QLatin1String Title("Password");
inline constexpr QLatin1String NewPrompt("Please enter the new password.");
inline constexpr QLatin1String RepeatPrompt("Please reenter the new password");
inline constexpr QLatin1String RemoveQuestion("Remove password?");
inline constexpr QLatin1String MismatchMessage(
    "The two passwords are different. To prevent errors, they must be the same.");

/// Asks for the new password twice and stores it when both answers agree. An empty first
/// answer (or Cancel) asks whether to remove the lock. Returns true when the setting changed.
bool change(IPrompts &prompts, ISettingsStore &settings);

/// True when the start may go on: no password is set, or the confirmed text equals it exactly.
bool admits(const QString &storedPassword, const QString &confirmedText);

} // namespace PasswordLock

} // namespace tarnwick
