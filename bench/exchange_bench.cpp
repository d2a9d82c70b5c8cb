// How long the workbook import takes: 100,000 new rows (.xlsx, .ods; 60,000 for .xls, near the
// format's 65,536 rows) of the export's fifteen columns into a catalogue of 10,000 products,
// beside the floor (floorworkbook.h: the fastest plain read of the same cells) and beside
// LibreOffice converting the same workbook to CSV. Measured: the floor, the program's reader in
// this process, the read through the reader process (the child reads, the wire carries the
// cells, this process decodes them), and the whole import (that read, then the import planned
// and made one step of the history of changes: the rows added and the catalogue sorted). The
// workbooks are made once by LibreOffice ("soffice" on the PATH) and kept in the temporary folder
// for later runs.
//
//     tarnwick_exchange_bench [--benchmark_repetitions=5
//     --benchmark_enable_random_interleaving=true] tarnwick_exchange_bench --measure-import
//     <workbook>   one import: seconds and peak memory
//                                                           of this process and of the reader
#include "floorworkbook.h"

#include "catalogue/module1.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "commands/catalogueedits.h"
#include "commands/edithistory.h"
#include "exchange/columnmapping.h"
#include "exchange/importchanges.h"
#include "exchange/importplan.h"
#include "exchange/sheetcells.h"
#include "exchange/workbook.h"
#include "exchange/workbookreaderchild.h"
#include "exchange/workbookreaderprocess.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <vector>

