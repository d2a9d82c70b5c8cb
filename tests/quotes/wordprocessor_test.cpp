// The quote document as a word processor takes it from the clipboard. The HTML and RTF the
// program writes for a quote of three lines are compared byte for byte with files that
// LibreOffice Writer has read (tests/quotes/data/README.md); Writer's own reading of them, kept
// beside them, shows each line's columns as the cells of a table that does not break between
// its rows, and each product's name and price line kept with the paragraph after them.
#include "catalogue/table.h"
#include "quotes/documentclipboard.h"
#include "quotes/quotedocument.h"
#include "quotes/quoteline.h"
#include "support/testlocale.h"

#include <QFile>
#include <QTextDocument>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <map>
#include <vector>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

QByteArray dataFile(const char *name)
{
    QFile file(QStringLiteral(TARNWICK_TEST_DATA "/") + QString::fromLatin1(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
}

/// The quote of three lines the data files were made from.
RichClipboardDocument threeLineQuote()
{
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    for (int row = 1; row <= 3; ++row) {
        quote.put(row, QuoteLine::PartNumber, QStringLiteral("BV-%1").arg(1000 + row));
        quote.put(row, QuoteLine::ProductName, QStringLiteral("Ball valve number %1").arg(row));
        if (row == 3) {
            quote.put(row, QuoteLine::UnitPrice, 2.25f);
            quote.put(row, QuoteLine::ExtendedPrice, 2.25 * row);
        } else {
            quote.put(row, QuoteLine::UnitPrice, "$2.50");
            quote.put(row, QuoteLine::ExtendedPrice, 2.5 * row);
        }
        quote.put(row, QuoteLine::Quantity, qint32(row));
        quote.put(row, QuoteLine::ListPrice, "$2.50");
        quote.put(row, QuoteLine::Includes,
            QStringLiteral("Fittings, gaskets and a manual for valve %1").arg(row));
    }
    QuoteDocumentInput input;
    input.heading = QStringLiteral("Quotation\nfor ACME");
    input.ending = QStringLiteral("Kind regards\nJo");
    input.discountBox = QStringLiteral("$1.25");
    input.totalBox = QStringLiteral("$99.00");
    return clipboardForms(*QuoteDocument::build(quote, input, EnUs));
}

/// What Writer made of a document: its paragraphs (style and text, a tab as '\t'), the
/// paragraph styles that keep with the next paragraph, and its tables (rows of cell texts) with
/// whether they may break between rows.
struct WriterDocument
{
    std::vector<std::pair<QString, QString>> paragraphs;
    std::map<QString, bool> keepWithNext;
    std::vector<std::vector<QStringList>> tables;
    std::map<QString, bool> tableMayBreak;
    QStringList tableStyles;
};

WriterDocument readFlatOdt(const QByteArray &xml)
{
    WriterDocument document;
    QXmlStreamReader reader(xml);
    QString style, paragraphStyle, text;
    int paragraphDepth = 0;
    int cellDepth = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        const auto name = reader.qualifiedName();
        if (reader.isStartElement()) {
            const auto attributes = reader.attributes();
            if (name == QLatin1String("style:style"))
                style = attributes.value(QLatin1String("style:name")).toString();
            else if (name == QLatin1String("style:paragraph-properties"))
                document.keepWithNext[style] =
                    attributes.value(QLatin1String("fo:keep-with-next")) == QLatin1String("always");
            else if (name == QLatin1String("style:table-properties"))
                document.tableMayBreak[style] =
                    attributes.value(QLatin1String("style:may-break-between-rows"))
                    != QLatin1String("false");
            else if (name == QLatin1String("table:table")) {
                document.tables.emplace_back();
                document.tableStyles
                    << attributes.value(QLatin1String("table:style-name")).toString();
            } else if (name == QLatin1String("table:table-row"))
                document.tables.back().emplace_back();
            else if (name == QLatin1String("table:table-cell")) {
                document.tables.back().back() << QString();
                ++cellDepth;
            } else if (name == QLatin1String("text:p") && paragraphDepth++ == 0) {
                paragraphStyle = attributes.value(QLatin1String("text:style-name")).toString();
                text.clear();
            } else if (name == QLatin1String("text:tab"))
                text += QLatin1Char('\t');
            else if (name == QLatin1String("text:s"))
                text += QLatin1Char(' ');
        } else if (reader.isCharacters() && paragraphDepth > 0) {
            text += reader.text();
        } else if (reader.isEndElement() && name == QLatin1String("table:table-cell")) {
            --cellDepth;
        } else if (reader.isEndElement() && name == QLatin1String("text:p")
            && --paragraphDepth == 0) {
            document.paragraphs.emplace_back(paragraphStyle, text);
            if (cellDepth > 0)
                document.tables.back().back().last() += text;
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return document;
}

TEST(WordProcessorTest, TheClipboardFormsAreTheOnesWriterWasShown)
{
    const RichClipboardDocument forms = threeLineQuote();
    EXPECT_EQ(forms.html.toUtf8(), dataFile("quote-3-lines.html"));
    EXPECT_EQ(forms.rtf.toLatin1(), dataFile("quote-3-lines.rtf"));
}

TEST(WordProcessorTest, WriterTakesEachLinesColumnsAsTheCellsOfATableThatStaysWhole)
{
    const WriterDocument writer = readFlatOdt(dataFile("quote-3-lines.html.fodt"));
    ASSERT_EQ(writer.tables.size(), 3U);
    for (std::size_t line = 0; line < 3; ++line) {
        const auto &rows = writer.tables[line];
        ASSERT_EQ(rows.size(), 3U) << line;
        const QString n = QString::number(line + 1);
        EXPECT_EQ(rows[0].first(), QStringLiteral("BV-100") + n + QLatin1Char(' '));
        EXPECT_EQ(rows[0].at(1), QStringLiteral("Ball valve number ") + n);
        EXPECT_EQ(rows[1].first(), QStringLiteral("Quantity ") + n);
        EXPECT_EQ(rows[2].first(), QStringLiteral("Fittings, gaskets and a manual for valve ") + n);
        EXPECT_FALSE(writer.tableMayBreak.at(writer.tableStyles.at(qsizetype(line)))) << line;
    }
    EXPECT_EQ(writer.tables[0][1],
        (QStringList {
            "Quantity 1", "Price $2.50", QStringLiteral("Extended Price\u00a0 $2.50") }));
    EXPECT_EQ(writer.tables[2][1],
        (QStringList {
            "Quantity 3", "List: $2.50", "Price: $2.25", "Discount: 10.00%", "Ext.: $6.75" }));
}

TEST(WordProcessorTest, WriterKeepsEachProductsNameAndPriceLineWithTheParagraphAfterThem)
{
    const WriterDocument writer = readFlatOdt(dataFile("quote-3-lines.rtf.fodt"));
    const auto kept = [&](const QString &style) {
        const auto found = writer.keepWithNext.find(style);
        return found != writer.keepWithNext.end() && found->second;
    };
    int names = 0;
    for (std::size_t i = 0; i < writer.paragraphs.size(); ++i) {
        const auto &[style, text] = writer.paragraphs[i];
        if (!text.startsWith(QLatin1String("BV-100")))
            continue;
        ++names;
        ASSERT_LT(i + 2, writer.paragraphs.size());
        EXPECT_TRUE(kept(style)) << text.toStdString();
        EXPECT_TRUE(writer.paragraphs[i + 1].second.startsWith(QLatin1String("Quantity ")));
        EXPECT_TRUE(kept(writer.paragraphs[i + 1].first));
        EXPECT_TRUE(writer.paragraphs[i + 2].second.startsWith(QLatin1String("Fittings")));
        EXPECT_FALSE(kept(writer.paragraphs[i + 2].first)) << "the block ends with its includes";
    }
    EXPECT_EQ(names, 3);
}

} // namespace
