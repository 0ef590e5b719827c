#include "backend/bridge/LineReader.h"

#include "backend/bridge/LineSplitter.h"
#include "platform/ThreadQuality.h"

#include <QElapsedTimer>

#include <array>
#include <cerrno>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace zorel::backend::bridge {

namespace {

/// How long one delivery may keep the owner's event loop, in milliseconds.
constexpr qint64 deliverySliceMs = 5;
/// The clock is read once in so many bytes of lines.
constexpr std::size_t bytesBetweenClockReadings = std::size_t{16} * 1024;
constexpr std::size_t readChunkBytes = std::size_t{64} * 1024;

/// Lines, or the mark that a drain has come this far.
struct Delivery
{
    /// What it holds in memory, roughly: of blank lines, their places take more than their text.
    std::size_t bytes() const { return batch.bytes.size() + batch.lines.size() * sizeof(LineBatch::Span); }

    LineBatch batch;
    std::size_t nextLine = 0;
    std::function<void()> drained;
};

} // namespace

/// The reading side. Lives on its own thread; the owner shares the queue under the mutex.
class LineReader::Worker
{
public:
    Worker(platform::Descriptor descriptor, std::function<void()> notify)
        : m_descriptor(std::move(descriptor))
        , m_wake(platform::Pipe::open())
        , m_notify(std::move(notify))
    {
        m_descriptor.setNonBlocking();
        m_wake.readEnd.setNonBlocking();
        m_wake.writeEnd.setNonBlocking();
        // Not a QThread: that needs a descriptor of its own and ends the program when there is none.
        m_thread = std::thread([this] { run(); });
    }

    ~Worker() { stop(); }

    void stop()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_stopping = true;
        }
        m_handled.notify_all();
        wake();
        if (m_thread.joinable()) {
            m_thread.join();
        }
        m_descriptor.close();
    }

    void requestDrain(std::function<void()> callback)
    {
        {
            const std::lock_guard lock(m_mutex);
            if (!m_finished) {
                m_drainRequests.push_back(std::move(callback));
                wake();
                return;
            }
        }
        enqueue({{}, 0, std::move(callback)});
    }

    /// Moves everything that waits to `taken`.
    void takeDeliveries()
    {
        const std::lock_guard lock(m_mutex);
        m_notified = false;
        for (Delivery &delivery : m_deliveries) {
            taken.push_back(std::make_shared<Delivery>(std::move(delivery)));
        }
        m_deliveries.clear();
    }

    /// Has the owner called back once more, however often this is asked before it comes to that.
    void notifyOwner()
    {
        const std::lock_guard lock(m_mutex);
        if (!std::exchange(m_notified, true)) {
            m_notify();
        }
    }

    void batchHandled(std::size_t bytes)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_bytesInFlight -= bytes;
        }
        m_handled.notify_all();
    }

    std::deque<std::shared_ptr<Delivery>> taken; ///< touched by the owner's thread alone

