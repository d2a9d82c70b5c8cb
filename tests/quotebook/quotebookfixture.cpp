#include "quotebookfixture.h"

#include "quotes/quoteline.h"

namespace tarnwick::test {

QuoteContent sampleContent(int count, const QString &prefix)
{
    QuoteContent content;
    content.lines.redim(count, QuoteLine::FieldCount);
    for (int row = 1; row <= count; ++row) {
        content.lines.put(row, QuoteLine::PartNumber, QStringLiteral("%1-%2").arg(prefix).arg(row));
        content.lines.put(row, QuoteLine::ProductName, QStringLiteral("Product %1").arg(row));
        content.lines.put(row, QuoteLine::UnitPrice, 2.5f);
        content.lines.put(row, QuoteLine::Quantity, qint32(row));
        content.lines.put(row, QuoteLine::ExtendedPrice, 2.5 * row);
        content.lines.put(row, QuoteLine::ListPrice, "$2.50");
        content.lines.put(row, QuoteLine::Includes, QStringLiteral("Includes %1").arg(row));
        content.sources.push_back(PriceSource::ListPrice);
    }
    return content;
}

SavedQuote sampleQuote(const QString &customer, const QDate &date, int lines, const QString &prefix)
{
    SavedQuote quote;
    quote.header.customer.customer = customer;
    quote.header.customer.company = customer + QStringLiteral(" Ltd");
    quote.header.customer.email = QStringLiteral("buyer@example.com");
    quote.header.date = date;
    quote.header.validUntil = date.addDays(DefaultValidDays);
    quote.header.heading = QStringLiteral("Dear customer,");
    quote.header.ending = QStringLiteral("Kind regards");
    quote.content = sampleContent(lines, prefix);
    return quote;
}

void QuoteBookTest::SetUp()
{
    book = std::make_unique<QuoteBook>(locale);
    ASSERT_EQ(book->open(bookPath()).status, QuoteBook::OpenStatus::Created)
        << book->errorString().toStdString();
}

QuoteBook::OpenResult QuoteBookTest::reopen()
{
    book = std::make_unique<QuoteBook>(locale);
    return book->open(bookPath());
}

} // namespace tarnwick::test
