#include "core/cell.h"

namespace tarnwick {

namespace {
constexpr qsizetype MaxOffset = 0xFFFFFFFF;
constexpr qsizetype MaxSize = (qsizetype(1) << 27) - 1;
} // namespace

Cell::Cell(const QString &text) : m_kind(std::uint8_t(Kind::Text))
{
    m_encoding = std::uint32_t(TextEncoding::Utf16);
    m_value.block = new CellTextBlock;
    m_value.block->text = text;
}

Cell::Cell(const Cell &other) noexcept
    : m_value(other.m_value), m_offset(other.m_offset), m_size(other.m_size),
      m_encoding(other.m_encoding), m_kind(other.m_kind)
{
    if (isText())
        m_value.block->ref.fetch_add(1, std::memory_order_relaxed);
}

Cell::Cell(Cell &&other) noexcept
    : m_value(other.m_value), m_offset(other.m_offset), m_size(other.m_size),
      m_encoding(other.m_encoding), m_kind(other.m_kind)
{
    other.m_kind = std::uint32_t(Kind::Empty);
}

Cell &Cell::operator=(const Cell &other) noexcept
{
    if (this != &other) {
        Cell copy(other);
        *this = std::move(copy);
    }
    return *this;
}

Cell &Cell::operator=(Cell &&other) noexcept
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

Cell Cell::null()
{
    Cell cell;
    cell.m_kind = std::uint32_t(Kind::Null);
    return cell;
}

bool Cell::fitsInBlock(qsizetype offset, qsizetype size)
{
    return offset >= 0 && size >= 0 && offset <= MaxOffset && size <= MaxSize;
}

Cell Cell::inBlock(CellTextBlock *block, qsizetype offset, qsizetype size, TextEncoding encoding)
{
    Q_ASSERT(fitsInBlock(offset, size) && encoding != TextEncoding::Utf16);
    Cell cell;
    block->ref.fetch_add(1, std::memory_order_relaxed);
    cell.m_value.block = block;
    cell.m_offset = std::uint32_t(offset);
    cell.m_size = std::uint32_t(size);
    cell.m_encoding = std::uint32_t(encoding);
    cell.m_kind = std::uint32_t(Kind::Text);
    return cell;
}

bool Cell::isNumber() const
{
    const Kind k = kind();
    return k == Kind::Single || k == Kind::Double || k == Kind::Int32;
}

bool Cell::isBlank() const
{
    return isEmpty() || (isText() && textView().isEmpty());
}

CellTextView Cell::textView() const
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

QString Cell::asText() const
{
    if (!isText())
        return {};
    if (static_cast<TextEncoding>(m_encoding) == TextEncoding::Utf16)
        return m_value.block->text; // shared, not copied
    return textView().toString();
}

double Cell::asNumber() const
{
    switch (kind()) {
    case Kind::Single:
        return m_value.single;
    case Kind::Double:
        return m_value.real;
    case Kind::Int32:
        return m_value.int32;
    default:
        return 0.0;
    }
}

bool Cell::operator==(const Cell &other) const
{
    if (m_kind != other.m_kind)
        return false;
    switch (kind()) {
    case Kind::Text:
        return celltext::equal(textView(), other.textView());
    case Kind::Single:
        return m_value.single == other.m_value.single;
    case Kind::Double:
        return m_value.real == other.m_value.real;
    case Kind::Int32:
        return m_value.int32 == other.m_value.int32;
    default:
        return true;
    }
}

} // namespace tarnwick
