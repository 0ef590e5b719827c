#include "backend/bridge/LineSplitter.h"

#include <simdjson.h>

#include <algorithm>
#include <cstring>

namespace zorel::backend::bridge {

namespace {

bool isUtf8(const LineBatch &batch, const LineBatch::Span &line)
{
    return simdjson::validate_utf8(batch.bytes.data() + line.offset, line.length);
}

/// `length` or the nearest smaller one that does not cut a character in two.
std::size_t characterBoundary(std::string_view text, std::size_t length)
{
    std::size_t boundary = std::min(length, text.size());
    if (boundary == text.size()) {
        return boundary;
    }
    const auto isContinuation = [&text](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
    };
    while (boundary > 0 && isContinuation(boundary)) {
        --boundary;
    }
    return boundary;
}

} // namespace

LineSplitter::LineSplitter(std::size_t maximumLineBytes)
    : m_maximumLineBytes(maximumLineBytes)
{}

void LineSplitter::append(std::string_view bytes)
{
    while (!bytes.empty()) {
        const void *lineFeed = std::memchr(bytes.data(), '\n', bytes.size());
        const std::size_t length =
            lineFeed != nullptr ? static_cast<std::size_t>(static_cast<const char *>(lineFeed) - bytes.data())
                                : bytes.size();
        if (!m_discarding) {
            m_buffer.append(bytes.substr(0, length));
            limitPendingLine();
        }
        if (lineFeed == nullptr) {
            return;
        }
        endLine();
        bytes.remove_prefix(length + 1);
    }
}

void LineSplitter::limitPendingLine()
{
    if (pendingBytes() <= m_maximumLineBytes) {
        return;
    }
    const std::string_view line = std::string_view(m_buffer).substr(m_lineStart);
    m_buffer.resize(m_lineStart + characterBoundary(line, keptOfTruncatedLine));
    m_buffer.shrink_to_fit();
    m_discarding = true;
}

void LineSplitter::endLine()
{
    m_lines.push_back({m_lineStart, pendingBytes(), m_discarding});
    m_buffer.push_back('\n');
    m_lineStart = m_buffer.size();
    m_discarding = false;
}

LineBatch LineSplitter::take()
{
    LineBatch batch;
    std::string pending = m_buffer.substr(m_lineStart);
    m_buffer.resize(m_lineStart + padding);
    batch.bytes = std::move(m_buffer);
    batch.lines = std::move(m_lines);
    m_buffer = std::move(pending);
    m_lines.clear();
    m_lineStart = 0;

    // One pass over the whole batch is the common case; only a bad one is looked at line by line.
    if (!simdjson::validate_utf8(batch.bytes.data(), batch.bytes.size() - padding)) {
        std::erase_if(batch.lines, [&batch](const LineBatch::Span &line) { return !isUtf8(batch, line); });
    }
    return batch;
}

} // namespace zorel::backend::bridge
