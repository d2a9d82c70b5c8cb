#pragma once

#include <QByteArray>
#include <QString>

namespace tarnwick {

class HelpManual;
class IDesktopServices;
class IPrompts;

/// The manual as plain web pages, for the desktop's web browser: every page and picture of
/// the manual, and "index.html", the contents as a list of links.
namespace ManualPages {

/// The contents page written beside the manual's pages.
inline constexpr const char *IndexFile = "index.html";
/// The folder below the cache folder that holds the pages.
inline constexpr const char *CacheSubfolder = "manual";
/// The title of the messages of View → Web Browser.
extern const QString Title;

/// What writing the pages came to.
struct WriteResult
{
    bool ok = false;
    QString startPage; ///< the contents page's path, when written
    QString reason; ///< why not, in plain words
};

/// The contents page: the manual's title and its contents tree as nested lists of links.
QByteArray indexPage(const HelpManual &manual);

/// Writes the manual's pages, its pictures (in "images") and the contents page into folder
/// (created when missing; pages of an earlier copy are replaced).
WriteResult write(const HelpManual &manual, const QString &folder);

/// View → Web Browser: writes the pages into the manual's folder below the cache folder and
/// opens the contents page in the desktop's web browser. A folder that cannot be written or a
/// browser that does not start is reported through prompts. True when the browser took it.
bool openInBrowser(const HelpManual &manual, IDesktopServices &desktop, IPrompts &prompts);

} // namespace ManualPages

} // namespace tarnwick
