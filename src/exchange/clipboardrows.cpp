#include "exchange/clipboardrows.h"

#include "exchange/textworkbook.h"

#include <QStringList>

namespace tarnwick::ClipboardRows {

std::unique_ptr<IWorkbook> workbook(const QString &text)
{
    QString lines = text;
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    const QStringList rows = lines.split(QLatin1Char('\n'));
    const qsizetype filled = std::count_if(
        rows.begin(), rows.end(), [](const QString &row) { return !row.trimmed().isEmpty(); });
    if (rows.isEmpty() || rows.first().trimmed().isEmpty() || filled < 2)
        return nullptr;
    return std::make_unique<TextWorkbook>(text.toUtf8());
}

} // namespace tarnwick::ClipboardRows
