#pragma once

#include "platform/Descriptor.h"

#include <atomic>

namespace zorel::updater {

/// Tells work on another thread to stop. That work asks between its steps, and may wait for the descriptor
/// together with whatever else it waits for.
class Cancellation
{
public:
    /// Throws std::system_error when the process has run out of descriptors.
    Cancellation();

    /// Any thread; once is enough.
    void cancel();
    bool isCancelled() const { return m_isCancelled; }
    /// Throws UpdateError (`cancelled`).
    void throwIfCancelled() const;
    /// Becomes readable when cancelled, and stays so. Not to be read.
    int descriptor() const { return m_pipe.readEnd.number(); }

private:
    std::atomic<bool> m_isCancelled = false;
    platform::Pipe m_pipe;
};

} // namespace zorel::updater
