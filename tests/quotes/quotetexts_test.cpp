// Two rules of the quote's texts that are easy to get wrong: a single-precision unit price
// beside a list price kept as currency text compares by value, and of two heading files that
// differ only in the case of one letter the one the rules name is read.
#include "catalogue/table.h"
#include "quotes/quotedocument.h"
#include "quotes/quoteline.h"
#include "quotes/quotenote.h"

#include "support/tempappfolder.h"
#include "support/testlocale.h"

#include <QDir>
#include <QTextDocument>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using tarnwick::test::EnUs;

void putLine(Table &quote, int row, const Cell &unit, const Cell &list, const Cell &extended)
{
    quote.put(row, QuoteLine::PartNumber, QStringLiteral("A-%1").arg(row));
    quote.put(row, QuoteLine::ProductName, "Widget");
    quote.put(row, QuoteLine::UnitPrice, unit);
    quote.put(row, QuoteLine::Quantity, qint32(3));
    quote.put(row, QuoteLine::ExtendedPrice, extended);
    quote.put(row, QuoteLine::ListPrice, list);
    quote.put(row, QuoteLine::Includes, "");
}

TEST(QuoteTextsTest, ASingleUnitPriceEqualToATextListPriceUsesThePlainLayout)
{
    // 12.3 as a single is 12.30000019…, the text "$12.30" is 12.3 as a double: equal at the
    // single precision a re-priced unit price is held in.
    Table quote(QuoteLine::MaxLines, QuoteLine::FieldCount);
    putLine(quote, 1, Cell(12.3f), Cell("$12.30"), Cell(36.9));
    putLine(quote, 2, Cell(12.29f), Cell("$12.30"), Cell(36.87));
    QuoteDocumentInput input;
    input.discountBox = QStringLiteral("$0.03");
    input.totalBox = QStringLiteral("$73.77");
    const QString text = QuoteDocument::build(quote, input, EnUs)->toPlainText();
    EXPECT_TRUE(
        text.contains(QStringLiteral("A-1 \tWidget\n"
                                     "Quantity 3\t\tPrice $12.30\t\t\tExtended Price  $36.90\n")))
        << text.toStdString();
    // A unit price one cent below does take the discounted layout.
    EXPECT_TRUE(text.contains(QStringLiteral("A-2 \tWidget\nQuantity 3\tList: $12.30\t"
                                             "Price: $12.29\tDiscount: ")))
        << text.toStdString();
}

TEST(QuoteTextsTest, OfBothHeadingFilesTheOneTheRulesNameIsRead)
{
    // On a file system that tells the two names apart both may exist (an older copy saved
    // under the editor's name): the heading is read from "QuoteNoteHead.txt".
    test::TempAppFolder folder;
    folder.writeFile(QStringLiteral("QuoteNoteHead.txt"), "Dear customer,\r\n");
    folder.writeFile(QStringLiteral("QuoteNotehead.txt"), "Old heading\r\n");
    EXPECT_EQ(QuoteNote::readHeading(folder.path()), QStringLiteral("Dear customer,\n"));
    EXPECT_EQ(QuoteNote::headingPath(folder.path()),
        QDir(folder.path()).filePath(QStringLiteral("QuoteNoteHead.txt")));
}

} // namespace
} // namespace tarnwick
