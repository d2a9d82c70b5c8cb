#pragma once

#include "platform/ihelpviewer.h"

#include <functional>

class QUrl;

namespace tarnwick {

/// Shows the program's compiled help file with the desktop's viewer for it. The desktop
/// opens a file as a whole, so topics and context numbers cannot be chosen: every call opens
/// the help file at its start page. Returns false when the file is missing or the desktop
/// could not open it.
class QtHelpViewer : public IHelpViewer
{
public:
    using UrlOpener = std::function<bool(const QUrl &)>;

    /// opener opens a URL with the desktop; without one, QDesktopServices::openUrl.
    explicit QtHelpViewer(UrlOpener opener = {});

    bool showTopic(const QString &helpFile, const QString &topic) override;
    bool showContext(const QString &helpFile, int contextNumber) override;

private:
    bool open(const QString &helpFile) const;
    UrlOpener m_opener;
};

} // namespace tarnwick
