// How long the workbook import takes: 10,000 new rows into a catalogue of 10,000 products
// (planned and made one step of the history of changes, as the program does it), beside
// reading the same Excel 97 workbook alone. The workbook is made at start by
// LibreOffice ("soffice" on the PATH) from generated text, so no large file is kept.
#include "catalogue/module1.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "commands/catalogueedits.h"
#include "commands/edithistory.h"
#include "exchange/columnmapping.h"
#include "exchange/importchanges.h"
#include "exchange/importplan.h"
#include "exchange/workbook.h"
#include "platform/appenvironment.h"
#include "platform/iprompts.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace tarnwick;

constexpr int Rows10k = 10000;
const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

class SilentPrompts : public IPrompts
{
public:
    int msgBox(const QString &, int, const QString &) override { return MsgResult::Ok; }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
};

/// The path of the 10,000-row workbook, or an empty text when LibreOffice could not make it.
QString workbookPath()
{
    static QTemporaryDir dir;
    static const QString path = [] {
        QFile csv(dir.filePath(QStringLiteral("import10k.csv")));
        if (!csv.open(QIODevice::WriteOnly)) {
            return QString();
        }
        csv.write("Part Number,Product Name,Price,Notes,Includes,Price Point 1,Price 1\n");
        for (int i = 0; i < Rows10k; ++i) {
            csv.write(QStringLiteral("N-%1,New product %2,%3.5,Notes %2,Cable,10,%4.25\n")
                          .arg(i, 5, 10, QLatin1Char('0'))
                          .arg(i)
                          .arg(i % 500)
                          .arg(i % 400)
                          .toUtf8());
        }
        csv.close();
        QProcess::execute(QStringLiteral("soffice"),
            { QStringLiteral("--headless"), QStringLiteral("--convert-to"), QStringLiteral("xls"),
                QStringLiteral("--outdir"), dir.path(), csv.fileName() });
        const QString xls = dir.filePath(QStringLiteral("import10k.xls"));
        return QFile::exists(xls) ? xls : QString();
    }();
    return path;
}

void fillCatalogue(Table &table)
{
    table.redim(Rows10k, 15);
    for (int row = 1; row <= Rows10k; ++row) {
        table.put(row, 1, QStringLiteral("OLD-%1").arg(row, 5, 10, QLatin1Char('0')));
        table.put(row, 2, QStringLiteral("Existing product %1").arg(row));
    }
}

QString letters()
{
    std::array<int, ColumnMapping::ListCount> positions;
    positions.fill(0);
    positions[0] = 0;
    positions[1] = 1;
    positions[3] = 3;
    positions[7] = 4;
    positions[6] = 5;
    positions[2] = 6;
    positions[4] = 7;
    return ColumnMapping::columnLetters(positions);
}

void BM_ReadXlsWithFreexl(benchmark::State &state)
{
    const QString path = workbookPath();
    if (path.isEmpty()) {
        state.SkipWithError("LibreOffice could not make the workbook");
        return;
    }
    for (auto _ : state) {
        WorkbookOpenResult result = openWorkbook(path);
        benchmark::DoNotOptimize(result.workbook.get());
    }
}
BENCHMARK(BM_ReadXlsWithFreexl)->Unit(benchmark::kMillisecond);

void BM_Import10kInto10k(benchmark::State &state)
{
    const QString path = workbookPath();
    const WorkbookOpenResult workbook = path.isEmpty() ? WorkbookOpenResult {} : openWorkbook(path);
    if (!workbook.workbook) {
        state.SkipWithError("LibreOffice could not make the workbook");
        return;
    }
    SilentPrompts prompts;
    const AppEnvironment environment(QDir::tempPath(), QString());
    for (auto _ : state) {
        state.PauseTiming();
        Module1 module(prompts, environment, EnUs);
        Table &catalogue = module.Catalogue();
        fillCatalogue(catalogue);
        module.AllProducts().setCount(Rows10k);
        EditHistory history(module);
        state.ResumeTiming();
        ImportPlanner planner(
            *workbook.workbook, catalogue, letters(), true, ImportAction::AddNew, EnUs);
        planner.runAll();
        CatalogueEdits::import(history, { 1, 0 }, importChanges(planner.takePlan(), catalogue));
        benchmark::DoNotOptimize(module.AllProducts().Count());
    }
}
BENCHMARK(BM_Import10kInto10k)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
