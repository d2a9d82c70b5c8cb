// Workbooks read in a reader process of their own: the same cells as a read in this process,
// and every way a reader can fail (crash, abort, busy, asleep, out of memory, flooding its
// output, writing nonsense, ending early) gives the unreadable-file result, after which the
// next read works.
#include "exchange/workbookreaderchild.h"
#include "exchange/workbookreaderprocess.h"
#include "exchange/workbookwire.h"

#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#if defined(Q_OS_LINUX)
#include <csignal>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace tarnwick;
using Outcome = WorkbookReaderProcess::Outcome;
using Failure = WorkbookReaderProcess::Failure;

namespace {

QString dataFile(const char *name)
{
    return QDir(QStringLiteral(TARNWICK_TEST_DATA)).filePath(QString::fromLatin1(name));
}

WorkbookReaderOptions testReader()
{
    WorkbookReaderOptions options;
    options.program = QStringLiteral(TARNWICK_TEST_READER);
    options.arguments = QStringList { QStringLiteral("--read-workbook") };
    return options;
}

WorkbookReaderOptions faultyReader(const char *kind)
{
    WorkbookReaderOptions options = testReader();
    options.arguments.prepend(QString::fromLatin1(kind));
    options.arguments.prepend(QStringLiteral("--fault"));
    return options;
}

/// Runs a read to its end on the event loop.
void readToTheEnd(WorkbookReaderProcess &reader, const QString &path)
{
    QSignalSpy finished(&reader, &WorkbookReaderProcess::finished);
    reader.start(path);
    ASSERT_TRUE(finished.count() == 1 || finished.wait(120000));
    EXPECT_EQ(finished.count(), 1);
    EXPECT_FALSE(reader.isRunning());
}

void expectSameCells(const IWorkbook &expected, const IWorkbook &actual, const char *name)
{
    int rows = 0;
    for (int row = 1; row < 1000; ++row) {
        bool any = false;
        for (int column = 0; column < WorkbookWire::Columns; ++column) {
            EXPECT_EQ(actual.cellText(column, row), expected.cellText(column, row))
                << name << " column " << column << " row " << row;
            any = any || !expected.cellText(column, row).isEmpty();
        }
        if (!any)
            break;
        rows = row;
    }
    EXPECT_GE(rows, 2) << name;
}

/// The sample workbook read with the same reader object: it works after any failure.
void expectALaterReadWorks(WorkbookReaderProcess &reader)
{
    reader.setOptions(testReader());
    readToTheEnd(reader, dataFile("sample.xlsx"));
    EXPECT_EQ(reader.outcome(), Outcome::Read);
    const WorkbookOpenResult result = reader.takeResult();
    ASSERT_NE(result.workbook, nullptr);
    EXPECT_EQ(result.workbook->cellText(0, 1), "Part Number");
}

} // namespace

TEST(WorkbookReaderProcess, EveryFormatGivesTheCellsOfAReadInThisProcess)
{
    for (const char *name :
        { "sample.xlsx", "sample.ods", "sample.txt", "sample.xls", "wide.xls", "gap.xls" }) {
        const WorkbookOpenResult here = openWorkbook(dataFile(name));
        ASSERT_NE(here.workbook, nullptr) << name;
        const WorkbookOpenResult there = WorkbookReaderProcess::read(dataFile(name), testReader());
        ASSERT_NE(there.workbook, nullptr) << name;
        expectSameCells(*here.workbook, *there.workbook, name);
    }
}

// The reader's memory is asked for in huge pages; a setting of the user's own stays.
TEST(WorkbookReaderProcess, TheReaderAsksTheCLibraryForHugePages)
{
    const QByteArray before = qgetenv("GLIBC_TUNABLES");
    for (const QByteArray &own : { QByteArray(), QByteArray("glibc.malloc.check=0") }) {
        if (own.isEmpty())
            qunsetenv("GLIBC_TUNABLES");
        else
            qputenv("GLIBC_TUNABLES", own);
        const WorkbookOpenResult read =
            WorkbookReaderProcess::read(dataFile("sample.txt"), faultyReader("environment"));
        ASSERT_NE(read.workbook, nullptr);
        EXPECT_EQ(read.workbook->cellText(0, 1),
            own.isEmpty() ? QStringLiteral("glibc.malloc.hugetlb=1")
                          : QStringLiteral("glibc.malloc.check=0:glibc.malloc.hugetlb=1"));
    }
    if (before.isNull())
        qunsetenv("GLIBC_TUNABLES");
    else
        qputenv("GLIBC_TUNABLES", before);
}

