#include "catalogue/table.h"
#include "products/priceschedule.h"
#include "quotes/pricelist.h"
#include "quotes/printcodes.h"

#include <QPdfWriter>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

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

TEST(PriceListTest, ThePageCountGrowsWithTheCatalogue)
{
    const int few = printToPdf(5).pages;
    const int many = printToPdf(150).pages;
    EXPECT_EQ(few, 1);
    EXPECT_GT(many, printToPdf(60).pages);
}

} // namespace
