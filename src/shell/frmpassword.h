#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;

namespace tarnwick {

/// The start-up password prompt, captioned "Enter user password". The typed characters are
/// masked. The text the user confirmed with OK or Enter is kept in Password; closing the
/// window any other way leaves it empty.
class FrmPassword : public QDialog
{
    Q_OBJECT

public:
    explicit FrmPassword(QWidget *parent = nullptr);

    /// The confirmed text, read by the start-up after the dialog closes.
    QString Password;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private Q_SLOTS:
    void OKButton_Click();

private:
    void TxtPW_KeyUp(int keyCode);

    QLineEdit *m_txtPW;
    QPushButton *m_okButton;
};

} // namespace tarnwick
