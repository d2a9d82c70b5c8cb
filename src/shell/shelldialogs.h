#pragma once

#include <QString>

namespace tarnwick {

/// The modal windows the shell opens for an answer: the start-up password prompt and the
/// generic one-line input dialog. Tests replace them with scripted answers.
class IShellDialogs
{
public:
    virtual ~IShellDialogs() = default;

    /// Shows FrmPassword; the text the user confirmed, empty when it was closed without OK.
    virtual QString askPassword() = 0;
    /// Shows Dialog with the caption, prompt and text; the text confirmed with OK, empty on
    /// Cancel.
    virtual QString askText(const QString &caption, const QString &prompt, const QString &text) = 0;
};

/// The real windows, shown modally over the active window.
class ShellDialogs : public IShellDialogs
{
public:
    QString askPassword() override;
    QString askText(const QString &caption, const QString &prompt, const QString &text) override;
};

} // namespace tarnwick
