// The questions of the exchange commands, the export as one command and the choice of the
// workbook to import.
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "exchange/exchangecommands.h"
#include "exchange/handheldexport.h"
#include "exchange/spreadsheetexport.h"
#include "support/diskfaults.h"
#include "support/fakeservices.h"
#include "support/tempappfolder.h"
#include "support/testlocale.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace EC = ExchangeCommands;

namespace {

using tarnwick::test::EnUs;

class ExchangeCommandsTest : public ::testing::Test
{
protected:
    test::TempAppFolder folder;
    test::FakeServices fakes { folder.environment() };

    Table oneProduct() const
    {
        Table catalogue(1, P::FieldCount);
        catalogue.put(1, P::PartNumber, "AB-100");
        catalogue.put(1, P::ProductName, "Widget");
        return catalogue;
    }
};

} // namespace

TEST_F(ExchangeCommandsTest, TheQuestionsAndTheirAnswers)
{
    struct Case
    {
        bool (*ask)(IPrompts &);
        const char *text;
        int style;
        const char *title;
    };
    const Case cases[] = {
        { EC::askExportOnClose, "Do you want to save the current products to an Excel file?", 324,
            "Export to File" },
        { EC::askExport, "Do you want to export the products to an Excel readable file?", 324,
            "Export to File" },
        { EC::askOpenWorkbook, "Do you want to get products from an Excel Spreadsheet?", 36,
            "Input Excel Data" },
        { EC::askModifyWithWorkbook,
            "Do you want to modify the products with an Excel spreadsheet?", 4,
            "Input Excel Data" },
    };
    for (const Case &c : cases) {
        fakes.prompts.clear();
        fakes.prompts.answerMessage(MsgResult::Yes);
        EXPECT_TRUE(c.ask(fakes.prompts)) << c.text;
        fakes.prompts.answerMessage(MsgResult::No);
        EXPECT_FALSE(c.ask(fakes.prompts)) << c.text;
        fakes.prompts.answerMessage(MsgResult::Cancel);
        EXPECT_FALSE(c.ask(fakes.prompts)) << c.text;
        ASSERT_EQ(fakes.prompts.shown().size(), 3U);
        EXPECT_EQ(fakes.prompts.shown()[0].text, QString::fromUtf8(c.text));
        EXPECT_EQ(fakes.prompts.shown()[0].style, c.style) << c.text;
        EXPECT_EQ(fakes.prompts.shown()[0].title, QString::fromUtf8(c.title));
    }
}

TEST_F(ExchangeCommandsTest, ExportStoresTheEditsAfterTheChoiceAndBeforeWriting)
{
    Table catalogue = oneProduct();
    fakes.fileDialogs.answer(FileDialogResult { folder.filePath("out.xls"), 3 });
    bool stored = false;
    EXPECT_TRUE(EC::Export(fakes.fileDialogs, fakes.prompts, catalogue, EnUs, [&] {
        EXPECT_EQ(fakes.fileDialogs.requests().size(), 1U);
        EXPECT_FALSE(folder.exists("out.xls"));
        catalogue.put(1, P::Notes, "typed before the export");
        stored = true;
    }));
    EXPECT_TRUE(stored);
    EXPECT_EQ(folder.readFile("out.xls"), SpreadsheetExport::exportBytes(catalogue, EnUs));
    EXPECT_TRUE(folder.readFile("out.xls").contains("typed before the export"));
    EXPECT_TRUE(fakes.prompts.shown().empty());
}

TEST_F(ExchangeCommandsTest, CancelledExportWritesNothingAndStoresNothing)
{
    fakes.fileDialogs.answer(std::nullopt);
    bool stored = false;
    EXPECT_FALSE(
        EC::Export(fakes.fileDialogs, fakes.prompts, oneProduct(), EnUs, [&] { stored = true; }));
    EXPECT_FALSE(stored);
    EXPECT_TRUE(fakes.prompts.shown().empty());
}

