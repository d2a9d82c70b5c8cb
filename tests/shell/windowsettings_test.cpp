#include "shell/settingskeys.h"
#include "shell/windowsettings.h"
#include "support/fakesettingsstore.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

using tarnwick::test::EnUs;

void store(FakeSettingsStore &settings, QLatin1String key, const QString &value)
{
    settings.save(SettingsKeys::Application, SettingsKeys::Section, key, value);
}

TEST(WindowSettingsTest, DefaultsWhenNothingIsStored)
{
    FakeSettingsStore settings;
    const MainWindowSettingsRead read = readMainWindowSettings(settings, EnUs);
    EXPECT_FALSE(read.error.has_value());
    EXPECT_EQ(read.values, MainWindowSettings {});
    EXPECT_EQ(read.values.left, 1000.0f);
    EXPECT_EQ(read.values.height, 6500.0f);
    EXPECT_EQ(read.values.screenSplit, 50);
    EXPECT_EQ(read.values.colwidth, 1100);
}

TEST(WindowSettingsTest, SavesTheTextFormsAndReadsThemBack)
{
    FakeSettingsStore settings;
    const MainWindowSettings values { 1234.5f, 15, 9000, 6495, 37, 1650 };
    EXPECT_EQ(saveMainWindowSettings(settings, values, EnUs), QString());
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "MainLeft"), QStringLiteral("1234.5"));
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "ScreenSplit"), QStringLiteral("37"));
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "Colwidth"), QStringLiteral("1650"));
    EXPECT_EQ(readMainWindowSettings(settings, EnUs).values, values);
}

TEST(WindowSettingsTest, AStoreThatCannotBeWrittenGivesItsReasonAndKeepsTheValues)
{
    FakeSettingsStore settings;
    store(settings, SettingsKeys::MainLeft, QStringLiteral("2000"));
    settings.failWrites(QStringLiteral("the disk is full"));
    const int savesBefore = settings.saveCount();
    EXPECT_EQ(
        saveMainWindowSettings(settings, MainWindowSettings { 1, 2, 3000, 4000, 5, 600 }, EnUs),
        QStringLiteral("the disk is full"));
    EXPECT_EQ(settings.saveCount() - savesBefore, 1) << "the first failure ends the attempt";
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "MainLeft"), QStringLiteral("2000"));
    EXPECT_EQ(settingsNotSavedMessage(QStringLiteral("the disk is full")),
        QStringLiteral("The window's position and size could not be saved: the disk is full. The "
                       "window will open as before at the next start."));
}

TEST(WindowSettingsTest, SettingsAreStoredWithADotInEveryLocale)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    const QLocale french(QLocale::French, QLocale::France);
    FakeSettingsStore settings;
    const MainWindowSettings values { 1234.5f, 15.25f, 12000, 6495, 37, 1650 };
    saveMainWindowSettings(settings, values, german);
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "MainLeft"), QStringLiteral("1234.5"));
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "MainTop"), QStringLiteral("15.25"));
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "MainWidth"), QStringLiteral("12000"));
    for (const QLocale &locale : { german, french, EnUs, QLocale::c() })
        EXPECT_EQ(readMainWindowSettings(settings, locale).values, values);
}

TEST(WindowSettingsTest, CommaValuesOfEarlierVersionsAreReadInEveryLocale)
{
    FakeSettingsStore settings;
    store(settings, SettingsKeys::MainLeft, QStringLiteral("1234,5"));
    const MainWindowSettingsRead read = readMainWindowSettings(settings, EnUs);
    EXPECT_FALSE(read.error.has_value());
    EXPECT_EQ(read.values.left, 1234.5f);
}

TEST(WindowSettingsTest, AValueThatIsNoNumberStopsTheReadWithTypeMismatch)
{
    FakeSettingsStore settings;
    store(settings, SettingsKeys::MainLeft, QStringLiteral("2000"));
    store(settings, SettingsKeys::MainWidth, QStringLiteral("wide"));
    store(settings, SettingsKeys::Colwidth, QStringLiteral("900"));
    const MainWindowSettingsRead read = readMainWindowSettings(settings, EnUs);
    ASSERT_TRUE(read.error.has_value());
    EXPECT_EQ(read.error->number(), 13);
    EXPECT_EQ(read.values.left, 2000.0f);
    EXPECT_EQ(read.values.width, 9000.0f) << "values from the failing one on keep their defaults";
    EXPECT_EQ(read.values.colwidth, 1100);
}

