#include "help/helprequest.h"

#include "platform/ihelpviewer.h"

namespace tarnwick {

bool HelpRequest::wantsSearch() const
{
    return windowType.compare(QLatin1String("Search"), Qt::CaseInsensitive) == 0;
}

HelpRequest parseHelpRequest(const QString &path, int command, qint32 data)
{
    HelpRequest request;
    const qsizetype mark = path.indexOf(QLatin1Char('>'));
    request.file = (mark < 0 ? path : path.left(mark)).trimmed();
    if (mark >= 0)
        request.windowType = path.mid(mark + 1).trimmed();
    if (command == HelpCommand::HelpContext)
        request.context = data;
    return request;
}

} // namespace tarnwick
