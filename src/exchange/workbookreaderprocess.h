#pragma once

#include "exchange/workbook.h"

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <memory>

namespace tarnwick {

namespace WorkbookWire {
class Decoder;
}

/// The program that reads workbooks and the bounds it runs within.
struct WorkbookReaderOptions
{
    /// The program to start (this program by default) and the arguments before the path.
    QString program;
    QStringList arguments;
    /// How long a read may take before the reader is stopped and the file called unreadable.
    std::chrono::milliseconds timeLimit { 60000 };
    /// How many bytes the reader may write before it is stopped.
    qint64 outputLimit = qint64(256) << 20;

    /// This program started as "<program> --read-workbook <path>".
    static WorkbookReaderOptions thisProgram();
};

/// Reads the first worksheet of a workbook in a process of its own, so a file that would crash
/// the reader, exhaust its memory or keep it busy can only end that process: the program gets
/// the unreadable-file result ("This file is not an Excel 97 file.") and goes on. The output
/// is decoded as it arrives; the event loop keeps running meanwhile. The cells that arrive
/// serve both the column listing and the import, so a workbook is read once.
class WorkbookReaderProcess : public QObject
{
    Q_OBJECT

public:
    enum class Outcome { Read, Unreadable, Cancelled };
    /// Why a file was unreadable.
    enum class Failure {
        None,
        /// The reader could not open the file and said so.
        NotAWorkbook,
        /// The reader ended by a signal (a crash, an abort, its CPU limit) or with an error.
        Crashed,
        /// The reader ran out of its memory.
        OutOfMemory,
        /// The read took longer than the time limit.
        TimedOut,
        /// The reader wrote more than the output limit.
        OutputTooLarge,
        /// The reader wrote something that is not a worksheet.
        Malformed,
        /// The reader could not be started.
        NotStarted,
    };

    /// Error numbers of the unreadable results that do not come from the reader itself.
    static constexpr int OutOfMemoryError = 7;
    static constexpr int ReaderFailedError = 51;
    /// The most output decoded in one pass of the event loop.
    static constexpr qint64 OutputSlice = qint64(1) << 20;

    explicit WorkbookReaderProcess(
        WorkbookReaderOptions options = WorkbookReaderOptions::thisProgram(),
        QObject *parent = nullptr);
    ~WorkbookReaderProcess() override;

    const WorkbookReaderOptions &options() const { return m_options; }
    void setOptions(const WorkbookReaderOptions &options) { m_options = options; }

    /// Starts reading path; finished() follows, also when the reader cannot be started. A read
    /// still running is cancelled first.
    void start(const QString &path);
    /// Stops the read at once (the reader process is killed); finished() reports Cancelled.
    void cancel();
    bool isRunning() const { return m_process != nullptr; }
    /// The worksheet rows that arrived so far.
    int rowsRead() const;

    /// After finished(): how the read ended.
    Outcome outcome() const { return m_outcome; }
    Failure failure() const { return m_failure; }
    /// After finished(): the worksheet, or the error of an unreadable file (once).
    WorkbookOpenResult takeResult();

    /// The environment the reader runs in: this process's, with the reader's memory asked
    /// for in huge pages where the C library can.
    static QProcessEnvironment readerEnvironment(QProcessEnvironment environment);

    /// Reads path and waits for the result, running the event loop meanwhile.
    static WorkbookOpenResult read(const QString &path,
        const WorkbookReaderOptions &options = WorkbookReaderOptions::thisProgram());

Q_SIGNALS:
    /// More rows arrived.
    void progress(int rows);
    /// The read is over: see outcome() and takeResult().
    void finished();

private:
    /// Decodes at most OutputSlice bytes of the reader's output, the rest in later passes.
    void readOutput();
    void scheduleRead();
    void processFinished(int exitCode, QProcess::ExitStatus status);
    /// The reader has ended and all it wrote is decoded: the result.
    void readerEnded();
    void processFailed(QProcess::ProcessError error);
    void end(Outcome outcome, Failure failure = Failure::None, int errorNumber = 0);
    void fail(Failure failure) { end(Outcome::Unreadable, failure, ReaderFailedError); }
    void stopProcess();

    WorkbookReaderOptions m_options;
    QProcess *m_process = nullptr;
    QTimer m_timeLimit;
    std::unique_ptr<WorkbookWire::Decoder> m_decoder;
    qint64 m_received = 0;
    bool m_readScheduled = false;
    bool m_exited = false;
    int m_exitCode = 0;
    QProcess::ExitStatus m_exitStatus = QProcess::NormalExit;
    Outcome m_outcome = Outcome::Cancelled;
    Failure m_failure = Failure::None;
    /// Why the system gave no reader, as it says it.
    QString m_notStartedBecause;
    WorkbookOpenResult m_result;
};

} // namespace tarnwick
