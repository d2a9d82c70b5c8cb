// The quote book with 10,000 quotes of 20 lines: opening the "Quotes" window (the whole list,
// newest first) and each search of its box, beside two floors: the same query through
// SQLite's own C interface (what any program reading this book pays), and a plain scan of the
// same search texts held in memory (the least any search can cost). The goal is 100 ms for
// the window's list and for every search. Also measured: opening the book at start-up (with
// its check), saving one quote, keeping the quote in hand, and the backup at close.
#include "platform/iprompts.h"
#include "quotebook/quotebook.h"
#include "quotebook/quotebookrows.h"
#include "quotebook/ui/frmquotes.h"
#include "quotes/quoteline.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace tarnwick;

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);
constexpr int QuoteCount = 10000;
constexpr int LinesPerQuote = 20;

class QuietPrompts : public IPrompts
{
public:
    int msgBox(const QString &, int, const QString &) override { return MsgResult::Ok; }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
};

SavedQuote generatedQuote(int index, int lines)
{
    SavedQuote quote;
    quote.header.customer.customer = QStringLiteral("Customer %1").arg(index);
    quote.header.customer.company = QStringLiteral("Company %1 Plumbing").arg(index % 700);
    quote.header.date = QDate(2026, 1, 1).addDays(index % 330);
    quote.header.validUntil = quote.header.date.addDays(30);
    quote.header.heading = QStringLiteral("Dear customer,\nhere is our quote.");
    quote.header.ending = QStringLiteral("Kind regards");
    quote.content.lines.redim(lines, QuoteLine::FieldCount);
    for (int row = 1; row <= lines; ++row) {
        Table &t = quote.content.lines;
        t.put(row, QuoteLine::PartNumber, QStringLiteral("PN-%1").arg((index * 37 + row) % 5000));
        t.put(row, QuoteLine::ProductName, QStringLiteral("Product of catalogue row %1").arg(row));
        t.put(row, QuoteLine::UnitPrice, float(1.25 * row));
        t.put(row, QuoteLine::Quantity, qint32(row));
        t.put(row, QuoteLine::ExtendedPrice, 1.25 * row * row);
        t.put(row, QuoteLine::ListPrice, QStringLiteral("$%1").arg(1.25 * row));
        t.put(row, QuoteLine::Includes, QStringLiteral("Fittings and a manual"));
        quote.content.sources.push_back(PriceSource::PricePoint);
    }
    return quote;
}

/// The generated book, made once per run in a temporary folder.
struct Book
{
    QTemporaryDir dir;
    QString path = QDir(dir.path()).filePath(QStringLiteral("quotes.db"));
    QuoteBook book { EnUs };
};

/// Made on first use; dropped before the application object goes (Qt's database connections
/// must not outlive it).
std::unique_ptr<Book> made;

Book &generatedBook()
{
    if (!made) {
        made = std::make_unique<Book>();
        made->book.open(made->path);
        std::vector<SavedQuote> quotes;
        for (int i = 0; i < QuoteCount; ++i)
            quotes.push_back(generatedQuote(i, LinesPerQuote));
        if (!made->book.saveNewQuotes(quotes))
            std::fprintf(
                stderr, "could not make the book: %s\n", qPrintable(made->book.errorString()));
    }
    return *made;
}

/// The searches measured: a customer, a number, a part number, a word every quote has, and
/// one no quote has.
const std::vector<QString> &searches()
{
    static const std::vector<QString> all { QStringLiteral("customer 4321"),
        QStringLiteral("q-2026-0987"), QStringLiteral("pn-4711"), QStringLiteral("plumbing"),
        QStringLiteral("nothing like it") };
    return all;
}

void BM_BookList(benchmark::State &state)
{
    Book &book = generatedBook();
    for (auto _ : state)
        benchmark::DoNotOptimize(book.book.list());
    state.counters["quotes"] = double(book.book.list().size());
}

