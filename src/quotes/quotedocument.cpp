#include "quotes/quotedocument.h"

#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "quotes/documentcomposer.h"
#include "quotes/quoteaids.h"
#include "quotes/quoteline.h"

#include <QTextDocument>

#include <cmath>
#include <limits>
#include <optional>

namespace tarnwick::QuoteDocument {

namespace {

const QString Tab = QStringLiteral("\t");
const QString Lf = QStringLiteral("\n");

/// A cell as the document shows it; a null cell shows nothing.
QString textOf(const Cell &cell, const QLocale &locale)
{
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

std::optional<double> numberOf(const Cell &cell, const QLocale &locale)
{
    if (!conv::isNumeric(cell, locale))
        return std::nullopt;
    return conv::toDouble(cell, locale);
}

/// A line is shown in the plain layout when its unit price equals its list price. Prices that
/// are numbers are compared at single precision, the precision a re-priced unit price is held
/// in; anything else is compared as text.
bool atListPrice(const Cell &unit, const Cell &list, const QLocale &locale)
{
    const auto unitNumber = numberOf(unit, locale);
    const auto listNumber = numberOf(list, locale);
    if (unitNumber && listNumber)
        return float(*unitNumber) == float(*listNumber);
    return textOf(unit, locale) == textOf(list, locale);
}

/// The discount of a line, (list price − unit price) ÷ list price, held as a single; 0 when the
/// list price is no number or zero, none when the ratio lies beyond a single (a unit price typed
/// as 1E+40).
std::optional<float> discountOf(const Cell &unit, const Cell &list, const QLocale &locale)
{
    const auto unitNumber = numberOf(unit, locale);
    const auto listNumber = numberOf(list, locale);
    if (!unitNumber || !listNumber || *listNumber == 0.0)
        return 0.0f;
    const double share = (*listNumber - *unitNumber) / *listNumber;
    if (!(std::fabs(share) <= double(std::numeric_limits<float>::max())))
        return std::nullopt;
    return float(share);
}

QString currency(const Cell &cell, const QLocale &locale)
{
    return format(cell, QStringLiteral("Currency"), locale);
}

/// The line under a quote line's heading: quantity, prices and extended price.
QString priceLineOf(const Table &quote, int row, const QLocale &locale)
{
    const Cell &unit = quote.get(row, QuoteLine::UnitPrice);
    const Cell &list = quote.get(row, QuoteLine::ListPrice);
    const QString quantity = textOf(quote.get(row, QuoteLine::Quantity), locale);
    const QString extended = currency(quote.get(row, QuoteLine::ExtendedPrice), locale);
    if (atListPrice(unit, list, locale)) {
        return QLatin1String("Quantity ") + quantity + Tab + Tab + QLatin1String("Price ")
            + currency(unit, locale) + Tab + Tab + Tab + QLatin1String("Extended Price  ")
            + extended + Lf;
    }
    const std::optional<float> share = discountOf(unit, list, locale);
    const QString discount =
        share ? format(Cell(*share), QStringLiteral("percent"), locale) : QString();
    return QLatin1String("Quantity ") + quantity + Tab + QLatin1String("List: ")
        + currency(list, locale) + Tab + QLatin1String("Price: ") + currency(unit, locale) + Tab
        + QLatin1String("Discount: ") + discount + Tab + QLatin1String("Ext.: ") + extended + Lf;
}

/// The small table of a line's further quantities: a heading row, then quantity, unit price
/// and extended price of each, separated by tabs.
void insertQuantities(DocumentComposer &out, const Table &quote, int row, const Table &catalogue,
    const QLocale &locale)
{
    const auto prices = QuoteAids::linePricesAt(quote, catalogue, row, locale);
    if (prices.empty())
        return;
    out.insert(QLatin1String("Quantity") + Tab + QLatin1String("Unit Price") + Tab
        + QLatin1String("Extended Price") + Lf);
    for (const QuantityPrice &price : prices) {
        out.insert(format(Cell(price.quantity), QStringLiteral("#,###"), locale) + Tab
            + currency(Cell(price.unitPrice), locale) + Tab + currency(Cell(price.extended), locale)
            + Lf);
    }
}

/// One block per line: part number and name in bold, the price line, the cheaper volume
/// prices when they are asked for, the table of the line's further quantities, the Includes
/// text unless "NoIncludes" is 1, and a blank line. The paragraphs before the blank line are
/// kept together.
void insertLine(DocumentComposer &out, const Table &quote, int row, const QuoteDocumentInput &input,
    const QLocale &locale)
{
    const int first = out.blockNumber();
    out.setBold(true);
    out.setSize(10);
    out.insert(textOf(quote.get(row, QuoteLine::PartNumber), locale) + QLatin1String(" ") + Tab);
    out.insert(textOf(quote.get(row, QuoteLine::ProductName), locale) + Lf);
    out.setBold(false);
    out.setSize(10);
    out.insert(priceLineOf(quote, row, locale));
    if (input.volumePrices == 1 && input.catalogue) {
        for (const QString &line :
            QuoteAids::volumePriceLines(quote, *input.catalogue, row, locale))
            out.insert(line + Lf);
    }
    if (input.catalogue)
        insertQuantities(out, quote, row, *input.catalogue, locale);
    if (input.noIncludes != 1)
        out.insert(textOf(quote.get(row, QuoteLine::Includes), locale) + Lf);
    // The product's name, its price line and its includes text never part at a page break.
    out.keepTogether(first, out.blockNumber() - 1);
    out.insert(Lf);
}

/// The totals in bold: "Discount Amount = " only while the discount box shows more than 0,
/// then the order total, both as the boxes show them.
void insertTotals(DocumentComposer &out, const QuoteDocumentInput &input, const QLocale &locale)
{
    out.insert(Lf);
    out.setBold(true);
    out.setSize(10);
    const QuoteTotalTexts totals = totalTexts(input, locale);
    if (!totals.discount.isEmpty())
        out.insert(totals.discount + Lf);
    out.insert(Lf);
    out.insert(totals.total + Lf + Lf);
}

} // namespace

QString priceLine(const Table &quote, int row, const QLocale &locale)
{
    return priceLineOf(quote, row, locale).chopped(1);
}

QuoteTotalTexts totalTexts(const QuoteDocumentInput &input, const QLocale &locale)
{
    QuoteTotalTexts texts;
    const auto discount = conv::parseNumber(input.discountBox, locale);
    if (discount && *discount > 0)
        texts.discount = QLatin1String("Discount Amount = ") + input.discountBox;
    texts.total = QLatin1String("Order Total = ") + input.totalBox;
    return texts;
}

std::unique_ptr<QTextDocument> build(
    const Table &quote, const QuoteDocumentInput &input, const QLocale &locale)
{
    auto document = std::make_unique<QTextDocument>();
    QFont font(FontFamily);
    font.setPointSize(10);
    document->setDefaultFont(font);
    DocumentComposer out(*document);
    out.setFont(FontFamily);
    out.setSize(12);
    out.setBold(true);
    out.insert(input.heading + Lf + Lf);
    out.setSize(10);
    out.setBold(false);
    const int end = QuoteLine::firstFreeRow(quote);
    for (int row = 1; row < end; ++row)
        insertLine(out, quote, row, input, locale);
    insertTotals(out, input, locale);
    out.insert(input.ending);
    return document;
}

} // namespace tarnwick::QuoteDocument
