#pragma once

#include <QString>

#include <memory>

namespace tarnwick {

/// The first worksheet of a workbook, read-only. Cells are handed over as text the way a
/// spreadsheet shows them: 12.5 as "12.5", 3 as "3", 0.1 as "0.1", text as it stands, a cell
/// outside the used range as "".
class IWorkbook
{
public:
    virtual ~IWorkbook() = default;
    /// The text of the cell at column (0 is column A) and row (1 is the first row).
    virtual QString cellText(int column, int row) const = 0;
};

/// A workbook that was opened, or the error number and text of one that could not be.
struct WorkbookOpenResult
{
    std::unique_ptr<IWorkbook> workbook;
    int errorNumber = 0;
    QString errorText;
};

/// The result for a file that is no workbook this program reads: error number and the words
/// the user is shown ("This file is not an Excel 97 file.").
WorkbookOpenResult notAWorkbook(int errorNumber);

/// Opens the first worksheet of the file, chosen by its extension: an Office Open XML workbook
/// (".xlsx"), an OpenDocument spreadsheet (".ods"), tab-separated text (".txt", ".tab", ".tsv",
/// as the export writes it) or else an Excel 97 workbook (".xls").
WorkbookOpenResult openWorkbook(const QString &path);

/// The text of a number as a spreadsheet hands it over: the shortest form that reads back as
/// the same double, without grouping.
QString numberCellText(double value);

} // namespace tarnwick
