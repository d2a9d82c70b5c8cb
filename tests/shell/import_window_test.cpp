// Importing through the real main window: Edit → "Paste Special..." with rows copied from a
// spreadsheet, "Update existing products" from a workbook, each taken back by Ctrl+Z and made
// again by Ctrl+Y as one step, and where the open dialog starts.
#include "shellfixture.h"

#include "catalogue/cataloguewriter.h"
#include "catalogue/module1.h"
#include "catalogue/products.h"
#include "commands/edithistory.h"

#include "exchange/ui/frmimportpreview.h"
#include "exchange/ui/frmupdate.h"
#include "shell/exchangecontroller.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QToolBar>
#include <QWindow>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

/// Rows as a spreadsheet puts them on the clipboard: tab-separated, header row first.
const QString CopiedRows = QStringLiteral("Part Number\tProduct Name\tPrice\n"
                                          "A-100\tAnchor\t13.25\n"
                                          "D-400\tDowel\t0.85\n");

class ImportWindowTest : public SampleWindowTest
{
protected:
    FrmUpdate *updateWindow() const { return window->exchange().importWindow(); }

    void chooseWorkbook(const QString &file)
    {
        WorkbookReaderOptions reader;
        reader.program = QStringLiteral(TARNWICK_TEST_READER);
        reader.arguments = QStringList { QStringLiteral("--read-workbook") };
        window->exchange().setReaderOptions(reader);
        fakes->prompts.answerMessage(MsgResult::Yes);
        fakes->fileDialogs.answer(FileDialogResult { file, 6 });
    }

    bool waitForUpdateWindow() const
    {
        return QTest::qWaitFor([this] { return updateWindow() != nullptr; }, 20000);
    }

    void select(const char *name, int position) const
    {
        updateWindow()
            ->findChild<QComboBox *>(QString::fromLatin1(name))
            ->setCurrentIndex(position);
    }

    void click(QWidget *parent, const char *name) const
    {
        QTest::mouseClick(
            parent->findChild<QPushButton *>(QString::fromLatin1(name)), Qt::LeftButton);
    }

    FrmImportPreview *waitForPreview() const
    {
        const bool shown = QTest::qWaitFor(
            [this] { return updateWindow() && updateWindow()->previewWindow(); }, 20000);
        return shown ? updateWindow()->previewWindow() : nullptr;
    }

    /// Edit → Paste Special of CopiedRows, part number and name mapped, OK: the preview, or
    /// null when it did not come.
    FrmImportPreview *previewPastedRows()
    {
        fakes->clipboard.setText(CopiedRows);
        action("mnuEditPasteSpecial")->trigger();
        if (!updateWindow())
            return nullptr;
        select("CmbField(0)", 0);
        select("CmbField(1)", 1);
        click(updateWindow(), "CmdOK");
        return waitForPreview();
    }

    /// The catalogue as its file would hold it now.
    QByteArray catalogueBytes() const
    {
        return catalogueFileBytes(
            module->Catalogue(), module->locale(), module->AllProducts().Count())
            .bytes;
    }

    /// Applies the open preview and waits for the import to end.
    void applyPreview() const
    {
        FrmImportPreview *preview = waitForPreview();
        ASSERT_NE(preview, nullptr);
        click(preview, "CmdApply");
        ASSERT_TRUE(QTest::qWaitFor([this] { return updateWindow() == nullptr; }, 10000));
    }

    /// Ctrl+Z (or Ctrl+Y) pressed in the product grid of the active main window.
    void keysInGrid(Qt::Key key) const
    {
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        grid->setFocus(Qt::MouseFocusReason);
        ASSERT_TRUE(QTest::qWaitFor([this] { return grid->hasFocus(); }, 10000));
        QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier);
    }

    QStringList gridColumn(int column) const
    {
        QStringList texts;
        for (int row = 0; row < grid->model()->rowCount(); ++row)
            texts << grid->model()->index(row, column).data().toString();
        return texts;
    }
};

} // namespace

