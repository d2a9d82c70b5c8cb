// File → Properties, View → Refresh and View → Web Browser in the real main window, and the
// column widths a first run starts with.
#include "shellfixture.h"

#include "catalogue/cataloguefile.h"
#include "catalogue/catalogueproperties.h"
#include "catalogue/module1.h"
#include "platform/iprompts.h"
#include "quotes/quoteline.h"
#include "quotes/quotelist.h"
#include "shell/columnwidths.h"
#include "shell/frmproperties.h"
#include "shell/productgridcontroller.h"
#include "shell/settingskeys.h"
#include "shell/twips.h"

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTest>
#include <QUrl>

#include <algorithm>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class ViewMenuWindowTest : public SampleWindowTest
{
protected:
    FrmProperties *openProperties()
    {
        action("mnuFileProperties")->trigger();
        return window->findChild<FrmProperties *>();
    }
    QStringList parts()
    {
        QStringList result;
        for (int row = 1; row <= catalogue().rowCount(); ++row)
            result << catalogue().get(row, 1).asText();
        return result;
    }
};

TEST_F(ViewMenuWindowTest, PropertiesShowsWhereTheCatalogueLivesAndWhatItHolds)
{
    EXPECT_EQ(action("mnuFileProperties")->text(), QStringLiteral("Propert&ies"));
    FrmProperties *form = openProperties();
    ASSERT_NE(form, nullptr);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(form->windowTitle(), QStringLiteral("Catalogue Properties"));
    EXPECT_EQ(form->txtAppFolder()->text(), QDir::toNativeSeparators(folder.path()));
    EXPECT_EQ(form->txtDataFile()->text(), QDir::toNativeSeparators(module->DataFile));
    EXPECT_EQ(form->txtProductCount()->text(), QStringLiteral("3"));
    const qint64 size = QFileInfo(module->DataFile).size();
    EXPECT_EQ(form->txtFileSize()->text(), QStringLiteral("%1 bytes").arg(size));
    EXPECT_EQ(form->txtLastSaved()->text(),
        CatalogueProperties::dateTimeText(QFileInfo(module->DataFile).lastModified(), locale));
    EXPECT_EQ(form->txtBackup()->text(), QStringLiteral("No"));
    for (QLineEdit *box : form->findChildren<QLineEdit *>())
        EXPECT_TRUE(box->isReadOnly()) << qPrintable(box->objectName());
}

TEST_F(ViewMenuWindowTest, PropertiesOpenedAgainIsOneWindowWithTheFiguresOfNow)
{
    FrmProperties *form = openProperties();
    ASSERT_NE(form, nullptr);
    folder.writeFile(QStringLiteral("twdata.bak"), QByteArray("x"));
    action("mnuAddProd")->trigger();
    EXPECT_EQ(openProperties(), form);
    EXPECT_EQ(window->findChildren<FrmProperties *>().size(), 1);
    EXPECT_EQ(form->txtProductCount()->text(), QString::number(module->AllProducts().Count()));
    EXPECT_TRUE(
        form->txtBackup()->text().startsWith(QStringLiteral("Yes, the catalogue as saved on ")));
    // The longest figure is readable whole.
    QLineEdit *backup = form->txtBackup();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return backup->fontMetrics().horizontalAdvance(backup->text())
                < backup->contentsRect().width() - 4;
        },
        10000))
        << backup->width();
}

TEST_F(ViewMenuWindowTest, ALongPathKeepsTheLabelsReadableAndTheWindowOnTheScreen)
{
    module->DataFile =
        folder.filePath(QStringLiteral("OneDrive - Installationsbetrieb GmbH/").repeated(8)
            + QStringLiteral("twdata.dat"));
    FrmProperties *form = openProperties();
    ASSERT_NE(form, nullptr);
    EXPECT_LE(form->width(), form->screen()->availableGeometry().width());
    for (const QLabel *label : form->findChildren<QLabel *>())
        EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
    EXPECT_EQ(form->txtDataFile()->cursorPosition(), 0) << "the path shows from its start";
}

