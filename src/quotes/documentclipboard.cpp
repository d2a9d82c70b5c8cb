#include "quotes/documentclipboard.h"

#include "quotes/rtfwriter.h"

#include <QTextDocument>

namespace tarnwick {

RichClipboardDocument clipboardForms(const QTextDocument &document)
{
    RichClipboardDocument forms;
    forms.rtf = QString::fromLatin1(RtfWriter::write(document));
    // Tabs and runs of blanks are part of the layout: keep them in programs that read HTML.
    forms.html = document.toHtml();
    forms.html.replace(
        QLatin1String("<body style=\""), QLatin1String("<body style=\" white-space:pre-wrap;"));
    forms.plainText = document.toPlainText();
    return forms;
}

} // namespace tarnwick
