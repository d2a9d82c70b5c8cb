// "Update existing products": OK plans the import and "Import Preview" shows it; nothing
// changes before its Apply, and its Cancel comes back to the mapping.
#include "frmupdatefixture.h"
#include "support/largefont.h"

#include "catalogue/productrecord.h"
#include "exchange/importdriver.h"
#include "exchange/importplanmodels.h"
#include "exchange/ui/frmimportpreview.h"

#include <QApplication>
#include <QCheckBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTest>
#include <QTimer>

using namespace tarnwick;
using namespace tarnwick::test;
namespace P = ProductRecord;

namespace {

/// The counts of sample.xls over the fixture's catalogue (OLD-1 "Old name"), updated.
const QStringList SampleCounts { "Products added: 2", "Products changed: 1",
    "Products unchanged: 0",
    "Rows skipped: 2 (part number twice in the sheet: 1; list price that is no number: 1)",
    "Rows not read: every row below row 7, which is empty in the mapped columns and ends the "
    "import." };

class FrmUpdatePreviewTest : public FrmUpdateTest
{
protected:
    void chooseUpdate() const
    {
        auto *update = window->findChild<QRadioButton *>(QStringLiteral("OptUpdate"));
        QTest::mouseClick(update, Qt::LeftButton, {}, QPoint(4, update->height() / 2));
        ASSERT_TRUE(update->isChecked());
    }

    /// Opens sample.xls, maps it, chooses "Update existing products" and clicks OK; waits for
    /// the preview.
    FrmImportPreview *previewSample()
    {
        open(workbook("sample.xls"));
        mapSample();
        chooseUpdate();
        clickOk();
        return waitForPreview();
    }

    FrmImportPreview *waitForPreview() const
    {
        if (!QTest::qWaitFor([this] { return window && window->previewWindow(); }, 20000))
            return nullptr;
        FrmImportPreview *preview = window->previewWindow();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(preview));
        return preview;
    }

    static QStringList counts(const FrmImportPreview *preview)
    {
        QStringList lines;
        for (const char *name : { "LblAdded", "LblChanged", "LblUnchanged", "LblSkipped" })
            lines << preview->findChild<QLabel *>(QString::fromLatin1(name))->text();
        // Shown only when new products came without a price, when cells could not be read and
        // when rows were left unread.
        for (const char *name : { "LblWithoutPrice", "LblUnreadCells", "LblNotRead" }) {
            if (const auto *line = preview->findChild<QLabel *>(QString::fromLatin1(name)))
                lines << line->text();
        }
        return lines;
    }

    static QStringList gridRow(const FrmImportPreview *preview, const char *grid, int row)
    {
        const QAbstractItemModel *model =
            preview->findChild<QTableView *>(QString::fromLatin1(grid))->model();
        QStringList cells;
        for (int column = 0; column < model->columnCount(); ++column)
            cells << model->index(row, column).data().toString();
        return cells;
    }

    void expectCatalogueAsBefore() const
    {
        EXPECT_EQ(catalogue.rowCount(), 1);
        EXPECT_EQ(products.Count(), 1);
        EXPECT_EQ(catalogue.get(1, P::ProductName), Cell("Old name"));
        EXPECT_TRUE(catalogue.get(1, P::Price).isEmpty());
    }
};

// A long name changed in its middle shows the change in both cells, wherever it lies.
TEST(FrmImportPreviewValues, ALongValueShowsWhereItDiffersFromTheOtherSide)
{
    const QFontMetrics metrics(QApplication::font());
    const QString before =
        QStringLiteral("Copper pipe type L, 3/4 inch, ten foot length, plumbing grade, hard drawn");
    const QString after =
        QStringLiteral("Copper pipe type L, 1 inch, ten foot length, plumbing grade, hard drawn");
    const int width = metrics.horizontalAdvance(QStringLiteral("Copper pipe type L, 3/4 i"));
    const QString oldShown = FrmImportPreview::shownAround(before, after, width, metrics);
    const QString newShown = FrmImportPreview::shownAround(after, before, width, metrics);
    EXPECT_TRUE(oldShown.startsWith(QStringLiteral("\u2026ipe type L, 3/4")))
        << oldShown.toStdString();
    EXPECT_TRUE(newShown.startsWith(QStringLiteral("\u2026ipe type L, 1 inch")))
        << newShown.toStdString();
    EXPECT_TRUE(oldShown.endsWith(QStringLiteral("hard drawn"))) << "the cell cuts the end";
    // A value that fits, or one that differs at once, is shown as it is.
    EXPECT_EQ(FrmImportPreview::shownAround(
                  QStringLiteral("Bolt"), QStringLiteral("Nut"), width, metrics),
        QStringLiteral("Bolt"));
    EXPECT_EQ(
        FrmImportPreview::shownAround(before, QStringLiteral("Brass"), width, metrics), before);
}

