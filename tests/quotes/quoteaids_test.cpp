// Locked prices, the next break and the volume prices of a quote line, for every shape of
// ladder: ascending, descending slots, gaps between slots, a threshold SetPrice cannot read.
#include "quotefixture.h"

#include "catalogue/productrecord.h"
#include "core/conversions.h"
#include "products/priceschedule.h"
#include "quotes/quoteaids.h"
#include "quotes/quotediscount.h"
#include "quotes/quotedocument.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"

#include <QTextDocument>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

namespace P = ProductRecord;

class QuoteAidsTest : public QuoteFixture
{
protected:
    QuoteAidsTest()
    {
        // 10 at $11.00, 50 at $10.00 (list $12.50). TW-100: 10 at 11.9, 25 at 10.95,
        // list 12.85. TW-400 keeps its points in descending order: 10 at 1200, 5 at 1225.
        catalogue.insertRows(catalogue.rowCount() + 1, 2);
        tw100 = catalogue.rowCount() - 1;
        tw400 = catalogue.rowCount();
        setProduct(tw100, "TW-100", "12.85", { "10", "11.9", "25", "10.95" });
        setProduct(tw400, "TW-400", "1250", { "10", "1200", "5", "1225" });
    }

    void setProduct(int row, const char *part, const char *list, const QStringList &points)
    {
        catalogue.put(row, P::PartNumber, part);
        catalogue.put(row, P::ProductName, "Widget");
        catalogue.put(row, P::Price, list);
        for (int i = 0; i < points.size(); ++i)
            catalogue.put(row, P::PricePoint1 + i, points.at(i));
    }

    float unitPrice(int row) const
    {
        return conv::toSingle(quote.get(row, QuoteLine::UnitPrice), locale);
    }

    QString nextText(int row) const
    {
        return QuoteAids::nextBreakText(quote, catalogue, row, locale);
    }

    int tw100 = 0;
    int tw400 = 0;
};

TEST_F(QuoteAidsTest, ALockedLineKeepsItsUnitPriceThroughQuantityChanges)
{
    const int row = add("A-100");
    typePrice(row, "9.5");
    QuoteLine::setLocked(quote, row, true);
    EXPECT_TRUE(QuoteLine::isLocked(quote, row));
    typeQuantity(row, "60");
    EXPECT_FLOAT_EQ(unitPrice(row), 9.5f);
    EXPECT_DOUBLE_EQ(number(row, QuoteLine::ExtendedPrice), 9.5 * 60);
    typeQuantity(row, "3");
    EXPECT_DOUBLE_EQ(number(row, QuoteLine::ExtendedPrice), 9.5 * 3);

    QuoteLine::setLocked(quote, row, false);
    typeQuantity(row, "60");
    EXPECT_FLOAT_EQ(unitPrice(row), 10.0f) << "unlocked: priced again";
}

TEST_F(QuoteAidsTest, TheLockMovesWithItsLineWhenALineBeforeItIsRemoved)
{
    add("B-200");
    const int row = add("A-100");
    QuoteLine::setLocked(quote, row, true);
    QuoteList::removeLine(quote, 1);
    EXPECT_TRUE(QuoteLine::isLocked(quote, 1));
    EXPECT_FALSE(QuoteLine::isLocked(quote, 2));
}

TEST_F(QuoteAidsTest, ResetPricesKeepsOrUnlocksTheLockedLines)
{
    const int locked = add("A-100");
    const int free = add("B-200");
    typePrice(locked, "9");
    typePrice(free, "7");
    QuoteLine::setLocked(quote, locked, true);
    EXPECT_TRUE(Discount::anyLocked(quote));

    Discount::resetPrices(quote, locale, Discount::LockedLines::Keep);
    EXPECT_FLOAT_EQ(unitPrice(locked), 9.0f);
    EXPECT_EQ(quote.get(free, QuoteLine::UnitPrice), Cell("$7.35"));
    EXPECT_TRUE(QuoteLine::isLocked(quote, locked));

    Discount::resetPrices(quote, locale, Discount::LockedLines::Unlock);
    EXPECT_EQ(quote.get(locked, QuoteLine::UnitPrice), Cell("$12.50"));
    EXPECT_FALSE(Discount::anyLocked(quote));
}

