#pragma once

#include "service/core/CaldraTransport.h"

namespace caldra {

/// Reads one HTTP/1.1 answer as its bytes arrive.
class HTTPAnswerParser
{
public:
    enum class State {
        head,
        body,
        complete,
        malformed,   ///< no HTTP, or HTTP that cannot be read safely
        tooLarge,    ///< the body passes the limit, or says that it will
        closedEarly, ///< the connection ended before the answer did
    };

    /// `largestBody` in bytes.
    explicit HTTPAnswerParser(qint64 largestBody)
        : m_largestBody(largestBody)
    {}

    State feed(const QByteArray &bytes);
    /// The connection has ended.
    State end();

    State state() const { return m_state; }
    bool hasBegun() const { return m_hasBegun; }
    /// Whether another request may follow on the same connection.
    bool keepsConnection() const { return m_keepsConnection && m_buffer.isEmpty(); }
    /// Neither a length nor chunks tell where the body ends.
    bool endsWithConnection() const { return m_framing == Framing::untilEnd; }
    int status() const { return m_status; }
    HTTPHeaders takeHeaders() { return std::move(m_headers); }
    QByteArray takeBody() { return std::move(m_body); }

private:
    enum class Framing { none, length, chunked, untilEnd };
    enum class ChunkPart { size, data, dataEnd, trailer };

    bool step();
    bool readHead();
    bool readStatusLine(const QByteArray &line);
    bool readHeaderLine(const QByteArray &line);
    void chooseFraming();
    bool readBody();
    bool readChunk();
    bool takeIntoBody(qint64 atMost);
    std::optional<QByteArray> takeLine();
    bool stop(State state);

    const qint64 m_largestBody;
    State m_state = State::head;
    Framing m_framing = Framing::none;
    ChunkPart m_chunkPart = ChunkPart::size;
    QByteArray m_buffer;
    qint64 m_remaining = 0;
    bool m_hasBegun = false;
    bool m_keepsConnection = true;
    int m_status = 0;
    HTTPHeaders m_headers;
    QByteArray m_body;
};

} // namespace caldra
