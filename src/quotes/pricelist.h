#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

#include <vector>

class QPagedPaintDevice;

namespace tarnwick {

class Table;

/// One product of the printed price list.
struct PriceListEntry
{
    QString partNumber;
    QString name;
    QString price; ///< the list price as currency
    QStringList breaks; ///< one text per break in ascending quantity, e.g. "from 10: $9.00"
};

/// The page header and footer of the price list, with the print codes of expandPrintCodes.
struct PriceListPageText
{
    QString header = QStringLiteral("Tarnwick Price list");
    QString footer = QStringLiteral("\\tPage: \\p");
};

/// The price list made for paper: part number, name, list price and the price breaks of every
/// product, laid out in pages whose rows are never split and whose column headings repeat.
namespace PriceList {

inline constexpr QLatin1String FontFamily("Arial");

/// The products of the catalogue in catalogue order; rows whose part number and name are
/// both blank are left out.
std::vector<PriceListEntry> entries(const Table &catalogue, const QLocale &locale);

/// Paints the list on device, one newPage() per further page, and returns the number of pages
/// (0 when the device could not be painted on).
int paint(QPagedPaintDevice &device, const std::vector<PriceListEntry> &entries,
    const PriceListPageText &pageText = {});

} // namespace PriceList

} // namespace tarnwick
