#pragma once

#include "catalogue/table.h"

#include <QByteArray>
#include <QLocale>
#include <QString>

#include <optional>

namespace tarnwick {

class IFileDialogs;
class IPrompts;

namespace SpreadsheetExport {

/// The fifteen header words of the export, in catalogue field order.
QStringList headerWords();

/// The whole export file: the header line, then one line per catalogue entry whose part
/// number is neither null nor empty. Fields are joined by one tab, lines end in CR LF, nothing
/// is quoted or escaped. The list price is written in the "currency" format, every other
/// field as its text. Characters are encoded as the catalogue file encodes them.
QByteArray exportBytes(const Table &catalogue, const QLocale &locale);

/// Asks for the export file with the save dialog. An existing file is replaced only after
/// "Overwrite existing file?" is answered Yes; No shows the dialog again. A cancelled dialog
/// gives no file. The old file stays until writeFile has written the new one whole. A name
/// typed without an extension gets the one of the type chosen (withTypeExtension).
std::optional<QString> chooseFile(IFileDialogs &dialogs, IPrompts &prompts);
/// path, with ".xls" added for "Excel Files" (filter 3) or ".txt" for "Text Files" (filter 2)
/// when its file name has no extension, as a desktop's save dialog adds it; "All Files" and a
/// name with an extension keep the name as typed.
QString withTypeExtension(const QString &path, int filterIndex);

/// Writes exportBytes to path, whole or not at all (writeFileWhole). Returns the cause in plain
/// words when the file could not be written; an old file at path then keeps its bytes.
std::optional<QString> writeFile(
    const QString &path, const Table &catalogue, const QLocale &locale);

} // namespace SpreadsheetExport

} // namespace tarnwick
