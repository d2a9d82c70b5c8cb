#pragma once

#include <QByteArrayView>

namespace tarnwick {

class SheetCells;
class ZipArchive;

/// The readers of the workbook formats. Each reads the first worksheet into cells (see
/// SheetCells for what is kept) and returns false when the file is no such workbook or is
/// damaged; what was read until then is of no use.
bool readXlsxSheet(ZipArchive &archive, SheetCells &cells);
bool readOdsSheet(ZipArchive &archive, SheetCells &cells);
bool readXlsSheet(QByteArrayView bytes, SheetCells &cells);
/// Tab-separated text is always read.
void readTextSheet(QByteArrayView bytes, SheetCells &cells);

} // namespace tarnwick
