// The pricing aids in the real main window: the price schedule's warnings while it is edited,
// Products → Check Price Points with its list reaching each product, and Products → Change
// Prices with its preview, applied as one step that Edit → Undo takes back.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "commands/edithistory.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "products/schedulemodel.h"
#include "products/ui/frmchangeprices.h"
#include "products/ui/frmcheckprices.h"
#include "shell/cellmarkdelegate.h"
#include "shell/mainwindowactions.h"
#include "shell/pricingcontroller.h"

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

/// TW-100 with a sound ladder, TW-400 with its points kept in descending order, TW-500 with a
/// break above its list price.
QByteArray ladderCatalogue()
{
    return catalogueLine({ "TW-100", "Widget 1", "12.85", "", "", "10", "11.9", "25", "10.95" })
        + catalogueLine({ "TW-400", "Widget 4", "1250", "", "", "10", "1200", "5", "1225" })
        + catalogueLine({ "TW-500", "Widget 5", "5", "", "", "2", "6" });
}

class PricingWindowTest : public ShellTest
{
protected:
    void SetUp() override
    {
        ShellTest::SetUp();
        folder.writeFile(QStringLiteral("twdata.dat"), ladderCatalogue());
        window = startAndWait();
        ASSERT_NE(window, nullptr);
        grid = window->ui().GrdMain;
    }

    QAction *action(const char *name) const
    {
        return window->actions().action(QString::fromLatin1(name));
    }
    QString priceOf(int row) const { return conv::toText(module->Catalogue().get(row, 3), locale); }

    frmMain *window = nullptr;
    GridView *grid = nullptr;
};

TEST_F(PricingWindowTest, ATypedThresholdBelowTheOneBeforeItIsMarkedAndNamedInTheStatusBar)
{
    grid->setCurrentIndex(grid->model()->index(0, 0));
    window->actions().button(QStringLiteral("Edit"))->trigger();
    ASSERT_TRUE(window->actions().button(QStringLiteral("Edit"))->isChecked());
    QAbstractItemModel *schedule = window->ui().PriceSchedule->model();
    ASSERT_TRUE(schedule->setData(schedule->index(2, 0), QStringLiteral("5")));

    EXPECT_EQ(window->ui().sbPanel1->text(),
        QStringLiteral("Price Point 3 (5) is not above Price Point 2 (25). Price Point 3 (5) has "
                       "no price."));
    EXPECT_TRUE(schedule->index(2, 0).data(ScheduleModel::ProblemRole).toBool());
    EXPECT_FALSE(schedule->index(1, 0).data(ScheduleModel::ProblemRole).toBool());
    auto *marks = qobject_cast<CellMarkDelegate *>(window->ui().PriceSchedule->itemDelegate());
    ASSERT_NE(marks, nullptr);
    EXPECT_FALSE(marks->markOf(schedule->index(2, 0)).isNull());
    EXPECT_TRUE(marks->markOf(schedule->index(0, 0)).isNull());
    EXPECT_TRUE(fakes->prompts.shown().empty()) << "a warning never stops the typing";

    ASSERT_TRUE(schedule->setData(schedule->index(2, 0), QStringLiteral("50")));
    ASSERT_TRUE(schedule->setData(schedule->index(2, 1), QStringLiteral("9.8")));
    EXPECT_EQ(window->ui().sbPanel1->text(), QString());
    EXPECT_TRUE(marks->markOf(schedule->index(2, 0)).isNull());
}

TEST_F(PricingWindowTest, TheScheduleWarningIsWholeInItsToolTipAndGoesWithItsProduct)
{
    grid->setCurrentIndex(grid->model()->index(0, 0));
    window->actions().button(QStringLiteral("Edit"))->trigger();
    QAbstractItemModel *schedule = window->ui().PriceSchedule->model();
    ASSERT_TRUE(schedule->setData(schedule->index(2, 0), QStringLiteral("5")));
    const QString warning = window->ui().sbPanel1->text();
    ASSERT_FALSE(warning.isEmpty());
    EXPECT_EQ(window->ui().sbPanel1->toolTip(), plainToolTip(warning));

    grid->setCurrentIndex(grid->model()->index(1, 0));
    EXPECT_EQ(window->ui().sbPanel1->text(), QString()) << "no word about another product";
    EXPECT_EQ(window->ui().sbPanel1->toolTip(), QString());

    // Other news in the status bar stays when the row changes.
    window->ui().sbPanel1->setText(QStringLiteral("Catalogue saved"));
    grid->setCurrentIndex(grid->model()->index(0, 0));
    EXPECT_EQ(window->ui().sbPanel1->text(), QStringLiteral("Catalogue saved"));
}

