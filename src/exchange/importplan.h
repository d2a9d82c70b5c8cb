#pragma once

#include "core/cell.h"
#include "core/errortrap.h"
#include "exchange/columnmapping.h"
#include "exchange/decimalmark.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QLocale>
#include <QString>

#include <array>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace tarnwick {

class IWorkbook;
class Table;

/// What an import does with the rows of a sheet.
enum class ImportAction {
    /// "Add new products to Brevary": rows whose part number is new become products; the
    /// first row with an empty part number ends the sheet; existing products never change.
    AddNew,
    /// "Update existing products": rows whose part number the catalogue holds change the
    /// mapped fields of that product, the other rows become products as with AddNew.
    UpdateExisting,
};

/// Why a row of the sheet changes nothing.
enum class SkipReason {
    /// The catalogue (or an earlier row) holds the part number already (AddNew).
    PartNumberExists,
    /// The row holds values but no part number (UpdateExisting).
    EmptyPartNumber,
    /// An earlier row of the sheet has the same part number (UpdateExisting).
    RepeatedPartNumber,
    /// The list price is mapped and its cell holds something that is no number
    /// (UpdateExisting).
    PriceNotANumber,
    /// The list price is mapped and its cell holds a number beyond what the catalogue's
    /// single-precision prices hold, about 3.4E+38 (UpdateExisting).
    PriceTooLarge,
    /// The list price is mapped and its cell holds a number below zero, which no price list
    /// means ("12.50-" or "(43.00)" in an accounting sheet, say) (UpdateExisting).
    PriceBelowZero,
    /// A price point or its price is mapped and its cell holds something that is no number
    /// ("10+", "POA"), which a quote would charge as nothing (UpdateExisting).
    PricePointNotANumber,
    /// A price point or its price is mapped and its cell holds a number below zero
    /// (UpdateExisting).
    PricePointBelowZero,
    /// The part number's cell could not be read.
    Unreadable,
};

/// Everything an import would do to the catalogue, computed from the sheet and the mapping
/// without changing the catalogue: the products it adds (all their cells), the fields it
/// changes in existing products (old and new cell), how many existing products the sheet
/// leaves as they are, and every row it skips with the reason. The preview window lists it;
/// importChanges() turns it into the change of the catalogue that one step of the history of
/// changes makes (CatalogueEdits::import).
struct ImportPlan
{
    struct FieldChange
    {
        int field = 0;
        Cell before;
        Cell after;
    };
    struct ChangedProduct
    {
        int sheetRow = 0;
        /// The catalogue row the product had when the plan was made.
        int catalogueRow = 0;
        QString partNumber;
        std::vector<FieldChange> fields;
    };
    struct SkippedRow
    {
        int sheetRow = 0;
        SkipReason reason = SkipReason::PartNumberExists;
        QString partNumber;
    };

    ImportAction action = ImportAction::AddNew;
    /// The new products in sheet order, ProductRecord::FieldCount cells each.
    std::vector<Cell> addedCells;
    std::vector<int> addedSheetRows;
    std::vector<ChangedProduct> changed;
    int unchanged = 0;
    /// New products whose list price cell held something that is no number (adding takes
    /// them without a price, as it always did).
    int addedWithoutPrice = 0;
    /// Cells of the rows taken, other than part numbers, that could not be read (an error value,
    /// a formula whose result the file does not hold): their fields are left as they were.
    int unreadCells = 0;
    std::vector<SkippedRow> skipped;
    /// The first error met while reading cells, if any.
    std::optional<VbError> firstError;
    /// Updating ends at the first row empty in every mapped column: that row, when rows below
    /// it hold something, which the plan then leaves out (0 when nothing was left).
    int rowsLeftBelow = 0;
    /// Adding ended at that row because it has cells but no part number (it is not read
    /// either).
    bool endedWithoutPartNumber = false;
    /// The import ended at rowsLeftBelow after MaxUnreadableRows rows in a row that could not
    /// be read (that row and the ones below are not read).
    bool endedAfterUnreadableRows = false;
    /// Number texts whose one mark could be a decimal or a group of thousands ("2,675"), read
    /// with the decimal mark the sheet's other numbers are written with (sheetMark), where the
    /// user's locale reads them the other way; the first of them, its sheet row and the text
    /// it was read as.
    int readWithSheetMark = 0;
    decimalmark::Mark sheetMark = decimalmark::Mark::Unknown;
    int firstSheetMarkRow = 0;
    QString firstSheetMarkText;
    QString firstSheetMarkReading;

