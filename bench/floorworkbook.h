#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick::bench {

/// The floor the workbook import is measured against: plain C++ that reads the same cells of
/// the same workbook as fast as it can, knowing the layout LibreOffice writes. It inflates the
/// zipped parts in pieces (as the readers do) and finds each cell's value with memchr and
/// memcmp; it keeps each value's bytes as the file has them (a number as its digits, a text
/// as its characters or its shared string) and knows nothing of entities, styles, dates,
/// formulas, repeats beyond the cell's own, line breaks or damaged files.
struct FloorSheet
{
    struct Cell
    {
        std::uint32_t row;
        std::uint32_t column;
        std::uint32_t offset;
        std::uint32_t size;
    };
    /// The values' bytes, one after the other.
    std::string values;
    std::vector<Cell> cells;
};

bool floorReadXlsx(const char *path, FloorSheet &sheet);
bool floorReadOds(const char *path, FloorSheet &sheet);
bool floorReadXls(const char *path, FloorSheet &sheet);

} // namespace tarnwick::bench
