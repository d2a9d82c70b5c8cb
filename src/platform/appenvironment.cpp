#include "platform/appenvironment.h"

#include "platform/appfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace tarnwick {

AppEnvironment::AppEnvironment(QString appFolder, QString commandLine, bool perUserFolder)
    : m_appFolder(std::move(appFolder)), m_commandLine(std::move(commandLine)),
      m_perUserFolder(perUserFolder)
{
}

AppEnvironment AppEnvironment::fromApplication(const QStringList &arguments)
{
    const AppFolderChoice choice = AppFolderRule::choose(qEnvironmentVariable(AppFolderVariable),
        QCoreApplication::applicationDirPath(),
        QStandardPaths::writableLocation(QStandardPaths::AppDataLocation),
        &AppFolderRule::isWritableFolder);
    if (choice.perUser)
        QDir().mkpath(choice.folder);
    return AppEnvironment(choice.folder, arguments.mid(1).join(QLatin1Char(' ')), choice.perUser);
}

bool AppEnvironment::isTestRun() const
{
    return m_commandLine == QLatin1String("test");
}

QString AppEnvironment::pathInAppFolder(const QString &fileName) const
{
    return QDir::toNativeSeparators(QDir(m_appFolder).filePath(fileName));
}

} // namespace tarnwick
