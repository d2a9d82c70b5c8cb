#pragma once

#include <QLocale>
#include <QString>

#include <memory>

class QTextDocument;

namespace tarnwick {

class Table;

/// The "Product Report": a one-product information sheet with the title, the part number, name
/// and price, and the sections "Includes:", "Notes:" and "Discount Schedule:".
namespace ProductReport {

/// The font of the title and the section headings.
inline constexpr QLatin1String HeadingFont("Arial");

/// Builds the report of catalogue row. Every heading is written, also when its section is
/// empty. A row outside the catalogue gives the headings with empty details.
std::unique_ptr<QTextDocument> build(const Table &catalogue, int row, const QLocale &locale);

} // namespace ProductReport

} // namespace tarnwick
