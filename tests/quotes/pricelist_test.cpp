#include "catalogue/table.h"
#include "products/priceschedule.h"
#include "quotes/pageddocument.h"
#include "quotes/pricelist.h"
#include "quotes/printcodes.h"
#include "support/testlocale.h"

#include <QPdfWriter>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

TEST(PrintCodesTest, TabMovesToTheNextSectionAndPIsThePageNumber)
{
    EXPECT_EQ(expandPrintCodes(QStringLiteral("\\tPage: \\p"), 3, 9),
        (PageText { QString(), QStringLiteral("Page: 3"), QString() }));
    EXPECT_EQ(expandPrintCodes(QStringLiteral("Tarnwick Price list"), 1, 1),
        (PageText { QStringLiteral("Tarnwick Price list"), QString(), QString() }));
    EXPECT_EQ(expandPrintCodes(QStringLiteral("a\\tb\\tc\\td"), 1, 1),
        (PageText { QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("cd") }));
    EXPECT_EQ(expandPrintCodes(QStringLiteral("\\p of \\P \\\\ \\x\\"), 2, 5),
        (PageText { QStringLiteral("2 of 5 \\ \\x\\"), QString(), QString() }));
}

Table catalogueOf(int products)
{
    Table catalogue(products, 15);
    for (int row = 1; row <= products; ++row) {
        catalogue.put(row, 1, QStringLiteral("PN-%1").arg(row, 4, 10, QLatin1Char('0')));
        catalogue.put(row, 2,
            QStringLiteral("Product number %1 with a long descriptive name that "
                           "has to wrap inside its column")
                .arg(row));
        catalogue.put(row, 3, "19.5");
        catalogue.put(row, 6, "10");
        catalogue.put(row, 7, "18");
        catalogue.put(row, 8, "1000");
        catalogue.put(row, 9, "$15.25");
    }
    return catalogue;
}

TEST(PriceListTest, EntriesHoldTheCurrencyPriceAndThePriceBreaks)
{
    Table catalogue = catalogueOf(2);
    catalogue.put(2, 8, "");
    const auto entries = PriceList::entries(catalogue, EnUs);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].partNumber, QStringLiteral("PN-0001"));
    EXPECT_EQ(entries[0].price, QStringLiteral("$19.50"));
    EXPECT_EQ(entries[0].breaks,
        QStringList({ QStringLiteral("from 10: $18.00"), QStringLiteral("from 1,000: $15.25") }));
    EXPECT_EQ(entries[1].breaks, QStringList { QStringLiteral("from 10: $18.00") });
}

struct Printed
{
    int pages = 0;
    QString text;
};

Printed printToPdf(int products)
{
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("list.pdf"));
    Printed printed;
    {
        QPdfWriter writer(pdf);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
        printed.pages = PriceList::paint(writer, PriceList::entries(catalogueOf(products), EnUs));
    }
    QProcess pdftotext;
    pdftotext.start(QStringLiteral("pdftotext"), { pdf, QStringLiteral("-") });
    EXPECT_TRUE(pdftotext.waitForFinished(20000)) << "pdftotext must be installed";
    printed.text = QString::fromUtf8(pdftotext.readAllStandardOutput());
    return printed;
}

TEST(PriceListTest, PrintedToPdfEveryPageHasHeaderHeadingsAndNumber)
{
    const Printed printed = printToPdf(60);
    ASSERT_GT(printed.pages, 1);
    EXPECT_EQ(printed.text.count(QStringLiteral("Tarnwick Price list")), printed.pages);
    EXPECT_EQ(printed.text.count(QStringLiteral("Price Breaks")), printed.pages);
    for (int page = 1; page <= printed.pages; ++page)
        EXPECT_TRUE(printed.text.contains(QStringLiteral("Page: %1").arg(page))) << page;
    for (int row = 1; row <= 60; ++row)
        EXPECT_TRUE(
            printed.text.contains(QStringLiteral("PN-%1").arg(row, 4, 10, QLatin1Char('0'))))
            << row;
    EXPECT_EQ(printed.text.count(QStringLiteral("\f")), printed.pages);
}