TEST_F(ImportWindowTest, PasteSpecialTakesTheCopiedRowsThroughTheMappingAndThePreview)
{
    fakes->clipboard.setText(CopiedRows);
    action("mnuEditPasteSpecial")->trigger();
    ASSERT_NE(updateWindow(), nullptr);
    EXPECT_TRUE(fakes->fileDialogs.requests().empty()) << "no file is asked for";
    EXPECT_EQ(updateWindow()->findChild<QComboBox *>("CmbField(0)")->count(), 3);
    EXPECT_FALSE(window->menuBar()->isEnabled()) << "the main window waits for the import";
    click(updateWindow(), "CmdMatch");
    auto *update = updateWindow()->findChild<QRadioButton *>("OptUpdate");
    update->setChecked(true);
    click(updateWindow(), "CmdOK");
    FrmImportPreview *preview = waitForPreview();
    ASSERT_NE(preview, nullptr);
    EXPECT_EQ(preview->findChild<QLabel *>("LblAdded")->text(), "Products added: 1");
    EXPECT_EQ(preview->findChild<QLabel *>("LblChanged")->text(), "Products changed: 1");
    EXPECT_EQ(module->AllProducts().Count(), 3) << "nothing changes before Apply";
    click(preview, "CmdApply");
    ASSERT_TRUE(QTest::qWaitFor([this] { return updateWindow() == nullptr; }, 10000));
    EXPECT_EQ(fakes->prompts.texts().last(),
        "Products added: 1\nProducts changed: 1\nProducts unchanged: 0\nRows skipped: 0");
    EXPECT_EQ(gridColumn(0), (QStringList { "A-100", "B-200", "C-300", "D-400" }));
    EXPECT_EQ(gridColumn(2)[0], "$13.25");
    EXPECT_EQ(gridColumn(1)[3], "Dowel");
    EXPECT_TRUE(window->menuBar()->isEnabled());

    window->close();
    restart();
    EXPECT_EQ(module->AllProducts().Count(), 4) << "saved with the catalogue";
}

TEST_F(ImportWindowTest, PastedRowsAreShownBeforeTheyAreAddedAndCancelAddsNothing)
{
    FrmImportPreview *preview = previewPastedRows();
    ASSERT_NE(preview, nullptr);
    EXPECT_EQ(preview->findChild<QLabel *>("LblSkipped")->text(),
        "Rows skipped: 1 (part number already exists: 1)");
    click(preview, "CmdCancel");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !updateWindow()->previewWindow(); }));
    click(updateWindow(), "CmdCancel");
    ASSERT_TRUE(QTest::qWaitFor([this] { return updateWindow() == nullptr; }));
    EXPECT_EQ(module->AllProducts().Count(), 3);
    EXPECT_TRUE(fakes->prompts.shown().empty());
    EXPECT_TRUE(window->menuBar()->isEnabled());
}

TEST_F(ImportWindowTest, TheMainWindowsCloseButtonWorksWhileThePreviewIsOpen)
{
    ASSERT_NE(previewPastedRows(), nullptr);
    // No modal window: the window system delivers no close to a window one blocks.
    EXPECT_EQ(QGuiApplication::modalWindow(), nullptr);
    // The close the title bar's button asks for.
    ASSERT_NE(window->windowHandle(), nullptr);
    window->windowHandle()->close();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->isVisible(); }, 5000));
    EXPECT_TRUE(QTest::qWaitFor([this] { return updateWindow() == nullptr; }, 5000));
    EXPECT_EQ(module->AllProducts().Count(), 3) << "the preview's rows were not added";
}

TEST_F(ImportWindowTest, PasteSpecialWithoutCopiedRowsSaysWhatItNeeds)
{
    for (const char *text : { "", "A-100" }) {
        fakes->prompts.clear();
        fakes->clipboard.setText(QString::fromLatin1(text));
        action("mnuEditPasteSpecial")->trigger();
        EXPECT_EQ(updateWindow(), nullptr);
        ASSERT_EQ(fakes->prompts.shown().size(), 1U);
        EXPECT_EQ(fakes->prompts.shown()[0].text,
            "The clipboard holds no rows from a spreadsheet. Copy the rows in the spreadsheet, "
            "with their header row first, then choose Paste Special again.");
        EXPECT_EQ(fakes->prompts.shown()[0].title, "Paste Special");
        EXPECT_TRUE(window->menuBar()->isEnabled());
    }
}

