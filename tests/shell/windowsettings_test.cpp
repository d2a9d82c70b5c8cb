#include "shell/settingskeys.h"
#include "shell/windowsettings.h"
#include "support/fakesettingsstore.h"

#include <gtest/gtest.h>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

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
    saveMainWindowSettings(settings, values, EnUs);
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "MainLeft"), QStringLiteral("1234.5"));
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "ScreenSplit"), QStringLiteral("37"));
    EXPECT_EQ(settings.get("Tarnwick", "Settings", "Colwidth"), QStringLiteral("1650"));
    EXPECT_EQ(readMainWindowSettings(settings, EnUs).values, values);
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
