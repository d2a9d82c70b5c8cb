// Importing through the real main window: Edit → "Paste Special..." with rows copied from a
// spreadsheet, "Update existing products" from a workbook, and where the open dialog starts.
#include "shellfixture.h"

#include "exchange/ui/frmimportpreview.h"
#include "exchange/ui/frmupdate.h"
#include "shell/exchangecontroller.h"
#include "shell/mainwindowactions.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QToolBar>

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

QString workbook(const char *name)
{
    return QDir(QStringLiteral(TARNWICK_WORKBOOKS)).filePath(QString::fromLatin1(name));
}

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
    fakes->clipboard.setText(CopiedRows);
    action("mnuEditPasteSpecial")->trigger();
    ASSERT_NE(updateWindow(), nullptr);
    select("CmbField(0)", 0);
    select("CmbField(1)", 1);
    click(updateWindow(), "CmdOK");
    FrmImportPreview *preview = waitForPreview();
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
        "number twice in the sheet: 1; list price that is no number: 1)");
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
