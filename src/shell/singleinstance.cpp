#include "shell/singleinstance.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QLockFile>
#include <QSysInfo>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#endif

namespace tarnwick {

namespace {

QString temporaryLockPathFor(const QString &appFolder)
{
    const QByteArray hash =
        QCryptographicHash::hash(QDir(appFolder).absolutePath().toUtf8(), QCryptographicHash::Sha1)
            .toHex()
            .left(16);
    return QDir::temp().filePath(QStringLiteral("tarnwick-%1.lock").arg(QString::fromLatin1(hash)));
}

QString lockPathFor(const QString &appFolder)
{
    const QFileInfo folder(appFolder);
    if (folder.isDir() && folder.isWritable())
        return QDir(appFolder).filePath(QStringLiteral("tarnwick.lock"));
    return temporaryLockPathFor(appFolder);
}

/// How old a lock file that says nothing of its holder must be to count as left behind: a copy
/// writes its process number at once. A time as far still to come counts as old too: the
/// clock was set back since the file was written.
constexpr qint64 UnreadableLockSeconds = 10;

bool isProcessRunning(qint64 pid)
{
#ifdef Q_OS_UNIX
    return ::kill(pid_t(pid), 0) == 0 || errno == EPERM;
#else
    Q_UNUSED(pid);
    return true; // Qt's own stale-lock check is the only one there
#endif
}

/// Whether the lock file at path was written on this computer: by its host name and, where the
/// lock names one, its machine number (two computers made from one disk image, or both called
/// "laptop", share a host name, and a process number of the one says nothing on the other).
bool writtenOnThisComputer(const QString &host, const QString &path)
{
    if (!host.isEmpty() && host != QSysInfo::machineHostName())
        return false;
    // Qt's lock file: process number, application, host name, machine number, boot number.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QList<QByteArray> lines = file.read(4096).split('\n');
    const QByteArray machine = lines.size() > 3 ? lines[3].trimmed() : QByteArray();
    return machine.isEmpty() || machine == QSysInfo::machineUniqueId();
}

/// Whether the lock at path was left by a copy that is gone: one of this computer whose process
/// no longer runs, or a lock file that says nothing of its holder (written half by a copy that
/// stopped on a full disk) and is not new. Qt takes over such a lock by itself only when it can
/// write a second lock file beside it, which a full disk does not allow.
bool holderIsGone(const QLockFile &lock, const QString &path)
{
    qint64 pid = 0;
    QString host;
    QString application;
    if (!lock.getLockInfo(&pid, &host, &application)) {
        const QFileInfo file(path);
        if (!file.exists())
            return false;
        const qint64 age = file.lastModified().secsTo(QDateTime::currentDateTime());
        // A time still to come counts only for a file this copy can read (another user's lock
        // it cannot read may be live on a share whose clock runs ahead).
        return age > UnreadableLockSeconds || (age < -UnreadableLockSeconds && file.isReadable());
    }
    return writtenOnThisComputer(host, path) && pid > 0 && !isProcessRunning(pid);
}

/// The refusal when the lock at path was written on another computer (a folder shared, or
/// kept in step by a program), whose copy cannot be seen from here: it names that computer and
/// the way out once it is off. Empty for a lock of this computer.
QString otherComputerRefusal(const QLockFile &lock, const QString &path)
{
    qint64 pid = 0;
    QString host;
    QString application;
    if (!lock.getLockInfo(&pid, &host, &application) || writtenOnThisComputer(host, path))
        return QString();
    const QString since = QLocale().toString(QFileInfo(path).lastModified(), QLocale::ShortFormat);
    // Under this computer's own name it is another computer of the same name, which the user
    // would otherwise look for here.
    const QString computer = host == QSysInfo::machineHostName()
        ? QStringLiteral("another computer also called \"%1\"").arg(host)
        : QStringLiteral("the computer \"%1\"").arg(host);
    return QStringLiteral(
        "Tarnwick is already running on %1 with this folder (since %2).\n\nIf it is certainly "
        "not running there any more (that computer was switched off, or Tarnwick ended there "
        "without closing), delete the file \"%3\" and start Tarnwick again.")
        .arg(computer, since, QDir::toNativeSeparators(path));
}

} // namespace

SingleInstance::SingleInstance(const QString &appFolder)
    : m_lock(std::make_unique<QLockFile>(lockPathFor(appFolder)))
{
    // A lock left by a copy that crashed is recognised as stale and taken over.
    m_lock->setStaleLockTime(0);
    m_locked = m_lock->tryLock(0);
    const QString path = lockPathFor(appFolder);
    // A lock left behind that cannot be removed either (a disk that turned read-only after a
    // write error still looks writable) holds no other copy out.
    bool leftBehind = false;
    if (!m_locked && m_lock->error() == QLockFile::LockFailedError && holderIsGone(*m_lock, path)) {
        if (QFile::remove(path))
            m_locked = m_lock->tryLock(0);
        else
            leftBehind = true;
    }
    if (!m_locked && m_lock->error() == QLockFile::LockFailedError && !leftBehind)
        m_refusal = otherComputerRefusal(*m_lock, path);
    if (m_locked || (m_lock->error() == QLockFile::LockFailedError && !leftBehind))
        return;
    // The folder takes no lock file although no other copy holds one (a full disk, a disk gone
    // read-only): the lock goes to the temporary folder instead, and where even that cannot be
    // written this copy starts, so the user can still reach their catalogue and free some room.
    m_lock = std::make_unique<QLockFile>(temporaryLockPathFor(appFolder));
    m_lock->setStaleLockTime(0);
    m_locked = m_lock->tryLock(0) || m_lock->error() != QLockFile::LockFailedError;
}

SingleInstance::~SingleInstance() = default;

} // namespace tarnwick
