#include "platform/qt/qthelpviewer.h"

#include "help/helprequest.h"
#include "platform/qt/helpwindow.h"

#include <QMessageBox>

namespace tarnwick {

QtHelpViewer::QtHelpViewer(QString manualFolder) : m_folder(std::move(manualFolder)) { }

QtHelpViewer::~QtHelpViewer()
{
    delete m_window;
}

HelpWindow *QtHelpViewer::window() const
{
    return m_window;
}

// The manual is read on the first call, so a program that never opens its help spends
// nothing on it; the window is kept and reused by every later call.
void QtHelpViewer::display(const QString &path, int command, qint32 data)
{
    if (!m_manual) {
        auto manual = std::make_unique<HelpManual>();
        if (!manual->load(m_folder)) {
            QMessageBox::warning(nullptr, QStringLiteral("Tarnwick Help"), manual->errorString());
            return;
        }
        m_manual = std::move(manual);
    }
    if (!m_window)
        m_window = new HelpWindow(*m_manual);
    m_window->showRequest(parseHelpRequest(path, command, data));
}

} // namespace tarnwick
