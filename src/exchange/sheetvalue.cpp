#include "exchange/sheetvalue.h"

#include "core/celltext.h"

#include <QString>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <vector>

namespace tarnwick::SheetValue {

namespace {

// Days from 1970-01-01 of a date of the proleptic Gregorian calendar, and back.
std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = unsigned(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + std::int64_t(doe) - 719468;
}

void civilFromDays(std::int64_t z, std::int64_t &y, unsigned &m, unsigned &d)
{
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = unsigned(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    y = std::int64_t(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y += m <= 2;
}

void appendDigits(std::string &out, std::int64_t value, int width)
{
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    for (auto length = int(result.ptr - digits); length < width; ++length)
        out += '0';
    out.append(digits, result.ptr);
}

/// Reads an unsigned decimal number of at most maxDigits digits at text[at]; advances at.
bool readUnsigned(std::string_view text, std::size_t &at, int maxDigits, std::int64_t &value)
{
    const std::size_t start = at;
    value = 0;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9' && int(at - start) < maxDigits)
        value = value * 10 + (text[at++] - '0');
    return at > start;
}

/// The characters of a format section that decide its kind, without quoted text, escaped
/// characters, padding and fill characters and bracketed parts (elapsed-time brackets such as
/// "[hh]" become "h").
std::string formatLetters(std::string_view section)
{
    std::string letters;
    for (std::size_t i = 0; i < section.size(); ++i) {
        const char c = section[i];
        if (c == '"') {
            const std::size_t close = section.find('"', i + 1);
            i = close == std::string_view::npos ? section.size() : close;
        } else if (c == '\\' || c == '_' || c == '*') {
            ++i;
        } else if (c == '[') {
            const std::size_t close = section.find(']', i + 1);
            const std::string_view inside = section.substr(
                i + 1, close == std::string_view::npos ? std::string_view::npos : close - i - 1);
            if (!inside.empty() && inside.find_first_not_of("hHmMsS") == std::string_view::npos)
                letters += char(std::tolower(static_cast<unsigned char>(inside.front())));
            i = close == std::string_view::npos ? section.size() : close;
        } else {
            letters += char(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    return letters;
}

/// The sections of a format code, split at ";" outside quotes, escapes and brackets.
std::vector<std::string_view> formatSections(std::string_view code)
{
    std::vector<std::string_view> sections;
    std::size_t start = 0;
    for (std::size_t i = 0; i < code.size(); ++i) {
        const char c = code[i];
        if (c == '"') {
            const std::size_t close = code.find('"', i + 1);
            i = close == std::string_view::npos ? code.size() : close;
        } else if (c == '\\') {
            ++i;
        } else if (c == '[') {
            const std::size_t close = code.find(']', i + 1);
            i = close == std::string_view::npos ? code.size() : close;
        } else if (c == ';') {
            sections.push_back(code.substr(start, i - start));
            start = i + 1;
        }
    }
    sections.push_back(code.substr(std::min(start, code.size())));
    return sections;
}

/// The word of a section that is one quoted text and nothing else, or an empty view.
std::string_view quotedWord(std::string_view section)
{
    if (section.size() < 3 || section.front() != '"' || section.back() != '"')
        return {};
    const std::string_view word = section.substr(1, section.size() - 2);
    return word.find('"') == std::string_view::npos ? word : std::string_view();
}

void appendReplacingLineBreaks(std::string &out, std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t stop = text.find_first_of("\r\n", at);
        if (stop == std::string_view::npos) {
            out.append(text.substr(at));
            return;
        }
        out.append(text.substr(at, stop - at));
        out += "\r\n";
        at =
            stop + (text[stop] == '\r' && stop + 1 < text.size() && text[stop + 1] == '\n' ? 2 : 1);
    }
}

} // namespace

FormatKind kindOfFormatCode(std::string_view code)
{
    const std::vector<std::string_view> sections = formatSections(code);
    if (sections.size() == 3) {
        const std::string_view shown = quotedWord(sections[0]);
        if (!shown.empty() && shown == quotedWord(sections[1]) && !quotedWord(sections[2]).empty())
            return FormatKind::Boolean;
    }
    const std::string letters = formatLetters(sections.front());
    const bool hours = letters.find_first_of("hs") != std::string::npos;
    const bool date = letters.find_first_of("yd") != std::string::npos
        || (!hours && letters.find('m') != std::string::npos);
    if (date)
        return FormatKind::Date;
    return hours ? FormatKind::Time : FormatKind::Number;
}

FormatKind kindOfBuiltInFormat(int id)
{
    if ((id >= 14 && id <= 17) || id == 22 || (id >= 27 && id <= 36) || (id >= 50 && id <= 58))
        return FormatKind::Date;
    if ((id >= 18 && id <= 21) || (id >= 45 && id <= 47))
        return FormatKind::Time;
    return FormatKind::Number;
}

namespace {

/// Writes a number that to_chars wrote in scientific form ("-1.2345e+40") as a plain decimal:
/// its digits with the point moved by the exponent and zeros where no digit is left.
void appendScientificAsPlain(std::string &out, std::string_view scientific)
{
    const std::size_t e = scientific.find('e');
    std::string_view mantissa = scientific.substr(0, e);
    std::string_view exponentText = scientific.substr(e + 1);
    if (!exponentText.empty() && exponentText.front() == '+')
        exponentText.remove_prefix(1);
    int exponent = 0;
    std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
    if (!mantissa.empty() && mantissa.front() == '-') {
        out += '-';
        mantissa.remove_prefix(1);
    }
    std::string digits;
    for (const char c : mantissa) {
        if (c != '.')
            digits += c;
    }
    while (digits.size() > 1 && digits.back() == '0')
        digits.pop_back();
    const int wholeDigits = exponent + 1;
    if (wholeDigits <= 0) {
        out += "0.";
        out.append(std::size_t(-wholeDigits), '0');
        out += digits;
    } else if (std::size_t(wholeDigits) >= digits.size()) {
        out += digits;
        out.append(std::size_t(wholeDigits) - digits.size(), '0');
    } else {
        out.append(digits, 0, std::size_t(wholeDigits));
        out += '.';
        out.append(digits, std::size_t(wholeDigits));
    }
}

/// Most numbers of a price sheet have at most four decimals (prices, percents, quantities):
/// their shortest form is found here without the general search. n / 10^k is the double
/// nearest the decimal n·10^-k, so it is the number that decimal reads back as; below 10^15
/// the doubles that read back as value span less than a unit of n, so at most one n per k
/// does, and the smallest k that has one gives the shortest form. False when value has more
/// decimals or is too large: the general search decides then.
bool appendFewDecimals(std::string &out, double value)
{
    static constexpr double Scales[] = { 10.0, 100.0, 1000.0, 10000.0 };
    const double magnitude = std::fabs(value);
    if (!(magnitude < 1e11))
        return false;
    for (std::size_t decimals = 1; decimals <= std::size(Scales); ++decimals) {
        const double scale = Scales[decimals - 1];
        const double whole = std::nearbyint(magnitude * scale);
        if (whole / scale != magnitude)
            continue;
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, std::int64_t(whole)).ptr;
        const auto length = std::size_t(end - digits);
        if (value < 0)
            out += '-';
        if (length <= decimals) {
            out += "0.";
            out.append(decimals - length, '0');
            out.append(digits, length);
        } else {
            out.append(digits, length - decimals);
            out += '.';
            out.append(end - decimals, decimals);
        }
        return true;
    }
    return false;
}

} // namespace

void appendNumber(std::string &out, double value)
{
    if (!std::isfinite(value))
        return;
    if (value == 0) {
        out += '0';
        return;
    }
    char buffer[400];
    // Whole numbers below 10^15 are written as they are.
    if (std::fabs(value) < 1e15 && value == std::trunc(value)) {
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, std::int64_t(value));
        out.append(buffer, result.ptr);
        return;
    }
    if (appendFewDecimals(out, value))
        return;
    // The shortest form is the answer when it has at most 15 significant digits: rounding to
    // 15 digits would give the same number.
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    const std::string_view shortest(buffer, std::size_t(result.ptr - buffer));
    const std::size_t first = shortest.find_first_not_of("-0.");
    const std::size_t digits = first == std::string_view::npos
        ? 0
        : std::size_t(std::count_if(shortest.begin() + std::ptrdiff_t(first), shortest.end(),
            [](char c) { return c >= '0' && c <= '9'; }));
    if (digits <= 15) {
        out.append(shortest);
        return;
    }
    // Rounded to 15 significant digits, as a spreadsheet shows the number, and written out with
    // zeros after them: a double's further digits are noise (1E+40 is 1 and forty zeros, not
    // the 10000000000000000303786028427003666890752 the double holds).
    result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, 14);
    double rounded = 0;
    // Near the largest double the rounded digits lie beyond it: its own shortest digits are
    // written instead.
    if (std::from_chars(buffer, result.ptr, rounded).ec != std::errc())
        result =
            std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
    appendScientificAsPlain(out, std::string_view(buffer, std::size_t(result.ptr - buffer)));
}

bool appendPlainDecimal(std::string &out, std::string_view text)
{
    const bool negative = !text.empty() && text.front() == '-';
    if (negative)
        text.remove_prefix(1);
    const std::size_t point = text.find('.');
    std::string_view whole = text.substr(0, point);
    std::string_view fraction =
        point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
    const auto digits = [](std::string_view part) {
        return std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; });
    };
    // Beyond 300 digits a decimal may lie outside the range of a double.
    if ((whole.empty() && fraction.empty()) || !digits(whole) || !digits(fraction)
        || whole.size() > 300 || fraction.size() > 300)
        return false;
    while (!whole.empty() && whole.front() == '0')
        whole.remove_prefix(1);
    while (!fraction.empty() && fraction.back() == '0')
        fraction.remove_suffix(1);
    // The digits from the first that is not 0 to the last that is not 0.
    std::size_t significant = whole.size() + fraction.size();
    if (whole.empty())
        significant = fraction.size() - std::min(fraction.size(), fraction.find_first_not_of('0'));
    else if (fraction.empty())
        significant = whole.find_last_not_of('0') + 1;
    if (significant > 15)
        return false;
    if (whole.empty() && fraction.empty()) {
        out += '0';
        return true;
    }
    if (negative)
        out += '-';
    if (whole.empty())
        out += '0';
    out.append(whole);
    if (!fraction.empty()) {
        out += '.';
        out.append(fraction);
    }
    return true;
}

