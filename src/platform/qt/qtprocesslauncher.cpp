#include "platform/qt/qtprocesslauncher.h"

#include <QDesktopServices>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace tarnwick {

bool QtProcessLauncher::startDetached(
    const QString &program, const QStringList &arguments, const QString &workingFolder)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(workingFolder);
#ifdef Q_OS_WIN
    // Programs such as the handheld converter run hidden: no console or window appears.
    process.setCreateProcessArgumentsModifier([](QProcess::CreateProcessArguments *args) {
        args->flags |= CREATE_NO_WINDOW;
        args->startupInfo->dwFlags |= STARTF_USESHOWWINDOW;
        args->startupInfo->wShowWindow = SW_HIDE;
    });
#endif
    return process.startDetached();
}

bool QtProcessLauncher::startShown(const QString &program, const QStringList &arguments)
{
    return QProcess::startDetached(program, arguments);
}

QString QtProcessLauncher::findProgram(const QString &name) const
{
    return QStandardPaths::findExecutable(name);
}

bool QtProcessLauncher::openUrl(const QString &url)
{
    return QDesktopServices::openUrl(QUrl(url));
}

} // namespace tarnwick
