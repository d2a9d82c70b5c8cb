// The quote on paper, read back by an independent reader (poppler's pdftotext): every line,
// the totals, the heading and ending, the page header and "Page n of m", and no product's name
// apart from its price line, with a quote of 200 lines.
#include "quotebookfixture.h"

#include "quotebook/quotepdf.h"
#include "quotes/quoteline.h"
#include "support/diskfaults.h"

#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

/// The text of page (from 1) of a PDF, columns kept in place; all pages with page 0.
QString pdfText(const QString &path, int page = 0)
{
    QStringList arguments { QStringLiteral("-layout") };
    if (page > 0)
        arguments << QStringLiteral("-f") << QString::number(page) << QStringLiteral("-l")
                  << QString::number(page);
    arguments << path << QStringLiteral("-");
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"), arguments);
    EXPECT_TRUE(reader.waitForFinished(30000)) << "pdftotext must be installed (scripts/deps.sh)";
    EXPECT_EQ(reader.exitCode(), 0) << reader.readAllStandardError().toStdString();
    return QString::fromUtf8(reader.readAllStandardOutput());
}

int pageCountOf(const QString &path)
{
    QProcess info;
    info.start(QStringLiteral("pdfinfo"), { path });
    EXPECT_TRUE(info.waitForFinished(30000));
    const auto match = QRegularExpression(QStringLiteral("Pages:\\s+(\\d+)"))
                           .match(QString::fromUtf8(info.readAllStandardOutput()));
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}

QString collapsed(QString text)
{
    return text.replace(QRegularExpression(QStringLiteral("[ \\t]+")), QStringLiteral(" "));
}

class QuotePdfTest : public ::testing::Test
{
protected:
    QuotePdfTest()
    {
        input.header.id = 1;
        input.header.year = 2026;
        input.header.sequence = 1;
        input.header.customer.customer = QStringLiteral("ACME Plumbing");
        input.header.date = QDate(2026, 5, 12);
        input.document.heading = QStringLiteral("Quotation for your new bathroom\nValid 30 days");
        input.document.ending = QStringLiteral("Kind regards,\nJo Seller");
        input.document.discountBox = QStringLiteral("$1.25");
        input.document.totalBox = QStringLiteral("$20,098.75");
    }
    QString write(const Table &quote)
    {
        QString path = folder.filePath(QStringLiteral("quote.pdf"));
        QString error;
        EXPECT_TRUE(QuotePdf::write(path, quote, input, locale, error)) << error.toStdString();
        return path;
    }

    const QLocale locale { QLocale::English, QLocale::UnitedStates };
    TempAppFolder folder;
    QuotePdfInput input;
};

