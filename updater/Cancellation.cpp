#include "updater/Cancellation.h"

#include "updater/UpdateError.h"

namespace zorel::updater {

Cancellation::Cancellation()
    : m_pipe(platform::Pipe::open())
{}

void Cancellation::cancel()
{
    if (!m_isCancelled.exchange(true)) {
        m_pipe.writeEnd.close();
    }
}

void Cancellation::throwIfCancelled() const
{
    if (m_isCancelled) {
        throw UpdateError(UpdateError::Cancelled{});
    }
}

} // namespace zorel::updater
