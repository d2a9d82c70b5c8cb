#include "platform/qt/qtsettingsstore.h"

#include "support/diskfaults.h"
#include "support/tempappfolder.h"

#include <QDir>
#include <QFile>
#include <QSettings>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using test::TempAppFolder;

const QString App = QStringLiteral("TarnwickSettingsTest");
const QString Section = QStringLiteral("Settings");

class QtSettingsStoreTest : public ::testing::Test
{
protected:
    // On Windows the store is the real registry, so the test application's key is removed.
    void TearDown() override { QtSettingsStore::openApplication(App)->clear(); }

    /// The INI file of App under the redirected user configuration folder.
    QString iniPath() const
    {
        return m_folder.filePath(QStringLiteral("settings/%1/settings.ini").arg(App));
    }
    QByteArray iniText() const
    {
        QFile file(iniPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    TempAppFolder m_folder;
    QtSettingsStore m_store;
};

TEST_F(QtSettingsStoreTest, MissingKeyGivesTheDefault)
{
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("MainLeft"), QStringLiteral("1000")),
        QStringLiteral("1000"));
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("UserPassword")), QString());
}

TEST_F(QtSettingsStoreTest, SavedValueIsReadBack)
{
    m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("1234"));
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("MainLeft"), QStringLiteral("1000")),
        QStringLiteral("1234"));
}

TEST_F(QtSettingsStoreTest, SavedEmptyTextIsNotTheDefault)
{
    m_store.save(App, Section, QStringLiteral("UserPassword"), QString());
    EXPECT_EQ(
        m_store.get(App, Section, QStringLiteral("UserPassword"), QStringLiteral("x")), QString());
}

TEST_F(QtSettingsStoreTest, SaveOverwrites)
{
    m_store.save(App, Section, QStringLiteral("ScreenSplit"), QStringLiteral("40"));
    m_store.save(App, Section, QStringLiteral("ScreenSplit"), QStringLiteral("60"));
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("ScreenSplit")), QStringLiteral("60"));
}

TEST_F(QtSettingsStoreTest, RemovedKeyGivesTheDefaultAgainAndOthersStay)
{
    m_store.save(App, Section, QStringLiteral("MainTop"), QStringLiteral("200"));
    m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("300"));
    m_store.remove(App, Section, QStringLiteral("MainTop"));
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("MainTop"), QStringLiteral("1000")),
        QStringLiteral("1000"));
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("MainLeft")), QStringLiteral("300"));
    EXPECT_FALSE(iniText().contains("MainTop"));
}

TEST_F(QtSettingsStoreTest, RemovingAMissingOrEmptyKeyChangesNothing)
{
    m_store.save(App, Section, QStringLiteral("Colwidth"), QStringLiteral("1100"));
    m_store.remove(App, Section, QStringLiteral("NoSuchKey"));
    m_store.remove(App, Section, QString());
    m_store.remove(App, QStringLiteral("NoSuchSection"), QStringLiteral("Colwidth"));
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("Colwidth")), QStringLiteral("1100"));
}

TEST_F(QtSettingsStoreTest, SectionNamesMatchWithoutRegardToCase)
{
    m_store.save(
        App, QStringLiteral("Settings"), QStringLiteral("Colwidth"), QStringLiteral("900"));
    EXPECT_EQ(m_store.get(App, QStringLiteral("settings"), QStringLiteral("Colwidth")),
        QStringLiteral("900"));
    m_store.save(
        App, QStringLiteral("SETTINGS"), QStringLiteral("Colwidth"), QStringLiteral("950"));
    EXPECT_EQ(m_store.get(App, QStringLiteral("Settings"), QStringLiteral("Colwidth")),
        QStringLiteral("950"));
    m_store.remove(App, QStringLiteral("sEtTiNgS"), QStringLiteral("Colwidth"));
    EXPECT_EQ(m_store.get(App, QStringLiteral("Settings"), QStringLiteral("Colwidth"),
                  QStringLiteral("1100")),
        QStringLiteral("1100"));
}

