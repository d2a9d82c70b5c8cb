// How long the catalogue store takes at 1,000, 10,000 and 100,000 products, beside a floor:
// the fastest plain C++ doing the same work with the same advantages (one uninitialised
// buffer advised for large pages, rows reserved from a line count, a memchr split, the
// program's own number parser; the same safe save; keys folded once for the sort). Measured:
// ReadProds, WriteProds with the safe save, the start-up load (read, cut to Count, sort on the
// part number), closing (the save and freeing the catalogue), the header sort on the product
// name and a "Locate Product" pass that finds nothing. The table at the end lists the fastest
// repetition of each, in real time and in CPU time, and its ratio to the floor: run with
// --benchmark_repetitions=5; on a machine busy with other work the CPU-time ratios of the
// in-memory work (sort, search) are the steadier ones.
#include "floorcatalogue.h"
#include "generatedcatalogue.h"

#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"
#include "products/pricechange.h"
#include "products/priceladder.h"
#include "products/productcommands.h"
#include "products/productsearch.h"
#include "shell/cataloguelifecycle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <string>

namespace {

using namespace tarnwick;

/// Answers every box with OK; the benchmarks run without the "test" command line anyway.
class SilentPrompts : public IPrompts
{
public:
    int msgBox(const QString &, int, const QString &) override { return MsgResult::Ok; }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
};

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

/// One folder per catalogue size holding its generated "twdata.dat", made on first use.
struct Folder
{
    QTemporaryDir dir;
    SilentPrompts prompts;
    AppEnvironment environment { dir.path(), QString() };
    QString dataFile = QDir(dir.path()).filePath(QStringLiteral("twdata.dat"));
    QByteArray bytes;
};

Folder &folderFor(int products)
{
    static std::map<int, std::unique_ptr<Folder>> folders;
    std::unique_ptr<Folder> &folder = folders[products];
    if (!folder) {
        folder = std::make_unique<Folder>();
        folder->bytes = bench::generatedCatalogue(products);
        QFile file(folder->dataFile);
        if (!file.open(QIODevice::WriteOnly) || file.write(folder->bytes) != folder->bytes.size())
            std::fprintf(stderr, "the catalogue of %d products could not be written\n", products);
    }
    return *folder;
}

/// A module loaded as the program loads it at start-up.
std::unique_ptr<Module1> loadedModule(Folder &folder)
{
    auto module = std::make_unique<Module1>(folder.prompts, folder.environment, EnUs);
    module->DataFile = folder.dataFile;
    CatalogueLifecycle(*module, folder.prompts).load();
    return module;
}

void BM_ReadProds(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    bool complete = true;
    for (auto _ : state) {
        state.PauseTiming();
        auto catalogue = std::make_unique<Table>(1000, ProductRecord::FieldCount);
        Products products(*catalogue, folder.prompts, folder.environment, EnUs);
        state.ResumeTiming();
        benchmark::DoNotOptimize(products.ReadProds(folder.dataFile));
        state.PauseTiming();
        complete = complete && products.Count() == state.range(0);
        catalogue.reset();
        state.ResumeTiming();
    }
    if (!complete)
        state.SkipWithError("not every product was read");
}

void BM_FloorReadParse(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    const QByteArray path = QFile::encodeName(folder.dataFile);
    bool complete = true;
    for (auto _ : state) {
        state.PauseTiming();
        auto catalogue = std::make_unique<bench::FloorCatalogue>();
        state.ResumeTiming();
        complete = bench::floorRead(path.constData(), *catalogue) && complete;
        state.PauseTiming();
        complete = complete && catalogue->rows.size() == std::size_t(state.range(0));
        catalogue.reset();
        state.ResumeTiming();
    }
    if (!complete)
        state.SkipWithError("the floor did not read every product");
}

void BM_WriteProds(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    const std::unique_ptr<Module1> module = loadedModule(folder);
    bool saved = true;
    for (auto _ : state)
        saved = module->AllProducts().WriteProds(folder.dataFile).ok && saved;
    if (!saved)
        state.SkipWithError("the catalogue could not be saved");
}

void BM_FloorWriteFsync(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    bench::FloorCatalogue catalogue;
    bench::floorRead(QFile::encodeName(folder.dataFile).constData(), catalogue);
    const QByteArray path = QFile::encodeName(folder.dataFile + QStringLiteral(".floor"));
    // The first save has a previous file to keep, as every save of the program has.
    bool written = bench::floorWrite(path.constData(), catalogue);
    for (auto _ : state)
        written = bench::floorWrite(path.constData(), catalogue) && written;
    if (!written)
        state.SkipWithError("the floor could not write the file");
}

/// The start-up's catalogue work: size 1000 rows, ReadProds, cut to Count, sort on the part
/// number.
void BM_StartupLoad(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto module = std::make_unique<Module1>(folder.prompts, folder.environment, EnUs);
        module->DataFile = folder.dataFile;
        state.ResumeTiming();
        benchmark::DoNotOptimize(CatalogueLifecycle(*module, folder.prompts).load());
        state.PauseTiming();
        module.reset();
        state.ResumeTiming();
    }
}

