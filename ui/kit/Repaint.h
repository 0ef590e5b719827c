#pragma once

#include <QObject>

#include <functional>

namespace zorel::ui::kit {

/// Runs a function at most once a frame (60 a second), and only when it was asked for: without requests there
/// is no timer. All coalescers share their frames, so that what changes together is painted together: a
/// request made during a frame is still served in it, unless the function has run in it already. The function
/// runs from the event loop, never inside request(). Main thread.
class FrameCoalescer : public QObject
{
    Q_OBJECT

public:
    FrameCoalescer(QObject *parent, std::function<void()> function);
    ~FrameCoalescer() override;

    void request();
    bool isPending() const { return m_isPending; }
    /// Runs what is pending now.
    void flush();

private:
    friend class FrameClock;

    void run();

    std::function<void()> m_function;
    bool m_isPending = false;
    quint64 m_lastFrame = 0; ///< the number of the frame in which the function ran last
};

} // namespace zorel::ui::kit
