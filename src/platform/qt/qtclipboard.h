#pragma once

#include "platform/iclipboard.h"

class QMimeData;

namespace tarnwick {

/// The MIME types under which the rich text form of a document is offered.
inline constexpr const char *RtfMimeType = "text/rtf";
inline constexpr const char *RtfApplicationMimeType = "application/rtf";

/// The clipboard data for a rich document: its RTF under both RTF types, its HTML and its
/// plain text, all in one item so that every program finds the form it reads.
QMimeData *richDocumentMimeData(const RichClipboardDocument &document);

/// The system clipboard through QGuiApplication::clipboard().
class QtClipboard : public IClipboard
{
public:
    void clear() override;
    void setText(const QString &text) override;
    void setRichDocument(const RichClipboardDocument &document) override;
    QString text() const override;
    bool holdsOwnCopy() const override;
    /// On an X11 desktop: whether a clipboard keeper runs (the owner of the CLIPBOARD_MANAGER
    /// selection, to which Qt hands the contents at the end); elsewhere the system keeps them.
    bool keepsCopyAfterExit() const override;
    /// Through ClipboardKeeper: this program started again as the keeper.
    bool handOverOwnCopy() override;
};

} // namespace tarnwick
