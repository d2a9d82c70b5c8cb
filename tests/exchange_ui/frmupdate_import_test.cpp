// The import run from the "Update" window: OK adds the new rows and reports them, the window
// stays responsive and can be closed while a large sheet is imported, and failures are told.
#include "frmupdatefixture.h"

#include "catalogue/productrecord.h"
#include "exchange/importdriver.h"

#include <QCheckBox>
#include <QFile>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <set>

using namespace tarnwick;
using namespace tarnwick::test;
namespace P = ProductRecord;

namespace {

constexpr int LargeSheetRows = 20000;

QString partNumber(int row)
{
    return QStringLiteral("P-%1").arg(row, 5, 10, QLatin1Char('0'));
}

class FrmUpdateImportTest : public FrmUpdateTest
{
protected:
    /// A tab-separated sheet of LargeSheetRows products below its header row.
    QString writeLargeSheet()
    {
        QByteArray text = "Part Number\tProduct Name\r\n";
        for (int row = 2; row <= LargeSheetRows + 1; ++row)
            text += (partNumber(row) + QStringLiteral("\tProduct %1\r\n").arg(row)).toUtf8();
        folder.writeFile(QStringLiteral("large.txt"), text);
        return folder.filePath(QStringLiteral("large.txt"));
    }

    /// Starts the import of the large sheet, one row per pass of the event loop, and calls
    /// closeWindow from the event loop once more than 200 rows are done and the caption has
    /// shown both of its texts. Returns the captions seen.
    std::set<QString> importLargeSheetAndClose(const std::function<void()> &closeWindow)
    {
        open(writeLargeSheet());
        choose(0, 0);
        choose(1, 1);
        window->importDriver().setBatchTime(std::chrono::milliseconds(0));
        window->findChild<QTimer *>(QStringLiteral("Timer1"))->setInterval(1);
        std::set<QString> captions;
        QTimer watcher;
        QObject::connect(&watcher, &QTimer::timeout, [&] {
            captions.insert(window->windowTitle());
            if (window->importDriver().currentRow() > 200 && captions.size() >= 3) {
                watcher.stop();
                closeWindow();
            }
        });
        watcher.start(0);
        clickOk();
        EXPECT_TRUE(window->importDriver().isRunning());
        EXPECT_TRUE(waitUntilClosed());
        return captions;
    }

    /// Checks that the import stopped after a whole row and reported what it added.
    void expectStoppedAfterARow()
    {
        const int added = products.Count() - 1;
        EXPECT_GE(added, 199);
        EXPECT_LT(added, LargeSheetRows);
        EXPECT_EQ(catalogue.rowCount(), added + 1);
        EXPECT_EQ(window->importDriver().currentRow(), added + 2);
        EXPECT_GT(catalogue.find(P::PartNumber, partNumber(added + 1)), 0);
        EXPECT_EQ(catalogue.find(P::PartNumber, partNumber(added + 2)), 0);
        ASSERT_EQ(fakes.prompts.shown().size(), 1U);
        EXPECT_EQ(fakes.prompts.shown()[0].text,
            QStringLiteral("%1 changes have been made to the knowledge base.").arg(added));
        EXPECT_EQ(fakes.prompts.shown()[0].title, "Success!");
        EXPECT_EQ(catalogueChanges, 1);
        EXPECT_EQ(unloads, 1);
    }
};

} // namespace

TEST_F(FrmUpdateImportTest, OkAddsEveryNewRowAndReportsTheNumber)
{
    open(workbook("sample.xls"));
    mapSample();
    clickOk();
    ASSERT_TRUE(waitUntilClosed());
    ASSERT_EQ(fakes.prompts.shown().size(), 1U);
    // The repeated AB-100 and OLD-1 are already there.
    EXPECT_EQ(fakes.prompts.shown()[0].text,
        "3 changes have been made to the knowledge base. 2 rows were skipped because their part "
        "number already exists.");
    EXPECT_EQ(fakes.prompts.shown()[0].title, "Success!");
    EXPECT_EQ(fakes.prompts.shown()[0].style, MsgStyle::OkOnly);
    EXPECT_EQ(products.Count(), 4);
    ASSERT_EQ(catalogue.rowCount(), 4);
    EXPECT_EQ(catalogue.get(1, P::PartNumber).asText(), "AB-100");
    EXPECT_EQ(catalogue.get(1, P::ProductName).asText(), "Widget");
    EXPECT_EQ(catalogue.get(1, P::Price).asNumber(), 12.5);
    EXPECT_EQ(catalogue.get(1, P::Notes).asText(), "Red only");
    EXPECT_EQ(catalogue.get(1, P::Includes).asText(), "Cable");
    EXPECT_EQ(catalogue.get(1, P::PricePoint1).asText(), "10");
    EXPECT_EQ(catalogue.get(1, P::Price1).asText(), "11.5");
    EXPECT_EQ(catalogue.get(2, P::ProductName).asText(), "Missing Product Name");
    EXPECT_EQ(catalogue.get(4, P::PartNumber).asText(), "OLD-1");
    EXPECT_EQ(catalogue.get(4, P::ProductName).asText(), "Old name");
    EXPECT_EQ(catalogueChanges, 1);
    EXPECT_EQ(unloads, 1);
}

