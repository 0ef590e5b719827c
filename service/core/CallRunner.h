#pragma once

#include "service/core/CaldraTransport.h"

#include <QFutureWatcher>
#include <QObject>

#include <memory>

namespace caldra {

class PendingCall;

/// Takes one call through its transport: sends, watches for cancellation, judges the answer.
///
/// Lives on the library's thread and deletes itself. A call that is not over when that thread ends is
/// cancelled.
class CallRunner : public QObject
{
public:
    /// Any thread. `apiKey` is kept out of every error.
    static void start(const std::shared_ptr<CaldraTransport> &transport, HTTPRequest request,
                      const std::shared_ptr<PendingCall> &call, const QString &apiKey);

    ~CallRunner() override;

private:
    CallRunner(QObject &parent, std::shared_ptr<CaldraTransport> transport,
               std::shared_ptr<PendingCall> call);
    void send(const HTTPRequest &request, const QString &apiKey);
    void giveUp();

    std::shared_ptr<CaldraTransport> m_transport;
    std::shared_ptr<PendingCall> m_call;
    QFuture<TransportAnswer> m_sending;
    QFutureWatcher<void> m_watcher;
};

} // namespace caldra
