#pragma once

#include "core/celltext.h"

#include <QLocale>
#include <QString>

#include <optional>

namespace tarnwick::decimalmark {

/// The character a number text was written with between its whole part and its fraction.
enum class Mark {
    Unknown,
    Point,
    Comma,
};

/// What the marks of one number text say of the decimal mark it was written with. A text
/// with one mark followed by three digits ("2,675", "1.250") says nothing: it is a decimal
/// in one convention and a group of thousands in the other (ambiguous). "12,50", "0,125",
/// "1.234,56" and "1,234,567" each say which mark is the decimal one; digits alone and
/// anything that is not a number written with digits, "." and "," say nothing.
struct Reading
{
    Mark says = Mark::Unknown;
    bool ambiguous = false;
};

Reading readMarks(const CellTextView &view);

/// The mark the locale writes decimals with, Unknown for a locale that writes neither.
Mark markOf(const QLocale &locale);

/// An ambiguous text (readMarks) written with decimal mark written, in the form the locale
/// reads as that number: "2,675" written with a decimal comma becomes "2.675" in English, and
/// "1.000" written with a decimal comma (a thousand) becomes "1000". Anything around the
/// digits (a sign, a currency, blanks) stays.
QString rewritten(const QString &text, Mark written, const QLocale &locale);

/// The number a text written with decimal mark written stands for, whatever the user's locale:
/// "12,50 €" and "99.999,99 €" with a decimal comma, "$1,234.56" and "(12.50)" (below zero)
/// with a decimal point. Digits alone need no mark. None for a text that is no number so
/// written (a letter in it, marks that do not fit the mark, a mark where written is Unknown).
std::optional<double> valueOf(const QString &text, Mark written);

/// Collects what the number texts of a sheet say of its decimal mark.
class SheetMarks
{
public:
    void add(const CellTextView &view);
    /// Point or Comma when the texts said only that one; Unknown when they said nothing, or
    /// both (a sheet that mixes the two is read as the user's locale reads it).
    Mark result() const;
    /// True once texts said both marks: more texts change nothing.
    bool isMixed() const { return m_point && m_comma; }
    /// True once a text said mark.
    bool said(Mark mark) const
    {
        return mark == Mark::Point ? m_point : mark == Mark::Comma && m_comma;
    }

private:
    bool m_point = false;
    bool m_comma = false;
};

} // namespace tarnwick::decimalmark
