// The catalogue reader on any bytes a "twdata.dat" could hold.
#include "fuzzentries.h"
#include "noprompts.h"

#include "catalogue/cataloguereader.h"
#include "catalogue/cataloguewriter.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "core/cell.h"
#include "core/vberror.h"
#include "platform/appenvironment.h"
#include "products/productcommands.h"

#include <QLocale>

#include <cmath>

namespace tarnwick::fuzzing {

namespace {

/// The error numbers a damaged catalogue file gives: a file that ends inside a product, and a
/// line without a field end.
constexpr int FileEndsEarly = ErrorNumber::InputPastEndOfFile;
constexpr int LineWithoutFieldEnd = 5;

struct Reading
{
    Table table;
    CatalogueReadResult result;
};

/// Reads the bytes into a table of the start-up's three empty rows; with observed, through an
/// observer, which makes the reader take the general way for every product.
Reading readCatalogue(const QByteArray &bytes, const QLocale &locale, bool observed)
{
    Reading reading { Table(3, ProductRecord::FieldCount), {} };
    CatalogueReader reader(reading.table, locale);
    CatalogueReader::Observer observer;
    if (observed) {
        observer.recordStarted = [](const QString &) {};
    }
    reading.result = reader.read(bytes, observer);
    return reading;
}

QString describeCell(const Cell &cell)
{
    if (cell.isText()) {
        return QStringLiteral("text ") + cell.asText();
    }
    return QStringLiteral("kind %1 %2").arg(int(cell.kind())).arg(cell.asNumber(), 0, 'g', 17);
}

/// Equal cells: the same kind and value, a number that is not a number counting as equal to
/// itself.
bool sameCell(const Cell &a, const Cell &b)
{
    return a == b
        || (a.kind() == b.kind() && a.isNumber() && std::isnan(a.asNumber())
            && std::isnan(b.asNumber()));
}

bool sameTables(const Table &a, const Table &b)
{
    if (a.rowCount() != b.rowCount() || a.fieldCount() != b.fieldCount()) {
        return false;
    }
    for (int row = 1; row <= a.rowCount(); ++row) {
        for (int field = 1; field <= a.fieldCount(); ++field) {
            if (!sameCell(a.get(row, field), b.get(row, field))) {
                return false;
            }
        }
    }
    return true;
}

void compareReadings(const Reading &quick, const Reading &general, QStringList &broken)
{
    const CatalogueReadResult &a = quick.result;
    const CatalogueReadResult &b = general.result;
    if (a.status != b.status || a.errorNumber != b.errorNumber || a.detail != b.detail
        || a.rowsRead != b.rowsRead || a.unreadNumbers.size() != b.unreadNumbers.size()) {
        broken << QStringLiteral("the quick and the general reading give other results");
        return;
    }
    for (qsizetype i = 0; i < a.unreadNumbers.size(); ++i) {
        const auto &x = a.unreadNumbers[i];
        const auto &y = b.unreadNumbers[i];
        if (x.partNumber != y.partNumber || x.field != y.field || x.text != y.text) {
            broken << QStringLiteral("the quick and the general reading list other numbers");
            return;
        }
    }
    if (!sameTables(quick.table, general.table)) {
        broken << QStringLiteral("the quick and the general reading give other tables");
    }
}

/// The part numbers of the table's rows, in order.
QStringList partNumbers(const Table &table)
{
    QStringList parts;
    for (int row = 1; row <= table.rowCount(); ++row) {
        parts << describeCell(table.get(row, ProductRecord::PartNumber));
    }
    return parts;
}

/// Cuts the table to the products read and sorts it on the part number, as the start does;
/// the sort keeps every row, and sorting again changes nothing.
void sortAsTheStartDoes(
    Table &table, Products &products, const QLocale &locale, QStringList &broken)
{
    QStringList before = partNumbers(table).mid(0, products.Count());
    ProductCommands::sortCatalogue(table, products, ProductRecord::PartNumber, locale);
    QStringList after = partNumbers(table);
    before.sort();
    after.sort();
    if (before != after) {
        broken << QStringLiteral("the sort did not keep the products read");
    }
    const Table sorted = table;
    ProductCommands::sortCatalogue(table, products, ProductRecord::PartNumber, locale);
    if (!sameTables(sorted, table)) {
        broken << QStringLiteral("sorting the sorted catalogue moved rows");
    }
}

void checkResult(const Reading &reading, QStringList &broken)
{
    const CatalogueReadResult &result = reading.result;
    if (result.status == CatalogueReadResult::Status::Missing) {
        broken << QStringLiteral("bytes that were read count as a missing file");
    }
    if (result.status == CatalogueReadResult::Status::Failed && result.errorNumber != FileEndsEarly
        && result.errorNumber != LineWithoutFieldEnd) {
        broken << QStringLiteral("the reading failed with error %1: %2")
                      .arg(result.errorNumber)
                      .arg(result.detail);
    }
    if (result.status == CatalogueReadResult::Status::Ok && result.errorNumber != 0) {
        broken << QStringLiteral("a whole reading has an error number");
    }
    if (result.rowsRead < 0 || result.rowsRead > reading.table.rowCount()) {
        broken << QStringLiteral("%1 rows read into a table of %2")
                      .arg(result.rowsRead)
                      .arg(reading.table.rowCount());
    }
    if (reading.table.fieldCount() != ProductRecord::FieldCount) {
        broken << QStringLiteral("the table has %1 fields").arg(reading.table.fieldCount());
    }
}

} // namespace

Verdict catalogueReader(QByteArrayView input)
{
    static const QLocale English(QLocale::English, QLocale::UnitedStates);
    static const QLocale German(QLocale::German, QLocale::Germany);
    const QByteArray bytes = input.toByteArray();
    Verdict verdict;
    Reading quick = readCatalogue(bytes, English, false);
    const Reading general = readCatalogue(bytes, English, true);
    checkResult(quick, verdict.broken);
    compareReadings(quick, general, verdict.broken);
    // Numbers in the user's own form, which only the general way reads.
    checkResult(readCatalogue(bytes, German, false), verdict.broken);

    // Sorted as the start does, written back as the close does and read again.
    NoPrompts prompts;
    const AppEnvironment environment { QString(), QString() };
    Products products(quick.table, prompts, environment, English);
    if (quick.result.status == CatalogueReadResult::Status::Ok) {
        products.setCount(quick.result.rowsRead);
    }
    sortAsTheStartDoes(quick.table, products, English, verdict.broken);
    const CatalogueFileBytes written = catalogueFileBytes(quick.table, English, products.Count());
    checkResult(readCatalogue(written.bytes, English, false), verdict.broken);

    verdict.outcome = quick.result.status == CatalogueReadResult::Status::Ok
        ? QStringLiteral("read")
        : QStringLiteral("failed");
    return verdict;
}

} // namespace tarnwick::fuzzing
