// The quote document's clipboard forms as a word processor takes them: the HTML with its
// columns in table cells (read back by Qt's own HTML reader), and the RTF keeping each
// product's name, price line and includes text together on one page.
#include "quotedocumentfixture.h"

#include "catalogue/table.h"
#include "quotes/documentclipboard.h"
#include "quotes/htmlwriter.h"
#include "quotes/productreport.h"
#include "quotes/quotedocument.h"
#include "quotes/quoteline.h"
#include "quotes/rtfwriter.h"
#include "support/testlocale.h"

#include <QRegularExpression>
#include <QTextBoundaryFinder>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

class ClipboardFormsTest : public tarnwick::test::QuoteDocumentFixture
{
protected:
    ClipboardFormsTest() : QuoteDocumentFixture(QStringLiteral("$2.50"), QStringLiteral("$47.50"))
    {
        addLine(1, "A-1", "Widget", "$12.50", qint32(2), 25.0, "$12.50", "Box and cable");
        addLine(2, "B-2", "Gadget & Co <big>", 11.25f, qint32(2), 22.5, "$12.50", "Manual");
    }
};

QString cellText(QTextTable *table, int row, int column)
{
    const QTextTableCell cell = table->cellAt(row, column);
    QTextCursor cursor = cell.firstCursorPosition();
    cursor.setPosition(cell.lastCursorPosition().position(), QTextCursor::KeepAnchor);
    return cursor.selectedText();
}

std::vector<QTextTable *> tablesOf(QTextDocument &document)
{
    std::vector<QTextTable *> tables;
    for (QTextFrame *frame : document.rootFrame()->childFrames()) {
        if (auto *table = qobject_cast<QTextTable *>(frame))
            tables.push_back(table);
    }
    return tables;
}

TEST_F(ClipboardFormsTest, EveryQuoteLineIsATableWithItsColumnsInCells)
{
    const auto document = QuoteDocument::build(quote, input, EnUs);
    const RichClipboardDocument forms = clipboardForms(*document);
    EXPECT_FALSE(forms.html.contains(QLatin1String("pre-wrap")));
    QTextDocument readBack;
    readBack.setHtml(forms.html);
    const auto tables = tablesOf(readBack);
    ASSERT_EQ(tables.size(), 2U) << forms.html.toStdString();

    QTextTable *plain = tables[0];
    ASSERT_EQ(plain->rows(), 3);
    ASSERT_EQ(plain->columns(), 3);
    EXPECT_EQ(cellText(plain, 0, 0), QStringLiteral("A-1 "));
    EXPECT_EQ(cellText(plain, 0, 1), QStringLiteral("Widget"));
    EXPECT_EQ(plain->cellAt(0, 1).columnSpan(), 2);
    EXPECT_EQ(cellText(plain, 1, 0), QStringLiteral("Quantity 2"));
    EXPECT_EQ(cellText(plain, 1, 1), QStringLiteral("Price $12.50"));
    EXPECT_EQ(cellText(plain, 1, 2), QStringLiteral("Extended Price\u00a0 $25.00"));
    EXPECT_EQ(cellText(plain, 2, 0), QStringLiteral("Box and cable"));
    EXPECT_EQ(plain->cellAt(2, 0).columnSpan(), 3);

    QTextTable *discounted = tables[1];
    ASSERT_EQ(discounted->columns(), 5);
    EXPECT_EQ(cellText(discounted, 0, 1), QStringLiteral("Gadget & Co <big>"));
    const QStringList columns { "Quantity 2", "List: $12.50", "Price: $11.25", "Discount: 10.00%",
        "Ext.: $22.50" };
    for (int column = 0; column < 5; ++column)
        EXPECT_EQ(cellText(discounted, 1, column), columns.at(column));
    EXPECT_EQ(cellText(discounted, 2, 0), QStringLiteral("Manual"));
}

