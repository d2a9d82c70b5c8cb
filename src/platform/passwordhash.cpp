#include "platform/passwordhash.h"

#include <QByteArray>

#include <sodium.h>

namespace tarnwick::PasswordHash {

namespace {

const QByteArray HashPrefix = QByteArrayLiteral("$argon2id$");

/// libsodium must be set up once before its first use; it is safe to ask again.
bool sodiumReady()
{
    static const bool ready = sodium_init() >= 0;
    return ready;
}

} // namespace

std::optional<QString> hash(const QString &password)
{
    if (!sodiumReady())
        return std::nullopt;
    const QByteArray bytes = password.toUtf8();
    char text[crypto_pwhash_argon2id_STRBYTES] = {};
    if (crypto_pwhash_argon2id_str(text, bytes.constData(),
            static_cast<unsigned long long>(bytes.size()),
            crypto_pwhash_argon2id_OPSLIMIT_INTERACTIVE,
            crypto_pwhash_argon2id_MEMLIMIT_INTERACTIVE)
        != 0)
        return std::nullopt;
    return QString::fromLatin1(text);
}

bool isHash(const QString &stored)
{
    const QByteArray text = stored.toUtf8();
    if (!text.startsWith(HashPrefix) || text.size() >= qsizetype(crypto_pwhash_argon2id_STRBYTES)
        || !sodiumReady())
        return false;
    // The check of the limits reads the whole text and answers -1 when it is no Argon2id hash.
    return crypto_pwhash_argon2id_str_needs_rehash(text.constData(),
               crypto_pwhash_argon2id_OPSLIMIT_INTERACTIVE,
               crypto_pwhash_argon2id_MEMLIMIT_INTERACTIVE)
        != -1;
}

bool matches(const QString &stored, const QString &typed)
{
    if (!isHash(stored))
        return stored == typed;
    const QByteArray text = stored.toUtf8();
    const QByteArray bytes = typed.toUtf8();
    return crypto_pwhash_argon2id_str_verify(
               text.constData(), bytes.constData(), static_cast<unsigned long long>(bytes.size()))
        == 0;
}

} // namespace tarnwick::PasswordHash
