#include "foundation/system/EndRequests.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t Wanted() {
    sigset_t wanted;
    sigemptyset(&wanted);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&wanted, signal);
    return wanted;
}

} // namespace

void EndRequests::Hold() {
    const sigset_t wanted = Wanted();
    pthread_sigmask(SIG_BLOCK, &wanted, nullptr);
}

EndRequests::EndRequests(QObject* parent)
    : QObject(parent) {
    const sigset_t wanted = Wanted();
    m_descriptor = signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor < 0) {
        pthread_sigmask(SIG_UNBLOCK, &wanted, nullptr);
        return;
    }
    m_notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &EndRequests::Read);
}

EndRequests::~EndRequests() {
    if (m_descriptor < 0)
        return;
    m_notifier->setEnabled(false);
    signalfd_siginfo
        request{}; // one that came meanwhile is fulfilled: it must not end the process out of order
    while (read(m_descriptor, &request, sizeof request) == sizeof request) {
    }
    close(m_descriptor);
    const sigset_t wanted = Wanted();
    pthread_sigmask(SIG_UNBLOCK, &wanted, nullptr);
}

void EndRequests::Read() {
    signalfd_siginfo request{};
    while (read(m_descriptor, &request, sizeof request) == sizeof request)
        Q_EMIT Requested();
}
