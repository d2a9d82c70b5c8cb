#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tarnwick {

class IProcessLauncher;
class IPrompts;

/// A desktop program that shows what the computer is (system, processor, memory).
struct SystemInfoProgram
{
    QString program;
    QStringList arguments;
    QString desktop; ///< the desktop it belongs to, as XDG_CURRENT_DESKTOP names it
};

namespace SystemInfo {

extern const QString UnavailableMessage; ///< "System Information Is Unavailable At This Time"
extern const QString UnavailableTitle;

/// The system-information programs tried on Linux, those of the current desktop first
/// (currentDesktop as in XDG_CURRENT_DESKTOP, for example "ubuntu:GNOME").
QList<SystemInfoProgram> linuxPrograms(const QString &currentDesktop);

/// The registry value the Windows launcher reads: a string value up to its first NUL, a
/// 32-bit number as "&h" and its hexadecimal digits. False when the key or value is missing
/// or of another type.
bool ReadKeyValue(const QString &keyPath, const QString &valueName, QString &value);

} // namespace SystemInfo

/// Starts the system-information program. On Windows: the program named by the registry
/// (the MSINFO "PATH" value, else MSINFO32.EXE in the "Shared Tools Location" folder). On
/// Linux: the first of linuxPrograms() that is installed. When none is found, or it cannot be
/// started, the message "System Information Is Unavailable At This Time" is shown. Returns
/// true when a program was started.
bool RunSystemInfo(IProcessLauncher &launcher, IPrompts &prompts, const QString &currentDesktop);

} // namespace tarnwick
