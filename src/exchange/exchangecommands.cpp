#include "exchange/exchangecommands.h"

#include "exchange/spreadsheetexport.h"
#include "platform/desktopplaces.h"
#include "platform/iprompts.h"

#include <QDir>
#include <QFileInfo>

namespace tarnwick::ExchangeCommands {

namespace {

const QString ExportTitle = QStringLiteral("Export to File");
const QString ImportTitle = QStringLiteral("Input Excel Data");

bool yes(IPrompts &prompts, const QString &question, int style, const QString &title)
{
    return prompts.msgBox(question, style, title) == MsgResult::Yes;
}

} // namespace

bool askExportOnClose(IPrompts &prompts)
{
    return yes(prompts,
        QStringLiteral("Do you want to save the current products to an Excel file?"),
        ExportQuestionStyle, ExportTitle);
}

bool askExport(IPrompts &prompts)
{
    return yes(prompts,
        QStringLiteral("Do you want to export the products to an Excel readable file?"),
        ExportQuestionStyle, ExportTitle);
}

bool askOpenWorkbook(IPrompts &prompts)
{
    return yes(prompts, QStringLiteral("Do you want to get products from an Excel Spreadsheet?"),
        MsgStyle::YesNo + MsgStyle::Question, ImportTitle);
}

bool askModifyWithWorkbook(IPrompts &prompts)
{
    return yes(prompts,
        QStringLiteral("Do you want to modify the products with an Excel spreadsheet?"),
        MsgStyle::YesNo, ImportTitle);
}

bool Export(IFileDialogs &dialogs, IPrompts &prompts, const Table &catalogue, const QLocale &locale,
    const std::function<void()> &beforeWriting)
{
    const std::optional<QString> path = SpreadsheetExport::chooseFile(dialogs, prompts);
    if (!path) {
        return false;
    }
    if (beforeWriting) {
        beforeWriting();
    }
    if (const auto error = SpreadsheetExport::writeFile(*path, catalogue, locale)) {
        prompts.msgBox(
            QStringLiteral("The products could not be written to \"%1\": %2.").arg(*path, *error),
            MsgStyle::OkOnly + MsgStyle::Exclamation, ExportTitle);
        return false;
    }
    return true;
}

FileDialogRequest importFileRequest(const QString &appFolder, const QString &previousFile)
{
    FileDialogRequest request;
    request.filter = QStringLiteral("All Files (*.*)|*.*|Text files (*.txt)|*.txt"
                                    "|Excel Files (*.xls)|*.xls"
                                    "|Excel Workbooks (*.xlsx)|*.xlsx"
                                    "|OpenDocument Spreadsheets (*.ods)|*.ods"
                                    "|All Spreadsheets|*.xls;*.xlsx;*.ods;*.txt");
    request.filterIndex = 6;
    request.initialFolder =
        previousFile.isEmpty() ? appFolder : QFileInfo(previousFile).absolutePath();
    request.fileName = previousFile;
    request.places = desktopPlaces();
    const QString application = QDir::cleanPath(appFolder);
    if (!application.isEmpty() && !request.places.contains(application))
        request.places << application;
    return request;
}

QString Getfile(IFileDialogs &dialogs, const QString &appFolder, const QString &previousFile)
{
    const std::optional<FileDialogResult> chosen =
        dialogs.getOpenFile(importFileRequest(appFolder, previousFile));
    if (!chosen || chosen->path.contains(QLatin1Char('*'))) {
        return QString();
    }
    return chosen->path;
}

} // namespace tarnwick::ExchangeCommands
