#pragma once

#include <QDialog>
#include <QPointer>
#include <QString>

namespace tarnwick {

/// The windows the shell opens for an answer: the start-up password prompt and the generic
/// one-line input dialog. Tests replace them with scripted answers.
class IShellDialogs
{
public:
    virtual ~IShellDialogs() = default;

    /// Shows FrmPassword; the text the user confirmed, empty when it was closed without OK.
    virtual QString askPassword() = 0;
    /// Closes the password prompt while it is up, as closing it without OK does: the program
    /// was asked to end (a log-out) while it waited for the password.
    virtual void closePasswordPrompt() = 0;
    /// Shows Dialog with the caption, prompt and text and waits for it; the text confirmed with
    /// OK, empty on Cancel (and when such a dialog is already up: it is brought forward).
    virtual QString askText(const QString &caption, const QString &prompt, const QString &text) = 0;
};

/// The real windows: the password prompt modal; Dialog over the active window without holding
/// it up (the user may pick another row while it is open, and closing the window closes it).
class ShellDialogs : public IShellDialogs
{
public:
    QString askPassword() override;
    void closePasswordPrompt() override;
    QString askText(const QString &caption, const QString &prompt, const QString &text) override;

private:
    QPointer<QDialog> m_passwordPrompt;
    QPointer<QDialog> m_textDialog;
};

} // namespace tarnwick
