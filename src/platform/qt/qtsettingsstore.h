#pragma once

#include "platform/isettingsstore.h"

#include <memory>

class QSettings;

namespace tarnwick {

/// Per-user settings through QSettings. On Windows they live in the registry under
/// "HKEY_CURRENT_USER\Software\VB and VBA Program Settings\<application>\<section>", where
/// the program's earlier Windows versions kept them; elsewhere in the INI file
/// "<application>/settings.ini" of the user's configuration folder. Values are texts.
class QtSettingsStore : public ISettingsStore
{
public:
    QString get(const QString &application, const QString &section, const QString &key,
        const QString &defaultValue = QString()) const override;
    void save(const QString &application, const QString &section, const QString &key,
        const QString &value) override;
    void remove(const QString &application, const QString &section, const QString &key) override;

    /// The settings of one application, opened at its top level.
    static std::unique_ptr<QSettings> openApplication(const QString &application);
    /// The spelling under which section is stored (an existing group whose name differs only in
    /// letter case), or section itself when there is none yet.
    static QString storedSectionName(const QSettings &settings, const QString &section);
};

} // namespace tarnwick
