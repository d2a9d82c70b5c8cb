#pragma once

#include "platform/iprompts.h"

#include <QInputDialog>
#include <QList>
#include <QMessageBox>
#include <QPointer>
#include <QString>

#include <functional>

class QInputDialog;
class QWidget;

namespace tarnwick {

/// The title a box shows when it is given none.
inline constexpr const char *DefaultPromptTitle = "Tarnwick";

/// What a message box style number asks for: the buttons in their set's order, the icon, the
/// default button and the button that Escape or closing the box stands for.
struct MessageBoxStyle
{
    QList<QMessageBox::StandardButton> buttons;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButton defaultButton = QMessageBox::Ok;
    QMessageBox::StandardButton escapeButton = QMessageBox::Ok;
};

/// Decodes a style number (button set in the low four bits, icon 16/32/48/64, default button
/// 256/512) without showing anything.
MessageBoxStyle decodeMessageBoxStyle(int style);
/// The MsgResult number of a standard button (Ok 1 … No 7); 0 for a button no set contains.
int msgResultOf(QMessageBox::StandardButton button);
/// The title a box shows: the given one, or "Tarnwick" when it is empty.
QString promptTitle(const QString &title);

/// Sets up box for a message: text, title (also its accessible name), icon and buttons.
void configureMessageBox(QMessageBox &box, const QString &text, int style, const QString &title);
/// The answer of a finished box: the MsgResult of the button pressed, or of the Escape button
/// when the box was closed without one.
int messageBoxAnswer(const QMessageBox &box, int style);

/// Sets up dialog as an input box: prompt as its label, title, default text.
void configureInputDialog(
    QInputDialog &dialog, const QString &prompt, const QString &title, const QString &defaultText);
/// The answer of a finished input box: the typed text when accepted, else the empty text.
QString inputBoxAnswer(const QInputDialog &dialog, int dialogResult);

/// Modal message and input boxes over the program's active window.
class QtPrompts : public IPrompts
{
public:
    /// parentProvider gives the window that owns each box; without one, the active window.
    explicit QtPrompts(std::function<QWidget *()> parentProvider = {});

    // The defaults repeat those of IPrompts, so calls look the same through either type.
    int msgBox(const QString &text, int style = MsgStyle::OkOnly,
        const QString &title = QString()) override;
    QString inputBox(const QString &prompt, const QString &title = QString(),
        const QString &defaultText = QString()) override;
    QString passwordBox(const QString &prompt, const QString &title = QString()) override;

private:
    QWidget *parentWidget() const;
    /// Runs the dialog; its text when accepted, empty otherwise or when its window went.
    static QString inputAnswer(const QPointer<QInputDialog> &dialog);
    std::function<QWidget *()> m_parentProvider;
};

} // namespace tarnwick
