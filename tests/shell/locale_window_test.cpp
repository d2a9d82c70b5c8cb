// The real main window in German and French regional settings: prices and quantities are
// shown and typed in the user's form, with either decimal separator, while the catalogue file
// keeps "." and no grouping.
#include "shellfixture.h"

#include "core/conversions.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QApplication>
#include <QFocusEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTabWidget>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

struct RegionalCase
{
    const char *name;
    QLocale locale;
    const char *thousand; ///< one thousand as a user of the locale types it, grouped
};

class LocaleWindowTest : public ShellTest, public ::testing::WithParamInterface<RegionalCase>
{
protected:
    void SetUp() override
    {
        ShellTest::SetUp();
        locale = GetParam().locale;
        window = startWithSampleCatalogue();
        ASSERT_NE(window, nullptr);
        grid = window->ui().GrdMain;
    }

    double shownNumber(const QString &text) const
    {
        const std::optional<double> value = conv::parseNumber(text, locale);
        EXPECT_TRUE(value.has_value()) << text.toStdString();
        return value.value_or(-1.0);
    }
    void leavePriceBox(const QString &typed)
    {
        QLineEdit *price = window->ui().TxtPrice;
        price->setText(typed);
        QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(price, &out);
    }
    void typeIntoQuote(int row, int column, const QString &text)
    {
        editGridCell(window->ui().GrdQuote, row, column, text);
    }
    QString quoteCell(int row, int column) const
    {
        return gridCellText(window->ui().GrdQuote, row, column);
    }
    void addBoltToQuote()
    {
        // B-200 Bolt: 2.50, 100 or more at 2.00
        const QRect cell = grid->visualRect(grid->model()->index(1, 1));
        QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, cell.center());
        window->actions().mnuMainGrid()->hide();
        window->actions().action(QStringLiteral("mnuGrdMainQuote"))->trigger();
    }

    frmMain *window = nullptr;
    GridView *grid = nullptr;
};

TEST_P(LocaleWindowTest, ThePriceBoxTakesEitherSeparatorAndTheFileKeepsTheDot)
{
    window->actions().button(QStringLiteral("Edit"))->trigger();
    grid->setCurrentIndex(grid->model()->index(0, 0));
    leavePriceBox(QStringLiteral("12,75"));
    EXPECT_EQ(shownNumber(window->ui().TxtPrice->text()), 12.75);
    EXPECT_TRUE(window->ui().TxtPrice->text().contains(QStringLiteral("12,75")));
    leavePriceBox(QStringLiteral("13.25"));
    EXPECT_EQ(shownNumber(window->ui().TxtPrice->text()), 13.25);
    grid->setCurrentIndex(grid->model()->index(2, 0)); // stores A-100's boxes
    window->close();
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat"))
                    .startsWith(catalogueLine(
                        { "A-100", "Anchor", "13.25", "Two lines\r\nof notes", "Washer" })))
        << folder.readFile(QStringLiteral("twdata.dat")).left(200).toStdString();
}

TEST_P(LocaleWindowTest, TheScheduleTakesEitherSeparatorAndGroupedQuantities)
{
    window->actions().button(QStringLiteral("Edit"))->trigger();
    grid->setCurrentIndex(grid->model()->index(0, 0)); // A-100, no points yet
    QAbstractItemModel *schedule = window->ui().PriceSchedule->model();
    schedule->setData(schedule->index(0, 0), QStringLiteral("10"));
    schedule->setData(schedule->index(0, 1), QStringLiteral("11,25"));
    schedule->setData(schedule->index(1, 0), QString::fromUtf8(GetParam().thousand));
    schedule->setData(schedule->index(1, 1), QStringLiteral("9.5"));
    EXPECT_EQ(shownNumber(schedule->index(0, 1).data().toString()), 11.25);
    EXPECT_EQ(shownNumber(schedule->index(1, 1).data().toString()), 9.5);
    grid->setCurrentIndex(grid->model()->index(2, 0));
    window->close();
    EXPECT_TRUE(folder.readFile(QStringLiteral("twdata.dat"))
                    .startsWith(catalogueLine({ "A-100", "Anchor", "12.5", "Two lines\r\nof notes",
                        "Washer", "10", "11.25", "1000", "9.5" })))
        << folder.readFile(QStringLiteral("twdata.dat")).left(200).toStdString();
}

TEST_P(LocaleWindowTest, TheQuoteTakesGroupedQuantitiesAndEitherSeparatorInPrices)
{
    addBoltToQuote();
    ASSERT_EQ(quoteCell(0, 0), QStringLiteral("B-200"));
    typeIntoQuote(0, 3, QString::fromUtf8(GetParam().thousand));
    EXPECT_EQ(shownNumber(quoteCell(0, 2)), 2.0); // the price point from 100 on
    EXPECT_EQ(shownNumber(quoteCell(0, 4)), 2000.0);
    typeIntoQuote(0, 2, QStringLiteral("1,75"));
    EXPECT_EQ(shownNumber(quoteCell(0, 2)), 1.75);
    typeIntoQuote(0, 2, QStringLiteral("1.5"));
    EXPECT_EQ(shownNumber(quoteCell(0, 2)), 1.5);
    typeIntoQuote(0, 3, QStringLiteral("2"));
    EXPECT_EQ(shownNumber(quoteCell(0, 4)), 5.0); // re-priced from the list price 2.50
}

INSTANTIATE_TEST_SUITE_P(Regions, LocaleWindowTest,
    ::testing::Values(
        RegionalCase { "German", QLocale(QLocale::German, QLocale::Germany), "1.000" },
        RegionalCase { "French", QLocale(QLocale::French, QLocale::France), "1 000" }),
    [](const ::testing::TestParamInfo<RegionalCase> &param) {
        return std::string(param.param.name);
    });

} // namespace
