#include "products/ui/discountform.h"

#include "platform/qt/wheelguard.h"
#include "products/discount.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

/// Gives a control its control name as object name and accessible description.
template <typename W> W *named(W *widget, const char *name)
{
    const QString text = QString::fromLatin1(name);
    widget->setObjectName(text);
    widget->setAccessibleDescription(text);
    return widget;
}

} // namespace

DiscountForm::DiscountForm(
    Table &quote, const QLocale &locale, const QString &objectName, QWidget *parent)
    : QDialog(parent), m_quote(quote), m_locale(locale)
{
    setObjectName(objectName);
    setAccessibleDescription(objectName);
    setWindowTitle(tr("Discount"));
    m_label1 = named(new QLabel(tr("Apply Discount"), this), "Label1");
    m_cmboDisc = named(new QComboBox(this), "CmboDisc");
    changeOnWheelOnlyWithFocus(m_cmboDisc);
    m_label1->setBuddy(m_cmboDisc);
    m_cmboDisc->setAccessibleName(m_label1->text());
    m_scope = named(new QLabel(this), "LblScope");
    m_scope->setTextFormat(Qt::PlainText);
    m_command1 = named(new QPushButton(tr("Apply"), this), "Command1");
    m_command2 = named(new QPushButton(tr("Close"), this), "Command2");
    m_command1->setDefault(true);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_command1);
    buttons->addWidget(m_command2);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_label1);
    layout->addWidget(m_scope);
    layout->addWidget(m_cmboDisc);
    layout->addLayout(buttons);

    connectHandlers();
    Form_Load();
}

DiscountForm::~DiscountForm() = default;

void DiscountForm::setScope(const QString &text)
{
    // Said in the window, not in its name: assistive tools and scripts find the window by its
    // title "Discount", and read the label with the window's other texts.
    m_scope->setText(text);
}

void DiscountForm::connectHandlers()
{
    connect(m_command1, &QPushButton::clicked, this, &DiscountForm::Command1_Click);
    connect(m_command2, &QPushButton::clicked, this, &DiscountForm::Command2_Click);
}

void DiscountForm::Form_Load()
{
    m_cmboDisc->addItems(Discount::choices());
    m_cmboDisc->setCurrentIndex(0);
}

void DiscountForm::Command1_Click()
{
    const QString choice = m_cmboDisc->currentText();
    if (m_apply)
        m_apply(Discount::multiplierFor(choice), choice);
    else
        applyDiscount(Discount::multiplierFor(choice));
    Q_EMIT discountApplied();
    accept();
}

void DiscountForm::Command2_Click()
{
    reject();
}

} // namespace tarnwick
