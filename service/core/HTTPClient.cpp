#include "service/core/HTTPClient.h"

#include "service/core/CallRunner.h"
#include "service/core/HTTPClientRequest.h"
#include "service/core/HTTPSyntax.h"

#include <QUrlQuery>

#include <cmath>

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

QByteArray nameOf(HTTPMethod method)
{
    switch (method) {
    case HTTPMethod::GET:
        return "GET";
    case HTTPMethod::POST:
        return "POST";
    case HTTPMethod::PUT:
        return "PUT";
    case HTTPMethod::PATCH:
        return "PATCH";
    case HTTPMethod::DELETE:
        return "DELETE";
    }
    return {};
}

// "." and ".." mean other places than the one asked for, and so does an empty segment; nothing in a URL can
// escape them.
bool keepsItsPlace(const QString &path)
{
    if (!path.startsWith(u'/')) {
        return false;
    }
    const auto segments = QStringView(path).mid(1).split(u'/');
    for (const QStringView segment : segments) {
        if (segment.isEmpty() || segment == u"." || segment == u"..") {
            return false;
        }
    }
    return true;
}

std::chrono::milliseconds wholeTime(double seconds)
{
    constexpr double longest = 7 * 24 * 3600;
    if (!(seconds > 0)) {
        seconds = 60;
    }
    return std::chrono::milliseconds(std::max(1LL, std::llround(std::min(seconds, longest) * 1000)));
}

void setHeader(HTTPHeaders &headers, const QByteArray &name, const QByteArray &value)
{
    if (!isHTTPToken(name) || !isHTTPHeaderValue(value)) {
        throw CaldraError(TransportError(TransportError::Kind::unusableRequest, unusableHeaderText(name)));
    }
    for (auto &[headerName, headerValue] : headers) {
        if (headerName.compare(name, Qt::CaseInsensitive) == 0) {
            headerValue = value;
            return;
        }
    }
    headers.emplace_back(name, value);
}

class LocationCall final : public detail::PromisedCall<QUrl>
{
public:
    void succeed(const TransportAnswer &answer) override
    {
        const HTTPResponse &response = *answer.response;
        const auto location = response.header("Location");
        if (response.status / 100 != 3 || !location || location->isEmpty()) {
            throw CaldraError(CaldraError::UnexpectedStatus{response.status, answer.body});
        }
        const QUrl url = response.url.resolved(QUrl::fromEncoded(*location));
        const bool isDowngrade = response.url.scheme() == "https"_L1 && url.scheme() != "https"_L1;
        if (!isAllowedAddress(url) || isDowngrade) {
            throw TransportError(TransportError::Kind::refusedRedirect,
                                 u"The service redirected to an address that is not allowed."_s);
        }
        finishWith(url);
    }
};

} // namespace

QString pathSegment(const QString &identifier)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(identifier));
}

QString organizationPath(const QString &organizationId)
{
    return u"/v1/organizations/"_s + pathSegment(organizationId);
}

HTTPRequest HTTPClient::makeRequest(HTTPMethod method, const QString &path, const QueryItems &query,
                                    std::optional<QByteArray> body) const
{
    QUrl url = baseURL;
    const QString basePath = baseURL.path(QUrl::FullyEncoded);
    url.setPath(basePath + path, QUrl::StrictMode);
    // QUrl writes encoded dots as dots, so the path is judged as it will travel.
    const QString travellingPath = url.path(QUrl::FullyEncoded).mid(basePath.size());
    QStringList items;
    for (const auto &[name, value] : query) {
        // "+" is encoded as well: many servers read it as a space.
        if (value) {
            items << pathSegment(name) + u'=' + pathSegment(*value);
        }
    }
    if (!items.isEmpty()) {
        url.setQuery(items.join(u'&'), QUrl::StrictMode);
    }
    if (!isAllowedAddress(url) || !keepsItsPlace(travellingPath)) {
        throw CaldraError(CaldraError::InvalidURL{path}).withoutSecret(configuration.apiKey);
    }

    HTTPRequest request{nameOf(method), url, {}, std::move(body), wholeTime(configuration.timeout)};
    if (request.body) {
        setHeader(request.headers, "Content-Type", "application/json");
    }
    setHeader(request.headers, "Accept", "application/json");
    if (requiresAuth) {
        setHeader(request.headers, "Authorization", "Bearer " + configuration.apiKey.toUtf8());
        setHeader(request.headers, "X-API-Key", configuration.apiKey.toUtf8());
    }
    for (const auto &[name, value] : configuration.defaultHeaders) {
        setHeader(request.headers, name.toUtf8(), value.toUtf8());
    }
    return request;
}

QFuture<QUrl> HTTPClient::location(const QString &path, const QueryItems &query) const
{
    const auto call = std::make_shared<LocationCall>();
    try {
        HTTPRequest request = makeRequest(HTTPMethod::GET, path, query, std::nullopt);
        request.redirects = RedirectPolicy::report;
        run(std::move(request), call);
    } catch (const CaldraError &error) {
        call->fail(error);
    }
    return call->typedFuture();
}

void HTTPClient::run(HTTPRequest request, const std::shared_ptr<PendingCall> &call) const
{
    CallRunner::start(transport, std::move(request), call, configuration.apiKey);
}

} // namespace caldra
