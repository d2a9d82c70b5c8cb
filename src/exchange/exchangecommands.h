#pragma once

#include "platform/ifiledialogs.h"

#include <QLocale>
#include <QString>

#include <functional>

namespace tarnwick {

class IPrompts;
class Table;

/// The questions and file choices of the main window's exchange commands: the export from the
/// file menu's "&Close" and the toolbar's "Export", and the choice of the workbook to import
/// from File → "&Open..." and the toolbar's "New" and "Open".
namespace ExchangeCommands {

/// Yes/No, information icon, "No" the default button: "32" and "4" joined and read as a number.
constexpr int ExportQuestionStyle = 324;

/// "Do you want to save the current products to an Excel file?" (the file menu's "&Close").
bool askExportOnClose(IPrompts &prompts);
/// "Do you want to export the products to an Excel readable file?" (the toolbar's "Export").
bool askExport(IPrompts &prompts);
/// "Do you want to get products from an Excel Spreadsheet?" (File → "&Open...").
bool askOpenWorkbook(IPrompts &prompts);
/// "Do you want to modify the products with an Excel spreadsheet?" (the toolbar's "New").
bool askModifyWithWorkbook(IPrompts &prompts);

/// Asks for the export file, then (after beforeWriting, which stores what the user is still
/// editing) writes the catalogue to it. A file that cannot be written is reported; a cancelled
/// dialog writes nothing. Returns true when the file was written.
bool Export(IFileDialogs &dialogs, IPrompts &prompts, const Table &catalogue, const QLocale &locale,
    const std::function<void()> &beforeWriting);

/// The open dialog of the import: every workbook format the import reads, starting in the
/// application folder, or in the folder of the workbook chosen last time (at that workbook),
/// with the desktop's places and the application folder in its side panel.
FileDialogRequest importFileRequest(const QString &appFolder, const QString &previousFile);
/// The workbook the user chose, or the empty text when the dialog was cancelled or nothing
/// real was chosen (a name that still holds "*").
QString Getfile(IFileDialogs &dialogs, const QString &appFolder, const QString &previousFile);

} // namespace ExchangeCommands

} // namespace tarnwick
