#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

namespace tarnwick {

class AppEnvironment;
class IHelpViewer;

/// Opens the program's help through the help viewer: the whole file, a window type of it
/// ("Main" for the contents, "Search" for the search) or the topic of a context number.
class CHelp
{
public:
    /// The help file's name; the program passes it in the application folder.
    static const QString HelpFileName;
    /// The window types the program asks for.
    static const QString MainWindow;
    static const QString SearchWindow;

    explicit CHelp(IHelpViewer &viewer) : m_viewer(viewer) { }

    /// Path "NewFile>WindowPane" (both trimmed) when a window type is given, else NewFile.
    /// Without a context number the viewer displays the file (command 0, data 0); with one it
    /// opens that context's topic (command 15, the number as data).
    void Show(const QString &NewFile, const QString &WindowPane = QString(),
        std::optional<qint32> ContextID = std::nullopt) const;

    /// The help file's path in the application folder.
    static QString helpFilePath(const AppEnvironment &environment);

private:
    IHelpViewer &m_viewer;
};

} // namespace tarnwick
