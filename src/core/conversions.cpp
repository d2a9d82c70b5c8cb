#include "core/conversions.h"

#include "core/vberror.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <limits>

namespace tarnwick::conv {

namespace {

// Significant digits shown for each floating kind: 7 for single, 15 for double.
constexpr int SinglePrecision = 7;
constexpr int DoublePrecision = 15;

// Most decimals Round scales by: 10^22 is the largest power of ten a double holds exactly,
// so the scaling stays exact; a request for more decimals leaves the value as it is.
constexpr int MaxExactDecimals = 22;

// Raised when Round gets a negative number of decimals.
constexpr int InvalidProcedureCall = 5;

/// Shortest general form with the given significant digits: plain notation when the decimal
/// exponent lies in -4..precision-1, otherwise "1.234568E+07" with a two-digit (or longer)
/// exponent. This is the rule of the C "%g" conversion, which std::to_chars follows without
/// looking at the process locale; only the decimal separator is the locale's.
QString generalText(double value, int precision, const QLocale &locale)
{
    if (!std::isfinite(value))
        throw VbError(ErrorNumber::Overflow, QStringLiteral("Overflow"));
    if (value == 0.0) // also turns -0 into "0"
        return QStringLiteral("0");
    std::array<char, 64> buffer {};
    const auto result = std::to_chars(
        buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, precision);
    QString text = QString::fromLatin1(buffer.data(), result.ptr - buffer.data());
    text.replace(QLatin1Char('e'), QLatin1Char('E'));
    text.replace(QLatin1Char('.'), locale.decimalPoint());
    return text;
}

/// Rounds to a whole number, halves to the even neighbour. Unlike std::nearbyint it does not
/// depend on the floating-point rounding mode. x - floor(x) is exact for every double.
double roundHalfEven(double x)
{
    const double below = std::floor(x);
    const double fraction = x - below;
    if (fraction > 0.5)
        return below + 1.0;
    if (fraction < 0.5)
        return below;
    return std::fmod(below, 2.0) == 0.0 ? below : below + 1.0;
}

/// Whole number in [low, high] after rounding half to even; overflow (6) outside it.
double roundedInRange(double value, double low, double high)
{
    const double rounded = roundHalfEven(value);
    if (!(rounded >= low && rounded <= high))
        throw VbError(ErrorNumber::Overflow, QStringLiteral("Overflow"));
    return rounded;
}

/// Removes a prefix or suffix and the blanks next to it; false when it is not there.
bool takePrefix(QString &text, const QString &prefix)
{
    if (prefix.isEmpty() || !text.startsWith(prefix))
        return false;
    text = text.mid(prefix.size()).trimmed();
    return true;
}

bool takeSuffix(QString &text, const QString &suffix)
{
    if (suffix.isEmpty() || !text.endsWith(suffix))
        return false;
    text = text.left(text.size() - suffix.size()).trimmed();
    return true;
}

/// Takes one sign mark from either end: "-" or the locale's minus before or after the
/// number, "+" before it, or parentheses around it. Sets negative for a minus mark.
bool takeSign(QString &text, const QLocale &locale, bool &negative)
{
    const QString minus = QStringLiteral("-");
    if (text.size() >= 2 && text.startsWith(QLatin1Char('(')) && text.endsWith(QLatin1Char(')'))) {
        text = text.mid(1, text.size() - 2).trimmed();
        negative = true;
        return true;
    }
    if (takePrefix(text, minus) || takePrefix(text, locale.negativeSign())
        || takeSuffix(text, minus) || takeSuffix(text, locale.negativeSign())) {
        negative = true;
        return true;
    }
    return takePrefix(text, QStringLiteral("+")) || takePrefix(text, locale.positiveSign());
}

/// Takes the mark of a whole amount from the end: the decimal mark followed by dashes instead
/// of the cents ("1.250,-" or "12,–" in German, "12.-" in English), as price lists write
/// whole euros or francs. The digits before it stay; the dashes are no minus sign.
bool takeWholeMark(QString &text, const QLocale &locale)
{
    const auto isDash = [](QChar c) {
        return c == QLatin1Char('-') || c == QChar(0x2013) || c == QChar(0x2014);
    };
    qsizetype end = text.size();
    while (end > 0 && isDash(text[end - 1]))
        --end;
    if (end == text.size() || end < 2 || !text[end - 2].isDigit())
        return false;
    const QString point = locale.decimalPoint();
    QString mark;
    if (QStringView(text).first(end).endsWith(point))
        mark = point;
    else if (text[end - 1] == QLatin1Char('.'))
        mark = QStringLiteral(".");
    else
        return false;
    end -= mark.size();
    // A number has one decimal mark: "1.2.-" is none, and neither is German "1,250.-".
    const QStringView digits = QStringView(text).first(end);
    if (digits.contains(mark) || digits.contains(point))
        return false;
    text.truncate(end);
    return true;
}

/// A currency symbol with its width forms as plain characters ("￥" as "¥").
QString foldedSymbol(const QString &symbol)
{
    QString out;
    for (const QChar c : symbol)
        out += c.decompositionTag() == QChar::Wide || c.decompositionTag() == QChar::Narrow
            ? c.decomposition()
            : QString(c);
    return out;
}

/// Strips the sign and currency marks around a number, at most one of each, in any order, and
/// the mark of a whole amount. Returns false when a second sign or symbol shows up. A folded
/// text is matched against the folded symbol ("¥" for Japanese "￥").
bool stripMarks(QString &text, const QLocale &locale, bool &negative, bool isFolded)
{
    QString symbol = locale.currencySymbol(QLocale::CurrencySymbol);
    if (isFolded)
        symbol = foldedSymbol(symbol);
    bool hasSign = false;
    bool hasSymbol = false;
    bool hasWholeMark = false;
    for (bool changed = true; changed;) {
        changed = false;
        if (!hasWholeMark && takeWholeMark(text, locale))
            hasWholeMark = changed = true;
        bool signNegative = false;
        if (takeSign(text, locale, signNegative)) {
            if (hasSign)
                return false;
            hasSign = changed = true;
            negative = signNegative;
        }
        if (takePrefix(text, symbol) || takeSuffix(text, symbol)) {
            if (hasSymbol)
                return false;
            hasSymbol = changed = true;
        }
    }
    return true;
}

/// True when body begins with a group of "0" ("0.125" where "." groups thousands): no one
/// groups digits that way, so such a text is a decimal written with the other mark.
bool startsWithZeroGroup(const QString &body, const QLocale &locale)
{
    const QString group = locale.groupSeparator();
    return !group.isEmpty() && body.size() > group.size() && body.front() == QLatin1Char('0')
        && QStringView(body).mid(1).startsWith(group);
}

/// Digits grouped in threes by the locale's separator, from the first group on, with an
/// optional decimal part: "1 234,56" in Polish, which the locale's own reading refuses because
/// Polish leaves four-digit numbers ungrouped. The number without its separators.
std::optional<double> groupedInThrees(const QString &body, const QLocale &locale)
{
    const QString group = locale.groupSeparator();
    const QString point = locale.decimalPoint();
    if (group.isEmpty() || !body.contains(group))
        return std::nullopt;
    const qsizetype pointAt = body.indexOf(point);
    const QString whole = pointAt < 0 ? body : body.left(pointAt);
    const QString fraction = pointAt < 0 ? QString() : body.mid(pointAt + point.size());
    const QStringList groups = whole.split(group);
    const auto allDigits = [](const QString &part) {
        return std::all_of(part.cbegin(), part.cend(),
            [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
    };
    if (groups.front().isEmpty() || groups.front().size() > 3 || !allDigits(fraction)
        || (pointAt >= 0 && fraction.isEmpty()))
        return std::nullopt;
    for (qsizetype i = 0; i < groups.size(); ++i) {
        if (!allDigits(groups[i]) || (i > 0 && groups[i].size() != 3))
            return std::nullopt;
    }
    QString plain = groups.join(QString());
    if (!fraction.isEmpty())
        plain += QLatin1Char('.') + fraction;
    bool ok = false;
    const double value = QLocale::c().toDouble(plain, &ok);
    return ok ? std::optional<double>(value) : std::nullopt;
}

/// The bare number: the locale's form with group separators, else the C locale's form
/// without them (so "12.5" is still read in a locale that writes "12,5", and "0.125" is a
/// decimal in every locale, never 125). A folded text may also group in threes where the
/// locale itself would not group.
std::optional<double> parseBody(const QString &body, const QLocale &locale, bool isFolded)
{
    if (body.isEmpty())
        return std::nullopt;
    const QChar first = body.front();
    if (!first.isDigit() && !body.startsWith(locale.decimalPoint()) && first != QLatin1Char('.'))
        return std::nullopt;
    bool ok = false;
    double value = startsWithZeroGroup(body, locale) ? 0.0 : locale.toDouble(body, &ok);
    if (!ok && isFolded && !startsWithZeroGroup(body, locale)) {
        if (const std::optional<double> grouped = groupedInThrees(body, locale)) {
            value = *grouped;
            ok = true;
        }
    }
    if (!ok) {
        QLocale c = QLocale::c();
        c.setNumberOptions(QLocale::RejectGroupSeparator);
        value = c.toDouble(body, &ok);
    }
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace

QString toText(const Cell &cell, const QLocale &locale)
{
    switch (cell.kind()) {
    case Cell::Kind::Empty:
        return QString();
    case Cell::Kind::Null:
        throw VbError(ErrorNumber::InvalidUseOfNull, QStringLiteral("Invalid use of Null"));
    case Cell::Kind::Text:
        return cell.asText();
    case Cell::Kind::Single:
        return generalText(cell.asNumber(), SinglePrecision, locale);
    case Cell::Kind::Double:
        return generalText(cell.asNumber(), DoublePrecision, locale);
    case Cell::Kind::Int32:
        return QString::number(static_cast<qint32>(cell.asNumber()));
    }
    return QString();
}

double toDouble(const Cell &cell, const QLocale &locale)
{
    if (cell.isNull())
        throw VbError(ErrorNumber::InvalidUseOfNull, QStringLiteral("Invalid use of Null"));
    if (cell.isText()) {
        const std::optional<double> value = parseNumber(cell.asText(), locale);
        if (!value)
            throw VbError(ErrorNumber::TypeMismatch, QStringLiteral("Type mismatch"));
        return *value;
    }
    return checkedDouble(cell.asNumber()); // 0 for the empty state
}

double checkedDouble(double value)
{
    if (!std::isfinite(value))
        throw VbError(ErrorNumber::Overflow, QStringLiteral("Overflow"));
    return value;
}

float toSingle(const Cell &cell, const QLocale &locale)
{
    const double value = toDouble(cell, locale);
    if (std::fabs(value) > static_cast<double>(FLT_MAX))
        throw VbError(ErrorNumber::Overflow, QStringLiteral("Overflow"));
    return static_cast<float>(value);
}

bool isBeyondSingle(const Cell &cell, const QLocale &locale)
{
    return (cell.isNumber() || isNumeric(cell, locale))
        && std::fabs(toDouble(cell, locale)) > static_cast<double>(FLT_MAX);
}

qint16 toInt16(const Cell &cell, const QLocale &locale)
{
    constexpr double low = std::numeric_limits<qint16>::min();
    constexpr double high = std::numeric_limits<qint16>::max();
    return static_cast<qint16>(roundedInRange(toDouble(cell, locale), low, high));
}

qint32 toInt32(const Cell &cell, const QLocale &locale)
{
    constexpr double low = std::numeric_limits<qint32>::min();
    constexpr double high = std::numeric_limits<qint32>::max();
    return static_cast<qint32>(roundedInRange(toDouble(cell, locale), low, high));
}

/// Rounding rule: x is scaled by 10^decimals and rounded half to even. A product that lands
/// exactly on a half only because the multiplication rounded is decided by the exact binary
/// value of x (the residual from fma), so 2.675, stored as 2.67499999..., gives 2.67, while
/// 0.125, stored exactly, gives the even 0.12.
double round(double x, int decimals)
{
    if (decimals < 0)
        throw VbError(InvalidProcedureCall, QStringLiteral("Invalid procedure call or argument"));
    if (!std::isfinite(x) || decimals > MaxExactDecimals)
        return x;
    const double scale = std::pow(10.0, decimals);
    const double scaled = x * scale;
    if (!std::isfinite(scaled))
        return x;
    double rounded = roundHalfEven(scaled);
    if (scaled - std::floor(scaled) == 0.5) {
        const double residual = std::fma(x, scale, -scaled);
        if (residual != 0.0)
            rounded = residual > 0.0 ? std::floor(scaled) + 1.0 : std::floor(scaled);
    }
    return rounded / scale + 0.0; // + 0.0 turns -0 into 0
}

bool isNumeric(const Cell &cell, const QLocale &locale)
{
    if (cell.isNumber())
        return true;
    return cell.isText() && parseNumber(cell.asText(), locale).has_value();
}

namespace {

bool isSpaceLike(QChar c)
{
    return c == QLatin1Char(' ') || c == QChar(0x00a0) || c == QChar(0x202f) || c == QChar(0x2009);
}

bool isApostropheLike(QChar c)
{
    return c == QLatin1Char('\'') || c == QChar(0x2019);
}

/// A full-width or half-width form (what an input method types: "１２．５", "￥"), which
/// stands for its plain character; superscripts, circled digits and other compatibility forms
/// are no digits of a price.
bool isWidthForm(QChar c)
{
    const QChar::Decomposition tag = c.decompositionTag();
    return tag == QChar::Wide || tag == QChar::Narrow;
}

/// Whether a text could read otherwise once folded: it holds a width form, or a blank or an
/// apostrophe where the locale groups with one (the group separators keyboards give).
bool mayFold(const QString &text, const QLocale &locale)
{
    const QString group = locale.groupSeparator();
    const bool spaces = group.size() == 1 && isSpaceLike(group.front());
    const bool apostrophes = group.size() == 1 && isApostropheLike(group.front());
    return std::any_of(text.cbegin(), text.cend(), [&](QChar c) {
        if (c.unicode() < 0x80)
            return (spaces && c == QLatin1Char(' ')) || (apostrophes && c == QLatin1Char('\''));
        return isWidthForm(c) || (spaces && isSpaceLike(c)) || (apostrophes && isApostropheLike(c));
    });
}

/// Whether the locale's currency symbol has a width form ("￥"): asked once per locale and
/// thread, as a failed reading is common (names, notes) and the locale's answer costs more
/// than the reading.
bool symbolFoldsIn(const QLocale &locale)
{
    thread_local QLocale asked;
    thread_local bool folds = foldedSymbol(asked.currencySymbol(QLocale::CurrencySymbol))
        != asked.currencySymbol(QLocale::CurrencySymbol);
    if (!(locale == asked)) {
        asked = locale;
        const QString symbol = locale.currencySymbol(QLocale::CurrencySymbol);
        folds = foldedSymbol(symbol) != symbol;
    }
    return folds;
}

/// The text as people type it in the locale's way with what their keyboard gives: full-width
/// digits and signs as plain ones (an input method's "１２．５"), and any blank or any
/// apostrophe as the locale's group separator where that is a blank or an apostrophe (a no-break
/// space in French, "1'234.56" in Swiss German).
QString folded(const QString &text, const QLocale &locale)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text)
        out += isWidthForm(c) ? c.decomposition() : QString(c);
    const QString group = locale.groupSeparator();
    if (group.size() != 1)
        return out;
    const QChar mark = group.front();
    for (QChar &c : out) {
        if ((isSpaceLike(mark) && isSpaceLike(c))
            || (isApostropheLike(mark) && isApostropheLike(c)))
            c = mark;
    }
    return out;
}

std::optional<double> parseForm(const QString &text, const QLocale &locale, bool isFolded)
{
    QString body = text.trimmed();
    bool negative = false;
    if (!stripMarks(body, locale, negative, isFolded))
        return std::nullopt;
    const std::optional<double> value = parseBody(body, locale, isFolded);
    if (!value)
        return std::nullopt;
    return negative ? -*value : *value;
}

} // namespace

std::optional<double> parseNumber(const QString &text, const QLocale &locale)
{
    if (const std::optional<double> value = parseForm(text, locale, false))
        return value;
    // Japanese writes its currency symbol full width ("￥"), and people type the plain "¥".
    const bool textFolds = mayFold(text, locale);
    const bool symbolFolds = symbolFoldsIn(locale);
    if (!textFolds && !symbolFolds)
        return std::nullopt;
    const QString plain = folded(text, locale);
    // Grouping in threes is tried on a text with a group separator only.
    if (plain == text && !symbolFolds && !text.contains(locale.groupSeparator()))
        return std::nullopt;
    return parseForm(plain, locale, true);
}

namespace {

bool findPlainDecimals(const QLocale &locale)
{
    const QString dot = QStringLiteral(".");
    const QString symbol = locale.currencySymbol(QLocale::CurrencySymbol);
    bool ok = false;
    return locale.decimalPoint() == dot && locale.zeroDigit() == QStringLiteral("0")
        && locale.groupSeparator() != dot && !symbol.contains(QLatin1Char('.'))
        && locale.toDouble(QStringLiteral("01234.50"), &ok) == 1234.5 && ok;
}

} // namespace

bool readsPlainDecimals(const QLocale &locale)
{
    // Asking the locale costs more than reading a price: the answer for the locale asked last
    // on this thread is kept, so a caller may ask for every cell it reads.
    thread_local QLocale asked;
    thread_local bool plain = findPlainDecimals(asked);
    if (!(locale == asked)) {
        asked = locale;
        plain = findPlainDecimals(locale);
    }
    return plain;
}

std::optional<double> plainDecimal(const char *bytes, qsizetype size)
{
    if (!isPlainDecimal(bytes, size))
        return std::nullopt;
    double value = 0;
    if (std::from_chars(bytes, bytes + size, value).ec != std::errc())
        return std::nullopt;
    return value;
}

std::optional<double> cellNumber(const Cell &cell, const QLocale &locale, bool plainDecimals)
{
    if (cell.isNumber())
        return cell.asNumber();
    if (!cell.isText())
        return std::nullopt;
    const CellTextView view = cell.textView();
    if (view.isEmpty())
        return std::nullopt;
    if (plainDecimals && view.encoding != TextEncoding::Utf16) {
        if (const std::optional<double> plain = plainDecimal(view.bytes(), view.size))
            return plain;
    }
    const QString text = cell.asText();
    if (plainDecimals && view.encoding == TextEncoding::Utf16 && text.size() <= 15) {
        const QByteArray ascii = text.toLatin1();
        if (const std::optional<double> plain = plainDecimal(ascii.constData(), ascii.size()))
            return plain;
    }
    return parseNumber(text, locale);
}

} // namespace tarnwick::conv