TEST(WorkbookReaderProcess, AFileThatIsNoWorkbookGivesTheReadersErrorNumber)
{
    for (const char *name : { "notaworkbook.xls", "notaworkbook.xlsx", "notaworkbook.ods" }) {
        const WorkbookOpenResult here = openWorkbook(dataFile(name));
        WorkbookReaderProcess reader(testReader());
        readToTheEnd(reader, dataFile(name));
        EXPECT_EQ(reader.outcome(), Outcome::Unreadable) << name;
        EXPECT_EQ(reader.failure(), Failure::NotAWorkbook) << name;
        const WorkbookOpenResult there = reader.takeResult();
        EXPECT_EQ(there.workbook, nullptr);
        EXPECT_EQ(there.errorNumber, here.errorNumber) << name;
        EXPECT_EQ(there.errorText, "This file is not an Excel 97 file.");
    }
}

TEST(WorkbookReaderProcess, AReaderThatFailsInAnyWayGivesTheUnreadableResult)
{
    struct Case
    {
        const char *fault;
        Failure failure;
        int errorNumber;
    };
    const Case cases[] = {
        { "segv", Failure::Crashed, WorkbookReaderProcess::ReaderFailedError },
        { "abort", Failure::Crashed, WorkbookReaderProcess::ReaderFailedError },
        { "garbage", Failure::Malformed, WorkbookReaderProcess::ReaderFailedError },
        { "early", Failure::Malformed, WorkbookReaderProcess::ReaderFailedError },
        { "spin", Failure::TimedOut, WorkbookReaderProcess::ReaderFailedError },
        { "sleep", Failure::TimedOut, WorkbookReaderProcess::ReaderFailedError },
        { "flood", Failure::OutputTooLarge, WorkbookReaderProcess::ReaderFailedError },
#if defined(TARNWICK_READER_SANITIZED)
        // The sanitizer's limit of resident memory ends the reader.
        { "allocate", Failure::Crashed, WorkbookReaderProcess::ReaderFailedError },
#else
        { "allocate", Failure::OutOfMemory, WorkbookReaderProcess::OutOfMemoryError },
#endif
    };
    for (const Case &test : cases) {
        WorkbookReaderOptions options = faultyReader(test.fault);
        // Only the readers that never end wait for the time limit.
        options.timeLimit = test.failure == Failure::TimedOut ? std::chrono::milliseconds(1500)
                                                              : std::chrono::milliseconds(60000);
        options.outputLimit = 4 << 20;
        WorkbookReaderProcess reader(options);
        readToTheEnd(reader, dataFile("sample.xlsx"));
        EXPECT_EQ(reader.outcome(), Outcome::Unreadable) << test.fault;
        EXPECT_EQ(reader.failure(), test.failure) << test.fault;
        const WorkbookOpenResult result = reader.takeResult();
        EXPECT_EQ(result.workbook, nullptr) << test.fault;
        EXPECT_EQ(result.errorNumber, test.errorNumber) << test.fault;
        EXPECT_EQ(result.errorText, "This file is not an Excel 97 file.") << test.fault;
        expectALaterReadWorks(reader);
    }
}

TEST(WorkbookReaderProcess, AReaderThatWritesWithoutEndStopsAtTheOutputLimit)
{
    WorkbookReaderProcess reader(faultyReader("flood"));
    EXPECT_EQ(reader.options().outputLimit, qint64(256) << 20);
    readToTheEnd(reader, dataFile("sample.xlsx"));
    EXPECT_EQ(reader.outcome(), Outcome::Unreadable);
    EXPECT_EQ(reader.failure(), Failure::OutputTooLarge);
}

