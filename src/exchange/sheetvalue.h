#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick::SheetValue {

/// What a cell's number format makes of the number it holds.
enum class FormatKind : std::uint8_t {
    Number, ///< the number itself (also percent, currency, grouping, text formats)
    Date, ///< a date, with its time of day when it has one
    Time, ///< a time or a duration, without a date
    Boolean, ///< a number shown as TRUE (not 0) or FALSE (0)
};

/// The kind of a number format code such as "yyyy-mm-dd", "hh:mm", "0.00%" or the boolean
/// format "\"TRUE\";\"TRUE\";\"FALSE\"" (three sections that are each one quoted word, the first
/// two the same). Quoted text, escaped characters and bracketed colours or conditions are not
/// taken for date letters; "m" counts as a month unless the format has hours or seconds.
FormatKind kindOfFormatCode(std::string_view code);
/// The kind of a built-in format number of the spreadsheet formats (14 to 17, 22, 27 to 36 and
/// 50 to 58 are dates; 18 to 21 and 45 to 47 are times).
FormatKind kindOfBuiltInFormat(int id);

/// Appends a number as the import takes it: rounded to 15 significant digits (the precision
/// spreadsheets calculate and show with), then written with as few digits as that takes, with
/// "." as decimal separator, without grouping and never in exponent form: 12.5, 10003, 0.3 for
/// a sum stored as 0.30000000000000004, 0.00000015. Negative zero is 0.
void appendNumber(std::string &out, double value);

/// Appends a number written as a plain decimal ("12.50", "-3", "0.000125") by the rule of
/// appendNumber without converting it, when it has at most 15 significant digits and no
/// exponent (such a decimal is its own shortest form); false, with nothing appended, for any
/// other text.
bool appendPlainDecimal(std::string &out, std::string_view text);

/// Appends a date serial number (days since the date system's start, the time of day as the
/// fraction): "2024-03-12", or "2024-03-12 14:30:00" when it has a time of day, to the nearest
/// second. In the 1900 system serial 1 is 1900-01-01 and serial 61 is 1900-03-01 (serial 60 is
/// the 29 February 1900 spreadsheets count); in the 1904 system serial 0 is 1904-01-01. A serial
/// outside the years 1 to 9999 is appended as a number.
void appendDate(std::string &out, double serial, bool system1904);
/// Appends a time or duration in days as hours, minutes and seconds, to the nearest second:
/// "14:30:00", "36:00:00", "-01:15:00".
void appendTime(std::string &out, double days);
/// Appends a number as its format shows its kind; TRUE and FALSE for a boolean format.
void appendValue(std::string &out, double value, FormatKind kind, bool system1904);
/// Appends a date and time of day given as a day count from 1970-01-01 and seconds; the date
/// alone when seconds is 0. Outside the years 1 to 9999, the spreadsheets' serial number
/// (days from 1899-12-30, the time of day as the fraction).
void appendDayAndSeconds(std::string &out, std::int64_t day, std::int64_t seconds);

/// Appends text with each line break (LF, CR LF or a CR alone) as CR LF, as the catalogue keeps
/// the line breaks of its multi-line fields.
void appendText(std::string &out, std::string_view utf8);
/// Appends UTF-8 bytes, each invalid sequence replaced by U+FFFD, and line breaks as
/// appendText does.
void appendCheckedText(std::string &out, std::string_view bytes);

/// Reads a decimal number as the workbook formats write it ("12.5", "-3", "1.5E-007", "+2");
/// surrounding blanks are allowed. False for anything else, also for infinities and NaN.
bool parseNumber(std::string_view text, double &value);
/// Reads an ISO 8601 date or date and time ("2024-03-12", "2024-03-12T14:30:00",
/// "2024-03-12T14:30:00.5") as a day count from 1970-01-01 and the seconds of the day, rounded
/// to the nearest second (a day may carry over).
bool parseIsoDateTime(std::string_view text, std::int64_t &day, std::int64_t &seconds);
/// Reads an ISO 8601 duration ("PT14H30M00S", "-P1DT2H", "PT0.5S") as days.
bool parseIsoDuration(std::string_view text, double &days);

/// The longest prefix of text (UTF-8) of at most limit bytes that does not split a character.
std::string_view utf8Prefix(std::string_view text, std::size_t limit);

} // namespace tarnwick::SheetValue