void appendDayAndSeconds(std::string &out, std::int64_t day, std::int64_t seconds)
{
    std::int64_t year = 0;
    unsigned month = 0;
    unsigned dayOfMonth = 0;
    civilFromDays(day, year, month, dayOfMonth);
    if (year < 1 || year > 9999) {
        // No date to write: the day's number as the spreadsheets count it from 1899-12-30.
        appendNumber(out, double(day - daysFromCivil(1899, 12, 30)) + double(seconds) / 86400.0);
        return;
    }
    appendDigits(out, year, 4);
    out += '-';
    appendDigits(out, month, 2);
    out += '-';
    appendDigits(out, dayOfMonth, 2);
    if (seconds != 0) {
        out += ' ';
        appendDigits(out, seconds / 3600, 2);
        out += ':';
        appendDigits(out, seconds / 60 % 60, 2);
        out += ':';
        appendDigits(out, seconds % 60, 2);
    }
}

void appendDate(std::string &out, double serial, bool system1904)
{
    // About the years 1 to 9999 in either system; beyond them there is no date to write, and
    // the number is counted from 1899-12-30 as in the 1900 system (so the same day gives the
    // same number from a workbook of either system, and from a date written as text).
    constexpr double From1904 = 1462;
    if (!std::isfinite(serial) || serial < -695000 || serial > 2960000) {
        appendNumber(out, system1904 ? serial + From1904 : serial);
        return;
    }
    auto whole = std::int64_t(std::floor(serial));
    auto seconds = std::int64_t(std::llround((serial - double(whole)) * 86400.0));
    if (seconds >= 86400) {
        ++whole;
        seconds -= 86400;
    }
    std::int64_t day = 0;
    if (system1904) {
        day = daysFromCivil(1904, 1, 1) + whole;
    } else if (whole == 60) {
        out += "1900-02-29";
        if (seconds != 0) {
            std::string time;
            appendDayAndSeconds(time, 0, seconds);
            out.append(time, 10);
        }
        return;
    } else {
        day = daysFromCivil(1899, 12, whole >= 1 && whole < 60 ? 31 : 30) + whole;
    }
    std::int64_t year = 0;
    unsigned month = 0;
    unsigned dayOfMonth = 0;
    civilFromDays(day, year, month, dayOfMonth);
    if (year < 1 || year > 9999) {
        appendNumber(out, system1904 ? serial + From1904 : serial);
        return;
    }
    appendDayAndSeconds(out, day, seconds);
}

