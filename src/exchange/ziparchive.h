#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tarnwick {

/// The bytes of one member of a zip archive, or nothing when the file is no zip archive or
/// has no such member. Only this pair of files uses libzip.
std::optional<QByteArray> readZipMember(const QString &archivePath, const QString &memberName);

} // namespace tarnwick
