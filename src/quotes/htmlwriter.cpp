#include "quotes/htmlwriter.h"

#include "quotes/documentcomposer.h"

#include <QStringList>
#include <QTextBlock>
#include <QTextBoundaryFinder>
#include <QTextCharFormat>
#include <QTextDocument>
#include <QTextFragment>

#include <algorithm>
#include <vector>

namespace tarnwick::HtmlWriter {

namespace {

/// One run of text in one character format.
struct Run
{
    QTextCharFormat format;
    QString text;
};
using HtmlCell = std::vector<Run>;

/// A word longer than LongWord characters gets a place to break after every BreakEvery.
constexpr qsizetype LongWord = 30;
constexpr qsizetype BreakEvery = 20;

bool endsWord(QChar ch)
{
    return ch.isSpace() || ch == QChar::LineSeparator;
}

QString escaped(const QString &text)
{
    QString out;
    out.reserve(text.size());
    // A word processor or mail program widens a table to its longest word: a name of 300
    // letters without a blank would push the prices off the page. Such a word gets places to
    // break (<wbr>), which are no characters: a part number copied from the mail is the
    // part number, not one with an invisible space in it.
    // Lengths count what a reader sees as one character (a letter with its accents, an emoji
    // with its skin tone, a flag), which a place to break never splits.
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    const auto startsCharacter = [&characters](qsizetype at) {
        characters.setPosition(at);
        return characters.isAtBoundary();
    };
    qsizetype wordEnd = 0;
    qsizetype wordLength = 0;
    qsizetype position = 0; // characters of the word before this one
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar ch = text.at(i);
        if (i >= wordEnd && !endsWord(ch)) {
            wordEnd = i;
            wordLength = 0;
            position = 0;
            for (; wordEnd < text.size() && !endsWord(text.at(wordEnd)); ++wordEnd)
                wordLength += startsCharacter(wordEnd) ? 1 : 0;
        }
        if (i < wordEnd && startsCharacter(i)) {
            if (wordLength > LongWord && position > 0 && position % BreakEvery == 0)
                out += QLatin1String("<wbr>");
            ++position;
        }
        if (ch == QLatin1Char('&'))
            out += QLatin1String("&amp;");
        else if (ch == QLatin1Char('<'))
            out += QLatin1String("&lt;");
        else if (ch == QLatin1Char('>'))
            out += QLatin1String("&gt;");
        else if (ch == QLatin1Char('"'))
            out += QLatin1String("&quot;");
        else if (ch == QChar::LineSeparator || ch == QLatin1Char('\n'))
            out += QLatin1String("<br>");
        else if (ch == QLatin1Char(' ') && (i + 1 < text.size() && text.at(i + 1) == ch))
            out += QLatin1String("&nbsp;"); // a run of blanks keeps its width
        else if (ch.unicode() >= 0x20 || ch == QLatin1Char('\t'))
            out += ch;
    }
    return out;
}

QString styleOf(const QTextCharFormat &format, const QTextDocument &document)
{
    const QStringList families = format.fontFamilies().toStringList();
    const QString family = families.isEmpty() ? document.defaultFont().family() : families.first();
    const qreal points = format.hasProperty(QTextFormat::FontPointSize)
        ? format.fontPointSize()
        : document.defaultFont().pointSizeF();
    QString style =
        QStringLiteral("font-family:'%1';").arg(QString(family).remove(QLatin1Char('\'')));
    if (points > 0)
        style += QStringLiteral("font-size:%1pt;").arg(points);
    style += format.fontWeight() >= QFont::Bold ? QLatin1String("font-weight:bold;")
                                                : QLatin1String("font-weight:normal;");
    if (format.fontItalic())
        style += QLatin1String("font-style:italic;");
    return style;
}

QString runsHtml(const HtmlCell &runs, const QTextDocument &document)
{
    QString out;
    for (const Run &run : runs) {
        if (!run.text.isEmpty())
            out += QStringLiteral("<span style=\"%1\">%2</span>")
                       .arg(styleOf(run.format, document), escaped(run.text));
    }
    return out;
}

/// The block's text split at its tabs into cells, each with its runs; a run of tabs is one
/// column boundary, and tabs at the start or the end open no empty column.
std::vector<HtmlCell> cellsOf(const QTextBlock &block)
{
    std::vector<HtmlCell> cells(1);
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        const QStringList parts = fragment.text().split(QLatin1Char('\t'));
        for (qsizetype i = 0; i < parts.size(); ++i) {
            if (i > 0 && !cells.back().empty())
                cells.emplace_back();
            if (!parts.at(i).isEmpty())
                cells.back().push_back({ fragment.charFormat(), parts.at(i) });
        }
    }
    if (cells.size() > 1 && cells.back().empty())
        cells.pop_back();
    return cells;
}

