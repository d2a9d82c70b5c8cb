#pragma once

#include <QString>
#include <QStringList>

namespace tarnwick {

/// Where the program runs: its application folder (where the catalogue, the quote texts and
/// the help file live) and its command line.
class AppEnvironment
{
public:
    /// The variable that points the application folder elsewhere (tests, packaged installs
    /// whose executable folder is not writable).
    static constexpr const char *AppFolderVariable = "TARNWICK_APP_DIR";

    AppEnvironment(QString appFolder, QString commandLine, bool perUserFolder = false);

    /// From the running program: the folder from TARNWICK_APP_DIR when it is set, else the
    /// executable's folder when it is writable, else the per-user data folder (created here);
    /// the command line is the arguments after the program's name, joined by single blanks.
    static AppEnvironment fromApplication(const QStringList &arguments);

    QString appFolder() const { return m_appFolder; }
    QString commandLine() const { return m_commandLine; }
    /// The application folder is the per-user data folder of an installed copy.
    bool isPerUserFolder() const { return m_perUserFolder; }
    /// The diagnostic switch: the whole command-line text is exactly "test" (case-sensitive).
    bool isTestRun() const;
    /// A file in the application folder.
    QString pathInAppFolder(const QString &fileName) const;

private:
    QString m_appFolder;
    QString m_commandLine;
    bool m_perUserFolder = false;
};

} // namespace tarnwick
