// Settings that can no longer be read, and a stored password that can no longer be checked: the
// owner is told at the start, neither silently left without the lock nor silently kept out.
#include "shellfixture.h"

#include "platform/passwordhash.h"
#include "shell/passwordlock.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class DamagedSettingsStartTest : public ShellTest
{
};

TEST_F(DamagedSettingsStartTest, SettingsThatCannotBeReadAreSaidAndTheLockIsNotSilentlyGone)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("MainLeft"), QStringLiteral("1500"));
    fakes->settings.damage(
        QStringLiteral("\"/home/user/.config/Tarnwick/settings.ini\" is damaged"));
    startAndWait();
    ASSERT_FALSE(fakes->prompts.shown().empty());
    const ShownPrompt &said = fakes->prompts.shown().front();
    EXPECT_EQ(said.text,
        QStringLiteral("Tarnwick's settings could not be read: "
                       "\"/home/user/.config/Tarnwick/settings.ini\" is damaged. It is kept as "
                       "\"/home/user/.config/Tarnwick/settings-damaged-%1.ini\".\n\nTarnwick "
                       "starts with its default settings: the window's place and size and the "
                       "quote document's choices are as on a first start, and a start-up password "
                       "set before is not asked for. Set it again under Settings \u2192 "
                       "Password.")
            .arg(said.text.mid(said.text.indexOf(QLatin1String("damaged-")) + 8, 15)));
    EXPECT_EQ(said.title, QStringLiteral("Tarnwick"));
    EXPECT_EQ(said.style, MsgStyle::OkOnly | MsgStyle::Exclamation);
    EXPECT_EQ(dialogs.asked, 0);
    EXPECT_TRUE(started);
    EXPECT_FALSE(fakes->settings.contains(
        QStringLiteral("Tarnwick"), QStringLiteral("Settings"), QStringLiteral("MainLeft")))
        << "the damaged values are not used";
}

TEST_F(DamagedSettingsStartTest, SettingsThatCanBeReadSayNothing)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    startAndWait();
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

// A hash cut short: no answer can pass it, so no prompt is shown; the owner reads how to get
// in again, and nothing of the catalogue is loaded or written.
TEST_F(DamagedSettingsStartTest, ADamagedPasswordEndsTheStartWithTheWayBackIn)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(
        QStringLiteral("UserPassword"), QStringLiteral("$argon2id$v=19$m=19456,t=2,p=1$c2Fs"));
    dialogs.answer = QStringLiteral("$argon2id$v=19$m=19456,t=2,p=1$c2Fs");
    start();
    EXPECT_EQ(dialogs.asked, 0);
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        PasswordLock::damagedMessage(QStringLiteral("/home/user/.config/Tarnwick/settings.ini")));
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Tarnwick"));
    EXPECT_TRUE(splash->programEnded());
    EXPECT_FALSE(started);
    EXPECT_EQ(splash->takeMainWindow(), nullptr);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());
}

TEST(PasswordLockDamageTest, AHashCutShortIsDamagedAndItsTextIsNoPassword)
{
    const std::optional<QString> hash = PasswordHash::hash(QStringLiteral("secret"));
    ASSERT_TRUE(hash.has_value());
    EXPECT_FALSE(PasswordLock::isDamaged(*hash));
    EXPECT_TRUE(PasswordLock::admits(*hash, QStringLiteral("secret")));
    const QString cut = hash->left(hash->size() - 5);
    EXPECT_TRUE(PasswordLock::isDamaged(cut));
    EXPECT_FALSE(PasswordLock::admits(cut, cut)) << "the cut text is not a password in clear";
    EXPECT_FALSE(PasswordLock::admits(cut, QStringLiteral("secret")));
    EXPECT_TRUE(PasswordLock::isDamaged(QStringLiteral("$argon")));
    EXPECT_FALSE(PasswordLock::admits(QStringLiteral("$argon"), QStringLiteral("$argon")));
    EXPECT_FALSE(PasswordLock::isDamaged(QStringLiteral("abc"))) << "a password in clear";
    EXPECT_FALSE(PasswordLock::isDamaged(QString()));
    EXPECT_TRUE(PasswordLock::damagedMessage(QStringLiteral("/x/settings.ini"))
                    .contains(QStringLiteral("\"UserPassword=\" from the settings file "
                                             "\"/x/settings.ini\"")));
}

} // namespace
