#include "catalogue/recoveryfile.h"

#include "catalogue/cataloguereader.h"
#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/vberror.h"
#include "platform/filewrite.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QList>
#include <QRegularExpression>

#include <algorithm>

namespace tarnwick {

namespace {

QString sideFileName(const QString &dataFile, const QString &infix, const QString &stamp)
{
    const QFileInfo data(dataFile);
    const QString suffix = data.suffix().isEmpty() ? QStringLiteral("dat") : data.suffix();
    return data.dir().filePath(data.completeBaseName() + infix + stamp + QLatin1Char('.') + suffix);
}

bool sameFrom(const Table &a, int rowA, const Table &b, int rowB, int firstField)
{
    for (int field = firstField; field <= ProductRecord::FieldCount; ++field) {
        if (!(a.get(rowA, field) == b.get(rowB, field)))
            return false;
    }
    return true;
}

bool sameProduct(const Table &a, int rowA, const Table &b, int rowB)
{
    return sameFrom(a, rowA, b, rowB, ProductRecord::PartNumber);
}

/// The same product with another part number (or none): every other field alike.
bool renamedProduct(const Table &a, int rowA, const Table &b, int rowB)
{
    return sameFrom(a, rowA, b, rowB, ProductRecord::PartNumber + 1);
}

/// The most rows left unmatched on each side that are paired by their other fields; beyond
/// it (a whole catalogue of new part numbers) the pairing would cost more than it tells.
constexpr int MostRenamedPairs = 1000;

} // namespace

QString recoveryFilePath(const QString &dataFile)
{
    return sideFileName(dataFile, QStringLiteral("-recovery"), QString());
}

namespace {

/// The line at the end of bytes, without its line end.
QByteArray lastLine(const QByteArray &bytes, qsizetype *start = nullptr)
{
    qsizetype tail = bytes.size();
    while (tail > 0 && (bytes.at(tail - 1) == '\r' || bytes.at(tail - 1) == '\n'))
        --tail;
    const qsizetype lineStart = tail > 0 ? bytes.lastIndexOf('\n', tail - 1) + 1 : 0;
    if (start)
        *start = lineStart;
    return bytes.mid(lineStart, tail - lineStart);
}

const QByteArray RecoveryCheck = QByteArrayLiteral("\x1aTarnwick recovery file: ");

/// The number of bytes before the check line at the end of bytes; -1 when there is no such
/// line or it names another number.
qsizetype checkedLength(const QByteArray &bytes)
{
    qsizetype lineStart = 0;
    const QByteArray line = lastLine(bytes, &lineStart);
    if (!line.startsWith(RecoveryCheck) || !line.endsWith(" bytes"))
        return -1;
    bool ok = false;
    const qlonglong length =
        line.mid(RecoveryCheck.size(), line.size() - RecoveryCheck.size() - 6).toLongLong(&ok);
    return ok && length == lineStart ? lineStart : -1;
}

enum class CheckLine { None, Written };

/// Writes table as a catalogue file at path, safely and without a backup; with the check line
/// of a recovery file after it when asked.
CatalogueWriteResult writeCopy(const QString &path, const Table &table, qint32 count,
    const QLocale &locale, RowsWithoutPartNumber rows, CheckLine check,
    const QString &accessOf = {})
{
    CatalogueStreamResult content;
    const auto writeContent = [&](QFileDevice &file) {
        CatalogueFileSink sink(file);
        content = streamCatalogueFile(table, locale, count, sink, CataloguePieceSize, rows);
        if (!content.ok || !sink.finish())
            return false;
        if (check == CheckLine::None)
            return true;
        const QByteArray line = RecoveryCheck + QByteArray::number(file.pos()) + " bytes\r\n";
        return file.write(line) == line.size();
    };
    CatalogueWriteResult result;
    try {
        result = writeCatalogueFile(path, writeContent, {}, BackupRule::NoBackup, accessOf);
    } catch (const VbError &error) {
        result = {};
        result.ok = false;
        result.detail = QStringLiteral("its table cannot be read (error %1)").arg(error.number());
        return result;
    }
    if (result.ok)
        result.rowsWritten = content.rowsWritten;
    return result;
}

} // namespace

CatalogueWriteResult writeCatalogueCopy(const QString &path, const Table &table, qint32 count,
    const QLocale &locale, RowsWithoutPartNumber rows)
{
    return writeCopy(path, table, count, locale, rows, CheckLine::None);
}

CatalogueWriteResult writeRecoveryFile(const QString &path, const Table &table, qint32 count,
    const QLocale &locale, const QString &accessOf)
{
    return writeCopy(path, table, count, locale, RowsWithoutPartNumber::KeptWithContent,
        CheckLine::Written, accessOf);
}

namespace {

enum class CheckLineRead { Ignored, Required, RequiredButOfEarlierVersions };

/// Reads a catalogue file at path into table, re-dimensioned to the products read; count
/// receives their number. With the check line Required, a file without it (or with another
/// count) is not read at all: it is damaged.
CatalogueReadResult readCopy(const QString &path, Table &table, qint32 &count,
    const QLocale &locale, CheckLineRead check, bool *unchecked = nullptr)
{
    CatalogueReadResult result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.status = QFileInfo::exists(path) ? CatalogueReadResult::Status::Failed
                                                : CatalogueReadResult::Status::Missing;
        result.errorNumber = ErrorNumber::DeviceIOError;
        result.detail = file.errorString();
        return result;
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        result.status = CatalogueReadResult::Status::Failed;
        result.errorNumber = ErrorNumber::DeviceIOError;
        result.detail = file.errorString();
        return result;
    }
    table.redim(0, ProductRecord::FieldCount);
    count = 0;
    const bool checked = check == CheckLineRead::Ignored || checkedLength(bytes) >= 0;
    // Versions before the check line wrote none: such a file (no line that starts with the
    // mark at all) is read as the catalogue it holds, as whether it was cut short cannot be
    // told; an empty one holds nothing to restore.
    const bool earlier = !checked && check == CheckLineRead::RequiredButOfEarlierVersions
        && !bytes.trimmed().isEmpty() && !lastLine(bytes).startsWith(RecoveryCheck);
    if (unchecked)
        *unchecked = earlier;
    if (!checked && !earlier) {
        // Emptied, cut short or overwritten: no catalogue to restore.
        result.status = CatalogueReadResult::Status::Failed;
        result.errorNumber = ErrorNumber::InputPastEndOfFile;
        result.detail = QStringLiteral("the file is incomplete or damaged (it does not end as "
                                       "Tarnwick ends it)");
        return result;
    }
    CatalogueReader reader(table, locale);
    result = reader.read(std::move(bytes));
    count = result.rowsRead;
    table.redimPreserve(count, ProductRecord::FieldCount);
    return result;
}

} // namespace

