#pragma once

#include "platform/Descriptor.h"

#include <QObject>

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

namespace zorel::backend::bridge {

/// One complete line, valid UTF-8, without its line feed.
struct Line
{
    std::string_view text;
    /// Bytes that may be read from the start of `text` (at least EventDecoder::padding beyond its end).
    std::size_t readable = 0;
    /// The line was longer than LineReader::maximumLineBytes and `text` holds only its beginning.
    bool truncated = false;
};

/// Turns a pipe into lines. A thread of its own reads and splits; complete lines are handed to the thread
/// that created the reader, in order and in batches, so that the owner's event loop stays free. When the
/// owner falls behind, reading stops until it has caught up: memory stays bounded and the writer at the other
/// end is slowed down. Lines that are not valid UTF-8 are dropped; bytes after the last line feed are never
/// delivered.
class LineReader : public QObject
{
    Q_OBJECT

public:
    /// Longest line that is delivered whole, in bytes. The rest of a longer one is thrown away up to its line
    /// feed.
    static constexpr std::size_t maximumLineBytes = std::size_t{64} * 1024 * 1024;
    /// How many bytes may be read but not yet handled before reading pauses (a single longer line is still
    /// let through).
    static constexpr std::size_t maximumBytesInFlight = std::size_t{4} * 1024 * 1024;

    using Handler = std::function<void(const Line &)>;

    /// Takes ownership of `descriptor`, the read end of a pipe, and starts reading. `handler` runs on the
    /// creating thread.
    LineReader(platform::Descriptor descriptor, Handler handler);
    /// Stops.
    ~LineReader() override;

    /// Ends reading and delivery at once; nothing is delivered afterwards.
    void stop();

    /// Calls `callback` on the owner's thread once everything that the pipe held at the time of this call has
    /// been handled.
    void whenDrained(std::function<void()> callback);

private:
    class Worker;

    void deliver();

    Handler m_handler;
    std::shared_ptr<Worker> m_worker;
};

} // namespace zorel::backend::bridge
