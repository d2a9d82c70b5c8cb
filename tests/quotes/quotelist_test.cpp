#include "quotefixture.h"

#include "catalogue/productrecord.h"
#include "core/formats.h"

#include "quotes/quoteaids.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"
#include "quotes/quotepricing.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

using QuoteListTest = QuoteFixture;

TEST_F(QuoteListTest, AProductBecomesALineAtListPriceWithQuantityOne)
{
    const QuoteList::AddLineResult result =
        QuoteList::addProduct(quote, catalogue, 1, QStringLiteral("Two widgets, one case"));
    EXPECT_EQ(result.status, QuoteList::AddStatus::Added);
    EXPECT_EQ(result.row, 1);
    EXPECT_EQ(quote.get(1, QuoteLine::PartNumber), Cell("A-100"));
    EXPECT_EQ(quote.get(1, QuoteLine::ProductName), Cell("Widget"));
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$12.50"));
    EXPECT_EQ(quote.get(1, QuoteLine::Quantity), Cell(qint32(1)));
    EXPECT_EQ(quote.get(1, QuoteLine::ExtendedPrice), Cell("$12.50"));
    EXPECT_EQ(quote.get(1, QuoteLine::ListPrice), Cell("$12.50"));
    EXPECT_EQ(quote.get(1, QuoteLine::Includes), Cell("Two widgets, one case"));
    EXPECT_EQ(QuoteLine::lineCount(quote), 1);
}

// A line whose part number was cleared ends the quote, and the next product added takes its
// row: as a new line, without the lock and the further quantities the row held.
TEST_F(QuoteListTest, AProductAddedInPlaceOfAClearedLineStartsUnlockedWithoutQuantities)
{
    add("A-100");
    const int row = add("B-200");
    QuoteLine::setLocked(quote, row, true);
    quote.put(row, QuoteLine::Quantities, QuoteAids::quantitiesText({ 100, 500 }));
    quote.put(row, QuoteLine::PartNumber, Cell(QString()));
    ASSERT_EQ(add("A-100"), row);
    EXPECT_FALSE(QuoteLine::isLocked(quote, row));
    EXPECT_TRUE(QuoteAids::quantitiesOf(quote, row).empty());
    EXPECT_TRUE(quote.get(row, QuoteLine::Quantities).isBlank());
}

TEST_F(QuoteListTest, TheSameProductAddedTwiceGivesTwoLines)
{
    EXPECT_EQ(add("A-100"), 1);
    EXPECT_EQ(add("A-100"), 2);
    for (int row = 1; row <= 2; ++row) {
        EXPECT_EQ(quote.get(row, QuoteLine::PartNumber), Cell("A-100"));
        EXPECT_EQ(quote.get(row, QuoteLine::Quantity), Cell(qint32(1)));
        EXPECT_EQ(quote.get(row, QuoteLine::UnitPrice), Cell("$12.50"));
    }
    EXPECT_EQ(QuotePricing::QuotePrice(quote, locale).total, QStringLiteral("$25.00"));
}

TEST_F(QuoteListTest, A251stLineIsRefusedAndTheQuoteIsUnchanged)
{
    for (int line = 1; line <= QuoteLine::MaxLines; ++line)
        ASSERT_EQ(add("A-100"), line);
    const Table before = quote;
    const QuoteList::AddLineResult result = QuoteList::addProduct(quote, catalogue, 2, "");
    EXPECT_EQ(result.status, QuoteList::AddStatus::QuoteFull);
    EXPECT_EQ(result.row, 0);
    EXPECT_TRUE(sameCells(quote, before));
    EXPECT_EQ(QuoteList::quoteFullMessage(),
        QStringLiteral("The quote is full: it holds at most 250 lines. Remove a line before "
                       "adding another product."));
    EXPECT_EQ(QuotePricing::QuotePrice(quote, locale).total, QStringLiteral("$3,125.00"));
}

