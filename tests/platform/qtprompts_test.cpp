#include "platform/qt/qtprompts.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <utility>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using Buttons = QList<QMessageBox::StandardButton>;

TEST(MessageBoxStyle, ButtonSetsInTheirOrder)
{
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::OkOnly).buttons, Buttons({ QMessageBox::Ok }));
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::OkCancel).buttons,
        Buttons({ QMessageBox::Ok, QMessageBox::Cancel }));
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::AbortRetryIgnore).buttons,
        Buttons({ QMessageBox::Abort, QMessageBox::Retry, QMessageBox::Ignore }));
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::YesNoCancel).buttons,
        Buttons({ QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel }));
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::YesNo).buttons,
        Buttons({ QMessageBox::Yes, QMessageBox::No }));
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::RetryCancel).buttons,
        Buttons({ QMessageBox::Retry, QMessageBox::Cancel }));
}

TEST(MessageBoxStyle, UnknownButtonSetShowsOkAlone)
{
    EXPECT_EQ(decodeMessageBoxStyle(7).buttons, Buttons({ QMessageBox::Ok }));
    EXPECT_EQ(decodeMessageBoxStyle(15 + MsgStyle::Question).buttons, Buttons({ QMessageBox::Ok }));
}

TEST(MessageBoxStyle, Icons)
{
    EXPECT_EQ(decodeMessageBoxStyle(0).icon, QMessageBox::NoIcon);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::Critical).icon, QMessageBox::Critical);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::Question).icon, QMessageBox::Question);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::Exclamation).icon, QMessageBox::Warning);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::Information).icon, QMessageBox::Information);
    EXPECT_EQ(decodeMessageBoxStyle(80).icon, QMessageBox::NoIcon);
}

TEST(MessageBoxStyle, DefaultButtonIsFirstSecondOrThird)
{
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::YesNoCancel).defaultButton, QMessageBox::Yes);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::YesNoCancel + MsgStyle::DefaultButton2).defaultButton,
        QMessageBox::No);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::YesNoCancel + MsgStyle::DefaultButton3).defaultButton,
        QMessageBox::Cancel);
}

TEST(MessageBoxStyle, DefaultButtonTheSetLacksFallsBackToTheFirst)
{
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::YesNo + MsgStyle::DefaultButton3).defaultButton,
        QMessageBox::Yes);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::OkOnly + MsgStyle::DefaultButton2).defaultButton,
        QMessageBox::Ok);
    EXPECT_EQ(
        decodeMessageBoxStyle(MsgStyle::AbortRetryIgnore + 768).defaultButton, QMessageBox::Abort);
}

TEST(MessageBoxStyle, EscapeStandsForCancelNoAbortOrTheOnlyButton)
{
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::OkOnly).escapeButton, QMessageBox::Ok);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::OkCancel).escapeButton, QMessageBox::Cancel);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::AbortRetryIgnore).escapeButton, QMessageBox::Abort);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::YesNoCancel).escapeButton, QMessageBox::Cancel);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::YesNo).escapeButton, QMessageBox::No);
    EXPECT_EQ(decodeMessageBoxStyle(MsgStyle::RetryCancel).escapeButton, QMessageBox::Cancel);
}

TEST(MessageBoxStyle, CombinedStylesAsTheProgramUsesThem)
{
    const MessageBoxStyle confirm = decodeMessageBoxStyle(36);
    EXPECT_EQ(confirm.buttons, Buttons({ QMessageBox::Yes, QMessageBox::No }));
    EXPECT_EQ(confirm.icon, QMessageBox::Question);
    EXPECT_EQ(confirm.defaultButton, QMessageBox::Yes);

    const MessageBoxStyle cautious = decodeMessageBoxStyle(324);
    EXPECT_EQ(cautious.buttons, Buttons({ QMessageBox::Yes, QMessageBox::No }));
    EXPECT_EQ(cautious.icon, QMessageBox::Information);
    EXPECT_EQ(cautious.defaultButton, QMessageBox::No);

    const MessageBoxStyle okCancel = decodeMessageBoxStyle(33);
    EXPECT_EQ(okCancel.buttons, Buttons({ QMessageBox::Ok, QMessageBox::Cancel }));
    EXPECT_EQ(okCancel.icon, QMessageBox::Question);
}

TEST(MessageBoxStyle, ResultNumbersOfTheButtons)
{
    EXPECT_EQ(msgResultOf(QMessageBox::Ok), MsgResult::Ok);
    EXPECT_EQ(msgResultOf(QMessageBox::Cancel), MsgResult::Cancel);
    EXPECT_EQ(msgResultOf(QMessageBox::Abort), MsgResult::Abort);
    EXPECT_EQ(msgResultOf(QMessageBox::Retry), MsgResult::Retry);
    EXPECT_EQ(msgResultOf(QMessageBox::Ignore), MsgResult::Ignore);
    EXPECT_EQ(msgResultOf(QMessageBox::Yes), MsgResult::Yes);
    EXPECT_EQ(msgResultOf(QMessageBox::No), MsgResult::No);
    EXPECT_EQ(msgResultOf(QMessageBox::Help), 0);
}

