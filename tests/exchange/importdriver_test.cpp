// The import driven by the event loop: whole sheets, a stop between rows, rows that cannot be
// read and a workbook that cannot be opened again. What an import does reaches the catalogue
// through the owner's applier; here, as in the program, as one step of the history of changes.
#include "catalogue/module1.h"
#include "catalogue/productchanges.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "commands/catalogueedits.h"
#include "commands/edithistory.h"
#include "core/vberror.h"
#include "exchange/columnmapping.h"
#include "exchange/importdriver.h"
#include "exchange/workbook.h"
#include "exchangetestdata.h"
#include "platform/appenvironment.h"
#include "support/fakeprompts.h"
#include "support/testlocale.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

using tarnwick::test::EnUs;

using tarnwick::test::dataFile;

/// Part number in column A, product name in column B, nothing else.
QString partAndNameLetters()
{
    std::array<int, CM::ListCount> positions;
    positions.fill(0);
    positions[0] = 0;
    positions[1] = 1;
    return CM::columnLetters(positions);
}

/// A sheet of generated rows "P-<row>" / "Name <row>" up to lastRow; reading a cell of one
/// of the failing rows raises a run-time error.
class GeneratedWorkbook : public IWorkbook
{
public:
    GeneratedWorkbook(int lastRow, std::vector<int> failingRows)
        : m_lastRow(lastRow), m_failing(std::move(failingRows))
    {
    }
    QString cellText(int column, int row) const override
    {
        if (std::find(m_failing.begin(), m_failing.end(), row) != m_failing.end())
            throw VbError(ErrorNumber::TypeMismatch);
        if (row > m_lastRow)
            return QString();
        return column == 0 ? QStringLiteral("P-%1").arg(row) : QStringLiteral("Name %1").arg(row);
    }
    int rowCountHint() const override { return m_lastRow; }

private:
    int m_lastRow;
    std::vector<int> m_failing;
};

class ImportDriverTest : public ::testing::Test
{
protected:
    test::FakePrompts prompts;
    AppEnvironment environment { QString(), QString() };
    Module1 module { prompts, environment, EnUs };
    Table &catalogue = module.Catalogue();
    Products &products = module.AllProducts();
    EditHistory history { module };
    /// What the driver handed over, in order.
    std::vector<ProductChanges> handedOver;
    ImportDriver driver { catalogue, EnUs, [this](ProductChanges changes) {
                             handedOver.push_back(changes);
                             CatalogueEdits::import(history, {}, std::move(changes));
                         } };
    QSignalSpy failed { &driver, &ImportDriver::rowsFailed };
    QSignalSpy finished { &driver, &ImportDriver::finished };

    void SetUp() override
    {
        catalogue.redim(1, P::FieldCount);
        catalogue.put(1, P::PartNumber, "Z-1");
        catalogue.put(1, P::ProductName, "Existing");
        products.setCount(1);
    }

    bool waitForTheEnd()
    {
        return QTest::qWaitFor([this] { return !driver.isRunning(); }, 10000);
    }
};

} // namespace

TEST_F(ImportDriverTest, RunsTheSheetThroughTheEventLoopThenCountsAndSorts)
{
    driver.start(openWorkbook(dataFile("sample.xls")).workbook, partAndNameLetters(), true);
    EXPECT_TRUE(driver.isRunning());
    EXPECT_EQ(catalogue.rowCount(), 1) << "no row is handled before the event loop runs";
    ASSERT_TRUE(waitForTheEnd());
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished.first().first().toInt(), 4) << "AB-100 to AB-102 and OLD-1";
    EXPECT_EQ(failed.size(), 0);
    EXPECT_EQ(products.Count(), 5);
    EXPECT_EQ(catalogue.get(1, P::PartNumber).asText(), "AB-100");
    EXPECT_EQ(catalogue.get(5, P::PartNumber).asText(), "Z-1");
    EXPECT_EQ(driver.currentRow(), 7) << "the row of the first empty part number";
    ASSERT_EQ(history.count(), 1) << "one step for the whole import";
    EXPECT_EQ(history.undoText(), "Import (4 added)");
    history.undo();
    EXPECT_EQ(products.Count(), 1);
    EXPECT_EQ(catalogue.rowCount(), 1);
    EXPECT_EQ(catalogue.get(1, P::PartNumber).asText(), "Z-1");
}

TEST_F(ImportDriverTest, StopKeepsTheRowsHandledSoFar)
{
    driver.start(std::make_unique<GeneratedWorkbook>(100000, std::vector<int> {}),
        partAndNameLetters(), true);
    driver.runBatch(std::chrono::milliseconds(0)); // exactly one row
    EXPECT_EQ(driver.currentRow(), 3);
    driver.stop();
    EXPECT_FALSE(driver.isRunning());
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished.first().first().toInt(), 1);
    EXPECT_EQ(products.Count(), 2);
    EXPECT_EQ(catalogue.rowCount(), 2);
    EXPECT_EQ(catalogue.get(1, P::PartNumber).asText(), "P-2");
    EXPECT_EQ(driver.currentRow(), 3);
}

