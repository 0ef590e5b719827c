#include "service/core/NetworkExchange.h"

#include "service/core/OneTimeBody.h"
#include "service/core/ServiceEndpoints.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

QNetworkRequest networkRequestFor(const HTTPRequest &request, const NetworkOptions &options)
{
    QNetworkRequest networkRequest(request.url);
    for (const auto &[name, value] : request.headers)
        networkRequest.setRawHeader(name, value);
    networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                QNetworkRequest::ManualRedirectPolicy);
    for (const auto attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
          QNetworkRequest::AuthenticationReuseAttribute})
        networkRequest.setAttribute(attribute, QNetworkRequest::Manual);
    if (!options.trustedAuthorities.isEmpty()) {
        QSslConfiguration security = networkRequest.sslConfiguration();
        security.addCaCertificates(options.trustedAuthorities);
        networkRequest.setSslConfiguration(security);
    }
    return networkRequest;
}

TransportError failureOf(const QNetworkReply &reply)
{
    using Kind = TransportError::Kind;
    switch (reply.error()) {
    case QNetworkReply::SslHandshakeFailedError:
        return {Kind::security, reply.errorString()};
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::ContentReSendError:
        return {Kind::closedEarly, u"The connection was closed before the answer was complete."_s};
    default:
        return {Kind::connection, reply.errorString()};
    }
}

// Whether the reply is a whole HTTP answer, be its status what it may.
bool isAnswered(const QNetworkReply &reply, int status)
{
    const auto error = reply.error();
    if (error == QNetworkReply::NoError)
        return status > 0;
    // Qt reports every refusing status as an error as well.
    if (status == 407 && error == QNetworkReply::ProxyAuthenticationRequiredError)
        return true;
    return status >= 400 && error >= QNetworkReply::ContentAccessDenied &&
           error != QNetworkReply::ProtocolFailure;
}

bool hasSameOrigin(const QUrl &one, const QUrl &other)
{
    const auto portOf = [](const QUrl &url) {
        return url.port(url.scheme() == "https"_L1 ? 443 : 80);
    };
    return one.scheme() == other.scheme() && one.host() == other.host() && portOf(one) == portOf(other);
}

} // namespace

NetworkExchange::NetworkExchange(QNetworkAccessManager &manager, const NetworkOptions &options,
                                 HTTPRequest request, QPromise<TransportAnswer> promise)
    : QObject(&manager)
    , m_manager(manager)
    , m_options(options)
    , m_request(std::move(request))
    , m_promise(std::move(promise))
{}

NetworkExchange::~NetworkExchange()
{
    dropReply();
}

void NetworkExchange::start()
{
    connect(&m_watcher, &QFutureWatcherBase::canceled, this, [this] {
        m_promise.finish();
        deleteLater();
        dropReply();
    });
    m_watcher.setFuture(m_promise.future());

    connect(&m_deadline, &QTimer::timeout, this,
            [this] { fail(TransportError::Kind::timedOut, u"The request timed out."_s); });
    m_deadline.setSingleShot(true);
    m_deadline.start(m_request.timeout);
    sendOnce();
}

void NetworkExchange::sendOnce()
{
    if (!isAllowedAddress(m_request.url)) {
        fail(TransportError::Kind::unusableRequest, u"Requests to this address are not allowed."_s);
        return;
    }
    QNetworkRequest networkRequest = networkRequestFor(m_request, m_options);
    m_body.clear();
    if (m_request.body) {
        auto *body = new OneTimeBody(*m_request.body, this);
        networkRequest.setHeader(QNetworkRequest::ContentLengthHeader, m_request.body->size());
        networkRequest.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
        m_reply = m_manager.sendCustomRequest(networkRequest, m_request.method, body);
    } else {
        m_reply = m_manager.sendCustomRequest(networkRequest, m_request.method);
    }
    connect(m_reply, &QNetworkReply::readyRead, this, &NetworkExchange::readMore);
    connect(m_reply, &QNetworkReply::finished, this, &NetworkExchange::takeAnswer);
}

void NetworkExchange::readMore()
{
    const qint64 announced = m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    if (std::max(announced, m_body.size() + m_reply->bytesAvailable()) > m_options.largestBody) {
        fail(TransportError::Kind::tooLarge,
             u"The answer is larger than %1 bytes."_s.arg(m_options.largestBody));
        return;
    }
    if (m_body.isEmpty() && announced > 0)
        m_body.reserve(announced);
    m_body += m_reply->readAll();
}

void NetworkExchange::takeAnswer()
{
    readMore();
    if (!m_reply)
        return;
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (!isAnswered(*m_reply, status)) {
        const TransportError error = failureOf(*m_reply);
        fail(error.kind(), error.localizedDescription());
        return;
    }

    HTTPResponse response{status, {}, m_request.url};
    for (const auto &[name, value] : m_reply->rawHeaderPairs())
        response.headers.emplace_back(name, value);

    const auto length = response.header("Content-Length");
    const bool hasBody = status != 204 && status != 304;
    if (length && hasBody && !response.header("Content-Encoding") && m_body.size() < length->toLongLong()) {
        fail(TransportError::Kind::closedEarly,
             u"The connection was closed before the answer was complete."_s);
        return;
    }

    const bool isRedirect = status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
    const auto location = response.header("Location");
    if (isRedirect && location && m_request.redirects == RedirectPolicy::follow)
        follow(response, *location);
    else
        answerWith(response);
}

void NetworkExchange::answerWith(const HTTPResponse &response)
{
    dropReply();
    m_watcher.disconnect(this);
    m_promise.addResult(TransportAnswer{std::move(m_body), response});
    m_promise.finish();
    deleteLater();
}

void NetworkExchange::follow(const HTTPResponse &response, const QByteArray &location)
{
    dropReply();
    const QUrl target = m_request.url.resolved(QUrl::fromEncoded(location));
    const bool isDowngrade = m_request.url.scheme() == "https"_L1 && target.scheme() != "https"_L1;
    if (!isAllowedAddress(target) || isDowngrade) {
        fail(TransportError::Kind::refusedRedirect,
             u"The service redirected to an address that is not allowed."_s);
        return;
    }
    if (++m_redirects > m_options.mostRedirects) {
        fail(TransportError::Kind::refusedRedirect, u"The service redirected too many times."_s);
        return;
    }

    const bool becomesGet = response.status == 303 || (response.status <= 302 && m_request.method == "POST");
    if (becomesGet) {
        m_request.method = "GET";
        m_request.body.reset();
        std::erase_if(m_request.headers, [](const auto &header) {
            return header.first.compare("Content-Type", Qt::CaseInsensitive) == 0;
        });
    }
    if (!hasSameOrigin(m_request.url, target)) {
        if (m_request.method != "GET") {
            fail(TransportError::Kind::refusedRedirect,
                 u"The service redirected a change to another host."_s);
            return;
        }
        // Any header may be a secret between the caller and the first host.
        std::erase_if(m_request.headers, [](const auto &header) {
            return header.first.compare("Accept", Qt::CaseInsensitive) != 0;
        });
    }
    m_request.url = target;
    sendOnce();
}

void NetworkExchange::fail(TransportError::Kind kind, const QString &message)
{
    dropReply();
    m_watcher.disconnect(this);
    m_promise.setException(std::make_exception_ptr(TransportError(kind, message)));
    m_promise.finish();
    deleteLater();
}

void NetworkExchange::dropReply()
{
    if (!m_reply)
        return;
    QNetworkReply *reply = std::exchange(m_reply, nullptr);
    reply->disconnect(this);
    if (reply->isRunning())
        reply->abort();
    reply->deleteLater();
}

} // namespace caldra
