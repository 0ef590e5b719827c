#pragma once

#include "service/core/HTTPClientRequest.h"
#include "service/core/HealthResponse.h"
#include "service/core/NetworkTransport.h"
#include "tests/service/support/LoopbackCertificate.h"
#include "tests/service/support/LoopbackServer.h"
#include "tests/service/support/Outcome.h"

namespace caldra::tests {

using namespace Qt::StringLiterals;

inline const QByteArray goodHealth = R"({"data":{"ok":true,"service":"s"}})";
inline constexpr qint64 largestBody = 4 * 1024 * 1024;

/// Answers of 4 MiB at most, ten redirects, and trust in the two hosts of LoopbackCertificate.
inline NetworkOptions options()
{
    return {
        largestBody,
        10,
        {QSslCertificate(loopbackIdentity().certificate), QSslCertificate(elsewhereIdentity().certificate)}};
}

/// A client with a key and a header that are nobody else's business; `timeout` is in seconds.
inline HTTPClient clientOf(const LoopbackServer &server, double timeout = 20)
{
    CaldraConfiguration configuration;
    configuration.apiKey = u"sk-secret"_s;
    configuration.defaultHeaders = {{u"X-Client"_s, u"private"_s}};
    configuration.timeout = timeout;
    return {server.url(), configuration, std::make_shared<NetworkTransport>(options())};
}

inline QFuture<HealthResponse> health(const HTTPClient &client)
{
    return client.request<HealthResponse>(HTTPMethod::GET, u"/health"_s);
}

inline LoopbackServer::Handler always(const Answer &answer)
{
    return [answer](const ReceivedRequest &) {
        return answer;
    };
}

/// Other for an error that is not the transport's.
inline TransportError::Kind kindOf(const std::optional<CaldraError> &error)
{
    return error && error->transport() ? error->transport()->kind() : TransportError::Kind::other;
}

} // namespace caldra::tests
