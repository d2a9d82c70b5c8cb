#pragma once

#include "exchange/columnmapping.h"
#include "exchange/sheetcells.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>

#include <zip.h>

#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick::test {

/// Puts text into cells at (row, column), as a reader puts a value (a number, date or word).
inline void putValue(SheetCells &cells, int row, int column, std::string_view text)
{
    cells.put(row, column, cells.addText(text));
}

/// The letter table of a sheet with part number in A, name in B, list price in C, the first
/// price point in D and its price in E.
inline QString supplierSheetLetters()
{
    std::array<int, ColumnMapping::ListCount> positions;
    positions.fill(0);
    positions[0] = 0;
    positions[1] = 1;
    positions[3] = 3;
    positions[2] = 4;
    positions[4] = 5;
    return ColumnMapping::columnLetters(positions);
}

/// A file of the exchange tests' data folder.
inline QString dataFile(const QString &name)
{
    return QDir(QStringLiteral(TARNWICK_TEST_DATA)).filePath(name);
}

/// Writes a zip file of the given members, compressed as libzip does by default.
inline bool writeZip(
    const QString &path, const std::vector<std::pair<const char *, QByteArray>> &members)
{
    int error = 0;
    zip_t *archive =
        zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!archive)
        return false;
    for (const auto &[name, bytes] : members) {
        zip_source_t *source =
            zip_source_buffer(archive, bytes.constData(), zip_uint64_t(bytes.size()), 0);
        if (!source || zip_file_add(archive, name, source, ZIP_FL_OVERWRITE) < 0) {
            zip_source_free(source);
            zip_discard(archive);
            return false;
        }
    }
    return zip_close(archive) == 0;
}

} // namespace tarnwick::test
