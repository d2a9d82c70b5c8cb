#pragma once

#include <QString>

#include <memory>

namespace tarnwick {

class IWorkbook;

/// Rows copied from a spreadsheet, as Edit → "Paste Special..." takes them from the clipboard:
/// tab-separated text, the header row first, lines ended by a line feed or CR LF.
namespace ClipboardRows {

/// What Paste Special says when the clipboard holds no such rows.
inline const QString NoRowsMessage = QStringLiteral(
    "The clipboard holds no rows from a spreadsheet. Copy the rows in the spreadsheet, with "
    "their header row first, then choose Paste Special again.");
inline const QString Title = QStringLiteral("Paste Special");

/// The rows as a worksheet, read as the import reads tab-separated text; nothing when the text
/// is no header row followed by at least one row (fewer than two lines that hold something, or
/// an empty first line).
std::unique_ptr<IWorkbook> workbook(const QString &text);

} // namespace ClipboardRows

} // namespace tarnwick