// A long print says how far it has got while it works, and stops when asked to.
TEST(PriceListPrintTest, APrintReportsItsLayoutAndEveryPageAndCanBeStopped)
{
    const Table catalogue = catalogueOf(300);
    QTemporaryDir dir;
    std::vector<std::pair<int, int>> told;
    int pages = 0;
    {
        PriceListDocument document(catalogue, EnUs);
        QPdfWriter writer(dir.filePath(QStringLiteral("all.pdf")));
        writer.setPageSize(QPageSize(QPageSize::A4));
        pages = paintAllPages(document, writer, [&](int done, int total) {
            told.emplace_back(done, total);
            return true;
        });
    }
    ASSERT_GT(pages, 3);
    // Every page is announced before it is painted, and the end is said once.
    std::vector<std::pair<int, int>> paging;
    for (const auto &entry : told) {
        if (entry.second != 0)
            paging.push_back(entry);
    }
    ASSERT_EQ(paging.size(), std::size_t(pages) + 1);
    for (int page = 0; page <= pages; ++page)
        EXPECT_EQ(paging[std::size_t(page)], std::make_pair(page, pages));

    PriceListDocument again(catalogue, EnUs);
    QPdfWriter stopped(dir.filePath(QStringLiteral("stopped.pdf")));
    stopped.setPageSize(QPageSize(QPageSize::A4));
    int painted = 0;
    EXPECT_EQ(paintAllPages(again, stopped,
                  [&](int done, int total) {
                      painted = done;
                      return total == 0 || done < 2;
                  }),
        -1);
    EXPECT_EQ(painted, 2) << "stopped before the third page";
}

/// The geometry of an A4 page with 15 mm margins at the printer's resolution.
PageGeometry a4Geometry()
{
    QTemporaryDir dir;
    QPdfWriter writer(dir.filePath(QStringLiteral("geometry.pdf")));
    writer.setResolution(1200);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
    return PageGeometry::of(writer);
}

TEST(PriceListDocumentTest, TheFirstPageIsSettledBeforeTheRestIsLaidOut)
{
    const Table catalogue = catalogueOf(3000);
    PriceListDocument document(catalogue, EnUs);
    document.beginLayout(a4Geometry());
    document.layoutThroughPage(0);
    EXPECT_EQ(document.pagesReady(), 1);
    EXPECT_FALSE(document.isLaidOut());
    const std::vector<PriceListDocument::PlacedRow> first = document.rowsOfPage(0);
    ASSERT_FALSE(first.empty());
    EXPECT_EQ(first.front().item, 0);
    while (!document.layoutMore(1000)) { }
    EXPECT_GT(document.pagesReady(), 10);
    // Every product is on exactly one page, in catalogue order.
    int next = 0;
    for (int page = 0; page < document.pagesReady(); ++page) {
        for (const auto &row : document.rowsOfPage(page))
            EXPECT_EQ(row.item, next++);
    }
    EXPECT_EQ(next, 3000);
}

TEST(PriceListDocumentTest, ARowThatDoesNotFitGoesToTheNextPage)
{
    // Rows of varying height: names that wrap over one to four lines.
    Table catalogue = catalogueOf(120);
    for (int row = 1; row <= 120; ++row)
        catalogue.put(row, 2, QStringLiteral("Word ").repeated(8 * (row % 4) + 2));
    PriceListDocument document(catalogue, EnUs);
    document.beginLayout(a4Geometry());
    while (!document.layoutMore(1000)) { }
    ASSERT_GT(document.pagesReady(), 2);
    for (int page = 0; page < document.pagesReady(); ++page) {
        const auto rows = document.rowsOfPage(page);
        ASSERT_FALSE(rows.empty());
        const auto &last = rows.back();
        EXPECT_LE(last.top + last.height, document.footerTop()) << "page " << page + 1;
        if (page + 1 < document.pagesReady()) {
            // The next page's first row was moved there because it did not fit here.
            const auto nextRows = document.rowsOfPage(page + 1);
            ASSERT_FALSE(nextRows.empty());
            const auto &moved = nextRows.front();
            EXPECT_GT(last.top + last.height + moved.height, document.footerTop())
                << "page " << page + 1;
        }
    }
}

TEST(PriceListDocumentTest, AProductWithANameButNoPartNumberIsPrinted)
{
    Table catalogue = catalogueOf(3);
    catalogue.put(2, 1, "");
    catalogue.put(2, 2, "Gadget without a number");
    catalogue.put(3, 1, "");
    catalogue.put(3, 2, "");
    const auto entries = PriceList::entries(catalogue, EnUs);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[1].name, QStringLiteral("Gadget without a number"));
    EXPECT_TRUE(entries[1].partNumber.isEmpty());
    PriceListDocument document(catalogue, EnUs);
    document.beginLayout(a4Geometry());
    while (!document.layoutMore(1000)) { }
    ASSERT_EQ(document.pagesReady(), 1);
    const auto rows = document.rowsOfPage(0);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].item, 1) << "the second catalogue row";
}

