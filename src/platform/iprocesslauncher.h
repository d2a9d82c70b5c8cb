#pragma once

#include <QString>
#include <QStringList>

namespace tarnwick {

/// Starts another program, detached and without waiting for it.
class IProcessLauncher
{
public:
    virtual ~IProcessLauncher() = default;

    /// Returns false when the program could not be started.
    virtual bool startDetached(const QString &program, const QStringList &arguments,
        const QString &workingFolder = QString()) = 0;
};

} // namespace tarnwick