TEST_F(QuoteAidsTest, TheNextBreakNamesItsQuantityPriceAndSaving)
{
    const int row = add("TW-100");
    typeQuantity(row, "22");
    EXPECT_EQ(nextText(row),
        QStringLiteral("Next break for TW-100: 25 or more at $10.95 each \u2014 3 more units save "
                       "$23.75 on this line."));
    const auto next = QuoteAids::nextBreak(quote, catalogue, row, locale);
    ASSERT_TRUE(next);
    EXPECT_EQ(next->quantity, 25);
    EXPECT_EQ(next->moreUnits, 3);
    EXPECT_DOUBLE_EQ(next->saving, 23.75);

    typeQuantity(row, "9");
    EXPECT_EQ(nextText(row),
        QStringLiteral("Next break for TW-100: 10 or more at $11.90 each \u2014 1 more unit saves "
                       "$9.50 on this line."));
    typeQuantity(row, "25");
    EXPECT_EQ(nextText(row), QString()) << "no break above 25";
}

TEST_F(QuoteAidsTest, DescendingSlotsGiveOnlyTheBreakTheQuoteReallyCharges)
{
    const int row = add("TW-400");
    typeQuantity(row, "3");
    EXPECT_EQ(nextText(row),
        QStringLiteral("Next break for TW-400: 5 or more at $1,225.00 each \u2014 2 more units "
                       "save $125.00 on this line."));
    typeQuantity(row, "7");
    EXPECT_EQ(nextText(row), QString()) << "at 10 slot 2 wins, so 10 costs $1,225.00 as well";
    EXPECT_EQ(PriceSchedule::SetPrice(catalogue, "TW-400", 10, locale).price, "1225");
}

TEST_F(QuoteAidsTest, GapsAndAThresholdOf40000AreHandledAsSetPriceDoes)
{
    catalogue.put(tw100, P::PricePoint1, Cell());
    catalogue.put(tw100, P::Price1, Cell());
    catalogue.put(tw100, P::PricePoint3, "40000");
    catalogue.put(tw100, P::Price3, "1");
    catalogue.put(tw100, P::PricePoint4, "100");
    catalogue.put(tw100, P::Price4, "9");
    const int row = add("TW-100");
    typeQuantity(row, "30");
    EXPECT_EQ(nextText(row), QString())
        << "SetPrice stops reading at 40000: neither it nor 100 ever applies";
    typeQuantity(row, "5");
    EXPECT_EQ(nextText(row),
        QStringLiteral("Next break for TW-100: 25 or more at $10.95 each \u2014 20 more units "
                       "save $47.50 on this line."));
}

TEST_F(QuoteAidsTest, ALockedOrUnknownOrTypedBelowLineHasNoNextBreak)
{
    const int row = add("TW-100");
    typeQuantity(row, "22");
    QuoteLine::setLocked(quote, row, true);
    EXPECT_EQ(nextText(row), QString());
    QuoteLine::setLocked(quote, row, false);
    typePrice(row, "10");
    EXPECT_EQ(nextText(row), QString()) << "the typed price is below every break";
    quote.put(row, QuoteLine::PartNumber, "XX-1");
    EXPECT_EQ(nextText(row), QString());
}

TEST_F(QuoteAidsTest, VolumePricesListEveryCheaperBreakAboveTheQuantity)
{
    const int row = add("A-100");
    typeQuantity(row, "5");
    EXPECT_EQ(QuoteAids::volumePriceLines(quote, catalogue, row, locale),
        QStringList({ QStringLiteral("Order 10 or more: $11.00 each."),
            QStringLiteral("Order 50 or more: $10.00 each.") }));
    const int descending = add("TW-400");
    EXPECT_EQ(QuoteAids::volumePriceLines(quote, catalogue, descending, locale),
        QStringList { QStringLiteral("Order 5 or more: $1,225.00 each.") });
}