TEST_F(QuotePdfTest, A200LineQuoteKeepsEveryNameWithItsPriceLine)
{
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    const QuoteContent content = sampleContent(200);
    for (int row = 1; row <= 200; ++row) {
        for (int field = 1; field <= QuoteLine::FieldCount; ++field)
            quote.put(row, field, content.lines.get(row, field));
    }
    // One discounted line: its price line has the five parts.
    quote.put(7, QuoteLine::UnitPrice, 2.25f);
    quote.put(7, QuoteLine::ExtendedPrice, 15.75);
    const QString path = write(quote);
    const int pages = pageCountOf(path);
    ASSERT_GT(pages, 5);

    QStringList seen;
    for (int page = 1; page <= pages; ++page) {
        const QString text = collapsed(pdfText(path, page));
        EXPECT_TRUE(text.contains(QStringLiteral("Quote Q-2026-0001 A"))) << page;
        EXPECT_TRUE(text.contains(QStringLiteral("ACME Plumbing"))) << page;
        EXPECT_TRUE(text.contains(QStringLiteral("Tuesday, May 12, 2026"))) << page;
        EXPECT_TRUE(text.contains(QStringLiteral("Page %1 of %2").arg(page).arg(pages))) << page;
        const QRegularExpression name(QStringLiteral("P-(\\d+) Product (\\d+)\\n"));
        for (auto it = name.globalMatch(text); it.hasNext();) {
            const auto match = it.next();
            const QString row = match.captured(1);
            EXPECT_EQ(match.captured(2), row);
            // The price line follows the name on the same page; then the includes text.
            const QString after = text.mid(match.capturedEnd());
            const QString price = row == QLatin1String("7")
                ? QStringLiteral(
                    "Quantity 7 List: $2.50 Price: $2.25 Discount: 10.00% Ext.: $15.75")
                : QStringLiteral("Quantity %1 Price $2.50 Extended Price $%2")
                      .arg(row, locale.toString(2.5 * row.toInt(), 'f', 2));
            EXPECT_TRUE(after.startsWith(QLatin1Char(' ') + price) || after.startsWith(price))
                << "page " << page << ", line " << row.toStdString() << ": "
                << after.left(120).toStdString();
            EXPECT_TRUE(after.contains(QStringLiteral("Includes %1\n").arg(row)));
            seen << row;
        }
    }
    EXPECT_EQ(seen.size(), 200);
    seen.removeDuplicates();
    EXPECT_EQ(seen.size(), 200) << "every line once";

    const QString first = collapsed(pdfText(path, 1));
    EXPECT_TRUE(first.contains(QStringLiteral("Quotation for your new bathroom\n")));
    const QString last = collapsed(pdfText(path, pages));
    EXPECT_TRUE(last.contains(QStringLiteral("Discount Amount = $1.25")));
    EXPECT_TRUE(last.contains(QStringLiteral("Order Total = $20,098.75")));
    EXPECT_TRUE(last.contains(QStringLiteral("Kind regards,\n")));
    EXPECT_TRUE(last.contains(QStringLiteral("Jo Seller")));
}

/// The first rows of sampleContent(rows) as a quote.
Table sampleQuote(int rows)
{
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    const QuoteContent content = sampleContent(rows);
    for (int row = 1; row <= rows; ++row) {
        for (int field = 1; field <= QuoteLine::FieldCount; ++field)
            quote.put(row, field, content.lines.get(row, field));
    }
    return quote;
}

TEST_F(QuotePdfTest, ALongIncludesTextRunsOntoTheNextPagesWhole)
{
    Table quote = sampleQuote(2);
    QStringList parts;
    for (int part = 1; part <= 150; ++part)
        parts << QStringLiteral("Part %1").arg(part, 3, 10, QLatin1Char('0'));
    quote.put(1, QuoteLine::Includes, parts.join(QStringLiteral("\r\n")));
    const QString path = write(quote);
    const int pages = pageCountOf(path);
    ASSERT_GE(pages, 3);
    const QString all = collapsed(pdfText(path));
    for (const QString &part : parts)
        EXPECT_TRUE(all.contains(part + QLatin1Char('\n'))) << part.toStdString();
    EXPECT_TRUE(all.contains(QStringLiteral("P-2 Product 2")));
    for (int page = 1; page <= pages; ++page) {
        for (const QString &line : pdfText(path, page).split(QLatin1Char('\n'))) {
            EXPECT_FALSE(
                line.contains(QStringLiteral("Part ")) && line.contains(QStringLiteral("Page ")))
                << "nothing is printed over the page's foot: " << line.toStdString();
        }
    }
}

/// Where each word of page 1 starts from the page's left edge, in points, in reading order.
QList<std::pair<QString, double>> wordStarts(const QString &path)
{
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"),
        { QStringLiteral("-bbox"), QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"),
            QStringLiteral("1"), path, QStringLiteral("-") });
    EXPECT_TRUE(reader.waitForFinished(30000));
    const QString boxes = QString::fromUtf8(reader.readAllStandardOutput());
    QList<std::pair<QString, double>> words;
    const QRegularExpression word(QStringLiteral("<word xMin=\"([0-9.]+)\"[^>]*>([^<]*)</word>"));
    for (auto it = word.globalMatch(boxes); it.hasNext();) {
        const auto match = it.next();
        words.append({ match.captured(2), match.captured(1).toDouble() });
    }
    return words;
}

