#include "exchange/ziparchive.h"

#include <QFile>

#include <zip.h>

namespace tarnwick {

std::optional<QByteArray> readZipMember(const QString &archivePath, const QString &memberName)
{
    int error = 0;
    zip_t *archive = zip_open(QFile::encodeName(archivePath).constData(), ZIP_RDONLY, &error);
    if (archive == nullptr) {
        return std::nullopt;
    }
    std::optional<QByteArray> bytes;
    const QByteArray name = memberName.toUtf8();
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat(archive, name.constData(), 0, &stat) == 0 && (stat.valid & ZIP_STAT_SIZE)) {
        if (zip_file_t *member = zip_fopen(archive, name.constData(), 0)) {
            QByteArray data(qsizetype(stat.size), '\0');
            if (zip_fread(member, data.data(), stat.size) == zip_int64_t(stat.size)) {
                bytes = data;
            }
            zip_fclose(member);
        }
    }
    zip_close(archive);
    return bytes;
}

} // namespace tarnwick