TEST(FrmImportPreviewSize, FitsTheScreenAndGrowsWithALargeOne)
{
    // A 1366 × 768 laptop at 150 %: the room is 910 × 485 (a taskbar, a title bar).
    EXPECT_EQ(FrmImportPreview::sizeFor(QSize(910, 485)), QSize(720, 485));
    EXPECT_EQ(FrmImportPreview::sizeFor(QSize(1024, 700)), QSize(720, 520));
    EXPECT_EQ(FrmImportPreview::sizeFor(QSize(2560, 1400)), QSize(1536, 840));
    EXPECT_EQ(FrmImportPreview::sizeFor(QSize(640, 450)), QSize(640, 450));
    // With a large font the least size grows, still within the room.
    EXPECT_EQ(FrmImportPreview::sizeFor(QSize(1280, 760), QSize(1131, 817)), QSize(1131, 760));
}

} // namespace

TEST_F(FrmUpdatePreviewTest, TheActionsOfferUpdatingExistingProducts)
{
    FrmUpdate &form = open(workbook("sample.xls"));
    auto *update = form.findChild<QRadioButton *>(QStringLiteral("OptUpdate"));
    ASSERT_NE(update, nullptr);
    EXPECT_EQ(update->text(), "&Update existing products");
    EXPECT_EQ(update->accessibleDescription(), "OptUpdate");
    EXPECT_FALSE(update->isChecked());
    const auto *frame = qobject_cast<QGroupBox *>(update->parentWidget());
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->title(), "Actions");
    EXPECT_EQ(frame, form.findChild<QWidget *>("OptAdd")->parentWidget());
    QTest::keyClick(&form, Qt::Key_U, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget(), update);
    auto *add = form.findChild<QRadioButton *>(QStringLiteral("OptAdd"));
    add->setFocus();
    QTest::keyClick(add, Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), update);
    EXPECT_TRUE(update->isChecked()) << "the arrow keys choose between the actions";
}

TEST_F(FrmUpdatePreviewTest, UpdatingAsksForThePartNumberOnly)
{
    open(workbook("sample.xls"));
    // The grey word a list shows while nothing is chosen is read with its name.
    EXPECT_EQ(list(0)->accessibleName(), "Part Number (Required)");
    EXPECT_EQ(list(1)->accessibleName(), "Product Name (Required)");
    chooseUpdate();
    EXPECT_EQ(list(1)->placeholderText(), "Skip Field");
    EXPECT_EQ(list(1)->accessibleName(), "Product Name (Skip Field)");
    choose(1, 0);
    EXPECT_EQ(list(1)->accessibleName(), "Product Name") << "read with its choice now";
    list(1)->setCurrentIndex(-1);
    EXPECT_EQ(list(1)->accessibleName(), "Product Name (Skip Field)");
    clickOk();
    EXPECT_EQ(fakes.prompts.texts(), QStringList { "Missing required fields" });
    choose(0, 0);
    clickOk();
    FrmImportPreview *preview = waitForPreview();
    ASSERT_NE(preview, nullptr);
    // Without a name column the names stay; the new products are "Missing Product Name".
    EXPECT_EQ(counts(preview)[1], "Products changed: 0");
    EXPECT_EQ(counts(preview)[2], "Products unchanged: 1");
    auto *add = window->findChild<QRadioButton *>(QStringLiteral("OptAdd"));
    EXPECT_FALSE(add->isEnabled()) << "the mapping is locked while the preview is open";
}

