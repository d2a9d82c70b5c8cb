#include "exchange/workbook.h"

#include "core/vberror.h"
#include "exchange/compounddocument.h"
#include "exchange/sheetcells.h"
#include "exchange/workbookformats.h"
#include "exchange/ziparchive.h"

#include <QFile>
#include <QFileInfo>

#include <array>

namespace tarnwick {

namespace {

const QString NotAnExcelFile = QStringLiteral("This file is not an Excel 97 file.");

bool startsWith(QByteArrayView bytes, QByteArrayView start)
{
    return bytes.size() >= start.size() && bytes.first(start.size()) == start;
}

/// Text, as far as its bytes tell: no zero byte (a picture, a program, a document of another
/// kind has them), and few of the control characters no text means (a note may hold a word
/// processor's line or page break, VT or FF, or an escape sequence, and the program's own
/// export writes them as they stand, so those never count). A file that starts with a UTF-16
/// byte-order mark is text too.
bool looksLikeText(QByteArrayView bytes)
{
    if (startsWith(bytes, "\xFF\xFE") || startsWith(bytes, "\xFE\xFF"))
        return true;
    static const std::array<bool, 256> binary = [] {
        std::array<bool, 256> table {};
        for (int c = 0; c < 0x20; ++c)
            table[std::size_t(c)] =
                c != '\t' && c != '\n' && c != '\v' && c != '\f' && c != '\r' && c != '\x1b';
        return table;
    }();
    // Random bytes hold about one in eleven of them.
    const qsizetype allowed = 8 + bytes.size() / 16;
    qsizetype found = 0;
    for (const char c : bytes) {
        if (c == '\0' || (binary[quint8(c)] && ++found > allowed))
            return false;
    }
    return true;
}

SheetReadResult readZippedSheet(QByteArrayView bytes, SheetCells &cells)
{
    const std::unique_ptr<ZipArchive> archive = ZipArchive::open(bytes);
    bool read = false;
    if (archive && archive->contains("xl/workbook.xml"))
        read = readXlsxSheet(*archive, cells);
    else if (archive && archive->contains("content.xml"))
        read = readOdsSheet(*archive, cells);
    return read ? SheetReadResult {} : sheetNotRead(WorkbookError::NotAWorkbook);
}

WorkbookOpenResult asWorkbook(SheetReadResult read)
{
    return WorkbookOpenResult { std::move(read.cells), read.errorNumber, read.errorText };
}

} // namespace

Cell readTextCell(const IWorkbook &workbook, int column, int row)
{
    if (workbook.isError(column, row))
        throw VbError(ErrorNumber::TypeMismatch);
    return workbook.textCell(column, row);
}

WorkbookOpenResult notAWorkbook(int errorNumber)
{
    return WorkbookOpenResult { nullptr, errorNumber, NotAnExcelFile };
}

SheetReadResult sheetNotRead(int errorNumber)
{
    return SheetReadResult { nullptr, errorNumber, NotAnExcelFile };
}

SheetReadResult readSheet(QByteArrayView bytes, std::unique_ptr<SheetCells> into)
{
    std::unique_ptr<SheetCells> cells = into ? std::move(into) : std::make_unique<SheetCells>();
    if (startsWith(bytes, "PK\x03\x04") || startsWith(bytes, "PK\x05\x06")) {
        cells->setNumbersInStoredForm(true);
        SheetReadResult zipped = readZippedSheet(bytes, *cells);
        if (zipped.errorNumber != 0)
            return zipped;
    } else if (startsWith(bytes, QByteArrayView(CompoundDocumentSignature, 8))) {
        cells->setNumbersInStoredForm(true);
        if (!readXlsSheet(bytes, *cells))
            return sheetNotRead(WorkbookError::NotAWorkbook);
    } else if (looksLikeText(bytes)) {
        readTextSheet(bytes, *cells);
    } else {
        return sheetNotRead(WorkbookError::NotAWorkbook);
    }
    if (cells->overflowed())
        return sheetNotRead(WorkbookError::NotAWorkbook);
    cells->finish();
    return SheetReadResult { std::move(cells), 0, {} };
}

SheetReadResult readSheetFile(const QString &path, std::unique_ptr<SheetCells> into)
{
    QFile file(path);
    if (!file.exists())
        return sheetNotRead(WorkbookError::FileNotFound);
    if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly))
        return sheetNotRead(WorkbookError::FileAccess);
    if (file.size() > MaxWorkbookFileBytes)
        return sheetNotRead(WorkbookError::TooLarge);
    if (file.size() == 0)
        return readSheet(QByteArrayView(), std::move(into));
    // A mapped file costs no copy; a file that cannot be mapped is read.
    if (const uchar *mapped = file.map(0, file.size()))
        return readSheet(
            QByteArrayView(reinterpret_cast<const char *>(mapped), file.size()), std::move(into));
    const QByteArray bytes = file.read(MaxWorkbookFileBytes + 1);
    if (bytes.size() > MaxWorkbookFileBytes)
        return sheetNotRead(WorkbookError::TooLarge);
    if (file.error() != QFileDevice::NoError)
        return sheetNotRead(WorkbookError::FileAccess);
    return readSheet(bytes, std::move(into));
}

namespace {

/// The cells read by one format's reader, or NotAWorkbook.
template <typename Read> WorkbookOpenResult readOneFormat(Read &&read)
{
    auto cells = std::make_unique<SheetCells>();
    cells->setNumbersInStoredForm(true);
    if (!read(*cells) || cells->overflowed())
        return notAWorkbook(WorkbookError::NotAWorkbook);
    cells->finish();
    return WorkbookOpenResult { std::move(cells), 0, {} };
}

/// The cells of a zipped format's reader, when the bytes are a zip archive holding member.
template <typename Read>
WorkbookOpenResult readZippedFormat(QByteArrayView bytes, const char *member, Read &&read)
{
    return readOneFormat([&](SheetCells &cells) {
        const std::unique_ptr<ZipArchive> archive = ZipArchive::open(bytes);
        return archive && archive->contains(member) && read(*archive, cells);
    });
}

} // namespace

WorkbookOpenResult openXlsxWorkbookData(QByteArrayView bytes)
{
    return readZippedFormat(bytes, "xl/workbook.xml", readXlsxSheet);
}

WorkbookOpenResult openOdsWorkbookData(QByteArrayView bytes)
{
    return readZippedFormat(bytes, "content.xml", readOdsSheet);
}

WorkbookOpenResult openXlsWorkbookData(QByteArrayView bytes)
{
    return readOneFormat([&](SheetCells &cells) { return readXlsSheet(bytes, cells); });
}

WorkbookOpenResult readWorkbook(QByteArrayView bytes)
{
    return asWorkbook(readSheet(bytes));
}

WorkbookOpenResult openWorkbook(const QString &path)
{
    return asWorkbook(readSheetFile(path));
}

} // namespace tarnwick
