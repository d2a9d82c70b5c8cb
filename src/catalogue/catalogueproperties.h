#pragma once

#include <QDateTime>
#include <QString>

class QLocale;

namespace tarnwick {

/// Where the catalogue lives and what it holds, as "Catalogue Properties" shows it: the
/// application folder, the catalogue file with its size and the time it was last saved, the
/// number of products and whether the backup "twdata.bak" is there.
struct CatalogueProperties
{
    QString appFolder;
    QString dataFile;
    bool fileExists = false;
    qint64 fileSize = 0;
    QDateTime lastSaved; ///< when the catalogue file was last written; invalid without a file
    int productCount = 0;
    QString backupFile;
    bool backupExists = false;
    QDateTime backupSaved;

    /// Looks at the files on disk now; productCount is the catalogue in the program.
    static CatalogueProperties read(
        const QString &appFolder, const QString &dataFile, int productCount);

    /// "43.2 kB (44,236 bytes)", or "Not saved yet" without a file.
    QString sizeText(const QLocale &locale) const;
    /// "1,234".
    QString productCountText(const QLocale &locale) const;
    /// The date and time of the last save in the user's format, or "Not saved yet".
    QString lastSavedText(const QLocale &locale) const;
    /// "Yes, the catalogue as saved on <date and time>" (the save before the last), or "No".
    QString backupText(const QLocale &locale) const;

    /// A date and time as the properties show them: the long date and the short time.
    static QString dateTimeText(const QDateTime &when, const QLocale &locale);
};

} // namespace tarnwick
