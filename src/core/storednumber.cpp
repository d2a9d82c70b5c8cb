#include "core/storednumber.h"

#include "core/conversions.h"
#include "core/vberror.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace tarnwick::stored {

namespace {

/// Shortest round-trip digits of value, as std::to_chars gives them, with an upper-case
/// exponent mark as in the general form.
template <typename T> QString shortestDigits(T value, const QLocale &locale)
{
    std::array<char, 64> buffer {};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    QString text = QString::fromLatin1(buffer.data(), result.ptr - buffer.data());
    text.replace(QLatin1Char('e'), QLatin1Char('E'));
    text.replace(QLatin1Char('.'), locale.decimalPoint());
    return text;
}

/// The general form unless it loses the value, else the shortest digits.
template <typename T> QString shortest(T value, const QLocale &locale)
{
    if (!std::isfinite(value))
        throw VbError(ErrorNumber::Overflow, QStringLiteral("Overflow"));
    const QString general = conv::toText(Cell(value), QLocale::c());
    // The general form is digits, at most one "." and perhaps an exponent: read back from its
    // characters, as readNumber would, without matching its shape first.
    const QByteArray ascii = general.toLatin1();
    double back = 0;
    const auto read = std::from_chars(ascii.constData(), ascii.constData() + ascii.size(), back);
    if (read.ec == std::errc() && read.ptr == ascii.constData() + ascii.size()
        && std::isfinite(back) && static_cast<T>(back) == value)
        return QString(general).replace(QLatin1Char('.'), locale.decimalPoint());
    const std::optional<double> backRead = readNumber(general);
    if (backRead && static_cast<T>(*backRead) == value)
        return QString(general).replace(QLatin1Char('.'), locale.decimalPoint());
    return shortestDigits(value, locale);
}

/// The stored form: optional sign, digits with at most one decimal mark, optional exponent.
bool hasStoredShape(const QString &text, QChar decimalMark)
{
    static const QRegularExpression dot(
        QStringLiteral("^[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?$"));
    static const QRegularExpression comma(
        QStringLiteral("^[+-]?(\\d+,?\\d*|,\\d+)([eE][+-]?\\d+)?$"));
    return (decimalMark == QLatin1Char('.') ? dot : comma).match(text).hasMatch();
}

} // namespace

QString shortestText(float value, const QLocale &locale)
{
    return shortest(value, locale);
}

QString shortestText(double value, const QLocale &locale)
{
    return shortest(value, locale);
}

QString asTyped(const QString &text, const QLocale &userLocale)
{
    if (text.trimmed().isEmpty() || conv::isNumeric(Cell(text), userLocale))
        return text;
    const std::optional<double> value = readNumber(text);
    if (!value || !std::isfinite(*value))
        return text;
    return shortestText(*value, userLocale);
}

QString ownForm(const QString &text, double value, const QLocale &userLocale)
{
    bool ok = false;
    const double own = userLocale.toDouble(text.trimmed(), &ok);
    if (ok && own == value)
        return text;
    return shortestText(value, userLocale);
}

QString pointText(const QString &text, const QLocale &userLocale)
{
    QString kept = asTyped(text, userLocale);
    const std::optional<double> value = conv::parseNumber(kept, userLocale);
    if (!value || !std::isfinite(*value))
        return kept;
    return ownForm(kept, *value, userLocale);
}

QString numberText(float value)
{
    return shortestText(value, QLocale::c());
}

QString numberText(double value)
{
    return shortestText(value, QLocale::c());
}

char *numberChars(float value, char *out)
{
    if (!std::isfinite(value))
        throw VbError(ErrorNumber::Overflow, QStringLiteral("Overflow"));
    if (value == 0.0f) {
        *out = '0';
        return out + 1;
    }
    char *end = out + NumberCharsRoom;
    // Between 0.01 and a million, a single whose shortest digits are at most six significant
    // ones without an exponent ("12.5", "1999.99") has exactly those digits as its general
    // form, which reads back as the same single: every single of that range was checked
    // against the rule below. The shortest digits cost a fraction of the general form.
    const float magnitude = std::fabs(value);
    if (magnitude >= 0.01f && magnitude < 1e6f) {
        const auto digits = std::to_chars(out, end, value);
        int significant = 0;
        bool exponent = false;
        for (const char *c = out; c < digits.ptr; ++c) {
            exponent = exponent || *c == 'e';
            if (*c >= '1' && *c <= '9')
                significant = significant > 0 ? significant + 1 : 1;
            else if (*c == '0' && significant > 0)
                ++significant;
        }
        if (digits.ec == std::errc() && !exponent && significant <= 6)
            return digits.ptr;
    }
    // The general form with 7 significant digits, kept when it reads back as the same single
    // (nearly every price); shortest() says the same in QString terms.
    const auto general =
        std::to_chars(out, end, static_cast<double>(value), std::chars_format::general, 7);
    double back = 0;
    const auto read = std::from_chars(out, general.ptr, back);
    if (general.ec == std::errc() && read.ec == std::errc() && read.ptr == general.ptr
        && std::isfinite(back) && static_cast<float>(back) == value) {
        std::replace(out, general.ptr, 'e', 'E');
        return general.ptr;
    }
    const QByteArray text = numberText(value).toLatin1();
    std::copy(text.cbegin(), text.cend(), out);
    return out + text.size();
}

QString cellText(const Cell &cell, const QLocale &userLocale)
{
    switch (cell.kind()) {
    case Cell::Kind::Single:
        return numberText(static_cast<float>(cell.asNumber()));
    case Cell::Kind::Double:
        return numberText(cell.asNumber());
    case Cell::Kind::Text:
        break;
    default:
        return conv::toText(cell, userLocale);
    }
    QString text = cell.asText();
    const std::optional<double> local = conv::parseNumber(text, userLocale);
    if (!local)
        return text;
    // "12.50" stays as typed when it means the same in the user's locale; "1.000" typed in
    // German means one thousand and is stored as "1000".
    const bool dotForm = hasStoredShape(text.trimmed(), QLatin1Char('.'));
    const std::optional<double> asStored = dotForm ? readNumber(text) : std::nullopt;
    if (asStored && *asStored == *local)
        return text;
    return numberText(*local);
}

std::optional<double> readNumber(const QString &text)
{
    QString body = text.trimmed();
    if (!hasStoredShape(body, QLatin1Char('.'))) {
        if (!hasStoredShape(body, QLatin1Char(',')))
            return std::nullopt;
        body.replace(QLatin1Char(','), QLatin1Char('.'));
    }
    bool ok = false;
    const double value = QLocale::c().toDouble(body, &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<double> readNumberOrLocal(const QString &text, const QLocale &userLocale)
{
    // "2,450" where the user groups thousands with a comma is two thousand four hundred and
    // fifty, as typed into an earlier version's price points and as the user's own number
    // conversion reads it, not a comma decimal (which "0,125" and "2,45" still are).
    static const QRegularExpression groupedInThrees(
        QStringLiteral("^\\s*[+-]?[1-9]\\d{0,2}(,\\d{3})+\\s*$"));
    if (userLocale.groupSeparator() == QLatin1String(",")
        && groupedInThrees.match(text).hasMatch()) {
        if (std::optional<double> local = conv::parseNumber(text, userLocale))
            return local;
    }
    if (std::optional<double> value = readNumber(text))
        return value;
    return conv::parseNumber(text, userLocale);
}

Cell numberCell(const QString &text, const QLocale &userLocale)
{
    if (const std::optional<double> value = readNumberOrLocal(text, userLocale))
        return Cell(*value);
    return Cell(text);
}

} // namespace tarnwick::stored
