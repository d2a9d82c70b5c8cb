// The reader process's output: what the reader writes reads back as the same cells, and any
// other bytes (cut short, reordered, made up) give Malformed, never a crash.
#include "exchange/sheetcells.h"
#include "exchange/workbookwire.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace tarnwick;
using WorkbookWire::Decoder;

namespace {

QByteArray encoded(const SheetCells &workbook, int chunkBytes = 1 << 16)
{
    QByteArray out;
    int pieces = 0;
    WorkbookWire::writeWorkbook(
        workbook,
        [&](const QByteArray &bytes) {
            out += bytes;
            ++pieces;
        },
        chunkBytes);
    EXPECT_GE(pieces, 1);
    return out;
}

/// Feeds bytes in pieces of the given sizes, in turn, then ends the stream.
Decoder::State decodeInPieces(Decoder &decoder, const QByteArray &bytes, std::vector<int> sizes)
{
    qsizetype at = 0;
    for (std::size_t i = 0; at < bytes.size(); ++i) {
        const qsizetype size = std::min<qsizetype>(sizes[i % sizes.size()], bytes.size() - at);
        decoder.feed(QByteArrayView(bytes).sliced(at, size));
        at += size;
    }
    return decoder.finish();
}

/// Puts a text into a cell, as a reader does.
void setCell(SheetCells &sheet, int column, int row, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    sheet.put(row, column, sheet.addText(std::string_view(bytes.constData(), bytes.size())));
}

/// A sheet as the readers keep it: what lies beyond column R or below an empty row is not kept.
SheetCells sampleSheet()
{
    SheetCells sheet;
    setCell(sheet, 0, 1, QStringLiteral("Part Number"));
    setCell(sheet, 1, 1, QStringLiteral("Product Name"));
    setCell(sheet, 17, 1, QStringLiteral("Column R"));
    setCell(sheet, 18, 1, QStringLiteral("Column S never travels"));
    setCell(sheet, 0, 2, QStringLiteral("AB-100"));
    setCell(sheet, 1, 2, QStringLiteral("Grüne Tasse \u20ac 12,50 \U0001F600"));
    setCell(sheet, 2, 2, QStringLiteral("12.5"));
    setCell(sheet, 3, 3, QStringLiteral("only D"));
    setCell(sheet, 4, 4, QStringLiteral("Line one\nLine two\tand a tab"));
    // Row 5 is empty in A to R: nothing after it is ever read.
    setCell(sheet, 20, 5, QStringLiteral("beyond R"));
    setCell(sheet, 0, 6, QStringLiteral("after the empty row"));
    sheet.finish();
    return sheet;
}

void expectSameCellsUpToRow(const IWorkbook &expected, const IWorkbook &actual, int rows)
{
    for (int row = 0; row <= rows + 1; ++row) {
        for (int column = -1; column <= WorkbookWire::Columns; ++column) {
            const QString want =
                (column >= 0 && column < WorkbookWire::Columns && row >= 1 && row <= rows)
                ? expected.cellText(column, row)
                : QString();
            EXPECT_EQ(actual.cellText(column, row), want) << "column " << column << " row " << row;
        }
    }
}

} // namespace

TEST(WorkbookWire, CellsOfColumnsAToRReadBackUpToTheFirstEmptyRow)
{
    const SheetCells sheet = sampleSheet();
    for (const std::vector<int> &sizes : { std::vector<int> { 1 << 20 }, std::vector<int> { 1 },
             std::vector<int> { 3, 7, 1, 11 } }) {
        Decoder decoder;
        ASSERT_EQ(decodeInPieces(decoder, encoded(sheet), sizes), Decoder::State::Read);
        EXPECT_EQ(decoder.rows(), 4);
        const std::unique_ptr<IWorkbook> read = decoder.takeWorkbook();
        ASSERT_NE(read, nullptr);
        expectSameCellsUpToRow(sheet, *read, 4);
        EXPECT_EQ(read->cellText(1, 2), QStringLiteral("Grüne Tasse \u20ac 12,50 \U0001F600"));
        EXPECT_EQ(read->cellText(18, 1), QString());
        EXPECT_EQ(read->cellText(0, 6), QString());
        EXPECT_EQ(decoder.takeWorkbook(), nullptr) << "the worksheet is handed over once";
    }
}

