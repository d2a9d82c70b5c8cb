#include "catalogue/catalogueproperties.h"

#include "catalogue/cataloguefile.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

namespace tarnwick {

namespace {
const QString NotSavedYet = QStringLiteral("Not saved yet");
}

CatalogueProperties CatalogueProperties::read(
    const QString &appFolder, const QString &dataFile, int productCount)
{
    CatalogueProperties properties;
    properties.appFolder = QDir::toNativeSeparators(appFolder);
    properties.dataFile = QDir::toNativeSeparators(dataFile);
    properties.productCount = productCount;
    const QFileInfo file(dataFile);
    properties.fileExists = file.isFile();
    if (properties.fileExists) {
        properties.fileSize = file.size();
        properties.lastSaved = file.lastModified();
    }
    const QString backup = catalogueBackupPath(dataFile);
    const QFileInfo backupInfo(backup);
    properties.backupFile = QDir::toNativeSeparators(backup);
    properties.backupExists = backupInfo.isFile();
    if (properties.backupExists)
        properties.backupSaved = backupInfo.lastModified();
    return properties;
}

QString CatalogueProperties::sizeText(const QLocale &locale) const
{
    if (!fileExists)
        return NotSavedYet;
    QString bytes = fileSize == 1 ? QStringLiteral("1 byte")
                                  : QStringLiteral("%1 bytes").arg(locale.toString(fileSize));
    if (fileSize < 1024)
        return bytes;
    return QStringLiteral("%1 (%2)").arg(
        locale.formattedDataSize(fileSize, 1, QLocale::DataSizeTraditionalFormat), bytes);
}

QString CatalogueProperties::productCountText(const QLocale &locale) const
{
    return locale.toString(productCount);
}

QString CatalogueProperties::lastSavedText(const QLocale &locale) const
{
    return fileExists && lastSaved.isValid() ? dateTimeText(lastSaved, locale) : NotSavedYet;
}

QString CatalogueProperties::backupText(const QLocale &locale) const
{
    if (!backupExists)
        return QStringLiteral("No");
    return QStringLiteral("Yes, the catalogue as saved on %1")
        .arg(dateTimeText(backupSaved, locale));
}

QString CatalogueProperties::dateTimeText(const QDateTime &when, const QLocale &locale)
{
    const QDateTime local = when.toLocalTime();
    return locale.toString(local.date(), QLocale::LongFormat) + QLatin1Char(' ')
        + locale.toString(local.time(), QLocale::ShortFormat);
}

} // namespace tarnwick
