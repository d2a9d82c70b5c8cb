#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

struct zip;

namespace tarnwick {

/// A zip archive opened for reading, from a file or from the file's bytes. Only this pair of
/// files uses libzip.
class ZipArchive
{
public:
    /// A member that inflates to more than this is not read: a worksheet of this size is far
    /// beyond what the program can import, and a zip bomb stops here.
    static constexpr qsizetype MaxMemberBytes = qsizetype(512) << 20;

    /// Opens the archive at path; isOpen() says whether it is one.
    explicit ZipArchive(const QString &path);
    /// Opens the archive held in bytes.
    explicit ZipArchive(const QByteArray &bytes);
    ~ZipArchive();
    ZipArchive(const ZipArchive &) = delete;
    ZipArchive &operator=(const ZipArchive &) = delete;

    bool isOpen() const { return m_archive != nullptr; }

    /// The bytes of one member, or nothing when the archive has no such member, it cannot be
    /// read whole (a damaged stream, a wrong checksum, another size than its headers say) or
    /// it inflates to more than limit bytes. The member is read piece by piece: the sizes the
    /// archive declares are never trusted for an allocation.
    std::optional<QByteArray> member(const QString &name, qsizetype limit = MaxMemberBytes) const;

private:
    QByteArray m_bytes; ///< the archive's bytes when it is read from memory
    zip *m_archive = nullptr;
};

} // namespace tarnwick
