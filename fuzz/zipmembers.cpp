#include "zipmembers.h"

#include <QList>

#include <zip.h>

namespace tarnwick::fuzzing {

namespace {

struct Member
{
    QByteArray name;
    QByteArray bytes;
};

QList<Member> membersOf(QByteArrayView list)
{
    QList<Member> members;
    for (const QByteArrayView piece : QByteArray(list.data(), list.size()).split('\0')) {
        const qsizetype lineEnd = piece.indexOf('\n');
        if (lineEnd <= 0) {
            continue;
        }
        members.append(
            { piece.first(lineEnd).toByteArray(), piece.sliced(lineEnd + 1).toByteArray() });
    }
    return members;
}

/// All bytes of a source that has been written.
QByteArray sourceBytes(zip_source_t *source)
{
    QByteArray bytes;
    if (zip_source_open(source) != 0) {
        return bytes;
    }
    char piece[4096];
    zip_int64_t read = 0;
    while ((read = zip_source_read(source, piece, sizeof piece)) > 0) {
        bytes.append(piece, qsizetype(read));
    }
    zip_source_close(source);
    return bytes;
}

} // namespace

QByteArray zipOfMembers(QByteArrayView list)
{
    const QList<Member> members = membersOf(list);
    zip_source_t *source = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    if (source == nullptr) {
        return QByteArray();
    }
    zip_t *archive = zip_open_from_source(source, ZIP_TRUNCATE, nullptr);
    if (archive == nullptr) {
        zip_source_free(source);
        return QByteArray();
    }
    // The archive's bytes stay in the source after the archive is closed.
    zip_source_keep(source);
    for (const Member &member : members) {
        // The member's bytes stay in members until the archive is written.
        zip_source_t *bytes = zip_source_buffer(
            archive, member.bytes.constData(), zip_uint64_t(member.bytes.size()), 0);
        if (bytes == nullptr) {
            continue;
        }
        const zip_int64_t index =
            zip_file_add(archive, member.name.constData(), bytes, ZIP_FL_OVERWRITE);
        if (index < 0) {
            zip_source_free(bytes);
            continue;
        }
        zip_set_file_compression(archive, zip_uint64_t(index), ZIP_CM_STORE, 0);
    }
    QByteArray bytes;
    if (zip_close(archive) == 0) {
        bytes = sourceBytes(source);
    } else {
        zip_discard(archive);
    }
    zip_source_free(source);
    return bytes;
}

QByteArray zipFromInput(QByteArrayView input)
{
    if (input.startsWith("PK")) {
        return input.toByteArray();
    }
    return zipOfMembers(input);
}

} // namespace tarnwick::fuzzing