TEST_F(QuoteListTest, ARowThatIsNoProductAddsNothing)
{
    const Table before = quote;
    EXPECT_EQ(
        QuoteList::addProduct(quote, catalogue, 0, "").status, QuoteList::AddStatus::NoProduct);
    EXPECT_EQ(QuoteList::addProduct(quote, catalogue, catalogue.rowCount() + 1, "").status,
        QuoteList::AddStatus::NoProduct);
    EXPECT_TRUE(sameCells(quote, before));
}

// A quantity or price a line cannot read is charged as nothing; the status bar says so for as
// long as the quote holds it.
TEST_F(QuoteListTest, AQuantityOrPriceThatIsNoNumberIsSaid)
{
    add("A-100");
    add("A-100");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale), QString());
    quote.put(2, QuoteLine::Quantity, "1,5");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale),
        QStringLiteral("Line 2: the quantity \"1,5\" is no number; the line is charged $0.00 "
                       "until a whole number is typed."));
    quote.put(2, QuoteLine::Quantity, "1,000");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale), QString());
    quote.put(1, QuoteLine::UnitPrice, "ask");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale),
        QStringLiteral("Line 1: the price \"ask\" is no number; the line is charged $0.00 until "
                       "a price is typed."));
    quote.put(1, QuoteLine::UnitPrice, "$12.50");
    quote.put(1, QuoteLine::Quantity, "2.5");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale), QString())
        << "a number, charged as 2 (the quantity shown then)";
}

// A quantity or a price cleared is charged as nothing too, and so is a product without a list
// price: the status bar names the line.
TEST_F(QuoteListTest, AQuantityOrPriceClearedIsSaid)
{
    add("A-100");
    add("A-100");
    quote.put(2, QuoteLine::Quantity, Cell(QString()));
    QuoteList::repriceLine(quote, catalogue, 2, QuoteGridColumn::Quantity, locale);
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale),
        QStringLiteral("Line 2 has no quantity; the line is charged $0.00 until one is typed."));
    quote.put(2, QuoteLine::Quantity, "3");
    quote.put(1, QuoteLine::UnitPrice, " ");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale),
        QStringLiteral("Line 1 has no price; the line is charged $0.00 until one is typed."));
    quote.put(1, QuoteLine::UnitPrice, "$12.50");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale), QString());
}

// A part number emptied in the middle of the quote ends it there: the lines below it are left
// out of the quote, its totals and what the book keeps, and the status bar says so until the
// line has a part number again.
TEST_F(QuoteListTest, LinesLeftBelowAnEmptiedPartNumberAreSaid)
{
    add("A-100");
    add("B-200");
    add("A-100");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale), QString());
    quote.put(1, QuoteLine::PartNumber, Cell());
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale),
        QStringLiteral("Line 1 has no part number, so the quote ends there, without the 2 lines "
                       "below it; Undo, or the next product added to the quote, fills line 1 "
                       "again."));
    quote.put(1, QuoteLine::PartNumber, "A-100");
    quote.put(2, QuoteLine::PartNumber, "");
    quote.put(1, QuoteLine::Quantity, "ten");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale),
        QStringLiteral("Line 1: the quantity \"ten\" is no number; the line is charged $0.00 "
                       "until a whole number is typed. Line 2 has no part number, so the quote "
                       "ends there, without the line below it; Undo, or the next product added "
                       "to the quote, fills line 2 again."));
    quote.put(2, QuoteLine::PartNumber, "B-200");
    quote.put(1, QuoteLine::Quantity, "1");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale), QString());
}

