#include "service/core/NetworkTransport.h"

#include "service/core/LibraryThread.h"
#include "service/core/NetworkExchange.h"
#include "service/core/ServiceEndpoints.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QThread>

namespace caldra {

namespace {

// A loopback address is never reached through a proxy, whatever the system's settings say.
class ProxyChoice final : public QNetworkProxyFactory
{
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
    {
        if (isLoopback(query.url()))
            return {QNetworkProxy::NoProxy};
        return systemProxyForQuery(query);
    }
};

} // namespace

/// What lives on the library's thread. Outlives the transport until that thread has let go of it.
struct NetworkTransport::Shared
{
    NetworkOptions options;
    QPointer<QNetworkAccessManager> manager; // library's thread only; gone when that thread has ended

    QNetworkAccessManager &usableManager(QObject *context)
    {
        if (!manager) {
            manager = new QNetworkAccessManager(context);
            manager->setProxyFactory(new ProxyChoice);
        }
        return *manager;
    }
};

NetworkTransport::NetworkTransport(NetworkOptions options)
    : m_shared(std::make_shared<Shared>(Shared{std::move(options), {}}))
{}

NetworkTransport::~NetworkTransport()
{
    if (QObject *context = runningLibraryContext()) {
        QMetaObject::invokeMethod(context, [shared = m_shared] {
            if (shared->manager)
                shared->manager->deleteLater();
        });
    }
}

QFuture<TransportAnswer> NetworkTransport::send(const HTTPRequest &request)
{
    QPromise<TransportAnswer> promise;
    promise.start();
    const QFuture<TransportAnswer> future = promise.future();
    QObject *context = libraryContext();
    auto begin = [context, shared = m_shared, request, promise = std::move(promise)]() mutable {
        auto *exchange = new NetworkExchange(shared->usableManager(context), shared->options,
                                             std::move(request), std::move(promise));
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