TEST_F(ExchangeCommandsTest, AFileThatCannotBeWrittenIsReported)
{
    const QString path = folder.filePath("missing/out.xls");
    fakes.fileDialogs.answer(FileDialogResult { path, 3 });
    EXPECT_FALSE(EC::Export(fakes.fileDialogs, fakes.prompts, oneProduct(), EnUs, {}));
    ASSERT_EQ(fakes.prompts.shown().size(), 1U);
    EXPECT_TRUE(fakes.prompts.shown()[0].text.startsWith(
        QStringLiteral("The products could not be written to \"%1\": ").arg(path)));
    EXPECT_TRUE(fakes.prompts.shown()[0].text.endsWith(QLatin1Char('.')));
    EXPECT_EQ(fakes.prompts.shown()[0].title, "Export to File");
    EXPECT_EQ(fakes.prompts.shown()[0].style, MsgStyle::OkOnly + MsgStyle::Exclamation);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(ExchangeCommandsTest, AnExportThatFailsPartWayIsReportedAndTheReplacedFileKept)
{
    Table catalogue(1000, P::FieldCount);
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        catalogue.put(row, P::PartNumber, QStringLiteral("PN-%1").arg(row));
        catalogue.put(row, P::ProductName, QStringLiteral("Product number %1").arg(row));
    }
    const QString path = folder.filePath("list.xls");
    folder.writeFile("list.xls", "the previous export");
    fakes.fileDialogs.answer(FileDialogResult { path, 3 });
    fakes.prompts.answerMessage(MsgResult::Yes); // "Overwrite existing file?"
    bool exported = true;
    {
        test::FileSizeLimit fullDisk(16384);
        ASSERT_TRUE(fullDisk.active());
        exported = EC::Export(fakes.fileDialogs, fakes.prompts, catalogue, EnUs, {});
    }
    EXPECT_FALSE(exported);
    ASSERT_EQ(fakes.prompts.shown().size(), 2U);
    EXPECT_EQ(fakes.prompts.shown()[0].text, "Overwrite existing file?");
    ASSERT_EQ(fakes.fileDialogs.requests().size(), 1U);
    EXPECT_FALSE(fakes.fileDialogs.requests()[0].confirmOverwrite)
        << "the dialog does not ask a second time";
    EXPECT_EQ(fakes.prompts.shown()[1].text,
        QStringLiteral("The products could not be written to \"%1\": the file would be larger "
                       "than the system allows.")
            .arg(path));
    EXPECT_EQ(fakes.prompts.shown()[1].title, "Export to File");
    EXPECT_EQ(fakes.prompts.shown()[1].style, MsgStyle::OkOnly + MsgStyle::Exclamation);
    EXPECT_EQ(folder.readFile("list.xls"), "the previous export");
    EXPECT_EQ(folder.fileNames(), QStringList { "list.xls" });
}

TEST_F(ExchangeCommandsTest, TheOpenDialogOffersEveryWorkbookFormatFromTheApplicationFolder)
{
    const FileDialogRequest request = EC::importFileRequest(folder.path(), QString());
    EXPECT_EQ(request.filter,
        "All Files (*.*)|*.*|Text files (*.txt)|*.txt|Excel Files (*.xls)|*.xls"
        "|Excel Workbooks (*.xlsx)|*.xlsx|OpenDocument Spreadsheets (*.ods)|*.ods"
        "|All Spreadsheets|*.xls;*.xlsx;*.ods;*.txt");
    EXPECT_EQ(request.filterIndex, 6);
    EXPECT_EQ(request.initialFolder, folder.path());
    EXPECT_TRUE(request.fileName.isEmpty());
    EXPECT_EQ(EC::importFileRequest(folder.path(), "/data/last.xls").fileName, "/data/last.xls");
}

TEST_F(ExchangeCommandsTest, GetfileGivesTheChosenPathOrNothing)
{
    fakes.fileDialogs.answer(FileDialogResult { folder.filePath("in.xlsx"), 4 });
    EXPECT_EQ(EC::Getfile(fakes.fileDialogs, folder.path(), QString()), folder.filePath("in.xlsx"));
    fakes.fileDialogs.answer(std::nullopt);
    EXPECT_EQ(EC::Getfile(fakes.fileDialogs, folder.path(), QString()), QString());
    fakes.fileDialogs.answer(FileDialogResult { folder.filePath("*.xls"), 3 });
    EXPECT_EQ(EC::Getfile(fakes.fileDialogs, folder.path(), QString()), QString());
    EXPECT_EQ(fakes.fileDialogs.requests().size(), 3U);
}

TEST(HandheldGridSelection, TheCurrentRowAloneIsNoSelection)
{
    EXPECT_TRUE(HandheldExport::gridSelection({}, 3).empty());
    EXPECT_TRUE(HandheldExport::gridSelection({ 3 }, 3).empty());
    EXPECT_EQ(HandheldExport::gridSelection({ 2 }, 3), std::vector<int>({ 2 }));
    EXPECT_EQ(HandheldExport::gridSelection({ 3, 1 }, 3), std::vector<int>({ 3, 1 }));
}
