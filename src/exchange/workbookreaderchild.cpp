#include "exchange/workbookreaderchild.h"

#include "exchange/sheetcells.h"
#include "exchange/workbook.h"
#include "exchange/workbookwire.h"

#include <QFile>

#include <cstdio>
#include <cstring>
#include <new>

#if defined(Q_OS_LINUX)
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>
#elif defined(Q_OS_WIN)
#include <fcntl.h>
#include <io.h>
#include <qt_windows.h>
#include <shellapi.h>
#endif

namespace tarnwick::WorkbookReaderChild {

namespace {

#if defined(Q_OS_LINUX)
void setReaderLimit(int resource, rlim_t value)
{
    const rlimit limit { value, value };
    setrlimit(resource, &limit);
}
#endif

/// The workbook's path as the program was given it.
QString pathArgument(const char *given)
{
#if defined(Q_OS_WIN)
    // main's arguments are in the system's ANSI code page, which cannot spell every file name
    // (a Greek or Polish name on a Western system): the path is read again from the command
    // line as Windows keeps it, in UTF-16.
    int count = 0;
    wchar_t **const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    const QString path =
        arguments && count == 3 ? QString::fromWCharArray(arguments[2]) : QFile::decodeName(given);
    LocalFree(arguments);
    return path;
#else
    return QFile::decodeName(given);
#endif
}

/// Writes all bytes to standard output; false when the parent is gone.
bool writeToParent(const QByteArray &bytes)
{
    return std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout)
        == std::size_t(bytes.size());
}

} // namespace

void applyLimits(int cpuSeconds)
{
#if defined(Q_OS_LINUX)
    setReaderLimit(RLIMIT_CORE, 0);
    prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    // The soft limit sends SIGXCPU, which ends the reader; the hard one a second later kills it.
    const rlimit cpu { rlim_t(cpuSeconds), rlim_t(cpuSeconds) + 1 };
    setrlimit(RLIMIT_CPU, &cpu);
#if !defined(TARNWICK_READER_SANITIZED)
    setReaderLimit(RLIMIT_AS, rlim_t(AddressSpaceBytes));
#endif
#else
    Q_UNUSED(cpuSeconds);
#endif
}

int run(const QString &path)
{
    applyLimits();
    // Rows go out while the file is read: in pieces of a mebibyte, so the program wakes for
    // each of them, not for every 64 KiB the pipe would otherwise hold.
    static char buffer[1 << 20];
#if defined(Q_OS_WIN)
    // The output is bytes: in the C library's text mode every "\n" would leave as "\r\n".
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
#if defined(Q_OS_LINUX)
    fcntl(STDOUT_FILENO, F_SETPIPE_SZ, int(sizeof buffer));
#endif
    bool written = true;
    try {
        // Rows go to the parent as they are read, so it decodes them meanwhile.
        WorkbookWire::SheetWriter writer(
            [&written](const QByteArray &bytes) { written = written && writeToParent(bytes); });
        auto cells = std::make_unique<SheetCells>();
        SheetCells *store = cells.get();
        store->setRowCompleteListener([&writer, store] { writer.writeCompleteRows(*store); });
        const SheetReadResult read = readSheetFile(path, std::move(cells));
        if (read.cells)
            writer.finish(*read.cells);
        else
            writer.fail(read.errorNumber, read.errorText);
    } catch (const std::bad_alloc &) {
        return ExitOutOfMemory;
    }
    if (std::fflush(stdout) != 0 || !written)
        return ExitOutputFailed;
    return 0;
}

std::optional<int> runIfAsked(int argc, char *argv[])
{
    if (argc != 3 || std::strcmp(argv[1], ReadWorkbookArgument) != 0)
        return std::nullopt;
    return run(pathArgument(argv[2]));
}

} // namespace tarnwick::WorkbookReaderChild
