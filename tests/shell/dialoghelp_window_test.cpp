// F1 in the program's windows other than the main window and the import window: each opens the
// manual at the page that explains it, and a window that waits for an answer leaves the help
// window free to use beside it.
#include "shellfixture.h"

#include "catalogue/table.h"
#include "help/helpmanual.h"
#include "platform/helpcontexts.h"
#include "products/ui/frmchangeprices.h"
#include "products/ui/frmcheckprices.h"
#include "products/ui/frmdiscount.h"
#include "products/ui/frmquantities.h"
#include "quotebook/ui/frmsavequote.h"
#include "quotes/pricelist.h"
#include "shell/cataloguelifecycle.h"
#include "shell/dialoghelp.h"
#include "shell/documentscontroller.h"
#include "shell/frmabout.h"
#include "shell/frmproperties.h"
#include "shell/frmquotenote.h"
#include "shell/frmsplash1.h"
#include "shell/mainwindowactions.h"
#include "shell/printpreview.h"
#include "support/testlocale.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPrinter>
#include <QTest>
#include <QTimer>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class DialogHelpWindowTest : public SampleWindowTest
{
protected:
    /// The viewer call F1 makes for a context number.
    QString helpCall(qint32 context) const
    {
        return folder.filePath(QStringLiteral("Tarnwick Help.chm|15|%1")).arg(context);
    }
    /// Where the keyboard is in that window.
    static QWidget *keyboardIn(QWidget *form)
    {
        return form->focusWidget() ? form->focusWidget() : form;
    }
    /// F1 where the keyboard is in that window, as a user presses it.
    void pressF1(QWidget *form) { QTest::keyClick(keyboardIn(form), Qt::Key_F1); }
    /// The page of the manual a context number opens.
    static QString pageOf(qint32 context)
    {
        HelpManual manual;
        EXPECT_TRUE(manual.load());
        return manual.topicForContext(context).value_or(QString());
    }
};

TEST_F(DialogHelpWindowTest, F1InThePricingWindowsOpensThePageOnPricingAids)
{
    goToRow(0);
    action("mnuCheckPrices")->trigger();
    auto *check = window->findChild<FrmCheckPrices *>(QStringLiteral("FrmCheckPrices"));
    ASSERT_NE(check, nullptr);
    pressF1(check);
    check->close();

    action("mnuChangePrices")->trigger();
    auto *change = window->findChild<FrmChangePrices *>(QStringLiteral("FrmChangePrices"));
    ASSERT_NE(change, nullptr);
    pressF1(change);
    change->close();

    action("mnuGrdMainQuote")->trigger();
    window->ui().GrdQuote->setCurrentIndex(window->ui().GrdQuote->model()->index(0, 0));
    action("mnuQuoteQuantities")->trigger();
    auto *quantities = window->findChild<FrmQuantities *>(QStringLiteral("FrmQuantities"));
    ASSERT_NE(quantities, nullptr);
    pressF1(quantities);

    EXPECT_EQ(fakes->help.calls,
        QStringList({ helpCall(HelpContext::CheckPricesWindow),
            helpCall(HelpContext::ChangePricesWindow), helpCall(HelpContext::QuantitiesWindow) }));
    for (const qint32 context : { HelpContext::CheckPricesWindow, HelpContext::ChangePricesWindow,
             HelpContext::QuantitiesWindow })
        EXPECT_EQ(pageOf(context), QStringLiteral("pricingaids.html")) << context;
}

