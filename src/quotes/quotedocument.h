#pragma once

#include <QLocale>
#include <QString>

#include <memory>

class QTextDocument;

namespace tarnwick {

class Table;

/// What the quote document is made of besides the quote's lines: the user's heading and ending
/// texts, the "NoIncludes" setting and the texts of the total boxes as they are shown.
struct QuoteDocumentInput
{
    QString heading;
    QString ending;
    int noIncludes = 0; ///< 1 leaves out every line's Includes text
    QString discountBox; ///< TxtDisc
    QString totalBox; ///< TxtTotal
    /// 1 adds under each line its cheaper volume prices ("VolumePrices"); needs catalogue.
    int volumePrices = 0;
    /// The catalogue the volume prices and the prices at a line's further quantities are read
    /// from; without it neither is shown.
    const Table *catalogue = nullptr;
};

/// The totals lines of the quote document.
struct QuoteTotalTexts
{
    QString discount; ///< "Discount Amount = …", empty when the discount box shows 0 or less
    QString total; ///< "Order Total = …"
};

namespace QuoteDocument {

/// The font of the whole quote document.
inline constexpr QLatin1String FontFamily("Times New Roman");

/// Builds the quote document: the heading in 12 point bold, one block per quote line (the
/// plain or the discounted layout), the discount amount when there is one, the order total and
/// the ending text. See the .cpp for the exact rules.
std::unique_ptr<QTextDocument> build(
    const Table &quote, const QuoteDocumentInput &input, const QLocale &locale);

/// The line under quote row's part number and name, without its line feed: the plain layout
/// ("Quantity 1", "Price $2.50", "Extended Price  $2.50") or the discounted one ("List: ",
/// "Price: ", "Discount: ", "Ext.: "), its parts separated by tabs.
QString priceLine(const Table &quote, int row, const QLocale &locale);

/// The discount amount (only while the discount box shows more than 0) and the order total,
/// both as the boxes show them.
QuoteTotalTexts totalTexts(const QuoteDocumentInput &input, const QLocale &locale);

} // namespace QuoteDocument

} // namespace tarnwick