// A point with a quantity and no price (or "call") is no offer: neither the next break nor the
// document's volume prices name it at $0.00, and the real break after it is offered.
TEST_F(QuoteAidsTest, APointWithoutAPriceIsNoBreakToOffer)
{
    catalogue.insertRows(catalogue.rowCount() + 1, 2);
    setProduct(catalogue.rowCount() - 1, "E-1", "50", { "10", "", "20", "40" });
    setProduct(catalogue.rowCount(), "F-1", "50", { "10", "call", "20", "40" });
    for (const char *part : { "E-1", "F-1" }) {
        const int row = add(part);
        EXPECT_EQ(nextText(row),
            QStringLiteral("Next break for %1: 20 or more at $40.00 each \u2014 19 more units "
                           "save $200.00 on this line.")
                .arg(QLatin1String(part)));
        EXPECT_EQ(QuoteAids::volumePriceLines(quote, catalogue, row, locale),
            QStringList { QStringLiteral("Order 20 or more: $40.00 each.") });
    }
}

TEST_F(QuoteAidsTest, AQuantityWithoutAPriceIsNamedAndLeftOffTheDocument)
{
    catalogue.insertRows(catalogue.rowCount() + 1, 1);
    setProduct(catalogue.rowCount(), "E-1", "50", { "10", "", "20", "40" });
    const auto prices = QuoteAids::pricesAt(catalogue, "E-1", { 5, 10, 20 }, locale);
    ASSERT_EQ(prices.size(), 3u);
    EXPECT_TRUE(prices[0].priced);
    EXPECT_FALSE(prices[1].priced);
    EXPECT_TRUE(prices[2].priced);
    EXPECT_EQ(QuoteAids::unpricedQuantity(prices, locale),
        QStringLiteral("The catalogue gives no price at 10: give that price point its price, or "
                       "leave the quantity out."));
    EXPECT_EQ(QuoteAids::unpricedQuantity(
                  QuoteAids::pricesAt(catalogue, "E-1", { 5, 20 }, locale), locale),
        QString());
    const auto gone = QuoteAids::pricesAt(catalogue, "NO-SUCH", { 5 }, locale);
    EXPECT_FALSE(gone.front().priced);
    EXPECT_EQ(QuoteAids::unpricedQuantity(gone, locale),
        QStringLiteral("The product is no longer in the catalogue: no quantity can be priced for "
                       "it."))
        << "no price point of a deleted product can be given its price";

    // Kept while the point had its price, the quantity is left off the document later.
    const int row = add("E-1");
    quote.put(row, QuoteLine::Quantities, QuoteAids::quantitiesText({ 5, 10, 20 }));
    const auto shown = QuoteAids::linePricesAt(quote, catalogue, row, locale);
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].quantity, 5);
    EXPECT_EQ(shown[1].quantity, 20);
}

TEST_F(QuoteAidsTest, AQuantityBelowZeroHasNoNextBreak)
{
    const int row = add("A-100");
    typeQuantity(row, "-5");
    EXPECT_EQ(nextText(row), QString());
    typeQuantity(row, "-2147483000");
    EXPECT_EQ(nextText(row), QString());
    typeQuantity(row, "0");
    EXPECT_EQ(nextText(row),
        QStringLiteral("Next break for A-100: 10 or more at $11.00 each \u2014 10 more units save "
                       "$15.00 on this line."));
}

TEST_F(QuoteAidsTest, ALockedLineOffersNoVolumePricesItWouldNotCharge)
{
    const int row = add("A-100");
    typeQuantity(row, "5");
    QuoteLine::setLocked(quote, row, true);
    EXPECT_EQ(QuoteAids::volumePriceLines(quote, catalogue, row, locale), QStringList());
    QuoteLine::setLocked(quote, row, false);
    EXPECT_EQ(QuoteAids::volumePriceLines(quote, catalogue, row, locale).size(), 2);
}

TEST_F(QuoteAidsTest, TheDocumentShowsVolumePricesUnderTheLineOnlyWhenAskedFor)
{
    const int row = add("TW-100");
    typeQuantity(row, "22");
    QuoteDocumentInput input;
    input.catalogue = &catalogue;
    const QString without = QuoteDocument::build(quote, input, locale)->toPlainText();
    EXPECT_FALSE(without.contains(QStringLiteral("Order 25")));
    input.volumePrices = 1;
    const QString with = QuoteDocument::build(quote, input, locale)->toPlainText();
    EXPECT_TRUE(with.contains(QStringLiteral("Ext.: $261.80\nOrder 25 or more: $10.95 each.\n")))
        << with.toStdString();
}

} // namespace

