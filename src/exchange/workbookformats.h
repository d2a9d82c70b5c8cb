#pragma once

#include "exchange/workbook.h"

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

/// One format's reader on a file's bytes, whatever else the bytes are (for the fuzz targets and
/// the tests that hold a format's bytes): bytes that are no such workbook give NotAWorkbook.
WorkbookOpenResult openXlsxWorkbookData(QByteArrayView bytes);
WorkbookOpenResult openOdsWorkbookData(QByteArrayView bytes);
WorkbookOpenResult openXlsWorkbookData(QByteArrayView bytes);

} // namespace tarnwick