TEST_F(DialogHelpWindowTest, F1InTheDiscountWindowOpensThePageOnDiscounts)
{
    goToRow(0);
    action("mnuGrdMainQuote")->trigger();
    action("mnudiscountAll")->trigger();
    auto *discount = window->findChild<FrmDiscount *>();
    ASSERT_NE(discount, nullptr);
    // Held down, the key repeats; the page opens once.
    QTest::keyPress(keyboardIn(discount), Qt::Key_F1);
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(keyboardIn(discount), &repeat);
    QTest::keyRelease(keyboardIn(discount), Qt::Key_F1);
    EXPECT_EQ(fakes->help.calls, QStringList { helpCall(HelpContext::DiscountWindow) });
    EXPECT_EQ(pageOf(HelpContext::DiscountWindow), QStringLiteral("discounts.html"));
    EXPECT_TRUE(discount->isVisible()) << "F1 leaves the window as it was";
}

TEST_F(DialogHelpWindowTest, F1InPropertiesAndTheQuoteHeadingOpensTheirPages)
{
    action("mnuFileProperties")->trigger();
    auto *properties = window->findChild<FrmProperties *>();
    ASSERT_NE(properties, nullptr);
    pressF1(properties);

    action("mnuQuoteNote")->trigger();
    FrmQuoteNote *note = window->documents().quoteNoteWindow();
    ASSERT_NE(note, nullptr);
    pressF1(note);

    EXPECT_EQ(fakes->help.calls,
        QStringList(
            { helpCall(HelpContext::PropertiesWindow), helpCall(HelpContext::QuoteNoteWindow) }));
    EXPECT_EQ(pageOf(HelpContext::PropertiesWindow), QStringLiteral("datafiles.html"));
    EXPECT_EQ(pageOf(HelpContext::QuoteNoteWindow), QStringLiteral("quotedocument.html"));
}

TEST_F(DialogHelpWindowTest, F1InSaveQuoteOpensThePageOnTheQuoteBook)
{
    FrmSaveQuote form(window);
    form.show();
    pressF1(&form);
    EXPECT_EQ(fakes->help.calls, QStringList { helpCall(HelpContext::SaveQuoteWindow) });
    EXPECT_EQ(pageOf(HelpContext::SaveQuoteWindow), QStringLiteral("quotebook.html"));
    EXPECT_EQ(pageOf(HelpContext::QuotesWindow), QStringLiteral("quotebook.html"));
}

TEST_F(DialogHelpWindowTest, F1InThePrintPreviewOpensThePageOnThePriceList)
{
    Table catalogue(1, 15);
    catalogue.put(1, 1, "PN-1");
    PriceListDocument document(catalogue, EnUs);
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    PrintPreview preview(printer, document, QStringLiteral("Tarnwick Price list"), window);
    preview.show();
    pressF1(&preview);
    EXPECT_EQ(fakes->help.calls, QStringList { helpCall(HelpContext::PrintPreviewWindow) });
    EXPECT_EQ(pageOf(HelpContext::PrintPreviewWindow), QStringLiteral("pricelist.html"));
}

TEST_F(DialogHelpWindowTest, F1InTheMainWindowStaysTheContents)
{
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window->windowHandle(), Qt::Key_F1);
    EXPECT_EQ(fakes->help.calls,
        QStringList { folder.filePath(QStringLiteral("Tarnwick Help.chm>Main|0|0")) });
}

// The About box waits for its OK; the help window its F1 opens must take the keyboard beside
// it, so the box blocks only the main window. A window of no owner stands in for the help
// window: keys reach it through the window system, where a blocked window gets none.
TEST_F(DialogHelpWindowTest, TheAboutBoxOpensItsPageAndLeavesTheHelpWindowUsable)
{
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QLineEdit besideTheBox;
    QString typed;
    bool mainWindowBlocked = false;
    QTimer::singleShot(0, [&] {
        auto *about = qobject_cast<frmAbout *>(QApplication::activeModalWidget());
        ASSERT_NE(about, nullptr);
        pressF1(about);
        besideTheBox.show();
        QTest::keyClick(besideTheBox.windowHandle(), Qt::Key_O);
        QTest::keyClick(besideTheBox.windowHandle(), Qt::Key_K);
        typed = besideTheBox.text();
        QTest::keyClick(window->windowHandle(), Qt::Key_F1);
        mainWindowBlocked = fakes->help.calls.size() == 1;
        about->okButton()->click();
    });
    window->actions().action(QStringLiteral("mnuHelpAbout"))->trigger();
    EXPECT_EQ(fakes->help.calls, QStringList { helpCall(HelpContext::AboutWindow) });
    EXPECT_EQ(pageOf(HelpContext::AboutWindow), QStringLiteral("aboutbox.html"));
    EXPECT_EQ(typed, QStringLiteral("ok"));
    EXPECT_TRUE(mainWindowBlocked) << "the main window waits for the box";
}

