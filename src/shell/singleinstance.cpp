#include "shell/singleinstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>

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

} // namespace

SingleInstance::SingleInstance(const QString &appFolder)
    : m_lock(std::make_unique<QLockFile>(lockPathFor(appFolder)))
{
    // A lock left by a copy that crashed is recognised as stale and taken over.
    m_lock->setStaleLockTime(0);
    m_locked = m_lock->tryLock(0);
    if (m_locked || m_lock->error() == QLockFile::LockFailedError)
        return;
    // The folder takes no lock file although no other copy holds one (a full disk): the lock
    // goes to the temporary folder instead, and where even that cannot be written this copy
    // starts, so the user can still reach their catalogue and free some room.
    m_lock = std::make_unique<QLockFile>(temporaryLockPathFor(appFolder));
    m_lock->setStaleLockTime(0);
    m_locked = m_lock->tryLock(0) || m_lock->error() != QLockFile::LockFailedError;
}

SingleInstance::~SingleInstance() = default;

} // namespace tarnwick
