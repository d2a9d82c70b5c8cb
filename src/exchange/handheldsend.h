#pragma once

#include "catalogue/table.h"
#include "platform/appservices.h"
#include "platform/helpcontexts.h"

#include <QLocale>

#include <vector>

namespace tarnwick::HandheldExport {

/// What the command did, for the window and the tests.
enum class SendResult {
    NotAsked, ///< the question was not answered OK, or no group name was given
    RefusedName, ///< the group name cannot name a file; the user was told
    WriteFailed, ///< the file could not be written; the user was told
    ConverterFailed, ///< the converter could not be started; help topic 2050 was opened
    Sent, ///< the converter was started and the success message shown
};

/// The "Palm" command: asks, asks for the group name (default "Products"), writes
/// "<group>.CSV" in the application folder for every row (empty selection) or for the
/// selected rows and the current row, starts "Handdesk.exe" detached with its arguments and,
/// after the success message, deletes "<group>.CSV" and "<group>.pdb".
SendResult Palmpilot(AppServices &services, const Table &catalogue,
    const std::vector<int> &selection, int currentRow, const QLocale &locale);

/// The message shown when the handheld file could not be written: the fixed first line, then
/// the file and the cause. Any old file of that name keeps its bytes.
QString csvFailureText(const QString &path, const QString &reason);
/// Its title: "Error:" and the run-time error number (61 for a full disk).
QString csvFailureTitle(int errorNumber);

/// The help topic shown when the converter cannot be started.
constexpr int ConverterHelpContext = HelpContext::HandheldConverter;

} // namespace tarnwick::HandheldExport
