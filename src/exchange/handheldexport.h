#pragma once

#include "catalogue/table.h"

#include <QByteArray>
#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace tarnwick::HandheldExport {

/// The first line of the handheld file.
QString headerLine();

/// A part number or product name as the handheld file holds it: a text with a comma has every
/// comma and every double quote replaced by a blank; a text without a comma stays as it is.
QString commaRule(const QString &text);

/// One product's line: "0", part number and name after the comma rule, the list price in the
/// "currency" format, includes and notes (null or empty gives nothing), the last three
/// enclosed in double quotes without escaping, then the product's discount text.
QString productLine(const Table &catalogue, int row, const QLocale &locale);

/// The whole file for the given catalogue rows, in that order: the header and one line per
/// row, each ended by CR LF.
QByteArray csvBytes(const Table &catalogue, const std::vector<int> &rows, const QLocale &locale);

/// Every row of the catalogue, 1 to its upper bound.
std::vector<int> allRows(const Table &catalogue);

/// The rows of a grid selection: the selected rows in their order, then the current row when
/// it is not among them (a current row of 0 adds nothing).
std::vector<int> selectedRows(const std::vector<int> &selection, int currentRow);

/// The product grid's selection as the "Palm" command takes it: the selected rows, or none
/// when the only selected row is the current one (a click selects the row it makes current, so
/// that alone is no choice of products).
std::vector<int> gridSelection(const std::vector<int> &selectedRows, int currentRow);

/// Why a group name cannot name the handheld files, or nothing when it can: the name becomes
/// part of file names that are written and deleted in the application folder.
std::optional<QString> groupNameProblem(const QString &name);

/// The file names the group gives in the application folder.
QString csvPath(const QString &appFolder, const QString &group);
QString pdbPath(const QString &appFolder, const QString &group);

/// The converter and its arguments, given as a list (no shell is involved).
struct ConverterCommand
{
    QString program;
    QStringList arguments;
};
ConverterCommand converterCommand(const QString &appFolder, const QString &group);

} // namespace tarnwick::HandheldExport
