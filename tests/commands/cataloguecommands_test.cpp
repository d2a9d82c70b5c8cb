// Every kind of step of the catalogue: done, undone to exactly the state before it, redone to
// exactly the state after it, named after what it did, and announced to the windows with the
// place the grid goes to.
#include "historyfixture.h"

#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "commands/cataloguecommands.h"
#include "commands/catalogueedits.h"
#include "products/pricechange.h"
#include "products/productrow.h"

using namespace tarnwick;
using namespace tarnwick::test;

namespace {

namespace P = ProductRecord;

class CatalogueCommandsTest : public HistoryTest
{
protected:
    void SetUp() override
    {
        loadProducts({ { "A-100", "Anchor", "1.25", "Zinc plated", "Screws" },
            { "B-200", "Bolt", "2.5" }, { "C-300", "Clamp", "", "", "Pads" } });
        start = fileBytes();
    }

    /// Undoes the newest step and checks the file is back to before; redoes it and checks the
    /// file is as after.
    void expectUndoAndRedo(const QByteArray &before)
    {
        const QByteArray after = fileBytes();
        ASSERT_TRUE(history.canUndo());
        history.undo();
        EXPECT_EQ(fileBytes(), before);
        history.redo();
        EXPECT_EQ(fileBytes(), after);
    }

