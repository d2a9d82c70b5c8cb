// The import planned before anything changes: what "Update existing products" changes, adds,
// leaves and skips (with the reason), and what "Add new products" adds and skips.
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "exchange/columnmapping.h"
#include "exchange/importplan.h"
#include "exchange/importreport.h"
#include "exchange/sheetcells.h"
#include "exchange/textworkbook.h"
#include "exchange/workbook.h"
#include "exchange/workbookwire.h"
#include "exchangetestdata.h"
#include "importplantestdata.h"
#include "platform/appenvironment.h"
#include "support/fakeprompts.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

using namespace tarnwick;
namespace P = ProductRecord;
namespace CM = ColumnMapping;

namespace {

using tarnwick::test::EnUs;
using tarnwick::test::putValue;
using tarnwick::test::skippedRows;
using tarnwick::test::supplierLetters;

/// A supplier's sheet for the catalogue of SupplierSheet below.
const QByteArray SupplierRows = "Part Number\tProduct Name\tPrice\tNotes\tPrice 1\r\n"
                                "A-1\tAnchor\t12.5\tn\t\r\n" // the price changes
                                "B-2\t\t2.5\t\t1.50\r\n" // the same values
                                "\tNameless\t3\t\t\r\n" // no part number
                                "D-4\tDowel\t4\thello\t3.9\r\n" // new
                                "A-1\tAgain\t1\t\t\r\n" // twice in the sheet
                                "C-3\tClip\tcall us\t\t\r\n" // no number
                                "E-5\t\t\t\t\r\n" // new, nothing but the part number
                                "\t\t\t\t\r\n" // the end of the sheet
                                "F-6\tAfter the end\t1\t\t\r\n";

class ImportPlanTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        catalogue.put(1, P::PartNumber, "A-1");
        catalogue.put(1, P::ProductName, "Anchor");
        catalogue.put(1, P::Price, 10.0f);
        catalogue.put(1, P::Notes, "n");
        catalogue.put(2, P::PartNumber, "B-2");
        catalogue.put(2, P::ProductName, "Bolt");
        catalogue.put(2, P::Price, "$2.50"); // as the side box stores it
        catalogue.put(2, P::Price1, "1.5");
        catalogue.put(3, P::PartNumber, "C-3");
        catalogue.put(3, P::ProductName, "Clip");
        catalogue.put(3, P::Price, 3.0f);
        products.setCount(3);
    }

    ImportPlan plan(ImportAction action, const QString &letters = supplierLetters())
    {
        ImportPlanner planner(sheet, catalogue, letters, true, action, EnUs);
        planner.runAll();
        return planner.takePlan();
    }

    /// The plan of an update from a sheet of part numbers and names: rows after its header.
    ImportPlan namesUpdate(const QString &rows)
    {
        const TextWorkbook names(("Part Number\tProduct Name\r\n" + rows).toUtf8());
        ImportPlanner planner(
            names, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
        planner.runAll();
        return planner.takePlan();
    }

    TextWorkbook sheet { SupplierRows };
    Table catalogue { 3, P::FieldCount };
    test::FakePrompts prompts;
    AppEnvironment environment { QString(), QString() };
    Products products { catalogue, prompts, environment, EnUs };
};

/// The plan of adding the rows of a tab-separated sheet, mapped as supplierLetters(), to an
/// empty catalogue.
ImportPlan addingPlan(const QByteArray &rows)
{
    Table catalogue(0, P::FieldCount);
    const TextWorkbook sheet(rows);
    ImportPlanner planner(sheet, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
    planner.runAll();
    return planner.takePlan();
}

} // namespace

TEST_F(ImportPlanTest, UpdatingCountsEveryProductAndSkippedRowWithItsReason)
{
    const Table before = catalogue;
    const ImportPlan update = plan(ImportAction::UpdateExisting);
    EXPECT_EQ(update.action, ImportAction::UpdateExisting);
    EXPECT_EQ(update.addedCount(), 2);
    EXPECT_EQ(update.addedSheetRows, (std::vector<int> { 5, 8 }));
    ASSERT_EQ(update.changed.size(), 1U);
    EXPECT_EQ(update.unchanged, 1) << "B-2: the same price and price in other forms";
    EXPECT_EQ(skippedRows(update),
        (std::vector<std::pair<int, SkipReason>> { { 4, SkipReason::EmptyPartNumber },
            { 6, SkipReason::RepeatedPartNumber }, { 7, SkipReason::PriceNotANumber } }));
    EXPECT_EQ(update.skipped[1].partNumber, "A-1");
    EXPECT_EQ(update.skipped[2].partNumber, "C-3");
    EXPECT_EQ(update.skippedCount(SkipReason::EmptyPartNumber), 1);
    EXPECT_EQ(update.skippedCount(SkipReason::PartNumberExists), 0);
    EXPECT_FALSE(update.firstError.has_value());
    EXPECT_EQ(catalogue.generation(), before.generation()) << "planning changes nothing";
}

