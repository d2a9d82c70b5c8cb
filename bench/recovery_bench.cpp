// What keeping the recovery file costs at 1,000, 10,000 and 100,000 products. Two parts:
// on the user-interface thread, the snapshot of the catalogue (a copy of its cells, the texts
// shared) beside the floor of copying the same bytes with memcpy; on the worker thread, writing
// the recovery file safely beside the floor's one write and one fsync of the same catalogue.
// Only the first is ever felt by the user: it is the one pause a keystroke could meet.
#include "floorcatalogue.h"
#include "generatedcatalogue.h"

#include "catalogue/module1.h"
#include "catalogue/productrecord.h"
#include "catalogue/recoveryfile.h"
#include "catalogue/table.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"
#include "shell/cataloguelifecycle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

namespace {

using namespace tarnwick;

class QuietPrompts : public IPrompts
{
public:
    int msgBox(const QString &, int, const QString &) override { return MsgResult::Ok; }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
};

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

/// A folder with a generated catalogue of the given size, loaded as the program loads it.
struct Loaded
{
    QTemporaryDir dir;
    QuietPrompts prompts;
    AppEnvironment environment { dir.path(), QString() };
    std::unique_ptr<Module1> module;
    QString dataFile = QDir(dir.path()).filePath(QStringLiteral("twdata.dat"));
};

Loaded &loaded(int products)
{
    static std::map<int, std::unique_ptr<Loaded>> cache;
    std::unique_ptr<Loaded> &entry = cache[products];
    if (!entry) {
        entry = std::make_unique<Loaded>();
        const QByteArray bytes = bench::generatedCatalogue(products);
        QFile file(entry->dataFile);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            std::fprintf(stderr, "the catalogue of %d products could not be written\n", products);
        file.close();
        entry->module = std::make_unique<Module1>(entry->prompts, entry->environment, EnUs);
        entry->module->DataFile = entry->dataFile;
        CatalogueLifecycle(*entry->module, entry->prompts).load();
    }
    return *entry;
}

void BM_RecoverySnapshot(benchmark::State &state)
{
    const Table &catalogue = loaded(int(state.range(0))).module->Catalogue();
    for (auto _ : state) {
        auto copy = std::make_unique<Table>(catalogue);
        benchmark::DoNotOptimize(copy.get());
        state.PauseTiming();
        copy.reset();
        state.ResumeTiming();
    }
}

void BM_FloorSnapshotMemcpy(benchmark::State &state)
{
    // The same 16 bytes a cell, copied without looking at them.
    const std::size_t bytes = std::size_t(state.range(0)) * ProductRecord::FieldCount * 16;
    std::vector<char> source(bytes, 1);
    for (auto _ : state) {
        auto copy = std::unique_ptr<char[]>(new char[bytes]);
        std::memcpy(copy.get(), source.data(), bytes);
        benchmark::DoNotOptimize(copy.get());
        state.PauseTiming();
        copy.reset();
        state.ResumeTiming();
    }
}

void BM_RecoveryWrite(benchmark::State &state)
{
    Loaded &folder = loaded(int(state.range(0)));
    const QString path = recoveryFilePath(folder.dataFile);
    bool written = true;
    for (auto _ : state) {
        written = writeRecoveryFile(
                      path, folder.module->Catalogue(), folder.module->AllProducts().Count(), EnUs)
                      .ok
            && written;
    }
    if (!written)
        state.SkipWithError("the recovery file could not be written");
}

void BM_FloorWriteFsync(benchmark::State &state)
{
    Loaded &folder = loaded(int(state.range(0)));
    bench::FloorCatalogue catalogue;
    bench::floorRead(QFile::encodeName(folder.dataFile).constData(), catalogue);
    const QByteArray path = QFile::encodeName(folder.dataFile + QStringLiteral(".floor"));
    bool written = true;
    for (auto _ : state)
        written = bench::floorWrite(path.constData(), catalogue) && written;
    if (!written)
        state.SkipWithError("the floor could not write the file");
}

void sizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_RecoverySnapshot)->Apply(sizes);
BENCHMARK(BM_FloorSnapshotMemcpy)->Apply(sizes);
BENCHMARK(BM_RecoveryWrite)->Apply(sizes);
BENCHMARK(BM_FloorWriteFsync)->Apply(sizes);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
