#pragma once

#include <QString>

namespace tarnwick {

/// A formatted document offered on the clipboard in three forms at once, so that a word
/// processor takes the rich text, a mail program the HTML and an editor the plain text.
struct RichClipboardDocument
{
    QString rtf;
    QString html;
    QString plainText;
};

/// The system clipboard.
class IClipboard
{
public:
    virtual ~IClipboard() = default;

    virtual void clear() = 0;
    virtual void setText(const QString &text) = 0;
    virtual void setRichDocument(const RichClipboardDocument &document) = 0;
    /// The clipboard's plain text.
    virtual QString text() const = 0;
    /// Whether the clipboard still holds what this program put there (nothing was copied in
    /// another program since).
    virtual bool holdsOwnCopy() const = 0;
    /// Whether the desktop keeps the clipboard's contents once the program that put them there
    /// has ended (a desktop without a clipboard keeper drops them with it).
    virtual bool keepsCopyAfterExit() const = 0;
    /// Hands what this program copied to a keeper of its own that serves it after the program
    /// has ended, until something else is copied; whether the keeper holds it now.
    virtual bool handOverOwnCopy() = 0;
};

} // namespace tarnwick
