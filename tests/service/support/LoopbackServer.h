#pragma once

#include <QByteArray>
#include <QMap>
#include <QMutex>
#include <QSemaphore>
#include <QUrl>

#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace caldra::tests {

struct ReceivedRequest
{
    QByteArray method;
    QByteArray target;                    ///< as it stood in the request line
    QMap<QByteArray, QByteArray> headers; ///< names in lower case
    QByteArray body;
    int connection = 0; ///< counts connections from 1
};

/// What the server writes, and what it does afterwards.
struct Answer
{
    enum class Ending { keepOpen, close, drip, drop };

    QByteArray bytes;
    Ending ending = Ending::keepOpen;
    QByteArray dripped = {}; ///< sent byte by byte with Ending::drip

    static Answer json(const QByteArray &body, int status = 200);
    static Answer with(int status, const QByteArray &type, const QByteArray &body,
                       const QByteArray &moreHeaders = {});
    static Answer redirect(const QByteArray &location, int status = 302);
    /// A body that ends with the connection.
    static Answer withoutLength(const QByteArray &body);
    static Answer chunked(const QByteArray &body, bool isComplete);
    /// Announces more than it sends, then closes.
    static Answer cutShort(const QByteArray &body, qsizetype announced);
    static Answer silence();
    static Answer dropped();
};

enum class Security {
    plain,
    encrypted,
    encryptedForAnotherName, ///< with the certificate of "elsewhere.example"
};

/// An HTTP/1.1 server on 127.0.0.1 with a thread of its own, answering as the test says.
class LoopbackServer
{
public:
    using Handler = std::function<Answer(const ReceivedRequest &)>;

    /// `handler` is called on the server's thread.
    explicit LoopbackServer(Handler handler, Security security = Security::plain);
    ~LoopbackServer();

    QUrl url(const QString &path = {}) const;
    /// "http://127.0.0.1:12345"
    QString host() const;
    quint16 port() const { return m_port; }

    std::vector<ReceivedRequest> requests() const;
    ReceivedRequest lastRequest() const;

    /// Released once for every request and every ended connection.
    QSemaphore received;
    QSemaphore disconnected;

private:
    class Listener;
    friend class Connection;
    Answer handle(const ReceivedRequest &request);

    Handler m_handler;
    Security m_security;
    std::thread m_thread;
    QObject *m_end = nullptr; ///< ends the thread when it is deleted
    quint16 m_port = 0;
    mutable QMutex m_mutex;
    std::vector<ReceivedRequest> m_requests;
};

} // namespace caldra::tests
