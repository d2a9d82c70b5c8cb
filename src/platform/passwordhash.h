#pragma once

#include <QString>

#include <optional>

namespace tarnwick {

/// The start-up password as the settings keep it: a salted, deliberately slow Argon2id hash in
/// its standard text form ("$argon2id$v=19$m=…,t=…,p=…$salt$hash"), never the password itself.
namespace PasswordHash {

/// The hash of password, with a new random salt (Argon2id, the interactive limits of time and
/// memory). Nothing when the hash could not be computed (the memory it needs was refused).
std::optional<QString> hash(const QString &password);

/// True when stored is a hash: it starts with "$argon2id$" and is a well-formed Argon2id text.
/// Anything else is a password kept in clear text (by an earlier version of the program, or
/// typed into the settings file by hand). A clear password that is itself a well-formed
/// Argon2id text is therefore taken for a hash.
bool isHash(const QString &stored);

/// True when typed is the password stored stands for: the hash of typed when stored is a
/// hash, otherwise exactly the clear text (letter case and blanks count). A hash that asks for
/// more work than libsodium's moderate limits (256 MiB, three passes, one lane) matches
/// nothing: checking it could hold the start for minutes.
bool matches(const QString &stored, const QString &typed);

} // namespace PasswordHash

} // namespace tarnwick
