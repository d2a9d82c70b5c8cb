#include "exchange/handheldexport.h"

#include "catalogue/cataloguetext.h"
#include "catalogue/productrecord.h"
#include "core/conversions.h"
#include "core/formats.h"
#include "products/priceschedule.h"

#include <QDir>

namespace tarnwick::HandheldExport {

namespace {

// The longest file name most file systems accept, in bytes; ".CSV" and ".pdb" are added.
constexpr int MaxFileNameBytes = 255;
constexpr int ExtensionLength = 4;

QString plainText(const Cell &cell, const QLocale &locale)
{
    return cell.isNull() ? QString() : conv::toText(cell, locale);
}

QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

/// Control characters (C0, DEL and C1, U+0080 to U+009F) and the line and paragraph
/// separators, none of which a file name should hold and a box shows as a blank or nothing.
bool isInvisibleBreak(QChar c)
{
    const char16_t code = c.unicode();
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x2028 || code == 0x2029;
}

bool hasRefusedCharacter(const QString &name)
{
    static const QString refused = QStringLiteral("/\\:*?\"<>|");
    for (const QChar c : name) {
        if (refused.contains(c) || isInvisibleBreak(c)) {
            return true;
        }
    }
    return false;
}

/// The name as the message shows it: a character that shows as a blank or nothing is shown
/// as the replacement character, so the user sees where it is.
QString shownName(QString name)
{
    for (QChar &c : name) {
        if (isInvisibleBreak(c))
            c = QChar(QChar::ReplacementCharacter);
    }
    return name;
}

} // namespace

QString headerLine()
{
    return QStringLiteral("Quote,Cat Number,Description,Price,Includes,Notes,Discounts");
}

QString commaRule(const QString &text)
{
    if (!text.contains(QLatin1Char(','))) {
        return text;
    }
    QString result = text;
    result.replace(QLatin1Char(','), QLatin1Char(' '));
    result.replace(QLatin1Char('"'), QLatin1Char(' '));
    return result;
}

QString productLine(const Table &catalogue, int row, const QLocale &locale)
{
    namespace P = ProductRecord;
    const QStringList fields {
        QStringLiteral("0"),
        commaRule(plainText(catalogue.get(row, P::PartNumber), locale)),
        commaRule(plainText(catalogue.get(row, P::ProductName), locale)),
        quoted(format(catalogue.get(row, P::Price), QStringLiteral("currency"), locale)),
        quoted(plainText(catalogue.get(row, P::Includes), locale)),
        quoted(plainText(catalogue.get(row, P::Notes), locale)),
        PriceSchedule::creatdiscs(catalogue, row, locale),
    };
    return fields.join(QLatin1Char(','));
}

QByteArray csvBytes(const Table &catalogue, const std::vector<int> &rows, const QLocale &locale)
{
    const QString lineEnd = QStringLiteral("\r\n");
    QString text = headerLine() + lineEnd;
    for (const int row : rows) {
        text += productLine(catalogue, row, locale) + lineEnd;
    }
    return encodeCatalogueText(text);
}

std::vector<int> allRows(const Table &catalogue)
{
    std::vector<int> rows;
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        rows.push_back(row);
    }
    return rows;
}

std::vector<int> selectedRows(const std::vector<int> &selection, int currentRow)
{
    std::vector<int> rows = selection;
    if (currentRow > 0 && std::find(rows.begin(), rows.end(), currentRow) == rows.end()) {
        rows.push_back(currentRow);
    }
    return rows;
}

std::vector<int> gridSelection(const std::vector<int> &selectedRows, int currentRow)
{
    if (selectedRows.size() == 1 && selectedRows.front() == currentRow) {
        return {};
    }
    return selectedRows;
}

std::optional<QString> groupNameProblem(const QString &name)
{
    if (name.trimmed().isEmpty()) {
        return QStringLiteral("Please give the group a name.");
    }
    if (name.contains(QStringLiteral("..")) || hasRefusedCharacter(name)) {
        return QStringLiteral("The group name \"%1\" cannot be used as a file name. Please leave "
                              "out the characters / \\ : * ? \" < > |, control characters and "
                              "\"..\".")
            .arg(shownName(name));
    }
    if (name.toUtf8().size() + ExtensionLength > MaxFileNameBytes) {
        return QStringLiteral("The group name is too long to be used as a file name.");
    }
    return std::nullopt;
}

QString csvPath(const QString &appFolder, const QString &group)
{
    return QDir(appFolder).filePath(group + QStringLiteral(".CSV"));
}

QString pdbPath(const QString &appFolder, const QString &group)
{
    return QDir(appFolder).filePath(group + QStringLiteral(".pdb"));
}

ConverterCommand converterCommand(const QString &appFolder, const QString &group)
{
    const QDir folder(appFolder);
    const auto inBraces = [](const QString &text) {
        return QLatin1Char('{') + QDir::toNativeSeparators(text) + '}';
    };
    return ConverterCommand { folder.filePath(QStringLiteral("Handdesk.exe")),
        { QStringLiteral("COMMAND:TOPDB"),
            QStringLiteral("PDB:INFILE:") + inBraces(csvPath(appFolder, group)),
            QStringLiteral("PDB:OUTFILE:") + inBraces(pdbPath(appFolder, group)),
            QStringLiteral("PDB:DBNAME:") + inBraces(group),
            QStringLiteral("PDB:USEEXISTING:")
                + inBraces(folder.filePath(QStringLiteral("prodnocog.pjt"))),
            QStringLiteral("PDB:FIELDNAMES"), QStringLiteral("PDB:AUTOINSTALL:{0}") } };
}

} // namespace tarnwick::HandheldExport
