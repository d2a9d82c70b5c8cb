#pragma once

#include "platform/isettingsstore.h"

#include <memory>
#include <optional>

class QSettings;

namespace tarnwick {

/// Per-user settings through QSettings. On Windows they live in the registry under
/// "HKEY_CURRENT_USER\Software\VB and VBA Program Settings\<application>\<section>", where
/// the program's earlier Windows versions kept them; elsewhere in the INI file
/// "<application>/settings.ini" of the user's configuration folder. Values are texts.
///
/// The INI file is written whole or not at all: QSettings lays the new file out in a folder of
/// its own beside it, the result is read back and compared with what it must hold, and only
/// then are its bytes written over the old file through writeFileWhole. (QSettings' own save
/// reports success on a full disk and leaves an empty file behind.)
class QtSettingsStore : public ISettingsStore
{
public:
    QString get(const QString &application, const QString &section, const QString &key,
        const QString &defaultValue = QString()) const override;
    bool save(const QString &application, const QString &section, const QString &key,
        const QString &value) override;
    /// All values in one write of the INI file: all of them are stored, or none.
    bool saveAll(const QString &application, const QString &section,
        const QList<std::pair<QString, QString>> &values) override;
    bool remove(const QString &application, const QString &section, const QString &key) override;
    QString writeError() const override { return m_writeError; }
    /// The INI file (the registry key on Windows).
    QString location(const QString &application) const override;
    /// The INI file holds bytes that are no text, QSettings finds it malformed, or it is a
    /// folder or cannot be opened (the registry on Windows: never).
    QString readProblem(const QString &application) const override;
    /// Renames the INI file (or the folder in its place) to
    /// "settings-damaged-20261127-031500.ini" beside it.
    QString setAsideDamaged(const QString &application, const QDateTime &when) override;

    /// The settings of one application, opened at its top level.
    static std::unique_ptr<QSettings> openApplication(const QString &application);
    /// The spelling under which section is stored (an existing group whose name differs only in
    /// letter case), or section itself when there is none yet.
    static QString storedSectionName(const QSettings &settings, const QString &section);

private:
    /// A key and its new text; no text removes the key.
    using Change = std::pair<QString, std::optional<QString>>;
    /// Makes the changes to section in one write.
    bool change(const QString &application, const QString &section, const QList<Change> &changes);

    QString m_writeError;
};

} // namespace tarnwick
