// The reader takes a well-formed product the quick way and anything else the general way. A
// reading followed by the "test" command line's observer always goes the general way, so
// reading the same bytes with and without an observer must give the same table, the same
// result and the same line numbers in the messages, whatever the file holds.
#include "catalogue/cataloguereader.h"
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/cell.h"
#include "support/testlocale.h"

#include <gtest/gtest.h>

#include <QLocale>

#include <random>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

const std::string End = "\x7f\x7f\x7f";

struct Reading
{
    Table table;
    CatalogueReadResult result;
};

Reading readBytes(const std::string &bytes, const QLocale &locale, bool observed)
{
    Reading reading { Table(3, ProductRecord::FieldCount), {} };
    CatalogueReader reader(reading.table, locale);
    CatalogueReader::Observer observer;
    if (observed)
        observer.recordStarted = [](const QString &) {};
    reading.result = reader.read(QByteArray(bytes.data(), qsizetype(bytes.size())), observer);
    return reading;
}

QString describe(const Cell &cell)
{
    switch (cell.kind()) {
    case Cell::Kind::Empty:
        return QStringLiteral("empty");
    case Cell::Kind::Null:
        return QStringLiteral("null");
    case Cell::Kind::Text:
        return QStringLiteral("text:") + cell.asText();
    default:
        return QStringLiteral("number:%1:%2")
            .arg(int(cell.kind()))
            .arg(cell.asNumber(), 0, 'g', 17);
    }
}

/// Reads bytes both ways and expects the same outcome; returns the quick reading.
Reading expectBothWaysAlike(const std::string &bytes, const QLocale &locale = EnUs)
{
    Reading quick = readBytes(bytes, locale, false);
    const Reading general = readBytes(bytes, locale, true);
    EXPECT_EQ(quick.result.status, general.result.status);
    EXPECT_EQ(quick.result.errorNumber, general.result.errorNumber);
    EXPECT_EQ(quick.result.detail, general.result.detail);
    EXPECT_EQ(quick.result.rowsRead, general.result.rowsRead);
    EXPECT_EQ(quick.result.unreadNumbers.size(), general.result.unreadNumbers.size());
    for (qsizetype i = 0;
         i < std::min(quick.result.unreadNumbers.size(), general.result.unreadNumbers.size());
         ++i) {
        EXPECT_EQ(
            quick.result.unreadNumbers[i].partNumber, general.result.unreadNumbers[i].partNumber);
        EXPECT_EQ(quick.result.unreadNumbers[i].field, general.result.unreadNumbers[i].field);
        EXPECT_EQ(quick.result.unreadNumbers[i].text, general.result.unreadNumbers[i].text);
    }
    EXPECT_EQ(quick.table.rowCount(), general.table.rowCount());
    EXPECT_EQ(quick.table.fieldCount(), general.table.fieldCount());
    for (int row = 1; row <= std::min(quick.table.rowCount(), general.table.rowCount()); ++row) {
        for (int field = 1; field <= std::min(quick.table.fieldCount(), general.table.fieldCount());
             ++field) {
            EXPECT_EQ(
                describe(quick.table.get(row, field)), describe(general.table.get(row, field)))
                << "row " << row << ", field " << field;
        }
    }
    return quick;
}

/// One product line: the fields given, then empty ones up to fifteen, each with its field end.
std::string product(const std::vector<std::string> &fields, const std::string &after = "\r\n")
{
    std::string line;
    for (int i = 0; i < ProductRecord::FieldCount; ++i)
        line += (std::size_t(i) < fields.size() ? fields[std::size_t(i)] : std::string()) + End;
    return line + after;
}

std::string fullProduct(const std::string &partNumber)
{
    return product({ partNumber, "Widget of the finest kind", "12.50", "a note\r\nof two lines",
        "includes", "1", "12.50", "10", "11.25", "100", "10", "", "", "", "" });
}

