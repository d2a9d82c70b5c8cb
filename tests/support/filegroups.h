#pragma once

// The group of a file, and a group other than the process's own a file may be given, for the
// checks that a saved file keeps the group a shared catalogue has.
#include <QFile>
#include <QString>

#include <sys/stat.h>
#include <unistd.h>

#include <vector>

namespace tarnwick::test {

/// The group of the file at path; -1 when it cannot be looked at.
inline long groupOf(const QString &path)
{
    struct stat info
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? long(info.st_gid) : -1;
}

/// The permission bits of the file at path.
inline unsigned modeOf(const QString &path)
{
    struct stat info
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 07777U : 0U;
}

/// Gives the file at path a group other than the process's own: any other where the process
/// may (root), else one of the user's other groups. Returns the file's group afterwards, which
/// is the process's own where the user has no other group to give.
inline long giveOtherGroup(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const gid_t own = ::getegid();
    std::vector<gid_t> candidates;
    if (::geteuid() == 0)
        candidates.push_back(own == 100 ? 101 : 100);
    const int count = ::getgroups(0, nullptr);
    if (count > 0) {
        std::vector<gid_t> groups(std::size_t(count), 0);
        if (::getgroups(count, groups.data()) == count)
            candidates.insert(candidates.end(), groups.begin(), groups.end());
    }
    for (const gid_t group : candidates) {
        if (group != own && ::chown(name.constData(), uid_t(-1), group) == 0)
            break;
    }
    return groupOf(path);
}

} // namespace tarnwick::test
