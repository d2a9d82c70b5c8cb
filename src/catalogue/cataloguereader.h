#pragma once

#include "catalogue/cataloguefile.h"

#include <QLocale>
#include <QString>

#include <functional>

namespace tarnwick {

class Table;

/// Fills the catalogue table from the text of a catalogue file, one logical line per product.
/// A logical line is continued over the next physical line (lines end only at CR LF) while
/// its last character is not DEL, so line breaks inside notes come back; a line may be of any
/// length. Field 3, the price, becomes a single-precision number. Numbers are read in the
/// stored form ("12.5"), the comma form of earlier files ("12,5") or the user's own form; a
/// price or price point that is none of these keeps its text and is listed in the result.
/// A failure before field 3 of a line (the file ends inside a line, a line without field
/// ends) ends the reading; the rows stored so far stay. The table grows as needed.
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

    /// Reads every product of text into rows 1..n; rowsRead is n, or the complete rows before
    /// a failure.
    CatalogueReadResult read(const QString &text, const Observer &observer = {});

private:
    class PhysicalLines;

    QString readLogicalLine(PhysicalLines &lines, int row, const Observer &observer) const;
    void storeRecord(int row, const QString &line, int lineNumber, const Observer &observer);
    void storeLaterField(int row, int field, const QString &text);
    void makeRoomFor(int row);

    Table &m_table;
    QLocale m_locale;
    QList<CatalogueReadResult::UnreadNumber> m_unreadNumbers;
};

} // namespace tarnwick
