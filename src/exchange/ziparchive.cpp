#include "exchange/ziparchive.h"

#include <algorithm>
#include <string>

#include <zip.h>

namespace tarnwick {

struct ZipArchive::Handle
{
    zip_t *archive = nullptr;
    ~Handle()
    {
        if (archive != nullptr)
            zip_discard(archive);
    }
};

namespace {

class ZipMemberReader : public ZipArchive::Member
{
public:
    ZipMemberReader(zip_file_t *file, qint64 declaredSize, qint64 limit)
        : m_file(file), m_declared(declaredSize), m_limit(limit)
    {
    }
    ~ZipMemberReader() override { zip_fclose(m_file); }
    ZipMemberReader(const ZipMemberReader &) = delete;
    ZipMemberReader &operator=(const ZipMemberReader &) = delete;

    qint64 read(char *data, qint64 size) override
    {
        if (m_failed)
            return -1;
        const zip_int64_t count = zip_fread(m_file, data, zip_uint64_t(size));
        m_total += count > 0 ? count : 0;
        // A member that inflates to other than the size its headers give is damaged.
        if (count < 0 || m_total > m_limit || m_total > m_declared
            || (count == 0 && m_total != m_declared)) {
            m_failed = true;
            return -1;
        }
        return count;
    }

private:
    zip_file_t *m_file;
    qint64 m_declared;
    qint64 m_limit;
    qint64 m_total = 0;
    bool m_failed = false;
};

} // namespace

ZipArchive::ZipArchive(std::unique_ptr<Handle> handle) : m_handle(std::move(handle)) { }

ZipArchive::~ZipArchive() = default;

std::unique_ptr<ZipArchive> ZipArchive::open(QByteArrayView bytes)
{
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t *source =
        zip_source_buffer_create(bytes.data(), zip_uint64_t(bytes.size()), 0, &error);
    if (source == nullptr) {
        zip_error_fini(&error);
        return nullptr;
    }
    zip_t *archive = zip_open_from_source(source, ZIP_RDONLY, &error);
    zip_error_fini(&error);
    if (archive == nullptr) {
        zip_source_free(source);
        return nullptr;
    }
    auto handle = std::make_unique<Handle>();
    handle->archive = archive;
    return std::unique_ptr<ZipArchive>(new ZipArchive(std::move(handle)));
}

bool ZipArchive::contains(std::string_view name) const
{
    const std::string terminated(name);
    return zip_name_locate(m_handle->archive, terminated.c_str(), ZIP_FL_NOCASE) >= 0;
}

std::unique_ptr<ZipArchive::Member> ZipArchive::member(std::string_view name, qint64 limit) const
{
    const std::string terminated(name);
    const zip_int64_t index = zip_name_locate(m_handle->archive, terminated.c_str(), ZIP_FL_NOCASE);
    if (index < 0)
        return nullptr;
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(m_handle->archive, zip_uint64_t(index), 0, &stat) != 0
        || (stat.valid & ZIP_STAT_SIZE) == 0)
        return nullptr;
    zip_file_t *file = zip_fopen_index(m_handle->archive, zip_uint64_t(index), 0);
    if (file == nullptr)
        return nullptr;
    return std::make_unique<ZipMemberReader>(
        file, qint64(std::min<zip_uint64_t>(stat.size, zip_uint64_t(MaxMemberBytes) + 1)), limit);
}

} // namespace tarnwick