void appendTime(std::string &out, double days)
{
    if (!std::isfinite(days) || std::fabs(days) > 1e9) {
        appendNumber(out, days);
        return;
    }
    std::int64_t seconds = std::llround(days * 86400.0);
    if (seconds < 0) {
        out += '-';
        seconds = -seconds;
    }
    appendDigits(out, seconds / 3600, 2);
    out += ':';
    appendDigits(out, seconds / 60 % 60, 2);
    out += ':';
    appendDigits(out, seconds % 60, 2);
}

void appendValue(std::string &out, double value, FormatKind kind, bool system1904)
{
    switch (kind) {
    case FormatKind::Number:
        appendNumber(out, value);
        break;
    case FormatKind::Date:
        appendDate(out, value, system1904);
        break;
    case FormatKind::Time:
        appendTime(out, value);
        break;
    case FormatKind::Boolean:
        out += value != 0 ? "TRUE" : "FALSE";
        break;
    }
}

void appendText(std::string &out, std::string_view utf8)
{
    if (std::memchr(utf8.data(), '\r', utf8.size()) == nullptr
        && std::memchr(utf8.data(), '\n', utf8.size()) == nullptr) {
        out.append(utf8);
        return;
    }
    appendReplacingLineBreaks(out, utf8);
}

void appendCheckedText(std::string &out, std::string_view bytes)
{
    if (celltext::isValidUtf8(bytes.data(), qsizetype(bytes.size()))) {
        appendText(out, bytes);
        return;
    }
    const QByteArray repaired = QString::fromUtf8(bytes.data(), qsizetype(bytes.size())).toUtf8();
    appendText(out, std::string_view(repaired.constData(), std::size_t(repaired.size())));
}

