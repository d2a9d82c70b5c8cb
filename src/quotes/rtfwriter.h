#pragma once

#include <QByteArray>

class QTextDocument;

namespace tarnwick {

/// Writes a text document as RTF, for the clipboard's rich-text form. It knows exactly what the
/// quote document and the product report use: font families (in a font table), point sizes,
/// bold, italic, tabs, line breaks, paragraph breaks and paragraphs kept with the next one
/// (\keepn, from KeepWithNextProperty). Characters outside ASCII are written
/// as \uN? escapes, so the result is plain 7-bit text that every RTF reader takes.
namespace RtfWriter {

QByteArray write(const QTextDocument &document);

} // namespace RtfWriter

} // namespace tarnwick
