#pragma once

#include "exchange/sheetcells.h"
#include "exchange/workbook.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick::WorkbookWire {

/// The columns that travel: A to R, all the import window ever offers or reads.
constexpr int Columns = SheetCells::Columns;
/// The rows of the largest worksheet a spreadsheet holds.
constexpr int MaxRows = SheetCells::MaxRows;
/// The longest cell text that travels, in UTF-8 bytes; a longer text is cut.
constexpr int MaxCellBytes = int(SheetCells::MaxCellBytes);
/// The longest error text that travels.
constexpr int MaxErrorBytes = 4096;

/// Writes the worksheet as the reader process hands it over: a header, whether its numbers are
/// in the stored form (IWorkbook::numbersInStoredForm), then each cell the
/// reader kept (columns A to R, down to the first row that is empty in all of them: the import
/// stops at an empty part number, whichever column holds it, so no row after that one is ever
/// read) as (row, column, text), or (row, column) for an error cell, row after row, then the
/// number of rows. A text cell whose text could be taken for a stored number ("1.250") goes as a
/// text cell (IWorkbook::isTextCell); other cells do not say which they are. sink receives the
/// bytes in pieces of about chunkBytes.
void writeWorkbook(const SheetCells &cells, const std::function<void(const QByteArray &)> &sink,
    int chunkBytes = 1 << 16);

/// The same for any worksheet: its cells of columns A to R (texts, and error cells) row by row
/// down to the first row that holds none of them.
void writeWorkbook(const IWorkbook &workbook, const std::function<void(const QByteArray &)> &sink,
    int chunkBytes = 1 << 16);

/// The whole output for a file that could not be opened: the header and the error.
QByteArray failureMessage(int errorNumber, const QString &text);

/// Writes the worksheet as writeWorkbook does while a reader is still reading it: rows go out
/// as soon as they are complete (SheetCells::setRowCompleteListener), so the program decodes
/// them while the rest of the file is read. Rows written before the reader found cells out of
/// order are withdrawn at the end (a reset), and the whole sheet follows in order.
class SheetWriter
{
public:
    using Sink = std::function<void(const QByteArray &)>;
    explicit SheetWriter(Sink sink, int chunkBytes = 1 << 16);
    SheetWriter(const SheetWriter &) = delete;
    SheetWriter &operator=(const SheetWriter &) = delete;

    /// Writes the rows of cells that are complete and not written yet.
    void writeCompleteRows(const SheetCells &cells);
    /// After cells.finish(): the rest of the rows and the end.
    void finish(const SheetCells &cells);
    /// Instead of finish(): the error of a file that could not be read, after which the rows
    /// written so far count for nothing.
    void fail(int errorNumber, const QString &text);

private:
    void flush();

    Sink m_sink;
    std::size_t m_chunkBytes;
    /// Frames are laid out in a plain buffer and handed over without a copy: millions of small
    /// cells cost no more than their bytes.
    std::string m_out;
    SheetCells::RowCursor m_cursor;
    bool m_formWritten = false;
};

/// Reads what the reader process writes, piece by piece as it arrives. Every kind of input is
/// safe: frames are checked before anything is kept, cells must come in order (each row the
/// same as or right after the last), texts must be valid UTF-8, and what is kept grows with the
/// input, never faster than a few bytes per byte read, so a stream cut short or made up gives
/// Malformed, never a crash.
class Decoder
{
public:
    enum class State { Reading, Read, Failed, Malformed };

    Decoder();
    ~Decoder();
    Decoder(const Decoder &) = delete;
    Decoder &operator=(const Decoder &) = delete;

    /// Takes the next bytes; returns the state after them.
    State feed(QByteArrayView bytes);
    /// The end of the stream: a stream that stopped before its end is Malformed.
    State finish();
    State state() const { return m_state; }
    /// The rows that arrived so far.
    int rows() const { return m_rows; }
    /// The bytes of the stream the reader withdrew (the rows before a reset): they no longer
    /// count towards what is kept.
    qint64 withdrawnBytes() const { return m_withdrawn; }
    /// After Read: the worksheet (once).
    std::unique_ptr<IWorkbook> takeWorkbook();
    /// After Failed: the error the reader reported.
    int errorNumber() const { return m_errorNumber; }
    QString errorText() const { return m_errorText; }

private:
    void appendText(QByteArrayView text);
    /// Reads one frame at the start of bytes; returns its length, 0 when it is not complete
    /// yet, or -1 when it is malformed.
    qsizetype readFrame(QByteArrayView bytes);
    qsizetype readCell(QByteArrayView bytes);
    qsizetype readTextCell(QByteArrayView bytes);
    qsizetype readErrorCell(QByteArrayView bytes);
    /// Whether a cell at (row, column) with a text of length bytes may come next: its row is the
    /// last cell's or the next one, and column, length and all texts stay within their limits.
    bool fitsPlace(quint32 row, int column, quint32 length) const;
    /// Keeps the place of a cell that fits (fitsPlace) for the text that follows; false when it
    /// lies left of or at the last cell of its row.
    bool placeCell(quint32 row, int column);
    qsizetype readEnd(QByteArrayView bytes);
    qsizetype readReset();
    /// Forgets every cell read (a reset, a failure, or the worksheet handed over).
    void clearCells();
    qsizetype readFailure(QByteArrayView bytes);

    State m_state = State::Reading;
    bool m_headerRead = false;
    QByteArray m_pending;
    /// The texts of the cells so far, one after the other: the first m_textSize bytes.
    QByteArray m_text;
    /// m_text's bytes, the array being the decoder's alone.
    char *m_textData = nullptr;
    qsizetype m_textSize = 0;
    /// Where each cell's text starts in m_text, Columns per row; the cell after the last starts
    /// where the last ends.
    std::vector<quint32> m_starts;
    /// The indexes (as in m_starts) of the error cells, in order.
    std::vector<quint32> m_errors;
    /// The indexes of the text cells the writer marked (IWorkbook::isTextCell), in order.
    std::vector<quint32> m_textCells;
    int m_rows = 0;
    bool m_numbersInStoredForm = false;
    bool m_rowsAfterAGap = false;
    /// Bytes of the stream read in earlier calls of feed(), and where the frame being read
    /// starts in the stream.
    qint64 m_consumed = 0;
    qint64 m_frameAt = 0;
    qint64 m_withdrawn = 0;
    int m_errorNumber = 0;
    QString m_errorText;
};

} // namespace tarnwick::WorkbookWire
