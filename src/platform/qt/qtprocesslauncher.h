#pragma once

#include "platform/iprocesslauncher.h"

namespace tarnwick {

/// Starts programs detached through QProcess; on Windows without showing a window.
class QtProcessLauncher : public IProcessLauncher
{
public:
    bool startDetached(const QString &program, const QStringList &arguments,
        const QString &workingFolder = QString()) override;
};

} // namespace tarnwick
