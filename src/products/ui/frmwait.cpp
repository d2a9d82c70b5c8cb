#include "products/ui/frmwait.h"

#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

namespace tarnwick {

FrmWait::FrmWait(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("FrmWait"));
    setAccessibleDescription(objectName());
    setWindowTitle(tr("Processing"));
    m_label1 = new QLabel(tr("Please wait"), this);
    m_label1->setObjectName(QStringLiteral("Label1"));
    m_label1->setAccessibleDescription(m_label1->objectName());
    m_label1->setMinimumWidth(m_label1->fontMetrics().horizontalAdvance(tr("Please wait...")));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_label1, 0, Qt::AlignCenter);

    m_timer1 = new QTimer(this);
    m_timer1->setObjectName(QStringLiteral("Timer1"));
    m_timer1->setInterval(TimerInterval);
    connect(m_timer1, &QTimer::timeout, this, &FrmWait::Timer1_Timer);
    m_timer1->start();
}

/// The counter starts at 0 and is raised on every tick; 1 to 4 show the plain text and one to
/// three dots, any other value goes back to 1 without changing the label, so "Please wait..."
/// stays for two ticks and the plain text is shown only on the first one.
void FrmWait::Timer1_Timer()
{
    ++m_counter;
    switch (m_counter) {
    case 1:
        m_label1->setText(tr("Please wait"));
        break;
    case 2:
        m_label1->setText(tr("Please wait."));
        break;
    case 3:
        m_label1->setText(tr("Please wait.."));
        break;
    case 4:
        m_label1->setText(tr("Please wait..."));
        break;
    default:
        m_counter = 1;
        break;
    }
}

} // namespace tarnwick
