#pragma once

#include <QFuture>

namespace caldra {

class CaldraError;
struct TransportAnswer;

/// A call whose caller holds a future of some type. Succeeds, fails or is cancelled once, on whatever thread
/// comes first; what comes later changes nothing.
class PendingCall
{
public:
    virtual ~PendingCall() = default;

    /// Turns a successful answer into the value. Throws what CaldraError wraps, or CaldraError itself.
    virtual void succeed(const TransportAnswer &answer) = 0;
    virtual void fail(const CaldraError &error) = 0;
    virtual void cancel() = 0;
    /// For watching whether the caller gave up.
    virtual QFuture<void> future() = 0;
};

} // namespace caldra
