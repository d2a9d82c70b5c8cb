#include "quotefixture.h"

#include "catalogue/productrecord.h"
#include "core/conversions.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"

#include <iterator>

namespace tarnwick::test {

namespace {

struct Product
{
    const char *part;
    const char *name;
    const char *price;
    const char *includes;
};

constexpr Product Products[] = {
    { "A-100", "Widget", "$12.50", "Two widgets" },
    { "B-200", "Gadget", "$7.35", "" },
    { "C-300", "Gizmo", "$199.99", "" },
    { "D-400", "Doohickey", "$12.50", "" },
    { "", "Nameless", "$3.00", "" },
    { "E-500", "Quote me", "call us", "" },
    { "F-600", "Big one", "$150,000.01", "" },
    { "G-700", "Other big one", "$100,000.01", "" },
};

} // namespace

QuoteFixture::QuoteFixture()
    : catalogue(int(std::size(Products)), ProductRecord::FieldCount),
      quote(QuoteLine::MaxLines, QuoteLine::FieldCount)
{
    int row = 0;
    for (const Product &product : Products) {
        ++row;
        catalogue.put(row, ProductRecord::PartNumber, product.part);
        catalogue.put(row, ProductRecord::ProductName, product.name);
        catalogue.put(row, ProductRecord::Price, product.price);
        catalogue.put(row, ProductRecord::Includes, product.includes);
    }
    catalogue.put(1, ProductRecord::PricePoint1, "10");
    catalogue.put(1, ProductRecord::Price1, "$11.00");
    catalogue.put(1, ProductRecord::PricePoint2, "50");
    catalogue.put(1, ProductRecord::Price2, "$10.00");
    catalogue.put(2, ProductRecord::PricePoint1, "2");
    catalogue.put(2, ProductRecord::Price1, "$6.99");
    catalogue.put(2, ProductRecord::PricePoint2, "5");
    catalogue.put(2, ProductRecord::Price2, "$6.50");
}

int QuoteFixture::add(const QString &partNumber)
{
    const int product = catalogue.find(ProductRecord::PartNumber, Cell(partNumber));
    const QString includes = conv::toText(catalogue.get(product, ProductRecord::Includes), locale);
    return QuoteList::addProduct(quote, catalogue, product, includes).row;
}

void QuoteFixture::typeQuantity(int row, const QString &text)
{
    quote.put(row, QuoteLine::Quantity, text);
    QuoteList::repriceLine(quote, catalogue, row, QuoteGridColumn::Quantity, locale);
}

void QuoteFixture::typePrice(int row, const QString &text)
{
    quote.put(row, QuoteLine::UnitPrice, text);
    QuoteList::repriceLine(quote, catalogue, row, QuoteGridColumn::Price, locale);
}

} // namespace tarnwick::test
