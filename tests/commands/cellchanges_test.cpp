// The cell comparisons every step of the history is built on: which cells differ, and writing
// one side of a list of changes back.
#include "catalogue/table.h"
#include "commands/cellchanges.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

Table twoByThree()
{
    Table table(2, 3);
    table.put(1, 1, Cell("A-100"));
    table.put(1, 3, Cell(qint32(5)));
    table.put(2, 2, Cell(2.5));
    return table;
}

TEST(CellChangesTest, DifferencesListTheChangedCellsRowByRowAndWriteBackEitherSide)
{
    const Table before = twoByThree();
    Table after = before;
    after.put(2, 1, Cell("new"));
    after.put(1, 3, Cell(qint32(6)));
    after.put(2, 2, Cell());

    const CellChanges changes = differences(before, after);
    ASSERT_EQ(changes.size(), 3u);
    EXPECT_EQ(changes[0].row, 1);
    EXPECT_EQ(changes[0].field, 3);
    EXPECT_EQ(changes[0].before, Cell(qint32(5)));
    EXPECT_EQ(changes[0].after, Cell(qint32(6)));
    EXPECT_EQ(changes[1].row, 2);
    EXPECT_EQ(changes[1].field, 1);
    EXPECT_EQ(changes[2].row, 2);
    EXPECT_EQ(changes[2].field, 2);
    EXPECT_EQ(changes[2].before, Cell(2.5));
    EXPECT_TRUE(differences(before, before).empty());

    Table table = before;
    applyAfter(table, changes);
    EXPECT_TRUE(sameCells(table, after));
    applyBefore(table, changes);
    EXPECT_TRUE(sameCells(table, before));
}

} // namespace
