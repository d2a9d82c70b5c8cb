#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>
#include <string_view>

namespace tarnwick {

/// The first bytes of every compound document (an OLE2 file, as Excel 97 workbooks are).
inline constexpr char CompoundDocumentSignature[] = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

/// The stream of that name (letter case aside) of a compound document held in bytes, or nothing
/// when the bytes are no compound document, have no such stream or a damaged one, or the stream
/// is longer than the bytes themselves (which no stream of a sound file is). Only
/// compounddocument.cpp uses libgsf.
std::optional<QByteArray> readCompoundStream(QByteArrayView bytes, std::string_view name);

} // namespace tarnwick
