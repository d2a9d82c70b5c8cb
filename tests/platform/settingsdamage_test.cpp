// Settings that cannot be read as they were written: a file a power cut left with NUL bytes, a
// folder in the file's place. The store says why, and sets them aside so the next save starts
// afresh without overwriting them.
#include "platform/qt/qtsettingsstore.h"
#include "support/tempappfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <gtest/gtest.h>

using namespace tarnwick;
using test::TempAppFolder;

namespace {

const QString DamageApp = QStringLiteral("TarnwickDamagedSettingsTest");
const QString DamageSection = QStringLiteral("Settings");
const QDateTime DamageTime(QDate(2026, 11, 27), QTime(3, 15, 0));

class DamagedSettingsTest : public ::testing::Test
{
protected:
    void TearDown() override { QtSettingsStore::openApplication(DamageApp)->clear(); }
    QString iniPath() const
    {
        return m_folder.filePath(QStringLiteral("settings/%1/settings.ini").arg(DamageApp));
    }
    QString asidePath() const
    {
        return m_folder.filePath(
            QStringLiteral("settings/%1/settings-damaged-20261127-031500.ini").arg(DamageApp));
    }
    void writeIni(const QByteArray &bytes)
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(iniPath()).path()));
        QFile file(iniPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    TempAppFolder m_folder;
    QtSettingsStore m_store;
};

#ifndef Q_OS_WIN

TEST_F(DamagedSettingsTest, SettingsWrittenWholeOrNotYetWrittenHaveNoProblem)
{
    EXPECT_EQ(m_store.readProblem(DamageApp), QString()) << "nothing stored yet";
    ASSERT_TRUE(m_store.save(DamageApp, DamageSection, QStringLiteral("UserPassword"),
        QStringLiteral("$argon2id$v=19$m=19456,t=2,p=1$c2FsdA$aGFzaA")));
    EXPECT_EQ(m_store.readProblem(DamageApp), QString());
    EXPECT_EQ(m_store.location(DamageApp), QDir::toNativeSeparators(iniPath()));
}

// A power cut can leave NUL bytes in place of the header: the keys after them would be read
// into a section of their own, and the password with them would silently be no password.
TEST_F(DamagedSettingsTest, NulBytesInTheFileAreDamageAndTheFileIsSetAside)
{
    const QByteArray damaged = QByteArray("[Sett", 5) + QByteArray(2, '\0')
        + "ings]\nUserPassword=secret\nMainLeft=1000\n";
    writeIni(damaged);
    EXPECT_EQ(m_store.readProblem(DamageApp),
        QStringLiteral("\"%1\" is damaged").arg(QDir::toNativeSeparators(iniPath())));

    EXPECT_EQ(m_store.setAsideDamaged(DamageApp, DamageTime), asidePath());
    QFile aside(asidePath());
    ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
    EXPECT_EQ(aside.readAll(), damaged) << "kept byte for byte";
    EXPECT_FALSE(QFile::exists(iniPath()));
    EXPECT_EQ(m_store.readProblem(DamageApp), QString());
    ASSERT_TRUE(
        m_store.save(DamageApp, DamageSection, QStringLiteral("MainLeft"), QStringLiteral("1200")));
    EXPECT_EQ(
        m_store.get(DamageApp, DamageSection, QStringLiteral("MainLeft")), QStringLiteral("1200"));
}

// A file cut short inside a key's line would read that key as empty: cut in the password's,
// as no password. Every line a save writes ends with a line end.
TEST_F(DamagedSettingsTest, AFileCutShortInsideALineIsDamage)
{
    for (const QByteArray &cut : { QByteArray("UserPassword=\"$argon2id$v=19$m="),
             QByteArray("UserPassword="), QByteArray("UserPassw") }) {
        SCOPED_TRACE(cut.constData());
        writeIni("[Settings]\nMainLeft=1000\n" + cut);
        EXPECT_EQ(m_store.readProblem(DamageApp),
            QStringLiteral("\"%1\" is damaged").arg(QDir::toNativeSeparators(iniPath())));
    }
    // A whole last line without its line end, as an editor may leave it, is no damage.
    writeIni("[Settings]\nMainLeft=1000");
    EXPECT_EQ(m_store.readProblem(DamageApp), QString());
    writeIni("[Settings]\nUserPassword=\"$argon2id$v=19$m=19456,t=2,p=1$c2FsdA$aGFzaA\"");
    EXPECT_EQ(m_store.readProblem(DamageApp), QString());
}

TEST_F(DamagedSettingsTest, AFileOfNothingButNulBytesIsDamage)
{
    writeIni(QByteArray(4096, '\0'));
    EXPECT_FALSE(m_store.readProblem(DamageApp).isEmpty());
}

TEST_F(DamagedSettingsTest, AFolderInPlaceOfTheFileIsSaidAndSetAside)
{
    ASSERT_TRUE(QDir().mkpath(iniPath()));
    EXPECT_EQ(m_store.readProblem(DamageApp),
        QStringLiteral("\"%1\" is a folder, not a file").arg(QDir::toNativeSeparators(iniPath())));
    EXPECT_EQ(m_store.setAsideDamaged(DamageApp, DamageTime), asidePath());
    EXPECT_TRUE(QFileInfo(asidePath()).isDir());
    EXPECT_TRUE(
        m_store.save(DamageApp, DamageSection, QStringLiteral("MainTop"), QStringLiteral("900")));
}

// A settings file copied to where the settings folder should be (before it was made): the
// store says so, sets the file aside beside it, and the settings are saved in a new folder.
TEST_F(DamagedSettingsTest, AFileInPlaceOfTheFolderIsSaidAndSetAside)
{
    const QString folder = QFileInfo(iniPath()).path();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(folder).path()));
    {
        QFile file(folder);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Settings]\nUserPassword=secret\n");
    }
    EXPECT_EQ(m_store.readProblem(DamageApp),
        QStringLiteral("\"%1\" is a file, not a folder").arg(QDir::toNativeSeparators(folder)));
    const QString aside = folder + QStringLiteral("-damaged-20261127-031500.ini");
    EXPECT_EQ(m_store.setAsideDamaged(DamageApp, DamageTime), aside);
    QFile kept(aside);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), QByteArray("[Settings]\nUserPassword=secret\n"));
    EXPECT_EQ(m_store.readProblem(DamageApp), QString());
    EXPECT_TRUE(
        m_store.save(DamageApp, DamageSection, QStringLiteral("MainTop"), QStringLiteral("900")));
    EXPECT_TRUE(QFileInfo(folder).isDir());
}

TEST_F(DamagedSettingsTest, AnEarlierCopyOfTheSameSecondKeepsItsNameAndTheNewOneTakesTheNext)
{
    writeIni(QByteArray(16, '\0'));
    ASSERT_EQ(m_store.setAsideDamaged(DamageApp, DamageTime), asidePath());
    writeIni(QByteArray(32, '\0'));
    const QString second = m_folder.filePath(
        QStringLiteral("settings/%1/settings-damaged-20261127-031500-2.ini").arg(DamageApp));
    EXPECT_EQ(m_store.setAsideDamaged(DamageApp, DamageTime), second);
    EXPECT_EQ(QFileInfo(asidePath()).size(), 16);
    EXPECT_EQ(QFileInfo(second).size(), 32);
    EXPECT_FALSE(QFile::exists(iniPath()));
}

#endif

} // namespace
