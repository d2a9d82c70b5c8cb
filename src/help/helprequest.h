#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

namespace tarnwick {

/// What a call of the help viewer asks for: the file, the window type after its ">" (empty
/// when none) and, for the context command, the context number.
struct HelpRequest
{
    QString file;
    QString windowType;
    std::optional<qint32> context;

    /// True when the search should be shown (window type "Search", in any case).
    bool wantsSearch() const;
};

/// Splits "file>window type" and reads the command: 15 carries a context number in data,
/// any other command displays the file.
HelpRequest parseHelpRequest(const QString &path, int command, qint32 data);

} // namespace tarnwick