double startOf(const QList<std::pair<QString, double>> &words, const QString &text)
{
    for (const auto &[word, x] : words) {
        if (word == text)
            return x;
    }
    ADD_FAILURE() << "no word " << text.toStdString();
    return -1000;
}

TEST_F(QuotePdfTest, TabsStopEveryHalfInchFromTheMargin)
{
    // "Ab" is narrower than half an inch: the tab goes to the first stop, the second tab to
    // the next one; "Wide…" is wider than two stops, so its tab goes to the stop after its end.
    input.document.heading = QStringLiteral("Ab\tBee\tCee\nWideWordWideWord\tDee");
    const auto words = wordStarts(write(sampleQuote(1)));
    const double margin = startOf(words, QStringLiteral("Ab"));
    const double wide = startOf(words, QStringLiteral("WideWordWideWord"));
    EXPECT_NEAR(wide, margin, 1.0);
    EXPECT_NEAR(startOf(words, QStringLiteral("Bee")) - margin, 36.0, 1.0);
    EXPECT_NEAR(startOf(words, QStringLiteral("Cee")) - margin, 72.0, 1.0);
    const double dee = startOf(words, QStringLiteral("Dee")) - margin;
    EXPECT_GT(dee, 72.0);
    EXPECT_LT(dee, 200.0);
    EXPECT_NEAR(std::fmod(dee, 36.0), 0.0, 1.0);
}

TEST_F(QuotePdfTest, TheLastValidDayFollowsTheTotal)
{
    input.header.validUntil = QDate(2026, 6, 11);
    const QString path = write(sampleQuote(2));
    const QString text = collapsed(pdfText(path));
    const qsizetype total = text.indexOf(QStringLiteral("Order Total = $20,098.75"));
    const qsizetype valid = text.indexOf(QStringLiteral("Valid until Thursday, June 11, 2026."));
    EXPECT_GE(total, 0);
    EXPECT_GT(valid, total) << text.toStdString();
    EXPECT_LT(valid, text.indexOf(QStringLiteral("Kind regards")));
}

// The page header may cut a long customer short: the first page names them whole above the
// heading, with the customer's own reference.
TEST_F(QuotePdfTest, TheFirstPageNamesTheCustomerWholeWithTheirReference)
{
    input.header.customer.customer = QStringLiteral("Maximilian Oberhuber-Schwarzenberg");
    input.header.customer.company =
        QStringLiteral("Northern Plumbing and Heating Supplies Limited of the Greater Region");
    input.header.customer.reference = QStringLiteral("PO-4711");
    const QString path = write(sampleQuote(80));
    ASSERT_GE(pageCountOf(path), 2);
    const QString text = collapsed(pdfText(path, 1));
    const qsizetype who = text.indexOf(QStringLiteral(
        "For: Maximilian Oberhuber-Schwarzenberg, Northern Plumbing and Heating Supplies Limited "
        "of the Greater Region"));
    EXPECT_GE(who, 0) << text.toStdString();
    const qsizetype reference = text.indexOf(QStringLiteral("Your reference: PO-4711"));
    EXPECT_GT(reference, who);
    EXPECT_LT(reference, text.indexOf(QStringLiteral("Quotation for your new bathroom")));
    EXPECT_EQ(collapsed(pdfText(path, 2)).indexOf(QStringLiteral("For: ")), -1)
        << "the first page only";
}

TEST_F(QuotePdfTest, WithoutIncludesAndWithoutDiscount)
{
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    const QuoteContent content = sampleContent(2);
    for (int row = 1; row <= 2; ++row) {
        for (int field = 1; field <= QuoteLine::FieldCount; ++field)
            quote.put(row, field, content.lines.get(row, field));
    }
    input.document.noIncludes = 1;
    input.document.discountBox = QStringLiteral("$0.00");
    input.document.totalBox = QStringLiteral("$7.50");
    const QString path = write(quote);
    EXPECT_EQ(pageCountOf(path), 1);
    const QString text = collapsed(pdfText(path));
    EXPECT_FALSE(text.contains(QStringLiteral("Includes")));
    EXPECT_FALSE(text.contains(QStringLiteral("Discount Amount")));
    EXPECT_TRUE(text.contains(QStringLiteral("Order Total = $7.50")));
    EXPECT_TRUE(text.contains(QStringLiteral("Page 1 of 1")));
}

