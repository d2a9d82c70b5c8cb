#include "exchange/workbookreaderprocess.h"

#include "exchange/workbookreaderchild.h"
#include "exchange/workbookwire.h"

#include <QCoreApplication>
#include <QEventLoop>

#if defined(Q_OS_LINUX)
#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>
#endif

namespace tarnwick {

WorkbookReaderOptions WorkbookReaderOptions::thisProgram()
{
    WorkbookReaderOptions options;
    options.program = QCoreApplication::applicationFilePath();
    options.arguments =
        QStringList { QString::fromLatin1(WorkbookReaderChild::ReadWorkbookArgument) };
    return options;
}

WorkbookReaderProcess::WorkbookReaderProcess(WorkbookReaderOptions options, QObject *parent)
    : QObject(parent), m_options(std::move(options))
{
    m_timeLimit.setSingleShot(true);
    connect(&m_timeLimit, &QTimer::timeout, this, [this] { fail(Failure::TimedOut); });
}

WorkbookReaderProcess::~WorkbookReaderProcess()
{
    stopProcess();
}

void WorkbookReaderProcess::start(const QString &path)
{
    if (isRunning())
        cancel();
    m_decoder = std::make_unique<WorkbookWire::Decoder>();
    m_received = 0;
    m_exited = false;
    m_readScheduled = false;
    m_result = WorkbookOpenResult {};
    m_outcome = Outcome::Cancelled;
    m_failure = Failure::None;
    m_process = new QProcess(this);
    m_process->setProgram(m_options.program);
    m_process->setArguments(m_options.arguments + QStringList { path });
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setStandardErrorFile(QProcess::nullDevice());
    m_process->setReadChannel(QProcess::StandardOutput);
    m_process->setProcessEnvironment(readerEnvironment(QProcessEnvironment::systemEnvironment()));
#if defined(Q_OS_LINUX)
    // The reader lives no longer than the program: killed with it, also while it waits on a
    // file that never answers (a stalled network share). A program already gone before this
    // ran gets no reader at all.
    m_process->setChildProcessModifier([parent = ::getpid()] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(127);
    });
#endif
    connect(
        m_process, &QProcess::readyReadStandardOutput, this, &WorkbookReaderProcess::readOutput);
    connect(m_process, &QProcess::finished, this, &WorkbookReaderProcess::processFinished);
    connect(m_process, &QProcess::errorOccurred, this, &WorkbookReaderProcess::processFailed);
    m_timeLimit.start(m_options.timeLimit);
    m_process->start(QIODevice::ReadOnly);
}

QProcessEnvironment WorkbookReaderProcess::readerEnvironment(QProcessEnvironment environment)
{
    // A fresh process meets every page of its memory for the first time: a large sheet cost
    // tens of thousands of page faults, a third of the reading of an .xls. glibc (2.35 on)
    // asks for huge pages for the reader's memory with this setting, where the system offers
    // them on request; other C libraries ignore it.
    const QString tunables = environment.value(QStringLiteral("GLIBC_TUNABLES"));
    environment.insert(QStringLiteral("GLIBC_TUNABLES"),
        (tunables.isEmpty() ? QString() : tunables + QLatin1Char(':'))
            + QStringLiteral("glibc.malloc.hugetlb=1"));
#if defined(TARNWICK_READER_SANITIZED)
    environment.insert(QStringLiteral("ASAN_OPTIONS"),
        environment.value(QStringLiteral("ASAN_OPTIONS"))
            + QStringLiteral(":hard_rss_limit_mb=1024:detect_leaks=0"));
#endif
    return environment;
}

void WorkbookReaderProcess::cancel()
{
    if (isRunning())
        end(Outcome::Cancelled);
}

int WorkbookReaderProcess::rowsRead() const
{
    return m_decoder ? m_decoder->rows() : 0;
}

WorkbookOpenResult WorkbookReaderProcess::takeResult()
{
    return std::move(m_result);
}

