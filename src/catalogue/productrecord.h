#pragma once

#include <QString>

namespace tarnwick::ProductRecord {

// The fifteen fields of one product, in the fixed order of the catalogue table, of the
// catalogue file and of the spreadsheet header. The five price points occupy pairs of fields:
// the quantity threshold in the even field, its unit price in the odd field after it.
constexpr int PartNumber = 1;
constexpr int ProductName = 2;
constexpr int Price = 3;
constexpr int Notes = 4;
constexpr int Includes = 5;
constexpr int PricePoint1 = 6;
constexpr int Price1 = 7;
constexpr int PricePoint2 = 8;
constexpr int Price2 = 9;
constexpr int PricePoint3 = 10;
constexpr int Price3 = 11;
constexpr int PricePoint4 = 12;
constexpr int Price4 = 13;
constexpr int PricePoint5 = 14;
constexpr int Price5 = 15;
constexpr int FieldCount = 15;
constexpr int PricePointCount = 5;

/// Field of the quantity threshold of price point k (1..5).
constexpr int pricePointField(int k)
{
    return PricePoint1 + 2 * (k - 1);
}
/// Field of the unit price of price point k (1..5).
constexpr int pricePointPriceField(int k)
{
    return Price1 + 2 * (k - 1);
}

/// Whether the field holds a number in the catalogue file: the price and the ten fields of
/// the price points.
constexpr bool isNumberField(int field)
{
    return field == Price || (field >= PricePoint1 && field <= Price5);
}

/// The field's caption: "Part Number", "Product Name", "Price", "Notes", "Includes",
/// "Price Point 1", "Price 1" … "Price Point 5", "Price 5".
QString fieldCaption(int field);

} // namespace tarnwick::ProductRecord