    /// New products of an update whose part number differs from one in the catalogue only in
    /// letter case ("bv-1050" beside BV-1050), which a user most likely means as that product;
    /// the first CaseTwinExamples of them, each with the catalogue's part number.
    static constexpr int CaseTwinExamples = 3;
    int caseTwins = 0;
    std::vector<std::pair<QString, QString>> caseTwinExamples;

    int addedCount() const { return int(addedSheetRows.size()); }
    /// The cells of new product index (0-based).
    std::span<const Cell> addedProduct(int index) const;
    int skippedCount() const { return int(skipped.size()); }
    int skippedCount(SkipReason reason) const;
    /// True when applying the plan would add and change nothing.
    bool changesNothing() const { return addedSheetRows.empty() && changed.empty(); }
};

/// Makes an ImportPlan row by row, so the window can show progress and stop between rows. The
/// catalogue is only read. Part numbers are looked up in an index of the catalogue (the first
/// entry with that text, as a search from entry 1 finds it) and of the rows already planned.
///
/// The cells of a new product follow the import's rules: part number and product name as
/// read, an empty name as "Missing Product Name", a name cut to its first 75 characters, the
/// list price as a single-precision number when the cell is a number (else left empty), every
/// other field as the text read. An existing product changes only in fields whose mapped cell
/// holds something: an empty cell leaves the field as it is. Numbers count as equal by value
/// (12.5 and "12.50" are the same list price), texts character for character. A workbook whose
/// numbers come in the stored form (IWorkbook::numbersInStoredForm) has "2.675" read as two and
/// a bit in every locale, and such a price point kept in the form the user's locale reads as
/// that number ("2,675" in German), as the catalogue file's are; a cell such a workbook holds
/// as text (IWorkbook::isTextCell) is read as the user's locale reads it, as typed text is.
class ImportPlanner
{
public:
    /// letters: the column letter table (ColumnMapping::columnLetters); firstRowHasHeaders
    /// skips row 1.
    ImportPlanner(const IWorkbook &workbook, const Table &catalogue, const QString &letters,
        bool firstRowHasHeaders, ImportAction action, const QLocale &locale);

    /// Plans the current row. Returns false once the sheet is over: with AddNew at the first
    /// empty part number, with UpdateExisting at the first row whose mapped cells are all empty;
    /// also when the letter table cannot be used. A cell that cannot be read is taken as empty
    /// and remembered (plan().firstError); a row whose part number cannot be read is skipped.
    bool step();
    /// Runs step() until the sheet is over.
    void runAll();
    /// The row the next step reads.
    int currentRow() const { return m_row; }
    const ImportPlan &plan() const { return m_plan; }
    /// Hands the plan over (the planner is done with it).
    ImportPlan takePlan();

