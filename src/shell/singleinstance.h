#pragma once

#include <QString>

#include <memory>

class QLockFile;

namespace tarnwick {

/// Keeps a second copy of the program from running on the same application folder: two
/// copies would each write their own catalogue at shut-down, and the last one would win.
class SingleInstance
{
public:
    static constexpr QLatin1String AlreadyRunningMessage { "Tarnwick is already running." };

    /// Locks the application folder (or, when that folder cannot be written, a lock file in
    /// the temporary folder named after it).
    explicit SingleInstance(const QString &appFolder);
    ~SingleInstance();

    /// True when this is the only running copy for the folder.
    bool isOnlyInstance() const { return m_locked; }
    /// What the user is told when this is not the only copy: AlreadyRunningMessage, or, for
    /// a copy on another computer, which one, since when, and what to do once it is off.
    QString refusalMessage() const
    {
        return m_refusal.isEmpty() ? QString(AlreadyRunningMessage) : m_refusal;
    }

private:
    std::unique_ptr<QLockFile> m_lock;
    bool m_locked = false;
    QString m_refusal;
};

} // namespace tarnwick
