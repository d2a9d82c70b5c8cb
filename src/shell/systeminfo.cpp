#include "shell/systeminfo.h"

#include "platform/iprocesslauncher.h"
#include "platform/iprompts.h"

#include <QFileInfo>
#include <QSettings>

#include <algorithm>

namespace tarnwick {

const QString SystemInfo::UnavailableMessage =
    QStringLiteral("System Information Is Unavailable At This Time");
const QString SystemInfo::UnavailableTitle = QStringLiteral("System Info");

namespace {

// Each desktop's own "About this computer" view first, then the system profilers that run on
// any desktop. gnome-control-center opens its system overview panel ("info-overview").
QList<SystemInfoProgram> knownPrograms()
{
    return {
        { QStringLiteral("gnome-control-center"), { QStringLiteral("info-overview") },
            QStringLiteral("GNOME") },
        { QStringLiteral("kinfocenter"), {}, QStringLiteral("KDE") },
        { QStringLiteral("xfce4-about"), {}, QStringLiteral("XFCE") },
        { QStringLiteral("mate-system-monitor"), { QStringLiteral("--show-system-tab") },
            QStringLiteral("MATE") },
        { QStringLiteral("cinnamon-settings"), { QStringLiteral("info") },
            QStringLiteral("X-Cinnamon") },
        { QStringLiteral("hardinfo2"), {}, QString() },
        { QStringLiteral("hardinfo"), {}, QString() },
    };
}

#ifdef Q_OS_WIN
// The registry tells where Windows keeps its System Information program.
QString windowsProgram()
{
    const QString root = QStringLiteral("HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\");
    QString path;
    if (SystemInfo::ReadKeyValue(
            root + QStringLiteral("Shared Tools\\MSINFO"), QStringLiteral("PATH"), path))
        return path;
    if (SystemInfo::ReadKeyValue(
            root + QStringLiteral("Shared Tools Location"), QStringLiteral("MSINFO"), path)) {
        path += QStringLiteral("\\MSINFO32.EXE");
        if (QFileInfo::exists(path))
            return path;
    }
    return QString();
}
#endif

} // namespace

QList<SystemInfoProgram> SystemInfo::linuxPrograms(const QString &currentDesktop)
{
    const QStringList desktops = currentDesktop.toUpper().split(QLatin1Char(':'));
    QList<SystemInfoProgram> programs = knownPrograms();
    std::stable_partition(programs.begin(), programs.end(), [&](const SystemInfoProgram &p) {
        return !p.desktop.isEmpty() && desktops.contains(p.desktop.toUpper());
    });
    return programs;
}

bool SystemInfo::ReadKeyValue(const QString &keyPath, const QString &valueName, QString &value)
{
    const QSettings key(keyPath, QSettings::NativeFormat);
    const QVariant read = key.value(valueName);
    if (read.typeId() == QMetaType::QString) {
        value = read.toString().section(QChar(u'\0'), 0, 0);
        return true;
    }
    if (read.typeId() == QMetaType::Int || read.typeId() == QMetaType::UInt) {
        value = QStringLiteral("&h") + QString::number(read.toUInt(), 16).toUpper();
        return true;
    }
    return false;
}

bool RunSystemInfo(IProcessLauncher &launcher, IPrompts &prompts, const QString &currentDesktop)
{
#ifdef Q_OS_WIN
    Q_UNUSED(currentDesktop)
    const QString program = windowsProgram();
    if (!program.isEmpty() && launcher.startShown(program, {}))
        return true;
#else
    for (const SystemInfoProgram &candidate : SystemInfo::linuxPrograms(currentDesktop)) {
        const QString path = launcher.findProgram(candidate.program);
        if (path.isEmpty())
            continue;
        if (launcher.startShown(path, candidate.arguments))
            return true;
        break;
    }
#endif
    prompts.msgBox(SystemInfo::UnavailableMessage, MsgStyle::OkOnly, SystemInfo::UnavailableTitle);
    return false;
}

} // namespace tarnwick
