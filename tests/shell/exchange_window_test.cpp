// The exchange commands of the real main window: the export from the file menu's "&Close"
// and the toolbar, the import through File → "&Open...", "New" and "Open", and "Palm".
#include "shellfixture.h"

#include "exchange/spreadsheetexport.h"
#include "exchange/ui/frmupdate.h"
#include "exchange/ui/workbookreaddialog.h"
#include "shell/exchangecontroller.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QGuiApplication>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QToolBar>

#include <algorithm>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

class ExchangeWindowTest : public SampleWindowTest
{
protected:
    FrmUpdate *updateWindow() const { return window->exchange().importWindow(); }

    /// Answers the import question with Yes and the open dialog with file, which the reader of
    /// the tests reads (with fault: a reader that fails that way).
    void chooseWorkbook(const QString &file, const char *fault = nullptr)
    {
        WorkbookReaderOptions reader;
        reader.program = QStringLiteral(TARNWICK_TEST_READER);
        reader.arguments = QStringList { QStringLiteral("--read-workbook") };
        if (fault)
            reader.arguments = QStringList { "--fault", fault } + reader.arguments;
        window->exchange().setReaderOptions(reader);
        fakes->prompts.answerMessage(MsgResult::Yes);
        fakes->fileDialogs.answer(FileDialogResult { file, 3 });
    }

    /// Waits until the workbook was read and "Update" opened.
    bool waitForUpdateWindow() const
    {
        return QTest::qWaitFor([this] { return updateWindow() != nullptr; }, 20000);
    }

    void expectMainWindowBusy(bool busy) const
    {
        EXPECT_EQ(window->menuBar()->isEnabled(), !busy);
        EXPECT_EQ(window->actions().toolBar()->isEnabled(), !busy);
        EXPECT_EQ(window->centralWidget()->isEnabled(), !busy);
        EXPECT_EQ(window->cursor().shape(), busy ? Qt::WaitCursor : Qt::ArrowCursor);
        // The keys the window answers itself (Ctrl+D, Ctrl+F, Ctrl+Shift+H) wait too.
        ASSERT_FALSE(window->QWidget::actions().isEmpty());
        for (QAction *own : window->QWidget::actions())
            EXPECT_EQ(own->isEnabled(), !busy) << qPrintable(own->objectName());
    }

    /// Maps part number and name in the open "Update" window and clicks OK.
    void importPartAndName()
    {
        ASSERT_NE(updateWindow(), nullptr);
        const QPointer<FrmUpdate> update = updateWindow();
        update->findChild<QComboBox *>(QStringLiteral("CmbField(0)"))->setCurrentIndex(0);
        update->findChild<QComboBox *>(QStringLiteral("CmbField(1)"))->setCurrentIndex(1);
        QTest::mouseClick(
            update->findChild<QPushButton *>(QStringLiteral("CmdOK")), Qt::LeftButton);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !update; }, 10000));
    }

    QByteArray handheldCsv() const { return folder.readFile(QStringLiteral("Products.CSV")); }
};

} // namespace

TEST_F(ExchangeWindowTest, TheExchangeAndHelpCommandsAreEnabled)
{
    for (const char *name : { "mnuFileOpen", "MnuFileClose" })
        EXPECT_TRUE(action(name)->isEnabled()) << name;
    for (const char *key : { "Palm", "Export", "New", "Open" })
        EXPECT_TRUE(button(key)->isEnabled()) << key;
    for (const char *name : { "mnuHelpContents", "mnuHelpSearchForHelpOn", "mnuHelpAbout" })
        EXPECT_TRUE(action(name)->isEnabled()) << name;
    EXPECT_EQ(action("MnuFileClose")->text(), "&Close");
    const QList<QAction *> fileItems = window->menuBar()->actions().first()->menu()->actions();
    ASSERT_GE(fileItems.size(), 3);
    EXPECT_EQ(fileItems[1]->objectName(), "mnuFileOpen");
    EXPECT_EQ(fileItems[2]->objectName(), "MnuFileClose");
}

