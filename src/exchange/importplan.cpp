#include "exchange/importplan.h"

#include "catalogue/cataloguetext.h"
#include "catalogue/fieldend.h"
#include "catalogue/productrecord.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "core/storednumber.h"
#include "core/vberror.h"
#include "exchange/columnmapping.h"
#include "exchange/workbook.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace tarnwick {

namespace P = ProductRecord;

namespace {

const QString MissingProductName = QStringLiteral("Missing Product Name");

/// Whether two cells of a field hold the same value: numbers by value (in single precision
/// where either side is kept so, as the list price is), anything else by its text. Texts are
/// read as numbers as the user's locale reads them ("$12.50", "12.5").
bool sameValue(int field, const Cell &a, const Cell &b, const QLocale &locale, bool plain)
{
    if (P::isNumberField(field)) {
        const std::optional<double> x = conv::cellNumber(a, locale, plain);
        const std::optional<double> y = conv::cellNumber(b, locale, plain);
        if (x && y) {
            const bool single = field == P::Price || a.kind() == Cell::Kind::Single
                || b.kind() == Cell::Kind::Single;
            return single ? float(*x) == float(*y) : *x == *y;
        }
        if (x || y)
            return false;
    }
    return a == b;
}

/// Whether the text starts or ends with a blank, a tab or a line break: only then is it worth
/// decoding to trim it. Any byte encoding keeps these as the byte of their ASCII code.
bool hasOuterBlanks(const CellTextView &view)
{
    if (view.isEmpty())
        return false;
    const auto blank = [](char16_t c) {
        return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
    };
    if (view.encoding == TextEncoding::Utf16)
        return blank(view.units()[0]) || blank(view.units()[view.size - 1])
            || QChar(view.units()[0]).isSpace() || QChar(view.units()[view.size - 1]).isSpace();
    const auto first = static_cast<unsigned char>(view.bytes()[0]);
    const auto last = static_cast<unsigned char>(view.bytes()[view.size - 1]);
    // A no-break space ends in 0xA0 in both byte encodings.
    return blank(first) || blank(last) || first == 0xC2 || last == 0xA0;
}

} // namespace

std::span<const Cell> ImportPlan::addedProduct(int index) const
{
    return std::span<const Cell>(addedCells)
        .subspan(std::size_t(index) * P::FieldCount, P::FieldCount);
}

int ImportPlan::skippedCount(SkipReason reason) const
{
    int count = 0;
    for (const SkippedRow &row : skipped)
        count += row.reason == reason ? 1 : 0;
    return count;
}

/// The cells of one sheet row as the workbook hands them over (IWorkbook::textCell: texts,
/// without a copy where the workbook can), by catalogue field (index 0 unused); whether each
/// field's list is mapped. Only the part number is decoded, for the index of part numbers.
struct ImportPlanner::RowCells
{
    std::array<Cell, P::FieldCount + 1> cell;
    std::array<bool, P::FieldCount + 1> mapped {};
    /// The mapped columns' cells as the workbook gave them (IWorkbook::readCells), in the order
    /// of m_readColumns, and which of them are error cells.
    std::array<Cell, ColumnMapping::ListCount> fetched;
    std::array<bool, ColumnMapping::ListCount> errors {};
    /// By catalogue field: whether the cell's number is in the stored form (ImportPlanner::
    /// number), false for a cell the workbook holds as text.
    std::array<bool, P::FieldCount + 1> storedForm {};
    /// False when the workbook raised an error reading the row at once: its cells are then
    /// read one by one, each error kept as it was raised.
    bool fetchedAll = false;
    /// The part number's UTF-8 bytes (in spare where the cell does not keep UTF-8).
    QByteArrayView partKey;
    QByteArray spare;

    QString partNumber() const { return cell[P::PartNumber].asText(); }

    bool isBlank(int field) const { return cell[std::size_t(field)].isBlank(); }
    bool allEmpty() const
    {
        for (const Cell &value : cell) {
            if (!value.isBlank())
                return false;
        }
        return true;
    }
};

