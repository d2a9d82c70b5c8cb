#pragma once

#include <QString>
#include <QTextCharFormat>
#include <QTextCursor>

class QTextDocument;

namespace tarnwick {

/// Writes into a text document the way the documents are composed: a character format (font,
/// size, bold) is set, then text is inserted at the end in that format. A line feed starts a
/// new paragraph; CR LF and a lone CR in inserted text count as one line feed.
class DocumentComposer
{
public:
    explicit DocumentComposer(QTextDocument &document);

    void setFont(const QString &family);
    void setSize(qreal points);
    void setBold(bool bold);
    void insert(const QString &text);

private:
    QTextCursor m_cursor;
    QTextCharFormat m_format;
};

} // namespace tarnwick
