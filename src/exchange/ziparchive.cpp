#include "exchange/ziparchive.h"

#include <QFile>

#include <zip.h>

#include <algorithm>

namespace tarnwick {

namespace {

/// The piece of a member inflated at a time.
constexpr qsizetype ZipReadPiece = qsizetype(64) << 10;

} // namespace

ZipArchive::ZipArchive(const QString &path)
{
    int error = 0;
    m_archive = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &error);
}

ZipArchive::ZipArchive(const QByteArray &bytes) : m_bytes(bytes)
{
    // The source reads m_bytes in place; this object keeps them while the archive is open.
    zip_source_t *source =
        zip_source_buffer_create(m_bytes.constData(), zip_uint64_t(m_bytes.size()), 0, nullptr);
    if (source == nullptr) {
        return;
    }
    m_archive = zip_open_from_source(source, ZIP_RDONLY, nullptr);
    if (m_archive == nullptr) {
        zip_source_free(source);
    }
}

ZipArchive::~ZipArchive()
{
    if (m_archive != nullptr) {
        zip_discard(m_archive);
    }
}

std::optional<QByteArray> ZipArchive::member(const QString &name, qsizetype limit) const
{
    if (m_archive == nullptr) {
        return std::nullopt;
    }
    const QByteArray encodedName = name.toUtf8();
    zip_stat_t stat;
    zip_stat_init(&stat);
    zip_file_t *file = zip_stat(m_archive, encodedName.constData(), 0, &stat) == 0
        ? zip_fopen(m_archive, encodedName.constData(), 0)
        : nullptr;
    if (file == nullptr) {
        return std::nullopt;
    }
    QByteArray bytes;
    bool whole = false;
    while (bytes.size() <= limit) {
        const qsizetype at = bytes.size();
        if (bytes.capacity() < at + ZipReadPiece) {
            // Doubling, never beyond what the longest member and one more piece take.
            bytes.reserve(
                std::min(std::max(2 * bytes.capacity(), at + ZipReadPiece), limit + ZipReadPiece));
        }
        bytes.resize(at + ZipReadPiece);
        const zip_int64_t read = zip_fread(file, bytes.data() + at, zip_uint64_t(ZipReadPiece));
        bytes.resize(at + std::max<qsizetype>(qsizetype(read), 0));
        if (read <= 0) {
            whole = read == 0;
            break;
        }
    }
    zip_fclose(file);
    // A member that inflates to another size than its headers say is damaged.
    if (!whole || ((stat.valid & ZIP_STAT_SIZE) && stat.size != zip_uint64_t(bytes.size()))) {
        return std::nullopt;
    }
    return bytes;
}

} // namespace tarnwick
