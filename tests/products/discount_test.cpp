#include "products/discount.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

TEST(DiscountTest, TheChoicesComeInOrderWithTheApostropheOnTwoPercent)
{
    EXPECT_EQ(Discount::choices(),
        QStringList(
            { "1%", "2%'", "3%", "4%", "5%", "6%", "7%", "8%", "9%", "10%", "15%", "20%", "25%" }));
}

TEST(DiscountTest, RatesAreSinglesOfTheRecognisedTextsOnly)
{
    EXPECT_EQ(Discount::rateOf("1%"), 0.01f);
    EXPECT_EQ(Discount::rateOf("2%"), 0.02f);
    EXPECT_EQ(Discount::rateOf("7%"), 0.07f);
    EXPECT_EQ(Discount::rateOf("10%"), 0.10f);
    EXPECT_EQ(Discount::rateOf("15%"), 0.15f);
    EXPECT_EQ(Discount::rateOf("25%"), 0.25f);
    EXPECT_EQ(Discount::rateOf("List Price"), 0.0f);
    EXPECT_EQ(Discount::rateOf("2%'"), 0.0f);
    EXPECT_EQ(Discount::rateOf("12%"), 0.0f);
    EXPECT_EQ(Discount::rateOf(" 5%"), 0.0f);
    EXPECT_EQ(Discount::rateOf(""), 0.0f);
}

TEST(DiscountTest, TheMultiplierIsTheSingleNearestOneMinusTheRate)
{
    // Worked out with numpy: float32(1.0 - float64(float32(rate))).
    EXPECT_EQ(Discount::multiplierFor("1%"), 0x1.fae148p-1f); // 0.99000000953674316
    EXPECT_EQ(Discount::multiplierFor("3%"), 0x1.f0a3d8p-1f); // 0.97000002861022949
    EXPECT_EQ(Discount::multiplierFor("10%"), 0x1.ccccccp-1f); // 0.89999997615814209
    EXPECT_EQ(Discount::multiplierFor("2%'"), 1.0f);
}

} // namespace
