#pragma once

#include <QString>

#include <optional>

namespace tarnwick {

/// What tells one version of a file from another without reading it: its size, its time of
/// change and, where the system has them, its device and file number (a file put in its
/// place by a rename is another file even at the same size and time).
struct FileStamp
{
    qint64 size = 0;
    qint64 modifiedNs = 0;
    quint64 device = 0;
    quint64 inode = 0;
    bool operator==(const FileStamp &) const = default;
    /// The same file, whatever was written into it since: the device and file number agree
    /// (always, where the system gives no file numbers).
    bool isSameFile(const FileStamp &other) const
    {
        return device == other.device && inode == other.inode;
    }
};

/// The stamp of the file at path; none when it is not there.
std::optional<FileStamp> fileStamp(const QString &path);

/// Whether two paths name one file: the same path, or, when the file is there, the same file
/// reached another way (a link, a folder under another name, other capitals where the system
/// ignores them).
bool namesSameFile(const QString &one, const QString &other);

} // namespace tarnwick
