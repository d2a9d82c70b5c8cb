// The price list's print preview: the first page shows before the rest is laid out, the rest
// is laid out while the window is open, the keys move between pages, and "Print" prints
// every page.
#include "catalogue/table.h"
#include "quotes/pricelist.h"
#include "shell/printpreview.h"
#include "shell/printservice.h"
#include "support/largefont.h"
#include "support/testlocale.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPrinter>
#include <QProcess>
#include <QProgressDialog>
#include <QScreen>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolBar>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

using tarnwick::test::EnUs;

Table catalogueOf(int products)
{
    Table catalogue(products, 15);
    for (int row = 1; row <= products; ++row) {
        catalogue.put(row, 1, QStringLiteral("PN-%1").arg(row, 5, 10, QLatin1Char('0')));
        catalogue.put(row, 2, QStringLiteral("Product number %1").arg(row));
        catalogue.put(row, 3, "19.5");
        catalogue.put(row, 6, "10");
        catalogue.put(row, 7, "18");
    }
    return catalogue;
}

/// The number of pixels that are not white: a painted page has text on it.
int inkOf(const QImage &image)
{
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ink += image.pixel(x, y) != qRgb(255, 255, 255) ? 1 : 0;
    }
    return ink;
}

class PrintPreviewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(QStringLiteral("list.pdf")));
        printer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
    }

    QAction *command(PrintPreview &window, const char *name)
    {
        auto *action = window.findChild<QAction *>(QString::fromLatin1(name));
        EXPECT_NE(action, nullptr) << name;
        return action;
    }

    QTemporaryDir dir;
    QPrinter printer { QPrinter::HighResolution };
};

TEST_F(PrintPreviewTest, TheFirstPageShowsBeforeTheRestIsLaidOut)
{
    const Table catalogue = catalogueOf(2000);
    PriceListDocument document(catalogue, EnUs);
    PrintPreview window(printer, document, QStringLiteral("Tarnwick Price list"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tarnwick Price list"));
    EXPECT_EQ(window.currentPage(), 0);
    EXPECT_FALSE(window.isLaidOut()) << "only the first page is laid out before it shows";
    EXPECT_LE(window.pageCount(), 2);
    EXPECT_GT(inkOf(window.shownPage()), 100);

    QSignalSpy laidOut(&window, &PrintPreview::laidOut);
    window.show();
    ASSERT_TRUE(laidOut.wait(60000));
    EXPECT_TRUE(window.isLaidOut());
    EXPECT_GT(window.pageCount(), 50);
    EXPECT_EQ(window.findChild<QLabel *>(QStringLiteral("PreviewPageCount"))->text(),
        QStringLiteral("of %1").arg(window.pageCount()));
}

TEST_F(PrintPreviewTest, KeysMoveBetweenThePages)
{
    const Table catalogue = catalogueOf(300);
    PriceListDocument document(catalogue, EnUs);
    PrintPreview window(printer, document, QStringLiteral("Tarnwick Price list"));
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const QRect room = window.screen()->availableGeometry();
    EXPECT_LE(window.height(), room.height()) << "the window fits the screen";
    EXPECT_LE(window.width(), room.width());
    // The keys go where the keyboard is when the window opens: the pages, not the page box
    // (which would take Home and End for its cursor).
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("PreviewPages"));
    const auto press = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    const QImage first = window.shownPage();
    press(Qt::Key_PageDown);
    EXPECT_EQ(window.currentPage(), 1);
    EXPECT_NE(window.shownPage(), first);
    press(Qt::Key_End);
    EXPECT_TRUE(window.isLaidOut());
    EXPECT_EQ(window.currentPage(), window.pageCount() - 1);
    EXPECT_EQ(
        window.findChild<QSpinBox *>(QStringLiteral("PreviewPage"))->value(), window.pageCount());
    press(Qt::Key_PageDown);
    EXPECT_EQ(window.currentPage(), window.pageCount() - 1) << "the last page stays";
    press(Qt::Key_Home);
    EXPECT_EQ(window.currentPage(), 0);
    EXPECT_EQ(window.shownPage(), first);
    window.findChild<QSpinBox *>(QStringLiteral("PreviewPage"))->setValue(3);
    EXPECT_EQ(window.currentPage(), 2);

    const QSize before = window.shownPage().size();
    command(window, "PreviewZoomIn")->trigger();
    EXPECT_GT(window.shownPage().width(), before.width());
    command(window, "PreviewZoomOut")->trigger();
    command(window, "PreviewZoomOut")->trigger();
    EXPECT_LT(window.shownPage().width(), before.width());
}

TEST_F(PrintPreviewTest, PrintPrintsEveryPage)
{
    const Table catalogue = catalogueOf(300);
    PriceListDocument document(catalogue, EnUs);
    PrintPreview window(printer, document, QStringLiteral("Tarnwick Price list"));
    int asked = 0;
    window.askForPrinter = [&](QPrinter &) {
        ++asked;
        return true;
    };
    command(window, "PreviewPrint")->trigger();
    EXPECT_EQ(asked, 1);
    QProcess pdftotext;
    pdftotext.start(QStringLiteral("pdftotext"),
        { dir.filePath(QStringLiteral("list.pdf")), QStringLiteral("-") });
    ASSERT_TRUE(pdftotext.waitForFinished(20000)) << "pdftotext must be installed";
    const QString text = QString::fromUtf8(pdftotext.readAllStandardOutput());
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.isLaidOut(); }, 60000));
    EXPECT_EQ(text.count(QStringLiteral("\f")), window.pageCount());
    EXPECT_TRUE(text.contains(QStringLiteral("PN-00001")));
    EXPECT_TRUE(text.contains(QStringLiteral("PN-00300")));
}

