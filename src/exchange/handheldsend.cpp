#include "exchange/handheldsend.h"

#include "exchange/handheldexport.h"
#include "platform/appenvironment.h"
#include "platform/chelp.h"
#include "platform/filewrite.h"
#include "platform/iprocesslauncher.h"
#include "platform/iprompts.h"

#include <QDir>
#include <QFile>

namespace tarnwick::HandheldExport {

namespace {

bool askToSend(IPrompts &prompts, bool hasSelection)
{
    const QString question = hasSelection
        ? QStringLiteral("Send selected products to Palm Computer?")
        : QStringLiteral("Send products shown to palm computer?");
    return prompts.msgBox(question, MsgStyle::OkCancel + MsgStyle::Question) == MsgResult::Ok;
}

/// The file holds the catalogue's prices: it takes the catalogue file's permissions and group
/// (dataFile), not the folder's, so a catalogue kept private leaves no copy others may read.
bool writeCsv(
    IPrompts &prompts, const QString &path, const QByteArray &bytes, const QString &dataFile)
{
    const FileWriteResult result = writeFilesWhole({ FileContent { path, bytes, dataFile } });
    if (result) {
        return true;
    }
    prompts.msgBox(
        csvFailureText(path, result.reason), MsgStyle::OkOnly, csvFailureTitle(result.errorNumber));
    return false;
}

} // namespace

QString csvFailureText(const QString &path, const QString &reason)
{
    return QStringLiteral("Error creating file for Palm application\n\n\"%1\" could not be "
                          "written: %2.")
        .arg(QDir::toNativeSeparators(path), reason);
}

QString csvFailureTitle(int errorNumber)
{
    return QStringLiteral("Error:") + QString::number(errorNumber);
}

SendResult Palmpilot(AppServices &services, const Table &catalogue,
    const std::vector<int> &selection, int currentRow, const QLocale &locale)
{
    if (!askToSend(services.prompts, !selection.empty())) {
        return SendResult::NotAsked;
    }
    const QString group =
        services.prompts.inputBox(QStringLiteral("What should this group of products be called?"),
            QStringLiteral("Palmpilot category"), QStringLiteral("Products"));
    if (group.isEmpty()) {
        return SendResult::NotAsked;
    }
    if (const auto problem = groupNameProblem(group)) {
        services.prompts.msgBox(*problem, MsgStyle::OkOnly + MsgStyle::Exclamation,
            QStringLiteral("Palmpilot category"));
        return SendResult::RefusedName;
    }
    const QString folder = services.environment.appFolder();
    const std::vector<int> rows =
        selection.empty() ? allRows(catalogue) : selectedRows(selection, currentRow);
    if (!writeCsv(services.prompts, csvPath(folder, group), csvBytes(catalogue, rows, locale),
            services.environment.pathInAppFolder(QStringLiteral("twdata.dat")))) {
        return SendResult::WriteFailed;
    }
    const ConverterCommand command = converterCommand(folder, group);
    if (!services.launcher.startDetached(command.program, command.arguments, folder)) {
        CHelp(services.help)
            .Show(CHelp::helpFilePath(services.environment), QString(), ConverterHelpContext);
        return SendResult::ConverterFailed;
    }
    services.prompts.msgBox(
        QStringLiteral("After you hotsync the selected products will be in your Palmpilot."),
        MsgStyle::OkOnly, QStringLiteral("Success"));
    QFile::remove(pdbPath(folder, group));
    QFile::remove(csvPath(folder, group));
    return SendResult::Sent;
}

} // namespace tarnwick::HandheldExport
