// The main window's Help menu, the toolbar's "Help" key and the About box, on the real main
// window with the fake help viewer.
#include "shellfixture.h"

#include "shell/frmabout.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class HelpMenuTest : public ShellTest
{
protected:
    QString helpFile() const { return folder.filePath(QStringLiteral("Tarnwick Help.chm")); }
};

TEST_F(HelpMenuTest, TheHelpMenuShowsTheStringTableCaptionsAndIsEnabled)
{
    frmMain *window = startAndWait();
    EXPECT_EQ(window->menuBar()->actions().last()->text(), QStringLiteral("&Help"));
    const MainWindowActions &actions = window->actions();
    EXPECT_EQ(
        actions.action(QStringLiteral("mnuHelpContents"))->text(), QStringLiteral("&Contents"));
    EXPECT_EQ(actions.action(QStringLiteral("mnuHelpSearchForHelpOn"))->text(),
        QStringLiteral("&Search For Help On..."));
    EXPECT_EQ(
        actions.action(QStringLiteral("mnuHelpAbout"))->text(), QStringLiteral("&About Tarnwick"));
    for (const char *name : { "mnuHelpContents", "mnuHelpSearchForHelpOn", "mnuHelpAbout" })
        EXPECT_TRUE(actions.action(QString::fromLatin1(name))->isEnabled()) << name;
}

TEST_F(HelpMenuTest, ContentsOpensTheHelpFileAtMain)
{
    frmMain *window = startAndWait();
    window->actions().action(QStringLiteral("mnuHelpContents"))->trigger();
    EXPECT_EQ(fakes->help.calls, QStringList { helpFile() + QStringLiteral(">Main|0|0") });
}

TEST_F(HelpMenuTest, SearchForHelpOnOpensTheHelpFileAtSearch)
{
    frmMain *window = startAndWait();
    window->actions().action(QStringLiteral("mnuHelpSearchForHelpOn"))->trigger();
    EXPECT_EQ(fakes->help.calls, QStringList { helpFile() + QStringLiteral(">Search|0|0") });
}

TEST_F(HelpMenuTest, TheToolbarHelpKeyOpensTheContents)
{
    frmMain *window = startAndWait();
    window->actions().button(QStringLiteral("Help"))->trigger();
    EXPECT_EQ(fakes->help.calls, QStringList { helpFile() + QStringLiteral(">Main|0|0") });
}

TEST_F(HelpMenuTest, AboutShowsTheAboutBoxModallyOverTheMainWindow)
{
    frmMain *window = startAndWait();
    QString title;
    QString version;
    bool modal = false;
    QWidget *owner = nullptr;
    QTimer::singleShot(0, [&] {
        auto *about = qobject_cast<frmAbout *>(QApplication::activeModalWidget());
        ASSERT_NE(about, nullptr);
        title = about->windowTitle();
        version = about->lblVersion()->text();
        modal = about->isModal();
        owner = about->parentWidget();
        about->okButton()->click();
    });
    window->actions().action(QStringLiteral("mnuHelpAbout"))->trigger();
    EXPECT_EQ(title, QStringLiteral("About Tarnwick"));
    EXPECT_EQ(version, aboutVersionText());
    EXPECT_TRUE(modal);
    EXPECT_EQ(owner, window);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "OK closed the box";
}

} // namespace