TEST(CatalogueReaderTest, WellFormedProductsReadAsTheGeneralWayReadsThem)
{
    const Reading reading =
        expectBothWaysAlike(fullProduct("A-1") + fullProduct("B-2") + fullProduct("C-3"));
    EXPECT_EQ(reading.result.rowsRead, 3);
    EXPECT_EQ(reading.table.get(2, ProductRecord::PartNumber).asText(), QStringLiteral("B-2"));
    EXPECT_EQ(reading.table.get(1, ProductRecord::Price).kind(), Cell::Kind::Single);
    EXPECT_FLOAT_EQ(float(reading.table.get(1, ProductRecord::Price).asNumber()), 12.5f);
    EXPECT_EQ(reading.table.get(1, 4).asText(), QStringLiteral("a note\r\nof two lines"));
    EXPECT_EQ(reading.table.get(1, ProductRecord::PricePoint1).asText(), QStringLiteral("1"));
    EXPECT_EQ(reading.table.get(1, 15).kind(), Cell::Kind::Text);
    EXPECT_TRUE(reading.table.get(1, 15).asText().isEmpty());
}

TEST(CatalogueReaderTest, TheTableIsSizedToTheProductsOfTheFile)
{
    std::string bytes;
    for (int i = 0; i < 7; ++i)
        bytes += fullProduct("P-" + std::to_string(i));
    EXPECT_EQ(expectBothWaysAlike(bytes).table.rowCount(), 7);
    // A last product without its CR LF is a product too.
    bytes += product({ "LAST", "x", "1" }, "");
    const Reading reading = expectBothWaysAlike(bytes);
    EXPECT_EQ(reading.result.rowsRead, 8);
    EXPECT_EQ(reading.table.rowCount(), 8);
}

TEST(CatalogueReaderTest, OddLinesReadAsTheGeneralWayReadsThem)
{
    const std::string good = fullProduct("GOOD");
    const std::vector<std::string> odd = {
        product({ "A", "a DEL \x7f inside" }),
        product({ "A", "two DEL \x7f\x7f inside" }),
        product({ "A", "four DEL make a field end and one more", "\x7f" }),
        product({ "A", "x", "1", "\r\na note starting with a line break" }),
        product({ "A", "x", "1", "a DEL before a line break\x7f\r\nand more" }),
        product({ "A", "x", "1", "two DEL before a line break\x7f\x7f\r\nand more" }),
        product({ "A", "x", "$12.50" }),
        product({ "A", "x", "12,5" }),
        product({ "A", "x", "not a price" }),
        product({ "A", "x", "1", "", "", "1,5", "n/a", "1e3", ".5", "5." }),
        product({ "A", "x", "1234567890123456" }),
        product({ "A", "x", "1" }, "extra after the last field end\r\n"),
        "A" + End + "only" + End + "three" + End + "\r\n",
        "A" + End + "x" + End + "1" + End + "\r\n" + "continued" + End + "\r\n",
        product({ "A", "sixteen fields", "1" }, "sixteenth" + End + "\r\n"),
        product({ "A", "x", "1" }, "\n"),
        product({ "A", "x", "1" }, "\r"),
    };
    for (const std::string &line : odd) {
        SCOPED_TRACE(line);
        expectBothWaysAlike(std::string(good).append(line).append(good));
        expectBothWaysAlike(line + good);
        expectBothWaysAlike(good + line);
    }
}

