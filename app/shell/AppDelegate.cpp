#include "app/shell/AppDelegate.h"

#include "backend/bridge/BackendController.h"
#include "platform/BrokenPipe.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <array>

namespace zorel::app::shell {

using backend::bridge::BackendController;

namespace {

bool isBusy(const QString &state)
{
    static constexpr std::array busyStates{QLatin1String("starting"), QLatin1String("running"),
                                           QLatin1String("paused"), QLatin1String("stopping")};
    return std::ranges::find(busyStates, state) != busyStates.end();
}

} // namespace

AppDelegate::Surroundings AppDelegate::Surroundings::system()
{
    return {
        [] { return std::chrono::steady_clock::now(); },
        [](std::chrono::milliseconds delay, QObject *context, std::function<void()> action) {
            QTimer::singleShot(delay, context, std::move(action));
        },
    };
}

AppDelegate::AppDelegate(Surroundings surroundings)
    : m_surroundings(std::move(surroundings))
{}

BackendController *AppDelegate::backend() const
{
    return m_backend;
}

void AppDelegate::setBackend(BackendController *backend)
{
    if (m_backend) {
        disconnect(m_backend, nullptr, this, nullptr);
    }
    m_backend = backend;
    if (!backend) {
        return;
    }
    // A logout that somebody else called off leaves the application running, with a new sidecar sooner or
    // later.
    connect(backend, &BackendController::readyChanged, this, [this] {
        if (m_backend->ready() && m_phase == Phase::allowed) {
            m_phase = Phase::running;
        }
    });
}

void AppDelegate::applicationWillFinishLaunching()
{
    platform::ignoreBrokenPipe();
}

AppDelegate::TerminateReply AppDelegate::applicationShouldTerminate()
{
    if (m_phase == Phase::waiting) {
        return TerminateReply::later;
    }
    if (m_phase == Phase::allowed || !m_backend || !m_backend->ready()) {
        return TerminateReply::now;
    }
    const bool wasBusy = isBusy(m_backend->status().state);
    m_backend->shutdown();
    if (!wasBusy) {
        m_phase = Phase::allowed;
        return TerminateReply::now;
    }
    m_phase = Phase::waiting;
    m_deadline = m_surroundings.now() + quitDeadline;
    Q_EMIT waitingBegan();
    // Not within this call: whoever asks has to hear `later` before the answer.
    m_surroundings.runAfter(std::chrono::milliseconds(0), this, [this] { poll(); });
    return TerminateReply::later;
}

void AppDelegate::terminateForLogout()
{
    if (applicationShouldTerminate() == TerminateReply::later) {
        QEventLoop wait;
        connect(this, &AppDelegate::terminationAllowed, &wait, &QEventLoop::quit);
        wait.exec();
    }
}

void AppDelegate::poll()
{
    if (m_phase != Phase::waiting) {
        return;
    }
    const bool hasExited = m_backend && !m_backend->isRunning();
    if (hasExited || m_surroundings.now() >= m_deadline) {
        stopWaiting();
        return;
    }
    m_surroundings.runAfter(pollInterval, this, [this] { poll(); });
}

void AppDelegate::stopWaiting()
{
    if (m_phase == Phase::waiting) {
        m_phase = Phase::allowed;
        Q_EMIT terminationAllowed();
    }
}

} // namespace zorel::app::shell
