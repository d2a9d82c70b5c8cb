#include "exchange/workbookimport.h"

#include "catalogue/productrecord.h"
#include "core/conversions.h"
#include "exchange/columnmapping.h"
#include "products/productcommands.h"

namespace tarnwick {

namespace {

const QString MissingName = QStringLiteral("Missing Product Name");

/// Column number of a letter of the table: "A" is 0.
int columnOf(QChar letter)
{
    return letter.unicode() - 'A';
}

} // namespace

WorkbookImport::WorkbookImport(const IWorkbook &workbook, Table &catalogue, const QString &letters,
    bool firstRowHasHeaders, const QLocale &locale)
    : WorkbookImport(workbook, catalogue, catalogue, letters, firstRowHasHeaders, locale)
{
}

WorkbookImport::WorkbookImport(const IWorkbook &workbook, const Table &catalogue, Table &added,
    const QString &letters, bool firstRowHasHeaders, const QLocale &locale)
    : m_workbook(workbook), m_catalogue(added), m_letters(letters), m_locale(locale),
      m_row(firstRowHasHeaders ? 2 : 1)
{
    m_done = m_letters.size() != ColumnMapping::ListCount
        || ColumnMapping::isUnread(m_letters[ColumnMapping::PartNumberList]);
    if (&added != &catalogue && added.fieldCount() != ProductRecord::FieldCount)
        added.redim(0, ProductRecord::FieldCount);
    m_partNumbers.reserve(catalogue.rowCount());
    // From the last row up, so the first entry of a repeated part number wins.
    for (int row = catalogue.rowCount(); row >= 1; --row) {
        const Cell &part = catalogue.get(row, ProductRecord::PartNumber);
        if (part.isText()) {
            m_partNumbers.insert(part.asText(), row);
        }
    }
}

std::optional<QString> WorkbookImport::readCell(int listIndex)
{
    const QChar letter = m_letters[listIndex];
    if (ColumnMapping::isUnread(letter)) {
        return QString();
    }
    QString text;
    if (!m_trap.step([&] { text = m_workbook.cellText(columnOf(letter), m_row); })) {
        return std::nullopt;
    }
    return text;
}

QString WorkbookImport::cell(int listIndex)
{
    return readCell(listIndex).value_or(QString());
}

bool WorkbookImport::step()
{
    if (m_done) {
        return false;
    }
    const std::optional<QString> read = readCell(ColumnMapping::PartNumberList);
    if (!read) {
        // The row is passed over; a sheet that keeps failing ends the import instead of
        // running on for ever.
        ++m_row;
        m_done = ++m_unreadableRows >= MaxUnreadableRows;
        return !m_done;
    }
    m_unreadableRows = 0;
    const QString &partNumber = *read;
    if (partNumber.isEmpty()) {
        m_done = true;
        return false;
    }
    if (!m_partNumbers.contains(partNumber)) {
        addProduct(partNumber);
    }
    ++m_row;
    return true;
}

void WorkbookImport::runAll()
{
    while (step()) { }
}

void WorkbookImport::addProduct(const QString &partNumber)
{
    namespace P = ProductRecord;
    const int row = m_catalogue.rowCount() + 1;
    m_catalogue.insertRows(row);
    ++m_changes;
    m_partNumbers.insert(partNumber, row);
    m_catalogue.put(row, P::PartNumber, partNumber);
    QString name = cell(ColumnMapping::ProductNameList);
    if (name.isEmpty()) {
        name = MissingName;
    }
    m_catalogue.put(row, P::ProductName, name.left(MaxNameLength));
    for (int index = 2; index < ColumnMapping::ListCount; ++index) {
        const int field = ColumnMapping::catalogueField(index);
        const QString text = cell(index);
        if (field != P::Price) {
            m_catalogue.put(row, field, text);
        } else if (const auto price = conv::parseNumber(text, m_locale)) {
            m_catalogue.put(row, field, float(*price));
        }
    }
}

QString progressCaption(const QString &caption, int row)
{
    const QString wait = QStringLiteral("Please wait");
    return caption != wait ? wait : QStringLiteral("%1 products analyzed").arg(row);
}

std::optional<QString> resultMessage(int changes)
{
    if (changes == 0) {
        return std::nullopt;
    }
    return QStringLiteral("%1 changes have been made to the knowledge base.").arg(changes);
}

void finishImport(Table &catalogue, Products &products, int changes, const QLocale &locale)
{
    products.setCount(products.Count() + changes);
    ProductCommands::sortCatalogue(catalogue, products, ProductRecord::PartNumber, locale);
}

} // namespace tarnwick
