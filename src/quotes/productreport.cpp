#include "quotes/productreport.h"

#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "products/priceschedule.h"
#include "quotes/documentcomposer.h"

#include <QTextDocument>

namespace tarnwick::ProductReport {

namespace {

const QString Lf = QStringLiteral("\n");

QString field(const Table &catalogue, int row, int fieldNumber, const QLocale &locale)
{
    if (row < 1 || row > catalogue.rowCount())
        return {};
    const Cell &cell = catalogue.get(row, fieldNumber);
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

void heading(DocumentComposer &out, const QString &text)
{
    out.setBold(true);
    out.setSize(12);
    out.setFont(HeadingFont);
    out.insert(text + Lf);
    out.setBold(false);
    out.setSize(10);
}

} // namespace

std::unique_ptr<QTextDocument> build(const Table &catalogue, int row, const QLocale &locale)
{
    auto document = std::make_unique<QTextDocument>();
    document->setDefaultFont(QFont(HeadingFont, 10));
    const auto text = [&](int fieldNumber) { return field(catalogue, row, fieldNumber, locale); };
    const bool valid = row >= 1 && row <= catalogue.rowCount();
    const QString details = QLatin1String("Part Number  ") + text(ProductRecord::PartNumber)
        + QLatin1String("\t") + text(ProductRecord::ProductName) + Lf + QLatin1String("Price: ")
        + (valid ? format(
               catalogue.get(row, ProductRecord::Price), QStringLiteral("currency"), locale)
                 : QString());

    DocumentComposer out(*document);
    heading(out, QStringLiteral("Product Report"));
    out.setSize(8);
    out.insert(details + Lf);
    heading(out, QStringLiteral("Includes:"));
    out.insert(text(ProductRecord::Includes));
    out.insert(Lf + Lf);
    heading(out, QStringLiteral("Notes:"));
    out.insert(text(ProductRecord::Notes) + Lf);
    heading(out, QStringLiteral("Discount Schedule:"));
    out.insert(valid ? PriceSchedule::creatdiscs(catalogue, row, locale) : QString());
    return document;
}

} // namespace tarnwick::ProductReport