TEST_F(ClipboardFormsTest, TheHtmlKeepsTheTextsAndTheirFormats)
{
    const auto document = QuoteDocument::build(quote, input, EnUs);
    const QString html = HtmlWriter::write(*document);
    EXPECT_TRUE(html.contains(QLatin1String("<meta charset=\"utf-8\">")));
    EXPECT_TRUE(html.contains(QLatin1String("Gadget &amp; Co &lt;big&gt;")));
    EXPECT_TRUE(html.contains(QLatin1String(
        "font-family:'Times New Roman';font-size:12pt;font-weight:bold;\">Dear customer,")));
    EXPECT_TRUE(html.contains(QLatin1String("font-weight:bold;\">Order Total = $47.50")));
    QTextDocument readBack;
    readBack.setHtml(html);
    const QString text = readBack.toPlainText();
    for (const char *expected :
        { "Dear customer,", "Discount Amount = $2.50", "Order Total = $47.50", "Kind regards" })
        EXPECT_TRUE(text.contains(QLatin1String(expected))) << expected;
}

TEST_F(ClipboardFormsTest, AVeryLongWordCanBreakInTheHtmlAndReadsBackWhole)
{
    // Mail programs and word processors widen a table to its longest word; without a place to
    // break, a 300-letter name pushes the line's prices off the page.
    const QString longName = QString(300, QLatin1Char('N'));
    const QByteArray name = longName.toLatin1();
    addLine(3, "C-3", name.constData(), "$1.00", qint32(1), 1.0, "$1.00", "");
    const QString html = HtmlWriter::write(*QuoteDocument::build(quote, input, EnUs));
    const QString broken =
        QStringList(15, QString(20, QLatin1Char('N'))).join(QLatin1String("<wbr>"));
    EXPECT_TRUE(html.contains(QLatin1Char('>') + broken + QLatin1Char('<'))) << html.toStdString();
    QTextDocument readBack;
    readBack.setHtml(html);
    // The places to break are no characters: copied from the mail, the name is the name.
    EXPECT_TRUE(readBack.toPlainText().contains(longName));
    EXPECT_FALSE(html.contains(QChar(0x200B)) || html.contains(QLatin1String("&#8203;")));
    // Words of ordinary length are written as they are.
    EXPECT_TRUE(html.contains(QLatin1String(">Box and cable<")));
    EXPECT_EQ(html.count(QLatin1String("<wbr>")), 14);
}

TEST_F(ClipboardFormsTest, APlaceToBreakNeverSplitsACharacter)
{
    // "X" and 30 characters a reader sees as one each, made of two UTF-16 units or of several
    // code points: a face, a flag, a thumb with its skin tone, an e with a separate accent, a
    // family joined into one.
    for (const char *one : { "\xF0\x9F\x98\x80", "\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA",
             "\xF0\x9F\x91\x8D\xF0\x9F\x8F\xBD", "e\xCC\x81",
             "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7" }) {
        const QString longName = QStringLiteral("X") + QString::fromUtf8(one).repeated(30);
        addLine(3, "C-3", longName.toUtf8().constData(), "$1.00", qint32(1), 1.0, "$1.00", "");
        const QString html = HtmlWriter::write(*QuoteDocument::build(quote, input, EnUs));
        // The html without its places to break, and where they were.
        QString plain;
        std::vector<qsizetype> breaks;
        for (qsizetype i = 0; i < html.size();) {
            if (QStringView(html).mid(i, 5) == QLatin1String("<wbr>")) {
                breaks.push_back(plain.size());
                i += 5;
            } else {
                plain += html.at(i++);
            }
        }
        EXPECT_FALSE(breaks.empty()) << one;
        QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, plain);
        for (const qsizetype at : breaks) {
            characters.setPosition(at);
            EXPECT_TRUE(characters.isAtBoundary()) << one << " split at " << at;
        }
        QTextDocument readBack;
        readBack.setHtml(html);
        EXPECT_TRUE(readBack.toPlainText().contains(longName)) << one;
    }
}

