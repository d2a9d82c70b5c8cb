#include "core/cell.h"
#include "core/celltext.h"

#include <QRandomGenerator>
#include <QStringDecoder>

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace tarnwick {
namespace {

bool qtReadsAsUtf8(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    Q_UNUSED(text);
    return !decoder.hasError();
}

QByteArray bytesOf(std::initializer_list<int> codes)
{
    QByteArray bytes;
    for (const int code : codes)
        bytes.append(char(code));
    return bytes;
}

void expectSameVerdict(const QByteArray &bytes)
{
    ASSERT_EQ(celltext::isValidUtf8(bytes.constData(), bytes.size()), qtReadsAsUtf8(bytes))
        << "bytes " << bytes.toHex(' ').constData();
}

TEST(CellTextTest, Utf8CheckAgreesWithQtOnEveryShortSequence)
{
    for (int a = 0; a < 256; ++a) {
        expectSameVerdict(QByteArray(1, char(a)));
        for (int b = 0; b < 256; ++b)
            expectSameVerdict(bytesOf({ a, b }));
    }
}

TEST(CellTextTest, Utf8CheckAgreesWithQtOnThreeAndFourByteSequences)
{
    const int tails[] = { 0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xFF };
    for (int lead = 0xC0; lead < 256; ++lead) {
        for (int second = 0; second < 256; ++second) {
            for (const int third : tails) {
                expectSameVerdict(bytesOf({ lead, second, third }));
                for (const int fourth : tails)
                    expectSameVerdict(bytesOf({ lead, second, third, fourth }));
            }
        }
    }
}

TEST(CellTextTest, Utf8CheckAgreesWithQtOnLongTexts)
{
    QRandomGenerator random(11);
    const QByteArray pieces[] = { "plain text ", "caf\xc3\xa9 ", "\xe2\x82\xac", "\xf0\x9f\x99\x82",
        "\xe9", "\xed\xa0\x80", "\xc3", "\x7f\x7f\x7f\r\n", "\xef\xbb\xbf" };
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes;
        const int count = int(random.bounded(12));
        for (int k = 0; k < count; ++k)
            bytes += pieces[random.bounded(int(std::size(pieces)))];
        expectSameVerdict(bytes);
    }
}

TEST(CellTextTest, ByteCellsReadAsTheirText)
{
    auto *block = new CellTextBlock;
    block->bytes = QByteArray("A-1\x7f\x7f\x7f"
                              "Caf\xe9 \x80",
        12);
    const Cell part = Cell::inBlock(block, 0, 3, TextEncoding::Windows1252);
    const Cell name = Cell::inBlock(block, 6, 6, TextEncoding::Windows1252);
    // The block lives as long as a cell points into it.
    if (block->ref.fetch_sub(1) == 1)
        delete block;
    EXPECT_EQ(part.asText(), QStringLiteral("A-1"));
    EXPECT_EQ(name.asText(), QStringLiteral("Caf\u00e9 \u20ac"));
    EXPECT_TRUE(part.isText());
    EXPECT_FALSE(part.isBlank());
    // The copy is what is tested.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const Cell copy = name;
    EXPECT_EQ(copy, name);
    EXPECT_EQ(copy, Cell(QStringLiteral("Caf\u00e9 \u20ac")));
    EXPECT_NE(copy, Cell(QStringLiteral("Caf\u00e9 \u20ac ")));
}

TEST(CellTextTest, Utf8CellsReadAsTheirText)
{
    auto *block = new CellTextBlock;
    block->bytes = QByteArray("\xe8\x9e\xba \xf0\x9f\x99\x82");
    const Cell cell = Cell::inBlock(block, 0, block->bytes.size(), TextEncoding::Utf8);
    block->ref.fetch_sub(1);
    EXPECT_EQ(cell.asText(), QStringLiteral("\u87ba \U0001F642"));
    EXPECT_EQ(cell, Cell(QStringLiteral("\u87ba \U0001F642")));
}

TEST(CellTextTest, ComparisonOrdersAsQStringDoesInEveryEncoding)
{
    // Windows-1252 bytes and UTF-8 do not sort like their characters' code units; the
    // comparison must give QString's order all the same.
    const QString texts[] = { QStringLiteral("abc"), QStringLiteral("ab"),
        QStringLiteral("\u20ac1"), QStringLiteral("\u00e91"), QStringLiteral("\U0001F642"),
        QStringLiteral("\uFB01x"), QString(), QStringLiteral("Z"), QStringLiteral("\u0178") };
    const auto cellsOf = [&](const QString &text) {
        std::vector<Cell> cells { Cell(text) };
        auto *utf8 = new CellTextBlock;
        utf8->bytes = text.toUtf8();
        cells.push_back(Cell::inBlock(utf8, 0, utf8->bytes.size(), TextEncoding::Utf8));
        utf8->ref.fetch_sub(1);
        QByteArray bytes;
        bool fits = true;
        for (const QChar ch : text) {
            const int byte = celltext::windows1252Byte(ch.unicode());
            fits = fits && byte >= 0;
            bytes.append(char(byte));
        }
        if (fits) {
            auto *cp = new CellTextBlock;
            cp->bytes = bytes;
            cells.push_back(Cell::inBlock(cp, 0, bytes.size(), TextEncoding::Windows1252));
            cp->ref.fetch_sub(1);
        }
        return cells;
    };
    for (const QString &a : texts) {
        for (const QString &b : texts) {
            const int expected = QString::compare(a, b);
            for (const Cell &x : cellsOf(a)) {
                for (const Cell &y : cellsOf(b)) {
                    const int got = celltext::compare(x.textView(), y.textView());
                    EXPECT_EQ(got < 0, expected < 0) << a.toStdString() << " " << b.toStdString();
                    EXPECT_EQ(got == 0, expected == 0) << a.toStdString() << " " << b.toStdString();
                    EXPECT_EQ(x == y, a == b);
                }
            }
        }
    }
}

TEST(CellTextTest, CellsStaySmall)
{
    EXPECT_EQ(sizeof(Cell), 16u);
}

// Cuts end between characters as a reader sees them: never inside CR LF, an emoji of two
// units, a letter and its accent marks, a family emoji of joined ones.
TEST(CellTextTest, ACutEndsBetweenWholeCharacters)
{
    using celltext::leftWhole;
    EXPECT_EQ(leftWhole(QStringLiteral("abcdef"), 3), QStringLiteral("abc"));
    EXPECT_EQ(leftWhole(QStringLiteral("ab\r\ncd"), 3), QStringLiteral("ab"));
    EXPECT_EQ(leftWhole(QStringLiteral("ab\U0001F600c"), 3), QStringLiteral("ab"));
    EXPECT_EQ(leftWhole(QStringLiteral("abe\u0301\u0302f"), 4), QStringLiteral("ab"));
    EXPECT_EQ(leftWhole(QStringLiteral("a\U0001F469\u200D\U0001F467"), 5), QStringLiteral("a"));
    EXPECT_EQ(leftWhole(QStringLiteral("ab\u00E9c"), 3), QStringLiteral("ab\u00E9"));
    EXPECT_EQ(leftWhole(QStringLiteral("short"), 75), QStringLiteral("short"));
    // One character longer than the room (a letter with a hundred accent marks) is cut between
    // its code points, never to nothing.
    const QString marked = QStringLiteral("e") + QString(100, QChar(0x0301));
    EXPECT_EQ(leftWhole(marked, 75), marked.left(75));
    EXPECT_EQ(leftWhole(QStringLiteral("\U0001F600\U0001F601"), 1), QString());
}

} // namespace
} // namespace tarnwick
