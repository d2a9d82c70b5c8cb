#include "shell/frmabout.h"

#include "platform/appservices.h"
#include "shell/accessiblenames.h"
#include "shell/loadnumberedcaptions.h"
#include "shell/systeminfo.h"

#include <QApplication>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

constexpr int IconSize = 64;

QLabel *addLabel(QWidget *parent, const QString &name, const QString &text)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QPixmap applicationPixmap()
{
    const QIcon appIcon = QApplication::windowIcon();
    if (!appIcon.isNull() && !appIcon.availableSizes().isEmpty())
        return appIcon.pixmap(IconSize, IconSize);
    return QIcon(QStringLiteral(":/icons/tarnwick-64.png")).pixmap(IconSize, IconSize);
}

} // namespace

QString aboutVersionText(int major, int minor, int revision)
{
    return QStringLiteral("Version %1.%2.%3").arg(major).arg(minor).arg(revision);
}

QString aboutVersionText()
{
    return aboutVersionText(TARNWICK_VERSION_MAJOR, TARNWICK_VERSION_MINOR, TARNWICK_VERSION_PATCH);
}

frmAbout::frmAbout(const AppServices &services, QWidget *parent)
    : QDialog(parent), m_services(services)
{
    setObjectName(QStringLiteral("frmAbout"));
    setProperty("Tag", QStringLiteral("1067"));
    m_icon = addLabel(this, QStringLiteral("picIcon"), QString());
    m_icon->setAccessibleName(QStringLiteral("Tarnwick icon"));
    m_icon->setPixmap(applicationPixmap());
    QLabel *title = addLabel(this, QStringLiteral("lblTitle"), QStringLiteral("Tarnwick"));
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    title->setFont(big);
    m_version = addLabel(this, QStringLiteral("lblVersion"), QString());
    QLabel *description = addLabel(this, QStringLiteral("lblDescription"),
        QStringLiteral("Keeps a sales person's price list and prepares customer quotes from it."));
    description->setWordWrap(true);
    description->setMinimumWidth(320);
    m_ok = new QPushButton(QStringLiteral("OK"), this);
    m_ok->setObjectName(QStringLiteral("CmdOK"));
    m_ok->setDefault(true);
    m_sysInfo = new QPushButton(QStringLiteral("1068"), this);
    m_sysInfo->setObjectName(QStringLiteral("cmdSysInfo"));

    auto *layout = new QGridLayout(this);
    layout->addWidget(m_icon, 0, 0, 3, 1, Qt::AlignTop);
    layout->addWidget(title, 0, 1);
    layout->addWidget(m_version, 1, 1);
    layout->addWidget(description, 2, 1);
    auto *buttons = new QVBoxLayout;
    buttons->addWidget(m_ok);
    buttons->addWidget(m_sysInfo);
    buttons->addStretch();
    layout->addLayout(buttons, 0, 2, 3, 1);
    layout->setColumnStretch(1, 1);
    layout->setHorizontalSpacing(16);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(m_ok, &QPushButton::clicked, this, &frmAbout::CmdOK_Click);
    connect(m_sysInfo, &QPushButton::clicked, this, &frmAbout::cmdSysInfo_Click);
    Form_Load();
    exposeObjectNames(this);
}

void frmAbout::Form_Load()
{
    LoadNumberedCaptions(this);
    m_version->setText(aboutVersionText());
}

void frmAbout::cmdSysInfo_Click()
{
    RunSystemInfo(
        m_services.launcher, m_services.prompts, qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
}

void frmAbout::CmdOK_Click()
{
    accept();
}

} // namespace tarnwick
