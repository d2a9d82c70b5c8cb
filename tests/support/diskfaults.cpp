#include "support/diskfaults.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwick::test {

namespace {

constexpr uid_t NobodyId = 65534;
constexpr qint64 PageBytes = 4096;

} // namespace

UnwritableFolder::UnwritableFolder(const QString &folder, const QString &parent) : m_folder(folder)
{
    ::chmod(QFile::encodeName(parent).constData(), 0755);
    ::chmod(QFile::encodeName(folder).constData(), 0555);
    if (::geteuid() == 0)
        m_droppedRoot = ::seteuid(NobodyId) == 0;
}

UnwritableFolder::~UnwritableFolder()
{
    if (m_droppedRoot) {
        EXPECT_EQ(::seteuid(0), 0);
    }
    ::chmod(QFile::encodeName(m_folder).constData(), 0755);
}

bool UnwritableFolder::blocksNewFiles() const
{
    QFile probe(QDir(m_folder).filePath(QStringLiteral("probe.txt")));
    return !probe.open(QIODevice::WriteOnly);
}

LockedFolder::LockedFolder(const QString &folder)
    : m_handle(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (m_handle < 0 || ::ioctl(m_handle, FS_IOC_GETFLAGS, &m_flags) != 0)
        return;
    int locked = m_flags | FS_IMMUTABLE_FL;
    m_locked = ::ioctl(m_handle, FS_IOC_SETFLAGS, &locked) == 0;
}

LockedFolder::~LockedFolder()
{
    if (m_locked) {
        EXPECT_EQ(::ioctl(m_handle, FS_IOC_SETFLAGS, &m_flags), 0);
    }
    if (m_handle >= 0)
        ::close(m_handle);
}

FileSizeLimit::FileSizeLimit(rlim_t bytes)
{
    m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &m_old);
    rlimit limit = m_old;
    limit.rlim_cur = bytes;
    m_active = ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

FileSizeLimit::~FileSizeLimit()
{
    ::setrlimit(RLIMIT_FSIZE, &m_old);
    std::signal(SIGXFSZ, m_oldHandler);
}

TinyDisk::TinyDisk(const QString &folder, int kilobytes) : m_folder(folder)
{
    if (!QDir().mkpath(folder)) {
        m_failure = QStringLiteral("the folder cannot be created");
        return;
    }
    const QByteArray options = "size=" + QByteArray::number(kilobytes) + 'k';
    if (::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, options.constData())
        != 0) {
        m_failure = QString::fromLocal8Bit(std::strerror(errno));
        return;
    }
    m_mounted = true;
    ::chmod(QFile::encodeName(folder).constData(), 0755);
}

TinyDisk::~TinyDisk()
{
    if (m_mounted)
        ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
}

bool TinyDisk::makeReadOnly() const
{
    return m_mounted
        && ::mount("tmpfs", QFile::encodeName(m_folder).constData(), "tmpfs",
               MS_REMOUNT | MS_RDONLY, nullptr)
        == 0;
}

void TinyDisk::fillLeaving(qint64 freeBytes) const
{
    QFile filler(QDir(m_folder).filePath(QStringLiteral("filler.bin")));
    ASSERT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const QByteArray page(PageBytes, 'f');
    while (filler.write(page) == page.size()) { }
    // Full now: give back what is to stay free.
    const qint64 full = filler.size() / PageBytes * PageBytes;
    ASSERT_TRUE(filler.resize(qMax<qint64>(0, full - freeBytes / PageBytes * PageBytes)));
}

} // namespace tarnwick::test