TEST_F(QtSettingsStoreTest, ExistingSectionKeepsItsSpelling)
{
    m_store.save(App, QStringLiteral("settings"), QStringLiteral("MainLeft"), QStringLiteral("1"));
    m_store.save(App, QStringLiteral("Settings"), QStringLiteral("MainTop"), QStringLiteral("2"));
    const std::unique_ptr<QSettings> settings = QtSettingsStore::openApplication(App);
    EXPECT_EQ(settings->childGroups(), QStringList { QStringLiteral("settings") });
    EXPECT_EQ(QtSettingsStore::storedSectionName(*settings, QStringLiteral("SETTINGS")),
        QStringLiteral("settings"));
    EXPECT_EQ(QtSettingsStore::storedSectionName(*settings, QStringLiteral("Other")),
        QStringLiteral("Other"));
}

TEST_F(QtSettingsStoreTest, SectionsAndApplicationsAreSeparate)
{
    const QString otherApp = App + QStringLiteral("Other");
    m_store.save(App, QStringLiteral("One"), QStringLiteral("Key"), QStringLiteral("1"));
    m_store.save(App, QStringLiteral("Two"), QStringLiteral("Key"), QStringLiteral("2"));
    m_store.save(otherApp, QStringLiteral("One"), QStringLiteral("Key"), QStringLiteral("3"));
    EXPECT_EQ(m_store.get(App, QStringLiteral("One"), QStringLiteral("Key")), QStringLiteral("1"));
    EXPECT_EQ(m_store.get(App, QStringLiteral("Two"), QStringLiteral("Key")), QStringLiteral("2"));
    EXPECT_EQ(
        m_store.get(otherApp, QStringLiteral("One"), QStringLiteral("Key")), QStringLiteral("3"));
    QtSettingsStore::openApplication(otherApp)->clear();
}

TEST_F(QtSettingsStoreTest, KeysAreUsedAsGiven)
{
    m_store.save(App, Section, QStringLiteral("NoIncludes"), QStringLiteral("1"));
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("NoIncludes")), QStringLiteral("1"));
#ifndef Q_OS_WIN
    // The INI file keeps keys case-sensitive (the registry would not).
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("noincludes"), QStringLiteral("d")),
        QStringLiteral("d"));
#endif
}

TEST_F(QtSettingsStoreTest, ValuesSurviveANewStore)
{
    m_store.save(App, Section, QStringLiteral("MainWidth"), QStringLiteral("9000"));
    const QtSettingsStore another;
    EXPECT_EQ(another.get(App, Section, QStringLiteral("MainWidth")), QStringLiteral("9000"));
}

#ifndef Q_OS_WIN
TEST_F(QtSettingsStoreTest, IniFileIsWrittenAtOnceUnderTheUserFolder)
{
    m_store.save(App, Section, QStringLiteral("MainHeight"), QStringLiteral("6500"));
    EXPECT_TRUE(QFile::exists(iniPath())) << iniPath().toStdString();
    const QByteArray text = iniText();
    EXPECT_TRUE(text.contains("[Settings]")) << text.constData();
    EXPECT_TRUE(text.contains("MainHeight=6500")) << text.constData();
}

TEST_F(QtSettingsStoreTest, SectionWrittenByHandInOtherCaseIsFound)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(iniPath()).path()));
    QFile file(iniPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[SETTINGS]\nScreenSplit=30\n");
    file.close();
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("ScreenSplit")), QStringLiteral("30"));
    m_store.save(App, Section, QStringLiteral("Colwidth"), QStringLiteral("800"));
    EXPECT_FALSE(iniText().contains("[Settings]")) << iniText().constData();
    EXPECT_TRUE(iniText().contains("Colwidth=800"));
}

TEST_F(QtSettingsStoreTest, ASuccessfulSaveLeavesOnlyTheIniFile)
{
    EXPECT_TRUE(m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("1")));
    EXPECT_TRUE(m_store.writeError().isEmpty());
    EXPECT_TRUE(m_store.remove(App, Section, QStringLiteral("MainLeft")));
    EXPECT_TRUE(m_store.save(App, Section, QStringLiteral("MainTop"), QStringLiteral("2")));
    EXPECT_EQ(QDir(QFileInfo(iniPath()).path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
        QStringList { QStringLiteral("settings.ini") });
}