ImportPlanner::ImportPlanner(const IWorkbook &workbook, const Table &catalogue,
    const QString &letters, bool firstRowHasHeaders, ImportAction action, const QLocale &locale)
    : m_workbook(workbook), m_catalogue(catalogue), m_letters(letters), m_locale(locale),
      m_plainDecimals(conv::readsPlainDecimals(locale)),
      m_storedNumbers(workbook.numbersInStoredForm() && !m_plainDecimals),
      m_localeMark(decimalmark::markOf(locale)), m_firstRow(firstRowHasHeaders ? 2 : 1),
      m_row(m_firstRow), m_emptyText(QString())
{
    m_plan.action = action;
    m_done = m_letters.size() != ColumnMapping::ListCount
        || ColumnMapping::isUnread(m_letters[ColumnMapping::PartNumberList]);
    m_listSlot.fill(-1);
    for (int index = 0; !m_done && index < ColumnMapping::ListCount; ++index) {
        const QChar letter = m_letters[index];
        if (ColumnMapping::isUnread(letter))
            continue;
        m_listSlot[std::size_t(index)] = int(m_readColumns.size());
        m_readColumns.push_back(letter.unicode() - 'A');
    }
    const int sheetRows = std::max(0, workbook.rowCountHint() - m_row + 1);
    m_partNumbers.reserve(m_catalogue.rowCount() + sheetRows);
    m_plan.addedCells.reserve(std::size_t(sheetRows) * P::FieldCount);
    m_plan.addedSheetRows.reserve(std::size_t(sheetRows));
    // From the last row up, so the first entry of a repeated part number wins.
    QByteArray spare;
    for (int row = m_catalogue.rowCount(); row >= 1; --row) {
        const Cell &part = m_catalogue.get(row, P::PartNumber);
        if (part.isText())
            m_partNumbers.insert(keepKey(part, utf8Of(part, spare)), row);
    }
}

QByteArrayView ImportPlanner::utf8Of(const Cell &cell, QByteArray &spare)
{
    const CellTextView text = cell.textView();
    if (text.encoding == TextEncoding::Utf8)
        return QByteArrayView(text.bytes(), text.size);
    spare = text.toString().toUtf8();
    return spare;
}

QByteArrayView ImportPlanner::keepKey(const Cell &cell, QByteArrayView key)
{
    if (cell.textView().encoding != TextEncoding::Utf8) {
        m_keyBytes.emplace_back(key.data(), key.size());
        return m_keyBytes.back();
    }
    // The cells of a sheet or of a catalogue file mostly share one block.
    if (m_keyBlocks.empty() || m_keyBlocks.back().textBlock() != cell.textBlock())
        m_keyBlocks.push_back(cell);
    return key;
}

namespace {

/// Three DELs end a field in the catalogue file: one arriving in a sheet's text would end the
/// field there and shift the product's other fields at the next start. DEL characters are
/// left out of what is read, as typing and pasting leave them out.
void dropFieldEndCharacters(Cell &cell)
{
    if (!cell.isText())
        return;
    const CellTextView view = cell.textView();
    const bool found = view.encoding == TextEncoding::Utf16
        ? std::find(view.units(), view.units() + view.size, char16_t(fieldend::Character))
            != view.units() + view.size
        : std::memchr(view.bytes(), fieldend::Byte, std::size_t(view.size)) != nullptr;
    if (found)
        cell = Cell(withoutFieldEndCharacters(cell.asText()));
}

} // namespace

