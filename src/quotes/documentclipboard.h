#pragma once

#include "platform/iclipboard.h"

class QTextDocument;

namespace tarnwick {

/// The whole of a document in the three forms the clipboard offers: RTF (written by
/// RtfWriter), HTML (written by HtmlWriter, columns as table cells) and plain text (written by
/// Qt). Everything goes on the clipboard, from the first character to the last.
RichClipboardDocument clipboardForms(const QTextDocument &document);

} // namespace tarnwick
