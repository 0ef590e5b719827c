#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QObject>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <vector>

#include <sys/resource.h>

namespace zorel::bench {

inline void runFor(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Processor time of this process since the creation, all its threads together.
class ProcessorClock
{
public:
    double milliseconds() const { return used() - m_start; }

private:
    static double used()
    {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        const auto inMilliseconds = [](const timeval &time) {
            return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
        };
        return inMilliseconds(usage.ru_utime) + inMilliseconds(usage.ru_stime);
    }

    double m_start = used();
};

/// What this process did while its event loop only waited.
struct Rest
{
    /// In the best round: interruptions by others are charged to whoever runs, and can only add to it.
    double processorMilliseconds = 0;
    /// How often a thread woke and went to sleep again, in the worst round; the wait itself counts as one.
    std::int64_t sleeps = 0;
};

/// Waits for three rounds of so much time.
inline Rest waitAtRest(std::chrono::milliseconds round)
{
    const auto sleepsSoFar = [] {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        return std::int64_t{usage.ru_nvcsw};
    };
    Rest rest{std::numeric_limits<double>::max(), 0};
    for (int count = 0; count < 3; ++count) {
        const ProcessorClock processor;
        const std::int64_t before = sleepsSoFar();
        runFor(round);
        rest.processorMilliseconds = std::min(rest.processorMilliseconds, processor.milliseconds());
        rest.sleeps = std::max(rest.sleeps, sleepsSoFar() - before);
    }
    return rest;
}

/// By how much a timer that wants to fire every 5 ms is late, as long as this exists: how long the event loop
/// is held up.
class Heartbeat
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            m_delays.push_back(static_cast<double>(m_sinceLast.nsecsElapsed()) / 1e6 - interval);
            m_sinceLast.restart();
        });
        m_sinceLast.start();
        m_timer.start(interval);
    }

    /// In milliseconds, one for each beat, in ascending order.
    std::vector<double> delays() const
    {
        std::vector<double> sorted = m_delays;
        std::ranges::sort(sorted);
        return sorted;
    }

private:
    static constexpr int interval = 5;

    QTimer m_timer;
    QElapsedTimer m_sinceLast;
    std::vector<double> m_delays;
};

} // namespace zorel::bench
