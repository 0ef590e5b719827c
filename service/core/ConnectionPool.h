#pragma once

#include "service/core/HTTPConnection.h"

#include <deque>
#include <map>
#include <memory>

namespace caldra {

/// The connections of one transport, kept open between requests; a few to each origin. Lives on the library's
/// thread.
class ConnectionPool : public QObject
{
public:
    using Ready = std::function<void(HTTPConnection &)>;

    ConnectionPool(const NetworkOptions &options, QObject *parent);

    /// What the pool's exchanges are children of: they go before the connections do.
    QObject *exchanges() { return m_exchanges.get(); }

    /// Calls `ready` with a connection, at once or when one is free. `owner` waits; when it is destroyed, it
    /// no longer does.
    void acquire(const Origin &origin, const QObject &owner, Ready ready);
    /// `owner` no longer waits.
    void withdraw(const QObject &owner);
    void giveBack(HTTPConnection &connection);
    /// Ends a connection in whatever state it is.
    void drop(HTTPConnection &connection);
    /// Ends what rests for `origin`: when one of them was found dead, so are the others likely to be.
    void dropResting(const Origin &origin);

private:
    struct Waiting
    {
        const QObject *owner;
        Ready ready;
    };
    struct Connections
    {
        int count = 0;
        std::vector<HTTPConnection *> resting;
        std::deque<Waiting> waiting;
    };

    void serveWaiting(const Origin &origin);
    void discard(HTTPConnection &connection);

    const NetworkOptions m_options;
    std::map<Origin, Connections> m_origins;
    std::unique_ptr<QObject> m_exchanges; // last, so that what it owns still finds the pool whole
};

} // namespace caldra
