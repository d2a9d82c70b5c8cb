// Undo and redo at 100,000 products: "Delete All", the header sort on the product name, an
// import of 100,000 new products (into the 100,000) and a supplier's sheet imported with
// "Update existing products" (every product at a new list price, and 100,000 new products),
// planned and applied as the import window does it, each undone and redone through the history
// of changes. Beside them a floor of plain C++ doing the same moves on rows of
// std::string_view: swapping two vectors of rows, and putting rows in the order of a
// permutation. The goal is 300 ms for each undo and each redo. BM_HistoryMemory reports what
// the history keeps after a header sort and a "Delete All" beyond the rows it removed (goal:
// at most 1 MB) in its counters.
#include "floorcatalogue.h"
#include "generatedcatalogue.h"

#include "catalogue/module1.h"
#include "catalogue/productchanges.h"
#include "catalogue/productrecord.h"
#include "catalogue/products.h"
#include "commands/catalogueedits.h"
#include "commands/edithistory.h"
#include "exchange/columnmapping.h"
#include "exchange/importchanges.h"
#include "exchange/importplan.h"
#include "exchange/textworkbook.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"
#include "shell/cataloguelifecycle.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <map>
#include <memory>
#include <numeric>
#include <random>

namespace {

using namespace tarnwick;

class QuietPrompts : public IPrompts
{
public:
    int msgBox(const QString &, int, const QString &) override { return MsgResult::Ok; }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
};

const QLocale UsEnglish(QLocale::English, QLocale::UnitedStates);

/// A folder holding a generated catalogue of some size, made once per run.
struct HistoryFolder
{
    explicit HistoryFolder(int products)
    {
        dataFile = QDir(dir.path()).filePath(QStringLiteral("twdata.dat"));
        bench::writeGeneratedCatalogue(QFile::encodeName(dataFile).constData(), products);
    }
    QTemporaryDir dir;
    QuietPrompts prompts;
    AppEnvironment environment { dir.path(), QString() };
    QString dataFile;
};

HistoryFolder &historyFolder(int products)
{
    static std::map<int, std::unique_ptr<HistoryFolder>> folders;
    auto &folder = folders[products];
    if (!folder)
        folder = std::make_unique<HistoryFolder>(products);
    return *folder;
}

/// The catalogue loaded as at start-up, with a history of changes over it.
struct Session
{
    explicit Session(int products) : folder(historyFolder(products))
    {
        module = std::make_unique<Module1>(folder.prompts, folder.environment, UsEnglish);
        module->DataFile = folder.dataFile;
        CatalogueLifecycle(*module, folder.prompts).load();
        history = std::make_unique<EditHistory>(*module);
    }
    HistoryFolder &folder;
    std::unique_ptr<Module1> module;
    std::unique_ptr<EditHistory> history;
};

/// products new products: the generated ones under part numbers the catalogue does not hold.
ProductChanges newProducts(int products)
{
    HistoryFolder &folder = historyFolder(products);
    ProductChanges changes;
    Products reader(changes.added, folder.prompts, folder.environment, UsEnglish);
    changes.added.redim(1000, ProductRecord::FieldCount);
    reader.ReadProds(folder.dataFile);
    changes.added.redimPreserve(reader.Count(), ProductRecord::FieldCount);
    for (int row = 1; row <= changes.added.rowCount(); ++row)
        changes.added.put(row, ProductRecord::PartNumber,
            QStringLiteral("NEW-") + changes.added.get(row, ProductRecord::PartNumber).asText());
    return changes;
}

/// A supplier's sheet for the catalogue: part number, name and list price of every product at
/// a new price, then as many new products.
QByteArray supplierSheet(const Table &catalogue)
{
    QByteArray text = "Part Number\tProduct Name\tPrice\r\n";
    for (const char *prefix : { "", "NEW-" }) {
        for (int row = 1; row <= catalogue.rowCount(); ++row) {
            text += prefix;
            text += catalogue.get(row, ProductRecord::PartNumber).asText().toUtf8();
            text += "\tProduct " + QByteArray::number(row) + '\t' + QByteArray::number(row % 900)
                + ".25\r\n";
        }
    }
    return text;
}

/// Part number A, name B, list price C.
QString supplierLetters()
{
    std::array<int, ColumnMapping::ListCount> positions;
    positions.fill(0);
    positions[0] = 0;
    positions[1] = 1;
    positions[3] = 3;
    return ColumnMapping::columnLetters(positions);
}

/// "Update existing products" from the supplier's sheet: planned, then applied as one step.
void importSupplierSheet(Session &session)
{
    const Table &catalogue = session.module->Catalogue();
    const TextWorkbook sheet(supplierSheet(catalogue));
    ImportPlanner planner(
        sheet, catalogue, supplierLetters(), true, ImportAction::UpdateExisting, UsEnglish);
    planner.runAll();
    CatalogueEdits::import(
        *session.history, { 1, 0 }, importChanges(planner.takePlan(), catalogue));
}

enum class Step { DeleteAll, Sort, Import, Update };

void makeStep(Session &session, Step step, int products)
{
    switch (step) {
    case Step::DeleteAll:
        CatalogueEdits::deleteAll(*session.history, { 1, 0 });
        break;
    case Step::Sort:
        CatalogueEdits::sort(*session.history, { 1, 0 }, ProductRecord::ProductName);
        break;
    case Step::Import:
        CatalogueEdits::import(*session.history, { 1, 0 }, newProducts(products));
        break;
    case Step::Update:
        importSupplierSheet(session);
        break;
    }
}

/// Times the undo (redo: false) or the redo of one step, the other direction untimed.
void timeStep(benchmark::State &state, Step step, bool redo)
{
    const int products = int(state.range(0));
    Session session(products);
    makeStep(session, step, products);
    const qint32 after = session.module->AllProducts().Count();
    for (auto _ : state) {
        if (redo) {
            state.PauseTiming();
            session.history->undo();
            state.ResumeTiming();
            session.history->redo();
        } else {
            session.history->undo();
            state.PauseTiming();
            session.history->redo();
            state.ResumeTiming();
        }
    }
    if (session.module->AllProducts().Count() != after)
        state.SkipWithError("the step did not come back whole");
}

void BM_UndoDeleteAll(benchmark::State &state)
{
    timeStep(state, Step::DeleteAll, false);
}
void BM_RedoDeleteAll(benchmark::State &state)
{
    timeStep(state, Step::DeleteAll, true);
}
void BM_UndoHeaderSort(benchmark::State &state)
{
    timeStep(state, Step::Sort, false);
}
void BM_RedoHeaderSort(benchmark::State &state)
{
    timeStep(state, Step::Sort, true);
}
void BM_UndoImport(benchmark::State &state)
{
    timeStep(state, Step::Import, false);
}
void BM_RedoImport(benchmark::State &state)
{
    timeStep(state, Step::Import, true);
}
void BM_UndoUpdateImport(benchmark::State &state)
{
    timeStep(state, Step::Update, false);
}
void BM_RedoUpdateImport(benchmark::State &state)
{
    timeStep(state, Step::Update, true);
}

using FloorRows = std::vector<std::array<std::string_view, 15>>;

FloorRows floorRows(int products, int copies)
{
    HistoryFolder &folder = historyFolder(products);
    static std::map<int, std::unique_ptr<bench::FloorCatalogue>> read;
    auto &catalogue = read[products];
    if (!catalogue) {
        catalogue = std::make_unique<bench::FloorCatalogue>();
        bench::floorRead(QFile::encodeName(folder.dataFile).constData(), *catalogue);
    }
    FloorRows rows;
    for (int k = 0; k < copies; ++k)
        rows.insert(rows.end(), catalogue->rows.begin(), catalogue->rows.end());
    return rows;
}

/// The floor of undoing and redoing "Delete All": the rows change hands.
void BM_FloorSwapRows(benchmark::State &state)
{
    FloorRows rows = floorRows(int(state.range(0)), 1);
    FloorRows removed;
    for (auto _ : state) {
        rows.swap(removed);
        benchmark::DoNotOptimize(rows.data());
    }
}

/// The floor of undoing or redoing a sort: the rows put in the order of a permutation.
void BM_FloorPermuteRows(benchmark::State &state)
{
    FloorRows rows = floorRows(int(state.range(0)), int(state.range(1)));
    std::vector<int> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), std::mt19937(5));
    for (auto _ : state) {
        FloorRows moved(rows.size());
        for (std::size_t k = 0; k < order.size(); ++k)
            moved[k] = rows[std::size_t(order[k])];
        rows.swap(moved);
        benchmark::DoNotOptimize(rows.data());
    }
}

