#pragma once

#include "service/core/NetworkTransport.h"
#include "service/core/TransportError.h"

#include <QFutureWatcher>
#include <QObject>
#include <QPromise>
#include <QTimer>

namespace caldra {

class ConnectionPool;
class HTTPAnswerParser;
class HTTPConnection;

/// One request of a NetworkTransport with all its redirects. Deletes itself when done.
class NetworkExchange : public QObject
{
public:
    NetworkExchange(ConnectionPool &pool, const NetworkOptions &options, HTTPRequest request,
                    QPromise<TransportAnswer> promise);
    ~NetworkExchange() override;

    void start();

private:
    void sendOnce();
    void sendOver(HTTPConnection &connection);
    void take(HTTPAnswerParser &answer);
    void follow(const HTTPResponse &response, const QByteArray &location);
    void fail(TransportError::Kind kind, const QString &message);
    void dropConnection();

    ConnectionPool &m_pool;
    const NetworkOptions m_options;
    HTTPRequest m_request;
    QPromise<TransportAnswer> m_promise;
    QFutureWatcher<TransportAnswer> m_watcher;
    QTimer m_deadline;
    HTTPConnection *m_connection = nullptr;
    bool m_hasRetried = false;
    int m_redirects = 0;
};

} // namespace caldra