TEST_F(ExchangeWindowTest, FileOpenAsksChoosesTheWorkbookAndShowsTheUpdateWindow)
{
    chooseWorkbook(workbook("sample.xls"));
    action("mnuFileOpen")->trigger();
    expectMainWindowBusy(true);
    ASSERT_TRUE(waitForUpdateWindow());
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(
        fakes->prompts.shown()[0].text, "Do you want to get products from an Excel Spreadsheet?");
    EXPECT_EQ(fakes->prompts.shown()[0].title, "Input Excel Data");
    EXPECT_EQ(fakes->prompts.shown()[0].style, MsgStyle::YesNo + MsgStyle::Question);
    ASSERT_EQ(fakes->fileDialogs.requests().size(), 1U);
    const FileDialogRequest &request = fakes->fileDialogs.requests()[0];
    EXPECT_EQ(request.initialFolder, folder.path());
    for (const char *pattern : { "*.xls", "*.xlsx", "*.ods", "*.txt", "*.*" })
        EXPECT_TRUE(request.filter.contains(QLatin1String(pattern))) << pattern;
    ASSERT_NE(updateWindow(), nullptr);
    EXPECT_TRUE(updateWindow()->isVisible());
    EXPECT_FALSE(updateWindow()->isModal());
    EXPECT_EQ(updateWindow()->windowTitle(), "Update");
    EXPECT_EQ(updateWindow()->findChild<QComboBox *>("CmbField(0)")->count(), 7);
    EXPECT_EQ(window->exchange().importFile(), workbook("sample.xls"));
    expectMainWindowBusy(true);
}

TEST_F(ExchangeWindowTest, TheImportAddsTheNewProductsToTheGridAndGivesTheWindowBack)
{
    chooseWorkbook(workbook("sample.xlsx"));
    action("mnuFileOpen")->trigger();
    ASSERT_TRUE(waitForUpdateWindow());
    importPartAndName();
    // AB-100, AB-101, AB-102 and OLD-1 are new; the repeated AB-100 is not.
    EXPECT_EQ(fakes->prompts.texts().last(),
        "4 changes have been made to the knowledge base. 1 row was skipped because its part "
        "number already exists.");
    EXPECT_EQ(module->AllProducts().Count(), 7);
    EXPECT_EQ(grid->model()->rowCount(), 7);
    EXPECT_EQ(grid->model()->index(0, 0).data().toString(), "A-100");
    EXPECT_EQ(grid->model()->index(1, 0).data().toString(), "AB-100");
    EXPECT_EQ(grid->currentIndex().row(), 0);
    expectMainWindowBusy(false);

    window->close();
    restart();
    EXPECT_EQ(module->AllProducts().Count(), 7) << "the import is saved with the catalogue";
}

TEST_F(ExchangeWindowTest, NoOrACancelledDialogShowsNoWindow)
{
    fakes->prompts.answerMessage(MsgResult::No);
    action("mnuFileOpen")->trigger();
    EXPECT_TRUE(fakes->fileDialogs.requests().empty());
    fakes->prompts.answerMessage(MsgResult::Yes);
    fakes->fileDialogs.answer(std::nullopt);
    action("mnuFileOpen")->trigger();
    EXPECT_EQ(fakes->fileDialogs.requests().size(), 1U);
    EXPECT_EQ(updateWindow(), nullptr);
    expectMainWindowBusy(false);
}

TEST_F(ExchangeWindowTest, ToolbarNewAsksInItsOwnWordsAndOpenAsFileOpen)
{
    chooseWorkbook(workbook("sample.ods"));
    button("New")->trigger();
    ASSERT_TRUE(waitForUpdateWindow());
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        "Do you want to modify the products with an Excel spreadsheet?");
    EXPECT_EQ(fakes->prompts.shown()[0].title, "Input Excel Data");
    EXPECT_EQ(fakes->prompts.shown()[0].style, MsgStyle::YesNo);
    ASSERT_NE(updateWindow(), nullptr);
    updateWindow()->close();
    ASSERT_TRUE(QTest::qWaitFor([this] { return updateWindow() == nullptr; }));
    expectMainWindowBusy(false);

    chooseWorkbook(workbook("sample.ods"));
    button("Open")->trigger();
    ASSERT_TRUE(waitForUpdateWindow());
    EXPECT_EQ(fakes->prompts.shown().back().text,
        "Do you want to get products from an Excel Spreadsheet?");
    EXPECT_NE(updateWindow(), nullptr);
    // The dialog starts at the workbook chosen before.
    EXPECT_EQ(fakes->fileDialogs.requests().back().fileName, workbook("sample.ods"));
}

