// The Excel 97 workbook stream, record by record: workbook streams built here hold each kind of
// cell record, strings split across CONTINUE records, and every kind of damage.
#include "exchange/biffworkbook.h"
#include "exchange/sheetcells.h"

#include <QRandomGenerator>
#include <QtEndian>

#include <cstring>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

QByteArray u8(int value)
{
    return QByteArray(1, char(value));
}

QByteArray u16(int value)
{
    char bytes[2];
    qToLittleEndian(quint16(value), bytes);
    return QByteArray(bytes, 2);
}

QByteArray u32(quint32 value)
{
    char bytes[4];
    qToLittleEndian(value, bytes);
    return QByteArray(bytes, 4);
}

QByteArray f64(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    char bytes[8];
    qToLittleEndian(bits, bytes);
    return QByteArray(bytes, 8);
}

QByteArray record(int type, const QByteArray &data)
{
    return u16(type) + u16(int(data.size())) + data;
}

/// The characters of an XLUnicodeString: one byte each, or UTF-16 with the flag 1.
QByteArray chars8(const QByteArray &latin1)
{
    return latin1;
}

QByteArray chars16(const QString &text)
{
    QByteArray bytes;
    for (const QChar c : text)
        bytes += u16(c.unicode());
    return bytes;
}

QByteArray string8(const QByteArray &latin1)
{
    return u16(int(latin1.size())) + u8(0) + chars8(latin1);
}

QByteArray string16(const QString &text)
{
    return u16(int(text.size())) + u8(1) + chars16(text);
}

QByteArray bof(int substream)
{
    return record(0x0809, u16(0x0600) + u16(substream) + QByteArray(12, '\0'));
}

QByteArray eof()
{
    return record(0x000A, QByteArray());
}

QByteArray cellHead(int row, int column, int xf = 15)
{
    return u16(row) + u16(column) + u16(xf);
}

/// Twenty-one XFs: 0 to 15 General, 16 the format 164, 17 the built-in date 14, 18 the format
/// 165, 19 the built-in time 21, 20 the format 166.
QByteArray standardFormats()
{
    QByteArray records;
    records += record(0x041E, u16(164) + string8("yyyy\\-mm\\-dd"));
    records += record(0x041E, u16(165) + string8("\"TRUE\";\"TRUE\";\"FALSE\""));
    records += record(0x041E, u16(166) + string8("0.00%"));
    for (int i = 0; i < 16; ++i)
        records += record(0x00E0, u16(0) + u16(0) + QByteArray(16, '\0'));
    for (const int format : { 164, 14, 165, 21, 166 })
        records += record(0x00E0, u16(0) + u16(format) + QByteArray(16, '\0'));
    return records;
}

/// A workbook stream: the globals with the given records and a sheet list naming one
/// worksheet, then that worksheet with the given records.
QByteArray workbookStream(
    const QByteArray &globalRecords, const QByteArray &sheetRecords, int sheetSubstream = 0x0010)
{
    const QByteArray name("Sheet1");
    QByteArray globals = bof(0x0005) + globalRecords;
    const qsizetype sheetAt = globals.size() + 4;
    globals += record(0x0085, u32(0) + u8(0) + u8(0) + u8(int(name.size())) + u8(0) + name);
    globals += eof();
    const QByteArray position = u32(quint32(globals.size()));
    globals.replace(sheetAt, 4, position);
    return globals + bof(sheetSubstream) + sheetRecords + eof();
}

struct Read
{
    bool ok = false;
    SheetCells cells;
};

std::unique_ptr<Read> readStream(const QByteArray &stream)
{
    auto read = std::make_unique<Read>();
    read->ok = Biff::readWorkbookStream(stream, read->cells);
    read->cells.finish();
    return read;
}

std::unique_ptr<Read> readSheet(const QByteArray &sheetRecords, const QByteArray &globals = {})
{
    return readStream(workbookStream(standardFormats() + globals, sheetRecords));
}

} // namespace

