#pragma once

#include "platform/isettingsstore.h"

#include <QMap>
#include <QString>

namespace tarnwick::test {

/// Settings kept in memory, with section names folded to lower case as the real store does.
class FakeSettingsStore : public ISettingsStore
{
public:
    QString get(const QString &application, const QString &section, const QString &key,
        const QString &defaultValue = QString()) const override;
    bool save(const QString &application, const QString &section, const QString &key,
        const QString &value) override;
    bool remove(const QString &application, const QString &section, const QString &key) override;
    QString writeError() const override { return m_writeError; }

    QString location(const QString &application) const override
    {
        return QStringLiteral("/home/user/.config/%1/settings.ini").arg(application);
    }
    QString readProblem(const QString &) const override { return m_readProblem; }
    /// Forgets every value (the damaged file goes) and answers where it went.
    QString setAsideDamaged(const QString &application, const QDateTime &when) override;

    /// From now on every save and remove fails with reason and changes nothing (an empty
    /// reason lets them succeed again).
    void failWrites(const QString &reason) { m_failReason = reason; }
    /// The stored settings read as damaged for problem until they are set aside.
    void damage(const QString &problem) { m_readProblem = problem; }

    bool contains(const QString &application, const QString &section, const QString &key) const;
    int saveCount() const { return m_saveCount; }

private:
    static QString path(const QString &application, const QString &section, const QString &key);
    QMap<QString, QString> m_values;
    int m_saveCount = 0;
    QString m_failReason;
    QString m_readProblem;
    QString m_writeError;
};

} // namespace tarnwick::test
