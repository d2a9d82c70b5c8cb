// Tarnwick: a price list and quote program. main() builds the desktop services, makes sure
// only one copy runs on the application folder and hands over to the splash window.
#include "catalogue/module1.h"
#include "core/formats.h"
#include "exchange/workbookreaderchild.h"
#include "platform/appenvironment.h"
#include "platform/appfolder.h"
#include "platform/appservices.h"
#include "platform/iprompts.h"
#include "platform/qt/clipboardkeeper.h"
#include "platform/qt/qtprompts.h"
#include "platform/qt/qtservices.h"
#include "shell/frmmain.h"
#include "shell/frmsplash1.h"
#include "shell/shelldialogs.h"
#include "shell/singleinstance.h"
#include "shell/terminationrequests.h"

#include <QApplication>
#include <QIcon>
#include <QScreen>
#include <QSessionManager>

using namespace tarnwick;

namespace {

/// The application icon of the main window and every dialog, in each size drawn at build time.
QIcon applicationIcon()
{
    QIcon icon;
    for (const int size : { 16, 22, 24, 32, 48, 64, 128, 256 })
        icon.addFile(QStringLiteral(":/icons/tarnwick-%1.png").arg(size), QSize(size, size));
    return icon;
}

} // namespace

int main(int argc, char *argv[])
{
    // Started by the program itself to read a workbook: no window, no application object.
    if (const std::optional<int> code = WorkbookReaderChild::runIfAsked(argc, argv))
        return *code;
    // Started by the program itself, at its close, to keep what it copied on the clipboard.
    if (const std::optional<int> code = ClipboardKeeper::runIfAsked(argc, argv))
        return *code;
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QApplication::setApplicationVersion(QStringLiteral(TARNWICK_VERSION_STRING));
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(applicationIcon());
    QGuiApplication::setDesktopFileName(QStringLiteral("tarnwick"));

    QtPrompts prompts;
    if (const QString folder = unreadableAppFolderOfThisProgram(); !folder.isEmpty()) {
        prompts.msgBox(
            QString::fromLatin1(FolderNameUnreadableMessage).arg(folder), MsgStyle::Critical);
        return 1;
    }
    const AppEnvironment environment = AppEnvironment::fromApplication(QApplication::arguments());
    QtServices desktopServices;
    const AppServices services = desktopServices.with(prompts, environment);

    // A folder named by TARNWICK_APP_DIR that is not there is said before anything is read.
    if (!environment.isPerUserFolder() && !findNamedFolder(environment.appFolder(), prompts))
        return 1;
    const SingleInstance instance(environment.appFolder());
    if (!instance.isOnlyInstance()) {
        prompts.msgBox(instance.refusalMessage(), MsgStyle::Information);
        return 1;
    }
    if (environment.isPerUserFolder()) {
        offerSampleCatalogue(environment.appFolder(),
            AppFolderRule::installedSampleCatalogue(QCoreApplication::applicationDirPath()),
            prompts);
    }

    Module1 module(prompts, environment, programLocale());
    ShellDialogs dialogs;
    FrmSplash1 splash(services, module, dialogs);
    splash.adjustSize();
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        splash.move(screen->availableGeometry().center() - splash.rect().center());
    splash.show();

    std::unique_ptr<frmMain> mainWindow;
    QObject::connect(&splash, &FrmSplash1::started, [&] {
        mainWindow = splash.takeMainWindow();
        QObject::connect(
            mainWindow.get(), &frmMain::unloaded, &app, &QApplication::quit, Qt::QueuedConnection);
    });
    // A log-out or a shut-down closes the program as the user would: the catalogue is saved.
    // Before that, a session manager's request brings the recovery file up to date at once.
    const TerminationRequests termination;
    QObject::connect(&termination, &TerminationRequests::requested, [&] {
        if (mainWindow)
            mainWindow->requestClose();
        else
            splash.requestClose();
    });
    QObject::connect(&app, &QGuiApplication::commitDataRequest, [&](QSessionManager &) {
        if (!mainWindow)
            return;
        mainWindow->sessionEnding();
#if defined(Q_OS_WIN)
        // Windows ends the program right after this request, without a close and without a
        // signal: the close a log-out makes elsewhere is made here.
        mainWindow->requestClose();
#endif
    });
    splash.Form_Load();
    if (splash.programEnded())
        return 0;
    return app.exec();
}
