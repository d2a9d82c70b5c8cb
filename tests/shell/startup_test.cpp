// Start-up through the splash window on the real main window: settings defaults and restored
// placement, the catalogue load and sort, the "test" diagnostic boxes, the tick wait and the
// start-up error messages.
#include "shellfixture.h"

#include "shell/gridview.h"

#include "catalogue/module1.h"
#include "shell/twips.h"
#include "shell/windowsettings.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QScreen>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QWindow>

#include <algorithm>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class StartupTest : public ShellTest
{
};

/// What the frame round a window adds to its inner area (the title bar, the borders).
QSize frameExtra(const QWidget *window)
{
    return window->frameGeometry().size() - window->size();
}

TEST_F(StartupTest, FirstRunOpensAtTwoThirdsOfTheScreenButAtLeastItsLeastSizeCentred)
{
    frmMain *window = startAndWait();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_DOUBLE_EQ(Twips::perPixel(window), 15.0);
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    // Two thirds of the screen, but 1120 × 720 as far as the screen has room for it, frame
    // included.
    EXPECT_EQ(window->size(),
        QSize(qRound(available.width() * 2.0 / 3), qRound(available.height() * 2.0 / 3))
            .expandedTo(QSize(1120, 720))
            .boundedTo(available.size() - frameExtra(window)));
    EXPECT_TRUE(available.contains(window->frameGeometry()));
    const QPoint offCentre = window->frameGeometry().center() - available.center();
    EXPECT_LE(
        offCentre.manhattanLength(), frameExtra(window).width() + frameExtra(window).height());
    EXPECT_EQ(window->screenSplit(), 50);
    GridView *grid = window->ui().GrdMain;
    const int caption = grid->horizontalHeader()->fontMetrics().horizontalAdvance(
        grid->model()->headerData(0, Qt::Horizontal).toString());
    EXPECT_GE(grid->columnWidth(0), caption) << "the Part Number caption is not cut off";
    EXPECT_EQ(module->AllProducts().Count(), 0);
    EXPECT_EQ(module->Catalogue().rowCount(), 0);
    EXPECT_EQ(module->DataFile, folder.filePath(QStringLiteral("twdata.dat")));
    EXPECT_TRUE(fakes->prompts.shown().empty()) << "a missing catalogue is the quiet first run";
    EXPECT_EQ(dialogs.asked, 0);
}

TEST_F(StartupTest, RestoresThePlacementAndSplitFromTheSettings)
{
    saveSetting(QStringLiteral("MainLeft"), QStringLiteral("1500"));
    saveSetting(QStringLiteral("MainTop"), QStringLiteral("1200"));
    saveSetting(QStringLiteral("MainWidth"), QStringLiteral("9000"));
    saveSetting(QStringLiteral("MainHeight"), QStringLiteral("7500"));
    saveSetting(QStringLiteral("ScreenSplit"), QStringLiteral("40"));
    saveSetting(QStringLiteral("Colwidth"), QStringLiteral("1500"));
    frmMain *window = startAndWait();
    EXPECT_EQ(window->pos(), QPoint(100, 80));
    EXPECT_EQ(window->size(), QSize(600, 500));
    EXPECT_EQ(window->screenSplit(), 40);
    EXPECT_EQ(window->ui().GrdMain->columnWidth(0), 100);
    const double share = double(window->ui().GrdMain->width()) / window->ui().Client->width();
    EXPECT_NEAR(share, 0.40, 0.01);
}

TEST_F(StartupTest, AStoredSplitOfZeroIsUsedAsFifty)
{
    saveSetting(QStringLiteral("ScreenSplit"), QStringLiteral("0"));
    EXPECT_EQ(startAndWait()->screenSplit(), 50);
}

TEST_F(StartupTest, ASplitThatLeavesTheTabControlNoRoomIsCut)
{
    saveSetting(QStringLiteral("MainWidth"), QStringLiteral("9000"));
    saveSetting(QStringLiteral("ScreenSplit"), QStringLiteral("100"));
    frmMain *window = startAndWait();
    EXPECT_EQ(window->size().width(), 600);
    EXPECT_EQ(window->screenSplit(), 66) << "the tab control keeps 200 of the 600 pixels";
    EXPECT_GE(window->ui().SSTabmain->width(), 180);
}