/// A catalogue whose TW-400 keeps its points in descending order: 10 at $1,200.00 in slot 1,
/// 5 at $1,225.00 in slot 2, so from 5 on the quote charges $1,225.00 (slot 2 is met last).
Table descendingLadder()
{
    Table catalogue(2, 15);
    catalogue.put(1, 1, "TW-100");
    catalogue.put(1, 2, "Widget 1");
    catalogue.put(1, 3, "12.85");
    catalogue.put(1, 6, "10");
    catalogue.put(1, 7, "11.9");
    catalogue.put(1, 8, "25");
    catalogue.put(1, 9, "10.95");
    catalogue.put(2, 1, "TW-400");
    catalogue.put(2, 2, "Widget 4");
    catalogue.put(2, 3, "1250");
    catalogue.put(2, 6, "10");
    catalogue.put(2, 7, "1200");
    catalogue.put(2, 8, "5");
    catalogue.put(2, 9, "1225");
    return catalogue;
}

TEST(PriceListTest, BreaksAreListedInAscendingQuantityAtThePriceAQuoteCharges)
{
    const Table catalogue = descendingLadder();
    const auto entries = PriceList::entries(catalogue, EnUs);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].breaks,
        QStringList({ QStringLiteral("from 10: $11.90"), QStringLiteral("from 25: $10.95") }));
    EXPECT_EQ(entries[1].breaks,
        QStringList({ QStringLiteral("from 5: $1,225.00"), QStringLiteral("from 10: $1,225.00") }));
    // The paged preview reads each row as it lays it out: the same breaks.
    const auto laidOut = PriceList::entryOfRow(catalogue, 2, EnUs);
    ASSERT_TRUE(laidOut.has_value());
    EXPECT_EQ(laidOut->breaks, entries[1].breaks);
    for (const qint32 quantity : { 5, 10 }) {
        EXPECT_EQ(PriceSchedule::SetPrice(catalogue, "TW-400", quantity, EnUs).price,
            QStringLiteral("1225"));
    }
}

TEST(PriceListTest, PrintedTheDescendingLadderShowsWhatTheQuoteCharges)
{
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("ladder.pdf"));
    {
        QPdfWriter writer(pdf);
        writer.setPageSize(QPageSize(QPageSize::A4));
        ASSERT_EQ(PriceList::paint(writer, PriceList::entries(descendingLadder(), EnUs)), 1);
    }
    QProcess pdftotext;
    pdftotext.start(
        QStringLiteral("pdftotext"), { QStringLiteral("-layout"), pdf, QStringLiteral("-") });
    ASSERT_TRUE(pdftotext.waitForFinished(20000)) << "pdftotext must be installed";
    const QString text = QString::fromUtf8(pdftotext.readAllStandardOutput());
    EXPECT_FALSE(text.contains(QStringLiteral("$1,200.00"))) << text.toStdString();
    const qsizetype five = text.indexOf(QStringLiteral("from 5: $1,225.00"));
    const qsizetype ten = text.indexOf(QStringLiteral("from 10: $1,225.00"));
    EXPECT_GE(five, 0) << text.toStdString();
    EXPECT_GT(ten, five) << text.toStdString();
    EXPECT_LT(text.indexOf(QStringLiteral("from 10: $11.90")),
        text.indexOf(QStringLiteral("from 25: $10.95")));
}

TEST(PriceListTest, ALargePriceIsNeverBrokenInsideItsNumber)
{
    const std::vector<PriceListEntry> entries {
        { QStringLiteral("BIG-1"), QStringLiteral("Plant"), QStringLiteral("$10,000,000.00"),
            { QStringLiteral("from 99,999: $10,000,000.00") } },
        { QStringLiteral("BIG-2"), QStringLiteral("Line"), QStringLiteral("$99,999,999.99"),
            { QStringLiteral("from 5: $99,999,999.99") } },
    };
    for (const QPageSize::PageSizeId paper : { QPageSize::A4, QPageSize::Letter }) {
        QTemporaryDir dir;
        const QString pdf = dir.filePath(QStringLiteral("big.pdf"));
        {
            QPdfWriter writer(pdf);
            writer.setPageSize(QPageSize(paper));
            writer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
            ASSERT_EQ(PriceList::paint(writer, entries), 1);
        }
        QProcess pdftotext;
        pdftotext.start(
            QStringLiteral("pdftotext"), { QStringLiteral("-layout"), pdf, QStringLiteral("-") });
        ASSERT_TRUE(pdftotext.waitForFinished(20000)) << "pdftotext must be installed";
        const QString text = QString::fromUtf8(pdftotext.readAllStandardOutput());
        EXPECT_EQ(text.count(QStringLiteral("$10,000,000.00")), 2) << text.toStdString();
        EXPECT_EQ(text.count(QStringLiteral("$99,999,999.99")), 2) << text.toStdString();
    }
}

TEST(PriceListTest, ThePageCountGrowsWithTheCatalogue)
{
    const int few = printToPdf(5).pages;
    const int many = printToPdf(150).pages;
    EXPECT_EQ(few, 1);
    EXPECT_GT(many, printToPdf(60).pages);
}

} // namespace