/// The floor's start-up: its read, then its rows sorted on the part number.
void BM_FloorLoad(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    const QByteArray path = QFile::encodeName(folder.dataFile);
    bool complete = true;
    for (auto _ : state) {
        state.PauseTiming();
        auto catalogue = std::make_unique<bench::FloorCatalogue>();
        state.ResumeTiming();
        complete = bench::floorRead(path.constData(), *catalogue) && complete;
        bench::floorSortOn(*catalogue, 0);
        state.PauseTiming();
        catalogue.reset();
        state.ResumeTiming();
    }
    if (!complete)
        state.SkipWithError("the floor did not read every product");
}

/// The shut-down's catalogue work: the safe save, then the catalogue freed.
void BM_CloseSaveAndFree(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    bool saved = true;
    for (auto _ : state) {
        state.PauseTiming();
        std::unique_ptr<Module1> module = loadedModule(folder);
        state.ResumeTiming();
        saved = CatalogueLifecycle(*module, folder.prompts).save().ok && saved;
        module.reset();
    }
    if (!saved)
        state.SkipWithError("the catalogue could not be saved");
}

/// The floor's close: its safe save, then its catalogue freed.
void BM_FloorClose(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    const QByteArray source = QFile::encodeName(folder.dataFile);
    const QByteArray path = QFile::encodeName(folder.dataFile + QStringLiteral(".floor"));
    bool written = true;
    for (auto _ : state) {
        state.PauseTiming();
        auto catalogue = std::make_unique<bench::FloorCatalogue>();
        bench::floorRead(source.constData(), *catalogue);
        state.ResumeTiming();
        written = bench::floorWrite(path.constData(), *catalogue) && written;
        catalogue.reset();
    }
    if (!written)
        state.SkipWithError("the floor could not write the file");
}

void BM_HeaderSortProductName(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    const std::unique_ptr<Module1> module = loadedModule(folder);
    for (auto _ : state) {
        state.PauseTiming();
        ProductCommands::sortCatalogue(
            module->Catalogue(), module->AllProducts(), ProductRecord::PartNumber, EnUs);
        state.ResumeTiming();
        ProductCommands::sortCatalogue(
            module->Catalogue(), module->AllProducts(), ProductRecord::ProductName, EnUs);
    }
}

void BM_FloorSortNames(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    bench::FloorCatalogue catalogue;
    bench::floorRead(QFile::encodeName(folder.dataFile).constData(), catalogue);
    // Each pass starts, as the program's does, from the rows in part-number order.
    std::stable_sort(catalogue.rows.begin(), catalogue.rows.end(),
        [](const bench::FloorRow &a, const bench::FloorRow &b) {
            return a.fields[0] < b.fields[0];
        });
    const std::vector<bench::FloorRow> byPart = catalogue.rows;
    for (auto _ : state) {
        state.PauseTiming();
        catalogue.rows = byPart;
        state.ResumeTiming();
        bench::floorSortOn(catalogue, 1);
        benchmark::DoNotOptimize(catalogue.rows.data());
    }
}

void BM_LocateNoMatch(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    const std::unique_ptr<Module1> module = loadedModule(folder);
    for (auto _ : state) {
        ProductSearch search(folder.prompts);
        benchmark::DoNotOptimize(
            search.find(QStringLiteral("no such product"), -1, module->Catalogue(), EnUs));
    }
}

void BM_FloorSearch(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    bench::FloorCatalogue catalogue;
    bench::floorRead(QFile::encodeName(folder.dataFile).constData(), catalogue);
    for (auto _ : state)
        benchmark::DoNotOptimize(bench::floorSearch(catalogue, "NO SUCH PRODUCT"));
}

/// "Check Price Points": every product's points checked, the problems' texts made.
void BM_CheckPricePoints(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    const std::unique_ptr<Module1> module = loadedModule(folder);
    for (auto _ : state)
        benchmark::DoNotOptimize(PriceLadder::checkCatalogue(module->Catalogue(), EnUs));
}

/// "Change Prices" by 5 % for every product: the preview (its first 200 changes kept, the
/// rest counted) as each key typed works it out, and the whole plan OK applies.
void BM_ChangePrices(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    const std::unique_ptr<Module1> module = loadedModule(folder);
    std::vector<int> rows(std::size_t(module->Catalogue().rowCount()));
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = int(i) + 1;
    PriceChangeRule rule;
    rule.value = 5;
    const std::size_t keep = state.range(1) != 0 ? 200 : std::numeric_limits<std::size_t>::max();
    for (auto _ : state)
        benchmark::DoNotOptimize(PriceChange::plan(module->Catalogue(), rows, rule, EnUs, keep));
}