TEST(PromptTitle, EmptyTitleShowsTheProgramName)
{
    EXPECT_EQ(promptTitle(QString()), QStringLiteral("Tarnwick"));
    EXPECT_EQ(promptTitle(QStringLiteral("Error Message")), QStringLiteral("Error Message"));
}

TEST(QtPromptsBox, BoxShowsTextTitleIconAndButtonsAndIsNamedForAccessibility)
{
    QMessageBox box;
    configureMessageBox(
        box, QStringLiteral("Delete all products?"), 36 + 256, QStringLiteral("Delete"));
    EXPECT_EQ(box.text(), QStringLiteral("Delete all products?"));
    EXPECT_EQ(box.windowTitle(), QStringLiteral("Delete"));
    EXPECT_EQ(box.accessibleName(), QStringLiteral("Delete"));
    EXPECT_EQ(box.icon(), QMessageBox::Question);
    EXPECT_EQ(box.buttons().size(), 2);
    ASSERT_NE(box.button(QMessageBox::Yes), nullptr);
    ASSERT_NE(box.button(QMessageBox::No), nullptr);
    EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
    EXPECT_EQ(box.escapeButton(), box.button(QMessageBox::No));
}

TEST(QtPromptsBox, BoxWithoutTitleIsTitledTarnwick)
{
    QMessageBox box;
    configureMessageBox(box, QStringLiteral("Saved."), MsgStyle::OkOnly, QString());
    EXPECT_EQ(box.windowTitle(), QStringLiteral("Tarnwick"));
    EXPECT_EQ(box.accessibleName(), QStringLiteral("Tarnwick"));
    EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
    EXPECT_EQ(box.buttons().size(), 1);
    EXPECT_NE(box.button(QMessageBox::Ok), nullptr);
}

TEST(QtPromptsBox, MessageTextIsShownAsPlainText)
{
    QMessageBox box;
    configureMessageBox(box, QStringLiteral("<b>Price</b> < 5"), MsgStyle::OkOnly, QString());
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
}

TEST(QtPromptsBox, ClickedButtonGivesItsResult)
{
    QMessageBox box;
    configureMessageBox(box, QStringLiteral("Retry?"), MsgStyle::AbortRetryIgnore, QString());
    box.show();
    QTest::mouseClick(box.button(QMessageBox::Retry), Qt::LeftButton);
    EXPECT_FALSE(box.isVisible());
    EXPECT_EQ(messageBoxAnswer(box, MsgStyle::AbortRetryIgnore), MsgResult::Retry);
}

// Every button of a box has its letter: Alt+R retries, Alt+I ignores, Alt+A aborts.
TEST(QtPromptsBox, AbortRetryAndIgnoreAreReachedByTheirLetters)
{
    for (const auto &[key, result] :
        { std::pair { Qt::Key_A, MsgResult::Abort }, std::pair { Qt::Key_R, MsgResult::Retry },
            std::pair { Qt::Key_I, MsgResult::Ignore } }) {
        QMessageBox box;
        configureMessageBox(box, QStringLiteral("Retry?"), MsgStyle::AbortRetryIgnore, QString());
        box.show();
        box.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&box));
        QTest::keyClick(&box, key, Qt::AltModifier);
        // A button's letter clicks it as the mouse would, shown pressed for a moment first.
        EXPECT_TRUE(QTest::qWaitFor([&] { return !box.isVisible(); }));
        EXPECT_EQ(messageBoxAnswer(box, MsgStyle::AbortRetryIgnore), result);
    }
}

TEST(QtPromptsBox, EscapeGivesCancelWhereTheSetHasCancel)
{
    QMessageBox box;
    configureMessageBox(box, QStringLiteral("Save?"), MsgStyle::YesNoCancel, QString());
    box.show();
    QTest::keyClick(&box, Qt::Key_Escape);
    EXPECT_FALSE(box.isVisible());
    EXPECT_EQ(messageBoxAnswer(box, MsgStyle::YesNoCancel), MsgResult::Cancel);
}

TEST(QtPromptsBox, EscapeGivesNoForYesNo)
{
    QMessageBox box;
    configureMessageBox(box, QStringLiteral("Delete?"), 36, QString());
    box.show();
    QTest::keyClick(&box, Qt::Key_Escape);
    EXPECT_EQ(messageBoxAnswer(box, 36), MsgResult::No);
}

TEST(QtPromptsBox, ClosingTheBoxGivesTheEscapeAnswer)
{
    QMessageBox box;
    configureMessageBox(box, QStringLiteral("Go on?"), MsgStyle::OkCancel, QString());
    box.show();
    EXPECT_TRUE(box.close());
    EXPECT_EQ(messageBoxAnswer(box, MsgStyle::OkCancel), MsgResult::Cancel);
}

