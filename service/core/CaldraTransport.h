#pragma once

#include <QByteArray>
#include <QFuture>
#include <QUrl>

#include <chrono>
#include <optional>
#include <utility>
#include <vector>

namespace caldra {

using HTTPHeaders = std::vector<std::pair<QByteArray, QByteArray>>;

enum class RedirectPolicy {
    follow, ///< answer with what the last address answers
    report, ///< answer with the redirect itself
};

struct HTTPRequest
{
    QByteArray method;
    QUrl url;
    HTTPHeaders headers;
    std::optional<QByteArray> body;
    std::chrono::milliseconds timeout{60000}; ///< for the whole exchange
    RedirectPolicy redirects = RedirectPolicy::follow;
};

struct HTTPResponse
{
    int status = 0;
    HTTPHeaders headers;
    QUrl url; ///< the address that answered

    /// The first header of that name, whatever its case.
    std::optional<QByteArray> header(const QByteArray &name) const;
};

struct TransportAnswer
{
    QByteArray body;
    std::optional<HTTPResponse> response; ///< empty: the answer was no HTTP
    /// The end of the connection was the end of the body, so that a cut-off body looks complete.
    bool endedWithConnection = false;
};

/// How requests leave the library. Tests and programs may hand in their own.
class CaldraTransport
{
public:
    virtual ~CaldraTransport() = default;

    /// Sends one request. The future carries the answer, or what was thrown; cancelling it gives the request
    /// up.
    ///
    /// Called on the library's thread, so it must not block; the future may be finished on any thread.
    virtual QFuture<TransportAnswer> send(const HTTPRequest &request) = 0;
};

} // namespace caldra
