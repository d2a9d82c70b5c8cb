// The user's start-up password: the check at start, the prompt window, and setting,
// changing and removing it from the "&Settings" menu.
#include "shellfixture.h"

#include "platform/passwordhash.h"
#include "shell/frmpassword.h"
#include "shell/mainwindowactions.h"
#include "shell/passwordlock.h"
#include "shell/shelldialogs.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSystemTrayIcon>
#include <QTest>
#include <QTimer>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class PasswordTest : public ShellTest
{
protected:
    void expectProgramEndedWithoutWriting()
    {
        EXPECT_TRUE(splash->programEnded());
        EXPECT_FALSE(started);
        EXPECT_EQ(splash->takeMainWindow(), nullptr);
        EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), sampleCatalogue());
        EXPECT_FALSE(folder.exists(QStringLiteral("twdata.bak")));
    }
};

TEST_F(PasswordTest, NoPromptWithoutAPassword)
{
    startAndWait();
    EXPECT_EQ(dialogs.asked, 0);
}

TEST_F(PasswordTest, TheRightPasswordShowsTheMainWindowWithoutTheTickWait)
{
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QStringLiteral("abc");
    start();
    EXPECT_EQ(dialogs.asked, 1);
    EXPECT_TRUE(started) << "with a password the main window is shown as soon as it is confirmed";
    EXPECT_TRUE(mainWindow->isVisible());
}

namespace {
/// Records every main window and tray icon that is shown while it lives: the Show events
/// themselves, so a window shown and hidden again between two looks is seen too.
class ShowRecorder : public QObject
{
public:
    ShowRecorder() { qApp->installEventFilter(this); }
    ~ShowRecorder() override { qApp->removeEventFilter(this); }
    ShowRecorder(const ShowRecorder &) = delete;
    ShowRecorder &operator=(const ShowRecorder &) = delete;

    bool mainWindowShown = false;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && qobject_cast<frmMain *>(watched))
            mainWindowShown = true;
        return QObject::eventFilter(watched, event);
    }
};

/// The splash's tick timer, the program's own clock of the tick wait.
QTimer *tickTimerOf(const FrmSplash1 &splash)
{
    const QList<QTimer *> timers = splash.findChildren<QTimer *>();
    return timers.size() == 1 ? timers.front() : nullptr;
}

/// Lets the event loop run until the splash's tick wait would have ended had its timer kept
/// running: a timer of the same interval, started now, fires once more than the ticks the
/// wait counts (the splash's timer, started before, would have fired at least as often).
/// Returns whether a main window was shown meanwhile. Nothing here waits for a fixed time:
/// on a slow machine the wait simply takes longer.
bool mainWindowShownDuringTheTickWait(const FrmSplash1 &splash)
{
    ShowRecorder recorder;
    const QTimer *tick = tickTimerOf(splash);
    EXPECT_NE(tick, nullptr);
    QTimer probe;
    probe.setInterval(tick ? tick->interval() : FrmSplash1::DefaultTickMilliseconds);
    int fired = 0;
    QObject::connect(&probe, &QTimer::timeout, [&] { ++fired; });
    probe.start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return fired > FrmSplash1::TicksToWait; }, 60000));
    return recorder.mainWindowShown;
}

bool trayIconShown()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        for (QSystemTrayIcon *icon : window->findChildren<QSystemTrayIcon *>())
            if (icon->isVisible())
                return true;
    }
    return false;
}
} // namespace

TEST_F(PasswordTest, NoMainWindowOrTrayIconShowsWhileThePromptIsUp)
{
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QStringLiteral("abc");
    bool shownWhileAsking = true;
    bool trayWhileAsking = true;
    bool tickingWhileAsking = true;
    dialogs.whileAsking = [&] {
        // The tick wait, which would show the main window, is off while the prompt is up.
        const QTimer *tick = tickTimerOf(*splash);
        tickingWhileAsking = !tick || tick->isActive();
        shownWhileAsking = mainWindowShownDuringTheTickWait(*splash);
        trayWhileAsking = trayIconShown();
    };
    start();
    EXPECT_FALSE(tickingWhileAsking);
    EXPECT_FALSE(shownWhileAsking) << "the tick wait must not show the catalogue behind the prompt";
    EXPECT_FALSE(trayWhileAsking);
    ASSERT_TRUE(started);
    EXPECT_TRUE(mainWindow->isVisible());
}