TEST(CatalogueReaderTest, FieldsThatBeginWithALineBreakStayInTheirProduct)
{
    // Notes typed after an Enter at their start: a field end right before a CR LF.
    const std::string leading =
        product({ "LB-002", "Normal after", "5", "\r\nok", "\r\n", "\r\n1", "\r\n2.5" });
    const Reading reading = expectBothWaysAlike(fullProduct("A-1") + leading + fullProduct("C-3"));
    ASSERT_EQ(reading.result.status, CatalogueReadResult::Status::Ok);
    ASSERT_EQ(reading.result.rowsRead, 3);
    const Table &table = reading.table;
    EXPECT_EQ(table.get(2, ProductRecord::PartNumber).asText(), QStringLiteral("LB-002"));
    EXPECT_FLOAT_EQ(float(table.get(2, ProductRecord::Price).asNumber()), 5.0f);
    EXPECT_EQ(table.get(2, 4).asText(), QStringLiteral("\r\nok"));
    EXPECT_EQ(table.get(2, 5).asText(), QStringLiteral("\r\n"));
    EXPECT_EQ(table.get(2, 6).asText(), QStringLiteral("\r\n1"));
    EXPECT_EQ(table.get(2, 7).asText(), QStringLiteral("\r\n2.5"));
    EXPECT_TRUE(table.get(2, 15).asText().isEmpty());
    EXPECT_EQ(table.get(3, ProductRecord::PartNumber).asText(), QStringLiteral("C-3"));
    EXPECT_TRUE(reading.result.unreadNumbers.isEmpty());

    // A damaged product of three fields before a whole one: the whole one stays a product.
    const Reading damaged =
        expectBothWaysAlike("A" + End + "x" + End + "1" + End + "\r\n" + fullProduct("B-2"));
    ASSERT_EQ(damaged.result.rowsRead, 2);
    EXPECT_EQ(damaged.table.get(2, ProductRecord::PartNumber).asText(), QStringLiteral("B-2"));
}

TEST(CatalogueReaderTest, AFailureNamesTheSameLineEitherWay)
{
    // The first product has a note of three lines, so the line without a field end (a line
    // ending with one DEL) is the file's fourth line.
    const std::string first = product({ "A", "x", "1", "one\r\ntwo\r\nthree" });
    const Reading reading =
        expectBothWaysAlike(first + "no field end here\x7f\r\n" + fullProduct("B"));
    EXPECT_EQ(reading.result.status, CatalogueReadResult::Status::Failed);
    EXPECT_EQ(reading.result.rowsRead, 1);
    EXPECT_TRUE(reading.result.detail.contains(QStringLiteral("line 4 ")))
        << reading.result.detail.toStdString();
    // A file that ends inside a product.
    expectBothWaysAlike(first + fullProduct("B") + "C" + End + "x" + End);
}

TEST(CatalogueReaderTest, ACtrlZAfterTheLastLineIsTheEndOfTheFile)
{
    // Windows-1252 as an old Windows tool leaves it: the end-of-file mark after the last line.
    const std::string file = product({ "W-1", "Caf\xe9", "3.5" }) + fullProduct("B");
    for (const std::string &ending :
        { std::string("\x1a"), std::string("\x1a\x1a"), std::string("\x1a\r\n"),
            std::string("\x1a\0\0\0", 4), std::string("\x1a \r\n\x1a") }) {
        const Reading reading = expectBothWaysAlike(file + ending);
        EXPECT_EQ(reading.result.status, CatalogueReadResult::Status::Ok);
        EXPECT_EQ(reading.result.rowsRead, 2);
        EXPECT_EQ(reading.table.get(2, ProductRecord::PartNumber).asText(), QStringLiteral("B"));
    }
    // After a last line without its line end, too.
    const std::string unended = file.substr(0, file.size() - 2) + "\x1a";
    EXPECT_EQ(expectBothWaysAlike(unended).result.rowsRead, 2);
    // Inside a field it is a character like any other.
    const Reading inside = expectBothWaysAlike(product({ "Z-1", "a\x1a b", "1" }));
    EXPECT_EQ(inside.table.get(1, ProductRecord::ProductName).asText(), QStringLiteral("a\x1a b"));
}

