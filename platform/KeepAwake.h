#pragma once

#include <QString>

#include <memory>

namespace zorel::platform {

/// Keeps the system from falling asleep by itself while the user is away; the screen may go dark, and the
/// user may still send the system to sleep. Ends with the object, and with the process however that ends.
/// Without effect where the system offers nothing of the kind. Main thread only.
class KeepAwake
{
public:
    KeepAwake();
    ~KeepAwake();
    Q_DISABLE_COPY_MOVE(KeepAwake)

    /// `reason` is shown to users who ask what keeps their system awake. Further calls change nothing.
    void hold(const QString &reason);
    void release();
    bool isHeld() const { return m_activity != nullptr; }

private:
    struct Activity;
    std::unique_ptr<Activity> m_activity;
};

} // namespace zorel::platform