    QByteArray start;
};

TEST_F(CatalogueCommandsTest, ACellTypedInTheGridIsOneStepHoldingTheOldAndNewCell)
{
    EXPECT_TRUE(CatalogueEdits::setCell(history, { 2, 1 }, 2, P::ProductName, Cell("Bolt, M6")));
    EXPECT_EQ(catalogue().get(2, P::ProductName), Cell("Bolt, M6"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Edit Product Name B-200"));
    ASSERT_EQ(productChanges.size(), 1u);
    EXPECT_FALSE(productChanges[0].replayed);
    EXPECT_FALSE(productChanges[0].rowsChanged);

    history.undo();
    EXPECT_EQ(catalogue().get(2, P::ProductName), Cell("Bolt"));
    EXPECT_EQ(fileBytes(), start);
    ASSERT_EQ(productChanges.size(), 2u);
    EXPECT_TRUE(productChanges[1].replayed);
    EXPECT_EQ(productChanges[1].view.row, 2);
    EXPECT_EQ(productChanges[1].view.column, 1);
    EXPECT_EQ(history.redoText(), QStringLiteral("Edit Product Name B-200"));
    history.redo();
    EXPECT_EQ(catalogue().get(2, P::ProductName), Cell("Bolt, M6"));
}

TEST_F(CatalogueCommandsTest, APartNumberTypedNamesTheStepAfterTheNewNumber)
{
    CatalogueEdits::setCell(history, { 1, 0 }, 1, P::PartNumber, Cell("A-101"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Edit Part Number A-101"));
    expectUndoAndRedo(start);
}

TEST_F(CatalogueCommandsTest, TypingWhatTheCellHoldsMakesNoStep)
{
    EXPECT_TRUE(CatalogueEdits::setCell(history, { 1, 1 }, 1, P::ProductName, Cell("Anchor")));
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(CatalogueEdits::setCell(history, { 9, 1 }, 9, P::ProductName, Cell("x")))
        << "no such row";
    EXPECT_EQ(history.count(), 0);
}

TEST_F(CatalogueCommandsTest, ASideBoxIsStoredAsTheWriteBackStoresIt)
{
    const SideBoxTexts boxes { QStringLiteral("3"), QStringLiteral("Washer"),
        QStringLiteral("New\r\nnotes") };
    CatalogueEdits::setSideBox(history, { 2, 0 }, 2, P::Price, boxes);
    EXPECT_EQ(catalogue().get(2, P::Price), Cell("$3.00"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Edit List Price B-200"));
    CatalogueEdits::setSideBox(history, { 2, 0 }, 2, P::Notes, boxes);
    EXPECT_EQ(history.undoText(), QStringLiteral("Edit Notes B-200"));
    CatalogueEdits::setSideBox(history, { 2, 0 }, 2, P::Includes, boxes);
    EXPECT_EQ(catalogue().get(2, P::Includes), Cell("Washer"));
    EXPECT_EQ(history.count(), 3) << "one step per box";
    history.undo();
    history.undo();
    history.undo();
    EXPECT_EQ(catalogue().get(2, P::Price), Cell(2.5f)) << "the number as read, not its text";
    EXPECT_EQ(fileBytes(), start);
}

TEST_F(CatalogueCommandsTest, BoxesThatShowWhatTheRowHoldsMakeNoStep)
{
    // B-200's list price is the number 2.5, shown in its box as "$2.50".
    const SideBoxTexts shown = ProductRow::sideBoxes(catalogue(), 2, module.locale());
    ASSERT_EQ(shown.price, QStringLiteral("$2.50"));
    for (const int field : { P::Price, P::Includes, P::Notes })
        EXPECT_TRUE(CatalogueEdits::setSideBox(history, { 2, 0 }, 2, field, shown));
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(catalogue().get(2, P::Price), Cell(2.5f)) << "the number as read, not its text";
    EXPECT_EQ(fileBytes(), start);

    // Another price typed is a change.
    SideBoxTexts typed = shown;
    typed.price = QStringLiteral("$2.55");
    CatalogueEdits::setSideBox(history, { 2, 0 }, 2, P::Price, typed);
    EXPECT_EQ(catalogue().get(2, P::Price), Cell("$2.55"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Edit List Price B-200"));
}

TEST_F(CatalogueCommandsTest, AScheduleEditStoresThePointsSortedAndKeepsWhatTheScheduleShows)
{
    Table shown(5, 2);
    shown.put(1, 1, Cell("100"));
    shown.put(1, 2, Cell("1.00"));
    module.ScheduleTable() = shown;
    CatalogueEdits::setSchedule(history, { 1, 0 }, 1, shown);
    const Table shownBefore = module.ScheduleTable();
    shown.put(2, 1, Cell("10"));
    CatalogueEdits::setSchedule(history, { 1, 0 }, 1, shown);

    EXPECT_EQ(history.count(), 2);
    EXPECT_EQ(history.undoText(), QStringLiteral("Edit Price Schedule A-100"));
    EXPECT_EQ(catalogue().get(1, P::PricePoint1), Cell("10")) << "sorted by quantity";
    EXPECT_EQ(catalogue().get(1, P::PricePoint2), Cell("100"));
    EXPECT_EQ(catalogue().get(1, P::Price2), Cell("1.00"));
    EXPECT_EQ(module.ScheduleTable().get(2, 1), Cell("10")) << "shown where it was typed";
    EXPECT_TRUE(productChanges.back().scheduleKept);

    history.undo();
    EXPECT_EQ(module.ScheduleTable().get(2, 1), Cell());
    EXPECT_EQ(module.ScheduleTable().get(1, 1), shownBefore.get(1, 1));
    EXPECT_EQ(catalogue().get(1, P::PricePoint1), Cell("100"));
    EXPECT_TRUE(catalogue().get(1, P::PricePoint2).isEmpty());
    history.undo();
    EXPECT_EQ(fileBytes(), start);
}

TEST_F(CatalogueCommandsTest, ClearingTheScheduleIsOneStep)
{
    catalogue().put(3, P::PricePoint1, Cell("5"));
    catalogue().put(3, P::Price1, Cell("9.00"));
    const QByteArray before = fileBytes();
    CatalogueEdits::clearSchedule(history, { 3, 0 }, 3);
    EXPECT_EQ(history.undoText(), QStringLiteral("Clear Price Schedule C-300"));
    EXPECT_TRUE(catalogue().get(3, P::PricePoint1).isEmpty());
    expectUndoAndRedo(before);
    history.undo();
    CatalogueEdits::clearSchedule(history, { 2, 0 }, 2);
    EXPECT_EQ(history.undoText(), QString()) << "nothing to clear: no step";
    EXPECT_EQ(history.redoText(), QStringLiteral("Clear Price Schedule C-300"));
}

TEST_F(CatalogueCommandsTest, InsertAddsAnEmptyProductAndCountsIt)
{
    const int row = CatalogueEdits::insertProduct(history, { 2, 0 }, 2);
    EXPECT_EQ(row, 2);
    EXPECT_EQ(count(), 4);
    EXPECT_EQ(column(P::PartNumber), QStringList({ "A-100", "", "B-200", "C-300" }));
    EXPECT_EQ(history.undoText(), QStringLiteral("Add Product"));
    EXPECT_EQ(productChanges.back().view.row, 2);
    EXPECT_TRUE(productChanges.back().rowsChanged);
    history.undo();
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(fileBytes(), start);
    EXPECT_EQ(productChanges.back().view.row, 2);
    history.redo();
    EXPECT_EQ(count(), 4);
    EXPECT_EQ(fileBytes().count("\r\n"), 3) << "an empty product is not written";
}

TEST_F(CatalogueCommandsTest, DeleteHoldsTheRowAndPutsItBackWhole)
{
    ASSERT_TRUE(CatalogueEdits::deleteProduct(history, { 1, 0 }, 1));
    EXPECT_EQ(history.undoText(), QStringLiteral("Delete Product A-100"));
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(productChanges.back().view.row, 0) << "no row is current after a delete";
    history.undo();
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(catalogue().get(1, P::Notes), Cell("Zinc plated"));
    EXPECT_EQ(catalogue().get(1, P::Price), Cell(1.25f));
    EXPECT_EQ(fileBytes(), start);
    EXPECT_EQ(productChanges.back().view.row, 1);
    EXPECT_FALSE(CatalogueEdits::deleteProduct(history, { 0, 0 }, 0));
}

TEST_F(CatalogueCommandsTest, DeleteAllHoldsTheRowsItRemoved)
{
    ASSERT_TRUE(CatalogueEdits::deleteAll(history, { 2, 0 }));
    EXPECT_EQ(catalogue().rowCount(), 0);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(history.undoText(), QStringLiteral("Delete All Products"));
    expectUndoAndRedo(start);
    EXPECT_FALSE(CatalogueEdits::deleteAll(history, { 0, 0 })) << "no products: no step";
    EXPECT_EQ(history.count(), 1);
}

TEST_F(CatalogueCommandsTest, ASortHoldsItsOrderAndPutsTheRowsBack)
{
    module.SortedByPart = true;
    EXPECT_TRUE(CatalogueEdits::sort(history, { 3, 0 }, P::Includes));
    EXPECT_EQ(column(P::PartNumber), QStringList({ "B-200", "C-300", "A-100" }));
    EXPECT_FALSE(module.SortedByPart);
    EXPECT_EQ(history.undoText(), QStringLiteral("Sort by Includes"));
    EXPECT_TRUE(CatalogueEdits::sort(history, { 1, 0 }, P::Price));
    EXPECT_EQ(column(P::PartNumber), QStringList({ "A-100", "B-200", "C-300" }))
        << "by list price: 1.25, 2.5, none";
    EXPECT_FALSE(module.SortedByPart);
    EXPECT_EQ(history.undoText(), QStringLiteral("Sort by Price"));
    EXPECT_EQ(productChanges.back().view.row, 1);
    history.undo();
    EXPECT_EQ(column(P::PartNumber), QStringList({ "B-200", "C-300", "A-100" }));
    EXPECT_FALSE(module.SortedByPart) << "by includes";
    EXPECT_EQ(productChanges.back().view.row, 1) << "where the grid stood before the sort";
    history.undo();
    EXPECT_TRUE(module.SortedByPart);
    EXPECT_EQ(productChanges.back().view.row, 3);
    EXPECT_EQ(fileBytes(), start);
    history.redo();
    history.redo();
    EXPECT_EQ(column(P::PartNumber), QStringList({ "A-100", "B-200", "C-300" }));
    history.undo();
    EXPECT_EQ(column(P::PartNumber), QStringList({ "B-200", "C-300", "A-100" }));
}

// A header click on a column the catalogue is already in the order of moves no row: it is no
// step, so the catalogue stays saved and what Redo would bring back stays there.
TEST_F(CatalogueCommandsTest, ASortThatMovesNothingIsNoStepAndKeepsRedo)
{
    ASSERT_TRUE(CatalogueEdits::sort(history, { 1, 0 }, P::Includes));
    history.undo();
    ASSERT_TRUE(history.canRedo());
    EXPECT_FALSE(CatalogueEdits::sort(history, { 1, 0 }, P::PartNumber));
    EXPECT_FALSE(CatalogueEdits::sort(history, { 1, 0 }, P::Price)) << "1.25, 2.5, none";
    EXPECT_FALSE(history.canUndo());
    EXPECT_TRUE(history.canRedo());
    EXPECT_EQ(history.redoText(), QStringLiteral("Sort by Includes"));
    EXPECT_TRUE(history.catalogueSaved());
    EXPECT_EQ(fileBytes(), start);
}

TEST_F(CatalogueCommandsTest, RefreshSortsOnThePartNumberAsOneStepAndOnlyWhenNeeded)
{
    EXPECT_FALSE(CatalogueEdits::refresh(history, { 2, 0 })) << "already in part-number order";
    EXPECT_FALSE(history.canUndo());
    CatalogueEdits::sort(history, { 1, 0 }, P::Includes);
    const QStringList byIncludes = column(P::PartNumber);
    ASSERT_NE(byIncludes, QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_TRUE(CatalogueEdits::refresh(history, { 2, 0 }));
    EXPECT_EQ(column(P::PartNumber), QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_TRUE(module.SortedByPart);
    EXPECT_EQ(history.undoText(), QStringLiteral("Refresh"));
    EXPECT_EQ(history.count(), 2);
    history.undo();
    EXPECT_EQ(column(P::PartNumber), byIncludes);
    EXPECT_FALSE(module.SortedByPart);
    EXPECT_EQ(productChanges.back().view.row, 2) << "where the grid stood before";
    history.redo();
    EXPECT_EQ(column(P::PartNumber), QStringList({ "A-100", "B-200", "C-300" }));
}

// Sorts that together put every row back where the last save had it leave the catalogue as
// saved: a click on a header and then Refresh asks for no save (which would replace the backup
// with the same catalogue).
TEST_F(CatalogueCommandsTest, SortsThatPutEveryRowBackLeaveTheCatalogueAsSaved)
{
    ASSERT_TRUE(history.catalogueSaved());
    CatalogueEdits::sort(history, { 1, 0 }, P::Includes);
    EXPECT_FALSE(history.catalogueSaved());
    CatalogueEdits::sort(history, { 1, 0 }, P::Notes);
    EXPECT_FALSE(history.catalogueSaved());
    ASSERT_TRUE(CatalogueEdits::refresh(history, { 1, 0 }));
    EXPECT_TRUE(history.catalogueSaved()) << "in the saved order again";
    EXPECT_EQ(fileBytes(), start);
    history.undo();
    EXPECT_FALSE(history.catalogueSaved());
    history.redo();
    EXPECT_TRUE(history.catalogueSaved());
    // A change between the sorts is a change, whatever order follows.
    CatalogueEdits::sort(history, { 1, 0 }, P::Includes);
    CatalogueEdits::setCell(history, { 1, 0 }, 1, P::ProductName, Cell("Anvil"));
    CatalogueEdits::refresh(history, { 1, 0 });
    EXPECT_FALSE(history.catalogueSaved());
    // Saved in another order, the order of that save is the one to come back to.
    history.setSaved();
    CatalogueEdits::sort(history, { 1, 0 }, P::Includes);
    EXPECT_FALSE(history.catalogueSaved());
    history.undo();
    EXPECT_TRUE(history.catalogueSaved());
}

TEST_F(CatalogueCommandsTest, ASortKeepsTheRowsItsCutToCountDropped)
{
    catalogue().insertRows(4);
    catalogue().put(4, P::PartNumber, Cell("0-000"));
    const QByteArray beforeBytes = catalogueFileBytes(catalogue(), locale, 4).bytes;
    CatalogueEdits::sort(history, { 1, 0 }, P::ProductName);
    EXPECT_EQ(catalogue().rowCount(), 3) << "cut to Count as the grid's sort does";
    history.undo();
    ASSERT_EQ(catalogue().rowCount(), 4);
    EXPECT_EQ(catalogue().get(4, P::PartNumber), Cell("0-000"));
    EXPECT_EQ(catalogueFileBytes(catalogue(), locale, 4).bytes, beforeBytes);
}

TEST_F(CatalogueCommandsTest, AnImportIsOneStepOfRowsAddedAndCellsChanged)
{
    module.SortedByPart = false;
    ProductChanges changes;
    changes.added.redim(2, P::FieldCount);
    changes.added.put(1, P::PartNumber, Cell("E-500"));
    changes.added.put(1, P::ProductName, Cell("Eye bolt"));
    changes.added.put(2, P::PartNumber, Cell("0-050"));
    changes.added.put(2, P::ProductName, Cell("Nut"));
    changes.updated.push_back({ 2, P::Notes, Cell("Updated") });
    changes.updated.push_back({ 2, P::Price, Cell(3.0f) });
    changes.updated.push_back({ 3, P::Notes, Cell("Also") });
    ASSERT_TRUE(CatalogueEdits::import(history, { 2, 0 }, std::move(changes)));

    EXPECT_EQ(history.undoText(), QStringLiteral("Import (2 added, 2 changed)"));
    EXPECT_EQ(count(), 5);
    EXPECT_EQ(column(P::PartNumber), QStringList({ "0-050", "A-100", "B-200", "C-300", "E-500" }));
    EXPECT_EQ(catalogue().get(3, P::Notes), Cell("Updated"));
    EXPECT_TRUE(module.SortedByPart);
    const QByteArray after = fileBytes();

    history.undo();
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(fileBytes(), start);
    EXPECT_FALSE(module.SortedByPart);
    EXPECT_EQ(productChanges.back().view.row, 2);
    history.redo();
    EXPECT_EQ(fileBytes(), after);
    EXPECT_EQ(count(), 5);
}

TEST_F(CatalogueCommandsTest, AnImportNamesWhatItDid)
{
    EXPECT_EQ(CatalogueEdits::importText(12, 40), QStringLiteral("Import (12 added, 40 changed)"));
    EXPECT_EQ(CatalogueEdits::importText(12, 0), QStringLiteral("Import (12 added)"));
    EXPECT_EQ(CatalogueEdits::importText(0, 3), QStringLiteral("Import (3 changed)"));
}

TEST_F(CatalogueCommandsTest, AnImportOfNothingIntoASortedCatalogueMakesNoStep)
{
    EXPECT_FALSE(CatalogueEdits::import(history, { 1, 0 }, ProductChanges {}));
    EXPECT_FALSE(history.canUndo());
    ProductChanges outside;
    outside.updated.push_back({ 7, P::Notes, Cell("x") });
    EXPECT_FALSE(CatalogueEdits::import(history, { 1, 0 }, std::move(outside)));
    EXPECT_FALSE(history.canUndo());
}

TEST_F(CatalogueCommandsTest, AnImportOfNothingStillSortsACatalogueInNameOrder)
{
    CatalogueEdits::sort(history, { 1, 0 }, P::Includes);
    EXPECT_TRUE(CatalogueEdits::import(history, { 1, 0 }, ProductChanges {}));
    EXPECT_EQ(column(P::PartNumber), QStringList({ "A-100", "B-200", "C-300" }));
    EXPECT_EQ(history.undoText(), QStringLiteral("Import (0 added)"));
}

} // namespace

namespace {

TEST_F(CatalogueCommandsTest, ChangePricesIsOneStepForEveryPriceOfEveryProduct)
{
    catalogue().put(2, P::PricePoint1, Cell("10"));
    catalogue().put(2, P::Price1, Cell("2.25"));
    const QByteArray before = fileBytes();
    PriceChangeRule rule;
    rule.value = 10;
    const PriceChangePlan plan = PriceChange::plan(catalogue(), { 1, 2, 3 }, rule, locale);
    ASSERT_EQ(plan.entries.size(), 3u);
    EXPECT_TRUE(CatalogueEdits::changePrices(history, { 2, 0 }, plan));
    EXPECT_EQ(column(P::Price), (QStringList { "1.38", "2.75", "" }));
    EXPECT_EQ(catalogue().get(2, P::Price1), Cell("2.48"));
    EXPECT_EQ(history.undoText(), QStringLiteral("Change Prices (3 prices)"));
    expectUndoAndRedo(before);
}

TEST_F(CatalogueCommandsTest, ChangePricesRefusesAPlanWithAPriceBelowZeroOrTooLargeOrNothingToDo)
{
    PriceChangeRule rule;
    rule.by = PriceChangeRule::By::Amount;
    rule.value = -2;
    const PriceChangePlan plan = PriceChange::plan(catalogue(), { 1, 2 }, rule, locale);
    ASSERT_FALSE(plan.belowZero.isEmpty());
    EXPECT_FALSE(CatalogueEdits::changePrices(history, { 1, 0 }, plan));
    EXPECT_FALSE(CatalogueEdits::changePrices(history, { 1, 0 }, PriceChangePlan {}));
    rule.by = PriceChangeRule::By::Percent;
    rule.value = 1e20;
    PriceChangePlan huge = PriceChange::plan(catalogue(), { 1, 2 }, rule, locale);
    ASSERT_FALSE(huge.tooLarge.isEmpty());
    // Even with a price the change could make, the plan is refused as a whole.
    huge.entries =
        PriceChange::plan(catalogue(), { 1, 2 }, PriceChangeRule { .value = 10 }, locale).entries;
    ASSERT_FALSE(huge.entries.empty());
    EXPECT_FALSE(CatalogueEdits::changePrices(history, { 1, 0 }, huge));
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(fileBytes(), start);
}

} // namespace
