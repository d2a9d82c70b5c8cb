#include "quotes/documentclipboard.h"

#include "quotes/htmlwriter.h"
#include "quotes/rtfwriter.h"

#include <QTextDocument>

namespace tarnwick {

RichClipboardDocument clipboardForms(const QTextDocument &document)
{
    RichClipboardDocument forms;
    forms.rtf = QString::fromLatin1(RtfWriter::write(document));
    // Word processors drop the tabs of pasted HTML: the columns go into table cells instead.
    forms.html = HtmlWriter::write(document);
    forms.plainText = document.toPlainText();
    return forms;
}

} // namespace tarnwick
