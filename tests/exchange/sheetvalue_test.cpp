// The rules by which every reader turns a cell into text, and the compact store the readers keep
// the cells in.
#include "exchange/sheetcells.h"
#include "exchange/sheetvalue.h"
#include "exchangetestdata.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

using namespace tarnwick;
using SheetValue::FormatKind;
using tarnwick::test::putValue;

namespace {

std::string number(double value)
{
    std::string out;
    SheetValue::appendNumber(out, value);
    return out;
}

std::string date(double serial, bool system1904 = false)
{
    std::string out;
    SheetValue::appendDate(out, serial, system1904);
    return out;
}

std::string timeText(double days)
{
    std::string out;
    SheetValue::appendTime(out, days);
    return out;
}

std::string text(std::string_view bytes)
{
    std::string out;
    SheetValue::appendText(out, bytes);
    return out;
}

std::string isoDate(std::string_view iso)
{
    std::int64_t day = 0;
    std::int64_t seconds = 0;
    if (!SheetValue::parseIsoDateTime(iso, day, seconds))
        return "(none)";
    std::string out;
    SheetValue::appendDayAndSeconds(out, day, seconds);
    return out;
}

} // namespace

TEST(SheetValue, NumbersAreTheirShortestDecimalOfFifteenDigits)
{
    EXPECT_EQ(number(12.5), "12.5");
    EXPECT_EQ(number(10003), "10003");
    EXPECT_EQ(number(-3.25), "-3.25");
    EXPECT_EQ(number(0.1), "0.1");
    EXPECT_EQ(number(0.1 + 0.2), "0.3");
    EXPECT_EQ(number(11.5 * 1.2), "13.8");
    EXPECT_EQ(number(1.0 / 3.0), "0.333333333333333");
    EXPECT_EQ(number(2.0 / 3.0), "0.666666666666667");
    EXPECT_EQ(number(12345678901234), "12345678901234");
    EXPECT_EQ(number(123456789012345), "123456789012345");
    EXPECT_EQ(number(1234567890123456), "1234567890123460");
    EXPECT_EQ(number(1e15), "1000000000000000");
    EXPECT_EQ(number(1e20), "100000000000000000000");
    EXPECT_EQ(number(1.5e-7), "0.00000015");
    EXPECT_EQ(number(-0.0), "0");
    EXPECT_EQ(number(0), "0");
    EXPECT_EQ(number(std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(number(std::nan("")), "");
    EXPECT_EQ(number(1.7976931348623157e308), "17976931348623157" + std::string(292, '0'));
    EXPECT_EQ(number(-1.7976931348623157e308).size(), 310u);
}

TEST(SheetValue, NumbersWithFewDecimalsAreTheShortestDecimalThatReadsBack)
{
    EXPECT_EQ(number(0.05), "0.05");
    EXPECT_EQ(number(-0.5), "-0.5");
    EXPECT_EQ(number(0.0001), "0.0001");
    EXPECT_EQ(number(-0.0125), "-0.0125");
    EXPECT_EQ(number(2.675), "2.675");
    EXPECT_EQ(number(99999999999.9999), "99999999999.9999");
    EXPECT_EQ(number(100000000000.5), "100000000000.5");
    EXPECT_EQ(number(0.00001), "0.00001");
    EXPECT_EQ(number(1.00001), "1.00001");
    // Every form is std::to_chars's shortest fixed form (at most fifteen digits here): decimals
    // of one to six places at every magnitude up to 10^15, and doubles of no short form.
    std::uint64_t state = 0x9E3779B97F4A7C15u;
    const auto next = [&state] {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return state;
    };
    const auto shortest = [](double value) {
        char buffer[400];
        const auto end =
            std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed).ptr;
        return std::string(buffer, end);
    };
    for (int i = 0; i < 200000; ++i) {
        const int places = 1 + int(next() % 6);
        const std::uint64_t limit = std::uint64_t(1) << (1 + next() % 49);
        const double whole = double(1 + next() % limit);
        double value = whole / std::pow(10.0, places);
        if (i % 3 == 0)
            value = std::nextafter(value, 1e300);
        if (i % 2 == 0)
            value = -value;
        const std::string expected = shortest(value);
        const std::size_t first = expected.find_first_not_of("-0.");
        const auto digits = first == std::string::npos
            ? 0
            : std::count_if(expected.begin() + std::ptrdiff_t(first), expected.end(),
                [](char c) { return c >= '0' && c <= '9'; });
        if (std::trunc(value) == value || digits > 15)
            continue;
        ASSERT_EQ(number(value), expected) << "the double nearest " << whole << "e-" << places;
    }
}

TEST(SheetValue, ANumberBeyondFifteenDigitsIsItsFirstFifteenAndZeros)
{
    // The doubles nearest these hold other digits after the fifteenth
    // (1E+40 is 10000000000000000303786028427003666890752).
    EXPECT_EQ(number(1e40), "1" + std::string(40, '0'));
    EXPECT_EQ(number(-5e39), "-5" + std::string(39, '0'));
    EXPECT_EQ(number(1e23), "1" + std::string(23, '0'));
    EXPECT_EQ(number(1.2345678901234567e20), "123456789012346000000");
    EXPECT_EQ(number(9.87654321098765e30), "9876543210987650" + std::string(15, '0'));
    EXPECT_EQ(number(1.5e-20), "0.000000000000000000015");
    EXPECT_EQ(number(1.2345678901234567e-5), "0.0000123456789012346");
    // What a spreadsheet file writes for such a number comes out the same.
    std::string plain;
    ASSERT_TRUE(SheetValue::appendPlainDecimal(plain, "1" + std::string(40, '0')));
    EXPECT_EQ(plain, number(1e40));
}

TEST(SheetValue, DatesAreIsoTextWithTheirTimeOfDay)
{
    EXPECT_EQ(date(45363), "2024-03-12");
    EXPECT_EQ(date(45363.6041666667), "2024-03-12 14:30:00");
    EXPECT_EQ(date(36525.9999884259), "1999-12-31 23:59:59");
    EXPECT_EQ(date(45363.99999999), "2024-03-13") << "rounded to the second";
    EXPECT_EQ(date(1), "1900-01-01");
    EXPECT_EQ(date(59), "1900-02-28");
    EXPECT_EQ(date(60), "1900-02-29") << "the day spreadsheets count in 1900";
    EXPECT_EQ(date(60.5), "1900-02-29 12:00:00");
    EXPECT_EQ(date(61), "1900-03-01");
    EXPECT_EQ(date(0), "1899-12-30");
    EXPECT_EQ(date(2958465), "9999-12-31");
    EXPECT_EQ(date(43901, true), "2024-03-12");
    EXPECT_EQ(date(0, true), "1904-01-01");
    EXPECT_EQ(date(3e6), "3000000") << "beyond the year 9999 a date is its number";
    EXPECT_EQ(date(-1e6), "-1000000");
    // Counted from 1899-12-30 in a workbook of the 1904 system too, as a date written as text is.
    EXPECT_EQ(date(2958465, true), "2959927");
    EXPECT_EQ(date(3e6, true), "3001462");
    EXPECT_EQ(isoDate("10004-01-01"), "2959927");
}

TEST(SheetValue, TimesAreHoursMinutesAndSeconds)
{
    EXPECT_EQ(timeText(0.6041666667), "14:30:00");
    EXPECT_EQ(timeText(1.5), "36:00:00");
    EXPECT_EQ(timeText(0), "00:00:00");
    EXPECT_EQ(timeText(-0.05208333333), "-01:15:00");
}

TEST(SheetValue, FormatCodesTellDatesTimesBooleansAndNumbers)
{
    using SheetValue::kindOfFormatCode;
    EXPECT_EQ(kindOfFormatCode("yyyy\\-mm\\-dd"), FormatKind::Date);
    EXPECT_EQ(kindOfFormatCode("mm/dd/yy"), FormatKind::Date);
    EXPECT_EQ(kindOfFormatCode("d\". \"mmmm\\ yyyy"), FormatKind::Date);
    EXPECT_EQ(kindOfFormatCode("yyyy\\-mm\\-dd\\ hh:mm:ss"), FormatKind::Date);
    EXPECT_EQ(kindOfFormatCode("[$-F800]dddd\\,\\ mmmm\\ dd\\,\\ yyyy"), FormatKind::Date);
    EXPECT_EQ(kindOfFormatCode("MMM YY"), FormatKind::Date);
    EXPECT_EQ(kindOfFormatCode("mmm"), FormatKind::Date) << "m alone is a month";
    EXPECT_EQ(kindOfFormatCode("hh:mm:ss"), FormatKind::Time);
    EXPECT_EQ(kindOfFormatCode("[hh]:mm:ss"), FormatKind::Time);
    EXPECT_EQ(kindOfFormatCode("mm:ss"), FormatKind::Time) << "m beside seconds is minutes";
    EXPECT_EQ(kindOfFormatCode("h:mm AM/PM"), FormatKind::Time);
    EXPECT_EQ(kindOfFormatCode("\"TRUE\";\"TRUE\";\"FALSE\""), FormatKind::Boolean);
    EXPECT_EQ(kindOfFormatCode("\"WAHR\";\"WAHR\";\"FALSCH\""), FormatKind::Boolean);
    EXPECT_EQ(kindOfFormatCode("General"), FormatKind::Number);
    EXPECT_EQ(kindOfFormatCode("0.00%"), FormatKind::Number);
    EXPECT_EQ(kindOfFormatCode("[$$-409]#,##0.00;[RED]-[$$-409]#,##0.00"), FormatKind::Number);
    EXPECT_EQ(kindOfFormatCode("0.00E+00"), FormatKind::Number);
    EXPECT_EQ(kindOfFormatCode("#,##0\" days\""), FormatKind::Number);
    EXPECT_EQ(kindOfFormatCode("0\\d"), FormatKind::Number) << "an escaped letter is text";
    EXPECT_EQ(kindOfFormatCode("@"), FormatKind::Number);
    EXPECT_EQ(kindOfFormatCode(""), FormatKind::Number);
    EXPECT_EQ(kindOfFormatCode("\"yes\";\"no\""), FormatKind::Number);
    EXPECT_EQ(SheetValue::kindOfBuiltInFormat(14), FormatKind::Date);
    EXPECT_EQ(SheetValue::kindOfBuiltInFormat(22), FormatKind::Date);
    EXPECT_EQ(SheetValue::kindOfBuiltInFormat(20), FormatKind::Time);
    EXPECT_EQ(SheetValue::kindOfBuiltInFormat(46), FormatKind::Time);
    EXPECT_EQ(SheetValue::kindOfBuiltInFormat(10), FormatKind::Number);
    EXPECT_EQ(SheetValue::kindOfBuiltInFormat(0), FormatKind::Number);
}

TEST(SheetValue, LineBreaksBecomeCrLfAndBadBytesAReplacementCharacter)
{
    EXPECT_EQ(text("a\nb"), "a\r\nb");
    EXPECT_EQ(text("a\r\nb"), "a\r\nb");
    EXPECT_EQ(text("a\rb\n\n"), "a\r\nb\r\n\r\n");
    EXPECT_EQ(text("tab\there  "), "tab\there  ");
    std::string checked;
    SheetValue::appendCheckedText(checked, "ok \xC3(\n");
    EXPECT_EQ(checked, "ok \xEF\xBF\xBD(\r\n");
    EXPECT_EQ(SheetValue::utf8Prefix("a\xE2\x82\xAC", 3), "a");
    EXPECT_EQ(SheetValue::utf8Prefix("a\xE2\x82\xAC", 4), "a\xE2\x82\xAC");
}

TEST(SheetValue, NumbersDatesAndDurationsAsTheFilesWriteThem)
{
    double value = 0;
    EXPECT_TRUE(SheetValue::parseNumber("1.5E-007", value));
    EXPECT_EQ(value, 1.5e-7);
    EXPECT_TRUE(SheetValue::parseNumber(" +2 ", value));
    EXPECT_EQ(value, 2);
    for (const char *bad : { "", "1,5", "12abc", "inf", "nan", "1e400", "--1" })
        EXPECT_FALSE(SheetValue::parseNumber(bad, value)) << bad;
    EXPECT_EQ(isoDate("2024-03-12"), "2024-03-12");
    EXPECT_EQ(isoDate("2024-03-12T14:30:00"), "2024-03-12 14:30:00");
    EXPECT_EQ(isoDate("2024-03-12T00:00:00"), "2024-03-12");
    EXPECT_EQ(isoDate("2024-03-12T23:59:59.6"), "2024-03-13");
    EXPECT_EQ(isoDate("1900-01-01"), "1900-01-01");
    EXPECT_EQ(isoDate("2024-03-12T14:30:00Z"), "2024-03-12 14:30:00");
    // Outside the years 1 to 9999 no date can be written: the number of days from 1899-12-30,
    // as the other formats hold it.
    EXPECT_EQ(isoDate("9999-12-31"), "9999-12-31");
    EXPECT_EQ(isoDate("0001-01-01"), "0001-01-01");
    EXPECT_EQ(isoDate("10000-01-01"), "2958466");
    EXPECT_EQ(isoDate("10000-01-01T12:00:00"), "2958466.5");
    EXPECT_EQ(isoDate("-0018-06-18"), "-700365");
    EXPECT_EQ(isoDate("0000-12-31"), "-693594");
    for (const char *bad : { "2024-13-01", "2024-03", "12.03.2024", "2024-03-12T25", "x" })
        EXPECT_EQ(isoDate(bad), "(none)") << bad;
    double days = 0;
    EXPECT_TRUE(SheetValue::parseIsoDuration("PT14H30M00S", days));
    EXPECT_EQ(timeText(days), "14:30:00");
    EXPECT_TRUE(SheetValue::parseIsoDuration("-P1DT2H", days));
    EXPECT_EQ(timeText(days), "-26:00:00");
    for (const char *bad : { "", "P", "PT", "14:30", "PT1X", "P1M" })
        EXPECT_FALSE(SheetValue::parseIsoDuration(bad, days)) << bad;
}

TEST(SheetCells, OnlyColumnsAToRDownToTheFirstEmptyRowAreKept)
{
    SheetCells cells;
    putValue(cells, 1, 0, "Part Number");
    putValue(cells, 1, 17, "R");
    putValue(cells, 1, 18, "S is not kept");
    putValue(cells, 2, 3, "");
    cells.putError(2, 4);
    EXPECT_FALSE(cells.stopped());
    putValue(cells, 4, 0, "after an empty row");
    EXPECT_TRUE(cells.stopped());
    putValue(cells, 3, 0, "nothing is kept once stopped");
    cells.finish();
    EXPECT_EQ(cells.rowCount(), 2);
    EXPECT_EQ(cells.cellText(17, 1), "R");
    EXPECT_EQ(cells.cellText(18, 1), "");
    EXPECT_TRUE(cells.isError(4, 2));
    EXPECT_EQ(cells.cellText(0, 3), "");
    EXPECT_EQ(cells.cellText(0, 4), "");
}

TEST(SheetCells, CellsOutOfOrderAreSortedAndTheLaterOfTwoStays)
{
    SheetCells cells;
    putValue(cells, 2, 5, "F2");
    putValue(cells, 1, 0, "A1");
    putValue(cells, 2, 1, "B2");
    putValue(cells, 1, 0, "A1 again");
    cells.putText(3, 0, cells.addText("A3"));
    cells.putError(2, 5);
    cells.finish();
    EXPECT_EQ(cells.rowCount(), 3);
    EXPECT_EQ(cells.cellText(0, 1), "A1 again");
    EXPECT_EQ(cells.cellText(1, 2), "B2");
    EXPECT_TRUE(cells.isError(5, 2));
    EXPECT_TRUE(cells.isTextCell(0, 3));
    EXPECT_FALSE(cells.isTextCell(1, 2));
    std::vector<std::string> order;
    cells.forEachCell([&](int row, int column, SheetCellKind kind, std::string_view text) {
        order.push_back(std::to_string(row) + ":" + std::to_string(column) + ":"
            + (kind == SheetCellKind::Error       ? std::string("error")
                    : kind == SheetCellKind::Text ? "text " + std::string(text)
                                                  : std::string(text)));
    });
    EXPECT_EQ(
        order, (std::vector<std::string> { "1:0:A1 again", "2:1:B2", "2:5:error", "3:0:text A3" }));
}

TEST(SheetCells, ARepeatedRowStandsForEachOfItsRows)
{
    SheetCells cells;
    putValue(cells, 1, 0, "Part Number");
    putValue(cells, 2, 0, "Same");
    putValue(cells, 2, 2, "5");
    cells.repeatRow(2, 3);
    putValue(cells, 5, 0, "After");
    cells.repeatRow(6, 1000); // an empty row repeated: nothing
    cells.finish();
    EXPECT_EQ(cells.rowCount(), 5);
    for (int row = 2; row <= 4; ++row) {
        EXPECT_EQ(cells.cellText(0, row), "Same") << row;
        EXPECT_EQ(cells.cellText(2, row), "5") << row;
    }
    EXPECT_EQ(cells.cellText(0, 5), "After");
    EXPECT_EQ(cells.cellText(0, 6), "");
    int visited = 0;
    cells.forEachCell([&](int, int, SheetCellKind, std::string_view) { ++visited; });
    EXPECT_EQ(visited, 1 + 3 * 2 + 1);
    SheetCells huge;
    putValue(huge, 1, 0, "x");
    huge.repeatRow(1, 2000000000);
    huge.finish();
    EXPECT_EQ(huge.rowCount(), SheetCells::MaxRows);
}

TEST(SheetCells, ATextIsCheckedAndCutAtTheLongestCell)
{
    SheetCells cells;
    std::string &texts = cells.texts();
    texts.append(SheetCells::MaxCellBytes - 1, 'a');
    texts.append("\xE2\x82\xAC\xE2\x82\xAC");
    const SheetText cut = cells.checkedTextFrom(0);
    EXPECT_EQ(cut.size, SheetCells::MaxCellBytes - 1) << "never inside a character";
    const std::size_t start = texts.size();
    texts.append("\xFF ok");
    const SheetText repaired = cells.checkedTextFrom(start);
    cells.put(1, 0, repaired);
    cells.finish();
    EXPECT_EQ(cells.cellText(0, 1), QStringLiteral("\uFFFD ok"));
}

TEST(SheetValue, APlainDecimalIsWrittenAsTheRuleWritesItsNumber)
{
    for (const char *decimal : { "12.5", "12.50", "0012.500", "-3.25", "0.1", "0.000125", "10003",
             "-0", "0.000", "-0.0", "123456789012345", "0.123456789012345", "1234567.891", "5.",
             ".5", "-.25", "100000000000000000000" }) {
        std::string fast;
        ASSERT_TRUE(SheetValue::appendPlainDecimal(fast, decimal)) << decimal;
        double value = 0;
        ASSERT_TRUE(SheetValue::parseNumber(decimal, value)) << decimal;
        EXPECT_EQ(fast, number(value)) << decimal;
    }
    for (const char *other : { "1234567890123456", "0.1234567890123456", "1e5", "1.5E-007", "+2",
             "", "-", ".", "1,5", "12a", " 1", "--1" }) {
        std::string out;
        EXPECT_FALSE(SheetValue::appendPlainDecimal(out, other)) << other;
        EXPECT_EQ(out, "") << other;
    }
}
