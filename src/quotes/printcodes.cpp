#include "quotes/printcodes.h"

#include <array>

namespace tarnwick {

PageText expandPrintCodes(const QString &pattern, int page, int pageCount)
{
    std::array<QString, 3> sections;
    std::size_t section = 0;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar ch = pattern.at(i);
        const QChar next = i + 1 < pattern.size() ? pattern.at(i + 1) : QChar();
        if (ch != QLatin1Char('\\') || next.isNull()) {
            sections[section] += ch;
            continue;
        }
        if (next == QLatin1Char('t'))
            section = std::min<std::size_t>(section + 1, sections.size() - 1);
        else if (next == QLatin1Char('p'))
            sections[section] += QString::number(page);
        else if (next == QLatin1Char('P'))
            sections[section] += QString::number(pageCount);
        else if (next == QLatin1Char('\\'))
            sections[section] += QLatin1Char('\\');
        else {
            sections[section] += ch;
            continue; // the next character is ordinary text
        }
        ++i;
    }
    return { sections[0], sections[1], sections[2] };
}

} // namespace tarnwick