TEST(BiffWorkbook, NumbersOfEveryRecordKind)
{
    QByteArray sheet;
    sheet += record(0x0203, cellHead(0, 0) + f64(12.5));
    sheet += record(0x027E, cellHead(0, 1) + u32((10003u << 2) | 2)); // an integer
    sheet += record(0x027E, cellHead(0, 2) + u32((1234u << 2) | 3)); // an integer / 100
    quint64 bits = 0;
    const double quarter = -3.25;
    std::memcpy(&bits, &quarter, sizeof bits);
    sheet += record(0x027E, cellHead(0, 3) + u32(quint32(bits >> 32))); // the high bits
    sheet += record(0x00BD,
        u16(1) + u16(2) + u16(15) + u32((7u << 2) | 2) + u16(15) + u32((8u << 2) | 2) + u16(15)
            + u32((9u << 2) | 2) + u16(4));
    const auto read = readSheet(sheet);
    ASSERT_TRUE(read->ok);
    EXPECT_EQ(read->cells.cellText(0, 1), "12.5");
    EXPECT_EQ(read->cells.cellText(1, 1), "10003");
    EXPECT_EQ(read->cells.cellText(2, 1), "12.34");
    EXPECT_EQ(read->cells.cellText(3, 1), "-3.25");
    EXPECT_EQ(read->cells.cellText(2, 2), "7");
    EXPECT_EQ(read->cells.cellText(3, 2), "8");
    EXPECT_EQ(read->cells.cellText(4, 2), "9");
    EXPECT_EQ(read->cells.rowCount(), 2);
}

TEST(BiffWorkbook, CellFormatsMakeDatesTimesBooleansAndPercents)
{
    QByteArray sheet;
    sheet += record(0x0203, cellHead(0, 0, 16) + f64(45363.0));
    sheet += record(0x0203, cellHead(0, 1, 17) + f64(45363.6041666667));
    sheet += record(0x0203, cellHead(0, 2, 18) + f64(1.0));
    sheet += record(0x0203, cellHead(0, 3, 18) + f64(0.0));
    sheet += record(0x0203, cellHead(0, 4, 19) + f64(0.5));
    sheet += record(0x0203, cellHead(0, 5, 20) + f64(0.125));
    sheet += record(0x0203, cellHead(0, 6, 99) + f64(45363.0)); // no such XF: a number
    const auto read = readSheet(sheet);
    ASSERT_TRUE(read->ok);
    EXPECT_EQ(read->cells.cellText(0, 1), "2024-03-12");
    EXPECT_EQ(read->cells.cellText(1, 1), "2024-03-12 14:30:00");
    EXPECT_EQ(read->cells.cellText(2, 1), "TRUE");
    EXPECT_EQ(read->cells.cellText(3, 1), "FALSE");
    EXPECT_EQ(read->cells.cellText(4, 1), "12:00:00");
    EXPECT_EQ(read->cells.cellText(5, 1), "0.125");
    EXPECT_EQ(read->cells.cellText(6, 1), "45363");
    const auto system1904 =
        readSheet(record(0x0203, cellHead(0, 0, 16) + f64(43901.0)), record(0x0022, u16(1)));
    ASSERT_TRUE(system1904->ok);
    EXPECT_EQ(system1904->cells.cellText(0, 1), "2024-03-12");
}