bool ImportPlanner::readCell(int listIndex, RowCells &cells)
{
    const int slot = m_listSlot[std::size_t(listIndex)];
    if (slot < 0)
        return true;
    const int field = ColumnMapping::catalogueField(listIndex);
    cells.mapped[std::size_t(field)] = true;
    Cell &cell = cells.cell[std::size_t(field)];
    const int column = m_readColumns[std::size_t(slot)];
    cells.storedForm[std::size_t(field)] =
        m_storedNumbers && P::isNumberField(field) && !m_workbook.isTextCell(column, m_row);
    bool read = true;
    if (!cells.fetchedAll) {
        read = m_trap.step([&] { cell = readTextCell(m_workbook, column, m_row); });
    } else if (cells.errors[std::size_t(slot)]) {
        // An error cell (#DIV/0!, #N/A) is a cell that cannot be read, as readTextCell says.
        return m_trap.step([] { throw VbError(ErrorNumber::TypeMismatch); });
    } else {
        cell = std::move(cells.fetched[std::size_t(slot)]);
    }
    dropFieldEndCharacters(cell);
    if (P::isNumberField(field) && !cells.storedForm[std::size_t(field)])
        followSheetMark(cell, column);
    return read;
}

void ImportPlanner::readOtherCells(RowCells &cells)
{
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        if (index != ColumnMapping::PartNumberList && !readCell(index, cells))
            ++m_plan.unreadCells;
    }
}

bool ImportPlanner::step()
{
    if (m_done)
        return false;
    RowCells cells;
    const std::size_t count = m_readColumns.size();
    try {
        m_workbook.readCells(m_row, m_readColumns, std::span(cells.fetched).first(count),
            std::span(cells.errors).first(count));
        cells.fetchedAll = true;
    } catch (const VbError &) {
        cells.fetched = {};
    }
    const bool read = readCell(ColumnMapping::PartNumberList, cells);
    const bool update = m_plan.action == ImportAction::UpdateExisting;
    // Adding reads the other cells of a row only for a new product, as the import always did.
    if (read && update)
        readOtherCells(cells);
    m_plan.firstError = m_trap.firstError();
    if (!read) {
        // The row is passed over; a sheet that keeps failing ends instead of running on.
        skip(SkipReason::Unreadable, QString());
        ++m_row;
        m_done = ++m_unreadableRows >= MaxUnreadableRows;
        // The rows below are not read; the plan says so, as for an empty row that ends it.
        if (m_done && (m_row <= m_workbook.rowCountHint() || m_workbook.hasRowsAfterAGap())) {
            m_plan.rowsLeftBelow = m_row;
            m_plan.endedAfterUnreadableRows = true;
        }
        return !m_done;
    }
    m_unreadableRows = 0;
    // A supplier's "BV-1050 " is the catalogue's BV-1050: an update reads part numbers without
    // the blanks at either end, which no one sees in a sheet, unless the catalogue (or an
    // earlier row) has the part number with them, as the program's own export writes it.
    // (Adding takes them as read.)
    if (update && cells.cell[P::PartNumber].isText()
        && hasOuterBlanks(cells.cell[P::PartNumber].textView())) {
        QByteArray spare;
        if (!m_partNumbers.contains(utf8Of(cells.cell[P::PartNumber], spare)))
            cells.cell[P::PartNumber] = Cell(cells.cell[P::PartNumber].asText().trimmed());
    }
    const Cell &partCell = cells.cell[P::PartNumber];
    cells.partKey = utf8Of(partCell, cells.spare);
    if (update ? cells.allEmpty() : cells.partKey.isEmpty()) {
        m_done = true;
        // What lies below is not read (as adding never reads past an empty part number), but
        // the plan says so: the rows may well be meant. Adding also says so for a row with
        // cells but no part number, which ends it.
        const bool rowsBelow = m_row < m_workbook.rowCountHint() || m_workbook.hasRowsAfterAGap();
        const bool rowWithoutPartNumber = !update
            && std::any_of(cells.fetched.cbegin(), cells.fetched.cbegin() + std::ptrdiff_t(count),
                [](const Cell &value) { return !value.isBlank(); });
        if (rowsBelow || rowWithoutPartNumber) {
            m_plan.rowsLeftBelow = m_row;
            m_plan.endedWithoutPartNumber = rowWithoutPartNumber;
        }
        return false;
    }
    // Kept before the row's cells move into the plan.
    const QByteArrayView key = keepKey(partCell, cells.partKey);
    if (update)
        planUpdate(cells);
    else
        planAdd(cells);
    // Whatever became of it, a later row with this part number is a repeat.
    m_partNumbers.insert(key, 0);
    // Reading the other cells and their values may have failed too.
    m_plan.firstError = m_trap.firstError();
    ++m_row;
    return true;
}

