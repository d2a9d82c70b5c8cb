#include "catalogue/table.h"

#include "core/vberror.h"
#include "support/testlocale.h"

#include <QLocale>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>

namespace tarnwick {
namespace {

using tarnwick::test::EnUs;

/// The error number a call raises; 0 when it raises none.
int errorOf(const std::function<void()> &call)
{
    try {
        call();
    } catch (const VbError &error) {
        return error.number();
    }
    return 0;
}

/// A table with one field per row holding the given cells, and a second field holding the
/// row's original number (to see where each row went).
Table columnTable(const std::vector<Cell> &cells)
{
    Table table(int(cells.size()), 2);
    for (int row = 1; row <= int(cells.size()); ++row) {
        table.put(row, 1, cells[std::size_t(row - 1)]);
        table.put(row, 2, qint32(row));
    }
    return table;
}

/// The original row numbers (field 2) in their current order.
std::vector<int> originalRows(const Table &table)
{
    std::vector<int> rows;
    for (int row = 1; row <= table.rowCount(); ++row)
        rows.push_back(int(table.get(row, 2).asNumber()));
    return rows;
}

TEST(TableTest, NewTableHasItsBoundsAndEmptyCells)
{
    const Table table(3, 15);
    EXPECT_EQ(table.rowCount(), 3);
    EXPECT_EQ(table.fieldCount(), 15);
    EXPECT_EQ(table.upperBound(), 3);
    EXPECT_EQ(table.upperBound(1), 3);
    EXPECT_EQ(table.upperBound(2), 15);
    EXPECT_TRUE(table.get(1, 1).isEmpty());
    EXPECT_TRUE(table.get(3, 15).isEmpty());
    EXPECT_EQ(Table().rowCount(), 0);
}

TEST(TableTest, PutThenGetReturnsTheCell)
{
    Table table(2, 3);
    table.put(2, 3, Cell(12.5f));
    table.put(1, 1, Cell(QStringLiteral("A-100")));
    EXPECT_EQ(table.get(2, 3), Cell(12.5f));
    EXPECT_EQ(table.get(1, 1).asText(), QStringLiteral("A-100"));
    EXPECT_TRUE(table.get(1, 3).isEmpty());
}

TEST(TableTest, EveryAccessOutsideTheBoundsRaisesError9)
{
    Table table(2, 3);
    EXPECT_EQ(errorOf([&] { table.get(0, 1); }), 9);
    EXPECT_EQ(errorOf([&] { table.get(3, 1); }), 9);
    EXPECT_EQ(errorOf([&] { table.get(1, 0); }), 9);
    EXPECT_EQ(errorOf([&] { table.get(1, 4); }), 9);
    EXPECT_EQ(errorOf([&] { table.put(3, 1, Cell("x")); }), 9);
    EXPECT_EQ(errorOf([&] { table.put(1, 4, Cell("x")); }), 9);
    EXPECT_EQ(errorOf([&] { table.upperBound(3); }), 9);
    EXPECT_EQ(errorOf([&] { table.redim(-1, 3); }), 9);
    EXPECT_EQ(errorOf([&] { Table().get(1, 1); }), 9);
    EXPECT_EQ(errorOf([&] { table.get(2, 3); }), 0);
}

TEST(TableTest, ATableTakesOverCellsLaidOutRowAfterRow)
{
    std::vector<Cell> cells { Cell("A-1"), Cell(1.5f), Cell("B-2"), Cell() };
    const Cell *storage = cells.data();
    const Table table = Table::fromCells(2, std::move(cells));
    EXPECT_EQ(table.rowCount(), 2);
    EXPECT_EQ(table.fieldCount(), 2);
    EXPECT_EQ(table.get(1, 1), Cell("A-1"));
    EXPECT_EQ(table.get(1, 2), Cell(1.5f));
    EXPECT_EQ(table.get(2, 1), Cell("B-2"));
    EXPECT_TRUE(table.get(2, 2).isEmpty());
    EXPECT_EQ(&table.get(1, 1), storage) << "the cells are taken over, not copied";
    EXPECT_NE(table.generation(), Table().generation());
    EXPECT_EQ(Table::fromCells(3, {}).rowCount(), 0);
    EXPECT_EQ(errorOf([] { Table::fromCells(3, std::vector<Cell>(4)); }), 9) << "no whole rows";
    EXPECT_EQ(errorOf([] { Table::fromCells(0, {}); }), 9);
}

TEST(TableTest, RedimEmptiesEveryCell)
{
    Table table(2, 2);
    table.put(1, 1, Cell("keep?"));
    table.redim(4, 15);
    EXPECT_EQ(table.rowCount(), 4);
    EXPECT_EQ(table.fieldCount(), 15);
    EXPECT_TRUE(table.get(1, 1).isEmpty());
}

TEST(TableTest, RedimPreserveKeepsWhatStillFits)
{
    Table table(3, 3);
    for (int row = 1; row <= 3; ++row) {
        for (int field = 1; field <= 3; ++field)
            table.put(row, field, qint32(row * 10 + field));
    }
    table.redimPreserve(5, 3);
    EXPECT_EQ(table.rowCount(), 5);
    EXPECT_EQ(table.get(3, 3), Cell(qint32(33)));
    EXPECT_TRUE(table.get(5, 1).isEmpty());

    table.redimPreserve(2, 4);
    EXPECT_EQ(table.rowCount(), 2);
    EXPECT_EQ(table.fieldCount(), 4);
    EXPECT_EQ(table.get(1, 1), Cell(qint32(11)));
    EXPECT_EQ(table.get(2, 3), Cell(qint32(23)));
    EXPECT_TRUE(table.get(2, 4).isEmpty());

    table.redimPreserve(2, 2);
    EXPECT_EQ(table.get(2, 2), Cell(qint32(22)));
    EXPECT_EQ(errorOf([&] { table.get(1, 3); }), 9);
}

TEST(TableTest, InsertRowsMovesTheFollowingRowsDown)
{
    Table table = columnTable({ Cell("a"), Cell("b"), Cell("c") });
    table.insertRows(2, 2);
    EXPECT_EQ(table.rowCount(), 5);
    EXPECT_EQ(table.get(1, 1).asText(), QStringLiteral("a"));
    EXPECT_TRUE(table.get(2, 1).isEmpty());
    EXPECT_TRUE(table.get(3, 2).isEmpty());
    EXPECT_EQ(table.get(4, 1).asText(), QStringLiteral("b"));
    EXPECT_EQ(table.get(5, 1).asText(), QStringLiteral("c"));

    table.insertRows(6); // one past the end appends
    EXPECT_EQ(table.rowCount(), 6);
    EXPECT_TRUE(table.get(6, 1).isEmpty());
    EXPECT_EQ(errorOf([&] { table.insertRows(8); }), 9);
    EXPECT_EQ(errorOf([&] { table.insertRows(0); }), 9);
}

TEST(TableTest, DeleteRowsMovesTheFollowingRowsUp)
{
    Table table = columnTable({ Cell("a"), Cell("b"), Cell("c"), Cell("d") });
    table.deleteRows(2, 2);
    EXPECT_EQ(table.rowCount(), 2);
    EXPECT_EQ(table.get(1, 1).asText(), QStringLiteral("a"));
    EXPECT_EQ(table.get(2, 1).asText(), QStringLiteral("d"));
    EXPECT_EQ(table.get(2, 2), Cell(qint32(4)));

    EXPECT_EQ(errorOf([&] { table.deleteRows(2, 2); }), 9);
    EXPECT_EQ(errorOf([&] { table.deleteRows(3); }), 9);
    EXPECT_EQ(table.rowCount(), 2);
    table.deleteRows(1, 2);
    EXPECT_EQ(table.rowCount(), 0);
}

TEST(TableTest, ClearRowEmptiesOnlyThatRow)
{
    Table table = columnTable({ Cell("a"), Cell("b") });
    table.clearRow(1);
    EXPECT_TRUE(table.get(1, 1).isEmpty());
    EXPECT_TRUE(table.get(1, 2).isEmpty());
    EXPECT_EQ(table.get(2, 1).asText(), QStringLiteral("b"));
    EXPECT_EQ(errorOf([&] { table.clearRow(3); }), 9);
}

TEST(TableTest, TextSortIgnoresCaseFirstAndIsStable)
{
    Table table = columnTable({ Cell("banana"), Cell("apple"), Cell("Cherry"), Cell("Apple"),
        Cell("apple"), Cell("BANANA") });
    table.sortRows(1, 6, 1, Table::SortKind::Text, EnUs);
    // Case-insensitively equal texts: upper case first, then equal texts in their old order.
    EXPECT_EQ(originalRows(table), (std::vector<int> { 4, 2, 5, 6, 1, 3 }));
    EXPECT_EQ(table.get(1, 1).asText(), QStringLiteral("Apple"));
    EXPECT_EQ(table.get(6, 1).asText(), QStringLiteral("Cherry"));
}

TEST(TableTest, TextSortComparesNumbersByTheirText)
{
    Table table =
        columnTable({ Cell(qint32(9)), Cell(100.0), Cell("10"), Cell(12.5f), Cell(), Cell("") });
    table.sortRows(1, 6, 1, Table::SortKind::Text, EnUs);
    // "" (empty), "" (empty text), "10", "100", "12.5", "9"
    EXPECT_EQ(originalRows(table), (std::vector<int> { 5, 6, 3, 2, 4, 1 }));
}

TEST(TableTest, NumericSortPutsBlankAndNonNumericCellsLastInTheirOrder)
{
    Table table = columnTable({ Cell("10"), Cell("abc"), Cell(qint32(9)), Cell(), Cell("$1,234.50"),
        Cell("2.5"), Cell(""), Cell(-1.0f), Cell("zz") });
    table.sortRows(1, 9, 1, Table::SortKind::Numeric, EnUs);
    EXPECT_EQ(originalRows(table), (std::vector<int> { 8, 6, 3, 1, 5, 2, 4, 7, 9 }));
}

TEST(TableTest, NumericSortKeepsEqualValuesInTheirOrder)
{
    Table table = columnTable({ Cell("5"), Cell(qint32(5)), Cell(5.0f), Cell("1") });
    table.sortRows(1, 4, 1, Table::SortKind::Numeric, EnUs);
    EXPECT_EQ(originalRows(table), (std::vector<int> { 4, 1, 2, 3 }));
}

TEST(TableTest, SortedRowsStayAndTwoSortedRunsMergeKeepingEqualRowsInOrder)
{
    Table sorted = columnTable({ Cell("apple"), Cell("Banana"), Cell("banana"), Cell("cherry") });
    sorted.sortRows(1, 4, 1, Table::SortKind::Text, EnUs);
    EXPECT_EQ(originalRows(sorted), (std::vector<int> { 1, 2, 3, 4 }));
    // A sorted catalogue, then sorted rows added after it; equal keys in both runs.
    Table runs = columnTable(
        { Cell("b"), Cell("d"), Cell("f"), Cell("a"), Cell("D"), Cell("d"), Cell("g") });
    runs.sortRows(1, 7, 1, Table::SortKind::Text, EnUs);
    EXPECT_EQ(originalRows(runs), (std::vector<int> { 4, 1, 5, 2, 6, 3, 7 }));
    // Three runs take the general way, to the same kind of result.
    Table three = columnTable({ Cell("b"), Cell("d"), Cell("a"), Cell("d"), Cell("c") });
    three.sortRows(1, 5, 1, Table::SortKind::Text, EnUs);
    EXPECT_EQ(originalRows(three), (std::vector<int> { 3, 1, 5, 2, 4 }));
    Table numbers = columnTable({ Cell("1"), Cell("5"), Cell("9"), Cell("2"), Cell("5"), Cell() });
    numbers.sortRows(1, 6, 1, Table::SortKind::Numeric, EnUs);
    EXPECT_EQ(originalRows(numbers), (std::vector<int> { 1, 4, 2, 5, 3, 6 }));
}

TEST(TableTest, SortMovesWholeRowsAndLeavesOtherRowsAlone)
{
    Table table = columnTable({ Cell("z"), Cell("c"), Cell("b"), Cell("a"), Cell("0") });
    table.sortRows(2, 4, 1, Table::SortKind::Text, EnUs);
    EXPECT_EQ(originalRows(table), (std::vector<int> { 1, 4, 3, 2, 5 }));
    EXPECT_EQ(table.get(2, 1).asText(), QStringLiteral("a"));
}

TEST(TableTest, SortOfAnEmptyRangeDoesNothingAndBadBoundsRaise9)
{
    Table empty(0, 15);
    EXPECT_EQ(errorOf([&] { empty.sortRows(1, 0, 1, Table::SortKind::Text, EnUs); }), 0);
    Table table = columnTable({ Cell("b"), Cell("a") });
    EXPECT_EQ(errorOf([&] { table.sortRows(1, 3, 1, Table::SortKind::Text, EnUs); }), 9);
    EXPECT_EQ(errorOf([&] { table.sortRows(0, 2, 1, Table::SortKind::Text, EnUs); }), 9);
    EXPECT_EQ(errorOf([&] { table.sortRows(1, 2, 3, Table::SortKind::Numeric, EnUs); }), 9);
    EXPECT_EQ(originalRows(table), (std::vector<int> { 1, 2 }));
}

TEST(TableTest, FindReturnsTheFirstMatchFromTheStartRow)
{
    Table table = columnTable({ Cell("A-1"), Cell("a-1"), Cell(12.5f), Cell("A-1"), Cell() });
    EXPECT_EQ(table.find(1, Cell("A-1")), 1);
    EXPECT_EQ(table.find(1, Cell("A-1"), 2), 4);
    EXPECT_EQ(table.find(1, Cell("a-1")), 2);
    EXPECT_EQ(table.find(1, Cell(12.5)), 3); // a double finds the single of the same value
    EXPECT_EQ(table.find(1, Cell()), 5);
    EXPECT_EQ(table.find(1, Cell("B")), 0);
    EXPECT_EQ(table.find(1, Cell("A-1"), 6), 0);
    EXPECT_EQ(table.find(2, Cell(qint32(3))), 3);
    EXPECT_EQ(errorOf([&] { table.find(3, Cell("A-1")); }), 9);
    EXPECT_EQ(errorOf([&] { table.find(1, Cell("A-1"), 0); }), 9);
}

TEST(TableTest, SortsAHundredThousandRows)
{
    const int rows = 100000;
    Table table(rows, 15);
    for (int row = 1; row <= rows; ++row) {
        table.put(row, 1, QStringLiteral("P%1").arg((row * 7919) % rows, 6, 10, QLatin1Char('0')));
        table.put(row, 2, qint32(row));
    }
    table.sortRows(1, rows, 1, Table::SortKind::Text, EnUs);
    for (int row = 1; row < rows; ++row)
        ASSERT_LT(table.get(row, 1).asText(), table.get(row + 1, 1).asText()) << row;
    EXPECT_EQ(table.get(1, 1).asText(), QStringLiteral("P000000"));
}

/// 400 rows whose keys take only 7 values, in a scrambled order: far more rows than a sort
/// that only happens to be stable on short ranges could keep in order.
std::vector<Cell> manyEqualKeys(const std::function<Cell(int)> &keyOf)
{
    std::vector<Cell> cells;
    cells.reserve(400);
    for (int i = 0; i < 400; ++i)
        cells.push_back(keyOf((i * 37 + 11) % 7));
    return cells;
}

/// True when rows with equal keys (field 1, compared as text) are in their original order.
bool equalKeysKeepTheirOrder(const Table &table)
{
    for (int row = 2; row <= table.rowCount(); ++row) {
        const bool sameKey = table.get(row, 1) == table.get(row - 1, 1);
        if (sameKey && table.get(row, 2).asNumber() < table.get(row - 1, 2).asNumber())
            return false;
    }
    return true;
}

TEST(TableTest, TextSortKeepsTheOrderOfHundredsOfRowsWithEqualNames)
{
    const QStringList names { "Widget", "gadget", "Bolt", "nut", "Washer", "screw", "Pin" };
    Table table = columnTable(manyEqualKeys([&](int k) { return Cell(names[k]); }));
    table.sortRows(1, table.rowCount(), 1, Table::SortKind::Text, EnUs);
    EXPECT_EQ(table.get(1, 1), Cell("Bolt"));
    EXPECT_EQ(table.get(table.rowCount(), 1), Cell("Widget"));
    EXPECT_TRUE(equalKeysKeepTheirOrder(table));
}

TEST(TableTest, NumberSortKeepsTheOrderOfHundredsOfRowsWithEqualPrices)
{
    Table table = columnTable(manyEqualKeys([](int k) { return Cell(QString::number(k * 2.5)); }));
    table.sortRows(1, table.rowCount(), 1, Table::SortKind::Numeric, EnUs);
    EXPECT_EQ(table.get(1, 1), Cell("0"));
    EXPECT_EQ(table.get(table.rowCount(), 1), Cell("15"));
    EXPECT_TRUE(equalKeysKeepTheirOrder(table));
}

TEST(TableTest, SortedOrderNamesTheRowsASortWouldPutInPlaceAndReorderRowsMovesThem)
{
    Table table = columnTable({ Cell("a"), Cell("d"), Cell("b"), Cell("c") });
    const std::vector<int> order = table.sortedOrder(2, 4, 1, Table::SortKind::Text, EnUs);
    EXPECT_EQ(order, std::vector<int>({ 3, 4, 2 }));
    EXPECT_EQ(originalRows(table), std::vector<int>({ 1, 2, 3, 4 })) << "nothing moved yet";
    const quint64 before = table.generation();
    table.reorderRows(2, order);
    EXPECT_EQ(originalRows(table), std::vector<int>({ 1, 3, 4, 2 }));
    EXPECT_NE(table.generation(), before);
    table.reorderRows(2, { 4, 2, 3 }); // the way back
    EXPECT_EQ(originalRows(table), std::vector<int>({ 1, 2, 3, 4 }));
    EXPECT_TRUE(table.sortedOrder(3, 2, 1, Table::SortKind::Text, EnUs).empty());
    EXPECT_EQ(errorOf([&] { table.reorderRows(3, { 3, 4, 5 }); }), 9) << "past the last row";
}

TEST(TableTest, TakenRowsLeaveTheTableAndGoBackWhole)
{
    Table table = columnTable({ Cell("a"), Cell("b"), Cell("c"), Cell("d") });
    Table taken = table.takeRows(2, 2);
    EXPECT_EQ(taken.rowCount(), 2);
    EXPECT_EQ(taken.fieldCount(), 2);
    EXPECT_EQ(originalRows(taken), std::vector<int>({ 2, 3 }));
    EXPECT_EQ(originalRows(table), std::vector<int>({ 1, 4 }));
    table.insertTable(2, std::move(taken));
    EXPECT_EQ(originalRows(table), std::vector<int>({ 1, 2, 3, 4 }));
    // NOLINTNEXTLINE(bugprone-use-after-move): what a move leaves behind is what is checked
    EXPECT_EQ(taken.rowCount(), 0) << "the rows went over, not copied";
    EXPECT_EQ(table.get(3, 1), Cell("c"));
}

TEST(TableTest, TakingEveryRowHandsTheCellsOverAtOnce)
{
    Table table = columnTable({ Cell("a"), Cell("b") });
    Table all = table.takeRows(1, 2);
    EXPECT_EQ(table.rowCount(), 0);
    EXPECT_EQ(table.fieldCount(), 2);
    EXPECT_EQ(all.rowCount(), 2);
    table.insertTable(1, std::move(all));
    EXPECT_EQ(originalRows(table), std::vector<int>({ 1, 2 }));
    Table none = table.takeRows(3, 0);
    EXPECT_EQ(none.rowCount(), 0);
    EXPECT_EQ(table.rowCount(), 2);
}

TEST(TableTest, TakingOrInsertingOutsideTheTableRaises9)
{
    Table table = columnTable({ Cell("a"), Cell("b") });
    EXPECT_EQ(errorOf([&] { table.takeRows(2, 2); }), 9);
    EXPECT_EQ(errorOf([&] { table.takeRows(0, 1); }), 9);
    EXPECT_EQ(errorOf([&] { table.insertTable(4, Table(1, 2)); }), 9);
    EXPECT_EQ(errorOf([&] { table.insertTable(1, Table(1, 3)); }), 9) << "other fields";
    EXPECT_EQ(table.rowCount(), 2);
}

/// A small table with a text, a whole number and a real number in it, the rest empty.
Table twoByThreeTable()
{
    Table table(2, 3);
    table.put(1, 1, Cell("A-100"));
    table.put(1, 3, Cell(qint32(5)));
    table.put(2, 2, Cell(2.5));
    return table;
}

TEST(TableSameCellsTest, TablesWithTheSameCellsAreTheSame)
{
    EXPECT_TRUE(sameCells(twoByThreeTable(), twoByThreeTable()));
    EXPECT_TRUE(sameCells(Table(0, 0), Table(0, 0)));
}

TEST(TableSameCellsTest, ADifferentShapeIsNotTheSameEvenWhenEmpty)
{
    EXPECT_FALSE(sameCells(Table(2, 3), Table(3, 3)));
    EXPECT_FALSE(sameCells(Table(2, 3), Table(2, 4)));
    EXPECT_FALSE(sameCells(Table(3, 2), Table(2, 3)));
}

TEST(TableSameCellsTest, OneDifferentCellMakesTablesDiffer)
{
    for (int row = 1; row <= 2; ++row) {
        for (int field = 1; field <= 3; ++field) {
            Table other = twoByThreeTable();
            other.put(row, field, Cell("changed"));
            EXPECT_FALSE(sameCells(twoByThreeTable(), other)) << row << "," << field;
        }
    }
}

} // namespace
} // namespace tarnwick