TEST_F(PricingWindowTest, CheckPricePointsListsTheProductsAndADoubleClickGoesToOne)
{
    action("mnuCheckPrices")->trigger();
    auto *check = window->findChild<FrmCheckPrices *>(QStringLiteral("FrmCheckPrices"));
    ASSERT_NE(check, nullptr);
    EXPECT_TRUE(check->isVisible());
    EXPECT_EQ(check->windowTitle(), QStringLiteral("Check Price Points"));
    auto *problems = check->findChild<QTableWidget *>(QStringLiteral("GrdProblems"));
    ASSERT_NE(problems, nullptr);
    ASSERT_EQ(problems->rowCount(), 2);
    EXPECT_EQ(problems->item(0, 0)->text(), QStringLiteral("TW-400"));
    EXPECT_EQ(problems->item(0, 1)->text(),
        QStringLiteral("Price Point 2 (5) is not above Price Point 1 (10)."));
    EXPECT_EQ(problems->item(1, 0)->text(), QStringLiteral("TW-500"));
    EXPECT_EQ(problems->item(1, 1)->text(),
        QStringLiteral("Price 1 ($6.00) is above the list price ($5.00)."));

    window->ui().SSTabmain->setCurrentIndex(1);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(check));
    const QRect cell = problems->visualRect(problems->model()->index(1, 0));
    QTest::mouseClick(problems->viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(problems->viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(grid->currentIndex().row(), 2);
    EXPECT_EQ(window->ui().SSTabmain->currentIndex(), 0);
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("$5.00"));
    EXPECT_TRUE(check->isVisible()) << "the list stays open";

    problems->setCurrentCell(0, 0);
    QTest::keyClick(problems, Qt::Key_Return);
    EXPECT_EQ(grid->currentIndex().row(), 1) << "Enter goes to TW-400";
    EXPECT_TRUE(check->isVisible()) << "Enter keeps the list open";
    // Each reason fits its line: no row stands taller than two lines of text.
    const int line = problems->fontMetrics().height();
    for (int row = 0; row < problems->rowCount(); ++row)
        EXPECT_LT(problems->rowHeight(row), 2 * line + 8) << "row " << row;
}

// The list stays open while the catalogue changes: a product deleted meanwhile is said to be
// gone when it is gone to, and the grid stays where it was.
TEST_F(PricingWindowTest, CheckPricePointsSaysWhenAListedProductWasDeletedMeanwhile)
{
    action("mnuCheckPrices")->trigger();
    auto *check = window->findChild<FrmCheckPrices *>(QStringLiteral("FrmCheckPrices"));
    ASSERT_NE(check, nullptr);
    auto *problems = check->findChild<QTableWidget *>(QStringLiteral("GrdProblems"));
    ASSERT_EQ(problems->rowCount(), 2);
    ASSERT_EQ(problems->item(1, 0)->text(), QStringLiteral("TW-500"));

    grid->setCurrentIndex(grid->model()->index(2, 0));
    ASSERT_EQ(grid->currentIndex().data().toString(), QStringLiteral("TW-500"));
    fakes->prompts.answerMessage(MsgResult::Yes); // should the delete ask
    action("mnuDelProd")->trigger();
    grid->setCurrentIndex(grid->model()->index(0, 0));
    fakes->prompts.clear();

    problems->setCurrentCell(1, 0);
    QTest::keyClick(problems, Qt::Key_Return);
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(
        fakes->prompts.shown()[0].text, QStringLiteral("TW-500 is no longer in the price list."));
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Check Price Points"));
    EXPECT_EQ(grid->currentIndex().row(), 0) << "the grid stays where it was";
}

