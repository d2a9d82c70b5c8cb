// The About box, the system-information launcher and the numbered captions of the string
// table.
#include "shell/frmabout.h"
#include "shell/loadnumberedcaptions.h"
#include "shell/stringtable.h"
#include "shell/systeminfo.h"

#include "platform/appenvironment.h"
#include "support/fakeservices.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeWidget>

#include <gtest/gtest.h>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

TEST(AboutVersion, ShowsThreeNumbersWithoutLeadingZeros)
{
    EXPECT_EQ(aboutVersionText(1, 3, 1), QStringLiteral("Version 1.3.1"));
    EXPECT_EQ(aboutVersionText(2, 0, 10), QStringLiteral("Version 2.0.10"));
}

TEST(AboutVersion, ComesFromTheBuild)
{
    EXPECT_EQ(
        aboutVersionText(), QStringLiteral("Version ") + QStringLiteral(TARNWICK_VERSION_STRING));
    EXPECT_EQ(QStringLiteral(TARNWICK_VERSION_STRING).count(QLatin1Char('.')), 2);
}

TEST(StringTable, HoldsTheHelpMenuAndAboutEntries)
{
    EXPECT_EQ(StringTable::LoadResString(1026), QStringLiteral("&Help"));
    EXPECT_EQ(StringTable::LoadResString(1027), QStringLiteral("&Contents"));
    EXPECT_EQ(StringTable::LoadResString(1028), QStringLiteral("&Search For Help On..."));
    EXPECT_EQ(StringTable::LoadResString(1029), QStringLiteral("&About "));
    EXPECT_EQ(StringTable::LoadResString(1067), QStringLiteral("About Tarnwick"));
    EXPECT_EQ(StringTable::LoadResString(1068), QStringLiteral("&System Info..."));
    EXPECT_FALSE(StringTable::LoadResString(999).has_value());
}

TEST(NumberedCaption, ANumberIsReplacedAndOtherTextStays)
{
    const CaptionLookup lookup = &StringTable::LoadResString;
    EXPECT_EQ(numberedCaption(QStringLiteral("1027"), lookup), QStringLiteral("&Contents"));
    EXPECT_EQ(numberedCaption(QStringLiteral(" 1067 "), lookup), QStringLiteral("About Tarnwick"));
    EXPECT_FALSE(numberedCaption(QStringLiteral("&Contents"), lookup).has_value());
    EXPECT_FALSE(numberedCaption(QStringLiteral("1027a"), lookup).has_value());
    EXPECT_FALSE(numberedCaption(QString(), lookup).has_value());
    EXPECT_FALSE(numberedCaption(QStringLiteral("4711"), lookup).has_value())
        << "a number the table does not hold leaves the caption";
}

/// A window with one control of every kind, some numeric and some not.
struct CaptionWindow
{
    CaptionWindow()
    {
        window.setProperty("Tag", QStringLiteral("1067"));
        window.setWindowTitle(QStringLiteral("form"));
        label = new QLabel(QStringLiteral("1027"), &window);
        plain = new QLabel(QStringLiteral("Part number"), &window);
        unknown = new QPushButton(QStringLiteral("4711"), &window);
        button = new QPushButton(QStringLiteral("1068"), &window);
        menu = window.menuBar()->addMenu(QStringLiteral("1026"));
        item = menu->addAction(QStringLiteral("1028"));
        tabs = new QTabWidget(&window);
        tabs->addTab(new QWidget, QStringLiteral("1029"));
        tabs->setTabToolTip(0, QStringLiteral("1027"));
        tabs->addTab(new QWidget, QStringLiteral("Quote"));
        tool = window.addToolBar(QStringLiteral("tools"))->addAction(QStringLiteral("Help"));
        tool->setToolTip(QStringLiteral("1028"));
        list = new QTreeWidget(&window);
        list->setHeaderLabels({ QStringLiteral("1026"), QStringLiteral("Price") });
    }
    QMainWindow window;
    QLabel *label, *plain;
    QPushButton *unknown, *button;
    QMenu *menu;
    QAction *item, *tool;
    QTabWidget *tabs;
    QTreeWidget *list;
};

TEST(LoadNumberedCaptions, ReplacesEveryKindOfNumericCaption)
{
    CaptionWindow form;
    LoadNumberedCaptions(&form.window);
    EXPECT_EQ(form.window.windowTitle(), QStringLiteral("About Tarnwick"));
    EXPECT_EQ(form.label->text(), QStringLiteral("&Contents"));
    EXPECT_EQ(form.button->text(), QStringLiteral("&System Info..."));
    EXPECT_EQ(form.menu->title(), QStringLiteral("&Help"));
    EXPECT_EQ(form.item->text(), QStringLiteral("&Search For Help On..."));
    EXPECT_EQ(form.tabs->tabText(0), QStringLiteral("&About "));
    EXPECT_EQ(form.tabs->tabToolTip(0), QStringLiteral("&Contents"));
    EXPECT_EQ(form.tool->toolTip(), QStringLiteral("&Search For Help On..."));
    EXPECT_EQ(form.list->headerItem()->text(0), QStringLiteral("&Help"));
}

TEST(LoadNumberedCaptions, LeavesTextAndUnknownNumbersAloneAndGoesOn)
{
    CaptionWindow form;
    LoadNumberedCaptions(&form.window);
    EXPECT_EQ(form.plain->text(), QStringLiteral("Part number"));
    EXPECT_EQ(form.tabs->tabText(1), QStringLiteral("Quote"));
    EXPECT_EQ(form.tool->text(), QStringLiteral("Help"));
    EXPECT_EQ(form.list->headerItem()->text(1), QStringLiteral("Price"));
    EXPECT_EQ(form.unknown->text(), QStringLiteral("4711"))
        << "the control whose entry is missing keeps its caption";
    EXPECT_EQ(form.button->text(), QStringLiteral("&System Info..."))
        << "the controls after it are still replaced";
}