TEST_F(ImportWindowTest, UpdateExistingProductsFromAWorkbookChangesThemAfterThePreview)
{
    chooseWorkbook(workbook("sample.xlsx"));
    action("mnuFileOpen")->trigger();
    ASSERT_TRUE(waitForUpdateWindow());
    select("CmbField(0)", 0);
    select("CmbField(3)", 3); // the list price
    updateWindow()->findChild<QRadioButton *>("OptUpdate")->setChecked(true);
    click(updateWindow(), "CmdOK");
    FrmImportPreview *preview = waitForPreview();
    ASSERT_NE(preview, nullptr);
    click(preview, "CmdApply");
    ASSERT_TRUE(QTest::qWaitFor([this] { return updateWindow() == nullptr; }, 10000));
    // AB-101's price is "n/a": that row is skipped; the repeated AB-100 too.
    EXPECT_EQ(fakes->prompts.texts().last(),
        "Products added: 3\nProducts changed: 0\nProducts unchanged: 0\nRows skipped: 2 (part "
        "number twice in the sheet: 1; list price that is no number: 1)\nRows not read: every row "
        "below row 7, which is empty in the mapped columns and ends the import.");
    EXPECT_EQ(
        gridColumn(0), (QStringList { "A-100", "AB-100", "AB-102", "B-200", "C-300", "OLD-1" }));
    EXPECT_EQ(gridColumn(1)[1], "Missing Product Name") << "no name column mapped";
}

TEST_F(ImportWindowTest, TheOpenDialogOffersThePlacesAndStartsAtTheLastWorkbookAfterARestart)
{
    fakes->prompts.answerMessage(MsgResult::Yes);
    fakes->fileDialogs.answer(std::nullopt);
    action("mnuFileOpen")->trigger();
    ASSERT_EQ(fakes->fileDialogs.requests().size(), 1U);
    const FileDialogRequest first = fakes->fileDialogs.requests()[0];
    EXPECT_EQ(first.initialFolder, folder.path());
    EXPECT_TRUE(first.places.contains(QDir::cleanPath(QDir::homePath())));
    EXPECT_EQ(first.places.last(), QDir::cleanPath(folder.path()));

    chooseWorkbook(workbook("sample.ods"));
    action("mnuFileOpen")->trigger();
    ASSERT_TRUE(waitForUpdateWindow());
    updateWindow()->close();
    EXPECT_EQ(setting("LastWorkbook"), workbook("sample.ods"));

    window->close();
    restart();
    fakes->prompts.answerMessage(MsgResult::Yes);
    fakes->fileDialogs.answer(std::nullopt);
    window = mainWindow.get();
    window->actions().action("mnuFileOpen")->trigger();
    const FileDialogRequest later = fakes->fileDialogs.requests().back();
    EXPECT_EQ(QDir(later.initialFolder), QDir(QStringLiteral(TARNWICK_WORKBOOKS)));
    EXPECT_EQ(later.fileName, workbook("sample.ods"));
}

TEST_F(ImportWindowTest, AWorkbookWhoseFolderIsGoneStartsTheDialogInTheApplicationFolder)
{
    saveSetting("LastWorkbook", folder.filePath("gone/list.xlsx"));
    fakes->prompts.answerMessage(MsgResult::Yes);
    fakes->fileDialogs.answer(std::nullopt);
    action("mnuFileOpen")->trigger();
    ASSERT_EQ(fakes->fileDialogs.requests().size(), 1U);
    EXPECT_EQ(fakes->fileDialogs.requests()[0].initialFolder, folder.path());
    EXPECT_TRUE(fakes->fileDialogs.requests()[0].fileName.isEmpty());
}

