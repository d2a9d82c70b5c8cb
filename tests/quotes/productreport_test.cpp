#include "catalogue/table.h"
#include "quotes/productreport.h"
#include "support/testlocale.h"

#include <QTextCursor>
#include <QTextDocument>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

QString report(const Table &catalogue, int row)
{
    return ProductReport::build(catalogue, row, EnUs)->toPlainText();
}

TEST(ProductReportTest, AFullProduct)
{
    Table catalogue(2, 15);
    const char *cells[] = { "P-100", "Pump", "1234.5", "Quiet", "Hose", "10", "1200", "50", "1100",
        "", "", "", "", "", "" };
    for (int field = 1; field <= 15; ++field)
        catalogue.put(2, field, cells[field - 1]);
    EXPECT_EQ(report(catalogue, 2),
        QStringLiteral("Product Report\n"
                       "Part Number  P-100\tPump\n"
                       "Price: $1,234.50\n"
                       "Includes:\n"
                       "Hose\n\n"
                       "Notes:\n"
                       "Quiet\n"
                       "Discount Schedule:\n"
                       "10 - $1200;   50 - $1100"));
}

TEST(ProductReportTest, EmptySectionsKeepAllFourHeadings)
{
    Table catalogue(1, 15);
    catalogue.put(1, 1, "X");
    catalogue.put(1, 2, "Bare");
    EXPECT_EQ(report(catalogue, 1),
        QStringLiteral("Product Report\nPart Number  X\tBare\nPrice: \nIncludes:\n\n\n"
                       "Notes:\n\nDiscount Schedule:\n"));
}

TEST(ProductReportTest, MultiLineNotesKeepTheirLines)
{
    Table catalogue(1, 15);
    catalogue.put(1, 1, "N");
    catalogue.put(1, 2, "Notes");
    catalogue.put(1, 3, "1");
    catalogue.put(1, 4, "first line\r\nsecond line\r\nthird");
    EXPECT_TRUE(report(catalogue, 1)
                    .contains(QStringLiteral(
                        "Notes:\nfirst line\nsecond line\nthird\nDiscount Schedule:")));
}

TEST(ProductReportTest, CharactersBeyondAsciiSurvive)
{
    Table catalogue(1, 15);
    catalogue.put(1, 1, "É-1");
    catalogue.put(1, 2, "Café – Кофе €");
    catalogue.put(1, 3, "2");
    catalogue.put(1, 5, "Chaîne – цепь");
    const QString text = report(catalogue, 1);
    EXPECT_TRUE(text.contains(QStringLiteral("Part Number  É-1\tCafé – Кофе €\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("Includes:\nChaîne – цепь\n\n")));
}

TEST(ProductReportTest, TitleAndHeadingsAreTwelvePointBoldArialDetailsEightPoint)
{
    Table catalogue(1, 15);
    catalogue.put(1, 1, "P");
    catalogue.put(1, 2, "Name");
    const auto document = ProductReport::build(catalogue, 1, EnUs);
    const QTextCharFormat title = document->find(QStringLiteral("Product Report")).charFormat();
    EXPECT_EQ(title.fontPointSize(), 12.0);
    EXPECT_EQ(title.fontWeight(), QFont::Bold);
    EXPECT_EQ(title.fontFamilies().toStringList(), QStringList { QStringLiteral("Arial") });
    const QTextCharFormat details = document->find(QStringLiteral("Part Number")).charFormat();
    EXPECT_EQ(details.fontPointSize(), 8.0);
    EXPECT_EQ(details.fontWeight(), QFont::Normal);
    EXPECT_EQ(document->find(QStringLiteral("Notes:")).charFormat().fontWeight(), QFont::Bold);
}

} // namespace