// A supplier's sheet often carries blanks after a part number, which no one sees: an update
// takes "A-1 " for the catalogue's A-1, and adds a new part number without them.
TEST_F(ImportPlanTest, AnUpdateReadsPartNumbersWithoutBlanksAtEitherEnd)
{
    const TextWorkbook rows(QByteArray("Part Number\tProduct Name\tPrice\tNotes\tPrice 1\r\n"
                                       "A-1 \t\t11\t\t\r\n"
                                       " B-2\xc2\xa0\t\t7\t\t\r\n"
                                       "   \tBlank\t5\t\t\r\n"
                                       "N-9  \tNew\t1\t\t\r\n"));
    ImportPlanner planner(
        rows, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    planner.runAll();
    const ImportPlan plan = planner.takePlan();
    ASSERT_EQ(plan.changed.size(), 2U);
    EXPECT_EQ(plan.changed[0].partNumber, QStringLiteral("A-1"));
    EXPECT_EQ(plan.changed[0].catalogueRow, 1);
    EXPECT_EQ(plan.changed[1].partNumber, QStringLiteral("B-2"));
    ASSERT_EQ(plan.addedCount(), 1);
    EXPECT_EQ(plan.addedProduct(0)[P::PartNumber - 1], Cell("N-9"));
    EXPECT_EQ(skippedRows(plan),
        (std::vector<std::pair<int, SkipReason>> { { 4, SkipReason::EmptyPartNumber } }));
    // Adding takes a part number as read, as the import always has.
    ImportPlanner adding(rows, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
    adding.runAll();
    EXPECT_EQ(adding.takePlan().addedProduct(0)[P::PartNumber - 1], Cell("A-1 "));
}

// The catalogue's own " SP-1 " (its export writes it so) is that product, not a new SP-1.
TEST_F(ImportPlanTest, AnUpdateFindsAPartNumberTheCatalogueKeepsWithBlanks)
{
    catalogue.put(3, P::PartNumber, " SP-1 ");
    const TextWorkbook rows(QByteArray("Part Number\tProduct Name\tPrice\tNotes\tPrice 1\r\n"
                                       " SP-1 \t\t9\t\t\r\n"
                                       " SP-1 \t\t10\t\t\r\n"
                                       "A-1 \t\t11\t\t\r\n"));
    ImportPlanner planner(
        rows, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    planner.runAll();
    const ImportPlan plan = planner.takePlan();
    EXPECT_EQ(plan.addedCount(), 0);
    ASSERT_EQ(plan.changed.size(), 2U);
    EXPECT_EQ(plan.changed[0].partNumber, QStringLiteral(" SP-1 "));
    EXPECT_EQ(plan.changed[0].catalogueRow, 3);
    EXPECT_EQ(plan.changed[1].partNumber, QStringLiteral("A-1"));
    EXPECT_EQ(skippedRows(plan),
        (std::vector<std::pair<int, SkipReason>> { { 3, SkipReason::RepeatedPartNumber } }));
}

TEST_F(ImportPlanTest, AChangeHoldsTheOldAndTheNewCellOfEachFieldThatDiffers)
{
    const ImportPlan update = plan(ImportAction::UpdateExisting);
    ASSERT_EQ(update.changed.size(), 1U);
    const ImportPlan::ChangedProduct &anchor = update.changed[0];
    EXPECT_EQ(anchor.partNumber, "A-1");
    EXPECT_EQ(anchor.sheetRow, 2);
    EXPECT_EQ(anchor.catalogueRow, 1);
    ASSERT_EQ(anchor.fields.size(), 1U) << "name and notes are the same; price 1 is empty";
    EXPECT_EQ(anchor.fields[0].field, P::Price);
    EXPECT_EQ(anchor.fields[0].before, Cell(10.0f));
    EXPECT_EQ(anchor.fields[0].after, Cell(12.5f));
}

TEST_F(ImportPlanTest, NewProductsFollowTheImportsRules)
{
    const ImportPlan update = plan(ImportAction::UpdateExisting);
    ASSERT_EQ(update.addedCount(), 2);
    const auto dowel = update.addedProduct(0);
    EXPECT_EQ(dowel[P::PartNumber - 1], Cell("D-4"));
    EXPECT_EQ(dowel[P::ProductName - 1], Cell("Dowel"));
    EXPECT_EQ(dowel[P::Price - 1], Cell(4.0f));
    EXPECT_EQ(dowel[P::Notes - 1], Cell("hello"));
    EXPECT_EQ(dowel[P::Price1 - 1], Cell("3.9"));
    EXPECT_EQ(dowel[P::Includes - 1], Cell(QString()));
    const auto bare = update.addedProduct(1);
    EXPECT_EQ(bare[P::PartNumber - 1], Cell("E-5"));
    EXPECT_EQ(bare[P::ProductName - 1], Cell("Missing Product Name"));
    EXPECT_TRUE(bare[P::Price - 1].isEmpty());
}

TEST_F(ImportPlanTest, AnUnmappedNameLeavesTheNamesAsTheyAre)
{
    catalogue.put(1, P::Price, 12.5f);
    const ImportPlan update = plan(ImportAction::UpdateExisting, supplierLetters(false));
    EXPECT_TRUE(update.changed.empty());
    EXPECT_EQ(update.unchanged, 2);
    ASSERT_EQ(update.addedCount(), 2);
    EXPECT_EQ(update.addedProduct(0)[P::ProductName - 1], Cell("Missing Product Name"));
}

TEST_F(ImportPlanTest, AnEmptyCellLeavesItsFieldAsItIs)
{
    catalogue.put(1, P::Price1, "7");
    const ImportPlan update = plan(ImportAction::UpdateExisting);
    ASSERT_EQ(update.changed.size(), 1U);
    for (const ImportPlan::FieldChange &change : update.changed[0].fields)
        EXPECT_NE(change.field, P::Price1);
}

TEST_F(ImportPlanTest, ANameIsCutTo75CharactersBeforeItIsCompared)
{
    const QString longName(80, QLatin1Char('N'));
    catalogue.put(3, P::ProductName, longName.left(75));
    const ImportPlan update = namesUpdate("C-3\t" + longName + "\r\nG-7\t" + longName + "\r\n");
    EXPECT_EQ(update.unchanged, 1);
    ASSERT_EQ(update.addedCount(), 1);
    EXPECT_EQ(update.addedProduct(0)[P::ProductName - 1], Cell(longName.left(75)));
}

// A name longer than 75 characters typed in the grid comes back unchanged from the program's
// own export, and a longer name in the sheet is taken whole: only an added product's name is
// cut.
TEST_F(ImportPlanTest, AnUpdateTakesALongNameWhole)
{
    const QString longName =
        QStringLiteral("Lavatory faucet 4 in centerset, brushed nickel finish, ceramic disc "
                       "cartridge, 1.2 gpm aerator");
    ASSERT_GT(longName.size(), 75);
    catalogue.put(1, P::ProductName, longName);
    catalogue.put(3, P::ProductName, "Clip");
    const ImportPlan update = namesUpdate("A-1\t" + longName + "\r\nC-3\t" + longName + "\r\n");
    EXPECT_EQ(update.unchanged, 1);
    ASSERT_EQ(update.changed.size(), 1U);
    ASSERT_EQ(update.changed[0].fields.size(), 1U);
    EXPECT_EQ(update.changed[0].fields[0].after, Cell(longName));

    // The sheet holds the name cut as adding cuts it (made from an earlier add): the longer
    // name typed since stays; a longer name that differs past the cut is taken.
    const QString otherEnd = longName.left(80) + QStringLiteral(" (new)");
    catalogue.put(3, P::ProductName, longName);
    const ImportPlan cut =
        namesUpdate("A-1\t" + longName.left(75) + "\r\nC-3\t" + otherEnd + "\r\n");
    EXPECT_EQ(cut.unchanged, 1);
    ASSERT_EQ(cut.changed.size(), 1U);
    EXPECT_EQ(cut.changed[0].partNumber, QStringLiteral("C-3"));
    EXPECT_EQ(cut.changed[0].fields[0].after, Cell(otherEnd));

    // Cut by an earlier version at the 75th unit, between a letter and its accent mark.
    const QString accented = QString(74, QLatin1Char('x')) + QStringLiteral("e\u0301 tail");
    catalogue.put(1, P::ProductName, accented.left(75));
    const ImportPlan earlier = namesUpdate("A-1\t" + accented + "\r\n");
    EXPECT_EQ(earlier.unchanged, 1);
    EXPECT_TRUE(earlier.changed.empty());
}

// Cut between characters as a reader sees them: a letter written with its accent as a mark of
// its own keeps the mark, and a family emoji stays whole or goes.
TEST(ImportPlanAdding, ANameIsNotCutBetweenALetterAndItsAccent)
{
    const QString accented = QStringLiteral("e\u0301");
    QString marks;
    for (int i = 0; i < 150; ++i)
        marks += accented;
    const QString family = QStringLiteral("\U0001F469\u200D\U0001F469\u200D\U0001F467");
    const QString families = QString(70, QLatin1Char('f')) + family;
    const ImportPlan add = addingPlan(
        ("Part Number\tProduct Name\r\nM-1\t" + marks + "\r\nM-2\t" + families + "\r\n").toUtf8());
    ASSERT_EQ(add.addedCount(), 2);
    QString kept;
    for (int i = 0; i < 37; ++i)
        kept += accented;
    EXPECT_EQ(add.addedProduct(0)[P::ProductName - 1].asText(), kept);
    EXPECT_EQ(add.addedProduct(1)[P::ProductName - 1].asText(), QString(70, QLatin1Char('f')));
}

// Three DELs end a field in the catalogue file: DEL characters from a sheet are left out, as
// typing leaves them out, so the product's fields stay in their places.
TEST(ImportPlanAdding, DelCharactersOfASheetAreLeftOut)
{
    const ImportPlan add = addingPlan(QByteArray("Part Number\tProduct Name\tPrice\tNotes\r\n"
                                                 "DEL-3\tna\x7fme\t3\tnote\x7f\x7f\x7fshift\r\n"));
    ASSERT_EQ(add.addedCount(), 1);
    EXPECT_EQ(add.addedProduct(0)[P::ProductName - 1], Cell("name"));
    EXPECT_EQ(add.addedProduct(0)[P::Notes - 1], Cell("noteshift"));
}

TEST(ImportPlanAdding, ANameIsCutByCharactersNotByBytes)
{
    // 75 and 76 characters of two UTF-8 bytes each.
    const QString whole(75, QChar(0x00E9));
    const QString over = whole + QChar(0x00E8);
    const ImportPlan add = addingPlan(
        ("Part Number\tProduct Name\r\nE-1\t" + whole + "\r\nE-2\t" + over + "\r\n").toUtf8());
    ASSERT_EQ(add.addedCount(), 2);
    EXPECT_EQ(add.addedProduct(0)[P::ProductName - 1].asText(), whole);
    EXPECT_EQ(add.addedProduct(1)[P::ProductName - 1].asText(), whole);
}

// A character of two UTF-16 units (an emoji) across the 75th place is not cut in half, which
// the catalogue file would hold as "?": the name ends before it.
TEST(ImportPlanAdding, ANameIsNotCutInsideACharacterOfTwoUnits)
{
    const QString emoji = QString::fromUcs4(U"\U0001F600");
    const QString across = QString(74, QLatin1Char('a')) + emoji + QString(10, QLatin1Char('b'));
    const QString ending = QString(73, QLatin1Char('a')) + emoji + QString(10, QLatin1Char('b'));
    const ImportPlan add = addingPlan(
        ("Part Number\tProduct Name\r\nS-1\t" + across + "\r\nS-2\t" + ending + "\r\n").toUtf8());
    ASSERT_EQ(add.addedCount(), 2);
    EXPECT_EQ(add.addedProduct(0)[P::ProductName - 1].asText(), QString(74, QLatin1Char('a')));
    EXPECT_EQ(
        add.addedProduct(1)[P::ProductName - 1].asText(), QString(73, QLatin1Char('a')) + emoji);
}

TEST_F(ImportPlanTest, AddingSkipsEveryKnownPartNumberAndEndsAtTheFirstEmptyOne)
{
    const ImportPlan add = plan(ImportAction::AddNew);
    EXPECT_EQ(add.action, ImportAction::AddNew);
    EXPECT_TRUE(add.changed.empty());
    EXPECT_EQ(add.unchanged, 0);
    // Row 4 has no part number: adding ends there.
    EXPECT_EQ(skippedRows(add),
        (std::vector<std::pair<int, SkipReason>> {
            { 2, SkipReason::PartNumberExists }, { 3, SkipReason::PartNumberExists } }));
    EXPECT_EQ(add.addedCount(), 0);
}

TEST(ImportPlanAdding, APartNumberTwiceInTheSheetIsAddedOnceAndTheRepeatCountsAsExisting)
{
    Table catalogue(0, P::FieldCount);
    const TextWorkbook sheet(QByteArray("Part Number\tProduct Name\tPrice\r\n"
                                        "X-1\tFirst\tn/a\r\nX-1\tSecond\t2\r\nX-2\tOther\t3\r\n"));
    ImportPlanner planner(sheet, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
    planner.runAll();
    const ImportPlan add = planner.takePlan();
    ASSERT_EQ(add.addedCount(), 2);
    EXPECT_EQ(add.addedProduct(0)[P::ProductName - 1], Cell("First"));
    EXPECT_TRUE(add.addedProduct(0)[P::Price - 1].isEmpty()) << "a price that is no number";
    EXPECT_EQ(add.skippedCount(SkipReason::PartNumberExists), 1);
    EXPECT_EQ(planner.currentRow(), 5);
}

TEST(ImportPlanAdding, APartNumberIsKnownWhateverEncodingTheCatalogueKeepsItIn)
{
    // Typed in the program (UTF-16), read from an older catalogue file (Windows-1252) and from
    // a newer one (UTF-8); the sheet is UTF-8 text.
    Table catalogue(3, P::FieldCount);
    catalogue.put(1, P::PartNumber, QStringLiteral("\u00C4-1"));
    auto *older = new CellTextBlock;
    older->bytes = QByteArrayLiteral("\xC9-2");
    catalogue.put(2, P::PartNumber, Cell::inBlock(older, 0, 3, TextEncoding::Windows1252));
    auto *newer = new CellTextBlock;
    newer->bytes = QByteArrayLiteral("\xC3\x98-3");
    catalogue.put(3, P::PartNumber, Cell::inBlock(newer, 0, 4, TextEncoding::Utf8));
    for (CellTextBlock *block : { older, newer }) {
        if (block->ref.fetch_sub(1) == 1)
            delete block;
    }
    const TextWorkbook sheet(QByteArray("Part Number\tProduct Name\tPrice\r\n"
                                        "\xC3\x84-1\ta\t1\r\n\xC3\x89-2\tb\t2\r\n"
                                        "\xC3\x98-3\tc\t3\r\nN-4\td\t4\r\n"
                                        "\xC3\x89-2\te\t5\r\nA-1\tf\t6\r\n"));
    ImportPlanner planner(sheet, catalogue, supplierLetters(), true, ImportAction::AddNew, EnUs);
    planner.runAll();
    const ImportPlan add = planner.takePlan();
    EXPECT_EQ(skippedRows(add),
        (std::vector<std::pair<int, SkipReason>> { { 2, SkipReason::PartNumberExists },
            { 3, SkipReason::PartNumberExists }, { 4, SkipReason::PartNumberExists },
            { 6, SkipReason::PartNumberExists } }));
    ASSERT_EQ(add.skipped.size(), 4U);
    EXPECT_EQ(add.skipped[1].partNumber, QStringLiteral("\u00C9-2"));
    ASSERT_EQ(add.addedCount(), 2);
    EXPECT_EQ(add.addedProduct(0)[P::PartNumber - 1], Cell("N-4"));
    EXPECT_EQ(add.addedProduct(1)[P::PartNumber - 1], Cell("A-1"));

    ImportPlanner update(
        sheet, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, EnUs);
    update.runAll();
    const ImportPlan changes = update.takePlan();
    ASSERT_EQ(changes.changed.size(), 3U) << "the three known products get a name and a price";
    EXPECT_EQ(changes.changed[0].catalogueRow, 1);
    EXPECT_EQ(changes.changed[1].catalogueRow, 2);
    EXPECT_EQ(changes.changed[2].catalogueRow, 3);
    EXPECT_EQ(changes.changed[2].partNumber, QStringLiteral("\u00D8-3"));
    EXPECT_EQ(changes.skippedCount(SkipReason::RepeatedPartNumber), 1);
}

TEST(ImportPlanAdding, AnUnmappedPartNumberPlansNothing)
{
    Table catalogue(0, P::FieldCount);
    const TextWorkbook sheet(SupplierRows);
    ImportPlanner planner(
        sheet, catalogue, "@@?????????????", true, ImportAction::UpdateExisting, EnUs);
    EXPECT_FALSE(planner.step());
    EXPECT_TRUE(planner.plan().changesNothing());
}