void ImportPlanner::planAdd(RowCells &cells)
{
    if (m_partNumbers.contains(cells.partKey)) {
        skip(SkipReason::PartNumberExists, cells.partNumber());
        return;
    }
    readOtherCells(cells);
    planNew(cells);
}

void ImportPlanner::planUpdate(RowCells &cells)
{
    const auto known = m_partNumbers.constFind(cells.partKey);
    if (cells.partKey.isEmpty())
        skip(SkipReason::EmptyPartNumber, QString());
    else if (known != m_partNumbers.cend() && *known == 0)
        skip(SkipReason::RepeatedPartNumber, cells.partNumber());
    else if (const std::optional<double> price =
                 number(cells.cell[P::Price], cells.storedForm[P::Price]);
             !cells.isBlank(P::Price) && !price)
        skip(SkipReason::PriceNotANumber, cells.partNumber());
    else if (price && !fitsPrice(*price))
        skip(SkipReason::PriceTooLarge, cells.partNumber());
    else if (price && *price < 0)
        skip(SkipReason::PriceBelowZero, cells.partNumber());
    else if (const std::optional<SkipReason> problem =
                 pricePointProblem(cells, known != m_partNumbers.cend() ? *known : 0))
        skip(*problem, cells.partNumber());
    else if (known != m_partNumbers.cend())
        planExisting(cells, *known);
    else {
        noteCaseTwin(cells.partNumber());
        planNew(cells);
    }
}

std::optional<SkipReason> ImportPlanner::pricePointProblem(
    const RowCells &cells, int catalogueRow) const
{
    for (int k = 1; k <= P::PricePointCount; ++k) {
        for (const int field : { P::pricePointField(k), P::pricePointPriceField(k) }) {
            if (cells.isBlank(field))
                continue;
            const Cell &cell = cells.cell[std::size_t(field)];
            // A break the catalogue holds as it is (a "POA" typed there and exported) changes
            // nothing: the row's other fields are taken.
            if (catalogueRow > 0
                && sameValue(
                    field, m_catalogue.get(catalogueRow, field), cell, m_locale, m_plainDecimals))
                continue;
            const bool storedForm = cells.storedForm[std::size_t(field)];
            const std::optional<double> value = number(cell, storedForm);
            if (!value)
                return SkipReason::PricePointNotANumber;
            // What the catalogue keeps must read as a number at the next start and in a quote
            // ("25+" reads as 25 here, but is kept as written).
            if (const Cell kept = pointCell(cell, storedForm);
                kept.isText() && !stored::readNumberOrLocal(kept.asText(), m_locale))
                return SkipReason::PricePointNotANumber;
            if (*value < 0)
                return SkipReason::PricePointBelowZero;
        }
    }
    return std::nullopt;
}

void ImportPlanner::noteCaseTwin(const QString &partNumber)
{
    // The index is made in one step of the planner: for a very large catalogue that step would
    // hold the window for seconds, so the look is left out there.
    if (m_catalogue.rowCount() > MaxCaseTwinRows)
        return;
    if (!m_foldedPartNumbers) {
        m_foldedPartNumbers.emplace();
        m_foldedPartNumbers->reserve(m_catalogue.rowCount());
        for (int row = 1; row <= m_catalogue.rowCount(); ++row) {
            const QString known = m_catalogue.get(row, P::PartNumber).asText();
            m_foldedPartNumbers->insert(known.trimmed().toCaseFolded(), known);
        }
    }
    const auto twin = m_foldedPartNumbers->constFind(partNumber.trimmed().toCaseFolded());
    if (twin == m_foldedPartNumbers->cend() || twin.value() == partNumber)
        return;
    if (m_plan.caseTwins++ < ImportPlan::CaseTwinExamples)
        m_plan.caseTwinExamples.emplace_back(partNumber, twin.value());
}

