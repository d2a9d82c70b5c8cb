#pragma once

#include <QString>

#include <variant>

namespace tarnwick {

/// One variant cell of the program's tables: empty, null, a text or a number.
/// "Empty" (never assigned) and "the empty text" are different states, and several rules
/// (the catalogue's price field, the quote's end marker) depend on the difference.
class Cell
{
public:
    enum class Kind { Empty, Null, Text, Single, Double, Int32 };

    Cell() = default;
    Cell(const QString &text) : m_value(text) { } // NOLINT: implicit on purpose, like a variant
    Cell(const char *text) : m_value(QString::fromUtf8(text)) { } // NOLINT
    Cell(float value) : m_value(value) { } // NOLINT
    Cell(double value) : m_value(value) { } // NOLINT
    Cell(qint32 value) : m_value(value) { } // NOLINT

    static Cell null();

    Kind kind() const { return static_cast<Kind>(m_value.index()); }
    bool isEmpty() const { return kind() == Kind::Empty; }
    bool isNull() const { return kind() == Kind::Null; }
    bool isText() const { return kind() == Kind::Text; }
    bool isNumber() const;
    /// True for the empty state and for a text of length 0.
    bool isBlank() const;

    /// The stored text; an empty QString for any other kind.
    QString asText() const;
    /// The stored number as a double; 0 for any other kind.
    double asNumber() const;

    bool operator==(const Cell &other) const = default;

private:
    struct NullTag
    {
        bool operator==(const NullTag &) const = default;
    };
    // The order of the alternatives follows Kind.
    std::variant<std::monostate, NullTag, QString, float, double, qint32> m_value;
};

} // namespace tarnwick
