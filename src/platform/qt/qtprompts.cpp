#include "platform/qt/qtprompts.h"

#include <QAbstractButton>
#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

namespace tarnwick {

namespace {

constexpr int ButtonSetMask = 0x0F;
constexpr int IconMask = 0x70;
constexpr int DefaultButtonMask = 0x300;

/// The buttons of a set in their order; an unknown set shows OK alone.
QList<QMessageBox::StandardButton> buttonSet(int set)
{
    switch (set) {
    case MsgStyle::OkCancel:
        return { QMessageBox::Ok, QMessageBox::Cancel };
    case MsgStyle::AbortRetryIgnore:
        return { QMessageBox::Abort, QMessageBox::Retry, QMessageBox::Ignore };
    case MsgStyle::YesNoCancel:
        return { QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel };
    case MsgStyle::YesNo:
        return { QMessageBox::Yes, QMessageBox::No };
    case MsgStyle::RetryCancel:
        return { QMessageBox::Retry, QMessageBox::Cancel };
    default:
        return { QMessageBox::Ok };
    }
}

QMessageBox::Icon iconOf(int style)
{
    switch (style & IconMask) {
    case MsgStyle::Critical:
        return QMessageBox::Critical;
    case MsgStyle::Question:
        return QMessageBox::Question;
    case MsgStyle::Exclamation:
        return QMessageBox::Warning;
    case MsgStyle::Information:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

/// The button Escape and the close button stand for: Cancel where the set has one, No for
/// Yes/No, Abort for Abort/Retry/Ignore (stopping is the cautious choice, and it is the
/// button Qt itself would pick), and OK for OK alone.
QMessageBox::StandardButton escapeOf(const QList<QMessageBox::StandardButton> &buttons)
{
    for (const QMessageBox::StandardButton candidate :
        { QMessageBox::Cancel, QMessageBox::No, QMessageBox::Abort }) {
        if (buttons.contains(candidate))
            return candidate;
    }
    return buttons.first();
}

} // namespace

MessageBoxStyle decodeMessageBoxStyle(int style)
{
    MessageBoxStyle decoded;
    decoded.buttons = buttonSet(style & ButtonSetMask);
    decoded.icon = iconOf(style);
    // 256 picks the second button and 512 the third; a button the set does not have falls
    // back to the first.
    const qsizetype defaultIndex = (style & DefaultButtonMask) / MsgStyle::DefaultButton2;
    decoded.defaultButton = decoded.buttons.value(defaultIndex, decoded.buttons.first());
    decoded.escapeButton = escapeOf(decoded.buttons);
    return decoded;
}

int msgResultOf(QMessageBox::StandardButton button)
{
    switch (button) {
    case QMessageBox::Ok:
        return MsgResult::Ok;
    case QMessageBox::Cancel:
        return MsgResult::Cancel;
    case QMessageBox::Abort:
        return MsgResult::Abort;
    case QMessageBox::Retry:
        return MsgResult::Retry;
    case QMessageBox::Ignore:
        return MsgResult::Ignore;
    case QMessageBox::Yes:
        return MsgResult::Yes;
    case QMessageBox::No:
        return MsgResult::No;
    default:
        return 0;
    }
}

QString promptTitle(const QString &title)
{
    return title.isEmpty() ? QString::fromLatin1(DefaultPromptTitle) : title;
}

void configureMessageBox(QMessageBox &box, const QString &text, int style, const QString &title)
{
    const MessageBoxStyle decoded = decodeMessageBoxStyle(style);
    const QString shownTitle = promptTitle(title);
    box.setWindowTitle(shownTitle);
    box.setAccessibleName(shownTitle);
    box.setAccessibleDescription(text);
    box.setText(text);
    box.setTextFormat(Qt::PlainText);
    box.setIcon(decoded.icon);
    for (const QMessageBox::StandardButton button : decoded.buttons) {
        QPushButton *added = box.addButton(button);
        // Qt gives Yes and No their letters; the others get theirs here, so each button of a
        // box can be pressed with Alt and its letter (Ok, Cancel: Enter and Escape).
        if (button == QMessageBox::Abort)
            added->setText(QObject::tr("&Abort"));
        else if (button == QMessageBox::Retry)
            added->setText(QObject::tr("&Retry"));
        else if (button == QMessageBox::Ignore)
            added->setText(QObject::tr("&Ignore"));
    }
    box.setDefaultButton(decoded.defaultButton);
    box.setEscapeButton(decoded.escapeButton);
}

int messageBoxAnswer(const QMessageBox &box, int style)
{
    if (QAbstractButton *clicked = box.clickedButton()) {
        const int result = msgResultOf(box.standardButton(clicked));
        if (result != 0)
            return result;
    }
    return msgResultOf(decodeMessageBoxStyle(style).escapeButton);
}

void configureInputDialog(
    QInputDialog &dialog, const QString &prompt, const QString &title, const QString &defaultText)
{
    const QString shownTitle = promptTitle(title);
    dialog.setWindowTitle(shownTitle);
    dialog.setAccessibleName(shownTitle);
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setLabelText(prompt);
    dialog.setTextValue(defaultText);
}

QString inputBoxAnswer(const QInputDialog &dialog, int dialogResult)
{
    return dialogResult == QDialog::Accepted ? dialog.textValue() : QString();
}

QtPrompts::QtPrompts(std::function<QWidget *()> parentProvider)
    : m_parentProvider(std::move(parentProvider))
{
}

// The boxes live on the heap, watched: a window that goes while its box is up (closed by an
// accessibility tool, which can press its buttons past the box, or by the session's end)
// takes the box with it, and the box answers as its Escape key would.

int QtPrompts::msgBox(const QString &text, int style, const QString &title)
{
    const QPointer<QMessageBox> box = new QMessageBox(parentWidget());
    configureMessageBox(*box, text, style, title);
    box->exec();
    if (!box)
        return msgResultOf(decodeMessageBoxStyle(style).escapeButton);
    const int answer = messageBoxAnswer(*box, style);
    delete box;
    return answer;
}

QString QtPrompts::inputBox(const QString &prompt, const QString &title, const QString &defaultText)
{
    const QPointer<QInputDialog> dialog = new QInputDialog(parentWidget());
    configureInputDialog(*dialog, prompt, title, defaultText);
    return inputAnswer(dialog);
}

QString QtPrompts::passwordBox(const QString &prompt, const QString &title)
{
    const QPointer<QInputDialog> dialog = new QInputDialog(parentWidget());
    configureInputDialog(*dialog, prompt, title, QString());
    dialog->setTextEchoMode(QLineEdit::Password);
    return inputAnswer(dialog);
}

QString QtPrompts::inputAnswer(const QPointer<QInputDialog> &dialog)
{
    const int result = dialog->exec();
    if (!dialog)
        return {};
    QString answer = inputBoxAnswer(*dialog, result);
    delete dialog;
    return answer;
}

QWidget *QtPrompts::parentWidget() const
{
    return m_parentProvider ? m_parentProvider() : QApplication::activeWindow();
}

} // namespace tarnwick