TEST_F(QtSettingsStoreTest, ValuesOfTheSameLengthSavedInARowAreReadBack)
{
    // QSettings takes a file of unchanged size and time for the one it has read.
    for (int value = 1000; value < 1040; ++value) {
        ASSERT_TRUE(m_store.save(App, Section, QStringLiteral("MainLeft"), QString::number(value)));
        ASSERT_EQ(m_store.get(App, Section, QStringLiteral("MainLeft")), QString::number(value));
    }
}

TEST_F(QtSettingsStoreTest, ASettingsFolderThatTakesNoNewFilesKeepsTheOldFile)
{
    ASSERT_TRUE(m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("1234")));
    const QByteArray before = iniText();
    const QString settingsFolder = QFileInfo(iniPath()).path();
    bool saved = true;
    {
        // Everything on the way to the settings folder opens for others to read.
        QFile::setPermissions(
            m_folder.filePath(QStringLiteral("settings")), QFileDevice::Permissions(0x7755));
        test::UnwritableFolder readOnly(settingsFolder, m_folder.path());
        ASSERT_TRUE(readOnly.blocksNewFiles());
        saved = m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("99"));
    }
    EXPECT_FALSE(saved);
    EXPECT_EQ(m_store.writeError(), QStringLiteral("you have no permission to write there"))
        << m_store.writeError().toStdString();
    EXPECT_EQ(iniText(), before);
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("MainLeft")), QStringLiteral("1234"));
    EXPECT_EQ(QDir(settingsFolder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
        QStringList { QStringLiteral("settings.ini") });
}

TEST_F(QtSettingsStoreTest, ASettingsFileCutShortWhileWrittenIsNeverTakenForTheNewOne)
{
    // Enough values that the new file is longer than the limit below.
    for (int index = 0; index < 20; ++index)
        ASSERT_TRUE(m_store.save(App, Section, QStringLiteral("Key%1").arg(index),
            QStringLiteral("a value of some length, number %1").arg(index)));
    const QByteArray before = iniText();
    ASSERT_GT(before.size(), 600);
    bool saved = true;
    {
        test::FileSizeLimit fullDisk(512);
        ASSERT_TRUE(fullDisk.active());
        saved = m_store.save(App, Section, QStringLiteral("Key0"), QStringLiteral("changed"));
    }
    EXPECT_FALSE(saved);
    EXPECT_EQ(
        m_store.writeError(), QStringLiteral("the file would be larger than the system allows"))
        << m_store.writeError().toStdString();
    EXPECT_EQ(iniText(), before);
    EXPECT_EQ(QtSettingsStore().get(App, Section, QStringLiteral("Key0")),
        QStringLiteral("a value of some length, number 0"));
    EXPECT_EQ(QDir(QFileInfo(iniPath()).path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
        QStringList { QStringLiteral("settings.ini") });
}

TEST_F(QtSettingsStoreTest, ASettingsFolderThatIsAFileIsReported)
{
    const QString settingsFolder = QFileInfo(iniPath()).path();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(settingsFolder).path()));
    QFile plain(settingsFolder);
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    plain.write("a plain file");
    plain.close();
    EXPECT_FALSE(m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("1")));
    EXPECT_EQ(m_store.writeError(),
        QStringLiteral("the folder \"%1\" cannot be created")
            .arg(QDir::toNativeSeparators(settingsFolder)));
    ASSERT_TRUE(plain.open(QIODevice::ReadOnly));
    EXPECT_EQ(plain.readAll(), QByteArray("a plain file"));
}

class QtSettingsStoreDiskTest : public QtSettingsStoreTest
{
protected:
    void SetUp() override
    {
        // The settings folder of App is a tiny disk of its own.
        m_disk = std::make_unique<test::TinyDisk>(QFileInfo(iniPath()).path(), 64);
        if (!m_disk->mounted())
            FAIL() << "the full-disk check needs a small file system, which cannot be mounted here "
                      "(the tests run as root): "
                   << m_disk->failure().toStdString();
    }
    void TearDown() override
    {
        QtSettingsStoreTest::TearDown();
        m_disk.reset();
    }

