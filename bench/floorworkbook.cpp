#include "floorworkbook.h"

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-infile.h>
#include <gsf/gsf-input-stdio.h>
#include <zip.h>

#include <cstring>
#include <string_view>

namespace tarnwick::bench {

namespace {

/// The first place of what in [from, end), or nullptr: memchr for its first character, then a
/// compare (faster than memmem for the short tags searched here).
const char *find(const char *from, const char *end, std::string_view what)
{
    while (from < end) {
        const auto *at =
            static_cast<const char *>(std::memchr(from, what[0], std::size_t(end - from)));
        if (at == nullptr || std::size_t(end - at) < what.size())
            return nullptr;
        if (std::memcmp(at, what.data(), what.size()) == 0)
            return at;
        from = at + 1;
    }
    return nullptr;
}

/// Inflates a member in pieces; parse(data, size) returns how many leading bytes it used, the
/// rest is kept for the next piece.
template <typename Parse> bool streamMember(zip_t *archive, const char *name, Parse &&parse)
{
    zip_file_t *file = zip_fopen(archive, name, 0);
    if (file == nullptr)
        return false;
    std::string buffer;
    std::vector<char> piece(std::size_t(256) << 10);
    zip_int64_t count = 0;
    while ((count = zip_fread(file, piece.data(), piece.size())) > 0) {
        buffer.append(piece.data(), std::size_t(count));
        buffer.erase(0, parse(buffer.data(), buffer.size()));
    }
    zip_fclose(file);
    return count == 0;
}

void addCell(FloorSheet &sheet, std::uint32_t row, std::uint32_t column, std::string_view value)
{
    sheet.cells.push_back(
        { row, column, std::uint32_t(sheet.values.size()), std::uint32_t(value.size()) });
    sheet.values.append(value);
}

std::size_t parseSharedStrings(const char *data, std::size_t size, std::vector<std::string> &out)
{
    const char *end = data + size;
    const char *at = data;
    for (;;) {
        const char *item = find(at, end, "<si>");
        const char *itemEnd = item ? find(item, end, "</si>") : nullptr;
        if (itemEnd == nullptr)
            return std::size_t((item ? item : at) - data);
        std::string text;
        for (const char *t = find(item, itemEnd, "<t"); t != nullptr; t = find(t, itemEnd, "<t")) {
            const char *open = static_cast<const char *>(std::memchr(t, '>', itemEnd - t)) + 1;
            const char *close = find(open, itemEnd, "</t>");
            text.append(open, close);
            t = close;
        }
        out.push_back(std::move(text));
        at = itemEnd + 5;
    }
}

std::size_t parseXlsxCells(
    const char *data, std::size_t size, const std::vector<std::string> &strings, FloorSheet &sheet)
{
    const char *end = data + size;
    const char *at = data;
    for (;;) {
        const char *cell = find(at, end, "<c ");
        const char *tagEnd =
            cell ? static_cast<const char *>(std::memchr(cell, '>', end - cell)) : nullptr;
        if (tagEnd == nullptr)
            return std::size_t((cell ? cell : at) - data);
        if (tagEnd[-1] == '/') {
            at = tagEnd + 1;
            continue;
        }
        const char *cellEnd = find(tagEnd, end, "</c>");
        if (cellEnd == nullptr)
            return std::size_t(cell - data);
        const char *reference = find(cell, tagEnd, "r=\"") + 3;
        std::uint32_t column = 0;
        for (; *reference >= 'A' && *reference <= 'Z'; ++reference)
            column = column * 26 + std::uint32_t(*reference - 'A' + 1);
        std::uint32_t row = 0;
        for (; *reference >= '0' && *reference <= '9'; ++reference)
            row = row * 10 + std::uint32_t(*reference - '0');
        const char *value = find(tagEnd, cellEnd, "<v>");
        if (value != nullptr) {
            const std::string_view text(
                value + 3, std::size_t(find(value, cellEnd, "</v>") - value - 3));
            if (find(cell, tagEnd, "t=\"s\"") != nullptr) {
                std::size_t index = 0;
                for (const char c : text)
                    index = index * 10 + std::size_t(c - '0');
                addCell(sheet, row, column - 1, strings[index]);
            } else {
                addCell(sheet, row, column - 1, text);
            }
        }
        at = cellEnd + 4;
    }
}

struct OdsPosition
{
    std::uint32_t row = 0;
    std::uint32_t column = 0;
};

std::uint32_t odsRepeatOf(const char *tag, const char *tagEnd, std::string_view attribute)
{
    const char *at = find(tag, tagEnd, attribute);
    if (at == nullptr)
        return 1;
    std::uint32_t count = 0;
    for (at += attribute.size(); *at >= '0' && *at <= '9'; ++at)
        count = count * 10 + std::uint32_t(*at - '0');
    return count;
}

std::size_t parseOdsCells(
    const char *data, std::size_t size, OdsPosition &position, FloorSheet &sheet)
{
    const char *end = data + size;
    const char *at = data;
    for (;;) {
        const char *tag = find(at, end, "<table:table-");
        const char *tagEnd =
            tag ? static_cast<const char *>(std::memchr(tag, '>', end - tag)) : nullptr;
        if (tagEnd == nullptr)
            return std::size_t((tag ? tag : at) - data);
        const std::string_view kind(tag + 13, std::size_t(tagEnd - tag - 13));
        if (kind.substr(0, 4) == "row " || kind.substr(0, 4) == "row>") {
            ++position.row;
            position.column = 0;
            at = tagEnd + 1;
            continue;
        }
        if (kind.substr(0, 4) != "cell") {
            at = tagEnd + 1;
            continue;
        }
        const std::uint32_t repeat = odsRepeatOf(tag, tagEnd, "table:number-columns-repeated=\"");
        if (tagEnd[-1] == '/') {
            position.column += repeat;
            at = tagEnd + 1;
            continue;
        }
        const char *cellEnd = find(tagEnd, end, "</table:table-cell>");
        if (cellEnd == nullptr)
            return std::size_t(tag - data);
        if (const char *value = find(tag, tagEnd, "office:value=\"")) {
            value += 14;
            addCell(sheet, position.row, position.column,
                std::string_view(value,
                    std::size_t(static_cast<const char *>(std::memchr(value, '"', tagEnd - value))
                        - value)));
        } else if (const char *paragraph = find(tagEnd, cellEnd, "<text:p>")) {
            paragraph += 8;
            addCell(sheet, position.row, position.column,
                std::string_view(
                    paragraph, std::size_t(find(paragraph, cellEnd, "</text:p>") - paragraph)));
        }
        position.column += repeat;
        at = cellEnd + 19;
    }
}

std::uint16_t u16(const std::string &bytes, std::size_t at)
{
    return std::uint16_t(std::uint8_t(bytes[at]) | (std::uint8_t(bytes[at + 1]) << 8));
}

std::uint32_t u32(const std::string &bytes, std::size_t at)
{
    return std::uint32_t(u16(bytes, at)) | (std::uint32_t(u16(bytes, at + 2)) << 16);
}

/// The shared strings of the records from at on (SST and its CONTINUE records), their
/// characters as the file holds them.
std::vector<std::string> xlsStrings(const std::string &stream, std::size_t at)
{
    std::vector<std::size_t> starts { at + 4 };
    std::vector<std::size_t> ends { at + 4 + u16(stream, at + 2) };
    for (std::size_t next = ends.back(); u16(stream, next) == 0x003C; next = ends.back()) {
        starts.push_back(next + 4);
        ends.push_back(next + 4 + u16(stream, next + 2));
    }
    std::size_t segment = 0;
    std::size_t pos = starts[0] + 8;
    const auto byte = [&]() {
        if (pos >= ends[segment]) {
            ++segment;
            pos = starts[segment];
        }
        return std::uint8_t(stream[pos++]);
    };
    std::vector<std::string> strings(u32(stream, starts[0] + 4));
    for (std::string &text : strings) {
        std::uint32_t count = byte();
        count |= std::uint32_t(byte()) << 8;
        const std::uint8_t flags = byte();
        std::uint32_t extra = 0;
        if (flags & 0x08) {
            extra = byte();
            extra = 4 * (extra | (std::uint32_t(byte()) << 8));
        }
        if (flags & 0x04) {
            std::uint32_t ext = 0;
            for (int i = 0; i < 4; ++i)
                ext |= std::uint32_t(byte()) << (8 * i);
            extra += ext;
        }
        bool wide = flags & 0x01;
        while (count > 0) {
            if (pos >= ends[segment]) {
                ++segment;
                pos = starts[segment];
                wide = stream[pos++] & 0x01;
            }
            const std::size_t width = wide ? 2 : 1;
            const std::size_t take = std::min<std::size_t>(count, (ends[segment] - pos) / width);
            text.append(stream, pos, take * width);
            pos += take * width;
            count -= std::uint32_t(take);
        }
        for (; extra > 0; --extra)
            byte();
    }
    return strings;
}

} // namespace

bool floorReadXlsx(const char *path, FloorSheet &sheet)
{
    int error = 0;
    zip_t *archive = zip_open(path, ZIP_RDONLY, &error);
    if (archive == nullptr)
        return false;
    std::vector<std::string> strings;
    const bool read = streamMember(archive, "xl/sharedStrings.xml",
                          [&](const char *data, std::size_t size) {
                              return parseSharedStrings(data, size, strings);
                          })
        && streamMember(
            archive, "xl/worksheets/sheet1.xml", [&](const char *data, std::size_t size) {
                return parseXlsxCells(data, size, strings, sheet);
            });
    zip_close(archive);
    return read;
}

bool floorReadOds(const char *path, FloorSheet &sheet)
{
    int error = 0;
    zip_t *archive = zip_open(path, ZIP_RDONLY, &error);
    if (archive == nullptr)
        return false;
    OdsPosition position;
    const bool read = streamMember(archive, "content.xml", [&](const char *data, std::size_t size) {
        return parseOdsCells(data, size, position, sheet);
    });
    zip_close(archive);
    return read;
}

bool floorReadXls(const char *path, FloorSheet &sheet)
{
    GsfInput *input = gsf_input_stdio_new(path, nullptr);
    GsfInfile *root = input ? gsf_infile_msole_new(input, nullptr) : nullptr;
    GsfInput *workbook = root ? gsf_infile_child_by_name(root, "Workbook") : nullptr;
    std::string stream;
    if (workbook != nullptr) {
        stream.resize(std::size_t(gsf_input_size(workbook)));
        gsf_input_read(workbook, stream.size(), reinterpret_cast<guint8 *>(stream.data()));
        g_object_unref(workbook);
    }
    if (root != nullptr)
        g_object_unref(root);
    if (input != nullptr)
        g_object_unref(input);
    std::vector<std::string> strings;
    for (std::size_t at = 0; at + 4 <= stream.size();) {
        const std::uint16_t type = u16(stream, at);
        const std::size_t size = u16(stream, at + 2);
        const std::size_t data = at + 4;
        if (type == 0x00FC)
            strings = xlsStrings(stream, at);
        else if (type == 0x00FD)
            addCell(
                sheet, u16(stream, data), u16(stream, data + 2), strings[u32(stream, data + 6)]);
        else if (type == 0x0203 || type == 0x0006)
            addCell(sheet, u16(stream, data), u16(stream, data + 2),
                std::string_view(stream).substr(data + 6, 8));
        else if (type == 0x027E)
            addCell(sheet, u16(stream, data), u16(stream, data + 2),
                std::string_view(stream).substr(data + 6, 4));
        else if (type == 0x00BD)
            for (std::size_t i = 0; i < (size - 6) / 6; ++i)
                addCell(sheet, u16(stream, data), std::uint32_t(u16(stream, data + 2) + i),
                    std::string_view(stream).substr(data + 6 + 6 * i, 4));
        at = data + size;
    }
    return !stream.empty();
}

} // namespace tarnwick::bench
