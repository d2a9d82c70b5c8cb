#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace tarnwick {

/// The generic one-line input dialog: a prompt, a text box, OK and Cancel. OK (or Enter)
/// closes it keeping the text; Cancel empties the text first, so the caller reads an empty
/// answer.
class Dialog : public QDialog
{
    Q_OBJECT

public:
    explicit Dialog(QWidget *parent = nullptr);

    QString MsgText() const { return m_msgText; }
    /// Sets the prompt and the label's caption.
    void setMsgText(const QString &text);
    QString text() const;
    void setText(const QString &text);

    /// The user's choice, recorded by the dialog: true after OK.
    bool OK = false;
    /// Set by the caller while the dialog is in use.
    bool Active = false;

private Q_SLOTS:
    void OKButton_Click();
    void CancelButton_Click();

private:
    QString m_msgText;
    QLabel *m_lbl;
    QLineEdit *m_text1;
    QPushButton *m_okButton;
    QPushButton *m_cancelButton;
};

} // namespace tarnwick