TEST_F(ClipboardFormsTest, TheProductReportKeepsItsColumnsToo)
{
    Table catalogue(1, 15);
    catalogue.put(1, 1, "A-100");
    catalogue.put(1, 2, "Anchor");
    catalogue.put(1, 3, "12.5");
    const auto report = ProductReport::build(catalogue, 1, EnUs);
    QTextDocument readBack;
    readBack.setHtml(clipboardForms(*report).html);
    const auto tables = tablesOf(readBack);
    ASSERT_EQ(tables.size(), 1U);
    EXPECT_EQ(cellText(tables[0], 0, 0), QStringLiteral("Part Number\u00a0 A-100"));
    EXPECT_EQ(cellText(tables[0], 0, 1), QStringLiteral("Anchor"));
    EXPECT_TRUE(readBack.toPlainText().contains(QLatin1String("Product Report")));
}

/// The RTF between one \pard and the next, each with whether it keeps with the next paragraph.
std::vector<std::pair<bool, QString>> paragraphRuns(const QByteArray &rtf)
{
    std::vector<std::pair<bool, QString>> runs;
    const QString text = QString::fromLatin1(rtf);
    for (const QString &part : text.split(QStringLiteral("\\pard")).mid(1))
        runs.emplace_back(part.startsWith(QLatin1String("\\keepn")), part);
    return runs;
}

TEST_F(ClipboardFormsTest, TheRtfKeepsEachProductsBlockTogether)
{
    const auto document = QuoteDocument::build(quote, input, EnUs);
    const QByteArray rtf = RtfWriter::write(*document);
    const auto runs = paragraphRuns(rtf);
    // \plain, then per line: the kept name and price line, then the includes and the rest.
    ASSERT_EQ(runs.size(), 5U) << rtf.constData();
    EXPECT_FALSE(runs[0].first);
    EXPECT_TRUE(runs[0].second.contains(QLatin1String("Dear customer,")));
    for (const std::size_t kept : { 1U, 3U }) {
        EXPECT_TRUE(runs[kept].first);
        EXPECT_EQ(runs[kept].second.count(QLatin1String("\\par}")), 2);
    }
    EXPECT_TRUE(runs[1].second.contains(QLatin1String("Widget")));
    EXPECT_TRUE(runs[1].second.contains(QLatin1String("Quantity 2")));
    EXPECT_TRUE(runs[2].second.contains(QLatin1String("Box and cable")));
    EXPECT_FALSE(runs[2].first);
    EXPECT_TRUE(runs[3].second.contains(QLatin1String("Gadget")));
    EXPECT_TRUE(runs[4].second.contains(QLatin1String("Manual")));
    EXPECT_TRUE(runs[4].second.contains(QLatin1String("Kind regards")));
}

TEST_F(ClipboardFormsTest, WithoutIncludesThePriceLineEndsTheBlock)
{
    input.noIncludes = 1;
    const auto document = QuoteDocument::build(quote, input, EnUs);
    const auto runs = paragraphRuns(RtfWriter::write(*document));
    ASSERT_EQ(runs.size(), 5U);
    EXPECT_TRUE(runs[1].first);
    EXPECT_EQ(runs[1].second.count(QLatin1String("\\par}")), 1);
    EXPECT_TRUE(runs[1].second.contains(QLatin1String("Widget")));
    EXPECT_TRUE(runs[2].second.startsWith(QLatin1String("\n{\\f0\\fs20\\b0\\i0 Quantity 2")))
        << runs[2].second.toStdString();
}

TEST_F(ClipboardFormsTest, A200LineQuoteKeepsEveryBlock)
{
    for (int row = 1; row <= 200; ++row)
        addLine(row, "P", "Product", "$1.00", qint32(1), 1.0, "$1.00", "Parts");
    const auto runs = paragraphRuns(RtfWriter::write(*QuoteDocument::build(quote, input, EnUs)));
    EXPECT_EQ(
        std::count_if(runs.begin(), runs.end(), [](const auto &run) { return run.first; }), 200);
}

} // namespace
