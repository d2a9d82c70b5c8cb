#include "platform/qt/qtsettingsstore.h"

#include <QSettings>

namespace tarnwick {

namespace {

/// The settings of application, entered into the group of section as it is stored.
std::unique_ptr<QSettings> openSection(const QString &application, const QString &section)
{
    std::unique_ptr<QSettings> settings = QtSettingsStore::openApplication(application);
    settings->beginGroup(QtSettingsStore::storedSectionName(*settings, section));
    return settings;
}

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

void QtSettingsStore::save(
    const QString &application, const QString &section, const QString &key, const QString &value)
{
    const std::unique_ptr<QSettings> settings = openSection(application, section);
    settings->setValue(key, value);
    settings->sync();
}

void QtSettingsStore::remove(const QString &application, const QString &section, const QString &key)
{
    // QSettings would take an empty key for the whole section.
    if (key.isEmpty())
        return;
    const std::unique_ptr<QSettings> settings = openSection(application, section);
    settings->remove(key);
    settings->sync();
}

} // namespace tarnwick