namespace {

using namespace tarnwick;

constexpr int CatalogueProducts = 10000;
const QLocale EnUs(QLocale::English, QLocale::UnitedStates);
const char *const Formats[] = { "xlsx", "ods", "xls" };

int rowsOf(const QString &format)
{
    return format == QLatin1String("xls") ? 60000 : 100000;
}

class SilentPrompts : public IPrompts
{
public:
    int msgBox(const QString &, int, const QString &) override { return MsgResult::Ok; }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
};

QString workbookFolder()
{
    const QString folder = QDir::temp().filePath(QStringLiteral("tarnwick-bench-workbooks"));
    QDir().mkpath(folder);
    return folder;
}

/// The CSV LibreOffice makes the workbooks from: the export's header and rows = new products.
QString writeCsv(int rows)
{
    const QString path = QDir(workbookFolder()).filePath(QStringLiteral("import%1.csv").arg(rows));
    if (QFile::exists(path))
        return path;
    QFile csv(path);
    if (!csv.open(QIODevice::WriteOnly))
        return QString();
    QByteArray header = "Part Number,Product Name,Price,Notes,Includes";
    for (int k = 1; k <= 5; ++k)
        header += QStringLiteral(",Price Point %1,Price %1").arg(k).toUtf8();
    csv.write(header + '\n');
    for (int i = 0; i < rows; ++i) {
        const double price = (i % 500) + 0.5;
        QString line =
            QStringLiteral("N-%1,New product %2,%3,Notes for product %2,%4")
                .arg(i, 6, 10, QLatin1Char('0'))
                .arg(i)
                .arg(price, 0, 'f', 2)
                .arg(i % 2 ? QStringLiteral("\"Cable, plug\"") : QStringLiteral("Cable"));
        for (int k = 1; k <= 5; ++k)
            line += QStringLiteral(",%1,%2").arg(10 * k).arg(price * (1 - 0.05 * k), 0, 'f', 2);
        csv.write(line.toUtf8() + '\n');
    }
    return path;
}

/// The workbook of the format, made by LibreOffice when it is not there yet; empty when it
/// cannot be made.
QString workbookPath(const QString &format)
{
    const QString csv = writeCsv(rowsOf(format));
    const QString path =
        QDir(workbookFolder())
            .filePath(QStringLiteral("import%1.%2").arg(rowsOf(format)).arg(format));
    if (!QFile::exists(path) && !csv.isEmpty()) {
        QProcess::execute(QStringLiteral("soffice"),
            { QStringLiteral("--headless"), QStringLiteral("--convert-to"), format,
                QStringLiteral("--outdir"), workbookFolder(), csv });
    }
    return QFile::exists(path) ? path : QString();
}

QString allColumnsLetters()
{
    std::array<int, ColumnMapping::ListCount> positions {};
    for (int index = 0; index < ColumnMapping::ListCount; ++index) {
        const int column = ColumnMapping::catalogueField(index) - 1;
        positions[std::size_t(index)] =
            index <= ColumnMapping::ProductNameList ? column : column + 1;
    }
    return ColumnMapping::columnLetters(positions);
}

void fillCatalogue(Table &table)
{
    table.redim(CatalogueProducts, 15);
    for (int row = 1; row <= CatalogueProducts; ++row) {
        table.put(row, 1, QStringLiteral("OLD-%1").arg(row, 5, 10, QLatin1Char('0')));
        table.put(row, 2, QStringLiteral("Existing product %1").arg(row));
    }
}

/// A catalogue of 10,000 products with its history of changes, as the program holds them.
struct Program
{
    Program(IPrompts &prompts, const AppEnvironment &environment)
        : module(prompts, environment, EnUs), history(module)
    {
        fillCatalogue(module.Catalogue());
        module.AllProducts().setCount(CatalogueProducts);
    }
    Module1 module;
    EditHistory history;
};

/// The whole import of a workbook into the catalogue, as the program makes it; the products
/// added.
int importWorkbook(const QString &path, Program &program)
{
    WorkbookOpenResult read = WorkbookReaderProcess::read(path);
    if (!read.workbook)
        return -1;
    Table &catalogue = program.module.Catalogue();
    ImportPlanner planner(
        *read.workbook, catalogue, allColumnsLetters(), true, ImportAction::AddNew, EnUs);
    planner.runAll();
    ImportPlan plan = planner.takePlan();
    const int added = plan.addedCount();
    CatalogueEdits::import(program.history, {}, importChanges(std::move(plan), catalogue));
    return added;
}

bool skipWithoutWorkbook(benchmark::State &state, const QString &path)
{
    if (path.isEmpty())
        state.SkipWithError("LibreOffice could not make the workbook");
    return path.isEmpty();
}

void BM_Floor(benchmark::State &state, const char *format)
{
    const QString path = workbookPath(QString::fromLatin1(format));
    if (skipWithoutWorkbook(state, path))
        return;
    const QByteArray name = QFile::encodeName(path);
    const auto reader = std::strcmp(format, "xlsx") == 0 ? bench::floorReadXlsx
        : std::strcmp(format, "ods") == 0                ? bench::floorReadOds
                                                         : bench::floorReadXls;
    for (auto _ : state) {
        bench::FloorSheet sheet;
        if (!reader(name.constData(), sheet))
            state.SkipWithError("the floor could not read the workbook");
        benchmark::DoNotOptimize(sheet.cells.data());
    }
}

void BM_ReadInThisProcess(benchmark::State &state, const char *format)
{
    const QString path = workbookPath(QString::fromLatin1(format));
    if (skipWithoutWorkbook(state, path))
        return;
    for (auto _ : state) {
        const SheetReadResult read = readSheetFile(path);
        if (!read.cells)
            state.SkipWithError("the workbook could not be read");
        benchmark::DoNotOptimize(read.cells.get());
    }
}

void BM_ReadThroughReaderProcess(benchmark::State &state, const char *format)
{
    const QString path = workbookPath(QString::fromLatin1(format));
    if (skipWithoutWorkbook(state, path))
        return;
    for (auto _ : state) {
        const WorkbookOpenResult read = WorkbookReaderProcess::read(path);
        if (!read.workbook)
            state.SkipWithError("the reader process could not read the workbook");
        benchmark::DoNotOptimize(read.workbook.get());
    }
}

void BM_Import(benchmark::State &state, const char *format)
{
    const QString path = workbookPath(QString::fromLatin1(format));
    if (skipWithoutWorkbook(state, path))
        return;
    SilentPrompts prompts;
    const AppEnvironment environment(QDir::tempPath(), QString());
    for (auto _ : state) {
        state.PauseTiming();
        auto program = std::make_unique<Program>(prompts, environment);
        state.ResumeTiming();
        if (importWorkbook(path, *program) != rowsOf(QString::fromLatin1(format)))
            state.SkipWithError("the import did not add every row");
        state.PauseTiming();
        program.reset();
        state.ResumeTiming();
    }
}

void BM_LibreOfficeCsv(benchmark::State &state, const char *format)
{
    const QString path = workbookPath(QString::fromLatin1(format));
    if (skipWithoutWorkbook(state, path))
        return;
    for (auto _ : state) {
        QTemporaryDir out;
        const int code = QProcess::execute(QStringLiteral("soffice"),
            { QStringLiteral("--headless"), QStringLiteral("--convert-to"), QStringLiteral("csv"),
                QStringLiteral("--outdir"), out.path(), path });
        if (code != 0)
            state.SkipWithError("LibreOffice could not convert the workbook");
    }
}

void registerBenchmarks()
{
    for (const char *format : Formats) {
        const std::string suffix = std::string("/") + format;
        benchmark::RegisterBenchmark(("Floor" + suffix).c_str(), BM_Floor, format)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
        benchmark::RegisterBenchmark(
            ("ReadInThisProcess" + suffix).c_str(), BM_ReadInThisProcess, format)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
        benchmark::RegisterBenchmark(
            ("ReadThroughReaderProcess" + suffix).c_str(), BM_ReadThroughReaderProcess, format)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
        benchmark::RegisterBenchmark(("Import" + suffix).c_str(), BM_Import, format)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(3);
        benchmark::RegisterBenchmark(("LibreOfficeCsv" + suffix).c_str(), BM_LibreOfficeCsv, format)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(1);
    }
}

/// Keeps every repetition of every benchmark for the table of ratios.
class TimesReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                times[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
        }
    }
    /// The fastest repetition of work on format, or its median; 0 when it did not run.
    double fastest(const char *work, const char *format) const
    {
        const std::vector<double> *all = find(work, format);
        return all ? *std::min_element(all->begin(), all->end()) : 0.0;
    }
    double median(const char *work, const char *format) const
    {
        const std::vector<double> *all = find(work, format);
        if (!all)
            return 0.0;
        std::vector<double> sorted = *all;
        std::sort(sorted.begin(), sorted.end());
        const std::size_t middle = sorted.size() / 2;
        return sorted.size() % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
    }

