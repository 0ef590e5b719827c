#include "service/core/HTTPAnswerParser.h"

#include <algorithm>

namespace caldra {

namespace {

constexpr qsizetype largestHead = 256 * 1024;

// Digits alone; a sign or a space would be a way to smuggle.
std::optional<qint64> numberIn(const QByteArray &text, int base)
{
    const auto isDigit = [base](char character) {
        return base == 16 ? std::isxdigit(static_cast<unsigned char>(character)) != 0
                          : character >= '0' && character <= '9';
    };
    if (text.isEmpty() || !std::all_of(text.begin(), text.end(), isDigit)) {
        return std::nullopt;
    }
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber, base);
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace

HTTPAnswerParser::State HTTPAnswerParser::feed(QByteArrayView bytes)
{
    m_hasBegun = m_hasBegun || !bytes.isEmpty();
    // What can only be the body goes to its reader as it lies there: a file would be copied twice otherwise.
    if (m_reader && m_state == State::body && m_framing != Framing::chunked && m_buffer.isEmpty()) {
        const qint64 count =
            m_framing == Framing::length ? std::min(m_remaining, bytes.size()) : bytes.size();
        if (!take(bytes.first(count))) {
            return m_state;
        }
        bytes = bytes.sliced(count);
    }
    m_buffer += bytes;
    while (step()) {
    }
    return m_state;
}

HTTPAnswerParser::State HTTPAnswerParser::end()
{
    if (m_state == State::body && m_framing == Framing::untilEnd) {
        m_state = State::complete;
    } else if (m_state == State::head || m_state == State::body) {
        m_state = State::closedEarly;
    }
    m_keepsConnection = false;
    return m_state;
}

// Returns whether there may be more to read in what has arrived.
bool HTTPAnswerParser::step()
{
    if (m_state == State::head) {
        return readHead();
    }
    return m_state == State::body && readBody();
}

bool HTTPAnswerParser::stop(State state)
{
    m_state = state;
    return false;
}

bool HTTPAnswerParser::readHead()
{
    constexpr std::string_view beginning = "HTTP/1.";
    const auto compared = std::min(m_buffer.size(), qsizetype(beginning.size()));
    if (std::string_view(m_buffer.constData(), std::size_t(compared)) !=
        beginning.substr(0, std::size_t(compared))) {
        return stop(State::malformed);
    }
    const qsizetype headEnd = m_buffer.indexOf("\r\n\r\n");
    if (headEnd < 0) {
        return m_buffer.size() > largestHead && stop(State::malformed);
    }

    QList<QByteArray> lines = m_buffer.left(headEnd).split('\n');
    m_buffer.remove(0, headEnd + 4);
    m_headers.clear();
    if (!readStatusLine(lines.takeFirst())) {
        return stop(State::malformed);
    }
    for (const QByteArray &line : std::as_const(lines)) {
        if (!readHeaderLine(line)) {
            return stop(State::malformed);
        }
    }
    // An interim answer is followed by the real one.
    if (m_status >= 200) {
        chooseFraming();
        if (m_reader && m_state != State::malformed) {
            m_reader->head(*this);
        }
    }
    return m_state == State::head || m_state == State::body;
}

bool HTTPAnswerParser::readStatusLine(const QByteArray &line)
{
    const QList<QByteArray> words = line.trimmed().split(' ');
    const auto status = words.size() < 2 ? std::nullopt : numberIn(words[1], 10);
    if (!status || *status < 100 || *status > 999 || *status == 101) {
        return false;
    }
    m_status = int(*status);
    m_keepsConnection = words[0] == "HTTP/1.1";
    return true;
}

bool HTTPAnswerParser::readHeaderLine(const QByteArray &line)
{
    const qsizetype colon = line.indexOf(':');
    if (colon <= 0 || line.front() == ' ' || line.front() == '\t') {
        return false;
    }
    m_headers.emplace_back(line.left(colon).trimmed(), line.mid(colon + 1).trimmed());
    return true;
}

void HTTPAnswerParser::chooseFraming()
{
    std::optional<QByteArray> length;
    bool isEncoded = false;
    for (const auto &[name, value] : m_headers) {
        if (name.compare("Connection", Qt::CaseInsensitive) == 0 && value.toLower().contains("close")) {
            m_keepsConnection = false;
        } else if (name.compare("Transfer-Encoding", Qt::CaseInsensitive) == 0) {
            isEncoded = true;
            if (value.toLower() != "chunked") {
                m_state = State::malformed;
            }
        } else if (name.compare("Content-Length", Qt::CaseInsensitive) == 0) {
            if (length && *length != value) {
                m_state = State::malformed;
            }
            length = value;
        }
    }
    if (m_state == State::malformed) {
        return;
    }

    m_state = State::body;
    if (m_status == 204 || m_status == 304) {
        m_state = State::complete;
        // A body that is announced all the same would be taken for the next answer.
        m_keepsConnection = m_keepsConnection && !isEncoded && !(length && m_status == 204);
    } else if (isEncoded) {
        m_framing = Framing::chunked;
        m_keepsConnection = m_keepsConnection && !length;
    } else if (length) {
        const auto number = numberIn(*length, 10);
        m_framing = Framing::length;
        m_announcedLength = number;
        m_remaining = number.value_or(0);
        if (!number) {
            m_state = State::malformed;
        } else if (m_remaining > m_largestBody) {
            m_state = State::tooLarge;
        } else if (m_remaining == 0) {
            m_state = State::complete;
        }
        m_body.reserve(m_state == State::body && !m_reader ? m_remaining : 0);
    } else {
        m_framing = Framing::untilEnd;
        m_keepsConnection = false;
    }
}

bool HTTPAnswerParser::readBody()
{
    if (m_framing == Framing::chunked) {
        return readChunk();
    }
    takeFromBuffer(m_framing == Framing::length ? m_remaining : m_buffer.size());
    return false;
}

bool HTTPAnswerParser::takeFromBuffer(qint64 atMost)
{
    const qint64 count = std::min(atMost, m_buffer.size());
    if (!m_reader && m_body.isEmpty() && count == m_buffer.size()) {
        m_body.swap(m_buffer);
        return add(count);
    }
    const bool isTaken = take(QByteArrayView(m_buffer).first(count));
    m_buffer.remove(0, count);
    return isTaken;
}

bool HTTPAnswerParser::take(QByteArrayView bytes)
{
    if (!add(bytes.size())) {
        return false;
    }
    if (!m_reader) {
        m_body.append(bytes);
    } else if (!bytes.isEmpty()) {
        m_reader->body(bytes);
    }
    return true;
}

bool HTTPAnswerParser::add(qint64 count)
{
    if (m_taken + count > m_largestBody) {
        return stop(State::tooLarge);
    }
    m_taken += count;
    m_remaining -= count;
    if (m_framing == Framing::length && m_remaining == 0) {
        m_state = State::complete;
    }
    return true;
}

std::optional<QByteArray> HTTPAnswerParser::takeLine()
{
    const qsizetype lineEnd = m_buffer.indexOf("\r\n");
    if (lineEnd < 0) {
        if (m_buffer.size() > largestHead) {
            stop(State::malformed);
        }
        return std::nullopt;
    }
    const QByteArray line = m_buffer.left(lineEnd);
    m_buffer.remove(0, lineEnd + 2);
    return line;
}

bool HTTPAnswerParser::readChunk()
{
    if (m_chunkPart == ChunkPart::data) {
        if (m_buffer.isEmpty() || !takeFromBuffer(m_remaining)) {
            return false;
        }
        if (m_remaining == 0) {
            m_chunkPart = ChunkPart::dataEnd;
        }
        return true;
    }
    const auto line = takeLine();
    if (!line) {
        return false;
    }
    switch (m_chunkPart) {
    case ChunkPart::size: {
        const auto size = numberIn(line->split(';').first().trimmed(), 16);
        if (!size) {
            return stop(State::malformed);
        }
        if (*size > m_largestBody) {
            return stop(State::tooLarge);
        }
        m_remaining = *size;
        m_chunkPart = *size == 0 ? ChunkPart::trailer : ChunkPart::data;
        return true;
    }
    case ChunkPart::dataEnd:
        m_chunkPart = ChunkPart::size;
        return line->isEmpty() || stop(State::malformed);
    case ChunkPart::trailer:
        return !line->isEmpty() || stop(State::complete);
    case ChunkPart::data:
        break;
    }
    return false;
}

} // namespace caldra
