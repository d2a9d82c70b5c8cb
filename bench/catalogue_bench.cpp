// How long the catalogue store takes for a catalogue of 100,000 products: ReadProds,
// WriteProds and the start-up sort on the part number.
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"

#include <QDir>
#include <QLocale>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace tarnwick;

constexpr int Products100k = 100000;

/// Answers every box with OK; the benchmarks run without the "test" command line anyway.
class SilentPrompts : public IPrompts
{
public:
    int msgBox(const QString &, int, const QString &) override { return MsgResult::Ok; }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
};

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

/// A catalogue of products with every kind of field filled, the part numbers out of order.
void fillCatalogue(Table &table, int rows)
{
    table.redim(rows, 15);
    for (int row = 1; row <= rows; ++row) {
        const int part = (row * 7919) % rows;
        table.put(row, 1, QStringLiteral("P-%1").arg(part, 6, 10, QLatin1Char('0')));
        table.put(row, 2, QStringLiteral("Product number %1 with a longer name").arg(part));
        table.put(row, 3, Cell(float(part % 1000) + 0.5f));
        table.put(row, 4, QStringLiteral("First line of notes\r\nsecond line of notes"));
        table.put(row, 5, QStringLiteral("Cable, manual"));
        for (int k = 0; k < 5; ++k) {
            table.put(row, 6 + 2 * k, QString::number((k + 1) * 10));
            table.put(row, 7 + 2 * k, QString::number(100 - k * 5));
        }
    }
}

struct Fixture
{
    QTemporaryDir folder;
    SilentPrompts prompts;
    AppEnvironment environment { folder.path(), QString() };
    QString dataFile = QDir(folder.path()).filePath(QStringLiteral("twdata.dat"));
};

void BM_ReadProds(benchmark::State &state)
{
    Fixture fixture;
    Table source;
    fillCatalogue(source, Products100k);
    Products writer(source, fixture.prompts, fixture.environment, EnUs);
    if (!writer.WriteProds(fixture.dataFile).ok)
        state.SkipWithError("the catalogue file could not be written");
    for (auto _ : state) {
        Table catalogue(1000, 15);
        Products products(catalogue, fixture.prompts, fixture.environment, EnUs);
        benchmark::DoNotOptimize(products.ReadProds(fixture.dataFile));
        if (products.Count() != Products100k)
            state.SkipWithError("not every product was read");
    }
    state.SetItemsProcessed(state.iterations() * Products100k);
}
BENCHMARK(BM_ReadProds)->Unit(benchmark::kMillisecond);

void BM_WriteProds(benchmark::State &state)
{
    Fixture fixture;
    Table catalogue;
    fillCatalogue(catalogue, Products100k);
    Products products(catalogue, fixture.prompts, fixture.environment, EnUs);
    for (auto _ : state) {
        if (!products.WriteProds(fixture.dataFile).ok)
            state.SkipWithError("the catalogue could not be saved");
    }
    state.SetItemsProcessed(state.iterations() * Products100k);
}
BENCHMARK(BM_WriteProds)->Unit(benchmark::kMillisecond);

void BM_SortRowsOnPartNumber(benchmark::State &state)
{
    Table unsorted;
    fillCatalogue(unsorted, Products100k);
    for (auto _ : state) {
        state.PauseTiming();
        Table catalogue = unsorted;
        state.ResumeTiming();
        catalogue.sortRows(1, Products100k, 1, Table::SortKind::Text, EnUs);
        benchmark::DoNotOptimize(catalogue.get(1, 1));
    }
    state.SetItemsProcessed(state.iterations() * Products100k);
}
BENCHMARK(BM_SortRowsOnPartNumber)->Unit(benchmark::kMillisecond);

void BM_SortRowsOnPrice(benchmark::State &state)
{
    Table unsorted;
    fillCatalogue(unsorted, Products100k);
    for (auto _ : state) {
        state.PauseTiming();
        Table catalogue = unsorted;
        state.ResumeTiming();
        catalogue.sortRows(1, Products100k, 3, Table::SortKind::Numeric, EnUs);
        benchmark::DoNotOptimize(catalogue.get(1, 1));
    }
    state.SetItemsProcessed(state.iterations() * Products100k);
}
BENCHMARK(BM_SortRowsOnPrice)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
