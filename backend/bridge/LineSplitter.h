#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zorel::backend::bridge {

/// Complete lines in one piece of memory.
struct LineBatch
{
    struct Span
    {
        std::size_t offset = 0;
        std::size_t length = 0;
        bool truncated = false;
    };

    std::string bytes; ///< the lines, and at least LineSplitter::padding bytes behind the last of them
    std::vector<Span> lines;
};

/// Cuts a stream of bytes into lines at line feeds, however the bytes arrive. Lines that are not valid UTF-8
/// are dropped; a line beyond the limit is delivered once, cut short and marked, and its rest is thrown away
/// as it comes.
class LineSplitter
{
public:
    /// Readable bytes behind every line of a batch, so that a parser need not copy it.
    static constexpr std::size_t padding = 64;
    /// What is kept of a line beyond the limit, in bytes.
    static constexpr std::size_t keptOfTruncatedLine = std::size_t{16} * 1024;

    explicit LineSplitter(std::size_t maximumLineBytes);

    void append(std::string_view bytes);

    bool hasLines() const { return !m_lines.empty(); }
    /// The complete lines so far; what follows the last line feed stays.
    LineBatch take();
    /// Bytes held for the line that is not complete yet.
    std::size_t pendingBytes() const { return m_buffer.size() - m_lineStart; }

private:
    void endLine();
    void limitPendingLine();

    std::size_t m_maximumLineBytes;
    std::string m_buffer;
    std::vector<LineBatch::Span> m_lines;
    std::size_t m_lineStart = 0;
    bool m_discarding = false; ///< the pending line is over the limit: skip to its line feed
};

} // namespace zorel::backend::bridge
