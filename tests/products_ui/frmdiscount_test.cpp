#include "catalogue/table.h"
#include "products/ui/frmdiscount.h"
#include "products/ui/frmdiscountprod.h"
#include "quotes/quoteline.h"
#include "support/testlocale.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

class DiscountFormTest : public ::testing::Test
{
protected:
    DiscountFormTest() : quote(QuoteLine::MaxLines, QuoteLine::FieldCount)
    {
        addLine(1, "A-1", "$12.50", "$12.50");
        addLine(2, "B-2", "$100.00", "$90.00");
    }

    void addLine(int row, const char *part, const char *list, const char *price)
    {
        quote.put(row, QuoteLine::PartNumber, part);
        quote.put(row, QuoteLine::UnitPrice, price);
        quote.put(row, QuoteLine::Quantity, Cell(qint32(2)));
        quote.put(row, QuoteLine::ExtendedPrice, price);
        quote.put(row, QuoteLine::ListPrice, list);
    }

    /// Chooses text in the form's list and clicks Command1.
    static void apply(QDialog &form, const QString &text)
    {
        auto *combo = form.findChild<QComboBox *>(QStringLiteral("CmboDisc"));
        ASSERT_NE(combo, nullptr);
        combo->setCurrentIndex(combo->findText(text));
        ASSERT_EQ(combo->currentText(), text);
        auto *command1 = form.findChild<QPushButton *>(QStringLiteral("Command1"));
        ASSERT_NE(command1, nullptr);
        QTest::mouseClick(command1, Qt::LeftButton);
    }

    double number(int row, int field) const { return quote.get(row, field).asNumber(); }

    Table quote;
};

TEST_F(DiscountFormTest, TheFormShowsItsCaptionLabelListAndButtons)
{
    FrmDiscount form(quote, EnUs);
    EXPECT_EQ(form.objectName(), QStringLiteral("FrmDiscount"));
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Discount"));
    auto *label = form.findChild<QLabel *>(QStringLiteral("Label1"));
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), QStringLiteral("Apply Discount"));
    auto *combo = form.findChild<QComboBox *>(QStringLiteral("CmboDisc"));
    ASSERT_NE(combo, nullptr);
    QStringList items;
    for (int i = 0; i < combo->count(); ++i)
        items << combo->itemText(i);
    EXPECT_EQ(items,
        QStringList(
            { "1%", "2%'", "3%", "4%", "5%", "6%", "7%", "8%", "9%", "10%", "15%", "20%", "25%" }));
    EXPECT_EQ(combo->currentIndex(), 0);
    EXPECT_FALSE(combo->isEditable());
    for (const char *name : { "CmboDisc", "Command1", "Command2", "Label1" }) {
        auto *widget = form.findChild<QWidget *>(QString::fromLatin1(name));
        ASSERT_NE(widget, nullptr) << name;
        EXPECT_EQ(widget->accessibleDescription(), QString::fromLatin1(name));
    }
}

TEST_F(DiscountFormTest, DiscountAllAppliesTheChoiceToEveryLineAndCloses)
{
    FrmDiscount form(quote, EnUs);
    QSignalSpy applied(&form, &DiscountForm::discountApplied);
    form.show();
    apply(form, QStringLiteral("10%"));
    EXPECT_EQ(applied.count(), 1);
    EXPECT_EQ(form.result(), QDialog::Accepted);
    EXPECT_FALSE(form.isVisible());
    // 12.5 and 100 × float32(0.9) = 0.89999997615814209, quantity 2.
    EXPECT_EQ(number(1, QuoteLine::UnitPrice), 11.249999701976776);
    EXPECT_EQ(number(1, QuoteLine::ExtendedPrice), 22.499999403953552);
    EXPECT_EQ(number(2, QuoteLine::UnitPrice), 89.99999761581421);
}