TEST(BiffWorkbook, TextsBooleansErrorsAndFormulaResults)
{
    const QByteArray strings =
        record(0x00FC, u32(2) + u32(2) + string8("Shared") + string16("Zwölf"));
    QByteArray sheet;
    sheet += record(0x00FD, cellHead(0, 0) + u32(1));
    sheet += record(0x0204, cellHead(0, 1) + string8("Line 1\nLine 2"));
    sheet += record(0x0205, cellHead(0, 2) + u8(1) + u8(0));
    sheet += record(0x0205, cellHead(0, 3) + u8(0x07) + u8(1)); // #DIV/0!
    sheet += record(0x0201, cellHead(0, 4));
    sheet += record(0x00BE, u16(0) + u16(5) + u16(15) + u16(15) + u16(6));
    const QByteArray formulaTail = u16(0) + u32(0) + u16(0);
    sheet += record(0x0006, cellHead(1, 0) + f64(13.799999999999999) + formulaTail);
    sheet +=
        record(0x0006, cellHead(1, 1) + u8(0) + QByteArray(5, '\0') + u16(0xFFFF) + formulaTail);
    sheet += record(0x04BC, QByteArray(8, '\0')); // a shared formula before the result
    sheet += record(0x0207, string8("abcdef"));
    sheet += record(0x0006,
        cellHead(1, 2) + u8(1) + u8(0) + u8(1) + QByteArray(3, '\0') + u16(0xFFFF) + formulaTail);
    sheet += record(0x0006,
        cellHead(1, 3) + u8(2) + u8(0) + u8(0x2A) + QByteArray(3, '\0') + u16(0xFFFF)
            + formulaTail);
    sheet +=
        record(0x0006, cellHead(1, 4) + u8(3) + QByteArray(5, '\0') + u16(0xFFFF) + formulaTail);
    sheet += record(0x0207, string8("a STRING after no text result is no value"));
    const auto read = readSheet(sheet, strings);
    ASSERT_TRUE(read->ok);
    EXPECT_EQ(read->cells.cellText(0, 1), "Zwölf");
    EXPECT_EQ(read->cells.cellText(1, 1), "Line 1\r\nLine 2");
    EXPECT_EQ(read->cells.cellText(2, 1), "TRUE");
    EXPECT_TRUE(read->cells.isError(3, 1));
    EXPECT_EQ(read->cells.cellText(3, 1), "");
    EXPECT_EQ(read->cells.cellText(4, 1), "");
    EXPECT_EQ(read->cells.cellText(0, 2), "13.8");
    EXPECT_EQ(read->cells.cellText(1, 2), "abcdef");
    EXPECT_EQ(read->cells.cellText(2, 2), "TRUE");
    EXPECT_TRUE(read->cells.isError(3, 2));
    EXPECT_EQ(read->cells.cellText(4, 2), "");
    EXPECT_FALSE(read->cells.isError(4, 2));
}

TEST(BiffWorkbook, StringsGoOnInContinueRecordsWithTheirOwnWidth)
{
    // The second shared string starts in one byte per character and goes on in the CONTINUE
    // record in two; the third is a rich string with phonetic data, split in its runs.
    const QByteArray first = string8("First");
    const QByteArray secondHead = u16(10) + u8(0) + chars8("Grosse");
    const QByteArray secondRest = u8(1) + chars16(QStringLiteral("\u00c4\u00d6\u00dc\u20ac"));
    const QByteArray third = u16(4) + u8(0x0C) + u16(2) + u32(6) + chars8("Rich") + u32(0x00010000)
        + u32(0x00020001) + QByteArray(6, 'P');
    QByteArray sst = record(0x00FC, u32(3) + u32(3) + first + secondHead);
    sst += record(0x003C, secondRest + third.left(16));
    sst += record(0x003C, third.mid(16));
    QByteArray sheet;
    for (int i = 0; i < 3; ++i)
        sheet += record(0x00FD, cellHead(0, i) + u32(quint32(i)));
    // A formula's text result of 10,000 characters, in a STRING record and its CONTINUE.
    const QByteArray formulaTail = u16(0) + u32(0) + u16(0);
    sheet +=
        record(0x0006, cellHead(1, 0) + u8(0) + QByteArray(5, '\0') + u16(0xFFFF) + formulaTail);
    const QByteArray text = QByteArray(10000, 'a');
    sheet += record(0x0207, u16(10000) + u8(0) + text.left(8000));
    sheet += record(0x003C, u8(0) + text.mid(8000));
    const auto read = readSheet(sheet, sst);
    ASSERT_TRUE(read->ok);
    EXPECT_EQ(read->cells.cellText(0, 1), "First");
    EXPECT_EQ(read->cells.cellText(1, 1), QStringLiteral("Grosse\u00c4\u00d6\u00dc\u20ac"));
    EXPECT_EQ(read->cells.cellText(2, 1), "Rich");
    EXPECT_EQ(read->cells.cellText(0, 2), QString::fromLatin1(text));
}

TEST(BiffWorkbook, OnlyColumnsAToRAndTheRowsDownToTheFirstEmptyOne)
{
    QByteArray sheet;
    sheet += record(0x0203, cellHead(0, 17) + f64(1));
    sheet += record(0x0203, cellHead(0, 18) + f64(2));
    // A chart inside the worksheet has its own BOF and EOF; the cells after it still count.
    sheet += bof(0x0020) + record(0x0203, cellHead(5, 0) + f64(9)) + eof();
    sheet += record(0x0203, cellHead(1, 0) + f64(3));
    sheet += record(0x0203, cellHead(3, 0) + f64(4));
    const auto read = readSheet(sheet);
    ASSERT_TRUE(read->ok);
    EXPECT_EQ(read->cells.cellText(17, 1), "1");
    EXPECT_EQ(read->cells.cellText(18, 1), "");
    EXPECT_EQ(read->cells.cellText(0, 2), "3");
    EXPECT_EQ(read->cells.rowCount(), 2);
    EXPECT_EQ(read->cells.cellText(0, 4), "");
    EXPECT_EQ(read->cells.cellText(0, 6), "");
}