TEST_F(FrmUpdatePreviewTest, OkShowsEveryChangeAndTheCountsBeforeAnythingChanges)
{
    FrmImportPreview *preview = previewSample();
    ASSERT_NE(preview, nullptr);
    EXPECT_EQ(preview->objectName(), "FrmImportPreview");
    EXPECT_EQ(preview->windowTitle(), "Import Preview");
    EXPECT_EQ(preview->findChild<QTableView *>("GrdChanges")->accessibleName(), "Changes");
    EXPECT_EQ(preview->findChild<QTableView *>("GrdSkipped")->accessibleName(), "Skipped rows");
    // Not modal (the main window's close must reach it), but the mapping waits meanwhile.
    EXPECT_EQ(preview->windowModality(), Qt::NonModal);
    EXPECT_FALSE(window->findChild<QPushButton *>(QStringLiteral("CmdOK"))->isEnabled());
    EXPECT_FALSE(window->findChild<QWidget *>(QStringLiteral("OptUpdate"))->isEnabled());
    EXPECT_EQ(counts(preview), SampleCounts);
    expectCatalogueAsBefore();
    EXPECT_TRUE(fakes.prompts.shown().empty());
    EXPECT_EQ(window->windowTitle(), "Update");
    // Product by product in the order of the sheet, field by field, prices as currency.
    EXPECT_EQ(gridRow(preview, "GrdChanges", 0),
        (QStringList { "2", "AB-100", "Add", "Part Number", "", "AB-100" }));
    EXPECT_EQ(gridRow(preview, "GrdChanges", 2),
        (QStringList { "2", "AB-100", "Add", "Price", "", "$12.50" }));
    const QAbstractItemModel *changes = preview->findChild<QTableView *>("GrdChanges")->model();
    const int last = changes->rowCount() - 1;
    EXPECT_EQ(gridRow(preview, "GrdChanges", last - 1),
        (QStringList { "6", "OLD-1", "Change", "Product Name", "Old name", "Changed name" }));
    EXPECT_EQ(gridRow(preview, "GrdChanges", last),
        (QStringList { "6", "OLD-1", "Change", "Price", "", "$99.00" }));
    EXPECT_EQ(gridRow(preview, "GrdSkipped", 0),
        (QStringList { "3", "AB-101", "list price that is no number" }));
    EXPECT_EQ(gridRow(preview, "GrdSkipped", 1),
        (QStringList { "5", "AB-100", "part number twice in the sheet" }));
    for (const char *name : { "LblAdded", "LblChanged", "LblUnchanged", "LblSkipped", "GrdChanges",
             "GrdSkipped", "CmdApply", "CmdCancel" }) {
        auto *control = preview->findChild<QWidget *>(QString::fromLatin1(name));
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(control->accessibleDescription(), QString::fromLatin1(name));
    }
}

// A workbook written without its formulas worked out (openpyxl): the preview says how many
// cells it could not read, before anything changes.
TEST_F(FrmUpdatePreviewTest, ThePreviewCountsTheCellsThatCouldNotBeRead)
{
    open(workbook("uncomputed.xlsx"));
    choose(0, 0);
    choose(3, 3); // "Skip Field" first: column C, the list price
    chooseUpdate();
    clickOk();
    FrmImportPreview *preview = waitForPreview();
    ASSERT_NE(preview, nullptr);
    const auto *line = preview->findChild<QLabel *>(QStringLiteral("LblUnreadCells"));
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->text(),
        "Cells that could not be read (an error value, or a formula whose result the file does "
        "not hold), their fields left as they were: 3");
    EXPECT_EQ(line->accessibleDescription(), "LblUnreadCells");
}

TEST_F(FrmUpdatePreviewTest, TheOldAndNewValuesGetTheWidthOfTheChanges)
{
    FrmImportPreview *preview = previewSample();
    ASSERT_NE(preview, nullptr);
    const auto *changes = preview->findChild<QTableView *>("GrdChanges");
    const QHeaderView *header = changes->horizontalHeader();
    const int oldWidth = header->sectionSize(ImportChangesModel::OldColumn);
    const int newWidth = header->sectionSize(ImportChangesModel::NewColumn);
    EXPECT_LE(std::abs(oldWidth - newWidth), 1);
    for (const int narrow : { ImportChangesModel::RowColumn, ImportChangesModel::ActionColumn })
        EXPECT_GT(newWidth, 2 * header->sectionSize(narrow)) << narrow;
    // What the narrow columns hold shows whole.
    EXPECT_GE(header->sectionSize(ImportChangesModel::FieldColumn),
        changes->fontMetrics().horizontalAdvance(QStringLiteral("Product Name")));
    EXPECT_GE(header->sectionSize(ImportChangesModel::PartNumberColumn),
        changes->fontMetrics().horizontalAdvance(QStringLiteral("Part Number")));
}

