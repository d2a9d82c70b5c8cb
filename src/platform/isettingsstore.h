#pragma once

#include <QString>

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
    /// Removes key; false as for save.
    virtual bool remove(const QString &application, const QString &section, const QString &key) = 0;
    /// Why the last save or remove failed, in plain words; empty after one that succeeded.
    virtual QString writeError() const = 0;
};

} // namespace tarnwick
