#include "quotes/documentcomposer.h"

#include <QTextBlock>
#include <QTextDocument>

namespace tarnwick {

DocumentComposer::DocumentComposer(QTextDocument &document) : m_cursor(&document)
{
    m_cursor.movePosition(QTextCursor::End);
}

void DocumentComposer::setFont(const QString &family)
{
    m_format.setFontFamilies({ family });
}

void DocumentComposer::setSize(qreal points)
{
    m_format.setFontPointSize(points);
}

void DocumentComposer::setBold(bool bold)
{
    m_format.setFontWeight(bold ? QFont::Bold : QFont::Normal);
}

void DocumentComposer::insert(const QString &text)
{
    QString lines = text;
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    lines.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    m_cursor.movePosition(QTextCursor::End);
    m_cursor.insertText(lines, m_format);
}

int DocumentComposer::blockNumber() const
{
    QTextCursor end(m_cursor);
    end.movePosition(QTextCursor::End);
    return end.blockNumber();
}

void DocumentComposer::keepTogether(int first, int last)
{
    QTextDocument *document = m_cursor.document();
    QTextBlockFormat keep;
    keep.setProperty(KeepWithNextProperty, true);
    for (int number = first; number < last; ++number) {
        QTextCursor block(document->findBlockByNumber(number));
        if (block.block().isValid())
            block.mergeBlockFormat(keep);
    }
}

} // namespace tarnwick
