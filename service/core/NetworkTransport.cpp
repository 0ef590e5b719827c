#include "service/core/NetworkTransport.h"

#include "service/core/ConnectionPool.h"
#include "service/core/LibraryThread.h"
#include "service/core/NetworkExchange.h"

#include <QPointer>

namespace caldra {

/// What lives on the library's thread. Outlives the transport until that thread has let go of it.
struct NetworkTransport::Shared
{
    NetworkOptions options;
    QPointer<ConnectionPool> pool; // library's thread only; gone when that thread has ended

    ConnectionPool &usablePool(QObject *context)
    {
        if (!pool) {
            pool = new ConnectionPool(options, context);
        }
        return *pool;
    }
};

NetworkTransport::NetworkTransport(NetworkOptions options)
    : m_shared(std::make_shared<Shared>(Shared{std::move(options), {}}))
{}

NetworkTransport::~NetworkTransport()
{
    const auto dropPool = [shared = m_shared](QObject &) {
        if (shared->pool) {
            shared->pool->deleteLater();
        }
    };
    runOnLibraryThread(dropPool, ThreadStart::never);
}

QFuture<TransportAnswer> NetworkTransport::send(const HTTPRequest &request)
{
    const auto promise = std::make_shared<QPromise<TransportAnswer>>();
    promise->start();
    QFuture<TransportAnswer> future = promise->future();
    runOnLibraryThread([shared = m_shared, request, promise](QObject &context) {
        auto *exchange =
            new NetworkExchange(shared->usablePool(&context), shared->options, request, std::move(*promise));
        exchange->start();
    });
    return future;
}

} // namespace caldra
