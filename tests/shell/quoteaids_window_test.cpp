// The quote's pricing aids in the real main window: Lock Price with its mark in the Price
// cell, Reset Prices asking about locked lines, the next break under the totals and in the
// Quantity cell's tool tip, the volume prices of the quote document and the prices at further
// quantities kept with a line.
#include "shellfixture.h"

#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "commands/edithistory.h"
#include "products/ui/frmquantities.h"
#include "quotes/quotegridmodel.h"
#include "quotes/quoteline.h"
#include "shell/cellmarkdelegate.h"
#include "shell/mainwindowactions.h"
#include "shell/quotecontroller.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QAction>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QWidget>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

const QString NextBreak22 = QStringLiteral(
    "Next break for TW-100: 25 or more at $10.95 each \u2014 3 more units save $23.75 on this "
    "line.");

class QuoteAidsWindowTest : public ShellTest
{
protected:
    void SetUp() override
    {
        ShellTest::SetUp();
        folder.writeFile(QStringLiteral("twdata.dat"),
            catalogueLine({ "TW-100", "Widget 1", "12.85", "", "", "10", "11.9", "25", "10.95" })
                + catalogueLine({ "TW-200", "Widget 2", "4.5" }));
        window = startAndWait();
        ASSERT_NE(window, nullptr);
        quoteGrid = window->ui().GrdQuote;
        window->quote().addProduct(1, QString());
        window->quote().addProduct(2, QString());
        typeQuantity(0, QStringLiteral("22"));
    }

    QAction *action(const char *name) const
    {
        return window->actions().action(QString::fromLatin1(name));
    }
    void typeQuantity(int row, const QString &text) { editGridCell(quoteGrid, row, 3, text); }
    QString cell(int row, int column) const { return gridCellText(quoteGrid, row, column); }
    bool lockMarkShown(int row) const
    {
        auto *marks = qobject_cast<CellMarkDelegate *>(quoteGrid->itemDelegate());
        return marks && !marks->markOf(quoteGrid->model()->index(row, 2)).isNull();
    }

    frmMain *window = nullptr;
    GridView *quoteGrid = nullptr;
};

TEST_F(QuoteAidsWindowTest, TheNextBreakShowsUnderTheTotalsAndInTheQuantityToolTip)
{
    EXPECT_EQ(cell(0, 2), QStringLiteral("$11.90"));
    EXPECT_EQ(window->ui().LblNextBreak->text(), NextBreak22);
    EXPECT_EQ(window->ui().LblNextBreak->accessibleName(), NextBreak22);
    EXPECT_EQ(quoteGrid->model()->index(0, 3).data(Qt::ToolTipRole).toString(), NextBreak22);
    EXPECT_EQ(quoteGrid->model()->columnCount(), 5);

    quoteGrid->setCurrentIndex(quoteGrid->model()->index(1, 0));
    EXPECT_EQ(window->ui().LblNextBreak->text(), QString()) << "TW-200 has no price points";
    EXPECT_EQ(window->ui().LblNextBreak->accessibleName(), QStringLiteral("No next price break"))
        << "not the frame's title";
    typeQuantity(0, QStringLiteral("25"));
    EXPECT_EQ(window->ui().LblNextBreak->text(), QString());
    EXPECT_FALSE(quoteGrid->model()->index(0, 3).data(Qt::ToolTipRole).isValid());
}

TEST_F(QuoteAidsWindowTest, ALockedPriceShowsItsMarkAndStaysWhenTheQuantityChanges)
{
    QAction *lock = action("mnuQuoteLock");
    EXPECT_TRUE(lock->isCheckable());
    EXPECT_EQ(lock->text(), QStringLiteral("&Lock Price"));
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, 2));
    lock->trigger();
    EXPECT_TRUE(lock->isChecked());
    EXPECT_TRUE(lockMarkShown(0));
    EXPECT_FALSE(lockMarkShown(1));
    EXPECT_EQ(cell(0, 2), QStringLiteral("$11.90")) << "the text is unchanged";
    EXPECT_EQ(window->history().undoText(), QStringLiteral("Lock Price TW-100"));

    typeQuantity(0, QStringLiteral("30"));
    EXPECT_EQ(cell(0, 2), QStringLiteral("$11.90"));
    EXPECT_EQ(cell(0, 4), QStringLiteral("$357.00"));
    EXPECT_EQ(window->ui().TxtTotal->text(), QStringLiteral("$361.50"));

    quoteGrid->setCurrentIndex(quoteGrid->model()->index(1, 0));
    EXPECT_FALSE(lock->isChecked()) << "TW-200 is not locked";
    action("mnuEditUndo")->trigger();
    action("mnuEditUndo")->trigger();
    EXPECT_FALSE(QuoteLine::isLocked(module->QuoteTable(), 1));
    EXPECT_FALSE(lockMarkShown(0));
}

