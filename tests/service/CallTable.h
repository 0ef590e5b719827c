#pragma once

#include <QByteArray>

#include <functional>
#include <vector>

namespace caldra {

class CaldraClient;

namespace tests {

/// One call of the library: what it must send, what it is answered, and how it is made.
struct Call
{
    const char *name;
    QByteArray method;
    QByteArray target;  ///< of the organization "org"
    QByteArray body;    ///< JSON; empty: none
    QByteArray payload; ///< JSON, or the address of a redirect
    /// Makes the call, waits and returns the answer, encoded again.
    std::function<QByteArray(const CaldraClient &)> make;
    bool isRedirect = false;
};

const std::vector<Call> &callTable();

} // namespace tests
} // namespace caldra