TEST_F(QuotePdfTest, AFileThatCannotBeWrittenLeavesTheOldOne)
{
    folder.writeFile(QStringLiteral("quote.pdf"), "the earlier quote");
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    QString error;
    EXPECT_FALSE(QuotePdf::write(
        folder.filePath(QStringLiteral("missing/quote.pdf")), quote, input, locale, error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(folder.readFile(QStringLiteral("quote.pdf")), QByteArray("the earlier quote"));
}

// A disk that fills up while the PDF is written: the cause in plain words (never "Unknown
// error"), the earlier PDF kept and no temporary file left.
TEST_F(QuotePdfTest, AWriteThatFailsPartWayNamesTheCauseAndKeepsTheOldFile)
{
    folder.writeFile(QStringLiteral("quote.pdf"), "the earlier quote");
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    QString error;
    bool written = true;
    {
        test::FileSizeLimit fullDisk(1024);
        ASSERT_TRUE(fullDisk.active());
        written = QuotePdf::write(
            folder.filePath(QStringLiteral("quote.pdf")), quote, input, locale, error);
    }
    EXPECT_FALSE(written);
    EXPECT_EQ(error, QStringLiteral("the file would be larger than the system allows"));
    EXPECT_EQ(folder.readFile(QStringLiteral("quote.pdf")), QByteArray("the earlier quote"));
    EXPECT_EQ(folder.fileNames(), QStringList { QStringLiteral("quote.pdf") });
}

TEST_F(QuotePdfTest, PaperFollowsTheLocale)
{
    EXPECT_EQ(QuotePdf::pageSizeFor(locale).id(), QPageSize::Letter);
    EXPECT_EQ(
        QuotePdf::pageSizeFor(QLocale(QLocale::German, QLocale::Germany)).id(), QPageSize::A4);
    EXPECT_EQ(QuotePdf::pageSizeFor(QLocale(QLocale::English, QLocale::UnitedKingdom)).id(),
        QPageSize::A4);
}

TEST_F(QuotePdfTest, ThePageHeaderNamesQuoteCustomerAndDate)
{
    EXPECT_EQ(QuotePdf::pageHeader(input.header, locale),
        (QStringList { "Quote Q-2026-0001 A", "ACME Plumbing", "Tuesday, May 12, 2026" }));
    EXPECT_EQ(QuotePdf::pageHeader(QuoteHeader(), locale), (QStringList { "Quote", "", "" }));
}

TEST_F(QuotePdfTest, ALongCustomerIsCutBeforeTheDateNotPaintedOverIt)
{
    input.header.customer.customer = QStringLiteral("Maximilian Oberhuber-Schwarzenberg");
    input.header.customer.company =
        QStringLiteral("Northern Plumbing and Heating Supplies Limited of the Greater Region");
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    quote.put(1, QuoteLine::PartNumber, QStringLiteral("A-1"));
    quote.put(1, QuoteLine::ProductName, QStringLiteral("Widget"));
    const QString path = write(quote);
    // The words of the page's top line with where they lie: none overlaps the next.
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"),
        { QStringLiteral("-bbox"), QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"),
            QStringLiteral("1"), path, QStringLiteral("-") });
    ASSERT_TRUE(reader.waitForFinished(30000)) << "pdftotext must be installed";
    const QString boxes = QString::fromUtf8(reader.readAllStandardOutput());
    const QRegularExpression wordPattern(
        QStringLiteral("<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\" xMax=\"([\\d.]+)\" "
                       "yMax=\"[\\d.]+\">([^<]*)</word>"));
    struct Word
    {
        double left, top, right;
        QString text;
    };
    std::vector<Word> words;
    for (const auto &match : wordPattern.globalMatch(boxes))
        words.push_back({ match.captured(1).toDouble(), match.captured(2).toDouble(),
            match.captured(3).toDouble(), match.captured(4) });
    ASSERT_FALSE(words.empty()) << boxes.toStdString();
    const double topLine =
        std::min_element(words.begin(), words.end(), [](const Word &a, const Word &b) {
            return a.top < b.top;
        })->top;
    std::vector<Word> header;
    QStringList texts;
    for (const Word &word : words) {
        if (word.top < topLine + 2) {
            header.push_back(word);
        }
    }
    std::sort(
        header.begin(), header.end(), [](const Word &a, const Word &b) { return a.left < b.left; });
    for (const Word &word : header)
        texts << word.text;
    for (std::size_t i = 1; i < header.size(); ++i)
        EXPECT_LE(header[i - 1].right, header[i].left + 0.5)
            << header[i - 1].text.toStdString() << " runs into " << header[i].text.toStdString();
    const QString line = texts.join(QLatin1Char(' '));
    EXPECT_TRUE(line.startsWith(QStringLiteral("Quote Q-2026-0001 A Maximilian")))
        << line.toStdString();
    EXPECT_TRUE(line.endsWith(QStringLiteral("Tuesday, May 12, 2026"))) << line.toStdString();
    EXPECT_TRUE(line.contains(QChar(0x2026))) << "the customer is cut: " << line.toStdString();
}

} // namespace

