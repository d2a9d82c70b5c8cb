#include "shell/dialog.h"

#include "shell/accessiblenames.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarnwick {

Dialog::Dialog(QWidget *parent)
    : QDialog(parent), m_lbl(new QLabel(this)), m_text1(new QLineEdit(this)),
      m_okButton(new QPushButton(tr("OK"), this)),
      m_cancelButton(new QPushButton(QStringLiteral("Cancel"), this))
{
    setObjectName(QStringLiteral("Dialog"));
    setWindowTitle(QStringLiteral("Dialog Caption"));
    m_lbl->setObjectName(QStringLiteral("lbl"));
    m_lbl->setBuddy(m_text1);
    m_lbl->setWordWrap(true);
    m_text1->setObjectName(QStringLiteral("Text1"));
    m_text1->setMinimumWidth(260);
    m_okButton->setObjectName(QStringLiteral("OKButton"));
    m_okButton->setDefault(true);
    m_cancelButton->setObjectName(QStringLiteral("CancelButton"));

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_okButton);
    buttons->addWidget(m_cancelButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_lbl);
    layout->addWidget(m_text1);
    layout->addLayout(buttons);
    exposeObjectNames(this);

    // Enter in the text box presses the default button, OK.
    connect(m_okButton, &QPushButton::clicked, this, &Dialog::OKButton_Click);
    connect(m_cancelButton, &QPushButton::clicked, this, &Dialog::CancelButton_Click);
    connect(this, &QDialog::rejected, m_text1, &QLineEdit::clear);
    m_text1->setFocus();
}

void Dialog::setMsgText(const QString &text)
{
    m_msgText = text;
    m_lbl->setText(text);
    m_text1->setAccessibleName(text);
}

QString Dialog::text() const
{
    return m_text1->text();
}

void Dialog::setText(const QString &text)
{
    m_text1->setText(text);
    m_text1->selectAll();
}

void Dialog::OKButton_Click()
{
    OK = true;
    accept();
}

void Dialog::CancelButton_Click()
{
    m_text1->clear();
    OK = false;
    reject();
}

} // namespace tarnwick