TEST_F(PasswordTest, WhatTheCatalogueFileHeldWrongWaitsForThePassword)
{
    // A price that cannot be read: the message names the product.
    folder.writeFile(QStringLiteral("twdata.dat"),
        catalogueLine({ "SECRET-1", "Hidden product", "12,x" }) + sampleCatalogue());
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QStringLiteral("abc");
    std::size_t shownBeforeThePassword = 99;
    dialogs.whileAsking = [&] { shownBeforeThePassword = fakes->prompts.shown().size(); };
    start();
    ASSERT_EQ(dialogs.asked, 1);
    EXPECT_EQ(shownBeforeThePassword, 0U) << "nothing of the catalogue before the password";
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Catalogue"));
    EXPECT_TRUE(fakes->prompts.shown()[0].text.contains(QStringLiteral("SECRET-1")));
    EXPECT_TRUE(started);
}

TEST_F(PasswordTest, AWrongPasswordShowsNothingOfTheCatalogue)
{
    folder.writeFile(QStringLiteral("twdata.dat"),
        catalogueLine({ "SECRET-1", "Hidden product", "12,x" }) + sampleCatalogue());
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QStringLiteral("abd");
    start();
    EXPECT_EQ(dialogs.asked, 1);
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_TRUE(splash->programEnded());
}

TEST_F(PasswordTest, AWrongPasswordEndsWithoutTheMainWindowEverShown)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QStringLiteral("abd");
    bool shownWhileAsking = true;
    dialogs.whileAsking = [&] { shownWhileAsking = mainWindowShownDuringTheTickWait(*splash); };
    ShowRecorder afterwards;
    start();
    EXPECT_FALSE(shownWhileAsking);
    // Nothing left over shows it later either: the splash is gone and its clock with it, and
    // a whole tick wait's worth of events passes without a main window.
    EXPECT_FALSE(splash->isVisible());
    QTimer probe;
    probe.setInterval(tickMilliseconds);
    int fired = 0;
    QObject::connect(&probe, &QTimer::timeout, [&] { ++fired; });
    probe.start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return fired > FrmSplash1::TicksToWait; }, 60000));
    EXPECT_FALSE(afterwards.mainWindowShown);
    expectProgramEndedWithoutWriting();
}

TEST_F(PasswordTest, CapitalLettersDoNotMatchAndEndTheProgramWithoutWriting)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QStringLiteral("ABC");
    start();
    expectProgramEndedWithoutWriting();
}

TEST_F(PasswordTest, ATrailingBlankDoesNotMatch)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QStringLiteral("abc ");
    start();
    expectProgramEndedWithoutWriting();
}

TEST_F(PasswordTest, ACloseAskedForWhileThePromptIsUpClosesItAndEndsWithoutWriting)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    // The user would have typed the right password; the log-out came first.
    dialogs.answer = QStringLiteral("abc");
    dialogs.whileAsking = [&] { splash->close(); };
    start();
    EXPECT_EQ(dialogs.closeRequests, 1) << "the prompt must not wait for an answer";
    EXPECT_FALSE(started);
    expectProgramEndedWithoutWriting();
}

TEST_F(PasswordTest, ClosingThePromptWithoutOkEndsTheProgram)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QString();
    start();
    expectProgramEndedWithoutWriting();
}

TEST(FrmPasswordTest, MasksTheTypedCharactersAndEnterConfirms)
{
    FrmPassword dialog;
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Enter user password"));
    auto *box = dialog.findChild<QLineEdit *>(QStringLiteral("TxtPW"));
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->echoMode(), QLineEdit::Password);
    EXPECT_EQ(box->accessibleDescription(), QStringLiteral("TxtPW"));
    dialog.show();
    box->setFocus();
    QTest::keyClicks(box, QStringLiteral("s3cret"));
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.Password, QStringLiteral("s3cret"));
}

