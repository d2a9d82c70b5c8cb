// Sorting a row range of a Table: the start-up sort on the part number and the grid's sort
// commands. Keys are computed once per row, then an index permutation is sorted stably and
// the rows are moved into place, so a catalogue of 100,000 rows sorts in a fraction of a second.
#include "catalogue/table.h"

#include "core/conversions.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

namespace tarnwick {

namespace {

struct TextKey
{
    QString folded; ///< the text with letter case folded, compared first
    QString text; ///< the text itself, deciding between texts that differ only in case
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

/// The value a cell sorts by in a numeric sort; none for blank and non-numeric cells.
std::optional<double> sortNumber(const Cell &cell, const QLocale &locale)
{
    if (cell.isNumber())
        return cell.asNumber();
    if (cell.isText() && !cell.asText().isEmpty())
        return conv::parseNumber(cell.asText(), locale);
    return std::nullopt;
}

void sortByText(
    std::vector<int> &order, const Table &table, int first, int field, const QLocale &locale)
{
    std::vector<TextKey> keys;
    keys.reserve(order.size());
    for (const int row : order) {
        QString text = sortText(table.get(row, field), locale);
        keys.push_back({ text.toCaseFolded(), std::move(text) });
    }
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        const TextKey &ka = keys[std::size_t(a - first)];
        const TextKey &kb = keys[std::size_t(b - first)];
        if (ka.folded != kb.folded)
            return ka.folded < kb.folded;
        return ka.text < kb.text;
    });
}

void sortByNumber(
    std::vector<int> &order, const Table &table, int first, int field, const QLocale &locale)
{
    std::vector<std::optional<double>> keys;
    keys.reserve(order.size());
    for (const int row : order)
        keys.push_back(sortNumber(table.get(row, field), locale));
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
    checkBounds(first, field);
    checkBounds(last, field);
    std::vector<int> order(std::size_t(last - first + 1));
    std::iota(order.begin(), order.end(), first);
    if (kind == SortKind::Text)
        sortByText(order, *this, first, field, locale);
    else
        sortByNumber(order, *this, first, field, locale);
    reorderRows(first, order);
}

void Table::reorderRows(int first, const std::vector<int> &order)
{
    const std::size_t width = std::size_t(m_fields);
    std::vector<Cell> sorted(order.size() * width);
    for (std::size_t k = 0; k < order.size(); ++k) {
        const auto from = m_cells.begin() + std::ptrdiff_t(index(order[k], 1));
        std::move(from, from + std::ptrdiff_t(width), sorted.begin() + std::ptrdiff_t(k * width));
    }
    std::move(sorted.begin(), sorted.end(), m_cells.begin() + std::ptrdiff_t(index(first, 1)));
}

} // namespace tarnwick