// A number too large for a line's quantity is charged as nothing too, and every line charged
// so is named: the customer's document must hold no line at $0.00 that nothing pointed out.
TEST_F(QuoteListTest, AQuantityOutOfRangeAndEveryFurtherLineChargedNothingAreSaid)
{
    for (int line = 0; line < 8; ++line)
        add("A-100");
    quote.put(2, QuoteLine::Quantity, "1e10");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale),
        QStringLiteral("Line 2: the quantity \"1e10\" is out of range; the line is charged "
                       "$0.00 until a smaller whole number is typed."));
    quote.put(1, QuoteLine::Quantity, "ten");
    quote.put(5, QuoteLine::Quantity, "2147483647");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale),
        QStringLiteral("Line 1: the quantity \"ten\" is no number; the line is charged $0.00 "
                       "until a whole number is typed. Lines 2 and 5 are charged $0.00 as "
                       "well."));
    quote.put(5, QuoteLine::Quantity, "2147483520");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale),
        QStringLiteral("Line 1: the quantity \"ten\" is no number; the line is charged $0.00 "
                       "until a whole number is typed. Line 2 is charged $0.00 as well."))
        << "the largest quantity a line counts in";
    for (int row = 3; row <= 8; ++row)
        quote.put(row, QuoteLine::UnitPrice, "ask");
    EXPECT_TRUE(QuoteList::unreadNotice(quote, catalogue, locale)
                    .endsWith(QStringLiteral(" Lines 2, 3, 4, 5, 6 and 2 more are charged $0.00 "
                                             "as well.")))
        << QuoteList::unreadNotice(quote, catalogue, locale).toStdString();
}

// A line charged nothing because the catalogue gives no price for it is named as well: its
// product deleted after it was added, a price point without its price, a list price that is
// no number once the quantity has re-priced the line. A price of 0 typed for a product the
// catalogue prices is the user's own and is not said.
TEST_F(QuoteListTest, ALineTheCatalogueGivesNoPriceForIsSaid)
{
    add("A-100");
    add("B-200");
    add("E-500");
    typeQuantity(3, "3");
    ASSERT_EQ(number(3, QuoteLine::UnitPrice), 0.0);
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale).toStdString(),
        QStringLiteral("Line 3: the catalogue gives no price for 3 of \"E-500\"; the line is "
                       "charged $0.00 until a price is typed.")
            .toStdString());

    catalogue.put(6, ProductRecord::PricePoint1, "5");
    catalogue.put(6, ProductRecord::Price1, "$2.00");
    catalogue.put(2, ProductRecord::Price2, "");
    typeQuantity(2, "1500");
    typeQuantity(3, "5");
    ASSERT_EQ(number(2, QuoteLine::UnitPrice), 0.0);
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale).toStdString(),
        QStringLiteral("Line 2: the catalogue gives no price for 1,500 of \"B-200\"; the line "
                       "is charged $0.00 until a price is typed.")
            .toStdString());

    catalogue.deleteRows(1);
    typeQuantity(1, "10");
    ASSERT_EQ(number(1, QuoteLine::UnitPrice), 0.0);
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale).toStdString(),
        QStringLiteral("Line 1: \"A-100\" is not in the catalogue; the line is charged $0.00 "
                       "until a price is typed. Line 2 is charged $0.00 as well.")
            .toStdString());

    typePrice(1, "4");
    typePrice(2, "0");
    catalogue.put(1, ProductRecord::Price2, "$6.50");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale), QString())
        << "a price typed for the line, and a typed 0 for a product the catalogue prices";
}

// A typed price beyond a single's range cannot be taken by the line, which is charged nothing;
// the status bar says so as for a quantity out of range.
TEST_F(QuoteListTest, ATypedPriceOutOfRangeIsSaid)
{
    add("A-100");
    typePrice(1, "1e39");
    ASSERT_EQ(number(1, QuoteLine::ExtendedPrice), 0.0);
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale).toStdString(),
        QStringLiteral("Line 1: the price \"1e39\" is out of range; the line is charged $0.00 "
                       "until a smaller price is typed.")
            .toStdString());
    typePrice(1, "3e38");
    EXPECT_EQ(QuoteList::unreadNotice(quote, catalogue, locale), QString());
}

TEST_F(QuoteListTest, AQuantityEqualToAThresholdTakesThatPointsPrice)
{
    add("A-100");
    typeQuantity(1, "10");
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell(11.0f));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 110.0);
    typeQuantity(1, "9");
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell(12.5f));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 112.5);
}

