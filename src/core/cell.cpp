#include "core/cell.h"

namespace tarnwick {

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

Cell &Cell::operator=(const Cell &other) noexcept
{
    if (this != &other) {
        Cell copy(other);
        *this = std::move(copy);
    }
    return *this;
}

void Cell::releaseAll(Cell *begin, Cell *end) noexcept
{
    CellTextBlock *block = nullptr;
    std::int32_t run = 0;
    const auto giveBack = [&] {
        if (block && block->ref.fetch_sub(run, std::memory_order_acq_rel) == run)
            delete block;
    };
    for (Cell *cell = begin; cell != end; ++cell) {
        if (!cell->isText())
            continue;
        if (cell->m_value.block != block) {
            giveBack();
            block = cell->m_value.block;
            run = 0;
        }
        ++run;
        cell->m_kind = std::uint32_t(Kind::Empty);
    }
    giveBack();
}

void Cell::copyAll(const Cell *begin, const Cell *end, Cell *out) noexcept
{
    CellTextBlock *block = nullptr;
    std::int32_t run = 0;
    const auto takeReferences = [&] {
        if (block)
            block->ref.fetch_add(run, std::memory_order_relaxed);
    };
    for (const Cell *cell = begin; cell != end; ++cell, ++out) {
        Q_ASSERT(out->isEmpty());
        out->m_value = cell->m_value;
        out->m_offset = cell->m_offset;
        out->m_size = cell->m_size;
        out->m_encoding = cell->m_encoding;
        out->m_kind = cell->m_kind;
        if (!cell->isText())
            continue;
        if (cell->m_value.block != block) {
            takeReferences();
            block = cell->m_value.block;
            run = 0;
        }
        ++run;
    }
    takeReferences();
}

Cell Cell::null()
{
    Cell cell;
    cell.m_kind = std::uint32_t(Kind::Null);
    return cell;
}

Cell Cell::inBlock(CellTextBlock *block, qsizetype offset, qsizetype size, TextEncoding encoding)
{
    block->ref.fetch_add(1, std::memory_order_relaxed);
    return inBlockAdopting(block, offset, size, encoding);
}

bool Cell::isNumber() const
{
    const Kind k = kind();
    return k == Kind::Single || k == Kind::Double || k == Kind::Int32;
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
