#pragma once

#include "catalogue/cataloguefile.h"

#include <QByteArray>
#include <QLocale>
#include <QString>

#include <functional>

namespace tarnwick {

class Cell;
class Table;
struct CellTextBlock;

/// Fills the catalogue table from the bytes of a catalogue file, one logical line per product.
/// A logical line is continued over the next physical line (lines end only at CR LF) while
/// its last character is not DEL, so line breaks inside notes come back; a line may be of any
/// length. Field 3, the price, becomes a single-precision number. Numbers are read in the
/// stored form ("12.5"), the comma form of earlier files ("12,5") or the user's own form; a
/// price or price point that is none of these keeps its text and is listed in the result.
/// A failure before field 3 of a line (the file ends inside a line, a line without field
/// ends) ends the reading; the rows stored so far stay. The table grows as needed.
///
/// The file's bytes are read once and kept as they are: every text cell points into them
/// (Windows-1252 or UTF-8, whichever the file is), so no field is copied and the catalogue in
/// memory is about as large as its file. The table is sized once from the number of lines.
class CatalogueReader
{
public:
    /// Lets the caller follow the reading (the diagnostic boxes of the "test" command line).
    struct Observer
    {
        /// A product starts, with its first physical line.
        std::function<void(const QString &firstLine)> recordStarted;
        /// The product's part number has been stored in row.
        std::function<void(int row)> partNumberStored;
    };

    CatalogueReader(Table &table, const QLocale &locale);
    ~CatalogueReader();

    /// Reads every product of the file's bytes into rows 1..n; rowsRead is n, or the complete
    /// rows before a failure. Valid UTF-8 is read as UTF-8 (an initial byte order mark is
    /// dropped), anything else as Windows-1252.
    CatalogueReadResult read(QByteArray bytes, const Observer &observer = {});
    /// Where the file's text ends: before a Ctrl+Z after its last whole line and whatever line
    /// ends, blanks and zero bytes follow it; the whole of the bytes otherwise.
    static qsizetype endBeforeEndOfFileMark(const QByteArray &bytes);

private:
    struct Line;

    /// Stores the product at position the quick way and moves position past it, when it is
    /// well formed; otherwise stores nothing and returns false.
    bool storeWellFormed(int row, qsizetype &position);
    /// The number of the physical line starting at position (1 for the first).
    int lineNumberAt(qsizetype position);
    Line readLogicalLine(qsizetype &position, int row, const Observer &observer);
    void storeRecord(int row, const Line &line, const Observer &observer);
    void storeLaterField(int row, int field, qsizetype start, qsizetype size);
    Cell textCell(qsizetype start, qsizetype size) const;
    QString decoded(qsizetype start, qsizetype size) const;
    void makeRoomFor(int row);
    void sizeTable(qsizetype from);

    Table &m_table;
    QLocale m_locale;
    bool m_plainDecimals = false;
    CellTextBlock *m_block = nullptr;
    int m_encoding = 0;
    qsizetype m_firstLineStart = 0; ///< after a byte order mark, if any
    qsizetype m_countedTo = 0; ///< lines are counted up to here
    int m_linesBefore = 0; ///< the number of CR LF before m_countedTo
    QList<CatalogueReadResult::UnreadNumber> m_unreadNumbers;
};

} // namespace tarnwick