TEST(FrmPasswordTest, ThePromptClosedByTheProgramAnswersAsClosingItWould)
{
    ShellDialogs dialogs;
    bool typed = false;
    // Runs inside the prompt's own event loop, once it is up.
    QTimer::singleShot(0, [&] {
        auto *prompt = qobject_cast<FrmPassword *>(QApplication::activeModalWidget());
        auto *box = prompt ? prompt->findChild<QLineEdit *>(QStringLiteral("TxtPW")) : nullptr;
        if (box) {
            QTest::keyClicks(box, QStringLiteral("abc"));
            typed = true;
        }
        dialogs.closePasswordPrompt();
    });
    EXPECT_EQ(dialogs.askPassword(), QString());
    EXPECT_TRUE(typed) << "the prompt was not up";
    dialogs.closePasswordPrompt(); // with no prompt up: nothing happens
}

TEST(FrmPasswordTest, IsWideEnoughForItsWholeTitle)
{
    FrmPassword dialog;
    dialog.show();
    EXPECT_GT(dialog.width(), dialog.fontMetrics().horizontalAdvance(dialog.windowTitle()) + 100);
}

TEST(FrmPasswordTest, TheOkButtonConfirmsAndClosingLeavesTheTextEmpty)
{
    FrmPassword confirmed;
    confirmed.show();
    QTest::keyClicks(
        confirmed.findChild<QLineEdit *>(QStringLiteral("TxtPW")), QStringLiteral("x"));
    QTest::mouseClick(
        confirmed.findChild<QPushButton *>(QStringLiteral("OKButton")), Qt::LeftButton);
    EXPECT_EQ(confirmed.Password, QStringLiteral("x"));

    FrmPassword closed;
    closed.show();
    QTest::keyClicks(closed.findChild<QLineEdit *>(QStringLiteral("TxtPW")), QStringLiteral("y"));
    QTest::keyClick(&closed, Qt::Key_Escape);
    EXPECT_EQ(closed.result(), QDialog::Rejected);
    EXPECT_EQ(closed.Password, QString());
}

class PasswordMenuTest : public ShellTest
{
protected:
    void choosePasswordMenu()
    {
        mainWindow->actions().action(QStringLiteral("mnuUserOptions"))->trigger();
    }

    /// Sets the password "new" where the settings cannot be written: the setting stays as it
    /// was, and the box that says so is the third shown (after the two password boxes).
    ShownPrompt setPasswordThatCannotBeSaved()
    {
        const QString before = setting(QStringLiteral("UserPassword"));
        fakes->settings.failWrites(QStringLiteral("the disk is full"));
        fakes->prompts.answerInput(QStringLiteral("new"));
        fakes->prompts.answerInput(QStringLiteral("new"));
        choosePasswordMenu();
        EXPECT_EQ(setting(QStringLiteral("UserPassword")), before);
        EXPECT_EQ(fakes->prompts.shown().size(), 3u);
        return fakes->prompts.shown().size() >= 3 ? fakes->prompts.shown()[2] : ShownPrompt {};
    }
};

TEST_F(PasswordMenuTest, TwoEqualAnswersSetThePassword)
{
    startAndWait();
    fakes->prompts.answerInput(QStringLiteral("Secret"));
    fakes->prompts.answerInput(QStringLiteral("Secret"));
    choosePasswordMenu();
    const QString stored = setting(QStringLiteral("UserPassword"));
    EXPECT_NE(stored, QStringLiteral("Secret")) << "the password is never stored as typed";
    EXPECT_FALSE(stored.contains(QStringLiteral("Secret")));
    EXPECT_TRUE(PasswordHash::isHash(stored)) << stored.toStdString();
    EXPECT_TRUE(PasswordHash::matches(stored, QStringLiteral("Secret")));
    const auto &shown = fakes->prompts.shown();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].text, QStringLiteral("Please enter the new password."));
    EXPECT_EQ(shown[0].title, QStringLiteral("Password"));
    // Both boxes hide what is typed, as the prompt at the start does.
    EXPECT_EQ(shown[0].kind, ShownPrompt::Kind::Password);
    EXPECT_EQ(shown[1].kind, ShownPrompt::Kind::Password);
    EXPECT_EQ(shown[1].text, QStringLiteral("Please reenter the new password"));
    EXPECT_EQ(shown[1].title, QStringLiteral("Password"));
}

