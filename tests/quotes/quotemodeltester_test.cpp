// The quote grid's model keeps Qt's rules for item models while lines are added, typed into,
// re-priced and removed, checked by QAbstractItemModelTester after each signal.
#include "quotefixture.h"

#include "quotes/quotegridmodel.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"

#include "support/modelcheck.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class QuoteModelTesterTest : public QuoteFixture
{
};

TEST_F(QuoteModelTesterTest, TheQuoteGridModelKeepsTheRules)
{
    QuoteGridModel model(quote, catalogue, locale);
    ModelCheck check(&model);
    add("A-100");
    add("B-200");
    model.reload();
    EXPECT_TRUE(model.setData(model.index(0, QuoteGridColumn::Quantity), QStringLiteral("25")));
    EXPECT_TRUE(model.setData(model.index(1, QuoteGridColumn::Price), QStringLiteral("$5.00")));
    EXPECT_TRUE(model.setData(model.index(1, QuoteGridColumn::Product), QStringLiteral("Gizmo")));
    EXPECT_FALSE(model.setData(model.index(0, QuoteGridColumn::ExtPrice), QStringLiteral("1")));
    EXPECT_FALSE(model.setData(model.index(5, QuoteGridColumn::Quantity), QStringLiteral("1")));
    quote.deleteRows(1);
    quote.insertRows(quote.rowCount() + 1);
    model.reload();
    quote.redim(QuoteLine::MaxLines, QuoteLine::FieldCount);
    model.reload();
    EXPECT_EQ(check.failures(), QStringList());
}

} // namespace
