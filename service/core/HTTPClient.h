#pragma once

#include "service/core/CaldraConfiguration.h"
#include "service/core/CaldraTransport.h"

#include <QFuture>
#include <QUrl>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace caldra {

enum class HTTPMethod { GET, POST, PUT, PATCH, DELETE };

/// A name and its value; an item without a value is left out.
using QueryItem = std::pair<QString, std::optional<QString>>;
using QueryItems = std::vector<QueryItem>;

class PendingCall;

/// Builds requests to one service, sends them and decodes the answers. Any thread.
class HTTPClient
{
public:
    QUrl baseURL;
    CaldraConfiguration configuration;
    std::shared_ptr<CaldraTransport> transport;
    bool requiresAuth = true;

    /// Sends a request and returns the payload of the answer's envelope, or fails with CaldraError.
    ///
    /// `path` follows the base address's own path and is percent-encoded already (see pathSegment); a path
    /// with an empty, "." or ".." segment fails with invalidURL. `Answer` is a Record; the definition is in
    /// service/core/HTTPClientRequest.h.
    template <class Answer>
    QFuture<Answer> request(HTTPMethod method, const QString &path, const QueryItems &query = {}) const;
    /// The same with `body`, a Record, sent as JSON.
    template <class Answer, class Body>
    QFuture<Answer> request(HTTPMethod method, const QString &path, const QueryItems &query,
                            const Body &body) const;

    /// Where the service redirects a GET to. The redirect is not followed.
    QFuture<QUrl> location(const QString &path, const QueryItems &query = {}) const;

    /// Throws CaldraError.
    HTTPRequest makeRequest(HTTPMethod method, const QString &path, const QueryItems &query,
                            std::optional<QByteArray> body) const;

private:
    void run(HTTPRequest request, const std::shared_ptr<PendingCall> &call) const;
};

/// An identifier as one percent-encoded path segment, whatever it holds.
QString pathSegment(const QString &identifier);
/// "/v1/organizations/" and the organization's segment.
QString organizationPath(const QString &organizationId);

} // namespace caldra
