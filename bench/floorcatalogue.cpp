#include "floorcatalogue.h"

#include "core/conversions.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace tarnwick::bench {

namespace {

constexpr char Del = '\x7f';
constexpr std::size_t FieldCount = 15;
constexpr std::size_t PriceField = 2;

/// Advises the whole large pages inside [data, data + size) to be backed by large pages, as
/// the program does for its file buffer.
void adviseLargePages(char *data, std::size_t size)
{
    constexpr std::uintptr_t LargePage = 2 * 1024 * 1024;
    if (size < 2 * LargePage)
        return;
    const auto start = (reinterpret_cast<std::uintptr_t>(data) + LargePage - 1) & ~(LargePage - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(data) + size) & ~(LargePage - 1);
    if (end > start)
        ::madvise(reinterpret_cast<void *>(start), end - start, MADV_HUGEPAGE);
}

bool readWhole(const char *path, FloorCatalogue &catalogue)
{
    const int fd = ::open(path, O_RDONLY);
    if (fd < 0)
        return false;
    struct stat info
    {
    };
    if (::fstat(fd, &info) != 0) {
        ::close(fd);
        return false;
    }
    catalogue.size = std::size_t(info.st_size);
    // new char[] leaves the bytes uninitialised: the read fills them once.
    catalogue.bytes.reset(new char[catalogue.size]);
    adviseLargePages(catalogue.bytes.get(), catalogue.size);
    std::size_t done = 0;
    while (done < catalogue.size) {
        const ssize_t got = ::read(fd, catalogue.bytes.get() + done, catalogue.size - done);
        if (got <= 0)
            break;
        done += std::size_t(got);
    }
    ::close(fd);
    return done == catalogue.size;
}

/// The number of products: lines ending with DEL CR LF, and a last one without its CR LF.
std::size_t countLines(const char *data, std::size_t size)
{
    std::size_t lines = 0;
    std::size_t lastEnd = 0;
    for (const char *at = data + std::min<std::size_t>(size, 2), *end = data + size; at < end;) {
        const auto *lf = static_cast<const char *>(std::memchr(at, '\n', std::size_t(end - at)));
        if (!lf)
            break;
        if (lf[-1] == '\r' && lf[-2] == Del) {
            ++lines;
            lastEnd = std::size_t(lf + 1 - data);
        }
        at = lf + 1;
    }
    return lines + (lastEnd < size ? 1 : 0);
}

/// A piece of the file being written, handed to the file whenever it passes 1 MB.
class PieceWriter
{
public:
    explicit PieceWriter(int fd) : m_fd(fd) { m_buffer.reset(new char[Capacity]); }

    void append(const char *data, std::size_t size)
    {
        if (m_used + size > Capacity)
            flush();
        if (size > Capacity) {
            writeAll(data, size);
            return;
        }
        std::memcpy(m_buffer.get() + m_used, data, size);
        m_used += size;
    }
    bool flush()
    {
        writeAll(m_buffer.get(), m_used);
        m_used = 0;
        return m_ok;
    }
    bool ok() const { return m_ok; }

private:
    static constexpr std::size_t Capacity = 1024 * 1024 + 4096;

    void writeAll(const char *data, std::size_t size)
    {
        std::size_t done = 0;
        while (m_ok && done < size) {
            const ssize_t put = ::write(m_fd, data + done, size - done);
            m_ok = put > 0;
            done += m_ok ? std::size_t(put) : 0;
        }
    }

    int m_fd;
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_used = 0;
    bool m_ok = true;
};

char asciiLower(char c)
{
    return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c;
}

char asciiUpper(char c)
{
    return (c >= 'a' && c <= 'z') ? char(c - 'a' + 'A') : c;
}

bool containsIgnoringCase(std::string_view text, std::string_view needle)
{
    const char first = needle.front();
    const char firstLower = asciiLower(first);
    for (std::size_t i = 0; i + needle.size() <= text.size(); ++i) {
        if (text[i] != first && text[i] != firstLower)
            continue;
        std::size_t k = 1;
        while (k < needle.size() && asciiUpper(text[i + k]) == needle[k])
            ++k;
        if (k == needle.size())
            return true;
    }
    return false;
}

} // namespace