TEST_F(PricingWindowTest, ChangePricesPreviewsAndAppliesOneUndoStep)
{
    grid->setCurrentIndex(grid->model()->index(0, 0));
    grid->selectionModel()->select(
        grid->model()->index(1, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    action("mnuChangePrices")->trigger();
    auto *change = window->findChild<FrmChangePrices *>(QStringLiteral("FrmChangePrices"));
    ASSERT_NE(change, nullptr);
    auto *ok = change->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    EXPECT_FALSE(ok->isEnabled()) << "nothing entered yet";
    EXPECT_EQ(change->focusWidget(), change->findChild<QLineEdit *>(QStringLiteral("TxtChange")))
        << "what is typed first is the change";
    QTest::keyClicks(change->findChild<QLineEdit *>(QStringLiteral("TxtChange")), "10");
    change->findChild<QComboBox *>(QStringLiteral("CmbRounding"))->setCurrentIndex(1);
    const QString preview =
        change->findChild<QPlainTextEdit *>(QStringLiteral("TxtPreview"))->toPlainText();
    EXPECT_TRUE(preview.contains(QStringLiteral("TW-100  List price  $12.85 \u2192 $13.95")))
        << preview.toStdString();
    EXPECT_TRUE(preview.contains(QStringLiteral("TW-400  Price 2  $1,225.00 \u2192 $1,347.95")))
        << preview.toStdString();
    EXPECT_FALSE(preview.contains(QStringLiteral("TW-500"))) << "not selected";
    EXPECT_EQ(priceOf(1), QStringLiteral("12.85")) << "nothing changes before OK";
    ASSERT_TRUE(ok->isEnabled());
    QTest::mouseClick(ok, Qt::LeftButton);

    EXPECT_EQ(priceOf(1), QStringLiteral("13.95"));
    EXPECT_EQ(priceOf(2), QStringLiteral("1374.95"));
    EXPECT_EQ(conv::toText(module->Catalogue().get(2, 9), locale), QStringLiteral("1347.95"));
    EXPECT_EQ(priceOf(3), QStringLiteral("5"));
    EXPECT_EQ(window->history().undoText(), QStringLiteral("Change Prices (6 prices)"));
    // The grid is told about every changed row, not only the current one, so none of them
    // keeps showing the price it had before the undo or the redo.
    QSignalSpy shown(grid->model(), &QAbstractItemModel::dataChanged);
    const auto secondRowShownAgain = [&shown] {
        return std::any_of(shown.begin(), shown.end(), [](const QList<QVariant> &signal) {
            return signal[0].toModelIndex().row() <= 1 && signal[1].toModelIndex().row() >= 1;
        });
    };
    action("mnuEditUndo")->trigger();
    EXPECT_TRUE(secondRowShownAgain());
    shown.clear();
    action("mnuEditRedo")->trigger();
    EXPECT_TRUE(secondRowShownAgain());
    EXPECT_EQ(priceOf(2), QStringLiteral("1374.95"));
    action("mnuEditUndo")->trigger();
    EXPECT_EQ(priceOf(1), QStringLiteral("12.85"));
    EXPECT_EQ(priceOf(2), QStringLiteral("1250"));
    EXPECT_EQ(conv::toText(module->Catalogue().get(2, 9), locale), QStringLiteral("1225"));
}

class ChangeManyPricesTest : public ShellTest
{
};

TEST_F(ChangeManyPricesTest, OkAppliesEveryChangeThoughThePreviewListsTheFirst200)
{
    QByteArray catalogue;
    for (int product = 1; product <= 150; ++product) {
        catalogue += catalogueLine({ QStringLiteral("TW-%1").arg(product, 3, 10, QLatin1Char('0')),
            QStringLiteral("Widget %1").arg(product), "10", "", "", "10", "9" });
    }
    folder.writeFile(QStringLiteral("twdata.dat"), catalogue);
    frmMain *window = startAndWait();
    ASSERT_NE(window, nullptr);
    window->actions().action(QStringLiteral("mnuChangePrices"))->trigger();
    auto *change = window->findChild<FrmChangePrices *>(QStringLiteral("FrmChangePrices"));
    ASSERT_NE(change, nullptr);
    QTest::keyClicks(change->findChild<QLineEdit *>(QStringLiteral("TxtChange")), "10");
    EXPECT_EQ(change->findChild<QLabel *>(QStringLiteral("LblSummary"))->text(),
        QStringLiteral("300 prices will change."));
    EXPECT_TRUE(change->findChild<QPlainTextEdit *>(QStringLiteral("TxtPreview"))
                    ->toPlainText()
                    .endsWith(QStringLiteral("\u2026 and 100 more.")));
    QTest::mouseClick(
        change->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    const Table &table = module->Catalogue();
    ASSERT_EQ(table.rowCount(), 150);
    for (int row = 1; row <= 150; ++row) {
        EXPECT_EQ(conv::toText(table.get(row, 3), locale), QStringLiteral("11")) << row;
        EXPECT_EQ(conv::toText(table.get(row, 7), locale), QStringLiteral("9.9")) << row;
    }
    EXPECT_EQ(window->history().undoText(), QStringLiteral("Change Prices (300 prices)"));
}

} // namespace
