#include "exchange/decimalmark.h"

#include <type_traits>

namespace tarnwick::decimalmark {

namespace {

bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

bool isMark(char16_t c)
{
    return c == u'.' || c == u',';
}

/// A minus sign: the ASCII one, and the ones some locales write (Swedish "−1 234,50 kr"
/// writes U+2212) or a full-width keyboard gives.
bool isMinus(char16_t c)
{
    return c == u'-' || c == u'\u2212' || c == u'\ufe63' || c == u'\uff0d';
}

/// What may stand around the digits of a number: a sign, brackets, blanks (no-break ones too)
/// and a currency symbol ("$", "€", "£", "¥"). A letter makes the text no number.
bool isAround(char16_t c)
{
    if (c < 0x80)
        return c == u' ' || c == u'\t' || c == u'+' || c == u'(' || c == u')' || c == u'$'
            || isMinus(c);
    const QChar::Category category = QChar(c).category();
    return isMinus(c) || category == QChar::Symbol_Currency || category == QChar::Separator_Space;
}

template <typename Unit> Reading readUnits(const Unit *units, qsizetype size)
{
    const auto get = [units](
                         qsizetype i) { return char16_t(std::make_unsigned_t<Unit>(units[i])); };
    qsizetype first = 0;
    while (first < size && !isDigit(get(first)) && !isMark(get(first))) {
        if (!isAround(get(first)))
            return {};
        ++first;
    }
    qsizetype end = size;
    while (end > first && !isDigit(get(end - 1))) {
        if (!isAround(get(end - 1)))
            return {};
        --end;
    }
    qsizetype lastMark = -1;
    for (qsizetype i = first; i < end; ++i) {
        const char16_t c = get(i);
        if (isMark(c))
            lastMark = i;
        else if (!isDigit(c))
            return {};
    }
    if (lastMark < 0)
        return {};
    const char16_t last = get(lastMark);
    const char16_t other = last == u'.' ? u',' : u'.';
    const Mark lastAsDecimal = last == u'.' ? Mark::Point : Mark::Comma;
    const Mark otherAsDecimal = last == u'.' ? Mark::Comma : Mark::Point;
    // Whether the digits from..to are grouped by mark: one to three digits, then groups of
    // three, each after a mark.
    const auto groupedBy = [&](qsizetype from, qsizetype to, char16_t mark) {
        qsizetype digits = 0;
        bool grouped = false;
        for (qsizetype i = from; i < to; ++i) {
            if (isDigit(get(i))) {
                ++digits;
                continue;
            }
            if (get(i) != mark || (grouped ? digits != 3 : (digits < 1 || digits > 3)))
                return false;
            grouped = true;
            digits = 0;
        }
        return grouped && digits == 3;
    };
    bool otherBefore = false;
    bool lastBefore = false;
    for (qsizetype i = first; i < lastMark; ++i) {
        otherBefore = otherBefore || get(i) == other;
        lastBefore = lastBefore || get(i) == last;
    }
    if (otherBefore) {
        // "1.234,56": the last mark is the decimal one, the other groups the digits before it.
        if (lastBefore || !groupedBy(first, lastMark, other))
            return {};
        return { lastAsDecimal, false };
    }
    if (lastBefore) {
        // "1,234,567": a mark written twice groups thousands; the other is the decimal one.
        if (!groupedBy(first, end, last))
            return {};
        return { otherAsDecimal, false };
    }
    const qsizetype before = lastMark - first;
    const qsizetype after = end - lastMark - 1;
    // "0,125" is never a group of thousands, nor is a group after four digits or none.
    const bool leadingZero = before == 1 && get(first) == u'0';
    if (after == 3 && before >= 1 && before <= 3 && !leadingZero)
        return { Mark::Unknown, true };
    return { lastAsDecimal, false };
}

} // namespace

Reading readMarks(const CellTextView &view)
{
    if (view.size == 0 || view.size > 64)
        return {};
    if (view.encoding == TextEncoding::Utf16)
        return readUnits(view.units(), view.size);
    // A byte beyond ASCII is part of a character (a currency, a letter): told apart decoded.
    if (!view.isAscii()) {
        const QString text = view.toString();
        return readUnits(text.utf16(), text.size());
    }
    return readUnits(view.bytes(), view.size);
}

Mark markOf(const QLocale &locale)
{
    const QString point = locale.decimalPoint();
    if (point == QStringLiteral("."))
        return Mark::Point;
    if (point == QStringLiteral(","))
        return Mark::Comma;
    return Mark::Unknown;
}

QString rewritten(const QString &text, Mark written, const QLocale &locale)
{
    const QChar decimal = written == Mark::Point ? QLatin1Char('.') : QLatin1Char(',');
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c == decimal)
            result += locale.decimalPoint();
        else if (c != QLatin1Char('.') && c != QLatin1Char(','))
            result += c;
    }
    return result;
}

std::optional<double> valueOf(const QString &text, Mark written)
{
    const Reading reading =
        readMarks(CellTextView { TextEncoding::Utf16, text.utf16(), text.size() });
    const bool hasMarks = text.contains(QLatin1Char('.')) || text.contains(QLatin1Char(','));
    // The text's own marks must say the mark written ("12.50" is no decimal-comma number), or
    // could be either ("2,675").
    if (hasMarks && (written == Mark::Unknown || (!reading.ambiguous && reading.says != written)))
        return std::nullopt;
    const QChar decimal = written == Mark::Point ? QLatin1Char('.') : QLatin1Char(',');
    QByteArray plain;
    bool negative = false;
    bool digits = false;
    bool ended = false; // past the number: only what may stand around it may follow
    for (const QChar c : text) {
        const char16_t unit = c.unicode();
        const bool inNumber = isDigit(unit) || isMark(unit);
        if (inNumber && ended)
            return std::nullopt;
        if (isDigit(unit)) {
            plain += char(unit);
            digits = true;
        } else if (c == decimal) {
            plain += '.';
        } else if (!inNumber) {
            if (!isAround(unit))
                return std::nullopt;
            negative = negative || isMinus(unit) || unit == u'(';
            ended = digits;
        }
    }
    if (!digits || plain.count('.') > 1)
        return std::nullopt;
    bool ok = false;
    const double value = plain.toDouble(&ok);
    if (!ok)
        return std::nullopt;
    return negative ? -value : value;
}

void SheetMarks::add(const CellTextView &view)
{
    const Reading reading = readMarks(view);
    m_point = m_point || reading.says == Mark::Point;
    m_comma = m_comma || reading.says == Mark::Comma;
}

Mark SheetMarks::result() const
{
    if (m_point == m_comma)
        return Mark::Unknown;
    return m_point ? Mark::Point : Mark::Comma;
}

} // namespace tarnwick::decimalmark
