#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::bench {

/// The floor the catalogue store is measured against: plain C++ that reads the same file into
/// std::string_view fields and writes it back from one buffer with one fsync. It knows
/// nothing of cells, numbers, encodings or safe saves.
struct FloorCatalogue
{
    std::string bytes;
    std::vector<std::array<std::string_view, 15>> rows;
};

/// Reads path whole and splits it into rows of fifteen fields.
bool floorRead(const char *path, FloorCatalogue &catalogue);
/// Writes every row, fields ended by three DEL and rows by CR LF, in one write and one fsync.
bool floorWrite(const char *path, const FloorCatalogue &catalogue);

} // namespace tarnwick::bench
