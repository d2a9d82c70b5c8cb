#include "shell/singleinstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>

namespace tarnwick {

namespace {

QString lockPathFor(const QString &appFolder)
{
    const QFileInfo folder(appFolder);
    if (folder.isDir() && folder.isWritable())
        return QDir(appFolder).filePath(QStringLiteral("tarnwick.lock"));
    const QByteArray hash =
        QCryptographicHash::hash(QDir(appFolder).absolutePath().toUtf8(), QCryptographicHash::Sha1)
            .toHex()
            .left(16);
    return QDir::temp().filePath(QStringLiteral("tarnwick-%1.lock").arg(QString::fromLatin1(hash)));
}

} // namespace

SingleInstance::SingleInstance(const QString &appFolder)
    : m_lock(std::make_unique<QLockFile>(lockPathFor(appFolder)))
{
    // A lock left by a copy that crashed is recognised as stale and taken over.
    m_lock->setStaleLockTime(0);
    m_locked = m_lock->tryLock(0);
}

SingleInstance::~SingleInstance() = default;

} // namespace tarnwick
