#include "platform/qt/clipboardkeeper.h"

#include "platform/qt/clipboardkeeperx11.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <QTimer>
#include <QtEndian>

#include <cstring>

#ifdef Q_OS_UNIX
#include <signal.h>
#endif

namespace tarnwick::ClipboardKeeper {

namespace {

constexpr char Magic[] = "TWCLIP1\n";
constexpr qsizetype MagicSize = qsizetype(sizeof(Magic) - 1);
constexpr int MaxTargets = 64;
constexpr int MaxNameBytes = 256;
/// How long the program waits for its keeper to take the clipboard before it says so.
constexpr int HandOverWaitMs = 5000;

void appendNumber(QByteArray &bytes, quint32 number)
{
    const quint32 bigEndian = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char *>(&bigEndian), sizeof bigEndian);
}

/// Reads a number and moves on; nothing when fewer than four bytes are left.
std::optional<quint32> takeNumber(const QByteArray &bytes, qsizetype &at)
{
    if (bytes.size() - at < qsizetype(sizeof(quint32)))
        return std::nullopt;
    const quint32 number = qFromBigEndian<quint32>(bytes.constData() + at);
    at += qsizetype(sizeof(quint32));
    return number;
}

std::optional<QByteArray> takeBytes(const QByteArray &bytes, qsizetype &at, qsizetype limit)
{
    const std::optional<quint32> size = takeNumber(bytes, at);
    if (!size || qsizetype(*size) > limit || qsizetype(*size) > bytes.size() - at)
        return std::nullopt;
    QByteArray taken = bytes.mid(at, qsizetype(*size));
    at += qsizetype(*size);
    return taken;
}

QString handOverFolder()
{
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return runtime.isEmpty() ? QDir::tempPath() : runtime;
}

} // namespace

QList<Target> targetsFor(const QMimeData &data)
{
    QList<Target> targets;
    const QStringList formats = data.formats();
    for (const QString &format : formats) {
        const QByteArray bytes = data.data(format);
        targets.append(Target { format.toLatin1(), bytes });
        if (format == QLatin1String("text/plain")) {
            const QByteArray latin1 = QString::fromUtf8(bytes).toLatin1();
            targets.append(Target { QByteArrayLiteral("UTF8_STRING"), bytes });
            targets.append(Target { QByteArrayLiteral("STRING"), latin1 });
            targets.append(Target { QByteArrayLiteral("TEXT"), latin1 });
        }
    }
    return targets;
}

QByteArray encode(const QList<Target> &targets)
{
    QByteArray bytes(Magic, MagicSize);
    appendNumber(bytes, quint32(targets.size()));
    for (const Target &target : targets) {
        appendNumber(bytes, quint32(target.name.size()));
        bytes.append(target.name);
        appendNumber(bytes, quint32(target.data.size()));
        bytes.append(target.data);
    }
    return bytes;
}

std::optional<QList<Target>> decode(const QByteArray &bytes)
{
    if (!bytes.startsWith(QByteArray(Magic, MagicSize)))
        return std::nullopt;
    qsizetype at = MagicSize;
    const std::optional<quint32> count = takeNumber(bytes, at);
    if (!count || *count > quint32(MaxTargets))
        return std::nullopt;
    QList<Target> targets;
    for (quint32 i = 0; i < *count; ++i) {
        std::optional<QByteArray> name = takeBytes(bytes, at, MaxNameBytes);
        if (!name || name->isEmpty())
            return std::nullopt;
        std::optional<QByteArray> data = takeBytes(bytes, at, MaxTargetBytes);
        if (!data)
            return std::nullopt;
        targets.append(Target { *std::move(name), *std::move(data) });
    }
    if (at != bytes.size())
        return std::nullopt;
    return targets;
}

std::optional<int> runIfAsked(int argc, char *argv[])
{
    if (argc != 3 || std::strcmp(argv[1], KeepClipboardArgument) != 0)
        return std::nullopt;
    QFile file(QFile::decodeName(argv[2]));
    if (!file.open(QIODevice::ReadOnly))
        return 2;
    const QByteArray bytes = file.read(MaxTargets * (MaxTargetBytes + MaxNameBytes + 8) + 64);
    file.close();
    // Only a hand-over is the keeper's to delete: any other file named here stays as it is.
    if (!bytes.startsWith(QByteArray(Magic, MagicSize)))
        return 2;
    file.remove();
    const std::optional<QList<Target>> targets = decode(bytes);
    if (!targets || targets->isEmpty())
        return 2;
    return serveOnX11Clipboard(*targets);
}

bool handOver(const QMimeData &data)
{
    if (!x11DisplayRuns())
        return false;
    const QList<Target> targets = targetsFor(data);
    if (targets.isEmpty())
        return false;
    for (const Target &target : targets) {
        if (target.data.size() > MaxTargetBytes)
            return false;
    }
    QTemporaryFile file(handOverFolder() + QStringLiteral("/tarnwick-clipboard-XXXXXX"));
    file.setAutoRemove(false);
    const QByteArray bytes = encode(targets);
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush()) {
        file.remove();
        return false;
    }
    file.close();

    QProcess keeper;
    keeper.setProgram(QCoreApplication::applicationFilePath());
    keeper.setArguments({ QString::fromLatin1(KeepClipboardArgument), file.fileName() });
    // The keeper outlives the program: it holds no folder of the user's and writes nowhere.
    keeper.setWorkingDirectory(QDir::rootPath());
    keeper.setStandardInputFile(QProcess::nullDevice());
    keeper.setStandardOutputFile(QProcess::nullDevice());
    keeper.setStandardErrorFile(QProcess::nullDevice());
    qint64 pid = 0;
    if (!keeper.startDetached(&pid)) {
        file.remove();
        return false;
    }

    // The keeper has the copy once this program no longer owns the clipboard.
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (clipboard->ownsClipboard()) {
        QEventLoop loop;
        QTimer deadline;
        deadline.setSingleShot(true);
        QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
        QObject::connect(clipboard, &QClipboard::changed, &loop, [&](QClipboard::Mode mode) {
            if (mode == QClipboard::Clipboard && !clipboard->ownsClipboard())
                loop.quit();
        });
        deadline.start(HandOverWaitMs);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    if (!clipboard->ownsClipboard())
        return true;
#ifdef Q_OS_UNIX
    if (pid > 0)
        ::kill(pid_t(pid), SIGTERM);
#endif
    QFile::remove(file.fileName());
    return false;
}

} // namespace tarnwick::ClipboardKeeper