TEST(WorkbookWire, ErrorCellsTravelAsErrorsWithoutText)
{
    SheetCells sheet;
    setCell(sheet, 0, 1, QStringLiteral("Part Number"));
    sheet.putError(1, 2);
    sheet.putError(2, 0);
    setCell(sheet, 1, 2, QStringLiteral("after an error"));
    sheet.putError(2, 17);
    sheet.finish();
    Decoder decoder;
    ASSERT_EQ(decodeInPieces(decoder, encoded(sheet), { 3 }), Decoder::State::Read);
    EXPECT_EQ(decoder.rows(), 2) << "a row of errors is no empty row";
    const std::unique_ptr<IWorkbook> read = decoder.takeWorkbook();
    for (int row = 1; row <= 3; ++row) {
        for (int column = 0; column < WorkbookWire::Columns; ++column) {
            EXPECT_EQ(read->isError(column, row), sheet.isError(column, row))
                << "column " << column << " row " << row;
            EXPECT_EQ(read->cellText(column, row), sheet.cellText(column, row));
        }
    }
    EXPECT_TRUE(read->isError(2, 1));
    EXPECT_TRUE(read->isError(0, 2));
    EXPECT_TRUE(read->isError(17, 2));
    EXPECT_FALSE(read->isError(1, 2));
    EXPECT_EQ(read->cellText(2, 1), QString());
    EXPECT_EQ(read->cellText(1, 2), QStringLiteral("after an error"));
    EXPECT_FALSE(read->isError(-1, 1));
    EXPECT_FALSE(read->isError(18, 2));
}

// The program reads a text cell's digits as the user's locale does, so a text that could pass
// for a number says it is text; other texts and values need not.
TEST(WorkbookWire, ATextThatLooksLikeANumberTravelsAsText)
{
    SheetCells sheet;
    setCell(sheet, 0, 1, QStringLiteral("1.25"));
    sheet.putText(1, 1, sheet.addText("1.250"));
    sheet.putText(1, 2, sheet.addText("Brass"));
    sheet.putText(1, 3, sheet.addText("10003"));
    sheet.putError(1, 4);
    sheet.finish();
    Decoder decoder;
    ASSERT_EQ(decodeInPieces(decoder, encoded(sheet), { 2 }), Decoder::State::Read);
    const std::unique_ptr<IWorkbook> read = decoder.takeWorkbook();
    EXPECT_FALSE(read->isTextCell(0, 1)) << "a number";
    EXPECT_TRUE(read->isTextCell(1, 1));
    EXPECT_EQ(read->cellText(1, 1), QStringLiteral("1.250"));
    EXPECT_FALSE(read->isTextCell(2, 1)) << "reads the same either way";
    EXPECT_EQ(read->cellText(2, 1), QStringLiteral("Brass"));
    EXPECT_TRUE(read->isTextCell(3, 1));
    EXPECT_FALSE(read->isTextCell(4, 1));
    EXPECT_TRUE(read->isError(4, 1));
    EXPECT_FALSE(read->isTextCell(1, 2)) << "outside the sheet";
}

TEST(WorkbookWire, AnEmptySheetIsReadAsNoRows)
{
    Decoder decoder;
    SheetCells empty;
    empty.finish();
    ASSERT_EQ(decodeInPieces(decoder, encoded(empty), { 2 }), Decoder::State::Read);
    EXPECT_EQ(decoder.rows(), 0);
    EXPECT_EQ(decoder.takeWorkbook()->cellText(0, 1), QString());
}

TEST(WorkbookWire, ALargeSheetTravelsInPieces)
{
    SheetCells sheet;
    for (int row = 1; row <= 3000; ++row) {
        for (int column = 0; column < WorkbookWire::Columns; column += 2)
            setCell(sheet, column, row, QStringLiteral("R%1C%2").arg(row).arg(column));
    }
    sheet.finish();
    QByteArray out;
    int pieces = 0;
    WorkbookWire::writeWorkbook(
        sheet,
        [&](const QByteArray &bytes) {
            out += bytes;
            ++pieces;
        },
        4096);
    EXPECT_GT(pieces, 10);
    Decoder decoder;
    ASSERT_EQ(decodeInPieces(decoder, out, { 1000, 17 }), Decoder::State::Read);
    expectSameCellsUpToRow(sheet, *decoder.takeWorkbook(), 3000);
}

TEST(WorkbookWire, AVeryLongCellIsCutWithoutSplittingACharacter)
{
    SheetCells sheet;
    setCell(sheet, 0, 1, QString(WorkbookWire::MaxCellBytes, QChar(0x20ac)));
    sheet.finish();
    Decoder decoder;
    ASSERT_EQ(decodeInPieces(decoder, encoded(sheet), { 65536 }), Decoder::State::Read);
    const QString text = decoder.takeWorkbook()->cellText(0, 1);
    EXPECT_EQ(text.size(), WorkbookWire::MaxCellBytes / 3);
    EXPECT_EQ(text, QString(text.size(), QChar(0x20ac)));
}