bool parseNumber(std::string_view text, double &value)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    if (text.empty())
        return false;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size()
        && std::isfinite(value);
}

bool parseIsoDateTime(std::string_view text, std::int64_t &day, std::int64_t &seconds)
{
    std::size_t at = 0;
    const bool negative = !text.empty() && text.front() == '-';
    at += negative ? 1 : 0;
    std::int64_t year = 0;
    std::int64_t month = 0;
    std::int64_t dayOfMonth = 0;
    if (!readUnsigned(text, at, 6, year) || at >= text.size() || text[at++] != '-'
        || !readUnsigned(text, at, 2, month) || at >= text.size() || text[at++] != '-'
        || !readUnsigned(text, at, 2, dayOfMonth) || month < 1 || month > 12 || dayOfMonth < 1
        || dayOfMonth > 31)
        return false;
    day = daysFromCivil(negative ? -year : year, unsigned(month), unsigned(dayOfMonth));
    double secondsOfDay = 0;
    if (at < text.size() && text[at] == 'T') {
        ++at;
        std::int64_t hours = 0;
        std::int64_t minutes = 0;
        if (!readUnsigned(text, at, 2, hours) || at >= text.size() || text[at++] != ':'
            || !readUnsigned(text, at, 2, minutes))
            return false;
        secondsOfDay = double(hours * 3600 + minutes * 60);
        if (at < text.size() && text[at] == ':') {
            ++at;
            std::size_t end = at;
            while (
                end < text.size() && ((text[end] >= '0' && text[end] <= '9') || text[end] == '.'))
                ++end;
            double wholeSeconds = 0;
            if (!parseNumber(text.substr(at, end - at), wholeSeconds) || wholeSeconds >= 61)
                return false;
            secondsOfDay += wholeSeconds;
            at = end;
        }
    }
    // A time zone after the time is not taken into account.
    const std::string_view rest = text.substr(at);
    if (!rest.empty() && rest.front() != 'Z' && rest.front() != '+' && rest.front() != '-')
        return false;
    seconds = std::llround(secondsOfDay);
    day += seconds / 86400;
    seconds %= 86400;
    return true;
}

bool parseIsoDuration(std::string_view text, double &days)
{
    bool negative = false;
    if (!text.empty() && text.front() == '-') {
        negative = true;
        text.remove_prefix(1);
    }
    if (text.empty() || text.front() != 'P')
        return false;
    text.remove_prefix(1);
    double total = 0;
    bool inTime = false;
    bool any = false;
    while (!text.empty()) {
        if (text.front() == 'T' && !inTime) {
            inTime = true;
            text.remove_prefix(1);
            continue;
        }
        std::size_t end = 0;
        while (end < text.size() && ((text[end] >= '0' && text[end] <= '9') || text[end] == '.'))
            ++end;
        double number = 0;
        if (end == text.size() || !parseNumber(text.substr(0, end), number))
            return false;
        const char unit = text[end];
        if (unit == 'D' && !inTime)
            total += number * 86400;
        else if (unit == 'H' && inTime)
            total += number * 3600;
        else if (unit == 'M' && inTime)
            total += number * 60;
        else if (unit == 'S' && inTime)
            total += number;
        else
            return false;
        any = true;
        text.remove_prefix(end + 1);
    }
    if (!any)
        return false;
    days = (negative ? -total : total) / 86400.0;
    return std::isfinite(days);
}

std::string_view utf8Prefix(std::string_view text, std::size_t limit)
{
    if (text.size() <= limit)
        return text;
    std::size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

} // namespace tarnwick::SheetValue
