#pragma once

#include <QString>

class QTextDocument;

namespace tarnwick {

/// Writes a text document as HTML for the clipboard, in a form word processors keep: a
/// paragraph whose columns are set by tabs becomes a row of a table (one cell per column), as
/// word processors drop the tabs of pasted HTML. Paragraphs kept with the next one
/// (KeepWithNextProperty) that belong to such rows join their table, so each quote line is one
/// table that is not split across pages. Font family, size, bold and italic are kept on every
/// run; runs of blanks stay as they are.
namespace HtmlWriter {

QString write(const QTextDocument &document);

} // namespace HtmlWriter

} // namespace tarnwick