TEST(QtPromptsBox, EnterPressesTheDefaultButton)
{
    QMessageBox box;
    configureMessageBox(box, QStringLiteral("Really?"), 324, QString());
    box.show();
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(messageBoxAnswer(box, 324), MsgResult::No);
}

TEST(QtPromptsBox, BoxLeftWithoutAnyButtonAnswersLikeEscape)
{
    QMessageBox box;
    configureMessageBox(box, QStringLiteral("Go on?"), MsgStyle::RetryCancel, QString());
    EXPECT_EQ(messageBoxAnswer(box, MsgStyle::RetryCancel), MsgResult::Cancel);
}

/// Closes window as soon as the box over it is up, as an accessibility tool pressing the
/// window's Cancel past the box does (the window deletes itself when closed).
void closeWhileTheBoxIsUp(QWidget *window)
{
    window->setAttribute(Qt::WA_DeleteOnClose);
    QTimer::singleShot(0, window, [window] { window->close(); });
}

TEST(QtPromptsBox, ABoxWhoseWindowGoesWhileItIsUpAnswersLikeEscape)
{
    auto *window = new QWidget;
    window->show();
    const QPointer<QWidget> alive(window);
    QtPrompts prompts([window] { return window; });
    closeWhileTheBoxIsUp(window);
    EXPECT_EQ(prompts.msgBox(QStringLiteral("Go on?"), MsgStyle::YesNo, QString()), MsgResult::No);
    EXPECT_TRUE(alive.isNull());
}

TEST(QtPromptsInput, AnInputBoxWhoseWindowGoesWhileItIsUpAnswersEmpty)
{
    for (const bool password : { false, true }) {
        auto *window = new QWidget;
        window->show();
        const QPointer<QWidget> alive(window);
        QtPrompts prompts([window] { return window; });
        closeWhileTheBoxIsUp(window);
        const QString answer = password
            ? prompts.passwordBox(QStringLiteral("Password:"), QString())
            : prompts.inputBox(QStringLiteral("Name:"), QString(), QStringLiteral("typed"));
        EXPECT_EQ(answer, QString()) << password;
        EXPECT_TRUE(alive.isNull()) << password;
    }
}

TEST(QtPromptsInput, DialogShowsPromptTitleAndDefaultText)
{
    QInputDialog dialog;
    configureInputDialog(
        dialog, QStringLiteral("Enter the password"), QString(), QStringLiteral("secret"));
    EXPECT_EQ(dialog.labelText(), QStringLiteral("Enter the password"));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Tarnwick"));
    EXPECT_EQ(dialog.accessibleName(), QStringLiteral("Tarnwick"));
    EXPECT_EQ(dialog.inputMode(), QInputDialog::TextInput);
    EXPECT_EQ(dialog.textValue(), QStringLiteral("secret"));
}

TEST(QtPromptsInput, TypedTextIsTheAnswerWhenAccepted)
{
    QInputDialog dialog;
    configureInputDialog(
        dialog, QStringLiteral("Group name"), QStringLiteral("Handheld"), QString());
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Handheld"));
    dialog.show();
    auto *edit = dialog.findChild<QLineEdit *>();
    ASSERT_NE(edit, nullptr);
    QTest::keyClicks(edit, QStringLiteral("Pumps 2024"));
    auto *buttons = dialog.findChild<QDialogButtonBox *>();
    ASSERT_NE(buttons, nullptr);
    QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(inputBoxAnswer(dialog, dialog.result()), QStringLiteral("Pumps 2024"));
}

TEST(QtPromptsInput, APasswordBoxHidesWhatIsTyped)
{
    QtPrompts prompts;
    QLineEdit::EchoMode echo = QLineEdit::Normal;
    QString title;
    QTimer::singleShot(0, [&] {
        auto *dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        echo = dialog->textEchoMode();
        title = dialog->windowTitle();
        auto *edit = dialog->findChild<QLineEdit *>();
        if (edit)
            QTest::keyClicks(edit, QStringLiteral("s3cret"));
        dialog->accept();
    });
    EXPECT_EQ(prompts.passwordBox(QStringLiteral("New password"), QStringLiteral("Password")),
        QStringLiteral("s3cret"));
    EXPECT_EQ(echo, QLineEdit::Password);
    EXPECT_EQ(title, QStringLiteral("Password"));
}

TEST(QtPromptsInput, CancelGivesTheEmptyText)
{
    QInputDialog dialog;
    configureInputDialog(
        dialog, QStringLiteral("Group name"), QString(), QStringLiteral("Default"));
    dialog.show();
    auto *buttons = dialog.findChild<QDialogButtonBox *>();
    ASSERT_NE(buttons, nullptr);
    QTest::mouseClick(buttons->button(QDialogButtonBox::Cancel), Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_EQ(inputBoxAnswer(dialog, dialog.result()), QString());
}

} // namespace
} // namespace tarnwick
