#include "exchange/textworkbook.h"

#include "catalogue/cataloguetext.h"

namespace tarnwick {

TextWorkbook::TextWorkbook(const QByteArray &bytes)
{
    QString text = decodeCatalogueBytes(bytes);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty()) {
        lines.removeLast();
    }
    m_rows.reserve(std::size_t(lines.size()));
    for (const QString &line : lines) {
        m_rows.push_back(line.split(QLatin1Char('\t')));
    }
}

QString TextWorkbook::cellText(int column, int row) const
{
    if (row < 1 || row > int(m_rows.size()) || column < 0) {
        return QString();
    }
    const QStringList &cells = m_rows[std::size_t(row - 1)];
    return column < cells.size() ? cells[column] : QString();
}

} // namespace tarnwick