TEST_F(ExchangeWindowTest, OpeningTheImportStoresWhatIsBeingEditedAndLeavesEditMode)
{
    goToRow(1);
    button("Edit")->trigger();
    window->ui().Txtnotes->setPlainText(QStringLiteral("Typed before the import"));
    chooseWorkbook(workbook("sample.xls"));
    action("mnuFileOpen")->trigger();
    EXPECT_FALSE(button("Edit")->isChecked());
    EXPECT_EQ(catalogue().get(2, 4), Cell("Typed before the import"));
}

TEST_F(ExchangeWindowTest, ClosingTheMainWindowClosesTheUpdateWindowFirst)
{
    chooseWorkbook(workbook("sample.xls"));
    action("mnuFileOpen")->trigger();
    ASSERT_TRUE(waitForUpdateWindow());
    const QPointer<FrmUpdate> update = updateWindow();
    ASSERT_NE(update, nullptr);
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(!update || !update->isVisible());
    EXPECT_TRUE(folder.exists("twdata.dat"));
}

TEST_F(ExchangeWindowTest, ToolbarExportWritesTheCatalogueWithThePendingEdit)
{
    goToRow(0);
    button("Edit")->trigger();
    window->ui().Txtnotes->setPlainText(QStringLiteral("Typed, not yet stored"));
    fakes->prompts.answerMessage(MsgResult::Yes);
    fakes->fileDialogs.answer(FileDialogResult { folder.filePath("export.xls"), 3 });
    button("Export")->trigger();
    ASSERT_EQ(fakes->prompts.shown().size(), 1U);
    EXPECT_EQ(fakes->prompts.shown()[0].text,
        "Do you want to export the products to an Excel readable file?");
    EXPECT_EQ(fakes->prompts.shown()[0].title, "Export to File");
    EXPECT_EQ(fakes->prompts.shown()[0].style, 324);
    const QByteArray written = folder.readFile("export.xls");
    EXPECT_EQ(written, SpreadsheetExport::exportBytes(catalogue(), module->locale()));
    EXPECT_TRUE(written.startsWith("Part Number\tProduct Name\tPrice\t"));
    EXPECT_TRUE(written.contains("A-100\tAnchor\t$12.50\tTyped, not yet stored\tWasher\t"));
    EXPECT_EQ(written.count("\r\n"), 4);
}

TEST_F(ExchangeWindowTest, FileCloseAsksThenExportsAndNoShowsTheDialogAgain)
{
    folder.writeFile("old.xls", "keep me");
    fakes->prompts.answerMessage(MsgResult::Yes);
    fakes->fileDialogs.answer(FileDialogResult { folder.filePath("old.xls"), 3 });
    fakes->prompts.answerMessage(MsgResult::No);
    fakes->fileDialogs.answer(FileDialogResult { folder.filePath("new.xls"), 3 });
    action("MnuFileClose")->trigger();
    EXPECT_EQ(fakes->prompts.texts(),
        QStringList({ "Do you want to save the current products to an Excel file?",
            "Overwrite existing file?" }));
    EXPECT_EQ(fakes->prompts.shown()[0].style, 324);
    EXPECT_EQ(fakes->prompts.shown()[0].title, "Export to File");
    EXPECT_EQ(fakes->fileDialogs.requests().size(), 2U);
    EXPECT_EQ(folder.readFile("old.xls"), "keep me");
    EXPECT_EQ(
        folder.readFile("new.xls"), SpreadsheetExport::exportBytes(catalogue(), module->locale()));
    EXPECT_TRUE(window->isVisible()) << "the close item of the file menu only exports";
}

