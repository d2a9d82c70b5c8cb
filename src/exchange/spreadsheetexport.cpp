#include "exchange/spreadsheetexport.h"

#include "catalogue/cataloguetext.h"
#include "catalogue/productrecord.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "platform/filefilter.h"
#include "platform/filewrite.h"
#include "platform/ifiledialogs.h"
#include "platform/iprompts.h"

#include <QFileInfo>

namespace tarnwick::SpreadsheetExport {

namespace {

using ProductRecord::FieldCount;
constexpr int PriceField = ProductRecord::Price;

QString fieldText(const Cell &cell, int field, const QLocale &locale)
{
    if (field == PriceField) {
        return format(cell, QStringLiteral("currency"), locale);
    }
    if (cell.isNull()) {
        return QString();
    }
    return conv::toText(cell, locale);
}

QString entryLine(const Table &catalogue, int row, const QLocale &locale)
{
    QStringList fields;
    for (int field = 1; field <= FieldCount; ++field) {
        const Cell &cell = field <= catalogue.fieldCount() ? catalogue.get(row, field) : Cell();
        fields << fieldText(cell, field, locale);
    }
    return fields.join(QLatin1Char('\t'));
}

bool hasPartNumber(const Cell &cell)
{
    return !cell.isNull() && !cell.isBlank();
}

} // namespace

QStringList headerWords()
{
    QStringList words;
    for (int field = 1; field <= FieldCount; ++field) {
        words << ProductRecord::fieldCaption(field);
    }
    return words;
}

QByteArray exportBytes(const Table &catalogue, const QLocale &locale)
{
    const QString lineEnd = QStringLiteral("\r\n");
    QString text = headerWords().join(QLatin1Char('\t')) + lineEnd;
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        if (hasPartNumber(catalogue.get(row, 1))) {
            text += entryLine(catalogue, row, locale) + lineEnd;
        }
    }
    return encodeCatalogueText(text);
}

std::optional<QString> chooseFile(IFileDialogs &dialogs, IPrompts &prompts)
{
    FileDialogRequest request;
    request.filter =
        QStringLiteral("All Files (*.*)|*.*|Text Files(*.txt)|*.txt|Excel Files (*.xls)|*.xls");
    request.filterIndex = 3;
    // "Overwrite existing file?" below is the one question about a file that is there.
    request.confirmOverwrite = false;
    for (;;) {
        const std::optional<FileDialogResult> chosen = dialogs.getSaveFile(request);
        if (!chosen || chosen->path.isEmpty()) {
            return std::nullopt;
        }
        const QString path = withTypeExtension(chosen->path, chosen->filterIndex);
        if (!QFileInfo::exists(path)) {
            return path;
        }
        const int answer = prompts.msgBox(QStringLiteral("Overwrite existing file?"),
            MsgStyle::YesNo + MsgStyle::Question, QStringLiteral("Overwrite?"));
        if (answer == MsgResult::Yes) {
            // The old file is not deleted first: the new one takes its place only once it has
            // been written whole, so a failed export leaves it as it was.
            return path;
        }
        request.fileName = path;
    }
}

QString withTypeExtension(const QString &path, int filterIndex)
{
    // A name typed without an extension would not be found by the import's "All Spreadsheets"
    // nor opened by a spreadsheet from the file manager.
    if (filterIndex == 3)
        return withDefaultSuffix(path, QStringLiteral("xls"));
    if (filterIndex == 2)
        return withDefaultSuffix(path, QStringLiteral("txt"));
    return path;
}

std::optional<QString> writeFile(const QString &path, const Table &catalogue, const QLocale &locale)
{
    const FileWriteResult result = writeFileWhole(path, exportBytes(catalogue, locale));
    if (!result) {
        return result.reason;
    }
    return std::nullopt;
}

} // namespace tarnwick::SpreadsheetExport
