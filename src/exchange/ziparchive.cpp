#include "exchange/ziparchive.h"

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <exception>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

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

/// A member inflated on a thread of its own, at most MaxPieces pieces ahead of the reader.
class ReadAheadMember : public ZipArchive::Member
{
public:
    explicit ReadAheadMember(std::unique_ptr<ZipArchive::Member> member)
        : m_member(std::move(member))
    {
    }
    ~ReadAheadMember() override
    {
        if (!m_thread.joinable())
            return;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_stop = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }
    ReadAheadMember(const ReadAheadMember &) = delete;
    ReadAheadMember &operator=(const ReadAheadMember &) = delete;

    /// Starts the thread; false when the system gives none.
    bool start()
    {
        try {
            m_thread = std::thread([this] { produce(); });
        } catch (const std::system_error &) {
            return false;
        }
        return true;
    }
    /// The member itself, for a reader that could not be started.
    std::unique_ptr<ZipArchive::Member> takeMember() { return std::move(m_member); }

    qint64 read(char *data, qint64 size) override
    {
        if (m_at == m_piece.size()) {
            std::unique_lock<std::mutex> lock(m_mutex);
            if (!m_piece.empty())
                m_spare.push_back(std::move(m_piece));
            m_piece.clear();
            m_at = 0;
            m_changed.wait(lock, [this] { return !m_ready.empty() || m_status <= 0; });
            if (m_error)
                std::rethrow_exception(m_error);
            if (m_ready.empty())
                return m_status;
            m_piece = std::move(m_ready.front());
            m_ready.pop_front();
            m_at = 0;
            const bool refill = m_ready.size() == RefillAt;
            lock.unlock();
            if (refill)
                m_changed.notify_all();
        }
        const std::size_t count =
            std::min(std::size_t(std::max<qint64>(size, 0)), m_piece.size() - m_at);
        if (count > 0)
            std::memcpy(data, m_piece.data() + m_at, count);
        m_at += count;
        return qint64(count);
    }

private:
    static constexpr std::size_t PieceBytes = std::size_t(256) << 10;
    static constexpr std::size_t MaxPieces = 8;
    static constexpr std::size_t RefillAt = 2;

    void produce()
    {
        for (;;) {
            std::vector<char> piece;
            {
                std::unique_lock<std::mutex> lock(m_mutex);
                // A full queue is refilled once the reader has taken it down to RefillAt
                // pieces: the threads wake each other once for several pieces, not for each.
                if (m_ready.size() >= MaxPieces)
                    m_changed.wait(lock, [this] { return m_stop || m_ready.size() <= RefillAt; });
                if (m_stop)
                    return;
                if (!m_spare.empty()) {
                    piece = std::move(m_spare.back());
                    m_spare.pop_back();
                }
            }
            qint64 count = -1;
            std::exception_ptr error;
            try {
                piece.resize(PieceBytes);
                count = m_member->read(piece.data(), qint64(piece.size()));
            } catch (...) {
                // Out of memory: the reader sees it where it reads, as without the thread.
                error = std::current_exception();
            }
            {
                const std::lock_guard<std::mutex> lock(m_mutex);
                if (count > 0) {
                    piece.resize(std::size_t(count));
                    m_ready.push_back(std::move(piece));
                } else {
                    m_status = error ? -1 : count;
                    m_error = error;
                }
            }
            m_changed.notify_all();
            if (count <= 0)
                return;
        }
    }

    std::unique_ptr<ZipArchive::Member> m_member;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    /// Pieces inflated and not yet read; emptied pieces kept for the next ones.
    std::deque<std::vector<char>> m_ready;
    std::vector<std::vector<char>> m_spare;
    /// 1 while inflating, then 0 at the end of the member or -1 when it failed.
    qint64 m_status = 1;
    std::exception_ptr m_error;
    bool m_stop = false;
    /// The piece being read (the reader's thread only).
    std::vector<char> m_piece;
    std::size_t m_at = 0;
    std::thread m_thread;
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

std::unique_ptr<ZipArchive::Member> ZipArchive::readAhead(std::unique_ptr<Member> member)
{
    if (!member)
        return nullptr;
    auto ahead = std::make_unique<ReadAheadMember>(std::move(member));
    // Without a thread the member is read as it is.
    if (!ahead->start())
        return ahead->takeMember();
    return ahead;
}

} // namespace tarnwick