    static constexpr int MaxNameLength = 75;
    /// After this many rows in a row whose part number cannot be read, the sheet ends.
    static constexpr int MaxUnreadableRows = 100;
    /// How many rows from the first are looked at for the decimal mark the sheet's number texts
    /// are written with (sheetMark).
    static constexpr int MarkRows = 10000;
    /// The largest catalogue for which an update looks for new part numbers that differ from
    /// the catalogue's only in letter case.
    static constexpr int MaxCaseTwinRows = 200000;

private:
    struct RowCells;
    /// Reads the cell of one list into cells; false when it could not be read.
    bool readCell(int listIndex, RowCells &cells);
    void readOtherCells(RowCells &cells);
    void planAdd(RowCells &cells);
    void planUpdate(RowCells &cells);
    void planNew(RowCells &cells);
    void planExisting(const RowCells &cells, int catalogueRow);
    void skip(SkipReason reason, const QString &partNumber);
    Cell newCell(int field, RowCells &cells);
    /// The name of an added product a name cell gives: cut to its first MaxNameLength
    /// characters, never inside a character.
    static Cell nameCell(Cell name);
    /// Whether two names are one, the one cut to MaxNameLength as adding cuts it and the
    /// other whole.
    bool sameCutName(const Cell &before, const Cell &after) const;
    /// A sheet cell's number as the user's locale reads it (storedForm: the cell is a number of
    /// a workbook that writes its numbers in the stored form, read as such); none for a blank
    /// or no number.
    std::optional<double> number(const Cell &cell, bool storedForm) const;
    /// A number text whose one mark could be either (decimalmark::Reading::ambiguous), in the
    /// form the user's locale reads as the sheet means it, where the sheet's other number texts
    /// say which mark it writes decimals with.
    void followSheetMark(Cell &cell, int column);
    /// What the mapped number columns' texts say of the sheet's decimal mark; read through the
    /// sheet once, when the first ambiguous text needs it.
    decimalmark::Mark sheetMark();
    /// A number text neither the user's form nor the stored form reads, read by its own marks
    /// (decimalmark::valueOf): "12,50 €" under English, "$1,234.56" under German.
    std::optional<double> numberByMarks(const Cell &cell) const;
    /// Whether the cell is a number cell of a workbook whose numbers come in the stored form.
    bool isStoredNumber(const Cell &cell, int column, int row) const;
    /// A price point or quantity cell of the sheet as the catalogue keeps it.
    Cell pointCell(Cell cell, bool storedForm) const;
    /// Whether a list price can be kept as the catalogue keeps it, in single precision.
    static bool fitsPrice(double price);
    std::optional<Cell> updatedCell(int field, const RowCells &cells) const;
    /// Why the mapped price points and prices of a row cannot be taken (a cell that is no
    /// number or below zero, where it differs from what the product at catalogueRow holds, 0
    /// for a new product); none when they can.
    std::optional<SkipReason> pricePointProblem(const RowCells &cells, int catalogueRow) const;
    /// Counts a new product of an update whose part number the catalogue holds in other
    /// letter case.
    void noteCaseTwin(const QString &partNumber);
    /// The UTF-8 bytes of a text cell: the cell's own where it keeps UTF-8, else decoded into
    /// spare.
    static QByteArrayView utf8Of(const Cell &cell, QByteArray &spare);
    /// Makes key (the bytes utf8Of gave for cell) last as long as the planner: the cell's block
    /// is held, or the bytes are copied.
    QByteArrayView keepKey(const Cell &cell, QByteArrayView key);

    const IWorkbook &m_workbook;
    /// The columns of the mapped lists, read for every row at once, and where each list's
    /// column stands among them (-1 for a list that is not read).
    std::vector<int> m_readColumns;
    std::array<int, ColumnMapping::ListCount> m_listSlot {};
    const Table &m_catalogue;
    QString m_letters;
    QLocale m_locale;
    bool m_plainDecimals;
    /// The sheet's numbers are in the stored form and the locale reads that form otherwise.
    bool m_storedNumbers;
    decimalmark::Mark m_localeMark;
    std::optional<decimalmark::Mark> m_sheetMark;
    int m_firstRow;
    /// Part number (its UTF-8 bytes) → catalogue row (0 for a part number planned from an
    /// earlier row). A part number is looked up for every row: as bytes it is neither decoded
    /// nor copied.
    QHash<QByteArrayView, int> m_partNumbers;
    /// What the keys of m_partNumbers point into: the blocks of the cells they came from, and
    /// the bytes of part numbers no cell kept as UTF-8.
    std::vector<Cell> m_keyBlocks;
    std::deque<QByteArray> m_keyBytes;
    /// The catalogue's part numbers case-folded, → the part number; made when an update first
    /// adds a product.
    std::optional<QHash<QString, QString>> m_foldedPartNumbers;
    ImportPlan m_plan;
    int m_row;
    bool m_done = false;
    int m_unreadableRows = 0;
    ErrorTrap m_trap;
    /// One shared empty text for the unmapped fields of new products.
    Cell m_emptyText;
};

} // namespace tarnwick
