#include "quotebook/ui/frmsavequote.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

/// Gives a control its control name as object name and accessible description.
template <typename W> W *controlNamed(W *widget, const char *name)
{
    const QString text = QString::fromLatin1(name);
    widget->setObjectName(text);
    widget->setAccessibleDescription(text);
    return widget;
}

} // namespace

FrmSaveQuote::FrmSaveQuote(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("FrmSaveQuote"));
    setAccessibleDescription(objectName());
    setWindowTitle(tr("Save Quote"));
    m_intro = controlNamed(new QLabel(this), "LblIntro");
    m_intro->setWordWrap(true);
    m_intro->setTextFormat(Qt::PlainText);
    m_txtCustomer = controlNamed(new QLineEdit(this), "TxtCustomer");
    m_txtCompany = controlNamed(new QLineEdit(this), "TxtCompany");
    m_txtEmail = controlNamed(new QLineEdit(this), "TxtEmail");
    m_txtReference = controlNamed(new QLineEdit(this), "TxtReference");
    m_problem = controlNamed(new QLabel(this), "LblProblem");
    m_problem->setWordWrap(true);
    m_problem->setTextFormat(Qt::PlainText); // it may repeat what was typed
    m_cmdOK = controlNamed(new QPushButton(tr("OK"), this), "CmdOK");
    m_cmdCancel = controlNamed(new QPushButton(tr("Cancel"), this), "CmdCancel");
    m_cmdOK->setDefault(true);

    auto *form = new QFormLayout;
    form->addRow(tr("&Customer:"), m_txtCustomer);
    form->addRow(tr("C&ompany:"), m_txtCompany);
    form->addRow(tr("&E-mail:"), m_txtEmail);
    form->addRow(tr("&Reference:"), m_txtReference);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cmdOK);
    buttons->addWidget(m_cmdCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_intro);
    layout->addLayout(form);
    // The problem has a line of its own under the boxes, as wide as the window.
    layout->addWidget(m_problem);
    layout->addLayout(buttons);
    m_intro->hide();
    m_problem->hide();
    m_txtEmail->setInputMethodHints(Qt::ImhEmailCharactersOnly);
    setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('M')) * 32);
    connectHandlers();
}

void FrmSaveQuote::connectHandlers()
{
    connect(m_cmdOK, &QPushButton::clicked, this, &FrmSaveQuote::CmdOK_Click);
    connect(m_cmdCancel, &QPushButton::clicked, this, &FrmSaveQuote::CmdCancel_Click);
}

void FrmSaveQuote::setIntro(const QString &text)
{
    m_intro->setText(text);
    m_intro->setVisible(!text.isEmpty());
}

void FrmSaveQuote::setDetails(const CustomerDetails &details)
{
    m_txtCustomer->setText(details.customer);
    m_txtCompany->setText(details.company);
    m_txtEmail->setText(details.email);
    m_txtReference->setText(details.reference);
}

CustomerDetails FrmSaveQuote::details() const
{
    return CustomerDetails { m_txtCustomer->text(), m_txtCompany->text(), m_txtEmail->text(),
        m_txtReference->text() }
        .trimmed();
}

QString FrmSaveQuote::problemText() const
{
    return m_problemText;
}

void FrmSaveQuote::CmdOK_Click()
{
    const QString problem = details().problem();
    m_problemText = problem;
    // A typed address has no blanks to wrap at: it may wrap after its dots, "@", "-" and "_"
    // (a break that takes no room), so no part of it goes past the window's edge.
    QString wrappable = problem;
    for (const QChar mark :
        { QLatin1Char('.'), QLatin1Char('@'), QLatin1Char('-'), QLatin1Char('_') })
        wrappable.replace(mark, QString(mark) + QChar(0x200B));
    m_problem->setText(wrappable);
    m_problem->setAccessibleDescription(problem);
    m_problem->setVisible(!problem.isEmpty());
    // The window grows to show the whole of it; the boxes keep their height.
    layout()->activate();
    const int needed = layout()->totalHeightForWidth(width());
    if (needed > height())
        resize(width(), needed);
    if (problem.isEmpty()) {
        accept();
        return;
    }
    // The box that needs attention takes the keyboard.
    QLineEdit *box =
        details().customer.isEmpty() && details().company.isEmpty() ? m_txtCustomer : m_txtEmail;
    box->setFocus();
    box->selectAll();
}

void FrmSaveQuote::CmdCancel_Click()
{
    reject();
}

} // namespace tarnwick
