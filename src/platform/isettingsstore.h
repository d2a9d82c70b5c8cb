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
    virtual void save(const QString &application, const QString &section, const QString &key,
        const QString &value) = 0;
    virtual void remove(const QString &application, const QString &section, const QString &key) = 0;
};

} // namespace tarnwick
