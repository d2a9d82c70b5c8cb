// Sorting a row range of a Table: the start-up sort on the part number and the grid's sort
// commands. Keys are computed once per sort, then the keys are sorted stably and the rows are
// moved into place once. Texts that are plain ASCII (nearly all part numbers and names) get
// their folded key straight from their stored bytes, without building a QString; the others
// are folded by QString, so the order is the same either way.
#include "catalogue/table.h"

#include "core/conversions.h"
#include "core/vberror.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

namespace tarnwick {

namespace {

/// Asks the processor to fetch the memory at address ahead of its use.
inline void prefetch(const void *address)
{
#if defined(__GNUC__) || defined(__clang__)
    __builtin_prefetch(address);
#else
    static_cast<void>(address);
#endif
}

/// The folded text a row sorts by: either ASCII bytes (one byte per code unit) or UTF-16
/// code units, kept in one of two shared buffers; prefix packs the first code units so most
/// comparisons end there: eight bytes when every key is ASCII, else four 16-bit units.
struct TextKey
{
    std::uint64_t prefix = 0;
    qsizetype offset = 0;
    std::uint32_t size = 0;
    int row = 0;
};

/// Keys longer than this are not packed by their size; no cell text comes near it.
constexpr std::uint32_t WideFlag = 0x80000000u;

struct TextKeys
{
    std::vector<TextKey> keys;
    std::string narrow; ///< folded ASCII keys
    std::u16string wide; ///< folded keys of the other texts
    bool anyWide = false;

    static bool isWide(const TextKey &key) { return (key.size & WideFlag) != 0; }
    static qsizetype sizeOf(const TextKey &key) { return qsizetype(key.size & ~WideFlag); }

    char16_t unit(const TextKey &key, qsizetype i) const
    {
        return isWide(key)
            ? wide[std::size_t(key.offset + i)]
            : char16_t(static_cast<unsigned char>(narrow[std::size_t(key.offset + i)]));
    }

    /// Orders two folded keys by their code units, as QString's operator< does.
    int compare(const TextKey &a, const TextKey &b) const
    {
        if (a.prefix != b.prefix)
            return a.prefix < b.prefix ? -1 : 1;
        const qsizetype aSize = sizeOf(a);
        const qsizetype bSize = sizeOf(b);
        const qsizetype common = std::min(aSize, bSize);
        if (!isWide(a) && !isWide(b)) {
            const int c = std::memcmp(
                narrow.data() + a.offset, narrow.data() + b.offset, std::size_t(common));
            if (c != 0)
                return c;
        } else {
            for (qsizetype i = 0; i < common; ++i) {
                const char16_t x = unit(a, i);
                const char16_t y = unit(b, i);
                if (x != y)
                    return x < y ? -1 : 1;
            }
        }
        return aSize == bSize ? 0 : (aSize < bSize ? -1 : 1);
    }

