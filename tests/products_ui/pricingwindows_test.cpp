// "Check Price Points" and "Price at Quantities" from the keyboard and on the screen: where
// Tab and Enter go, and that every row the windows hold can be seen without scrolling; and
// "Change Prices" over a catalogue whose preview takes long.
#include "products/priceladder.h"
#include "products/ui/frmchangeprices.h"
#include "products/ui/frmcheckprices.h"
#include "products/ui/frmquantities.h"
#include "quotes/quoteaids.h"
#include "support/largefont.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

void showActive(QWidget &window)
{
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

TEST(CheckPricePointsKeys, WithNothingToListCloseHasTheKeyboardAndEnterPressesIt)
{
    FrmCheckPrices window;
    window.setProblems({});
    showActive(window);
    auto *close = window.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Close);
    EXPECT_EQ(QApplication::focusWidget(), close);
    EXPECT_TRUE(close->isDefault());
    EXPECT_FALSE(window.findChild<QTableWidget *>(QStringLiteral("GrdProblems"))->isEnabled());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(window.isVisible()) << "Enter closed the window";
}

TEST(CheckPricePointsKeys, WithProductsListedTheListHasTheKeyboardAndTabGoesOnToClose)
{
    FrmCheckPrices window;
    window.setProblems(
        { { 3, QStringLiteral("TW-100"), QStringLiteral("Price 2 is above the list price.") },
            { 5, QStringLiteral("TW-300"), QStringLiteral("Quantity 3 is repeated.") } });
    showActive(window);
    auto *list = window.findChild<QTableWidget *>(QStringLiteral("GrdProblems"));
    auto *close = window.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Close);
    list->setFocus();
    EXPECT_FALSE(close->isDefault()) << "Enter chooses a product";
    QTest::keyClick(list, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), close);
    EXPECT_EQ(list->currentRow(), 0) << "Tab did not move along the list";
}

std::vector<QuantityPrice> pricesFor(const std::vector<qint32> &quantities)
{
    std::vector<QuantityPrice> prices;
    for (const qint32 quantity : quantities)
        prices.push_back({ quantity, 2.5F, 2.5 * quantity });
    return prices;
}

TEST(PriceAtQuantitiesLayout, FiveQuantitiesShowFiveRowsAndALongNameWraps)
{
    const QString name =
        QStringLiteral("TW-100 ") + QStringLiteral("heavy-duty brass ball valve ").repeated(5);
    FrmQuantities window(name, { 1, 10, 25, 50, 100 }, pricesFor, QLocale(QLocale::English));
    showActive(window);
    auto *prices = window.findChild<QTableWidget *>(QStringLiteral("GrdQuantityPrices"));
    ASSERT_EQ(prices->rowCount(), 5);
    EXPECT_GE(prices->viewport()->height(), 5 * prices->rowHeight(0))
        << "the fifth row is behind a scroll bar";
    EXPECT_FALSE(prices->verticalScrollBar()->isVisible());
    EXPECT_LT(window.width(), 700) << "the window grew with the product's name";
    EXPECT_TRUE(window.findChild<QLabel *>(QStringLiteral("LblQuantities"))->wordWrap());

    // The table is read, not walked: Tab goes on to the buttons.
    prices->setFocus();
    QTest::keyClick(prices, Qt::Key_Tab);
    EXPECT_NE(QApplication::focusWidget(), prices);
}

// A 14-point desktop font: the window grows with it, so the five prices stay in view and
// readable beside a long name.
TEST(PriceAtQuantitiesLayout, ALargeFontGrowsTheWindowAndKeepsEveryPriceInView)
{
    const test::LargeFont large(14);
    const QString name =
        QStringLiteral("TW-100 ") + QStringLiteral("heavy-duty brass ball valve ").repeated(5);
    const auto pricesOfAMillion = [](const std::vector<qint32> &quantities) {
        std::vector<QuantityPrice> prices;
        for (const qint32 quantity : quantities)
            prices.push_back({ quantity, 987654.25F, 987654.25 * quantity });
        return prices;
    };
    FrmQuantities window(
        name, { 1, 10, 25, 50, 32767 }, pricesOfAMillion, QLocale(QLocale::English));
    showActive(window);
    auto *prices = window.findChild<QTableWidget *>(QStringLiteral("GrdQuantityPrices"));
    ASSERT_EQ(prices->rowCount(), 5);
    EXPECT_GE(prices->viewport()->height(), 5 * prices->rowHeight(0))
        << "the fifth row is behind a scroll bar";
    const QFontMetrics metrics(prices->font());
    for (int row = 0; row < 5; ++row) {
        for (int column = 1; column < 3; ++column) {
            const QString text = prices->item(row, column)->text();
            EXPECT_LE(metrics.horizontalAdvance(text), prices->columnWidth(column))
                << text.toStdString() << " is cut";
        }
    }
}

} // namespace