TEST(LoadNumberedCaptions, AFailingLookupAffectsOnlyItsControl)
{
    CaptionWindow form;
    LoadNumberedCaptions(&form.window, [](int id) -> std::optional<QString> {
        if (id == 1027)
            return std::nullopt;
        return StringTable::LoadResString(id);
    });
    EXPECT_EQ(form.label->text(), QStringLiteral("1027"));
    EXPECT_EQ(form.tabs->tabToolTip(0), QStringLiteral("1027"));
    EXPECT_EQ(form.item->text(), QStringLiteral("&Search For Help On..."));
    EXPECT_EQ(form.window.windowTitle(), QStringLiteral("About Tarnwick"));
}

TEST(SystemInfoPrograms, TheCurrentDesktopsOwnProgramComesFirst)
{
    const QList<SystemInfoProgram> kde = SystemInfo::linuxPrograms(QStringLiteral("KDE"));
    ASSERT_FALSE(kde.isEmpty());
    EXPECT_EQ(kde.first().program, QStringLiteral("kinfocenter"));
    const QList<SystemInfoProgram> gnome =
        SystemInfo::linuxPrograms(QStringLiteral("ubuntu:GNOME"));
    EXPECT_EQ(gnome.first().program, QStringLiteral("gnome-control-center"));
    EXPECT_EQ(gnome.first().arguments, QStringList { QStringLiteral("info-overview") });
    EXPECT_EQ(SystemInfo::linuxPrograms(QStringLiteral("XFCE")).first().program,
        QStringLiteral("xfce4-about"));
    EXPECT_EQ(SystemInfo::linuxPrograms(QString()).size(), kde.size());
}

class SystemInfoTest : public ::testing::Test
{
protected:
    FakeServices fakes { AppEnvironment(QStringLiteral("/opt/tarnwick"), QString()) };
};

TEST_F(SystemInfoTest, WhenNothingIsInstalledTheMessageIsShownAndNothingRuns)
{
    EXPECT_FALSE(RunSystemInfo(fakes.launcher, fakes.prompts, QStringLiteral("GNOME")));
    EXPECT_TRUE(fakes.launcher.starts.empty());
    ASSERT_EQ(fakes.prompts.shown().size(), 1u);
    EXPECT_EQ(fakes.prompts.shown()[0].text,
        QStringLiteral("System Information Is Unavailable At This Time"));
    EXPECT_EQ(fakes.prompts.shown()[0].style, MsgStyle::OkOnly);
    EXPECT_FALSE(fakes.prompts.shown()[0].title.isEmpty());
}

TEST_F(SystemInfoTest, TheFirstInstalledProgramIsStartedShown)
{
    fakes.launcher.installed =
        QStringList { QStringLiteral("hardinfo"), QStringLiteral("kinfocenter") };
    EXPECT_TRUE(RunSystemInfo(fakes.launcher, fakes.prompts, QStringLiteral("GNOME")));
    ASSERT_EQ(fakes.launcher.starts.size(), 1u);
    EXPECT_EQ(fakes.launcher.starts[0].program, QStringLiteral("/usr/bin/kinfocenter"));
    EXPECT_TRUE(fakes.launcher.starts[0].shown);
    EXPECT_TRUE(fakes.prompts.shown().empty());
}

TEST_F(SystemInfoTest, AProgramThatCannotStartLeadsToTheMessage)
{
    fakes.launcher.installed = QStringList { QStringLiteral("hardinfo") };
    fakes.launcher.succeed = false;
    EXPECT_FALSE(RunSystemInfo(fakes.launcher, fakes.prompts, QString()));
    ASSERT_EQ(fakes.prompts.shown().size(), 1u);
    EXPECT_EQ(fakes.prompts.shown()[0].text, SystemInfo::UnavailableMessage);
}

class AboutBoxTest : public SystemInfoTest
{
protected:
    AppServices services = fakes.services();
};

TEST_F(AboutBoxTest, ShowsCaptionIconVersionAndButtons)
{
    frmAbout about(services);
    EXPECT_EQ(about.windowTitle(), QStringLiteral("About Tarnwick"));
    EXPECT_EQ(about.lblVersion()->text(), aboutVersionText());
    EXPECT_FALSE(about.picIcon()->pixmap().isNull());
    EXPECT_EQ(about.cmdSysInfo()->text(), QStringLiteral("&System Info..."));
    EXPECT_EQ(about.cmdSysInfo()->objectName(), QStringLiteral("cmdSysInfo"));
    EXPECT_EQ(about.okButton()->objectName(), QStringLiteral("CmdOK"));
    EXPECT_EQ(about.okButton()->accessibleDescription(), QStringLiteral("CmdOK"));
}

TEST_F(AboutBoxTest, OkClosesTheBox)
{
    frmAbout about(services);
    about.show();
    about.okButton()->click();
    EXPECT_FALSE(about.isVisible());
    EXPECT_EQ(about.result(), QDialog::Accepted);
}

TEST_F(AboutBoxTest, SystemInfoWithNothingInstalledShowsTheMessage)
{
    frmAbout about(services);
    about.cmdSysInfo()->click();
    EXPECT_TRUE(fakes.launcher.starts.empty());
    ASSERT_EQ(fakes.prompts.shown().size(), 1u);
    EXPECT_EQ(fakes.prompts.shown()[0].text, SystemInfo::UnavailableMessage);
}

} // namespace