void ImportPlanner::runAll()
{
    while (step()) { }
}

ImportPlan ImportPlanner::takePlan()
{
    m_done = true;
    return std::move(m_plan);
}

void ImportPlanner::skip(SkipReason reason, const QString &partNumber)
{
    m_plan.skipped.push_back({ m_row, reason, partNumber });
}

std::optional<double> ImportPlanner::number(const Cell &cell, bool storedForm) const
{
    if (std::optional<double> value =
            conv::cellNumber(cell, m_locale, m_plainDecimals || storedForm))
        return value;
    if (!cell.isText() || storedForm)
        return std::nullopt;
    // A text the user's own form does not read is read as the list-price box reads it when
    // typed: a comma decimal where the user groups with a comma ("12,50", "0,99" in English).
    if (const std::optional<double> typed = stored::readNumber(cell.asText()))
        return typed;
    // A price written in another locale's way with its currency, as the program's own export
    // writes it under German ("99.999,99 €") and read under English, or the other way round.
    return numberByMarks(cell);
}

Cell ImportPlanner::pointCell(Cell cell, bool storedForm) const
{
    if (!cell.isText())
        return cell;
    // Plain digits ("12.50", "25"), nearly every price point of a sheet, are the user's own
    // form already where the user's locale reads plain decimals: nothing to read for them.
    if (m_plainDecimals) {
        const CellTextView view = cell.textView();
        if (view.encoding != TextEncoding::Utf16 && conv::isPlainDecimal(view.bytes(), view.size))
            return cell;
    }
    if (!storedForm) {
        // Text as a person typed it in the user's locale, kept as a price point typed into the
        // schedule is: in the user's own form ("7.36" becomes "7,36" in German, and "12,5"
        // under English, which only a comma decimal reads, "12.5").
        const QString text = cell.asText();
        const QString own = stored::pointText(text, m_locale);
        // An update keeps a text the catalogue would not read back ("25+", "12,50 €" under
        // English) as the number it read in it, in the user's form, as it keeps a list price.
        if (m_plan.action == ImportAction::UpdateExisting
            && !stored::readNumberOrLocal(own, m_locale)) {
            if (const std::optional<double> value = number(cell, false))
                return Cell(stored::shortestText(*value, m_locale));
        }
        return own == text ? cell : Cell(own);
    }
    const CellTextView view = cell.textView();
    const QByteArray spare =
        view.encoding == TextEncoding::Utf16 ? cell.asText().toLatin1() : QByteArray();
    const std::optional<double> stored = view.encoding == TextEncoding::Utf16
        ? conv::plainDecimal(spare.constData(), spare.size())
        : conv::plainDecimal(view.bytes(), view.size);
    if (!stored)
        return cell;
    const QString text = cell.asText();
    const QString own = stored::ownForm(text, *stored, m_locale);
    return own == text ? cell : Cell(own);
}

Cell ImportPlanner::nameCell(Cell name)
{
    // Only a text of more bytes (or units) than the limit can have more characters.
    if (name.textView().size <= MaxNameLength)
        return name;
    // Never half a character: an emoji cut in half would be written as "?", and a letter
    // without its accent mark, or a family emoji without its joiners, is another text.
    return Cell(celltext::leftWhole(name.asText(), MaxNameLength));
}

