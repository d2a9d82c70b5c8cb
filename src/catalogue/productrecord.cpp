#include "catalogue/productrecord.h"

#include "core/vberror.h"

namespace tarnwick::ProductRecord {

QString fieldCaption(int field)
{
    switch (field) {
    case PartNumber:
        return QStringLiteral("Part Number");
    case ProductName:
        return QStringLiteral("Product Name");
    case Price:
        return QStringLiteral("Price");
    case Notes:
        return QStringLiteral("Notes");
    case Includes:
        return QStringLiteral("Includes");
    default:
        break;
    }
    if (field < PricePoint1 || field > FieldCount)
        throw VbError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    // Fields 6..15 hold the price points in pairs: the threshold in the even field, its
    // price in the odd field after it.
    const int k = (field - PricePoint1) / 2 + 1;
    return (field % 2 == 0) ? QStringLiteral("Price Point %1").arg(k)
                            : QStringLiteral("Price %1").arg(k);
}

} // namespace tarnwick::ProductRecord
