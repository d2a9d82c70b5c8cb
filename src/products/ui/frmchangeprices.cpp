#include "products/ui/frmchangeprices.h"

#include "platform/qt/wheelguard.h"

#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

#include <initializer_list>

namespace tarnwick {

namespace {

template <typename W> W *namedChangeWidget(W *widget, const char *name)
{
    widget->setObjectName(QString::fromLatin1(name));
    widget->setAccessibleDescription(widget->objectName());
    return widget;
}

/// Names each option of a choice after the choice, as assistive tools read it: "Change:
/// Percentage"; the label beside the options names none of them.
void nameOptions(const QString &choice, std::initializer_list<QRadioButton *> options)
{
    for (QRadioButton *option : options) {
        QString text = option->text();
        text.remove(QLatin1Char('&'));
        option->setAccessibleName(QStringLiteral("%1 %2").arg(choice, text));
    }
}

} // namespace

FrmChangePrices::FrmChangePrices(
    Planner planner, int selectedCount, int shownCount, const QLocale &locale, QWidget *parent)
    : QDialog(parent), m_planner(std::move(planner)), m_locale(locale)
{
    setObjectName(QStringLiteral("FrmChangePrices"));
    setWindowTitle(Caption);
    QFormLayout *form = createChoices(selectedCount, shownCount);
    m_preview = namedChangeWidget(new QPlainTextEdit(this), "TxtPreview");
    m_preview->setReadOnly(true);
    m_preview->setAccessibleName(tr("Preview of the new prices"));
    m_summary = namedChangeWidget(new QLabel(this), "LblSummary");
    m_summary->setTextFormat(Qt::PlainText); // it names part numbers
    m_summary->setWordWrap(true);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    namedChangeWidget(m_buttons->button(QDialogButtonBox::Ok), "CmdOK");
    namedChangeWidget(m_buttons->button(QDialogButtonBox::Cancel), "CmdCancel");
    connect(m_buttons, &QDialogButtonBox::accepted, this, &FrmChangePrices::planAllAndAccept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_preview, 1);
    layout->addWidget(m_summary);
    layout->addWidget(m_buttons);
    for (QRadioButton *option : { m_percent, m_amount, m_selected, m_all })
        connect(option, &QRadioButton::toggled, this, &FrmChangePrices::updatePreview);
    m_typingPause = new QTimer(this);
    m_typingPause->setSingleShot(true);
    m_typingPause->setInterval(300);
    connect(m_typingPause, &QTimer::timeout, this, &FrmChangePrices::updatePreview);
    connect(m_change, &QLineEdit::textChanged, this, &FrmChangePrices::changeTyped);
    connect(m_rounding, &QComboBox::currentIndexChanged, this, &FrmChangePrices::updatePreview);
    resize(560, 420);
    updatePreview();
    // What the user types first is the change; the options keep their defaults.
    m_change->setFocus();
}

QFormLayout *FrmChangePrices::createChoices(int selectedCount, int shownCount)
{
    m_percent = namedChangeWidget(new QRadioButton(tr("Per&centage"), this), "OptPercent");
    m_amount = namedChangeWidget(new QRadioButton(tr("A&mount"), this), "OptAmount");
    m_change = namedChangeWidget(new QLineEdit(this), "TxtChange");
    m_change->setPlaceholderText(tr("e.g. 5 to raise, -5 to lower"));
    m_rounding = namedChangeWidget(new QComboBox(this), "CmbRounding");
    changeOnWheelOnlyWithFocus(m_rounding);
    m_rounding->addItems(
        { tr("To the cent"), tr("To .95 endings"), tr("To .99 endings"), tr("To whole units") });
    m_selected = namedChangeWidget(
        new QRadioButton(tr("Se&lected products (%1)").arg(selectedCount), this), "OptSelected");
    m_all = namedChangeWidget(
        new QRadioButton(tr("All products sho&wn (%1)").arg(shownCount), this), "OptAll");
    m_selected->setEnabled(selectedCount > 0);
    // Two separate choices: what the change is, and which products it applies to.
    auto *by = new QHBoxLayout;
    auto *scope = new QHBoxLayout;
    auto *byGroup = new QButtonGroup(this);
    auto *scopeGroup = new QButtonGroup(this);
    for (QRadioButton *option : { m_percent, m_amount }) {
        byGroup->addButton(option);
        by->addWidget(option);
    }
    for (QRadioButton *option : { m_selected, m_all }) {
        scopeGroup->addButton(option);
        scope->addWidget(option);
    }
    m_percent->setChecked(true);
    (selectedCount > 1 ? m_selected : m_all)->setChecked(true);
    auto *form = new QFormLayout;
    auto *changeLabel = new QLabel(tr("Change &by:"), this);
    changeLabel->setBuddy(m_change);
    auto *roundingLabel = new QLabel(tr("R&ounding:"), this);
    roundingLabel->setBuddy(m_rounding);
    nameOptions(tr("Change:"), { m_percent, m_amount });
    nameOptions(tr("Products:"), { m_selected, m_all });
    form->addRow(new QLabel(tr("Change:"), this), by);
    form->addRow(changeLabel, m_change);
    form->addRow(roundingLabel, m_rounding);
    form->addRow(new QLabel(tr("Products:"), this), scope);
    return form;
}

std::optional<PriceChangeRule> FrmChangePrices::rule() const
{
    PriceChangeRule rule;
    rule.by = m_percent->isChecked() ? PriceChangeRule::By::Percent : PriceChangeRule::By::Amount;
    const auto value = PriceChange::typedChange(m_change->text(), rule.by, m_locale);
    if (!value)
        return std::nullopt;
    rule.value = *value;
    rule.rounding = PriceChangeRule::Rounding(m_rounding->currentIndex());
    return rule;
}

bool FrmChangePrices::selectedOnly() const
{
    return m_selected->isChecked();
}

void FrmChangePrices::changeTyped()
{
    // A preview that takes a noticeable time would hold up every keystroke: it waits until
    // typing pauses (OK and Enter meanwhile work out the plan of the text as it is).
    if (m_previewIsSlow || m_slowPreview == 0) {
        m_typingPause->start();
        return;
    }
    updatePreview();
}

void FrmChangePrices::updatePreview()
{
    m_typingPause->stop();
    QElapsedTimer took;
    took.start();
    const auto entered = rule();
    m_plan = entered ? m_planner(*entered, selectedOnly(), PreviewLimit) : PriceChangePlan {};
    m_preview->setPlainText(PriceChange::previewText(m_plan, m_locale, PreviewLimit));
    m_summary->setText(PriceChange::summary(m_plan, entered.has_value()));
    m_buttons->button(QDialogButtonBox::Ok)
        ->setEnabled(PriceChange::canApply(m_plan, entered.has_value()));
    m_previewIsSlow = took.elapsed() > m_slowPreview;
}

void FrmChangePrices::planAllAndAccept()
{
    // Enter pressed before the pause: the plan is the text's, never the one before it.
    if (m_typingPause->isActive())
        updatePreview();
    const auto entered = rule();
    if (!entered)
        return;
    if (!m_plan.complete()) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        m_plan = m_planner(*entered, selectedOnly(), std::numeric_limits<std::size_t>::max());
        QApplication::restoreOverrideCursor();
    }
    if (PriceChange::canApply(m_plan, true))
        accept();
}

} // namespace tarnwick