    std::unique_ptr<test::TinyDisk> m_disk;
};

TEST_F(QtSettingsStoreDiskTest, AFullDiskKeepsEverySettingAndSaysWhy)
{
    ASSERT_TRUE(m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("1234")));
    ASSERT_TRUE(m_store.save(App, Section, QStringLiteral("UserPassword"), QStringLiteral("pw")));
    const QByteArray before = iniText();
    m_disk->fillLeaving(0);

    EXPECT_FALSE(m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("99")));
    EXPECT_EQ(m_store.writeError(), QStringLiteral("the disk is full"))
        << m_store.writeError().toStdString();
    EXPECT_FALSE(m_store.remove(App, Section, QStringLiteral("UserPassword")));
    EXPECT_EQ(m_store.writeError(), QStringLiteral("the disk is full"))
        << m_store.writeError().toStdString();

    EXPECT_EQ(iniText(), before);
    EXPECT_EQ(
        QtSettingsStore().get(App, Section, QStringLiteral("MainLeft")), QStringLiteral("1234"));
    EXPECT_EQ(
        QtSettingsStore().get(App, Section, QStringLiteral("UserPassword")), QStringLiteral("pw"));
    EXPECT_EQ(QDir(QFileInfo(iniPath()).path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
        (QStringList { QStringLiteral("filler.bin"), QStringLiteral("settings.ini") }));
}

TEST_F(QtSettingsStoreDiskTest, SeveralValuesAreSavedAllOrNone)
{
    const QList<std::pair<QString, QString>> first { { QStringLiteral("MainLeft"),
                                                         QStringLiteral("1") },
        { QStringLiteral("MainTop"), QStringLiteral("2") } };
    ASSERT_TRUE(m_store.saveAll(App, Section, first));
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("MainLeft")), QStringLiteral("1"));
    EXPECT_EQ(m_store.get(App, Section, QStringLiteral("MainTop")), QStringLiteral("2"));
    const QByteArray before = iniText();
    m_disk->fillLeaving(0);
    const QList<std::pair<QString, QString>> second { { QStringLiteral("MainLeft"),
                                                          QStringLiteral("10") },
        { QStringLiteral("MainTop"), QStringLiteral("20") } };
    EXPECT_FALSE(m_store.saveAll(App, Section, second));
    EXPECT_EQ(m_store.writeError(), QStringLiteral("the disk is full"))
        << m_store.writeError().toStdString();
    EXPECT_EQ(iniText(), before);
    EXPECT_EQ(QtSettingsStore().get(App, Section, QStringLiteral("MainLeft")), QStringLiteral("1"));
    EXPECT_EQ(QtSettingsStore().get(App, Section, QStringLiteral("MainTop")), QStringLiteral("2"));
}

TEST_F(QtSettingsStoreDiskTest, AnUnchangedValueNeedsNoRoom)
{
    ASSERT_TRUE(m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("1234")));
    m_disk->fillLeaving(0);
    EXPECT_TRUE(m_store.save(App, Section, QStringLiteral("MainLeft"), QStringLiteral("1234")));
    EXPECT_TRUE(m_store.writeError().isEmpty());
}
#endif

class QtSettingsStoreTextTest : public QtSettingsStoreTest,
                                public ::testing::WithParamInterface<const char *>
{
};

TEST_P(QtSettingsStoreTextTest, TextRoundTripsThroughANewStore)
{
    const QString value = QString::fromUtf8(GetParam());
    m_store.save(App, Section, QStringLiteral("Text"), value);
    EXPECT_EQ(QtSettingsStore().get(App, Section, QStringLiteral("Text")), value);
}

INSTANTIATE_TEST_SUITE_P(Texts, QtSettingsStoreTextTest,
    ::testing::Values("with spaces inside", "  leading and trailing  ", "Zoë 北京 ✓", "a=b",
        "x = y; z", "semi;colon", "one, two", "\"quoted\"", "@at", "back\\slash", "#hash",
        "[bracket]", "line\nbreak", "1.5E+3", "true"));

} // namespace
} // namespace tarnwick