bool floorRead(const char *path, FloorCatalogue &catalogue)
{
    if (!readWhole(path, catalogue))
        return false;
    const char *data = catalogue.bytes.get();
    const char *end = data + catalogue.size;
    catalogue.rows.clear();
    catalogue.rows.reserve(countLines(data, catalogue.size));
    for (const char *at = data; at < end;) {
        FloorRow &row = catalogue.rows.emplace_back();
        for (std::size_t field = 0; field < FieldCount; ++field) {
            const char *start = at;
            for (;;) {
                const auto *del =
                    static_cast<const char *>(std::memchr(at, Del, std::size_t(end - at)));
                if (!del || end - del < 3)
                    return false;
                at = del + 1;
                if (del[1] == Del && del[2] == Del) {
                    row.fields[field] = std::string_view(start, std::size_t(del - start));
                    at = del + 3;
                    break;
                }
            }
        }
        const std::string_view price = row.fields[PriceField];
        if (!price.empty()) {
            const auto value = conv::plainDecimal(price.data(), qsizetype(price.size()));
            if (!value)
                return false;
            row.price = static_cast<float>(*value);
            row.hasPrice = true;
        }
        for (std::size_t field = 5; field < FieldCount; ++field) {
            const std::string_view point = row.fields[field];
            if (!point.empty() && !conv::isPlainDecimal(point.data(), qsizetype(point.size())))
                return false;
        }
        if (end - at >= 2 && at[0] == '\r' && at[1] == '\n')
            at += 2;
    }
    return true;
}

bool floorWrite(const char *path, const FloorCatalogue &catalogue)
{
    const std::string temporary = std::string(path) + ".floor-new";
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0)
        return false;
    PieceWriter out(fd);
    constexpr char FieldEnd[] = { Del, Del, Del };
    for (const FloorRow &row : catalogue.rows) {
        for (std::size_t field = 0; field < FieldCount; ++field) {
            if (field == PriceField && row.hasPrice) {
                char number[32];
                const auto written = std::to_chars(number, number + sizeof number, row.price);
                out.append(number, std::size_t(written.ptr - number));
            } else {
                out.append(row.fields[field].data(), row.fields[field].size());
            }
            out.append(FieldEnd, sizeof FieldEnd);
        }
        out.append("\r\n", 2);
    }
    const bool written = out.flush() && ::fsync(fd) == 0;
    if (::close(fd) != 0 || !written)
        return false;
    // The previous file stays as the backup under a second name, then the new one replaces it.
    const std::string backup = std::string(path) + ".floor-bak";
    const std::string link = backup + ".link";
    ::unlink(link.c_str());
    if (::link(path, link.c_str()) == 0 && ::rename(link.c_str(), backup.c_str()) != 0)
        return false;
    return ::rename(temporary.c_str(), path) == 0;
}

void floorSortOn(FloorCatalogue &catalogue, std::size_t field)
{
    struct Key
    {
        std::uint64_t prefix;
        std::uint32_t offset;
        std::uint32_t size;
        std::uint32_t row;
    };
    std::vector<FloorRow> &rows = catalogue.rows;
    std::size_t total = 0;
    for (const FloorRow &row : rows)
        total += row.fields[field].size();
    std::unique_ptr<char[]> folded(new char[total + 8]);
    std::vector<Key> keys(rows.size());
    std::size_t used = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::string_view name = rows[i].fields[field];
        char *out = folded.get() + used;
        for (std::size_t k = 0; k < name.size(); ++k)
            out[k] = asciiLower(name[k]);
        std::uint64_t prefix = 0;
        for (std::size_t k = 0; k < 8; ++k)
            prefix = (prefix << 8) | (k < name.size() ? std::uint8_t(out[k]) : 0);
        keys[i] = { prefix, std::uint32_t(used), std::uint32_t(name.size()), std::uint32_t(i) };
        used += name.size();
    }
    const char *base = folded.get();
    std::stable_sort(keys.begin(), keys.end(), [&](const Key &a, const Key &b) {
        if (a.prefix != b.prefix)
            return a.prefix < b.prefix;
        const int c = std::memcmp(base + a.offset, base + b.offset, std::min(a.size, b.size));
        if (c != 0)
            return c < 0;
        if (a.size != b.size)
            return a.size < b.size;
        return rows[a.row].fields[field] < rows[b.row].fields[field];
    });
    std::vector<FloorRow> sorted;
    sorted.reserve(rows.size());
    for (const Key &key : keys)
        sorted.push_back(rows[key.row]);
    rows.swap(sorted);
}

long floorSearch(const FloorCatalogue &catalogue, std::string_view needle)
{
    for (std::size_t row = 0; row < catalogue.rows.size(); ++row) {
        const FloorRow &product = catalogue.rows[row];
        if (containsIgnoringCase(product.fields[0], needle)
            || containsIgnoringCase(product.fields[1], needle))
            return long(row);
    }
    return -1;
}

} // namespace tarnwick::bench