    /// Packs the first code units of every key. Comparing the packs orders keys as comparing
    /// their first units does (a key shorter than the pack is padded with zeros, which the full
    /// comparison then settles).
    void packPrefixes()
    {
        for (TextKey &key : keys) {
            const qsizetype size = sizeOf(key);
            std::uint64_t prefix = 0;
            if (anyWide) {
                for (qsizetype i = 0; i < 4; ++i)
                    prefix = (prefix << 16) | (i < size ? unit(key, i) : 0);
            } else {
                const auto *bytes =
                    reinterpret_cast<const unsigned char *>(narrow.data() + key.offset);
                for (qsizetype i = 0; i < 8; ++i)
                    prefix = (prefix << 8) | (i < size ? bytes[i] : 0);
            }
            key.prefix = prefix;
        }
    }
};

/// The text a cell sorts by: texts as they are, numbers as conv::toText shows them, empty
/// and null cells as the empty text.
QString sortText(const Cell &cell, const QLocale &locale)
{
    if (cell.isText())
        return cell.asText();
    if (cell.isNumber())
        return conv::toText(cell, locale);
    return {};
}

/// Whether a cell's text is kept as plain ASCII bytes: its folded key is then those bytes in
/// lower case, and its characters are those bytes one for one.
bool isAsciiBytes(const Cell &cell)
{
    const CellTextView view = cell.textView();
    return cell.isText() && view.encoding != TextEncoding::Utf16 && view.isAscii();
}

void addTextKey(TextKeys &all, const Cell &cell, int row, const QLocale &locale)
{
    TextKey key;
    key.row = row;
    if (isAsciiBytes(cell)) {
        const CellTextView view = cell.textView();
        key.offset = qsizetype(all.narrow.size());
        key.size = std::uint32_t(view.size);
        all.narrow.resize(all.narrow.size() + std::size_t(view.size));
        char *out = all.narrow.data() + key.offset;
        for (qsizetype i = 0; i < view.size; ++i) {
            const char c = view.bytes()[i];
            out[i] = (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c;
        }
    } else {
        const QString folded = sortText(cell, locale).toCaseFolded();
        all.anyWide = true;
        key.offset = qsizetype(all.wide.size());
        key.size = std::uint32_t(folded.size()) | WideFlag;
        all.wide.append(
            reinterpret_cast<const char16_t *>(folded.constData()), std::size_t(folded.size()));
    }
    all.keys.push_back(key);
}

/// Texts that fold to the same key are ordered by the texts themselves, case-sensitively.
int compareUnfolded(const Cell &a, const Cell &b, const QLocale &locale)
{
    if (a.isText() && b.isText()) {
        const CellTextView x = a.textView();
        const CellTextView y = b.textView();
        // Plain ASCII bytes are their own code units.
        if (x.encoding != TextEncoding::Utf16 && y.encoding != TextEncoding::Utf16 && x.isAscii()
            && y.isAscii()) {
            const int c = std::memcmp(x.bytes(), y.bytes(), std::size_t(std::min(x.size, y.size)));
            if (c != 0)
                return c;
            return x.size == y.size ? 0 : (x.size < y.size ? -1 : 1);
        }
        return celltext::compare(x, y);
    }
    return QString::compare(sortText(a, locale), sortText(b, locale));
}

/// std::stable_sort that first looks for what catalogues hold most often: an order already
/// sorted (a header clicked twice, a refresh) or two sorted runs one after the other (a sorted
/// catalogue with a sorted sheet imported after it), which it puts in order with one pass of
/// comparisons. The result is the same: a stable merge of two sorted runs is their stable sort.
template <typename It, typename Less> void sortStably(It begin, It end, Less less)
{
    const It firstBreak = std::is_sorted_until(begin, end, less);
    if (firstBreak == end)
        return;
    if (std::is_sorted(firstBreak, end, less))
        std::inplace_merge(begin, firstBreak, end, less);
    else
        std::stable_sort(begin, end, less);
}

void sortByText(
    std::vector<int> &order, const Table &table, int first, int field, const QLocale &locale)
{
    TextKeys all;
    all.keys.reserve(order.size());
    qsizetype narrowSize = 0;
    for (const int row : order)
        narrowSize += table.get(row, field).textView().size;
    all.narrow.reserve(std::size_t(narrowSize));
    for (const int row : order)
        addTextKey(all, table.get(row, field), row, locale);
    all.packPrefixes();
    sortStably(all.keys.begin(), all.keys.end(), [&](const TextKey &a, const TextKey &b) {
        const int folded = all.compare(a, b);
        if (folded != 0)
            return folded < 0;
        return compareUnfolded(table.get(a.row, field), table.get(b.row, field), locale) < 0;
    });
    for (std::size_t k = 0; k < all.keys.size(); ++k)
        order[k] = all.keys[k].row;
    Q_UNUSED(first);
}

void sortByNumber(
    std::vector<int> &order, const Table &table, int first, int field, const QLocale &locale)
{
    const bool dotLocale = conv::readsPlainDecimals(locale);
    std::vector<std::optional<double>> keys;
    keys.reserve(order.size());
    for (const int row : order)
        keys.push_back(conv::cellNumber(table.get(row, field), locale, dotLocale));
    // Numbers ascending; blank and non-numeric cells after every number, in their old order.
    sortStably(order.begin(), order.end(), [&](int a, int b) {
        const auto &ka = keys[std::size_t(a - first)];
        const auto &kb = keys[std::size_t(b - first)];
        if (ka && kb)
            return *ka < *kb;
        return ka.has_value() && !kb.has_value();
    });
}

} // namespace

void Table::sortRows(int first, int last, int field, SortKind kind, const QLocale &locale)
{
    if (last < first)
        return; // an empty range, e.g. sorting a catalogue of no products
    reorderRows(first, sortedOrder(first, last, field, kind, locale));
}

std::vector<int> Table::sortedOrder(
    int first, int last, int field, SortKind kind, const QLocale &locale) const
{
    if (last < first)
        return {};
    checkBounds(first, field);
    checkBounds(last, field);
    std::vector<int> order(std::size_t(last - first + 1));
    for (std::size_t k = 0; k < order.size(); ++k)
        order[k] = first + int(k);
    if (kind == SortKind::Text)
        sortByText(order, *this, first, field, locale);
    else
        sortByNumber(order, *this, first, field, locale);
    return order;
}

void Table::reorderRows(int first, const std::vector<int> &order)
{
    if (order.empty())
        return;
    if (first < 1 || std::size_t(first - 1) + order.size() > std::size_t(m_rows))
        throw VbError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    // Row first + k takes old row order[k]. Following each cycle of that permutation moves
    // every row once, holding one row aside per cycle.
    const std::size_t width = std::size_t(m_fields);
    std::vector<bool> placed(order.size(), false);
    std::vector<Cell> held(width);
    bool touched = false;
    for (std::size_t start = 0; start < order.size(); ++start) {
        if (placed[start] || std::size_t(order[start] - first) == start) {
            placed[start] = true;
            continue;
        }
        const auto rowAt = [&](std::size_t k) {
            return m_cells.begin() + std::ptrdiff_t(index(first + int(k), 1));
        };
        std::move(rowAt(start), rowAt(start) + std::ptrdiff_t(width), held.begin());
        std::size_t to = start;
        for (;;) {
            placed[to] = true;
            const std::size_t from = std::size_t(order[to] - first);
            if (from == start)
                break;
            // The row after next in the cycle is known now: asking for it early lets the
            // memory fetch it while this row moves, instead of waiting at each step.
            const std::size_t next = std::size_t(order[from] - first);
            const Cell *ahead = &*rowAt(next);
            for (std::size_t byte = 0; byte < width * sizeof(Cell); byte += 64)
                prefetch(reinterpret_cast<const char *>(ahead) + byte);
            std::move(rowAt(from), rowAt(from) + std::ptrdiff_t(width), rowAt(to));
            to = from;
        }
        std::move(held.begin(), held.end(), rowAt(to));
        // Only a sort that moved a row changes the table.
        touched = true;
    }
    if (touched)
        touch();
}

} // namespace tarnwick