bool hasTab(const QTextBlock &block)
{
    return block.text().contains(QLatin1Char('\t'));
}

bool keepsWithNext(const QTextBlock &block)
{
    return block.blockFormat().boolProperty(KeepWithNextProperty);
}

/// An empty paragraph keeps its height through a blank in the paragraph's own format.
QString paragraphHtml(const QTextBlock &block, const QTextDocument &document)
{
    QString body;
    for (const HtmlCell &cell : cellsOf(block))
        body += runsHtml(cell, document);
    if (body.isEmpty())
        body = QStringLiteral("<span style=\"%1\">&nbsp;</span>")
                   .arg(styleOf(block.charFormat(), document));
    return QStringLiteral("<p style=\"margin:0\">%1</p>\n").arg(body);
}

/// Blocks from first on that form one table: blocks with tabs, and the blocks a kept block
/// holds on to. Returns the block after the table.
QTextBlock tableHtml(QTextBlock block, const QTextDocument &document, QString &out)
{
    std::vector<std::vector<HtmlCell>> rows;
    bool held = false;
    do {
        rows.push_back(cellsOf(block));
        held = keepsWithNext(block);
        block = block.next();
    } while (block.isValid() && (hasTab(block) || held));
    std::size_t columns = 1;
    for (const auto &row : rows)
        columns = std::max(columns, row.size());
    out += QLatin1String("<table cellspacing=\"0\" cellpadding=\"0\" "
                         "style=\"border-collapse:collapse;page-break-inside:avoid\">\n");
    for (const auto &row : rows) {
        out += QLatin1String("<tr>");
        for (std::size_t i = 0; i < row.size(); ++i) {
            // The last cell of a row spans the columns the row leaves free.
            const std::size_t span = i + 1 == row.size() ? columns - i : 1;
            const QString body = runsHtml(row.at(i), document);
            out +=
                span > 1 ? QStringLiteral("<td colspan=\"%1\"").arg(span) : QStringLiteral("<td");
            out += QStringLiteral(" style=\"padding:0 12pt 0 0;vertical-align:top\">%1</td>")
                       .arg(body.isEmpty() ? QStringLiteral("&nbsp;") : body);
        }
        out += QLatin1String("</tr>\n");
    }
    out += QLatin1String("</table>\n");
    return block;
}

} // namespace

QString write(const QTextDocument &document)
{
    QString out = QStringLiteral("<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"
                                 "</head>\n<body>\n");
    QTextBlock block = document.begin();
    while (block.isValid()) {
        // A paragraph kept with a tabbed one after it (a quote line's name) starts its table.
        const bool startsTable = hasTab(block)
            || (keepsWithNext(block) && block.next().isValid() && hasTab(block.next()));
        if (startsTable) {
            block = tableHtml(block, document, out);
            continue;
        }
        out += paragraphHtml(block, document);
        block = block.next();
    }
    out += QLatin1String("</body>\n</html>\n");
    return out;
}

} // namespace tarnwick::HtmlWriter
