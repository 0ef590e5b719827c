#include "terminal/SignalWatcher.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace zorel::terminal {

namespace {

constexpr std::array watchedSignals{SIGINT, SIGTERM, SIGHUP, SIGWINCH, SIGCONT};
/// So many interruptions without the event loop getting to see one mean that it hangs, in a write that nobody
/// reads.
constexpr int patience = 3;

std::array<int, 2> signalPipe{-1, -1};
std::array<struct sigaction, watchedSignals.size()> formerActions;
std::atomic<bool> loopBlocked{false};
std::atomic<int> unseenInterruptions{0};
static_assert(std::atomic<int>::is_always_lock_free);

void noteSignal(int signal)
{
    const int savedError = errno;
    if (signal == SIGINT || signal == SIGTERM) {
        if (loopBlocked || ++unseenInterruptions >= patience) {
            ::_exit(0);
        }
    }
    const char byte = static_cast<char>(signal);
    // A full pipe already holds more than anybody needs to know.
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = savedError;
}

} // namespace

SignalWatcher::SignalWatcher()
{
    if (::pipe(signalPipe.data()) != 0) {
        return;
    }
    for (const int descriptor : signalPipe) {
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    }
    m_notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &SignalWatcher::readSignals);

    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < watchedSignals.size(); ++i) {
        ::sigaction(watchedSignals[i], nullptr, &formerActions[i]);
        // nohup, or a shell's background job, wants these ignored.
        if (formerActions[i].sa_handler != SIG_IGN) {
            ::sigaction(watchedSignals[i], &action, nullptr);
        }
    }
}

SignalWatcher::~SignalWatcher()
{
    if (!m_notifier) {
        return;
    }
    for (std::size_t i = 0; i < watchedSignals.size(); ++i) {
        ::sigaction(watchedSignals[i], &formerActions[i], nullptr);
    }
    m_notifier.reset();
    for (int &descriptor : signalPipe) {
        ::close(descriptor);
        descriptor = -1;
    }
}

void SignalWatcher::setLoopBlocked(bool blocked)
{
    loopBlocked = blocked;
}

void SignalWatcher::readSignals()
{
    char byte = 0;
    while (m_notifier && ::read(signalPipe[0], &byte, 1) == 1) {
        switch (byte) {
        case SIGINT:
        case SIGTERM:
            --unseenInterruptions;
            Q_EMIT interrupted();
            break;
        case SIGHUP:
            Q_EMIT hungUp();
            break;
        case SIGWINCH:
            Q_EMIT resized();
            break;
        case SIGCONT:
            Q_EMIT resumed();
            break;
        }
    }
}

} // namespace zorel::terminal
