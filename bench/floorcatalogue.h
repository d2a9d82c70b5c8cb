#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace tarnwick::bench {

/// One product of the floor: its fifteen fields where they lie in the file's bytes, and the
/// list price read as a single, as the program keeps it.
struct FloorRow
{
    std::array<std::string_view, 15> fields;
    float price = 0;
    bool hasPrice = false;
};

/// The floor the catalogue store is measured against: the fastest plain C++ that does the
/// same work, with every advantage the program itself takes. It reads the file into one
/// uninitialised buffer advised for large pages, counts the lines to reserve its rows once,
/// splits the fields with memchr and reads the price and checks the price points with the
/// program's own number parser. It knows nothing of cells, encodings, locales or the
/// program's damaged-file rules.
struct FloorCatalogue
{
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
    std::vector<FloorRow> rows;
};

/// Reads path whole and splits it into rows of fifteen fields.
bool floorRead(const char *path, FloorCatalogue &catalogue);

/// The same safe save as the program's: every row written in pieces of about 1 MB to a
/// temporary file beside path (fields ended by three DEL, rows by CR LF, the price written
/// back as the shortest text of its single), flushed to the disk, the previous file kept as
/// the backup by a second name, and the temporary file renamed over path.
bool floorWrite(const char *path, const FloorCatalogue &catalogue);

/// The sort on one field (0 the part number, 1 the product name): every text folded to lower
/// case once, the keys sorted stably (ties by the texts as they are), then the rows moved
/// into that order.
void floorSortOn(FloorCatalogue &catalogue, std::size_t field);

/// "Locate Product" in the floor: the first row from the first on whose part number or
/// name contains needle (upper-case ASCII), ignoring letter case; -1 when none does.
long floorSearch(const FloorCatalogue &catalogue, std::string_view needle);

} // namespace tarnwick::bench