TEST_F(StartupTest, AHugeStoredSizeIsCutToTheScreenLikeAnyLargerOne)
{
    EXPECT_EQ(Twips::toPixels(1e30, 15.0), 1'000'000);
    EXPECT_EQ(Twips::toPixels(-1e30, 15.0), -1'000'000);
    EXPECT_EQ(Twips::toPixels(150.0, 15.0), 10);
    saveSetting(QStringLiteral("MainLeft"), QStringLiteral("0"));
    saveSetting(QStringLiteral("MainTop"), QStringLiteral("0"));
    saveSetting(QStringLiteral("MainWidth"), QStringLiteral("1e30"));
    saveSetting(QStringLiteral("MainHeight"), QStringLiteral("1E+30"));
    frmMain *window = startAndWait();
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(window->width(), available.width() - frameExtra(window).width());
    EXPECT_EQ(window->height(), available.height() - frameExtra(window).height());
}

TEST_F(StartupTest, DamagedSettingsStillGiveAUsableWindowAndAreNotWrittenBack)
{
    saveSetting(QStringLiteral("MainLeft"), QStringLiteral("0"));
    saveSetting(QStringLiteral("MainTop"), QStringLiteral("-442080"));
    saveSetting(QStringLiteral("MainWidth"), QStringLiteral("-795"));
    saveSetting(QStringLiteral("MainHeight"), QStringLiteral("491505"));
    saveSetting(QStringLiteral("ScreenSplit"), QStringLiteral("5000"));
    frmMain *window = startAndWait();
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(available.contains(window->frameGeometry()));
    EXPECT_GE(window->width(), qMin(560, available.width()) - frameExtra(window).width());
    EXPECT_EQ(window->height(), available.height() - frameExtra(window).height());
    EXPECT_EQ(window->screenSplit(), 50);
    EXPECT_GT(window->ui().GrdMain->width(), 100);
    EXPECT_GT(window->ui().TxtPrice->width(), 40);
    window->close();
    EXPECT_EQ(setting(QStringLiteral("MainTop")), QStringLiteral("-442080"));
    EXPECT_EQ(setting(QStringLiteral("MainWidth")), QStringLiteral("-795"));
    EXPECT_EQ(setting(QStringLiteral("MainHeight")), QStringLiteral("491505"));
    EXPECT_EQ(setting(QStringLiteral("ScreenSplit")), QStringLiteral("5000"))
        << "a value the user did not change is saved as it was stored";
}

// A part number's width stored on a large screen is kept to half the grid on this one, and
// written back as it was stored when the user leaves the column alone.
TEST_F(StartupTest, AWidePartNumberColumnIsCutForUseButNotWrittenBackCut)
{
    saveSetting(QStringLiteral("MainLeft"), QStringLiteral("1500"));
    saveSetting(QStringLiteral("MainTop"), QStringLiteral("1200"));
    saveSetting(QStringLiteral("MainWidth"), QStringLiteral("9000"));
    saveSetting(QStringLiteral("MainHeight"), QStringLiteral("7500"));
    saveSetting(QStringLiteral("Colwidth"), QStringLiteral("32767"));
    frmMain *window = startAndWait();
    EXPECT_LE(window->ui().GrdMain->columnWidth(0), window->ui().GrdMain->width() / 2 + 1);
    window->close();
    EXPECT_EQ(setting(QStringLiteral("Colwidth")), QStringLiteral("32767"));

    restart();
    mainWindow->ui().GrdMain->setColumnWidth(0, 120);
    mainWindow->close();
    EXPECT_EQ(setting(QStringLiteral("Colwidth")), QStringLiteral("1800")) << "changed: saved";
}

TEST_F(StartupTest, LoadsTheCatalogueSortedByPartNumberAndShowsTheFirstRow)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    frmMain *window = startAndWait();
    EXPECT_EQ(module->AllProducts().Count(), 3);
    ASSERT_EQ(module->Catalogue().rowCount(), 3);
    EXPECT_EQ(module->Catalogue().get(1, 1), Cell("A-100"));
    EXPECT_EQ(module->Catalogue().get(2, 1), Cell("B-200"));
    EXPECT_EQ(module->Catalogue().get(3, 1), Cell("C-300"));
    const QAbstractItemModel *grid = window->ui().GrdMain->model();
    EXPECT_EQ(grid->rowCount(), 3);
    EXPECT_EQ(grid->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Part Number"));
    EXPECT_EQ(grid->index(0, 2).data().toString(), QStringLiteral("$12.50"));
    EXPECT_EQ(module->QuoteTable().rowCount(), 250);
    EXPECT_EQ(module->QuoteTable().fieldCount(), 9);
    EXPECT_EQ(module->ScheduleTable().rowCount(), 5);
    EXPECT_EQ(module->ScheduleTable().fieldCount(), 2);
    EXPECT_EQ(window->ui().SSTabmain->currentIndex(), 0);
}