TEST(CatalogueReaderTest, EncodingsAndTheByteOrderMarkReadAlike)
{
    const std::string utf8 = product({ "U-1", "Caf\xc3\xa9 \xe2\x82\xac", "3.5" });
    const std::string cp1252 = product({ "W-1", "Caf\xe9 \x80", "3.5" });
    expectBothWaysAlike(utf8 + fullProduct("B"));
    expectBothWaysAlike("\xef\xbb\xbf" + utf8 + fullProduct("B"));
    expectBothWaysAlike(cp1252 + fullProduct("B"));
    const Reading reading = expectBothWaysAlike("\xef\xbb\xbf" + utf8);
    EXPECT_EQ(reading.table.get(1, ProductRecord::ProductName).asText(),
        QStringLiteral("Caf\u00e9 \u20ac"));
    EXPECT_EQ(reading.table.get(1, ProductRecord::PartNumber).asText(), QStringLiteral("U-1"));
}

TEST(CatalogueReaderTest, EveryTextCellHoldsOneReferenceToTheFileBytes)
{
    // Well-formed products (the quick way) around one that is not (the general way).
    std::string bytes;
    for (int i = 0; i < 20; ++i)
        bytes += fullProduct("Q" + std::to_string(i));
    bytes += product({ "ODD", "price", "not a number" });
    for (int i = 20; i < 40; ++i)
        bytes += fullProduct("Q" + std::to_string(i));
    Reading reading = readBytes(bytes, EnUs, false);
    ASSERT_EQ(reading.result.rowsRead, 41);
    Table &table = reading.table;
    const CellTextBlock *fileBytes = table.get(1, ProductRecord::PartNumber).textBlock();
    ASSERT_NE(fileBytes, nullptr);
    int cells = 0;
    for (int row = 1; row <= table.rowCount(); ++row) {
        for (int field = 1; field <= table.fieldCount(); ++field)
            cells += table.get(row, field).textBlock() == fileBytes ? 1 : 0;
    }
    // The reader has let go of its own reference: the cells hold the rest, one each.
    EXPECT_EQ(fileBytes->ref.load(), cells);
    // Replaced one by one, every cell gives its reference back; the last one still reads its
    // text (a count too low would have freed the bytes under it, which the sanitizer build
    // reports).
    for (int row = 1; row <= table.rowCount(); ++row) {
        for (int field = 1; field <= table.fieldCount(); ++field) {
            if (row == table.rowCount() && field == ProductRecord::PartNumber)
                continue;
            table.put(row, field, Cell(qint32(row)));
        }
    }
    EXPECT_EQ(fileBytes->ref.load(), 1);
    EXPECT_EQ(
        table.get(table.rowCount(), ProductRecord::PartNumber).asText(), QStringLiteral("Q39"));
}

TEST(CatalogueReaderTest, WhereTheStoredFormIsNotTheUsersTheNumbersReadAlike)
{
    expectBothWaysAlike(fullProduct("A") + product({ "B", "x", "1.5", "", "", "2.5", "3" }), DeDe);
}

TEST(CatalogueReaderTest, RandomFilesReadAlikeEitherWay)
{
    // Lines made of field ends, line breaks, lone DEL, numbers and words in random order:
    // each file mixes well-formed products with every kind of damage.
    const std::vector<std::string> pieces = { "a", "Word", "12", "12.50", ".", ",", "$", "\x7f",
        "\x7f\x7f", End, End, End, End, "\r\n", "\r", "\n", "\xe9", "\xc3\xa9" };
    std::mt19937 random(20261124);
    for (int file = 0; file < 400; ++file) {
        std::string bytes;
        const int products = int(random() % 6) + 1;
        for (int p = 0; p < products; ++p) {
            if (random() % 3 != 0) {
                bytes += fullProduct("P" + std::to_string(p));
                continue;
            }
            const int count = int(random() % 40);
            for (int i = 0; i < count; ++i)
                bytes += pieces[random() % pieces.size()];
            if (random() % 2 == 0)
                bytes += End + "\r\n";
        }
        SCOPED_TRACE(file);
        expectBothWaysAlike(bytes);
        if (::testing::Test::HasFailure())
            break;
    }
}

} // namespace
} // namespace tarnwick::test
