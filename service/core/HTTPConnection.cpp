#include "service/core/HTTPConnection.h"

#include "service/core/CaldraVersion.h"
#include "service/core/ServiceEndpoints.h"

#include <QNetworkProxy>
#include <QSslConfiguration>
#include <QSslSocket>

#include <poll.h>

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

constexpr std::chrono::seconds longestRest{60};
/// Small enough to stay in the processor's memory on its way from the system and back to it.
constexpr qsizetype blockSize = qsizetype{256} << 10;
constexpr qint64 decryptedAhead = qint64{1} << 20;

bool has(const HTTPHeaders &headers, const QByteArray &name)
{
    return std::any_of(headers.begin(), headers.end(), [&](const auto &header) {
        return header.first.compare(name, Qt::CaseInsensitive) == 0;
    });
}

// These say how the bytes are to be read, which is for the connection alone to know.
bool isOwnHeader(const QByteArray &name)
{
    for (const char *own : {"Host", "Connection", "Content-Length", "Transfer-Encoding", "Accept-Encoding"}) {
        if (name.compare(own, Qt::CaseInsensitive) == 0) {
            return true;
        }
    }
    return false;
}

QByteArray bytesOf(const HTTPRequest &request)
{
    QByteArray target = request.url.path(QUrl::FullyEncoded).toLatin1();
    if (target.isEmpty()) {
        target = "/";
    }
    if (request.url.hasQuery()) {
        target += '?' + request.url.query(QUrl::FullyEncoded).toLatin1();
    }
    const QByteArray host = request.url.authority(QUrl::FullyEncoded | QUrl::RemoveUserInfo).toLatin1();

    // Nothing here takes an encoding off again, so that none is wanted.
    QByteArray bytes =
        request.method + ' ' + target + " HTTP/1.1\r\nHost: " + host + "\r\nAccept-Encoding: identity\r\n";
    for (const auto &[name, value] : request.headers) {
        if (!isOwnHeader(name)) {
            bytes += name + ": " + value + "\r\n";
        }
    }
    if (!has(request.headers, "User-Agent")) {
        bytes += "User-Agent: Caldra/" + QByteArray(libraryVersion.data(), qsizetype(libraryVersion.size())) +
                 "\r\n";
    }
    if (request.body) {
        bytes += "Content-Length: " + QByteArray::number(request.body->size()) + "\r\n";
    }
    bytes += "\r\n";
    return bytes + request.body.value_or(QByteArray());
}

} // namespace

Origin Origin::of(const QUrl &url)
{
    const bool isEncrypted = url.scheme() == "https"_L1;
    return {isEncrypted, url.host(), quint16(url.port(isEncrypted ? 443 : 80))};
}

HTTPConnection::HTTPConnection(const Origin &origin, const NetworkOptions &options, QObject *parent)
    : QObject(parent)
    , m_origin(origin)
    , m_options(options)
    , m_socket(origin.isEncrypted ? new QSslSocket(this) : new QTcpSocket(this))
{
    connect(m_socket, &QTcpSocket::readyRead, this, &HTTPConnection::read);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &HTTPConnection::handleEnd);
    connect(m_socket, &QTcpSocket::disconnected, this, &HTTPConnection::handleEnd);
    if (auto *encrypted = qobject_cast<QSslSocket *>(m_socket)) {
        connect(encrypted, &QSslSocket::encrypted, this, &HTTPConnection::write);
    } else {
        connect(m_socket, &QTcpSocket::connected, this, &HTTPConnection::write);
    }
    m_restLimit.setSingleShot(true);
    connect(&m_restLimit, &QTimer::timeout, this, &HTTPConnection::handleEnd);
}

HTTPConnection::~HTTPConnection()
{
    abandon();
}

void HTTPConnection::abandon()
{
    m_socket->disconnect(this);
    m_socket->abort();
    m_restLimit.stop();
    m_parser.reset();
    m_finished = {};
    m_failed = {};
    m_ended = {};
}

void HTTPConnection::send(const HTTPRequest &request, Finished finished, Failed failed)
{
    m_parser.emplace(m_options.largestBody);
    begin(request, std::move(finished), std::move(failed));
}

void HTTPConnection::stream(const HTTPRequest &request, AnswerReader reader, Finished finished, Failed failed)
{
    m_block = QByteArray(blockSize, Qt::Uninitialized);
    m_parser.emplace(m_options.largestBody, std::move(reader));
    begin(request, std::move(finished), std::move(failed));
}

void HTTPConnection::begin(const HTTPRequest &request, Finished finished, Failed failed)
{
    m_finished = std::move(finished);
    m_failed = std::move(failed);
    m_outgoing = bytesOf(request);
    m_isReused = m_socket->state() == QAbstractSocket::ConnectedState;
    if (m_isReused) {
        write();
    } else {
        open();
    }
}