TEST(WorkbookWire, TheReadersErrorTravelsWithItsNumber)
{
    Decoder decoder;
    const QByteArray bytes = WorkbookWire::failureMessage(21, QStringLiteral("Not a workbook"));
    ASSERT_EQ(decodeInPieces(decoder, bytes, { 5 }), Decoder::State::Failed);
    EXPECT_EQ(decoder.errorNumber(), 21);
    EXPECT_EQ(decoder.errorText(), QStringLiteral("Not a workbook"));
    EXPECT_EQ(decoder.takeWorkbook(), nullptr);
}

TEST(WorkbookWire, AStreamCutShortAnywhereIsMalformed)
{
    const QByteArray bytes = encoded(sampleSheet());
    for (qsizetype length = 0; length < bytes.size(); ++length) {
        Decoder decoder;
        decoder.feed(bytes.first(length));
        EXPECT_EQ(decoder.finish(), Decoder::State::Malformed) << length;
        EXPECT_EQ(decoder.takeWorkbook(), nullptr);
    }
}

TEST(WorkbookWire, BytesThatBreakTheRulesAreMalformed)
{
    const QByteArray header("TWWBK02\n");
    auto cell = [](quint32 row, char column, quint32 length, const QByteArray &text) {
        QByteArray out(1, 'C');
        out.append(reinterpret_cast<const char *>(&row), 4); // the test machines are little-endian
        out.append(column);
        out.append(reinterpret_cast<const char *>(&length), 4);
        return out + text;
    };
    auto end = [](quint32 rows) {
        return QByteArray(1, 'E') + QByteArray(reinterpret_cast<const char *>(&rows), 4);
    };
    auto errorCell = [](quint32 row, char column) {
        return QByteArray(1, 'X') + QByteArray(reinterpret_cast<const char *>(&row), 4) + column;
    };
    const std::vector<std::pair<const char *, QByteArray>> cases {
        { "a text that is no UTF-8", header + cell(1, 0, 2, "\xC3(") + end(1) },
        { "a text cut inside a character", header + cell(1, 0, 1, "\xC3") + end(1) },
        { "a character cut between two texts",
            header + cell(1, 0, 1, "\xC3") + cell(1, 1, 1, "\xA9") + end(1) },
        { "a character cut across an empty text",
            header + cell(1, 0, 1, "\xC3") + cell(1, 1, 0, "") + cell(1, 2, 1, "\xA9") + end(1) },
        { "a text cut inside a character at the end",
            header + cell(1, 0, 1, "x") + cell(1, 1, 2, "y\xE2") + end(1) },
        { "an error cell in column S", header + errorCell(1, 18) + end(1) },
        { "an error cell before the cell to its left",
            header + cell(1, 3, 1, "x") + errorCell(1, 2) + end(1) },
        { "an error cell where a text was",
            header + cell(1, 3, 1, "x") + errorCell(1, 3) + end(1) },
        { "an error cell a row too far", header + errorCell(2, 0) + end(2) },
        { "another header", QByteArray("TWWBK01\n") + end(0) },
        { "no header", end(0) },
        { "unknown frame", header + "Z" + end(0) },
        { "row 0", header + cell(0, 0, 1, "x") + end(0) },
        { "a row skipped", header + cell(1, 0, 1, "x") + cell(3, 0, 1, "y") + end(3) },
        { "first row is 2", header + cell(2, 0, 1, "x") + end(2) },
        { "column S", header + cell(1, 18, 1, "x") + end(1) },
        { "column 255", header + cell(1, char(255), 1, "x") + end(1) },
        { "cells out of order", header + cell(1, 3, 1, "x") + cell(1, 2, 1, "y") + end(1) },
        { "a cell twice", header + cell(1, 3, 1, "x") + cell(1, 3, 1, "y") + end(1) },
        { "back to an earlier row",
            header + cell(1, 0, 1, "x") + cell(2, 0, 1, "y") + cell(1, 5, 1, "z") + end(2) },
        { "wrong row count", header + cell(1, 0, 1, "x") + end(2) },
        { "bytes after the end", header + end(0) + "C" },
        { "two ends", header + end(0) + end(0) },
        { "an error text too long",
            header + "F" + QByteArray(4, '\1') + QByteArray("\xff\xff", 2) + QByteArray(2, '\0') },
    };
    for (const auto &[what, bytes] : cases) {
        Decoder decoder;
        decoder.feed(bytes);
        EXPECT_EQ(decoder.finish(), Decoder::State::Malformed) << what;
        EXPECT_EQ(decoder.takeWorkbook(), nullptr) << what;
    }
}

