#include "shell/stringtable.h"

#include <QHash>

namespace tarnwick {

std::optional<QString> StringTable::LoadResString(int id)
{
    static const QHash<int, QString> entries {
        { HelpMenu, QStringLiteral("&Help") },
        { HelpContents, QStringLiteral("&Contents") },
        { HelpSearch, QStringLiteral("&Search For Help On...") },
        { HelpAbout, QStringLiteral("&About ") },
        { AboutCaption, QStringLiteral("About Tarnwick") },
        { SystemInfoButton, QStringLiteral("&System Info...") },
    };
    const auto found = entries.constFind(id);
    if (found == entries.constEnd())
        return std::nullopt;
    return *found;
}

std::optional<QString> numberedCaption(const QString &caption, const CaptionLookup &lookup)
{
    bool isNumber = false;
    const int id = caption.trimmed().toInt(&isNumber);
    if (!isNumber)
        return std::nullopt;
    return lookup(id);
}

} // namespace tarnwick
