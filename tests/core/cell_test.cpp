#include "core/cell.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarnwick {
namespace {

TEST(CellTest, DefaultCellIsEmptyAndBlank)
{
    const Cell cell;
    EXPECT_EQ(cell.kind(), Cell::Kind::Empty);
    EXPECT_TRUE(cell.isEmpty());
    EXPECT_TRUE(cell.isBlank());
    EXPECT_FALSE(cell.isNull());
    EXPECT_FALSE(cell.isText());
    EXPECT_FALSE(cell.isNumber());
    EXPECT_EQ(cell.asText(), QString());
    EXPECT_EQ(cell.asNumber(), 0.0);
}

TEST(CellTest, EmptyTextIsBlankButNotEmpty)
{
    const Cell cell(QString(""));
    EXPECT_EQ(cell.kind(), Cell::Kind::Text);
    EXPECT_TRUE(cell.isText());
    EXPECT_TRUE(cell.isBlank());
    EXPECT_FALSE(cell.isEmpty());
    EXPECT_NE(cell, Cell());
}

TEST(CellTest, NullIsNeitherBlankNorNumber)
{
    const Cell cell = Cell::null();
    EXPECT_EQ(cell.kind(), Cell::Kind::Null);
    EXPECT_TRUE(cell.isNull());
    EXPECT_FALSE(cell.isBlank());
    EXPECT_FALSE(cell.isEmpty());
    EXPECT_FALSE(cell.isNumber());
    EXPECT_EQ(cell.asNumber(), 0.0);
    EXPECT_EQ(cell, Cell::null());
    EXPECT_NE(cell, Cell());
}

TEST(CellTest, TextCellKeepsItsText)
{
    const Cell fromQString(QStringLiteral("Widget"));
    const Cell fromLiteral("Widget");
    EXPECT_EQ(fromQString.kind(), Cell::Kind::Text);
    EXPECT_EQ(fromQString.asText(), QStringLiteral("Widget"));
    EXPECT_EQ(fromQString, fromLiteral);
    EXPECT_FALSE(fromQString.isBlank());
    EXPECT_EQ(fromQString.asNumber(), 0.0);
}

TEST(CellTest, TextOfNonAsciiLiteralIsDecodedAsUtf8)
{
    const Cell cell("5,00 \u20ac");
    EXPECT_EQ(cell.asText().size(), 6);
    EXPECT_EQ(cell.asText().back(), QChar(0x20ac));
}

TEST(CellTest, NumberKindsFollowTheConstructorType)
{
    EXPECT_EQ(Cell(12.5f).kind(), Cell::Kind::Single);
    EXPECT_EQ(Cell(12.5).kind(), Cell::Kind::Double);
    EXPECT_EQ(Cell(qint32 { 12 }).kind(), Cell::Kind::Int32);
    EXPECT_TRUE(Cell(12.5f).isNumber());
    EXPECT_TRUE(Cell(12.5).isNumber());
    EXPECT_TRUE(Cell(qint32 { 12 }).isNumber());
}

TEST(CellTest, AsNumberWidensEveryNumberKind)
{
    EXPECT_EQ(Cell(12.5f).asNumber(), 12.5);
    EXPECT_EQ(Cell(-0.25).asNumber(), -0.25);
    EXPECT_EQ(Cell(qint32 { -40000 }).asNumber(), -40000.0);
    // A single keeps its binary value when widened: 0.1f is not the double 0.1.
    EXPECT_EQ(Cell(0.1f).asNumber(), static_cast<double>(0.1f));
    EXPECT_NE(Cell(0.1f).asNumber(), 0.1);
}

TEST(CellTest, NumbersHaveNoText)
{
    EXPECT_EQ(Cell(12.5).asText(), QString());
    EXPECT_FALSE(Cell(0.0).isBlank());
}

TEST(CellTest, EqualityComparesKindAndValue)
{
    EXPECT_EQ(Cell(1.5), Cell(1.5));
    EXPECT_NE(Cell(1.5), Cell(2.5));
    EXPECT_NE(Cell(1.0f), Cell(1.0)); // single and double are different kinds
    EXPECT_NE(Cell(qint32 { 1 }), Cell(1.0));
    EXPECT_NE(Cell("1"), Cell(qint32 { 1 }));
}

TEST(CellTest, ReleasingARangeGivesEveryReferenceBackOnce)
{
    auto *first = new CellTextBlock;
    first->bytes = QByteArrayLiteral("A-1\x7f\x7f\x7fWidget");
    auto *second = new CellTextBlock;
    second->bytes = QByteArrayLiteral("B-2");
    std::vector<Cell> cells;
    cells.reserve(8);
    // Runs of one block, interrupted by another block, a number and a string of its own.
    for (int i = 0; i < 3; ++i)
        cells.push_back(Cell::inBlock(first, 0, 3, TextEncoding::Windows1252));
    cells.push_back(Cell::inBlock(second, 0, 3, TextEncoding::Windows1252));
    cells.push_back(Cell(2.5f));
    cells.push_back(Cell::inBlock(first, 6, 6, TextEncoding::Windows1252));
    cells.push_back(Cell(QStringLiteral("own text")));
    const Cell kept = cells[5];
    EXPECT_EQ(first->ref.load(), 6);
    EXPECT_EQ(second->ref.load(), 2);

    Cell::releaseAll(cells.data(), cells.data() + cells.size());

    EXPECT_EQ(first->ref.load(), 2); // the test's own and the kept copy
    EXPECT_EQ(second->ref.load(), 1);
    for (const Cell &cell : cells) {
        if (cell.kind() != Cell::Kind::Single) {
            EXPECT_TRUE(cell.isEmpty());
        }
    }
    EXPECT_EQ(kept.asText(), QStringLiteral("Widget"));
    // The blocks go when their last reference does (the sanitizer run checks for leaks).
    first->ref.fetch_sub(1);
    second->ref.fetch_sub(1);
    delete second;
}

TEST(CellTest, CopyingARangeTakesOneReferencePerCell)
{
    auto *first = new CellTextBlock;
    first->bytes = QByteArrayLiteral("A-1\x7f\x7f\x7fWidget");
    auto *second = new CellTextBlock;
    second->bytes = QByteArrayLiteral("B-2");
    std::vector<Cell> cells;
    cells.reserve(8);
    for (int i = 0; i < 3; ++i)
        cells.push_back(Cell::inBlock(first, 0, 3, TextEncoding::Windows1252));
    cells.push_back(Cell::inBlock(second, 0, 3, TextEncoding::Windows1252));
    cells.push_back(Cell(2.5f));
    cells.push_back(Cell::inBlock(first, 6, 6, TextEncoding::Windows1252));
    cells.push_back(Cell(QStringLiteral("own text")));
    cells.push_back(Cell::null());
    first->ref.fetch_sub(1); // the cells hold the only references now
    second->ref.fetch_sub(1);

    std::vector<Cell> copies(cells.size());
    Cell::copyAll(cells.data(), cells.data() + cells.size(), copies.data());

    EXPECT_EQ(first->ref.load(), 8);
    EXPECT_EQ(second->ref.load(), 2);
    ASSERT_EQ(copies.size(), cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        EXPECT_EQ(copies[i], cells[i]) << i;
        EXPECT_EQ(copies[i].kind(), cells[i].kind()) << i;
    }
    // The originals go first; the copies keep their texts (the sanitizer run checks that
    // every block is freed exactly once when the copies go too).
    cells.clear();
    EXPECT_EQ(first->ref.load(), 4);
    EXPECT_EQ(copies[5].asText(), QStringLiteral("Widget"));
    EXPECT_EQ(copies[6].asText(), QStringLiteral("own text"));
}

} // namespace
} // namespace tarnwick
