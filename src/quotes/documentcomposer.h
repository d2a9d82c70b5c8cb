#pragma once

#include <QString>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextFormat>

class QTextDocument;

namespace tarnwick {

/// A paragraph property of the documents: the paragraph stays on the same page as the one
/// after it (a quote line's name, price line and includes text are kept together so).
inline constexpr int KeepWithNextProperty = QTextFormat::UserProperty + 1;

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

    /// The number of the paragraph new text goes into.
    int blockNumber() const;
    /// Paragraphs first to last − 1 keep with the paragraph after them, so first to last stay
    /// on one page.
    void keepTogether(int first, int last);

private:
    QTextCursor m_cursor;
    QTextCharFormat m_format;
};

} // namespace tarnwick