void sizes(benchmark::internal::Benchmark *b)
{
    b->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_ReadProds)->Apply(sizes);
BENCHMARK(BM_FloorReadParse)->Apply(sizes);
BENCHMARK(BM_WriteProds)->Apply(sizes);
BENCHMARK(BM_FloorWriteFsync)->Apply(sizes);
BENCHMARK(BM_StartupLoad)->Arg(5)->Apply(sizes);
BENCHMARK(BM_FloorLoad)->Apply(sizes);
BENCHMARK(BM_CloseSaveAndFree)->Apply(sizes);
BENCHMARK(BM_FloorClose)->Apply(sizes);
BENCHMARK(BM_HeaderSortProductName)->Apply(sizes);
BENCHMARK(BM_FloorSortNames)->Apply(sizes);
BENCHMARK(BM_LocateNoMatch)->Apply(sizes);
BENCHMARK(BM_FloorSearch)->Apply(sizes);
BENCHMARK(BM_CheckPricePoints)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ChangePrices)->Args({ 100000, 1 })->Args({ 100000, 0 })->Unit(benchmark::kMillisecond);

/// The fastest repetition of a benchmark, in real time and in CPU time (ms).
struct Fastest
{
    double real = 0;
    double cpu = 0;
};

/// Keeps the fastest repetition of every benchmark for the ratio table.
class FastestReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred)
                continue;
            const std::string key = run.run_name.function_name + "/" + run.run_name.args;
            const Fastest time { run.GetAdjustedRealTime(), run.GetAdjustedCPUTime() };
            auto [it, inserted] = fastest.emplace(key, time);
            if (!inserted) {
                it->second.real = std::min(it->second.real, time.real);
                it->second.cpu = std::min(it->second.cpu, time.cpu);
            }
        }
    }
    std::map<std::string, Fastest> fastest;
};

void printRatios(const std::map<std::string, Fastest> &fastest)
{
    struct Line
    {
        const char *work, *measured, *floor;
    };
    const Line lines[] = {
        { "ReadProds / floor read", "BM_ReadProds", "BM_FloorReadParse" },
        { "WriteProds (safe save) / floor safe save", "BM_WriteProds", "BM_FloorWriteFsync" },
        { "start-up load / floor read and sort", "BM_StartupLoad", "BM_FloorLoad" },
        { "close: save + free / floor save + free", "BM_CloseSaveAndFree", "BM_FloorClose" },
        { "header sort on Product Name / floor sort", "BM_HeaderSortProductName",
            "BM_FloorSortNames" },
        { "Locate Product, no match / floor search", "BM_LocateNoMatch", "BM_FloorSearch" },
    };
    constexpr double Goal = 1.5;
    std::printf("\n%-42s %7s %9s %9s %6s %9s %9s %6s %5s\n", "work (fastest repetition)", "size",
        "real ms", "floor", "ratio", "cpu ms", "floor", "ratio", "goal");
    for (const Line &line : lines) {
        for (const char *size : { "1000", "10000", "100000" }) {
            const auto measured = fastest.find(std::string(line.measured) + "/" + size);
            const auto floor = fastest.find(std::string(line.floor) + "/" + size);
            if (measured == fastest.end() || floor == fastest.end())
                continue;
            const Fastest &m = measured->second;
            const Fastest &f = floor->second;
            std::printf("%-42s %7s %9.2f %9.2f %5.2fx %9.2f %9.2f %5.2fx %4.1fx\n", line.work, size,
                m.real, f.real, m.real / f.real, m.cpu, f.cpu, m.cpu / f.cpu, Goal);
        }
    }
    const auto small = fastest.find("BM_StartupLoad/5");
    const auto large = fastest.find("BM_StartupLoad/100000");
    if (small != fastest.end() && large != fastest.end())
        std::printf("start-up extra time of 100000 products over 5: %.1f ms\n",
            large->second.real - small->second.real);
}

} // namespace

int main(int argc, char **argv)
{
    // Every block of 4 MB or more comes fresh from the system and goes back when freed, for
    // the store and the floor alike, as in a program that has just started: otherwise
    // whichever runs after a heap-hungry benchmark reuses its pages and skips the page faults.
    mallopt(M_MMAP_THRESHOLD, 4 * 1024 * 1024);
    // The start-up reads a large catalogue on a worker thread while the event loop runs.
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    FastestReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    printRatios(reporter.fastest);
    benchmark::Shutdown();
    return 0;
}