TEST_F(PrintPreviewTest, EveryCommandHasANameAndAKey)
{
    const Table catalogue = catalogueOf(3);
    PriceListDocument document(catalogue, EnUs);
    PrintPreview window(printer, document, QStringLiteral("Tarnwick Price list"));
    for (const char *name : { "PreviewFirst", "PreviewPrevious", "PreviewNext", "PreviewLast",
             "PreviewZoomIn", "PreviewZoomOut", "PreviewPrint", "PreviewClose" }) {
        QAction *action = command(window, name);
        ASSERT_NE(action, nullptr);
        EXPECT_FALSE(action->text().isEmpty()) << name;
        EXPECT_FALSE(action->shortcut().isEmpty()) << name;
    }
    EXPECT_EQ(window.findChild<QSpinBox *>(QStringLiteral("PreviewPage"))->accessibleName(),
        QStringLiteral("Page"));
}

// A 14-point desktop font on a small screen: the toolbar may not fit, and what it cannot show
// goes behind its overflow button; Print and Close stay in view.
TEST_F(PrintPreviewTest, PrintAndCloseStayInViewWithALargeFont)
{
    const test::LargeFont large(14);
    const Table catalogue = catalogueOf(3);
    PriceListDocument document(catalogue, EnUs);
    PrintPreview window(printer, document, QStringLiteral("Tarnwick Price list"));
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    auto *bar = window.findChild<QToolBar *>(QStringLiteral("PreviewBar"));
    ASSERT_NE(bar, nullptr);
    for (const char *name : { "PreviewPrint", "PreviewClose" }) {
        QWidget *button = bar->widgetForAction(command(window, name));
        ASSERT_NE(button, nullptr) << name;
        EXPECT_TRUE(button->isVisible()) << name << " is behind the overflow button";
        EXPECT_LE(button->geometry().right(), bar->contentsRect().right()) << name;
    }
    EXPECT_LE(window.width(), window.screen()->availableGeometry().width());
}

} // namespace

namespace {

// With no paper of its own (a PDF file, no printer installed) the price list is laid out on the
// paper of the user's country, as the quote's PDF is.
TEST(PrinterPaper, APrinterWithoutPaperOfItsOwnTakesTheLocalesPaper)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    QtPrintService::preparePrinter(printer, QStringLiteral("Tarnwick Price list"),
        QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(printer.pageLayout().pageSize().id(), QPageSize::Letter);
    EXPECT_EQ(printer.docName(), QStringLiteral("Tarnwick Price list"));
    EXPECT_EQ(printer.pageLayout().margins(QPageLayout::Millimeter), QMarginsF(15, 15, 15, 15));

    QtPrintService::preparePrinter(
        printer, QStringLiteral("Tarnwick Price list"), QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(printer.pageLayout().pageSize().id(), QPageSize::A4);
}

// Printing a long price list says how far it has got and can be stopped: a window over the
// main window, not a window that stops answering.
TEST_F(PrintPreviewTest, APrintShowsItsProgressAndCancelStopsIt)
{
    const Table catalogue = catalogueOf(600);
    PriceListDocument document(catalogue, EnUs);
    QWidget owner;
    QPointer<QProgressDialog> seen;
    bool found = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!seen)
            seen = owner.findChild<QProgressDialog *>(QStringLiteral("PrintProgress"));
        found = found || seen;
        if (seen && seen->maximum() > 0 && seen->value() >= 3)
            seen->cancel();
    });
    watch.start(0);
    const int printed = QtPrintService::printWithProgress(
        document, printer, &owner, QStringLiteral("Tarnwick Price list"));
    watch.stop();
    EXPECT_EQ(printed, -1) << "Cancel stops the print";
    EXPECT_TRUE(found);
    EXPECT_EQ(seen, nullptr) << "the progress window goes with the print";
    // No more pages go out after Cancel (a PDF file takes the pages printed until then).
    QFile out(printer.outputFileName());
    ASSERT_TRUE(out.open(QIODevice::ReadOnly));
    const qsizetype pages = out.readAll().count("/Type /Page\n");
    EXPECT_GE(pages, 3);
    EXPECT_LT(pages, document.pagesReady());
}

