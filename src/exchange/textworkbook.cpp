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
    qsizetype width = 0;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QStringList cells = lines[i].split(QLatin1Char('\t'));
        if (m_rows.empty()) {
            width = cells.size();
        } else {
            // A field that holds a line break continues on the next line.
            while (cells.size() > 1 && cells.size() < width && i + 1 < lines.size()) {
                const QStringList next = lines[i + 1].split(QLatin1Char('\t'));
                if (cells.size() + next.size() - 1 > width) {
                    break;
                }
                cells.last() += QStringLiteral("\r\n") + next.first();
                cells.append(next.mid(1));
                ++i;
            }
        }
        m_rows.push_back(std::move(cells));
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
