// The workbook readers as the reader process runs them: open the file's bytes, then hand the
// worksheet over through the wire the program decodes.
#include "fuzzentries.h"
#include "zipmembers.h"

#include "exchange/columnmapping.h"
#include "exchange/gridworkbook.h"
#include "exchange/textworkbook.h"
#include "exchange/workbook.h"
#include "exchange/workbookwire.h"

namespace tarnwick::fuzzing {

namespace {

/// The rows of a worksheet that go through the wire here; the wire's own limits are the wire
/// decoder target's business, and a worksheet of a million repeated rows must not make every
/// run of the reader's target slow.
constexpr int WireRows = 256;

/// The first rows of a worksheet; every later row is empty.
class FirstRows : public IWorkbook
{
public:
    FirstRows(const IWorkbook &workbook, int rows) : m_workbook(workbook), m_rows(rows) { }
    QString cellText(int column, int row) const override
    {
        return row <= m_rows ? m_workbook.cellText(column, row) : QString();
    }

private:
    const IWorkbook &m_workbook;
    int m_rows;
};

/// What a text becomes on the wire: UTF-8, cut to the longest cell the wire carries.
QString overTheWire(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.size() > WorkbookWire::MaxCellBytes) {
        qsizetype end = WorkbookWire::MaxCellBytes;
        while (end > 0 && (uchar(bytes[end]) & 0xC0) == 0x80) {
            --end;
        }
        bytes.truncate(end);
    }
    return QString::fromUtf8(bytes);
}

/// The rows the wire carries: down to the last row before the first empty one in A to R.
int rowsToCarry(const IWorkbook &workbook)
{
    int rows = 0;
    for (int row = 1; row <= WorkbookWire::MaxRows; ++row) {
        bool hasText = false;
        for (int column = 0; column < WorkbookWire::Columns && !hasText; ++column) {
            hasText = !workbook.cellText(column, row).isEmpty();
        }
        if (!hasText) {
            break;
        }
        rows = row;
    }
    return rows;
}

/// Sends the worksheet through the wire and checks that the decoder builds the same one.
void checkWire(const IWorkbook &read, QStringList &broken)
{
    const FirstRows workbook(read, WireRows);
    WorkbookWire::Decoder decoder;
    WorkbookWire::writeWorkbook(
        workbook, [&decoder](const QByteArray &piece) { decoder.feed(piece); }, 4096);
    if (decoder.finish() != WorkbookWire::Decoder::State::Read) {
        broken << QStringLiteral("the wire did not carry the worksheet");
        return;
    }
    const int rows = rowsToCarry(workbook);
    if (decoder.rows() != rows) {
        broken << QStringLiteral("the wire carried %1 rows of %2").arg(decoder.rows()).arg(rows);
    }
    const auto carried = decoder.takeWorkbook();
    for (int row = 0; row <= rows + 1; ++row) {
        for (int column = -1; column <= WorkbookWire::Columns; ++column) {
            const bool travels =
                row >= 1 && row <= rows && column >= 0 && column < WorkbookWire::Columns;
            const QString expected =
                travels ? overTheWire(workbook.cellText(column, row)) : QString();
            if (carried->cellText(column, row) != expected) {
                broken
                    << QStringLiteral("cell %1 of row %2 changed on the wire").arg(column).arg(row);
                return;
            }
        }
    }
}

Verdict workbookVerdict(const WorkbookOpenResult &opened)
{
    Verdict verdict;
    if (!opened.workbook) {
        verdict.outcome = QStringLiteral("not a workbook");
        if (opened.errorNumber == 0) {
            verdict.broken << QStringLiteral("a file that was not read has no error number");
        }
        if (opened.errorText != notAWorkbook(1).errorText) {
            verdict.broken << QStringLiteral("a file that was not read says: ") + opened.errorText;
        }
        return verdict;
    }
    verdict.outcome = QStringLiteral("read");
    // What the import window lists of it.
    ColumnMapping::preselection(ColumnMapping::columnEntries(*opened.workbook));
    checkWire(*opened.workbook, verdict.broken);
    return verdict;
}

} // namespace

Verdict xlsxReader(QByteArrayView input)
{
    return workbookVerdict(openXlsxWorkbookData(zipFromInput(input)));
}

Verdict odsReader(QByteArrayView input)
{
    return workbookVerdict(openOdsWorkbookData(zipFromInput(input)));
}

Verdict textReader(QByteArrayView input)
{
    return workbookVerdict(
        WorkbookOpenResult { std::make_unique<TextWorkbook>(input.toByteArray()), 0, {} });
}

} // namespace tarnwick::fuzzing