bool ImportPlanner::sameCutName(const Cell &before, const Cell &after) const
{
    const Cell cutBefore = nameCell(before);
    const Cell cutAfter = nameCell(after);
    const auto same = [this](const Cell &a, const Cell &b) {
        return sameValue(P::ProductName, a, b, m_locale, m_plainDecimals);
    };
    if (same(cutBefore, cutAfter) && (same(cutBefore, before) || same(cutAfter, after)))
        return true;
    // Cut by an earlier version at 75 units (74 before an emoji), perhaps inside a character.
    const QString kept = before.asText();
    const QString sheet = after.asText();
    return kept.size() >= MaxNameLength - 1 && kept.size() <= MaxNameLength
        && sheet.size() > kept.size() && sheet.startsWith(kept);
}

bool ImportPlanner::fitsPrice(double price)
{
    return std::fabs(price) <= double(std::numeric_limits<float>::max());
}

Cell ImportPlanner::newCell(int field, RowCells &cells)
{
    // The row's cells are not needed after this: a text moves into the plan as it is.
    Cell &cell = cells.cell[std::size_t(field)];
    if (field == P::ProductName)
        return cell.isBlank() ? Cell(MissingProductName) : nameCell(std::move(cell));
    if (field == P::Price) {
        const std::optional<double> price = number(cell, cells.storedForm[P::Price]);
        if (!price) {
            if (!cell.isBlank())
                ++m_plan.addedWithoutPrice;
            return Cell();
        }
        // Too large for the catalogue: an overflow, which the import reports as an error
        // reading the sheet, and the product comes without a price.
        if (!fitsPrice(*price)) {
            m_trap.record(VbError(ErrorNumber::Overflow, QStringLiteral("Overflow")));
            return Cell();
        }
        return Cell(float(*price));
    }
    if (cell.isBlank())
        return m_emptyText;
    if (P::isNumberField(field))
        return pointCell(std::move(cell), cells.storedForm[std::size_t(field)]);
    return std::move(cell);
}

void ImportPlanner::planNew(RowCells &cells)
{
    for (int field = 1; field <= P::FieldCount; ++field)
        m_plan.addedCells.push_back(newCell(field, cells));
    m_plan.addedSheetRows.push_back(m_row);
}

std::optional<Cell> ImportPlanner::updatedCell(int field, const RowCells &cells) const
{
    const Cell &cell = cells.cell[std::size_t(field)];
    if (!cells.mapped[std::size_t(field)] || cell.isBlank() || field == P::PartNumber)
        return std::nullopt;
    // An existing product's name is taken whole: the catalogue's own names may be longer than
    // an added product's (typed in the grid), and the program's own export must come back
    // without changing them. (One that equals the name cut as adding cuts it is unchanged.)
    if (field == P::ProductName)
        return cell;
    if (field == P::Price)
        return Cell(float(*number(cell, cells.storedForm[P::Price])));
    if (P::isNumberField(field))
        return pointCell(cell, cells.storedForm[std::size_t(field)]);
    return cell;
}

void ImportPlanner::planExisting(const RowCells &cells, int catalogueRow)
{
    ImportPlan::ChangedProduct product;
    for (int field = 1; field <= P::FieldCount; ++field) {
        std::optional<Cell> after = updatedCell(field, cells);
        if (!after)
            continue;
        const Cell &before = m_catalogue.get(catalogueRow, field);
        if (sameValue(field, before, *after, m_locale, m_plainDecimals))
            continue;
        // One of the two names cut as adding cuts it, the other whole, is the same name: a
        // product added from this sheet holds it cut, and a sheet made from an earlier add
        // (or from a program that cuts names so) holds the cut form of a longer name typed
        // since.
        if (field == P::ProductName && sameCutName(before, *after))
            continue;
        product.fields.push_back({ field, before, std::move(*after) });
    }
    if (product.fields.empty()) {
        ++m_plan.unchanged;
        return;
    }
    product.sheetRow = m_row;
    product.catalogueRow = catalogueRow;
    product.partNumber = cells.partNumber();
    m_plan.changed.push_back(std::move(product));
}

} // namespace tarnwick
