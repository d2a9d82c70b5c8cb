// Sorting a row range of a Table: the start-up sort on the part number and the grid's sort
// commands. Keys are computed once per sort, then the keys are sorted stably and the rows are
// moved into place once. Texts that are plain ASCII (nearly all part numbers and names) get
// their folded key straight from their stored bytes, without building a QString; the others
// are folded by QString, so the order is the same either way.
#include "catalogue/table.h"

#include "core/conversions.h"
#include "core/vberror.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace tarnwick {

namespace {

/// The folded text a row sorts by: either ASCII bytes (one byte per code unit) or UTF-16
/// code units, kept in one of two shared buffers; prefix packs the first four code units so
/// most comparisons end there.
struct TextKey
{
    std::uint64_t prefix = 0;
    qsizetype offset = 0;
    qsizetype size = 0;
    bool wide = false;
    int row = 0;
};

struct TextKeys
{
    std::vector<TextKey> keys;
    std::string narrow; ///< folded ASCII keys
    std::u16string wide; ///< folded keys of the other texts

    char16_t unit(const TextKey &key, qsizetype i) const
    {
        return key.wide ? wide[std::size_t(key.offset + i)]
                        : char16_t(static_cast<unsigned char>(narrow[std::size_t(key.offset + i)]));
    }

    /// Orders two folded keys by their code units, as QString's operator< does.
    int compare(const TextKey &a, const TextKey &b) const
    {
        if (a.prefix != b.prefix)
            return a.prefix < b.prefix ? -1 : 1;
        const qsizetype common = std::min(a.size, b.size);
        if (!a.wide && !b.wide) {
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
        return a.size == b.size ? 0 : (a.size < b.size ? -1 : 1);
    }
};

std::uint64_t prefixOf(const TextKeys &all, const TextKey &key)
{
    std::uint64_t prefix = 0;
    for (qsizetype i = 0; i < 4; ++i)
        prefix = (prefix << 16) | (i < key.size ? all.unit(key, i) : 0);
    return prefix;
}

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

void addTextKey(TextKeys &all, const Cell &cell, int row, const QLocale &locale)
{
    TextKey key;
    key.row = row;
    const CellTextView view = cell.textView();
    if (cell.isText() && view.encoding != TextEncoding::Utf16 && view.isAscii()) {
        key.offset = qsizetype(all.narrow.size());
        key.size = view.size;
        for (qsizetype i = 0; i < view.size; ++i) {
            const char c = view.bytes()[i];
            all.narrow.push_back((c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c);
        }
    } else {
        const QString folded = sortText(cell, locale).toCaseFolded();
        key.wide = true;
        key.offset = qsizetype(all.wide.size());
        key.size = folded.size();
        all.wide.append(
            reinterpret_cast<const char16_t *>(folded.constData()), std::size_t(folded.size()));
    }
    key.prefix = prefixOf(all, key);
    all.keys.push_back(key);
}

/// Texts that fold to the same key are ordered by the texts themselves, case-sensitively.
int compareUnfolded(const Cell &a, const Cell &b, const QLocale &locale)
{
    if (a.isText() && b.isText())
        return celltext::compare(a.textView(), b.textView());
    return QString::compare(sortText(a, locale), sortText(b, locale));
}

void sortByText(
    std::vector<int> &order, const Table &table, int first, int field, const QLocale &locale)
{
    TextKeys all;
    all.keys.reserve(order.size());
    for (const int row : order)
        addTextKey(all, table.get(row, field), row, locale);
    std::stable_sort(all.keys.begin(), all.keys.end(), [&](const TextKey &a, const TextKey &b) {
        const int folded = all.compare(a, b);
        if (folded != 0)
            return folded < 0;
        return compareUnfolded(table.get(a.row, field), table.get(b.row, field), locale) < 0;
    });
    for (std::size_t k = 0; k < all.keys.size(); ++k)
        order[k] = all.keys[k].row;
    Q_UNUSED(first);
}

/// The value a cell sorts by in a numeric sort; none for blank and non-numeric cells.
std::optional<double> sortNumber(const Cell &cell, const QLocale &locale, bool dotLocale)
{
    if (cell.isNumber())
        return cell.asNumber();
    if (!cell.isText() || cell.textView().isEmpty())
        return std::nullopt;
    if (dotLocale) {
        const CellTextView view = cell.textView();
        if (view.encoding != TextEncoding::Utf16) {
            if (const std::optional<double> plain = conv::plainDecimal(view.bytes(), view.size))
                return plain;
        }
    }
    return conv::parseNumber(cell.asText(), locale);
}

void sortByNumber(
    std::vector<int> &order, const Table &table, int first, int field, const QLocale &locale)
{
    const bool dotLocale = conv::readsPlainDecimals(locale);
    std::vector<std::optional<double>> keys;
    keys.reserve(order.size());
    for (const int row : order)
        keys.push_back(sortNumber(table.get(row, field), locale, dotLocale));
    // Numbers ascending; blank and non-numeric cells after every number, in their old order.
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
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