void HTTPConnection::open()
{
    QUrl url;
    url.setScheme(m_origin.isEncrypted ? u"https"_s : u"http"_s);
    url.setHost(m_origin.host);
    url.setPort(m_origin.port);
    // A loopback address is never reached through a proxy, whatever the system's settings say.
    QNetworkProxy proxy(QNetworkProxy::NoProxy);
    if (!isLoopback(url)) {
        proxy = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url)).value(0);
    }
    if (proxy.type() == QNetworkProxy::HttpCachingProxy) {
        proxy.setType(QNetworkProxy::HttpProxy);
    }
    m_socket->setProxy(proxy);

    m_isOpening = true;
    auto *encrypted = qobject_cast<QSslSocket *>(m_socket);
    if (!encrypted) {
        // A stream goes from the system into the block, without a stop in the socket's own buffer.
        const auto buffering = m_block.isEmpty() ? QIODevice::NotOpen : QIODevice::Unbuffered;
        m_socket->connectToHost(m_origin.host, m_origin.port, QIODevice::ReadWrite | buffering);
        return;
    }
    encrypted->setReadBufferSize(m_block.isEmpty() ? 0 : decryptedAhead);
    QSslConfiguration security = QSslConfiguration::defaultConfiguration();
    security.addCaCertificates(m_options.trustedAuthorities);
    encrypted->setSslConfiguration(security);
    encrypted->connectToHostEncrypted(m_origin.host, m_origin.port);
}

void HTTPConnection::write()
{
    if (m_isOpening) {
        m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    }
    m_isOpening = false;
    m_socket->write(std::exchange(m_outgoing, {}));
    m_socket->flush();
}

void HTTPConnection::read()
{
    if (!m_parser) {
        m_socket->readAll();
        handleEnd(); // bytes that nobody asked for
    } else if (m_block.isEmpty()) {
        feed(m_socket->readAll());
    } else {
        readIntoBlock();
    }
}

void HTTPConnection::readIntoBlock()
{
    do {
        const qint64 count = m_socket->read(m_block.data(), m_block.size());
        if (count < 0) {
            handleEnd(); // which an unbuffered socket tells here alone
            return;
        }
        feed(QByteArrayView(m_block.constData(), count));
        // An unbuffered socket tells of the rest by itself, and others on this thread have their turn before.
    } while (m_parser && m_origin.isEncrypted && m_socket->bytesAvailable() > 0);
}

void HTTPConnection::feed(QByteArrayView bytes)
{
    switch (m_parser->feed(bytes)) {
    case HTTPAnswerParser::State::head:
    case HTTPAnswerParser::State::body:
        break;
    default:
        finish();
    }
}

void HTTPConnection::handleEnd()
{
    if (!m_parser) {
        if (const auto ended = std::exchange(m_ended, {})) {
            ended();
        }
        return;
    }
    const auto error = m_socket->error();
    const bool isClosed =
        error == QAbstractSocket::RemoteHostClosedError || error == QAbstractSocket::UnknownSocketError;
    if (error == QAbstractSocket::SslHandshakeFailedError ||
        (isClosed && m_isOpening && m_origin.isEncrypted)) {
        fail(TransportError::Kind::security, m_socket->errorString());
    } else if (isClosed) {
        m_parser->feed(m_socket->readAll());
        m_parser->end();
        finish();
    } else {
        fail(TransportError::Kind::connection, m_socket->errorString());
    }
}

void HTTPConnection::finish()
{
    switch (m_parser->state()) {
    case HTTPAnswerParser::State::malformed:
        return fail(TransportError::Kind::connection, u"The answer is not HTTP."_s);
    case HTTPAnswerParser::State::tooLarge:
        return fail(TransportError::Kind::tooLarge,
                    u"The answer is larger than %1 bytes."_s.arg(m_options.largestBody));
    case HTTPAnswerParser::State::closedEarly:
        return fail(TransportError::Kind::closedEarly,
                    u"The connection was closed before the answer was complete."_s);
    default:
        break;
    }
    HTTPAnswerParser parser = std::move(*m_parser);
    m_parser.reset();
    m_failed = {};
    std::exchange(m_finished, {})(parser);
}

void HTTPConnection::fail(TransportError::Kind kind, const QString &message)
{
    const bool isStale = m_isReused && !m_parser->hasBegun();
    m_parser.reset();
    m_finished = {};
    std::exchange(m_failed, {})({TransportError(kind, message), isStale});
}

void HTTPConnection::rest(std::function<void()> ended)
{
    m_ended = std::move(ended);
    m_restLimit.start(longestRest);
}

bool HTTPConnection::isReusable() const
{
    // What has arrived while the thread was busy is still with the system: the end of the connection, or
    // bytes that would be taken for the next request's answer.
    pollfd waiting{int(m_socket->socketDescriptor()), POLLIN, 0};
    return m_socket->state() == QAbstractSocket::ConnectedState && m_socket->bytesAvailable() == 0 &&
           ::poll(&waiting, 1, 0) == 0;
}

void HTTPConnection::stopResting()
{
    m_ended = {};
    m_restLimit.stop();
}

} // namespace caldra