TEST(WorkbookReaderProcess, RowsTheReaderWithdrewDoNotCountTowardsTheOutputLimit)
{
    WorkbookReaderOptions options = faultyReader("withdraw");
    options.outputLimit = 4 << 20;
    WorkbookReaderProcess reader(options);
    readToTheEnd(reader, dataFile("sample.xlsx"));
    ASSERT_EQ(reader.outcome(), Outcome::Read);
    const WorkbookOpenResult result = reader.takeResult();
    ASSERT_NE(result.workbook, nullptr);
    EXPECT_EQ(result.workbook->cellText(0, 48), QString(64 << 10, QLatin1Char('x')));
    EXPECT_EQ(result.workbook->cellText(0, 49), QString());
}

TEST(WorkbookReaderProcess, TheCpuLimitEndsABusyReaderBeforeTheTimeLimit)
{
    WorkbookReaderOptions options = faultyReader("cpu");
    options.timeLimit = std::chrono::minutes(10);
    WorkbookReaderProcess reader(options);
    readToTheEnd(reader, dataFile("sample.xlsx"));
    EXPECT_EQ(reader.outcome(), Outcome::Unreadable);
    EXPECT_EQ(reader.failure(), Failure::Crashed) << "ended by its CPU limit, not by the time";
}

TEST(WorkbookReaderProcess, AProgramThatCannotBeStartedGivesTheUnreadableResult)
{
    WorkbookReaderOptions options = testReader();
    options.program = QDir(QStringLiteral(TARNWICK_TEST_DATA)).filePath("no-such-reader");
    WorkbookReaderProcess reader(options);
    readToTheEnd(reader, dataFile("sample.xlsx"));
    EXPECT_EQ(reader.outcome(), Outcome::Unreadable);
    EXPECT_EQ(reader.failure(), Failure::NotStarted);
    // Not the file's fault, and not said to be.
    const QString said = reader.takeResult().errorText;
    EXPECT_TRUE(said.startsWith(QStringLiteral("The spreadsheet could not be read: Tarnwick could "
                                               "not start the part of itself that reads "
                                               "spreadsheets (")))
        << said.toStdString();
    EXPECT_TRUE(
        said.endsWith(QStringLiteral("). Close other programs or windows, then try again.")));
    expectALaterReadWorks(reader);
}

#if defined(Q_OS_LINUX)
// A reader waiting on a file that never answers ends with the program that started it, also
// when the program is killed outright.
TEST(WorkbookReaderProcess, AReaderEndsWhenItsProgramIsKilled)
{
    // The orphaned reader comes to this test, so its end can be awaited and its cause seen.
    ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    const auto noLongerReaping = qScopeGuard([] { prctl(PR_SET_CHILD_SUBREAPER, 0); });
    QProcess program;
    program.start(QStringLiteral(TARNWICK_TEST_READER),
        QStringList {
            QStringLiteral("--parent"), QStringLiteral("stall"), dataFile("sample.xlsx") });
    while (!program.canReadLine() && program.waitForReadyRead(60000)) { }
    bool isNumber = false;
    const auto reader = pid_t(program.readLine().trimmed().toInt(&isNumber));
    ASSERT_TRUE(isNumber);
    program.kill();
    ASSERT_TRUE(program.waitForFinished(60000));

    const int handle = int(syscall(SYS_pidfd_open, reader, 0));
    ASSERT_GE(handle, 0);
    pollfd ended { handle, POLLIN, 0 };
    const int ready = poll(&ended, 1, 60000);
    close(handle);
    if (ready != 1)
        kill(reader, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(reader, &status, 0), reader);
    EXPECT_EQ(ready, 1) << "the reader outlived the program by a minute";
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}
#endif

