#pragma once

#include "core/vberror.h"

#include <QLocale>
#include <QString>

#include <optional>

namespace tarnwick {

class Cell;
class Table;

/// The unit price SetPrice found for a quantity, with the error that ended its reading of the
/// price points, if any.
struct PriceLookup
{
    /// False when no product carries the part number; the price is then the empty text.
    bool found = false;
    /// The unit price as the catalogue stores it (a list price may be "$12.50").
    QString price;
    /// The conversion error of a threshold (6 above 32,767, 13 for a text that is no number);
    /// the price chosen before it stands.
    std::optional<VbError> error;
};

namespace PriceSchedule {

/// Loads the five price points of catalogue row into the schedule table (5 rows of quantity
/// and price), for the schedule grid of the current product.
void PriceUpdate(const Table &catalogue, int row, Table &schedule);

/// Empties the ten cells of the schedule; the product row receives the empty points when it
/// is next written back.
void ClearPrice(Table &schedule);

/// The unit price of the product with part number Number at quantity qty. See the .cpp for
/// the rule.
PriceLookup SetPrice(
    const Table &catalogue, const QString &Number, qint32 qty, const QLocale &locale);

/// The unit price of catalogue row at quantity qty, by the same rule as SetPrice (for a
/// product already found, e.g. one of several rows with the same part number).
PriceLookup priceAtRow(const Table &catalogue, int row, qint32 qty, const QLocale &locale);

/// What a quote charges per unit for a price text of SetPrice: the text read as a single; a
/// text that is no number (an unknown product, a price point without its price) charges 0.
float chargedPrice(const QString &price, const QLocale &locale);
/// Whether price is one a quote can charge: a number within a single's range. An empty
/// price, "call" or "1e39" is none (the quote charges $0.00 for it and says so).
bool isUsablePrice(const QString &price, const QLocale &locale);

/// The one-line text of the price points of catalogue row, e.g. "10 - $9;   50 - $8".
QString creatdiscs(const Table &catalogue, int row, const QLocale &locale);

/// What the list-price box shows once it loses the focus: its text in the "currency" format;
/// a text that is no number stays as it is.
QString formatPriceBox(const QString &text, const QLocale &locale);

/// What the status bar says of a list price that is no number, which a quote charges as
/// nothing (one typed as "1 234,56" or "n/a"), or that is below zero; empty for a number of
/// zero or more or an empty price.
QString listPriceNotice(const Cell &price, const QLocale &locale);

} // namespace PriceSchedule

} // namespace tarnwick