CatalogueReadResult readRecoveryFile(
    const QString &path, Table &table, qint32 &count, const QLocale &locale)
{
    return readCopy(path, table, count, locale, CheckLineRead::Required);
}

CatalogueReadResult readChangesLeft(
    const QString &dataFile, Table &table, qint32 &count, const QLocale &locale, bool &unchecked)
{
    // This version writes the record of the catalogue file beside every recovery file: one of
    // them without its check line is damaged.
    const CheckLineRead check = QFileInfo::exists(recoveryBasePath(dataFile))
        ? CheckLineRead::Required
        : CheckLineRead::RequiredButOfEarlierVersions;
    CatalogueReadResult read =
        readCopy(recoveryFilePath(dataFile), table, count, locale, check, &unchecked);
    if (unchecked && read.status == CatalogueReadResult::Status::Ok && count == 0) {
        read.status = CatalogueReadResult::Status::Failed;
        read.detail = QStringLiteral("the file holds no products");
    }
    return read;
}

CatalogueReadResult readCatalogueCopy(
    const QString &path, Table &table, qint32 &count, const QLocale &locale)
{
    return readCopy(path, table, count, locale, CheckLineRead::Ignored);
}

CatalogueChanges compareCatalogues(
    const Table &saved, qint32 savedCount, const Table &recovered, qint32 recoveredCount)
{
    const int savedRows = std::min(savedCount, qint32(saved.rowCount()));
    const int recoveredRows = std::min(recoveredCount, qint32(recovered.rowCount()));
    // Part numbers are compared as the cells hold them; a part number that appears twice is
    // matched with its occurrences in order.
    QMultiHash<QString, int> savedRowsByPart;
    for (int row = savedRows; row >= 1; --row)
        savedRowsByPart.insert(saved.get(row, ProductRecord::PartNumber).asText(), row);
    CatalogueChanges changes;
    QList<int> unmatched;
    for (int row = 1; row <= recoveredRows; ++row) {
        const QString part = recovered.get(row, ProductRecord::PartNumber).asText();
        const auto match = savedRowsByPart.find(part);
        if (match == savedRowsByPart.end()) {
            unmatched << row;
            continue;
        }
        if (!sameProduct(saved, match.value(), recovered, row))
            ++changes.changed;
        savedRowsByPart.erase(match);
    }
    // A product whose part number alone was changed or cleared is that product changed, not
    // one deleted and another added (a restore question saying "deleted" invites a No).
    if (unmatched.size() <= MostRenamedPairs && savedRowsByPart.size() <= MostRenamedPairs) {
        for (auto row = unmatched.begin(); row != unmatched.end();) {
            const auto same = std::find_if(savedRowsByPart.begin(), savedRowsByPart.end(),
                [&](int savedRow) { return renamedProduct(saved, savedRow, recovered, *row); });
            if (same == savedRowsByPart.end()) {
                ++row;
                continue;
            }
            ++changes.changed;
            savedRowsByPart.erase(same);
            row = unmatched.erase(row);
        }
    }
    changes.added = int(unmatched.size());
    changes.deleted = int(savedRowsByPart.size());
    return changes;
}

