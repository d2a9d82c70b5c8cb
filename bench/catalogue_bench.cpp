// How long the catalogue store takes at 1,000, 10,000 and 100,000 products, beside a floor of
// plain C++ that reads the same file into std::string_view fields and writes it back from
// one buffer with one fsync. Measured: ReadProds, WriteProds with the safe save, the start-up
// load (read, cut to Count, sort on the part number), closing (the save and freeing the
// catalogue), the header sort on the product name and a "Locate Product" pass that finds
// nothing. The table at the end lists the fastest repetition of each and its ratio to the
// floor: run with --benchmark_repetitions=5 on a busy machine.
#include "floorcatalogue.h"
#include "generatedcatalogue.h"

#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"
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
#include <cctype>
#include <cstdio>
#include <map>
#include <memory>
#include <numeric>
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
    bool written = true;
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

bool lessIgnoringCase(std::string_view a, std::string_view b)
{
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
        [](unsigned char x, unsigned char y) { return std::tolower(x) < std::tolower(y); });
}

void BM_FloorSortNames(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    bench::FloorCatalogue catalogue;
    bench::floorRead(QFile::encodeName(folder.dataFile).constData(), catalogue);
    std::vector<int> order(catalogue.rows.size());
    for (auto _ : state) {
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
            return lessIgnoringCase(
                catalogue.rows[std::size_t(a)][1], catalogue.rows[std::size_t(b)][1]);
        });
        benchmark::DoNotOptimize(order.data());
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

bool containsIgnoringCase(std::string_view text, std::string_view needle)
{
    return std::search(text.begin(), text.end(), needle.begin(), needle.end(),
               [](unsigned char x, unsigned char y) { return std::toupper(x) == y; })
        != text.end();
}

void BM_FloorSearch(benchmark::State &state)
{
    Folder &folder = folderFor(int(state.range(0)));
    bench::FloorCatalogue catalogue;
    bench::floorRead(QFile::encodeName(folder.dataFile).constData(), catalogue);
    const std::string_view needle = "NO SUCH PRODUCT";
    for (auto _ : state) {
        int found = -1;
        for (std::size_t row = 0; row < catalogue.rows.size() && found < 0; ++row) {
            if (containsIgnoringCase(catalogue.rows[row][0], needle)
                || containsIgnoringCase(catalogue.rows[row][1], needle))
                found = int(row);
        }
        benchmark::DoNotOptimize(found);
    }
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
BENCHMARK(BM_CloseSaveAndFree)->Apply(sizes);
BENCHMARK(BM_HeaderSortProductName)->Apply(sizes);
BENCHMARK(BM_FloorSortNames)->Apply(sizes);
BENCHMARK(BM_LocateNoMatch)->Apply(sizes);
BENCHMARK(BM_FloorSearch)->Apply(sizes);

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
            const double ms = run.GetAdjustedRealTime();
            auto [it, inserted] = fastest.emplace(key, ms);
            if (!inserted)
                it->second = std::min(it->second, ms);
        }
    }
    std::map<std::string, double> fastest;
};

void printRatios(const std::map<std::string, double> &fastest)
{
    struct Line
    {
        const char *work, *measured, *floor;
        double goal;
    };
    const Line lines[] = {
        { "ReadProds / floor read+parse", "BM_ReadProds", "BM_FloorReadParse", 2.0 },
        { "WriteProds (safe save) / floor write+fsync", "BM_WriteProds", "BM_FloorWriteFsync",
            2.0 },
        { "start-up load / floor read+parse", "BM_StartupLoad", "BM_FloorReadParse", 3.0 },
        { "close: save + free / floor write+fsync", "BM_CloseSaveAndFree", "BM_FloorWriteFsync",
            2.5 },
        { "header sort on Product Name / floor sort", "BM_HeaderSortProductName",
            "BM_FloorSortNames", 0.0 },
        { "Locate Product, no match / floor search", "BM_LocateNoMatch", "BM_FloorSearch", 0.0 },
    };
    std::printf("\n%-46s %7s %11s %11s %7s %6s\n", "work (fastest repetition)", "size", "ms",
        "floor ms", "ratio", "goal");
    for (const Line &line : lines) {
        for (const char *size : { "1000", "10000", "100000" }) {
            const auto measured = fastest.find(std::string(line.measured) + "/" + size);
            const auto floor = fastest.find(std::string(line.floor) + "/" + size);
            if (measured == fastest.end() || floor == fastest.end())
                continue;
            std::printf("%-46s %7s %11.2f %11.2f %6.2fx", line.work, size, measured->second,
                floor->second, measured->second / floor->second);
            if (line.goal > 0)
                std::printf(" %5.1fx", line.goal);
            std::printf("\n");
        }
    }
    const auto small = fastest.find("BM_StartupLoad/5");
    const auto large = fastest.find("BM_StartupLoad/100000");
    if (small != fastest.end() && large != fastest.end())
        std::printf("start-up extra time of 100000 products over 5: %.1f ms (goal 300 ms)\n",
            large->second - small->second);
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