std::size_t bytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// What the history holds after a header sort and then a "Delete All": the rows removed (moved
/// into the step, not copied) and what it keeps beyond them.
void BM_HistoryMemory(benchmark::State &state)
{
    const int products = int(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        Session session(products);
        const Table &catalogue = session.module->Catalogue();
        const double rowsRemoved =
            double(catalogue.rowCount()) * catalogue.fieldCount() * double(sizeof(Cell));
        const std::size_t before = bytesInUse();
        state.ResumeTiming();
        makeStep(session, Step::Sort, products);
        const std::size_t afterSort = bytesInUse();
        makeStep(session, Step::DeleteAll, products);
        const std::size_t afterDeleteAll = bytesInUse();
        state.PauseTiming();
        state.counters["sort_kept_KB"] = double(afterSort - before) / 1024.0;
        state.counters["rows_removed_MB"] = rowsRemoved / (1024.0 * 1024.0);
        state.counters["kept_beyond_rows_KB"] = (double(afterDeleteAll) - double(before)) / 1024.0;
        state.ResumeTiming();
    }
}

void hundredThousand(benchmark::internal::Benchmark *b)
{
    b->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_UndoDeleteAll)->Apply(hundredThousand);
BENCHMARK(BM_RedoDeleteAll)->Apply(hundredThousand);
BENCHMARK(BM_FloorSwapRows)->Apply(hundredThousand);
BENCHMARK(BM_UndoHeaderSort)->Apply(hundredThousand);
BENCHMARK(BM_RedoHeaderSort)->Apply(hundredThousand);
BENCHMARK(BM_UndoImport)->Apply(hundredThousand);
BENCHMARK(BM_RedoImport)->Apply(hundredThousand);
BENCHMARK(BM_UndoUpdateImport)->Apply(hundredThousand);
BENCHMARK(BM_RedoUpdateImport)->Apply(hundredThousand);
BENCHMARK(BM_FloorPermuteRows)
    ->Args({ 10000, 1 })
    ->Args({ 100000, 1 })
    ->Args({ 100000, 2 })
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HistoryMemory)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
