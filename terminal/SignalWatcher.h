#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace zorel::terminal {

/// Turns the process's signals into Qt signals on the main thread. One object a process.
class SignalWatcher : public QObject
{
    Q_OBJECT

public:
    SignalWatcher();
    /// Restores what the signals did before.
    ~SignalWatcher() override;

    /// While the event loop cannot run for long, an interruption ends the process at once with status 0.
    void setLoopBlocked(bool blocked);

Q_SIGNALS:
    /// Ctrl-C, or a request to terminate.
    void interrupted();
    /// The terminal has gone away.
    void hungUp();
    /// The terminal has another size.
    void resized();
    /// The process goes on after it was suspended.
    void resumed();

private:
    void readSignals();

    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace zorel::terminal
