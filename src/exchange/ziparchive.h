#pragma once

#include <QByteArrayView>

#include <memory>
#include <string_view>

namespace tarnwick {

/// A zip archive held in memory, whose members are read in pieces as they are inflated, so a
/// member is never held whole. Only ziparchive.cpp uses libzip.
class ZipArchive
{
public:
    /// The most bytes a member may inflate to; a larger one reads as damaged.
    static constexpr qint64 MaxMemberBytes = qint64(1) << 30;

    /// One member being read.
    class Member
    {
    public:
        virtual ~Member() = default;
        /// Reads up to size inflated bytes into data; returns how many, 0 at the end of the
        /// member, -1 when it is damaged (its data, its checksum or another size than its
        /// headers say) or inflates beyond its limit.
        virtual qint64 read(char *data, qint64 size) = 0;
    };

    /// The archive in bytes (which must outlive it), or nullptr when they are no zip archive.
    static std::unique_ptr<ZipArchive> open(QByteArrayView bytes);
    ~ZipArchive();
    ZipArchive(const ZipArchive &) = delete;
    ZipArchive &operator=(const ZipArchive &) = delete;

    /// Whether the archive holds a member of that name (letter case aside, as the workbook
    /// formats name their parts).
    bool contains(std::string_view name) const;
    /// The member of that name opened for reading, or nullptr. Reading it fails once it
    /// inflates beyond limit bytes.
    std::unique_ptr<Member> member(std::string_view name, qint64 limit = MaxMemberBytes) const;
    /// The member read ahead: a thread of its own inflates it a few pieces ahead of the reader,
    /// so parsing a large part and inflating it use a processor core each. Reads give the same
    /// bytes and results as the member's own; nullptr stays nullptr. While such a member is
    /// open, nothing else of its archive may be used (libzip is not used from two threads).
    static std::unique_ptr<Member> readAhead(std::unique_ptr<Member> member);

private:
    struct Handle;
    explicit ZipArchive(std::unique_ptr<Handle> handle);
    std::unique_ptr<Handle> m_handle;
};

} // namespace tarnwick
