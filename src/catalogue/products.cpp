#include "catalogue/products.h"

#include "catalogue/cataloguereader.h"
#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/vberror.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

namespace tarnwick {

namespace {

// The diagnostic boxes of the "test" command line, with their exact texts and titles.
constexpr QLatin1StringView OpenedText("Opened Filename");
constexpr QLatin1StringView OpenedTitle("test");
constexpr QLatin1StringView ReadLineText("read line ");
constexpr QLatin1StringView ReadLineTitle("Test");
constexpr QLatin1StringView PartNumberText("array 1 is ");
constexpr QLatin1StringView PartNumberTitle("test");

qint32 nextDebugId()
{
    static qint32 serial = 0;
    return ++serial;
}

CatalogueReadResult readFailure(
    CatalogueReadResult::Status status, int number, const QString &detail)
{
    CatalogueReadResult result;
    result.status = status;
    result.errorNumber = number;
    result.detail = detail;
    return result;
}

/// Shows, per product, its first physical line and then its part number (OK and Cancel; the
/// answer does not matter).
CatalogueReader::Observer testRunObserver(
    IPrompts &prompts, const Table &catalogue, const QLocale &locale)
{
    CatalogueReader::Observer observer;
    observer.recordStarted = [&prompts](const QString &firstLine) {
        prompts.msgBox(ReadLineText + firstLine, MsgStyle::OkOnly, ReadLineTitle);
    };
    observer.partNumberStored = [&prompts, &catalogue, locale](int row) {
        const QString partNumber =
            conv::toText(catalogue.get(row, ProductRecord::PartNumber), locale);
        prompts.msgBox(PartNumberText + partNumber, MsgStyle::OkCancel, PartNumberTitle);
    };
    return observer;
}

} // namespace

Products::Products(
    Table &catalogue, IPrompts &prompts, const AppEnvironment &environment, const QLocale &locale)
    : m_catalogue(catalogue), m_prompts(prompts), m_environment(environment), m_locale(locale),
      m_debugId(nextDebugId())
{
}

namespace {

/// The file's bytes in one buffer of its size. A large buffer is backed by large pages where
/// the system offers them: the read then fills a few dozen pages instead of ten thousand,
/// which is much of the time a large catalogue takes to load.
QByteArray readWholeFile(QFile &file)
{
    const qint64 size = file.size();
    if (size <= 0 || size >= std::numeric_limits<qsizetype>::max())
        return file.readAll();
    QByteArray bytes(qsizetype(size), Qt::Uninitialized);
#ifdef Q_OS_LINUX
    constexpr qsizetype LargePage = 2 * 1024 * 1024;
    if (bytes.size() >= 2 * LargePage) {
        char *const base = bytes.data();
        const auto address = quintptr(base);
        const auto start = (address + LargePage - 1) & ~quintptr(LargePage - 1);
        const auto end = (address + quintptr(bytes.size())) & ~quintptr(LargePage - 1);
        if (end > start)
            ::madvise(base + (start - address), end - start, MADV_HUGEPAGE);
    }
#endif
    qsizetype done = 0;
    while (done < bytes.size()) {
        const qint64 got = file.read(bytes.data() + done, bytes.size() - done);
        if (got <= 0)
            break;
        done += qsizetype(got);
    }
    bytes.truncate(done);
    // A file that grew since its size was taken is read to its end.
    if (done == size && !file.atEnd())
        bytes += file.readAll();
    return bytes;
}

} // namespace

CatalogueReadResult Products::ReadProds(const QString &fileName)
{
    using Status = CatalogueReadResult::Status;
    if (!QFileInfo::exists(fileName))
        return readFailure(
            Status::Missing, ErrorNumber::FileNotFound, QStringLiteral("the file does not exist"));
    // Only a file is opened: a pipe or a device in its place would keep the start waiting for
    // data that never comes.
    if (!QFileInfo(fileName).isFile())
        return readFailure(Status::Failed, ErrorNumber::DeviceIOError,
            QStringLiteral("it is not a file but a folder, a pipe or a device"));
    m_fileKnown = true;
    // Taken before the bytes are read: a file changed while it is read counts as changed.
    m_fileStamp = fileStamp(fileName);
    QFile file(fileName);
    errno = 0;
    if (!file.open(QIODevice::ReadOnly)) {
        const bool denied = errno == EACCES || errno == EPERM;
        return readFailure(Status::Failed, ErrorNumber::DeviceIOError,
            denied ? QStringLiteral("you have no permission to read it")
                   : QStringLiteral("the file cannot be opened: ") + file.errorString());
    }
    const bool testRun = m_environment.isTestRun();
    if (testRun)
        m_prompts.msgBox(OpenedText, MsgStyle::OkOnly, OpenedTitle);
    // The whole file is read at once; its bytes become the catalogue's text storage.
    QByteArray bytes = readWholeFile(file);
    if (file.error() != QFileDevice::NoError)
        return readFailure(Status::Failed, ErrorNumber::DeviceIOError,
            QStringLiteral("the file cannot be read: ") + file.errorString());
    CatalogueReader reader(m_catalogue, m_locale);
    CatalogueReadResult result = reader.read(std::move(bytes),
        testRun ? testRunObserver(m_prompts, m_catalogue, m_locale) : CatalogueReader::Observer {});
    // On a failure the rows read so far stay in the table, but Count keeps its old value.
    m_readFailed = result.status == Status::Failed;
    if (result.status == Status::Ok)
        m_count = result.rowsRead;
    return result;
}

QString Products::fileGoneProblem(const QString &fileName) const
{
    // A catalogue file that was there and is gone, with its backup, says the folder is not the
    // one it was: a drive taken from a fixed mount point leaves an empty folder of the same
    // name on the computer's own disk, and a save into it would say "saved" while the drive
    // never gets the catalogue.
    if (!m_fileKnown || QFileInfo::exists(fileName)
        || QFileInfo::exists(catalogueBackupPath(fileName)))
        return {};
    const QFileInfo folder(QFileInfo(fileName).absolutePath());
    if (folder.exists() && !folder.isDir()) {
        return QStringLiteral("a file stands where the folder \"%1\" should be")
            .arg(QDir::toNativeSeparators(folder.absoluteFilePath()));
    }
    return QStringLiteral("the catalogue file is no longer in the folder \"%1\" (was the drive "
                          "it is on removed?); put it back, then save again, or keep a copy "
                          "elsewhere with Save As")
        .arg(QDir::toNativeSeparators(QFileInfo(fileName).absolutePath()));
}

void Products::markAsFile()
{
    m_fileGeneration = m_catalogue.generation();
}

CatalogueWriteResult Products::WriteProds(const QString &fileName)
{
    // A file that could not be read at start-up is no good catalogue: the backup keeps the
    // last good one instead. Saving an unchanged catalogue again must not make the backup a
    // second copy of it either.
    CatalogueWriteResult result;
    if (const QString gone = fileGoneProblem(fileName); !gone.isEmpty()) {
        result.ok = false;
        result.detail = gone;
        return result;
    }
    const bool unchanged = m_fileGeneration == m_catalogue.generation();
    const std::optional<FileStamp> found = fileStamp(fileName);
    QString keptChangedCopy;
    if (m_fileStamp && found && *found != *m_fileStamp) {
        // What another copy of Tarnwick or a program that keeps folders in step put there is
        // newer than what this one read: nothing here replaces it unasked and without a copy.
        if (unchanged && !m_readFailed) {
            result.leftChangedFile = true;
            return result;
        }
        keptChangedCopy = keepCatalogueCopy(fileName, QStringLiteral("changed"));
        if (keptChangedCopy.isEmpty()) {
            result.ok = false;
            result.detail = QStringLiteral("the catalogue file was changed outside Tarnwick "
                                           "since it was read, and that version could not be "
                                           "kept as a copy");
            return result;
        }
    }
    const BackupRule backup =
        m_readFailed || unchanged ? BackupRule::LeaveBackup : BackupRule::KeepPrevious;
    // The file is written in pieces as it is built, so a large catalogue is never held twice
    // in memory.
    CatalogueStreamResult content;
    const auto writeContent = [&](QFileDevice &file) {
        CatalogueFileSink sink(file);
        content = streamCatalogueFile(m_catalogue, m_locale, m_count, sink);
        return content.ok && sink.finish();
    };
    try {
        result = writeCatalogueFile(fileName, writeContent, m_beforeReplace, backup);
    } catch (const VbError &error) {
        // Raised before any byte was written; the temporary file is removed unused.
        result = {};
        result.ok = false;
        result.detail = QStringLiteral("its table cannot be read (error %1)").arg(error.number());
        return result;
    }
    // Count follows the rows only when the file was saved; a failed save changes nothing.
    result.keptChangedCopy = keptChangedCopy;
    if (result.ok) {
        m_fileKnown = true;
        m_fileStamp = fileStamp(fileName);
        m_readFailed = false;
        m_fileGeneration = m_catalogue.generation();
        // The writer's count ends before a last row it did not write. A product there without
        // a part number stays all the same, for the part number the save asked for to be
        // typed: a sort or an import, which keep the counted rows only, would drop it.
        qint32 count = content.count;
        for (qint32 row = std::min(m_count, m_catalogue.upperBound(1)); row > count; --row) {
            if (isProductWithoutPartNumber(m_catalogue.row(row), m_locale)) {
                count = row;
                break;
            }
        }
        m_count = count;
        result.rowsWritten = content.rowsWritten;
    }
    return result;
}

} // namespace tarnwick
