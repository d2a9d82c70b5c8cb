#include "catalogue/productrecord.h"

#include "core/vberror.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(ProductRecordTest, CaptionsFollowTheFieldOrder)
{
    const QStringList expected = {
        QStringLiteral("Part Number"),
        QStringLiteral("Product Name"),
        QStringLiteral("Price"),
        QStringLiteral("Notes"),
        QStringLiteral("Includes"),
        QStringLiteral("Price Point 1"),
        QStringLiteral("Price 1"),
        QStringLiteral("Price Point 2"),
        QStringLiteral("Price 2"),
        QStringLiteral("Price Point 3"),
        QStringLiteral("Price 3"),
        QStringLiteral("Price Point 4"),
        QStringLiteral("Price 4"),
        QStringLiteral("Price Point 5"),
        QStringLiteral("Price 5"),
    };
    ASSERT_EQ(expected.size(), ProductRecord::FieldCount);
    for (int field = 1; field <= ProductRecord::FieldCount; ++field)
        EXPECT_EQ(ProductRecord::fieldCaption(field), expected[field - 1]) << field;
}

TEST(ProductRecordTest, CaptionOutsideTheFifteenFieldsRaisesError9)
{
    for (const int field : { 0, 16, -1 }) {
        try {
            ProductRecord::fieldCaption(field);
            ADD_FAILURE() << "no error for field " << field;
        } catch (const VbError &error) {
            EXPECT_EQ(error.number(), 9);
        }
    }
}

TEST(ProductRecordTest, PricePointsArePairsOfEvenAndOddFields)
{
    EXPECT_EQ(ProductRecord::pricePointField(1), 6);
    EXPECT_EQ(ProductRecord::pricePointPriceField(1), 7);
    EXPECT_EQ(ProductRecord::pricePointField(5), 14);
    EXPECT_EQ(ProductRecord::pricePointPriceField(5), 15);
    EXPECT_EQ(ProductRecord::fieldCaption(ProductRecord::pricePointField(3)),
        QStringLiteral("Price Point 3"));
}

} // namespace
} // namespace tarnwick
