// What "Catalogue Properties" shows: the folder and file names, the size, the number of
// products, the time of the last save and whether the backup is there, read from the disk.
#include "catalogue/catalogueproperties.h"

#include "catalogue/cataloguefile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

class CataloguePropertiesTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(folder.isValid()); }

    QString dataFile() const { return folder.filePath(QStringLiteral("twdata.dat")); }
    void write(const QString &path, qint64 bytes, const QDateTime &when)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(QByteArray(bytes, 'x')), bytes);
        ASSERT_TRUE(file.flush()); // written data would set the time anew
        ASSERT_TRUE(file.setFileTime(when, QFileDevice::FileModificationTime));
    }

    QTemporaryDir folder;
    const QLocale english { QLocale::English, QLocale::UnitedStates };
    const QLocale german { QLocale::German, QLocale::Germany };
};

TEST_F(CataloguePropertiesTest, ACatalogueNotSavedYetSaysSo)
{
    const CatalogueProperties properties = CatalogueProperties::read(folder.path(), dataFile(), 0);
    EXPECT_EQ(properties.appFolder, QDir::toNativeSeparators(folder.path()));
    EXPECT_EQ(properties.dataFile, QDir::toNativeSeparators(dataFile()));
    EXPECT_FALSE(properties.fileExists);
    EXPECT_EQ(properties.sizeText(english), QStringLiteral("Not saved yet"));
    EXPECT_EQ(properties.lastSavedText(english), QStringLiteral("Not saved yet"));
    EXPECT_EQ(properties.productCountText(english), QStringLiteral("0"));
    EXPECT_FALSE(properties.backupExists);
    EXPECT_EQ(properties.backupText(english), QStringLiteral("No"));
}

TEST_F(CataloguePropertiesTest, TheFileSizeCountAndSaveTimeAreReadFromTheDisk)
{
    const QDateTime saved(QDate(2026, 3, 14), QTime(9, 26, 53));
    write(dataFile(), 44236, saved);
    const CatalogueProperties properties =
        CatalogueProperties::read(folder.path(), dataFile(), 1234);
    EXPECT_TRUE(properties.fileExists);
    EXPECT_EQ(properties.fileSize, 44236);
    EXPECT_EQ(properties.lastSaved, saved);
    EXPECT_EQ(properties.sizeText(english), QStringLiteral("43.2 kB (44,236 bytes)"))
        << qPrintable(properties.sizeText(english));
    EXPECT_EQ(properties.productCountText(english), QStringLiteral("1,234"));
    EXPECT_EQ(properties.productCountText(german), QStringLiteral("1.234"));
    EXPECT_EQ(properties.lastSavedText(english),
        english.toString(saved.date(), QLocale::LongFormat) + QLatin1Char(' ')
            + english.toString(saved.time(), QLocale::ShortFormat));
    EXPECT_TRUE(properties.lastSavedText(english).contains(QStringLiteral("March 14, 2026")));
}

TEST_F(CataloguePropertiesTest, SmallFilesAreCountedInBytesOnly)
{
    write(dataFile(), 1, QDateTime::currentDateTime());
    EXPECT_EQ(CatalogueProperties::read(folder.path(), dataFile(), 1).sizeText(english),
        QStringLiteral("1 byte"));
    write(dataFile(), 1023, QDateTime::currentDateTime());
    EXPECT_EQ(CatalogueProperties::read(folder.path(), dataFile(), 1).sizeText(english),
        QStringLiteral("1,023 bytes"));
}

TEST_F(CataloguePropertiesTest, TheBackupIsFoundBesideTheCatalogueWithItsTime)
{
    const QDateTime before(QDate(2026, 3, 13), QTime(17, 5));
    write(dataFile(), 10, QDateTime::currentDateTime());
    write(catalogueBackupPath(dataFile()), 10, before);
    const CatalogueProperties properties = CatalogueProperties::read(folder.path(), dataFile(), 3);
    EXPECT_TRUE(properties.backupExists);
    EXPECT_EQ(properties.backupFile,
        QDir::toNativeSeparators(folder.filePath(QStringLiteral("twdata.bak"))));
    EXPECT_EQ(properties.backupText(english),
        QStringLiteral("Yes, the catalogue as saved on ")
            + CatalogueProperties::dateTimeText(before, english))
        << qPrintable(properties.backupText(english));
}

TEST_F(CataloguePropertiesTest, AFolderNamedLikeTheBackupIsNoBackup)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("twdata.bak")));
    EXPECT_FALSE(CatalogueProperties::read(folder.path(), dataFile(), 0).backupExists);
}

} // namespace
} // namespace tarnwick