TEST_F(StartupTest, TheTestCommandLineShowsTheDiagnosticBoxesInOrder)
{
    folder.writeFile(QStringLiteral("twdata.dat"),
        catalogueLine({ "P1", "One" }) + catalogueLine({ "P2", "Two" }));
    fakes->prompts.answerMessage(MsgResult::Ok); // "array 1 is P1" has OK and Cancel
    fakes->prompts.answerMessage(MsgResult::Cancel); // the answer is ignored
    startAndWait(QStringLiteral("test"));
    const auto &shown = fakes->prompts.shown();
    const QString line1 = QString::fromUtf8(catalogueLine({ "P1", "One" }).chopped(2));
    const QString line2 = QString::fromUtf8(catalogueLine({ "P2", "Two" }).chopped(2));
    const QStringList expectedTexts { "Past splash.show", "Loading form main",
        "Past loading registry stuff", "Opened Filename", "read line " + line1, "array 1 is P1",
        "read line " + line2, "array 1 is P2" };
    EXPECT_EQ(fakes->prompts.texts(), expectedTexts);
    ASSERT_EQ(shown.size(), 8u);
    EXPECT_EQ(shown[0].title, QStringLiteral("Debug"));
    EXPECT_EQ(shown[1].title, QStringLiteral("test"));
    EXPECT_EQ(shown[2].title, QStringLiteral("test"));
    EXPECT_EQ(shown[3].title, QStringLiteral("test"));
    EXPECT_EQ(shown[4].title, QStringLiteral("Test"));
    EXPECT_EQ(shown[5].title, QStringLiteral("test"));
    EXPECT_EQ(shown[5].style, MsgStyle::OkCancel);
    EXPECT_EQ(shown[0].style, MsgStyle::OkOnly);
    EXPECT_EQ(module->AllProducts().Count(), 2);
}

TEST_F(StartupTest, OnlyTheExactTextTestSwitchesTheBoxesOn)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    for (const QString &commandLine :
        { QStringLiteral("Test"), QStringLiteral("test "), QStringLiteral("test x") }) {
        started = false;
        mainWindow.reset();
        splash.reset();
        fakes->prompts.clear();
        startAndWait(commandLine);
        EXPECT_TRUE(fakes->prompts.shown().empty()) << commandLine.toStdString();
    }
}

TEST_F(StartupTest, WithoutAPasswordTheSplashWaitsFifteenTicks)
{
    start();
    splash->show(); // as the program shows it
    EXPECT_NE(splash->windowHandle(), nullptr);
    EXPECT_FALSE(started) << "the main window must not appear before the ticks have passed";
    EXPECT_TRUE(QTest::qWaitFor([this] { return started; }, 5000));
    EXPECT_GE(splash->Tag.toInt(), FrmSplash1::TicksToWait);
    EXPECT_FALSE(splash->isVisible());
    // Unloaded: no window of its own is left for the desktop or assistive tools to list.
    EXPECT_EQ(splash->windowHandle(), nullptr);
    const QWindowList windows = QGuiApplication::topLevelWindows();
    EXPECT_EQ(std::count_if(windows.begin(), windows.end(),
                  [](const QWindow *window) { return window->title() == "Tarnwick"; }),
        1)
        << "the main window alone";
}

TEST_F(StartupTest, TheSplashIsFoundByItsNameWhileItIsUp)
{
    start();
    ASSERT_FALSE(started);
    EXPECT_EQ(splash->objectName(), QStringLiteral("FrmSplash1"));
    EXPECT_EQ(splash->accessibleDescription(), QStringLiteral("FrmSplash1"));
}

