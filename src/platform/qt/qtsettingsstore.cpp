#include "platform/qt/qtsettingsstore.h"

#include "platform/filewrite.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>

namespace tarnwick {

namespace {

/// The settings of application, entered into the group of section as it is stored.
std::unique_ptr<QSettings> openSection(const QString &application, const QString &section)
{
    std::unique_ptr<QSettings> settings = QtSettingsStore::openApplication(application);
    settings->beginGroup(QtSettingsStore::storedSectionName(*settings, section));
    return settings;
}

#ifndef Q_OS_WIN
// The INI file (the registry is written by QSettings itself).

using SettingsValues = QMap<QString, QVariant>;

SettingsValues everySettingsValue(const QSettings &settings)
{
    SettingsValues values;
    const QStringList keys = settings.allKeys();
    for (const QString &key : keys)
        values.insert(key, settings.value(key));
    return values;
}

/// The INI file that holds exactly values, as QSettings lays it out: written in a folder of its
/// own inside folder, then read back under a new name (QSettings answers a name it has written
/// from memory, not from the disk) and compared. Nothing when the written file does not hold
/// them, as after a full disk.
std::optional<QByteArray> laidOutSettingsFile(const QString &folder, const SettingsValues &values)
{
    if (values.isEmpty())
        return QByteArray();
    const QTemporaryDir staging(QDir(folder).filePath(QStringLiteral("settings-XXXXXX")));
    if (!staging.isValid())
        return std::nullopt;
    const QString written = staging.filePath(QStringLiteral("written.ini"));
    const QString checked = staging.filePath(QStringLiteral("checked.ini"));
    {
        QSettings layout(written, QSettings::IniFormat);
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            layout.setValue(it.key(), it.value());
        layout.sync();
        if (layout.status() != QSettings::NoError)
            return std::nullopt;
    }
    if (!QFile::rename(written, checked))
        return std::nullopt;
    const QSettings readBack(checked, QSettings::IniFormat);
    if (readBack.status() != QSettings::NoError || everySettingsValue(readBack) != values)
        return std::nullopt;
    QFile file(checked);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

/// Why nothing could be laid out in folder: a small file written there the safe way names the
/// cause (a full disk, a read-only folder).
QString settingsFolderCause(const QString &folder)
{
    const QString probe = QDir(folder).filePath(QStringLiteral("settings-probe.tmp"));
    const FileWriteResult result = writeFileWhole(probe, QByteArray(16 * 1024, '\n'));
    QFile::remove(probe);
    return result ? QStringLiteral("the settings file could not be prepared") : result.reason;
}

/// The file's size and time as QSettings compares them to decide whether to read it again.
struct SettingsFileStamp
{
    bool exists = false;
    qint64 size = 0;
    QDateTime modified;
};

SettingsFileStamp settingsFileStamp(const QString &fileName)
{
    const QFileInfo info(fileName);
    return { info.exists(), info.size(), info.lastModified() };
}

/// QSettings takes a file whose size and time are unchanged for the one it read before: a new
/// file of the old size written within the same millisecond is given a later time.
void markSettingsFileChanged(const QString &fileName, const SettingsFileStamp &before)
{
    const SettingsFileStamp after = settingsFileStamp(fileName);
    if (!before.exists || after.size != before.size || after.modified != before.modified)
        return;
    QFile file(fileName);
    if (file.open(QIODevice::ReadOnly))
        file.setFileTime(before.modified.addMSecs(1), QFileDevice::FileModificationTime);
}

/// Replaces the INI file fileName by one that holds values; the cause when it could not.
QString writeSettingsFile(const QString &fileName, const SettingsValues &values)
{
    const QString folder = QFileInfo(fileName).absolutePath();
    if (!QDir().mkpath(folder))
        return QStringLiteral("the folder \"%1\" cannot be created")
            .arg(QDir::toNativeSeparators(folder));
    const std::optional<QByteArray> bytes = laidOutSettingsFile(folder, values);
    if (!bytes)
        return settingsFolderCause(folder);
    const SettingsFileStamp before = settingsFileStamp(fileName);
    const FileWriteResult written = writeFileWhole(fileName, *bytes);
    if (!written)
        return written.reason;
    markSettingsFileChanged(fileName, before);
    return {};
}

#endif

} // namespace

std::unique_ptr<QSettings> QtSettingsStore::openApplication(const QString &application)
{
#ifdef Q_OS_WIN
    return std::make_unique<QSettings>(
        QStringLiteral("HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\") + application,
        QSettings::NativeFormat);
#else
    return std::make_unique<QSettings>(
        QSettings::IniFormat, QSettings::UserScope, application, QStringLiteral("settings"));
#endif
}

// Section names match without regard to letter case (the registry works that way, an INI
// file does not), so an existing section is used under the spelling it was first written with.
QString QtSettingsStore::storedSectionName(const QSettings &settings, const QString &section)
{
    const QStringList groups = settings.childGroups();
    for (const QString &group : groups) {
        if (group.compare(section, Qt::CaseInsensitive) == 0)
            return group;
    }
    return section;
}

QString QtSettingsStore::get(const QString &application, const QString &section, const QString &key,
    const QString &defaultValue) const
{
    const std::unique_ptr<QSettings> settings = openSection(application, section);
    const QVariant value = settings->value(key);
    if (!value.isValid())
        return defaultValue;
    // A hand-edited INI value with unquoted commas comes back as a list.
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QLatin1Char(','));
    return value.toString();
}

bool QtSettingsStore::save(
    const QString &application, const QString &section, const QString &key, const QString &value)
{
    return change(application, section, { Change { key, value } });
}

bool QtSettingsStore::saveAll(const QString &application, const QString &section,
    const QList<std::pair<QString, QString>> &values)
{
    QList<Change> changes;
    for (const auto &[key, value] : values)
        changes.append(Change { key, value });
    return change(application, section, changes);
}

bool QtSettingsStore::remove(const QString &application, const QString &section, const QString &key)
{
    // QSettings would take an empty key for the whole section.
    if (key.isEmpty()) {
        m_writeError.clear();
        return true;
    }
    return change(application, section, { Change { key, std::nullopt } });
}

QString QtSettingsStore::location(const QString &application) const
{
    return QDir::toNativeSeparators(openApplication(application)->fileName());
}

namespace {

/// Whether a settings file ends inside a key's line: every line a save writes ends with a line
/// end, and a file cut short in "UserPassword=…" would read as no password. A last line of
/// its own without a line end (edited by hand) is a whole line when it holds a key, an "=" and
/// a value, its quotes closed.
bool cutInALine(const QByteArray &bytes)
{
    if (bytes.isEmpty() || bytes.endsWith('\n'))
        return false;
    const QByteArray last = bytes.mid(bytes.lastIndexOf('\n') + 1).trimmed();
    if (last.isEmpty() || last.startsWith('[') || last.startsWith(';') || last.startsWith('#'))
        return false;
    const qsizetype equals = last.indexOf('=');
    return equals <= 0 || equals == last.size() - 1 || last.count('"') % 2 != 0;
}

} // namespace

QString QtSettingsStore::readProblem(const QString &application) const
{
#ifdef Q_OS_WIN
    Q_UNUSED(application);
    return QString();
#else
    const std::unique_ptr<QSettings> settings = openApplication(application);
    const QFileInfo info(settings->fileName());
    // A settings file copied to where the folder should be (the folder not made yet): nothing
    // can be read or written under it.
    const QFileInfo folder(info.absolutePath());
    if (folder.exists() && !folder.isDir())
        return QStringLiteral("\"%1\" is a file, not a folder")
            .arg(QDir::toNativeSeparators(folder.filePath()));
    if (!info.exists())
        return QString();
    if (info.isDir())
        return QStringLiteral("\"%1\" is a folder, not a file")
            .arg(QDir::toNativeSeparators(info.filePath()));
    QFile file(info.filePath());
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("\"%1\" cannot be read (%2)")
            .arg(QDir::toNativeSeparators(info.filePath()), file.errorString());
    // A settings file is text: NUL bytes are what a power cut or a failing disk leaves, and
    // QSettings would read the keys after them into sections of their own.
    const QByteArray bytes = file.readAll();
    if (bytes.contains('\0') || settings->status() == QSettings::FormatError || cutInALine(bytes))
        return QStringLiteral("\"%1\" is damaged").arg(QDir::toNativeSeparators(info.filePath()));
    return QString();
#endif
}

QString QtSettingsStore::setAsideDamaged(const QString &application, const QDateTime &when)
{
#ifdef Q_OS_WIN
    Q_UNUSED(application);
    Q_UNUSED(when);
    return QString();
#else
    QFileInfo info(openApplication(application)->fileName());
    // A file in the folder's place is set aside beside it, so the folder can be made.
    const QFileInfo folder(info.absolutePath());
    const bool fileForFolder = folder.exists() && !folder.isDir();
    if (fileForFolder)
        info = folder;
    else if (!info.exists())
        return QString();
    const QString stamp = when.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString pattern = fileForFolder ? info.fileName() + QStringLiteral("-damaged-%1%2.ini")
                                          : QStringLiteral("settings-damaged-%1%2.ini");
    // An earlier copy of the same second keeps its name: this one takes the next free one.
    for (int attempt = 1; attempt <= 100; ++attempt) {
        const QString suffix = attempt == 1 ? QString() : QStringLiteral("-%1").arg(attempt);
        QString aside = info.dir().filePath(pattern.arg(stamp, suffix));
        if (QFileInfo::exists(aside))
            continue;
        return QDir().rename(info.filePath(), aside) ? aside : QString();
    }
    return QString();
#endif
}

bool QtSettingsStore::change(
    const QString &application, const QString &section, const QList<Change> &changes)
{
    m_writeError.clear();
    const std::unique_ptr<QSettings> settings = openApplication(application);
    const QString group = storedSectionName(*settings, section) + QLatin1Char('/');
#ifdef Q_OS_WIN
    for (const auto &[key, value] : changes) {
        if (value)
            settings->setValue(group + key, *value);
        else
            settings->remove(group + key);
    }
    settings->sync();
    if (settings->status() != QSettings::NoError)
        m_writeError = QStringLiteral("the registry refused the change");
#else
    SettingsValues values = everySettingsValue(*settings);
    const SettingsValues before = values;
    for (const auto &[key, value] : changes) {
        if (value)
            values.insert(group + key, *value);
        else
            values.remove(group + key);
    }
    if (values != before)
        m_writeError = writeSettingsFile(settings->fileName(), values);
#endif
    return m_writeError.isEmpty();
}

} // namespace tarnwick
