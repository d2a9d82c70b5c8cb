#pragma once

#include "help/helpmanual.h"
#include "platform/ihelpviewer.h"

#include <QPointer>

#include <memory>

namespace tarnwick {

class HelpWindow;

/// The program's own help viewer. Whatever help file the program names, it shows the manual
/// compiled into the program, in one help window that stays open beside the main window:
/// window type "Main" opens the contents, "Search" the search, a context number its page.
class QtHelpViewer : public IHelpViewer
{
public:
    /// manualFolder: where the manual is read from (the compiled-in resource by default).
    explicit QtHelpViewer(QString manualFolder = HelpManual::ResourceFolder);
    ~QtHelpViewer() override;

    void display(const QString &path, int command, qint32 data) override;

    /// The help window, once a call has opened it.
    HelpWindow *window() const;

private:
    QString m_folder;
    std::unique_ptr<HelpManual> m_manual;
    QPointer<HelpWindow> m_window;
};

} // namespace tarnwick
