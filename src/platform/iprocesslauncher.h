#pragma once

#include <QString>
#include <QStringList>

namespace tarnwick {

/// Starts another program, detached and without waiting for it, or the desktop's program for a
/// link.
class IProcessLauncher
{
public:
    virtual ~IProcessLauncher() = default;

    /// Starts a helper program such as the handheld converter, hidden where the desktop can
    /// hide it. Returns false when the program could not be started.
    virtual bool startDetached(const QString &program, const QStringList &arguments,
        const QString &workingFolder = QString()) = 0;
    /// Starts a program the user works with, its window shown and focused as usual.
    virtual bool startShown(const QString &program, const QStringList &arguments) = 0;
    /// The full path of an installed program found on the search path; empty when none.
    virtual QString findProgram(const QString &name) const = 0;
    /// Opens a link ("mailto:…") with the program the desktop has for it. False when none
    /// could be started.
    virtual bool openUrl(const QString &url) = 0;
};

} // namespace tarnwick
