#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

#include <utility>

namespace tarnwick {

/// The per-user settings store: texts addressed by application, section and key. Section
/// names match without regard to case.
class ISettingsStore
{
public:
    virtual ~ISettingsStore() = default;

    /// The stored text, or defaultValue when the key is not there.
    virtual QString get(const QString &application, const QString &section, const QString &key,
        const QString &defaultValue = QString()) const = 0;
    /// Stores value. False when the store could not be written: every stored value is then as
    /// it was, and writeError() says why.
    virtual bool save(const QString &application, const QString &section, const QString &key,
        const QString &value) = 0;
    /// Stores several values of one section, each a key and its text. False at the first one
    /// the store cannot write (writeError() says why); values before it may have been stored.
    /// Stores that write a file write it once for all of them.
    virtual bool saveAll(const QString &application, const QString &section,
        const QList<std::pair<QString, QString>> &values)
    {
        for (const auto &[key, value] : values) {
            if (!save(application, section, key, value))
                return false;
        }
        return true;
    }
    /// Removes key; false as for save.
    virtual bool remove(const QString &application, const QString &section, const QString &key) = 0;
    /// Why the last save or remove failed, in plain words; empty after one that succeeded.
    virtual QString writeError() const = 0;

    /// Where application's settings are kept, as a user would look for them (a file, or a
    /// registry key); empty for a store that has no such place.
    virtual QString location(const QString &application) const
    {
        Q_UNUSED(application);
        return QString();
    }
    /// Why application's stored settings cannot be read as they were written (a damaged file,
    /// a folder in its place), in plain words; empty when they can, or when none are stored.
    /// Such settings read as if none had been stored.
    virtual QString readProblem(const QString &application) const
    {
        Q_UNUSED(application);
        return QString();
    }
    /// Moves application's damaged settings out of the way under a name of their own, given
    /// the time, so the next save starts afresh and they are not overwritten; returns where
    /// they went (empty when they could not be moved).
    virtual QString setAsideDamaged(const QString &application, const QDateTime &when)
    {
        Q_UNUSED(application);
        Q_UNUSED(when);
        return QString();
    }
};

} // namespace tarnwick
