#pragma once

#include "service/core/HTTPAnswerParser.h"
#include "service/core/NetworkTransport.h"
#include "service/core/TransportError.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <tuple>

class QTcpSocket;

namespace caldra {

/// Where a connection leads.
struct Origin
{
    bool isEncrypted = true;
    QString host;
    quint16 port = 443;

    static Origin of(const QUrl &url);
    bool operator==(const Origin &) const = default;
    bool operator<(const Origin &other) const
    {
        return std::tie(isEncrypted, port, host) < std::tie(other.isEncrypted, other.port, other.host);
    }
};

/// One connection to a server; carries one request at a time. Lives on the library's thread, or on another
/// that runs an event loop.
class HTTPConnection : public QObject
{
public:
    struct Failure
    {
        TransportError error;
        bool isStale; ///< an earlier connection that the server had given up before it saw this request
    };
    using Finished = std::function<void(HTTPAnswerParser &)>;
    using Failed = std::function<void(const Failure &)>;

    HTTPConnection(const Origin &origin, const NetworkOptions &options, QObject *parent);
    ~HTTPConnection() override;

    const Origin &origin() const { return m_origin; }

    /// Sends `request` and calls one of the two when it is over. The connection must not be destroyed within
    /// them.
    void send(const HTTPRequest &request, Finished finished, Failed failed);
    /// The same, and the answer goes to `reader` as it arrives. At most a MiB of it is held in the memory of
    /// the process; the reader's pace is the connection's. For a connection that carries this request alone.
    void stream(const HTTPRequest &request, AnswerReader reader, Finished finished, Failed failed);
    /// Waits for the next request; `ended` is called when the server closes, or when none comes for a minute.
    void rest(std::function<void()> ended);
    void stopResting();
    /// Whether another request may follow: the connection is open, and nothing has come on it that nobody
    /// asked for.
    bool isReusable() const;
    /// Closes at once and calls nobody.
    void abandon();

private:
    void begin(const HTTPRequest &request, Finished finished, Failed failed);
    void open();
    void write();
    void read();
    void readIntoBlock();
    void feed(QByteArrayView bytes);
    void handleEnd();
    void finish();
    void fail(TransportError::Kind kind, const QString &message);

    const Origin m_origin;
    const NetworkOptions m_options;
    QTcpSocket *m_socket;
    QTimer m_restLimit;
    QByteArray m_outgoing;
    QByteArray m_block; ///< what is read at once of a stream; empty when the answer is none
    std::optional<HTTPAnswerParser> m_parser;
    Finished m_finished;
    Failed m_failed;
    std::function<void()> m_ended;
    bool m_isOpening = false;
    bool m_isReused = false;
};

} // namespace caldra
