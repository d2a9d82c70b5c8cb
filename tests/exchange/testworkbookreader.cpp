// The workbook reader of the tests: the program's own reader, or, with "--fault <kind>" before
// its arguments, a reader that fails in that way, so the tests can prove that the program
// survives any reader. Kinds: segv, abort, spin (busy until stopped), cpu (busy under a CPU
// limit of one second), sleep, allocate (until the memory limit), flood (valid cells without
// end), garbage, early (ends in the middle of its output), slow (a row every few milliseconds,
// without end), withdraw (3 MiB of rows, withdrawn, then the same rows again and the end: more
// than the tests' 4 MiB output limit in all, less than it after the withdrawal), environment
// (one cell: the value of GLIBC_TUNABLES it was started with), stall (a row, then waits for a
// signal). With "--parent <kind> <path>" it is the program instead: it starts this reader with
// "--fault <kind>" on path, writes the reader's process id on a line once the reader's first
// row has arrived, and waits.
#include "exchange/workbookreaderchild.h"
#include "exchange/workbookreaderprocess.h"
#include "exchange/workbookwire.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QList>
#include <QString>
#include <QtEndian>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <new>
#include <thread>
#include <vector>

using namespace tarnwick;

namespace {

void put(const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

/// The bytes of one cell as the program's reader writes them.
QByteArray cellBytes(int row, int column, const QByteArray &text)
{
    QByteArray out(1, 'C');
    char number[4];
    qToLittleEndian(quint32(row), number);
    out.append(number, 4);
    out.append(char(column));
    qToLittleEndian(quint32(text.size()), number);
    out.append(number, 4);
    return out + text;
}

const QByteArray Header("TWWBK02\n");

/// A reader on a file that never answers: nothing of its own ends the wait, only the kill the
/// tests wait for.
[[noreturn]] void waitForever()
{
    std::promise<void> never;
    never.get_future().wait();
    std::abort(); // never reached: no value is ever set
}

[[noreturn]] void spin()
{
    volatile unsigned long counter = 0;
    for (;;)
        counter = counter + 1;
}

int allocateUntilRefused()
{
    std::vector<char *> blocks;
    try {
        for (int block = 0; block < 64; ++block) {
            char *bytes = new char[std::size_t(64) << 20];
            std::memset(bytes, 1, std::size_t(64) << 20);
            blocks.push_back(bytes);
        }
    } catch (const std::bad_alloc &) {
        return WorkbookReaderChild::ExitOutOfMemory;
    }
    return 9; // four gigabytes and never refused: the limit did not work
}

int fault(const char *kind)
{
    const std::string name(kind);
    WorkbookReaderChild::applyLimits(name == "cpu" ? 1 : WorkbookReaderChild::DefaultCpuSeconds);
    if (name == "segv")
        std::raise(SIGSEGV);
    if (name == "abort")
        std::abort();
    if (name == "spin" || name == "cpu")
        spin();
    if (name == "sleep")
        std::this_thread::sleep_for(std::chrono::hours(1));
    if (name == "stall") {
        put(Header + cellBytes(1, 0, "Part Number") + cellBytes(2, 0, "P1"));
        waitForever();
    }
    if (name == "allocate")
        return allocateUntilRefused();
    put(Header);
    if (name == "garbage")
        put(QByteArray("\x01\x02 no frame of the reader \xff\xfe"));
    if (name == "early")
        put(cellBytes(1, 0, "Part Number").left(8));
    for (int row = 1; name == "flood" && row <= WorkbookWire::MaxRows; ++row)
        put(cellBytes(row, 0, QByteArray(60000, 'x')));
    if (name == "withdraw") {
        QByteArray rows;
        for (int row = 1; row <= 48; ++row)
            rows += cellBytes(row, 0, QByteArray(64 << 10, 'x'));
        put(rows);
        put(QByteArray("R") + rows);
        QByteArray end("E");
        char number[4];
        qToLittleEndian(quint32(48), number);
        put(end.append(number, 4));
    }
    if (name == "environment") {
        const char *tunables = std::getenv("GLIBC_TUNABLES");
        QByteArray end("E");
        char number[4];
        qToLittleEndian(quint32(1), number);
        put(cellBytes(1, 0, tunables ? QByteArray(tunables) : QByteArray())
            + end.append(number, 4));
    }
    for (int row = 1; name == "slow" && row <= WorkbookWire::MaxRows; ++row) {
        put(cellBytes(row, 0, "Part " + QByteArray::number(row)) + cellBytes(row, 1, "Name"));
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return 0;
}

/// The process ids of this process's children, from /proc.
QList<qint64> children()
{
    QList<qint64> found;
    const QString self = QString::number(QCoreApplication::applicationPid());
    for (const QString &entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(entry));
        if (!stat.open(QIODevice::ReadOnly))
            continue;
        // "pid (name) state ppid ...": the name may hold blanks, so the fields after it count.
        const QByteArray line = stat.readAll();
        const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
        if (fields.size() > 1 && fields.at(1) == self.toLatin1())
            found << entry.toLongLong();
    }
    return found;
}

int parent(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    WorkbookReaderOptions options;
    options.program = QCoreApplication::applicationFilePath();
    options.arguments = QStringList { QStringLiteral("--fault"), QString::fromLocal8Bit(argv[2]),
        QStringLiteral("--read-workbook") };
    options.timeLimit = std::chrono::hours(1);
    WorkbookReaderProcess reader(options);
    QObject::connect(&reader, &WorkbookReaderProcess::progress, &app, [] {
        for (const qint64 child : children())
            std::printf("%lld\n", child);
        std::fflush(stdout);
    });
    QObject::connect(&reader, &WorkbookReaderProcess::finished, &app, [] {
        std::printf("finished\n");
        std::fflush(stdout);
    });
    reader.start(QString::fromLocal8Bit(argv[3]));
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 4 && std::strcmp(argv[1], "--parent") == 0)
        return parent(argc, argv);
    if (argc >= 3 && std::strcmp(argv[1], "--fault") == 0)
        return fault(argv[2]);
    if (const std::optional<int> code = WorkbookReaderChild::runIfAsked(argc, argv))
        return *code;
    std::fprintf(stderr, "usage: %s [--fault kind] --read-workbook path\n", argv[0]);
    return 2;
}
