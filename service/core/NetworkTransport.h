#pragma once

#include "service/core/CaldraTransport.h"

#include <QSslCertificate>

namespace caldra {

struct NetworkOptions
{
    qint64 largestBody = 32 * 1024 * 1024; ///< bytes of an answer
    int mostRedirects = 10;
    /// Trusted beside the system's own, for staging hosts and tests.
    QList<QSslCertificate> trustedAuthorities = {};
};

/// The transport over Qt Network. Needs a QCoreApplication; all sockets live on the library's thread.
///
/// Beyond what the network layer itself reports it fails: when the whole exchange takes longer than the
/// request's timeout, when a body ends before its announced length, when it passes the largest size, and when
/// a redirect leads from https to http, to another scheme or in a circle. A redirect to another host is
/// followed without the request's own headers, and not at all with a body.
class NetworkTransport final : public CaldraTransport
{
public:
    explicit NetworkTransport(NetworkOptions options = {});
    ~NetworkTransport() override;

    /// Any thread.
    QFuture<TransportAnswer> send(const HTTPRequest &request) override;

private:
    struct Shared;
    std::shared_ptr<Shared> m_shared;
};

} // namespace caldra
