#pragma once

#include "platform/iprocesslauncher.h"

namespace tarnwick {

/// Starts programs detached through QProcess; helpers on Windows without showing a window.
class QtProcessLauncher : public IProcessLauncher
{
public:
    bool startDetached(const QString &program, const QStringList &arguments,
        const QString &workingFolder = QString()) override;
    bool startShown(const QString &program, const QStringList &arguments) override;
    QString findProgram(const QString &name) const override;
    bool openUrl(const QString &url) override;
};

} // namespace tarnwick
