#include "exchange/clipboardrows.h"

#include "exchange/textworkbook.h"

#include <QRegularExpression>
#include <QStringList>
#include <QStringView>

#include <algorithm>

namespace tarnwick::ClipboardRows {

std::unique_ptr<IWorkbook> workbook(const QString &text)
{
    // Lines ended by a carriage return alone (an older program's text) are lines too.
    QString lines = text;
    static const QRegularExpression LoneReturn(QStringLiteral("\\r(?!\\n)"));
    lines.replace(LoneReturn, QStringLiteral("\n"));
    // Empty lines above the header row (a selection that started above it) are no rows.
    qsizetype start = 0;
    for (qsizetype end = lines.indexOf(QLatin1Char('\n')); end >= 0;
         end = lines.indexOf(QLatin1Char('\n'), start)) {
        if (!QStringView(lines).sliced(start, end - start).trimmed().isEmpty())
            break;
        start = end + 1;
    }
    lines.remove(0, start);
    QString plain = lines;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    const QStringList rows = plain.split(QLatin1Char('\n'));
    const qsizetype filled = std::count_if(
        rows.begin(), rows.end(), [](const QString &row) { return !row.trimmed().isEmpty(); });
    if (rows.isEmpty() || rows.first().trimmed().isEmpty() || filled < 2)
        return nullptr;
    return std::make_unique<TextWorkbook>(lines.toUtf8());
}

} // namespace tarnwick::ClipboardRows
