#include "shell/terminationrequests.h"

#include <QSocketNotifier>

#ifdef Q_OS_UNIX
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace tarnwick {

#ifdef Q_OS_UNIX
namespace {

int terminationPipe[2] = { -1, -1 };

void onTerminationSignal(int)
{
    // Only what is safe in a signal handler: one byte into the pipe.
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(terminationPipe[1], &byte, 1);
}

} // namespace
#endif

TerminationRequests::TerminationRequests(QObject *parent) : QObject(parent)
{
#ifdef Q_OS_UNIX
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, terminationPipe) != 0)
        return;
    for (const int fd : terminationPipe) {
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    }
    m_notifier = std::make_unique<QSocketNotifier>(terminationPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        char bytes[16];
        while (::read(terminationPipe[0], bytes, sizeof bytes) > 0) { }
        Q_EMIT requested();
    });
    struct sigaction action = {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : { SIGTERM, SIGHUP, SIGINT })
        ::sigaction(signal, &action, nullptr);
#endif
}

TerminationRequests::~TerminationRequests()
{
#ifdef Q_OS_UNIX
    for (const int signal : { SIGTERM, SIGHUP, SIGINT })
        ::signal(signal, SIG_DFL);
    m_notifier.reset();
    for (int &fd : terminationPipe) {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }
#endif
}

} // namespace tarnwick