TEST_F(PasswordMenuTest, TwoDifferentAnswersKeepTheOldPassword)
{
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("old"));
    dialogs.answer = QStringLiteral("old");
    startAndWait();
    const QString before = setting(QStringLiteral("UserPassword"));
    fakes->prompts.answerInput(QStringLiteral("one"));
    fakes->prompts.answerInput(QStringLiteral("two"));
    choosePasswordMenu();
    EXPECT_EQ(setting(QStringLiteral("UserPassword")), before);
    EXPECT_TRUE(PasswordHash::matches(before, QStringLiteral("old")));
    ASSERT_EQ(fakes->prompts.shown().size(), 3u);
    const ShownPrompt &box = fakes->prompts.shown()[2];
    EXPECT_EQ(box.text,
        QStringLiteral("The two passwords are different. To prevent errors, they "
                       "must be the same."));
    EXPECT_EQ(box.style, MsgStyle::OkOnly);
}

TEST_F(PasswordMenuTest, CancellingTheSecondPromptIsAMismatch)
{
    startAndWait();
    fakes->prompts.answerInput(QStringLiteral("one"));
    fakes->prompts.answerInput(QString());
    choosePasswordMenu();
    EXPECT_EQ(setting(QStringLiteral("UserPassword")), QStringLiteral("<unset>"));
    EXPECT_EQ(fakes->prompts.texts().last(), QString(PasswordLock::MismatchMessage));
}

TEST_F(PasswordMenuTest, AnEmptyAnswerAndYesRemoveTheLock)
{
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("old"));
    dialogs.answer = QStringLiteral("old");
    startAndWait();
    fakes->prompts.answerInput(QString());
    fakes->prompts.answerMessage(MsgResult::Yes);
    choosePasswordMenu();
    EXPECT_EQ(setting(QStringLiteral("UserPassword")), QString());
    const ShownPrompt &box = fakes->prompts.shown()[1];
    EXPECT_EQ(box.text, QStringLiteral("Remove password?"));
    EXPECT_EQ(box.style, MsgStyle::YesNo | MsgStyle::Question);
}

TEST_F(PasswordMenuTest, AnEmptyAnswerAndNoKeepTheLock)
{
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("old"));
    dialogs.answer = QStringLiteral("old");
    startAndWait();
    const QString before = setting(QStringLiteral("UserPassword"));
    fakes->prompts.answerInput(QString());
    fakes->prompts.answerMessage(MsgResult::No);
    choosePasswordMenu();
    EXPECT_EQ(setting(QStringLiteral("UserPassword")), before);
    EXPECT_TRUE(PasswordHash::matches(before, QStringLiteral("old")));
    EXPECT_EQ(fakes->prompts.shown().size(), 2u);
}

TEST_F(PasswordMenuTest, APasswordThatCannotBeSavedIsReportedAndTheOldOneStays)
{
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("old"));
    dialogs.answer = QStringLiteral("old");
    startAndWait();
    const ShownPrompt box = setPasswordThatCannotBeSaved();
    EXPECT_EQ(box.text,
        QStringLiteral("The password could not be saved: the disk is full. The previous "
                       "password is still in force."));
    EXPECT_EQ(box.title, QStringLiteral("Password"));
    EXPECT_EQ(box.style, MsgStyle::OkOnly | MsgStyle::Exclamation);
}

// Where no password was set, a first one that cannot be saved leaves the program without a
// lock, and the box says so rather than speak of a previous password.
TEST_F(PasswordMenuTest, AFirstPasswordThatCannotBeSavedSaysThereIsStillNone)
{
    startAndWait();
    EXPECT_EQ(setPasswordThatCannotBeSaved().text,
        QStringLiteral("The password could not be saved: the disk is full. Tarnwick still "
                       "starts without a password."));
}

