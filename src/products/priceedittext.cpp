#include "products/priceedittext.h"

#include "core/cell.h"
#include "core/conversions.h"

#include <QLocale>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace tarnwick {

namespace {
/// The shortest fixed-point text that reads back as the same single, written with the
/// locale's decimal point and minus sign (no group separators, as a user types it).
QString shortestSingleText(float value, const QLocale &locale)
{
    std::array<char, 64> buffer {};
    const auto [end, error] = std::to_chars(
        buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    if (error != std::errc())
        return QString::number(double(value));
    QString text;
    for (const char *at = buffer.data(); at != end; ++at) {
        if (*at == '.')
            text += locale.decimalPoint();
        else if (*at == '-')
            text += locale.negativeSign();
        else
            text += QLatin1Char(*at);
    }
    return text;
}
} // namespace

QString priceEditText(const Cell &cell, const QLocale &locale)
{
    const double number = cell.asNumber();
    const bool price = cell.kind() == Cell::Kind::Single || cell.kind() == Cell::Kind::Double;
    if (price && std::isfinite(number)
        && std::fabs(number) <= double(std::numeric_limits<float>::max()))
        return shortestSingleText(float(number), locale);
    return conv::toText(cell, locale);
}

} // namespace tarnwick