TEST_F(ViewMenuWindowTest, OpenFolderShowsTheApplicationFolderInTheFileManager)
{
    FrmProperties *form = openProperties();
    ASSERT_NE(form, nullptr);
    QTest::mouseClick(form->cmdOpenFolder(), Qt::LeftButton);
    ASSERT_EQ(fakes->desktop.opened.size(), 1U);
    EXPECT_EQ(fakes->desktop.opened.front(), QUrl::fromLocalFile(folder.path()));
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

TEST_F(ViewMenuWindowTest, EnterClosesPropertiesEvenFromOpenFolder)
{
    FrmProperties *form = openProperties();
    ASSERT_NE(form, nullptr);
    form->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(form));
    form->cmdOpenFolder()->setFocus();
    QTest::keyClick(form->cmdOpenFolder(), Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(fakes->desktop.opened.empty());
}

TEST_F(ViewMenuWindowTest, AFileManagerThatDoesNotStartIsReportedWithTheFolder)
{
    fakes->desktop.succeed = false;
    FrmProperties *form = openProperties();
    ASSERT_NE(form, nullptr);
    form->cmdOpenFolder()->click();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown().front().text,
        FrmProperties::FolderNotOpenedMessage + QDir::toNativeSeparators(folder.path()));
    EXPECT_EQ(fakes->prompts.shown().front().title, QStringLiteral("Catalogue Properties"));
}

TEST_F(ViewMenuWindowTest, RefreshSortsOnThePartNumberAndKeepsTheSameProductCurrent)
{
    window->grid().GrdMain_HeadClick(2); // by price: B-200, A-100, C-300
    ASSERT_EQ(parts(), QStringList({ "B-200", "A-100", "C-300" }));
    ASSERT_FALSE(module->SortedByPart);
    goToRow(1); // A-100 Anchor 12.50
    EXPECT_EQ(action("mnuViewRefresh")->text(), QStringLiteral("&Refresh"));
    action("mnuViewRefresh")->trigger();
    EXPECT_EQ(parts(), QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_TRUE(module->SortedByPart);
    EXPECT_EQ(grid->model()->index(0, 0).data().toString(), QStringLiteral("A-100"));
    EXPECT_EQ(grid->currentIndex().row(), 0);
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("$12.50"));
}