void WorkbookReaderProcess::readOutput()
{
    m_readScheduled = false;
    if (!m_process)
        return;
    const int rowsBefore = m_decoder->rows();
    const QByteArray bytes = m_process->read(OutputSlice);
    m_received += bytes.size();
    // Rows the reader withdrew (written while it read, before it found cells out of order) are
    // no longer kept.
    if (m_received - m_decoder->withdrawnBytes() > m_options.outputLimit) {
        fail(Failure::OutputTooLarge);
        return;
    }
    if (m_decoder->feed(bytes) == WorkbookWire::Decoder::State::Malformed) {
        fail(Failure::Malformed);
        return;
    }
    if (m_decoder->rows() != rowsBefore)
        Q_EMIT progress(m_decoder->rows());
    // What is left is decoded in the next pass of the event loop, so a reader that writes
    // faster than this process decodes never keeps the window from painting or from Cancel.
    if (m_process->bytesAvailable() > 0) {
        scheduleRead();
    } else if (m_exited) {
        readerEnded();
    }
}

void WorkbookReaderProcess::scheduleRead()
{
    if (m_readScheduled)
        return;
    m_readScheduled = true;
    QTimer::singleShot(0, this, &WorkbookReaderProcess::readOutput);
}

void WorkbookReaderProcess::processFinished(int exitCode, QProcess::ExitStatus status)
{
    if (!m_process)
        return;
    m_exited = true;
    m_exitCode = exitCode;
    m_exitStatus = status;
    if (m_process->bytesAvailable() > 0)
        scheduleRead();
    else
        readerEnded();
}

void WorkbookReaderProcess::readerEnded()
{
    const int exitCode = m_exitCode;
    const QProcess::ExitStatus status = m_exitStatus;
    if (status == QProcess::NormalExit && exitCode == WorkbookReaderChild::ExitOutOfMemory) {
        end(Outcome::Unreadable, Failure::OutOfMemory, OutOfMemoryError);
        return;
    }
    const WorkbookWire::Decoder::State state = m_decoder->finish();
    if (status != QProcess::NormalExit || exitCode != 0) {
        fail(Failure::Crashed);
    } else if (state == WorkbookWire::Decoder::State::Malformed) {
        fail(Failure::Malformed);
    } else if (state == WorkbookWire::Decoder::State::Failed) {
        end(Outcome::Unreadable, Failure::NotAWorkbook, m_decoder->errorNumber());
    } else {
        m_result.workbook = m_decoder->takeWorkbook();
        end(Outcome::Read);
    }
}

void WorkbookReaderProcess::processFailed(QProcess::ProcessError error)
{
    // A crash is reported by finished() as well, with what the reader wrote before it.
    if (m_process && error == QProcess::FailedToStart) {
        m_notStartedBecause = m_process->errorString();
        fail(Failure::NotStarted);
    }
}

void WorkbookReaderProcess::end(Outcome outcome, Failure failure, int errorNumber)
{
    stopProcess();
    m_decoder.reset();
    m_outcome = outcome;
    m_failure = failure;
    if (outcome == Outcome::Unreadable)
        m_result = notAWorkbook(errorNumber);
    // Not the file's fault: the system gave no new process (too many files open, too little
    // memory, the program replaced on the disk while it runs).
    if (failure == Failure::NotStarted) {
        m_result.errorText =
            QStringLiteral("The spreadsheet could not be read: Tarnwick could not start the part "
                           "of itself that reads spreadsheets (%1). Close other programs or "
                           "windows, then try again.")
                .arg(m_notStartedBecause);
    }
    Q_EMIT finished();
}

void WorkbookReaderProcess::stopProcess()
{
    m_timeLimit.stop();
    QProcess *process = m_process;
    if (!process)
        return;
    m_process = nullptr;
    process->disconnect(this);
    if (process->state() != QProcess::NotRunning) {
        process->kill();
        process->waitForFinished(1000);
    }
    process->deleteLater();
}

WorkbookOpenResult WorkbookReaderProcess::read(
    const QString &path, const WorkbookReaderOptions &options)
{
    WorkbookReaderProcess reader(options);
    QEventLoop loop;
    connect(&reader, &WorkbookReaderProcess::finished, &loop, &QEventLoop::quit);
    reader.start(path);
    if (reader.isRunning())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    return reader.takeResult();
}

} // namespace tarnwick
