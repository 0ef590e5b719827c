#pragma once

#include <cstdint>

namespace zorel::bench {

/// What the system's books say of a process.
struct ProcessBooks
{
    double residentMiB = 0;
    double ownMiB = 0;                ///< of these, what no file backs: nobody else can share it
    double processorMilliseconds = 0; ///< of the threads there are, since the start
    std::int64_t contextSwitches = 0; ///< the same: how often one went to sleep or had to wait
    int threads = 0;
};

/// Zeros where there is no such process.
ProcessBooks readBooks(std::int64_t process);

} // namespace zorel::bench
