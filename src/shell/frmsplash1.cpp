#include "shell/frmsplash1.h"

#include "catalogue/module1.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/chelp.h"
#include "platform/helpcontexts.h"
#include "platform/ieventpump.h"
#include "platform/iprompts.h"
#include "platform/isettingsstore.h"
#include "shell/frmmain.h"
#include "shell/passwordlock.h"
#include "shell/settingskeys.h"
#include "shell/shelldialogs.h"
#include "shell/windowsettings.h"

#include <QCloseEvent>
#include <QDateTime>
#include <QFrame>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

const QString DataFileName = QStringLiteral("twdata.dat");
const QString StartMessageTitle = QStringLiteral("Tarnwick");

bool isInstallationError(int number)
{
    // Errors about files and folders point at a damaged installation; the others are reported
    // as a problem opening the program.
    switch (number) {
    case ErrorNumber::BadFileName:
    case ErrorNumber::FileNotFound:
    case ErrorNumber::PermissionDenied:
    case ErrorNumber::PathNotFound:
        return true;
    default:
        return false;
    }
}

QLabel *addLabel(QVBoxLayout *layout, const QString &text, int pointSizeDelta, bool bold)
{
    auto *label = new QLabel(text);
    QFont font = label->font();
    font.setPointSize(font.pointSize() + pointSizeDelta);
    font.setBold(bold);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    layout->addWidget(label);
    return label;
}

} // namespace

const QString FrmSplash1::InstallErrorMessage =
    QStringLiteral("Tarnwick did not install correctly. Would you like to see possible remedies?");

FrmSplash1::FrmSplash1(
    const AppServices &services, Module1 &module, IShellDialogs &dialogs, QWidget *parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint), m_services(services),
      m_module(module), m_dialogs(dialogs), m_timer(new QTimer(this))
{
    setObjectName(QStringLiteral("FrmSplash1"));
    setAccessibleDescription(objectName());
    setWindowTitle(QStringLiteral("Tarnwick"));
    auto *frame = new QFrame(this);
    frame->setFrameShape(QFrame::Box);
    auto *layout = new QVBoxLayout(frame);
    layout->setContentsMargins(40, 30, 40, 30);
    addLabel(layout, QStringLiteral("Tarnwick"), 14, true);
    addLabel(layout, tr("Price list and quotes"), 2, false);
    addLabel(layout, tr("Version %1").arg(QStringLiteral(TARNWICK_VERSION_STRING)), 0, false);
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(frame);
    m_timer->setInterval(DefaultTickMilliseconds);
    connect(m_timer, &QTimer::timeout, this, &FrmSplash1::Timer1_Timer);
}

FrmSplash1::~FrmSplash1() = default;

void FrmSplash1::setTickInterval(int milliseconds)
{
    m_timer->setInterval(milliseconds);
}

void FrmSplash1::Form_Load()
{
    m_timer->start();
    m_services.events.processPendingEvents();
    m_module.DataFile = m_services.environment.pathInAppFolder(DataFileName);
    if (m_services.environment.isTestRun())
        m_services.prompts.msgBox(
            QStringLiteral("Past splash.show"), MsgStyle::OkOnly, QStringLiteral("Debug"));
    const QString damaged =
        setAsideDamagedSettings(m_services.settings, QDateTime::currentDateTime());
    if (!damaged.isEmpty())
        m_services.prompts.msgBox(
            damaged, MsgStyle::OkOnly | MsgStyle::Exclamation, StartMessageTitle);
    const QString password = readUserPassword(m_services.settings);
    if (PasswordLock::isDamaged(password)) {
        // Nothing can be checked against it: the owner is told how to get in, instead of a
        // prompt that no answer passes. Nothing is loaded or written.
        m_services.prompts.msgBox(
            PasswordLock::damagedMessage(m_services.settings.location(SettingsKeys::Application)),
            MsgStyle::OkOnly | MsgStyle::Exclamation, StartMessageTitle);
        m_ended = true;
        m_timer->stop();
        close();
        return;
    }
    m_main = std::make_unique<frmMain>(m_services, m_module, m_dialogs);
    const auto error = m_main->Form_Load();
    if (error)
        reportStartError(*error);
    if (!password.isEmpty() && m_closeRequested) {
        // Closed before the password was asked: nothing was changed, so nothing is written.
        m_ended = true;
        m_main.reset();
        close();
        return;
    }
    if (!password.isEmpty()) {
        // Nothing of the catalogue shows while the prompt is up: the tick wait ends here.
        m_timer->stop();
        m_askingPassword = true;
        const QString answer = m_dialogs.askPassword();
        m_askingPassword = false;
        if (m_closeRequested || !PasswordLock::unlock(m_services.settings, password, answer)) {
            // One attempt per start, and a close asked for while the prompt was up closes it: the
            // program ends here and nothing is written.
            m_ended = true;
            m_timer->stop();
            m_main.reset();
            close();
            return;
        }
    }
    // What the catalogue file held wrong, then the changes a run that did not end cleanly left
    // behind, before the catalogue shows.
    m_main->showCatalogueMessages();
    m_main->offerRecovery();
    // Only now may a tick or a close finish the start: a box above (the start error, the
    // password, the recovery) runs the event loop while it is up, and the main window must not
    // appear behind it, nor leave this window before the start is through with it.
    m_mainLoaded = true;
    // After a start error or a password, the main window is shown at once; otherwise the start
    // finishes once the tick counter reaches 15; a close asked for meanwhile ends it at once.
    if (error || !password.isEmpty() || m_closeRequested)
        finishStart();
}