void BM_BookSearch(benchmark::State &state)
{
    Book &book = generatedBook();
    const QString &find = searches().at(std::size_t(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(book.book.list(find));
    state.counters["found"] = double(book.book.list(find).size());
}

/// The "Quotes" window from nothing to its filled list, as Open Quote shows it.
void BM_QuotesWindowOpen(benchmark::State &state)
{
    Book &book = generatedBook();
    QuietPrompts prompts;
    for (auto _ : state) {
        FrmQuotes window(book.book, prompts, EnUs);
        window.show();
        QApplication::processEvents();
    }
}

/// One search typed into the open window: the list is replaced and the first row chosen.
void BM_QuotesWindowSearch(benchmark::State &state)
{
    Book &book = generatedBook();
    QuietPrompts prompts;
    FrmQuotes window(book.book, prompts, EnUs);
    window.show();
    auto *find = window.findChild<QLineEdit *>(QStringLiteral("TxtFind"));
    const QString &text = searches().at(std::size_t(state.range(0)));
    for (auto _ : state) {
        find->setText(text);
        QApplication::processEvents();
        state.PauseTiming();
        find->clear();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}

struct Row
{
    long long id;
    int year, sequence, revision;
    std::string customer, company, date, status;
    double total;
};

/// The words of a search, as the quote book splits and folds them.
std::vector<std::string> wordsOf(const QString &find)
{
    std::vector<std::string> words;
    for (const QString &word : QuoteBookRows::searchTerms(find).words)
        words.push_back(word.toStdString());
    return words;
}

/// The same query through SQLite's C interface, into plain structs.
void floorQuery(sqlite3 *db, const std::vector<std::string> &words, std::vector<Row> &rows)
{
    std::string sql = "SELECT q.id, q.year, q.sequence, q.revision, q.customer, q.company, "
                      "q.quote_date, q.total, q.status FROM quotes q";
    for (std::size_t i = 0; i < words.size(); ++i)
        sql += (i == 0 ? " JOIN quote_search s ON s.quote_id = q.id WHERE" : " AND")
            + std::string(" instr(s.haystack, ?) > 0");
    sql += " ORDER BY q.quote_date DESC, q.year DESC, q.sequence DESC, q.revision DESC";
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr);
    for (std::size_t i = 0; i < words.size(); ++i)
        sqlite3_bind_text(
            statement, int(i + 1), words[i].c_str(), int(words[i].size()), SQLITE_STATIC);
    rows.clear();
    const auto text = [&](int column) {
        const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
        return bytes ? std::string(bytes) : std::string();
    };
    while (sqlite3_step(statement) == SQLITE_ROW) {
        rows.push_back({ sqlite3_column_int64(statement, 0), sqlite3_column_int(statement, 1),
            sqlite3_column_int(statement, 2), sqlite3_column_int(statement, 3), text(4), text(5),
            text(6), text(8), sqlite3_column_double(statement, 7) });
    }
    sqlite3_finalize(statement);
}

void BM_FloorSqliteList(benchmark::State &state)
{
    Book &book = generatedBook();
    sqlite3 *db = nullptr;
    sqlite3_open_v2(book.path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    std::vector<Row> rows;
    const std::vector<std::string> words = state.range(0) < 0
        ? std::vector<std::string>()
        : wordsOf(searches().at(std::size_t(state.range(0))));
    for (auto _ : state) {
        floorQuery(db, words, rows);
        benchmark::DoNotOptimize(rows.data());
    }
    sqlite3_close(db);
}

/// The search texts of the generated quotes, made once.
const std::vector<std::string> &haystacks()
{
    static std::vector<std::string> texts;
    if (texts.empty()) {
        Book &book = generatedBook();
        for (const QuoteSummary &summary : book.book.list()) {
            const auto quote = book.book.load(summary.id);
            texts.push_back(
                QuoteBookRows::haystack(quote->header, quote->content.lines).toStdString());
        }
    }
    return texts;
}

/// The least a search can cost: the 10,000 search texts already in memory, each scanned once.
void BM_FloorMemorySearch(benchmark::State &state)
{
    const std::vector<std::string> &texts = haystacks();
    const std::vector<std::string> words = wordsOf(searches().at(std::size_t(state.range(0))));
    for (auto _ : state) {
        std::size_t found = 0;
        for (const std::string &haystack : texts) {
            found += std::all_of(words.begin(), words.end(),
                         [&](const std::string &word) {
                             return haystack.find(word) != std::string::npos;
                         })
                ? 1
                : 0;
        }
        benchmark::DoNotOptimize(found);
    }
}

void BM_BookOpen(benchmark::State &state)
{
    Book &book = generatedBook();
    for (auto _ : state) {
        QuoteBook opened(EnUs);
        benchmark::DoNotOptimize(opened.open(book.path).status);
    }
}

void BM_SaveQuote(benchmark::State &state)
{
    Book &book = generatedBook();
    const SavedQuote quote = generatedQuote(1, LinesPerQuote);
    for (auto _ : state) {
        SavedQuote copy = quote;
        benchmark::DoNotOptimize(book.book.saveNew(copy));
    }
}

void BM_KeepInHand(benchmark::State &state)
{
    Book &book = generatedBook();
    QuoteBook::InHand inHand;
    inHand.content = generatedQuote(2, int(state.range(0))).content;
    for (auto _ : state)
        benchmark::DoNotOptimize(book.book.keepInHand(inHand));
}

void BM_Backup(benchmark::State &state)
{
    Book &book = generatedBook();
    const QString backup = QDir(book.dir.path()).filePath(QStringLiteral("quotes.bak"));
    for (auto _ : state)
        benchmark::DoNotOptimize(book.book.backupTo(backup));
}

void eachSearch(benchmark::internal::Benchmark *benchmark)
{
    for (int i = 0; i < int(searches().size()); ++i)
        benchmark->Arg(i);
}

BENCHMARK(BM_BookList)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BookSearch)->Apply(eachSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuotesWindowOpen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuotesWindowSearch)->Apply(eachSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FloorSqliteList)->Arg(-1)->Apply(eachSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FloorMemorySearch)->Apply(eachSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BookOpen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveQuote)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeepInHand)->Arg(20)->Arg(250)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Backup)->Unit(benchmark::kMillisecond)->Iterations(5);

