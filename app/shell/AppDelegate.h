#pragma once

#include <QObject>
#include <QPointer>

#include <chrono>
#include <functional>

namespace zorel::backend::bridge {
class BackendController;
}

namespace zorel::app::shell {

/// Decides how the application starts and quits while the training sidecar is busy. Main thread only.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    /// How long a quit waits at most for a busy sidecar, and how often it looks.
    static constexpr std::chrono::seconds quitDeadline{120};
    static constexpr std::chrono::milliseconds pollInterval{250};

    /// What the wait needs from outside. `runAfter` calls the function on the main thread when the time has
    /// passed, unless `context` is gone.
    struct Surroundings
    {
        std::function<std::chrono::steady_clock::time_point()> now;
        std::function<void(std::chrono::milliseconds, QObject *context, std::function<void()>)> runAfter;

        /// The steady clock and this thread's event loop.
        static Surroundings system();
    };

    enum class TerminateReply {
        now,
        later, ///< `terminationAllowed` follows
    };

    explicit AppDelegate(Surroundings surroundings = Surroundings::system());

    /// Empty until the start-up sequence fills it in.
    backend::bridge::BackendController *backend() const;
    void setBackend(backend::bridge::BackendController *backend);

    /// To be called before anything else: writing to a sidecar that has died must not end the application.
    void applicationWillFinishLaunching();
    bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }
    /// Asks a ready sidecar to stop and to quit, and says whether its exit is waited for. Asked again during
    /// the wait, it sends nothing and the wait goes on; after it, the answer is `now`.
    TerminateReply applicationShouldTerminate();

    /// The same for a logout, which goes on when this returns: runs an event loop during the wait.
    void terminateForLogout();

    bool isWaiting() const { return m_phase == Phase::waiting; }
    /// For a user who will not wait: ends the wait. The sidecar has been told to stop and goes on by itself.
    void stopWaiting();

Q_SIGNALS:
    void waitingBegan();
    /// The answer to a request that was told `later`.
    void terminationAllowed();

private:
    enum class Phase {
        running,
        waiting,
        allowed,
    };

    void poll();

    Surroundings m_surroundings;
    QPointer<backend::bridge::BackendController> m_backend;
    Phase m_phase = Phase::running;
    std::chrono::steady_clock::time_point m_deadline;
};

} // namespace zorel::app::shell
