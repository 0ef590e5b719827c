#include "service/core/ConnectionPool.h"

#include <utility>

namespace caldra {

namespace {

constexpr int mostPerOrigin = 6;

} // namespace

ConnectionPool::ConnectionPool(const NetworkOptions &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_exchanges(std::make_unique<QObject>())
{}

void ConnectionPool::acquire(const Origin &origin, const QObject &owner, Ready ready)
{
    m_origins[origin].waiting.push_back({&owner, std::move(ready)});
    serveWaiting(origin);
}

void ConnectionPool::serveWaiting(const Origin &origin)
{
    Connections &connections = m_origins[origin];
    while (!connections.waiting.empty()) {
        HTTPConnection *connection = nullptr;
        if (!connections.resting.empty()) {
            connection = connections.resting.back();
            connections.resting.pop_back();
            connection->stopResting();
            if (!connection->isReusable()) {
                discard(*connection);
                continue;
            }
        } else if (connections.count < mostPerOrigin) {
            connection = new HTTPConnection(origin, m_options, this);
            ++connections.count;
        } else {
            return;
        }
        const Ready ready = std::move(connections.waiting.front().ready);
        connections.waiting.pop_front();
        ready(*connection);
    }
}

void ConnectionPool::withdraw(const QObject &owner)
{
    for (auto &[origin, connections] : m_origins) {
        std::erase_if(connections.waiting, [&](const Waiting &waiting) { return waiting.owner == &owner; });
    }
}

void ConnectionPool::giveBack(HTTPConnection &connection)
{
    m_origins[connection.origin()].resting.push_back(&connection);
    connection.rest([this, &connection] { drop(connection); });
    serveWaiting(connection.origin());
}

void ConnectionPool::drop(HTTPConnection &connection)
{
    std::erase(m_origins[connection.origin()].resting, &connection);
    discard(connection);
    serveWaiting(connection.origin());
}

void ConnectionPool::discard(HTTPConnection &connection)
{
    --m_origins[connection.origin()].count;
    connection.abandon();
    connection.deleteLater();
}

void ConnectionPool::dropResting(const Origin &origin)
{
    for (HTTPConnection *connection : std::exchange(m_origins[origin].resting, {})) {
        drop(*connection);
    }
}

} // namespace caldra
