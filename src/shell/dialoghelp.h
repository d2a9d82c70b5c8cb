#pragma once

#include <QObject>
#include <QString>

#include <optional>

namespace tarnwick {

struct AppServices;

/// F1 in one of the program's own windows opens the manual at the page that explains that
/// window. The main window's F1 is Help → Contents and the import window answers F1 itself;
/// the other windows (Change Prices, the discounts, Save Quote, the Quotes window, Properties,
/// About, the print preview, the help window…) and the message boxes know nothing of the help,
/// so one filter on the application answers for them all. (A message box holds up every
/// window while it is up, the help window too: its page is there to read once it is answered.)
class DialogHelp : public QObject
{
public:
    DialogHelp(const AppServices &services, QObject *parent);

    /// The context number of the manual's page for the window of that object name, if any.
    static std::optional<qint32> contextFor(const QString &windowName);
    /// The context number of the page that explains a message box's text, if any: the
    /// catalogue that could not be read or saved, the changes of a session that did not end
    /// cleanly, a start-up problem.
    static std::optional<qint32> contextForMessage(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const AppServices &m_services;
};

} // namespace tarnwick
