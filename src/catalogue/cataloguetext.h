#pragma once

#include <QByteArray>
#include <QString>

namespace tarnwick {

/// Characters of the catalogue file. The earlier Windows program wrote Windows-1252; files
/// that are valid UTF-8 are read as UTF-8 and every other file as Windows-1252. Writing uses
/// Windows-1252 when every character fits and UTF-8 otherwise, so no character is lost.
QString decodeCatalogueBytes(const QByteArray &bytes);
QByteArray encodeCatalogueText(const QString &text);

/// Removes DEL characters (code 127) from a text on its way into the catalogue: three in a
/// row would end the field early in the file.
QString withoutFieldEndCharacters(const QString &text);

} // namespace tarnwick
