#include "platform/chelp.h"

#include "platform/appenvironment.h"
#include "platform/ihelpviewer.h"

namespace tarnwick {

const QString CHelp::HelpFileName = QStringLiteral("Tarnwick Help.chm");
const QString CHelp::MainWindow = QStringLiteral("Main");
const QString CHelp::SearchWindow = QStringLiteral("Search");

void CHelp::Show(
    const QString &NewFile, const QString &WindowPane, std::optional<qint32> ContextID) const
{
    QString path = NewFile;
    if (!WindowPane.isEmpty())
        path = NewFile.trimmed() + QLatin1Char('>') + WindowPane.trimmed();
    if (!ContextID)
        m_viewer.display(path, HelpCommand::DisplayTopic, 0);
    else
        m_viewer.display(path, HelpCommand::HelpContext, *ContextID);
}

QString CHelp::helpFilePath(const AppEnvironment &environment)
{
    return environment.pathInAppFolder(HelpFileName);
}

} // namespace tarnwick
