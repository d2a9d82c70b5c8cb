#pragma once

#include "core/celltext.h"

#include <QString>

#include <cstdint>

namespace tarnwick {

/// One variant cell of the program's tables: empty, null, a text or a number.
/// "Empty" (never assigned) and "the empty text" are different states, and several rules
/// (the catalogue's price field, the quote's end marker) depend on the difference.
///
/// A cell takes 16 bytes. A text cell does not own a string of its own: it points into a
/// shared, reference-counted CellTextBlock, which for a catalogue read from its file is the
/// file's bytes themselves, so 100,000 products cost one block and no allocation per cell.
/// asText() decodes on access; textView() gives the stored characters without copying.
class Cell
{
public:
    enum class Kind { Empty, Null, Text, Single, Double, Int32 };

    Cell() = default;
    Cell(const QString &text); // NOLINT: implicit on purpose, like a variant
    Cell(const char *text) : Cell(QString::fromUtf8(text)) { } // NOLINT
    Cell(float value) : m_kind(std::uint8_t(Kind::Single)) { m_value.single = value; } // NOLINT
    Cell(double value) : m_kind(std::uint8_t(Kind::Double)) { m_value.real = value; } // NOLINT
    Cell(qint32 value) : m_kind(std::uint8_t(Kind::Int32)) { m_value.int32 = value; } // NOLINT

    Cell(const Cell &other) noexcept;
    Cell(Cell &&other) noexcept
        : m_value(other.m_value), m_offset(other.m_offset), m_size(other.m_size),
          m_encoding(other.m_encoding), m_kind(other.m_kind)
    {
        other.m_kind = std::uint32_t(Kind::Empty);
    }
    Cell &operator=(const Cell &other) noexcept;
    Cell &operator=(Cell &&other) noexcept
    {
        if (this != &other) {
            release();
            m_value = other.m_value;
            m_offset = other.m_offset;
            m_size = other.m_size;
            m_encoding = other.m_encoding;
            m_kind = other.m_kind;
            other.m_kind = std::uint32_t(Kind::Empty);
        }
        return *this;
    }
    ~Cell() { release(); }

    static Cell null();
    /// A text cell for the size bytes (or code units) at offset in block, which must outlive
    /// nothing: the cell holds a reference to it. Bytes of a byte encoding must be valid in
    /// that encoding; offset and size must fit 32 and 29 bits (see fitsInBlock).
    static Cell inBlock(
        CellTextBlock *block, qsizetype offset, qsizetype size, TextEncoding encoding);
    /// As inBlock, for a reference to block the caller has already added: a reader that
    /// makes many cells of one block counts them in once instead of once per cell.
    static Cell inBlockAdopting(
        CellTextBlock *block, qsizetype offset, qsizetype size, TextEncoding encoding)
    {
        Q_ASSERT(fitsInBlock(offset, size) && encoding != TextEncoding::Utf16);
        Cell cell;
        cell.m_value.block = block;
        cell.m_offset = std::uint32_t(offset);
        cell.m_size = std::uint32_t(size);
        cell.m_encoding = std::uint32_t(encoding);
        cell.m_kind = std::uint32_t(Kind::Text);
        return cell;
    }
    /// Whether a text at offset of size units can be kept by inBlock.
    static bool fitsInBlock(qsizetype offset, qsizetype size)
    {
        return offset >= 0 && size >= 0 && offset <= MaxOffset && size <= MaxSize;
    }

    /// Empties every cell of [begin, end). Neighbouring text cells of one block (a catalogue
    /// read from its file is one block) give their references back in one step, which makes
    /// freeing a large table a plain pass over its memory.
    static void releaseAll(Cell *begin, Cell *end) noexcept;
    /// Copies [begin, end) over the empty cells at out. Neighbouring text cells of one block
    /// take their references in one step, which makes copying a large table (the recovery
    /// file's snapshot) a plain pass over its memory.
    static void copyAll(const Cell *begin, const Cell *end, Cell *out) noexcept;

    Kind kind() const { return static_cast<Kind>(m_kind); }
    bool isEmpty() const { return kind() == Kind::Empty; }
    bool isNull() const { return kind() == Kind::Null; }
    bool isText() const { return kind() == Kind::Text; }
    bool isNumber() const;
    /// True for the empty state and for a text of length 0.
    bool isBlank() const
    {
        if (isEmpty())
            return true;
        if (!isText())
            return false;
        // The same as textView().isEmpty(), without making the view: asked of every cell an
        // import reads.
        return static_cast<TextEncoding>(m_encoding) == TextEncoding::Utf16
            ? m_value.block->text.isEmpty()
            : m_size == 0;
    }

    /// The stored text; an empty QString for any other kind.
    QString asText() const;
    /// The stored characters without copying; an empty view for any other kind.
    CellTextView textView() const
    {
        if (!isText())
            return {};
        const auto encoding = static_cast<TextEncoding>(m_encoding);
        if (encoding == TextEncoding::Utf16) {
            const QString &text = m_value.block->text;
            return { encoding, text.utf16(), text.size() };
        }
        return { encoding, m_value.block->bytes.constData() + m_offset, qsizetype(m_size) };
    }
    /// The block a text cell's characters are kept in; null for any other kind. Two cells of
    /// one block with neighbouring offsets lie one after the other in it.
    const CellTextBlock *textBlock() const { return isText() ? m_value.block : nullptr; }
    /// The stored number as a double; 0 for any other kind.
    double asNumber() const;

    bool operator==(const Cell &other) const;

private:
    static constexpr qsizetype MaxOffset = 0xFFFFFFFF;
    static constexpr qsizetype MaxSize = (qsizetype(1) << 27) - 1;

    void release() noexcept
    {
        if (isText() && m_value.block->ref.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete m_value.block;
    }

    union Value {
        float single;
        double real;
        qint32 int32;
        CellTextBlock *block;
    };
    Value m_value { .real = 0.0 };
    std::uint32_t m_offset = 0; ///< where the text starts in its block (bytes or units)
    std::uint32_t m_size : 27 = 0; ///< the text's length in bytes or units
    std::uint32_t m_encoding : 2 = 0; ///< a TextEncoding
    std::uint32_t m_kind : 3 = 0; ///< a Kind
};

static_assert(sizeof(Cell) == 16, "a cell stays 16 bytes: a catalogue holds 15 per product");

} // namespace tarnwick
