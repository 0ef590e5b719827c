#pragma once

#include <chrono>
#include <optional>

namespace zorel::updater {

/// Lets through so many of a stream of notifications that a screen can follow.
class ProgressThrottle
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Together with the first and the last notification, which are always told, at most 30 a second.
    static constexpr std::chrono::milliseconds interval{36};

    /// Whether the notification of this moment is one of them.
    bool lets(Time now)
    {
        if (m_last && now - *m_last < interval) {
            return false;
        }
        m_last = now;
        return true;
    }

private:
    std::optional<Time> m_last;
};

} // namespace zorel::updater
