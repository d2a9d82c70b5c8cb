#pragma once

#include <QString>

#include <optional>

// The address sanitizer reserves terabytes of address space for its shadow memory: a reader
// built with it runs without the address-space limit, and the parent gives it the sanitizer's
// own limit of resident memory instead (the CPU limit and the parent's checks stay). Its leaks
// are not checked: it ends by a signal as often as not, and the readers' leaks are checked where
// the tests run them in their own process.
#if defined(__SANITIZE_ADDRESS__)
#define TARNWICK_READER_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARNWICK_READER_SANITIZED 1
#endif
#endif

namespace tarnwick::WorkbookReaderChild {

/// The argument that makes the program a workbook reader: "tarnwick --read-workbook <path>"
/// reads the first worksheet of path and writes it to standard output (WorkbookWire), then ends.
inline constexpr char ReadWorkbookArgument[] = "--read-workbook";

/// What a reader that ran out of memory under its limits returns; the parent reports the file
/// with the error number for "Out of memory".
constexpr int ExitOutOfMemory = 3;
/// What a reader returns when its output could not be written.
constexpr int ExitOutputFailed = 4;

/// The CPU seconds a reader may use before the system ends it, and its address space.
constexpr int DefaultCpuSeconds = 30;
constexpr qint64 AddressSpaceBytes = qint64(1) << 30;

/// Sets the limits of a reader on the process itself (on Linux: address space, CPU time, no
/// core dump); elsewhere it does nothing and the reader simply runs.
void applyLimits(int cpuSeconds = DefaultCpuSeconds);

/// Reads the file and writes the worksheet or the error to standard output; returns the exit
/// code. The limits are applied first.
int run(const QString &path);

/// When the command line asks for a reader (argv[1] is ReadWorkbookArgument and argv[2] the
/// path), runs it and returns its exit code; otherwise nothing. Called before any application
/// object exists.
std::optional<int> runIfAsked(int argc, char *argv[]);

} // namespace tarnwick::WorkbookReaderChild
