#include "core/formats.h"

#include "core/conversions.h"

#include <cmath>
#include <optional>

namespace tarnwick {

namespace {

// Every named format that shows decimals first rounds the value half to even with
// conv::round, the program's own rounding, so 0.125 shows as "$0.12" and not "$0.13".
constexpr int MoneyDecimals = 2;

enum class NamedFormat { Currency, Percent, WholeGrouped, DollarPadded, GeneralNumber, Unknown };

NamedFormat namedFormat(const QString &name)
{
    if (name.compare(QStringLiteral("Currency"), Qt::CaseInsensitive) == 0)
        return NamedFormat::Currency;
    if (name.compare(QStringLiteral("Percent"), Qt::CaseInsensitive) == 0)
        return NamedFormat::Percent;
    if (name == QStringLiteral("#,###"))
        return NamedFormat::WholeGrouped;
    if (name == QStringLiteral("$#,#00.00"))
        return NamedFormat::DollarPadded;
    if (name.compare(QStringLiteral("General Number"), Qt::CaseInsensitive) == 0)
        return NamedFormat::GeneralNumber;
    return NamedFormat::Unknown;
}

/// "Currency": the locale's currency form with two decimals ("$1,234.50", "($5.00)").
QString currencyText(double value, const QLocale &locale)
{
    return locale.toCurrencyString(conv::round(value, MoneyDecimals), QString(), MoneyDecimals);
}

/// "Percent": the value × 100 with two decimals and the percent sign, without group
/// separators ("12.50%", "7285.29%"). The exact value is rounded to four decimals, as
/// "Currency" rounds to two, and only then scaled: 0.00165, held as 0.0016499999..., shows
/// "0.16%", where rounding the double product × 100 would give "0.17%".
QString percentText(double value, const QLocale &locale)
{
    constexpr int ShareDecimals = MoneyDecimals + 2;
    const double percent = conv::round(value, ShareDecimals) * 100.0;
    QLocale plain = locale;
    plain.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
    return plain.toString(percent, 'f', MoneyDecimals) + locale.percent();
}

/// "#,###": a grouped whole number; a value that rounds to zero shows nothing.
QString wholeGroupedText(double value, const QLocale &locale)
{
    const double whole = conv::round(value, 0);
    if (whole == 0.0)
        return QString();
    return locale.toString(whole, 'f', 0);
}

/// "$#,#00.00": a literal "$", then the grouped amount with at least two integer digits and
/// two decimals; a negative amount puts its minus sign before the "$" ("-$05.00").
QString dollarPaddedText(double value, const QLocale &locale)
{
    const double amount = conv::round(std::fabs(value), MoneyDecimals);
    QString digits = locale.toString(amount, 'f', MoneyDecimals);
    if (amount < 10.0)
        digits.prepend(locale.zeroDigit());
    const QString sign = (value < 0.0 && amount != 0.0) ? locale.negativeSign() : QString();
    return sign + QStringLiteral("$") + digits;
}

/// The number a cell stands for: its number, or its text when that parses as a number.
std::optional<double> numberOf(const Cell &value, const QLocale &locale)
{
    if (value.isNumber())
        return value.asNumber();
    if (value.isText())
        return conv::parseNumber(value.asText(), locale);
    return std::nullopt;
}

} // namespace

QString format(const Cell &value, const QString &formatName, const QLocale &locale)
{
    if (value.isNull() || value.isBlank())
        return QString();
    const NamedFormat kind = namedFormat(formatName);
    if (kind == NamedFormat::Unknown)
        return conv::toText(value, locale);
    const std::optional<double> number = numberOf(value, locale);
    if (!number)
        return value.asText(); // a text that is no number stays as it is
    conv::checkedDouble(*number); // an infinity or NaN raises 6, as conv::toText does
    switch (kind) {
    case NamedFormat::Currency:
        return currencyText(*number, locale);
    case NamedFormat::Percent:
        return percentText(*number, locale);
    case NamedFormat::WholeGrouped:
        return wholeGroupedText(*number, locale);
    case NamedFormat::DollarPadded:
        return dollarPaddedText(*number, locale);
    case NamedFormat::GeneralNumber:
        // A number cell keeps its own precision (a single shows 7 digits); a text is read
        // as a double.
        return conv::toText(value.isNumber() ? value : Cell(*number), locale);
    case NamedFormat::Unknown:
        break;
    }
    return conv::toText(value, locale);
}

QLocale programLocaleFrom(const QLocale &systemLocale)
{
    if (systemLocale.language() == QLocale::C)
        return QLocale(QLocale::English, QLocale::UnitedStates);
    return systemLocale;
}

QString plainToolTip(const QString &text)
{
    if (!text.contains(u'<') && !text.contains(u'&'))
        return text;
    return QStringLiteral("<qt style=\"white-space:pre-wrap\">%1</qt>").arg(text.toHtmlEscaped());
}

QLocale programLocale()
{
    return programLocaleFrom(QLocale::system());
}

} // namespace tarnwick