TEST_F(ImportDriverTest, RowsThatCannotBeReadAreReportedOnceAndTheRestIsImported)
{
    driver.start(std::make_unique<GeneratedWorkbook>(10, std::vector<int> { 4, 7 }),
        partAndNameLetters(), true);
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(failed.size(), 1);
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished.first().first().toInt(), 7) << "rows 2 to 10 except 4 and 7";
    EXPECT_GT(catalogue.find(P::PartNumber, "P-10"), 0);
    EXPECT_EQ(catalogue.find(P::PartNumber, "P-4"), 0);
    EXPECT_EQ(catalogue.find(P::PartNumber, "P-7"), 0);
}

TEST_F(ImportDriverTest, ASheetThatNeverReadsEndsTheImport)
{
    std::vector<int> everyRow;
    for (int row = 1; row <= 1000; ++row)
        everyRow.push_back(row);
    driver.start(std::make_unique<GeneratedWorkbook>(1000, everyRow), partAndNameLetters(), true);
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(failed.size(), 1);
    EXPECT_EQ(finished.first().first().toInt(), 0);
    EXPECT_EQ(driver.currentRow(), 2 + ImportPlanner::MaxUnreadableRows);
    EXPECT_EQ(history.count(), 0) << "nothing to add in a catalogue in part-number order";
    EXPECT_EQ(driver.unreadFrom(), 2 + ImportPlanner::MaxUnreadableRows)
        << "the rows below are left unread, and the result says from where";
}

TEST_F(ImportDriverTest, AnImportThatReadsItsLastRowLeavesNothingUnread)
{
    driver.start(std::make_unique<GeneratedWorkbook>(12, std::vector<int> { 4 }),
        partAndNameLetters(), true);
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(driver.unreadFrom(), 0);
}

TEST(ImportDriver, TheOwnersApplierTakesEveryProductFoundAtOnceAndTheCatalogueWaits)
{
    Table catalogue(1, P::FieldCount);
    catalogue.put(1, P::PartNumber, "Z-1");
    std::vector<ProductChanges> applied;
    ImportDriver driver(catalogue, EnUs, [&](ProductChanges changes) {
        EXPECT_EQ(catalogue.rowCount(), 1) << "nothing was added while the import ran";
        applied.push_back(std::move(changes));
    });
    QSignalSpy finished(&driver, &ImportDriver::finished);
    driver.start(
        std::make_unique<GeneratedWorkbook>(30, std::vector<int> {}), partAndNameLetters(), true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !driver.isRunning(); }, 10000));
    ASSERT_EQ(applied.size(), 1u);
    const Table &added = applied[0].added;
    ASSERT_EQ(added.rowCount(), 29) << "rows 2 to 30";
    EXPECT_EQ(added.fieldCount(), P::FieldCount);
    EXPECT_EQ(added.get(1, P::PartNumber).asText(), "P-2");
    EXPECT_EQ(added.get(29, P::ProductName).asText(), "Name 30");
    EXPECT_TRUE(applied[0].updated.empty());
    EXPECT_EQ(catalogue.rowCount(), 1) << "the applier puts them in, not the driver";
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished.first().first().toInt(), 29);
}

TEST_F(ImportDriverTest, AStoppedImportAppliesWhatItFoundSoFar)
{
    driver.start(std::make_unique<GeneratedWorkbook>(100000, std::vector<int> {}),
        partAndNameLetters(), true);
    driver.runBatch(std::chrono::milliseconds(0));
    driver.runBatch(std::chrono::milliseconds(0));
    driver.stop();
    ASSERT_EQ(handedOver.size(), 1U);
    EXPECT_EQ(handedOver[0].added.rowCount(), 2);
    EXPECT_EQ(history.undoText(), "Import (2 added)");
}

TEST_F(ImportDriverTest, NoWorkbookChangesNothing)
{
    driver.start(openWorkbook(dataFile("no-such-file.xls")).workbook, partAndNameLetters(), true);
    EXPECT_FALSE(driver.isRunning());
    EXPECT_EQ(failed.size(), 1);
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished.first().first().toInt(), 0);
    EXPECT_EQ(catalogue.rowCount(), 1);
    EXPECT_EQ(products.Count(), 1);
    EXPECT_TRUE(handedOver.empty());
}

