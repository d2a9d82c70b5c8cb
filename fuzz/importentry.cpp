// The import of a worksheet into the catalogue, with any column letter table.
#include "fuzzentries.h"
#include "noprompts.h"

#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "exchange/textworkbook.h"
#include "exchange/workbookimport.h"
#include "platform/appenvironment.h"

#include <QLocale>
#include <QSet>

namespace tarnwick::fuzzing {

namespace {

namespace P = ProductRecord;

/// The catalogue the worksheet is imported into: two products and one whose part number is a
/// number, which the import's index does not hold.
Table startingCatalogue()
{
    Table catalogue(3, P::FieldCount);
    catalogue.put(1, P::PartNumber, QStringLiteral("P0001"));
    catalogue.put(1, P::ProductName, QStringLiteral("Ball valve"));
    catalogue.put(1, P::Price, 12.5f);
    catalogue.put(2, P::PartNumber, QStringLiteral("p0002"));
    catalogue.put(2, P::ProductName, QStringLiteral("Elbow"));
    catalogue.put(3, P::PartNumber, 1234);
    return catalogue;
}

/// The rows the import added must be new products with a name of at most 75 characters, a
/// price that is a number or empty, and every other field a text.
void checkAddedRows(const Table &catalogue, int firstAdded, QStringList &broken)
{
    QSet<QString> parts;
    for (int row = 1; row < firstAdded; ++row) {
        const Cell &part = catalogue.get(row, P::PartNumber);
        if (part.isText()) {
            parts.insert(part.asText());
        }
    }
    for (int row = firstAdded; row <= catalogue.rowCount(); ++row) {
        const Cell &part = catalogue.get(row, P::PartNumber);
        if (!part.isText() || part.asText().isEmpty() || parts.contains(part.asText())) {
            broken << QStringLiteral("row %1 was added for a part number the catalogue holds or "
                                     "for none")
                          .arg(row);
            return;
        }
        parts.insert(part.asText());
        const QString name = catalogue.get(row, P::ProductName).asText();
        if (name.isEmpty() || name.size() > WorkbookImport::MaxNameLength) {
            broken << QStringLiteral("row %1 was added with the name \"%2\"").arg(row).arg(name);
        }
        for (int field = 1; field <= P::FieldCount; ++field) {
            const Cell &cell = catalogue.get(row, field);
            const bool fits = field == P::Price ? cell.isEmpty() || cell.isNumber() : cell.isText();
            if (!fits) {
                broken << QStringLiteral("row %1 was added with field %2 of kind %3")
                              .arg(row)
                              .arg(field)
                              .arg(int(cell.kind()));
            }
        }
    }
}

} // namespace

Verdict workbookImport(QByteArrayView input)
{
    static const QLocale English(QLocale::English, QLocale::UnitedStates);
    const qsizetype lineEnd = input.indexOf('\n');
    const QByteArrayView settings = lineEnd < 0 ? input : input.first(lineEnd);
    const QByteArrayView sheet = lineEnd < 0 ? QByteArrayView() : input.sliced(lineEnd + 1);
    const bool headers = settings.startsWith('1');
    const QString letters =
        QString::fromLatin1(settings.sliced(std::min<qsizetype>(1, settings.size())));
    const TextWorkbook workbook(sheet.toByteArray());

    Verdict verdict;
    Table catalogue = startingCatalogue();
    const int before = catalogue.rowCount();
    WorkbookImport import(workbook, catalogue, letters, headers, English);
    import.runAll();
    if (import.step()) {
        verdict.broken << QStringLiteral("the import goes on after it ended");
    }
    if (catalogue.rowCount() != before + import.changes()) {
        verdict.broken << QStringLiteral("%1 products added, %2 rows more")
                              .arg(import.changes())
                              .arg(catalogue.rowCount() - before);
    }
    checkAddedRows(catalogue, before + 1, verdict.broken);

    NoPrompts prompts;
    const AppEnvironment environment { QString(), QString() };
    Products products(catalogue, prompts, environment, English);
    products.setCount(before);
    finishImport(catalogue, products, import.changes(), English);
    if (products.Count() != before + import.changes() || catalogue.rowCount() != products.Count()) {
        verdict.broken << QStringLiteral("after the import the count is %1 for %2 rows")
                              .arg(products.Count())
                              .arg(catalogue.rowCount());
    }
    if (prompts.shown() != 0) {
        verdict.broken << QStringLiteral("the import asked something");
    }
    verdict.outcome =
        import.changes() > 0 ? QStringLiteral("added") : QStringLiteral("nothing added");
    return verdict;
}

} // namespace tarnwick::fuzzing