void FrmSplash1::Timer1_Timer()
{
    if (m_ticks < 32767)
        ++m_ticks;
    if (Tag != QLatin1String("1000"))
        Tag = QString::number(m_ticks);
    // A large catalogue is read while the splash keeps ticking: the start finishes only once
    // the main window has loaded.
    if (m_main && m_mainLoaded && Tag.toInt() >= TicksToWait)
        finishStart();
}

void FrmSplash1::finishStart()
{
    if (m_finished)
        return;
    m_finished = true;
    m_timer->stop();
    frmMain *main = m_main.get();
    // A close asked for during the start is carried out now, as the main window's own close
    // (which saves), without showing it first.
    if (!m_closeRequested)
        main->show();
    close();
    // Unloaded: its window goes, so nothing lists a hidden second "Tarnwick" beside the main
    // window (the object stays until the program ends; it is never shown again).
    destroy();
    Q_EMIT started();
    if (m_closeRequested)
        main->close();
}

void FrmSplash1::requestClose()
{
    if (m_finished || m_ended)
        return;
    m_closeRequested = true;
    // Nothing was changed while the password is asked for: the prompt closes, and with it the
    // program, writing nothing.
    if (m_askingPassword) {
        m_dialogs.closePasswordPrompt();
        return;
    }
    // The main window has loaded and the splash only waits for its ticks: the start finishes
    // now, once the close event that asked for it is done.
    if (m_mainLoaded && m_main)
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (m_main && !m_finished && !m_ended)
                    finishStart();
            },
            Qt::QueuedConnection);
}

void FrmSplash1::closeEvent(QCloseEvent *event)
{
    // While the program starts, closing the splash closes the program once the start is done.
    if (!m_finished && !m_ended) {
        requestClose();
        event->ignore();
        return;
    }
    QWidget::closeEvent(event);
}

void FrmSplash1::reportStartError(const VbError &error)
{
    const int number = error.number();
    if (isInstallationError(number)) {
        const int answer = m_services.prompts.msgBox(InstallErrorMessage,
            MsgStyle::YesNo | MsgStyle::Exclamation, installErrorTitle(number));
        if (answer == MsgResult::Yes)
            CHelp(m_services.help)
                .Show(CHelp::helpFilePath(m_services.environment), CHelp::MainWindow,
                    HelpContext::StartupRemedies);
        return;
    }
    m_services.prompts.msgBox(
        problemMessage(number), MsgStyle::OkOnly, QStringLiteral("Error Message"));
}

QString FrmSplash1::installErrorTitle(int errorNumber)
{
    return QStringLiteral("Error") + QString::number(errorNumber);
}

QString FrmSplash1::problemMessage(int errorNumber)
{
    return QStringLiteral("There was a problem opening the program. Error Message ")
        + QString::number(errorNumber)
        + QStringLiteral(" was recieved. Contact Tarnwick for the cause of the error.");
}

std::unique_ptr<frmMain> FrmSplash1::takeMainWindow()
{
    return std::move(m_main);
}

} // namespace tarnwick