private:
    const std::vector<double> *find(const char *work, const char *format) const
    {
        const auto found = times.find(std::string(work) + "/" + format);
        return found == times.end() || found->second.empty() ? nullptr : &found->second;
    }
    std::map<std::string, std::vector<double>> times;
};

void printRatios(const TimesReporter &reporter)
{
    std::printf("\n%-6s %9s %9s %9s %9s %9s %11s %12s %14s\n", "format", "floor ms", "read ms",
        "process", "import ms", "LO ms", "import/floor", "LO/import", "median ratio");
    for (const char *format : Formats) {
        const auto time = [&](const char *work) { return reporter.fastest(work, format); };
        const double import = time("Import");
        const double medianFloor = reporter.median("Floor", format);
        std::printf("%-6s %9.0f %9.0f %9.0f %9.0f %9.0f %10.2fx %11.1fx %13.2fx\n", format,
            time("Floor"), time("ReadInThisProcess"), time("ReadThroughReaderProcess"), import,
            time("LibreOfficeCsv"), time("Floor") > 0 ? import / time("Floor") : 0.0,
            import > 0 ? time("LibreOfficeCsv") / import : 0.0,
            medianFloor > 0 ? reporter.median("Import", format) / medianFloor : 0.0);
    }
    std::printf("(the fastest repetition of each, and the import's median over the floor's; "
                "--benchmark_enable_random_interleaving=true spreads a slow minute over both)\n"
                "goals: import at most 2x the floor, at least 5x less than LibreOffice\n");
}

/// One import in this process: its time and the peak memory of this process and of the reader.
int measureImport(const QString &path)
{
    SilentPrompts prompts;
    const AppEnvironment environment(QDir::tempPath(), QString());
    Program program(prompts, environment);
    rusage before {};
    getrusage(RUSAGE_SELF, &before);
    QElapsedTimer clock;
    clock.start();
    const int added = importWorkbook(path, program);
    const qint64 ms = clock.elapsed();
    rusage self {};
    rusage children {};
    getrusage(RUSAGE_SELF, &self);
    getrusage(RUSAGE_CHILDREN, &children);
    const auto cpuMs = [](const rusage &usage) {
        return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000L
            + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000L;
    };
    std::printf("%s: %d rows added in %lld ms; processor time: this process %ld ms, the reader "
                "%ld ms; peak memory: this process %ld MiB (%ld MiB before the import), the "
                "reader %ld MiB\n",
        qPrintable(QFileInfo(path).fileName()), added, static_cast<long long>(ms),
        cpuMs(self) - cpuMs(before), cpuMs(children), self.ru_maxrss / 1024,
        before.ru_maxrss / 1024, children.ru_maxrss / 1024);
    return added >= 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    // The bench is its own reader process, as the program is.
    if (const std::optional<int> code = WorkbookReaderChild::runIfAsked(argc, argv))
        return *code;
    QCoreApplication app(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--measure-import") == 0)
        return measureImport(QString::fromLocal8Bit(argv[2]));
    if (argc == 3 && std::strcmp(argv[1], "--make-workbook") == 0) {
        const QString path = workbookPath(QString::fromLocal8Bit(argv[2]));
        std::printf("%s\n", qPrintable(path));
        return path.isEmpty() ? 1 : 0;
    }
    registerBenchmarks();
    benchmark::Initialize(&argc, argv);
    TimesReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    printRatios(reporter);
    benchmark::Shutdown();
    return 0;
}
