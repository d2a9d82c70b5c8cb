#include "platform/qt/qthelpviewer.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace tarnwick {

QtHelpViewer::QtHelpViewer(UrlOpener opener) : m_opener(std::move(opener))
{
    if (!m_opener)
        m_opener = [](const QUrl &url) { return QDesktopServices::openUrl(url); };
}

// The topic (a window type such as "Main" or "Search") is not passed on: desktop viewers of
// compiled help files take no such argument, and a fragment on a file URL makes some openers
// look for a file of that name.
bool QtHelpViewer::showTopic(const QString &helpFile, const QString &topic)
{
    Q_UNUSED(topic)
    return open(helpFile);
}

// The context number is not passed on, for the same reason as the topic.
bool QtHelpViewer::showContext(const QString &helpFile, int contextNumber)
{
    Q_UNUSED(contextNumber)
    return open(helpFile);
}

// A path in the help viewer's "file>window" form is cut at the ">", which no file name on
// Windows may contain.
bool QtHelpViewer::open(const QString &helpFile) const
{
    const QFileInfo info(helpFile.section(QLatin1Char('>'), 0, 0).trimmed());
    if (!info.isFile())
        return false;
    return m_opener(QUrl::fromLocalFile(info.absoluteFilePath()));
}

} // namespace tarnwick