TEST_F(ExchangeWindowTest, FileCloseAnsweredNoWritesNothing)
{
    fakes->prompts.answerMessage(MsgResult::No);
    action("MnuFileClose")->trigger();
    EXPECT_TRUE(fakes->fileDialogs.requests().empty());
}

TEST_F(ExchangeWindowTest, PalmSendsEveryProductAndStartsTheConverterWithItsArguments)
{
    fakes->prompts.answerMessage(MsgResult::Ok);
    fakes->prompts.answerInput(QStringLiteral("Products"));
    button("Palm")->trigger();
    EXPECT_EQ(fakes->prompts.texts(),
        QStringList({ "Send products shown to palm computer?",
            "What should this group of products be called?",
            "After you hotsync the selected products will be in your Palmpilot." }));
    ASSERT_EQ(fakes->launcher.starts.size(), 1U);
    const QString p = folder.path();
    EXPECT_EQ(fakes->launcher.starts[0].program, p + "/Handdesk.exe");
    EXPECT_EQ(fakes->launcher.starts[0].arguments,
        QStringList({ "COMMAND:TOPDB", "PDB:INFILE:{" + p + "/Products.CSV}",
            "PDB:OUTFILE:{" + p + "/Products.pdb}", "PDB:DBNAME:{Products}",
            "PDB:USEEXISTING:{" + p + "/prodnocog.pjt}", "PDB:FIELDNAMES",
            "PDB:AUTOINSTALL:{0}" }));
    EXPECT_FALSE(folder.exists("Products.CSV")) << "deleted after the success message";
}

TEST_F(ExchangeWindowTest, PalmWritesEveryProductWhenOnlyTheCurrentRowIsSelected)
{
    goToRow(1);
    fakes->launcher.succeed = false; // the file stays for the test to read
    fakes->prompts.answerMessage(MsgResult::Ok);
    fakes->prompts.answerInput(QStringLiteral("Products"));
    button("Palm")->trigger();
    const QByteArray csv = handheldCsv();
    EXPECT_TRUE(csv.startsWith("Quote,Cat Number,Description,Price,Includes,Notes,Discounts\r\n"
                               "0,A-100,Anchor,\"$12.50\",\"Washer\",\"Two lines\r\nof notes\","));
    EXPECT_EQ(csv.count("\r\n0,"), 3);
    EXPECT_LT(csv.indexOf("\r\n0,A-100,"), csv.indexOf("\r\n0,B-200,Bolt,"));
    EXPECT_LT(csv.indexOf("\r\n0,B-200,"), csv.indexOf("\r\n0,C-300,Clamp,"));
    EXPECT_EQ(fakes->help.calls, QStringList { folder.filePath("Tarnwick Help.chm") + "|15|2050" });
}

TEST_F(ExchangeWindowTest, CtrlClickOnANameAddsItsProductToTheSelection)
{
    // Through the window system, as a user's clicks come: Ctrl is down while the grid moves
    // its cursor to the part number, which must not take the row out of the selection again.
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    const auto click = [this](int row, Qt::KeyboardModifiers modifiers) {
        const QPoint inGrid = grid->visualRect(grid->model()->index(row, 1)).center();
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, modifiers,
            grid->viewport()->mapTo(window, inGrid));
    };
    click(0, Qt::NoModifier);
    click(2, Qt::ControlModifier);
    QList<int> rows;
    for (const QModelIndex &index : grid->selectionModel()->selectedRows())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    EXPECT_EQ(rows, (QList<int> { 0, 2 }));
    EXPECT_EQ(grid->currentIndex().column(), 0) << "outside edit mode the cursor stays left";
    // The window system keeps the last event's keys as held: the next test starts without.
    QTest::mouseMove(window->windowHandle(), grid->viewport()->mapTo(window, QPoint(4, 4)));
    EXPECT_EQ(QGuiApplication::keyboardModifiers(), Qt::NoModifier);
}