private:
    enum class ReadResult { data, nothing, ended };

    void run()
    {
        platform::nameThread("zorel.linereader");
        platform::markThreadUserInitiated();
        LineSplitter splitter(maximumLineBytes);
        while (!isStopping() && waitForData()) {
            auto drains = takeDrainRequests();
            const std::size_t enough = drains.empty() ? readChunkBytes : pipeCapacity();
            ReadResult result = ReadResult::data;
            for (std::size_t total = 0; total < enough && result == ReadResult::data;) {
                result = readInto(splitter, total);
            }
            deliverLines(splitter);
            for (auto &drained : drains) {
                enqueue({{}, 0, std::move(drained)});
            }
            if (result == ReadResult::ended) {
                break;
            }
        }
        finish();
    }

    bool isStopping()
    {
        const std::lock_guard lock(m_mutex);
        return m_stopping;
    }

    bool waitForData()
    {
        std::array<pollfd, 2> watched{
            {{m_descriptor.number(), POLLIN, 0}, {m_wake.readEnd.number(), POLLIN, 0}}};
        while (::poll(watched.data(), watched.size(), -1) < 0) {
            if (errno != EINTR) {
                return false;
            }
        }
        std::array<char, 64> ignored;
        while (::read(m_wake.readEnd.number(), ignored.data(), ignored.size()) > 0) {
        }
        return true;
    }

    ReadResult readInto(LineSplitter &splitter, std::size_t &total)
    {
        const ssize_t count = ::read(m_descriptor.number(), m_chunk.data(), m_chunk.size());
        if (count > 0) {
            splitter.append({m_chunk.data(), static_cast<std::size_t>(count)});
            total += static_cast<std::size_t>(count);
            return ReadResult::data;
        }
        if (count < 0 && errno == EINTR) {
            return ReadResult::data;
        }
        return count < 0 && errno == EAGAIN ? ReadResult::nothing : ReadResult::ended;
    }

    void deliverLines(LineSplitter &splitter)
    {
        if (!splitter.hasLines()) {
            return;
        }
        Delivery delivery{splitter.take(), 0, {}};
        const std::size_t bytes = delivery.bytes();
        {
            std::unique_lock lock(m_mutex);
            m_handled.wait(lock, [this, bytes] {
                return m_stopping || m_bytesInFlight == 0 || m_bytesInFlight + bytes <= maximumBytesInFlight;
            });
            m_bytesInFlight += bytes;
        }
        enqueue(std::move(delivery));
    }

    void enqueue(Delivery delivery)
    {
        {
            const std::lock_guard lock(m_mutex);
            if (m_stopping) {
                return;
            }
            m_deliveries.push_back(std::move(delivery));
        }
        notifyOwner();
    }

    std::vector<std::function<void()>> takeDrainRequests()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_drainRequests, {});
    }

    void finish()
    {
        std::vector<std::function<void()>> late;
        {
            const std::lock_guard lock(m_mutex);
            m_finished = true;
            late = std::exchange(m_drainRequests, {});
        }
        for (auto &drained : late) {
            enqueue({{}, 0, std::move(drained)});
        }
    }

    void wake() const
    {
        const char byte = 0;
        // A full wake-up pipe wakes as well.
        [[maybe_unused]] const ssize_t written = ::write(m_wake.writeEnd.number(), &byte, 1);
    }

    /// No pipe of the systems we run on holds more unless it is asked to, and nothing of ours asks.
    static constexpr std::size_t pipeCapacity() { return std::size_t{64} * 1024; }

    platform::Descriptor m_descriptor;
    platform::Pipe m_wake;
    std::function<void()> m_notify;
    std::thread m_thread;
    std::array<char, readChunkBytes> m_chunk;

    std::mutex m_mutex;
    std::condition_variable m_handled;
    std::deque<Delivery> m_deliveries;
    std::vector<std::function<void()>> m_drainRequests;
    std::size_t m_bytesInFlight = 0;
    bool m_notified = false; ///< the owner has been told and has not looked yet
    bool m_stopping = false;
    bool m_finished = false;
};

LineReader::LineReader(platform::Descriptor descriptor, Handler handler)
    : m_handler(std::move(handler))
    , m_worker(std::make_shared<Worker>(std::move(descriptor), [this] {
        QMetaObject::invokeMethod(this, &LineReader::deliver, Qt::QueuedConnection);
    }))
{}

LineReader::~LineReader()
{
    stop();
}

void LineReader::stop()
{
    if (m_worker) {
        std::exchange(m_worker, nullptr)->stop();
    }
}

void LineReader::whenDrained(std::function<void()> callback)
{
    if (m_worker) {
        m_worker->requestDrain(std::move(callback));
    }
}

void LineReader::deliver()
{
    // A handler may stop this reader; the batch it stands in must outlive the call.
    const std::shared_ptr<Worker> worker = m_worker;
    if (!worker) {
        return;
    }
    worker->takeDeliveries();

    QElapsedTimer slice;
    slice.start();
    std::size_t sinceClock = 0;
    while (!worker->taken.empty()) {
        // A handler that runs an event loop comes back here and may finish the batch before it returns.
        const std::shared_ptr<Delivery> delivery = worker->taken.front();
        const LineBatch &batch = delivery->batch;
        while (delivery->nextLine < batch.lines.size()) {
            const LineBatch::Span &line = batch.lines[delivery->nextLine++];
            m_handler({std::string_view(batch.bytes).substr(line.offset, line.length),
                       batch.bytes.size() - line.offset, line.truncated});
            if (!m_worker) {
                return;
            }
            sinceClock += line.length + 1;
            if (sinceClock >= bytesBetweenClockReadings) {
                sinceClock = 0;
                if (slice.elapsed() >= deliverySliceMs) {
                    worker->notifyOwner();
                    return;
                }
            }
        }
        if (worker->taken.empty() || worker->taken.front() != delivery) {
            continue;
        }
        worker->taken.pop_front();
        if (delivery->drained) {
            delivery->drained();
            if (!m_worker) {
                return;
            }
        }
        worker->batchHandled(delivery->bytes());
    }
}

} // namespace zorel::backend::bridge