// Old and new values are cut in their middle, so two long names that differ at the end both
// show it; every caption of the skipped rows is whole.
TEST_F(FrmUpdatePreviewTest, LongValuesShowTheirEndsAndCaptionsAreWhole)
{
    const LargeFont large(16);
    FrmImportPreview *preview = previewSample();
    ASSERT_NE(preview, nullptr);
    auto *changes = preview->findChild<QTableView *>(QStringLiteral("GrdChanges"));
    EXPECT_EQ(changes->textElideMode(), Qt::ElideMiddle);
    auto *skipped = preview->findChild<QTableView *>(QStringLiteral("GrdSkipped"));
    const QHeaderView *header = skipped->horizontalHeader();
    for (int column = 0; column + 1 < skipped->model()->columnCount(); ++column) {
        const QString caption = skipped->model()->headerData(column, Qt::Horizontal).toString();
        EXPECT_GE(header->sectionSize(column), header->fontMetrics().horizontalAdvance(caption))
            << caption.toStdString();
    }
}

TEST_F(FrmUpdatePreviewTest, F1InThePreviewOpensTheImportsHelpTopic)
{
    FrmImportPreview *preview = previewSample();
    ASSERT_NE(preview, nullptr);
    QTest::keyClick(preview, Qt::Key_F1);
    EXPECT_EQ(fakes.help.calls,
        QStringList { folder.filePath(QStringLiteral("Tarnwick Help.chm")) + "|15|1090" });
    EXPECT_TRUE(preview->isVisible());
}

TEST_F(FrmUpdatePreviewTest, ApplyChangesTheCatalogueAndTheMessageGivesTheSameCounts)
{
    FrmImportPreview *preview = previewSample();
    ASSERT_NE(preview, nullptr);
    auto *apply = preview->findChild<QPushButton *>(QStringLiteral("CmdApply"));
    EXPECT_EQ(apply->text(), "&Apply");
    EXPECT_TRUE(apply->isDefault());
    QTest::mouseClick(apply, Qt::LeftButton);
    ASSERT_TRUE(waitUntilClosed());
    ASSERT_EQ(fakes.prompts.shown().size(), 1U);
    EXPECT_EQ(fakes.prompts.shown()[0].text, SampleCounts.join('\n'));
    EXPECT_EQ(fakes.prompts.shown()[0].title, "Success!");
    EXPECT_EQ(products.Count(), 3);
    ASSERT_EQ(catalogue.rowCount(), 3);
    EXPECT_EQ(catalogue.get(1, P::PartNumber), Cell("AB-100"));
    EXPECT_EQ(catalogue.get(2, P::PartNumber), Cell("AB-102"));
    EXPECT_EQ(catalogue.get(3, P::PartNumber), Cell("OLD-1"));
    EXPECT_EQ(catalogue.get(3, P::ProductName), Cell("Changed name"));
    EXPECT_EQ(catalogue.get(3, P::Price), Cell(99.0f));
    EXPECT_EQ(catalogueChanges, 1);
    EXPECT_EQ(unloads, 1);
    ASSERT_EQ(history.count(), 1) << "the whole import is one step";
    EXPECT_EQ(history.undoText(), "Import (2 added, 1 changed)");
    history.undo();
    expectCatalogueAsBefore();
}

