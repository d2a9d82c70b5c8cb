#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace tarnwick {

struct AppServices;

/// The version text of the About box: "Version " and the major, minor and revision numbers
/// without leading zeros ("Version 1.3.1").
QString aboutVersionText(int major, int minor, int revision);
/// The About box's version text for this build.
QString aboutVersionText();

/// The About box: the application icon, the program's name and version, OK and
/// "&System Info...", which starts the desktop's system-information program.
class frmAbout : public QDialog
{
    Q_OBJECT

public:
    explicit frmAbout(const AppServices &services, QWidget *parent = nullptr);

    QLabel *picIcon() const { return m_icon; }
    QLabel *lblVersion() const { return m_version; }
    QPushButton *cmdSysInfo() const { return m_sysInfo; }
    QPushButton *okButton() const { return m_ok; }

private Q_SLOTS:
    void cmdSysInfo_Click();
    void CmdOK_Click();

private:
    void Form_Load();

    const AppServices &m_services;
    QLabel *m_icon = nullptr;
    QLabel *m_version = nullptr;
    QPushButton *m_sysInfo = nullptr;
    QPushButton *m_ok = nullptr;
};

} // namespace tarnwick
