#include "floorcatalogue.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwick::bench {

namespace {

constexpr std::string_view FieldEnd = "\x7f\x7f\x7f";

bool readWhole(const char *path, std::string &bytes)
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
    bytes.resize(std::size_t(info.st_size));
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = ::read(fd, bytes.data() + done, bytes.size() - done);
        if (got <= 0)
            break;
        done += std::size_t(got);
    }
    ::close(fd);
    return done == bytes.size();
}

} // namespace

bool floorRead(const char *path, FloorCatalogue &catalogue)
{
    if (!readWhole(path, catalogue.bytes))
        return false;
    const std::string_view text(catalogue.bytes);
    catalogue.rows.clear();
    std::size_t at = 0;
    while (at < text.size()) {
        std::array<std::string_view, 15> &row = catalogue.rows.emplace_back();
        for (std::string_view &field : row) {
            const std::size_t end = text.find(FieldEnd, at);
            if (end == std::string_view::npos)
                return false;
            field = text.substr(at, end - at);
            at = end + FieldEnd.size();
        }
        at += 2; // CR LF
    }
    return true;
}

bool floorWrite(const char *path, const FloorCatalogue &catalogue)
{
    std::string out;
    out.reserve(catalogue.bytes.size());
    for (const auto &row : catalogue.rows) {
        for (const std::string_view field : row) {
            out += field;
            out += FieldEnd;
        }
        out += "\r\n";
    }
    const int fd = ::open(path, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0)
        return false;
    std::size_t done = 0;
    while (done < out.size()) {
        const ssize_t put = ::write(fd, out.data() + done, out.size() - done);
        if (put <= 0)
            break;
        done += std::size_t(put);
    }
    const bool synced = ::fsync(fd) == 0;
    return ::close(fd) == 0 && synced && done == out.size();
}

} // namespace tarnwick::bench