TEST_F(PasswordTest, AClearTextPasswordUnlocksAndIsReplacedByItsHash)
{
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    dialogs.answer = QStringLiteral("abc");
    start();
    ASSERT_TRUE(started);
    const QString stored = setting(QStringLiteral("UserPassword"));
    EXPECT_NE(stored, QStringLiteral("abc"));
    EXPECT_TRUE(PasswordHash::isHash(stored)) << stored.toStdString();

    // The hash unlocks the next start with the same text, and nothing is rewritten then.
    mainWindow->close();
    const int savesBefore = fakes->settings.saveCount();
    restart();
    EXPECT_TRUE(started);
    EXPECT_EQ(dialogs.asked, 2);
    EXPECT_EQ(setting(QStringLiteral("UserPassword")), stored);
    mainWindow->close();
    EXPECT_EQ(fakes->settings.saveCount() - savesBefore, 6) << "only the six window settings";
}

TEST_F(PasswordTest, AHashedPasswordRefusesCapitalsAndATrailingBlankWithoutWriting)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("UserPassword"), *PasswordHash::hash(QStringLiteral("abc")));
    const QString stored = setting(QStringLiteral("UserPassword"));
    for (const QString &wrong : { QStringLiteral("ABC"), QStringLiteral("abc "), QString() }) {
        dialogs.answer = wrong;
        start();
        expectProgramEndedWithoutWriting();
        EXPECT_EQ(setting(QStringLiteral("UserPassword")), stored);
    }
}

TEST_F(PasswordTest, AWrongAnswerLeavesAClearTextPasswordAsItWas)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("UserPassword"), QStringLiteral("abc"));
    const int savesBefore = fakes->settings.saveCount();
    dialogs.answer = QStringLiteral("abd");
    start();
    expectProgramEndedWithoutWriting();
    EXPECT_EQ(setting(QStringLiteral("UserPassword")), QStringLiteral("abc"));
    EXPECT_EQ(fakes->settings.saveCount(), savesBefore);
}

TEST(PasswordLockTest, UnlockReplacesOnlyAClearTextPasswordThatMatched)
{
    FakeSettingsStore settings;
    const auto stored = [&] {
        return settings.get(QStringLiteral("Tarnwick"), QStringLiteral("Settings"),
            QStringLiteral("UserPassword"), QStringLiteral("<unset>"));
    };
    EXPECT_TRUE(PasswordLock::unlock(settings, QString(), QStringLiteral("x")));
    EXPECT_EQ(stored(), QStringLiteral("<unset>"));
    EXPECT_FALSE(PasswordLock::unlock(settings, QStringLiteral("abc"), QStringLiteral("abd")));
    EXPECT_EQ(stored(), QStringLiteral("<unset>"));
    EXPECT_TRUE(PasswordLock::unlock(settings, QStringLiteral("abc"), QStringLiteral("abc")));
    const QString hashed = stored();
    EXPECT_TRUE(PasswordHash::isHash(hashed));
    EXPECT_TRUE(PasswordLock::unlock(settings, hashed, QStringLiteral("abc")));
    EXPECT_EQ(stored(), hashed);
    EXPECT_FALSE(PasswordLock::unlock(settings, hashed, QStringLiteral("ABC")));
}

TEST(PasswordLockTest, AClearTextPasswordStillUnlocksWhenItsHashCannotBeWritten)
{
    FakeSettingsStore settings;
    settings.failWrites(QStringLiteral("the disk is full"));
    EXPECT_TRUE(PasswordLock::unlock(settings, QStringLiteral("abc"), QStringLiteral("abc")));
}

TEST(PasswordLockTest, AdmitsOnlyTheExactText)
{
    EXPECT_TRUE(PasswordLock::admits(QString(), QString()));
    EXPECT_TRUE(PasswordLock::admits(QString(), QStringLiteral("anything")));
    EXPECT_TRUE(PasswordLock::admits(QStringLiteral("abc"), QStringLiteral("abc")));
    EXPECT_FALSE(PasswordLock::admits(QStringLiteral("abc"), QStringLiteral("ABC")));
    EXPECT_FALSE(PasswordLock::admits(QStringLiteral("abc"), QStringLiteral("abc ")));
    EXPECT_FALSE(PasswordLock::admits(QStringLiteral("abc"), QString()));
}

} // namespace