TEST_F(QuoteAidsWindowTest, ResetPricesAsksAboutLockedLinesFirst)
{
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, 0));
    action("mnuQuoteLock")->trigger();
    fakes->prompts.answerMessage(MsgResult::No);
    action("mnuResetPrices")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1u);
    EXPECT_EQ(fakes->prompts.shown()[0].text, QStringLiteral("Unlock the locked prices too?"));
    EXPECT_EQ(fakes->prompts.shown()[0].title, QStringLiteral("Reset Prices"));
    EXPECT_EQ(fakes->prompts.shown()[0].style,
        MsgStyle::YesNoCancel | MsgStyle::Question | MsgStyle::DefaultButton2)
        << "No, which keeps the agreed prices, is the default";
    EXPECT_EQ(cell(0, 2), QStringLiteral("$11.90")) << "No keeps the locked line";
    EXPECT_TRUE(lockMarkShown(0));

    fakes->prompts.answerMessage(MsgResult::Yes);
    action("mnuResetPrices")->trigger();
    EXPECT_EQ(cell(0, 2), QStringLiteral("$12.85"));
    EXPECT_FALSE(lockMarkShown(0));

    action("mnuResetPrices")->trigger();
    EXPECT_EQ(fakes->prompts.shown().size(), 2u) << "no question without locked lines";
}

TEST_F(QuoteAidsWindowTest, ShowVolumePricesAddsTheCheaperBreaksToTheQuoteDocument)
{
    action("mnuquotecopy")->trigger();
    ASSERT_TRUE(fakes->clipboard.richDocument());
    EXPECT_FALSE(fakes->clipboard.richDocument()->plainText.contains(QStringLiteral("Order 25")));

    action("mnuQuoteNote")->trigger();
    auto *note = window->findChild<QWidget *>(QStringLiteral("FrmQuoteNote"));
    ASSERT_NE(note, nullptr);
    auto *volume = note->findChild<QCheckBox *>(QStringLiteral("ChkVolumePrices"));
    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->text(), QStringLiteral("Show volume prices"));
    EXPECT_FALSE(volume->isChecked());
    QTest::mouseClick(volume, Qt::LeftButton);
    EXPECT_EQ(setting(QStringLiteral("VolumePrices")), QStringLiteral("1"));
    note->close();

    action("mnuquotecopy")->trigger();
    const QString text = fakes->clipboard.richDocument()->plainText;
    EXPECT_TRUE(text.contains(QStringLiteral("Ext.: $261.80\nOrder 25 or more: $10.95 each.\n")))
        << text.toStdString();
    EXPECT_EQ(text.count(QStringLiteral(" or more: ")), 1) << "one cheaper break above 22";
}

TEST_F(QuoteAidsWindowTest, TheQuoteNoteBoxesTickedByAnAssistiveToolAreSavedToo)
{
    action("mnuQuoteNote")->trigger();
    auto *note = window->findChild<QWidget *>(QStringLiteral("FrmQuoteNote"));
    ASSERT_NE(note, nullptr);
    for (const char *name : { "ChkVolumePrices", "Chkincludes" }) {
        auto *box = note->findChild<QCheckBox *>(QString::fromLatin1(name));
        ASSERT_NE(box, nullptr) << name;
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(box);
        ASSERT_NE(accessible, nullptr);
        ASSERT_NE(accessible->actionInterface(), nullptr);
        // A screen reader's "toggle" turns the box without a click.
        accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        EXPECT_TRUE(box->isChecked()) << name;
    }
    EXPECT_EQ(setting(QStringLiteral("VolumePrices")), QStringLiteral("1"));
    EXPECT_EQ(setting(QStringLiteral("NoIncludes")), QStringLiteral("1"));
}

