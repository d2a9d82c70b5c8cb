#include "platform/passwordhash.h"

#include <QByteArray>
#include <QList>

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

/// Whether a stored hash asks for no more work than a password check at the start may take:
/// at most the moderate limits of libsodium (256 MiB, three passes, one lane). A hand-edited or
/// damaged settings file could ask for 4 GiB or 400,000 passes and hold the start for good.
bool withinLimits(const QByteArray &text)
{
    qint64 memoryKiB = -1;
    qint64 passes = -1;
    qint64 lanes = -1;
    // "$argon2id$v=19$m=65536,t=2,p=1$<salt>$<hash>"
    const QList<QByteArray> parts = text.split('$');
    if (parts.size() < 5)
        return false;
    for (const QByteArray &setting : parts.at(3).split(',')) {
        bool ok = false;
        const qint64 value = setting.mid(2).toLongLong(&ok);
        if (!ok || setting.size() < 3 || setting.at(1) != '=')
            return false;
        if (setting.startsWith("m="))
            memoryKiB = value;
        else if (setting.startsWith("t="))
            passes = value;
        else if (setting.startsWith("p="))
            lanes = value;
    }
    return memoryKiB > 0 && memoryKiB <= qint64(crypto_pwhash_argon2id_MEMLIMIT_MODERATE / 1024)
        && passes > 0 && passes <= qint64(crypto_pwhash_argon2id_OPSLIMIT_MODERATE) && lanes == 1;
}

/// Base64 without padding, as the hash text writes its salt and hash.
constexpr qsizetype base64Length(qsizetype bytes)
{
    return (4 * bytes + 2) / 3;
}

/// Whether the salt and the hash are whole: crypto_pwhash_argon2id_str writes a salt of 16 and a
/// hash of 32 bytes. A text cut short may still read as a shorter hash, which no password
/// would ever match.
bool wholeSaltAndHash(const QByteArray &text)
{
    constexpr qsizetype HashBytes = 32;
    const QList<QByteArray> parts = text.split('$');
    return parts.size() == 6 && parts.at(4).size() == base64Length(crypto_pwhash_argon2id_SALTBYTES)
        && parts.at(5).size() == base64Length(HashBytes);
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
        || !wholeSaltAndHash(text) || !sodiumReady())
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
    if (!withinLimits(text))
        return false;
    const QByteArray bytes = typed.toUtf8();
    return crypto_pwhash_argon2id_str_verify(
               text.constData(), bytes.constData(), static_cast<unsigned long long>(bytes.size()))
        == 0;
}

} // namespace tarnwick::PasswordHash
