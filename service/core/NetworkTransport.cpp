#include "service/core/NetworkTransport.h"

#include "service/core/ConnectionPool.h"
#include "service/core/LibraryThread.h"
#include "service/core/NetworkExchange.h"

#include <QPointer>
#include <QThread>

namespace caldra {

/// What lives on the library's thread. Outlives the transport until that thread has let go of it.
struct NetworkTransport::Shared
{
    NetworkOptions options;
    QPointer<ConnectionPool> pool; // library's thread only; gone when that thread has ended

    ConnectionPool &usablePool(QObject *context)
    {
        if (!pool)
            pool = new ConnectionPool(options, context);
        return *pool;
    }
};

NetworkTransport::NetworkTransport(NetworkOptions options)
    : m_shared(std::make_shared<Shared>(Shared{std::move(options), {}}))
{}

NetworkTransport::~NetworkTransport()
{
    if (QObject *context = runningLibraryContext()) {
        QMetaObject::invokeMethod(context, [shared = m_shared] {
            if (shared->pool)
                shared->pool->deleteLater();
        });
    }
}

QFuture<TransportAnswer> NetworkTransport::send(const HTTPRequest &request)
{
    QPromise<TransportAnswer> promise;
    promise.start();
    QFuture<TransportAnswer> future = promise.future();
    QObject *context = libraryContext();
    auto begin = [context, shared = m_shared, request = request, promise = std::move(promise)]() mutable {
        auto *exchange = new NetworkExchange(shared->usablePool(context), shared->options, std::move(request),
                                             std::move(promise));
        exchange->start();
    };
    if (context->thread() == QThread::currentThread())
        begin();
    else
        QMetaObject::invokeMethod(
            context, [later = std::make_shared<decltype(begin)>(std::move(begin))] { (*later)(); });
    return future;
}

} // namespace caldra
