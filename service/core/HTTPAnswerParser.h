#pragma once

#include "service/core/CaldraTransport.h"

#include <functional>
#include <optional>

namespace caldra {

class HTTPAnswerParser;

/// Takes an answer piece by piece, so that the whole of it is never in memory. Must not throw.
struct AnswerReader
{
    /// Once, when the head is complete, before any of the body; also when the body will turn out too large.
    std::function<void(HTTPAnswerParser &)> head;
    /// The next bytes of the body, which are gone afterwards.
    std::function<void(QByteArrayView)> body;
};

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

    /// `largestBody` in bytes. Without a reader the body is kept until it is taken.
    explicit HTTPAnswerParser(qint64 largestBody, std::optional<AnswerReader> reader = {})
        : m_largestBody(largestBody)
        , m_reader(std::move(reader))
    {}

    State feed(QByteArrayView bytes);
    /// The connection has ended.
    State end();

    State state() const { return m_state; }
    bool hasBegun() const { return m_hasBegun; }
    /// Whether another request may follow on the same connection.
    bool keepsConnection() const { return m_keepsConnection && m_buffer.isEmpty(); }
    /// Neither a length nor chunks tell where the body ends.
    bool endsWithConnection() const { return m_framing == Framing::untilEnd; }
    /// The bytes of the body as the head tells them, when it does.
    std::optional<qint64> announcedLength() const { return m_announcedLength; }
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
    bool takeFromBuffer(qint64 atMost);
    bool take(QByteArrayView bytes);
    bool add(qint64 count);
    std::optional<QByteArray> takeLine();
    bool stop(State state);

    const qint64 m_largestBody;
    std::optional<AnswerReader> m_reader;
    State m_state = State::head;
    Framing m_framing = Framing::none;
    ChunkPart m_chunkPart = ChunkPart::size;
    QByteArray m_buffer;
    qint64 m_remaining = 0;
    qint64 m_taken = 0; ///< bytes of the body so far
    std::optional<qint64> m_announcedLength;
    bool m_hasBegun = false;
    bool m_keepsConnection = true;
    int m_status = 0;
    HTTPHeaders m_headers;
    QByteArray m_body;
};

} // namespace caldra
