// The RTF of the documents read back by an independent reader, Debian's unrtf.
#include "catalogue/table.h"
#include "quotes/productreport.h"
#include "quotes/quotedocument.h"
#include "quotes/quoteline.h"
#include "quotes/rtfwriter.h"
#include "support/testlocale.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

/// unrtf's HTML of rtf (the body only, raw line breaks removed).
QString unrtfHtml(const QByteArray &rtf)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("doc.rtf"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(rtf);
    file.close();
    QProcess unrtf;
    unrtf.start(QStringLiteral("unrtf"), { QStringLiteral("--html"), path });
    EXPECT_TRUE(unrtf.waitForFinished(20000)) << "unrtf must be installed (scripts/deps.sh)";
    QString html = QString::fromUtf8(unrtf.readAllStandardOutput());
    const qsizetype body = html.indexOf(QLatin1String("<body>"));
    html = html.mid(body + 6, html.indexOf(QLatin1String("</body>")) - body - 6);
    html.remove(QLatin1Char('\n'));
    return html;
}

/// Every run of blanks and tabs as one blank: unrtf shows a tab as blanks up to its next tab
/// stop and runs of blanks as one.
QString blanksCollapsed(QString text)
{
    static const QRegularExpression blanks(QStringLiteral("[ \\t\\x{00a0}]+"));
    return text.replace(blanks, QStringLiteral(" "));
}

/// The text of unrtf's HTML: <br> is a line feed, tags dropped, character references decoded,
/// blanks collapsed.
QString textOf(QString html)
{
    html.replace(QLatin1String("<br>"), QLatin1String("\n"));
    html.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
    QString text;
    static const QRegularExpression entity(QStringLiteral("&#?[A-Za-z0-9]+;"));
    qsizetype from = 0;
    for (auto it = entity.globalMatch(html); it.hasNext();) {
        const auto match = it.next();
        text += html.mid(from, match.capturedStart() - from);
        text += QTextDocumentFragment::fromHtml(match.captured()).toPlainText();
        from = match.capturedEnd();
    }
    return blanksCollapsed(text + html.mid(from));
}

Table reportCatalogue()
{
    Table catalogue(1, 15);
    catalogue.put(1, 1, "ÉC-7");
    catalogue.put(1, 2, "Café crème – Кофе €");
    catalogue.put(1, 3, "12.5");
    catalogue.put(1, 4, "Note {braces} \\ back");
    catalogue.put(1, 5, "Includes ü");
    catalogue.put(1, 6, "10");
    catalogue.put(1, 7, "11");
    return catalogue;
}

TEST(RtfReadBackTest, TheProductReportReadsBackAsItsPlainText)
{
    const auto document = ProductReport::build(reportCatalogue(), 1, EnUs);
    const QString html = unrtfHtml(RtfWriter::write(*document));
    EXPECT_EQ(textOf(html), blanksCollapsed(document->toPlainText()));
}

TEST(RtfReadBackTest, TheProductReportKeepsBoldAndSizesWhereTheyBelong)
{
    const auto document = ProductReport::build(reportCatalogue(), 1, EnUs);
    const QString html = unrtfHtml(RtfWriter::write(*document));
    EXPECT_TRUE(html.contains(QLatin1String("<b>Product Report</b>"))) << qPrintable(html);
    EXPECT_TRUE(html.contains(QLatin1String("<b>Includes:</b>")));
    EXPECT_TRUE(html.contains(QLatin1String("<b>Discount Schedule:</b>")));
    EXPECT_FALSE(html.contains(QLatin1String("<b>Part Number")));
    // 12 point headings, 8 point details, 10 point bodies: three different sizes.
    EXPECT_TRUE(html.contains(QLatin1String("<font size=\"1\">Part Number")));
    EXPECT_TRUE(html.contains(QLatin1String("face=\"Arial\"")));
}

TEST(RtfReadBackTest, TheQuoteDocumentReadsBackWithItsBoldHeading)
{
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    quote.put(1, QuoteLine::PartNumber, "A-1");
    quote.put(1, QuoteLine::ProductName, "Widget – grün");
    quote.put(1, QuoteLine::UnitPrice, "$12.50");
    quote.put(1, QuoteLine::Quantity, qint32(1));
    quote.put(1, QuoteLine::ExtendedPrice, 12.5);
    quote.put(1, QuoteLine::ListPrice, "$12.50");
    QuoteDocumentInput input;
    input.heading = QStringLiteral("Angebot für Sie");
    input.ending = QStringLiteral("Mit freundlichen Grüßen");
    input.totalBox = QStringLiteral("$12.50");
    const auto document = QuoteDocument::build(quote, input, EnUs);
    const QString html = unrtfHtml(RtfWriter::write(*document));
    EXPECT_EQ(textOf(html), blanksCollapsed(document->toPlainText()));
    EXPECT_TRUE(html.contains(QStringLiteral("<b>Angebot f&uuml;"))) << qPrintable(html);
    EXPECT_TRUE(html.contains(QLatin1String("face=\"Times New Roman\"")));
}

TEST(RtfWriterTest, EscapesSpecialAndNonAsciiCharacters)
{
    QTextDocument document;
    QTextCursor(&document).insertText(QStringLiteral("a{b}c\\d\te\u00e9\u20ac\U0001F600"));
    const QByteArray rtf = RtfWriter::write(document);
    EXPECT_TRUE(rtf.contains("a\\{b\\}c\\\\d\\tab e{\\u233?}{\\u8364?}{\\u-10179?}{\\u-8704?}"))
        << rtf.constData();
    for (const char byte : rtf)
        EXPECT_LT(static_cast<unsigned char>(byte), 0x80);
}

TEST(RtfWriterTest, WritesAFontTableAndOneParagraphMarkPerBreak)
{
    QTextDocument document;
    QTextCharFormat format;
    format.setFontFamilies({ QStringLiteral("Arial") });
    format.setFontPointSize(12);
    format.setFontWeight(QFont::Bold);
    QTextCursor cursor(&document);
    cursor.insertText(QStringLiteral("one\ntwo\n\nthree"), format);
    const QByteArray rtf = RtfWriter::write(document);
    EXPECT_TRUE(rtf.contains("\\fswiss Arial;}"));
    EXPECT_EQ(rtf.count("\\par}"), 3);
    EXPECT_TRUE(rtf.contains("\\fs24\\b\\i0 one}"));
}

} // namespace