/// Keeps the fastest repetition of every benchmark, in milliseconds, for the table at the end.
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

/// The window's list and each search beside the two floors and the goal of 100 ms.
void printTable(const std::map<std::string, double> &fastest)
{
    const auto ms = [&](const std::string &key) {
        const auto found = fastest.find(key);
        return found == fastest.end() ? -1.0 : found->second;
    };
    std::printf("\n%-28s %10s %10s %12s %12s %6s\n", "10,000 quotes (fastest)", "book ms",
        "window ms", "SQLite ms", "memory ms", "goal");
    std::printf("%-28s %10.2f %10.2f %12.2f %12s %6s\n", "the whole list", ms("BM_BookList/"),
        ms("BM_QuotesWindowOpen/"), ms("BM_FloorSqliteList/-1"), "-", "100");
    for (std::size_t i = 0; i < searches().size(); ++i) {
        const std::string arg = std::to_string(i);
        std::printf("%-28s %10.2f %10.2f %12.2f %12.2f %6s\n",
            ("search \"" + searches()[i].toStdString() + "\"").c_str(), ms("BM_BookSearch/" + arg),
            ms("BM_QuotesWindowSearch/" + arg), ms("BM_FloorSqliteList/" + arg),
            ms("BM_FloorMemorySearch/" + arg), "100");
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    FastestReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    printTable(reporter.fastest);
    made.reset();
    benchmark::Shutdown();
    return 0;
}
