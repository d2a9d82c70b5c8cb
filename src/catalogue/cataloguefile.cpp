#include "catalogue/cataloguefile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace tarnwick {

namespace {

constexpr char16_t FieldEndCharacter = 0x7F;
constexpr int FieldEndLength = 3;

QString unchangedNote()
{
    return QStringLiteral(" The catalogue file is unchanged.");
}

CatalogueWriteResult failedSave(const QString &detail)
{
    CatalogueWriteResult result;
    result.ok = false;
    result.detail = QStringLiteral("The catalogue could not be saved: ") + detail + unchangedNote();
    return result;
}

/// Copies the previous catalogue to the backup file, itself replaced in one step, so the
/// backup is always a whole file. Nothing to do before the very first save.
bool keepPreviousAsBackup(const QString &dataFile, QString *error)
{
    if (!QFileInfo::exists(dataFile))
        return true;
    QFile previous(dataFile);
    if (!previous.open(QIODevice::ReadOnly)) {
        *error = previous.errorString();
        return false;
    }
    const QByteArray bytes = previous.readAll();
    if (previous.error() != QFileDevice::NoError) {
        *error = previous.errorString();
        return false;
    }
    QSaveFile backup(catalogueBackupPath(dataFile));
    if (!backup.open(QIODevice::WriteOnly) || backup.write(bytes) != bytes.size()
        || !backup.commit()) {
        *error = backup.errorString();
        return false;
    }
    return true;
}

QString unreadCopyName(const QFileInfo &data, const QString &stamp, int attempt)
{
    QString name = data.completeBaseName() + QStringLiteral("-unread-") + stamp;
    if (attempt > 1)
        name += QLatin1Char('-') + QString::number(attempt);
    const QString suffix = data.suffix().isEmpty() ? QStringLiteral("dat") : data.suffix();
    return name + QLatin1Char('.') + suffix;
}

} // namespace

QString fieldEnd()
{
    return QString(FieldEndLength, QChar(FieldEndCharacter));
}

QString catalogueBackupPath(const QString &dataFile)
{
    const QFileInfo data(dataFile);
    return QDir::toNativeSeparators(
        data.dir().filePath(data.completeBaseName() + QStringLiteral(".bak")));
}

CatalogueWriteResult writeCatalogueFile(
    const QString &path, const QByteArray &bytes, const BeforeReplaceHook &beforeReplace)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        const QString folder = QDir::toNativeSeparators(QFileInfo(path).absolutePath());
        return failedSave(QStringLiteral("no new file can be created in the folder \"%1\" (%2).")
                              .arg(folder, file.errorString()));
    }
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        return failedSave(QStringLiteral("writing the new file failed (%1); the disk may be full.")
                              .arg(file.errorString()));
    }
    QString error;
    if (!keepPreviousAsBackup(path, &error)) {
        const QString backupName = QFileInfo(catalogueBackupPath(path)).fileName();
        return failedSave(QStringLiteral("the previous catalogue could not be kept as \"%1\" (%2).")
                              .arg(backupName, error));
    }
    if (beforeReplace && !beforeReplace()) {
        file.cancelWriting();
        return failedSave(
            QStringLiteral("the save was interrupted before the new file replaced the old one."));
    }
    if (!file.commit()) {
        return failedSave(QStringLiteral("the new file could not replace the old one (%1).")
                              .arg(file.errorString()));
    }
    return {};
}

QString preserveUnreadCatalogue(const QString &dataFile)
{
    const QFileInfo data(dataFile);
    if (!data.isFile())
        return {};
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    // QFile::copy never overwrites, so a name taken in the meantime just moves on to the next.
    for (int attempt = 1; attempt <= 1000; ++attempt) {
        const QString copy = data.dir().filePath(unreadCopyName(data, stamp, attempt));
        if (QFileInfo::exists(copy))
            continue;
        if (QFile::copy(dataFile, copy))
            return QDir::toNativeSeparators(copy);
        if (!QFileInfo::exists(copy))
            return {}; // the copy itself failed, not the name
    }
    return {};
}

} // namespace tarnwick
