#pragma once

#include "catalogue/products.h"
#include "catalogue/table.h"
#include "core/errortrap.h"
#include "exchange/workbook.h"

#include <QHash>
#include <QLocale>
#include <QString>

#include <optional>

namespace tarnwick {

/// Adds the rows of a worksheet at the end of the catalogue table whose part number the catalogue
/// does not hold yet, one row per step, so the window can show progress and stop between rows.
/// Existing products are never changed. Part numbers are looked up in an index (the first catalogue
/// entry with that text, as a search from entry 1 finds it), so each row costs the same however
/// large the catalogue.
class WorkbookImport
{
public:
    /// letters: the column letter table (ColumnMapping::columnLetters); firstRowHasHeaders
    /// skips row 1.
    WorkbookImport(const IWorkbook &workbook, Table &catalogue, const QString &letters,
        bool firstRowHasHeaders, const QLocale &locale);
    /// As above, the new products going to the end of added (fifteen fields) while the
    /// catalogue is only read, so the whole import can be put into the catalogue at once.
    WorkbookImport(const IWorkbook &workbook, const Table &catalogue, Table &added,
        const QString &letters, bool firstRowHasHeaders, const QLocale &locale);

    /// Handles the current row. Returns false once the import is over: the row's part number
    /// was empty, or the letter table cannot be used. A cell that cannot be read is taken as
    /// empty and remembered (firstError); a row whose part number cannot be read is passed
    /// over, so the rest of the sheet is still handled.
    bool step();
    /// Runs step() until the import is over.
    void runAll();
    /// The row the next step reads.
    int currentRow() const { return m_row; }
    /// The products added so far.
    int changes() const { return m_changes; }
    /// The first error met while reading cells, if any.
    const std::optional<VbError> &firstError() const { return m_trap.firstError(); }

    static constexpr int MaxNameLength = 75;
    /// After this many rows in a row whose part number cannot be read, the import ends.
    static constexpr int MaxUnreadableRows = 100;

private:
    /// The text of the current row's cell of a list, or nothing when it could not be read.
    std::optional<QString> readCell(int listIndex);
    QString cell(int listIndex);
    void addProduct(const QString &partNumber);

    const IWorkbook &m_workbook;
    /// Where the new products go: the catalogue itself, or a table of their own.
    Table &m_catalogue;
    QString m_letters;
    QLocale m_locale;
    QHash<QString, int> m_partNumbers;
    int m_row;
    int m_changes = 0;
    bool m_done = false;
    int m_unreadableRows = 0;
    ErrorTrap m_trap;
};

/// The import window's caption at the next tick of its timer: "Please wait" and
/// "<row> products analyzed" in turn.
QString progressCaption(const QString &caption, int row);

/// The message that reports the import, or nothing when no product was added.
std::optional<QString> resultMessage(int changes);

/// Counts the added products into Count and sorts the catalogue on the part number as at
/// start-up (the table then holds exactly Count rows).
void finishImport(Table &catalogue, Products &products, int changes, const QLocale &locale);

} // namespace tarnwick