TEST_F(FrmUpdateImportTest, ASheetWithNothingNewSaysHowManyRowsWereSkipped)
{
    catalogue.redim(4, P::FieldCount);
    for (int row = 1; row <= 3; ++row)
        catalogue.put(row, P::PartNumber, QStringLiteral("AB-10%1").arg(row - 1));
    catalogue.put(4, P::PartNumber, "OLD-1");
    products.setCount(4);
    open(workbook("sample.ods"));
    mapSample();
    clickOk();
    ASSERT_TRUE(waitUntilClosed());
    ASSERT_EQ(fakes.prompts.shown().size(), 1U);
    EXPECT_EQ(fakes.prompts.shown()[0].text,
        "No products were added: 5 rows were skipped because their part number already exists.");
    EXPECT_EQ(fakes.prompts.shown()[0].title, "Input Excel Data");
    EXPECT_EQ(fakes.prompts.shown()[0].style, MsgStyle::OkOnly);
    EXPECT_EQ(catalogue.rowCount(), 4);
    EXPECT_EQ(catalogueChanges, 1);
}

TEST_F(FrmUpdateImportTest, WithoutChkIgnoreTheHeaderRowIsAProductToo)
{
    open(workbook("sample.xlsx"));
    mapSample();
    auto *ignore = window->findChild<QCheckBox *>("ChkIgnore");
    QTest::mouseClick(ignore, Qt::LeftButton, {}, QPoint(4, ignore->height() / 2));
    ASSERT_FALSE(ignore->isChecked());
    clickOk();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(fakes.prompts.texts(),
        QStringList { "4 changes have been made to the knowledge base. 2 rows were skipped "
                      "because their part number already exists." });
    EXPECT_GT(catalogue.find(P::PartNumber, "Part Number"), 0);
}

TEST_F(FrmUpdateImportTest, CancelDuringALargeImportStopsAfterTheRowInHand)
{
    const std::set<QString> captions = importLargeSheetAndClose([this] {
        QTest::mouseClick(window->findChild<QPushButton *>("CmdCancel"), Qt::LeftButton);
    });
    expectStoppedAfterARow();
    EXPECT_TRUE(captions.count("Please wait"));
    EXPECT_TRUE(std::any_of(captions.begin(), captions.end(),
        [](const QString &caption) { return caption.endsWith(" products analyzed"); }));
}

TEST_F(FrmUpdateImportTest, ClosingTheWindowDuringALargeImportStopsItToo)
{
    importLargeSheetAndClose([this] { window->close(); });
    expectStoppedAfterARow();
}

TEST_F(FrmUpdateImportTest, TheMappingCannotChangeWhileTheImportRuns)
{
    open(writeLargeSheet());
    choose(0, 0);
    choose(1, 1);
    window->importDriver().setBatchTime(std::chrono::milliseconds(0));
    clickOk();
    EXPECT_FALSE(list(0)->isEnabled());
    EXPECT_FALSE(window->findChild<QPushButton *>("CmdOK")->isEnabled());
    EXPECT_TRUE(window->findChild<QPushButton *>("CmdCancel")->isEnabled());
    EXPECT_TRUE(window->findChild<QTimer *>("Timer1")->isActive());
    window->close();
    EXPECT_EQ(products.Count(), 1) << "closed before the event loop handled a row";
    EXPECT_TRUE(fakes.prompts.shown().empty());
    EXPECT_FALSE(window->findChild<QTimer *>("Timer1")->isActive());
}

TEST_F(FrmUpdateImportTest, OkImportsTheCellsReadWhenTheWindowOpenedWithoutReadingAgain)
{
    QFile::copy(workbook("sample.xls"), folder.filePath("gone.xls"));
    open(folder.filePath("gone.xls"));
    mapSample();
    ASSERT_TRUE(QFile::remove(folder.filePath("gone.xls")));
    clickOk();
    ASSERT_TRUE(waitUntilClosed());
    // The same products as from the file itself (see OkAddsEveryNewRowAndReportsTheNumber).
    EXPECT_EQ(fakes.prompts.texts(),
        QStringList { "3 changes have been made to the knowledge base. 2 rows were skipped "
                      "because their part number already exists." });
    EXPECT_EQ(products.Count(), 4);
    EXPECT_EQ(catalogue.get(1, P::PartNumber).asText(), "AB-100");
    EXPECT_EQ(catalogue.get(1, P::Price).asNumber(), 12.5);
}