TEST(WorkbookReaderProcess, ProgressReportsTheRowsAndCancelStopsTheReaderAtOnce)
{
    WorkbookReaderProcess reader(faultyReader("slow"));
    QSignalSpy progress(&reader, &WorkbookReaderProcess::progress);
    QSignalSpy finished(&reader, &WorkbookReaderProcess::finished);
    reader.start(dataFile("sample.xlsx"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return reader.rowsRead() >= 3; }, 20000));
    ASSERT_GE(progress.count(), 1);
    int last = 0;
    for (const QList<QVariant> &signal : progress) {
        EXPECT_GT(signal.at(0).toInt(), last);
        last = signal.at(0).toInt();
    }
    reader.cancel();
    EXPECT_EQ(finished.count(), 1) << "cancel reports at once";
    EXPECT_FALSE(reader.isRunning());
    EXPECT_EQ(reader.outcome(), Outcome::Cancelled);
    EXPECT_EQ(reader.takeResult().workbook, nullptr);
    reader.cancel();
    EXPECT_EQ(finished.count(), 1) << "nothing to cancel any more";
    expectALaterReadWorks(reader);
}

TEST(WorkbookReaderProcess, ASecondStartCancelsTheFirstRead)
{
    WorkbookReaderProcess reader(faultyReader("sleep"));
    QSignalSpy finished(&reader, &WorkbookReaderProcess::finished);
    reader.start(dataFile("sample.xlsx"));
    reader.setOptions(testReader());
    reader.start(dataFile("sample.ods"));
    EXPECT_EQ(finished.count(), 1);
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_EQ(reader.outcome(), Outcome::Read);
    EXPECT_EQ(reader.takeResult().workbook->cellText(0, 1), "Part Number");
}

/// The hostile workbooks are made at run time; each ends as a result (read or not) within the
/// reader's limits, long before the time limit, and the next read works.
TEST(WorkbookReaderProcess, HostileWorkbooksCannotHurtTheProgram)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    QProcess maker;
    maker.start(QStringLiteral(TARNWICK_PYTHON),
        { QStringLiteral(TARNWICK_HOSTILE_WORKBOOKS_SCRIPT), folder.path() });
    ASSERT_TRUE(maker.waitForFinished(120000));
    ASSERT_EQ(maker.exitCode(), 0) << maker.readAllStandardError().toStdString();

    WorkbookReaderOptions options = testReader();
    options.timeLimit = std::chrono::minutes(5);
    WorkbookReaderProcess reader(options);
    for (const char *name : { "crash.xls", "claims-4gb.xlsx", "bomb.xlsx" }) {
        reader.setOptions(options);
        readToTheEnd(reader, folder.filePath(QString::fromLatin1(name)));
        EXPECT_EQ(reader.outcome(), Outcome::Unreadable) << name;
        EXPECT_EQ(reader.takeResult().errorText, "This file is not an Excel 97 file.") << name;
        expectALaterReadWorks(reader);
    }
    // Whether these are read depends on the reader; they end either way, within its limits.
    for (const char *name : { "repeat.ods", "longref.xlsx" }) {
        reader.setOptions(options);
        readToTheEnd(reader, folder.filePath(QString::fromLatin1(name)));
        EXPECT_NE(reader.outcome(), Outcome::Cancelled) << name;
        EXPECT_NE(reader.failure(), Failure::TimedOut) << name;
        const WorkbookOpenResult result = reader.takeResult();
        if (reader.outcome() == Outcome::Read)
            EXPECT_EQ(result.workbook->cellText(0, 1), "Part Number") << name;
        else
            EXPECT_EQ(result.errorText, "This file is not an Excel 97 file.") << name;
        expectALaterReadWorks(reader);
    }
}

TEST(WorkbookReaderChild, OnlyTheReadersArgumentsMakeTheProgramAReader)
{
    char program[] = "tarnwick";
    char test[] = "test";
    char argument[] = "--read-workbook";
    char *alone[] = { program, nullptr };
    char *asTest[] = { program, test, nullptr };
    char *withoutPath[] = { program, argument, nullptr };
    char *twoPaths[] = { program, argument, test, test, nullptr };
    EXPECT_EQ(WorkbookReaderChild::runIfAsked(1, alone), std::nullopt);
    EXPECT_EQ(WorkbookReaderChild::runIfAsked(2, asTest), std::nullopt);
    EXPECT_EQ(WorkbookReaderChild::runIfAsked(2, withoutPath), std::nullopt);
    EXPECT_EQ(WorkbookReaderChild::runIfAsked(4, twoPaths), std::nullopt);
}
