#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace tarnwick {

/// Turns the system's requests to end the program (SIGTERM, SIGHUP, SIGINT: a log-out, a
/// shut-down, a terminal closed) into one signal on the user-interface thread, so the program
/// closes as the user would close it: the catalogue is saved and the recovery file removed.
/// On systems without such signals it never fires. One instance per process.
class TerminationRequests : public QObject
{
    Q_OBJECT

public:
    explicit TerminationRequests(QObject *parent = nullptr);
    ~TerminationRequests() override;

Q_SIGNALS:
    void requested();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tarnwick