TEST(WindowSettingsTest, ASplitBeyondSixteenBitsOverflows)
{
    FakeSettingsStore settings;
    store(settings, SettingsKeys::ScreenSplit, QStringLiteral("32768"));
    const MainWindowSettingsRead read = readMainWindowSettings(settings, EnUs);
    ASSERT_TRUE(read.error.has_value());
    EXPECT_EQ(read.error->number(), 6);
}

TEST(WindowSettingsTest, SectionNamesMatchWithoutRegardToCase)
{
    FakeSettingsStore settings;
    settings.save("Tarnwick", "SETTINGS", "UserPassword", "pw");
    EXPECT_EQ(readUserPassword(settings), QStringLiteral("pw"));
}

} // namespace

namespace {

const QRect Screen1280(0, 0, 1280, 860);
const QSize Minimum(560, 400);

TEST(WindowPlacementTest, AStoredFrameThatFitsIsKeptExactly)
{
    const QRect stored(67, 67, 600, 433);
    EXPECT_EQ(placeMainWindow(stored, true, Screen1280, Minimum), QRect(67, 67, 600, 433));
}

TEST(WindowPlacementTest, TheFrameTheDesktopAddsIsBroughtOntoTheScreenWithTheWindow)
{
    // A 1366 × 768 laptop with a 40-pixel taskbar; the desktop's frame has a 20-pixel title.
    const QRect available(0, 0, 1366, 728);
    const QMargins title(1, 20, 1, 1);
    // Placed by its inner area at the top of the screen, the frame ends 21 pixels too low.
    EXPECT_EQ(
        fitFrameOnScreen(QRect(123, 20, 1120, 728), title, available), QRect(123, 20, 1120, 707));
    // Cut to the screen's size before the frame was known: the frame is the screen.
    EXPECT_EQ(fitFrameOnScreen(QRect(1, 20, 1366, 728), title, available), QRect(1, 20, 1364, 707));
    // A window that fits keeps its place and size.
    EXPECT_EQ(
        fitFrameOnScreen(QRect(200, 150, 900, 500), title, available), QRect(200, 150, 900, 500));
    // One whose frame reaches past the bottom moves up just far enough.
    EXPECT_EQ(
        fitFrameOnScreen(QRect(200, 300, 900, 500), title, available), QRect(200, 227, 900, 500));
    // A screen that does not start at 0 (a second monitor, a taskbar at the top).
    EXPECT_EQ(fitFrameOnScreen(QRect(1366, 0, 800, 600), title, QRect(1366, 30, 1920, 1050)),
        QRect(1367, 50, 800, 600));
}

TEST(WindowPlacementTest, AFittedPlacementIsSavedOnlyWhereTheStoredOneWasApplied)
{
    MainWindowSettings stored;
    stored.height = 491505; // damaged: the start applied another height
    MainWindowSettings applied = stored;
    applied.height = 11520;
    MainWindowSettings fitted = applied;
    fitted.top = 300;
    fitted.height = 11200;
    followFittedPlacement(stored, applied, fitted);
    EXPECT_EQ(stored.top, 300.0f) << "applied as stored: the fit is what is saved";
    EXPECT_EQ(stored.height, 491505.0f) << "changed by the start: stays as stored";
    EXPECT_EQ(applied.top, 300.0f);
    EXPECT_EQ(applied.height, 11200.0f);
    EXPECT_EQ(stored.left, MainWindowSettings().left);
}

TEST(WindowPlacementTest, AFirstRunTakesTwoThirdsOfALargeScreenCentred)
{
    const QRect screen(0, 0, 1920, 1080);
    const QRect frame = placeMainWindow(QRect(67, 67, 600, 433), false, screen, Minimum);
    EXPECT_EQ(frame.size(), QSize(1280, 720));
    EXPECT_EQ(frame.center(), screen.center());
}

TEST(WindowPlacementTest, AFirstRunOnASmallerScreenOpensAtTheLeastFirstRunSizeCentred)
{
    // Two thirds of 1280 × 860 (853 × 573) would hide the quote's prices.
    const QRect frame = placeMainWindow(QRect(67, 67, 600, 433), false, Screen1280, Minimum);
    EXPECT_EQ(frame.size(), QSize(1120, 720));
    EXPECT_EQ(frame.center(), Screen1280.center());
}

TEST(WindowPlacementTest, AFirstRunNeverGoesBeyondTheScreen)
{
    const QRect screen(0, 0, 1024, 600);
    EXPECT_EQ(placeMainWindow(QRect(), false, screen, Minimum), screen);
}

TEST(WindowPlacementTest, HugeValuesAreCutToTheScreen)
{
    const QRect frame = placeMainWindow(QRect(0, -29472, 53, 32767), true, Screen1280, Minimum);
    EXPECT_EQ(frame, QRect(0, 0, 560, 860));
}

TEST(WindowPlacementTest, ZeroAndNegativeSizesGetTheMinimumOnTheScreen)
{
    EXPECT_EQ(placeMainWindow(QRect(100, 100, 0, 0), true, Screen1280, Minimum),
        QRect(100, 100, 560, 400));
    EXPECT_EQ(placeMainWindow(QRect(1200, 900, -50, -80), true, Screen1280, Minimum),
        QRect(720, 460, 560, 400));
}

TEST(WindowPlacementTest, AScreenSmallerThanTheMinimumBoundsIt)
{
    const QRect small(0, 0, 400, 300);
    EXPECT_EQ(placeMainWindow(QRect(10, 10, 0, 0), true, small, Minimum), small);
}

TEST(WindowPlacementTest, ASplitOutsideAnyDragStartsAtFifty)
{
    EXPECT_EQ(usableScreenSplit(5000, 25), 50);
    EXPECT_EQ(usableScreenSplit(-3, 25), 50);
    EXPECT_EQ(usableScreenSplit(0, 25), 50);
    EXPECT_EQ(usableScreenSplit(37, 25), 37);
    EXPECT_EQ(usableScreenSplit(90, 25), 75) << "the tab control keeps its share";
}

TEST(WindowPlacementTest, UnchangedValuesAreSavedAsTheyWereStored)
{
    const MainWindowSettings stored { 0, -442080, 795, 491505, 5000, 1100 };
    const MainWindowSettings applied { 0, 0, 8400, 12900, 50, 1100 };
    MainWindowSettings now = applied;
    EXPECT_EQ(settingsToSave(stored, applied, now), stored)
        << "a window the user did not touch writes back what was stored";
    now.width = 9000;
    now.screenSplit = 40;
    const MainWindowSettings saved = settingsToSave(stored, applied, now);
    EXPECT_EQ(saved.width, 9000.0f);
    EXPECT_EQ(saved.screenSplit, 40);
    EXPECT_EQ(saved.height, 491505.0f);
}

TEST(WindowPlacementTest, ReadTellsWhetherASizeIsStored)
{
    FakeSettingsStore settings;
    EXPECT_FALSE(readMainWindowSettings(settings, EnUs).sizeStored);
    store(settings, SettingsKeys::MainWidth, QStringLiteral("9000"));
    EXPECT_TRUE(readMainWindowSettings(settings, EnUs).sizeStored);
}

TEST(WindowPlacementTest, ADamagedPlacementIsNoStoredSize)
{
    FakeSettingsStore settings;
    store(settings, SettingsKeys::MainWidth, QStringLiteral("9000"));
    store(settings, SettingsKeys::MainHeight, QStringLiteral("7000"));
    store(settings, SettingsKeys::MainTop, QStringLiteral("nan"));
    const MainWindowSettingsRead read = readMainWindowSettings(settings, EnUs);
    ASSERT_TRUE(read.error.has_value());
    EXPECT_FALSE(read.sizeStored) << "the window opens as on a first run";

    // A damaged value after the placement leaves the stored size in force.
    store(settings, SettingsKeys::MainTop, QStringLiteral("500"));
    store(settings, SettingsKeys::Colwidth, QStringLiteral("nan"));
    const MainWindowSettingsRead later = readMainWindowSettings(settings, EnUs);
    ASSERT_TRUE(later.error.has_value());
    EXPECT_TRUE(later.sizeStored);
    EXPECT_EQ(later.values.height, 7000.0f);
}

} // namespace
