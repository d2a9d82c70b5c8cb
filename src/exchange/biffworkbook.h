#pragma once

#include <QByteArrayView>

namespace tarnwick {

class SheetCells;

namespace Biff {

/// Reads the first worksheet of an Excel 97 (BIFF8) workbook stream, the "Workbook" stream of
/// an .xls file: numbers (NUMBER, RK, MULRK), texts (LABELSST with the shared strings, LABEL),
/// booleans and errors (BOOLERR) and the cached results of formulas (FORMULA, with the STRING
/// record after a text result), dates known by their cell format (XF and FORMAT records, the
/// 1904 date system). False when the stream is no BIFF8 workbook, is encrypted or is damaged.
bool readWorkbookStream(QByteArrayView stream, SheetCells &cells);

} // namespace Biff

} // namespace tarnwick