// A key an assistive tool hands back (posted, as the accessibility bus delivers it) and a
// command it carries out wait for the print: meanwhile they would change what is printed.
TEST_F(PrintPreviewTest, KeysAndCommandsOfAnAssistiveToolWaitForThePrint)
{
    const Table catalogue = catalogueOf(200);
    PriceListDocument document(catalogue, EnUs);
    QWidget owner;
    auto *box = new QLineEdit(&owner);
    auto *command = new QAction(QStringLiteral("Delete All"), &owner);
    owner.addAction(command);
    owner.show();
    owner.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&owner));
    box->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return box->hasFocus(); }));
    QString typedDuring = QStringLiteral("not looked at");
    bool commandDuring = true;
    bool posted = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!posted) {
            posted = true;
            QCoreApplication::postEvent(owner.windowHandle(),
                new QKeyEvent(QEvent::KeyPress, Qt::Key_Q, Qt::NoModifier, QStringLiteral("Q")));
        } else {
            typedDuring = box->text();
            commandDuring = command->isEnabled();
        }
    });
    watch.start(0);
    const int printed = QtPrintService::printWithProgress(
        document, printer, &owner, QStringLiteral("Tarnwick Price list"));
    watch.stop();
    EXPECT_GT(printed, 1);
    EXPECT_EQ(typedDuring, QString()) << "the key waited";
    EXPECT_FALSE(commandDuring) << "the command was unavailable";
    EXPECT_TRUE(command->isEnabled());
    EXPECT_TRUE(QTest::qWaitFor([&] { return box->text() == QStringLiteral("Q"); }))
        << "the key was handed on after the print";
}

TEST_F(PrintPreviewTest, APrintLeftToRunPrintsEveryPage)
{
    const Table catalogue = catalogueOf(200);
    PriceListDocument document(catalogue, EnUs);
    QWidget owner;
    const int printed = QtPrintService::printWithProgress(
        document, printer, &owner, QStringLiteral("Tarnwick Price list"));
    EXPECT_GT(printed, 1);
    EXPECT_EQ(printed, document.pagesReady());
    EXPECT_EQ(owner.findChild<QProgressDialog *>(), nullptr);
}

// End on a long list lays out the rest first: a window says how far it has got, and Cancel
// there leaves the preview on its page while the rest goes on being laid out behind it.
TEST_F(PrintPreviewTest, TheLastPageOfALongListShowsTheLayoutsProgressAndCancelStaysPut)
{
    const Table catalogue = catalogueOf(20000);
    PriceListDocument document(catalogue, EnUs);
    PrintPreview window(printer, document, QStringLiteral("Tarnwick Price list"));
    ASSERT_FALSE(window.isLaidOut());
    bool found = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (auto *progress =
                window.findChild<QProgressDialog *>(QStringLiteral("LayoutProgress"))) {
            found = true;
            progress->cancel();
        }
    });
    watch.start(0);
    command(window, "PreviewLast")->trigger();
    watch.stop();
    EXPECT_TRUE(found);
    EXPECT_EQ(window.currentPage(), 0) << "Cancel stays on the page shown";
    EXPECT_FALSE(window.isLaidOut());
    QSignalSpy laidOut(&window, &PrintPreview::laidOut);
    ASSERT_TRUE(laidOut.wait(60000)) << "the layout goes on behind";

    command(window, "PreviewLast")->trigger();
    EXPECT_EQ(window.currentPage(), window.pageCount() - 1);
}

} // namespace