TEST_F(QuoteListTest, ThePriceOfTheLastSatisfiedSlotWinsEvenInDescendingOrder)
{
    catalogue.put(1, 6, "10");
    catalogue.put(1, 7, "$9.00");
    catalogue.put(1, 8, "5");
    catalogue.put(1, 9, "$11.00");
    add("A-100");
    typeQuantity(1, "12");
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell(11.0f));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 132.0);
}

TEST_F(QuoteListTest, ThePriceIsReadAsASingleAndTheExtendedPriceIsNotRounded)
{
    add("B-200");
    typeQuantity(1, "3");
    // float32(6.99) = 6.98999977111816406; × 3 in double precision.
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell(6.99f));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 20.969999313354492);
}

TEST_F(QuoteListTest, ASevenDigitListPriceKeepsItsCentsWhenAQuantityIsTyped)
{
    catalogue.put(1, ProductRecord::Price, Cell(123456.78f));
    add("A-100");
    catalogue.put(1, 6, Cell());
    catalogue.put(1, 8, Cell());
    typeQuantity(1, "1");
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell(123456.78f));
    EXPECT_EQ(format(quote.get(1, QuoteLine::ExtendedPrice), QStringLiteral("currency"), locale),
        QStringLiteral("$123,456.78"));
}

TEST_F(QuoteListTest, AQuantityOfZeroGivesAnExtendedPriceOfZero)
{
    add("A-100");
    add("D-400");
    EXPECT_EQ(QuotePricing::QuotePrice(quote, locale).total, QStringLiteral("$25.00"));
    typeQuantity(2, "0");
    EXPECT_EQ(quote.get(2, QuoteLine::UnitPrice), Cell(12.5f));
    EXPECT_EQ(number(2, QuoteLine::ExtendedPrice), 0.0);
    const QuoteSums sums = QuotePricing::sums(quote, locale);
    EXPECT_EQ(sums.total, 12.5);
    EXPECT_EQ(sums.listTotal, 12.5f);
    const QuoteTotals totals = QuotePricing::texts(sums, locale);
    EXPECT_EQ(totals.total, QStringLiteral("$12.50"));
    EXPECT_EQ(totals.discount, QStringLiteral("$0.00"));
    EXPECT_EQ(totals.percent, QStringLiteral("0.00%"));
}

TEST_F(QuoteListTest, QuantitiesAreRoundedHalfToEven)
{
    add("A-100");
    typeQuantity(1, "10.5"); // 10
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 110.0);
    typeQuantity(1, "9.5"); // 10
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 110.0);
}

TEST_F(QuoteListTest, ATypedFractionIsShownAsTheWholeNumberItIsPricedAt)
{
    add("A-100");
    typeQuantity(1, "2.5");
    EXPECT_EQ(quote.get(1, QuoteLine::Quantity), Cell(qint32(2)));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 25.0);
    typeQuantity(1, "16777217"); // a single holds 16777216, the number charged
    EXPECT_EQ(quote.get(1, QuoteLine::Quantity), Cell(qint32(16777216)));
}

TEST_F(QuoteListTest, AQuantityThatIsNoNumberIsKeptAsTypedAndPricesNothing)
{
    add("A-100");
    typeQuantity(1, "ten");
    EXPECT_EQ(quote.get(1, QuoteLine::Quantity), Cell("ten"));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 0.0);
}

TEST_F(QuoteListTest, ATypedPriceIsKeptUntilTheQuantityChangesAgain)
{
    add("A-100");
    typeQuantity(1, "10");
    typePrice(1, "$9.99");
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$9.99"));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 99.89999771118164); // float32(9.99) × 10
    typeQuantity(1, "50");
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell(10.0f));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 500.0);
}

TEST_F(QuoteListTest, EditingThePartNumberOrNameChangesNoPrice)
{
    add("A-100");
    typeQuantity(1, "10");
    quote.put(1, QuoteLine::ProductName, "Widget, blue");
    QuoteList::repriceLine(quote, catalogue, 1, QuoteGridColumn::Product, locale);
    quote.put(1, QuoteLine::PartNumber, "B-200");
    QuoteList::repriceLine(quote, catalogue, 1, QuoteGridColumn::PartNumber, locale);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell(11.0f));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 110.0);
}

