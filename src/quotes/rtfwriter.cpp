#include "quotes/rtfwriter.h"

#include "quotes/documentcomposer.h"

#include <QStringList>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextDocument>
#include <QTextFragment>

#include <cmath>

namespace tarnwick::RtfWriter {

namespace {

/// RTF's font family class of a font name, which a reader uses when it lacks the font.
QByteArray familyClass(const QString &family)
{
    const QString lower = family.toLower();
    if (lower.contains(QLatin1String("times")) || lower.contains(QLatin1String("serif"))
        || lower.contains(QLatin1String("roman")))
        return lower.contains(QLatin1String("sans")) ? "\\fswiss" : "\\froman";
    if (lower.contains(QLatin1String("arial")) || lower.contains(QLatin1String("helvetica"))
        || lower.contains(QLatin1String("sans")))
        return "\\fswiss";
    if (lower.contains(QLatin1String("courier")) || lower.contains(QLatin1String("mono")))
        return "\\fmodern";
    return "\\fnil";
}

QString familyOf(const QTextCharFormat &format, const QTextDocument &document)
{
    const QStringList families = format.fontFamilies().toStringList();
    return families.isEmpty() ? document.defaultFont().family() : families.first();
}

/// Text as RTF: \, { and } escaped, tabs as \tab, line separators as \line, every character
/// outside printable ASCII as a signed 16-bit \uN with "?" as the fallback character (a
/// character beyond 16 bits goes as its two UTF-16 halves, as RTF readers expect).
void appendText(QByteArray &out, const QString &text)
{
    for (const QChar ch : text) {
        const char16_t code = ch.unicode();
        if (code == u'\\' || code == u'{' || code == u'}') {
            out += '\\';
            out += char(code);
        } else if (code == u'\t') {
            out += "\\tab ";
        } else if (code == QChar::LineSeparator || code == u'\n') {
            out += "\\line ";
        } else if (code >= 0x20 && code < 0x7f) {
            out += char(code);
        } else if (code < 0x20) {
            continue; // other control characters have no meaning in a document
        } else {
            // In a group of its own, so that readers which lose track of the fallback
            // character (unrtf among them) still read the text after it.
            out += "{\\u" + QByteArray::number(int(static_cast<qint16>(code))) + "?}";
        }
    }
}

/// The character format of one run as control words: font, size in half points, bold, italic.
QByteArray formatWords(const QTextCharFormat &format, int fontIndex, qreal defaultSize)
{
    const qreal points =
        format.hasProperty(QTextFormat::FontPointSize) ? format.fontPointSize() : defaultSize;
    QByteArray words = "\\f" + QByteArray::number(fontIndex);
    words += "\\fs" + QByteArray::number(qRound(points * 2));
    words += format.fontWeight() >= QFont::Bold ? "\\b" : "\\b0";
    words += format.fontItalic() ? "\\i" : "\\i0";
    return words + ' ';
}

} // namespace

QByteArray write(const QTextDocument &document)
{
    QStringList fonts { document.defaultFont().family() };
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QString family = familyOf(it.fragment().charFormat(), document);
            if (!fonts.contains(family))
                fonts.append(family);
        }
    }
    QByteArray out = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n{\\fonttbl";
    for (int i = 0; i < fonts.size(); ++i) {
        out += "{\\f" + QByteArray::number(i) + familyClass(fonts.at(i)) + ' ';
        appendText(out, fonts.at(i));
        out += ";}";
    }
    out += "}\n\\pard\\plain\n";
    const qreal defaultSize =
        document.defaultFont().pointSizeF() > 0 ? document.defaultFont().pointSizeF() : 12.0;
    const auto wordsOf = [&](const QTextCharFormat &format) {
        return formatWords(format, int(fonts.indexOf(familyOf(format, document))), defaultSize);
    };
    bool keeping = false;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        // "Keep with next" is a paragraph property: it lasts until the next \pard.
        const bool keep = block.blockFormat().boolProperty(KeepWithNextProperty);
        if (keep != keeping)
            out += keep ? "\\pard\\keepn\n" : "\\pard\n";
        keeping = keep;
        // The paragraph mark takes the format of the paragraph's last run, so that an empty
        // line is as high as the text around it.
        QTextCharFormat last = block.charFormat();
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            last = it.fragment().charFormat();
            out += '{' + wordsOf(last);
            appendText(out, it.fragment().text());
            out += '}';
        }
        if (block.next().isValid())
            out += '{' + wordsOf(last) + "\\par}\n";
    }
    out += "\n}";
    return out;
}

} // namespace tarnwick::RtfWriter
