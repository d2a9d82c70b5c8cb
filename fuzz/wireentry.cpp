// The decoder of the reader process's output, on any bytes a reader could write.
#include "fuzzentries.h"

#include "exchange/workbookwire.h"

#include <memory>

namespace tarnwick::fuzzing {

namespace {

using WorkbookWire::Decoder;

struct Decoded
{
    Decoder::State state = Decoder::State::Reading;
    int rows = 0;
    int errorNumber = 0;
    QString errorText;
    std::unique_ptr<IWorkbook> workbook;
};

/// Feeds the input in pieces of the sizes given in turn (0: all of it at once), then ends it.
Decoded decode(
    QByteArrayView input, std::initializer_list<qsizetype> pieceSizes, QStringList &broken)
{
    Decoder decoder;
    qsizetype at = 0;
    for (auto size = pieceSizes.begin(); at < input.size();) {
        const qsizetype piece = *size == 0 ? input.size() : std::min(*size, input.size() - at);
        decoder.feed(input.sliced(at, piece));
        at += piece;
        if (++size == pieceSizes.end()) {
            size = pieceSizes.begin();
        }
    }
    Decoded decoded;
    decoded.state = decoder.finish();
    if (decoded.state == Decoder::State::Reading) {
        broken << QStringLiteral("the decoder is still reading after the end of the stream");
    }
    decoded.rows = decoder.rows();
    decoded.errorNumber = decoder.errorNumber();
    decoded.errorText = decoder.errorText();
    decoded.workbook = decoder.takeWorkbook();
    if ((decoded.workbook != nullptr) != (decoded.state == Decoder::State::Read)) {
        broken << QStringLiteral("the decoder hands over a worksheet only when it read one");
    }
    if (decoder.takeWorkbook() != nullptr) {
        broken << QStringLiteral("the decoder handed over its worksheet twice");
    }
    return decoded;
}

void compare(const Decoded &whole, const Decoded &pieces, QStringList &broken)
{
    if (whole.state != pieces.state || whole.rows != pieces.rows
        || whole.errorNumber != pieces.errorNumber || whole.errorText != pieces.errorText) {
        broken << QStringLiteral("the stream fed in pieces decodes otherwise than fed whole");
        return;
    }
    if (!whole.workbook || !pieces.workbook) {
        return;
    }
    for (int row = 0; row <= whole.rows + 1; ++row) {
        for (int column = -1; column <= WorkbookWire::Columns; ++column) {
            const QString text = whole.workbook->cellText(column, row);
            if (text != pieces.workbook->cellText(column, row)
                || whole.workbook->isError(column, row) != pieces.workbook->isError(column, row)
                || whole.workbook->isTextCell(column, row)
                    != pieces.workbook->isTextCell(column, row)) {
                broken << QStringLiteral("cell %1 of row %2 differs when fed in pieces")
                              .arg(column)
                              .arg(row);
                return;
            }
            const bool inside =
                row >= 1 && row <= whole.rows && column >= 0 && column < WorkbookWire::Columns;
            if (!inside && !text.isEmpty()) {
                broken << QStringLiteral("a cell outside the worksheet has a text");
                return;
            }
        }
    }
}

} // namespace

Verdict wireDecoder(QByteArrayView input)
{
    Verdict verdict;
    const Decoded whole = decode(input, { 0 }, verdict.broken);
    const Decoded pieces = decode(input, { 1, 7, 2, 13, 3, 4096 }, verdict.broken);
    compare(whole, pieces, verdict.broken);
    switch (whole.state) {
    case Decoder::State::Read:
        verdict.outcome = QStringLiteral("read");
        break;
    case Decoder::State::Failed:
        verdict.outcome = QStringLiteral("failed");
        break;
    case Decoder::State::Malformed:
        verdict.outcome = QStringLiteral("malformed");
        break;
    case Decoder::State::Reading:
        verdict.outcome = QStringLiteral("reading");
        break;
    }
    return verdict;
}

} // namespace tarnwick::fuzzing
