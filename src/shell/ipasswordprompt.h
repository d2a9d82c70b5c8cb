#pragma once

#include <QString>

class QWidget;

namespace tarnwick {

/// Asks for the start-up password; returns the text the user confirmed (empty when the
/// prompt was closed without OK).
class IPasswordPrompt
{
public:
    virtual ~IPasswordPrompt() = default;
    virtual QString askPassword() = 0;
};

/// Shows FrmPassword modally.
class PasswordDialogPrompt : public IPasswordPrompt
{
public:
    QString askPassword() override;
};

} // namespace tarnwick