TEST_F(QuoteListTest, APriceThatDoesNotConvertCountsAsZero)
{
    add("E-500");
    typeQuantity(1, "2");
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell(0.0f));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 0.0);
    typePrice(1, "ask");
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("ask"));
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 0.0);
}

TEST_F(QuoteListTest, RemovingALineClosesTheGapAndKeepsRoomFor250Lines)
{
    add("A-100");
    add("B-200");
    add("C-300");
    EXPECT_TRUE(QuoteList::removeLine(quote, 2));
    EXPECT_EQ(quote.rowCount(), QuoteLine::MaxLines);
    EXPECT_EQ(quote.get(1, QuoteLine::PartNumber), Cell("A-100"));
    EXPECT_EQ(quote.get(2, QuoteLine::PartNumber), Cell("C-300"));
    EXPECT_EQ(QuoteLine::lineCount(quote), 2);
    EXPECT_FALSE(QuoteList::removeLine(quote, 0));
    EXPECT_FALSE(QuoteList::removeLine(quote, QuoteLine::MaxLines + 1));
}

TEST_F(QuoteListTest, RemoveAllEmptiesTheQuote)
{
    add("A-100");
    add("B-200");
    QuoteList::removeAllLines(quote);
    EXPECT_EQ(quote.rowCount(), QuoteLine::MaxLines);
    EXPECT_EQ(QuoteLine::lineCount(quote), 0);
    EXPECT_TRUE(sameCells(quote, Table(QuoteLine::MaxLines, QuoteLine::FieldCount)));
    const QuoteTotals cleared = QuotePricing::clearedTotals();
    EXPECT_TRUE(cleared.total.isEmpty() && cleared.discount.isEmpty() && cleared.percent.isEmpty());
}

TEST_F(QuoteListTest, RemoveAllEmptiesAFullQuote)
{
    for (int line = 1; line <= QuoteLine::MaxLines; ++line)
        add("B-200");
    QuoteList::removeAllLines(quote);
    EXPECT_EQ(quote.rowCount(), QuoteLine::MaxLines);
    EXPECT_EQ(QuoteLine::lineCount(quote), 0);
    EXPECT_EQ(add("A-100"), 1);
}

TEST_F(QuoteListTest, AnAddedProductWithoutPartNumberEndsTheQuoteAndIsOverwrittenNext)
{
    add("A-100");
    EXPECT_EQ(add(""), 2);
    EXPECT_EQ(QuoteLine::lineCount(quote), 1);
    EXPECT_EQ(add("B-200"), 2);
    EXPECT_EQ(quote.get(2, QuoteLine::ProductName), Cell("Gadget"));
    EXPECT_EQ(QuoteLine::lineCount(quote), 2);
}

TEST_F(QuoteListTest, ALineWithoutPartNumberEndsTheQuoteForEveryLaterScan)
{
    add("A-100");
    add("D-400");
    add("C-300");
    quote.put(2, QuoteLine::PartNumber, ""); // the part number cleared in the grid
    // Totals: the scan runs up to and including the first free row, so the line without part
    // number still counts ($12.50 + $12.50); the line after it ($199.99) does not.
    EXPECT_EQ(QuotePricing::QuotePrice(quote, locale).total, QStringLiteral("$25.00"));
    // Adding: the next product takes the row of the line without part number.
    EXPECT_EQ(add("B-200"), 2);
    quote.put(2, QuoteLine::PartNumber, "");
    // Emptying: rows 1 and 2 go, the line after them moves up and stays.
    QuoteList::removeAllLines(quote);
    EXPECT_EQ(quote.get(1, QuoteLine::PartNumber), Cell("C-300"));
    EXPECT_EQ(QuoteLine::lineCount(quote), 1);
    EXPECT_EQ(quote.rowCount(), QuoteLine::MaxLines);
}

} // namespace
