#pragma once

#include "service/core/NetworkTransport.h"
#include "service/core/TransportError.h"

#include <QFutureWatcher>
#include <QObject>
#include <QPromise>
#include <QTimer>

class QNetworkReply;

namespace caldra {

/// One request of a NetworkTransport with all its redirects. A child of its manager; deletes itself when
/// done.
class NetworkExchange : public QObject
{
public:
    NetworkExchange(QNetworkAccessManager &manager, const NetworkOptions &options, HTTPRequest request,
                    QPromise<TransportAnswer> promise);
    ~NetworkExchange() override;

    void start();

private:
    void sendOnce();
    void readMore();
    void takeAnswer();
    void answerWith(const HTTPResponse &response);
    void follow(const HTTPResponse &response, const QByteArray &location);
    void fail(TransportError::Kind kind, const QString &message);
    void dropReply();

    QNetworkAccessManager &m_manager;
    const NetworkOptions m_options;
    HTTPRequest m_request;
    QPromise<TransportAnswer> m_promise;
    QFutureWatcher<TransportAnswer> m_watcher;
    QTimer m_deadline;
    QNetworkReply *m_reply = nullptr;
    QByteArray m_body;
    int m_redirects = 0;
};

} // namespace caldra