// A message box about the catalogue opens the page that says what to do; the help window
// shows it while the box waits for its answer.
TEST_F(DialogHelpWindowTest, F1InAMessageAboutTheCatalogueOpensItsPage)
{
    CatalogueReadResult unread;
    unread.errorNumber = 62;
    unread.detail = QStringLiteral("the file ends in the middle of product 21");
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Catalogue"),
        CatalogueLifecycle::unreadMessage(folder.filePath(QStringLiteral("twdata.dat")), unread),
        QMessageBox::Ok, window);
    box.show();
    pressF1(&box);
    box.setText(QStringLiteral("An unrelated message."));
    pressF1(&box);
    EXPECT_EQ(fakes->help.calls, QStringList { helpCall(HelpContext::CatalogueUnreadMessage) });
    EXPECT_EQ(
        pageOf(HelpContext::CatalogueUnreadMessage), QStringLiteral("catalogueunreadable.html"));
}

TEST(DialogHelpContexts, TheCataloguesMessagesHaveTheirPages)
{
    EXPECT_EQ(DialogHelp::contextForMessage(
                  CatalogueLifecycle::saveFailedMessage(QStringLiteral("twdata.dat"), "full")),
        HelpContext::CatalogueSaveMessage);
    EXPECT_EQ(DialogHelp::contextForMessage(CatalogueLifecycle::unreadNumbersMessage({})),
        HelpContext::CatalogueUnreadMessage);
    EXPECT_EQ(DialogHelp::contextForMessage(
                  CatalogueLifecycle::recoveryQuestion(QStringLiteral("10:15"), 1, 0, 0)),
        HelpContext::RecoveryMessage);
    EXPECT_EQ(DialogHelp::contextForMessage(FrmSplash1::problemMessage(13)),
        HelpContext::StartupRemedies);
    HelpManual manual;
    ASSERT_TRUE(manual.load());
    EXPECT_EQ(manual.topicForContext(HelpContext::CatalogueSaveMessage),
        QStringLiteral("savefailed.html"));
    EXPECT_EQ(
        manual.topicForContext(HelpContext::RecoveryMessage), QStringLiteral("datafiles.html"));
    EXPECT_FALSE(DialogHelp::contextForMessage(QStringLiteral("Delete this product?")).has_value());
}

TEST(DialogHelpContexts, EveryWindowF1AnswersForHasAPageOfItsOwnContext)
{
    HelpManual manual;
    ASSERT_TRUE(manual.load());
    EXPECT_EQ(manual.topicForContext(HelpContext::HelpWindow), QStringLiteral("helpwindow.html"));
    EXPECT_EQ(DialogHelp::contextFor(QStringLiteral("frmHelp")), HelpContext::HelpWindow);
    EXPECT_EQ(
        DialogHelp::contextFor(QStringLiteral("FrmDiscountprod")), HelpContext::DiscountWindow);
    EXPECT_EQ(DialogHelp::contextFor(QStringLiteral("FrmQuotes")), HelpContext::QuotesWindow);
    EXPECT_FALSE(DialogHelp::contextFor(QStringLiteral("frmMain")).has_value());
    EXPECT_FALSE(DialogHelp::contextFor(QStringLiteral("FrmUpdate")).has_value())
        << "the import window answers F1 itself";
}

} // namespace