TEST_F(ViewMenuWindowTest, RefreshIsOneStepThatUndoTakesBack)
{
    window->grid().GrdMain_HeadClick(2); // by price: B-200, A-100, C-300
    goToRow(1);
    action("mnuViewRefresh")->trigger();
    ASSERT_EQ(parts(), QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_EQ(action("mnuEditUndo")->text(), QStringLiteral("&Undo Refresh"));
    action("mnuEditUndo")->trigger();
    EXPECT_EQ(parts(), QStringList({ "B-200", "A-100", "C-300" }));
    EXPECT_EQ(grid->currentIndex().row(), 1);
    EXPECT_EQ(window->ui().TxtPrice->text(), QStringLiteral("$12.50"));
    action("mnuEditUndo")->trigger(); // the header sort
    EXPECT_EQ(parts(), QStringList({ "A-100", "B-200", "C-300" }));
}

TEST_F(ViewMenuWindowTest, RefreshOfASortedCatalogueMakesNoStep)
{
    goToRow(2);
    action("mnuViewRefresh")->trigger();
    EXPECT_FALSE(action("mnuEditUndo")->isEnabled());
    EXPECT_EQ(grid->currentIndex().row(), 2);
}

TEST_F(ViewMenuWindowTest, RefreshStoresWhatIsTypedInEditModeBeforeSorting)
{
    window->grid().GrdMain_HeadClick(2);
    button("Edit")->trigger();
    goToRow(2); // C-300 Clamp
    window->ui().Txtnotes->setPlainText(QStringLiteral("Clamp notes"));
    action("mnuViewRefresh")->trigger();
    EXPECT_EQ(parts(), QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_EQ(catalogue().get(3, 4), Cell("Clamp notes"));
    EXPECT_EQ(grid->currentIndex().row(), 2);
}

TEST_F(ViewMenuWindowTest, RefreshRecomputesTheQuoteAndKeepsItsCurrentCell)
{
    goToRow(0);
    action("mnuGrdMainQuote")->trigger();
    goToRow(1);
    action("mnuGrdMainQuote")->trigger();
    const QString total = window->ui().TxtTotal->text();
    GridView *quoteGrid = window->ui().GrdQuote;
    quoteGrid->setCurrentIndex(quoteGrid->model()->index(0, QuoteGridColumn::Price));
    window->ui().TxtTotal->clear();
    action("mnuViewRefresh")->trigger();
    EXPECT_EQ(window->ui().TxtTotal->text(), total);
    EXPECT_EQ(quoteGrid->currentIndex(), quoteGrid->model()->index(0, QuoteGridColumn::Price));
    EXPECT_EQ(QuoteLine::lineCount(module->QuoteTable()), 2);
}

TEST_F(ViewMenuWindowTest, WebBrowserOpensTheManualsContentsPageWrittenToTheCache)
{
    EXPECT_EQ(action("mnuViewWebBrowser")->text(), QStringLiteral("&Web Browser"));
    action("mnuViewWebBrowser")->trigger();
    ASSERT_EQ(fakes->desktop.opened.size(), 1U);
    const QString start =
        QDir(fakes->desktop.cacheFolder()).filePath(QStringLiteral("manual/index.html"));
    EXPECT_EQ(fakes->desktop.opened.front(), QUrl::fromLocalFile(start));
    EXPECT_TRUE(QFileInfo(start).isFile());
    EXPECT_TRUE(QFileInfo(
        QDir(fakes->desktop.cacheFolder()).filePath(QStringLiteral("manual/datafiles.html")))
                    .isFile());
    EXPECT_TRUE(fakes->prompts.shown().empty());
}

/// A first run: no size stored, the window as wide as the first-run rule makes it.
class FirstRunColumnsTest : public SampleWindowTest
{
protected:
    static void expectNoColumnNarrowerThanItsCaption(const QTableView *view)
    {
        for (int column = 0; column < view->model()->columnCount(); ++column) {
            if (view->isColumnHidden(column))
                continue;
            EXPECT_GE(view->columnWidth(column), ColumnWidths::captionWidth(view, column))
                << qPrintable(view->objectName()) << " column " << column;
        }
    }
};

TEST_F(FirstRunColumnsTest, NoColumnIsNarrowerThanItsCaption)
{
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    expectNoColumnNarrowerThanItsCaption(grid);
    expectNoColumnNarrowerThanItsCaption(window->ui().GrdQuote);
    // The sample's names are short: the name column shows the longest whole.
    const int longest = static_cast<const QAbstractItemView *>(grid)->sizeHintForColumn(1);
    EXPECT_GE(grid->columnWidth(1), longest);
}

/// A later start: the window's size and the part number's width are stored.
class LaterStartColumnsTest : public ShellTest
{
protected:
    /// A start after one that left the window at width × height and the part number's column
    /// at colwidth (all in twips), with one product of a long name.
    frmMain *startAfterARun(const char *width, const char *height, const char *colwidth)
    {
        saveSetting(SettingsKeys::MainLeft, QStringLiteral("600"));
        saveSetting(SettingsKeys::MainTop, QStringLiteral("600"));
        saveSetting(SettingsKeys::MainWidth, QString::fromLatin1(width));
        saveSetting(SettingsKeys::MainHeight, QString::fromLatin1(height));
        saveSetting(SettingsKeys::Colwidth, QString::fromLatin1(colwidth));
        folder.writeFile(QStringLiteral("twdata.dat"),
            catalogueLine(
                { "V-12", "Brass ball valve 1/2\" full port, lead free", "17.25", "", "" }));
        frmMain *window = startAndWait();
        if (window && !QTest::qWaitForWindowExposed(window))
            return nullptr;
        return window;
    }
};

TEST_F(LaterStartColumnsTest, NamesGetTheirRoomAndThePartNumberItsStoredWidth)
{
    frmMain *window = startAfterARun("16800", "10800", "1500"); // 100 pixels at 15 twips
    ASSERT_NE(window, nullptr);
    const GridView *grid = window->ui().GrdMain;
    // The name as wide as it is, as far as the grid shows it beside part number and price.
    const int longest = static_cast<const QAbstractItemView *>(grid)->sizeHintForColumn(1);
    const int room = grid->viewport()->width() - grid->columnWidth(0) - grid->columnWidth(2)
        - grid->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, grid);
    ASSERT_GT(room, 150);
    EXPECT_GE(grid->columnWidth(1), std::min(longest, room)) << "room " << room;
    EXPECT_GE(grid->columnWidth(2), ColumnWidths::captionWidth(grid, 2));
    EXPECT_EQ(grid->columnWidth(0), Twips::toPixels(1500, window->twipsPerPixel()));
}

TEST_F(LaterStartColumnsTest, APartNumberWidthFromALargerScreenLeavesNamesAndPricesInView)
{
    frmMain *window = startAfterARun("10500", "7500", "6615"); // 441 pixels at 15 twips
    ASSERT_NE(window, nullptr);
    const GridView *grid = window->ui().GrdMain;
    EXPECT_LE(grid->columnWidth(0), grid->viewport()->width() / 2);
    EXPECT_GE(grid->columnWidth(1), ColumnWidths::captionWidth(grid, 1));
}

// A first run, nothing stored, one part number of 60 characters: its column takes at most half
// the grid, so the names keep their room.
TEST_F(LaterStartColumnsTest, ALongPartNumberOnAFirstRunLeavesTheNamesTheirRoom)
{
    folder.writeFile(QStringLiteral("twdata.dat"),
        catalogueLine({ QByteArray(60, 'P'), "Long one", "12.5", "", "" })
            + catalogueLine({ "V-12", "Brass ball valve 1/2\" full port", "17.25", "", "" }));
    frmMain *window = startAndWait();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    const GridView *grid = window->ui().GrdMain;
    // Half the grid as it was when the columns were fitted (a scroll bar may take a pixel
    // since).
    EXPECT_LE(grid->columnWidth(0), grid->viewport()->width() / 2 + 2);
    EXPECT_GE(grid->columnWidth(1), ColumnWidths::captionWidth(grid, 1));
}

TEST_F(FirstRunColumnsTest, TheQuotesProductColumnTakesTheSpareWidth)
{
    window->resize(1280, 800);
    GridView *quoteGrid = window->ui().GrdQuote;
    window->ui().SSTabmain->setCurrentIndex(1);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    ASSERT_TRUE(QTest::qWaitFor([quoteGrid] { return quoteGrid->isVisible(); }, 10000));
    int others = 0;
    for (int column = 0; column < QuoteGridColumn::Count; ++column) {
        if (column != QuoteGridColumn::Product)
            others += quoteGrid->columnWidth(column);
    }
    const int spare = quoteGrid->viewport()->width() - others;
    ASSERT_GT(spare, ColumnWidths::captionWidth(quoteGrid, QuoteGridColumn::Product));
    EXPECT_EQ(quoteGrid->columnWidth(QuoteGridColumn::Product), spare);
}

TEST(ColumnWidthsTest, TheNameTakesWhatItNeedsWithinTheRoomButNeverLessThanItsCaption)
{
    EXPECT_EQ(ColumnWidths::nameWidth(300, 60, 500), 300);
    EXPECT_EQ(ColumnWidths::nameWidth(800, 60, 500), 500);
    EXPECT_EQ(ColumnWidths::nameWidth(800, 60, 20), 60);
    EXPECT_EQ(ColumnWidths::nameWidth(10, 60, 500), 60);
}

} // namespace