TEST(WorkbookWire, ALengthBeyondTheLimitIsRefusedBeforeItsBytesArrive)
{
    Decoder decoder;
    QByteArray bytes("TWWBK02\nC");
    const quint32 row = 1;
    const quint32 length = WorkbookWire::MaxCellBytes + 1;
    bytes.append(reinterpret_cast<const char *>(&row), 4);
    bytes.append('\0');
    bytes.append(reinterpret_cast<const char *>(&length), 4);
    EXPECT_EQ(decoder.feed(bytes), Decoder::State::Malformed);
}

TEST(WorkbookWire, RandomAndDamagedBytesNeverCrashTheDecoder)
{
    QRandomGenerator random(20261125);
    const QByteArray valid = encoded(sampleSheet());
    for (int round = 0; round < 3000; ++round) {
        QByteArray bytes;
        if (round % 3 == 0) {
            bytes.resize(random.bounded(1, 400));
            for (char &byte : bytes)
                byte = char(random.bounded(256));
            if (round % 2 == 0)
                bytes.prepend("TWWBK02\n");
        } else {
            bytes = valid;
            for (int flips = random.bounded(1, 6); flips > 0; --flips)
                bytes[random.bounded(bytes.size())] = char(random.bounded(256));
        }
        Decoder decoder;
        const Decoder::State state = decodeInPieces(decoder, bytes, { random.bounded(1, 64) });
        ASSERT_NE(state, Decoder::State::Reading);
        if (state == Decoder::State::Read) {
            const std::unique_ptr<IWorkbook> read = decoder.takeWorkbook();
            ASSERT_NE(read, nullptr);
            ASSERT_LE(decoder.rows(), bytes.size() / 10) << "each row takes a frame";
            for (int row = 0; row <= decoder.rows() + 1; ++row) {
                for (int column = -1; column <= WorkbookWire::Columns; ++column)
                    EXPECT_LE(read->cellText(column, row).size(), bytes.size());
            }
        }
    }
}

namespace {

/// A sheet read with a SheetWriter listening, as the reader process reads one: what went out
/// while the cells were put (before finish), and all of the output.
struct StreamedSheet
{
    SheetCells cells;
    QByteArray beforeFinish;
    QByteArray output;
};

template <typename Put> std::unique_ptr<StreamedSheet> streamSheet(Put &&put)
{
    auto streamed = std::make_unique<StreamedSheet>();
    WorkbookWire::SheetWriter writer([&](const QByteArray &bytes) { streamed->output += bytes; },
        /*chunkBytes=*/1);
    SheetCells &cells = streamed->cells;
    cells.setRowCompleteListener([&] { writer.writeCompleteRows(cells); });
    put(cells);
    streamed->beforeFinish = streamed->output;
    cells.finish();
    writer.finish(cells);
    return streamed;
}

std::unique_ptr<IWorkbook> decodedSheet(const QByteArray &bytes)
{
    Decoder decoder;
    EXPECT_EQ(decodeInPieces(decoder, bytes, { 5, 64 }), Decoder::State::Read);
    return decoder.takeWorkbook();
}

} // namespace

TEST(WorkbookWire, RowsGoOutWhileTheSheetIsReadAndReadBackAsTheWholeSheetDoes)
{
    const auto streamed = streamSheet([](SheetCells &cells) {
        setCell(cells, 0, 1, QStringLiteral("Part Number"));
        setCell(cells, 1, 1, QStringLiteral("Name"));
        setCell(cells, 0, 2, QStringLiteral("A-1"));
        cells.putError(2, 2);
        setCell(cells, 0, 3, QStringLiteral("B-2"));
        cells.repeatRow(3, 3); // rows 3 to 5
        setCell(cells, 0, 6, QStringLiteral("C-3"));
        setCell(cells, 4, 6, QStringLiteral("last row, still open"));
    });
    const SheetCells &cells = streamed->cells;
    EXPECT_FALSE(cells.wasReordered());
    EXPECT_EQ(cells.rowCount(), 6);
    // Rows 1 to 5 were complete before the reading ended; row 6 only at its end.
    Decoder early;
    early.feed(streamed->beforeFinish);
    EXPECT_EQ(early.state(), Decoder::State::Reading);
    EXPECT_EQ(early.rows(), 5);
    EXPECT_EQ(streamed->output, encoded(cells)) << "the same bytes as the sheet written at once";
    const std::unique_ptr<IWorkbook> read = decodedSheet(streamed->output);
    ASSERT_NE(read, nullptr);
    expectSameCellsUpToRow(cells, *read, 6);
    EXPECT_EQ(read->cellText(0, 5), QStringLiteral("B-2"));
    EXPECT_TRUE(read->isError(2, 2));
}

