// Numbers typed into a quote in one locale's way, read back from the quote book under another
// locale: the same prices and quantities.
#include "quotebookfixture.h"

#include "quotes/quoteline.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

const QDate QuotedOn(2026, 5, 12);

// A price and a quantity typed in German ("1.234,56", "1.000") are kept as the numbers they
// are, so the book read under English (a colleague, or regional settings changed) gives the
// same price, not 1.23 or no number; texts that are no number stay texts.
TEST_F(QuoteBookTest, TypedNumbersMeanTheSameUnderAnotherLocale)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    book = std::make_unique<QuoteBook>(german);
    ASSERT_EQ(book->open(bookPath()).status, QuoteBook::OpenStatus::Opened);
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), QuotedOn, 3);
    Table &lines = quote.content.lines;
    lines.put(1, QuoteLine::UnitPrice, "1.234");
    lines.put(1, QuoteLine::Quantity, "1.000");
    lines.put(2, QuoteLine::UnitPrice, QStringLiteral("1.234,56 \u20ac"));
    lines.put(2, QuoteLine::Quantity, "1,5");
    lines.put(3, QuoteLine::UnitPrice, "call");
    lines.put(3, QuoteLine::Quantity, "12");
    quote.content.sources = { PriceSource::Typed, PriceSource::Typed, PriceSource::Typed };
    ASSERT_TRUE(book->saveNew(quote));
    QuoteBook::InHand inHand;
    inHand.quoteId = quote.header.id;
    inHand.content = quote.content;
    ASSERT_TRUE(book->keepInHand(inHand));

    ASSERT_EQ(reopen().status, QuoteBook::OpenStatus::Opened); // under English
    const auto loaded = book->load(quote.header.id);
    const auto kept = book->inHand();
    ASSERT_TRUE(loaded.has_value());
    ASSERT_TRUE(kept.has_value());
    for (const Table *read : { &loaded->content.lines, &kept->content.lines }) {
        EXPECT_EQ(read->get(1, QuoteLine::UnitPrice), Cell(1234.0));
        EXPECT_EQ(read->get(1, QuoteLine::Quantity), Cell(qint32(1000)));
        EXPECT_EQ(read->get(2, QuoteLine::UnitPrice), Cell(1234.56));
        EXPECT_EQ(read->get(2, QuoteLine::Quantity), Cell("1,5")) << "no whole number: as typed";
        EXPECT_EQ(read->get(3, QuoteLine::UnitPrice), Cell("call"));
        EXPECT_EQ(read->get(3, QuoteLine::Quantity), Cell("12")) << "digits alone, as typed";
    }
}

// A price typed in English with three decimals ("2.675") would be two thousand six hundred and
// seventy-five to a German reader: it is kept as its number, as "2,675" typed in German is.
TEST_F(QuoteBookTest, ThreeDecimalsTypedInEnglishAreKeptAsTheirNumber)
{
    SavedQuote quote = sampleQuote(QStringLiteral("ACME"), QuotedOn, 2);
    quote.content.lines.put(1, QuoteLine::UnitPrice, "2.675");
    quote.content.lines.put(2, QuoteLine::UnitPrice, "12.50");
    ASSERT_TRUE(book->saveNew(quote));
    const QLocale german(QLocale::German, QLocale::Germany);
    book = std::make_unique<QuoteBook>(german);
    ASSERT_EQ(book->open(bookPath()).status, QuoteBook::OpenStatus::Opened);
    const auto loaded = book->load(quote.header.id);
    ASSERT_TRUE(loaded.has_value());
    EXPECT_EQ(loaded->content.lines.get(1, QuoteLine::UnitPrice), Cell(2.675));
    EXPECT_EQ(loaded->content.lines.get(2, QuoteLine::UnitPrice), Cell(12.5));
}

} // namespace
