// The generic one-line dialog as the program shows it: the command waits for it while the
// window behind it keeps taking the mouse and the keyboard, and a close of that window ends the
// wait as Cancel does.
#include "shell/dialog.h"
#include "shell/shelldialogs.h"

#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

using namespace tarnwick;

namespace {

Dialog *openDialog(const QWidget &window)
{
    return window.findChild<Dialog *>(QString(), Qt::FindDirectChildrenOnly);
}

/// Runs step once the dialog is up over window (polled from the event loop askText runs).
void whenDialogIsUp(QWidget &window, std::function<void(Dialog &)> step)
{
    auto *poll = new QTimer(&window);
    QObject::connect(poll, &QTimer::timeout, poll, [&window, poll, step = std::move(step)] {
        Dialog *dialog = openDialog(window);
        if (dialog == nullptr || !dialog->isVisible())
            return;
        poll->stop();
        poll->deleteLater();
        step(*dialog);
    });
    poll->start(0);
}

class ShellDialogsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QMainWindow window;
    QLineEdit behind { &window };
    ShellDialogs dialogs;
};

TEST_F(ShellDialogsTest, TheWindowBehindTakesInputWhileTheDialogWaits)
{
    bool checked = false;
    whenDialogIsUp(window, [&](Dialog &dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Locate Product"));
        EXPECT_FALSE(dialog.isModal());
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        // The window behind answers: a command there runs while the dialog is up.
        behind.setText(QStringLiteral("typed behind"));
        EXPECT_TRUE(behind.isEnabled() && behind.window()->isEnabled());
        dialog.findChild<QLineEdit *>()->setText(QStringLiteral("valve"));
        dialog.findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
        checked = true;
    });
    EXPECT_EQ(dialogs.askText(QStringLiteral("Locate Product"),
                  QStringLiteral("Enter the product name to locate."), QString()),
        QStringLiteral("valve"));
    EXPECT_TRUE(checked);
    EXPECT_EQ(openDialog(window), nullptr) << "the dialog is gone once answered";
}

TEST_F(ShellDialogsTest, ClosingTheWindowsDialogsEndsTheWaitAsCancel)
{
    whenDialogIsUp(window, [](Dialog &dialog) { dialog.close(); });
    EXPECT_EQ(dialogs.askText(QStringLiteral("Locate Product"), QStringLiteral("Prompt"),
                  QStringLiteral("left text")),
        QString());
}

TEST_F(ShellDialogsTest, DeletingTheWindowBehindEndsTheWait)
{
    auto *owner = new QWidget;
    owner->show();
    owner->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(owner));
    whenDialogIsUp(*owner, [owner](Dialog &) { owner->deleteLater(); });
    EXPECT_EQ(dialogs.askText(QStringLiteral("Locate Product"), QStringLiteral("Prompt"),
                  QStringLiteral("text")),
        QString());
}

TEST_F(ShellDialogsTest, AskingAgainWhileItIsUpBringsTheSameDialogForward)
{
    QString second = QStringLiteral("not asked");
    whenDialogIsUp(window, [&](Dialog &dialog) {
        second = dialogs.askText(
            QStringLiteral("Locate Product"), QStringLiteral("Prompt"), QStringLiteral("x"));
        EXPECT_EQ(window.findChildren<Dialog *>().size(), 1);
        dialog.findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
    });
    EXPECT_EQ(dialogs.askText(QStringLiteral("Locate Product"), QStringLiteral("Prompt"),
                  QStringLiteral("pump")),
        QStringLiteral("pump"));
    EXPECT_EQ(second, QString());
}

} // namespace
