// How long the real program's window stops answering while it works on a large catalogue.
// The real splash and main window run on a generated catalogue (a temporary application
// folder, its own settings file); a timer on the user-interface thread fires every 5 ms and
// the longest gap between two of its firings is the longest time the event loop was blocked.
// Measured, one after the other: the start (splash to main window shown), a click on the
// "Product Name" header, "Locate Product" for a text no product holds, the price list's
// preview until its first page shows, and the close (the save and the end of the window).
//
//     tarnwick_ui_pauses <products> [phase ...]
//
// Message boxes and the search dialog are answered by script; everything else is the real
// program. Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.
#include "generatedcatalogue.h"

#include "catalogue/module1.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/iprompts.h"
#include "platform/qt/qtservices.h"
#include "shell/frmmain.h"
#include "shell/frmsplash1.h"
#include "shell/gridview.h"
#include "shell/mainwindowactions.h"
#include "shell/mainwindowui.h"
#include "shell/printpreview.h"
#include "shell/shelldialogs.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>

namespace {

using namespace tarnwick;

/// Answers every message box with its first button (OK, Yes) and counts them.
class AnsweringPrompts : public IPrompts
{
public:
    int msgBox(const QString &text, int style, const QString &) override
    {
        ++shown;
        last = text;
        const int buttons = style & 7;
        return (buttons == MsgStyle::YesNo || buttons == MsgStyle::YesNoCancel) ? MsgResult::Yes
                                                                                : MsgResult::Ok;
    }
    QString inputBox(const QString &, const QString &, const QString &) override { return {}; }
    int shown = 0;
    QString last;
};

/// The search dialog answered with one text; no password is set.
class ScriptedDialogs : public IShellDialogs
{
public:
    QString askPassword() override { return {}; }
    void closePasswordPrompt() override { }
    QString askText(const QString &, const QString &, const QString &) override
    {
        return QStringLiteral("no such product");
    }
};

/// The longest gap between two firings of a 5 ms timer on this thread, per phase.
class PauseProbe : public QObject
{
public:
    PauseProbe()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(5);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            const qint64 now = m_clock.nsecsElapsed();
            m_longest = std::max(m_longest, now - m_last);
            m_last = now;
        });
        m_clock.start();
        m_timer.start();
    }
    /// Starts a phase: the gap and the phase's clock start now.
    void begin()
    {
        m_last = m_clock.nsecsElapsed();
        m_longest = 0;
        m_phaseStart = m_last;
    }
    /// Ends the phase and prints its length and its longest pause.
    void end(const char *phase)
    {
        const qint64 now = m_clock.nsecsElapsed();
        m_longest = std::max(m_longest, now - m_last);
        std::printf("%-34s %9.0f ms   longest pause %7.0f ms\n", phase,
            double(now - m_phaseStart) / 1e6, double(m_longest) / 1e6);
        std::fflush(stdout);
        worst = std::max(worst, m_longest);
    }
    qint64 worst = 0;

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_last = 0;
    qint64 m_longest = 0;
    qint64 m_phaseStart = 0;
};

/// Runs the event loop until done() holds (or a minute has passed).
bool waitUntil(const std::function<bool()> &done)
{
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < 60000)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    return done();
}

/// Lets the window settle: the event loop runs for a while with nothing to do.
void settle(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

long peakMiB()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <products>\n", argv[0]);
        return 2;
    }
    const int products = std::atoi(argv[1]);
    QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", QDir(folder.path()).filePath(QStringLiteral("config")).toUtf8());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QString dataFile = QDir(folder.path()).filePath(QStringLiteral("twdata.dat"));
    if (!bench::writeGeneratedCatalogue(QFile::encodeName(dataFile).constData(), products)) {
        std::fprintf(stderr, "the catalogue could not be written\n");
        return 1;
    }
    std::printf("%d products, %.1f MiB file, platform %s\n", products,
        double(QFileInfo(dataFile).size()) / 1048576.0, qPrintable(QApplication::platformName()));

    const AppEnvironment environment(folder.path(), QString());
    AnsweringPrompts prompts;
    QtServices desktopServices;
    const AppServices services = desktopServices.with(prompts, environment);
    ScriptedDialogs dialogs;
    Module1 module(prompts, environment, QLocale(QLocale::English, QLocale::UnitedStates));

    PauseProbe probe;
    probe.begin();
    FrmSplash1 splash(services, module, dialogs);
    std::unique_ptr<frmMain> window;
    QObject::connect(&splash, &FrmSplash1::started, [&] { window = splash.takeMainWindow(); });
    splash.show();
    splash.Form_Load();
    waitUntil([&] { return window && window->isVisible(); });
    probe.end("start: splash to main window");
    if (!window)
        return 1;
    settle(500);

    probe.begin();
    Q_EMIT window->ui().GrdMain->horizontalHeader()->sectionClicked(1);
    settle(100);
    probe.end("header click on Product Name");

    probe.begin();
    const int boxesBefore = prompts.shown;
    window->actions().button(QStringLiteral("Find"))->trigger();
    waitUntil([&] { return prompts.shown > boxesBefore; });
    probe.end("Locate Product, no match");

    // The preview is modal: a timer looks for its window, notes when its first page shows,
    // lets it lay out pages for a while and closes it.
    probe.begin();
    QElapsedTimer previewClock;
    previewClock.start();
    qint64 firstPage = -1;
    QTimer watcher;
    watcher.setInterval(5);
    QObject::connect(&watcher, &QTimer::timeout, [&] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            auto *preview = qobject_cast<PrintPreview *>(widget);
            if (!preview || !preview->isVisible())
                continue;
            if (firstPage < 0 && !preview->shownPage().isNull())
                firstPage = previewClock.elapsed();
            if (firstPage >= 0 && previewClock.elapsed() > firstPage + 3000)
                preview->reject();
        }
    });
    watcher.start();
    window->actions().action(QStringLiteral("mnuPreview"))->trigger();
    watcher.stop();
    std::printf("preview: first page after %lld ms\n", static_cast<long long>(firstPage));
    probe.end("preview, first page and 3 s of layout");

    probe.begin();
    bool unloaded = false;
    QObject::connect(window.get(), &frmMain::unloaded, [&] { unloaded = true; });
    window->close();
    waitUntil([&] { return unloaded; });
    window.reset();
    probe.end("close: save and end");

    std::printf("longest pause of all: %.0f ms; peak memory %ld MiB\n", double(probe.worst) / 1e6,
        peakMiB());
    return 0;
}