namespace {

/// A planner that notes every rule it is asked to plan and changes one price by it.
FrmChangePrices::Planner notingPlanner(std::vector<double> &asked)
{
    return [&asked](const PriceChangeRule &rule, bool, std::size_t) {
        asked.push_back(rule.value);
        PriceChangePlan plan;
        const double after = PriceChange::apply(10.0, rule);
        plan.entries.push_back({ 1, 3, QStringLiteral("A-1"), QStringLiteral("List price"),
            Cell(10.0f), Cell(QString::number(after)), 10.0, after });
        plan.changeCount = 1;
        return plan;
    };
}

// What assistive tools read in the two pricing windows: every option says which choice it
// belongs to, and the buttons and controls carry their names.
TEST(PricingWindowsNames, OptionsNameTheirChoiceAndButtonsCarryTheirNames)
{
    std::vector<double> asked;
    FrmChangePrices change(
        notingPlanner(asked), 2, 3, QLocale(QLocale::English, QLocale::UnitedStates));
    const auto option = [&](const char *name) {
        return change.findChild<QRadioButton *>(QString::fromLatin1(name));
    };
    EXPECT_EQ(option("OptPercent")->accessibleName(), QStringLiteral("Change: Percentage"));
    EXPECT_EQ(option("OptAmount")->accessibleName(), QStringLiteral("Change: Amount"));
    EXPECT_EQ(
        option("OptSelected")->accessibleName(), QStringLiteral("Products: Selected products (2)"));
    EXPECT_EQ(
        option("OptAll")->accessibleName(), QStringLiteral("Products: All products shown (3)"));
    for (const char *name : { "OptPercent", "TxtChange", "CmbRounding", "OptAll", "TxtPreview",
             "CmdOK", "CmdCancel" }) {
        auto *control = change.findChild<QWidget *>(QString::fromLatin1(name));
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(control->accessibleDescription(), QString::fromLatin1(name));
    }
    EXPECT_EQ(change.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok),
        change.findChild<QPushButton *>(QStringLiteral("CmdOK")));

    FrmQuantities quantities(
        QStringLiteral("TW-100 Valve"), { 1, 10 }, pricesFor, QLocale(QLocale::English));
    for (const char *name : { "CmdOK", "CmdCancel" }) {
        auto *button = quantities.findChild<QPushButton *>(QString::fromLatin1(name));
        ASSERT_NE(button, nullptr) << name;
        EXPECT_EQ(button->accessibleDescription(), QString::fromLatin1(name));
    }
}

} // namespace

// Over a large catalogue every preview takes a noticeable time: typing does not wait for one
// per key; the preview follows when typing pauses, and Enter pressed before that applies the
// change as typed, never the one before it.
TEST(ChangePricesTyping, ASlowPreviewWaitsForThePauseAndEnterTakesWhatWasTyped)
{
    std::vector<double> asked;
    FrmChangePrices window(
        notingPlanner(asked), 0, 1, QLocale(QLocale::English, QLocale::UnitedStates));
    window.setSlowPreviewMilliseconds(0);
    showActive(window);
    auto *change = window.findChild<QLineEdit *>(QStringLiteral("TxtChange"));
    auto *ok = window.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    auto *preview = window.findChild<QPlainTextEdit *>(QStringLiteral("TxtPreview"));
    asked.clear();
    QTest::keyClicks(change, "10");
    EXPECT_TRUE(asked.empty()) << "no preview per key";
    ASSERT_TRUE(QTest::qWaitFor([&] { return !asked.empty(); }, 5000));
    EXPECT_EQ(asked, std::vector<double> { 10 });
    EXPECT_TRUE(preview->toPlainText().contains(QStringLiteral("\u2192 $11.00")))
        << preview->toPlainText().toStdString();
    EXPECT_TRUE(ok->isEnabled());

    QTest::keyClick(change, Qt::Key_Backspace);
    QTest::keyClicks(change, "5");
    QTest::keyClick(change, Qt::Key_Return);
    ASSERT_EQ(window.result(), QDialog::Accepted);
    EXPECT_EQ(window.rule()->value, 15);
    ASSERT_EQ(window.plan().entries.size(), 1U);
    EXPECT_DOUBLE_EQ(window.plan().entries[0].newPrice, 11.5) << "the plan of 15, not of 10";
}
