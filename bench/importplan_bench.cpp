// What planning an import before it changes anything costs: 10,000 rows into a catalogue of
// 10,000 products, read from tab-separated text in memory so only the import itself is timed.
//  - Adding new products: the plan and its one-step apply beside the row-by-row import that
//    puts each new row straight into the catalogue (the plain way to do the same work).
//  - Updating 10,000 existing products: the plan (every field compared, old and new kept) and
//    its apply beside a floor that looks each part number up, puts the mapped cells and sorts
//    on the part number, as the import does, without comparing or keeping anything.
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "core/conversions.h"
#include "exchange/columnmapping.h"
#include "exchange/importapply.h"
#include "exchange/importplan.h"
#include "exchange/textworkbook.h"
#include "exchange/workbookimport.h"
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

struct Catalogue
{
    QuietPrompts prompts;
    AppEnvironment environment { QDir::tempPath(), QString() };
    Table table;
    Products products { table, prompts, environment, EnUs };

    Catalogue()
    {
        fillCatalogue(table);
        products.setCount(Rows);
    }
};

void BM_AddRowByRow(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        Catalogue catalogue;
        state.ResumeTiming();
        WorkbookImport import(sheet("NEW"), catalogue.table, letters(), true, EnUs);
        import.runAll();
        finishImport(catalogue.table, catalogue.products, import.changes(), EnUs);
        benchmark::DoNotOptimize(catalogue.products.Count());
    }
}
BENCHMARK(BM_AddRowByRow)->Unit(benchmark::kMillisecond);

void BM_AddPlannedThenApplied(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        Catalogue catalogue;
        state.ResumeTiming();
        ImportPlanner planner(
            sheet("NEW"), catalogue.table, letters(), true, ImportAction::AddNew, EnUs);
        planner.runAll();
        applyImportPlan(planner.takePlan(), catalogue.table, catalogue.products, EnUs);
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
        ImportPlanner planner(
            sheet("OLD"), catalogue.table, letters(), true, ImportAction::UpdateExisting, EnUs);
        planner.runAll();
        const AppliedImport applied =
            applyImportPlan(planner.takePlan(), catalogue.table, catalogue.products, EnUs);
        benchmark::DoNotOptimize(applied.cells.size());
    }
}
BENCHMARK(BM_UpdatePlannedThenApplied)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
