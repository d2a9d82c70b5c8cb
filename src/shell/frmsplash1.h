#pragma once

#include <QString>
#include <QWidget>

#include <memory>

class QTimer;

namespace tarnwick {

struct AppServices;
class IShellDialogs;
class Module1;
class VbError;
class frmMain;

/// The splash window that opens the program and drives the start: it sets the catalogue
/// path, loads the main window hidden, asks for the user's password when one is set (a wrong
/// answer ends the program) or otherwise stays up for 15 ticks, then shows the main window
/// and closes itself.
class FrmSplash1 : public QWidget
{
    Q_OBJECT

public:
    static constexpr int DefaultTickMilliseconds = 100;
    static constexpr int TicksToWait = 15;

    FrmSplash1(const AppServices &services, Module1 &module, IShellDialogs &dialogs,
        QWidget *parent = nullptr);
    ~FrmSplash1() override;

    /// Runs the start. Returns when the main window is shown, the wait has begun, or the
    /// program is to end (see programEnded()).
    void Form_Load();

    /// The tick counter as text; "1000" ends the wait at the next check.
    QString Tag;
    /// Ends the wait at the next tick.
    void endWait() { Tag = QStringLiteral("1000"); }
    /// Start work kept for the splash's callers; it has nothing to do.
    void startstuff() { }

    void setTickInterval(int milliseconds);
    /// True when the password did not match: the program must end without saving anything.
    bool programEnded() const { return m_ended; }
    /// The main window, handed over to the caller once the start has finished.
    std::unique_ptr<frmMain> takeMainWindow();

    /// Asks the program to close while it is still starting (the splash's close button, the
    /// desktop ending the session): the close is carried out, through the main window's own
    /// close, as soon as the start has finished. True when the close was taken.
    void requestClose();
    bool closeRequested() const { return m_closeRequested; }

    static QString installErrorTitle(int errorNumber);
    static QString problemMessage(int errorNumber);
    static const QString InstallErrorMessage;

Q_SIGNALS:
    /// The main window is shown and the splash has closed.
    void started();

protected:
    void closeEvent(QCloseEvent *event) override;

private Q_SLOTS:
    void Timer1_Timer();

private:
    void reportStartError(const VbError &error);
    void finishStart();

    const AppServices &m_services;
    Module1 &m_module;
    IShellDialogs &m_dialogs;
    std::unique_ptr<frmMain> m_main;
    QTimer *m_timer;
    qint16 m_ticks = 0;
    bool m_ended = false;
    bool m_askingPassword = false; ///< the password prompt is up
    bool m_finished = false;
    bool m_closeRequested = false;
    /// frmMain's Form_Load has returned and every box of the start has been answered.
    bool m_mainLoaded = false;
};

} // namespace tarnwick
