#include "historyfixture.h"

#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "core/conversions.h"
#include "quotes/quoteline.h"

namespace tarnwick::test {

HistoryTest::HistoryTest()
{
    catalogue().redim(0, ProductRecord::FieldCount);
    quote().redim(QuoteLine::MaxLines, QuoteLine::FieldCount);
    module.ScheduleTable().redim(ProductRecord::PricePointCount, 2);
    QObject::connect(&history, &EditHistory::productsChanged,
        [this](const ProductChange &change) { productChanges.push_back(change); });
    QObject::connect(&history, &EditHistory::quoteChanged,
        [this](const QuoteChange &change) { quoteChanges.push_back(change); });
}

void HistoryTest::loadProducts(const std::vector<QStringList> &products)
{
    catalogue().redim(int(products.size()), ProductRecord::FieldCount);
    for (int row = 1; row <= int(products.size()); ++row) {
        const QStringList &fields = products[std::size_t(row - 1)];
        for (int field = 1; field <= int(fields.size()); ++field) {
            const QString &text = fields[field - 1];
            const auto number = conv::parseNumber(text, locale);
            if (field == ProductRecord::Price && number)
                catalogue().put(row, field, float(*number));
            else if (!text.isEmpty())
                catalogue().put(row, field, text);
        }
    }
    module.AllProducts().setCount(qint32(products.size()));
}

QByteArray HistoryTest::fileBytes()
{
    return catalogueFileBytes(catalogue(), locale, count()).bytes;
}

QStringList HistoryTest::column(int field)
{
    QStringList texts;
    for (int row = 1; row <= catalogue().rowCount(); ++row)
        texts << conv::toText(catalogue().get(row, field), locale);
    return texts;
}

QStringList HistoryTest::quoteColumn(int field, int rows)
{
    QStringList texts;
    for (int row = 1; row <= rows; ++row)
        texts << conv::toText(quote().get(row, field), locale);
    return texts;
}

} // namespace tarnwick::test