TEST_F(DiscountFormTest, TwoPercentWithApostropheResetsToListPrice)
{
    FrmDiscount form(quote, EnUs);
    apply(form, QStringLiteral("2%'"));
    EXPECT_EQ(number(2, QuoteLine::UnitPrice), 100.0);
    EXPECT_EQ(number(2, QuoteLine::ExtendedPrice), 200.0);
}

TEST_F(DiscountFormTest, DiscountAllOnAQuoteWhoseFirstLineIsEmptyChangesNothing)
{
    quote.put(1, QuoteLine::PartNumber, "");
    FrmDiscount form(quote, EnUs);
    QSignalSpy applied(&form, &DiscountForm::discountApplied);
    apply(form, QStringLiteral("25%"));
    EXPECT_EQ(applied.count(), 1);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$12.50"));
    EXPECT_EQ(quote.get(2, QuoteLine::UnitPrice), Cell("$90.00"));
}

TEST_F(DiscountFormTest, Command2OnlyClosesTheForm)
{
    FrmDiscount form(quote, EnUs);
    QSignalSpy applied(&form, &DiscountForm::discountApplied);
    form.show();
    QTest::mouseClick(form.findChild<QPushButton *>(QStringLiteral("Command2")), Qt::LeftButton);
    EXPECT_EQ(applied.count(), 0);
    EXPECT_EQ(form.result(), QDialog::Rejected);
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$12.50"));
}

TEST_F(DiscountFormTest, DiscountProductAppliesToTheCurrentGridRowOnly)
{
    FrmDiscountprod form(quote, 1, EnUs);
    EXPECT_EQ(form.objectName(), QStringLiteral("FrmDiscountprod"));
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Discount"));
    QSignalSpy applied(&form, &DiscountForm::discountApplied);
    apply(form, QStringLiteral("25%"));
    EXPECT_EQ(applied.count(), 1);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$12.50"));
    EXPECT_EQ(number(2, QuoteLine::UnitPrice), 75.0);
    EXPECT_EQ(number(2, QuoteLine::ExtendedPrice), 150.0);
}

TEST_F(DiscountFormTest, DiscountProductTestsTheListPriceCell)
{
    quote.put(1, QuoteLine::UnitPrice, "call us");
    quote.put(2, QuoteLine::ListPrice, "n/a");
    FrmDiscountprod first(quote, 0, EnUs);
    apply(first, QStringLiteral("20%"));
    // 12.5 × float32(0.8) = 12.5 × 0.800000011920929
    EXPECT_EQ(number(1, QuoteLine::UnitPrice), 10.000000149011612);
    FrmDiscountprod second(quote, 1, EnUs);
    apply(second, QStringLiteral("20%"));
    EXPECT_EQ(quote.get(2, QuoteLine::UnitPrice), Cell("$90.00"));
}

TEST_F(DiscountFormTest, DiscountProductWithoutACurrentRowChangesNothing)
{
    const Table before = quote;
    FrmDiscountprod form(quote, -1, EnUs);
    apply(form, QStringLiteral("5%"));
    for (int row = 1; row <= 2; ++row)
        EXPECT_EQ(quote.get(row, QuoteLine::UnitPrice), before.get(row, QuoteLine::UnitPrice));
}

TEST_F(DiscountFormTest, AnApplyGivenByTheOwnerReplacesTheFormsOwnChange)
{
    FrmDiscount form(quote, EnUs);
    float multiplier = 0.0f;
    QString choice;
    form.setApply([&](float m, const QString &text) {
        multiplier = m;
        choice = text;
    });
    QSignalSpy applied(&form, &DiscountForm::discountApplied);
    form.show();
    apply(form, QStringLiteral("10%"));
    EXPECT_EQ(multiplier, 0.9f);
    EXPECT_EQ(choice, QStringLiteral("10%"));
    EXPECT_EQ(applied.count(), 1);
    EXPECT_EQ(quote.get(1, QuoteLine::UnitPrice), Cell("$12.50")) << "the owner changes the quote";
}

} // namespace
