#pragma once

#include "service/core/CaldraTransport.h"

#include <QFutureWatcher>
#include <QObject>

#include <memory>

namespace caldra {

class PendingCall;

/// Takes one call through its transport: sends, watches for cancellation, judges the answer.
///
/// Lives on the library's thread and deletes itself.
class CallRunner : public QObject
{
public:
    /// Any thread. `apiKey` is kept out of every error.
    static void start(const std::shared_ptr<CaldraTransport> &transport, HTTPRequest request,
                      const std::shared_ptr<PendingCall> &call, const QString &apiKey);

private:
    CallRunner(std::shared_ptr<CaldraTransport> transport, std::shared_ptr<PendingCall> call, QString apiKey);
    void send(const HTTPRequest &request);

    std::shared_ptr<CaldraTransport> m_transport;
    std::shared_ptr<PendingCall> m_call;
    QString m_apiKey;
    QFuture<TransportAnswer> m_sending;
    QFutureWatcher<void> m_watcher;
};

} // namespace caldra