TEST_F(ImportWindowTest, AnUpdateFromAWorkbookIsTakenBackByCtrlZAndMadeAgainByCtrlY)
{
    // A supplier's list saved as tab-separated text.
    folder.writeFile(QStringLiteral("supplier.txt"),
        "Part Number\tProduct Name\tPrice\r\nA-100\tAnchor\t14.75\r\nC-300\tClamp\t9.5\r\n"
        "E-500\tEyebolt\t4\r\n");
    const QByteArray before = catalogueBytes();
    chooseWorkbook(folder.filePath(QStringLiteral("supplier.txt")));
    action("mnuFileOpen")->trigger();
    ASSERT_TRUE(waitForUpdateWindow());
    click(updateWindow(), "CmdMatch");
    updateWindow()->findChild<QRadioButton *>("OptUpdate")->setChecked(true);
    click(updateWindow(), "CmdOK");
    applyPreview();
    EXPECT_EQ(fakes->prompts.texts().last(),
        "Products added: 1\nProducts changed: 2\nProducts unchanged: 0\nRows skipped: 0");
    EXPECT_EQ(gridColumn(0), (QStringList { "A-100", "B-200", "C-300", "E-500" }));
    EXPECT_EQ(gridColumn(2), (QStringList { "$14.75", "$2.50", "$9.50", "$4.00" }));
    const QByteArray after = catalogueBytes();
    EXPECT_EQ(window->history().count(), 1) << "the whole import is one step";
    EXPECT_EQ(action("mnuEditUndo")->text(), "&Undo Import (1 added, 2 changed)");

    keysInGrid(Qt::Key_Z);
    EXPECT_EQ(gridColumn(0), (QStringList { "A-100", "B-200", "C-300" }));
    EXPECT_EQ(gridColumn(2), (QStringList { "$12.50", "$2.50", "" }));
    EXPECT_EQ(module->AllProducts().Count(), 3);
    EXPECT_EQ(catalogueBytes(), before) << "the catalogue as it was before the import";
    EXPECT_FALSE(action("mnuEditUndo")->isEnabled());

    keysInGrid(Qt::Key_Y);
    EXPECT_EQ(gridColumn(2), (QStringList { "$14.75", "$2.50", "$9.50", "$4.00" }));
    EXPECT_EQ(module->AllProducts().Count(), 4);
    EXPECT_EQ(catalogueBytes(), after);
}

TEST_F(ImportWindowTest, PasteSpecialIsOneStepThatCtrlZTakesBackAndCtrlYMakesAgain)
{
    const QByteArray before = catalogueBytes();
    fakes->clipboard.setText(QStringLiteral("Part Number\tProduct Name\tPrice\n"
                                            "B-200\tBolt\t3.75\n"
                                            "A-100\tAnchor bolt\t13.25\n"
                                            "D-400\tDowel\t0.85\n"));
    action("mnuEditPasteSpecial")->trigger();
    ASSERT_NE(updateWindow(), nullptr);
    click(updateWindow(), "CmdMatch");
    updateWindow()->findChild<QRadioButton *>("OptUpdate")->setChecked(true);
    click(updateWindow(), "CmdOK");
    applyPreview();
    EXPECT_EQ(gridColumn(0), (QStringList { "A-100", "B-200", "C-300", "D-400" }));
    EXPECT_EQ(gridColumn(1)[0], "Anchor bolt");
    EXPECT_EQ(gridColumn(2), (QStringList { "$13.25", "$3.75", "", "$0.85" }));
    const QByteArray after = catalogueBytes();
    EXPECT_EQ(window->history().count(), 1);

    keysInGrid(Qt::Key_Z);
    EXPECT_EQ(gridColumn(0), (QStringList { "A-100", "B-200", "C-300" }));
    EXPECT_EQ(gridColumn(1)[0], "Anchor");
    EXPECT_EQ(gridColumn(2), (QStringList { "$12.50", "$2.50", "" }));
    EXPECT_EQ(catalogueBytes(), before);

    keysInGrid(Qt::Key_Y);
    EXPECT_EQ(gridColumn(1)[0], "Anchor bolt");
    EXPECT_EQ(gridColumn(2), (QStringList { "$13.25", "$3.75", "", "$0.85" }));
    EXPECT_EQ(catalogueBytes(), after);
}
