#pragma once

#include <QString>

#include <sys/resource.h>
#include <sys/types.h>

namespace tarnwick::test {

/// Makes a folder refuse new files while it lives. chmod alone does not stop root, so when the
/// tests run as root the process also acts as the user "nobody" meanwhile (the folder belongs
/// to root and is not writable by others; its parent is opened to others for reading).
class UnwritableFolder
{
public:
    UnwritableFolder(const QString &folder, const QString &parent);
    ~UnwritableFolder();
    UnwritableFolder(const UnwritableFolder &) = delete;
    UnwritableFolder &operator=(const UnwritableFolder &) = delete;

    /// True when a new file really cannot be created in the folder now.
    bool blocksNewFiles() const;

private:
    QString m_folder;
    bool m_droppedRoot = false;
};

/// Locks a folder against changes while it lives (the file system's "immutable" flag, as
/// `chattr +i` sets it): no new file, also for root, and the system answers EPERM rather than
/// EACCES. Setting the flag needs the right to (root outside most containers) and a file system
/// that has it; locked() says whether it worked.
class LockedFolder
{
public:
    explicit LockedFolder(const QString &folder);
    ~LockedFolder();
    LockedFolder(const LockedFolder &) = delete;
    LockedFolder &operator=(const LockedFolder &) = delete;

    bool locked() const { return m_locked; }

private:
    int m_handle = -1;
    int m_flags = 0;
    bool m_locked = false;
};

/// Limits the size of the files this process may write while it lives: a write that would go
/// past the limit is cut short or fails (EFBIG), as on a disk that fills up part-way, also for
/// root. The signal such a write raises is ignored meanwhile.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

    bool active() const { return m_active; }

private:
    rlimit m_old {};
    void (*m_oldHandler)(int) = nullptr;
    bool m_active = false;
};

/// A real, tiny disk: a memory file system of the given size mounted on folder (created if
/// need be) while it lives. Mounting needs the right to mount (root); mounted() says whether it
/// worked and failure() why not, so a test can skip with that reason.
class TinyDisk
{
public:
    TinyDisk(const QString &folder, int kilobytes);
    ~TinyDisk();
    TinyDisk(const TinyDisk &) = delete;
    TinyDisk &operator=(const TinyDisk &) = delete;

    bool mounted() const { return m_mounted; }
    QString failure() const { return m_failure; }
    /// Fills the disk with a file "filler.bin" until no more than freeBytes are left (rounded
    /// down to whole pages).
    void fillLeaving(qint64 freeBytes) const;
    /// Makes the disk read-only, as a write-protected drive is; false when it cannot be
    /// (a file on it still open for writing).
    bool makeReadOnly() const;

private:
    QString m_folder;
    bool m_mounted = false;
    QString m_failure;
};

} // namespace tarnwick::test
