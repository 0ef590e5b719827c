#include "library/LossCurveReader.h"

#include "backend/protocol/EventDecoder.h"
#include "library/RegularFile.h"
#include "library/RunFiles.h"

#include <simdjson.h>

#include <algorithm>
#include <cstring>

#include <fcntl.h>

namespace zorel::library {

namespace {

using backend::protocol::LossPoint;

constexpr std::size_t padding = backend::protocol::EventDecoder::padding;
constexpr std::size_t usualCapacity = std::size_t{128} * 1024;

/// How many bytes at the end of `text` begin a character that is not complete.
std::size_t incompleteCharacter(std::string_view text)
{
    for (std::size_t length = 1; length <= std::min<std::size_t>(3, text.size()); ++length) {
        const auto byte = static_cast<unsigned char>(text[text.size() - length]);
        if (byte >= 0xc0) {
            const std::size_t whole = byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : 2;
            return length < whole ? length : 0;
        }
        if (byte < 0x80) {
            return 0;
        }
    }
    return 0;
}

} // namespace

LossCurveReader::LossCurveReader(std::size_t longestLine)
    : m_longestLine(longestLine)
    , m_buffer(std::min(usualCapacity, longestLine + 1) + padding + 1, '\0')
{}

/// Bytes that may be pending: at most the longest line and its line feed.
std::size_t LossCurveReader::capacity() const
{
    return m_buffer.size() - padding - 1;
}

std::span<char> LossCurveReader::room()
{
    if (m_pending == capacity()) {
        if (m_pending > m_longestLine) {
            dropPending();
        } else {
            m_buffer.resize(std::min(2 * capacity(), m_longestLine + 1) + padding + 1);
        }
    }
    return std::span(m_buffer).subspan(m_pending, capacity() - m_pending);
}

void LossCurveReader::take(std::size_t count)
{
    const std::size_t lineFeed = std::string_view(m_buffer).substr(m_pending, count).rfind('\n');
    const std::size_t end = m_pending + count;
    if (lineFeed == std::string_view::npos) {
        m_pending = end;
        return;
    }
    const std::size_t linesEnd = m_pending + lineFeed + 1;
    m_pending = end;
    readLines(linesEnd);
    keepFrom(linesEnd);
}

std::vector<LossPoint> LossCurveReader::finish()
{
    if (m_pending > m_longestLine) {
        dropPending();
    }
    m_buffer[m_pending] = '\n';
    readLines(m_pending + 1);
    m_pending = 0;
    return m_isText ? std::move(m_points) : std::vector<LossPoint>();
}

void LossCurveReader::readLines(std::size_t end)
{
    std::string_view lines(m_buffer.data(), end);
    m_isText = m_isText && simdjson::validate_utf8(lines);
    if (m_isSkipping) {
        lines.remove_prefix(lines.find('\n') + 1);
        m_isSkipping = false;
    }
    if (m_isText) {
        m_decoder.decodeLines(lines, m_points);
        reservePoints(end);
    }
}

/// Gives up a line that is too long, and keeps what is needed to check the rest of it.
void LossCurveReader::dropPending()
{
    const std::string_view text(m_buffer.data(), m_pending);
    const std::size_t end = text.size() - incompleteCharacter(text);
    m_isText = m_isText && simdjson::validate_utf8(text.substr(0, end));
    m_isSkipping = true;
    keepFrom(end);
}

void LossCurveReader::keepFrom(std::size_t start)
{
    m_pending -= start;
    std::memmove(m_buffer.data(), m_buffer.data() + start, m_pending);
}

/// After the first lines: as if all were like these.
void LossCurveReader::reservePoints(std::size_t bytesRead)
{
    if (m_expectedBytes > bytesRead) {
        const double perByte = static_cast<double>(m_points.size()) / static_cast<double>(bytesRead);
        m_points.reserve(static_cast<std::size_t>(1.05 * perByte * static_cast<double>(m_expectedBytes)));
    }
    m_expectedBytes = 0;
}

std::vector<LossPoint> readLossCurve(const char *path)
{
    RegularFile file(AT_FDCWD, path);
    if (!file.isOpen() || file.size() > mostBytesOfACurve) {
        return {};
    }
    LossCurveReader reader(mostBytesOfAFile);
    reader.expect(file.size());
    std::size_t total = 0;
    while (reader.isText() && total <= mostBytesOfACurve) {
        const std::span<char> room = reader.room();
        const std::ptrdiff_t count = file.read(room.data(), room.size());
        if (count < 0) {
            return {};
        }
        reader.take(static_cast<std::size_t>(count));
        total += static_cast<std::size_t>(count);
        if (static_cast<std::size_t>(count) < room.size()) {
            return reader.finish();
        }
    }
    return {};
}

} // namespace zorel::library
