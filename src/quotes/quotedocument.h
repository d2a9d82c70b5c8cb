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

namespace QuoteDocument {

/// The font of the whole quote document.
inline constexpr QLatin1String FontFamily("Times New Roman");

/// Builds the quote document: the heading in 12 point bold, one block per quote line (the
/// plain or the discounted layout), the discount amount when there is one, the order total and
/// the ending text. See the .cpp for the exact rules.
std::unique_ptr<QTextDocument> build(
    const Table &quote, const QuoteDocumentInput &input, const QLocale &locale);

} // namespace QuoteDocument

} // namespace tarnwick