TEST_F(StartupTest, TheSplashShowsTheMainWindowAtExactlyTheFifteenthTick)
{
    tickMilliseconds = 3600000; // only the ticks sent below count, however slow the start is
    start();
    ASSERT_FALSE(started);
    ASSERT_EQ(splash->Tag.toInt(), 0) << "no tick may have passed during the start itself";
    for (int tick = 1; tick < FrmSplash1::TicksToWait; ++tick) {
        QMetaObject::invokeMethod(splash.get(), "Timer1_Timer", Qt::DirectConnection);
        ASSERT_FALSE(started) << "the main window appeared after tick " << tick;
    }
    QMetaObject::invokeMethod(splash.get(), "Timer1_Timer", Qt::DirectConnection);
    EXPECT_TRUE(started) << "the main window must appear at tick 15";
    EXPECT_EQ(FrmSplash1::TicksToWait, 15);
}

TEST_F(StartupTest, ATagOf1000EndsTheWaitAtTheNextTick)
{
    tickMilliseconds = 3600000; // only the ticks sent below count, however slow the start is
    start();
    ASSERT_FALSE(started);
    splash->endWait();
    EXPECT_EQ(splash->Tag, QStringLiteral("1000"));
    ASSERT_FALSE(started) << "the wait ends at a tick, not at once";
    QMetaObject::invokeMethod(splash.get(), "Timer1_Timer", Qt::DirectConnection);
    EXPECT_TRUE(started) << "one tick after the tag, not fifteen";
}

TEST_F(StartupTest, ASettingThatIsNoNumberIsReportedAndTheCatalogueStillLoads)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("MainWidth"), QStringLiteral("wide"));
    start();
    ASSERT_TRUE(started) << "after a start error the main window is shown at once";
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    const ShownPrompt &box = fakes->prompts.shown()[0];
    EXPECT_EQ(box.text,
        QStringLiteral("There was a problem opening the program. Error Message 13 "
                       "was recieved. Contact Tarnwick for the cause of the "
                       "error."));
    EXPECT_EQ(box.title, QStringLiteral("Error Message"));
    EXPECT_EQ(box.style, MsgStyle::OkOnly);
    EXPECT_EQ(module->AllProducts().Count(), 3);
    EXPECT_TRUE(mainWindow->isVisible());
    // Without a size that could be read the window opens as on a first run.
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(mainWindow->size(),
        placeMainWindow(QRect(), false, available, MinimumMainWindowSize)
            .size()
            .boundedTo(available.size() - frameExtra(mainWindow.get())));
}

TEST_F(StartupTest, TheStartErrorBoxKeepsTheMainWindowBackUntilItIsAnswered)
{
    folder.writeFile(QStringLiteral("twdata.dat"), sampleCatalogue());
    saveSetting(QStringLiteral("MainTop"), QStringLiteral("nan"));
    // The box stays up while the splash ticks past its wait, as a user reading it would.
    bool startedWhileShown = false;
    fakes->prompts.whileShown([&] {
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return splash && splash->Tag.toInt() >= FrmSplash1::TicksToWait + 2; }, 5000));
        startedWhileShown = started;
    });
    start();
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Error Message"));
    EXPECT_FALSE(startedWhileShown) << "the main window came up behind the error box";
    ASSERT_TRUE(started) << "once the box is answered the main window is shown at once";
    EXPECT_TRUE(mainWindow->isVisible());
    EXPECT_EQ(module->AllProducts().Count(), 3);
}

TEST_F(StartupTest, TheInstallationErrorBoxHasItsTitleAndStyle)
{
    EXPECT_EQ(FrmSplash1::InstallErrorMessage,
        QStringLiteral("Tarnwick did not install correctly. Would you like to see possible "
                       "remedies?"));
    EXPECT_EQ(FrmSplash1::installErrorTitle(53), QStringLiteral("Error53"));
}

TEST_F(StartupTest, AnUnreadableCatalogueIsReportedOnceAtStartUp)
{
    QByteArray binary;
    for (int i = 0; i < 4096; ++i)
        binary += char((i * 37 + 11) % 256);
    folder.writeFile(QStringLiteral("twdata.dat"), binary);
    startAndWait();
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    EXPECT_TRUE(
        fakes->prompts.shown()[0].text.contains(QStringLiteral("could not be read completely")));
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Catalogue"));
    EXPECT_EQ(fakes->prompts.shown()[0].style, MsgStyle::Exclamation);
    EXPECT_EQ(folder.readFile(QStringLiteral("twdata.dat")), binary)
        << "nothing is written at start";
}

} // namespace