TEST_F(QuoteAidsWindowTest, PriceAtQuantitiesShowsThePricesAndKeepsTheQuantitiesWithTheLine)
{
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, 0));
    action("mnuQuoteQuantities")->trigger();
    auto *form = window->findChild<FrmQuantities *>(QStringLiteral("FrmQuantities"));
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(form->windowTitle(), QStringLiteral("Price at Quantities"));
    QTest::keyClicks(form->findChild<QLineEdit *>(QStringLiteral("TxtQuantity1")), "5");
    QTest::keyClicks(form->findChild<QLineEdit *>(QStringLiteral("TxtQuantity2")), "10");
    QTest::keyClicks(form->findChild<QLineEdit *>(QStringLiteral("TxtQuantity3")), "100");
    auto *prices = form->findChild<QTableWidget *>(QStringLiteral("GrdQuantityPrices"));
    ASSERT_EQ(prices->rowCount(), 3);
    EXPECT_EQ(prices->item(0, 1)->text(), QStringLiteral("$12.85"));
    EXPECT_EQ(prices->item(1, 1)->text(), QStringLiteral("$11.90"));
    EXPECT_EQ(prices->item(2, 1)->text(), QStringLiteral("$10.95"));
    EXPECT_EQ(prices->item(2, 2)->text(), QStringLiteral("$1,095.00"));

    auto *ok = form->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    QTest::keyClicks(form->findChild<QLineEdit *>(QStringLiteral("TxtQuantity4")), "x");
    EXPECT_FALSE(ok->isEnabled());
    EXPECT_EQ(form->findChild<QLabel *>(QStringLiteral("LblMessage"))->text(),
        QStringLiteral("\"x\" is no quantity: enter a whole number of 1 or more."));
    QTest::keyClick(
        form->findChild<QLineEdit *>(QStringLiteral("TxtQuantity4")), Qt::Key_Backspace);
    ASSERT_TRUE(ok->isEnabled());
    QTest::mouseClick(ok, Qt::LeftButton);

    EXPECT_EQ(module->QuoteTable().get(1, QuoteLine::Quantities), Cell("5;10;100"));
    EXPECT_EQ(cell(0, 3), QStringLiteral("22")) << "the grid's own quantity stays";
    EXPECT_EQ(window->history().undoText(), QStringLiteral("Price at Quantities TW-100"));
    action("mnuquotecopy")->trigger();
    const QString text = fakes->clipboard.richDocument()->plainText;
    EXPECT_TRUE(text.contains(QStringLiteral("Quantity\tUnit Price\tExtended Price\n"
                                             "5\t$12.85\t$64.25\n10\t$11.90\t$119.00\n"
                                             "100\t$10.95\t$1,095.00\n")))
        << text.toStdString();

    action("mnuEditUndo")->trigger();
    EXPECT_TRUE(module->QuoteTable().get(1, QuoteLine::Quantities).isBlank());
}

TEST_F(QuoteAidsWindowTest, PriceAtQuantitiesKeepsNoQuantityTheCatalogueHasNoPriceFor)
{
    module->Catalogue().put(1, ProductRecord::Price1, QString()); // 10 and no price
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, 0));
    action("mnuQuoteQuantities")->trigger();
    auto *form = window->findChild<FrmQuantities *>(QStringLiteral("FrmQuantities"));
    ASSERT_NE(form, nullptr);
    QTest::keyClicks(form->findChild<QLineEdit *>(QStringLiteral("TxtQuantity1")), "10");
    auto *ok = form->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    EXPECT_FALSE(ok->isEnabled());
    auto *prices = form->findChild<QTableWidget *>(QStringLiteral("GrdQuantityPrices"));
    ASSERT_EQ(prices->rowCount(), 1);
    EXPECT_EQ(prices->item(0, 1)->text(), QStringLiteral("no price"));
    EXPECT_EQ(prices->item(0, 2)->text(), QStringLiteral("no price"));
    EXPECT_EQ(form->findChild<QLabel *>(QStringLiteral("LblMessage"))->text(),
        QStringLiteral("The catalogue gives no price at 10: give that price point its price, or "
                       "leave the quantity out."));
    QTest::keyClick(form->findChild<QLineEdit *>(QStringLiteral("TxtQuantity1")), Qt::Key_0);
    EXPECT_TRUE(ok->isEnabled()) << "100 is priced";
    EXPECT_EQ(form->findChild<QLabel *>(QStringLiteral("LblMessage"))->text(), QString());
    form->reject();
}

} // namespace