TEST_F(FrmUpdatePreviewTest, CancelChangesNothingAndComesBackToTheMapping)
{
    FrmImportPreview *preview = previewSample();
    ASSERT_NE(preview, nullptr);
    QTest::mouseClick(
        preview->findChild<QPushButton *>(QStringLiteral("CmdCancel")), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !window->previewWindow(); }));
    expectCatalogueAsBefore();
    EXPECT_TRUE(fakes.prompts.shown().empty());
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(list(0)->isEnabled());
    EXPECT_TRUE(window->findChild<QPushButton *>("CmdOK")->isEnabled());
    EXPECT_EQ(catalogueChanges, 0);

    // Escape in the preview is its Cancel; the Update window's Cancel then closes it.
    clickOk();
    preview = waitForPreview();
    ASSERT_NE(preview, nullptr);
    QTest::keyClick(preview, Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !window->previewWindow(); }));
    QTest::mouseClick(window->findChild<QPushButton *>("CmdCancel"), Qt::LeftButton);
    ASSERT_TRUE(waitUntilClosed());
    expectCatalogueAsBefore();
    EXPECT_EQ(unloads, 1);
    EXPECT_EQ(catalogueChanges, 0);
}

TEST_F(FrmUpdatePreviewTest, ClosingTheUpdateWindowUnderThePreviewChangesNothing)
{
    FrmImportPreview *preview = previewSample();
    ASSERT_NE(preview, nullptr);
    const QPointer<FrmImportPreview> alive(preview);
    window->close();
    EXPECT_TRUE(!alive || !alive->isVisible());
    expectCatalogueAsBefore();
    EXPECT_EQ(unloads, 1);
    EXPECT_TRUE(fakes.prompts.shown().empty());
}

TEST_F(FrmUpdatePreviewTest, CancelWhileALargeSheetIsPlannedChangesNothing)
{
    QByteArray text = "Part Number\tProduct Name\r\nOLD-1\tRenamed\r\n";
    for (int row = 3; row <= 20001; ++row)
        text += QStringLiteral("N-%1\tNew %1\r\n").arg(row).toUtf8();
    folder.writeFile(QStringLiteral("large.txt"), text);
    open(folder.filePath(QStringLiteral("large.txt")));
    choose(0, 0);
    choose(1, 1);
    chooseUpdate();
    window->importDriver().setBatchTime(std::chrono::milliseconds(0));
    window->findChild<QTimer *>(QStringLiteral("Timer1"))->setInterval(1);
    QStringList captions;
    QTimer watcher;
    QObject::connect(&watcher, &QTimer::timeout, [&] {
        captions << window->windowTitle();
        if (window->importDriver().currentRow() > 200 && captions.contains("Please wait")) {
            watcher.stop();
            QTest::mouseClick(window->findChild<QPushButton *>("CmdCancel"), Qt::LeftButton);
        }
    });
    watcher.start(0);
    clickOk();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_TRUE(std::any_of(captions.begin(), captions.end(),
        [](const QString &caption) { return caption.endsWith(" products analyzed"); }));
    EXPECT_EQ(catalogue.rowCount(), 1);
    EXPECT_EQ(catalogue.get(1, P::ProductName), Cell("Old name"));
    EXPECT_TRUE(fakes.prompts.shown().empty());
    EXPECT_EQ(catalogueChanges, 0);
    EXPECT_FALSE(window->importDriver().isRunning());
}

TEST_F(FrmUpdatePreviewTest, PastedRowsAreShownInThePreviewWhenAddingToo)
{
    open(workbook("sample.xls"));
    window->setPreviewAlways(true);
    mapSample();
    clickOk();
    FrmImportPreview *preview = waitForPreview();
    ASSERT_NE(preview, nullptr);
    EXPECT_EQ(counts(preview),
        (QStringList { "Products added: 3", "Products changed: 0", "Products unchanged: 0",
            "Rows skipped: 2 (part number already exists: 2)",
            "Products added without a list price, as their price is no number: 1",
            "Rows not read: every row below row 7, which is empty in the mapped columns and ends "
            "the import." }));
    expectCatalogueAsBefore();
    QTest::keyClick(preview, Qt::Key_Return);
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(products.Count(), 4);
    EXPECT_EQ(fakes.prompts.texts().last(),
        "Products added: 3\nProducts changed: 0\nProducts unchanged: 0\nRows skipped: 2 (part "
        "number already exists: 2)\nProducts added without a list price, as their price is no "
        "number: 1\nRows not read: every row below row 7, which is empty in the mapped columns "
        "and ends the import.");
}
