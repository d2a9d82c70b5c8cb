#pragma once

#include "core/cell.h"

#include <QByteArrayView>
#include <QString>

#include <memory>
#include <span>

namespace tarnwick {

class SheetCells;

/// The first worksheet of a workbook, read-only. Every format hands a cell over by the same
/// rules: text as typed (line breaks as CR LF), a number as its shortest decimal of at most 15
/// significant digits without grouping ("12.5", "10003"), a formula as its result, a date as
/// ISO text ("2024-03-12", "2024-03-12 14:30:00"), TRUE or FALSE, a percent as its value
/// ("0.125"); an error value (#DIV/0!, #N/A) has no text and isError() says so. A cell outside
/// the used range is "".
class IWorkbook
{
public:
    virtual ~IWorkbook() = default;
    /// The text of the cell at column (0 is column A) and row (1 is the first row).
    virtual QString cellText(int column, int row) const = 0;
    /// True when the cell holds an error value instead of a value.
    virtual bool isError(int column, int row) const
    {
        Q_UNUSED(column);
        Q_UNUSED(row);
        return false;
    }
    /// True when the sheet holds the cell as a text typed into it, in a workbook whose numbers
    /// come in the stored form (numbersInStoredForm): its digits are read as the user's locale
    /// reads them ("1.250" is twelve hundred and fifty in German), a number cell's in the stored
    /// form. A workbook may say false for a text that reads the same either way.
    virtual bool isTextCell(int column, int row) const
    {
        Q_UNUSED(column);
        Q_UNUSED(row);
        return false;
    }
    /// The cell's text as a catalogue cell (a text cell, empty text included). A workbook that
    /// keeps its texts in one block hands out cells that point into it, without a copy.
    virtual Cell textCell(int column, int row) const { return Cell(cellText(column, row)); }
    /// True when every number cell arrives in the stored form (digits with "." and no grouping:
    /// "2.675" is two and a bit in every locale), as the readers of .xlsx, .ods and .xls hand
    /// them over; false for text a person or a program wrote in some locale's way (tab-separated
    /// text, rows from the clipboard), which the user's locale reads.
    virtual bool numbersInStoredForm() const { return false; }
    /// True when the sheet holds rows below an empty row, which the readers do not keep (the
    /// import ends at the first empty row anyway): rows a user may expect read.
    virtual bool hasRowsAfterAGap() const { return false; }
    /// How many rows the sheet holds when the workbook knows it without counting, else 0: a
    /// reader of every row makes room for them at once.
    virtual int rowCountHint() const { return 0; }
    /// Several cells of one row at once, as textCell gives them (columns[i] into cells[i]); an
    /// error cell is left empty and its errors[i] set. The spans have the same length.
    virtual void readCells(
        int row, std::span<const int> columns, std::span<Cell> cells, std::span<bool> errors) const
    {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            errors[i] = isError(columns[i], row);
            cells[i] = errors[i] ? Cell() : textCell(columns[i], row);
        }
    }
};

/// A cell as the import reads it, as a catalogue cell (IWorkbook::textCell): an error cell
/// raises "Type mismatch" (13), so the import counts it as a cell it could not read and takes
/// it as empty.
Cell readTextCell(const IWorkbook &workbook, int column, int row);

/// A workbook that was opened, or the error number and text of one that could not be.
struct WorkbookOpenResult
{
    std::unique_ptr<IWorkbook> workbook;
    int errorNumber = 0;
    QString errorText;
};

/// A worksheet as the readers keep it, or the error of a file that could not be read.
struct SheetReadResult
{
    std::unique_ptr<SheetCells> cells;
    int errorNumber = 0;
    QString errorText;
};

/// The error numbers of a file that cannot be read.
namespace WorkbookError {
/// There is no such file.
constexpr int FileNotFound = 53;
/// The file cannot be opened or read ("Path/File access error").
constexpr int FileAccess = 75;
/// The file is larger than the readers take ("Out of memory").
constexpr int TooLarge = 7;
/// The file is no workbook this program reads, or a damaged one ("File name or class name not
/// found during Automation operation", as the spreadsheet automation said of such files).
constexpr int NotAWorkbook = 432;
} // namespace WorkbookError

/// The result for a file that is no workbook this program reads: error number and the words
/// the user is shown ("This file is not an Excel 97 file.").
WorkbookOpenResult notAWorkbook(int errorNumber);
SheetReadResult sheetNotRead(int errorNumber);

/// Reads the first worksheet of a workbook held in memory. The format is known from the bytes,
/// whatever the file is called: a zip holding "xl/workbook.xml" is an Office Open XML workbook
/// (".xlsx"), a zip holding "content.xml" an OpenDocument spreadsheet (".ods"), a compound
/// document an Excel 97 workbook (".xls"), and other text tab-separated text (as the export
/// writes it). Anything else, and a damaged file, gives NotAWorkbook.
/// into: the store to read into (one that tells a listener of its complete rows, say); a new
/// one when null.
SheetReadResult readSheet(QByteArrayView bytes, std::unique_ptr<SheetCells> into = nullptr);
/// Reads the first worksheet of a file as readSheet does.
SheetReadResult readSheetFile(const QString &path, std::unique_ptr<SheetCells> into = nullptr);

/// The same as an IWorkbook.
WorkbookOpenResult readWorkbook(QByteArrayView bytes);
WorkbookOpenResult openWorkbook(const QString &path);

/// The largest file the readers take.
constexpr qint64 MaxWorkbookFileBytes = qint64(512) << 20;

} // namespace tarnwick