namespace {

TEST_F(QuoteAidsTest, PricesAtSeveralQuantitiesAreThoseOfSetPrice)
{
    const std::vector<qint32> quantities { 3, 5, 10, 12, 40000 };
    const auto prices = QuoteAids::pricesAt(catalogue, "TW-400", quantities, locale);
    ASSERT_EQ(prices.size(), quantities.size());
    for (std::size_t i = 0; i < prices.size(); ++i) {
        const float expected = PriceSchedule::chargedPrice(
            PriceSchedule::SetPrice(catalogue, "TW-400", quantities[i], locale).price, locale);
        EXPECT_EQ(prices[i].quantity, quantities[i]);
        EXPECT_EQ(prices[i].unitPrice, expected) << quantities[i];
        EXPECT_DOUBLE_EQ(prices[i].extended, double(expected) * quantities[i]);
    }
    EXPECT_EQ(prices[0].unitPrice, 1250.0f);
    EXPECT_EQ(prices[2].unitPrice, 1225.0f);
    EXPECT_TRUE(QuoteAids::pricesAt(catalogue, "XX-1", { 5 }, locale)[0].unitPrice == 0.0f);
}

TEST_F(QuoteAidsTest, TypedQuantitiesAreReadOrTheFirstBadOneNamed)
{
    const auto good = QuoteAids::readQuantities({ "100", "", " 1,000 ", "500", "" }, locale);
    EXPECT_EQ(good.error, QString());
    EXPECT_EQ(good.quantities, (std::vector<qint32> { 100, 1000, 500 }));
    EXPECT_EQ(QuoteAids::readQuantities({ "100", "ten" }, locale).error,
        QStringLiteral("\"ten\" is no quantity: enter a whole number of 1 or more."));
    EXPECT_EQ(QuoteAids::readQuantities({ "2.5" }, locale).error,
        QStringLiteral("\"2.5\" is no quantity: enter a whole number of 1 or more."));
    EXPECT_EQ(QuoteAids::readQuantities({ "0" }, locale).error,
        QStringLiteral("\"0\" is no quantity: enter a whole number of 1 or more."));
    EXPECT_EQ(QuoteAids::readQuantities({ "3000000000" }, locale).error,
        QStringLiteral("\"3000000000\" is no quantity: enter a whole number of 1 or more."));
    EXPECT_EQ(QuoteAids::readQuantities({ "1", "2", "3", "4", "5", "6" }, locale).error,
        QStringLiteral("Enter at most 5 quantities."));
    EXPECT_EQ(QuoteAids::readQuantities({ "1000", "500", " 1,000" }, locale).error,
        QStringLiteral("\"1,000\" is entered twice: enter each quantity once."));
}

TEST_F(QuoteAidsTest, QuantitiesAreKeptWithTheLineAndPrintedAsATableUnderIt)
{
    add("B-200");
    const int row = add("A-100");
    quote.put(row, QuoteLine::Quantities, QuoteAids::quantitiesText({ 5, 50, 100 }));
    EXPECT_EQ(quote.get(row, QuoteLine::Quantities), Cell("5;50;100"));
    QuoteList::removeLine(quote, 1);
    EXPECT_EQ(QuoteAids::quantitiesOf(quote, 1), (std::vector<qint32> { 5, 50, 100 }));
    EXPECT_EQ(quote.get(1, QuoteLine::Quantity), Cell(qint32(1))) << "the grid's own quantity";

    QuoteDocumentInput input;
    input.catalogue = &catalogue;
    const QString text = QuoteDocument::build(quote, input, locale)->toPlainText();
    EXPECT_TRUE(text.contains(QStringLiteral("Extended Price  $12.50\n"
                                             "Quantity\tUnit Price\tExtended Price\n"
                                             "5\t$12.50\t$62.50\n"
                                             "50\t$10.00\t$500.00\n"
                                             "100\t$10.00\t$1,000.00\n")))
        << text.toStdString();
}

} // namespace