bool RecoveryBase::differsFrom(const std::optional<FileStamp> &now) const
{
    if (!catalogue || !now)
        return catalogue.has_value() != now.has_value();
    return catalogue->size != now->size || catalogue->modifiedNs != now->modifiedNs;
}

QString recoveryBasePath(const QString &dataFile)
{
    return sideFileName(dataFile, QStringLiteral("-recovery-base"), QString());
}

namespace {

const QByteArray BaseLineStart = QByteArrayLiteral("Tarnwick recovery file of ");

} // namespace

bool writeRecoveryBase(const QString &dataFile, const RecoveryBase &base)
{
    // One line: "Tarnwick recovery file of 4096 bytes: catalogue file 1234 bytes, changed at
    // <ns>, file <number>" (or ": no catalogue file").
    const std::optional<FileStamp> recovery = fileStamp(recoveryFilePath(dataFile));
    if (!recovery)
        return false;
    QByteArray line = BaseLineStart + QByteArray::number(recovery->size) + " bytes: ";
    if (base.catalogue) {
        line += "catalogue file " + QByteArray::number(base.catalogue->size) + " bytes, changed at "
            + QByteArray::number(base.catalogue->modifiedNs) + ", file "
            + QByteArray::number(base.catalogue->inode);
    } else {
        line += "no catalogue file";
    }
    line += "\r\n";
    return writeCatalogueFile(recoveryBasePath(dataFile), line, {}, BackupRule::NoBackup).ok;
}

std::optional<RecoveryBase> readRecoveryBase(const QString &dataFile)
{
    const std::optional<FileStamp> recovery = fileStamp(recoveryFilePath(dataFile));
    QFile file(recoveryBasePath(dataFile));
    if (!recovery || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray line = file.read(1024).trimmed();
    const QByteArray recoveryPart = BaseLineStart + QByteArray::number(recovery->size) + " bytes: ";
    if (!line.startsWith(recoveryPart))
        return std::nullopt;
    const QByteArray rest = line.mid(recoveryPart.size());
    RecoveryBase base;
    if (rest == "no catalogue file")
        return base;
    static const QRegularExpression stampWords(
        QStringLiteral("^catalogue file (\\d+) bytes, changed at (-?\\d+), file (\\d+)$"));
    const QRegularExpressionMatch words = stampWords.match(QString::fromLatin1(rest));
    if (!words.hasMatch())
        return std::nullopt;
    FileStamp stamp;
    bool sizeRead = false;
    bool timeRead = false;
    bool numberRead = false;
    stamp.size = words.captured(1).toLongLong(&sizeRead);
    stamp.modifiedNs = words.captured(2).toLongLong(&timeRead);
    stamp.inode = words.captured(3).toULongLong(&numberRead);
    if (!sizeRead || !timeRead || !numberRead)
        return std::nullopt;
    base.catalogue = stamp;
    return base;
}

CatalogueWriteResult keepChanges(const QString &dataFile, const Table &table, qint32 count,
    const QLocale &locale, const RecoveryBase &base)
{
    const QString path = recoveryFilePath(dataFile);
    CatalogueWriteResult written = writeRecoveryFile(path, table, count, locale, dataFile);
    if (written.ok)
        writeRecoveryBase(dataFile, base);
    return written;
}

bool catalogueWrittenSince(const QString &dataFile, const QDateTime &changesMade)
{
    const std::optional<FileStamp> now = fileStamp(dataFile);
    if (!now)
        return false;
    // The catalogue file the changes were made to, as that run knew it: any other file now in
    // its place, whatever time it carries, is news. A recovery file of an earlier version has
    // no such record: a file with a later time is then taken for one written since.
    if (const std::optional<RecoveryBase> base = readRecoveryBase(dataFile))
        return base->differsFrom(now);
    return QFileInfo(dataFile).lastModified() > changesMade;
}

bool removeRecoveryFile(const QString &dataFile)
{
    const QString recovery = recoveryFilePath(dataFile);
    if (!QFile::remove(recovery) && QFileInfo::exists(recovery))
        return false; // the base stays with it
    QFile::remove(recoveryBasePath(dataFile));
    return true;
}

QString keepRecoveryFile(const QString &dataFile, const QDateTime &when)
{
    const QString recovery = recoveryFilePath(dataFile);
    const QString stamp = when.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    for (int attempt = 1; attempt <= 1000; ++attempt) {
        QString kept = sideFileName(dataFile, QStringLiteral("-recovered-"), stamp);
        if (attempt > 1)
            kept = sideFileName(dataFile, QStringLiteral("-recovered-"),
                stamp + QLatin1Char('-') + QString::number(attempt));
        if (QFileInfo::exists(kept))
            continue;
        if (QFile::rename(recovery, kept)) {
            // The base belongs to the file under its own name only.
            QFile::remove(recoveryBasePath(dataFile));
            return QDir::toNativeSeparators(kept);
        }
        return {};
    }
    return {};
}

} // namespace tarnwick