TEST(BiffWorkbook, DamagedOrForeignStreamsAreRefused)
{
    const QByteArray good = record(0x0203, cellHead(0, 0) + f64(1));
    ASSERT_TRUE(readSheet(good)->ok);
    QByteArray biff5 = workbookStream(QByteArray(), good);
    biff5[5] = 0x05;
    const QByteArray formulaTail = u16(0) + u32(0) + u16(0);
    const std::vector<std::pair<const char *, QByteArray>> cases {
        { "empty", QByteArray() },
        { "an Excel 5 workbook", biff5 },
        { "no worksheet where the sheet list says", workbookStream(QByteArray(), good, 0x0020) },
        { "encrypted", workbookStream(record(0x002F, QByteArray(6, '\0')), good) },
        { "no sheet list", bof(0x0005) + eof() + bof(0x0010) + good + eof() },
        { "no end of the globals", bof(0x0005) + standardFormats() },
        { "a sheet that never ends", workbookStream(QByteArray(), good).chopped(4) },
        { "a record past the end", workbookStream(QByteArray(), good + u16(0x0203) + u16(14)) },
        { "a number too short",
            workbookStream(QByteArray(), record(0x0203, QByteArray(10, '\0'))) },
        { "a size record too short (the damage that crashed freexl)",
            workbookStream(QByteArray(), record(0x0200, QByteArray(10, '\0'))) },
        { "a shared string that is not there",
            workbookStream(QByteArray(), record(0x00FD, cellHead(0, 0) + u32(0))) },
        { "cells of a MULRK that do not match its last column",
            workbookStream(
                QByteArray(), record(0x00BD, u16(0) + u16(0) + u16(15) + u32(2) + u16(5))) },
        { "a formula too short", workbookStream(QByteArray(), record(0x0006, cellHead(0, 0))) },
        { "a shared string list cut short",
            workbookStream(record(0x00FC, u32(1) + u32(1) + u16(50) + u8(0) + "abc"), good) },
        { "a label cut short",
            workbookStream(QByteArray(), record(0x0204, cellHead(0, 0) + u16(9) + u8(0) + "ab")) },
        { "a text result cut short",
            workbookStream(QByteArray(),
                record(0x0006,
                    cellHead(0, 0) + u8(0) + QByteArray(5, '\0') + u16(0xFFFF) + formulaTail)
                    + record(0x0207, u16(5) + u8(1) + "ab")) },
    };
    for (const auto &[what, stream] : cases)
        EXPECT_FALSE(readStream(stream)->ok) << what;
}

TEST(BiffWorkbook, RandomDamageNeverHurtsTheReader)
{
    const QByteArray strings =
        record(0x00FC, u32(2) + u32(2) + string8("Shared") + string16("Zw\u00f6lf"));
    QByteArray sheet;
    for (int row = 0; row < 20; ++row) {
        sheet += record(0x00FD, cellHead(row, 0) + u32(quint32(row % 2)));
        sheet += record(0x027E, cellHead(row, 1, 16) + u32((quint32(row) << 2) | 2));
        sheet += record(0x0204, cellHead(row, 2) + string16(QStringLiteral("L\u00e4bel")));
    }
    const QByteArray valid = workbookStream(standardFormats() + strings, sheet);
    ASSERT_TRUE(readStream(valid)->ok);
    QRandomGenerator random(20);
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes = valid;
        for (int flips = random.bounded(1, 8); flips > 0; --flips)
            bytes[random.bounded(bytes.size())] = char(random.bounded(256));
        if (round % 5 == 0)
            bytes.truncate(random.bounded(bytes.size()));
        const auto read = readStream(bytes);
        EXPECT_LE(read->cells.rowCount(), 61) << "a row for each cell record at most";
        for (int column = 0; column < SheetCells::Columns; ++column)
            EXPECT_LE(read->cells.cellText(column, 1).size(), bytes.size());
    }
}
