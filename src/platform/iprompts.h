#pragma once

#include <QString>

namespace tarnwick {

/// Style numbers of a message box: one button set, plus one icon, plus the default button.
namespace MsgStyle {
constexpr int OkOnly = 0;
constexpr int OkCancel = 1;
constexpr int AbortRetryIgnore = 2;
constexpr int YesNoCancel = 3;
constexpr int YesNo = 4;
constexpr int RetryCancel = 5;
constexpr int Critical = 16;
constexpr int Question = 32;
constexpr int Exclamation = 48;
constexpr int Information = 64;
constexpr int DefaultButton2 = 256;
constexpr int DefaultButton3 = 512;
} // namespace MsgStyle

/// The answer of a message box: the button that was pressed.
namespace MsgResult {
constexpr int Ok = 1;
constexpr int Cancel = 2;
constexpr int Abort = 3;
constexpr int Retry = 4;
constexpr int Ignore = 5;
constexpr int Yes = 6;
constexpr int No = 7;
} // namespace MsgResult

/// Message boxes and input boxes. An empty title shows the program's title, "Tarnwick".
class IPrompts
{
public:
    virtual ~IPrompts() = default;

    /// Shows text with the buttons and icon of style; returns one of MsgResult. Closing the box
    /// without a button gives Cancel for sets with a Cancel button, otherwise the only button.
    virtual int msgBox(
        const QString &text, int style = MsgStyle::OkOnly, const QString &title = QString()) = 0;

    /// Asks for one line of text; Cancel gives the empty text.
    virtual QString inputBox(const QString &prompt, const QString &title = QString(),
        const QString &defaultText = QString()) = 0;
    /// Asks for a password: as inputBox, with what is typed hidden where the box can hide it
    /// (the prompts of the desktop do; this default, for prompts that show nothing, asks as
    /// inputBox does).
    virtual QString passwordBox(const QString &prompt, const QString &title = QString())
    {
        return inputBox(prompt, title);
    }
};

} // namespace tarnwick