TEST_F(ExchangeWindowTest, PalmWritesTheSelectedRows)
{
    goToRow(2);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, Qt::ControlModifier,
        grid->visualRect(grid->model()->index(0, 0)).center());
    ASSERT_EQ(grid->selectionModel()->selectedRows().size(), 2);
    fakes->launcher.succeed = false;
    fakes->prompts.answerMessage(MsgResult::Ok);
    fakes->prompts.answerInput(QStringLiteral("Products"));
    button("Palm")->trigger();
    EXPECT_EQ(fakes->prompts.texts().first(), "Send selected products to Palm Computer?");
    const QByteArray csv = handheldCsv();
    EXPECT_EQ(csv.count("\r\n0,"), 2);
    EXPECT_TRUE(csv.contains("Discounts\r\n0,C-300,Clamp,"));
    EXPECT_GT(csv.indexOf("\r\n0,A-100,Anchor,"), csv.indexOf("\r\n0,C-300,"));
    EXPECT_FALSE(csv.contains("B-200"));
}

TEST_F(ExchangeWindowTest, AReaderThatCrashesIsReportedAndTheEditsStay)
{
    goToRow(1);
    button("Edit")->trigger();
    window->ui().Txtnotes->setPlainText(QStringLiteral("Typed before the crash"));
    const int count = module->AllProducts().Count();
    chooseWorkbook(workbook("sample.xls"), "segv");
    action("mnuFileOpen")->trigger();
    ASSERT_TRUE(waitForUpdateWindow());
    ASSERT_EQ(fakes->prompts.shown().size(), 2U);
    EXPECT_EQ(fakes->prompts.shown()[1].text, "This file is not an Excel 97 file.");
    EXPECT_EQ(fakes->prompts.shown()[1].title, "Error 51");
    EXPECT_EQ(fakes->prompts.shown()[1].style, MsgStyle::OkOnly) << "a plain box, no icon";
    EXPECT_EQ(updateWindow()->findChild<QComboBox *>("CmbField(0)")->count(), 0);
    updateWindow()->close();
    ASSERT_TRUE(QTest::qWaitFor([this] { return updateWindow() == nullptr; }));
    expectMainWindowBusy(false);
    EXPECT_EQ(module->AllProducts().Count(), count);
    EXPECT_EQ(catalogue().get(2, 4), Cell("Typed before the crash"));

    // A later read works, and the edit is saved at close.
    chooseWorkbook(workbook("sample.xlsx"));
    action("mnuFileOpen")->trigger();
    ASSERT_TRUE(waitForUpdateWindow());
    EXPECT_EQ(updateWindow()->findChild<QComboBox *>("CmbField(0)")->count(), 7);
    EXPECT_TRUE(window->close());
    restart();
    EXPECT_EQ(module->AllProducts().Count(), count);
    EXPECT_EQ(catalogue().get(2, 4), Cell("Typed before the crash"));
}

TEST_F(ExchangeWindowTest, CancelWhileTheWorkbookIsReadGivesTheWindowBack)
{
    chooseWorkbook(workbook("sample.xlsx"), "slow");
    action("mnuFileOpen")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([this] {
        return window->exchange().readWindow() && window->exchange().readWindow()->isVisible();
    }));
    expectMainWindowBusy(true);
    const QPointer<WorkbookReadDialog> reading = window->exchange().readWindow();
    EXPECT_EQ(reading->windowTitle(), "Tarnwick");
    QTest::mouseClick(reading->findChild<QPushButton *>("CmdCancelRead"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !reading; }));
    EXPECT_EQ(window->exchange().readWindow(), nullptr);
    EXPECT_EQ(updateWindow(), nullptr);
    expectMainWindowBusy(false);
    EXPECT_EQ(fakes->prompts.shown().size(), 1U) << "only the question before the file dialog";
}

TEST_F(ExchangeWindowTest, ClosingTheMainWindowWhileAWorkbookIsReadStopsTheRead)
{
    chooseWorkbook(workbook("sample.xlsx"), "sleep");
    action("mnuFileOpen")->trigger();
    ASSERT_NE(window->exchange().readWindow(), nullptr);
    const QPointer<WorkbookReadDialog> reading = window->exchange().readWindow();
    EXPECT_TRUE(window->close());
    EXPECT_EQ(window->exchange().readWindow(), nullptr);
    EXPECT_TRUE(!reading || !reading->reader().isRunning());
    EXPECT_TRUE(folder.exists("twdata.dat"));
}
