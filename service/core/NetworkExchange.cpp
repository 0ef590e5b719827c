#include "service/core/NetworkExchange.h"

#include "service/core/ConnectionPool.h"
#include "service/core/HTTPConnection.h"
#include "service/core/HTTPSyntax.h"
#include "service/core/ServiceEndpoints.h"

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

// A change must not be made twice; everything else may be sent again.
bool mayRepeat(const HTTPRequest &request)
{
    return request.method == "GET" || request.method == "PUT" || request.method == "DELETE";
}

// Whoever calls the transport directly has had nobody look at the request.
QString complaintAbout(const HTTPRequest &request)
{
    if (!isHTTPToken(request.method)) {
        return u"The request's method is no word of HTTP."_s;
    }
    for (const auto &[name, value] : request.headers) {
        if (!isHTTPToken(name) || !isHTTPHeaderValue(value)) {
            return unusableHeaderText(name);
        }
    }
    return {};
}

} // namespace

NetworkExchange::NetworkExchange(ConnectionPool &pool, const NetworkOptions &options, HTTPRequest request,
                                 QPromise<TransportAnswer> promise)
    : QObject(pool.exchanges())
    , m_pool(pool)
    , m_options(options)
    , m_request(std::move(request))
    , m_promise(std::move(promise))
{}

NetworkExchange::~NetworkExchange()
{
    dropConnection();
}

void NetworkExchange::start()
{
    connect(&m_watcher, &QFutureWatcherBase::canceled, this, [this] {
        m_promise.finish();
        deleteLater();
        dropConnection();
    });
    m_watcher.setFuture(m_promise.future());

    connect(&m_deadline, &QTimer::timeout, this,
            [this] { fail(TransportError::Kind::timedOut, u"The request timed out."_s); });
    m_deadline.setSingleShot(true);
    m_deadline.setTimerType(Qt::PreciseTimer);
    m_deadline.start(m_request.timeout);
    if (const QString complaint = complaintAbout(m_request); !complaint.isEmpty()) {
        fail(TransportError::Kind::unusableRequest, complaint);
        return;
    }
    sendOnce();
}

void NetworkExchange::sendOnce()
{
    if (!isAllowedAddress(m_request.url)) {
        fail(TransportError::Kind::unusableRequest, u"Requests to this address are not allowed."_s);
        return;
    }
    m_pool.acquire(Origin::of(m_request.url), *this,
                   [this](HTTPConnection &connection) { sendOver(connection); });
}

void NetworkExchange::sendOver(HTTPConnection &connection)
{
    m_connection = &connection;
    const auto failed = [this](const HTTPConnection::Failure &failure) {
        if (failure.isStale && !m_hasRetried && mayRepeat(m_request)) {
            m_hasRetried = true;
            m_pool.dropResting(Origin::of(m_request.url));
            m_pool.drop(*std::exchange(m_connection, nullptr));
            sendOnce();
        } else {
            fail(failure.error.kind(), failure.error.localizedDescription());
        }
    };
    connection.send(
        m_request, [this](HTTPAnswerParser &answer) { take(answer); }, failed);
}

void NetworkExchange::take(HTTPAnswerParser &answer)
{
    HTTPConnection *connection = std::exchange(m_connection, nullptr);
    if (answer.keepsConnection()) {
        m_pool.giveBack(*connection);
    } else {
        m_pool.drop(*connection);
    }

    const HTTPResponse response{answer.status(), answer.takeHeaders(), m_request.url};
    const auto location = response.header("Location");
    if (isRedirect(response.status) && location && m_request.redirects == RedirectPolicy::follow) {
        follow(response, *location);
        return;
    }
    m_watcher.disconnect(this);
    m_promise.addResult(TransportAnswer{answer.takeBody(), response, answer.endsWithConnection()});
    m_promise.finish();
    deleteLater();
}

void NetworkExchange::follow(const HTTPResponse &response, const QByteArray &location)
{
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
    if (Origin::of(m_request.url) != Origin::of(target)) {
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
    dropConnection();
    m_watcher.disconnect(this);
    m_promise.setException(std::make_exception_ptr(TransportError(kind, message)));
    m_promise.finish();
    deleteLater();
}

void NetworkExchange::dropConnection()
{
    m_deadline.stop();
    m_pool.withdraw(*this);
    if (HTTPConnection *connection = std::exchange(m_connection, nullptr)) {
        m_pool.drop(*connection);
    }
}

} // namespace caldra
