// The start-up password is kept as a salted Argon2id hash: the stored text is never the
// password, the right text matches it, and a value that is no hash counts as clear text.
#include "platform/passwordhash.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(PasswordHash, TheHashIsNotThePasswordAndMatchesOnlyTheExactText)
{
    const std::optional<QString> stored = PasswordHash::hash(QStringLiteral("abc"));
    ASSERT_TRUE(stored.has_value());
    EXPECT_TRUE(stored->startsWith(QStringLiteral("$argon2id$")));
    EXPECT_FALSE(stored->contains(QStringLiteral("abc")));
    EXPECT_TRUE(PasswordHash::isHash(*stored));
    EXPECT_TRUE(PasswordHash::matches(*stored, QStringLiteral("abc")));
    EXPECT_FALSE(PasswordHash::matches(*stored, QStringLiteral("ABC")));
    EXPECT_FALSE(PasswordHash::matches(*stored, QStringLiteral("abc ")));
    EXPECT_FALSE(PasswordHash::matches(*stored, QStringLiteral("abd")));
    EXPECT_FALSE(PasswordHash::matches(*stored, QString()));
}

TEST(PasswordHash, EachHashHasItsOwnSalt)
{
    const std::optional<QString> first = PasswordHash::hash(QStringLiteral("Secret"));
    const std::optional<QString> second = PasswordHash::hash(QStringLiteral("Secret"));
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    EXPECT_TRUE(PasswordHash::matches(*second, QStringLiteral("Secret")));
}

TEST(PasswordHash, CharactersBeyondAsciiMatch)
{
    const QString password = QStringLiteral("Grüße – 密码");
    const std::optional<QString> stored = PasswordHash::hash(password);
    ASSERT_TRUE(stored.has_value());
    EXPECT_TRUE(PasswordHash::matches(*stored, password));
    EXPECT_FALSE(PasswordHash::matches(*stored, QStringLiteral("Grusse – 密码")));
}

TEST(PasswordHash, AValueThatIsNoHashIsClearTextComparedExactly)
{
    for (const QString &clear : { QStringLiteral("abc"), QStringLiteral("$argon2id$"),
             QStringLiteral("$argon2id$not a hash"),
             QStringLiteral("$argon2i$v=19$m=8,t=1,p=1$c2FsdA$aGFzaA") }) {
        EXPECT_FALSE(PasswordHash::isHash(clear)) << clear.toStdString();
        EXPECT_TRUE(PasswordHash::matches(clear, clear)) << clear.toStdString();
        EXPECT_FALSE(PasswordHash::matches(clear, clear + QLatin1Char(' ')));
    }
}

TEST(PasswordHash, AHashCutShortAtAnyLengthIsNoHash)
{
    const std::optional<QString> stored = PasswordHash::hash(QStringLiteral("Secret"));
    ASSERT_TRUE(stored.has_value());
    ASSERT_TRUE(PasswordHash::isHash(*stored));
    // Some lengths still read as a shorter hash, which the password would never match.
    for (qsizetype length = stored->size() - 1; length > 0; --length)
        EXPECT_FALSE(PasswordHash::isHash(stored->left(length))) << length;
}

TEST(PasswordHash, AWellFormedHashTextIsTakenForAHashEvenWhenTypedAsAPassword)
{
    const std::optional<QString> stored = PasswordHash::hash(QStringLiteral("inner"));
    ASSERT_TRUE(stored.has_value());
    // Whoever types the hash text itself is not let in: only the password it stands for.
    EXPECT_FALSE(PasswordHash::matches(*stored, *stored));
}

TEST(PasswordHash, AHashAskingForMoreWorkThanAStartMayTakeMatchesNothing)
{
    const std::optional<QString> stored = PasswordHash::hash(QStringLiteral("Secret"));
    ASSERT_TRUE(stored.has_value());
    ASSERT_TRUE(stored->contains(QLatin1String("$m=65536,t=2,p=1$")));
    EXPECT_TRUE(PasswordHash::matches(*stored, QStringLiteral("Secret")));
    // Edited by hand or damaged: still a well-formed hash, but 400,000 passes or 4 GiB would
    // hold the start for minutes or for good. It is refused at once instead.
    for (const char *costs :
        { "$m=65536,t=400000,p=1$", "$m=4194304,t=2,p=1$", "$m=65536,t=2,p=64$" }) {
        QString edited = *stored;
        edited.replace(QLatin1String("$m=65536,t=2,p=1$"), QLatin1String(costs));
        EXPECT_TRUE(PasswordHash::isHash(edited)) << costs;
        EXPECT_FALSE(PasswordHash::matches(edited, QStringLiteral("Secret"))) << costs;
    }
}

} // namespace
} // namespace tarnwick
