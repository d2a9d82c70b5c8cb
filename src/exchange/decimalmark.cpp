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

/// What may stand around the digits of a number: a sign, brackets, blanks, a currency (any
/// character beyond ASCII: €, £, a no-break space) or "$". A letter makes the text no number.
bool isAround(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'+' || c == u'-' || c == u'(' || c == u')' || c == u'$'
        || c >= 0x80;
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
    int points = 0;
    int commas = 0;
    qsizetype lastMark = -1;
    for (qsizetype i = first; i < end; ++i) {
        const char16_t c = get(i);
        if (c == u'.' || c == u',') {
            (c == u'.' ? points : commas) += 1;
            lastMark = i;
        } else if (!isDigit(c)) {
            return {};
        }
    }
    if (lastMark < 0)
        return {};
    const bool lastIsPoint = get(lastMark) == u'.';
    const Mark lastAsDecimal = lastIsPoint ? Mark::Point : Mark::Comma;
    if (points > 0 && commas > 0) {
        // "1.234,56": the last mark is the decimal one, and only the other stands before it.
        for (qsizetype i = first; i < lastMark; ++i) {
            if (get(i) == get(lastMark))
                return {};
        }
        return { lastAsDecimal, false };
    }
    if (points + commas > 1) {
        // "1,234,567": a mark written twice groups thousands, three digits each, and the other
        // is the decimal one.
        qsizetype digits = 0;
        bool grouped = false;
        for (qsizetype i = first; i < end; ++i) {
            if (isDigit(get(i))) {
                ++digits;
                continue;
            }
            if (grouped ? digits != 3 : (digits < 1 || digits > 3))
                return {};
            grouped = true;
            digits = 0;
        }
        if (digits != 3)
            return {};
        return { lastIsPoint ? Mark::Comma : Mark::Point, false };
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
