#include "platform/appenvironment.h"

#include <QCoreApplication>
#include <QDir>

namespace tarnwick {

AppEnvironment::AppEnvironment(QString appFolder, QString commandLine)
    : m_appFolder(std::move(appFolder)), m_commandLine(std::move(commandLine))
{
}

AppEnvironment AppEnvironment::fromApplication(const QStringList &arguments)
{
    QString folder = qEnvironmentVariable(AppFolderVariable);
    if (folder.isEmpty())
        folder = QCoreApplication::applicationDirPath();
    return AppEnvironment(QDir(folder).absolutePath(), arguments.mid(1).join(QLatin1Char(' ')));
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
