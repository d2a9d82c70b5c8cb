#include "shell/frmpassword.h"

#include "shell/accessiblenames.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarnwick {

FrmPassword::FrmPassword(QWidget *parent)
    : QDialog(parent), m_txtPW(new QLineEdit(this)), m_okButton(new QPushButton(tr("OK"), this))
{
    setObjectName(QStringLiteral("FrmPassword"));
    setWindowTitle(QStringLiteral("Enter user password"));
    m_txtPW->setObjectName(QStringLiteral("TxtPW"));
    m_txtPW->setEchoMode(QLineEdit::Password);
    m_okButton->setObjectName(QStringLiteral("OKButton"));

    auto *label = new QLabel(tr("&Password:"), this);
    label->setBuddy(m_txtPW);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_txtPW);
    layout->addWidget(m_okButton, 0, Qt::AlignRight);
    m_txtPW->setAccessibleName(tr("Password"));
    exposeObjectNames(this);
    // Wide enough for the whole title next to the title bar's buttons.
    setMinimumWidth(fontMetrics().horizontalAdvance(windowTitle()) + 160);

    connect(m_okButton, &QPushButton::clicked, this, &FrmPassword::OKButton_Click);
    m_txtPW->setFocus();
}

void FrmPassword::OKButton_Click()
{
    Password = m_txtPW->text();
    accept();
}

void FrmPassword::TxtPW_KeyUp(int keyCode)
{
    if (keyCode == 13)
        OKButton_Click();
}

void FrmPassword::keyPressEvent(QKeyEvent *event)
{
    // Enter in the password box confirms it, as a key code of 13 did.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        TxtPW_KeyUp(13);
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace tarnwick
