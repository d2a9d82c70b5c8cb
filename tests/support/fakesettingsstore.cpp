#include "support/fakesettingsstore.h"

namespace tarnwick::test {

QString FakeSettingsStore::path(
    const QString &application, const QString &section, const QString &key)
{
    return application + QLatin1Char('/') + section.toLower() + QLatin1Char('/') + key;
}

QString FakeSettingsStore::get(const QString &application, const QString &section,
    const QString &key, const QString &defaultValue) const
{
    return m_values.value(path(application, section, key), defaultValue);
}

bool FakeSettingsStore::save(
    const QString &application, const QString &section, const QString &key, const QString &value)
{
    ++m_saveCount;
    m_writeError = m_failReason;
    if (!m_failReason.isEmpty())
        return false;
    m_values.insert(path(application, section, key), value);
    return true;
}

bool FakeSettingsStore::remove(
    const QString &application, const QString &section, const QString &key)
{
    m_writeError = m_failReason;
    if (!m_failReason.isEmpty())
        return false;
    m_values.remove(path(application, section, key));
    return true;
}

QString FakeSettingsStore::setAsideDamaged(const QString &application, const QDateTime &when)
{
    m_values.clear();
    m_readProblem.clear();
    return QStringLiteral("/home/user/.config/%1/settings-damaged-%2.ini")
        .arg(application, when.toString(QStringLiteral("yyyyMMdd-HHmmss")));
}

bool FakeSettingsStore::contains(
    const QString &application, const QString &section, const QString &key) const
{
    return m_values.contains(path(application, section, key));
}

} // namespace tarnwick::test
