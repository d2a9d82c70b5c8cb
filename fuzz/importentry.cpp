// The import of a worksheet into the catalogue, with any column letter table, as the program
// carries it out: planned, then made one step of the history of changes, which must take back
// exactly what it did.
#include "fuzzentries.h"
#include "noprompts.h"

#include "catalogue/cataloguewriter.h"
#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "commands/catalogueedits.h"
#include "commands/edithistory.h"
#include "exchange/importchanges.h"
#include "exchange/importplan.h"
#include "exchange/textworkbook.h"
#include "platform/appenvironment.h"

#include <QLocale>
#include <QSet>

namespace tarnwick::fuzzing {

namespace {

namespace P = ProductRecord;

const QLocale English(QLocale::English, QLocale::UnitedStates);
// Its numbers written the other way round: a sheet's decimal mark may be either.
const QLocale German(QLocale::German, QLocale::Germany);

/// The catalogue the worksheet is imported into: three products, one of them with a part number
/// the sample sheets hold, and one whose part number is a number, which the import's index does
/// not hold.
Table startingCatalogue()
{
    Table catalogue(4, P::FieldCount);
    catalogue.put(1, P::PartNumber, QStringLiteral("P0001"));
    catalogue.put(1, P::ProductName, QStringLiteral("Ball valve"));
    catalogue.put(1, P::Price, 12.5f);
    catalogue.put(2, P::PartNumber, QStringLiteral("p0002"));
    catalogue.put(2, P::ProductName, QStringLiteral("Elbow"));
    catalogue.put(3, P::PartNumber, 1234);
    catalogue.put(4, P::PartNumber, QStringLiteral("OLD-1"));
    catalogue.put(4, P::ProductName, QStringLiteral("Old name"));
    return catalogue;
}

/// The products an import adds must be new products with a name of at most 75 characters, a
/// price that is a number or empty, and every other field a text.
void checkAddedRows(const Table &catalogue, const Table &added, QStringList &broken)
{
    QSet<QString> parts;
    for (int row = 1; row <= catalogue.rowCount(); ++row) {
        const Cell &part = catalogue.get(row, P::PartNumber);
        if (part.isText())
            parts.insert(part.asText());
    }
    for (int row = 1; row <= added.rowCount(); ++row) {
        const Cell &part = added.get(row, P::PartNumber);
        if (!part.isText() || part.asText().isEmpty() || parts.contains(part.asText())) {
            broken << QStringLiteral("new product %1 has a part number the catalogue holds or "
                                     "none")
                          .arg(row);
            return;
        }
        parts.insert(part.asText());
        const QString name = added.get(row, P::ProductName).asText();
        if (name.isEmpty() || name.size() > ImportPlanner::MaxNameLength)
            broken << QStringLiteral("new product %1 has the name \"%2\"").arg(row).arg(name);
        for (int field = 1; field <= P::FieldCount; ++field) {
            const Cell &cell = added.get(row, field);
            const bool fits = field == P::Price ? cell.isEmpty() || cell.isNumber() : cell.isText();
            if (!fits) {
                broken << QStringLiteral("new product %1 has field %2 of kind %3")
                              .arg(row)
                              .arg(field)
                              .arg(int(cell.kind()));
            }
        }
    }
}

/// A changed field must be a field of a product the catalogue holds, with its old value as the
/// catalogue holds it; adding changes no product.
void checkChangedFields(
    const Table &catalogue, const ImportPlan &plan, ImportAction action, QStringList &broken)
{
    if (action == ImportAction::AddNew && !plan.changed.empty())
        broken << QStringLiteral("adding changed %1 products").arg(plan.changed.size());
    for (const ImportPlan::ChangedProduct &product : plan.changed) {
        const int row = product.catalogueRow;
        if (row < 1 || row > catalogue.rowCount()
            || catalogue.get(row, P::PartNumber) != Cell(product.partNumber)) {
            broken
                << QStringLiteral("a change of %1 is at row %2").arg(product.partNumber).arg(row);
            continue;
        }
        for (const ImportPlan::FieldChange &change : product.fields) {
            if (change.field < 1 || change.field > P::FieldCount
                || catalogue.get(row, change.field) != change.before) {
                broken << QStringLiteral("the change of field %1 of %2 starts from another value")
                              .arg(change.field)
                              .arg(product.partNumber);
            }
        }
    }
}

/// Plans the import, applies it as one step of a history, and undoes and redoes it. Returns the
/// number of products the plan added.
int importOnce(const TextWorkbook &workbook, const QString &letters, bool headers,
    ImportAction action, const QLocale &locale, QStringList &broken)
{
    NoPrompts prompts;
    const AppEnvironment environment { QString(), QString() };
    Module1 module(prompts, environment, locale);
    Table &catalogue = module.Catalogue();
    catalogue = startingCatalogue();
    const int before = catalogue.rowCount();
    module.AllProducts().setCount(before);
    EditHistory history(module);
    const QByteArray bytesBefore = catalogueFileBytes(catalogue, locale, before).bytes;

    ImportPlanner planner(workbook, catalogue, letters, headers, action, locale);
    planner.runAll();
    if (planner.step())
        broken << QStringLiteral("the import goes on after it ended");
    ImportPlan plan = planner.takePlan();
    checkChangedFields(catalogue, plan, action, broken);
    const int added = plan.addedCount();
    ProductChanges changes = importChanges(std::move(plan), catalogue);
    if (changes.added.rowCount() != added)
        broken << QStringLiteral("%1 products planned, %2 handed over")
                      .arg(added)
                      .arg(changes.added.rowCount());
    checkAddedRows(catalogue, changes.added, broken);

    const bool stepped = CatalogueEdits::import(history, {}, std::move(changes));
    const qint32 count = module.AllProducts().Count();
    if (count != before + added || catalogue.rowCount() != count) {
        broken << QStringLiteral("after the import the count is %1 for %2 rows")
                      .arg(count)
                      .arg(catalogue.rowCount());
    }
    if (history.count() != (stepped ? 1 : 0))
        broken << QStringLiteral("the import made %1 steps").arg(history.count());
    if (stepped) {
        const QByteArray bytesAfter = catalogueFileBytes(catalogue, locale, count).bytes;
        history.undo();
        if (catalogueFileBytes(catalogue, locale, module.AllProducts().Count()).bytes
            != bytesBefore)
            broken << QStringLiteral("undo does not give back the catalogue");
        history.redo();
        if (catalogueFileBytes(catalogue, locale, module.AllProducts().Count()).bytes != bytesAfter)
            broken << QStringLiteral("redo does not give the import again");
    }
    if (prompts.shown() != 0)
        broken << QStringLiteral("the import asked something");
    return added;
}

} // namespace

Verdict workbookImport(QByteArrayView input)
{
    const qsizetype lineEnd = input.indexOf('\n');
    const QByteArrayView settings = lineEnd < 0 ? input : input.first(lineEnd);
    const QByteArrayView sheet = lineEnd < 0 ? QByteArrayView() : input.sliced(lineEnd + 1);
    const bool headers = settings.startsWith('1');
    const QString letters =
        QString::fromLatin1(settings.sliced(std::min<qsizetype>(1, settings.size())));
    const TextWorkbook workbook(sheet.toByteArray());

    Verdict verdict;
    const int added =
        importOnce(workbook, letters, headers, ImportAction::AddNew, English, verdict.broken);
    importOnce(workbook, letters, headers, ImportAction::UpdateExisting, English, verdict.broken);
    importOnce(workbook, letters, headers, ImportAction::UpdateExisting, German, verdict.broken);
    verdict.outcome = added > 0 ? QStringLiteral("added") : QStringLiteral("nothing added");
    return verdict;
}

} // namespace tarnwick::fuzzing
