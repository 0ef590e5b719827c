#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>
#include <vector>

namespace zorel::tests {

/// A clock with timers that moves when a test says so.
class SimulatedTime
{
public:
    using Clock = std::chrono::steady_clock;

    Clock::time_point now() const { return m_now; }

    void after(std::chrono::milliseconds delay, std::function<void()> action)
    {
        m_due.emplace_back(m_now + delay, std::move(action));
    }

    bool isNothingDue() const { return m_due.empty(); }

    /// Lets the time pass, doing what falls due on the way.
    void pass(std::chrono::milliseconds time)
    {
        const auto end = m_now + time;
        while (true) {
            const auto next =
                std::ranges::min_element(m_due, {}, [](const auto &entry) { return entry.first; });
            if (next == m_due.end() || next->first > end) {
                break;
            }
            m_now = next->first;
            const auto action = std::move(next->second);
            m_due.erase(next);
            action();
        }
        m_now = end;
    }

private:
    Clock::time_point m_now;
    std::vector<std::pair<Clock::time_point, std::function<void()>>> m_due;
};

} // namespace zorel::tests
