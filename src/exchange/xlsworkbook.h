#pragma once

#include "exchange/workbook.h"

namespace tarnwick {

/// Opens the first worksheet of an Excel 97 workbook. The whole sheet is read at once.
WorkbookOpenResult openXlsWorkbook(const QString &path);

} // namespace tarnwick
