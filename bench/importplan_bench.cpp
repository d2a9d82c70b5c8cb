// What planning an import before it changes anything costs: 10,000 rows into a catalogue of
// 10,000 products, read from tab-separated text in memory so only the import itself is timed.
// The import runs as the program runs it: planned, turned into the catalogue's change and made
// one step of the history of changes (which keeps what undo needs).
//  - Adding new products beside a floor that looks each part number up, appends the new rows
//    cell by cell and sorts on the part number, without planning or keeping anything.
//  - Updating 10,000 existing products: the plan (every field compared, old and new kept) and
//    its step beside a floor that looks each part number up, puts the mapped cells and sorts
//    on the part number, as the import does, without comparing or keeping anything.
#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "commands/catalogueedits.h"
#include "commands/edithistory.h"
#include "core/conversions.h"
#include "exchange/columnmapping.h"
#include "exchange/importchanges.h"
#include "exchange/importplan.h"
#include "exchange/textworkbook.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"
#include "products/productcommands.h"

#include <QDir>
#include <QHash>
#include <QLocale>

#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>

namespace {

using namespace tarnwick;
namespace P = ProductRecord;

constexpr int Rows = 10000;
const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

class QuietPrompts : public IPrompts
{
public:
    int msgBox(const QString &, int, const QString &) override { return MsgResult::Ok; }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
};

/// A sheet of Rows products "<prefix>-00000" … with a name, a price, notes and a price point.
const TextWorkbook &sheet(const char *prefix)
{
    static std::map<std::string, std::unique_ptr<TextWorkbook>> sheets;
    std::unique_ptr<TextWorkbook> &made = sheets[prefix];
    if (!made) {
        QByteArray text = "Part Number\tProduct Name\tPrice\tNotes\tPrice Point 1\tPrice 1\r\n";
        for (int i = 0; i < Rows; ++i)
            text += QStringLiteral("%1-%2\tProduct %3\t%4.5\tNotes %3\t10\t%5.25\r\n")
                        .arg(QLatin1String(prefix))
                        .arg(i, 5, 10, QLatin1Char('0'))
                        .arg(i)
                        .arg(i % 500)
                        .arg(i % 400)
                        .toUtf8();
        made = std::make_unique<TextWorkbook>(text);
    }
    return *made;
}

QString letters()
{
    std::array<int, ColumnMapping::ListCount> positions;
    positions.fill(0);
    positions[0] = 0;
    positions[1] = 1;
    positions[3] = 3;
    positions[7] = 4;
    positions[2] = 5;
    positions[4] = 6;
    return ColumnMapping::columnLetters(positions);
}

/// Rows products "OLD-00000" …, the same names as the sheets and a price of 1.
void fillCatalogue(Table &table)
{
    table.redim(Rows, P::FieldCount);
    for (int row = 1; row <= Rows; ++row) {
        table.put(
            row, P::PartNumber, QStringLiteral("OLD-%1").arg(row - 1, 5, 10, QLatin1Char('0')));
        table.put(row, P::ProductName, QStringLiteral("Product %1").arg(row - 1));
        table.put(row, P::Price, 1.0f);
    }
}

/// The program's shared state over the catalogue, with its history of changes.
struct Catalogue
{
    QuietPrompts prompts;
    AppEnvironment environment { QDir::tempPath(), QString() };
    Module1 module { prompts, environment, EnUs };
    Table &table = module.Catalogue();
    Products &products = module.AllProducts();
    EditHistory history { module };

    Catalogue()
    {
        fillCatalogue(table);
        products.setCount(Rows);
    }

    /// The import as the import window carries it out: planned, then one step.
    void import(const TextWorkbook &sheet, ImportAction action)
    {
        ImportPlanner planner(sheet, table, letters(), true, action, EnUs);
        planner.runAll();
        CatalogueEdits::import(history, { 1, 0 }, importChanges(planner.takePlan(), table));
    }
};

void BM_AddFloor(benchmark::State &state)
{
    const TextWorkbook &rows = sheet("NEW");
    for (auto _ : state) {
        state.PauseTiming();
        Catalogue catalogue;
        state.ResumeTiming();
        Table &table = catalogue.table;
        QHash<QString, int> known;
        known.reserve(2 * Rows);
        for (int row = 1; row <= Rows; ++row)
            known.insert(table.get(row, P::PartNumber).asText(), row);
        table.insertRows(Rows + 1, Rows);
        int added = 0;
        for (int row = 2; row <= Rows + 1; ++row) {
            const QString part = rows.cellText(0, row);
            if (part.isEmpty() || known.contains(part))
                continue;
            const int at = Rows + ++added;
            known.insert(part, at);
            table.put(at, P::PartNumber, part);
            table.put(at, P::ProductName, rows.cellText(1, row));
            if (const auto price = conv::parseNumber(rows.cellText(2, row), EnUs))
                table.put(at, P::Price, float(*price));
            table.put(at, P::Notes, rows.cellText(3, row));
            table.put(at, P::PricePoint1, rows.cellText(4, row));
            table.put(at, P::Price1, rows.cellText(5, row));
        }
        catalogue.products.setCount(Rows + added);
        ProductCommands::sortCatalogue(table, catalogue.products, P::PartNumber, EnUs);
        benchmark::DoNotOptimize(table.generation());
    }
}
BENCHMARK(BM_AddFloor)->Unit(benchmark::kMillisecond);

void BM_AddPlannedThenApplied(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        Catalogue catalogue;
        state.ResumeTiming();
        catalogue.import(sheet("NEW"), ImportAction::AddNew);
        benchmark::DoNotOptimize(catalogue.products.Count());
    }
}
BENCHMARK(BM_AddPlannedThenApplied)->Unit(benchmark::kMillisecond);

void BM_UpdatePricesFloor(benchmark::State &state)
{
    const TextWorkbook &prices = sheet("OLD");
    for (auto _ : state) {
        state.PauseTiming();
        Catalogue catalogue;
        state.ResumeTiming();
        QHash<QString, int> rows;
        rows.reserve(Rows);
        for (int row = 1; row <= Rows; ++row)
            rows.insert(catalogue.table.get(row, P::PartNumber).asText(), row);
        for (int row = 2; row <= Rows + 1; ++row) {
            const int at = rows.value(prices.cellText(0, row));
            if (!at)
                continue;
            catalogue.table.put(at, P::ProductName, prices.cellText(1, row));
            if (const auto price = conv::parseNumber(prices.cellText(2, row), EnUs))
                catalogue.table.put(at, P::Price, float(*price));
            catalogue.table.put(at, P::Notes, prices.cellText(3, row));
            catalogue.table.put(at, P::PricePoint1, prices.cellText(4, row));
            catalogue.table.put(at, P::Price1, prices.cellText(5, row));
        }
        ProductCommands::sortCatalogue(catalogue.table, catalogue.products, P::PartNumber, EnUs);
        benchmark::DoNotOptimize(catalogue.table.generation());
    }
}
BENCHMARK(BM_UpdatePricesFloor)->Unit(benchmark::kMillisecond);

void BM_UpdatePlannedThenApplied(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        Catalogue catalogue;
        state.ResumeTiming();
        catalogue.import(sheet("OLD"), ImportAction::UpdateExisting);
        benchmark::DoNotOptimize(catalogue.history.count());
    }
}
BENCHMARK(BM_UpdatePlannedThenApplied)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