TEST(WorkbookWire, RowsWrittenBeforeCellsCameOutOfOrderAreWithdrawn)
{
    const auto streamed = streamSheet([](SheetCells &cells) {
        setCell(cells, 0, 1, QStringLiteral("Part Number"));
        setCell(cells, 0, 2, QStringLiteral("A-1"));
        setCell(cells, 0, 3, QStringLiteral("B-2"));
        setCell(cells, 1, 1, QStringLiteral("a late header")); // row 1 again
        setCell(cells, 0, 2, QStringLiteral("A-1 again")); // the later value stays
        setCell(cells, 0, 4, QStringLiteral("D-4"));
    });
    const SheetCells &cells = streamed->cells;
    EXPECT_TRUE(cells.wasReordered());
    Decoder early;
    early.feed(streamed->beforeFinish);
    EXPECT_EQ(early.rows(), 2) << "rows 1 and 2 had gone out";
    Decoder decoder;
    ASSERT_EQ(decodeInPieces(decoder, streamed->output, { 3 }), Decoder::State::Read);
    EXPECT_EQ(decoder.withdrawnBytes(), streamed->beforeFinish.size() + 1)
        << "what went out before, and the reset";
    const std::unique_ptr<IWorkbook> read = decoder.takeWorkbook();
    ASSERT_NE(read, nullptr);
    expectSameCellsUpToRow(cells, *read, 4);
    EXPECT_EQ(read->cellText(1, 1), QStringLiteral("a late header"));
    EXPECT_EQ(read->cellText(0, 2), QStringLiteral("A-1 again"));
}

TEST(WorkbookWire, NothingGoesOutOfASheetThatDoesNotStartAtRowOne)
{
    const auto streamed = streamSheet([](SheetCells &cells) {
        setCell(cells, 0, 2, QStringLiteral("row 2"));
        setCell(cells, 0, 3, QStringLiteral("row 3"));
        setCell(cells, 0, 4, QStringLiteral("row 4"));
    });
    EXPECT_EQ(streamed->cells.rowCount(), 0);
    const std::unique_ptr<IWorkbook> read = decodedSheet(streamed->output);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->cellText(0, 2), QString());
}

TEST(WorkbookWire, AFailureAfterRowsWentOutIsTheResult)
{
    QByteArray output;
    WorkbookWire::SheetWriter writer([&](const QByteArray &bytes) { output += bytes; });
    SheetCells cells;
    cells.setRowCompleteListener([&] { writer.writeCompleteRows(cells); });
    setCell(cells, 0, 1, QStringLiteral("Part Number"));
    setCell(cells, 0, 2, QStringLiteral("A-1"));
    writer.fail(432, QStringLiteral("not a workbook after all"));
    Decoder decoder;
    EXPECT_EQ(decodeInPieces(decoder, output, { 2 }), Decoder::State::Failed);
    EXPECT_EQ(decoder.errorNumber(), 432);
    EXPECT_EQ(decoder.errorText(), QStringLiteral("not a workbook after all"));
    EXPECT_EQ(decoder.takeWorkbook(), nullptr);
}

TEST(WorkbookWire, AReaderWithdrawsItsRowsOnceAtMost)
{
    SheetCells sheet;
    setCell(sheet, 0, 1, QStringLiteral("Part Number"));
    sheet.finish();
    QByteArray bytes = encoded(sheet);
    const QByteArray end = bytes.right(5);
    bytes.chop(5);
    Decoder once;
    once.feed(bytes + "R" + bytes.mid(8) + end);
    EXPECT_EQ(once.state(), Decoder::State::Read);
    EXPECT_EQ(once.withdrawnBytes(), bytes.size() + 1);
    Decoder twice;
    twice.feed(bytes + "R" + bytes.mid(8) + "R" + bytes.mid(8) + end);
    EXPECT_EQ(twice.state(), Decoder::State::Malformed);
}
