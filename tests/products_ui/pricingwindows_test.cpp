// "Check Price Points" and "Price at Quantities" from the keyboard and on the screen: where
// Tab and Enter go, and that every row the windows hold can be seen without scrolling.
#include "products/priceladder.h"
#include "products/ui/frmcheckprices.h"
#include "products/ui/frmquantities.h"
#include "quotes/quoteaids.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
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

} // namespace