namespace {

/// The text with its runs of blanks made one space and no blank at either end of a line.
QString linesOf(const QString &text)
{
    return collapsed(text).replace(
        QRegularExpression(QStringLiteral(" *\n *")), QStringLiteral("\n"));
}

TEST_F(QuotePdfTest, VolumePricesAndFurtherQuantitiesAreOnPaperAsInTheQuoteDocument)
{
    // TW-100: list $12.85, 10 at $11.90, 25 at $10.95.
    Table catalogue(1, 15);
    catalogue.put(1, 1, "TW-100");
    catalogue.put(1, 2, "Widget 1");
    catalogue.put(1, 3, "12.85");
    catalogue.put(1, 6, "10");
    catalogue.put(1, 7, "11.9");
    catalogue.put(1, 8, "25");
    catalogue.put(1, 9, "10.95");
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    quote.put(1, QuoteLine::PartNumber, "TW-100");
    quote.put(1, QuoteLine::ProductName, "Widget 1");
    quote.put(1, QuoteLine::UnitPrice, "12.85");
    quote.put(1, QuoteLine::Quantity, qint32(1));
    quote.put(1, QuoteLine::ExtendedPrice, 12.85);
    quote.put(1, QuoteLine::ListPrice, "12.85");
    quote.put(1, QuoteLine::Quantities, "10;25");

    const QString plain = linesOf(pdfText(write(quote)));
    EXPECT_FALSE(plain.contains(QStringLiteral("Unit Price"))) << "no catalogue, no prices";

    input.document.catalogue = &catalogue;
    const QString without = linesOf(pdfText(write(quote)));
    EXPECT_FALSE(without.contains(QStringLiteral("Order 10 or more"))) << without.toStdString();
    EXPECT_TRUE(without.contains(QStringLiteral("Quantity Unit Price Extended Price\n"
                                                "10 $11.90 $119.00\n"
                                                "25 $10.95 $273.75\n")))
        << without.toStdString();

    input.document.volumePrices = 1;
    const QString with = linesOf(pdfText(write(quote)));
    EXPECT_TRUE(with.contains(QStringLiteral("Order 10 or more: $11.90 each.\n"
                                             "Order 25 or more: $10.95 each.\n")))
        << with.toStdString();
    EXPECT_LT(with.indexOf(QStringLiteral("Order 25 or more")),
        with.indexOf(QStringLiteral("Quantity Unit Price")));
}

} // namespace