TEST_F(ImportDriverTest, AddingCountsTheRowsWhosePartNumberExists)
{
    catalogue.put(1, P::PartNumber, "OLD-1");
    driver.start(openWorkbook(dataFile("sample.ods")).workbook, partAndNameLetters(), true);
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(finished.first().first().toInt(), 3);
    EXPECT_EQ(driver.skippedExisting(), 2) << "the second AB-100 and OLD-1";
    ASSERT_EQ(handedOver.size(), 1U);
    EXPECT_EQ(handedOver[0].added.rowCount(), 3);
    EXPECT_TRUE(handedOver[0].updated.empty()) << "adding never changes a product";
    EXPECT_EQ(products.Count(), 4);
}

TEST_F(ImportDriverTest, APlanForThePreviewLeavesTheCatalogueAsItIs)
{
    QSignalSpy planned(&driver, &ImportDriver::planned);
    catalogue.put(1, P::PartNumber, "OLD-1");
    const quint64 generation = catalogue.generation();
    driver.startPlan(openWorkbook(dataFile("sample.xlsx")).workbook, partAndNameLetters(), true,
        ImportAction::UpdateExisting);
    EXPECT_TRUE(driver.isRunning());
    ASSERT_TRUE(waitForTheEnd());
    ASSERT_EQ(planned.size(), 1);
    EXPECT_EQ(finished.size(), 0);
    EXPECT_EQ(catalogue.generation(), generation);
    EXPECT_EQ(products.Count(), 1);
    const ImportPlan plan = driver.takePlan();
    EXPECT_EQ(plan.addedCount(), 3);
    ASSERT_EQ(plan.changed.size(), 1U);
    EXPECT_EQ(plan.changed[0].partNumber, "OLD-1");
    EXPECT_EQ(plan.skippedCount(SkipReason::RepeatedPartNumber), 1);

    EXPECT_TRUE(handedOver.empty()) << "nothing is applied before the preview's Apply";

    driver.apply(plan);
    EXPECT_EQ(products.Count(), 4);
    EXPECT_EQ(catalogue.get(catalogue.find(P::PartNumber, "OLD-1"), P::ProductName).asText(),
        "Changed name");
    ASSERT_EQ(handedOver.size(), 1U);
    EXPECT_EQ(handedOver[0].added.rowCount(), 3);
    ASSERT_EQ(handedOver[0].updated.size(), 1U);
    EXPECT_EQ(handedOver[0].updated[0].row, 1);
    EXPECT_EQ(handedOver[0].updated[0].field, P::ProductName);
    EXPECT_EQ(history.undoText(), "Import (3 added, 1 changed)");
    history.undo();
    EXPECT_EQ(products.Count(), 1);
    EXPECT_EQ(catalogue.get(1, P::ProductName).asText(), "Existing");
}

TEST_F(ImportDriverTest, StoppingAPlanDropsItAndChangesNothing)
{
    QSignalSpy planned(&driver, &ImportDriver::planned);
    driver.startPlan(std::make_unique<GeneratedWorkbook>(100000, std::vector<int> {}),
        partAndNameLetters(), true, ImportAction::UpdateExisting);
    driver.runBatch(std::chrono::milliseconds(0));
    EXPECT_EQ(driver.currentRow(), 3);
    driver.stop();
    EXPECT_FALSE(driver.isRunning());
    EXPECT_EQ(planned.size(), 0);
    EXPECT_EQ(finished.size(), 0);
    EXPECT_EQ(catalogue.rowCount(), 1);
    EXPECT_EQ(products.Count(), 1);
    EXPECT_TRUE(handedOver.empty());
}

TEST(ColumnListing, ListsTheHeaderRowOfAWorkbookFile)
{
    const CM::ColumnListing listing = CM::listColumns(openWorkbook(dataFile("sample.ods")));
    EXPECT_TRUE(listing.opened);
    EXPECT_EQ(listing.entries.size(), 7);
    EXPECT_EQ(listing.entries.first(), "Col 0-  Part Number");
    EXPECT_EQ(listing.preselection[0], -1);
}

TEST(ColumnListing, AFileThatIsNoWorkbookGivesItsErrorNumber)
{
    const CM::ColumnListing listing = CM::listColumns(openWorkbook(dataFile("notaworkbook.xls")));
    EXPECT_FALSE(listing.opened);
    EXPECT_NE(listing.errorNumber, 0);
    EXPECT_TRUE(listing.entries.isEmpty());
}

TEST(ColumnListing, BothRequiredListsMustBeMapped)
{
    std::array<int, CM::ListCount> positions;
    positions.fill(0);
    EXPECT_TRUE(CM::requiredFieldsMapped(positions));
    positions[1] = -1;
    EXPECT_FALSE(CM::requiredFieldsMapped(positions));
    positions[1] = 0;
    positions[0] = -1;
    EXPECT_FALSE(CM::requiredFieldsMapped(positions));
}
