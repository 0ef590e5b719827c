#include "tests/service/support/LoopbackServer.h"

#include "tests/service/support/LoopbackCertificate.h"

#include <QEventLoop>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <future>

using namespace Qt::StringLiterals;

namespace caldra::tests {

Answer Answer::with(int status, const QByteArray &type, const QByteArray &body, const QByteArray &moreHeaders)
{
    return {"HTTP/1.1 " + QByteArray::number(status) + " Status\r\nContent-Type: " + type +
            "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + moreHeaders + "\r\n" + body};
}

Answer Answer::json(const QByteArray &body, int status)
{
    return with(status, "application/json", body);
}

Answer Answer::redirect(const QByteArray &location, int status)
{
    return with(status, "text/plain", "moved", "Location: " + location + "\r\n");
}

Answer Answer::withoutLength(const QByteArray &body)
{
    return {"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n\r\n" + body,
            Ending::close};
}

Answer Answer::chunked(const QByteArray &body, bool isComplete)
{
    const QByteArray head =
        "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n";
    const QByteArray chunk = QByteArray::number(body.size(), 16) + "\r\n" + body + "\r\n";
    return isComplete ? Answer{head + chunk + "0\r\n\r\n"} : Answer{head + chunk, Ending::close};
}

Answer Answer::cutShort(const QByteArray &body, qsizetype announced)
{
    return {"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
                QByteArray::number(announced) + "\r\n\r\n" + body,
            Ending::close};
}

Answer Answer::silence()
{
    return {};
}

Answer Answer::dropped()
{
    return {{}, Ending::drop};
}

/// One connection: collects requests, writes answers.
class Connection : public QObject
{
public:
    Connection(QTcpSocket *socket, LoopbackServer &server, int number)
        : QObject(socket)
        , m_socket(socket)
        , m_server(server)
        , m_number(number)
    {
        connect(socket, &QTcpSocket::readyRead, this, &Connection::read);
        connect(socket, &QTcpSocket::disconnected, this, [this] {
            m_server.disconnected.release();
            m_socket->deleteLater();
        });
    }

private:
    void read()
    {
        m_buffer += m_socket->readAll();
        for (;;) {
            const qsizetype headEnd = m_buffer.indexOf("\r\n\r\n");
            if (headEnd < 0) {
                return;
            }
            ReceivedRequest request = requestFrom(m_buffer.left(headEnd));
            const qsizetype length = request.headers.value("content-length").toLongLong();
            if (m_buffer.size() < headEnd + 4 + length) {
                return;
            }
            request.body = m_buffer.mid(headEnd + 4, length);
            m_buffer.remove(0, headEnd + 4 + length);
            write(m_server.handle(request));
        }
    }

    ReceivedRequest requestFrom(const QByteArray &head) const
    {
        QList<QByteArray> lines = head.split('\n');
        const QList<QByteArray> words = lines.takeFirst().trimmed().split(' ');
        ReceivedRequest request{words.value(0), words.value(1), {}, {}, m_number};
        for (const QByteArray &line : std::as_const(lines)) {
            const qsizetype colon = line.indexOf(':');
            request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
        }
        return request;
    }

    void write(const Answer &answer)
    {
        m_socket->write(answer.bytes);
        switch (answer.ending) {
        case Answer::Ending::keepOpen:
            break;
        case Answer::Ending::close:
            m_socket->disconnectFromHost();
            break;
        case Answer::Ending::drop:
            m_socket->abort();
            break;
        case Answer::Ending::drip:
            drip(answer.dripped);
            break;
        }
    }

    void drip(const QByteArray &bytes)
    {
        auto *timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, [this, timer, bytes, at = qsizetype(0)]() mutable {
            if (at == bytes.size()) {
                timer->stop();
            } else {
                m_socket->write(bytes.constData() + at++, 1);
            }
        });
        timer->start(20);
    }

    QTcpSocket *m_socket;
    LoopbackServer &m_server;
    const int m_number;
    QByteArray m_buffer;
};

/// Lives on the server's thread.
class LoopbackServer::Listener : public QObject
{
public:
    explicit Listener(LoopbackServer &server)
        : m_server(server)
        , m_listening(makeServer(server.m_security))
    {
        const auto take = [this] {
            while (QTcpSocket *socket = m_listening->nextPendingConnection()) {
                socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
                new Connection(socket, m_server, ++m_connections);
            }
        };
        connect(m_listening.get(), &QTcpServer::pendingConnectionAvailable, this, take);
        if (!m_listening->listen(QHostAddress::LocalHost)) {
            qFatal("The loopback server cannot listen.");
        }
    }

    quint16 port() const { return m_listening->serverPort(); }

private:
    static std::unique_ptr<QTcpServer> makeServer(Security security)
    {
        switch (security) {
        case Security::plain:
            break;
        case Security::encrypted:
            return encryptedServer(loopbackIdentity());
        case Security::encryptedForAnotherName:
            return encryptedServer(elsewhereIdentity());
        }
        return std::make_unique<QTcpServer>();
    }

    static std::unique_ptr<QTcpServer> encryptedServer(const Identity &identity)
    {
        auto server = std::make_unique<QSslServer>();
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(QSslCertificate(identity.certificate));
        configuration.setPrivateKey(QSslKey(identity.key, QSsl::Ec));
        configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
        server->setSslConfiguration(configuration);
        return server;
    }

    LoopbackServer &m_server;
    std::unique_ptr<QTcpServer> m_listening;
    int m_connections = 0;
};

LoopbackServer::LoopbackServer(Handler handler, Security security)
    : m_handler(std::move(handler))
    , m_security(security)
{
    std::promise<void> listens;
    std::future<void> listening = listens.get_future();
    m_thread = std::thread([this, listens = std::move(listens)]() mutable {
        QEventLoop loop;
        Listener listener(*this);
        m_port = listener.port();
        m_end = new QObject;
        QObject::connect(m_end, &QObject::destroyed, &loop, &QEventLoop::quit);
        listens.set_value();
        loop.exec();
    });
    listening.wait();
}

LoopbackServer::~LoopbackServer()
{
    m_end->deleteLater();
    m_thread.join();
}

QString LoopbackServer::host() const
{
    const QString scheme = m_security == Security::plain ? u"http"_s : u"https"_s;
    return scheme + u"://127.0.0.1:"_s + QString::number(m_port);
}

QUrl LoopbackServer::url(const QString &path) const
{
    return QUrl(host() + path);
}

Answer LoopbackServer::handle(const ReceivedRequest &request)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_requests.push_back(request);
    }
    received.release();
    return m_handler(request);
}

std::vector<ReceivedRequest> LoopbackServer::requests() const
{
    const QMutexLocker lock(&m_mutex);
    return m_requests;
}

ReceivedRequest LoopbackServer::lastRequest() const
{
    const QMutexLocker lock(&m_mutex);
    return m_requests.empty() ? ReceivedRequest{} : m_requests.back();
}

} // namespace caldra::tests
